// Every comparison in every order and negated. Compiled as C++17 and as C++20, whose rules for finding an operator
// differ.

#include <VelaProps/VPropstring.h>

#include <gtest/gtest.h>

#include <string>

namespace {

template <class Other>
void expect_equal(const VPropstring& text, const Other& other)
{
    EXPECT_TRUE(text == other);
    EXPECT_TRUE(other == text);
    EXPECT_FALSE(text != other);
    EXPECT_FALSE(other != text);
}

template <class Other>
void expect_different(const VPropstring& text, const Other& other)
{
    EXPECT_FALSE(text == other);
    EXPECT_FALSE(other == text);
    EXPECT_TRUE(text != other);
    EXPECT_TRUE(other != text);
}

TEST(VPropstringComparison, WithItsOwnType)
{
    expect_equal(VPropstring(L"stack"), VPropstring(L"stack"));
    expect_different(VPropstring(L"stack"), VPropstring(L"stacks"));
}

TEST(VPropstringComparison, WithWideText)
{
    expect_equal(VPropstring(L"stack"), std::wstring(L"stack"));
    expect_different(VPropstring(L"stack"), std::wstring(L"Stack"));
    const wchar_t* const same = L"stack";
    const wchar_t* const other = L"";
    expect_equal(VPropstring(L"stack"), same);
    expect_different(VPropstring(L"stack"), other);
}

TEST(VPropstringComparison, WithNarrowText)
{
    expect_equal(VPropstring(L"\u00b5m"), std::string("\xC2\xB5m"));
    expect_different(VPropstring(L"\u00b5m"), std::string("\xB5m"));
    const char* const same = "\xC2\xB5m";
    const char* const other = "um";
    expect_equal(VPropstring(L"\u00b5m"), same);
    expect_different(VPropstring(L"\u00b5m"), other);
}

} // namespace
