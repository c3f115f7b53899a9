// Printing: the number's digits, composed units, and every combination of flags.
#include "units/quantities.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using si::fraction;
using si::value;
using namespace vela_test;

const double infinite = std::numeric_limits<double>::infinity();
const double not_a_number = std::numeric_limits<double>::quiet_NaN();

value metres(double number)
{
    return quantity(number, {{metre, 1}});
}
value volts(double number)
{
    return quantity(number, {{metre, 2}, {kilogram, 1}, {second, -3}, {ampere, -1}});
}

static_assert(value::with_blank == 1 && value::with_prefix == 2 && value::with_dimensionless_prefix == 4);

// Flags

TEST(ValueFormat, EveryCombinationOfFlagsOnALength)
{
    const value length = metres(1500);
    const char* const expected[] = {"1.50e3m", "1.50e3 m", "1.50km", "1.50 km",
                                    "1.50e3m", "1.50e3 m", "1.50km", "1.50 km"};
    for (int flags = 0; flags < 8; ++flags)
        EXPECT_EQ(length.format(3, flags), expected[flags]) << flags;
}

TEST(ValueFormat, EveryCombinationOfFlagsOnANumber)
{
    const value number(1500.0);
    const char* const expected[] = {"1.50e3", "1.50e3 ", "1.50e3", "1.50e3 ", "1.50e3", "1.50e3 ", "1.50k", "1.50 k"};
    for (int flags = 0; flags < 8; ++flags)
        EXPECT_EQ(number.format(3, flags), expected[flags]) << flags;
}

TEST(ValueFormat, EveryCombinationOfFlagsOnAComposedUnit)
{
    const value slowness = quantity(1500, {{metre, -1}, {second, 1}});
    const char* const expected[] = {"1.50e3s/m", "1.50e3 s/m"};
    for (int flags = 0; flags < 8; ++flags)
        EXPECT_EQ(slowness.format(3, flags), expected[flags % 2]) << flags;
}

TEST(ValueFormat, EveryCombinationOfFlagsOnAComposedUnitWithoutNumerator)
{
    const value density = quantity(1500, {{metre, -3}});
    const char* const expected[] = {"1.50e3/m^3", "1.50e3 1/m^3"};
    for (int flags = 0; flags < 8; ++flags)
        EXPECT_EQ(density.format(3, flags), expected[flags % 2]) << flags;
}

TEST(ValueFormat, EveryCombinationOfFlagsOnASmallFraction)
{
    const char* const expected[] = {"0.500m", "0.500 m", "500mm", "0.500 m", "0.500m", "0.500 m", "500mm", "0.500 m"};
    for (int flags = 0; flags < 8; ++flags)
        EXPECT_EQ(metres(0.5).format(3, flags), expected[flags]) << flags;
}

TEST(ValueFormat, TheFourthFlagHasNoEffect)
{
    for (const double number : {1500.0, 0.5, 0.0, 1.0, 1e-7, 123.0})
        for (const value& given : {metres(number), value(number), quantity(number, {{metre, -3}})})
            for (int flags = 0; flags < 8; ++flags)
                EXPECT_EQ(given.format(3, flags + 8), given.format(3, flags)) << number << " " << flags;
}

TEST(ValueFormat, TheTwoTextsHaveNoBlankAndReplaceWhatWasThere)
{
    std::string number = "an older and longer text";
    std::string unit = "another older and longer text";
    metres(1500).format(number, unit, 3, 3);
    EXPECT_EQ(number, "1.50");
    EXPECT_EQ(unit, "km");
    value(1500.0).format(number, unit, 4, 1);
    EXPECT_EQ(number, "1.500e3");
    EXPECT_EQ(unit, "");
    quantity(1, {{metre, -3}}).format(number, unit, 4, 1);
    EXPECT_EQ(number, "1");
    EXPECT_EQ(unit, "1/m^3");
    quantity(0, {{metre, -3}}).format(number, unit, 4, 0);
    EXPECT_EQ(number, "0.000");
    EXPECT_EQ(unit, "/m^3");
}

// Digits

TEST(ValueFormat, PrintsAsManyDigitsAsThePrecision)
{
    EXPECT_EQ(value(2.71828).format(1, 0), "3");
    EXPECT_EQ(value(2.71828).format(2, 0), "2.7");
    EXPECT_EQ(value(2.71828).format(4, 0), "2.718");
    EXPECT_EQ(value(27.1828).format(4, 0), "27.18");
    EXPECT_EQ(value(271.828).format(4, 0), "271.8");
    EXPECT_EQ(value(271.828).format(2, 0), "272");
    EXPECT_EQ(value(0.271828).format(4, 0), "0.2718");
    EXPECT_EQ(value(0.0271828).format(4, 0), "0.02718");
    EXPECT_EQ(value(-2.71828).format(4, 0), "-2.718");
}

TEST(ValueFormat, NumbersFromAThousandUpHaveAnExponent)
{
    EXPECT_EQ(value(999.0).format(3, 0), "999");
    EXPECT_EQ(value(1000.0).format(3, 0), "1.00e3");
    EXPECT_EQ(value(2718.28).format(3, 0), "2.72e3");
    EXPECT_EQ(value(-2718.28).format(4, 0), "-2.718e3");
    EXPECT_EQ(value(27182.8).format(1, 0), "3e4");
    EXPECT_EQ(value(2.5e100).format(2, 0), "2.5e100");
}

TEST(ValueFormat, NumbersBelowAHundredthHaveAnExponent)
{
    EXPECT_EQ(value(0.01).format(3, 0), "0.0100");
    EXPECT_EQ(value(0.005).format(3, 0), "5.00e-3");
    EXPECT_EQ(value(-0.0025).format(2, 0), "-2.5e-3");
    EXPECT_EQ(value(2.5e-100).format(2, 0), "2.5e-100");
    EXPECT_EQ(value(0.00999).format(3, 0), "9.99e-3");
}

TEST(ValueFormat, TheExponentHasNoSignAndNoZerosInFront)
{
    EXPECT_EQ(value(2e3).format(1, 0), "2e3");
    EXPECT_EQ(value(2e-3).format(1, 0), "2e-3");
    EXPECT_EQ(value(2e30).format(1, 0), "2e30");
}

// log10(999.9) is 2.99996: a ten-thousandth more, and it belongs to the decade of a thousand.
TEST(ValueFormat, NumbersJustBelowAPowerOfTenBelongToItsDecade)
{
    EXPECT_EQ(value(999.9).format(4, 0), "1000");
    EXPECT_EQ(value(999.7).format(4, 0), "999.7");
    EXPECT_EQ(value(9.999).format(4, 0), "10.00");
    EXPECT_EQ(value(9.997).format(4, 0), "9.997");
    EXPECT_EQ(value(0.9999).format(4, 0), "1.000");
    EXPECT_EQ(value(0.9999).format(5, 0), "0.9999");
    EXPECT_EQ(value(0.009999).format(4, 0), "1.000e-2");
    EXPECT_EQ(value(0.009997).format(4, 0), "9.997e-3");
    EXPECT_EQ(value(0.009999).format(5, 0), "0.9999e-2");
    EXPECT_EQ(value(99990.0).format(5, 0), "0.9999e5");
    EXPECT_EQ(value(99970.0).format(5, 0), "9.9970e4");
}

TEST(ValueFormat, PowersOfTen)
{
    EXPECT_EQ(value(10.0).format(3, 0), "10.0");
    EXPECT_EQ(value(100.0).format(3, 0), "100");
    EXPECT_EQ(value(0.1).format(3, 0), "0.100");
    EXPECT_EQ(value(1e6).format(3, 0), "1.00e6");
    EXPECT_EQ(value(1e-6).format(3, 0), "1.00e-6");
    EXPECT_EQ(value(1e15).format(3, 0), "1.00e15");
    EXPECT_EQ(value(1e-15).format(3, 0), "1.00e-15");
}

TEST(ValueFormat, ExactlyOneIsOneDigitWhateverThePrecision)
{
    for (const int precision : {-3, 0, 1, 3, 12})
    {
        EXPECT_EQ(value(1.0).format(precision, 0), "1");
        EXPECT_EQ(metres(1).format(precision, 1), "1 m");
        EXPECT_EQ(metres(1000).format(precision, 3), "1 km");
    }
}

TEST(ValueFormat, MinusOneAndNearlyOneHaveAllDigits)
{
    EXPECT_EQ(value(-1.0).format(3, 0), "-1.00");
    EXPECT_EQ(value(1.0 + 1e-12).format(3, 0), "1.00");
    EXPECT_EQ(metres(-1000).format(3, 3), "-1.00 km");
}

TEST(ValueFormat, ZeroHasThreeDigitsBehindThePointWhateverThePrecision)
{
    for (const int precision : {-3, 0, 1, 3, 12})
    {
        EXPECT_EQ(value(0.0).format(precision, 0), "0.000");
        EXPECT_EQ(quantity(0, {{second, 1}}).format(precision, 1), "0.000 s");
    }
    EXPECT_EQ(value(0.0).format(3, 1), "0.000 ");
    EXPECT_EQ(volts(0).format(3, 2), "0.000V");
}

TEST(ValueFormat, MinusZeroHasNoSign)
{
    EXPECT_EQ(value(-0.0).format(3, 0), "0.000");
    EXPECT_EQ(metres(-0.0).format(3, 3), "0.000 m");
}

TEST(ValueFormat, AZeroHasNoPrefixAndKeepsItsUnit)
{
    for (const int flags : {3, 7})
    {
        EXPECT_EQ(metres(0).format(3, flags), "0.000 m");
        EXPECT_EQ(quantity(0, {{kilogram, 1}}).format(3, flags), "0.000 g");
        EXPECT_EQ(quantity(0, {{metre, 5}}).format(3, flags), "0.000 m^5");
        EXPECT_EQ(quantity(0, {{metre, -5}}).format(3, flags), "0.000 1/m^5");
    }
}

// A negative precision of "%.*f" is none, and that is six digits.
TEST(ValueFormat, APrecisionOfZeroOrLess)
{
    EXPECT_EQ(value(5.4).format(0, 0), "5");
    EXPECT_EQ(value(5.4).format(-7, 0), "5");
    EXPECT_EQ(value(0.25).format(0, 0), "0");
    EXPECT_EQ(value(1234.0).format(0, 0), "1.234000e3");
    EXPECT_EQ(value(1234.0).format(-7, 0), "1.234000e3");
    EXPECT_EQ(value(1234.0).format(1, 0), "1e3");
    const int lowest = std::numeric_limits<int>::min();
    EXPECT_EQ(value(5.4).format(lowest, 0), "5");
    EXPECT_EQ(value(0.25).format(lowest, 0), "0");
    EXPECT_EQ(value(1234.0).format(lowest, 0), "1.234000e3");
}

TEST(ValueFormat, ALargePrecisionPrintsAllItsDigits)
{
    EXPECT_EQ(value(0.5).format(50, 0), "0.5" + repeated("0", 49));
    EXPECT_EQ(value(2000.0).format(50, 0), "2." + repeated("0", 49) + "e3");
    EXPECT_EQ(value(-250.0).format(40, 0), "-250." + repeated("0", 37));
    EXPECT_EQ(metres(2000).format(400, 3), "2." + repeated("0", 399) + " km");
    EXPECT_EQ(value(0.75).format(1000, 0), "0.75" + repeated("0", 998));
}

TEST(ValueFormat, HugeNumbers)
{
    EXPECT_EQ(value(std::numeric_limits<double>::max()).format(3, 0), "1.80e308");
    EXPECT_EQ(value(-std::numeric_limits<double>::max()).format(3, 0), "-1.80e308");
    EXPECT_EQ(volts(std::numeric_limits<double>::max()).format(3, 3), "1.80e308 V");
}

TEST(ValueFormat, TinyNumbers)
{
    EXPECT_EQ(value(2.5e-300).format(3, 0), "2.50e-300");
    EXPECT_EQ(value(std::numeric_limits<double>::min()).format(3, 0), "2.23e-308");
    EXPECT_EQ(volts(2.5e-300).format(3, 3), "2.50e-300 V");
    EXPECT_EQ(value(3e-310).format(3, 0), "3.00e-310");
}

// Ten to the -324 is no double, yet it is what the two tiniest numbers have to be divided by.
TEST(ValueFormat, TheTiniestNumbersAreFinite)
{
    EXPECT_EQ(value(2 * std::numeric_limits<double>::denorm_min()).format(3, 0), "9.88e-324");
    EXPECT_EQ(value(std::numeric_limits<double>::denorm_min()).format(3, 0), "4.94e-324");
    EXPECT_EQ(metres(-std::numeric_limits<double>::denorm_min()).format(2, 3), "-4.9e-324 m");
}

TEST(ValueFormat, InfiniteNumbersHaveTheExponentZeroAndNoPrefix)
{
    EXPECT_EQ(value(infinite).format(3, 0), "infe0");
    EXPECT_EQ(value(-infinite).format(3, 0), "-infe0");
    EXPECT_EQ(metres(infinite).format(3, 3), "infe0 m");
    EXPECT_EQ(volts(-infinite).format(5, 2), "-infe0V");
    EXPECT_EQ(value(infinite).format(0, 7), "infe0 ");
    EXPECT_EQ(quantity(infinite, {{metre, -5}}).format(3, 1), "infe0 1/m^5");
}

TEST(ValueFormat, NotANumberIsPrintedPlainly)
{
    EXPECT_EQ(value(not_a_number).format(3, 0), "nan");
    EXPECT_EQ(metres(not_a_number).format(3, 3), "nan m");
    EXPECT_EQ(volts(not_a_number).format(0, 2), "nanV");
}

// Composed units

TEST(ValueFormatComposed, BaseUnitsInTheOrderOfTheTable)
{
    EXPECT_EQ(quantity(2, {{metre, 1}, {kilogram, 1}, {second, -1}}).format(2, 1), "2.0 m*kg/s");
    EXPECT_EQ(quantity(2, {{metre, 1}, {kilogram, 1}, {second, -3}, {ampere, -1}}).format(2, 1), "2.0 m*kg/s^3/A");
    EXPECT_EQ(quantity(2, {{metre, 2}, {second, -1}}).format(2, 0), "2.0m^2/s");
    Exponents all;
    for (si::fraction& exponent : all)
        exponent = 1;
    EXPECT_EQ(value(2, all).format(2, 1), "2.0 m*kg*s*A*K*mol*cd*rad*sr");
    for (si::fraction& exponent : all)
        exponent = -1;
    EXPECT_EQ(value(2, all).format(2, 1), "2.0 1/m/kg/s/A/K/mol/cd/rad/sr");
    EXPECT_EQ(value(2, all).format(2, 0), "2.0/m/kg/s/A/K/mol/cd/rad/sr");
}

TEST(ValueFormatComposed, NumeratorBeforeDenominatorWhateverTheOrder)
{
    EXPECT_EQ(quantity(2, {{metre, -1}, {second, 1}}).format(2, 1), "2.0 s/m");
    EXPECT_EQ(quantity(2, {{metre, -2}, {second, 3}, {kelvin, -1}, {steradian, 1}}).format(2, 1), "2.0 s^3*sr/m^2/K");
}

TEST(ValueFormatComposed, WholePowers)
{
    EXPECT_EQ(quantity(2, {{metre, 5}}).format(2, 1), "2.0 m^5");
    EXPECT_EQ(quantity(2, {{metre, -5}}).format(2, 1), "2.0 1/m^5");
    EXPECT_EQ(quantity(2, {{metre, -5}}).format(2, 0), "2.0/m^5");
    EXPECT_EQ(quantity(2, {{mole, 12}, {radian, -12}}).format(2, 1), "2.0 mol^12/rad^12");
}

TEST(ValueFormatComposed, FractionalPowers)
{
    EXPECT_EQ(quantity(2, {{metre, {1, 2}}}).format(2, 1), "2.0 m^(1/2)");
    EXPECT_EQ(quantity(2, {{metre, {3, 2}}, {second, fraction::unreduced(-2, 3)}}).format(2, 1), "2.0 m^(3/2)/s^(2/3)");
}

TEST(ValueFormatComposed, PowersAreWrittenAsTheyStand)
{
    EXPECT_EQ(quantity(2, {{metre, fraction::unreduced(2, 4)}}).format(2, 1), "2.0 m^(2/4)");
    EXPECT_EQ(quantity(2, {{metre, fraction::unreduced(-1, 2)}}).format(2, 1), "2.0 1/m^(1/2)");
    EXPECT_EQ(quantity(2, {{metre, fraction::unreduced(2, 2)}}).format(2, 1), "2.0 m^(2/2)");
    EXPECT_EQ(quantity(2, {{metre, fraction::unreduced(1, 0)}}).format(2, 1), "2.0 m^(1/0)");
}

TEST(ValueFormatComposed, TheSignOfAnExponentIsThatOfItsNumerator)
{
    EXPECT_EQ((metres(4) ^ fraction(-1, 2)).format(2, 1), "0.50 m^(1/-2)");
    EXPECT_EQ((metres(4) ^ fraction(-1, 2)).format(2, 0), "0.50m^(1/-2)");
    EXPECT_EQ((metres(8) ^ fraction(-2, 3)).format(2, 1), "0.25 1/m^(2/3)");
    EXPECT_EQ(quantity(2, {{metre, fraction::unreduced(-1, -2)}}).format(2, 1), "2.0 1/m^(1/-2)");
    EXPECT_EQ(quantity(2, {{second, fraction::unreduced(1, -1)}}).format(2, 1), "2.0 s^(1/-1)");
}

TEST(ValueFormatComposed, AnExponentOfZeroIsLeftOutHoweverItIsWritten)
{
    EXPECT_EQ(quantity(2, {{metre, 5}, {second, fraction::unreduced(0, 5)}}).format(2, 1), "2.0 m^5");
    EXPECT_EQ(quantity(2, {{metre, fraction::unreduced(0, 5)}}).format(2, 1), "2.0 1");
    EXPECT_EQ(quantity(2, {{metre, fraction::unreduced(0, 5)}}).format(2, 0), "2.0");
}

TEST(ValueFormatComposed, HasNoPrefix)
{
    EXPECT_EQ(quantity(1500, {{metre, 5}}).format(3, 7), "1.50e3 m^5");
    EXPECT_EQ(quantity(0.0015, {{metre, 1}, {second, -1}}).format(3, 7), "1.50e-3 m/s");
    EXPECT_EQ(quantity(0.5, {{metre, 1}, {second, -1}}).format(3, 2), "0.500m/s");
    EXPECT_EQ(quantity(1, {{metre, 5}}).format(3, 7), "1 m^5");
}

TEST(ValueFormatComposed, UnreducedExponentsMatchNoRow)
{
    EXPECT_EQ(quantity(1500, {{metre, fraction::unreduced(2, 2)}}).format(3, 3), "1.50e3 m^(2/2)");
    EXPECT_EQ(quantity(1500, {{second, fraction::unreduced(1, -1)}}).format(3, 3), "1.50e3 s^(1/-1)");
}

TEST(ValueFormatComposed, TheLowestExponentPrints)
{
    EXPECT_EQ(quantity(2, {{metre, std::numeric_limits<int>::min()}}).format(2, 1), "2.0 1/m^2147483648");
}

TEST(ValueFormatComposed, AnInvalidValueMatchesNoRow)
{
    EXPECT_EQ(value("nonsense").format(3, 0), "1");
    EXPECT_EQ(value("nonsense").format(3, 1), "1 1");
    value invalid("nonsense");
    invalid *= metres(1500);
    EXPECT_EQ(invalid.format(3, 7), "1.50e3 m");
    invalid *= 0.0;
    EXPECT_EQ(invalid.format(3, 3), "0.000 m");
    value nothing("nonsense");
    nothing *= 1500.0;
    EXPECT_EQ(nothing.format(3, 7), "1.50e3 1");
}

} // namespace
