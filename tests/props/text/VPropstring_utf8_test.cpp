// UTF-8, in both encodings that stand for it: every code point, and every way of being invalid.
#include "props/text/texts.h"

#include <VelaProps/VPropstring.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using vela_test::Dice;
using vela_test::filtered_utf8;
using vela_test::is_code_point;
using vela_test::utf8_encodings;
using vela_test::utf8_of;
using vela_test::wide;

struct Pair
{
    const char* narrow;
    const wchar_t* wide;
};

TEST(Utf8, LiteralTextsConvertBothWays)
{
    const Pair pairs[] = {
        {"plain text", L"plain text"},
        {"\x01\x7F", L"\x01\x7F"},
        {"\xC2\x80\xDF\xBF", L"\x0080\x07FF"},
        {"\xC2\xB5m", L"\u00B5m"},
        {"\xE0\xA0\x80\xED\x9F\xBF", L"\x0800\xD7FF"},
        {"\xE2\x82\xAC\xE4\xB8\xAD", L"\u20AC\u4E2D"},
        {"\xEE\x80\x80\xEF\xBF\xBD", L"\xE000\xFFFD"},
        {"\xEF\xBF\xBE\xEF\xBF\xBF", L"\xFFFE\xFFFF"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\x10000\x10FFFF"},
        {"\xF0\x9F\x98\x80", L"\x1F600"},
        {"e\xCC\x81", L"e\u0301"},
    };
    for (const VPropstring::encoding enc : utf8_encodings)
        for (const Pair& pair : pairs)
        {
            EXPECT_EQ(wide(VPropstring(pair.narrow, enc)), pair.wide);
            EXPECT_EQ(VPropstring(pair.wide).to(enc), pair.narrow);
        }
}

TEST(Utf8, AByteOrderMarkIsACharacterLikeOthers)
{
    for (const VPropstring::encoding enc : utf8_encodings)
    {
        EXPECT_EQ(wide(VPropstring("\xEF\xBB\xBF"
                                   "a\xEF\xBB\xBF",
                                   enc)),
                  L"\xFEFF"
                  L"a\xFEFF");
        EXPECT_EQ(VPropstring(L"\xFEFF"
                              L"a\xFEFF")
                      .to(enc),
                  "\xEF\xBB\xBF"
                  "a\xEF\xBB\xBF");
        EXPECT_EQ(wide(VPropstring("\xEF\xBB\xBF", enc)), L"\xFEFF");
    }
}

TEST(Utf8, EveryCodePointConvertsBothWays)
{
    std::wstring all;
    for (std::uint32_t point = 0; point <= 0x10FFFF; ++point)
        if (is_code_point(point))
            all += static_cast<wchar_t>(point);
    const std::string bytes = utf8_of(all);
    ASSERT_EQ(all.size(), 0x110000u - 0x800u);
    for (const VPropstring::encoding enc : utf8_encodings)
    {
        EXPECT_TRUE(VPropstring(all).to(enc) == bytes);
        EXPECT_TRUE(wide(VPropstring(bytes, enc)) == all);
    }
}

TEST(Utf8, InvalidBytesVanishAndTheirNeighboursSurvive)
{
    const Pair pairs[] = {
        // no byte of UTF-8
        {"a\xFF"
         "b",
         L"ab"},
        {"\xFE\xFF", L""},
        {"a\xC0"
         "b\xC1"
         "c",
         L"abc"},
        {"a\xF5"
         "b\xF8"
         "c\xFC"
         "d",
         L"abcd"},
        // trail bytes alone
        {"\x80", L""},
        {"a\x80\xBF"
         "b",
         L"ab"},
        {"\xC3\xA4\xA4"
         "b",
         L"\u00E4"
         L"b"},
        // lead bytes without their trail bytes
        {"a\xC3", L"a"},
        {"a\xC3"
         "b",
         L"ab"},
        {"a\xE2"
         "b",
         L"ab"},
        {"a\xE2\x82"
         "b",
         L"ab"},
        {"a\xF0"
         "b",
         L"ab"},
        {"a\xF0\x9F"
         "b",
         L"ab"},
        {"a\xF0\x9F\x98"
         "b",
         L"ab"},
        {"a\xF0\x9F\x98", L"a"},
        {"\xC3\xC3\xA4", L"\u00E4"},
        {"\xE2\xC3\xA4", L"\u00E4"},
        {"\xE2\x82\xC3\xA4", L"\u00E4"},
        {"\xE2\x82\xE2\x82\xAC", L"\u20AC"},
        {"\xF0\x9F\x98\xC3\xA4", L"\u00E4"},
        {"\xF0\x9F\x98\xF0\x9F\x98\x80", L"\x1F600"},
        {"\xC3\xF0\x9F\x98\x80", L"\x1F600"},
        // longer than needed
        {"a\xC0\x80"
         "b",
         L"ab"},
        {"a\xC1\xBF"
         "b",
         L"ab"},
        {"a\xE0\x80\x80"
         "b",
         L"ab"},
        {"a\xE0\x9F\xBF"
         "b",
         L"ab"},
        {"a\xF0\x80\x80\x80"
         "b",
         L"ab"},
        {"a\xF0\x8F\xBF\xBF"
         "b",
         L"ab"},
        {"a\xE0\x80\xC3\xA4"
         "b",
         L"a\u00E4"
         L"b"},
        // surrogates
        {"a\xED\xA0\x80"
         "b",
         L"ab"},
        {"a\xED\xBF\xBF"
         "b",
         L"ab"},
        {"a\xED\xA0\xBD\xED\xB8\x80"
         "b",
         L"ab"},
        // above the last code point
        {"a\xF4\x90\x80\x80"
         "b",
         L"ab"},
        {"a\xF7\xBF\xBF\xBF"
         "b",
         L"ab"},
        {"a\xF8\x88\x80\x80\x80"
         "b",
         L"ab"},
        {"a\xFC\x84\x80\x80\x80\x80"
         "b",
         L"ab"},
    };
    for (const VPropstring::encoding enc : utf8_encodings)
        for (const Pair& pair : pairs)
        {
            const std::string narrow = pair.narrow;
            EXPECT_EQ(wide(VPropstring(narrow, enc)), pair.wide) << testing::PrintToString(narrow);
            EXPECT_EQ(wide(VPropstring(narrow.c_str(), enc)), pair.wide) << testing::PrintToString(narrow);
            EXPECT_EQ(filtered_utf8(narrow), pair.wide) << "the filter of the tests agrees";
        }
}

TEST(Utf8, ANulEndsABrokenSequenceAndSurvives)
{
    for (const VPropstring::encoding enc : utf8_encodings)
    {
        EXPECT_EQ(wide(VPropstring(std::string("a\xC3\0b", 4), enc)), std::wstring(L"a\0b", 3));
        EXPECT_EQ(wide(VPropstring(std::string("\xF0\x9F\0\xC3\xA4", 5), enc)), std::wstring(L"\0\u00E4", 2));
    }
}

TEST(Utf8, EverySingleByteAndEveryPairIsFiltered)
{
    for (const VPropstring::encoding enc : utf8_encodings)
        for (int first = 0; first < 256; ++first)
        {
            const std::string one(1, static_cast<char>(first));
            EXPECT_EQ(wide(VPropstring(one, enc)), filtered_utf8(one)) << first;
            std::string pairs;
            for (int second = 0; second < 256; ++second)
            {
                const std::string pair = one + static_cast<char>(second);
                pairs += pair + "|";
                EXPECT_EQ(wide(VPropstring(pair, enc)), filtered_utf8(pair)) << first << " " << second;
            }
            EXPECT_EQ(wide(VPropstring(pairs, enc)), filtered_utf8(pairs)) << first;
        }
}

TEST(Utf8, RandomBytesAreFiltered)
{
    Dice dice(11);
    for (int round = 0; round < 5000; ++round)
    {
        const std::string bytes = dice.broken_utf8(dice.below(60));
        for (const VPropstring::encoding enc : utf8_encodings)
            ASSERT_EQ(wide(VPropstring(bytes, enc)), filtered_utf8(bytes)) << testing::PrintToString(bytes);
    }
}

// Long enough that a converter working in blocks meets a broken sequence at the end of each.
TEST(Utf8, LongRandomBytesAreFiltered)
{
    Dice dice(12);
    for (int round = 0; round < 40; ++round)
    {
        const std::string bytes = dice.broken_utf8(5000 + dice.below(5000));
        for (const VPropstring::encoding enc : utf8_encodings)
            ASSERT_TRUE(wide(VPropstring(bytes, enc)) == filtered_utf8(bytes)) << round;
    }
}

TEST(Utf8, EveryCutOfAValidTextDropsAtMostItsLastCharacter)
{
    const std::wstring text = L"a\u00E4\u20AC\U0001F600z\x10FFFF\u07FF";
    const std::string bytes = utf8_of(text);
    for (const VPropstring::encoding enc : utf8_encodings)
        for (std::size_t length = 0; length <= bytes.size(); ++length)
        {
            VPropstring cut;
            cut.from(bytes.c_str(), enc, length);
            EXPECT_EQ(wide(cut), filtered_utf8(bytes.substr(0, length)));
            EXPECT_EQ(wide(cut), text.substr(0, cut.size())) << "a beginning of the text";
        }
}

TEST(Utf8, RandomCodePointsRoundTrip)
{
    Dice dice(13);
    for (int round = 0; round < 3000; ++round)
    {
        const std::wstring text = dice.code_points(dice.below(60));
        for (const VPropstring::encoding enc : utf8_encodings)
        {
            const std::string bytes = VPropstring(text).to(enc);
            ASSERT_EQ(bytes, utf8_of(text));
            ASSERT_EQ(wide(VPropstring(bytes, enc)), text);
        }
    }
}

TEST(Utf8, UnitsThatAreNoCodePointsVanish)
{
    for (const VPropstring::encoding enc : utf8_encodings)
    {
        EXPECT_EQ(VPropstring(L"a\xD800z").to(enc), "az");
        EXPECT_EQ(VPropstring(L"a\xDFFFz").to(enc), "az");
        EXPECT_EQ(VPropstring(L"a\xD83D\xDE00z").to(enc), "az") << "wide units here are code points, not UTF-16";
        EXPECT_EQ(VPropstring(L"a\x110000z").to(enc), "az");
        EXPECT_EQ(VPropstring(L"a\x7FFFFFFFz").to(enc), "az");
        EXPECT_EQ(VPropstring(L"\xD800").to(enc), "");
        const std::uint32_t numbers[] = {0x80000000u, 0x80000041u, 0xFFFFFFFFu, 0xFFFFFFC3u};
        for (const std::uint32_t number : numbers)
        {
            std::wstring text = L"az";
            text.insert(1, 1, static_cast<wchar_t>(number));
            EXPECT_EQ(VPropstring(text).to(enc), "az") << number;
        }
    }
}

TEST(Utf8, EverySurrogateVanishes)
{
    std::wstring surrogates = L"a";
    for (std::uint32_t unit = 0xD800; unit <= 0xDFFF; ++unit)
        surrogates += static_cast<wchar_t>(unit);
    surrogates += L"z";
    for (const VPropstring::encoding enc : utf8_encodings)
        EXPECT_EQ(VPropstring(surrogates).to(enc), "az");
}

TEST(Utf8, RandomUnitsLoseWhatIsNoCodePoint)
{
    Dice dice(14);
    for (int round = 0; round < 2000; ++round)
    {
        std::wstring text;
        for (std::uint32_t length = dice.below(30); length > 0; --length)
            switch (dice.below(4))
            {
            case 0:
                text += static_cast<wchar_t>(0xD800 + dice.below(0x800));
                break;
            case 1:
                text += static_cast<wchar_t>(dice.below(0xFFFFFFFFu));
                break;
            default:
                text += static_cast<wchar_t>(dice.code_point());
            }
        for (const VPropstring::encoding enc : utf8_encodings)
            ASSERT_EQ(VPropstring(text).to(enc), utf8_of(text)) << round;
    }
}

} // namespace
