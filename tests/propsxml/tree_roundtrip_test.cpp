// Trees that are written and read again come back equal, but for what is named here.
#include "propsxml/random_tree.h"
#include "propsxml/xml_check.h"
#include "support/rounds.h"

#include <cmath>
#include <limits>
#include <string>

namespace {

using xml_test::array_of;
using xml_test::exported;
using xml_test::imported;
using xml_test::RandomTree;
using xml_test::sizes_of;

constexpr std::size_t count_trees = vela_test::rounds(3000);

/// What the equality of values does not look at: sizes and flags, all through the tree.
void expect_same_shapes(const VProp& written, const VProp& read)
{
    ASSERT_EQ(written.get_id(), read.get_id());
    if (const VProparrayBase* const array = written.get_arr(false))
    {
        ASSERT_EQ(array->get_size(true), sizes_of(read));
        ASSERT_EQ(array->userbits, read.get_arr(true)->userbits);
    }
    if (written.get_id() == VProp::type_id<VPropstruct>)
        for (std::size_t i = 0; i < written.get<VPropstruct>().size(); ++i)
            expect_same_shapes(written.get<VPropstruct>().at(i).second, read.get<VPropstruct>().at(i).second);
    if (written.get_id() == VProp::type_id<VProparray<VProp>>)
        for (std::size_t i = 0; i < written.get<VProparray<VProp>>().size(); ++i)
            expect_same_shapes(written.get<VProparray<VProp>>()[i], read.get<VProparray<VProp>>()[i]);
    if (written.get_id() == VProp::type_id<VProparray<VPropstruct>>)
        for (std::size_t i = 0; i < written.get<VProparray<VPropstruct>>().size(); ++i)
            expect_same_shapes(VProp(written.get<VProparray<VPropstruct>>()[i]),
                               VProp(read.get<VProparray<VPropstruct>>()[i]));
}

/// Through both forms, with format 0 and with the number of the form. The shapes are those after the export, which
/// marks arrays of strings.
void expect_round_trip(const VProp& tree)
{
    for (const int form : {1, 2})
    {
        const std::string xml = exported(tree, form);
        for (const int format : {0, form})
        {
            VProp read;
            ASSERT_NO_THROW(vela_import_xml(xml, read, format)) << xml;
            ASSERT_EQ(read, tree) << xml;
            expect_same_shapes(tree, read);
            ASSERT_EQ(exported(read, form), xml);
        }
    }
}

TEST(TreeRoundTrip, KeepsRandomTreesWithTheirShapesAndFlags)
{
    for (std::uint32_t seed = 1; seed <= count_trees && !testing::Test::HasFailure(); ++seed)
    {
        SCOPED_TRACE(seed);
        expect_round_trip(RandomTree(seed).tree(4));
    }
}

TEST(TreeRoundTrip, KeepsEveryNumberTypeAloneAndInArrays)
{
    for (std::size_t type = 0; type < 21; ++type)
        for (std::uint32_t seed = 1; seed <= 60 && !testing::Test::HasFailure(); ++seed)
        {
            SCOPED_TRACE(type);
            RandomTree random(static_cast<std::uint32_t>(1000 * type) + seed);
            VProp scalar;
            random.make_number(scalar, type, false);
            expect_round_trip(scalar);
            VProp array;
            random.make_number(array, type, true);
            expect_round_trip(array);
        }
}

TEST(TreeRoundTrip, KeepsRandomTexts)
{
    RandomTree random(77);
    for (int i = 0; i < 5000 && !testing::Test::HasFailure(); ++i)
        expect_round_trip(VProp(random.text()));
}

TEST(TreeRoundTrip, KeepsEveryCodePoint)
{
    std::wstring all;
    for (std::uint32_t code = 0; code < 0x110000; ++code)
        if (code < 0xd800 || code > 0xdfff)
            all += static_cast<wchar_t>(code);
    VProp tree;
    tree["all"] = all;
    const VProp read = imported(exported(tree, 2));
    EXPECT_TRUE(read == tree); // too long to print
}

TEST(TreeRoundTrip, KeepsEachSmallCodePointBetweenOthers)
{
    for (wchar_t code = 0; code < 0x180; ++code)
        expect_round_trip(VProp(std::wstring{L'a', code, L'b'}));
}

TEST(TreeRoundTrip, KeepsTextThatLooksLikeMarkup)
{
    for (const wchar_t* text : {L"&#x41;",    L"&#65;",   L"&amp;",    L"&lt;",           L"&#x",
                                L"&#x<a>",    L"&#x41",   L"]]>",      L"<![CDATA[x]]>",  L"<!-- x -->",
                                L"</root>",   L"<?xml?>", L"&",        L"&&#x;",          L"a&#xZZ;b",
                                L"&unknown;", L"%s%n",    L"\xfeff x", L" \xfffe\xffff.", L" leading and trailing ",
                                L"\n a \n",   L"\r\n|\r"})
    {
        expect_round_trip(VProp(text));
        VProp tree;
        tree["a"] = array_of<VPropstring>({text, L"", text});
        tree["b{1}"] = text;
        expect_round_trip(tree);
    }
}

TEST(TreeRoundTrip, KeepsNulInTexts)
{
    expect_round_trip(VProp(std::wstring(L"a\0b", 3)));
    expect_round_trip(VProp(std::wstring(L"ab\0\0", 4)));
    expect_round_trip(VProp(std::wstring(L"\0ab", 3)));
    expect_round_trip(VProp(std::wstring(3, L'\0')));
}

TEST(TreeRoundTrip, KeepsWhatIsNotFiniteButNaNs)
{
    const double infinity = std::numeric_limits<double>::infinity();
    VProp tree;
    tree["a"] = infinity;
    tree["b"] = -std::numeric_limits<float>::infinity();
    tree["c"] = array_of<double>({infinity, 1, -infinity});
    tree["d"] = std::complex<double>(-infinity, infinity);
    expect_round_trip(tree);
}

// What does not come back as it was.

TEST(TreeRoundTripChanges, OneStructInAnArrayToAPlainStruct)
{
    VProp structs;
    structs.s(0)["m"] = 1;
    VProp plain;
    plain["m"] = 1;
    for (const int form : {1, 2})
        EXPECT_EQ(imported(exported(structs, form)), plain);
}

TEST(TreeRoundTripChanges, NothingInOneStructOfAnArrayOfAnotherRank)
{
    VProp structs;
    structs.s(0, 0, 0)["m"] = 1;
    expect_round_trip(structs);
}

TEST(TreeRoundTripChanges, BlankTextsToNuls)
{
    for (const wchar_t* blank : {L" ", L"   ", L"\t", L"\n", L" \r\n"})
    {
        const std::wstring text(blank);
        EXPECT_EQ(imported(exported(VProp(text), 2)), VProp(std::wstring(text.size(), L'\0')));
        VProp tree(array_of<VPropstring>({text, L"x"}));
        EXPECT_EQ(imported(exported(tree, 1)), VProp(array_of<VPropstring>({std::wstring(text.size(), L'\0'), L"x"})));
    }
}

TEST(TreeRoundTripChanges, Bit0OfUserbitsOfAStringArray)
{
    auto array = array_of<VPropstring>({L"x"});
    array.userbits = 4;
    const VProp read = imported(exported(VProp(array), 2));
    EXPECT_EQ(read.get_arr(true)->userbits, 5u);
    EXPECT_EQ(read, VProp(array));
}

TEST(TreeRoundTripChanges, CellsWithBit0OfUserbitsToStrings)
{
    VProp cells;
    cells(0, 0) = L"x";
    cells(0, 1) = 5;
    cells.get_arr(true)->userbits = 1;
    EXPECT_EQ(imported(exported(cells, 2)), VProp(array_of<VPropstring>({L"x", L"5"})));
}

TEST(TreeRoundTripChanges, UnitsThatAreNoCharactersToNulsAtTheEnd)
{
    const std::wstring text{L'a', static_cast<wchar_t>(0xd800), L'b', static_cast<wchar_t>(0x110000)};
    EXPECT_EQ(imported(exported(VProp(text), 2)), VProp(std::wstring(L"ab\0\0", 4)));
}

TEST(TreeRoundTripChanges, NothingThatIsSharedLockedOrAttached)
{
    VProp tree;
    tree["a"] = 1;
    tree["b"] = VProp(tree["a"]);
    tree["c.d"] = 2;
    tree["c"].lock();
    expect_round_trip(tree);
}

template <class T>
void expect_nan_that_is_not_equal()
{
    const VProp scalar(std::numeric_limits<T>::quiet_NaN());
    const VProp read = imported(exported(scalar, 2));
    EXPECT_TRUE(std::isnan(read.get<T>()));
    EXPECT_NE(read, scalar);
    const VProp negative = imported(exported(VProp(-std::numeric_limits<T>::quiet_NaN()), 2));
    EXPECT_FALSE(std::signbit(negative.get<T>()));
    const VProp complex = imported(exported(VProp(std::complex<T>(1, std::numeric_limits<T>::quiet_NaN())), 1));
    EXPECT_EQ(complex.get<std::complex<T>>().real(), T(1));
    EXPECT_TRUE(std::isnan(complex.get<std::complex<T>>().imag()));
}

TEST(TreeRoundTripChanges, NaNsToQuietOnesThatEqualNothing)
{
    expect_nan_that_is_not_equal<float>();
    expect_nan_that_is_not_equal<double>();
}

TEST(TreeRoundTripChanges, SizesThatAreOutOfDateToThoseThatFit)
{
    VProp tree;
    auto& array = tree.ensure_array<int>(2);
    array.set_size({1, 2}, VProparrayBase::set_strict);
    array.push_back(1);
    const VProp read = imported(exported(tree, 2));
    EXPECT_EQ(read, tree);
    EXPECT_EQ(read.get_arr(true)->get_size(false), (std::vector<std::size_t>{1, 3}));
}

TEST(TreeRoundTripChanges, KeysWithADotToAWalk)
{
    VPropstruct members;
    members.emplace_back("a.b", VProp(1));
    VProp expected;
    expected["a.b"] = 1;
    EXPECT_EQ(imported(exported(VProp(members), 2)), expected);
}

TEST(TreeRoundTripChanges, AnEmptyKeyToItem)
{
    VPropstruct members;
    members.emplace_back("", VProp(1));
    VProp expected;
    expected["item"] = 1;
    EXPECT_EQ(imported(exported(VProp(members), 2)), expected);
}

TEST(TreeRoundTripChanges, KeysThatStandTwiceToTheLastOne)
{
    VPropstruct members;
    members.emplace_back("a", VProp(1));
    members.emplace_back("a", VProp(2));
    VProp expected;
    expected["a"] = 2;
    EXPECT_EQ(imported(exported(VProp(members), 2)), expected);
}

TEST(TreeRoundTripChanges, StructsWithDifferentMembersToAFailure)
{
    VProp more;
    more.s(0)["a"] = 1;
    more.s(1)["a"] = 1;
    more.s(1)["b"] = 1;
    VProp other;
    other.s(0)["a"] = 1;
    other.s(1)["b"] = 1;
    VProp none;
    none.s(0)["a"] = 1;
    none.s(0)["b"] = 1;
    none.s(1);
    for (const VProp& structs : {more, other, none})
    {
        VProp read;
        const std::string report = xml_test::import_failure(exported(structs, 2), read);
        EXPECT_NE(report.find("Invalid struct array!"), std::string::npos) << report;
    }
}

TEST(TreeRoundTrip, KeepsTheOrderOfMembersInEachStructOfAnArray)
{
    VProp structs;
    structs.s(0)["a"] = 1;
    structs.s(0)["b"] = 2;
    structs.s(1)["b"] = 3;
    structs.s(1)["a"] = 4;
    expect_round_trip(structs);
}

TEST(ValueTextRoundTrip, KeepsEveryScalar)
{
    for (std::size_t type = 0; type < 21; ++type)
        for (std::uint32_t seed = 1; seed <= 2000 && !testing::Test::HasFailure(); ++seed)
        {
            RandomTree random(static_cast<std::uint32_t>(5000 * type) + seed);
            VProp scalar;
            random.make_number(scalar, type, false);
            ASSERT_EQ(vela_string2val(vela_val2string(scalar), scalar.get_id()), scalar) << vela_val2string(scalar);
        }
}

TEST(ValueTextRoundTrip, KeepsEveryText)
{
    RandomTree random(5);
    for (int i = 0; i < 5000; ++i)
    {
        const VProp text(random.text() + (i % 3 == 0 ? std::wstring(L" \t", 2) : std::wstring(1, L'\0')));
        ASSERT_EQ(vela_string2val(vela_val2string(text), vela_dt_char), text);
    }
}

}
