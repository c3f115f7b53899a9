// What the reader of JSON text refuses, with which words: every byte at every place of the grammar.
#include "support/expect_vela_error.h"
#include "json/read_json.h"

#include <Json/Reader.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>

namespace {

using json_test::as_thrown;
using json_test::json_failure;
using json_test::Outcome;
using Unexpected = Json::Reader::Unexpected;

static_assert(std::is_base_of_v<std::runtime_error, Unexpected>);
static_assert(std::has_virtual_destructor_v<Unexpected>);

std::string failed_at_character(char c, const std::string& kind)
{
    return as_thrown("Unexpected '" + std::string(1, c) + "' character in " + kind + " value");
}

std::string failed_at_text(const std::string& text, const std::string& kind)
{
    return as_thrown("Unexpected '" + text + "' string in " + kind + " value");
}

const std::string white_space = " \t\n\v\f\r";
const std::string number_characters = "0123456789.eE+-";
const std::string value_starts = "\"-0123456789ntf{[";

/// Behind `before`, the bytes `accepted` pass, and every other one fails as a character in `kind`.
void expect_only(const std::string& before, const std::string& accepted, const std::string& kind)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const char c = static_cast<char>(byte);
        const Outcome outcome = json_test::read_pieces({before, std::string(1, c)});
        const bool passes = accepted.find(c) != std::string::npos;
        EXPECT_EQ(outcome.failure, passes ? "" : failed_at_character(c, kind)) << before << " and byte " << byte;
        EXPECT_EQ(outcome.consumed, before.size() + (passes ? 1 : 0)) << before << " and byte " << byte;
    }
}

TEST(ReaderUnexpected, HasAFormForACharacterAndOneForAText)
{
    EXPECT_THROW_TEXT(throw Unexpected('x', "object"), Unexpected, "Unexpected 'x' character in object value");
    EXPECT_THROW_TEXT(throw Unexpected(std::string("1.2.3"), "number"), Unexpected,
                      "Unexpected '1.2.3' string in number value");
    EXPECT_THROW_TEXT(throw Unexpected(std::string("x"), "value"), Unexpected, "Unexpected 'x' string in value value");
}

TEST(ReaderUnexpected, KeepsItsTextWhenCopied)
{
    const Unexpected original('x', "object");
    const Unexpected copy(original);
    EXPECT_STREQ(copy.what(), "Unexpected 'x' character in object value");
    Unexpected assigned('y', "array");
    assigned = original;
    EXPECT_STREQ(assigned.what(), "Unexpected 'x' character in object value");
    EXPECT_THROW(throw Unexpected('x', "object"), std::runtime_error);
}

TEST(ReaderFailure, ThrowsExactlyUnexpected)
{
    Json::Reader reader;
    const std::string text = "[1]";
    const char* p = text.data();
    EXPECT_THROW_TEXT(reader.read(p, text.data() + text.size()), Unexpected,
                      "Unexpected '[' character in object value");
    EXPECT_EQ(p, text.data());
}

TEST(ReaderFailure, ListAtTheTopLevelIsRefused)
{
    EXPECT_EQ(json_failure("["), "Unexpected '[' character in object value");
}

TEST(ReaderFailure, BeforeTheDocumentOnlyABraceMayStand)
{
    expect_only("", white_space + "{", "object");
    expect_only(" ", white_space + "{", "object");
}

TEST(ReaderFailure, BehindTheBraceAKeyOrTheEndIsDue)
{
    expect_only("{", white_space + "\"}", "object");
    expect_only("{ ", white_space + "\"}", "object");
    expect_only("{\"a\":{", white_space + "\"}", "object");
    expect_only("{\"a\":[{", white_space + "\"}", "object");
}

TEST(ReaderFailure, BehindACommaInAnObjectAKeyIsDue)
{
    expect_only("{\"a\":1,", white_space + "\"", "object");
    expect_only("{\"a\":{\"b\":null, ", white_space + "\"", "object");
}

TEST(ReaderFailure, BehindAKeyAColonIsDue)
{
    expect_only("{\"a\"", white_space + ":", "object");
    expect_only("{\"a\" ", white_space + ":", "object");
}

TEST(ReaderFailure, BehindAColonAValueIsDue)
{
    expect_only("{\"a\":", white_space + value_starts, "value");
    expect_only("{\"a\": ", white_space + value_starts, "value");
    expect_only("{\"a\":[{\"b\":", white_space + value_starts, "value");
}

TEST(ReaderFailure, InAListAValueIsDueAndTheEndOnlyWhereTheFirstElementWould)
{
    expect_only("{\"a\":[", white_space + value_starts + "]", "value");
    expect_only("{\"a\":[ ", white_space + value_starts + "]", "value");
    expect_only("{\"a\":[[],", white_space + value_starts, "value");
    expect_only("{\"a\":[1, ", white_space + value_starts, "value");
    expect_only("{\"a\":[1,2,", white_space + value_starts, "value");
}

TEST(ReaderFailure, BehindAnElementACommaOrTheEndIsDue)
{
    for (const char* const element : {"\"x\"", "true", "null", "false", "[]", "{}", "1 ", "[1]", "{\"b\":1}"})
        expect_only("{\"a\":[" + std::string(element), white_space + ",]", "array");
}

TEST(ReaderFailure, BehindAMemberACommaOrTheEndIsDue)
{
    for (const char* const member : {"\"x\"", "true", "null", "false", "[]", "{}", "1 ", "[1]", "{\"b\":1}"})
        expect_only("{\"a\":" + std::string(member), white_space + ",}", "object");
}

TEST(ReaderFailure, CharacterThatEndsANumberStandsInTheContainer)
{
    expect_only("{\"a\":1", white_space + number_characters + ",}", "object");
    expect_only("{\"a\":[1", white_space + number_characters + ",]", "array");
    expect_only("{\"a\":{\"b\":-2.5", white_space + number_characters + ",}", "object");
}

TEST(ReaderFailure, KeywordsAreHeldLetterByLetter)
{
    for (const std::string keyword : {"true", "false", "null"})
        for (std::size_t length = 1; length < keyword.size(); ++length)
        {
            expect_only("{\"a\":" + keyword.substr(0, length), keyword.substr(length, 1), "'" + keyword + "'");
            expect_only("{\"a\":[" + keyword.substr(0, length), keyword.substr(length, 1), "'" + keyword + "'");
        }
}

TEST(ReaderFailure, KeywordThatEndsEarlyIsNamed)
{
    EXPECT_EQ(json_failure(R"({"a":tru})"), "Unexpected '}' character in 'true' value");
    EXPECT_EQ(json_failure(R"({"a":f})"), "Unexpected '}' character in 'false' value");
    EXPECT_EQ(json_failure(R"({"a":[nul )"), "Unexpected ' ' character in 'null' value");
}

TEST(ReaderFailure, OnlyEightEscapesAreKnown)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const char c = static_cast<char>(byte);
        const bool known = std::string("\"\\/bfnrt").find(c) != std::string::npos;
        const std::string expected = known ? "" : failed_at_text("\\" + std::string(1, c), "string");
        EXPECT_EQ(json_test::read_pieces({"{\"a\":\"\\", std::string(1, c)}).failure, expected) << byte;
        EXPECT_EQ(json_test::read_pieces({"{\"\\", std::string(1, c)}).failure, expected) << byte;
    }
}

TEST(ReaderFailure, EscapeByNumberIsUnknown)
{
    EXPECT_EQ(json_test::read_json(R"({"a":"\u0041"})").failure, "Unexpected '\\u' string in string value");
    EXPECT_EQ(json_failure(R"({"a":"x\u)"), "Unexpected '\\u' string in string value");
}

TEST(ReaderFailure, NumberThatCannotBeReadIsNamedWhole)
{
    for (const char* const number :
         {"1.2.3", "1..2", "-", "--1", "-e5", "-+1", "1.5.", "1.5e2.5", "-.", "1.5e", "1.5e+", "9223372036854775808",
          "-9223372036854775809", "99999999999999999999999", "1.5e400", "-1.5e400", "1-2.5.", "1.0e99999999999"})
    {
        EXPECT_EQ(json_failure("{\"a\":" + std::string(number) + "}"), failed_at_text(number, "number"));
        EXPECT_EQ(json_failure("{\"a\":[" + std::string(number) + " "), failed_at_text(number, "number"));
    }
}

TEST(ReaderFailure, TrailingCommaIsRefused)
{
    EXPECT_EQ(json_failure(R"({"a":1,})"), "Unexpected '}' character in object value");
    EXPECT_EQ(json_failure(R"({"a":[1,])"), "Unexpected ']' character in value value");
    EXPECT_EQ(json_failure(R"({,)"), "Unexpected ',' character in object value");
    EXPECT_EQ(json_failure(R"({"a":[,)"), "Unexpected ',' character in value value");
}

TEST(ReaderFailure, BracketOfTheOtherKindIsRefused)
{
    EXPECT_EQ(json_failure(R"({"a":[1})"), "Unexpected '}' character in array value");
    EXPECT_EQ(json_failure(R"({"a":1])"), "Unexpected ']' character in object value");
    EXPECT_EQ(json_failure(R"({"a":])"), "Unexpected ']' character in value value");
    EXPECT_EQ(json_failure(R"({"a":})"), "Unexpected '}' character in value value");
    EXPECT_EQ(json_failure(R"({])"), "Unexpected ']' character in object value");
}

TEST(ReaderFailure, WhatWasReadBeforeIsThere)
{
    const Outcome outcome = json_test::read_json(R"({"a":[1,{"b":"x"},tr?)");
    EXPECT_EQ(outcome.failure, "Unexpected '?' character in 'true' value");
    EXPECT_EQ(outcome.result, "{a = [i:1, {b = 'x'}, true]}");
}

TEST(ReaderFailure, IsTheSameAfterACompleteDocument)
{
    Json::Reader reader;
    const std::string text = R"({"a":1} x)";
    const char* p = text.data();
    const char* const end = p + text.size();
    ASSERT_TRUE(reader.read(p, end));
    EXPECT_THROW_TEXT(reader.read(p, end), Unexpected, "Unexpected 'x' character in object value");
    EXPECT_EQ(p, end - 1);
}

}
