// Random documents and random bytes: the reader answers as the plain one does, wherever the text is cut, and depth
// is no matter to it.
#include "json/deep_values.h"
#include "json/plain_reader.h"
#include "json/random_document.h"
#include "json/read_json.h"

#include <Json/Reader.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using json_test::feed;
using json_test::object_text;
using json_test::Outcome;
using json_test::PlainReader;
using json_test::RandomText;

const std::string alphabet = "{}[],:\"\\truefalsn0123456789.eE+- \nu/x";

std::string random_value(RandomText& random, std::size_t depth);

std::string random_members(RandomText& random, std::size_t depth, bool keys)
{
    static const char* const names[] = {"\"a\":", "\"b\" : ", "\"\":", "\"a\\n\":"};
    std::string text;
    for (std::size_t members = random.below(4); members > 0; --members)
        text += (keys ? random.one_of(names) : "") + random_value(random, depth) + (members > 1 ? "," : "");
    return text;
}

std::string random_value(RandomText& random, std::size_t depth)
{
    static const char* const scalars[] = {"null", "true",  "false",   "0",       "-15",        "1e5", "1.5", "-2.25e3",
                                          "\"\"", "\"x\"", "\"\\n\"", "\"a b\"", "\"\\\"]}\"", "007", "1.",  " 1 "};
    const std::size_t kind = depth == 0 ? 2 : random.below(4);
    if (kind == 0)
        return "[" + random_members(random, depth - 1, false) + "]";
    if (kind == 1)
        return "{" + random_members(random, depth - 1, true) + "}";
    return random.one_of(scalars);
}

Outcome read_plainly(const std::string& document)
{
    PlainReader reader;
    return feed<PlainReader::Unexpected>(reader, {document}, [&] { return object_text(reader.object()); });
}

TEST(ReaderRandom, UndamagedDocumentsReadAsThePlainReaderDoes)
{
    for (unsigned seed = 0; seed < 500; ++seed)
    {
        RandomText random(seed);
        const std::string document = "{" + random_members(random, 5, true) + "}";
        const Outcome outcome = json_test::read_json(document);
        EXPECT_TRUE(outcome.complete) << document;
        EXPECT_EQ(outcome, read_plainly(document)) << document;
    }
}

TEST(ReaderRandom, DamagedDocumentsReadAsThePlainReaderDoes)
{
    std::size_t complete = 0;
    std::size_t failed = 0;
    for (unsigned seed = 0; seed < 5000; ++seed)
    {
        RandomText random(seed);
        const std::string document = random.damaged("{" + random_members(random, 4, true) + "}", alphabet);
        const Outcome outcome = json_test::read_pieces({document});
        EXPECT_EQ(outcome, read_plainly(document)) << document;
        EXPECT_EQ(outcome, json_test::read_pieces(json_test::bytes_of(document))) << document;
        complete += outcome.complete ? 1u : 0u;
        failed += outcome.failure.empty() ? 0u : 1u;
    }
    EXPECT_GT(complete, 500u);
    EXPECT_GT(failed, 500u);
}

TEST(ReaderRandom, TextOfItsOwnAlphabetReadsAsThePlainReaderDoes)
{
    for (unsigned seed = 0; seed < 20000; ++seed)
    {
        RandomText random(seed);
        const std::string document = (seed % 2 == 0 ? "{\"a\":[" : "{\"") + random.of(alphabet, random.below(30));
        EXPECT_EQ(json_test::read_pieces({document}), read_plainly(document)) << document;
    }
}

TEST(ReaderRandom, BytesGiveUnexpectedOrAnIncompleteDocument)
{
    for (unsigned seed = 0; seed < 20000; ++seed)
    {
        RandomText random(seed);
        const std::string document = (seed % 3 == 0 ? "" : seed % 3 == 1 ? "{" : "{\"a\":") + random.bytes(40);
        EXPECT_NO_THROW(EXPECT_EQ(json_test::read_pieces({document}), read_plainly(document)));
    }
}

std::string repeated(const std::string& text, std::size_t count)
{
    std::string all;
    for (; count > 0; --count)
        all += text;
    return all;
}

void expect_depth(const std::string& document, std::size_t depth)
{
    Json::Reader reader;
    const char* p = document.data();
    EXPECT_TRUE(reader.read(p, document.data() + document.size()));
    EXPECT_EQ(p, document.data() + document.size());
    Json::Value root(reader.object());
    EXPECT_EQ(json_test::depth_of(root), depth);
    EXPECT_EQ(*json_test::value_at_depth(root, depth).if_integer(), 7);
    reader.clear();
    EXPECT_TRUE(reader.object().empty());
}

TEST(ReaderDepth, HundredThousandListsInEachOther)
{
    const std::size_t depth = 100000;
    expect_depth("{\"a\":" + std::string(depth, '[') + "7" + std::string(depth, ']') + "}", depth + 1);
}

TEST(ReaderDepth, HundredThousandObjectsInEachOther)
{
    const std::size_t depth = 100000;
    expect_depth(repeated("{\"a\":", depth) + "7" + std::string(depth, '}'), depth);
}

TEST(ReaderDepth, HundredThousandOfBothByTurns)
{
    const std::size_t depth = 100000;
    expect_depth(repeated("{\"a\":[1,", depth) + "7" + repeated("]}", depth), 2 * depth);
}

TEST(ReaderDepth, DocumentThatIsNeverClosedIsLetGo)
{
    const std::string document = repeated("{\"a\":[", 100000);
    Json::Reader reader;
    const char* p = document.data();
    EXPECT_FALSE(reader.read(p, document.data() + document.size()));
    EXPECT_EQ(reader.object().size(), 1u);
}

TEST(ReaderDepth, FailureFarDownIsThrown)
{
    const std::string document = repeated("{\"a\":[", 100000) + "?";
    Json::Reader reader;
    const char* p = document.data();
    try
    {
        reader.read(p, document.data() + document.size());
        ADD_FAILURE() << "a question mark was read";
    }
    catch (const Json::Reader::Unexpected& failure)
    {
        EXPECT_STREQ(failure.what(), "Unexpected '?' character in value value");
    }
}

}
