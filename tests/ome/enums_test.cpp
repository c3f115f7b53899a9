#include <Ome/enums.h>
#include <support/expect_vela_error.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>

namespace {

// The number is the row in the schema's list of names and stands for ever.
static_assert(std::is_same_v<std::underlying_type_t<Ome::Type>, std::int32_t>);
static_assert(static_cast<int>(Ome::Type::bit) == 0);
static_assert(static_cast<int>(Ome::Type::int8) == 1);
static_assert(static_cast<int>(Ome::Type::int16) == 2);
static_assert(static_cast<int>(Ome::Type::int32) == 3);
static_assert(static_cast<int>(Ome::Type::uint8) == 4);
static_assert(static_cast<int>(Ome::Type::uint16) == 5);
static_assert(static_cast<int>(Ome::Type::uint32) == 6);
static_assert(static_cast<int>(Ome::Type::float32) == 7);
static_assert(static_cast<int>(Ome::Type::float64) == 8);
static_assert(static_cast<int>(Ome::Type::complex64) == 9);
static_assert(static_cast<int>(Ome::Type::complex128) == 10);

struct Pair
{
    std::uint32_t id;
    std::int32_t type;
};

constexpr Pair pairs[] = {
    {0x00000002, 1}, {0x00000008, 2}, {0x00000020, 3}, {0x00000001, 4}, {0x00000004, 5},
    {0x00000010, 6}, {0x00000040, 7}, {0x00000080, 8}, {0x40000040, 9}, {0x40000080, 10},
};

bool has_pixel_type(std::uint32_t id)
{
    for (const Pair& pair : pairs)
        if (pair.id == id)
            return true;
    return false;
}

void expect_unsupported(std::uint32_t id)
{
    SCOPED_TRACE(testing::Message() << "id 0x" << std::hex << id);
    EXPECT_THROW_TEXT(Ome::get_type(static_cast<std::int32_t>(id)), std::invalid_argument, "Unsupported data type");
}

TEST(OmePixelType, TenSampleTypesHaveOne)
{
    for (const Pair& pair : pairs)
        EXPECT_EQ(static_cast<std::int32_t>(Ome::get_type(static_cast<std::int32_t>(pair.id))), pair.type)
            << std::hex << pair.id;
}

TEST(OmePixelType, Integers64HaveNone)
{
    expect_unsupported(0x1000);
    expect_unsupported(0x2000);
}

TEST(OmePixelType, NoTypeHasNone)
{
    expect_unsupported(0);
}

TEST(OmePixelType, LogicalIsNotABit)
{
    expect_unsupported(0x10000);
    expect_unsupported(0x40010000);
}

TEST(OmePixelType, ComplexIntegersHaveNone)
{
    for (const std::uint32_t scalar : {0x1u, 0x2u, 0x4u, 0x8u, 0x10u, 0x20u, 0x1000u, 0x2000u})
        expect_unsupported(0x40000000u | scalar);
}

TEST(OmePixelType, ColoursAndPropertyTypesHaveNone)
{
    for (const std::uint32_t id : {0x400u, 0x800u, 0x4000u, 0x8000u, 0x20000u})
        expect_unsupported(id);
}

TEST(OmePixelType, ArraysHaveNone)
{
    for (const Pair& pair : pairs)
        expect_unsupported(pair.id | 0x80000000u);
    expect_unsupported(0x80000000u);
}

TEST(OmePixelType, OfAllSingleBitsAndPairsOnlyTheTenHaveOne)
{
    unsigned supported = 0;
    const auto look_at = [&supported](std::uint32_t id)
    {
        if (!has_pixel_type(id))
            return expect_unsupported(id);
        EXPECT_NO_THROW(Ome::get_type(static_cast<std::int32_t>(id)));
        ++supported;
    };
    for (unsigned high = 0; high < 32; ++high)
    {
        look_at(std::uint32_t{1} << high);
        for (unsigned low = 0; low < high; ++low)
            look_at((std::uint32_t{1} << high) | (std::uint32_t{1} << low));
    }
    EXPECT_EQ(supported, 10u);
}

TEST(OmePixelType, NumbersOfPixelTypesAreNotSampleTypes)
{
    for (const std::uint32_t number : {3u, 5u, 6u, 7u, 9u, 10u})
        expect_unsupported(number);
    expect_unsupported(0xffffffffu);
}

} // namespace
