#include "binary_io/types/convert_one.h"
#include "binary_io/types/sample_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace vela_test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr float infinity_single = std::numeric_limits<float>::infinity();
constexpr float nan_single = std::numeric_limits<float>::quiet_NaN();
constexpr std::int32_t least_int32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t least_int64 = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t top_bit = 0x8000000000000000;

/// All that no integer type can hold.
constexpr double without_integer[] = {nan, -nan, infinity, -infinity, 1e300, -1e300, 0x1p65, -0x1p65};
constexpr float without_integer_single[] = {nan_single, -nan_single, infinity_single, -infinity_single,
                                            1e38f,      -1e38f,      0x1p65f,         -0x1p65f};

TEST(FloatToInteger, SingleOf3Point9AsInt32Is3)
{
    EXPECT_EQ(converted<std::int32_t>(3.9f), 3);
    EXPECT_EQ(converted<std::int32_t>(-3.9f), -3);
}

TEST(FloatToInteger, SingleOfMinus1AsUint8Is255)
{
    EXPECT_EQ(converted<std::uint8_t>(-1.0f), 255);
}

TEST(FloatToInteger, DoubleOf1e10AsUint32IsItsLow32Bits)
{
    EXPECT_EQ(converted<std::uint32_t>(1e10), 1410065408u);
}

TEST(FloatToInteger, DoubleOf2To63AsUint64IsTheTopBit)
{
    EXPECT_EQ(converted<std::uint64_t>(0x1p63), 0x8000000000000000u);
}

TEST(FloatToInteger, TruncatesTowardZero)
{
    for (const double value : {0.0, -0.0, 0.5, -0.5, 0.999, -0.999, 1e-300, -1e-300, 5e-324})
    {
        EXPECT_EQ(converted<std::uint8_t>(value), 0) << value;
        EXPECT_EQ(converted<std::int8_t>(value), 0) << value;
        EXPECT_EQ(converted<std::uint16_t>(value), 0) << value;
        EXPECT_EQ(converted<std::int16_t>(value), 0) << value;
        EXPECT_EQ(converted<std::uint32_t>(value), 0u) << value;
        EXPECT_EQ(converted<std::int32_t>(value), 0) << value;
        EXPECT_EQ(converted<std::uint64_t>(value), 0u) << value;
        EXPECT_EQ(converted<std::int64_t>(value), 0) << value;
    }
    EXPECT_EQ(converted<std::uint8_t>(254.999), 254);
    EXPECT_EQ(converted<std::int16_t>(-2.5f), -2);
    EXPECT_EQ(converted<std::uint64_t>(1.75), 1u);
    EXPECT_EQ(converted<std::int64_t>(-1e15 - 0.5), -1000000000000000);
}

TEST(FloatToInteger, NegativeFloatsWrapInUnsignedTypes)
{
    EXPECT_EQ(converted<std::uint8_t>(-1.0), 255);
    EXPECT_EQ(converted<std::uint8_t>(-257.0f), 255);
    EXPECT_EQ(converted<std::uint16_t>(-1.5), 65535);
    EXPECT_EQ(converted<std::uint32_t>(-1.0f), 0xffffffffu);
    EXPECT_EQ(converted<std::uint32_t>(-2147483649.0), 0x7fffffffu);
    EXPECT_EQ(converted<std::uint64_t>(-1.0f), 0xffffffffffffffffu);
    EXPECT_EQ(converted<std::uint64_t>(-0x1p62), 0xc000000000000000u);
}

TEST(FloatToInteger, DoesNotSaturate)
{
    EXPECT_EQ(converted<std::uint8_t>(256.0f), 0);
    EXPECT_EQ(converted<std::uint8_t>(300.0), 44);
    EXPECT_EQ(converted<std::int8_t>(200.0f), -56);
    EXPECT_EQ(converted<std::int8_t>(-129.0), 127);
    EXPECT_EQ(converted<std::int16_t>(40000.0f), -25536);
    EXPECT_EQ(converted<std::uint16_t>(65536.0 + 7), 7);
    EXPECT_EQ(converted<std::uint32_t>(0x1p32), 0u);
}

TEST(FloatToInteger, LimitsOfInt32)
{
    EXPECT_EQ(converted<std::int32_t>(2147483647.0), 2147483647);
    EXPECT_EQ(converted<std::int32_t>(2147483647.999), 2147483647);
    EXPECT_EQ(converted<std::int32_t>(2147483520.0f), 2147483520);
    EXPECT_EQ(converted<std::int32_t>(2147483648.0), least_int32);
    EXPECT_EQ(converted<std::int32_t>(2147483648.0f), least_int32);
    EXPECT_EQ(converted<std::int32_t>(-2147483648.0), least_int32);
    EXPECT_EQ(converted<std::int32_t>(-2147483648.999), least_int32);
    EXPECT_EQ(converted<std::int32_t>(-2147483647.999), -2147483647);
    EXPECT_EQ(converted<std::int32_t>(-2147483649.0), least_int32);
    EXPECT_EQ(converted<std::int32_t>(4294967297.0), least_int32);
}

TEST(FloatToInteger, NarrowSignedTypesKeepTheLowBitsOf32)
{
    EXPECT_EQ(converted<std::int8_t>(2147483647.0), -1);
    EXPECT_EQ(converted<std::int16_t>(2147483647.0), -1);
    EXPECT_EQ(converted<std::int16_t>(65536.0 * 3 - 2), -2);
    // From here on the low bits are those of -2^31.
    for (const double value : {2147483648.0 + 5, 4294967296.0 + 5, -2147483649.0, 0x1p39 + 5, 0x1p63})
    {
        EXPECT_EQ(converted<std::int8_t>(value), 0) << value;
        EXPECT_EQ(converted<std::int16_t>(value), 0) << value;
    }
}

TEST(FloatToInteger, UnsignedTypesKeepTheLowBitsOf64)
{
    EXPECT_EQ(converted<std::uint8_t>(0x1p39 + 5), 5);
    EXPECT_EQ(converted<std::uint16_t>(0x1p39 + 300), 300);
    EXPECT_EQ(converted<std::uint32_t>(0x1p39 + 0x12345), 0x12345u);
    EXPECT_EQ(converted<std::uint8_t>(2147483648.0 + 5), 5);
    EXPECT_EQ(converted<std::uint32_t>(2147483648.0), 0x80000000u);
    EXPECT_EQ(converted<std::uint32_t>(2147483648.0f), 0x80000000u);
    EXPECT_EQ(converted<std::uint32_t>(4294967295.0), 0xffffffffu);
    EXPECT_EQ(converted<std::uint32_t>(0x1p52 + 1), 1u);
    EXPECT_EQ(converted<std::uint8_t>(-0x1p39 - 1), 255);
    EXPECT_EQ(converted<std::uint16_t>(0x1p62), 0);
}

TEST(FloatToInteger, LimitsOfInt64)
{
    const double below = std::nextafter(0x1p63, 0.0);
    EXPECT_EQ(converted<std::int64_t>(below), 0x7ffffffffffffc00);
    EXPECT_EQ(converted<std::int64_t>(std::nextafter(0x1p63f, 0.0f)), 0x7fffff8000000000);
    EXPECT_EQ(converted<std::int64_t>(0x1p63), least_int64);
    EXPECT_EQ(converted<std::int64_t>(0x1p63f), least_int64);
    EXPECT_EQ(converted<std::int64_t>(-0x1p63), least_int64);
    EXPECT_EQ(converted<std::int64_t>(-below), -0x7ffffffffffffc00);
    EXPECT_EQ(converted<std::int64_t>(std::nextafter(-0x1p63, -infinity)), least_int64);
    EXPECT_EQ(converted<std::uint32_t>(below), 0xfffffc00u);
    EXPECT_EQ(converted<std::uint16_t>(below), 0xfc00);
    EXPECT_EQ(converted<std::uint32_t>(0x1p63), 0u);
    EXPECT_EQ(converted<std::uint32_t>(0x1p63 + 2048), 0u);
}

TEST(FloatToInteger, LimitsOfUint64)
{
    EXPECT_EQ(converted<std::uint64_t>(std::nextafter(0x1p63, 0.0)), 0x7ffffffffffffc00u);
    EXPECT_EQ(converted<std::uint64_t>(0x1p63 + 2048), 0x8000000000000800u);
    EXPECT_EQ(converted<std::uint64_t>(0x1.8p63), 0xc000000000000000u);
    EXPECT_EQ(converted<std::uint64_t>(std::nextafter(0x1p64, 0.0)), 0xfffffffffffff800u);
    EXPECT_EQ(converted<std::uint64_t>(0x1p64), top_bit);
    EXPECT_EQ(converted<std::uint64_t>(std::nextafter(0x1p64, infinity)), top_bit);
    EXPECT_EQ(converted<std::uint64_t>(-0x1p63), top_bit);
    EXPECT_EQ(converted<std::uint64_t>(std::nextafter(-0x1p63, -infinity)), top_bit);
    EXPECT_EQ(converted<std::uint64_t>(std::nextafter(-0x1p63, 0.0)), 0x8000000000000400u);

    EXPECT_EQ(converted<std::uint64_t>(0x1p63f), top_bit);
    EXPECT_EQ(converted<std::uint64_t>(std::nextafter(0x1p63f, 0.0f)), 0x7fffff8000000000u);
    EXPECT_EQ(converted<std::uint64_t>(std::nextafter(0x1p64f, 0.0f)), 0xffffff0000000000u);
    EXPECT_EQ(converted<std::uint64_t>(0x1p64f), top_bit);
}

TEST(FloatToInteger, NanAndWhatNoIntegerHoldsGiveTheIndefiniteValueOfTheWidth)
{
    for (const double value : without_integer)
    {
        EXPECT_EQ(converted<std::int8_t>(value), 0) << value;
        EXPECT_EQ(converted<std::int16_t>(value), 0) << value;
        EXPECT_EQ(converted<std::int32_t>(value), least_int32) << value;
        EXPECT_EQ(converted<std::int64_t>(value), least_int64) << value;
        EXPECT_EQ(converted<std::uint8_t>(value), 0) << value;
        EXPECT_EQ(converted<std::uint16_t>(value), 0) << value;
        EXPECT_EQ(converted<std::uint32_t>(value), 0u) << value;
        EXPECT_EQ(converted<std::uint64_t>(value), top_bit) << value;
    }
    for (const float value : without_integer_single)
    {
        EXPECT_EQ(converted<std::int8_t>(value), 0) << value;
        EXPECT_EQ(converted<std::int16_t>(value), 0) << value;
        EXPECT_EQ(converted<std::int32_t>(value), least_int32) << value;
        EXPECT_EQ(converted<std::int64_t>(value), least_int64) << value;
        EXPECT_EQ(converted<std::uint8_t>(value), 0) << value;
        EXPECT_EQ(converted<std::uint16_t>(value), 0) << value;
        EXPECT_EQ(converted<std::uint32_t>(value), 0u) << value;
        EXPECT_EQ(converted<std::uint64_t>(value), top_bit) << value;
    }
}

TEST(FloatToFloat, SingleToDoubleIsExact)
{
    EXPECT_EQ(converted<double>(3.9f), 0x1.f33334p1);
    EXPECT_EQ(converted<double>(std::numeric_limits<float>::max()), 0x1.fffffep127);
    EXPECT_EQ(converted<double>(std::numeric_limits<float>::denorm_min()), 0x1p-149);
    EXPECT_EQ(converted<double>(infinity_single), infinity);
    EXPECT_TRUE(std::signbit(converted<double>(-0.0f)));
}

TEST(FloatToFloat, DoubleToSingleRoundsToTheNearestAndTiesToEven)
{
    EXPECT_EQ(converted<float>(0.1), 0.1f);
    EXPECT_EQ(converted<float>(1.0 + 0x1p-24), 1.0f);
    EXPECT_EQ(converted<float>(1.0 + 0x1p-24 + 0x1p-52), 1.0f + 0x1p-23f);
    EXPECT_EQ(converted<float>(1.0 + 0x1p-23 + 0x1p-24), 1.0f + 0x1p-22f);
    EXPECT_EQ(converted<float>(1.0 + 0x1p-23 + 0x1p-24 - 0x1p-52), 1.0f + 0x1p-23f);
    EXPECT_EQ(converted<float>(-1.0 - 0x1p-24 - 0x1p-52), -1.0f - 0x1p-23f);
}

TEST(FloatToFloat, DoubleBeyondSingleBecomesInfinite)
{
    EXPECT_EQ(converted<float>(0x1.fffffeffffffp127), std::numeric_limits<float>::max());
    EXPECT_EQ(converted<float>(0x1.ffffffp127), infinity_single);
    EXPECT_EQ(converted<float>(1e300), infinity_single);
    EXPECT_EQ(converted<float>(-1e300), -infinity_single);
    EXPECT_EQ(converted<float>(-infinity), -infinity_single);
}

TEST(FloatToFloat, SmallDoublesBecomeDenormalSingles)
{
    EXPECT_EQ(converted<float>(0x1p-149), 0x1p-149f);
    EXPECT_EQ(converted<float>(0x1p-150), 0.0f);
    EXPECT_EQ(converted<float>(std::nextafter(0x1p-150, 1.0)), 0x1p-149f);
    EXPECT_EQ(converted<float>(0x1.8p-149), 0x1p-148f);
    EXPECT_EQ(converted<float>(5e-324), 0.0f);
    EXPECT_TRUE(std::signbit(converted<float>(-5e-324)));
}

TEST(FloatToFloat, NanStaysNan)
{
    EXPECT_TRUE(std::isnan(converted<double>(nan_single)));
    EXPECT_TRUE(std::isnan(converted<float>(nan)));
}

TEST(FloatToFloat, SameTypeCopiesEveryBitOfANan)
{
    for (const std::uint32_t bits : {0x7f800001u, 0xff812345u, 0x7fc00000u, 0x7fffffffu, 0xffc00001u, 0x80000000u})
    {
        std::uint32_t copied = 0;
        EXPECT_EQ(vela_dt_convert(id_of(vela_dt_single), id_of(vela_dt_single), &bits, &copied, 1, nullptr, nullptr),
                  0);
        EXPECT_EQ(copied, bits);
    }
    for (const std::uint64_t bits :
         {0x7ff0000000000001u, 0xfff7ffffffffffffu, 0x7ff8000000000000u, 0xffffffffffffffffu, 0x8000000000000000u})
    {
        const std::uint64_t source = bits;
        std::uint64_t copied = 0;
        EXPECT_EQ(vela_dt_convert(id_of(vela_dt_double), id_of(vela_dt_double), &source, &copied, 1, nullptr, nullptr),
                  0);
        EXPECT_EQ(copied, source);
    }
}

} // namespace
} // namespace vela_test
