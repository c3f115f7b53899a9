// Equality of quantities. Compiled as C++17 and as C++20, whose rules for finding an operator differ.
#include "units/quantities.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using si::fraction;
using si::value;
using namespace vela_test;

void expect_equal(const value& left, const value& right)
{
    EXPECT_TRUE(left == right);
    EXPECT_TRUE(right == left);
    EXPECT_FALSE(left != right);
    EXPECT_FALSE(right != left);
}

void expect_different(const value& left, const value& right)
{
    EXPECT_FALSE(left == right);
    EXPECT_FALSE(right == left);
    EXPECT_TRUE(left != right);
    EXPECT_TRUE(right != left);
}

TEST(ValueComparison, ComparesNumberAndDimension)
{
    expect_equal(value("1500 m"), value("1.5 km"));
    expect_equal(value("1 J"), value("1 N*m"));
    expect_equal(value(), value(1.0));
    expect_different(value("1 m"), value("2 m"));
    expect_different(value("1 m"), value("1 s"));
    expect_different(value("1 m"), value("1 m^2"));
    expect_different(value("1 m"), value(1.0));
    expect_different(value("1 m"), value("-1 m"));
}

TEST(ValueComparison, ExponentsAreComparedLiterally)
{
    expect_different(quantity(1, {{metre, fraction::unreduced(2, 4)}}), quantity(1, {{metre, {1, 2}}}));
    expect_different(quantity(1, {{metre, fraction::unreduced(-1, 2)}}), quantity(1, {{metre, {-1, 2}}}));
    expect_equal(quantity(1, {{metre, fraction::unreduced(2, 4)}}), quantity(1, {{metre, fraction::unreduced(2, 4)}}));
}

TEST(ValueComparison, AnInvalidValueIsUnequalToItself)
{
    const value invalid("nonsense");
    const value& same = invalid;
    expect_different(invalid, same);
    expect_different(invalid, value("nonsense"));
    expect_different(invalid, value());
    expect_different(invalid, value(1.0));
}

TEST(ValueComparison, NumbersNearlyEqualAreEqual)
{
    expect_equal(value(1.0), value(1.0 + 0.9e-9));
    expect_different(value(1.0), value(1.0 + 1.1e-9));
    expect_equal(value(-1.0), value(-1.0 - 0.9e-9));
    expect_different(value(-1.0), value(-1.0 - 1.1e-9));
}

TEST(ValueComparison, TheToleranceIsRelative)
{
    expect_equal(value(1e20), value(1e20 * (1 + 0.9e-9)));
    expect_different(value(1e20), value(1e20 * (1 + 1.1e-9)));
    expect_equal(value(1e-20), value(1e-20 * (1 + 0.9e-9)));
    expect_different(value(1e-20), value(1e-20 * (1 + 1.1e-9)));
    expect_equal(value("1 km"), value("1000.0000009 m"));
    expect_different(value("1 km"), value("1000.0000011 m"));
}

TEST(ValueComparison, ZeroEqualsZeroOnly)
{
    expect_equal(value(0.0), value(0.0));
    expect_equal(value(0.0), value(-0.0));
    expect_equal(value("0 m"), value("0 km"));
    expect_different(value("0 m"), value("0 s"));
    expect_different(value(0.0), value(1e-300));
    expect_different(value(0.0), value(std::numeric_limits<double>::denorm_min()));
}

TEST(ValueComparison, HugeAndTinyNumbers)
{
    const double greatest = std::numeric_limits<double>::max();
    const double least = std::numeric_limits<double>::denorm_min();
    expect_equal(value(greatest), value(greatest));
    expect_different(value(greatest), value(-greatest));
    expect_equal(value(least), value(least));
    expect_different(value(least), value(2 * least));
    expect_different(value(least), value(-least));
}

// The difference over either number is not a number, and that is below nothing.
TEST(ValueComparison, InfiniteNumbersDifferFromThemselves)
{
    const double infinite = std::numeric_limits<double>::infinity();
    expect_different(value(infinite), value(infinite));
    expect_different(value(infinite), value(-infinite));
    expect_different(value(infinite), value(1.0));
    expect_different(value(infinite), value(0.0));
}

TEST(ValueComparison, NotANumberDiffersFromAll)
{
    const value none(std::nan(""));
    const value& same = none;
    expect_different(none, same);
    expect_different(none, value(1.0));
    expect_different(none, value(0.0));
}

template <class Number>
void expect_equal_number(const value& left, Number right)
{
    EXPECT_TRUE(left == right);
    EXPECT_TRUE(right == left);
    EXPECT_FALSE(left != right);
    EXPECT_FALSE(right != left);
}

template <class Number>
void expect_different_number(const value& left, Number right)
{
    EXPECT_FALSE(left == right);
    EXPECT_FALSE(right == left);
    EXPECT_TRUE(left != right);
    EXPECT_TRUE(right != left);
}

TEST(ValueComparison, ANumberIsAValueWithoutDimension)
{
    expect_equal_number(value("5"), 5.0);
    expect_equal_number(value("5"), 5);
    expect_equal_number(value("5"), 5u);
    expect_equal_number(value("5"), 5.0f);
    expect_equal_number(value("5"), 5L);
    expect_equal_number(value("5"), 5.0 + 1e-9);
    expect_equal_number(value("0"), 0);
    expect_different_number(value("5"), 6.0);
    expect_different_number(value("5"), 4);
    expect_different_number(value("5 m"), 5.0);
    expect_different_number(value("nonsense"), 1.0);
    expect_different_number(value("nonsense"), std::nan(""));
}

/// Whether the numbers are close, measured with `scale`.
bool within(double left, double right, double scale)
{
    return std::fabs(left - right) / std::fabs(scale) < 1e-9;
}

// Close to the limit one of the two may call for another answer.
TEST(ValueComparison, BothNumbersHaveToCallTheDifferenceSmall)
{
    std::mt19937_64 random(72001);
    std::uniform_real_distribution<double> any(1, 2);
    int equal = 0;
    int by_one_only = 0;
    for (int i = 0; i < 300000; ++i)
    {
        const double left = any(random);
        double right = left + left * 1e-9;
        if (i % 3 == 0)
            right = std::nextafter(right, 0);
        const bool by_left = within(left, right, left);
        const bool by_right = within(left, right, right);
        by_one_only += by_left != by_right ? 1 : 0;
        equal += by_left && by_right ? 1 : 0;
        ASSERT_EQ(value(left) == value(right), by_left && by_right) << i;
        ASSERT_EQ(value(right) == value(left), by_left && by_right) << i;
    }
    EXPECT_GT(equal, 1000);
    EXPECT_GT(by_one_only, 100);
}

} // namespace
