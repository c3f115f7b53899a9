// Arithmetic of quantities, in both forms of every operator, with invalid operands on either side.
#include "units/quantities.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using si::fraction;
using si::value;
using namespace vela_test;

const double infinite = std::numeric_limits<double>::infinity();
const value half_metre = quantity(3, {{metre, {1, 2}}});
const value third_metre = quantity(4, {{metre, {1, 3}}});

TEST(ValueArithmetic, AProductAddsExponentsAndMultipliesNumbers)
{
    EXPECT_TRUE(is_quantity(value("3 m") * value("4 m/s"), 12, "m^2 s^-1"));
    EXPECT_TRUE(is_quantity(half_metre * third_metre, 12, "m^5/6"));
    EXPECT_TRUE(is_quantity(value("3 s") * value("4 Hz"), 12, ""));
    value length("3 m");
    EXPECT_EQ(&(length *= value("2 s")), &length);
    EXPECT_TRUE(is_quantity(length, 6, "m s"));
}

TEST(ValueArithmetic, AQuotientSubtractsExponentsAndDividesNumbers)
{
    EXPECT_TRUE(is_quantity(value("3 m") / value("4 m/s"), 0.75, "s"));
    EXPECT_TRUE(is_quantity(half_metre / third_metre, 0.75, "m^1/6"));
    EXPECT_TRUE(is_quantity(value("3 m") / value("4 m"), 0.75, ""));
    value length("3 m");
    EXPECT_EQ(&(length /= value("2 s")), &length);
    EXPECT_TRUE(is_quantity(length, 1.5, "m s^-1"));
}

TEST(ValueArithmetic, EveryExponentTakesPart)
{
    Exponents left;
    Exponents right;
    for (int i = 0; i < 9; ++i)
    {
        left[static_cast<std::size_t>(i)] = 10 + i;
        right[static_cast<std::size_t>(i)] = 2 * i + 1;
    }
    const value product = value(1, left) * value(1, right);
    const value quotient = value(1, left) / value(1, right);
    const value power = value(1, left) ^ fraction(1, 2);
    for (int i = 0; i < 9; ++i)
    {
        const auto at = static_cast<std::size_t>(i);
        EXPECT_EQ(product.exponent(at), fraction(11 + 3 * i)) << base_names[i];
        EXPECT_EQ(quotient.exponent(at), fraction(9 - i)) << base_names[i];
        EXPECT_EQ(power.exponent(at), fraction(10 + i, 2)) << base_names[i];
    }
}

TEST(ValueArithmetic, SumsAndDifferencesNeedTheSameDimension)
{
    EXPECT_TRUE(is_quantity(value("3 m") + value("4 km"), 4003, "m"));
    EXPECT_TRUE(is_quantity(value("3 m") - value("4 km"), -3997, "m"));
    EXPECT_TRUE(is_quantity(value(3.0) + value(4.0), 7, ""));
    EXPECT_TRUE(is_quantity(value(3.0) - value(4.0), -1, ""));
    value length("3 m");
    EXPECT_EQ(&(length += value("2 m")), &length);
    EXPECT_TRUE(is_quantity(length, 5, "m"));
    EXPECT_EQ(&(length -= value("1 m")), &length);
    EXPECT_TRUE(is_quantity(length, 4, "m"));
}

TEST(ValueArithmetic, SumsAndDifferencesOfOtherDimensionsAreInvalid)
{
    EXPECT_TRUE(is_invalid(value("3 m") + value("4 s")));
    EXPECT_TRUE(is_invalid(value("3 m") - value("4 s")));
    EXPECT_TRUE(is_invalid(value("3 m") + value(4.0)));
    EXPECT_TRUE(is_invalid(value(3.0) - value("4 m")));
    value length("3 m");
    length += value("4 m^2");
    EXPECT_TRUE(is_invalid(length));
    length = "3 m";
    length -= value("4 m^2");
    EXPECT_TRUE(is_invalid(length));
}

TEST(ValueArithmetic, SumsOfExponentsWrittenDifferentlyAreInvalid)
{
    const value reduced = quantity(3, {{metre, {1, 2}}});
    const value unreduced = quantity(4, {{metre, fraction::unreduced(2, 4)}});
    EXPECT_TRUE(is_invalid(reduced + unreduced));
    EXPECT_TRUE(is_invalid(unreduced - reduced));
    EXPECT_TRUE(is_quantity(unreduced + unreduced, 8, "m^2/4"));
}

TEST(ValueArithmetic, AnInvalidRightOperandMakesTheResultInvalid)
{
    const value invalid("nonsense");
    EXPECT_TRUE(is_invalid(value("3 m") * invalid));
    EXPECT_TRUE(is_invalid(value("3 m") / invalid));
    EXPECT_TRUE(is_invalid(value("3 m") + invalid));
    EXPECT_TRUE(is_invalid(value("3 m") - invalid));
    EXPECT_TRUE(is_invalid(value(3.0) * invalid));
    EXPECT_TRUE(is_invalid(value(3.0) / invalid));
    EXPECT_TRUE(is_invalid(value(3.0) + invalid));
    EXPECT_TRUE(is_invalid(value(3.0) - invalid));
}

TEST(ValueArithmetic, AnInvalidRightOperandCountsWhateverItsFields)
{
    value invalid("nonsense");
    invalid *= value("5 m");
    ASSERT_FALSE(invalid.is_valid());
    ASSERT_EQ(dimension(invalid), "m");
    EXPECT_TRUE(is_invalid(value("3 m") * invalid));
    EXPECT_TRUE(is_invalid(value("3 m") / invalid));
    EXPECT_TRUE(is_invalid(value("3 m") + invalid));
    EXPECT_TRUE(is_invalid(value("3 m") - invalid));
}

TEST(ValueArithmetic, AnInvalidLeftOperandOfAProductStaysInvalidWhileItsNumberChanges)
{
    value product("nonsense");
    product *= value("5 m");
    EXPECT_FALSE(product.is_valid());
    EXPECT_EQ(product.value_in_baseunits(), 5.0);
    EXPECT_EQ(dimension(product), "m");
    product *= value("2 s");
    EXPECT_FALSE(product.is_valid());
    EXPECT_EQ(product.value_in_baseunits(), 10.0);
    EXPECT_EQ(dimension(product), "m s");
    const value by_operator = value("nonsense") * value("5 m");
    EXPECT_FALSE(by_operator.is_valid());
    EXPECT_EQ(by_operator.value_in_baseunits(), 5.0);
}

TEST(ValueArithmetic, AnInvalidLeftOperandOfAQuotientStaysInvalidWhileItsNumberChanges)
{
    value quotient("nonsense");
    quotient /= value("4 m");
    EXPECT_FALSE(quotient.is_valid());
    EXPECT_EQ(quotient.value_in_baseunits(), 0.25);
    EXPECT_EQ(dimension(quotient), "m^-1");
    const value by_operator = value("nonsense") / value("4 m");
    EXPECT_FALSE(by_operator.is_valid());
    EXPECT_EQ(by_operator.value_in_baseunits(), 0.25);
}

TEST(ValueArithmetic, AnInvalidLeftOperandOfASumIsNotCompatible)
{
    value changed("nonsense");
    changed *= value("5 m");
    value sum = changed;
    sum += value("3 m");
    EXPECT_TRUE(is_invalid(sum));
    value difference = changed;
    difference -= value("3 m");
    EXPECT_TRUE(is_invalid(difference));
    EXPECT_TRUE(is_invalid(value("nonsense") + value(1.0)));
    EXPECT_TRUE(is_invalid(value("nonsense") - value(1.0)));
}

TEST(ValueArithmetic, BothOperandsInvalid)
{
    value left("nonsense");
    left *= value("5 m");
    const value invalid("nonsense");
    EXPECT_TRUE(is_invalid(left * invalid));
    EXPECT_TRUE(is_invalid(left / invalid));
    EXPECT_TRUE(is_invalid(left + invalid));
    EXPECT_TRUE(is_invalid(left - invalid));
    EXPECT_TRUE(is_invalid(left + left));
}

TEST(ValueArithmetic, NumbersMultiplyAndDivideTheNumberAlone)
{
    EXPECT_TRUE(is_quantity(value("3 m/s") * 2.5, 7.5, "m s^-1"));
    EXPECT_TRUE(is_quantity(value("3 m/s") / 4.0, 0.75, "m s^-1"));
    EXPECT_TRUE(is_quantity(value("3 m/s") * 2, 6, "m s^-1"));
    EXPECT_TRUE(is_quantity(value("3 m/s") / 2, 1.5, "m s^-1"));
    EXPECT_TRUE(is_quantity(value("3 m/s") * 0.5f, 1.5, "m s^-1"));
    EXPECT_TRUE(is_quantity(value("3 m/s") / 0.5f, 6, "m s^-1"));
    value length("3 m");
    EXPECT_EQ(&(length *= 2.0), &length);
    EXPECT_TRUE(is_quantity(length, 6, "m"));
    EXPECT_EQ(&(length /= 4.0), &length);
    EXPECT_TRUE(is_quantity(length, 1.5, "m"));
}

TEST(ValueArithmetic, NumbersMultiplyUnreducedExponentsUntouched)
{
    const value odd = quantity(3, {{metre, fraction::unreduced(2, 4)}});
    EXPECT_TRUE(is_quantity(odd * 2.0, 6, "m^2/4"));
    EXPECT_TRUE(is_quantity(odd / 2.0, 1.5, "m^2/4"));
}

TEST(ValueArithmetic, NumbersMultiplyInvalidValuesToo)
{
    value invalid("nonsense");
    invalid *= 5.0;
    EXPECT_FALSE(invalid.is_valid());
    EXPECT_EQ(invalid.value_in_baseunits(), 5.0);
    invalid /= 2.0;
    EXPECT_FALSE(invalid.is_valid());
    EXPECT_EQ(invalid.value_in_baseunits(), 2.5);
    EXPECT_FALSE((value("nonsense") * 3.0).is_valid());
    EXPECT_EQ((value("nonsense") / 4.0).value_in_baseunits(), 0.25);
}

TEST(ValueArithmetic, DivisionByZeroIsInfiniteOrNotANumber)
{
    EXPECT_TRUE(is_quantity(value("3 m") / 0.0, infinite, "m"));
    EXPECT_TRUE(is_quantity(value("-3 m") / 0.0, -infinite, "m"));
    EXPECT_TRUE(is_quantity(value("3 m") / value("0 s"), infinite, "m s^-1"));
    EXPECT_TRUE(is_quantity(value("0 m") / value("0 s"), std::nan(""), "m s^-1"));
    EXPECT_EQ(value("3 m").in("0 m"), infinite);
}

TEST(ValueArithmetic, HugeNumbersOverflowToInfinity)
{
    EXPECT_TRUE(is_quantity(value("1e300 m") * value("1e300 m"), infinite, "m^2"));
    EXPECT_TRUE(is_quantity(value("1e-300 m") * value("1e-300 m"), 0, "m^2"));
    EXPECT_TRUE(is_quantity(value("1e308 m") + value("1e308 m"), infinite, "m"));
    EXPECT_TRUE(is_quantity(value("1e300 m") ^ 2, infinite, "m^2"));
}

TEST(ValueArithmetic, ProductsReduceExponents)
{
    const value odd = quantity(3, {{metre, fraction::unreduced(2, 4)}, {second, fraction::unreduced(0, 5)}});
    EXPECT_TRUE(is_quantity(odd * value(1.0), 3, "m^1/2"));
    EXPECT_TRUE(is_quantity(odd / value(1.0), 3, "m^1/2"));
    EXPECT_TRUE(is_quantity(value(1.0) * odd, 3, "m^1/2"));
    EXPECT_TRUE(is_quantity(odd ^ 1, 3, "m^1/2"));
}

/// Hides from the compiler that both operands are one.
const value& itself(const value& given)
{
    return given;
}

TEST(ValueArithmetic, BothOperandsMayBeTheSameObject)
{
    value length = half_metre;
    length *= itself(length);
    EXPECT_TRUE(is_quantity(length, 9, "m"));
    length += itself(length);
    EXPECT_TRUE(is_quantity(length, 18, "m"));
    value nothing = length;
    nothing -= itself(nothing);
    EXPECT_TRUE(is_quantity(nothing, 0, "m"));
    length /= itself(length);
    EXPECT_TRUE(is_quantity(length, 1, ""));
}

TEST(ValueArithmetic, OperatorsLeaveTheirOperands)
{
    const value left("6 m");
    const value right("3 m");
    EXPECT_TRUE(is_quantity(left * right, 18, "m^2"));
    EXPECT_TRUE(is_quantity(left / right, 2, ""));
    EXPECT_TRUE(is_quantity(left + right, 9, "m"));
    EXPECT_TRUE(is_quantity(left - right, 3, "m"));
    EXPECT_TRUE(is_quantity(left ^ 2, 36, "m^2"));
    EXPECT_TRUE(is_quantity(left, 6, "m"));
    EXPECT_TRUE(is_quantity(right, 3, "m"));
}

TEST(ValueArithmetic, ExponentsThatOverflowWrap)
{
    const int highest = std::numeric_limits<int>::max();
    const value steep = quantity(1, {{metre, highest}});
    EXPECT_TRUE(is_quantity(steep * value("m"), 1, "m^-2147483648"));
    EXPECT_TRUE(is_quantity(steep * steep, 1, "m^-2"));
    EXPECT_TRUE(is_quantity(steep * value("m") / value("m"), 1, "m^2147483647"));
}

// Powers

TEST(ValuePower, MultipliesExponentsAndRaisesTheNumber)
{
    EXPECT_TRUE(is_quantity(value("3 m/s") ^ fraction(2), 9, "m^2 s^-2"));
    EXPECT_TRUE(is_quantity(quantity(9, {{metre, 4}}) ^ fraction(1, 2), 3, "m^2"));
    EXPECT_TRUE(is_quantity(value("8 m") ^ fraction(1, 3), 2, "m^1/3"));
    EXPECT_TRUE(is_quantity(value("4 m") ^ fraction(-1), 0.25, "m^-1"));
    EXPECT_TRUE(is_quantity(value("4 m") ^ fraction(3, 2), 8, "m^3/2"));
    EXPECT_TRUE(is_quantity(value("4 m") ^ 3, 64, "m^3"));
    EXPECT_TRUE(is_quantity(value("4 m") ^ -2, 0.0625, "m^-2"));
    value length("5 m");
    EXPECT_EQ(&(length ^= fraction(2)), &length);
    EXPECT_TRUE(is_quantity(length, 25, "m^2"));
}

TEST(ValuePower, MinusHalfGivesAnExponentWithItsSignInTheDenominator)
{
    EXPECT_TRUE(is_quantity(value("4 m") ^ fraction(-1, 2), 0.5, "m^1/-2"));
    EXPECT_TRUE(is_quantity(value("4 m") ^ fraction::unreduced(-1, 2), 0.5, "m^1/-2"));
}

TEST(ValuePower, TakesAFractionThatIsNotReduced)
{
    EXPECT_TRUE(is_quantity(value("16 m") ^ fraction::unreduced(2, 4), 4, "m^1/2"));
    EXPECT_TRUE(is_quantity(value("16 m") ^ fraction::unreduced(0, 7), 1, ""));
    EXPECT_TRUE(is_quantity(value("16 m") ^ fraction::unreduced(-4, -2), 256, "m^2"));
}

TEST(ValuePower, ZeroIsTheNumberOneWithoutDimension)
{
    EXPECT_TRUE(is_quantity(value("5 m/s") ^ 0, 1, ""));
    EXPECT_TRUE(is_quantity(value("0 m") ^ 0, 1, ""));
}

TEST(ValuePower, OfAnInvalidValueStaysInvalid)
{
    value invalid("nonsense");
    invalid *= value("3 m");
    invalid ^= fraction(2);
    EXPECT_FALSE(invalid.is_valid());
    EXPECT_EQ(invalid.value_in_baseunits(), 9.0);
    EXPECT_EQ(dimension(invalid), "m^2");
    EXPECT_FALSE((value("nonsense") ^ 2).is_valid());
}

TEST(ValuePower, TheRootOfANegativeNumberIsNotANumber)
{
    EXPECT_TRUE(is_quantity(quantity(-4, {{metre, 2}}) ^ fraction(1, 2), std::nan(""), "m"));
    EXPECT_TRUE(is_quantity(quantity(-8, {{metre, 3}}) ^ fraction(1, 3), std::nan(""), "m"));
    EXPECT_TRUE(is_quantity(value("-3 m") ^ 2, 9, "m^2"));
    EXPECT_TRUE(is_quantity(value("-3 m") ^ 3, -27, "m^3"));
}

TEST(ValuePower, ANegativePowerOfZeroIsInfinite)
{
    EXPECT_TRUE(is_quantity(value("0 m") ^ -1, infinite, "m^-1"));
}

TEST(ValuePower, AZeroDenominatorIsAnInfinitePower)
{
    EXPECT_TRUE(is_quantity(value("2 m") ^ fraction::unreduced(1, 0), infinite, "m^1/0"));
    EXPECT_TRUE(is_quantity(value("2 m") ^ fraction::unreduced(-1, 0), 0, "m^1/0"));
    EXPECT_TRUE(is_quantity(value("0.5 m") ^ fraction::unreduced(1, 0), 0, "m^1/0"));
    EXPECT_TRUE(is_quantity(value("1 m") ^ fraction::unreduced(1, 0), 1, "m^1/0"));
    EXPECT_TRUE(is_quantity(value("2 m") ^ fraction::unreduced(0, 0), std::nan(""), ""));
    EXPECT_TRUE(is_quantity(value("1 m") ^ fraction::unreduced(0, 0), 1, ""));
}

TEST(ValuePower, ExponentsThatOverflowWrap)
{
    EXPECT_TRUE(is_quantity(quantity(1, {{metre, 65536}}) ^ 65536, 1, ""));
    EXPECT_TRUE(is_quantity(quantity(1, {{metre, -1}}) ^ std::numeric_limits<int>::min(), 1, "m^-2147483648"));
}

} // namespace
