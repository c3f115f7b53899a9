// What the reader of XML refuses, with which words: every byte at every place of a tag.
#include "support/expect_vela_error.h"
#include "json/read_xml.h"

#include <Json/XmlReader.h>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace {

using json_test::as_thrown;
using json_test::Outcome;
using json_test::read_xml;
using json_test::read_xml_pieces;
using json_test::xml_failure;
using Unexpected = Json::XmlReader::Unexpected;

static_assert(std::is_base_of_v<std::runtime_error, Unexpected>);
static_assert(std::has_virtual_destructor_v<Unexpected>);

const std::string white_space = " \t\n\v\f\r";
const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
const std::string name_characters = letters + "0123456789_:";

/// Behind `before`, the bytes `accepted` pass, and every other one fails with `words`.
void expect_only(const std::string& before, const std::string& accepted, const std::string& words)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const char c = static_cast<char>(byte);
        const bool passes = accepted.find(c) != std::string::npos;
        const std::string expected = passes ? "" : as_thrown("Unexpected " + std::string(1, c) + " " + words);
        EXPECT_EQ(read_xml_pieces({before, std::string(1, c)}).failure, expected) << before << " and byte " << byte;
    }
}

TEST(XmlReaderUnexpected, HasAFormForACharacterAndOneForAText)
{
    EXPECT_THROW_TEXT(throw Unexpected('x', "in tag"), Unexpected, "Unexpected x in tag");
    EXPECT_THROW_TEXT(throw Unexpected(std::string("&nbsp;"), "reference"), Unexpected, "Unexpected &nbsp; reference");
}

TEST(XmlReaderUnexpected, KeepsItsTextWhenCopied)
{
    const Unexpected original(std::string("b"), "end tag");
    const Unexpected copy(original);
    EXPECT_STREQ(copy.what(), "Unexpected b end tag");
    Unexpected assigned('y', "in tag");
    assigned = original;
    EXPECT_STREQ(assigned.what(), "Unexpected b end tag");
    EXPECT_THROW(throw Unexpected('x', "in tag"), std::runtime_error);
}

TEST(XmlReaderFailure, ThrowsExactlyUnexpectedFromBuffersAndStreams)
{
    Json::Value target;
    Json::XmlReader from_buffer(target);
    const std::string text = "x";
    const char* p = text.data();
    EXPECT_THROW_TEXT(from_buffer.read(p, text.data() + 1), Unexpected, "Unexpected x at the beginning");
    Json::XmlReader from_stream(target);
    std::istringstream stream(text);
    EXPECT_THROW_TEXT(from_stream.read(stream), Unexpected, "Unexpected x at the beginning");
}

TEST(XmlReaderFailure, OutsideATagOnlyATagMayBegin)
{
    expect_only("", white_space + "<", "at the beginning");
    expect_only(" ", white_space + "<", "at the beginning");
    expect_only("<?xml?>", white_space + "<", "at the beginning");
    expect_only("<a><b></b>", white_space + "<", "at the beginning");
    expect_only("<a><b />", white_space + "<", "at the beginning");
    expect_only("<a x='1'><b y='2'/>", white_space + "<", "at the beginning");
}

TEST(XmlReaderFailure, TextBehindTheDocumentIsRefusedByTheNextRead)
{
    Json::Value target;
    Json::XmlReader reader(target);
    const std::string text = "<a></a> x";
    const char* p = text.data();
    const char* const end = p + text.size();
    ASSERT_TRUE(reader.read(p, end));
    EXPECT_THROW_TEXT(reader.read(p, end), Unexpected, "Unexpected x at the beginning");
}

TEST(XmlReaderFailure, NameBeginsWithALetter)
{
    expect_only("<", letters + "?/", "in tag name");
    expect_only("</", letters + "?", "in tag name");
    expect_only("<a></", letters + "?", "in tag name");
    expect_only("<?", letters + "/", "in tag name");
}

TEST(XmlReaderFailure, NamesDoNotBeginWithWhatMayFollowInThem)
{
    EXPECT_EQ(xml_failure("<_"), "Unexpected _ in tag name");
    EXPECT_EQ(xml_failure("<:"), "Unexpected : in tag name");
    EXPECT_EQ(xml_failure("<1"), "Unexpected 1 in tag name");
    EXPECT_EQ(xml_failure("< "), "Unexpected   in tag name");
    EXPECT_EQ(xml_failure("<>"), "Unexpected > in tag name");
    EXPECT_EQ(xml_failure("</>"), "Unexpected > in tag name");
    EXPECT_EQ(xml_failure("<\xC3"), "Unexpected \xC3 in tag name");
}

TEST(XmlReaderFailure, CommentsDocumentTypesAndCdataAreErrors)
{
    EXPECT_EQ(read_xml("<!-- comment --><a>1</a>").failure, "Unexpected ! in tag name");
    EXPECT_EQ(read_xml("<!DOCTYPE a><a>1</a>").failure, "Unexpected ! in tag name");
    EXPECT_EQ(read_xml("<a><![CDATA[x]]></a>").failure, "Unexpected ! in tag name");
    EXPECT_EQ(read_xml("<a><!-- comment --></a>").failure, "Unexpected ! in tag name");
}

TEST(XmlReaderFailure, BehindTheNameOfAStartTagItsEndABlankOrASlashIsDue)
{
    expect_only("<a", name_characters + white_space + ">/", "in tag a");
    expect_only("<ab:c_1", name_characters + white_space + ">/", "in tag ab:c_1");
    expect_only("<r><a", name_characters + white_space + ">/", "in tag a");
}

TEST(XmlReaderFailure, BehindTheNameOfAnEndTagItsEndOrABlankIsDue)
{
    expect_only("<r><a></a", white_space + name_characters + ">", "in tag a");
    EXPECT_EQ(xml_failure("<a></a/"), "Unexpected / in tag a");
    EXPECT_EQ(xml_failure("<a></a?"), "Unexpected ? in tag a");
}

TEST(XmlReaderFailure, BehindTheNameOfADeclarationAQuestionMarkOrABlankIsDue)
{
    expect_only("<?xml", white_space + name_characters + "?", "in tag xml");
    EXPECT_EQ(xml_failure("<?xml>"), "Unexpected > in tag xml");
    EXPECT_EQ(xml_failure("<?xml/"), "Unexpected / in tag xml");
}

TEST(XmlReaderFailure, BodyOfAStartTagTakesAttributesAndItsEnd)
{
    expect_only("<a ", letters + white_space + "/>", "in tag");
    expect_only("<a x='1'", letters + white_space + "/>", "in tag");
    expect_only("<a x='1' ", letters + white_space + "/>", "in tag");
    EXPECT_EQ(xml_failure("<a _"), "Unexpected _ in tag");
    EXPECT_EQ(xml_failure("<a ?"), "Unexpected ? in tag");
    EXPECT_EQ(xml_failure("<a ="), "Unexpected = in tag");
    EXPECT_EQ(xml_failure("<a <"), "Unexpected < in tag");
}

TEST(XmlReaderFailure, BodyOfAnEndTagTakesNothing)
{
    expect_only("<r><a></a ", white_space + ">", "in tag");
    EXPECT_EQ(xml_failure("<a></a b"), "Unexpected b in tag");
    EXPECT_EQ(xml_failure("<a></a /"), "Unexpected / in tag");
}

TEST(XmlReaderFailure, BodyOfADeclarationTakesAttributesAndItsEnd)
{
    expect_only("<?xml ", letters + white_space + "?>", "in tag");
    expect_only("<?xml x='1'", letters + white_space + "?>", "in tag");
    EXPECT_EQ(xml_failure("<?xml /"), "Unexpected / in tag");
}

TEST(XmlReaderFailure, BehindTheClosingMarkOnlyTheEndOfTheTagMayCome)
{
    expect_only("<a/", ">", "in tag");
    expect_only("<a /", ">", "in tag");
    expect_only("<a x='1'/", ">", "in tag");
    expect_only("<?xml?", ">", "in tag");
    expect_only("<?xml ?", ">", "in tag");
    EXPECT_EQ(xml_failure("<a/ "), "Unexpected   in tag");
    EXPECT_EQ(xml_failure("<a //"), "Unexpected / in tag");
    EXPECT_EQ(xml_failure("<?xml ??"), "Unexpected ? in tag");
}

TEST(XmlReaderFailure, AttributeIsANameAnEqualsSignAndAQuote)
{
    expect_only("<a x", name_characters + white_space + "=", "in attribute");
    expect_only("<a x ", white_space + "=", "in attribute");
    expect_only("<a x=", white_space + "\"'", "in attribute");
    expect_only("<a x= ", white_space + "\"'", "in attribute");
    expect_only("<?xml x ", white_space + "=", "in attribute");
    EXPECT_EQ(xml_failure("<a x>"), "Unexpected > in attribute");
    EXPECT_EQ(xml_failure("<a x y"), "Unexpected y in attribute");
    EXPECT_EQ(xml_failure("<a x=="), "Unexpected = in attribute");
    EXPECT_EQ(xml_failure("<a x=1"), "Unexpected 1 in attribute");
    EXPECT_EQ(xml_failure("<a x\""), "Unexpected \" in attribute");
    EXPECT_EQ(xml_failure("<a x/"), "Unexpected / in attribute");
}

TEST(XmlReaderFailure, AttributeComesOnce)
{
    EXPECT_EQ(xml_failure("<a x='1' x="), "Unexpected x duplicate attribute");
    EXPECT_EQ(xml_failure("<a x='1' y='2' x "), "Unexpected x duplicate attribute");
    EXPECT_EQ(xml_failure("<a long_name='1' long_name>"), "Unexpected long_name duplicate attribute");
    EXPECT_EQ(xml_failure("<r><b x='1'/><b x='1' x="), "Unexpected x duplicate attribute");
    EXPECT_EQ(xml_failure("<?xml x='1' x="), "Unexpected x duplicate attribute");
    EXPECT_EQ(xml_failure("<?xml x='1'?><?xml x="), "Unexpected x duplicate attribute");
}

TEST(XmlReaderFailure, AttributeOfAnElementMayHaveTheNameOfOneInTheDeclarationOrOfAChild)
{
    EXPECT_EQ(json_test::xml_read("<?xml x='1'?><a x='2'><x>3</x></a>"), "{x = i:1} {a = { = {x = i:3}, x = i:2}}");
}

TEST(XmlReaderFailure, EndTagThatDoesNotMatchIsNamed)
{
    EXPECT_EQ(xml_failure("<a></b>"), "Unexpected b end tag");
    EXPECT_EQ(xml_failure("<a>text</b "), "Unexpected b end tag");
    EXPECT_EQ(xml_failure("<a></A>"), "Unexpected A end tag");
    EXPECT_EQ(xml_failure("<a><b></a>"), "Unexpected a end tag");
    EXPECT_EQ(xml_failure("<a><b></b></b>"), "Unexpected b end tag");
    EXPECT_EQ(xml_failure("<ab></a>"), "Unexpected a end tag");
    EXPECT_EQ(xml_failure("<a></ab>"), "Unexpected ab end tag");
    EXPECT_EQ(xml_failure("<a></b/"), "Unexpected b end tag");
}

TEST(XmlReaderFailure, EndTagWithNothingOpenIsNamed)
{
    EXPECT_EQ(xml_failure("</a>"), "Unexpected a end tag at the beginning");
    EXPECT_EQ(xml_failure("</a "), "Unexpected a end tag at the beginning");
    EXPECT_EQ(xml_failure("<?xml?></xml>"), "Unexpected xml end tag at the beginning");
    EXPECT_EQ(xml_failure("<a/></a>"), "Unexpected a end tag at the beginning");
}

TEST(XmlReaderFailure, TextBeforeAChildIsAValue)
{
    EXPECT_EQ(xml_failure("<a>text<b>"), "Unexpected b after value");
    EXPECT_EQ(xml_failure("<a>5<b "), "Unexpected b after value");
    EXPECT_EQ(xml_failure("<a>true<b/"), "Unexpected b after value");
    EXPECT_EQ(xml_failure("<r><a>1</a><a>2<b>"), "Unexpected b after value");
}

TEST(XmlReaderFailure, TextBeforeAChildIsContentWhereTheParentHasAttributes)
{
    EXPECT_EQ(xml_failure("<a x='1'>text<b>"), "Unexpected b after content");
    EXPECT_EQ(xml_failure("<r><a /><a x='1'>5<long_name "), "Unexpected long_name after content");
}

TEST(XmlReaderFailure, TextBehindAChildIsAtTheBeginning)
{
    EXPECT_EQ(xml_failure("<a><b>1</b>x"), "Unexpected x at the beginning");
    EXPECT_EQ(xml_failure("<a><b>1</b> 5"), "Unexpected 5 at the beginning");
    EXPECT_EQ(xml_failure("<a><?xml?>t"), "Unexpected t at the beginning");
}

TEST(XmlReaderFailure, OnlyXmlIsAProcessingTag)
{
    EXPECT_EQ(xml_failure("<?php "), "Unexpected php processing tag");
    EXPECT_EQ(xml_failure("<?XML?"), "Unexpected XML processing tag");
    EXPECT_EQ(xml_failure("<?xm>"), "Unexpected xm processing tag");
    EXPECT_EQ(xml_failure("<?xml:x "), "Unexpected xml:x processing tag");
}

TEST(XmlReaderFailure, TargetKeepsWhatWasRead)
{
    const auto kept = [](const std::string& document)
    {
        const Outcome outcome = read_xml(document);
        EXPECT_NE(outcome.failure, "") << document;
        return outcome.result;
    };
    EXPECT_EQ(kept("<?xml v='1'?><a x='2'><b>3</b><c>text<d>"), "{v = i:1} {a = { = {b = i:3, c = 'text'}, x = i:2}}");
    EXPECT_EQ(kept("<a="), "{a = null}");
    EXPECT_EQ(kept("<a><b>1</b><b>2</b></c>"), "{a = { = {b = [i:1, i:2]}}}");
    EXPECT_EQ(kept("<a x='1' x="), "{a = {x = i:1}}");
    EXPECT_EQ(kept("<a>x&no;"), "{a = null}");
}

}
