#include "json/number_text.h"

#include "support/comma_locale.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

namespace {

using Json::detail::read_decimal;
using Json::detail::read_integer;
using Json::detail::StreamedNumber;

template <class T>
StreamedNumber<T> read_from_stream(const std::string& text)
{
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    T value{};
    stream >> value;
    return {value, stream.fail(), stream.eof()};
}

bool same(std::int64_t left, std::int64_t right)
{
    return left == right;
}

bool same(double left, double right)
{
    return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

template <class T>
bool same(const StreamedNumber<T>& left, const StreamedNumber<T>& right)
{
    return same(left.value, right.value) && left.failed == right.failed && left.at_end == right.at_end;
}

/// Empty where both readings are those of the stream.
std::string difference(const std::string& text)
{
    if (!same(read_integer(text), read_from_stream<std::int64_t>(text)))
        return "integer '" + text + "'";
    if (!same(read_decimal(text), read_from_stream<double>(text)))
        return "decimal '" + text + "'";
    return "";
}

std::string random_text(std::mt19937& random, const std::string& alphabet, std::size_t max_size)
{
    std::string text(random() % (max_size + 1), ' ');
    for (char& c : text)
        c = alphabet[random() % alphabet.size()];
    return text;
}

TEST(NumberText, EveryShortTextIsReadAsTheStreamReadsIt)
{
    const std::string alphabet = "-+.eE079";
    std::size_t count = 1;
    for (std::size_t size = 0; size <= 5; ++size, count *= alphabet.size())
    {
        std::string text(size, ' ');
        for (std::size_t number = 0; number < count; ++number)
        {
            std::size_t rest = number;
            for (char& c : text)
            {
                c = alphabet[rest % alphabet.size()];
                rest /= alphabet.size();
            }
            ASSERT_EQ(difference(text), "");
        }
    }
}

TEST(NumberText, LongTextsAreReadAsTheStreamReadsThem)
{
    std::mt19937 random(8201);
    for (int i = 0; i < 20000; ++i)
    {
        const std::string digits = random_text(random, "0123456789", 25);
        const std::string more_digits = random_text(random, "0123456789", 25);
        const std::string exponent = random_text(random, "0123456789", 3);
        ASSERT_EQ(difference(digits), "");
        ASSERT_EQ(difference("-" + digits + "." + more_digits), "");
        ASSERT_EQ(difference(digits + "." + more_digits + "e-" + exponent), "");
        ASSERT_EQ(difference(digits + "E" + exponent), "");
        ASSERT_EQ(difference(random_text(random, "0123456789+-.eE", 40)), "");
    }
}

TEST(NumberText, TextsThatNoNumberBeginsWithAreReadAsTheStreamReadsThem)
{
    for (const char* text :
         {"",      " ",   " 5",    "5 ",    "\t-5", "inf", "-inf", "nan",  "nan(1)", "-nan", "infinity", "INF", "0x10",
          "0X1p3", "1p3", "1,000", "1'000", "5x",   "x5",  "true", "1e5x", "1.5 ",   ".5.",  "-.",       "1_0"})
        EXPECT_EQ(difference(text), "");
    EXPECT_EQ(difference(std::string("1\0", 2)), "");
    EXPECT_EQ(difference("1\xb2"), "");
}

TEST(NumberText, LimitsAreReadAsTheStreamReadsThem)
{
    for (const char* text :
         {"9223372036854775807", "9223372036854775808", "-9223372036854775808", "-9223372036854775809",
          "00000000000000000000000000000000000001", "99999999999999999999.5", "1.7976931348623157e308",
          "1.7976931348623159e308", "-1e309", "1e-400", "-1e-400", "4.9e-324", "2.4e-324", "2.5e-324",
          "2.2250738585072011e-308", "2.2250738585072012e-308", "9007199254740993.0", "1e99999999999999999999"})
        EXPECT_EQ(difference(text), "");
    EXPECT_EQ(difference("0." + std::string(400, '0') + "1e400"), "");
    EXPECT_EQ(difference(std::string(5000, '9')), "");
    EXPECT_EQ(difference("0." + std::string(5000, '3')), "");
}

TEST(NumberText, AFailedReadLeavesTheNearestNumber)
{
    const auto integer = read_integer("99999999999999999999");
    EXPECT_EQ(integer.value, std::numeric_limits<std::int64_t>::max());
    EXPECT_TRUE(integer.failed);
    EXPECT_TRUE(integer.at_end);
    const auto minus = read_integer("-");
    EXPECT_EQ(minus.value, 0);
    EXPECT_TRUE(minus.failed);
    EXPECT_TRUE(minus.at_end);
    const auto decimal = read_decimal("1.5e");
    EXPECT_EQ(decimal.value, 0.0);
    EXPECT_TRUE(decimal.failed);
    EXPECT_TRUE(decimal.at_end);
    const auto two_points = read_decimal("1.5.2");
    EXPECT_EQ(two_points.value, 1.5);
    EXPECT_FALSE(two_points.failed);
    EXPECT_FALSE(two_points.at_end);
}

TEST(NumberText, TheGlobalLocaleHasNoSay)
{
    const vela_test::CommaLocale locale;
    for (const char* text : {"1.5", "1,5", "1.000", "1.5e", "-1.000.000", "99999999999999999999", "1e999"})
        EXPECT_EQ(difference(text), "");
    EXPECT_EQ(read_decimal("1.5").value, 1.5);
    EXPECT_EQ(read_decimal("1.5+").value, 1.5); // by way of the stream
}

}
