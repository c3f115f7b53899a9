// How each kind of element is read, into a value that holds nothing.
#include "props/held_types.h"
#include "propsxml/number_types.h"
#include "propsxml/xml_check.h"

#include <complex>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using prop_test::Held;
using xml_test::array_of;
using xml_test::expect_invalid_size_at;
using xml_test::native;
using xml_test::NumberTypes;
using xml_test::read;
using xml_test::sizes_of;

using Sizes = std::vector<std::size_t>;

/// Two numbers that every type has, as they stand in a document.
template <class T>
struct Digits
{
    static std::string one() { return "1"; }
    static std::string zero() { return "0"; }
};
template <class T>
struct Digits<std::complex<T>>
{
    static std::string one() { return "(1,0)"; }
    static std::string zero() { return "(0,0)"; }
};

template <class T>
class ImportOfEachNumberType : public testing::Test
{
protected:
    static VProp read_as_this(const std::string& attributes, const std::string& text)
    {
        return read("type=\"" + Held<T>::name() + "\" " + attributes, text);
    }
    static VProp row(std::size_t count)
    {
        VProparray<T> array;
        for (std::size_t i = 0; i < count; ++i)
            array.push_back(T(1));
        return VProp(array);
    }
};
TYPED_TEST_SUITE(ImportOfEachNumberType, NumberTypes);

TYPED_TEST(ImportOfEachNumberType, IsAScalarForSize1By1WithoutIsarr)
{
    const std::string one = Digits<TypeParam>::one();
    EXPECT_EQ(this->read_as_this("size=\"1 1\"", one), VProp(TypeParam(1)));
    EXPECT_EQ(this->read_as_this("", one), VProp(TypeParam(1)));
    EXPECT_EQ(this->read_as_this("size=\"\"", one), VProp(TypeParam(1)));
}

TYPED_TEST(ImportOfEachNumberType, IsAnArrayOfOneElementForAnyIsarr)
{
    const std::string one = Digits<TypeParam>::one();
    for (const char* isarr : {"isarr=\"1\"", "isarr=\"0\"", "isarr=\"\""})
    {
        const VProp prop = this->read_as_this(std::string("size=\"1 1\" ") + isarr, one);
        EXPECT_EQ(prop, this->row(1)) << isarr;
        EXPECT_EQ(sizes_of(prop), (Sizes{1, 1})) << isarr;
    }
    EXPECT_EQ(this->read_as_this("isarr=\"1\"", one), this->row(1));
}

TYPED_TEST(ImportOfEachNumberType, IsAnArrayForEveryOtherSize)
{
    const std::string one = Digits<TypeParam>::one();
    EXPECT_EQ(this->read_as_this("size=\"1 3\"", one + " " + one + " " + one), this->row(3));
    EXPECT_EQ(this->read_as_this("size=\"1\"", one), this->row(1));
    EXPECT_EQ(this->read_as_this("size=\"1 1 1\"", one), this->row(1));
    EXPECT_EQ(this->read_as_this("size=\"0 0\"", ""), this->row(0));
    const VProp matrix = this->read_as_this("size=\"2 1 2\" userbits=\"5\"", one + " " + one + " " + one + " " + one);
    EXPECT_EQ(matrix, this->row(4));
    EXPECT_EQ(sizes_of(matrix), (Sizes{2, 1, 2}));
    EXPECT_EQ(matrix.get_arr(true)->userbits, 5u);
}

TYPED_TEST(ImportOfEachNumberType, IsZeroForAScalarThatDoesNotParse)
{
    EXPECT_EQ(this->read_as_this("", "?"), VProp(TypeParam(0)));
    EXPECT_EQ(this->read_as_this("", Digits<TypeParam>::one() + "?"), VProp(TypeParam(1)));
    EXPECT_EQ(this->read_as_this("", Digits<TypeParam>::zero()), VProp(TypeParam(0)));
}

TYPED_TEST(ImportOfEachNumberType, StopsAtTheFirstThatIsNoNumberAndThenTheSizeDoesNotFit)
{
    const std::string one = Digits<TypeParam>::one();
    const std::string type = "type=\"" + Held<TypeParam>::name() + "\" ";
    expect_invalid_size_at(native(type + "size=\"1 3\"", one + " " + one + " ? " + one), "root");
    expect_invalid_size_at(native(type + "size=\"1 3\"", one + " " + one + "," + one), "root");
    EXPECT_EQ(this->read_as_this("size=\"1 2\"", one + " " + one + "? " + one), this->row(2));
    EXPECT_EQ(this->read_as_this("size=\"1 2\"", one + " " + one + " ?"), this->row(2));
}

TYPED_TEST(ImportOfEachNumberType, TakesAnyCountOfBlanksBetweenElements)
{
    const std::string one = Digits<TypeParam>::one();
    EXPECT_EQ(this->read_as_this("size=\"1 3\"", one + "   " + one + "  " + one + "   "), this->row(3));
    // A line break is no separator of its own.
    expect_invalid_size_at(native("type=\"" + Held<TypeParam>::name() + "\" size=\"1 2\"", one + "\n" + one), "root");
}

TEST(ImportOfNumbers, StartsEachElementWithTheSizeInColumnMajorOrder)
{
    const VProp prop = read("type=\"int32\" size=\"2 3\"", "0 10 1 11 2 12");
    const auto& array = prop.get<VProparray<int>>();
    for (std::size_t row = 0; row < 2; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            EXPECT_EQ(array.at({row, column}), static_cast<int>(10 * row + column));
}

TEST(ImportOfNumbers, FailsForFiveNumbersOfSix)
{
    expect_invalid_size_at(native("type=\"double\" size=\"2 3\"", "1 2 3 4 5"), "root");
    expect_invalid_size_at(native("type=\"double\" size=\"2 3\"", "1 2 3 4 5 6 7"), "root");
    expect_invalid_size_at(native("type=\"double\" size=\"2 3\"", ""), "root");
}

TEST(ImportOfNumbers, StopsAtOneOutOfRange)
{
    EXPECT_EQ(read("type=\"int16\" size=\"1 2\"", "1 2 40000 3"), VProp(array_of<short>({1, 2})));
    EXPECT_EQ(read("type=\"logical\" size=\"1 2\"", "1 0 2"), VProp(array_of<bool>({true, false})));
    EXPECT_EQ(read("type=\"uint8\" size=\"1 2\"", "300 -1"), VProp(array_of<unsigned char>({44, 255})));
}

template <class T>
void expect_words_in_arrays()
{
    const T infinity = std::numeric_limits<T>::infinity();
    const VProp prop = read("type=\"" + Held<T>::name() + "\" size=\"1 4\"", "Inf -Inf 1 Inf");
    EXPECT_EQ(prop, VProp(array_of<T>({infinity, -infinity, T(1), infinity})));
    const VProp nan = read("type=\"" + Held<T>::name() + "\" size=\"1 2\"", "1 NaN");
    EXPECT_NE(nan.get<VProparray<T>>()[1], nan.get<VProparray<T>>()[1]);
    EXPECT_EQ(read("type=\"" + Held<T>::name() + "\" size=\"1 1\" isarr=\"1\"", "1 inf"), VProp(array_of<T>({T(1)})));
    EXPECT_EQ(read("type=\"" + Held<T>::name() + "\" size=\"1 1\" isarr=\"1\"", "1 Na"), VProp(array_of<T>({T(1)})));
}

TEST(ImportOfNumbers, KnowsThreeWordsInArraysToo)
{
    expect_words_in_arrays<float>();
    expect_words_in_arrays<double>();
}

TEST(ImportOfNumbers, TakesUserbitsOf64BitsForArraysOnly)
{
    const VProp prop = read("type=\"int8\" size=\"1 2\" userbits=\"18446744073709551614\"", "1 2");
    EXPECT_EQ(prop.get_arr(true)->userbits, 18446744073709551614u);
    EXPECT_EQ(read("type=\"int8\" size=\"1 2\"", "1 2").get_arr(true)->userbits, 0u);
    EXPECT_EQ(read("type=\"int8\" userbits=\"3\"", "1"), VProp(char(1)));
    EXPECT_EQ(read("type=\"int8\" size=\"1 2\" userbits=\"1\"", "1 2"), VProp(array_of<char>({1, 2})));
}

TEST(ImportOfNumbers, IgnoresIdxAndAnyOtherAttribute)
{
    EXPECT_EQ(read("idx=\"77\" color=\"red\" type=\"int8\" isempty=\"1\" ischar=\"1\"", "5"), VProp(char(5)));
}

TEST(ImportOfStrings, TakesTheTextAsUtf8WithBlanksAndLineBreaks)
{
    EXPECT_EQ(read("type=\"char\" size=\"1 3\"", "a\xE2\x82\xAC z"), VProp(L"a\x20ac z"));
    EXPECT_EQ(read("type=\"char\" size=\"1 1\"", "  a\n b  "), VProp(L"  a\n b  "));
    EXPECT_EQ(read("type=\"char\" size=\"1 1\"", "&lt;&amp;&gt;&#x41;"), VProp(L"<&>A"));
}

TEST(ImportOfStrings, IsEmptyWithoutText)
{
    EXPECT_EQ(read("type=\"char\" size=\"0 0\"", ""), VProp(L""));
}

TEST(ImportOfStrings, FillsUpWithNulToItsSize)
{
    EXPECT_EQ(read("type=\"char\" size=\"1 5\"", "abc"), VProp(std::wstring(L"abc\0\0", 5)));
    EXPECT_EQ(read("type=\"char\" size=\"2 2\"", "a"), VProp(std::wstring(L"a\0\0\0", 4)));
    EXPECT_EQ(read("type=\"char\" size=\"3\"", ""), VProp(std::wstring(3, L'\0')));
    EXPECT_EQ(read("type=\"char\"", ""), VProp(std::wstring(1, L'\0'))); // the size that is missing is 1 by 1
    EXPECT_EQ(read("type=\"char\" size=\"1 3\"", "\xC3\xA4\xC3\xA4"), VProp(std::wstring(L"\x00e4\x00e4\0", 3)));
}

TEST(ImportOfStrings, KeepsTextThatIsLongerThanItsSize)
{
    EXPECT_EQ(read("type=\"char\" size=\"1 2\"", "abcde"), VProp(L"abcde"));
    EXPECT_EQ(read("type=\"char\" size=\"0 0\" isarr=\"1\" userbits=\"1\"", "abc"), VProp(L"abc"));
}

TEST(ImportOfStringArrays, ReadsEachChildByItsOwnSize)
{
    const VProp prop = read("type=\"cell\" userbits=\"1\" size=\"2 2\"",
                            "<item type=\"char\" size=\"1 1\">a</item><x size=\"1 3\">b</x>"
                            "<item size=\"0 0\"/><item type=\"double\" size=\"0 0\">1.5</item>");
    EXPECT_EQ(prop, VProp(array_of<VPropstring>({L"a", std::wstring(L"b\0\0", 3), L"", L"1.5"})));
    EXPECT_EQ(sizes_of(prop), (Sizes{2, 2}));
    EXPECT_EQ(prop.get_arr(true)->userbits, 1u);
}

TEST(ImportOfStringArrays, KeepsTheOtherUserbits)
{
    const VProp prop = read("type=\"cell\" userbits=\"7\" size=\"1 1\"", "<item size=\"1 1\">a</item>");
    EXPECT_EQ(prop, VProp(array_of<VPropstring>({L"a"})));
    EXPECT_EQ(prop.get_arr(true)->userbits, 7u);
}

TEST(ImportOfStringArrays, IsWhatIscharNotZeroMeans)
{
    for (const char* ischar : {"1", "2", "-1"})
    {
        const VProp prop = read("type=\"cell\" size=\"1 1\" userbits=\"6\" ischar=\"" + std::string(ischar) + "\"",
                                "<item size=\"1 1\">a</item>");
        EXPECT_EQ(prop, VProp(array_of<VPropstring>({L"a"}))) << ischar;
        EXPECT_EQ(prop.get_arr(true)->userbits, 1u); // ischar replaces what userbits says
    }
    const VProp cells = read("type=\"cell\" size=\"1 1\" ischar=\"0\"", "<item type=\"char\" size=\"1 1\">a</item>");
    EXPECT_EQ(cells.get_id(), VProp::type_id<VProparray<VProp>>);
}

TEST(ImportOfStringArrays, MayHaveNoElements)
{
    EXPECT_EQ(read("type=\"cell\" userbits=\"1\" size=\"0 0\"", ""), VProp(VProparray<VPropstring>()));
    expect_invalid_size_at(native("type=\"cell\" userbits=\"1\" size=\"1 2\"", "<item size=\"1 1\">a</item>"), "root");
}

TEST(ImportOfCells, TakesChildrenInOrderWhateverTheirNamesAndIdx)
{
    const VProp prop = read("type=\"cell\" size=\"3 1\" userbits=\"4\"",
                            "<z idx=\"9\" type=\"int8\">1</z><a idx=\"9\" type=\"char\" size=\"1 1\">b</a>"
                            "<item idx=\"0\" isempty=\"1\" type=\"cell\"/>");
    VProp expected;
    auto& cells = expected.ensure_array<VProp>(3);
    cells[0] = char(1);
    cells[1] = L"b";
    EXPECT_EQ(prop, expected);
    EXPECT_EQ(sizes_of(prop), (Sizes{3, 1}));
    EXPECT_EQ(prop.get_arr(true)->userbits, 4u);
}

TEST(ImportOfCells, IsAnArrayAlsoOfSize1By1)
{
    const VProp prop = read("type=\"cell\"", "<item type=\"int8\">1</item>");
    EXPECT_EQ(prop.get_id(), VProp::type_id<VProparray<VProp>>);
    EXPECT_EQ(sizes_of(prop), (Sizes{1, 1}));
    EXPECT_EQ(read("type=\"cell\" size=\"0 0\"", ""), VProp(VProparray<VProp>()));
    expect_invalid_size_at(native("type=\"cell\" size=\"1 2\"", ""), "root");
}

TEST(ImportOfCells, IsTheEmptyValueForIsempty)
{
    EXPECT_EQ(read("type=\"cell\" isempty=\"1\" size=\"0 0\"", ""), VProp());
    EXPECT_EQ(read("type=\"cell\" isempty=\"1\" ischar=\"1\" userbits=\"1\" size=\"1 5\"", "<x/>"), VProp());
    EXPECT_EQ(read("type=\"cell\" isempty=\"0\" size=\"0 0\"", ""), VProp(VProparray<VProp>()));
}

TEST(ImportOfStructs, NamesMembersByTheirElements)
{
    const VProp prop = read("type=\"struct\" size=\"1 1\"",
                            "<b idx=\"5\" type=\"int8\">1</b><a-c type=\"struct\"><_x type=\"int8\">2</_x></a-c>");
    VProp expected;
    expected["b"] = char(1);
    expected["a-c._x"] = char(2);
    EXPECT_EQ(prop, expected);
    EXPECT_EQ(read("type=\"struct\"", ""), VProp(VPropstruct()));
}

TEST(ImportOfStructs, WalksWhereANameHasADot)
{
    VProp expected;
    expected["a.b"] = char(1);
    expected["a.c"] = char(2);
    EXPECT_EQ(read("type=\"struct\"", "<a.b type=\"int8\">1</a.b><a.c type=\"int8\">2</a.c>"), expected);
}

TEST(ImportOfStructs, ReadsANameTwiceIntoTheSameMember)
{
    VProp expected;
    expected["a"] = char(2);
    EXPECT_EQ(read("type=\"struct\"", "<a type=\"int8\">1</a><a type=\"int8\">2</a>"), expected);
}

TEST(ImportOfStructArrays, SharesTheChildrenOutInOrder)
{
    const VProp prop = read("type=\"struct\" size=\"2 1\" userbits=\"3\"",
                            "<x idx=\"1\" type=\"int8\">1</x><y idx=\"1\" type=\"int8\">2</y>"
                            "<y idx=\"2\" type=\"int8\">3</y><x idx=\"2\" type=\"int8\">4</x>");
    ASSERT_EQ(prop.get_id(), VProp::type_id<VProparray<VPropstruct>>);
    const auto& structs = prop.get<VProparray<VPropstruct>>();
    ASSERT_EQ(structs.count(), 2u);
    EXPECT_EQ(structs[0]["x"], VProp(char(1)));
    EXPECT_EQ(structs[0]["y"], VProp(char(2)));
    EXPECT_EQ(structs[1].front().first, "y");
    EXPECT_EQ(structs[1]["y"], VProp(char(3)));
    EXPECT_EQ(structs[1]["x"], VProp(char(4)));
    EXPECT_EQ(sizes_of(prop), (Sizes{2, 1}));
    EXPECT_EQ(structs.userbits, 3u);
}

TEST(ImportOfStructArrays, TakesIsarrForOneElementAndIdx1WhereItIsMissing)
{
    const VProp prop = read("type=\"struct\" isarr=\"1\" size=\"1 1\"", "<x type=\"int8\">1</x>");
    ASSERT_EQ(prop.get_id(), VProp::type_id<VProparray<VPropstruct>>);
    EXPECT_EQ(prop.get<VProparray<VPropstruct>>()[0]["x"], VProp(char(1)));
    EXPECT_EQ(read("type=\"struct\" size=\"1 1 1\"", "<x type=\"int8\">1</x>"), prop);
    EXPECT_EQ(read("type=\"struct\" size=\"1\"", "<x type=\"int8\">1</x>"), prop);
}

TEST(ImportOfStructArrays, MayHaveStructsWithoutMembersOrNoStructs)
{
    const VProp prop = read("type=\"struct\" size=\"1 3\"", "");
    ASSERT_EQ(prop.get_id(), VProp::type_id<VProparray<VPropstruct>>);
    EXPECT_EQ(prop.get<VProparray<VPropstruct>>().count(), 3u);
    EXPECT_EQ(read("type=\"struct\" size=\"0 0\"", ""), VProp(VProparray<VPropstruct>()));
    EXPECT_EQ(sizes_of(read("type=\"struct\" size=\"0 4\"", "")), (Sizes{0, 4}));
}

}
