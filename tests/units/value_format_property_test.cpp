// Random quantities against a plain printer, and laws of arithmetic, with fixed seeds.
#include "units/naive_quantity.h"
#include "units/quantities.h"
#include "units/unit_rows.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

namespace {

using si::value;
using namespace vela_test;

/// A number of any size near those that units have, seldom zero or one.
double any_number(std::mt19937_64& random)
{
    const auto kind = random() % 20;
    if (kind == 0)
        return 0;
    if (kind == 1)
        return 1;
    const double digits = std::uniform_real_distribution<double>(1, 10)(random);
    const int decade = static_cast<int>(random() % 70) - 35;
    return (random() % 4 == 0 ? -digits : digits) * std::pow(10.0, kind < 10 ? decade / 6 : decade);
}

/// Exponents of a row, or any.
NaiveQuantity any_quantity(std::mt19937_64& random)
{
    NaiveQuantity quantity;
    quantity.number = any_number(random);
    const bool is_named = random() % 3 != 0;
    const UnitRow& row = unit_rows[random() % 41];
    if (is_named)
        quantity.number *= row.number;
    for (std::size_t i = 0; i < 9; ++i)
        if (is_named)
            quantity.exponents[i].numerator = row.exponents[i];
        else if (random() % 3 == 0)
        {
            const auto numerator = static_cast<std::int64_t>(random() % 9) - 4;
            const auto denominator = static_cast<std::int64_t>(random() % 3) + 1;
            if (numerator != 0)
                quantity.exponents[i] = {numerator, denominator};
        }
    return quantity;
}

value as_value(const NaiveQuantity& quantity)
{
    Exponents exponents;
    for (std::size_t i = 0; i < 9; ++i)
        exponents[i] = si::fraction::unreduced(static_cast<int>(quantity.exponents[i].numerator),
                                               static_cast<int>(quantity.exponents[i].denominator));
    return value(quantity.number, exponents);
}

TEST(AnyQuantity, PrintsAsAPlainPrinterDoes)
{
    std::mt19937_64 random(72201);
    for (int i = 0; i < 100000; ++i)
    {
        const NaiveQuantity quantity = any_quantity(random);
        const int precision = 1 + static_cast<int>(random() % 9);
        const int flags = static_cast<int>(random() % 16);
        const NaiveText expected = print_naively(quantity, precision, flags);
        std::string number;
        std::string unit;
        const value given = as_value(quantity);
        given.format(number, unit, precision, flags);
        ASSERT_EQ(number, expected.number) << i << ": " << quantity.number << " " << dimension(given) << ", precision "
                                           << precision << ", flags " << flags;
        ASSERT_EQ(unit, expected.unit) << i << ": " << quantity.number << " " << dimension(given) << ", flags "
                                       << flags;
        ASSERT_EQ(given.format(precision, flags), number + (flags % 2 == 1 ? " " : "") + unit);
    }
}

TEST(AnyQuantity, PrintedQuantitiesTakeManyForms)
{
    std::mt19937_64 random(72201);
    int with_exponent = 0;
    int with_micro = 0;
    int composed = 0;
    int zero = 0;
    for (int i = 0; i < 20000; ++i)
    {
        const NaiveText text = print_naively(any_quantity(random), 3, static_cast<int>(random() % 16));
        with_exponent += text.number.find('e') != std::string::npos ? 1 : 0;
        with_micro += text.unit[0] == '\xB5' ? 1 : 0;
        composed += text.unit.find('^') != std::string::npos ? 1 : 0;
        zero += text.number == "0.000" ? 1 : 0;
    }
    EXPECT_GT(with_exponent, 1000);
    EXPECT_GT(with_micro, 20);
    EXPECT_GT(composed, 1000);
    EXPECT_GT(zero, 200);
}

TEST(AnyQuantity, DividingUndoesMultiplying)
{
    std::mt19937_64 random(72202);
    for (int i = 0; i < 20000; ++i)
    {
        const value left = as_value(any_quantity(random)) * value(1.0);
        const value right = as_value(any_quantity(random)) * value(1.0);
        if (right.value_in_baseunits() == 0)
            continue;
        const value back = left * right / right;
        // A difference of fractions may leave the sign on the other side, so the quotient decides.
        ASSERT_TRUE(back.is_valid());
        const value one = back / left;
        ASSERT_TRUE(one.is_dimensionless()) << dimension(left) << " and " << dimension(right);
        if (left.value_in_baseunits() == 0)
            continue;
        ASSERT_TRUE(one == 1.0);
    }
}

TEST(AnyQuantity, ASquareIsAProductWithItself)
{
    std::mt19937_64 random(72203);
    for (int i = 0; i < 20000; ++i)
    {
        const value given = as_value(any_quantity(random));
        const value square = given ^ 2;
        const value product = given * given;
        ASSERT_TRUE(same_number(square.value_in_baseunits(), product.value_in_baseunits()));
        for (std::size_t k = 0; k < 9; ++k)
        {
            const si::fraction& left = square.exponent(k);
            const si::fraction& right = product.exponent(k);
            ASSERT_EQ(left.numerator() * right.denominator(), right.numerator() * left.denominator());
        }
    }
}

TEST(AnyQuantity, ADifferenceUndoesASum)
{
    std::mt19937_64 random(72204);
    for (int i = 0; i < 20000; ++i)
    {
        NaiveQuantity first = any_quantity(random);
        NaiveQuantity second = first;
        first.number = static_cast<double>(static_cast<int>(random() % 2001) - 1000);
        second.number = static_cast<double>(static_cast<int>(random() % 2001) - 1000);
        const value back = as_value(first) + as_value(second) - as_value(second);
        ASSERT_TRUE(back.is_valid());
        ASSERT_EQ(back.value_in_baseunits(), first.number);
        ASSERT_EQ(dimension(back), dimension(as_value(first)));
    }
}

TEST(AnyQuantity, AddsToTheSameDimensionOnly)
{
    std::mt19937_64 random(72205);
    int same = 0;
    for (int i = 0; i < 20000; ++i)
    {
        const NaiveQuantity left = any_quantity(random);
        const NaiveQuantity right = any_quantity(random);
        const bool is_same = same_dimension(left, right);
        same += is_same ? 1 : 0;
        ASSERT_EQ((as_value(left) + as_value(right)).is_valid(), is_same);
        ASSERT_EQ((as_value(left) - as_value(right)).is_valid(), is_same);
        ASSERT_EQ(as_value(left).is_compatible(as_value(right)), is_same);
    }
    EXPECT_GT(same, 200);
    EXPECT_LT(same, 19000);
}

} // namespace
