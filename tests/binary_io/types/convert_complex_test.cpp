#include "binary_io/types/convert_one.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace vela_test {
namespace {

constexpr std::uint32_t complex_of(vela_dt scalar)
{
    return id_of(scalar | vela_dt_complex);
}

TEST(ComplexToComplex, SingleOf1Point5And2Point5AsInt16Is1And2)
{
    EXPECT_EQ(converted<Complex<std::int16_t>>(Complex<float>{1.5f, 2.5f}), (Complex<std::int16_t>{1, 2}));
}

TEST(ComplexToComplex, ConvertsEachPartByTheRulesOfScalars)
{
    EXPECT_EQ(converted<Complex<std::uint8_t>>(Complex<double>{-1.0, 300.0}), (Complex<std::uint8_t>{255, 44}));
    EXPECT_EQ(converted<Complex<std::int32_t>>(Complex<float>{2147483648.0f, -3.9f}),
              (Complex<std::int32_t>{std::numeric_limits<std::int32_t>::min(), -3}));
    EXPECT_EQ(converted<Complex<std::uint64_t>>(Complex<std::int8_t>{-1, 1}),
              (Complex<std::uint64_t>{0xffffffffffffffff, 1}));
    EXPECT_EQ(converted<Complex<double>>(Complex<std::uint64_t>{0xffffffffffffffff, 0x8000000000000401}),
              (Complex<double>{0x1p64, 0x1p63}));
    EXPECT_EQ(converted<Complex<float>>(Complex<double>{1e300, 0x1p-150}),
              (Complex<float>{std::numeric_limits<float>::infinity(), 0.0f}));
}

TEST(ComplexToComplex, SameTypeCopies)
{
    EXPECT_EQ(converted<Complex<std::int8_t>>(Complex<std::int8_t>{-128, 127}), (Complex<std::int8_t>{-128, 127}));
    EXPECT_EQ(converted<Complex<double>>(Complex<double>{0.1, -0.2}), (Complex<double>{0.1, -0.2}));
}

TEST(ScalarToComplex, HasTheImaginaryPartZero)
{
    EXPECT_EQ(converted<Complex<std::int16_t>>(-3.9f), (Complex<std::int16_t>{-3, 0}));
    EXPECT_EQ(converted<Complex<std::uint8_t>>(std::uint8_t{200}), (Complex<std::uint8_t>{200, 0}));
    EXPECT_EQ(converted<Complex<std::int64_t>>(std::int8_t{-1}), (Complex<std::int64_t>{-1, 0}));
    EXPECT_EQ(converted<Complex<std::uint32_t>>(1e10), (Complex<std::uint32_t>{1410065408, 0}));
}

TEST(ScalarToComplex, HasPositiveZeroBesideNegativeAndInfiniteRealParts)
{
    for (const double real : {-1.0, -0.0, std::numeric_limits<double>::infinity()})
    {
        const Complex<float> result = converted<Complex<float>>(real);
        EXPECT_EQ(result[0], static_cast<float>(real));
        EXPECT_EQ(result[1], 0.0f);
        EXPECT_FALSE(std::signbit(result[1]));
    }
}

TEST(Split, PutsRealAndImaginaryPartsIntoTheirOwnArrays)
{
    const std::vector<float> source = {1.5f, 2.5f, -3.9f, 300.0f, -1.0f, 0.0f};
    std::vector<std::uint8_t> real(4, 0xa5);
    std::vector<std::uint8_t> imag(4, 0xa5);
    EXPECT_EQ(vela_dt_convert(complex_of(vela_dt_single), id_of(vela_dt_uint8), source.data(), real.data(), 3, nullptr,
                              imag.data()),
              0);
    EXPECT_EQ(real, (std::vector<std::uint8_t>{1, 253, 255, 0xa5}));
    EXPECT_EQ(imag, (std::vector<std::uint8_t>{2, 44, 0, 0xa5}));
}

TEST(Split, ComplexSingleToSingleWorksWherePlainModeRefuses)
{
    const float source[2] = {1.5f, 2.5f};
    float real = -1;
    float imag = -1;
    EXPECT_EQ(vela_dt_convert(complex_of(vela_dt_single), id_of(vela_dt_single), source, &real, 1, nullptr, nullptr),
              -1);
    EXPECT_EQ(real, -1.0f);
    EXPECT_EQ(vela_dt_convert(complex_of(vela_dt_single), id_of(vela_dt_single), source, &real, 1, nullptr, &imag), 0);
    EXPECT_EQ(real, 1.5f);
    EXPECT_EQ(imag, 2.5f);
}

TEST(Join, TakesRealAndImaginaryPartsFromTheirOwnArrays)
{
    const std::vector<double> real = {1.5, -1.0, 1e10};
    const std::vector<double> imag = {2.5, 65537.0, std::numeric_limits<double>::quiet_NaN()};
    std::vector<std::uint16_t> target(8, 0xa5a5);
    EXPECT_EQ(vela_dt_convert(id_of(vela_dt_double), complex_of(vela_dt_uint16), real.data(), target.data(), 3,
                              imag.data(), nullptr),
              0);
    EXPECT_EQ(target, (std::vector<std::uint16_t>{1, 2, 0xffff, 1, 0xe400, 0, 0xa5a5, 0xa5a5}));
}

TEST(Join, UndoesSplit)
{
    const std::vector<std::int32_t> source = {1, -2, 3, -4, std::numeric_limits<std::int32_t>::min(), 6, 7, 8};
    std::vector<std::int32_t> real(4);
    std::vector<std::int32_t> imag(4);
    std::vector<std::int32_t> joined(8);
    EXPECT_EQ(vela_dt_convert(complex_of(vela_dt_int32), id_of(vela_dt_int32), source.data(), real.data(), 4, nullptr,
                              imag.data()),
              0);
    EXPECT_EQ(real, (std::vector<std::int32_t>{1, 3, std::numeric_limits<std::int32_t>::min(), 7}));
    EXPECT_EQ(imag, (std::vector<std::int32_t>{-2, -4, 6, 8}));
    EXPECT_EQ(vela_dt_convert(id_of(vela_dt_int32), complex_of(vela_dt_int32), real.data(), joined.data(), 4,
                              imag.data(), nullptr),
              0);
    EXPECT_EQ(joined, source);
}

TEST(Join, MayTakeBothPartsFromOneArray)
{
    const std::uint8_t source[3] = {1, 2, 3};
    std::vector<std::int16_t> target(6);
    EXPECT_EQ(
        vela_dt_convert(id_of(vela_dt_uint8), complex_of(vela_dt_int16), source, target.data(), 3, source, nullptr), 0);
    EXPECT_EQ(target, (std::vector<std::int16_t>{1, 1, 2, 2, 3, 3}));
}

} // namespace
} // namespace vela_test
