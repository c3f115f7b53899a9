// What the two text forms of a value look like, byte by byte.
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

#include <Json/write.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>

using Json::Value;
using List = Value::List;
using Object = Value::Object;

namespace {

const std::string declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";

std::string json(const Value& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

/// The XML form behind its declaration.
std::string xml(const Value& value)
{
    std::ostringstream out;
    Json::write_xml(value, out);
    const std::string text = out.str();
    EXPECT_EQ(text.substr(0, declaration.size()), declaration);
    return text.substr(std::min(declaration.size(), text.size()));
}

/// What of the XML form is in the stream when it fails with this text.
std::string xml_failing_with(const std::string& text, const Value& value)
{
    std::ostringstream out;
    EXPECT_THROW_TEXT(Json::write_xml(value, out), std::invalid_argument, text);
    return out.str();
}

TEST(JsonForm, OfTheSimpleKinds)
{
    EXPECT_EQ(json(Value()), "null");
    EXPECT_EQ(json(Value(true)), "true");
    EXPECT_EQ(json(Value(false)), "false");
    EXPECT_EQ(json(Value(0)), "0");
    EXPECT_EQ(json(Value(-17)), "-17");
    EXPECT_EQ(json(Value(std::numeric_limits<std::int64_t>::max())), "9223372036854775807");
    EXPECT_EQ(json(Value(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
}

TEST(JsonForm, OfDecimalsHasTenDigitsWithAFractionAndOnePlaceWithout)
{
    const std::pair<double, const char*> cases[] = {
        {2.5, "2.5"},
        {2.0, "2.0"},
        {3.0, "3.0"},
        {1.0 / 3.0, "0.3333333333"},
        {-1.0 / 3.0, "-0.3333333333"},
        {0.0, "0.0"},
        {-0.0, "-0.0"},
        {-7.0, "-7.0"},
        {1e20, "100000000000000000000.0"},
        {9007199254740993.0, "9007199254740992.0"},
        {0.1, "0.1"},
        {1e-5, "1e-05"},
        {1.25e-7, "1.25e-07"},
        {12345678901.5, "1.23456789e+10"},
        {1234567890.5, "1234567890"}, // ten digits: to even
        {123456789.5, "123456789.5"},
        {0.99999999999, "1"},
        {std::numeric_limits<double>::infinity(), "inf"},
        {-std::numeric_limits<double>::infinity(), "-inf"},
        {std::numeric_limits<double>::quiet_NaN(), "nan"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(json(Value(number)), text);
    EXPECT_EQ(json(Value(0.5F)), "0.5");
    EXPECT_EQ(json(Value(0.1F)), "0.1000000015");
}

TEST(JsonForm, OfTheLargestDecimalIsWrittenOut)
{
    std::ostringstream expected;
    expected << std::fixed << std::setprecision(1) << std::numeric_limits<double>::max();
    EXPECT_EQ(json(Value(std::numeric_limits<double>::max())), expected.str());
    EXPECT_EQ(expected.str().size(), 311u);
}

TEST(JsonForm, OfDecimalsDoesNotHeedTheStreamAndRestoresIt)
{
    std::ostringstream out;
    out << std::scientific << std::showpos << std::uppercase << std::showpoint << std::setprecision(3);
    const auto flags = out.flags();
    out << Value(2.5) << ' ' << Value(2.0) << ' ' << Value(1e-7);
    EXPECT_EQ(out.str(), "2.5 2.0 1e-07");
    EXPECT_EQ(out.flags(), flags);
    EXPECT_EQ(out.precision(), 3);
}

TEST(JsonForm, OfIntegersIsAsTheStreamPrintsThem)
{
    std::ostringstream out;
    out << std::showpos << Value(5) << std::noshowpos << std::hex << std::showbase << ' ' << Value(255);
    EXPECT_EQ(out.str(), "+5 0xff");
}

TEST(JsonForm, OfABooleanIsAWordWhateverTheStream)
{
    std::ostringstream out;
    out << std::boolalpha << Value(true) << std::noboolalpha << Value(false);
    EXPECT_EQ(out.str(), "truefalse");
}

TEST(JsonForm, OfAStringEscapesBackslashAndQuoteAlone)
{
    EXPECT_EQ(json(Value("")), R"("")");
    EXPECT_EQ(json(Value(R"(a\b"c/d)")), R"("a\\b\"c/d")");
    EXPECT_EQ(json(Value("\\\"")), R"("\\\"")");
    EXPECT_EQ(json(Value("line\nbreak\ttab\r\x01\x7f")), "\"line\nbreak\ttab\r\x01\x7f\"");
    EXPECT_EQ(json(Value("\xc3\xa9\xff\x80")), "\"\xc3\xa9\xff\x80\"");
    EXPECT_EQ(json(Value(std::string("a\0b", 3))), std::string("\"a\0b\"", 5));
    EXPECT_EQ(json(Value("<&>'")), "\"<&>'\"");
}

TEST(JsonForm, OfEveryByteInAStringIsThatByteButForTwo)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const std::string text(1, static_cast<char>(byte));
        const std::string escape = byte == '"' || byte == '\\' ? "\\" : "";
        EXPECT_EQ(json(Value(text)), "\"" + escape + text + "\"") << byte;
    }
}

TEST(JsonForm, OfListsAndObjectsHasNoWhiteSpace)
{
    EXPECT_EQ(json(Value(List{})), "[]");
    EXPECT_EQ(json(Value(Object{})), "{}");
    EXPECT_EQ(json(Value(List{Value(1), Value(), Value("x"), Value(List{Value(2.0)})})), R"([1,null,"x",[2.0]])");
    EXPECT_EQ(json(Value(Object{{"b", Value(List{})}, {"a", Value(Object{{"", Value(true)}})}, {"B", Value(1)}})),
              R"({"B":1,"a":{"":true},"b":[]})");
}

TEST(JsonForm, OfAKeyIsEscapedAsAString)
{
    EXPECT_EQ(json(Value(Object{{"a\"\\\n", Value(1)}})), "{\"a\\\"\\\\\n\":1}");
}

TEST(JsonForm, OfKeysGoesInAscendingOrderOfTheirBytes)
{
    EXPECT_EQ(json(Value(
                  Object{{"\xc3\xa9", Value(1)}, {"z", Value(2)}, {"Z", Value(3)}, {"aa", Value(4)}, {"a", Value(5)}})),
              "{\"Z\":3,\"a\":5,\"aa\":4,\"z\":2,\"\xc3\xa9\":1}");
}

TEST(JsonForm, OfAMapIsThatOfAnObject)
{
    std::ostringstream out;
    out << Object{} << Object{{"b", Value(1)}, {"a", Value(2.5)}};
    EXPECT_EQ(out.str(), R"({}{"a":2.5,"b":1})");
}

TEST(JsonForm, ComesWithTheStreamForMore)
{
    std::ostringstream out;
    EXPECT_EQ(&(out << Value(1)), &out);
    EXPECT_EQ(&(out << Object()), &out);
}

TEST(XmlForm, OfAnEmptyObjectIsTheDeclarationAlone)
{
    EXPECT_EQ(xml(Value(Object{})), "");
}

TEST(XmlForm, OfNullIsThatOfTheEmptyObjectAndLeavesItNull)
{
    const Value null;
    EXPECT_EQ(xml(null), "");
    EXPECT_TRUE(null.is_null());
}

TEST(XmlForm, OfAnyOtherKindIsABadCastBehindTheDeclaration)
{
    for (const Value& value : {Value(true), Value(1), Value(1.5), Value(""), Value("x"), Value(List{})})
    {
        std::ostringstream out;
        EXPECT_BAD_CAST(Json::write_xml(value, out));
        EXPECT_EQ(out.str(), declaration);
    }
}

TEST(XmlForm, OfAnElementWithoutAttributesIsItsValue)
{
    EXPECT_EQ(xml(Value(Object{{"a", Value(true)}})), "<a>true</a>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(false)}})), "<a>false</a>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(-5)}})), "<a>-5</a>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(3.0)}})), "<a>3.0</a>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(1.0 / 3.0)}})), "<a>0.3333333333</a>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(" x ")}})), "<a> x </a>");
}

TEST(XmlForm, OfDecimalsRestoresTheStream)
{
    std::ostringstream out;
    out << std::scientific << std::showpos << std::setprecision(3);
    const auto flags = out.flags();
    Json::write_xml(Value(Object{{"a", Value(2.5)}, {"b", Value(Object{{"c", Value(4.0)}})}}), out);
    EXPECT_EQ(out.str(), declaration + R"(<a>2.5</a><b c="4.0"/>)");
    EXPECT_EQ(out.flags(), flags);
    EXPECT_EQ(out.precision(), 3);
}

TEST(XmlForm, OfNullAndTheEmptyStringIsNoElement)
{
    EXPECT_EQ(xml(Value(Object{{"a", Value()}, {"b", Value("")}, {"c", Value(0)}})), "<c>0</c>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(List{Value(), Value(""), Value(1)})}})), "<a>1</a>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(List{})}})), "");
}

TEST(XmlForm, OfAnAttributeWithTheEmptyStringStays)
{
    EXPECT_EQ(xml(Value(Object{{"a", Value(Object{{"b", Value("")}})}})), R"(<a b=""/>)");
}

TEST(XmlForm, OfANullAttributeIsNothing)
{
    EXPECT_EQ(xml(Value(Object{{"a", Value(Object{{"b", Value()}, {"c", Value(1)}})}})), R"(<a c="1"/>)");
}

TEST(XmlForm, OfAnEmptyObjectAsElementIsAnEmptyTag)
{
    EXPECT_EQ(xml(Value(Object{{"a", Value(Object{})}})), "<a/>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(Object{{"", Value()}})}})), "<a/>");
}

TEST(XmlForm, OfEmptyContentIsAnEndTagOfItsOwn)
{
    EXPECT_EQ(xml(Value(Object{{"a", Value(Object{{"", Value("")}})}})), "<a></a>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(Object{{"", Value(Object{})}})}})), "<a></a>");
}

TEST(XmlForm, OfAttributesGoesInTheOrderOfTheKeysWithTheContentBehind)
{
    const Object element{
        {"z", Value("last")}, {"", Value("text")}, {"b", Value(2)}, {"B", Value(true)}, {"c", Value(1.0)}};
    EXPECT_EQ(xml(Value(Object{{"a", Value(element)}})), R"(<a B="true" b="2" c="1.0" z="last">text</a>)");
}

TEST(XmlForm, OfAnObjectAsContentIsChildElements)
{
    const Object children{{"d", Value(2)}, {"c", Value(Object{{"x", Value(1)}})}};
    const Object element{{"b", Value(1)}, {"", Value(children)}};
    EXPECT_EQ(xml(Value(Object{{"a", Value(element)}})), R"(<a b="1"><c x="1"/><d>2</d></a>)");
}

TEST(XmlForm, OfAListIsOneElementForEachEntry)
{
    EXPECT_EQ(xml(Value(Object{{"a", Value(List{Value(Object{{"b", Value(1)}}), Value(Object{{"b", Value(2)}})})}})),
              R"(<a b="1"/><a b="2"/>)");
    EXPECT_EQ(xml(Value(Object{{"a", Value(List{Value("x"), Value("y")})}, {"b", Value(1)}})),
              "<a>x</a><a>y</a><b>1</b>");
}

TEST(XmlForm, OfTheEmptyKeyAtTheTopIsAnElementWithoutAName)
{
    EXPECT_EQ(xml(Value(Object{{"", Value(5)}})), "<>5</>");
}

TEST(XmlForm, EscapesFiveCharactersInTextAndAttributes)
{
    EXPECT_EQ(xml(Value(Object{{"a", Value(R"(<>&'")")}})), "<a>&lt;&gt;&amp;&apos;&quot;</a>");
    EXPECT_EQ(xml(Value(Object{{"a", Value(Object{{"b", Value(R"(<>&'")")}, {"", Value("&")}})}})),
              R"(<a b="&lt;&gt;&amp;&apos;&quot;">&amp;</a>)");
    EXPECT_EQ(xml(Value(Object{{"a", Value("&lt;")}})), "<a>&amp;lt;</a>");
    EXPECT_EQ(xml(Value(Object{{"a", Value("\\\n\xff\xc3\xa9")}})), "<a>\\\n\xff\xc3\xa9</a>");
}

TEST(XmlForm, LeavesKeysAsTheyAre)
{
    EXPECT_EQ(xml(Value(Object{{"a b", Value(Object{{"c&d", Value(1)}, {"", Value(2)}})}})), R"(<a b c&d="1">2</a b>)");
}

TEST(XmlForm, RefusesAListOrAnObjectAsAttributeAndKeepsThePartialText)
{
    EXPECT_EQ(xml_failing_with("No xml attribute",
                               Value(Object{{"a", Value(Object{{"b", Value(1)}, {"c", Value(List{})}})}})),
              declaration + R"(<a b="1" c=)");
    EXPECT_EQ(xml_failing_with("No xml attribute", Value(Object{{"a", Value(Object{{"c", Value(Object{})}})}})),
              declaration + "<a c=");
}

TEST(XmlForm, RefusesAListAsContentAndKeepsThePartialText)
{
    EXPECT_EQ(xml_failing_with("No xml content", Value(Object{{"a", Value(Object{{"", Value(List{Value(1)})}})}})),
              declaration + "<a>");
    EXPECT_EQ(xml_failing_with("No xml content", Value(Object{{"a", Value(Object{{"", Value(List{})}})}})),
              declaration + "<a>");
}

TEST(XmlForm, RefusesAListWithinAList)
{
    EXPECT_EQ(xml_failing_with("No xml content", Value(Object{{"a", Value(List{Value(1), Value(List{Value(2)})})}})),
              declaration + "<a>1</a><a>");
}

}
