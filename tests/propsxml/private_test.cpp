#include "sources/propsxml/VPropXmlExport.h"
#include "sources/propsxml/VPropXmlParser.h"

#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

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
    EXPECT_THROW(element.get_text(), ticpp::Exception);
    element.set_text("b");
    EXPECT_EQ(element.get_text(), "b");
}

TEST(XmlDocument, TextEndsAtTheFirstNul)
{
    const ticpp::Document document(std::string("<a/>\0<b>", 8));
    EXPECT_EQ(document.first_element().name(), "a");
}
