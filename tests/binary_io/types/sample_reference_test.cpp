#include "binary_io/types/sample_reference.h"
#include "binary_io/types/sample_values.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

// The reference that the converter is held against is itself held against literals, and against the
// casts of the language where these are defined.

namespace vela_test {
namespace {

template <typename Word>
Word word_of(std::uint64_t bits)
{
    Word word;
    unsigned char bytes[8];
    store_bits(sizeof(Word), bytes, bits);
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

template <typename Word>
std::uint64_t pattern_of(Word word)
{
    unsigned char bytes[sizeof(Word)];
    std::memcpy(bytes, &word, sizeof word);
    return load_bits(sizeof(Word), bytes);
}

TEST(SampleReference, DecodesWholeNumbersWithTheirSign)
{
    EXPECT_EQ(decode(uint8_kind, 0xff).magnitude, 255u);
    EXPECT_FALSE(decode(uint8_kind, 0xff).negative);
    EXPECT_EQ(decode(int8_kind, 0x80).magnitude, 128u);
    EXPECT_TRUE(decode(int8_kind, 0x80).negative);
    EXPECT_EQ(decode(int64_kind, 0x8000000000000000).magnitude, 0x8000000000000000);
    EXPECT_EQ(decode(int16_kind, 0xfffe).magnitude, 2u);
}

TEST(SampleReference, TruncatesTowardZeroAndGivesTheIndefiniteValueBeyond)
{
    EXPECT_EQ(truncated(decode(double_kind, bits_of(3.9)), 32), 3u);
    EXPECT_EQ(truncated(decode(double_kind, bits_of(-3.9)), 32), static_cast<std::uint64_t>(-3));
    EXPECT_EQ(truncated(decode(double_kind, bits_of(2147483647.5)), 32), 2147483647u);
    EXPECT_EQ(truncated(decode(double_kind, bits_of(2147483648.0)), 32), 0xffffffff80000000u);
    EXPECT_EQ(truncated(decode(double_kind, bits_of(-2147483648.5)), 32), 0xffffffff80000000u);
    EXPECT_EQ(truncated(decode(double_kind, bits_of(-2147483649.0)), 32), 0xffffffff80000000u);
    EXPECT_EQ(truncated(decode(double_kind, bits_of(2147483648.0)), 64), 2147483648u);
    EXPECT_EQ(truncated(decode(double_kind, bits_of(1e300)), 64), 0x8000000000000000u);
    EXPECT_EQ(truncated(decode(double_kind, 0x7ff0000000000001), 64), 0x8000000000000000u);
    EXPECT_EQ(truncated(decode(double_kind, 1), 64), 0u);
    EXPECT_EQ(truncated(decode(single_kind, 0x80000001), 32), 0u);
}

TEST(SampleReference, RoundsToTheNearestFloatAndTiesToEven)
{
    EXPECT_EQ(nearest_float(single_kind, false, 1, 0), 0x3f800000u);
    EXPECT_EQ(nearest_float(single_kind, true, 0, 0), 0x80000000u);
    EXPECT_EQ(nearest_float(single_kind, false, 16777217, 0), 0x4b800000u);
    EXPECT_EQ(nearest_float(single_kind, false, 16777219, 0), 0x4b800002u);
    EXPECT_EQ(nearest_float(single_kind, false, 1, 128), 0x7f800000u);
    EXPECT_EQ(nearest_float(single_kind, false, 33554431, 103), 0x7f800000u);
    EXPECT_EQ(nearest_float(single_kind, false, 1, -149), 1u);
    EXPECT_EQ(nearest_float(single_kind, false, 1, -150), 0u);
    EXPECT_EQ(nearest_float(single_kind, false, 3, -150), 2u);
    EXPECT_EQ(nearest_float(single_kind, false, 0x1ffffff, -151), 0x00800000u);
    EXPECT_EQ(nearest_float(double_kind, true, 5, -1), 0xc004000000000000u);
    EXPECT_EQ(nearest_float(double_kind, false, (Wide{1} << 64) - 1, 0), 0x43f0000000000000u);
}

/// Compares the reference with `static_cast` for all values that `is_in_range` lets through.
template <typename Source, typename Target, typename InRange>
void expect_same_as_cast(const ScalarKind& source, const ScalarKind& target, const InRange& is_in_range)
{
    std::size_t compared = 0;
    for (const std::uint64_t bits : mixed_values(source, 8000, 0x5eed))
    {
        const Source value = word_of<Source>(bits);
        if (!is_in_range(value))
            continue;
        ++compared;
        ASSERT_EQ(converted_bits(source, target, bits), pattern_of(static_cast<Target>(value)))
            << source.name << " to " << target.name << " of " << value;
    }
    EXPECT_GT(compared, 1000u);
}

TEST(SampleReference, AgreesWithCastsOfFloatsInRange)
{
    const auto fits_32 = [](auto value)
    { return static_cast<double>(value) > -2147483649.0 && static_cast<double>(value) < 2147483648.0; };
    const auto fits_64 = [](auto value)
    { return static_cast<double>(value) >= -0x1p63 && static_cast<double>(value) < 0x1p63; };
    const auto fits_unsigned = [](auto value)
    { return static_cast<double>(value) > -1.0 && static_cast<double>(value) < 0x1p64; };
    const auto is_number = [](auto value) { return value == value; };
    expect_same_as_cast<double, std::int32_t>(double_kind, int32_kind, fits_32);
    expect_same_as_cast<double, std::int64_t>(double_kind, int64_kind, fits_64);
    expect_same_as_cast<double, std::uint64_t>(double_kind, uint64_kind, fits_unsigned);
    expect_same_as_cast<float, std::int32_t>(single_kind, int32_kind, fits_32);
    expect_same_as_cast<float, std::int64_t>(single_kind, int64_kind, fits_64);
    expect_same_as_cast<float, std::uint64_t>(single_kind, uint64_kind, fits_unsigned);
    expect_same_as_cast<float, double>(single_kind, double_kind, is_number);
    expect_same_as_cast<double, float>(double_kind, single_kind, is_number);
}

TEST(SampleReference, AgreesWithCastsOfIntegers)
{
    const auto all = [](auto) { return true; };
    const auto without_top_bit = [](std::uint64_t value) { return value >> 63 == 0; };
    expect_same_as_cast<std::int64_t, float>(int64_kind, single_kind, all);
    expect_same_as_cast<std::int64_t, double>(int64_kind, double_kind, all);
    expect_same_as_cast<std::uint32_t, float>(uint32_kind, single_kind, all);
    expect_same_as_cast<std::int32_t, float>(int32_kind, single_kind, all);
    expect_same_as_cast<std::int32_t, double>(int32_kind, double_kind, all);
    expect_same_as_cast<std::uint64_t, float>(uint64_kind, single_kind, without_top_bit);
    expect_same_as_cast<std::uint64_t, double>(uint64_kind, double_kind, without_top_bit);
    expect_same_as_cast<std::int32_t, std::uint8_t>(int32_kind, uint8_kind, all);
    expect_same_as_cast<std::int32_t, std::uint64_t>(int32_kind, uint64_kind, all);
    expect_same_as_cast<std::uint32_t, std::int64_t>(uint32_kind, int64_kind, all);
    expect_same_as_cast<std::uint64_t, std::int16_t>(uint64_kind, int16_kind, all);
}

TEST(SampleReference, RoundsLargeUint64Twice)
{
    EXPECT_EQ(float_of_uint64(double_kind, 0x8000000000000401), bits_of(0x1p63));
    EXPECT_EQ(float_of_uint64(double_kind, 0x8000000000000bff), bits_of(0x1p63 + 4096));
    EXPECT_EQ(float_of_uint64(single_kind, 0x8000008000000001), bits_of(0x1p63f));
    EXPECT_EQ(float_of_uint64(double_kind, 0xffffffffffffffff), bits_of(0x1p64));
}

} // namespace
} // namespace vela_test
