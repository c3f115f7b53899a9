// Every operation on random fractions against plain 64-bit arithmetic, with fixed seeds.
#include "units/naive_fraction.h"
#include "units/quantities.h"

#include <si/fraction.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

namespace {

using si::fraction;
using vela_test::NaiveFraction;
using vela_test::text;

/// Small numbers, numbers of any size, and the ends of the range.
int any_number(std::mt19937& random)
{
    const int ends[] = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 0, 1, -1, 65536};
    switch (random() % 4)
    {
    case 0:
        return ends[random() % 6];
    case 1:
        return static_cast<int>(random());
    default:
        return static_cast<int>(random() % 41) - 20;
    }
}

struct Operands
{
    explicit Operands(std::mt19937& random)
        : left(fraction::unreduced(any_number(random), any_number(random))),
          right(fraction::unreduced(any_number(random), any_number(random))),
          naive_left{left.numerator(), left.denominator()}, naive_right{right.numerator(), right.denominator()}
    {
    }
    fraction left;
    fraction right;
    NaiveFraction naive_left;
    NaiveFraction naive_right;
};

TEST(AnyFraction, ReducesAsEuclidsLoopDoes)
{
    std::mt19937 random(71001);
    for (int i = 0; i < 20000; ++i)
    {
        Operands given(random);
        const std::string before = text(given.left);
        const std::string expected = reduced(given.naive_left).text();
        given.left.reduce();
        ASSERT_EQ(text(given.left), expected) << before;
    }
}

TEST(AnyFraction, IsStableOnceReduced)
{
    std::mt19937 random(71002);
    for (int i = 0; i < 20000; ++i)
    {
        const Operands given(random);
        // The lowest number is its own negative, so dividing it by -1 need not be the end.
        if (given.left.numerator() == std::numeric_limits<int>::min() ||
            given.left.denominator() == std::numeric_limits<int>::min())
            continue;
        fraction once = given.left;
        once.reduce();
        fraction twice = once;
        twice.reduce();
        ASSERT_EQ(text(twice), text(once)) << text(given.left);
    }
}

TEST(AnyFraction, AddsAndSubtracts)
{
    std::mt19937 random(71003);
    for (int i = 0; i < 20000; ++i)
    {
        const Operands given(random);
        fraction result = given.left;
        result += given.right;
        ASSERT_EQ(text(result), sum(given.naive_left, given.naive_right).text())
            << text(given.left) << " + " << text(given.right);
        result = given.left;
        result -= given.right;
        ASSERT_EQ(text(result), difference(given.naive_left, given.naive_right).text())
            << text(given.left) << " - " << text(given.right);
    }
}

TEST(AnyFraction, MultipliesAndDivides)
{
    std::mt19937 random(71004);
    for (int i = 0; i < 20000; ++i)
    {
        const Operands given(random);
        fraction result = given.left;
        result *= given.right;
        ASSERT_EQ(text(result), product(given.naive_left, given.naive_right).text())
            << text(given.left) << " * " << text(given.right);
        result = given.left;
        result /= given.right;
        ASSERT_EQ(text(result), quotient(given.naive_left, given.naive_right).text())
            << text(given.left) << " / " << text(given.right);
    }
}

TEST(AnyFraction, EqualsWhatHasTheSameNumbers)
{
    std::mt19937 random(71005);
    int equal_pairs = 0;
    for (int i = 0; i < 20000; ++i)
    {
        const auto digit = [&random] { return static_cast<int>(random() % 5) - 2; };
        const fraction left = fraction::unreduced(digit(), digit());
        const fraction right = fraction::unreduced(digit(), digit());
        const bool same = left.numerator() == right.numerator() && left.denominator() == right.denominator();
        equal_pairs += same ? 1 : 0;
        ASSERT_EQ(left == right, same);
        ASSERT_EQ(left != right, !same);
    }
    EXPECT_GT(equal_pairs, 100);
}

TEST(AnyFraction, ReadsTextAsTheGrammarSays)
{
    std::mt19937 random(71006);
    const std::string alphabet = "(()))---///0123459 x";
    int taken = 0;
    for (int i = 0; i < 200000; ++i)
    {
        std::string given;
        for (auto length = random() % 8; length > 0; --length)
            given += alphabet[random() % alphabet.size()];
        NaiveFraction expected;
        const bool is_fraction = vela_test::parse_naively(given, expected);
        fraction result(7, 9);
        ASSERT_EQ(result.parse(given), is_fraction) << "\"" << given << "\"";
        if (!is_fraction)
            continue;
        ++taken;
        ASSERT_EQ(text(result), expected.text()) << "\"" << given << "\"";
    }
    EXPECT_GT(taken, 10000);
    EXPECT_LT(taken, 190000);
}

} // namespace
