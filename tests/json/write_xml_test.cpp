// The XML form of values, to the letter: what is an element, what an attribute, what vanishes and what is refused.
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"
#include "json/counting_source.h"
#include "json/forged_kind.h"
#include "json/value_text.h"

#include <Json/Value.h>
#include <Json/write.h>

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using Json::Value;

const std::string declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";

/// What follows the declaration.
std::string written(const Value& value)
{
    std::ostringstream out;
    Json::write_xml(value, out);
    EXPECT_EQ(out.str().substr(0, declaration.size()), declaration);
    return out.str().substr(declaration.size());
}

std::string elements(const Value::Object& object)
{
    return written(Value(object));
}

TEST(WriteXml, EmptyObjectIsTheDeclarationAndNothingMore)
{
    std::ostringstream out;
    Json::write_xml(Value(Value::Object()), out);
    EXPECT_EQ(out.str(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
}

TEST(WriteXml, NullCountsAsTheEmptyObjectAndStaysNull)
{
    const Value null;
    EXPECT_EQ(written(null), "");
    EXPECT_TRUE(null.is_null());
}

TEST(WriteXml, AnyOtherKindIsABadCastBehindTheDeclaration)
{
    for (const Value& value : {Value(true), Value(5), Value(2.5), Value("text"), Value(""), Value(Value::List{}),
                               Value(Value::List{Value(Value::Object{})})})
    {
        std::ostringstream out;
        EXPECT_BAD_CAST(Json::write_xml(value, out));
        EXPECT_EQ(out.str(), declaration);
    }
}

TEST(WriteXml, ScalarsAreTheTextOfTheirElement)
{
    EXPECT_EQ(elements({{"a", Value(5)}}), "<a>5</a>");
    EXPECT_EQ(elements({{"a", Value(-15)}}), "<a>-15</a>");
    EXPECT_EQ(elements({{"a", Value(0)}}), "<a>0</a>");
    EXPECT_EQ(elements({{"a", Value(true)}}), "<a>true</a>");
    EXPECT_EQ(elements({{"a", Value(false)}}), "<a>false</a>");
    EXPECT_EQ(elements({{"a", Value("text")}}), "<a>text</a>");
    EXPECT_EQ(elements({{"a", Value(" ")}}), "<a> </a>");
}

TEST(WriteXml, DecimalsAreAsInTheJsonForm)
{
    EXPECT_EQ(elements({{"a", Value(2.5)}}), "<a>2.5</a>");
    EXPECT_EQ(elements({{"a", Value(2.0)}}), "<a>2.0</a>");
    EXPECT_EQ(elements({{"a", Value(1.0 / 3.0)}}), "<a>0.3333333333</a>");
    EXPECT_EQ(elements({{"a", Value(1e20)}}), "<a>100000000000000000000.0</a>");
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"x", Value(1.5e-10)}})}}), "<a x=\"1.5e-10\"/>");
}

TEST(WriteXml, ElementsComeInTheOrderOfTheirKeys)
{
    EXPECT_EQ(elements({{"b", Value(1)}, {"a", Value(2)}, {"A", Value(3)}, {"c", Value(Value::Object{})}}),
              "<A>3</A><a>2</a><b>1</b><c/>");
}

TEST(WriteXml, NullAndTheEmptyStringWriteNoElement)
{
    EXPECT_EQ(elements({{"a", Value()}}), "");
    EXPECT_EQ(elements({{"a", Value("")}}), "");
    EXPECT_EQ(elements({{"a", Value()}, {"b", Value(1)}, {"c", Value("")}}), "<b>1</b>");
}

TEST(WriteXml, EmptyObjectIsAnEmptyElement)
{
    EXPECT_EQ(elements({{"a", Value(Value::Object())}}), "<a/>");
}

TEST(WriteXml, MembersOfAnObjectAreAttributesInTheOrderOfTheirKeys)
{
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"y", Value("t")}, {"x", Value(1)}, {"X", Value(true)}})}}),
              R"(<a X="true" x="1" y="t"/>)");
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"x", Value(2.0)}, {"y", Value(false)}, {"z", Value(-3)}})}}),
              R"(<a x="2.0" y="false" z="-3"/>)");
}

TEST(WriteXml, AttributeWithTheEmptyStringStays)
{
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"x", Value("")}})}}), R"(<a x=""/>)");
}

TEST(WriteXml, NullAttributeIsLeftOut)
{
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"x", Value()}})}}), "<a/>");
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"x", Value()}, {"y", Value(1)}})}}), R"(<a y="1"/>)");
}

TEST(WriteXml, EmptyKeyIsTheContentOfTheElement)
{
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"", Value("text")}, {"x", Value(1)}})}}), R"(<a x="1">text</a>)");
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"", Value(5)}})}}), "<a>5</a>");
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"", Value(false)}})}}), "<a>false</a>");
}

TEST(WriteXml, NullUnderTheEmptyKeyIsNoContent)
{
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"", Value()}, {"x", Value(1)}})}}), R"(<a x="1"/>)");
}

TEST(WriteXml, EmptyStringOrObjectUnderTheEmptyKeyIsContentOfNoLength)
{
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"", Value("")}, {"x", Value(1)}})}}), R"(<a x="1"></a>)");
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"", Value(Value::Object())}})}}), "<a></a>");
}

TEST(WriteXml, ObjectUnderTheEmptyKeyHoldsTheChildren)
{
    Value value;
    value.at("a").at("").at("c") = Value(1);
    value.at("a").at("").at("b").at("x") = Value("y");
    value.at("a").at("").at("d");
    value.at("a").at("id") = Value(7);
    EXPECT_EQ(written(value), R"(<a id="7"><b x="y"/><c>1</c></a>)");
}

TEST(WriteXml, ListOfTwoObjectsIsTwoElementsOfOneName)
{
    EXPECT_EQ(elements({{"a", Value(Value::List{Value(Value::Object{{"x", Value(1)}}),
                                                Value(Value::Object{{"", Value("t")}, {"x", Value(2)}})})}}),
              R"(<a x="1"/><a x="2">t</a>)");
}

TEST(WriteXml, ListOfTwoStringsIsTwoElementsOfOneName)
{
    EXPECT_EQ(elements({{"a", Value(Value::List{Value("one"), Value("two")})}, {"b", Value(3)}}),
              "<a>one</a><a>two</a><b>3</b>");
}

TEST(WriteXml, NullAndTheEmptyStringInAListVanish)
{
    EXPECT_EQ(elements({{"a", Value(Value::List{Value(), Value(1), Value(""), Value(2), Value()})}}),
              "<a>1</a><a>2</a>");
    EXPECT_EQ(elements({{"a", Value(Value::List{})}}), "");
}

TEST(WriteXml, ListsAmongChildrenAreElementsToo)
{
    Value value;
    value.at("a").at("").at("b").at(1) = Value("second");
    value.at("a").at("").at("b").at(0) = Value("first");
    EXPECT_EQ(written(value), "<a><b>first</b><b>second</b></a>");
}

TEST(WriteXml, ListThatFillsItselfIsWrittenWhole)
{
    const Value list(boost::shared_ptr<const Json::ListSource>(json_test::counting_source(3)));
    EXPECT_EQ(elements({{"a", list}}), "<a>0</a><a>1</a><a>2</a>");
}

TEST(WriteXml, FiveCharactersAreEscapedInTextAndAttributes)
{
    EXPECT_EQ(elements({{"a", Value("<>&'\"x")}}), "<a>&lt;&gt;&amp;&apos;&quot;x</a>");
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"x", Value("<>&'\"x")}})}}),
              "<a x=\"&lt;&gt;&amp;&apos;&quot;x\"/>");
    EXPECT_EQ(elements({{"a", Value("&lt;")}}), "<a>&amp;lt;</a>");
}

TEST(WriteXml, EveryOtherByteGoesOutRaw)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        if (std::string("<>&'\"").find(static_cast<char>(byte)) == std::string::npos)
            bytes += static_cast<char>(byte);
    EXPECT_EQ(elements({{"a", Value(bytes)}}), "<a>" + bytes + "</a>");
    EXPECT_EQ(elements({{"a", Value(Value::Object{{"x", Value(bytes)}})}}), "<a x=\"" + bytes + "\"/>");
}

TEST(WriteXml, KeysAreWrittenAsTheyStand)
{
    EXPECT_EQ(elements({{"a:b_1", Value(1)}}), "<a:b_1>1</a:b_1>");
    EXPECT_EQ(elements({{"a&b", Value(1)}}), "<a&b>1</a&b>");
    EXPECT_EQ(elements({{"", Value(1)}}), "<>1</>");
}

/// `value` fails with `text`, and leaves `partial` behind the declaration.
void expect_refused(const Value& value, const std::string& text, const std::string& partial)
{
    std::ostringstream out;
    EXPECT_THROW_TEXT(Json::write_xml(value, out), std::invalid_argument, text);
    EXPECT_EQ(out.str(), declaration + partial);
}

TEST(WriteXml, ListOrObjectAsAttributeIsRefusedBehindItsEqualsSign)
{
    for (const Value& refused : {Value(Value::List{}), Value(Value::List{Value(1)}), Value(Value::Object{}),
                                 Value(Value::Object{{"", Value(1)}})})
    {
        expect_refused(Value(Value::Object{{"a", Value(Value::Object{{"x", refused}})}}), "No xml attribute", "<a x=");
        expect_refused(
            Value(Value::Object{{"a", Value(Value::Object{{"m", Value(1)}, {"x", refused}})}, {"A", Value("before")}}),
            "No xml attribute", "<A>before</A><a m=\"1\" x=");
    }
}

TEST(WriteXml, ListAsContentIsRefused)
{
    for (const Value& refused : {Value(Value::List{}), Value(Value::List{Value("t")})})
    {
        expect_refused(Value(Value::Object{{"a", Value(Value::Object{{"", refused}, {"x", Value(1)}})}}),
                       "No xml content", "<a x=\"1\">");
        expect_refused(Value(Value::Object{{"a", Value(Value::Object{{"", refused}})}}), "No xml content", "<a>");
    }
}

TEST(WriteXml, ListInAListIsRefusedAsContent)
{
    expect_refused(Value(Value::Object{{"a", Value(Value::List{Value(1), Value(Value::List{Value(2)})})}}),
                   "No xml content", "<a>1</a><a>");
}

TEST(WriteXml, FailureFarInsideLeavesTheTextBeforeIt)
{
    Value value;
    value.at("a").at("").at("b").at("").at("c").at("x").at(0) = Value(1);
    value.at("a").at("id") = Value(1);
    expect_refused(value, "No xml attribute", "<a id=\"1\"><b><c x=");
}

TEST(WriteXml, RestoresPrecisionAndFlagsOfTheStream)
{
    std::ostringstream out;
    out << std::setprecision(4) << std::scientific << std::showpos << std::uppercase;
    const std::ios::fmtflags flags = out.flags();
    Json::write_xml(Value(Value::Object{{"a", Value(2.5)}, {"b", Value(Value::Object{{"x", Value(2.0)}})}}), out);
    EXPECT_EQ(out.str(), declaration + "<a>2.5</a><b x=\"2.0\"/>");
    EXPECT_EQ(out.precision(), 4);
    EXPECT_EQ(out.flags(), flags);
}

TEST(WriteXml, RestoresPrecisionAndFlagsAlsoWhenItFails)
{
    std::ostringstream out;
    out << std::setprecision(4) << std::scientific;
    const std::ios::fmtflags flags = out.flags();
    const Value value(Value::Object{{"a", Value(2.5)}, {"b", Value(Value::Object{{"x", Value(Value::List{})}})}});
    EXPECT_THROW_TEXT(Json::write_xml(value, out), std::invalid_argument, "No xml attribute");
    EXPECT_EQ(out.precision(), 4);
    EXPECT_EQ(out.flags(), flags);
}

TEST(WriteXml, IntegersAreAsTheStreamPrintsThem)
{
    std::ostringstream out;
    out << std::hex;
    Json::write_xml(Value(Value::Object{{"a", Value(255)}}), out);
    EXPECT_EQ(out.str(), declaration + "<a>ff</a>");
}

TEST(WriteXml, KindOutsideTheSevenIsABadCast)
{
    Value value;
    value.at("a");
    const json_test::ForgedKind forged(value.at("a"), -1);
    std::ostringstream out;
    EXPECT_BAD_CAST(Json::write_xml(value, out));
    EXPECT_BAD_CAST(Json::write_xml(value.at("a"), out));
}

TEST(WriteXml, ChangesNothing)
{
    Value value;
    value.at("a").at("").at("b") = Value(1);
    value.at("a").at("x") = Value();
    value.at("n");
    const Value before(value);
    written(value);
    EXPECT_TRUE(value == before);
}

TEST(WriteXml, DeepElementsAreWritten)
{
    const std::size_t depth = 100000;
    Value value(7);
    std::string begin;
    std::string end;
    for (std::size_t level = 0; level < depth; ++level)
    {
        Value::Object content;
        content["e"] = std::move(value);
        Value::Object element;
        element["x"] = Value(1);
        element[""] = Value(std::move(content));
        value = Value(std::move(element));
        begin += R"(<e x="1">)";
        end += "</e>";
    }
    // The outermost one of these stands in no element yet.
    Value root;
    root.at("e") = std::move(value);
    EXPECT_TRUE(written(root) == begin + "<e>7</e>" + end);
}

}
