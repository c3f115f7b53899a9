// What the reader of JSON text makes of documents that it accepts. Each is read whole and cut at every byte.
#include "json/read_json.h"

#include <Json/Reader.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <string>
#include <type_traits>

namespace {

using json_test::decimal_text;
using json_test::json_read;
using json_test::json_so_far;
using json_test::Outcome;
using json_test::read_json;

static_assert(!std::is_copy_constructible_v<Json::Reader>);
static_assert(!std::is_copy_assignable_v<Json::Reader>);

/// What `number` reads as, as a member and as an element.
std::string number_read(const std::string& number)
{
    const std::string in_object = json_read("{\"a\":" + number + "}");
    const std::string in_list = json_read("{\"a\":[" + number + "," + number + "]}");
    const std::string read = in_object.substr(5, in_object.size() - 6);
    EXPECT_EQ(in_list, "{a = [" + read + ", " + read + "]}");
    return read;
}

TEST(Reader, ObjectIsEmptyFromTheStart)
{
    const Json::Reader reader;
    EXPECT_TRUE(reader.object().empty());
}

TEST(Reader, EmptyObjectCompletesWithAnEmptyMap)
{
    EXPECT_EQ(json_read("{}"), "{}");
    EXPECT_EQ(json_read(" \t\n\v\f\r{ \t\n\v\f\r}"), "{}");
}

TEST(Reader, NothingAndWhiteSpaceAreIncomplete)
{
    EXPECT_EQ(json_so_far(""), "{}");
    EXPECT_EQ(json_so_far(" \n"), "{}");
    EXPECT_EQ(json_so_far("{"), "{}");
}

TEST(Reader, EveryKindOfValueIsRead)
{
    EXPECT_EQ(json_read(R"({"null":null,"yes":true,"no":false,"integer":-5,"decimal":2.5,"text":"abc","list":[1,"b"],)"
                        R"("object":{"x":1}})"),
              "{decimal = d:0x1.4p+1, integer = i:-5, list = [i:1, 'b'], no = false, null = null, object = {x = i:1}, "
              "text = 'abc', yes = true}");
}

TEST(Reader, WhiteSpaceMayStandBetweenAllTokens)
{
    const std::string blank = " \t\n\v\f\r";
    std::string document;
    for (const char* const token :
         {"{", "\"a\"", ":", "[", "1",     ",", "true", ",",     "\"x\"", ",",    "[", "]", ",",
          "{", "}",     "]", ",", "\"b\"", ":", "{",    "\"c\"", ":",     "null", "}", "}"})
        document += blank + token;
    EXPECT_EQ(json_read(document), "{a = [i:1, true, 'x', [], {}], b = {c = null}}");
}

TEST(Reader, EmptyListIsAListWithoutElements)
{
    EXPECT_EQ(json_read(R"({"a":[]})"), "{a = []}");
    EXPECT_EQ(json_read(R"({"a":[ ]})"), "{a = []}");
    EXPECT_EQ(json_read(R"({"a":[[]]})"), "{a = [[]]}");
    EXPECT_EQ(json_read(R"({"a":[[],[]]})"), "{a = [[], []]}");
    EXPECT_EQ(json_read(R"({"a":[null]})"), "{a = [null]}");
}

TEST(Reader, ContainersNestInEachOther)
{
    EXPECT_EQ(json_read(R"({"a":[{"b":[{},[{"c":[1]}]]},2],"d":{"e":{"f":[[3],4]},"g":5},"h":6})"),
              "{a = [{b = [{}, [{c = [i:1]}]]}, i:2], d = {e = {f = [[i:3], i:4]}, g = i:5}, h = i:6}");
}

TEST(Reader, RepeatedKeyKeepsTheLastValue)
{
    EXPECT_EQ(json_read(R"({"a":1,"a":2})"), "{a = i:2}");
    EXPECT_EQ(json_read(R"({"a":{"b":1},"a":{}})"), "{a = {}}");
    EXPECT_EQ(json_read(R"({"a":{"b":1},"a":{"c":2}})"), "{a = {c = i:2}}");
    EXPECT_EQ(json_read(R"({"a":[1,2],"a":[]})"), "{a = []}");
    EXPECT_EQ(json_read(R"({"a":"text","a":""})"), "{a = ''}");
    EXPECT_EQ(json_read(R"({"a":1,"a":null})"), "{a = null}");
}

TEST(Reader, RepeatedKeyKeepsItsOldValueUntilTheNewOneBegins)
{
    EXPECT_EQ(json_so_far(R"({"a":1,"a":)"), "{a = i:1}");
    EXPECT_EQ(json_so_far(R"({"a":1,"a":")"), "{a = ''}");
}

TEST(Reader, EmptyKeyIsAKey)
{
    EXPECT_EQ(json_read(R"({"":1,"a":2})"), "{ = i:1, a = i:2}");
}

TEST(Reader, EscapesStandForTheirBytes)
{
    EXPECT_EQ(json_read(R"({"a":"\"\\\/\b\f\n\r\t"})"), "{a = '\"\\/\b\f\n\r\t'}");
    EXPECT_EQ(json_read(R"({"\"\\\/\b\f\n\r\t":1})"), "{\"\\/\b\f\n\r\t = i:1}");
    EXPECT_EQ(json_read(R"({"a":"\\"})"), "{a = '\\'}");
    EXPECT_EQ(json_read(R"({"a":"\\\""})"), "{a = '\\\"'}");
}

TEST(Reader, EveryOtherByteStandsForItselfInTextsAndKeys)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        if (byte != '"' && byte != '\\')
            bytes += static_cast<char>(byte);
    EXPECT_EQ(json_read("{\"a\":\"" + bytes + "\"}"), "{a = '" + bytes + "'}");
    EXPECT_EQ(json_read("{\"" + bytes + "\":1}"), "{" + bytes + " = i:1}");
}

TEST(Reader, StructureInTextsIsText)
{
    EXPECT_EQ(json_read(R"({"{}[],:":"{\"a\":[1,2]}"})"), "{{}[],: = '{\"a\":[1,2]}'}");
    EXPECT_EQ(json_read(R"({"a":["],[","}"]})"), "{a = ['],[', '}']}");
}

TEST(Reader, NumbersWithoutAPointAreIntegersOfTheLeadingDigits)
{
    EXPECT_EQ(number_read("15"), "i:15");
    EXPECT_EQ(number_read("0"), "i:0");
    EXPECT_EQ(number_read("-0"), "i:0");
    EXPECT_EQ(number_read("-15"), "i:-15");
    EXPECT_EQ(number_read("1e5"), "i:1");
    EXPECT_EQ(number_read("1E5"), "i:1");
    EXPECT_EQ(number_read("1-2"), "i:1");
    EXPECT_EQ(number_read("1+2"), "i:1");
    EXPECT_EQ(number_read("12e+-7"), "i:12");
    EXPECT_EQ(number_read("1--"), "i:1");
    EXPECT_EQ(number_read("007"), "i:7");
    EXPECT_EQ(number_read("0123"), "i:123");
    EXPECT_EQ(number_read("-08"), "i:-8");
    EXPECT_EQ(number_read("9223372036854775807"), "i:9223372036854775807");
    EXPECT_EQ(number_read("-9223372036854775808"), "i:-9223372036854775808");
    EXPECT_EQ(number_read("00000000000000000000000000000000000000012"), "i:12");
}

TEST(Reader, NumbersWithAPointAreDecimals)
{
    EXPECT_EQ(number_read("1.5"), decimal_text(1.5));
    EXPECT_EQ(number_read("-1.5"), decimal_text(-1.5));
    EXPECT_EQ(number_read("2.0"), decimal_text(2.0));
    EXPECT_EQ(number_read("-0.0"), decimal_text(-0.0));
    EXPECT_EQ(number_read("0.1"), decimal_text(0.1));
    EXPECT_EQ(number_read("1.0e5"), decimal_text(100000.0));
    EXPECT_EQ(number_read("1.0E5"), decimal_text(100000.0));
    EXPECT_EQ(number_read("1.0e+5"), decimal_text(100000.0));
    EXPECT_EQ(number_read("1.25e-2"), decimal_text(0.0125));
    EXPECT_EQ(number_read("1.e2"), decimal_text(100.0));
    EXPECT_EQ(number_read("1."), decimal_text(1.0));
    EXPECT_EQ(number_read("-.5"), decimal_text(-0.5));
    EXPECT_EQ(number_read("001.5"), decimal_text(1.5));
    EXPECT_EQ(number_read("1.7976931348623157e308"), decimal_text(DBL_MAX));
    EXPECT_EQ(number_read("2.2250738585072014e-308"), decimal_text(DBL_MIN));
    EXPECT_EQ(number_read("100000000000000000000.0"), decimal_text(1e20));
    EXPECT_EQ(number_read("0.30000000000000004"), decimal_text(0.30000000000000004));
    EXPECT_EQ(number_read("9007199254740993.0"), decimal_text(9007199254740992.0));
}

TEST(Reader, DecimalsEndWhereTheStreamStops)
{
    EXPECT_EQ(number_read("1.5-2"), decimal_text(1.5));
    EXPECT_EQ(number_read("1.5+2"), decimal_text(1.5));
    EXPECT_EQ(number_read("1.5e2e3"), decimal_text(150.0));
    EXPECT_EQ(number_read("1.5e2-3"), decimal_text(150.0));
    EXPECT_EQ(number_read("1e2.5"), decimal_text(100.0));
    EXPECT_EQ(number_read("1-2.5"), decimal_text(1.0));
}

TEST(Reader, NumberIsStoredOnlyWithTheCharacterBehindIt)
{
    EXPECT_EQ(json_so_far(R"({"a":1)"), "{a = null}");
    EXPECT_EQ(json_so_far(R"({"a":1 )"), "{a = i:1}");
    EXPECT_EQ(json_so_far(R"({"a":1,)"), "{a = i:1}");
    EXPECT_EQ(json_so_far(R"({"a":[1,2.5)"), "{a = [i:1, null]}");
    EXPECT_EQ(json_so_far(R"({"a":[1,2.5])"), "{a = [i:1, d:0x1.4p+1]}");
}

TEST(Reader, KeywordIsStoredWithItsFirstLetter)
{
    EXPECT_EQ(json_so_far(R"({"a":t)"), "{a = true}");
    EXPECT_EQ(json_so_far(R"({"a":f)"), "{a = false}");
    EXPECT_EQ(json_so_far(R"({"a":1,"a":n)"), "{a = null}");
}

TEST(Reader, TextGrowsWithItsCharacters)
{
    EXPECT_EQ(json_so_far(R"({"a":"te)"), "{a = 'te'}");
    EXPECT_EQ(json_so_far(R"({"a":"te\)"), "{a = 'te'}");
    EXPECT_EQ(json_so_far(R"({"a":"te\n)"), "{a = 'te\n'}");
}

TEST(Reader, KeyIsThereOnceItsTextHasEnded)
{
    EXPECT_EQ(json_so_far(R"({"ke)"), "{}");
    EXPECT_EQ(json_so_far(R"({"key")"), "{key = null}");
    EXPECT_EQ(json_so_far(R"({"key" :)"), "{key = null}");
}

TEST(Reader, OpenContainersAreThereFromTheirFirstCharacter)
{
    EXPECT_EQ(json_so_far(R"({"a":{)"), "{a = {}}");
    EXPECT_EQ(json_so_far(R"({"a":[)"), "{a = [null]}");
    EXPECT_EQ(json_so_far(R"({"a":[1,)"), "{a = [i:1, null]}");
}

TEST(Reader, TextBehindTheDocumentStaysUnread)
{
    for (const std::string& rest : {std::string(" "), std::string("x"), std::string("}"), std::string("{}"),
                                    std::string(1, '\0'), std::string(",1")})
    {
        const std::string document = R"({"a":1})";
        const Outcome outcome = read_json(document + rest);
        EXPECT_TRUE(outcome.complete);
        EXPECT_EQ(outcome.consumed, document.size());
        EXPECT_EQ(outcome.result, "{a = i:1}");
        EXPECT_EQ(outcome.failure, "");
    }
}

/// Reads as many documents as `text` holds, and shows the object after each.
std::vector<std::string> read_all(Json::Reader& reader, const std::string& text, bool clear_between)
{
    std::vector<std::string> objects;
    const char* p = text.data();
    const char* const end = p + text.size();
    while (reader.read(p, end))
    {
        objects.push_back(json_test::object_text(reader.object()));
        if (clear_between)
            reader.clear();
    }
    EXPECT_EQ(p, end);
    return objects;
}

TEST(Reader, DocumentsFollowEachOther)
{
    Json::Reader reader;
    EXPECT_EQ(read_all(reader, R"({"a":[1]} {} {"b":"x"}{"c":null})", true),
              (std::vector<std::string>{"{a = [i:1]}", "{}", "{b = 'x'}", "{c = null}"}));
    EXPECT_TRUE(reader.object().empty());
}

TEST(Reader, DocumentsWithoutAClearBetweenThemAddUp)
{
    Json::Reader reader;
    EXPECT_EQ(read_all(reader, R"({"a":1,"b":[1]}{"b":2}{"c":3})", false),
              (std::vector<std::string>{"{a = i:1, b = [i:1]}", "{a = i:1, b = i:2}", "{a = i:1, b = i:2, c = i:3}"}));
}

TEST(Reader, EmptyDocumentBehindAnotherNeedsAClearBetweenThem)
{
    Json::Reader reader;
    const std::string text = R"({"a":1}{})";
    const char* p = text.data();
    const char* const end = p + text.size();
    ASSERT_TRUE(reader.read(p, end));
    try
    {
        reader.read(p, end);
        ADD_FAILURE() << "the object was not empty";
    }
    catch (const Json::Reader::Unexpected& failure)
    {
        EXPECT_STREQ(failure.what(), "Unexpected '}' character in object value");
    }
}

TEST(Reader, ClearLeavesTheParseStateAlone)
{
    Json::Reader reader;
    const std::string first = "  ";
    const std::string second = R"({"a":1})";
    const char* p = first.data();
    EXPECT_FALSE(reader.read(p, first.data() + first.size()));
    reader.clear();
    p = second.data();
    EXPECT_TRUE(reader.read(p, second.data() + second.size()));
    EXPECT_EQ(json_test::object_text(reader.object()), "{a = i:1}");
    reader.clear();
    EXPECT_EQ(json_test::object_text(reader.object()), "{}");
}

/// What `rest` is read as behind `first` with a clear between them.
std::string read_with_clear(const std::string& first, const std::string& rest)
{
    Json::Reader reader;
    const char* p = first.data();
    EXPECT_FALSE(reader.read(p, first.data() + first.size())) << first;
    reader.clear();
    p = rest.data();
    EXPECT_TRUE(reader.read(p, rest.data() + rest.size())) << first << rest;
    return json_test::object_text(reader.object());
}

TEST(Reader, ClearWithinADocumentKeepsWhatIsBeingRead)
{
    EXPECT_EQ(read_with_clear(R"({"a":1,"b":[1,{"c":2,"d":"x)", R"(y"},3],"e":4})"),
              "{b = [i:1, {c = i:2, d = 'xy'}, i:3], e = i:4}");
    EXPECT_EQ(read_with_clear(R"({"a":1,"b":"x)", R"(y","c":2})"), "{b = 'xy', c = i:2}");
    EXPECT_EQ(read_with_clear(R"({"a":1,"b":1)", R"(2,"c":3})"), "{b = i:12, c = i:3}");
    EXPECT_EQ(read_with_clear(R"({"a":1,"b")", R"(:2})"), "{b = i:2}");
    EXPECT_EQ(read_with_clear(R"({"a":1,"b)", R"(c":2})"), "{bc = i:2}");
    EXPECT_EQ(read_with_clear(R"({"a":{"b":{"c":1,)", R"("d":{}}},"e":2})"), "{a = {b = {c = i:1, d = {}}}, e = i:2}");
    EXPECT_EQ(read_with_clear(R"({"a":{"b":1})", R"(,"c":2})"), "{c = i:2}");
    EXPECT_EQ(read_with_clear(R"({"a":tr)", R"(ue,"c":2})"), "{c = i:2}");
    EXPECT_EQ(read_with_clear(R"({"a":1,)", "}"), "{}");
}

/// Every cut: nothing that the reader refers to is gone.
TEST(Reader, ClearAnywhereWithinADocumentLetsItGoOn)
{
    const std::string document =
        R"({"a" : [1, "t\"u", {"b": null, "c": [[], {}]}], "d": -2.5, "e": {"f": true}, "g": "h"})";
    for (std::size_t cut = 0; cut < document.size(); ++cut)
        EXPECT_NE(read_with_clear(document.substr(0, cut), document.substr(cut)), "") << cut;
    EXPECT_EQ(read_with_clear("", document), json_test::json_read(document));
}

TEST(Reader, EmptyBufferChangesNothing)
{
    Json::Reader reader;
    const char* p = nullptr;
    EXPECT_FALSE(reader.read(p, p));
    EXPECT_EQ(p, nullptr);
    EXPECT_TRUE(reader.object().empty());
}

}
