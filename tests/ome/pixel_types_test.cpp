#include "support/expect_vela_error.h"

#include "ome/pixel_types.h"

#include <Ome/enums.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>

namespace {

TEST(OmePixelTypeTable, LeadsBackFromEveryTypeButBit)
{
    for (std::int32_t number = 1; number <= 10; ++number)
    {
        const auto type = static_cast<Ome::Type>(number);
        EXPECT_EQ(Ome::get_type(Ome::detail::get_dt(type)), type);
    }
    EXPECT_EQ(Ome::detail::get_dt(Ome::Type::complex64), 0x40000040);
}

TEST(OmePixelTypeTable, RefusesBitAndNumbersOutside)
{
    for (const std::int32_t number :
         {0, -1, 11, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()})
        EXPECT_THROW_TEXT(Ome::detail::get_dt(static_cast<Ome::Type>(number)), std::invalid_argument,
                          "Unsupported stack type");
}

TEST(OmePixelTypeTable, HasTheNamesOfTheSchema)
{
    const char* const names[] = {"bit",    "int8",  "int16",  "int32",   "uint8",         "uint16",
                                 "uint32", "float", "double", "complex", "double-complex"};
    ASSERT_EQ(Ome::detail::pixel_types.size(), std::size(names));
    for (std::size_t row = 0; row < std::size(names); ++row)
        EXPECT_STREQ(Ome::detail::pixel_types[row].name, names[row]);
}

} // namespace
