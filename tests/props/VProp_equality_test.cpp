// When two values are equal.
#include "props/attachment.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <complex>
#include <initializer_list>
#include <limits>
#include <string>
#include <utility>

namespace {

constexpr double nan_double = std::numeric_limits<double>::quiet_NaN();
constexpr float nan_float = std::numeric_limits<float>::quiet_NaN();

template <class T>
VProp array_of(std::initializer_list<T> elements)
{
    VProparray<T> made;
    for (const T& element : elements)
        made.push_back(element);
    return VProp(made);
}

template <class T>
VProp shaped(VProp value, const std::vector<std::size_t>& sizes)
{
    value.get<VProparray<T>>().set_size(sizes, VProparrayBase::set_strict);
    return value;
}

VProp struct_of(std::initializer_list<std::pair<std::string, VProp>> members)
{
    VPropstruct made;
    for (const auto& member : members)
        made.push_back(member);
    return VProp(made);
}

TEST(VPropEquality, ConvertsNoTypes)
{
    EXPECT_FALSE(VProp(1) == VProp(1.0));
    EXPECT_FALSE(VProp(1.0f) == VProp(1.0));
    EXPECT_FALSE(VProp(static_cast<unsigned>(1)) == VProp(1));
    EXPECT_FALSE(VProp(true) == VProp(static_cast<unsigned char>(1)));
    EXPECT_FALSE(VProp(std::complex<double>(1, 0)) == VProp(1.0));
    EXPECT_FALSE(VProp(1) == array_of<int>({1}));
    EXPECT_FALSE(array_of<int>({1}) == VProp(1));
    EXPECT_FALSE(array_of<int>({}) == array_of<double>({}));
    EXPECT_FALSE(array_of<VProp>({VProp(1)}) == array_of<int>({1}));
}

TEST(VPropEquality, OfNotANumberIsFalseAlsoForACopyOfItself)
{
    const VProp value(nan_double);
    const VProp copy(value);
    EXPECT_FALSE(value == copy);
    EXPECT_FALSE(value == value); // NOLINT(misc-redundant-expression)
    EXPECT_TRUE(value != copy);
    EXPECT_FALSE(VProp(nan_float) == VProp(nan_float));
    EXPECT_FALSE(VProp(std::complex<double>(nan_double, 0)) == VProp(std::complex<double>(nan_double, 0)));
    EXPECT_FALSE(VProp(std::complex<float>(0, nan_float)) == VProp(std::complex<float>(0, nan_float)));
}

TEST(VPropEquality, OfContainersWithNotANumberIsFalseAlsoForACopy)
{
    const VProp array = array_of<double>({1.0, nan_double});
    EXPECT_FALSE(array == VProp(array));
    const VProp cells = array_of<VProp>({VProp(1), VProp(nan_float)});
    EXPECT_FALSE(cells == VProp(cells));
    const VProp tree = struct_of({{"a", VProp(1)}, {"b", cells}});
    EXPECT_FALSE(tree == VProp(tree));
    EXPECT_FALSE(tree == tree); // NOLINT(misc-redundant-expression)
}

TEST(VPropEquality, IsThatOfNumbers)
{
    EXPECT_TRUE(VProp(0.0) == VProp(-0.0));
    EXPECT_TRUE(VProp(std::numeric_limits<double>::infinity()) == VProp(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(VProp(0.1 + 0.2) == VProp(0.3));
    EXPECT_FALSE(VProp(INT64_MIN) == VProp(INT64_MAX));
    EXPECT_FALSE(VProp(UINT64_MAX) == VProp(UINT64_MAX - 1));
    EXPECT_FALSE(VProp(true) == VProp(false));
}

TEST(VPropEquality, LooksAtBothPartsOfComplexNumbers)
{
    EXPECT_TRUE(VProp(std::complex<int>(1, 2)) == VProp(std::complex<int>(1, 2)));
    EXPECT_FALSE(VProp(std::complex<int>(1, 2)) == VProp(std::complex<int>(1, 3)));
    EXPECT_FALSE(VProp(std::complex<int>(1, 2)) == VProp(std::complex<int>(0, 2)));
}

TEST(VPropEquality, LooksAtAllBytesOfAColour)
{
    EXPECT_TRUE(VProp(_s_vela_RGB(1, 2, 3)) == VProp(_s_vela_RGB(1, 2, 3)));
    EXPECT_FALSE(VProp(_s_vela_RGB(1, 2, 3)) == VProp(_s_vela_RGB(0, 2, 3)));
    EXPECT_FALSE(VProp(_s_vela_RGB(1, 2, 3)) == VProp(_s_vela_RGB(1, 0, 3)));
    EXPECT_FALSE(VProp(_s_vela_RGB(1, 2, 3)) == VProp(_s_vela_RGB(1, 2, 0)));
    EXPECT_FALSE(VProp(_s_vela_RGB(1, 2, 3)) == VProp(_s_vela_RGB(3, 2, 1)));
}

TEST(VPropEquality, OfTextsIsThatOfTheirWideCharacters)
{
    EXPECT_TRUE(VProp("\xc3\xa4") == VProp(L"\u00e4"));
    EXPECT_TRUE(VProp(VPropstring("\xe4", VPropstring::enc_windows1252)) ==
                VProp(VPropstring("\xc3\xa4", VPropstring::enc_utf8)));
    EXPECT_FALSE(VProp(L"a") == VProp(L"A"));
    EXPECT_FALSE(VProp(L"a") == VProp(L"a "));
    EXPECT_FALSE(VProp(std::wstring(L"a\0b", 3)) == VProp(std::wstring(L"a\0c", 3)));
    EXPECT_FALSE(VProp(std::wstring(L"a\0", 2)) == VProp(L"a"));
}

TEST(VPropEquality, OfTextsDoesNotGoThroughAnEncoding)
{
    // Neither of these lone surrogates has a form in UTF-8.
    EXPECT_FALSE(VProp(std::wstring(1, static_cast<wchar_t>(0xd800))) ==
                 VProp(std::wstring(1, static_cast<wchar_t>(0xd801))));
    EXPECT_FALSE(VProp(std::wstring(1, static_cast<wchar_t>(0xd800))) == VProp(L""));
}

TEST(VPropEquality, OfStructsDemandsKeysValuesAndOrder)
{
    const VProp ab = struct_of({{"a", VProp(1)}, {"b", VProp(2)}});
    EXPECT_TRUE(ab == struct_of({{"a", VProp(1)}, {"b", VProp(2)}}));
    EXPECT_FALSE(ab == struct_of({{"b", VProp(2)}, {"a", VProp(1)}}));
    EXPECT_FALSE(ab == struct_of({{"a", VProp(1)}}));
    EXPECT_FALSE(struct_of({{"a", VProp(1)}}) == ab);
    EXPECT_FALSE(ab == struct_of({{"a", VProp(1)}, {"B", VProp(2)}}));
    EXPECT_FALSE(ab == struct_of({{"a", VProp(1)}, {"b", VProp(3)}}));
    EXPECT_FALSE(ab == struct_of({{"a", VProp(1)}, {"b", VProp()}}));
    EXPECT_TRUE(struct_of({}) == struct_of({}));
}

TEST(VPropEquality, LooksAtMembersThatAreHiddenByADuplicate)
{
    const VProp hidden = struct_of({{"a", VProp(1)}, {"a", VProp(2)}});
    EXPECT_TRUE(hidden == struct_of({{"a", VProp(1)}, {"a", VProp(2)}}));
    EXPECT_FALSE(hidden == struct_of({{"a", VProp(1)}, {"a", VProp(3)}}));
}

TEST(VPropEquality, OfArraysLooksAtTheElementsInLinearOrder)
{
    EXPECT_TRUE(array_of<int>({1, 2, 3}) == array_of<int>({1, 2, 3}));
    EXPECT_FALSE(array_of<int>({1, 2, 3}) == array_of<int>({1, 3, 2}));
    EXPECT_FALSE(array_of<int>({1, 2, 3}) == array_of<int>({1, 2}));
    EXPECT_FALSE(array_of<int>({1, 2}) == array_of<int>({1, 2, 3}));
    EXPECT_TRUE(array_of<bool>({true, false}) == array_of<bool>({true, false}));
    EXPECT_FALSE(array_of<bool>({true, false}) == array_of<bool>({true, true}));
    EXPECT_TRUE(array_of<VPropstring>({L"a"}) == array_of<VPropstring>({L"a"}));
    EXPECT_FALSE(array_of<VPropstring>({L"a"}) == array_of<VPropstring>({L"b"}));
}

TEST(VPropEquality, OfArraysDoesNotLookAtTheirShape)
{
    const VProp flat = array_of<int>({1, 2, 3, 4, 5, 6});
    EXPECT_TRUE(shaped<int>(flat, {2, 3}) == shaped<int>(flat, {3, 2}));
    EXPECT_TRUE(shaped<int>(flat, {2, 3}) == flat);
    EXPECT_TRUE(shaped<int>(flat, {6}) == shaped<int>(flat, {1, 2, 3}));
}

TEST(VPropEquality, OfArraysLooksAtStoredElementsWhereTheShapeIsStale)
{
    VProp one = array_of<int>({1, 2, 3});
    VProp other = array_of<int>({1, 2, 4});
    one.get<VProparray<int>>().set_size({7, 7}, VProparrayBase::set_only);
    other.get<VProparray<int>>().set_size({1, 2}, VProparrayBase::set_only);
    EXPECT_FALSE(one == other);
    other.get<VProparray<int>>()[2] = 3;
    EXPECT_TRUE(one == other);
}

TEST(VPropEquality, OfArraysDoesNotLookAtUserBits)
{
    VProp one = array_of<VPropstring>({L"a"});
    one.get<VProparray<VPropstring>>().userbits = 1;
    EXPECT_TRUE(one == array_of<VPropstring>({L"a"}));
}

TEST(VPropEquality, OfCellArraysIsThatOfTheirElements)
{
    EXPECT_TRUE(array_of<VProp>({VProp(1), VProp()}) == array_of<VProp>({VProp(1), VProp()}));
    EXPECT_FALSE(array_of<VProp>({VProp(1)}) == array_of<VProp>({VProp(1.0)}));
    EXPECT_FALSE(array_of<VProp>({VProp(1), VProp()}) == array_of<VProp>({VProp(1), VProp(0)}));
    const VProp inner = array_of<VProp>({VProp(L"x")});
    EXPECT_TRUE(array_of<VProp>({inner}) == array_of<VProp>({array_of<VProp>({VProp(L"x")})}));
    EXPECT_FALSE(array_of<VProp>({inner}) == array_of<VProp>({array_of<VProp>({VProp(L"y")})}));
}

TEST(VPropEquality, OfStructArraysIsThatOfTheirStructs)
{
    VProp one;
    one["(1).a"] = 1;
    VProp other;
    other["(1).a"] = 1;
    EXPECT_TRUE(one == other);
    other["(0).a"] = 1;
    EXPECT_FALSE(one == other);
}

TEST(VPropEquality, DoesNotLookAtLocksAndAttachments)
{
    VProp one = struct_of({{"a", VProp(1)}});
    const VProp other = struct_of({{"a", VProp(1)}});
    EXPECT_TRUE(one["a"].lock());
    one["a"].set_info(prop_test::attachment(1));
    EXPECT_TRUE(one.lock());
    one.set_info(prop_test::attachment(2));
    EXPECT_TRUE(one == other);
    EXPECT_TRUE(other == one);
}

TEST(VPropEquality, DetachesNothing)
{
    const VProp one = struct_of({{"a", VProp(1)}});
    const VProp copy(one);
    EXPECT_TRUE(one == copy);
    EXPECT_EQ(one.value_ptr(), copy.value_ptr());
}

}
