// The C library, in its "C" locale, says what is right.
#include "units/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace si;

namespace {

void expect_read_as_by_the_c_library(const std::string& text)
{
    double expected = 7;
    double number = 7;
    const bool is_number = std::sscanf(text.c_str(), "%lf", &expected) == 1;
    ASSERT_EQ(read_number(text, number), is_number) << text;
    if (!is_number)
        return;
    EXPECT_EQ(std::memcmp(&number, &expected, sizeof number), 0) << text << ": " << number << ", not " << expected;
}

/// A number as the parser of quantities hands it on: one leading character, then digits, one point, one exponent.
std::string random_number(std::mt19937& random)
{
    const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    const auto digits = [&](unsigned most)
    {
        std::string text;
        for (unsigned i = below(most + 1); i > 0; --i)
            text += static_cast<char>('0' + below(10));
        return text;
    };
    const auto one_of = [&](const std::string& characters) { return characters[below(unsigned(characters.size()))]; };
    std::string text = below(2) == 0 ? std::string(1, one_of("+-.")) : "";
    text += digits(25);
    if (below(2) == 0 && text.find('.') == std::string::npos)
        text += "." + digits(25);
    if (below(2) == 0)
        text += std::string(1, one_of("eE")) + (below(2) == 0 ? std::string(1, one_of("+-")) : "") + digits(3);
    return text;
}

std::string printed(double number, int precision)
{
    std::vector<char> buffer(static_cast<std::size_t>(std::snprintf(nullptr, 0, "%.*f", precision, number)) + 1);
    std::snprintf(buffer.data(), buffer.size(), "%.*f", precision, number);
    return buffer.data();
}

} // namespace

TEST(ReadNumberTest, OddTextsReadAsByTheCLibrary)
{
    for (const char* const text :
         {"0",  "5.", ".5",  "+.5", "-.5", "+5",  "-0",    "-0.0e5", "+",    "-",     ".",
          "-.", "+.", ".e5", "+e5", "1e+", "1e-", "1e5.3", "1e+.5",  "1.e3", "00012", "0e99999999999999999999",
          "1E3"})
        expect_read_as_by_the_c_library(text);
}

TEST(ReadNumberTest, NumbersBeyondTheRangeAreInfiniteOrZero)
{
    for (const char* const text : {"1e308",
                                   "1.7976931348623157e308",
                                   "1.7976931348623159e308",
                                   "1e309",
                                   "-1e309",
                                   "1e+999",
                                   "1e999.5",
                                   "1e99999999999999999999",
                                   "-1e99999999999999999999",
                                   "2.2250738585072014e-308",
                                   "1e-310",
                                   "4.9e-324",
                                   "2.5e-324",
                                   "2.4e-324",
                                   "-2.4e-324",
                                   "1e-999",
                                   "+1e-99999999999999999999",
                                   "0.00000000000000000001e-310",
                                   "0.00000000000000000001e340",
                                   "12345678901234567890e300",
                                   "12345678901234567890e-350"})
        expect_read_as_by_the_c_library(text);
    expect_read_as_by_the_c_library(std::string(400, '9'));
    expect_read_as_by_the_c_library("-." + std::string(400, '0') + "1");
    expect_read_as_by_the_c_library("0." + std::string(400, '0') + "1e800");
    expect_read_as_by_the_c_library("1" + std::string(400, '0') + "e-800");
}

TEST(ReadNumberTest, ExponentsAtTheEndsOfTheIntegersReadAsByTheCLibrary)
{
    for (const char* const exponent : {"9223372036854775806", "9223372036854775807", "9223372036854775808",
                                       "1000000000000000000", "999999999999999999", "2147483648"})
        for (const char* const digits : {"12", "1", "0.01", "-0.01", "-12", "+.5", "1.", "0", "-0"})
            for (const char* const mark : {"e", "E+", "e-"})
                expect_read_as_by_the_c_library(std::string(digits) + mark + exponent);
}

TEST(ReadNumberTest, RandomTextsReadAsByTheCLibrary)
{
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i)
        expect_read_as_by_the_c_library(random_number(random));
}

TEST(FixedTextTest, PrintsAsTheCLibrary)
{
    for (const double number :
         {0.0, -0.0, 0.5, 1.5, 2.5, 999.9995, -999.9996, 0.01, 1e308, 5e-324, 2.2250738585072014e-308,
          std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()})
        for (const int precision : {-2147483647 - 1, -1, 0, 1, 3, 6, 17, 1073, 1074, 1075, 5000})
            EXPECT_EQ(fixed_text(number, precision), printed(number, precision)) << number << " " << precision;
    EXPECT_EQ(fixed_text(std::numeric_limits<double>::quiet_NaN(), 3), "nan");
    EXPECT_EQ(fixed_text(-std::numeric_limits<double>::quiet_NaN(), 3), "-nan");
}

TEST(FixedTextTest, RandomNumbersPrintAsByTheCLibrary)
{
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> exponent(-20, 20);
    std::uniform_real_distribution<double> mantissa(-10, 10);
    for (int i = 0; i < 20000; ++i)
    {
        const double number = mantissa(random) * std::pow(10, exponent(random));
        const int precision = static_cast<int>(random() % 30);
        ASSERT_EQ(fixed_text(number, precision), printed(number, precision)) << precision;
    }
}
