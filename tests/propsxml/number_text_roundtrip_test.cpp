// Text of numbers against the streams of the standard library, over random bits and numbers where something changes.
#include "propsxml/stream_numbers.h"
#include "propsxml/xml_check.h"
#include "support/rounds.h"

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace {

using xml_test::same_bits;
using xml_test::stream_text;

constexpr std::size_t count_patterns = vela_test::rounds(300000);

/// The text of `value` alone, and what is read from that text.
template <class T>
void check_text(T value)
{
    const std::string text = vela_val2string(VProp(value));
    ASSERT_EQ(text, stream_text(value));
    const T read = vela_string2val(text, VProp::type_id<T>).template get<T>();
    if (std::isnan(value))
        ASSERT_TRUE(std::isnan(read));
    else
        ASSERT_TRUE(same_bits(read, value)) << text;
}

template <class T, class Bits>
void check_random_patterns(std::uint32_t seed)
{
    std::mt19937_64 random(seed);
    for (std::size_t i = 0; i < count_patterns && !testing::Test::HasFatalFailure(); ++i)
    {
        const Bits bits = static_cast<Bits>(random());
        T value;
        std::memcpy(&value, &bits, sizeof value);
        check_text(value);
    }
}

TEST(NumberText, OfRandomFloatsIsThatOfAStream)
{
    check_random_patterns<float, std::uint32_t>(11);
}

TEST(NumberText, OfRandomDoublesIsThatOfAStream)
{
    check_random_patterns<double, std::uint64_t>(12);
}

template <class T>
void check_around(T value)
{
    for (int side = 0; side < 2 && !testing::Test::HasFatalFailure(); ++side)
    {
        T neighbour = value;
        for (int step = 0; step < 4; ++step)
        {
            check_text(neighbour);
            check_text(-neighbour);
            neighbour = std::nextafter(neighbour, side == 0 ? std::numeric_limits<T>::infinity() : T(0));
        }
    }
}

/// Where the form of the text changes, and where decimal digits tie.
template <class T>
void check_special_numbers()
{
    using Limits = std::numeric_limits<T>;
    for (int exponent = Limits::min_exponent - Limits::digits - 1; exponent <= Limits::max_exponent; ++exponent)
        check_around(std::ldexp(T(1), exponent));
    for (int exponent = Limits::min_exponent10; exponent <= Limits::max_exponent10; ++exponent)
        check_around(static_cast<T>(std::pow(T(10), exponent)));
    for (int number = 0; number < static_cast<int>(vela_test::rounds(100000)); ++number)
    {
        check_text(static_cast<T>(number));
        check_text(static_cast<T>(number) / 1000);
    }
    std::mt19937_64 random(13);
    for (std::size_t i = 0; i < vela_test::rounds(100000); ++i) // many digits, and often exactly half of the last one
        check_text(std::ldexp(static_cast<T>(random() >> 40 | 1), static_cast<int>(random() % 160) - 80));
    check_text(T(0));
    check_text(-T(0));
    check_text(Limits::max());
    check_text(Limits::denorm_min());
    check_text(Limits::min());
    check_text(Limits::infinity());
    check_text(-Limits::infinity());
    check_text(Limits::quiet_NaN());
}

TEST(NumberText, OfSpecialNumbersIsThatOfAStream)
{
    check_special_numbers<float>();
    check_special_numbers<double>();
}

TEST(NumberText, OfAnArrayIsThatOfItsElementsWithBlanks)
{
    std::mt19937_64 random(14);
    VProparray<double> doubles;
    VProparray<std::complex<float>> pairs;
    std::string expected_doubles;
    std::string expected_pairs;
    for (int i = 0; i < 20000; ++i)
    {
        const std::uint64_t bits = random();
        double value;
        float parts[2];
        std::memcpy(&value, &bits, sizeof value);
        std::memcpy(parts, &bits, sizeof parts);
        doubles.push_back(value);
        pairs.push_back({parts[0], parts[1]});
        expected_doubles += (i == 0 ? "" : " ") + stream_text(value);
        expected_pairs += (i == 0 ? "(" : " (") + stream_text(parts[0]) + "," + stream_text(parts[1]) + ")";
    }
    EXPECT_EQ(vela_val2string(VProp(doubles)), expected_doubles);
    EXPECT_EQ(vela_val2string(VProp(pairs)), expected_pairs);
}

}
