#include "sources/propsxml/xml_scan.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <algorithm>
#include <random>

namespace {

constexpr std::size_t any_number = 1'000'000;

ticpp::Scan scan_texts(const std::string& text, std::size_t length)
{
    return ticpp::scan((text + std::string(4, '\0')).c_str(), {any_number, any_number, length});
}

bool is_nested_deeper(const char* text, std::size_t levels)
{
    return ticpp::scan(text, {levels, any_number, any_number}).is_too_deep;
}

bool has_more_attributes(const std::string& text, std::size_t attributes)
{
    return ticpp::scan((text + std::string(4, '\0')).c_str(), {any_number, attributes, any_number})
        .has_too_many_attributes;
}

/// Elements on the way to the deepest one.
std::size_t depth_of(const TiXmlNode& node)
{
    std::size_t deepest = 0;
    for (const TiXmlNode* child = node.FirstChild(); child; child = child->NextSibling())
        deepest = std::max(deepest, depth_of(*child) + (child->ToElement() ? 1 : 0));
    return deepest;
}

/// What is in a node: other nodes, and attributes.
std::size_t count_in(const TiXmlNode& node)
{
    std::size_t count = 0;
    const TiXmlElement* const element = node.ToElement();
    for (const TiXmlAttribute* attribute = element ? element->FirstAttribute() : nullptr; attribute;
         attribute = attribute->Next())
        ++count;
    for (const TiXmlNode* child = node.FirstChild(); child; child = child->NextSibling())
        count += 1 + count_in(*child);
    return count;
}

std::size_t scanned_nodes(std::string text)
{
    text.append(4, '\0');
    return ticpp::scan(text.c_str(), {any_number, any_number, any_number}).nodes;
}

struct Parsed
{
    std::size_t depth;
    std::size_t nodes;
    bool is_well_formed;
};

Parsed parse(const std::string& text)
{
    TiXmlBase::SetCondenseWhiteSpace(false);
    TiXmlDocument document;
    document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    return {depth_of(document), count_in(document), !document.Error()};
}

/// The parser never gets deeper than is said, and where it reads all, exactly so deep. It makes no more nodes than were
/// counted.
void expect_as_the_parser(std::string text)
{
    text.append(4, '\0');
    const Parsed parsed = parse(text);
    EXPECT_LE(parsed.nodes, scanned_nodes(text)) << text;
    if (parsed.depth > 0)
    {
        EXPECT_TRUE(is_nested_deeper(text.c_str(), parsed.depth - 1)) << text;
    }
    if (parsed.is_well_formed)
    {
        EXPECT_FALSE(is_nested_deeper(text.c_str(), parsed.depth)) << text;
    }
}

std::string random_text(std::mt19937_64& random)
{
    static const char* const pieces[] = {"<a>",
                                         "<a>",
                                         "<b>",
                                         "<a>",
                                         "</a>",
                                         "</a>",
                                         "</b>",
                                         "<a/>",
                                         "<a",
                                         ">",
                                         "/>",
                                         "/",
                                         "<",
                                         "\"",
                                         "'",
                                         "=",
                                         " ",
                                         "a",
                                         "b",
                                         " a='",
                                         " b=\"",
                                         "<!--",
                                         "-->",
                                         "<!-->",
                                         "--",
                                         "<?xml",
                                         "<?XML ",
                                         "?>",
                                         "<?a",
                                         "<!",
                                         "<![CDATA[",
                                         "]]>",
                                         "]]",
                                         "&lt;",
                                         "&#x41;",
                                         "&#60;",
                                         "&#",
                                         "&#x",
                                         "&;",
                                         ";",
                                         "&",
                                         "\xc3",
                                         "\xc3\xa9",
                                         "\xe2",
                                         "\xf0",
                                         "\xc0",
                                         "\xf5",
                                         "\x80",
                                         "\xef\xbb\xbf",
                                         "\xef",
                                         "\n",
                                         "version=",
                                         "Version='",
                                         "standalone=\"yes\"",
                                         "_",
                                         "-",
                                         ":",
                                         "<_>",
                                         "</",
                                         "\xff"};
    std::string text = random() % 2 == 0 ? "<a>" : "";
    for (auto count = random() % 14; count > 0; --count)
        text += pieces[random() % std::size(pieces)];
    return text;
}

}

TEST(XmlScan, CountsOpenElements)
{
    EXPECT_FALSE(is_nested_deeper("<a><b/><b></b></a>\0\0\0", 2));
    EXPECT_TRUE(is_nested_deeper("<a><b/><b></b></a>\0\0\0", 1));
    EXPECT_FALSE(is_nested_deeper("\0\0\0", 0));
}

TEST(XmlScan, IsThatOfTheParserInOddPlaces)
{
    for (const char* text : {"<a b=\"<c><c><c>\"/>",
                             "<a><!--<b><c>--><d/></a>",
                             "<a><![CDATA[<b><c>]]></a>",
                             "<a><!--><b>--></a>",
                             "</x><a><b/></a>",
                             "<a>\xf0<b></a>",
                             "<a b=\"\xc3\"c=\"><b><b/></b></a>",
                             "<?xml version='>'?><a/>",
                             "<?xml VERSION='><a><a>'?><a/>",
                             "<a><?b <c>?></a>",
                             "<a b=c<d><e/></a>",
                             "<a>x<b>y</b>z</a>",
                             "<!DOCTYPE a><a/>",
                             "text<a/>",
                             "<a><b c='>'/><b c='/>'></b></a>",
                             "<1><a/>",
                             "\xef\xbb\xbf<a/>",
                             "<a>&#x<!--&#x3c;<b><b/></b></a>",
                             "<a b=\"&#x\"><!--&#x3c;\"><b/></a>",
                             "<a>&#x<b><b><b>x41;</a>",
                             "<a>&#<b>#65;</a>",
                             "<a>&#x<b></a>"})
        expect_as_the_parser(text);
}

TEST(XmlScan, IsNeverLessThanThatOfTheParser)
{
    std::mt19937_64 random(512);
    for (int i = 0; i < 300'000 && !testing::Test::HasFailure(); ++i)
        expect_as_the_parser(random_text(random));
}

TEST(XmlScan, CountsTheAttributesOfEachElement)
{
    EXPECT_FALSE(has_more_attributes("<a b='1' c=\"2\" d=3><e f='' g='' h=''/></a>", 3));
    EXPECT_TRUE(has_more_attributes("<a b='1' c=\"2\" d=3></a>", 2));
    EXPECT_TRUE(has_more_attributes("<a><b c='' d=''/></a>", 1));
    EXPECT_FALSE(has_more_attributes("<?xml version='' encoding='' standalone=''?><a b=''/>", 1));
}

TEST(XmlScan, CountsWhatTheParserWouldMake)
{
    EXPECT_EQ(scanned_nodes(""), 0U);
    EXPECT_EQ(scanned_nodes("<a/>"), 1U);
    EXPECT_EQ(scanned_nodes("<a b='1' c='2'></a>"), 3U);
    EXPECT_EQ(scanned_nodes("<a><b/><b/></a>"), 3U);
    EXPECT_EQ(scanned_nodes("<a>1<b/>2</a>"), 4U);
    EXPECT_EQ(scanned_nodes("<a><!-- 1 --><![CDATA[2]]></a>"), 3U);
    EXPECT_EQ(scanned_nodes("<?xml version='1.0'?><a/>"), 2U);
    EXPECT_EQ(scanned_nodes("<a>" + std::string(100, 'x') + "</a>"), 2U);
}

TEST(XmlScan, FindsLongTextsOfElements)
{
    const std::string xml = "<a>123<b> 12345\n</b>12345</a>";
    const std::vector<ticpp::Place> texts = scan_texts(xml, 5).long_texts;
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(xml.substr(texts[0].begin, texts[0].end - texts[0].begin), " 12345\n");
    EXPECT_EQ(xml.substr(texts[1].begin, texts[1].end - texts[1].begin), "12345");
}

TEST(XmlScan, TakesNoTextForLongThatTheParserChanges)
{
    for (const char* const xml :
         {"<a>12&amp;345</a>", "<a>1234567\xc3\xa9</a>", "<a>\xc3<2345678</a>", "<a>         </a>",
          "<a><!-- 1234567 --></a>", "<a><![CDATA[1234567]]></a>", "<a b='1234567'/>", "<a>1234567", "12345678<a/>"})
        EXPECT_TRUE(scan_texts(xml, 5).long_texts.empty()) << xml;
}
