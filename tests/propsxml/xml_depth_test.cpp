#include "sources/propsxml/xml_depth.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <algorithm>
#include <random>

namespace {

/// Elements on the way to the deepest one.
std::size_t depth_of(const TiXmlNode& node)
{
    std::size_t deepest = 0;
    for (const TiXmlNode* child = node.FirstChild(); child; child = child->NextSibling())
        deepest = std::max(deepest, depth_of(*child) + (child->ToElement() ? 1 : 0));
    return deepest;
}

struct Parsed
{
    std::size_t depth;
    bool is_well_formed;
};

Parsed parse(const std::string& text)
{
    TiXmlBase::SetCondenseWhiteSpace(false);
    TiXmlDocument document;
    document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    return {depth_of(document), !document.Error()};
}

/// The parser never gets deeper than is said, and where it reads all, exactly so deep.
void expect_as_the_parser(std::string text)
{
    text.append(4, '\0');
    const Parsed parsed = parse(text);
    if (parsed.depth > 0)
    {
        EXPECT_TRUE(ticpp::is_nested_deeper(text.c_str(), parsed.depth - 1)) << text;
    }
    if (parsed.is_well_formed)
    {
        EXPECT_FALSE(ticpp::is_nested_deeper(text.c_str(), parsed.depth)) << text;
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

TEST(XmlDepth, CountsOpenElements)
{
    EXPECT_FALSE(ticpp::is_nested_deeper("<a><b/><b></b></a>\0\0\0", 2));
    EXPECT_TRUE(ticpp::is_nested_deeper("<a><b/><b></b></a>\0\0\0", 1));
    EXPECT_FALSE(ticpp::is_nested_deeper("\0\0\0", 0));
}

TEST(XmlDepth, IsThatOfTheParserInOddPlaces)
{
    for (const char* text :
         {"<a b=\"<c><c><c>\"/>", "<a><!--<b><c>--><d/></a>", "<a><![CDATA[<b><c>]]></a>", "<a><!--><b>--></a>",
          "</x><a><b/></a>", "<a>\xf0<b></a>", "<a b=\"\xc3\"c=\"><b><b/></b></a>", "<?xml version='>'?><a/>",
          "<?xml VERSION='><a><a>'?><a/>", "<a><?b <c>?></a>", "<a b=c<d><e/></a>", "<a>x<b>y</b>z</a>",
          "<!DOCTYPE a><a/>", "text<a/>", "<a><b c='>'/><b c='/>'></b></a>", "<1><a/>", "\xef\xbb\xbf<a/>"})
        expect_as_the_parser(text);
}

TEST(XmlDepth, IsNeverLessThanThatOfTheParser)
{
    std::mt19937_64 random(512);
    for (int i = 0; i < 300'000 && !testing::Test::HasFailure(); ++i)
        expect_as_the_parser(random_text(random));
}
