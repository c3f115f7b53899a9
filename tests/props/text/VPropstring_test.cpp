// The string as a value: laws, constructors, assignment and comparison.
#include "props/text/texts.h"
#include "support/expect_vela_error.h"

#include <VelaProps/VPropstring.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using vela_test::wide;

static_assert(std::is_base_of_v<std::wstring, VPropstring>);
static_assert(std::is_convertible_v<VPropstring*, std::wstring*>, "the base is public");
static_assert(sizeof(VPropstring) == sizeof(std::wstring), "no field is added");
static_assert(!std::has_virtual_destructor_v<VPropstring>);
static_assert(!std::is_polymorphic_v<VPropstring>);
static_assert(std::is_default_constructible_v<VPropstring>);
static_assert(std::is_copy_constructible_v<VPropstring>);
static_assert(std::is_copy_assignable_v<VPropstring>);
static_assert(std::is_nothrow_move_constructible_v<VPropstring>);
static_assert(std::is_nothrow_move_assignable_v<VPropstring>);
static_assert(std::is_nothrow_destructible_v<VPropstring>);

static_assert(std::is_convertible_v<std::wstring, VPropstring>);
static_assert(std::is_convertible_v<const wchar_t*, VPropstring>);
static_assert(std::is_convertible_v<VPropstring, std::string>);
static_assert(!std::is_constructible_v<VPropstring, std::string>, "narrow text needs an encoding");
static_assert(!std::is_constructible_v<VPropstring, const char*>, "narrow text needs an encoding");
static_assert(std::is_constructible_v<VPropstring, std::string, VPropstring::encoding>);
static_assert(std::is_constructible_v<VPropstring, const char*, VPropstring::encoding>);
static_assert(!std::is_constructible_v<VPropstring, std::string, int>, "a number has to be cast");

static_assert(std::is_enum_v<VPropstring::encoding>);
static_assert(std::is_convertible_v<VPropstring::encoding, int>, "a plain enumeration");
static_assert(VPropstring::enc_utf8 == 0);
static_assert(VPropstring::enc_system == 1);
static_assert(VPropstring::enc_windows1252 == 2);

const VPropstring::encoding no_encoding = static_cast<VPropstring::encoding>(3);

TEST(VPropstring, TheDefaultIsEmpty)
{
    const VPropstring text;
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.to(VPropstring::enc_utf8), "");
}

TEST(VPropstring, TakesWideTextAsItStands)
{
    const std::wstring odd(L"a\0b\xD800\xDC00\x7FFFFFFF", 6);
    EXPECT_EQ(wide(VPropstring(odd)), odd);
    EXPECT_EQ(wide(VPropstring(L"a\xD800z")), L"a\xD800z");
    EXPECT_EQ(wide(VPropstring(L"")), L"");
}

TEST(VPropstring, AWidePointerEndsAtItsNul)
{
    EXPECT_EQ(wide(VPropstring(L"ab\0cd")), L"ab");
}

TEST(VPropstring, ANullWidePointerIsEmpty)
{
    EXPECT_TRUE(VPropstring(static_cast<const wchar_t*>(nullptr)).empty());
}

TEST(VPropstring, NarrowConstructorsDecode)
{
    EXPECT_EQ(wide(VPropstring("\xC3\xA4\xE2\x82\xAC", VPropstring::enc_utf8)), L"\u00E4\u20AC");
    EXPECT_EQ(wide(VPropstring("\xC3\xA4\xE2\x82\xAC", VPropstring::enc_system)), L"\u00E4\u20AC");
    EXPECT_EQ(wide(VPropstring("\xE4\x80", VPropstring::enc_windows1252)), L"\u00E4\u20AC");
    const std::string with_nul("a\0\xC3\xA4", 4);
    EXPECT_EQ(wide(VPropstring(with_nul, VPropstring::enc_utf8)), std::wstring(L"a\0\u00E4", 3));
    EXPECT_EQ(wide(VPropstring(with_nul.c_str(), VPropstring::enc_utf8)), L"a");
}

TEST(VPropstring, NarrowConstructorsRefuseAnUnknownEncoding)
{
    EXPECT_THROW_TEXT(VPropstring("abc", no_encoding), std::invalid_argument, "Unknown encoding '3' found");
    EXPECT_THROW_TEXT(VPropstring(std::string("abc"), no_encoding), std::invalid_argument,
                      "Unknown encoding '3' found");
}

TEST(VPropstring, CopiesAreEqualAndIndependent)
{
    VPropstring original(std::wstring(L"a\0b", 3));
    VPropstring copy(original);
    EXPECT_EQ(wide(copy), std::wstring(L"a\0b", 3));
    copy += L"c";
    EXPECT_EQ(wide(original), std::wstring(L"a\0b", 3));
    VPropstring assigned(L"old");
    VPropstring& result = assigned = original;
    EXPECT_EQ(&result, &assigned);
    EXPECT_EQ(wide(assigned), std::wstring(L"a\0b", 3));
    original.clear();
    EXPECT_EQ(wide(assigned), std::wstring(L"a\0b", 3));
}

TEST(VPropstring, MovesTakeTheTextAlong)
{
    for (const std::wstring& text : {std::wstring(L"short"), std::wstring(200, L'\u20AC'), std::wstring()})
    {
        VPropstring original(text);
        VPropstring moved(std::move(original));
        EXPECT_EQ(wide(moved), text);
        VPropstring assigned(L"old");
        VPropstring& result = assigned = std::move(moved);
        EXPECT_EQ(&result, &assigned);
        EXPECT_EQ(wide(assigned), text);
        original = L"used again";
        moved = L"used again";
        EXPECT_EQ(wide(original), L"used again");
        EXPECT_EQ(wide(moved), L"used again");
    }
}

TEST(VPropstring, AMoveOfALongTextKeepsItsStorage)
{
    VPropstring original(std::wstring(500, L'x'));
    const wchar_t* storage = original.data();
    const VPropstring moved(std::move(original));
    EXPECT_EQ(moved.data(), storage);
}

TEST(VPropstring, AssignedToItselfIsUnchanged)
{
    VPropstring text(L"a text that is too long for the string object itself");
    const VPropstring& same = text;
    text = same;
    EXPECT_EQ(wide(text), L"a text that is too long for the string object itself");
    text = text.c_str();
    EXPECT_EQ(wide(text), L"a text that is too long for the string object itself");
}

TEST(VPropstring, WideTextIsAssignedAsItStands)
{
    VPropstring text;
    text = L"a\xD800z";
    EXPECT_EQ(wide(text), L"a\xD800z");
    text = std::wstring(L"a\0b", 3);
    EXPECT_EQ(wide(text), std::wstring(L"a\0b", 3));
}

TEST(VPropstring, AssignedNarrowTextIsInTheSystemsCodePage)
{
    VPropstring text(L"old");
    VPropstring& result = text = "\xC3\xA4\xFF\xE2\x82\xAC";
    EXPECT_EQ(&result, &text);
    EXPECT_EQ(wide(text), L"\u00E4\u20AC");
    VPropstring& second_result = text = std::string("x\0\xC3\xB6", 4);
    EXPECT_EQ(&second_result, &text);
    EXPECT_EQ(wide(text), std::wstring(L"x\0\u00F6", 3));
    text = "";
    EXPECT_EQ(wide(text), L"");
}

TEST(VPropstring, AsAStringItIsInTheSystemsCodePage)
{
    const VPropstring text(std::wstring(L"a\0\u20AC\xD800z", 5));
    const std::string narrow = text;
    EXPECT_EQ(narrow, std::string("a\0\xE2\x82\xACz", 6));
    EXPECT_EQ(static_cast<std::string>(text), text.to(VPropstring::enc_system));
}

TEST(VPropstring, IsAWideStringForItsCallers)
{
    VPropstring text(L"stack");
    text += L".vbf";
    EXPECT_EQ(text.size(), 9u);
    EXPECT_EQ(text.substr(5), L".vbf");
    std::wstring& base = text;
    base.insert(0, L"a ");
    EXPECT_EQ(text.to(VPropstring::enc_utf8), "a stack.vbf");
}

// Comparison

TEST(VPropstring, EqualsTheSameWideText)
{
    const VPropstring text(L"\u00B5m");
    EXPECT_TRUE(text == std::wstring(L"\u00B5m"));
    EXPECT_TRUE(text == L"\u00B5m");
    EXPECT_TRUE(text == VPropstring(L"\u00B5m"));
    EXPECT_FALSE(text == std::wstring(L"\u00B5"));
    EXPECT_FALSE(text == L"\u00B5M");
    EXPECT_FALSE(text == VPropstring(L"um"));
    EXPECT_FALSE(text == L"");
    EXPECT_TRUE(VPropstring() == L"");
    EXPECT_TRUE(VPropstring() == std::wstring());
}

TEST(VPropstring, ComparesWideTextBehindItsNul)
{
    const VPropstring text(std::wstring(L"a\0b", 3));
    EXPECT_TRUE(text == std::wstring(L"a\0b", 3));
    EXPECT_FALSE(text == std::wstring(L"a\0c", 3));
    EXPECT_FALSE(text == L"a") << "a pointer ends at its NUL, the string does not";
    EXPECT_TRUE(text == VPropstring(std::wstring(L"a\0b", 3)));
    EXPECT_FALSE(text == VPropstring(L"a"));
}

TEST(VPropstring, EqualsNarrowTextOfTheSameBytes)
{
    const VPropstring text(L"\u00B5m");
    EXPECT_TRUE(text == "\xC2\xB5m");
    EXPECT_TRUE(text == std::string("\xC2\xB5m"));
    EXPECT_FALSE(text == "\xB5m") << "not in windows-1252";
    EXPECT_FALSE(text == std::string("\xC2\xB5"));
    EXPECT_FALSE(text == "");
    EXPECT_TRUE(VPropstring() == "");
    EXPECT_TRUE(VPropstring() == std::string());
}

TEST(VPropstring, ComparesNarrowTextBehindItsNul)
{
    const VPropstring text(std::wstring(L"a\0b", 3));
    EXPECT_TRUE(text == std::string("a\0b", 3));
    EXPECT_FALSE(text == std::string("a"));
    EXPECT_FALSE(text == "a");
}

// The comparison happens on the narrow side. It looks wrong and is wanted.
TEST(VPropstring, DifferentTextsMayEqualTheSameNarrowText)
{
    const VPropstring plain(L"a");
    const VPropstring with_a_unit_that_vanishes(L"a\xD800");
    EXPECT_TRUE(plain == "a");
    EXPECT_TRUE(with_a_unit_that_vanishes == "a");
    EXPECT_TRUE(with_a_unit_that_vanishes == std::string("a"));
    EXPECT_FALSE(plain == with_a_unit_that_vanishes);
    EXPECT_FALSE(with_a_unit_that_vanishes == L"a");
}

TEST(VPropstring, NarrowTextIsNotDecodedForAComparison)
{
    const VPropstring text(L"a");
    EXPECT_FALSE(text == "a\xFF") << "decoding would drop the byte";
    EXPECT_FALSE(text == std::string("a\xFF"));
}

TEST(VPropstring, UnequalIsTheOppositeOfEqual)
{
    const VPropstring text(L"a");
    EXPECT_FALSE(text != VPropstring(L"a"));
    EXPECT_TRUE(text != VPropstring(L"b"));
}

TEST(VPropstring, ComparisonChangesNothing)
{
    const VPropstring text(std::wstring(L"a\0\xD800", 3));
    EXPECT_FALSE(text == "b");
    EXPECT_FALSE(text == L"b");
    EXPECT_EQ(wide(text), std::wstring(L"a\0\xD800", 3));
}

} // namespace
