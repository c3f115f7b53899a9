// Printing: which unit is named, and which prefix it gets.
#include "units/quantities.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using si::fraction;
using si::value;
using namespace vela_test;

value metres(double number)
{
    return quantity(number, {{metre, 1}});
}
value kilograms(double number)
{
    return quantity(number, {{kilogram, 1}});
}
value seconds(double number)
{
    return quantity(number, {{second, 1}});
}
value radians(double number)
{
    return quantity(number, {{radian, 1}});
}
value volts(double number)
{
    return quantity(number, {{metre, 2}, {kilogram, 1}, {second, -3}, {ampere, -1}});
}

// The named unit

TEST(ValueFormatUnit, AFifthPowerOfALengthIsComposedAndHasNoPrefix)
{
    EXPECT_EQ(quantity(1500, {{metre, 5}}).format(3, 3), "1.50e3 m^5");
}

TEST(ValueFormatUnit, VoltsPerAmpereAreOhms)
{
    EXPECT_EQ(value("3 V/A").format(1, 1), "3 ohm");
    EXPECT_EQ(value("3 V/A").format(3, 3), "3.00 ohm");
}

TEST(ValueFormatUnit, OnePerSecondIsAHertzAndNoBecquerel)
{
    EXPECT_EQ(value("1/s").format(3, 1), "1 Hz");
    EXPECT_EQ(value("2 Bq").format(3, 1), "2.00 Hz");
    EXPECT_EQ(value("5 Ci").format(3, 3), "185 GHz");
}

TEST(ValueFormatUnit, TheFirstRowOfADimensionIsTheName)
{
    EXPECT_EQ(value("2 J").format(2, 1), "2.0 J");
    EXPECT_EQ(value("2 N*m").format(2, 1), "2.0 J");
    EXPECT_EQ(value("2 eV").format(3, 1), "3.20e-19 J");
    EXPECT_EQ(value("2 bar").format(2, 3), "200 kPa");
    EXPECT_EQ(value("2 e").format(3, 1), "3.20e-19 C");
    EXPECT_EQ(value("2 G").format(2, 3), "200 \xB5T");
    EXPECT_EQ(value("2 h").format(3, 3), "7.20e3 s");
    EXPECT_EQ(value("90 deg").format(3, 3), "1.57 rad");
    EXPECT_EQ(value("2 pc").format(3, 1), "6.17e16 m");
    EXPECT_EQ(value("2 angstrom").format(2, 3), "200 pm");
    EXPECT_EQ(value("2 fermi").format(2, 3), "2.0 fm");
    EXPECT_EQ(value("6 lux*m*m").format(2, 3), "6.0 lm");
    EXPECT_EQ(value("6 J/kg").format(2, 3), "6.0 Gy");
    EXPECT_EQ(value("6 m*m/s/s").format(2, 3), "6.0 Gy");
}

TEST(ValueFormatUnit, AnAreaIsCountedInBarns)
{
    EXPECT_EQ(value("5 m*m").format(3, 1), "5.00e28 barn");
    EXPECT_EQ(quantity(2.5e-28, {{metre, 2}}).format(3, 3), "2.50 barn");
    EXPECT_EQ(quantity(2.5e-24, {{metre, 2}}).format(3, 3), "2.50e4 barn");
    EXPECT_EQ(quantity(std::numeric_limits<double>::infinity(), {{metre, 2}}).format(3, 3), "infe0 barn");
}

TEST(ValueFormatUnit, AMassIsCountedInGrams)
{
    EXPECT_EQ(kilograms(1.5).format(2, 3), "1.5 kg");
    EXPECT_EQ(kilograms(1.5).format(3, 1), "1.50e3 g");
    EXPECT_EQ(kilograms(0.0015).format(3, 3), "1.50 g");
    EXPECT_EQ(kilograms(1.5e-6).format(3, 3), "1.50 mg");
    EXPECT_EQ(kilograms(1.5e-9).format(3, 3), "1.50 \xB5g");
    EXPECT_EQ(kilograms(1).format(3, 3), "1 kg");
    EXPECT_EQ(kilograms(999).format(3, 3), "999 kg");
    EXPECT_EQ(kilograms(0).format(3, 3), "0.000 g");
}

TEST(ValueFormatUnit, AMassAboveAThousandKilogramsIsCountedInTonnes)
{
    EXPECT_EQ(kilograms(2000).format(3, 1), "2.00 t");
    EXPECT_EQ(kilograms(2000).format(3, 3), "2.00 t");
    EXPECT_EQ(kilograms(1001).format(4, 3), "1.001 t");
    EXPECT_EQ(kilograms(2.5e6).format(3, 3), "2.50 kt");
    EXPECT_EQ(kilograms(2.5e9).format(3, 3), "2.50 Mt");
    EXPECT_EQ(kilograms(2.5e6).format(3, 1), "2.50e3 t");
    EXPECT_EQ(kilograms(std::numeric_limits<double>::infinity()).format(3, 3), "infe0 t");
}

TEST(ValueFormatUnit, AMassOfExactlyAThousandKilogramsIsCountedInGrams)
{
    EXPECT_EQ(kilograms(1000).format(3, 1), "1.00e6 g");
    EXPECT_EQ(kilograms(1000).format(3, 3), "1.00e6 g") << "a thousand kg are too many for the prefix";
}

TEST(ValueFormatUnit, ANegativeMassIsCountedInGramsHoweverGreat)
{
    EXPECT_EQ(kilograms(-2000).format(3, 3), "-2.00e6 g");
    EXPECT_EQ(kilograms(-1.5).format(3, 3), "-1.50 kg");
}

TEST(ValueFormatUnit, AFiniteNumberIsFiniteInEveryUnit)
{
    EXPECT_EQ(kilograms(-1e306).format(4, 3), "-1.000e309 g");
    EXPECT_EQ(kilograms(-2.5e305).format(2, 0), "-2.5e308g");
    EXPECT_EQ(kilograms(-1e305).format(2, 0), "-1.0e308g");
    EXPECT_EQ(kilograms(std::numeric_limits<double>::lowest()).format(4, 3), "-1.798e311 g");
    EXPECT_EQ(kilograms(std::numeric_limits<double>::max()).format(4, 3), "1.798e305 t");
    EXPECT_EQ(quantity(1e300, {{metre, 2}}).format(3, 3), "1.00e328 barn");
    EXPECT_EQ(quantity(1.8e280, {{metre, 2}}).format(3, 1), "1.80e308 barn");
    EXPECT_EQ(quantity(1.7e280, {{metre, 2}}).format(3, 1), "1.70e308 barn");
    EXPECT_EQ(quantity(-std::numeric_limits<double>::max(), {{metre, 2}}).format(4, 2), "-1.798e336barn");
    std::string number;
    std::string unit;
    quantity(1e300, {{metre, 2}}).format(number, unit, 1, 3);
    EXPECT_EQ(number, "1e328");
    EXPECT_EQ(unit, "barn");
}

TEST(ValueFormatUnit, AMassThatIsNoNumberIsCountedInGrams)
{
    EXPECT_EQ(kilograms(std::numeric_limits<double>::quiet_NaN()).format(3, 3), "nan g");
}

// Prefixes

TEST(ValueFormatPrefix, ALengthOf1500MetresIsOneAndAHalfKilometres)
{
    EXPECT_EQ(value("1500 m").format(2, 3), "1.5 km");
    EXPECT_EQ(value("1500 m").format(3, 3), "1.50 km");
    EXPECT_EQ(value("1500 m").format(2, 2), "1.5km");
}

TEST(ValueFormatPrefix, EveryThousandthAndEveryThousand)
{
    EXPECT_EQ(volts(1.5e-24).format(2, 3), "1.5 yV");
    EXPECT_EQ(volts(1.5e-21).format(2, 3), "1.5 zV");
    EXPECT_EQ(volts(1.5e-18).format(2, 3), "1.5 aV");
    EXPECT_EQ(volts(1.5e-15).format(2, 3), "1.5 fV");
    EXPECT_EQ(volts(1.5e-12).format(2, 3), "1.5 pV");
    EXPECT_EQ(volts(1.5e-9).format(2, 3), "1.5 nV");
    EXPECT_EQ(volts(1.5e-6).format(2, 3), "1.5 \xB5V");
    EXPECT_EQ(volts(1.5e-3).format(2, 3), "1.5 mV");
    EXPECT_EQ(volts(1.5).format(2, 3), "1.5 V");
    EXPECT_EQ(volts(1.5e3).format(2, 3), "1.5 kV");
    EXPECT_EQ(volts(1.5e6).format(2, 3), "1.5 MV");
    EXPECT_EQ(volts(1.5e9).format(2, 3), "1.5 GV");
    EXPECT_EQ(volts(1.5e12).format(2, 3), "1.5 TV");
    EXPECT_EQ(volts(1.5e15).format(2, 3), "1.5 PV");
    EXPECT_EQ(volts(1.5e18).format(2, 3), "1.5 EV");
    EXPECT_EQ(volts(1.5e21).format(2, 3), "1.5 ZV");
    EXPECT_EQ(volts(1.5e24).format(2, 3), "1.5 YV");
}

TEST(ValueFormatPrefix, TensAndHundredsStayBeforeTheSamePrefix)
{
    EXPECT_EQ(volts(15e3).format(3, 3), "15.0 kV");
    EXPECT_EQ(volts(150e3).format(3, 3), "150 kV");
    EXPECT_EQ(volts(15e-6).format(3, 3), "15.0 \xB5V");
    EXPECT_EQ(volts(150e-6).format(3, 3), "150 \xB5V");
    EXPECT_EQ(volts(-15e3).format(3, 3), "-15.0 kV");
    EXPECT_EQ(volts(15).format(3, 3), "15.0 V");
    EXPECT_EQ(volts(150).format(3, 3), "150 V");
}

TEST(ValueFormatPrefix, ATenthStaysAsItIsBehindABlank)
{
    EXPECT_EQ(metres(0.5).format(1, 3), "0.5 m");
    EXPECT_EQ(metres(0.5).format(3, 3), "0.500 m");
    EXPECT_EQ(metres(0.1).format(3, 3), "0.100 m");
    EXPECT_EQ(metres(-0.5).format(3, 3), "-0.500 m");
}

TEST(ValueFormatPrefix, ATenthGetsAPrefixWithoutABlank)
{
    EXPECT_EQ(metres(0.5).format(3, 2), "500mm");
    EXPECT_EQ(metres(-0.5).format(3, 2), "-500mm");
    EXPECT_EQ(metres(0.1).format(3, 2), "100mm");
}

TEST(ValueFormatPrefix, AHundredthGetsAPrefixEitherWay)
{
    EXPECT_EQ(metres(0.05).format(3, 3), "50.0 mm");
    EXPECT_EQ(metres(0.05).format(3, 2), "50.0mm");
    EXPECT_EQ(metres(0.0999).format(3, 3), "99.9 mm");
}

// 0.09999 belongs to the decade of 0.1, and 999.9 to that of 1000.
TEST(ValueFormatPrefix, TheDecadeIsThatOfTheNumberAndATenThousandthOfADecade)
{
    EXPECT_EQ(metres(0.09999).format(5, 3), "0.09999 m");
    EXPECT_EQ(metres(999.9).format(5, 3), "0.9999 km");
    EXPECT_EQ(metres(999.7).format(4, 3), "999.7 m");
    EXPECT_EQ(volts(999.9).format(3, 2), "1.00kV");
    EXPECT_EQ(volts(999900).format(4, 3), "1.000 MV");
}

TEST(ValueFormatPrefix, TheRangeOfALengthEndsAtKilo)
{
    EXPECT_EQ(metres(15e3).format(3, 3), "15.0 km");
    EXPECT_EQ(metres(150e3).format(3, 3), "150 km");
    EXPECT_EQ(metres(1.5e6).format(3, 3), "1.50e6 m") << "1500 km are too many for the prefix";
    EXPECT_EQ(metres(999e3).format(3, 3), "999 km");
    EXPECT_EQ(metres(1e6).format(3, 3), "1.00e6 m");
}

TEST(ValueFormatPrefix, ATimeHasNoPrefixAboveOne)
{
    EXPECT_EQ(seconds(150).format(3, 3), "150 s");
    EXPECT_EQ(seconds(1500).format(3, 3), "1.50e3 s");
    EXPECT_EQ(seconds(0.0015).format(3, 3), "1.50 ms");
}

TEST(ValueFormatPrefix, AnAngleHasMilliOnly)
{
    EXPECT_EQ(radians(0.0015).format(3, 3), "1.50 mrad");
    EXPECT_EQ(radians(0.00015).format(3, 3), "0.150 mrad");
    EXPECT_EQ(radians(0.00005).format(3, 3), "0.0500 mrad");
    EXPECT_EQ(radians(0.000005).format(3, 3), "5.00e-6 rad") << "0.005 mrad are too few for the prefix";
    EXPECT_EQ(radians(1500).format(3, 3), "1.50e3 rad");
}

TEST(ValueFormatPrefix, ASolidAngleHasNone)
{
    EXPECT_EQ(quantity(1500, {{steradian, 1}}).format(3, 3), "1.50e3 sr");
    EXPECT_EQ(quantity(0.0015, {{steradian, 1}}).format(3, 3), "1.50e-3 sr");
    EXPECT_EQ(quantity(0.05, {{steradian, 1}}).format(3, 3), "0.0500 sr");
}

TEST(ValueFormatPrefix, BeyondTheLastPrefixes)
{
    EXPECT_EQ(volts(1.5e26).format(3, 3), "150 YV");
    EXPECT_EQ(volts(1.5e27).format(3, 3), "1.50e27 V");
    EXPECT_EQ(volts(1.5e-25).format(3, 3), "0.150 yV");
    EXPECT_EQ(volts(1.5e-26).format(3, 3), "0.0150 yV");
    EXPECT_EQ(volts(1.5e-27).format(3, 3), "1.50e-27 V");
}

TEST(ValueFormatPrefix, ANumberNeedsBothFlags)
{
    EXPECT_EQ(value(1500.0).format(3, 2), "1.50e3");
    EXPECT_EQ(value(1500.0).format(3, 4), "1.50e3");
    EXPECT_EQ(value(1500.0).format(3, 6), "1.50k");
    EXPECT_EQ(value(0.5).format(3, 6), "500m");
    EXPECT_EQ(value(0.5).format(3, 7), "0.500 ");
    EXPECT_EQ(value(1.5e-6).format(3, 7), "1.50 \xB5");
    EXPECT_EQ(value(1.5e-18).format(3, 7), "1.50 a");
}

TEST(ValueFormatPrefix, AMassOfATonneHasNoPrefixBelowKilo)
{
    EXPECT_EQ(kilograms(150e3).format(3, 3), "150 t");
    EXPECT_EQ(kilograms(1.5e30).format(3, 3), "1.50e27 t");
}

// Reading back

TEST(ValueFormatReadBack, AttoIsNotRead)
{
    const std::string printed = volts(1.5e-18).format(3, 3);
    EXPECT_EQ(printed, "1.50 aV");
    EXPECT_FALSE(value(printed).is_valid());
}

TEST(ValueFormatReadBack, ExaBehindADigitIsTakenForAnExponent)
{
    const std::string printed = volts(1.5e18).format(3, 2);
    EXPECT_EQ(printed, "1.50EV");
    EXPECT_FALSE(value(printed).is_valid());
    EXPECT_TRUE(is_quantity(value(volts(1.5e18).format(3, 3)), 1.5e18, "m^2 kg s^-3 A^-1"));
}

TEST(ValueFormatReadBack, MilliOfANumberReadsAsMetres)
{
    EXPECT_TRUE(is_quantity(value(value(0.5).format(3, 6)), 500, "m"));
}

TEST(ValueFormatReadBack, APowerOfAComposedUnitTakesTheNumberToo)
{
    EXPECT_TRUE(is_quantity(value(quantity(3, {{metre, 5}}).format(3, 1)), 243, "m^5"));
}

TEST(ValueFormatReadBack, AMissingNumeratorReadsWithoutABlankOnly)
{
    const value density = quantity(3, {{metre, -3}});
    EXPECT_TRUE(is_quantity(value(density.format(3, 0)), 3, "m^-3"));
    EXPECT_FALSE(value(density.format(3, 1)).is_valid());
}

TEST(ValueFormatReadBack, MicroIsOneByteBothWays)
{
    const std::string printed = metres(1.5e-6).format(3, 3);
    EXPECT_EQ(printed, "1.50 \xB5m");
    EXPECT_TRUE(is_quantity(value(printed), 1.5e-6, "m"));
}

} // namespace
