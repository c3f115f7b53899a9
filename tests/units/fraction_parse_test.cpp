// The text form of fractions, with everything in it that looks wrong and is wanted.
#include "units/quantities.h"

#include <si/fraction.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using si::fraction;
using vela_test::repeated;

/// "numerator/denominator" of what was read, or "no".
std::string parsed(const std::string& text)
{
    fraction result = fraction::unreduced(77, 88);
    return result.parse(text) ? vela_test::text(result) : "no";
}

TEST(FractionParse, ReadsIntegers)
{
    EXPECT_EQ(parsed("3"), "3/1");
    EXPECT_EQ(parsed("-3"), "-3/1");
    EXPECT_EQ(parsed("0"), "0/1");
    EXPECT_EQ(parsed("-0"), "0/1");
    EXPECT_EQ(parsed("1234567890"), "1234567890/1");
    EXPECT_EQ(parsed("007"), "7/1");
    EXPECT_EQ(parsed("2147483647"), "2147483647/1");
    EXPECT_EQ(parsed("-2147483647"), "-2147483647/1");
}

TEST(FractionParse, ReadsNumeratorAndDenominator)
{
    EXPECT_EQ(parsed("1/2"), "1/2");
    EXPECT_EQ(parsed("-1/2"), "-1/2");
    EXPECT_EQ(parsed("0012/0034"), "12/34");
    EXPECT_EQ(parsed("22/7"), "22/7");
    EXPECT_EQ(parsed("1/2147483647"), "1/2147483647");
}

TEST(FractionParse, ReadsThemInParentheses)
{
    EXPECT_EQ(parsed("(1/2)"), "1/2");
    EXPECT_EQ(parsed("(-1/2)"), "-1/2");
    EXPECT_EQ(parsed("(10/20)"), "10/20");
}

TEST(FractionParse, DoesNotReduce)
{
    EXPECT_EQ(parsed("2/4"), "2/4");
    EXPECT_EQ(parsed("(-6/3)"), "-6/3");
    EXPECT_EQ(parsed("0/5"), "0/5");
    EXPECT_EQ(parsed("-4/0"), "-4/0");
}

TEST(FractionParse, OverwritesBothNumbers)
{
    fraction result(5, 7);
    ASSERT_TRUE(result.parse("3"));
    EXPECT_EQ(vela_test::text(result), "3/1");
    ASSERT_TRUE(result.parse("(2/9)"));
    EXPECT_EQ(vela_test::text(result), "2/9");
    ASSERT_TRUE(result.parse("1"));
    EXPECT_EQ(vela_test::text(result), "1/1");
}

TEST(FractionParse, IsOfUseAfterAFailure)
{
    fraction result;
    ASSERT_FALSE(result.parse("5/6x"));
    ASSERT_TRUE(result.parse("4"));
    EXPECT_EQ(vela_test::text(result), "4/1");
}

TEST(FractionParse, AnIntegerInParenthesesFails)
{
    EXPECT_EQ(parsed("(2)"), "no");
    EXPECT_EQ(parsed("(-2)"), "no");
    EXPECT_EQ(parsed("2)"), "no");
    EXPECT_EQ(parsed("()"), "no");
    EXPECT_EQ(parsed("(-)"), "no");
    EXPECT_EQ(parsed(")"), "no");
}

TEST(FractionParse, AClosingParenthesisNeedsNoOpeningOne)
{
    EXPECT_EQ(parsed("1/2)"), "1/2");
    EXPECT_EQ(parsed("-1/2)"), "-1/2");
    EXPECT_EQ(parsed("1/)"), "1/0");
    EXPECT_EQ(parsed("/)"), "0/0");
}

TEST(FractionParse, AnOpeningParenthesisNeedsAClosingOneAtTheEnd)
{
    EXPECT_EQ(parsed("(1/2"), "no");
    EXPECT_EQ(parsed("(1"), "no");
    EXPECT_EQ(parsed("("), "no");
    EXPECT_EQ(parsed("(-"), "no");
    EXPECT_EQ(parsed("(1/2)x"), "no");
    EXPECT_EQ(parsed("(1/2) "), "no");
}

TEST(FractionParse, OneParenthesisOfEachKindAtMost)
{
    EXPECT_EQ(parsed("((1/2))"), "no");
    EXPECT_EQ(parsed("(1/2))"), "no");
    EXPECT_EQ(parsed("((1/2)"), "no");
    EXPECT_EQ(parsed("1/2))"), "no");
    EXPECT_EQ(parsed("1/2)3)"), "no");
    EXPECT_EQ(parsed("(1)/2"), "no");
    EXPECT_EQ(parsed("(1)/(2)"), "no");
    EXPECT_EQ(parsed("1/(2)"), "no");
}

TEST(FractionParse, MissingDigitsCountAsZero)
{
    EXPECT_EQ(parsed(""), "0/1");
    EXPECT_EQ(parsed("-"), "0/1");
    EXPECT_EQ(parsed("/"), "0/0");
    EXPECT_EQ(parsed("-/"), "0/0");
    EXPECT_EQ(parsed("/2"), "0/2");
    EXPECT_EQ(parsed("-/2"), "0/2");
    EXPECT_EQ(parsed("(/)"), "0/0");
    EXPECT_EQ(parsed("(-/3)"), "0/3");
}

TEST(FractionParse, AMissingDenominatorIsZero)
{
    EXPECT_EQ(parsed("1/"), "1/0");
    EXPECT_EQ(parsed("-1/"), "-1/0");
    EXPECT_EQ(parsed("(1/)"), "1/0");
    EXPECT_EQ(parsed("1/0"), "1/0");
}

TEST(FractionParse, ADenominatorHasNoSign)
{
    EXPECT_EQ(parsed("1/-2"), "no");
    EXPECT_EQ(parsed("1/+2"), "no");
    EXPECT_EQ(parsed("(1/-2)"), "no");
    EXPECT_EQ(parsed("1/-"), "no");
}

TEST(FractionParse, OneMinusBehindTheParenthesisIsTheOnlySign)
{
    EXPECT_EQ(parsed("+1"), "no");
    EXPECT_EQ(parsed("--1"), "no");
    EXPECT_EQ(parsed("-+1"), "no");
    EXPECT_EQ(parsed("-(1/2)"), "no");
    EXPECT_EQ(parsed("1-"), "no");
    EXPECT_EQ(parsed("1-/2"), "no");
}

TEST(FractionParse, AnyOtherCharacterFails)
{
    EXPECT_EQ(parsed("a"), "no");
    EXPECT_EQ(parsed("1/2x"), "no");
    EXPECT_EQ(parsed("1x"), "no");
    EXPECT_EQ(parsed("1/2/3"), "no");
    EXPECT_EQ(parsed("1//2"), "no");
    EXPECT_EQ(parsed("1.5"), "no");
    EXPECT_EQ(parsed("1e3"), "no");
    EXPECT_EQ(parsed("0x10"), "no");
    EXPECT_EQ(parsed("1\\2"), "no");
}

TEST(FractionParse, BlanksFailWhereverTheyStand)
{
    EXPECT_EQ(parsed(" 1"), "no");
    EXPECT_EQ(parsed("1 "), "no");
    EXPECT_EQ(parsed("1 /2"), "no");
    EXPECT_EQ(parsed("1/ 2"), "no");
    EXPECT_EQ(parsed("1/2 "), "no");
    EXPECT_EQ(parsed("- 1"), "no");
    EXPECT_EQ(parsed("( 1/2)"), "no");
    EXPECT_EQ(parsed("1/2 )"), "no");
    EXPECT_EQ(parsed(" "), "no");
    EXPECT_EQ(parsed("\t1"), "no");
    EXPECT_EQ(parsed("1\n"), "no");
}

TEST(FractionParse, EveryByteBehindADigitFailsButDigitsAndTheSlash)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const char character = static_cast<char>(byte);
        const bool taken = (character >= '0' && character <= '9') || character == '/';
        EXPECT_EQ(parsed(std::string("1") + character) != "no", taken) << byte;
    }
}

TEST(FractionParse, EveryByteBehindADenominatorFailsButDigitsAndTheParenthesis)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const char character = static_cast<char>(byte);
        const bool taken = (character >= '0' && character <= '9') || character == ')';
        EXPECT_EQ(parsed(std::string("1/2") + character) != "no", taken) << byte;
    }
}

TEST(FractionParse, ANulIsACharacterLikeOthers)
{
    EXPECT_EQ(parsed(std::string("1\0", 2)), "no");
    EXPECT_EQ(parsed(std::string("\0", 1)), "no");
    EXPECT_EQ(parsed(std::string("1/2\0)", 5)), "no");
}

TEST(FractionParse, NumbersAbove32BitsWrapAround)
{
    EXPECT_EQ(parsed("2147483648"), "-2147483648/1");
    EXPECT_EQ(parsed("-2147483648"), "-2147483648/1");
    EXPECT_EQ(parsed("4294967296"), "0/1");
    EXPECT_EQ(parsed("4294967297"), "1/1");
    EXPECT_EQ(parsed("-4294967297"), "-1/1");
    EXPECT_EQ(parsed("1/4294967298"), "1/2");
    EXPECT_EQ(parsed("18446744073709551619"), "3/1"); // 2^64 + 3
}

TEST(FractionParse, LongTextEndsQuickly)
{
    const std::size_t count = 100000;
    EXPECT_EQ(parsed(repeated("(", count)), "no");
    EXPECT_EQ(parsed(repeated("(", count) + "1/2" + repeated(")", count)), "no");
    EXPECT_EQ(parsed(repeated("-", count)), "no");
    EXPECT_EQ(parsed(repeated("0", count) + "5/" + repeated("0", count) + "7"), "5/7");
    EXPECT_EQ(parsed(repeated("/", count)), "no");
}

} // namespace
