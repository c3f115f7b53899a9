// Properties are found by paths.
#include "json/property_trees.h"

#include <Json/property_bridge.h>

#include <complex>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using Json::find_property;
using json_test::address_of;
using json_test::array_of;
using json_test::cells;
using json_test::member_of;
using json_test::members_of;
using json_test::structure;
using json_test::structures;

static_assert(
    std::is_same_v<decltype(find_property(std::declval<const VProp&>(), "")), std::pair<const VProp*, std::string>>);
static_assert(std::is_same_v<decltype(find_property(std::declval<VProp&>(), "")), std::pair<VProp*, std::string>>);

/// "-" where nothing is found, otherwise the property as text and the rest of the path.
std::string found(const VProp& property, const std::string& path)
{
    VProp writable(property);
    const auto [constant, constant_rest] = find_property(property, path);
    const auto [pointer, rest] = find_property(writable, path);
    EXPECT_EQ(constant == nullptr, pointer == nullptr);
    EXPECT_EQ(constant_rest, rest);
    if (constant == nullptr || pointer == nullptr)
        return "-" + rest;
    EXPECT_TRUE(*constant == *pointer);
    return (pointer->get_id() == vela_dt_int32 ? std::to_string(std::as_const(*pointer).get<int>())
                                               : std::string(vela_dt_get_name(pointer->get_id()))) +
           ":" + rest;
}

VProp instrument()
{
    return structure(
        {{"name", VProp("scope")},
         {"count", VProp(3)},
         {"", VProp(8)},
         {"a", cells({VProp(0), VProp(1), structure({{"b", VProp(22)}, {"c", cells({VProp(5)})}})})},
         {"lasers", structures({members_of({{"power", VProp(100)}}), members_of({{"power", VProp(200)}})})},
         {"offsets", array_of<int>({1, 2}, {7, 8})},
         {"inner", structure({{"x", structure({{"y", VProp(6)}})}, {"", VProp(9)}})}});
}

TEST(FindProperty, FindsMembers)
{
    EXPECT_EQ(found(instrument(), "count"), "3:");
    EXPECT_EQ(found(instrument(), "name"), "char:");
    EXPECT_EQ(found(instrument(), "inner"), "struct:");
    EXPECT_EQ(found(instrument(), "inner/x/y"), "6:");
}

TEST(FindProperty, FindsNoMembersThatAreMissing)
{
    for (const char* path :
         {"missing", "Count", "coun", "countt", "inner/y", "inner/x/y/z", "missing/x", "inner.x", " a"})
        EXPECT_EQ(found(instrument(), path), "-") << path;
}

TEST(FindProperty, AnEmptyPartIsTheMemberWithTheEmptyName)
{
    EXPECT_EQ(found(instrument(), ""), "8:");
    EXPECT_EQ(found(instrument(), "inner/"), "9:");
    EXPECT_EQ(found(instrument(), "/inner"), "-"); // the member "" goes on nowhere
    EXPECT_EQ(found(instrument(), "inner//"), "-");
    EXPECT_EQ(found(structure({{"", structure({{"a", VProp(4)}})}}), "/a"), "4:");
    EXPECT_EQ(found(structure({{"a", VProp(1)}}), ""), "-");
}

TEST(FindProperty, TheFirstOfTwoMembersWithOneNameIsFound)
{
    EXPECT_EQ(found(structure({{"a", VProp(1)}, {"a", VProp(2)}}), "a"), "1:");
}

TEST(FindProperty, GoesThroughArraysOfProperties)
{
    EXPECT_EQ(found(instrument(), "a"), "cell:");
    EXPECT_EQ(found(instrument(), "a/1"), "1:");
    EXPECT_EQ(found(instrument(), "a/2"), "struct:");
    EXPECT_EQ(found(instrument(), "a/2/b"), "22:");
    EXPECT_EQ(found(instrument(), "a/2/c/0"), "5:");
    EXPECT_EQ(found(cells({VProp(1), VProp(2)}), "1"), "2:");
}

TEST(FindProperty, BeyondTheElementsThereIsNothing)
{
    EXPECT_EQ(found(instrument(), "a/3"), "-");
    EXPECT_EQ(found(instrument(), "a/9"), "-");
    EXPECT_EQ(found(instrument(), "a/9/b"), "-");
    EXPECT_EQ(found(instrument(), "a/18446744073709551616"), "-");
    EXPECT_EQ(found(instrument(), "a/18446744073709551617"), "-"); // 1 in 64 bits
    EXPECT_EQ(found(instrument(), "a/4294967297"), "-");           // 1 in 32 bits
    EXPECT_EQ(found(instrument(), "a/" + std::string(100000, '9')), "-");
    EXPECT_EQ(found(VProp(VProparray<VProp>()), "0"), "-");
}

TEST(FindProperty, AnIndexIsDigitsAlone)
{
    for (const char* index : {"", "x", "-1", "+1", " 1", "1 ", "1x", "x1", "1.0", "0x1", "1e0"})
        EXPECT_EQ(found(instrument(), std::string("a/") + index), "-") << index;
    EXPECT_EQ(found(instrument(), "a//b"), "-");
    EXPECT_EQ(found(instrument(), std::string("a/1\0", 4)), "-");
    EXPECT_EQ(found(instrument(), "a/0001"), "1:");
    EXPECT_EQ(found(instrument(), "a/" + std::string(1000, '0') + "1"), "1:");
}

TEST(FindProperty, GoesThroughArraysOfStructuresIntoAMember)
{
    EXPECT_EQ(found(instrument(), "lasers/0/power"), "100:");
    EXPECT_EQ(found(instrument(), "lasers/1/power"), "200:");
    EXPECT_EQ(found(structures({members_of({{"x", structure({{"y", VProp(5)}})}})}), "0/x/y"), "5:");
    EXPECT_EQ(found(structures({members_of({{"", VProp(5)}})}), "0/"), "5:");
    for (const char* path : {"lasers/2/power", "lasers/x/power", "lasers/0/colour", "lasers/0/power/x", "lasers/0/",
                             "lasers//power", "lasers/-1/power"})
        EXPECT_EQ(found(instrument(), path), "-") << path;
}

TEST(FindProperty, AnArrayOfStructuresIsFoundItselfWhereOnePartIsLeft)
{
    EXPECT_EQ(found(instrument(), "lasers"), "struct:");
    EXPECT_EQ(found(instrument(), "lasers/1"), "struct:1");
    EXPECT_EQ(found(instrument(), "lasers/9"), "struct:9");
    EXPECT_EQ(found(instrument(), "lasers/x"), "struct:x");
    EXPECT_EQ(found(instrument(), "lasers/"), "struct:");
    EXPECT_EQ(found(structures({}), ""), "struct:");
}

TEST(FindProperty, AnyOtherArrayIsFoundItself)
{
    EXPECT_EQ(found(instrument(), "offsets"), "int32:");
    EXPECT_EQ(found(instrument(), "offsets/1"), "int32:1");
    EXPECT_EQ(found(instrument(), "offsets/"), "int32:");
    EXPECT_EQ(found(instrument(), "offsets/1/x"), "int32:1/x");
    EXPECT_EQ(found(instrument(), "offsets/x//y"), "int32:x//y");
    EXPECT_EQ(found(array_of<bool>({1, 1}, {true}), "0"), "logical:0");
    EXPECT_EQ(found(array_of<VPropstring>({1, 1}, {L"a"}), "/0"), "char:/0");
    EXPECT_EQ(found(array_of<std::complex<double>>({1, 1}, {{1, 2}}), "0"), "cplx_double:0");
    EXPECT_EQ(found(VProp(VProparray<float>()), "5"), "single:5");
}

TEST(FindProperty, NothingIsFoundInAnythingElse)
{
    for (const VProp& property : {VProp(), VProp(1), VProp("text"), VProp(true), VProp(_s_vela_RGB())})
        for (const char* path : {"", "0", "a", "a/b", "/"})
            EXPECT_EQ(found(property, path), "-") << path;
    EXPECT_EQ(found(instrument(), "count/0"), "-");
    EXPECT_EQ(found(instrument(), "count/"), "-");
}

TEST(FindProperty, GivesThePropertyItself)
{
    VProp tree = instrument();
    *find_property(tree, "a/2/b").first = 5;
    EXPECT_EQ(found(tree, "a/2/b"), "5:");
    EXPECT_EQ(find_property(tree, "count").first, &member_of(tree, "count"));
    EXPECT_EQ(find_property(std::as_const(tree), "count").first, &member_of(tree, "count"));
    VProp array = array_of<int>({1, 2}, {1, 2});
    EXPECT_EQ(find_property(array, "1").first, &array);
}

TEST(FindProperty, WhatItGivesIsSharedWithNoOtherTree)
{
    const VProp original = instrument();
    VProp copy(original);
    for (const char* path : {"a/2/b", "lasers/1/power", "inner/x/y"})
        *find_property(copy, path).first = -1;
    EXPECT_EQ(found(copy, "a/2/b") + found(copy, "lasers/1/power") + found(copy, "inner/x/y"), "-1:-1:-1:");
    EXPECT_EQ(found(original, "a/2/b") + found(original, "lasers/1/power") + found(original, "inner/x/y"), "22:200:6:");
}

TEST(FindProperty, TheConstantFormDetachesAsTheOther)
{
    const VProp original = instrument();
    const VProp copy(original);
    ASSERT_EQ(address_of(copy), address_of(original));
    const VProp* const count = find_property(copy, "count").first;
    EXPECT_NE(address_of(copy), address_of(original));
    EXPECT_EQ(count, &member_of(copy, "count"));
    EXPECT_TRUE(copy == original);
}

}
