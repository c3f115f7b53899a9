#include "json/WrongTypeError.h"

#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace {

static_assert(std::is_base_of_v<std::invalid_argument, Json::WrongTypeError>);

std::string text_of(std::int64_t type_id)
{
    return Json::WrongTypeError(static_cast<vela_dt>(static_cast<std::uint32_t>(type_id))).what();
}

TEST(WrongTypeError, NamesTheTypeOfTheProperty)
{
    struct Row
    {
        std::int64_t id;
        const char* name;
    };
    const Row rows[] = {{0x10000, "boolean"},
                        {2, "8 bit signed integer"},
                        {1, "8 bit unsigned integer"},
                        {8, "16 bit signed integer"},
                        {4, "16 bit unsigned integer"},
                        {32, "32 bit signed integer"},
                        {16, "32 bit unsigned integer"},
                        {8192, "64 bit signed integer"},
                        {4096, "64 bit unsigned integer"},
                        {64, "decimal"},
                        {128, "decimal"},
                        {0x20000, "string"},
                        {32768, "structure"}};
    for (const Row& row : rows)
    {
        EXPECT_EQ(text_of(row.id), std::string("Property has ") + row.name + " type");
        EXPECT_EQ(text_of(row.id | 0x80000000), std::string("Property has ") + row.name + " array type");
    }
}

TEST(WrongTypeError, AnArrayOfPropertiesIsAnArray)
{
    EXPECT_EQ(text_of(0x80004000), "Property has array type");
}

TEST(WrongTypeError, EveryOtherTypeIsUnsupported)
{
    for (const std::int64_t id : {0L, 3L, 0x400L, 0x800L, 0x4000L, 0x40000040L, 0x80000000L, 0x80000400L, 0xffffffffL})
        EXPECT_EQ(text_of(id), "Property has unsupported type");
}

}
