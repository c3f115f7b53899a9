#include "sources/propsxml/VPropXmlExport.h"
#include "sources/propsxml/VPropXmlParser.h"

#include "support/expect_vela_error.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <random>
#include <string>

TEST(VPropXmlExport, HasNoTopBeforeTheWalk)
{
    VPropXmlExport exporter(2, 1);
    EXPECT_VELA_ERROR_IN(exporter.get_top(), "VPropXmlExport::get_top", "sources/propsxml", -1, "Internal error!");
}

TEST(VPropXmlExport, HasOneTopAfterTheWalk)
{
    VPropXmlExport exporter(2, 1);
    VProp prop;
    prop["a.b"] = 1;
    EXPECT_TRUE(exporter.process(prop));
    EXPECT_NO_THROW(exporter.get_top());
    EXPECT_EQ(exporter.get_format(), 2);
    EXPECT_EQ(exporter.get_version(), 1);
}

TEST(VPropXmlExport, HasNoTopAfterAWalkThatBroke)
{
    VPropXmlExport exporter(2, 1);
    VProp prop;
    prop["a.b"] = _s_vela_RGB();
    EXPECT_THROW(exporter.process(prop), VelaError);
    EXPECT_VELA_ERROR(exporter.get_top(), -1, "Internal error!");
}

TEST(VPropXmlParser, IsNowhereBeforeTheFirstElement)
{
    const VPropXmlParser parser;
    EXPECT_EQ(parser.location(), "<unknown-location>");
    EXPECT_EQ(parser.get_format(), 2);
    EXPECT_EQ(parser.get_version(), 1);
}

TEST(VPropXmlParser, IsAtTheElementThatWasBegunLast)
{
    const ticpp::Document document("<a type='struct'><b type='struct'><c type='int32'>1</c></b></a>");
    VPropXmlParser parser;
    VProp prop;
    parser.import_xml(document.first_element(), prop);
    EXPECT_EQ(parser.location(), "a.b.c");
}

TEST(VPropValueCodec, TellsWhetherAllWasRead)
{
    const VPropValueCodec codec;
    for (const char* text : {"", "1", "1 2", "1  2 ", " 1"})
    {
        std::vector<int> elements;
        EXPECT_TRUE(codec.read_elements(text, elements)) << text;
    }
    for (const char* text : {"x", "1x", "1 x", "1,2", "1\n2", "1 2 \n"})
    {
        std::vector<int> elements;
        EXPECT_FALSE(codec.read_elements(text, elements)) << text;
    }
}

TEST(VPropValueCodec, KeepsWhatWasReadBeforeTheEnd)
{
    std::vector<double> elements{7};
    EXPECT_FALSE(VPropValueCodec().read_elements("1 2.5,3", elements));
    EXPECT_EQ(elements, (std::vector<double>{7, 1, 2.5}));
}

TEST(XmlElement, HasTheNameThatNobodyGaveIt)
{
    ticpp::Document document;
    document.link_end_child(ticpp::Element());
    EXPECT_EQ(document.print(), "<DefaultValueCausedByCreatingAnElementWithNoParameters />\n");
}

TEST(XmlElement, WithoutTextFailsToGiveIt)
{
    EXPECT_THROW_TEXT(ticpp::Element("a").get_text(), ticpp::Exception, "Text does not exists in the current element");
    ticpp::Element element("a");
    element.set_text("");
    EXPECT_EQ(element.get_text(), "");
    element.set_text("b");
    EXPECT_EQ(element.get_text(), "b");
}

TEST(XmlDocument, TextEndsAtTheFirstNul)
{
    const ticpp::Document document(std::string("<a/>\0<b>", 8));
    EXPECT_EQ(document.first_element().name(), "a");
}

namespace {

/// Texts on both sides of what is long, some of which the parser changes or drops.
std::string random_content(std::mt19937_64& random, int levels)
{
    static const std::string blanks(2000, ' ');
    static const std::string numbers = []
    {
        std::string text;
        for (int i = 0; i < 400; ++i)
            text += std::to_string(i) + "\n ";
        return text;
    }();
    std::string content;
    for (auto count = random() % 4; count > 0; --count)
        switch (random() % 9)
        {
        case 0:
            content += blanks;
            break;
        case 1:
            content += numbers.substr(random() % numbers.size());
            break;
        case 2:
            content += "&lt;" + numbers + "&#xff;";
            break;
        case 3:
            content += numbers + "\xc3\xa9";
            break;
        case 4:
            content += "<![CDATA[" + numbers + "]]>";
            break;
        case 5:
            content += "<!--" + numbers + "-->";
            break;
        case 6:
            content += random() % 20 == 0 ? "\xff" : "x";
            break;
        default:
            if (levels > 0)
                content += "<a b='" + numbers + "'>" + random_content(random, levels - 1) + "</a>";
        }
    return content;
}

void expect_same_texts(const ticpp::Node& node, const TiXmlElement& element)
{
    const TiXmlNode* const first = element.FirstChild();
    const TiXmlText* const text = first ? first->ToText() : nullptr;
    ASSERT_EQ(node.text_or_null() == nullptr, text == nullptr);
    if (text)
    {
        EXPECT_TRUE(*node.text_or_null() == text->ValueStr());
    }
    const TiXmlElement* same = element.FirstChildElement();
    for (ticpp::Node child = node.first_child(); child; child = child.next_sibling())
    {
        ASSERT_NE(same, nullptr);
        expect_same_texts(child, *same);
        same = same->NextSiblingElement();
    }
    EXPECT_EQ(same, nullptr);
}

}

TEST(TicppDocument, LongTextsAreThoseThatTheParserReads)
{
    std::mt19937_64 random(1024);
    for (int i = 0; i < 1000 && !testing::Test::HasFailure(); ++i)
    {
        const std::string xml = "<root>" + random_content(random, 4) + "</root>";
        const ticpp::Document document(xml);
        TiXmlBase::SetCondenseWhiteSpace(false);
        TiXmlDocument same;
        same.Parse(xml.c_str(), nullptr, TIXML_ENCODING_UTF8);
        ASSERT_FALSE(same.Error());
        expect_same_texts(document.first_element(), *same.RootElement());
    }
}

TEST(TicppDocument, PlacesOfErrorsAreThoseInTheWholeText)
{
    const std::string xml = "<a>" + std::string(5000, '1') + "\n</b>";
    TiXmlDocument same;
    same.Parse(xml.c_str(), nullptr, TIXML_ENCODING_UTF8);
    ASSERT_TRUE(same.Error());
    EXPECT_THROW_TEXT(ticpp::Document{xml}, ticpp::Exception,
                      std::string(same.ErrorDesc()) + " Line " + std::to_string(same.ErrorRow()) + ", column " +
                          std::to_string(same.ErrorCol()));
}
