// What the reader of XML makes of the shape of a document: elements, attributes, repetition, the declaration. Each
// document is read whole, cut at every byte, and from a stream.
#include "support/expect_vela_error.h"
#include "json/read_xml.h"

#include <Json/XmlReader.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <type_traits>

namespace {

using Json::Value;
using json_test::Outcome;
using json_test::read_xml;
using json_test::value_text;
using json_test::xml_read;
using json_test::xml_so_far;

static_assert(!std::is_copy_constructible_v<Json::XmlReader>);
static_assert(!std::is_copy_assignable_v<Json::XmlReader>);

TEST(XmlReader, SetsItsTargetToNull)
{
    Value target(Value::Object{{"a", Value(1)}});
    const Json::XmlReader reader(target);
    EXPECT_TRUE(target.is_null());
    EXPECT_TRUE(reader.object().empty());
}

TEST(XmlReader, NothingAndWhiteSpaceLeaveTheTargetNull)
{
    EXPECT_EQ(xml_so_far(""), "null");
    EXPECT_EQ(xml_so_far(" \t\n\v\f\r"), "null");
    EXPECT_EQ(xml_so_far("<"), "null");
    EXPECT_EQ(xml_so_far("<a"), "null");
}

TEST(XmlReader, ElementWithTextIsThatText)
{
    EXPECT_EQ(xml_read("<a>5</a>"), "{a = i:5}");
    EXPECT_EQ(xml_read("<a>text</a>"), "{a = 'text'}");
    EXPECT_EQ(xml_read(" \n<a>text</a>"), "{a = 'text'}");
    EXPECT_EQ(xml_read("<a >text</a >"), "{a = 'text'}");
    EXPECT_EQ(xml_read("<a\n>text</a\t>"), "{a = 'text'}");
}

TEST(XmlReader, ElementWithNothingStaysNull)
{
    EXPECT_EQ(xml_read("<a></a>"), "{a = null}");
    EXPECT_EQ(xml_read("<a> \t\n\v\f\r</a>"), "{a = null}");
    EXPECT_EQ(xml_read("<a />"), "{a = null}");
    EXPECT_EQ(xml_read("<a  />"), "{a = null}");
}

TEST(XmlReader, ElementWithAttributesIsAnObject)
{
    EXPECT_EQ(xml_read(R"(<a x="1" y="text"/>)"), "{a = {x = i:1, y = 'text'}}");
    EXPECT_EQ(xml_read(R"(<a y='text' x='1' />)"), "{a = {x = i:1, y = 'text'}}");
    EXPECT_EQ(xml_read("<a\n\tx \t=\n\"1\"\r\n/>"), "{a = {x = i:1}}");
    EXPECT_EQ(xml_read(R"(<a x="1"y="2"z='3'/>)"), "{a = {x = i:1, y = i:2, z = i:3}}");
}

TEST(XmlReader, ElementWithAnAttributeAndTextHasTheTextUnderTheEmptyKey)
{
    EXPECT_EQ(xml_read(R"(<a x="1">text</a>)"), "{a = { = 'text', x = i:1}}");
    EXPECT_EQ(xml_read(R"(<a x="1" >5</a>)"), "{a = { = i:5, x = i:1}}");
}

TEST(XmlReader, ElementWithAnAttributeAndNoTextHasNullUnderTheEmptyKey)
{
    EXPECT_EQ(xml_read(R"(<a x="1"></a>)"), "{a = { = null, x = i:1}}");
    EXPECT_EQ(xml_read(R"(<a x="1"> </a>)"), "{a = { = null, x = i:1}}");
}

TEST(XmlReader, ChildrenAreKeysUnderTheEmptyKeyOfTheParent)
{
    EXPECT_EQ(xml_read("<a><b>1</b></a>"), "{a = { = {b = i:1}}}");
    EXPECT_EQ(xml_read("<a><c>1</c><b>2</b></a>"), "{a = { = {b = i:2, c = i:1}}}");
    EXPECT_EQ(xml_read("<a> <b>1</b>\n<c>2</c>\n</a>"), "{a = { = {b = i:1, c = i:2}}}");
    EXPECT_EQ(xml_read("<a><b><c><d>1</d></c></b></a>"), "{a = { = {b = { = {c = { = {d = i:1}}}}}}}");
    EXPECT_EQ(xml_read("<a><b></b></a>"), "{a = { = {b = null}}}");
}

TEST(XmlReader, ChildrenOfAParentWithAttributesStandBesideThem)
{
    EXPECT_EQ(xml_read(R"(<a x="1"><b>2</b><c y="3">t</c></a>)"),
              "{a = { = {b = i:2, c = { = 't', y = i:3}}, x = i:1}}");
}

TEST(XmlReader, TwoEquallyNamedChildrenAreAListInTheOrderOfTheDocument)
{
    EXPECT_EQ(xml_read("<a><b>2</b><b>1</b></a>"), "{a = { = {b = [i:2, i:1]}}}");
}

TEST(XmlReader, ThirdEquallyNamedChildIsAppended)
{
    EXPECT_EQ(xml_read("<a><b>2</b><b>1</b><b>x</b></a>"), "{a = { = {b = [i:2, i:1, 'x']}}}");
    EXPECT_EQ(xml_read("<a><b>2</b><c>-</c><b>1</b><c/><b>x</b></a>"),
              "{a = { = {b = [i:2, i:1, 'x'], c = [i:0, null]}}}");
}

TEST(XmlReader, RepeatedElementsWithAttributesAreAListOfObjects)
{
    EXPECT_EQ(xml_read(R"(<a><b x="1"/><b x="2">t</b><b>u</b></a>)"),
              "{a = { = {b = [{x = i:1}, { = 't', x = i:2}, 'u']}}}");
}

TEST(XmlReader, ChildrenOfARepeatedElementBelongToItsLastOne)
{
    EXPECT_EQ(xml_read("<a><b><c>1</c></b><b><c>2</c><c>3</c></b></a>"),
              "{a = { = {b = [{ = {c = i:1}}, { = {c = [i:2, i:3]}}]}}}");
    EXPECT_EQ(xml_read("<a><b>1</b><b><c>2</c></b></a>"), "{a = { = {b = [i:1, { = {c = i:2}}]}}}");
}

TEST(XmlReader, EmptyElementBehindAFilledOneIsANullElement)
{
    EXPECT_EQ(xml_read("<a><b>1</b><b></b></a>"), "{a = { = {b = [i:1, null]}}}");
    EXPECT_EQ(xml_read("<a><b>1</b><b></b><b></b><b>2</b></a>"), "{a = { = {b = [i:1, null, null, i:2]}}}");
}

TEST(XmlReader, ElementBehindAnEmptyOneOfItsNameTakesItsPlace)
{
    EXPECT_EQ(xml_read("<a><b></b><b>1</b></a>"), "{a = { = {b = i:1}}}");
    EXPECT_EQ(xml_read("<a><b></b><b></b></a>"), "{a = { = {b = null}}}");
    EXPECT_EQ(xml_read("<a><b /><b x=\"1\"/><b>2</b></a>"), "{a = { = {b = [{x = i:1}, i:2]}}}");
}

TEST(XmlReader, NamesOfMixedCaseAreDifferentKeys)
{
    EXPECT_EQ(xml_read("<r><A>1</A><a>2</a></r>"), "{r = { = {A = i:1, a = i:2}}}");
    EXPECT_EQ(xml_read(R"(<r A="1" a="2"/>)"), "{r = {A = i:1, a = i:2}}");
}

TEST(XmlReader, NamesGoOnInLettersDigitsUnderscoresAndColons)
{
    EXPECT_EQ(xml_read("<xs:el_1>1</xs:el_1>"), "{xs:el_1 = i:1}");
    EXPECT_EQ(xml_read(R"(<a xmlns:x="u" b_2="v"/>)"), "{a = {b_2 = 'v', xmlns:x = 'u'}}");
}

TEST(XmlReader, DeclarationGoesIntoTheReadersOwnMap)
{
    EXPECT_EQ(xml_read(R"(<?xml version="1.0" encoding="UTF-8"?><root>1</root>)"),
              "{encoding = 'UTF-8', version = d:0x1p+0} {root = i:1}");
    EXPECT_EQ(xml_read("<?xml version='1.0' ?>\n<root />"), "{version = d:0x1p+0} {root = null}");
}

TEST(XmlReader, DeclarationAloneCompletesNothingAndLeavesTheTargetNull)
{
    EXPECT_EQ(xml_so_far("<?xml?>"), "null");
    EXPECT_EQ(xml_so_far("<?xml ?>"), "null");
    EXPECT_EQ(xml_so_far(R"(<?xml version="1.0"?> )"), "{version = d:0x1p+0} null");
}

TEST(XmlReader, DeclarationMayEndWithoutItsQuestionMarkBehindABlank)
{
    EXPECT_EQ(xml_read(R"(<?xml version="1.0"><a>1</a>)"), "{version = d:0x1p+0} {a = i:1}");
    EXPECT_EQ(xml_read("<?xml ><a>1</a>"), "{a = i:1}");
}

TEST(XmlReader, DeclarationMayStandWithinAnElement)
{
    EXPECT_EQ(xml_read(R"(<a><?xml x="1"?><b>2</b></a>)"), "{x = i:1} {a = { = {b = i:2}}}");
    EXPECT_EQ(xml_read(R"(<a><?xml?></a>)"), "{a = null}");
}

TEST(XmlReader, SecondDeclarationAddsItsAttributes)
{
    EXPECT_EQ(xml_read(R"(<?xml x="1"?><?xml y="2"?><a />)"), "{x = i:1, y = i:2} {a = null}");
}

TEST(XmlReader, TextBehindTheDocumentStaysUnread)
{
    for (const std::string rest : {"x", " ", "<b>", "</a>"})
    {
        const Outcome outcome = read_xml("<a>1</a>" + rest);
        EXPECT_TRUE(outcome.complete);
        EXPECT_EQ(outcome.consumed, 8u);
        EXPECT_EQ(outcome.result, "{a = i:1}");
        EXPECT_EQ(outcome.failure, "");
    }
}

TEST(XmlReader, InnerEndTagsCompleteNothing)
{
    EXPECT_EQ(xml_so_far("<a><b>1</b>"), "{a = { = {b = i:1}}}");
    EXPECT_EQ(xml_so_far("<a><b/>"), "{a = { = {b = null}}}");
    EXPECT_EQ(xml_so_far("<a><b />"), "{a = { = {b = null}}}");
    EXPECT_EQ(xml_so_far(R"(<a><b x="1"/>)"), "{a = { = {b = {x = i:1}}}}");
}

TEST(XmlReader, TargetGrowsWithTheTags)
{
    EXPECT_EQ(xml_so_far("<a>"), "{a = null}");
    EXPECT_EQ(xml_so_far("<a>5"), "{a = null}");
    EXPECT_EQ(xml_so_far("<a>5<"), "{a = i:5}");
    EXPECT_EQ(xml_so_far("<a x"), "{a = null}");
    EXPECT_EQ(xml_so_far("<a x="), "{a = {x = null}}");
    EXPECT_EQ(xml_so_far("<a x=\"1"), "{a = {x = null}}");
    EXPECT_EQ(xml_so_far("<a x=\"1\""), "{a = {x = i:1}}");
    EXPECT_EQ(xml_so_far("<a x=\"1\">"), "{a = { = null, x = i:1}}");
}

TEST(XmlReader, SlashDirectlyBehindTheNameOfTheOnlyElementNeverCompletes)
{
    EXPECT_EQ(xml_so_far("<a/>"), "{a = null}");
    EXPECT_EQ(xml_so_far("<?xml version=\"1.0\"?><a/>\n"), "{version = d:0x1p+0} {a = null}");
}

TEST(XmlReader, SlashDirectlyBehindTheNameLetsTextFollowIntoTheElement)
{
    EXPECT_EQ(xml_so_far("<a/>text<"), "{a = 'text'}");
    EXPECT_EQ(xml_read("<r><a/>text</r>"), "{r = { = {a = 'text'}}}");
    EXPECT_EQ(xml_read("<r><a/> 5</r>"), "{r = { = {a = i:5}}}");
    EXPECT_EQ(xml_read("<a/>5<b>6</b>"), "{a = i:5, b = i:6}");
    EXPECT_EQ(xml_read("<r><a/>5<a/>true<a/></r>"), "{r = { = {a = [i:5, true, null]}}}");
    EXPECT_EQ(xml_read("<r><a/><b>1</b></r>"), "{r = { = {a = null, b = i:1}}}");
}

TEST(XmlReader, SlashBehindABlankOrAnAttributeIsAnEndTag)
{
    EXPECT_EQ(xml_read("<a />"), "{a = null}");
    EXPECT_EQ(xml_read("<a x=''/>"), "{a = {x = ''}}");
    EXPECT_EQ(xml_read("<r><a /></r>"), "{r = { = {a = null}}}");
    EXPECT_EQ(json_test::xml_failure("<r><a />t"), "Unexpected t at the beginning");
    EXPECT_EQ(json_test::xml_failure("<r><a x=\"1\"/>t"), "Unexpected t at the beginning");
}

/// Reads on after a complete document.
TEST(XmlReader, RootElementsFollowEachOther)
{
    Value target;
    Json::XmlReader reader(target);
    const std::string text = "<a>1</a> <b x='2'/>\n<a>3</a><a />";
    const char* p = text.data();
    const char* const end = p + text.size();
    ASSERT_TRUE(reader.read(p, end));
    EXPECT_EQ(value_text(target), "{a = i:1}");
    EXPECT_EQ(std::string(p, end), " <b x='2'/>\n<a>3</a><a />");
    ASSERT_TRUE(reader.read(p, end));
    EXPECT_EQ(value_text(target), "{a = i:1, b = {x = i:2}}");
    ASSERT_TRUE(reader.read(p, end));
    EXPECT_EQ(value_text(target), "{a = [i:1, i:3], b = {x = i:2}}");
    ASSERT_TRUE(reader.read(p, end));
    EXPECT_EQ(value_text(target), "{a = [i:1, i:3, null], b = {x = i:2}}");
    EXPECT_FALSE(reader.read(p, end));
    EXPECT_EQ(p, end);
}

TEST(XmlReader, StreamIsLeftDirectlyBehindTheDocument)
{
    Value target;
    Json::XmlReader reader(target);
    std::istringstream stream("<a>1</a>rest");
    ASSERT_TRUE(reader.read(stream));
    std::string rest;
    stream >> rest;
    EXPECT_EQ(rest, "rest");
}

TEST(XmlReader, StreamKeepsItsWhiteSpace)
{
    Value target;
    Json::XmlReader reader(target);
    std::istringstream stream("<a x=' 1 '>a b\n c</a>");
    ASSERT_TRUE(reader.read(stream));
    EXPECT_EQ(value_text(target), "{a = { = 'a b\n c', x = ' 1 '}}");
}

TEST(XmlReader, StreamThatFailsIsAnIncompleteDocument)
{
    Value target;
    Json::XmlReader reader(target);
    std::istringstream failed("<a>1</a>");
    failed.setstate(std::ios::failbit);
    EXPECT_FALSE(reader.read(failed));
    EXPECT_TRUE(target.is_null());
}

TEST(XmlReader, StreamsAndBuffersMayTakeTurns)
{
    Value target;
    Json::XmlReader reader(target);
    std::istringstream first("<a x=\"t");
    EXPECT_FALSE(reader.read(first));
    const std::string second = "ext\">1";
    const char* p = second.data();
    EXPECT_FALSE(reader.read(p, second.data() + second.size()));
    std::istringstream third("2</a");
    EXPECT_FALSE(reader.read(third));
    const std::string fourth = ">";
    p = fourth.data();
    EXPECT_TRUE(reader.read(p, fourth.data() + fourth.size()));
    EXPECT_EQ(value_text(target), "{a = { = i:12, x = 'text'}}");
}

TEST(XmlReader, ClearEmptiesItsOwnMapAlone)
{
    Value target;
    Json::XmlReader reader(target);
    const std::string first = "<?xml version=\"1.0\"?><a><b>1</b>";
    const char* p = first.data();
    EXPECT_FALSE(reader.read(p, first.data() + first.size()));
    EXPECT_EQ(reader.object().size(), 1u);
    reader.clear();
    EXPECT_TRUE(reader.object().empty());
    EXPECT_EQ(value_text(target), "{a = { = {b = i:1}}}");
    const std::string second = "<?xml version=\"2\"?></a>";
    p = second.data();
    EXPECT_TRUE(reader.read(p, second.data() + second.size()));
    EXPECT_EQ(json_test::object_text(reader.object()), "{version = i:2}");
    EXPECT_EQ(value_text(target), "{a = { = {b = i:1}}}");
}

/// The attributes of `document`, of which the map has been cleared before the character `cut`.
std::string attributes_with_clear(const std::string& document, std::size_t cut)
{
    Value target;
    Json::XmlReader reader(target);
    const char* p = document.data();
    EXPECT_FALSE(reader.read(p, document.data() + cut));
    reader.clear();
    EXPECT_LE(reader.object().size(), 1u);
    EXPECT_TRUE(reader.read(p, document.data() + document.size())) << cut;
    EXPECT_EQ(value_text(target), "{a = i:1}") << cut;
    return json_test::object_text(reader.object());
}

TEST(XmlReader, ClearWithinADeclarationLetsItGoOn)
{
    const std::string document = R"(<?xml version="1.0" encoding = 'x'?><a>1</a>)";
    const std::string both = "{encoding = 'x', version = d:0x1p+0}";
    const std::size_t version_end = document.find("\" ");
    const std::size_t encoding_end = document.find("'?");
    const std::size_t name_end = document.find(" =");
    for (std::size_t cut = 0; cut < document.size(); ++cut)
    {
        const std::string expected = cut <= version_end ? both : cut <= encoding_end ? "{encoding = 'x'}" : "{}";
        EXPECT_EQ(attributes_with_clear(document, cut), expected) << cut;
    }
    EXPECT_LT(version_end, name_end);
}

TEST(XmlReader, AttributeThatIsBeingReadStaysNullInAClearedMap)
{
    Value target;
    Json::XmlReader reader(target);
    const std::string text = R"(<?xml version="1.0" encoding="ut)";
    const char* p = text.data();
    EXPECT_FALSE(reader.read(p, text.data() + text.size()));
    EXPECT_EQ(json_test::object_text(reader.object()), "{encoding = null, version = d:0x1p+0}");
    reader.clear();
    EXPECT_EQ(json_test::object_text(reader.object()), "{encoding = null}");
}

TEST(XmlReader, EmptyBufferChangesNothing)
{
    Value target;
    Json::XmlReader reader(target);
    const char* p = nullptr;
    EXPECT_FALSE(reader.read(p, p));
    EXPECT_TRUE(target.is_null());
}

TEST(XmlReader, RecordWithManyLevelsIsReadAsAWhole)
{
    EXPECT_EQ(
        xml_read("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<OME xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n"
                 "  <Image ID=\"Image:0\" Name=\"a &lt; b\">\n"
                 "    <Pixels SizeX=\"512\" PhysicalSizeX=\"0.25\" BigEndian=\"false\">\n"
                 "      <Channel ID=\"Channel:0\"/>\n"
                 "      <Channel ID=\"Channel:1\" Color=\"-1\" />\n"
                 "      <Plane TheZ=\"0\"></Plane>\n"
                 "    </Pixels>\n"
                 "    <Description>Two lines\nof text.</Description>\n"
                 "  </Image>\n"
                 "</OME>"),
        "{encoding = 'UTF-8', version = d:0x1p+0} {OME = { = {Image = { = {Description = 'Two lines\nof text.', "
        "Pixels = { = {Channel = [{ID = 'Channel:0'}, {Color = i:-1, ID = 'Channel:1'}], Plane = { = null, TheZ = "
        "i:0}}, BigEndian = false, PhysicalSizeX = d:0x1p-2, SizeX = i:512}}, ID = 'Image:0', Name = 'a < b'}}, "
        "xmlns:xsi = 'http://www.w3.org/2001/XMLSchema-instance'}}");
}

}
