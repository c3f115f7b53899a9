// Random documents and random bytes: the reader of XML answers as the plain one does, wherever the text is cut, and
// depth is no matter to it.
#include "json/deep_values.h"
#include "json/plain_xml_reader.h"
#include "json/random_document.h"
#include "json/read_xml.h"

#include <Json/XmlReader.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using json_test::Outcome;
using json_test::PlainXmlReader;
using json_test::RandomText;
using json_test::read_xml_pieces;
using json_test::read_xml_pieces_with;

const std::string alphabet = "<>/?=\"'&;ab_:xmltrufse0123456789.-+ \n!";

std::string random_text(RandomText& random)
{
    static const char* const texts[] = {"",       "5",        "-1.5",          "1e3",   "true", "false",
                                        "text",   "a &lt; b", "&lt;",          "5&gt;", " 7",   "1.5.2",
                                        "x&amp;", "falsely",  "x&quot;&apos;", "-"};
    return random.one_of(texts);
}

std::string random_element(RandomText& random, std::size_t depth)
{
    static const char* const names[] = {"a", "b", "A", "a:b_1"};
    const std::string name = random.one_of(names);
    std::string text = "<" + name;
    static const char* const attributes[] = {" x=\"", " y = \"", "\nz=\"", " a:b=\""};
    const std::size_t first = random.below(8);
    for (std::size_t attribute = first; attribute < std::size(attributes) && random.below(3) != 0; ++attribute)
        text += attributes[attribute] + random_text(random) + "\"";
    if (random.below(5) == 0)
        return text + (random.below(2) == 0 ? "/>" : " />");
    text += random.below(4) == 0 ? " >" : ">";
    if (depth == 0 || random.below(3) == 0)
        text += random_text(random);
    else
        for (std::size_t children = random.below(4); children > 0; --children)
            text += random_element(random, depth - 1) + (random.below(3) == 0 ? "\n" : "");
    return text + "</" + name + (random.below(5) == 0 ? " >" : ">");
}

std::string random_document(RandomText& random)
{
    static const char* const declarations[] = {"", "", "<?xml version=\"1.0\" encoding='UTF-8'?>\n", "<?xml?>"};
    return random.one_of(declarations) + random_element(random, 4);
}

Outcome read_plainly(const std::string& document)
{
    return read_xml_pieces_with<PlainXmlReader>({document});
}

TEST(XmlReaderRandom, UndamagedDocumentsReadAsThePlainReaderDoes)
{
    std::size_t complete = 0;
    for (unsigned seed = 0; seed < 1000; ++seed)
    {
        RandomText random(seed);
        const std::string document = random_document(random);
        if (document.size() > 600)
            continue;
        const Outcome outcome = json_test::read_xml(document);
        EXPECT_EQ(outcome, read_plainly(document)) << document;
        complete += outcome.complete ? 1u : 0u;
    }
    EXPECT_GT(complete, 400u);
}

TEST(XmlReaderRandom, DamagedDocumentsReadAsThePlainReaderDoes)
{
    std::size_t complete = 0;
    std::size_t failed = 0;
    for (unsigned seed = 0; seed < 5000; ++seed)
    {
        RandomText random(seed);
        const std::string document = random.damaged(random_document(random), alphabet);
        const Outcome outcome = read_xml_pieces({document});
        EXPECT_EQ(outcome, read_plainly(document)) << document;
        EXPECT_EQ(outcome, read_xml_pieces(json_test::bytes_of(document))) << document;
        complete += outcome.complete ? 1u : 0u;
        failed += outcome.failure.empty() ? 0u : 1u;
    }
    EXPECT_GT(complete, 500u);
    EXPECT_GT(failed, 500u);
}

TEST(XmlReaderRandom, TextOfItsOwnAlphabetReadsAsThePlainReaderDoes)
{
    static const char* const beginnings[] = {"<a", "<a>", "<a x=\"", "<a><b>x&", "<?xml", "<", "<a>5</a", "<a/>"};
    for (unsigned seed = 0; seed < 40000; ++seed)
    {
        RandomText random(seed);
        const std::string document = random.one_of(beginnings) + random.of(alphabet, random.below(20));
        EXPECT_EQ(read_xml_pieces({document}), read_plainly(document)) << document;
    }
}

TEST(XmlReaderRandom, ValuesReadAsInThePlainReader)
{
    for (unsigned seed = 0; seed < 40000; ++seed)
    {
        RandomText random(seed);
        const std::string value = seed % 2 == 0 ? random.of("0123456789.eE+-", random.below(9))
                                                : random.of("truefals05.- &lt;x", random.below(9));
        const std::string document = (seed % 4 < 2 ? "<a>" : "<a x=\"") + value + (seed % 4 < 2 ? "</a>" : "\"/>");
        EXPECT_EQ(read_xml_pieces({document}), read_plainly(document)) << document;
    }
}

TEST(XmlReaderRandom, BytesGiveUnexpectedOrAnIncompleteDocument)
{
    for (unsigned seed = 0; seed < 20000; ++seed)
    {
        RandomText random(seed);
        const std::string document = (seed % 3 == 0 ? "" : seed % 3 == 1 ? "<a" : "<a>x") + random.bytes(40);
        EXPECT_NO_THROW(EXPECT_EQ(read_xml_pieces({document}), read_plainly(document)));
    }
}

TEST(XmlReaderRandom, TagThatIsAnEndTagAndADeclarationAtOnceReadsAsInThePlainReader)
{
    static const char* const beginnings[] = {"<a><?/",  "<a></?",       "</?",        "<?/",
                                             "<?/xml ", "</?xml x='1'", "<a></?xml?>"};
    for (unsigned seed = 0; seed < 20000; ++seed)
    {
        RandomText random(seed);
        const std::string document = random.one_of(beginnings) + random.of("xmla/?> <b='\"", random.below(12));
        EXPECT_EQ(read_xml_pieces({document}), read_plainly(document)) << document;
    }
}

std::string repeated(const std::string& text, std::size_t count)
{
    std::string all;
    for (; count > 0; --count)
        all += text;
    return all;
}

TEST(XmlReaderDepth, HundredThousandElementsInEachOther)
{
    const std::size_t depth = 100000;
    const std::string document = repeated("<a>", depth) + "7" + repeated("</a>", depth);
    Json::Value target;
    Json::XmlReader reader(target);
    const char* p = document.data();
    EXPECT_TRUE(reader.read(p, document.data() + document.size()));
    EXPECT_EQ(p, document.data() + document.size());
    EXPECT_EQ(json_test::depth_of(target), 2 * depth - 1); // an object and its content each, but none around the text
    EXPECT_EQ(*json_test::value_at_depth(target, 2 * depth - 1).if_integer(), 7);
}

TEST(XmlReaderDepth, HundredThousandElementsWithAttributesFromAStream)
{
    const std::size_t depth = 100000;
    std::istringstream stream(repeated("<a x='1'>", depth) + "7" + repeated("</a>", depth));
    Json::Value target;
    Json::XmlReader reader(target);
    EXPECT_TRUE(reader.read(stream));
    Json::Value* at = &target;
    for (std::size_t level = 0; level < depth; ++level)
    {
        at = &at->at("a");
        EXPECT_EQ(*at->at("x").if_integer(), 1);
        at = &at->at("");
    }
    EXPECT_EQ(*at->if_integer(), 7);
}

TEST(XmlReaderDepth, DocumentThatIsNeverClosedIsLetGo)
{
    const std::string document = repeated("<a><b>", 100000);
    Json::Value target;
    Json::XmlReader reader(target);
    const char* p = document.data();
    EXPECT_FALSE(reader.read(p, document.data() + document.size()));
    EXPECT_EQ(json_test::depth_of(target), 2u * 200000u - 1u);
}

TEST(XmlReaderDepth, ManySiblingsAreOneList)
{
    const std::string document = "<r>" + repeated("<a>1</a>", 100000) + "</r>";
    Json::Value target;
    Json::XmlReader reader(target);
    const char* p = document.data();
    EXPECT_TRUE(reader.read(p, document.data() + document.size()));
    EXPECT_EQ(target.at("r").at("").at("a").count(), 100000u);
}

}
