// The number in front of a unit.
#include "units/quantities.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>

namespace {

using si::value;
using namespace vela_test;

const double infinite = std::numeric_limits<double>::infinity();

TEST(ValueParseNumber, PlainNumbers)
{
    EXPECT_TRUE(reads("0", 0, ""));
    EXPECT_TRUE(reads("007", 7, ""));
    EXPECT_TRUE(reads("12.75", 12.75, ""));
    EXPECT_TRUE(reads(".5", 0.5, ""));
    EXPECT_TRUE(reads("5.", 5, ""));
    EXPECT_TRUE(reads("5.m", 5, "m"));
    EXPECT_TRUE(reads(".5m", 0.5, "m"));
    EXPECT_TRUE(reads("123456789.125 s", 123456789.125, "s"));
}

TEST(ValueParseNumber, SignedNumbers)
{
    EXPECT_TRUE(reads("+5", 5, ""));
    EXPECT_TRUE(reads("-5", -5, ""));
    EXPECT_TRUE(reads("-.5 m", -0.5, "m"));
    EXPECT_TRUE(reads("+.5", 0.5, ""));
    EXPECT_TRUE(reads("-5.", -5, ""));
    EXPECT_TRUE(reads("-0", 0, ""));
}

TEST(ValueParseNumber, ExponentsOfTen)
{
    EXPECT_TRUE(reads("1e3", 1000, ""));
    EXPECT_TRUE(reads("1E3", 1000, ""));
    EXPECT_TRUE(reads("1e+3 m", 1000, "m"));
    EXPECT_TRUE(reads("1e-3m", 0.001, "m"));
    EXPECT_TRUE(reads("1.e3", 1000, ""));
    EXPECT_TRUE(reads("-.5E-1", -0.05, ""));
    EXPECT_TRUE(reads("1e003", 1000, ""));
    EXPECT_TRUE(reads("2.5e-7 A", 2.5e-7, "A"));
    EXPECT_TRUE(reads("1e3*m", 1000, "m"));
}

TEST(ValueParseNumber, AnEAtTheEndIsTheElementaryCharge)
{
    EXPECT_TRUE(reads("5e", 5 * 1.60217733e-19, "s A"));
    EXPECT_TRUE(reads("5 e", 5 * 1.60217733e-19, "s A"));
    EXPECT_TRUE(reads("(5e)", 5 * 1.60217733e-19, "s A"));
    EXPECT_TRUE(reads("5e*m", 5 * 1.60217733e-19, "m s A"));
    EXPECT_TRUE(reads("2/5e", 0.4 / 1.60217733e-19, "s^-1 A^-1"));
    EXPECT_TRUE(reads("-.5e", -0.5 * 1.60217733e-19, "s A"));
}

TEST(ValueParseNumber, ACapitalEAtTheEndIsThePrefix)
{
    EXPECT_TRUE(reads("5E", 5e18, ""));
}

TEST(ValueParseNumber, AnELetterBehindAnExponentEndsTheNumber)
{
    EXPECT_TRUE(reads("1e3e", 1000 * 1.60217733e-19, "s A"));
    EXPECT_TRUE(reads("1e3eV", 1000 * 1.60217733e-19, "m^2 kg s^-2"));
    EXPECT_TRUE(reads("1e3EV", 1e21, "m^2 kg s^-3 A^-1"));
    EXPECT_TRUE(fails("1e3e5"));
}

TEST(ValueParseNumber, AnEBeforeALetterFails)
{
    EXPECT_TRUE(fails("1eV"));
    EXPECT_TRUE(fails("5 m*1eV"));
    EXPECT_TRUE(fails("1EV"));
    EXPECT_TRUE(fails("1EHz"));
    EXPECT_TRUE(fails("1e m"));
    EXPECT_TRUE(fails("5e "));
    EXPECT_TRUE(fails("1e.5"));
    EXPECT_TRUE(fails("1ee3"));
}

TEST(ValueParseNumber, AnEBehindABlankIsAUnit)
{
    EXPECT_TRUE(reads("1 eV", 1.60217733e-19, "m^2 kg s^-2"));
    EXPECT_TRUE(reads("1 EV", 1e18, "m^2 kg s^-3 A^-1"));
    EXPECT_TRUE(fails("1 e3"));
}

TEST(ValueParseNumber, ASecondPointFails)
{
    EXPECT_TRUE(fails("1.2.3"));
    EXPECT_TRUE(fails("1.2."));
    EXPECT_TRUE(fails("..5"));
    EXPECT_TRUE(fails(".5."));
    EXPECT_TRUE(fails("5..m"));
    EXPECT_TRUE(fails("1.5e3.5"));
    EXPECT_TRUE(fails("-1.2.3 m"));
}

// The number's text is scanned as a whole, and what is read of it is its longest number.
TEST(ValueParseNumber, APointBehindTheExponentIsScannedButNotRead)
{
    EXPECT_TRUE(reads("1e3.5", 1000, ""));
    EXPECT_TRUE(reads("1e3.5 m", 1000, "m"));
    EXPECT_TRUE(reads("1e3.m", 1000, "m"));
}

TEST(ValueParseNumber, TextWithoutDigitsFails)
{
    for (const char* const given : {"+", "-", ".", "-.", "+.", "-m", "+m", ".m", "--5", "+-5", "-+5", ".e5", "-e5",
                                    "-e", "+e3", ". 5", "- m", "-.e3", "-(5)"})
        EXPECT_TRUE(fails(given));
}

TEST(ValueParseNumber, AnExponentWithoutDigitsIsAsSscanfReadsIt)
{
    double number = 0;
    const bool is_read = std::sscanf("2e+", "%lf", &number) == 1;
    for (const char* const given : {"2e+", "2e-", "2e+ ", "2E-"})
    {
        if (is_read)
            EXPECT_TRUE(reads(given, number, ""));
        else
            EXPECT_TRUE(fails(given));
    }
    EXPECT_TRUE(fails("2e+-3"));
    EXPECT_TRUE(fails("2e--3"));
}

TEST(ValueParseNumber, OtherFormsOfNumbersAreNone)
{
    for (const char* const given : {"0x10", "0x1p3", "inf", "nan", "infinity", "-inf", "+nan", "-infinity", "1,5",
                                    "1'000", "1_000", "0b1", "1.5L", "1d3", "\xD9\xA1"})
        EXPECT_TRUE(fails(given));
    EXPECT_TRUE(reads("1f", 1e-15, "")); // one femto
}

TEST(ValueParseNumber, NumbersBeyondADoubleAreInfinite)
{
    EXPECT_TRUE(reads("1e400", infinite, ""));
    EXPECT_TRUE(reads("-1e400 m", -infinite, "m"));
    EXPECT_TRUE(reads("1e99999999999999999999", infinite, ""));
    EXPECT_TRUE(reads(repeated("9", 400), infinite, ""));
    EXPECT_TRUE(reads("1e308 Y", infinite, ""));
}

TEST(ValueParseNumber, NumbersBelowADoubleAreZero)
{
    EXPECT_TRUE(reads("1e-400", 0, ""));
    EXPECT_TRUE(reads("-1e-400 m", 0, "m"));
    EXPECT_TRUE(reads("1e-99999999999999999999", 0, ""));
    EXPECT_TRUE(reads("0." + repeated("0", 400) + "1", 0, ""));
    EXPECT_TRUE(reads("0e99999999999999999999", 0, ""));
}

TEST(ValueParseNumber, DigitsBeyondTheEndsOfADoubleCancel)
{
    EXPECT_TRUE(reads("0." + repeated("0", 399) + "1e400", 1, ""));
    EXPECT_TRUE(reads("1" + repeated("0", 400) + "e-400", 1, ""));
}

TEST(ValueParseNumber, TinyNumbersKeepTheirBits)
{
    EXPECT_EQ(value("4.9406564584124654e-324").value_in_baseunits(), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(value("2.2250738585072014e-308").value_in_baseunits(), std::numeric_limits<double>::min());
    EXPECT_EQ(value("1.7976931348623157e308").value_in_baseunits(), std::numeric_limits<double>::max());
    EXPECT_EQ(value("0.1").value_in_baseunits(), 0.1);
    EXPECT_EQ(value("1.0000000000000002").value_in_baseunits(), 1.0 + std::numeric_limits<double>::epsilon());
}

} // namespace
