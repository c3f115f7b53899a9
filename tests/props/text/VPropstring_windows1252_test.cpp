// windows-1252: all 256 bytes, and what has no byte there.
#include "props/text/texts.h"

#include <VelaProps/VPropstring.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>

namespace {

using vela_test::Dice;
using vela_test::is_code_point;
using vela_test::number_of;
using vela_test::wide;

const VPropstring::encoding enc = VPropstring::enc_windows1252;

// Bytes 0x80 to 0x9F. 0 marks the five that stand for no character.
const wchar_t upper_controls[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

/// What the bytes stand for.
std::wstring decoded(const std::string& bytes)
{
    std::wstring text;
    for (const char byte : bytes)
    {
        const unsigned number = static_cast<unsigned char>(byte);
        if (number < 0x80 || number > 0x9F)
            text += static_cast<wchar_t>(number);
        else if (upper_controls[number - 0x80] != 0)
            text += upper_controls[number - 0x80];
    }
    return text;
}

/// The bytes of what has one.
std::string encoded(const std::wstring& text)
{
    static const std::map<std::uint32_t, char> table = []
    {
        std::map<std::uint32_t, char> bytes;
        for (int number = 0; number < 256; ++number)
        {
            const std::string byte(1, static_cast<char>(number));
            const std::wstring character = decoded(byte);
            if (!character.empty())
                bytes[number_of(character[0])] = byte[0];
        }
        return bytes;
    }();
    std::string bytes;
    for (const wchar_t unit : text)
    {
        const auto entry = table.find(number_of(unit));
        if (entry != table.end())
            bytes += entry->second;
    }
    return bytes;
}

TEST(Windows1252, EachByteHasItsCharacter)
{
    for (int number = 0; number < 256; ++number)
    {
        const std::string byte(1, static_cast<char>(number));
        EXPECT_EQ(wide(VPropstring(byte, enc)), decoded(byte)) << number;
        EXPECT_EQ(wide(VPropstring("<" + byte + ">", enc)), L"<" + decoded(byte) + L">") << number;
    }
}

TEST(Windows1252, FiveBytesStandForNothingAndVanish)
{
    EXPECT_EQ(wide(VPropstring("a\x81"
                               "b\x8D"
                               "c\x8F"
                               "d\x90"
                               "e\x9D"
                               "f",
                               enc)),
              L"abcdef");
}

TEST(Windows1252, AllBytesAtOnceRoundTripButForThoseFive)
{
    std::string all;
    std::string defined;
    for (int number = 0; number < 256; ++number)
    {
        all += static_cast<char>(number);
        if (number != 0x81 && number != 0x8D && number != 0x8F && number != 0x90 && number != 0x9D)
            defined += static_cast<char>(number);
    }
    const VPropstring text(all, enc);
    EXPECT_EQ(wide(text), decoded(all));
    EXPECT_EQ(text.size(), 251u);
    EXPECT_EQ(text.to(enc), defined);
}

TEST(Windows1252, CharactersOutsideVanish)
{
    EXPECT_EQ(VPropstring(L"a\u4E2D"
                          L"b")
                  .to(enc),
              "ab");
    EXPECT_EQ(VPropstring(L"\u03BCm").to(enc), "m") << "the Greek letter is not the micro sign";
    EXPECT_EQ(VPropstring(L"\u00B5m").to(enc), "\xB5m");
    EXPECT_EQ(VPropstring(L"\u20AC\U0001F600\u00E4").to(enc), "\x80\xE4");
    EXPECT_EQ(VPropstring(L"e\u0301").to(enc), "e") << "nothing is composed";
    EXPECT_EQ(VPropstring(L"\u2264\u0142\u201C").to(enc), "\x93") << "nothing is replaced by something similar";
    EXPECT_EQ(VPropstring(L"\u4E2D\u6587").to(enc), "");
    EXPECT_EQ(VPropstring(L"a\x0081z").to(enc), "az") << "a control character without a byte";
}

// In short pieces: of a long text iconv converts a whole block anew for each character it cannot express.
TEST(Windows1252, OfAllCodePointsThe251WithAByteSurvive)
{
    std::string survivors;
    std::wstring piece;
    for (std::uint32_t point = 0; point <= 0x10FFFF; ++point)
    {
        if (is_code_point(point))
            piece += static_cast<wchar_t>(point);
        if (point % 0x100 == 0xFF)
        {
            const std::string bytes = VPropstring(piece).to(enc);
            EXPECT_EQ(bytes, encoded(piece)) << "up to " << point;
            survivors += bytes;
            piece.clear();
        }
    }
    EXPECT_TRUE(piece.empty());
    EXPECT_EQ(survivors.size(), 251u);
}

TEST(Windows1252, UnitsThatAreNoCodePointsVanish)
{
    EXPECT_EQ(VPropstring(L"a\xD800z").to(enc), "az");
    EXPECT_EQ(VPropstring(L"a\xD83D\xDE00z").to(enc), "az");
    EXPECT_EQ(VPropstring(L"a\x110000z").to(enc), "az");
    std::wstring text = L"az";
    text.insert(1, 1, static_cast<wchar_t>(0xFFFFFFE4u));
    EXPECT_EQ(VPropstring(text).to(enc), "az");
}

TEST(Windows1252, RandomBytesDecode)
{
    Dice dice(21);
    for (int round = 0; round < 500; ++round)
    {
        std::string bytes;
        for (std::uint32_t length = dice.below(300); length > 0; --length)
            bytes += static_cast<char>(dice.below(256));
        ASSERT_EQ(wide(VPropstring(bytes, enc)), decoded(bytes)) << round;
    }
}

TEST(Windows1252, RandomTextKeepsWhatHasAByte)
{
    Dice dice(22);
    for (int round = 0; round < 500; ++round)
    {
        const std::wstring text = dice.code_points(dice.below(300));
        ASSERT_EQ(VPropstring(text).to(enc), encoded(text)) << round;
    }
}

TEST(Windows1252, LongTextsConvert)
{
    Dice dice(23);
    std::string bytes;
    while (bytes.size() < 200000)
        bytes += static_cast<char>(dice.below(256));
    const VPropstring text(bytes, enc);
    EXPECT_TRUE(wide(text) == decoded(bytes));
    EXPECT_TRUE(text.to(enc) == encoded(decoded(bytes)));
}

} // namespace
