// The table from code page numbers to charset names, and the charsets behind it.
#include "sources/props/text/code_pages.h"
#include "support/expect_vela_error.h"

#include <boost/locale/encoding.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <stdexcept>
#include <string>

namespace {

using Vela::detail::charset_of_code_page;

struct Row
{
    unsigned code_page;
    const char* charset;
    const wchar_t* text;
    const char* bytes;
};

// Each with a text in a language that the charset was made for.
const Row rows[] = {
    {874, "windows-874", L"\u0E2A\u0E27\u0E31\u0E2A\u0E14\u0E35", "\xCA\xC7\xD1\xCA\xB4\xD5"},
    {932, "Shift_JIS", L"\u65E5\u672C\u8A9E\u30AB\u30CA", "\x93\xFA\x96{\x8C\xEA\x83J\x83i"},
    {936, "GB2312", L"\u4E2D\u6587", "\xD6\xD0\xCE\xC4"},
    {949, "KS_C_5601-1987", L"\uD55C\uAD6D\uC5B4", "\xC7\xD1\xB1\xB9\xBE\xEE"},
    {950, "Big5", L"\u7E41\u9AD4\u4E2D\u6587", "\xC1\x63\xC5\xE9\xA4\xA4\xA4\xE5"},
    {1250, "windows-1250", L"\u017Dlu\u0165ou\u010Dk\u00FD", "\x8Elu\x9Dou\xE8k\xFD"},
    {1251, "windows-1251", L"\u041F\u0440\u0438\u0432\u0435\u0442", "\xCF\xF0\xE8\xE2\xE5\xF2"},
    {1252, "windows-1252", L"Gr\u00F6\u00DFe \u20AC", "Gr\xF6\xDF\x65 \x80"},
    {1253, "windows-1253", L"\u039A\u03B1\u03BB\u03B7\u03BC\u03AD\u03C1\u03B1", "\xCA\xE1\xEB\xE7\xEC\xDD\xF1\xE1"},
    {1254, "windows-1254", L"\u0130\u015F\u0131\u011F", "\xDD\xFE\xFD\xF0"},
    {1255, "windows-1255", L"\u05E9\u05DC\u05D5\u05DD", "\xF9\xEC\xE5\xED"},
    {1256, "windows-1256", L"\u0633\u0644\u0627\u0645", "\xD3\xE1\xC7\xE3"},
    {1257, "windows-1257", L"\u0104\u017Euol\u0117", "\xC0\xFEuol\xEB"},
    {1258, "windows-1258", L"\u0111\u01A1n \u01B0", "\xF0\xF5n \xFD"},
    {20127, "US-ASCII", L"plain", "plain"},
    {20866, "KOI8-R", L"\u041F\u0440\u0438\u0432\u0435\u0442", "\xF0\xD2\xC9\xD7\xC5\xD4"},
    {20932, "EUC-JP", L"\u65E5\u672C\u8A9E\u30AB\u30CA", "\xC6\xFC\xCB\xDC\xB8\xEC\xA5\xAB\xA5\xCA"},
    {21866, "KOI8-U", L"\u0407\u0436\u0430\u043A", "\xB7\xD6\xC1\xCB"},
    {28591, "ISO-8859-1", L"Gr\u00F6\u00DFe", "Gr\xF6\xDF\x65"},
    {28592, "ISO-8859-2", L"\u017Dlu\u0165ou\u010Dk\u00FD", "\xAElu\xBBou\xE8k\xFD"},
    {28593, "ISO-8859-3", L"\u011Cangalo \u0127", "\xD8\x61ngalo \xB1"},
    {28594, "ISO-8859-4", L"\u0104\u017Euol\u0117", "\xA1\xBEuol\xEC"},
    {28595, "ISO-8859-5", L"\u041F\u0440\u0438\u0432\u0435\u0442", "\xBF\xE0\xD8\xD2\xD5\xE2"},
    {28596, "ISO-8859-6", L"\u0633\u0644\u0627\u0645", "\xD3\xE4\xC7\xE5"},
    {28597, "ISO-8859-7", L"\u039A\u03B1\u03BB\u03B7\u03BC\u03AD\u03C1\u03B1", "\xCA\xE1\xEB\xE7\xEC\xDD\xF1\xE1"},
    {28598, "ISO-8859-8", L"\u05E9\u05DC\u05D5\u05DD", "\xF9\xEC\xE5\xED"},
    {28599, "ISO-8859-9", L"\u0130\u015F\u0131\u011F", "\xDD\xFE\xFD\xF0"},
    {28603, "ISO-8859-13", L"\u0104\u017Euol\u0117", "\xC0\xFEuol\xEB"},
    {28605, "ISO-8859-15", L"Gr\u00F6\u00DFe \u20AC", "Gr\xF6\xDF\x65 \xA4"},
    {50220, "ISO-2022-JP", L"\u65E5\u672C\u8A9E", "\x1B$BF|K\\8l\x1B(B"},
    {50225, "ISO-2022-KR", L"\uD55C\uAD6D\uC5B4", "\x1B$)C\x0EGQ19>n\x0F"},
    {51949, "EUC-KR", L"\uD55C\uAD6D\uC5B4", "\xC7\xD1\xB1\xB9\xBE\xEE"},
    {54936, "GB18030", L"\u4E2D\u6587\u20AC\U0001F600", "\xD6\xD0\xCE\xC4\xA2\xE3\x94\x39\xFC\x36"},
    {65001, "UTF-8", L"\u00B5\u20AC\U0001F600", "\xC2\xB5\xE2\x82\xAC\xF0\x9F\x98\x80"},
};
static_assert(sizeof rows / sizeof rows[0] == 34);

TEST(CodePages, EachHasItsCharset)
{
    for (const Row& row : rows)
        EXPECT_STREQ(charset_of_code_page(row.code_page), row.charset) << row.code_page;
}

TEST(CodePages, AnyOtherNumberFails)
{
    std::set<unsigned> known;
    for (const Row& row : rows)
        known.insert(row.code_page);
    ASSERT_EQ(known.size(), 34u);
    unsigned refused = 0;
    for (unsigned number = 0; number <= 70000; ++number)
    {
        if (known.count(number) != 0)
            continue;
        try
        {
            charset_of_code_page(number);
            ADD_FAILURE() << number << " has a charset";
        }
        catch (const std::invalid_argument& error)
        {
            ASSERT_EQ(std::string(error.what()), "Unknown codepage " + std::to_string(number));
            ++refused;
        }
    }
    EXPECT_EQ(refused, 70001u - 34u);
}

TEST(CodePages, AnUnknownNumberIsNamedInDecimal)
{
    EXPECT_THROW_TEXT(charset_of_code_page(0), std::invalid_argument, "Unknown codepage 0");
    EXPECT_THROW_TEXT(charset_of_code_page(437), std::invalid_argument, "Unknown codepage 437");
    EXPECT_THROW_TEXT(charset_of_code_page(20949), std::invalid_argument, "Unknown codepage 20949");
    EXPECT_THROW_TEXT(charset_of_code_page(65000), std::invalid_argument, "Unknown codepage 65000");
    EXPECT_THROW_TEXT(charset_of_code_page(0x10000 + 1252), std::invalid_argument, "Unknown codepage 66788");
    EXPECT_THROW_TEXT(charset_of_code_page(std::numeric_limits<unsigned>::max()), std::invalid_argument,
                      "Unknown codepage 4294967295");
}

TEST(Charsets, AllDecode)
{
    for (const Row& row : rows)
        EXPECT_EQ(boost::locale::conv::to_utf<wchar_t>(row.bytes, charset_of_code_page(row.code_page),
                                                       boost::locale::conv::skip),
                  row.text)
            << row.charset;
}

TEST(Charsets, AllEncode)
{
    for (const Row& row : rows)
        EXPECT_EQ(boost::locale::conv::from_utf(std::wstring(row.text), charset_of_code_page(row.code_page),
                                                boost::locale::conv::skip),
                  row.bytes)
            << row.charset;
}

} // namespace
