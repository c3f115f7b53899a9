// Numbers at the ends of 32 bits: every result wraps around and nothing is undefined.
#include "units/quantities.h"

#include <si/fraction.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using si::fraction;
using vela_test::text;

const int lowest = std::numeric_limits<int>::min();
const int highest = std::numeric_limits<int>::max();

TEST(FractionLimits, TheLowestNumberReduces)
{
    EXPECT_EQ(text(fraction(lowest)), "-2147483648/1");
    EXPECT_EQ(text(fraction(lowest, 1)), "-2147483648/1");
    EXPECT_EQ(text(fraction(lowest, 2)), "-1073741824/1");
    EXPECT_EQ(text(fraction(lowest, 3)), "-2147483648/3"); // remainders -2, 1, 0
    EXPECT_EQ(text(fraction(lowest, -2)), "1073741824/1");
    EXPECT_EQ(text(fraction(lowest, lowest)), "1/1");
    EXPECT_EQ(text(fraction(lowest, 0)), "1/0");
    EXPECT_EQ(text(fraction(0, lowest)), "0/1");
    EXPECT_EQ(text(fraction(1, lowest)), "1/-2147483648");
    EXPECT_EQ(text(fraction(2, lowest)), "1/-1073741824");
    EXPECT_EQ(text(fraction(-2, lowest)), "1/1073741824");
}

TEST(FractionLimits, TheLowestNumberIsItsOwnNegative)
{
    EXPECT_EQ(text(fraction(lowest, -1)), "-2147483648/1");
    EXPECT_EQ(text(fraction(-1, lowest)), "1/-2147483648");
    fraction difference = 0;
    difference -= fraction(lowest);
    EXPECT_EQ(text(difference), "-2147483648/1");
    fraction product(lowest);
    product *= fraction(-1);
    EXPECT_EQ(text(product), "-2147483648/1");
}

TEST(FractionLimits, TheHighestNumberReduces)
{
    EXPECT_EQ(text(fraction(highest, highest)), "1/1");
    EXPECT_EQ(text(fraction(-highest, highest)), "-1/1");
    EXPECT_EQ(text(fraction(highest, 0)), "1/0");
    // -2147483648/2147483647: remainders -1, 0.
    EXPECT_EQ(text(fraction(lowest, highest)), "-2147483648/-2147483647");
}

TEST(FractionLimits, SumsAndDifferencesWrap)
{
    fraction above(highest);
    above += fraction(1);
    EXPECT_EQ(text(above), "-2147483648/1");
    fraction below(lowest);
    below -= fraction(1);
    EXPECT_EQ(text(below), "2147483647/1");
    fraction twice(lowest);
    twice += fraction(lowest);
    EXPECT_EQ(text(twice), "0/1");
}

TEST(FractionLimits, ProductsAndQuotientsWrap)
{
    fraction product(65536);
    product *= fraction(65536);
    EXPECT_EQ(text(product), "0/1");
    product = fraction(65537);
    product *= fraction(65537); // 2^32 + 2^17 + 1
    EXPECT_EQ(text(product), "131073/1");
    fraction quotient(3, 65536);
    quotient /= fraction(65536);
    EXPECT_EQ(text(quotient), "1/0"); // 3/2^32
    quotient = fraction(highest);
    quotient /= fraction(1, 2);
    EXPECT_EQ(text(quotient), "-2/1"); // 2^32 - 2
}

TEST(FractionLimits, ASumWrapsEachOfItsProducts)
{
    fraction sum(1, 65536);
    sum += fraction(1, 65537); // (65536 + 65537) / (2^32 + 2^16)
    EXPECT_EQ(text(sum), "131073/65536");
    fraction lowest_over_itself = fraction::unreduced(lowest, lowest);
    lowest_over_itself += fraction::unreduced(lowest, lowest); // 2 * 2^62 over 2^62
    EXPECT_EQ(text(lowest_over_itself), "0/1");
}

} // namespace
