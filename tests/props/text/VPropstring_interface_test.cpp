// The conversion interface: lengths, NULs, buffers, aliasing and measuring.
#include "props/text/texts.h"

#include <VelaProps/VPropstring.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

using vela_test::every_encoding;
using vela_test::wide;

const std::size_t up_to_nul = static_cast<std::size_t>(-1);

/// A copy on the heap without anything behind it, so that a read behind the end is noticed.
std::unique_ptr<char[]> exactly(const std::string& bytes)
{
    std::unique_ptr<char[]> copy(new char[bytes.size()]);
    bytes.copy(copy.get(), bytes.size());
    return copy;
}

// from

TEST(VPropstringFrom, ReplacesTheTextAndReturnsTheString)
{
    for (const VPropstring::encoding enc : every_encoding)
    {
        VPropstring text(L"an old text that is longer");
        EXPECT_EQ(&text.from(std::string("new"), enc), &text);
        EXPECT_EQ(wide(text), L"new");
        EXPECT_EQ(&text.from("newer", enc), &text);
        EXPECT_EQ(wide(text), L"newer");
        text.from("", enc);
        EXPECT_EQ(wide(text), L"");
        text.from(std::string(), enc);
        EXPECT_EQ(wide(text), L"");
    }
}

TEST(VPropstringFrom, APointerIsReadUpToItsNul)
{
    for (const VPropstring::encoding enc : every_encoding)
    {
        VPropstring text;
        text.from("ab\0cd", enc);
        EXPECT_EQ(wide(text), L"ab");
        text.from("abc\0d", enc, up_to_nul);
        EXPECT_EQ(wide(text), L"abc");
    }
}

TEST(VPropstringFrom, ALengthCountsBytesAndGoesOverNuls)
{
    for (const VPropstring::encoding enc : every_encoding)
    {
        VPropstring text;
        text.from("ab\0cd", enc, 5);
        EXPECT_EQ(wide(text), std::wstring(L"ab\0cd", 5));
        text.from("ab\0cd", enc, 3);
        EXPECT_EQ(wide(text), std::wstring(L"ab\0", 3));
        text.from("abcd", enc, 2);
        EXPECT_EQ(wide(text), L"ab");
    }
}

TEST(VPropstringFrom, LengthZeroIsEmpty)
{
    for (const VPropstring::encoding enc : every_encoding)
    {
        VPropstring text(L"old");
        text.from("abc", enc, 0);
        EXPECT_EQ(wide(text), L"");
    }
}

TEST(VPropstringFrom, AStringKeepsItsNuls)
{
    for (const VPropstring::encoding enc : every_encoding)
    {
        VPropstring text;
        text.from(std::string("\0a\0\0b\0", 6), enc);
        EXPECT_EQ(wide(text), std::wstring(L"\0a\0\0b\0", 6));
    }
}

TEST(VPropstringFrom, ReadsNothingBehindTheLength)
{
    const std::string bytes = "ab\xE2\x82\xAC\xC3\xA4";
    for (const VPropstring::encoding enc : every_encoding)
        for (std::size_t length = 1; length <= bytes.size(); ++length)
        {
            const std::string cut = bytes.substr(0, length);
            const auto exact = exactly(cut);
            VPropstring from_pointer;
            from_pointer.from(exact.get(), enc, length);
            VPropstring from_string;
            from_string.from(cut, enc);
            EXPECT_EQ(wide(from_pointer), wide(from_string)) << length;
        }
}

TEST(VPropstringFrom, TakesBytesOfTheStringItself)
{
    VPropstring text(L"AB");
    text.from(reinterpret_cast<const char*>(text.data()), VPropstring::enc_windows1252, 2 * sizeof(wchar_t));
    EXPECT_EQ(wide(text), std::wstring(L"A\0\0\0B\0\0\0", 8)) << "on a little-endian machine";
    text = L"\u00E4\u20AC and more text, so that it lives on the heap";
    text.from(text.to(VPropstring::enc_utf8), VPropstring::enc_utf8);
    EXPECT_EQ(wide(text), L"\u00E4\u20AC and more text, so that it lives on the heap");
    text.from(static_cast<std::string>(text).c_str(), VPropstring::enc_system);
    EXPECT_EQ(wide(text), L"\u00E4\u20AC and more text, so that it lives on the heap");
}

// to

TEST(VPropstringTo, ReturnsTheSameInEveryForm)
{
    const VPropstring text(std::wstring(L"a\0\u00E4\u20AC\U0001F600\xDC00z", 7));
    for (const VPropstring::encoding enc : every_encoding)
    {
        const std::string expected = enc == VPropstring::enc_windows1252
                                         ? std::string("a\0\xE4\x80z", 5)
                                         : std::string("a\0\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z", 12);
        EXPECT_EQ(text.to(enc), expected);
        std::string out = "an old text that is longer";
        text.to(out, enc);
        EXPECT_EQ(out, expected);
        char buffer[32] = {};
        std::size_t size = sizeof buffer;
        EXPECT_TRUE(text.to(buffer, size, enc));
        EXPECT_EQ(std::string(buffer, expected.size()), expected);
    }
}

TEST(VPropstringTo, AnEmptyTextEmptiesTheOutput)
{
    for (const VPropstring::encoding enc : every_encoding)
    {
        std::string out = "old";
        VPropstring().to(out, enc);
        EXPECT_EQ(out, "");
        EXPECT_EQ(VPropstring().to(enc), "");
    }
}

TEST(VPropstringToBuffer, NeedsOneByteMoreThanTheText)
{
    const VPropstring text("abc", VPropstring::enc_utf8);
    EXPECT_EQ(text.size_in(VPropstring::enc_utf8), 3u);
    char buffer[4] = {'#', '#', '#', '#'};
    std::size_t size = 3;
    EXPECT_FALSE(text.to(buffer, size, VPropstring::enc_utf8));
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(std::string(buffer, 4), "####");
    size = 4;
    EXPECT_TRUE(text.to(buffer, size, VPropstring::enc_utf8));
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(std::string(buffer, 4), "abc#") << "no NUL is written";
}

TEST(VPropstringToBuffer, KeepsItsContractAtEverySize)
{
    const VPropstring text(std::wstring(L"\u00E4\0\u20ACx\u4E2D", 5));
    for (const VPropstring::encoding enc : every_encoding)
    {
        const std::string bytes = text.to(enc);
        for (std::size_t offered = 0; offered < 2 * bytes.size() + 3; ++offered)
        {
            const std::size_t guard = 8;
            std::vector<char> memory(guard + offered + guard, '#');
            std::size_t size = offered;
            const bool fits = text.to(memory.data() + guard, size, enc);
            EXPECT_EQ(fits, offered > bytes.size()) << offered;
            EXPECT_EQ(size, fits ? offered : bytes.size()) << offered;
            const std::string written =
                fits ? bytes + std::string(offered - bytes.size(), '#') : std::string(offered, '#');
            EXPECT_EQ(std::string(memory.begin(), memory.end()),
                      std::string(guard, '#') + written + std::string(guard, '#'))
                << offered;
        }
    }
}

TEST(VPropstringToBuffer, TheAnswerPlusOneSuffices)
{
    const VPropstring text(L"\u00E4\u00F6\u20AC");
    for (const VPropstring::encoding enc : every_encoding)
    {
        std::size_t size = 0;
        EXPECT_FALSE(text.to(nullptr, size, enc));
        EXPECT_EQ(size, text.size_in(enc));
        ++size;
        std::vector<char> buffer(size, '#');
        EXPECT_TRUE(text.to(buffer.data(), size, enc));
        EXPECT_EQ(std::string(buffer.begin(), buffer.end()), text.to(enc) + "#");
    }
}

TEST(VPropstringToBuffer, AnEmptyTextNeedsAByteToo)
{
    char buffer[1] = {'#'};
    std::size_t size = 0;
    EXPECT_FALSE(VPropstring().to(buffer, size, VPropstring::enc_utf8));
    EXPECT_EQ(size, 0u);
    size = 1;
    EXPECT_TRUE(VPropstring().to(buffer, size, VPropstring::enc_utf8));
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(buffer[0], '#');
}

// Measuring

TEST(VPropstringSizeIn, CountsBytesOfTheEncoding)
{
    const VPropstring text(L"a\u00E4\u20AC\U0001F600");
    EXPECT_EQ(text.size_in(VPropstring::enc_utf8), 10u);
    EXPECT_EQ(text.size_in(VPropstring::enc_system), 10u);
    EXPECT_EQ(text.size_in(VPropstring::enc_windows1252), 3u) << "the last character has no byte there";
    for (const VPropstring::encoding enc : every_encoding)
    {
        EXPECT_EQ(text.size_in(enc), text.to(enc).size());
        EXPECT_EQ(VPropstring().size_in(enc), 0u);
    }
}

TEST(VPropstringSizeIn, StopsAtTheFirstNul)
{
    const VPropstring text(std::wstring(L"\u00E4\0\u20AC", 3));
    EXPECT_EQ(text.size_in(VPropstring::enc_utf8), 2u);
    EXPECT_EQ(text.size_in(VPropstring::enc_windows1252), 1u);
    EXPECT_EQ(text.to(VPropstring::enc_utf8).size(), 6u) << "the conversion does not stop";
}

TEST(VPropstringSizeIn, OfAWideTextCountsUnitsOrUpToTheNul)
{
    const wchar_t text[] = L"\u00E4\0\u20ACx";
    EXPECT_EQ(VPropstring::size_in(text, VPropstring::enc_utf8), 2u);
    EXPECT_EQ(VPropstring::size_in(text, VPropstring::enc_utf8, up_to_nul), 2u);
    EXPECT_EQ(VPropstring::size_in(text, VPropstring::enc_utf8, 0), 0u);
    EXPECT_EQ(VPropstring::size_in(text, VPropstring::enc_utf8, 1), 2u);
    EXPECT_EQ(VPropstring::size_in(text, VPropstring::enc_utf8, 2), 3u);
    EXPECT_EQ(VPropstring::size_in(text, VPropstring::enc_utf8, 3), 6u);
    EXPECT_EQ(VPropstring::size_in(text, VPropstring::enc_utf8, 4), 7u);
    EXPECT_EQ(VPropstring::size_in(text, VPropstring::enc_system, 4), 7u);
    EXPECT_EQ(VPropstring::size_in(text, VPropstring::enc_windows1252, 4), 4u);
    EXPECT_EQ(VPropstring::size_in(L"", VPropstring::enc_utf8), 0u);
}

TEST(VPropstringSizeIn, ReadsNothingBehindTheLength)
{
    std::unique_ptr<wchar_t[]> exact(new wchar_t[2]);
    exact[0] = L'\u20AC';
    exact[1] = L'x';
    EXPECT_EQ(VPropstring::size_in(exact.get(), VPropstring::enc_utf8, 2), 4u);
}

TEST(VPropstringSizeIn, LeavesOutWhatVanishes)
{
    EXPECT_EQ(VPropstring(L"a\xD800z").size_in(VPropstring::enc_utf8), 2u);
    EXPECT_EQ(VPropstring(L"\u4E2D").size_in(VPropstring::enc_windows1252), 0u);
}

TEST(VPropstringLengthOf, CountsWideUnitsOrUpToTheNul)
{
    const char text[] = "\xC3\xA4\0\xE2\x82\xACx";
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_utf8), 1u);
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_utf8, up_to_nul), 1u);
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_utf8, 0), 0u);
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_utf8, 1), 0u) << "half a character is none";
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_utf8, 2), 1u);
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_utf8, 3), 2u);
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_utf8, 7), 4u);
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_system, 7), 4u);
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_windows1252), 2u);
    EXPECT_EQ(VPropstring::length_of(text, VPropstring::enc_windows1252, 7), 7u);
    EXPECT_EQ(VPropstring::length_of("", VPropstring::enc_utf8), 0u);
}

TEST(VPropstringLengthOf, ACharacterBeyondTheBasicPlaneIsOneUnitOfThirtyTwoBits)
{
    EXPECT_EQ(VPropstring::length_of("\xF0\x9F\x98\x80", VPropstring::enc_utf8), 1u);
}

TEST(VPropstringLengthOf, IsTheSizeOfTheDecodedText)
{
    vela_test::Dice dice(41);
    for (int round = 0; round < 200; ++round)
    {
        const std::string bytes = dice.broken_utf8(dice.below(40));
        const auto exact = exactly(bytes);
        for (const VPropstring::encoding enc : every_encoding)
            EXPECT_EQ(VPropstring::length_of(exact.get(), enc, bytes.size()), VPropstring(bytes, enc).size());
    }
}

} // namespace
