// The text form of quantities: operators, powers, parentheses, units and prefixes.
#include "units/quantities.h"

#include <si/value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using si::value;
using namespace vela_test;

TEST(ValueParse, ANumberAndAUnit)
{
    EXPECT_TRUE(reads("1.5 mm", 0.0015, "m"));
    EXPECT_TRUE(reads("1.5mm", 0.0015, "m"));
    EXPECT_TRUE(reads("1.5  mm", 0.0015, "m"));
    EXPECT_TRUE(reads("1e3 m", 1000, "m"));
    EXPECT_TRUE(reads("m", 1, "m"));
}

TEST(ValueParse, ANumberAloneHasNoDimension)
{
    EXPECT_TRUE(reads("5", 5, ""));
    EXPECT_TRUE(reads("5 ", 5, ""));
    EXPECT_TRUE(reads("5   ", 5, ""));
    EXPECT_TRUE(reads("0", 0, ""));
}

TEST(ValueParse, AnEmptyTextFails)
{
    EXPECT_TRUE(fails(""));
}

TEST(ValueParse, BlanksAloneAreTheNumberOne)
{
    EXPECT_TRUE(reads(" ", 1, ""));
    EXPECT_TRUE(reads("    ", 1, ""));
}

TEST(ValueParse, BlanksStandBeforeAUnitOnly)
{
    EXPECT_TRUE(reads(" m", 1, "m"));
    EXPECT_TRUE(reads("   kV", 1000, "m^2 kg s^-3 A^-1"));
    EXPECT_TRUE(reads("5     m", 5, "m"));
    EXPECT_TRUE(reads("5 m/ s", 5, "m s^-1"));
    EXPECT_TRUE(fails("m "));
    EXPECT_TRUE(fails("5 m "));
    EXPECT_TRUE(fails(" 5"));
    EXPECT_TRUE(fails(" 5 m"));
    EXPECT_TRUE(fails("k m"));
    EXPECT_TRUE(fails("m s"));
    EXPECT_TRUE(fails("m /s"));
    EXPECT_TRUE(fails("m ^2"));
    EXPECT_TRUE(fails("m^ 2"));
    EXPECT_TRUE(fails("m^2 "));
    EXPECT_TRUE(fails("- 5"));
    EXPECT_TRUE(fails("5 5"));
}

TEST(ValueParse, OnlyTheBlankIsABlank)
{
    for (const char* const between : {"\t", "\n", "\r", "\v", "\f", "\xA0", "_"})
        EXPECT_TRUE(fails(std::string("5") + between + "m"));
    EXPECT_TRUE(fails(std::string("5\0m", 3)));
    EXPECT_TRUE(fails(std::string("m\0", 2)));
    EXPECT_TRUE(fails(std::string("5\0", 2)));
}

// Products and quotients

TEST(ValueParse, ProductsAndQuotients)
{
    EXPECT_TRUE(reads("m*s", 1, "m s"));
    EXPECT_TRUE(reads("m/s", 1, "m s^-1"));
    EXPECT_TRUE(reads("5 m/s", 5, "m s^-1"));
    EXPECT_TRUE(reads("6 m/2 s", 3, "m s^-1"));
    EXPECT_TRUE(reads("2 m*3 m", 6, "m^2"));
    EXPECT_TRUE(reads("1/s", 1, "s^-1"));
    EXPECT_TRUE(reads("kg*m/s^2", 1, "m kg s^-2"));
    EXPECT_TRUE(reads("3 V/A", 3, "m^2 kg s^-3 A^-2"));
    EXPECT_TRUE(reads("2*3", 6, ""));
    EXPECT_TRUE(reads("1/2", 0.5, ""));
    EXPECT_TRUE(reads("1/2 m", 0.5, "m^-1"));
    EXPECT_TRUE(reads("k*m", 1000, "m"));
    EXPECT_TRUE(reads("m*-2", -2, "m"));
    EXPECT_TRUE(reads("m/-2 s", -0.5, "m s^-1"));
}

TEST(ValueParse, OperatorsAssociateToTheLeft)
{
    EXPECT_TRUE(reads("m/s/s", 1, "m s^-2"));
    EXPECT_TRUE(reads("m/s*s", 1, "m"));
    EXPECT_TRUE(reads("m*s/s*s", 1, "m s"));
    EXPECT_TRUE(reads("8/4/2", 1, ""));
    EXPECT_TRUE(reads("8/4*2", 4, ""));
    EXPECT_TRUE(reads("m/s/A/K", 1, "m s^-1 A^-1 K^-1"));
}

TEST(ValueParse, ParenthesesGroup)
{
    EXPECT_TRUE(reads("m/(s*s)", 1, "m s^-2"));
    EXPECT_TRUE(reads("m/(s/s)", 1, "m"));
    EXPECT_TRUE(reads("8/(4/2)", 4, ""));
    EXPECT_TRUE(reads("m/(s*(A/K))", 1, "m s^-1 A^-1 K"));
    EXPECT_TRUE(reads("(m)*s", 1, "m s"));
    EXPECT_TRUE(reads("s*(m)", 1, "m s"));
    EXPECT_TRUE(reads("1*(m)*(s)", 1, "m s"));
    EXPECT_TRUE(reads("(5 m)/s", 5, "m s^-1"));
    EXPECT_TRUE(reads("(5)*2", 10, ""));
}

TEST(ValueParse, OuterParenthesesAreTakenOff)
{
    EXPECT_TRUE(reads("(m)", 1, "m"));
    EXPECT_TRUE(reads("((m))", 1, "m"));
    EXPECT_TRUE(reads("(((5 mm/s)))", 0.005, "m s^-1"));
    EXPECT_TRUE(reads("(5)", 5, ""));
    EXPECT_TRUE(reads("( )", 1, ""));
    EXPECT_TRUE(reads("( m)", 1, "m"));
    EXPECT_TRUE(fails("()"));
    EXPECT_TRUE(fails("(())"));
    EXPECT_TRUE(fails("(m )"));
}

TEST(ValueParse, OuterParenthesesAreTakenOffEvenIfTheyDoNotBelongTogether)
{
    EXPECT_TRUE(fails("(m)*(s)"));
    EXPECT_TRUE(fails("(m)/(s)"));
    EXPECT_TRUE(fails("(m*s)/(A*K)"));
    EXPECT_TRUE(fails("((m)*(s))"));
    EXPECT_TRUE(fails("(m)^(1/2)"));
    EXPECT_TRUE(fails("(4)*(5)"));
    EXPECT_TRUE(fails("(4)*(5)*6")) << "the left side is wrapped so";
    EXPECT_TRUE(fails("6/((4)*(5))"));
}

TEST(ValueParse, UnbalancedParenthesesFail)
{
    for (const char* const given :
         {"(",      ")",    "(m",   "m)",   "((m)",  "(m))", "(m*s", "m*s)",  "m*(s", "m)*s", "m*s)*A", "(m*s*A",
          "m^(1/2", "(m^2", "m^2)", "m)(s", "m)^(2", ")m(",  ")(",   "m*)s(", "5)",   "(5",   "5 (m",   "m/(s))"})
        EXPECT_TRUE(fails(given));
}

TEST(ValueParse, ParenthesesDoNotMultiply)
{
    EXPECT_TRUE(fails("(m)s"));
    EXPECT_TRUE(fails("m(s)"));
    EXPECT_TRUE(fails("5(m)"));
    EXPECT_TRUE(fails("5 (m)"));
    EXPECT_TRUE(fails("k(m)"));
}

TEST(ValueParse, AnOperatorNeedsBothSides)
{
    for (const char* const given :
         {"*", "/", "m*", "*m", "m/", "/m", "m**s", "m//s", "m*/s", "m*()", "()*m", "/", "5/"})
        EXPECT_TRUE(fails(given));
}

TEST(ValueParse, AnUnknownSideMakesTheWholeInvalid)
{
    EXPECT_TRUE(fails("m*nonsense"));
    EXPECT_TRUE(fails("nonsense*m"));
    EXPECT_TRUE(fails("m/nonsense"));
    EXPECT_TRUE(fails("nonsense/m"));
    EXPECT_TRUE(fails("nonsense^2"));
    EXPECT_TRUE(fails("m/(s*nonsense)"));
    EXPECT_TRUE(fails("nonsense*m*s"));
    EXPECT_TRUE(fails("5 m*nonsense*A"));
}

TEST(ValueParse, OtherOperatorsAreNone)
{
    for (const char* const given : {"m+s", "m-s", "5+3", "5-3", "5 m+3 m", "m.s", "m%", "m,s", "m\\s", "[m]", "{m}"})
        EXPECT_TRUE(fails(given));
}

TEST(ValueParse, DivisionByZeroIsRead)
{
    EXPECT_TRUE(reads("1/0", std::numeric_limits<double>::infinity(), ""));
    EXPECT_TRUE(reads("m/0", std::numeric_limits<double>::infinity(), "m"));
    EXPECT_TRUE(reads("0/0", std::nan(""), ""));
}

// Powers

TEST(ValueParsePower, RaisesToAFraction)
{
    EXPECT_TRUE(reads("m^2", 1, "m^2"));
    EXPECT_TRUE(reads("m^(1/2)", 1, "m^1/2"));
    EXPECT_TRUE(reads("m^-2", 1, "m^-2"));
    EXPECT_TRUE(reads("m^(-1/2)", 1, "m^1/-2"));
    EXPECT_TRUE(reads("m^(2/4)", 1, "m^1/2"));
    EXPECT_TRUE(reads("m^0", 1, ""));
    EXPECT_TRUE(reads("km^2", 1e6, "m^2"));
    EXPECT_TRUE(reads("m^2*s^3/A^(1/2)", 1, "m^2 s^3 A^1/-2"));
    EXPECT_TRUE(reads("2^3", 8, ""));
    EXPECT_TRUE(reads("2^-1", 0.5, ""));
    EXPECT_TRUE(reads("4^(1/2)", 2, ""));
}

TEST(ValueParsePower, OfParenthesesThatDoNotWrapTheWhole)
{
    EXPECT_TRUE(reads("(m/s)^2", 1, "m^2 s^-2"));
    EXPECT_TRUE(reads("(2 m/s)^3", 8, "m^3 s^-3"));
    EXPECT_TRUE(reads("((m/s)^2)", 1, "m^2 s^-2"));
    EXPECT_TRUE(reads("1/(m/s)^2", 1, "m^-2 s^2"));
    EXPECT_TRUE(reads("(m)^2", 1, "m^2"));
    EXPECT_TRUE(reads("(4 m^2)^-1", 0.0625, "m^-2"));
}

TEST(ValueParsePower, BindsMoreThanAProduct)
{
    EXPECT_TRUE(reads("m*s^2", 1, "m s^2"));
    EXPECT_TRUE(reads("m^2*s", 1, "m^2 s"));
    EXPECT_TRUE(reads("m^1/2", 0.5, "m"));
    EXPECT_TRUE(reads("m^-1/2", 0.5, "m^-1"));
    EXPECT_TRUE(reads("m/s^2", 1, "m s^-2"));
}

TEST(ValueParsePower, TakesTheNumberToo)
{
    EXPECT_TRUE(reads("3 m^2", 9, "m^2"));
    EXPECT_TRUE(reads("2 mm^2", 4e-6, "m^2"));
    EXPECT_TRUE(reads("-2^2", 4, ""));
    EXPECT_TRUE(reads("2e3^2", 4e6, ""));
    EXPECT_TRUE(reads("-2 m^3", -8, "m^3"));
    EXPECT_TRUE(reads("3*m^2", 3, "m^2"));
    EXPECT_TRUE(reads("-8^(1/3)", std::nan(""), ""));
}

TEST(ValueParsePower, TheRightmostIsTheLastToBeTaken)
{
    EXPECT_TRUE(reads("m^2^3", 1, "m^6"));
    EXPECT_TRUE(reads("2^3^2", 64, ""));
    EXPECT_TRUE(reads("m^(1/2)^2", 1, "m"));
}

TEST(ValueParsePower, TheRightSideIsTheTextOfAFraction)
{
    for (const char* const given :
         {"m^(2)", "m^2.0", "m^+2", "m^x", "m^(1/-2)", "m^s", "m^((1/2))", "m^2e1", "m^--1", "m^(1", "m^2m", "m^k"})
        EXPECT_TRUE(fails(given));
}

TEST(ValueParsePower, MissingDigitsOfTheFractionCountAsZero)
{
    EXPECT_TRUE(reads("m^", 1, ""));
    EXPECT_TRUE(reads("5 m^", 1, ""));
    EXPECT_TRUE(reads("m^-", 1, ""));
    EXPECT_TRUE(reads("m^(1/)", 1, "m^1/0"));
    EXPECT_TRUE(reads("2^(1/)", std::numeric_limits<double>::infinity(), ""));
    EXPECT_TRUE(reads("2^(/)", std::nan(""), ""));
    EXPECT_TRUE(reads("2 m^(/2)", 1, ""));
}

TEST(ValueParsePower, NeedsALeftSide)
{
    EXPECT_TRUE(fails("^"));
    EXPECT_TRUE(fails("^2"));
    EXPECT_TRUE(fails("^^2"));
    EXPECT_TRUE(fails("()^2"));
    EXPECT_TRUE(fails("m*^2"));
}

TEST(ValueParsePower, AnEmptyFractionIsZeroWhereverItStands)
{
    EXPECT_TRUE(reads("m^^2", 1, ""));
    EXPECT_TRUE(reads("m^*s", 1, "s"));
}

TEST(ValueParsePower, HugeExponentsWrap)
{
    EXPECT_TRUE(reads("m^2147483647*m", 1, "m^-2147483648"));
    EXPECT_TRUE(reads("m^-2147483648*m^-1", 1, "m^2147483647"));
    EXPECT_TRUE(reads("m^4294967298", 1, "m^2"));
}

// Units and prefixes

TEST(ValueParseUnit, AnExactNameGoesBeforeAPrefix)
{
    EXPECT_TRUE(reads("cd", 1, "cd"));
    EXPECT_TRUE(reads("Pa", 1, "m^-1 kg s^-2"));
    EXPECT_TRUE(reads("h", 3600, "s"));
    EXPECT_TRUE(reads("m", 1, "m"));
    EXPECT_TRUE(reads("T", 1, "kg s^-2 A^-1"));
    EXPECT_TRUE(reads("G", 1e-4, "kg s^-2 A^-1"));
    EXPECT_TRUE(reads("Gy", 1, "m^2 s^-2"));
    EXPECT_TRUE(reads("mol", 1, "mol"));
    EXPECT_TRUE(reads("pc", 3.0856775807e16, "m"));
    EXPECT_TRUE(reads("kg", 1, "kg"));
}

TEST(ValueParseUnit, APrefixAndAUnit)
{
    EXPECT_TRUE(reads("mm", 1e-3, "m"));
    EXPECT_TRUE(reads("ms", 1e-3, "s"));
    EXPECT_TRUE(reads("keV", 1.60217733e-16, "m^2 kg s^-2"));
    EXPECT_TRUE(reads("hPa", 100, "m^-1 kg s^-2"));
    EXPECT_TRUE(reads("dm", 0.1, "m"));
    EXPECT_TRUE(reads("ccd", 0.01, "cd"));
    EXPECT_TRUE(reads("hh", 360000, "s"));
    EXPECT_TRUE(reads("3 kt", 3e6, "kg"));
    EXPECT_TRUE(reads("GHz", 1e9, "s^-1"));
}

TEST(ValueParseUnit, APrefixAloneIsANumber)
{
    EXPECT_TRUE(reads("k", 1000, ""));
    EXPECT_TRUE(reads("5 k", 5000, ""));
    EXPECT_TRUE(reads("5k", 5000, ""));
    EXPECT_TRUE(reads("5M", 5e6, ""));
    EXPECT_TRUE(reads("5d", 0.5, ""));
    EXPECT_TRUE(reads("k/s", 1000, "s^-1"));
}

TEST(ValueParseUnit, ThereIsNoMinute)
{
    EXPECT_TRUE(fails("min"));
    EXPECT_TRUE(fails("5 min"));
}

TEST(ValueParseUnit, ThereIsNoAttoAndNoDeca)
{
    EXPECT_TRUE(fails("a"));
    EXPECT_TRUE(fails("am"));
    EXPECT_TRUE(fails("aV"));
    EXPECT_TRUE(fails("da"));
    EXPECT_TRUE(fails("dam"));
    EXPECT_TRUE(fails("5 a"));
}

TEST(ValueParseUnit, TheMicroSignIsOneByte)
{
    EXPECT_TRUE(reads("\xB5m", 1e-6, "m"));
    EXPECT_TRUE(reads("um", 1e-6, "m"));
    EXPECT_TRUE(reads("3 \xB5", 3e-6, ""));
    EXPECT_TRUE(reads("2.5\xB5s", 2.5e-6, "s"));
}

TEST(ValueParseUnit, TheMicroSignInUtf8IsNotRead)
{
    EXPECT_TRUE(fails("\xC2\xB5m"));
    EXPECT_TRUE(fails("\xCE\xBCm"));
    EXPECT_TRUE(fails("\xC2\xB5"));
}

TEST(ValueParseUnit, RefusedCombinations)
{
    EXPECT_TRUE(fails("Mg"));
    EXPECT_TRUE(fails("Gg"));
    EXPECT_TRUE(fails("ks"));
    EXPECT_TRUE(fails("hs"));
    EXPECT_TRUE(fails("Ms"));
    EXPECT_TRUE(fails("dt"));
    EXPECT_TRUE(fails("mt"));
    EXPECT_TRUE(fails("mkg"));
    EXPECT_TRUE(fails("kkg"));
}

TEST(ValueParseUnit, CombinationsAtTheEdgeOfTheRefusedOnes)
{
    EXPECT_TRUE(reads("hg", 0.1, "kg"));
    EXPECT_TRUE(reads("ds", 0.1, "s"));
    EXPECT_TRUE(reads("ht", 1e5, "kg"));
    EXPECT_TRUE(reads("mg", 1e-6, "kg"));
    EXPECT_TRUE(reads("kt", 1e6, "kg"));
}

TEST(ValueParseUnit, ThePrefixRangeOfThePrinterDoesNotCount)
{
    EXPECT_TRUE(reads("Mm", 1e6, "m"));
    EXPECT_TRUE(reads("YK", 1e24, "K"));
    EXPECT_TRUE(reads("kmol", 1000, "mol"));
    EXPECT_TRUE(reads("krad", 1000, "rad"));
    EXPECT_TRUE(reads("nrad", 1e-9, "rad"));
    EXPECT_TRUE(reads("msr", 1e-3, "sr"));
    EXPECT_TRUE(reads("kdeg", 17.453292519943295, "rad"));
    EXPECT_TRUE(reads("mangstrom", 1e-13, "m"));
    EXPECT_TRUE(reads("mbarn", 1e-31, "m^2"));
    EXPECT_TRUE(reads("mh", 3.6, "s"));
    EXPECT_TRUE(reads("me", 1.60217733e-22, "s A"));
}

TEST(ValueParseUnit, OnePrefixAtMost)
{
    for (const char* const given : {"kk", "kkm", "mmm", "kmm", "uum", "dd"})
        EXPECT_TRUE(fails(given));
}

TEST(ValueParseUnit, NamesAreToTheLetter)
{
    for (const char* const given :
         {"M m", "Kg", "KG", "Mol", "hz",  "HZ", "pa",     "Ohm",   "OHM", "lx", "Lux", "Angstrom",
          "L",   "l",  "v",  "w",   "n m", "ev", "Kelvin", "meter", "B",   "q",  "1m1", "m2"})
        EXPECT_TRUE(fails(given));
}

TEST(ValueParseUnit, EverySingleByte)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const std::string given(1, static_cast<char>(byte));
        const bool digit_or_blank = (byte >= '0' && byte <= '9') || byte == ' ';
        // The rows with a name of one letter, and the prefixes.
        const bool known =
            byte != 0 && std::string("msAKNJWCVFSTHgtheGYZEPMkdcunpfzy\xB5").find(given) != std::string::npos;
        EXPECT_EQ(value(given).is_valid(), digit_or_blank || known) << byte;
    }
}

} // namespace
