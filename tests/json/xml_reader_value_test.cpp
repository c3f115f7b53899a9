// What the reader of XML makes of attribute values and of the text of elements.
#include "json/read_xml.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <string>

namespace {

using json_test::decimal_text;
using json_test::xml_failure;
using json_test::xml_read;

/// What `text` reads as in an attribute.
std::string attribute_read(const std::string& text, const std::string& quote = "\"")
{
    const std::string read = xml_read("<a x=" + quote + text + quote + "/>");
    return read.substr(10, read.size() - 12);
}

/// What `text` reads as in an element without attributes.
std::string element_read(const std::string& text)
{
    const std::string read = xml_read("<a>" + text + "</a>");
    return read.substr(5, read.size() - 6);
}

/// The same in both, and in an element with an attribute.
std::string value_read(const std::string& text)
{
    const std::string read = attribute_read(text);
    EXPECT_EQ(attribute_read(text, "'"), read);
    EXPECT_EQ(element_read(text), read);
    EXPECT_EQ(xml_read("<a x=''>" + text + "</a>"), "{a = { = " + read + ", x = ''}}");
    return read;
}

TEST(XmlReaderValue, WholeNumbersAreIntegers)
{
    EXPECT_EQ(value_read("5"), "i:5");
    EXPECT_EQ(value_read("0"), "i:0");
    EXPECT_EQ(value_read("-17"), "i:-17");
    EXPECT_EQ(value_read("-0"), "i:0");
    EXPECT_EQ(value_read("007"), "i:7");
    EXPECT_EQ(value_read("-08"), "i:-8");
    EXPECT_EQ(value_read("9223372036854775807"), "i:9223372036854775807");
    EXPECT_EQ(value_read("-9223372036854775808"), "i:-9223372036854775808");
}

TEST(XmlReaderValue, WholeNumbersOutOfRangeAreSaturated)
{
    EXPECT_EQ(value_read("9223372036854775808"), "i:9223372036854775807");
    EXPECT_EQ(value_read("99999999999999999999999999"), "i:9223372036854775807");
    EXPECT_EQ(value_read("-9223372036854775809"), "i:-9223372036854775808");
    EXPECT_EQ(value_read("-99999999999999999999999999"), "i:-9223372036854775808");
}

TEST(XmlReaderValue, LoneMinusIsTheIntegerZero)
{
    EXPECT_EQ(value_read("-"), "i:0");
}

TEST(XmlReaderValue, NumbersWithAPointOrAnExponentAreDecimals)
{
    EXPECT_EQ(value_read("1.0"), decimal_text(1.0));
    EXPECT_EQ(value_read("1e3"), decimal_text(1000.0));
    EXPECT_EQ(value_read("1E3"), decimal_text(1000.0));
    EXPECT_EQ(value_read("-2.5"), decimal_text(-2.5));
    EXPECT_EQ(value_read("1.5e-3"), decimal_text(0.0015));
    EXPECT_EQ(value_read("1e+3"), decimal_text(1000.0));
    EXPECT_EQ(value_read("1."), decimal_text(1.0));
    EXPECT_EQ(value_read("-.5"), decimal_text(-0.5));
    EXPECT_EQ(value_read("-0.0"), decimal_text(-0.0));
    EXPECT_EQ(value_read("0.1"), decimal_text(0.1));
    EXPECT_EQ(value_read("99999999999999999999.0"), decimal_text(1e20));
    EXPECT_EQ(value_read("1.7976931348623157e308"), decimal_text(DBL_MAX));
}

TEST(XmlReaderValue, DecimalsThatTheStreamReadsToTheirEndButCannotUseAreWhatItLeaves)
{
    EXPECT_EQ(value_read("1e400"), decimal_text(DBL_MAX));
    EXPECT_EQ(value_read("-1.5e400"), decimal_text(-DBL_MAX));
    EXPECT_EQ(value_read("1e"), decimal_text(0.0));
    EXPECT_EQ(value_read("1.5e-"), decimal_text(0.0));
    EXPECT_EQ(value_read("-."), decimal_text(0.0));
}

TEST(XmlReaderValue, CandidatesThatTheStreamDoesNotReadToTheirEndAreStrings)
{
    for (const char* const text : {"1.5.2", "1-2", "1+2", "--1", "-e5", "1e2e3", "1e2.5", "1.5-", "1-", "2015-01-31",
                                   "-+1", "1e5-", "1.2.", "1..", "5+"})
        EXPECT_EQ(value_read(text), "'" + std::string(text) + "'");
}

TEST(XmlReaderValue, LeadingPlusOrPointIsNoNumberStart)
{
    EXPECT_EQ(value_read("+1"), "'+1'");
    EXPECT_EQ(value_read(".5"), "'.5'");
    EXPECT_EQ(value_read("e5"), "'e5'");
}

TEST(XmlReaderValue, NumbersWithAnythingElseInThemAreStrings)
{
    for (const char* const text : {"5x", "5 ", "1 2", "0x10", "1,5", "12:30", "5m", "-x", "1e5f", "1.5true", "5%"})
        EXPECT_EQ(value_read(text), "'" + std::string(text) + "'");
}

TEST(XmlReaderValue, TrueAndFalseAreBooleans)
{
    EXPECT_EQ(value_read("true"), "true");
    EXPECT_EQ(value_read("false"), "false");
}

TEST(XmlReaderValue, WhatIsNotExactlyAKeywordIsAString)
{
    for (const char* const text :
         {"TRUE",     "True",  "FALSE", "False",      "t",      "tr",     "tru",    "f",     "fals",    "truex",
          "truetrue", "truet", "true ", "falsefalse", "falsef", "false.", "tfalse", "ftrue", "trfalse", "faltrue",
          "tt",       "ff",    "tree",  "fat",        "true1",  "tru e",  "null",   "none",  "yes"})
        EXPECT_EQ(value_read(text), "'" + std::string(text) + "'");
}

TEST(XmlReaderValue, TheWordNullIsAString)
{
    EXPECT_EQ(value_read("null"), "'null'");
}

TEST(XmlReaderValue, LeadingWhiteSpaceOfAnElementIsSkipped)
{
    EXPECT_EQ(element_read(" \t\n\v\f\r5"), "i:5");
    EXPECT_EQ(element_read("\n  true"), "true");
    EXPECT_EQ(element_read("  text"), "'text'");
    EXPECT_EQ(element_read(" -2.5"), decimal_text(-2.5));
    EXPECT_EQ(xml_read("<a x='1'> text</a>"), "{a = { = 'text', x = i:1}}");
}

TEST(XmlReaderValue, LeadingWhiteSpaceOfAnAttributeStaysAndMakesAString)
{
    EXPECT_EQ(attribute_read(" 5"), "' 5'");
    EXPECT_EQ(attribute_read(" true"), "' true'");
    EXPECT_EQ(attribute_read("\n"), "'\n'");
    EXPECT_EQ(attribute_read(" "), "' '");
}

TEST(XmlReaderValue, WhiteSpaceInsideAndAtTheEndStays)
{
    EXPECT_EQ(value_read("5 "), "'5 '");
    EXPECT_EQ(value_read("false\n"), "'false\n'");
    EXPECT_EQ(value_read("a  b\t\n "), "'a  b\t\n '");
}

TEST(XmlReaderValue, EmptyAttributeIsTheEmptyString)
{
    EXPECT_EQ(attribute_read(""), "''");
    EXPECT_EQ(attribute_read("", "'"), "''");
}

TEST(XmlReaderValue, EmptyTextOfAnElementStoresNothing)
{
    EXPECT_EQ(element_read(""), "null");
    EXPECT_EQ(element_read("  \n"), "null");
}

TEST(XmlReaderValue, OtherQuoteIsACharacterLikeAnyOther)
{
    EXPECT_EQ(attribute_read("it's"), "'it's'");
    EXPECT_EQ(attribute_read("5'"), "'5''");
    EXPECT_EQ(attribute_read("say \"a\"", "'"), "'say \"a\"'");
    EXPECT_EQ(element_read("\"'"), "'\"''");
}

TEST(XmlReaderValue, MarkupInAnAttributeIsText)
{
    EXPECT_EQ(attribute_read("<b>/?="), "'<b>/?='");
    EXPECT_EQ(element_read("a>b/?="), "'a>b/?='");
}

TEST(XmlReaderValue, EveryOtherByteStandsForItself)
{
    std::string bytes = "x";
    for (int byte = 0; byte < 256; ++byte)
        if (byte != '<' && byte != '&' && byte != '"')
            bytes += static_cast<char>(byte);
    EXPECT_EQ(element_read(bytes), "'" + bytes + "'");
    EXPECT_EQ(attribute_read(bytes), "'" + bytes + "'");
}

TEST(XmlReaderValue, BytesAboveTheAsciiOnesAreNoWhiteSpace)
{
    EXPECT_EQ(element_read("\xA0"
                           "5"),
              "'\xA0"
              "5'");
    EXPECT_EQ(element_read("\x85"), "'\x85'");
}

TEST(XmlReaderValue, FiveReferencesAreKnownInPlainText)
{
    EXPECT_EQ(value_read("x&lt;&gt;&amp;&apos;&quot;y"), "'x<>&'\"y'");
    EXPECT_EQ(value_read("x&amp;lt;"), "'x&lt;'");
    EXPECT_EQ(value_read("x&lt;"), "'x<'");
}

TEST(XmlReaderValue, AmpersandAtTheStartOfAValueIsItself)
{
    EXPECT_EQ(value_read("&lt;x"), "'&lt;x'");
    EXPECT_EQ(value_read("&lt;"), "'&lt;'");
    EXPECT_EQ(value_read("&"), "'&'");
    EXPECT_EQ(value_read("& b"), "'& b'");
    EXPECT_EQ(element_read("  &lt;x"), "'&lt;x'");
}

TEST(XmlReaderValue, AmpersandBehindTheStartIsAReferenceAgain)
{
    EXPECT_EQ(value_read("&lt;x&lt;"), "'&lt;x<'");
    EXPECT_EQ(value_read("&&lt;"), "'&<'");
    EXPECT_EQ(attribute_read(" &lt;"), "' <'");
}

TEST(XmlReaderValue, AmpersandDirectlyBehindANumberIsItself)
{
    EXPECT_EQ(value_read("5&lt;"), "'5&lt;'");
    EXPECT_EQ(value_read("-&gt;"), "'-&gt;'");
    EXPECT_EQ(value_read("1.5e&amp;"), "'1.5e&amp;'");
    EXPECT_EQ(value_read("5&&lt;"), "'5&<'");
    EXPECT_EQ(value_read("5 &lt;"), "'5 <'");
}

TEST(XmlReaderValue, AmpersandDirectlyBehindTheLettersOfAKeywordIsItself)
{
    EXPECT_EQ(value_read("t&lt;"), "'t&lt;'");
    EXPECT_EQ(value_read("true&lt;"), "'true&lt;'");
    EXPECT_EQ(value_read("fals&lt;"), "'fals&lt;'");
    EXPECT_EQ(value_read("false&lt;"), "'false&lt;'");
    EXPECT_EQ(value_read("tx&lt;"), "'tx<'");
    EXPECT_EQ(value_read("true&&lt;"), "'true&<'");
}

TEST(XmlReaderValue, UnknownReferencesAreNamed)
{
    for (const std::string name : {"nbsp", "LT", "l t", "", "lt ", "&lt", "amp&amp"})
        EXPECT_EQ(xml_failure("<a>x&" + name + ";"), "Unexpected &" + name + "; reference");
    EXPECT_EQ(xml_failure("<a x=\"x&nbsp;"), "Unexpected &nbsp; reference");
}

TEST(XmlReaderValue, NumericReferencesAreUnknown)
{
    EXPECT_EQ(xml_failure("<a>x&#65;"), "Unexpected &#65; reference");
    EXPECT_EQ(xml_failure("<a x='x&#x41;"), "Unexpected &#x41; reference");
}

TEST(XmlReaderValue, ReferenceRunsToItsSemicolonAcrossTheEndOfTheValue)
{
    EXPECT_EQ(xml_failure("<a>x&lt</a>;"), "Unexpected &lt</a>; reference");
    EXPECT_EQ(xml_failure("<a x=\"x&lt\"/>;"), "Unexpected &lt\"/>; reference");
    EXPECT_EQ(json_test::xml_so_far("<a>x&lt</a>"), "{a = null}");
}

TEST(XmlReaderValue, OneValueLeavesNothingBehindForTheNext)
{
    EXPECT_EQ(xml_read("<a b='5' c='' d='true' e='x' f='5x' g='6' h='tr' i='false' j='&' k='7'/>"),
              "{a = {b = i:5, c = '', d = true, e = 'x', f = '5x', g = i:6, h = 'tr', i = false, j = '&', k = i:7}}");
    EXPECT_EQ(xml_read("<a><b>5</b><b>true</b><b>x</b><b>5x</b><b>6</b><b>fal</b><b>false</b><b>x&lt;</b><b>-</b></a>"),
              "{a = { = {b = [i:5, true, 'x', '5x', i:6, 'fal', false, 'x<', i:0]}}}");
}

}
