// Fractions as values: construction, copies, literal comparison, and arithmetic that reduces.
#include "units/quantities.h"

#include <si/fraction.h>

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace {

using si::fraction;
using vela_test::text;

static_assert(!std::is_polymorphic_v<fraction>, "no virtual operation");
static_assert(sizeof(fraction) == 2 * sizeof(int));
static_assert(std::is_standard_layout_v<fraction> && std::is_trivially_copyable_v<fraction>);
static_assert(std::is_convertible_v<int, fraction>);
static_assert(std::is_default_constructible_v<fraction>);
static_assert(std::is_copy_constructible_v<fraction> && std::is_copy_assignable_v<fraction>);
static_assert(std::is_constructible_v<fraction, int, int>);

TEST(Fraction, TheNumeratorStandsBeforeTheDenominator)
{
    const fraction three_quarters(3, 4);
    int fields[2] = {0, 0};
    std::memcpy(fields, &three_quarters, sizeof fields);
    EXPECT_EQ(fields[0], 3);
    EXPECT_EQ(fields[1], 4);
}

TEST(Fraction, TheDefaultIsZeroOverOne)
{
    EXPECT_EQ(text(fraction()), "0/1");
}

TEST(Fraction, AnIntegerIsOverOne)
{
    EXPECT_EQ(text(fraction(7)), "7/1");
    EXPECT_EQ(text(fraction(-7)), "-7/1");
    EXPECT_EQ(text(fraction(0)), "0/1");
    const fraction converted = 3;
    EXPECT_EQ(text(converted), "3/1");
}

TEST(Fraction, TwoNumbersAreReduced)
{
    EXPECT_EQ(text(fraction(2, 4)), "1/2");
    EXPECT_EQ(text(fraction(6, 3)), "2/1");
    EXPECT_EQ(text(fraction(12, 18)), "2/3");
    EXPECT_EQ(text(fraction(35, 64)), "35/64");
    EXPECT_EQ(text(fraction(1, 1)), "1/1");
    EXPECT_EQ(text(fraction(510510, 9699690)), "1/19");
}

TEST(Fraction, ZeroOverAnythingIsZeroOverOne)
{
    EXPECT_EQ(text(fraction(0, 5)), "0/1");
    EXPECT_EQ(text(fraction(0, -5)), "0/1");
    EXPECT_EQ(text(fraction(0, 0)), "0/1");
}

TEST(Fraction, UnreducedKeepsBothNumbers)
{
    EXPECT_EQ(text(fraction::unreduced(2, 4)), "2/4");
    EXPECT_EQ(text(fraction::unreduced(-1, 2)), "-1/2");
    EXPECT_EQ(text(fraction::unreduced(0, 5)), "0/5");
    EXPECT_EQ(text(fraction::unreduced(3, 0)), "3/0");
    EXPECT_EQ(text(fraction::unreduced(-4, -6)), "-4/-6");
}

TEST(Fraction, CopiesKeepBothNumbersAsTheyAre)
{
    const fraction odd = fraction::unreduced(-6, 0);
    const fraction copied(odd);
    EXPECT_EQ(text(copied), "-6/0");
    fraction assigned(1, 3);
    EXPECT_EQ(&(assigned = odd), &assigned);
    EXPECT_EQ(text(assigned), "-6/0");
    EXPECT_EQ(text(odd), "-6/0");
    assigned = fraction::unreduced(0, 8);
    EXPECT_EQ(text(assigned), "0/8");
    assigned = 2;
    EXPECT_EQ(text(assigned), "2/1");
}

void expect_equal(const fraction& left, const fraction& right)
{
    EXPECT_TRUE(left == right) << text(left) << " " << text(right);
    EXPECT_FALSE(left != right) << text(left) << " " << text(right);
}

void expect_different(const fraction& left, const fraction& right)
{
    EXPECT_FALSE(left == right) << text(left) << " " << text(right);
    EXPECT_TRUE(left != right) << text(left) << " " << text(right);
    EXPECT_FALSE(right == left) << text(left) << " " << text(right);
    EXPECT_TRUE(right != left) << text(left) << " " << text(right);
}

TEST(Fraction, ComparesBothNumbersLiterally)
{
    expect_equal(fraction(1, 2), fraction(1, 2));
    expect_equal(fraction(2, 4), fraction(1, 2));
    expect_equal(fraction::unreduced(2, 4), fraction::unreduced(2, 4));
    expect_equal(fraction(3), 3);
    expect_different(fraction(1, 2), fraction(1, 3));
    expect_different(fraction(1, 2), fraction(3, 2));
    expect_different(fraction(1, 2), fraction(2, 1));
}

TEST(Fraction, WhatIsNotReducedDiffersFromItsEqual)
{
    expect_different(fraction::unreduced(2, 4), fraction(1, 2));
    expect_different(fraction::unreduced(0, 5), fraction());
}

TEST(Fraction, ASignInTheDenominatorDiffersFromItsEqual)
{
    expect_different(fraction::unreduced(-1, 2), fraction::unreduced(1, -2));
    expect_different(fraction::unreduced(-1, -2), fraction(1, 2));
}

TEST(Fraction, MinusHalfIsOneOverMinusTwo)
{
    EXPECT_EQ(text(fraction(-1, 2)), "1/-2");
}

TEST(Fraction, MinusHalfDiffersFromTheSameTextBeforeReduce)
{
    fraction parsed;
    ASSERT_TRUE(parsed.parse("-1/2"));
    EXPECT_EQ(text(parsed), "-1/2");
    expect_different(fraction(-1, 2), parsed);
    parsed.reduce();
    expect_equal(fraction(-1, 2), parsed);
}

struct Reduction
{
    int numerator;
    int denominator;
    const char* reduced;
};

// Each by Euclid's loop with truncating remainders, on paper.
const Reduction reductions[] = {
    {-1, 2, "1/-2"}, {1, -2, "1/-2"},   {-1, -2, "1/2"},    {-2, 4, "1/-2"}, {2, -4, "1/-2"}, {-2, -4, "1/2"},
    {-4, 2, "-2/1"}, {4, -2, "-2/1"},   {-4, -2, "2/1"},    {-3, 1, "-3/1"}, {3, -1, "-3/1"}, {-1, 1, "-1/1"},
    {1, -1, "-1/1"}, {-1, -1, "1/1"},   {-3, 2, "3/-2"},    {3, -2, "3/-2"}, {-3, -2, "3/2"}, {-5, 3, "-5/3"},
    {5, -3, "-5/3"}, {-5, -3, "5/3"},   {-2, 3, "-2/3"},    {2, -3, "-2/3"}, {-7, 3, "7/-3"}, {7, -3, "7/-3"},
    {-6, 4, "3/-2"}, {-10, 15, "-2/3"}, {5, 0, "1/0"},      {-5, 0, "1/0"},  {0, 7, "0/1"},   {0, -7, "0/1"},
    {0, 0, "0/1"},   {100, 75, "4/3"},  {-100, 75, "4/-3"}, {-8, 5, "8/-5"}, {8, -5, "8/-5"},
};

TEST(FractionReduce, KeepsTheSignOfEuclidsLoop)
{
    for (const Reduction& row : reductions)
    {
        fraction given = fraction::unreduced(row.numerator, row.denominator);
        given.reduce();
        EXPECT_EQ(text(given), row.reduced) << row.numerator << "/" << row.denominator;
        EXPECT_EQ(text(fraction(row.numerator, row.denominator)), row.reduced) << "by the constructor";
    }
}

TEST(FractionReduce, OneOverMinusTwoIsStable)
{
    fraction half(-1, 2);
    half.reduce();
    half.reduce();
    EXPECT_EQ(text(half), "1/-2");
}

TEST(FractionReduce, AZeroDenominatorLosesTheSign)
{
    EXPECT_EQ(text(fraction(9, 0)), "1/0");
    EXPECT_EQ(text(fraction(-9, 0)), "1/0");
    EXPECT_EQ(text(fraction(1, 0)), "1/0");
    EXPECT_EQ(text(fraction(0, 0)), "0/1");
}

// Arithmetic

fraction product(fraction left, const fraction& right)
{
    return left *= right;
}
fraction quotient(fraction left, const fraction& right)
{
    return left /= right;
}
fraction sum(fraction left, const fraction& right)
{
    return left += right;
}
fraction difference(fraction left, const fraction& right)
{
    return left -= right;
}

TEST(FractionArithmetic, HalfPlusThirdIsFiveSixths)
{
    EXPECT_EQ(text(sum(fraction(1, 2), fraction(1, 3))), "5/6");
}

TEST(FractionArithmetic, ResultsAreReduced)
{
    EXPECT_EQ(text(product({2, 3}, {3, 4})), "1/2");
    EXPECT_EQ(text(quotient({2, 3}, {4, 3})), "1/2");
    EXPECT_EQ(text(sum({1, 6}, {1, 3})), "1/2");
    EXPECT_EQ(text(difference({5, 6}, {1, 3})), "1/2");
    EXPECT_EQ(text(difference({1, 2}, {1, 2})), "0/1");
    EXPECT_EQ(text(product({1, 2}, 0)), "0/1");
    EXPECT_EQ(text(product({1, 2}, 2)), "1/1");
    EXPECT_EQ(text(sum(2, 3)), "5/1");
    EXPECT_EQ(text(difference(2, 3)), "-1/1");
    EXPECT_EQ(text(quotient(2, 3)), "2/3");
}

TEST(FractionArithmetic, TheOrderOfADifferenceAndOfAQuotientCounts)
{
    EXPECT_EQ(text(difference({3, 4}, {1, 2})), "1/4");
    EXPECT_EQ(text(difference({1, 2}, {3, 4})), "1/-4"); // -2/8: (-2, 8), (8, -2), (-2, 0)
    EXPECT_EQ(text(quotient({3, 4}, {1, 2})), "3/2");
    EXPECT_EQ(text(quotient({1, 2}, {3, 4})), "2/3");
}

TEST(FractionArithmetic, SignsFollowFromTheReduction)
{
    EXPECT_EQ(text(sum({-1, 2}, {-1, 2})), "-1/1");       // 1/-2 twice is -4/4
    EXPECT_EQ(text(product({-1, 2}, {-1, 2})), "1/4");    // 1/4
    EXPECT_EQ(text(product({-1, 2}, {1, 3})), "1/-6");    // 1/-6
    EXPECT_EQ(text(difference({-1, 2}, {1, 2})), "-1/1"); // 1*2 - -2*1 over -4
    EXPECT_EQ(text(sum({-1, 2}, {1, 2})), "0/1");         // 0 over -4
    EXPECT_EQ(text(quotient(1, -2)), "1/-2");
    EXPECT_EQ(text(quotient({1, 3}, fraction::unreduced(-1, 2))), "-2/3"); // 2/-3: (2, -3), (-3, 2), (2, -1), (-1, 0)
}

TEST(FractionArithmetic, TakesOperandsThatAreNotReduced)
{
    const fraction odd = fraction::unreduced(2, 4);
    EXPECT_EQ(text(sum(odd, 0)), "1/2");
    EXPECT_EQ(text(product(odd, 1)), "1/2");
    EXPECT_EQ(text(difference(odd, fraction(1, 2))), "0/1");
    EXPECT_EQ(text(sum(0, odd)), "1/2");
    EXPECT_EQ(text(quotient(1, odd)), "2/1");
    EXPECT_EQ(text(product(fraction::unreduced(0, 5), 1)), "0/1");
}

TEST(FractionArithmetic, NoDenominatorIsChecked)
{
    EXPECT_EQ(text(quotient({1, 2}, 0)), "1/0");
    EXPECT_EQ(text(quotient({-1, 2}, 0)), "1/0");
    EXPECT_EQ(text(quotient(0, 0)), "0/1");
    EXPECT_EQ(text(sum(fraction::unreduced(1, 0), {1, 2})), "1/0");                    // 2/0
    EXPECT_EQ(text(sum(fraction::unreduced(1, 0), fraction::unreduced(1, 0))), "0/1"); // 0/0
    EXPECT_EQ(text(difference({1, 2}, fraction::unreduced(1, 0))), "1/0");             // -2/0
    EXPECT_EQ(text(product(fraction::unreduced(1, 0), 0)), "0/1");
    EXPECT_EQ(text(quotient({1, 2}, fraction::unreduced(1, 0))), "0/1"); // 0/2
}

TEST(FractionArithmetic, AnswersTheLeftOperandAndLeavesTheRightOne)
{
    fraction left(1, 2);
    const fraction right = fraction::unreduced(2, 6);
    EXPECT_EQ(&(left += right), &left);
    EXPECT_EQ(text(left), "5/6");
    EXPECT_EQ(&(left -= right), &left);
    EXPECT_EQ(text(left), "1/2");
    EXPECT_EQ(&(left *= right), &left);
    EXPECT_EQ(text(left), "1/6");
    EXPECT_EQ(&(left /= right), &left);
    EXPECT_EQ(text(left), "1/2");
    EXPECT_EQ(text(right), "2/6");
}

/// Hides from the compiler that both operands are one.
const fraction& itself(const fraction& given)
{
    return given;
}

TEST(FractionArithmetic, BothOperandsMayBeTheSameObject)
{
    fraction square(2, 3);
    square *= itself(square);
    EXPECT_EQ(text(square), "4/9");
    fraction twice(2, 3);
    twice += itself(twice);
    EXPECT_EQ(text(twice), "4/3");
    fraction nothing(2, 3);
    nothing -= itself(nothing);
    EXPECT_EQ(text(nothing), "0/1");
    fraction one(2, 3);
    one /= itself(one);
    EXPECT_EQ(text(one), "1/1");
}

} // namespace
