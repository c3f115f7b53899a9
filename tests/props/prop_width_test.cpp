// Trees that are wide, or deep behind siblings.
#include "props/deep_trees.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using prop_test::deepen;
using prop_test::depth_of;
using prop_test::Levels;
using prop_test::value_at_depth;

VProp numbers(std::size_t count)
{
    VProp made;
    auto& cells = made.ensure_array<VProp>(count);
    for (std::size_t i = 0; i < count; ++i)
        cells[i] = static_cast<std::uint64_t>(i);
    return made;
}

TEST(PropWidth, OfAMillionCellsIsCopiedComparedAndDetached)
{
    const std::size_t count = 1000000;
    VProp tree = numbers(count);
    VProp copy(tree);
    EXPECT_TRUE(copy == tree);
    copy(count - 1) = 1;
    EXPECT_FALSE(copy == tree);
    EXPECT_EQ(static_cast<const VProp&>(tree)(count - 1).get<std::uint64_t>(), count - 1);
    EXPECT_EQ(copy.getp("{999998}").get<std::uint64_t>(), count - 2);
}

TEST(PropWidth, OfManyMembersIsCopiedComparedAndDetached)
{
    VProp tree;
    auto& members = tree.ensure<VPropstruct>();
    const int count = 100000;
    vela_prop_reserve(members, count);
    for (int i = 0; i < count; ++i)
        members.emplace_back("m" + std::to_string(i), VProp(i));
    VProp copy(tree);
    copy["m99999"] = -1;
    EXPECT_FALSE(copy == tree);
    EXPECT_EQ(tree.getp("m99999").get<int>(), count - 1);
    copy["m99999"] = count - 1;
    EXPECT_TRUE(copy == tree);
}

TEST(PropWidth, OfDeepBranchesIsDestroyedAndCloned)
{
    VProp comb(1); // a deep branch beside each level of a deep tree
    for (std::size_t level = 0; level < 1000; ++level)
    {
        VProp branch(static_cast<std::uint64_t>(level));
        deepen(branch, 100, Levels::mixed, true);
        VProp next;
        auto& members = next.ensure<VPropstruct>();
        vela_prop_reserve(members, 3);
        members.emplace_back("branch", VProp());
        members.back().second.swap_value(branch);
        members.emplace_back("k", VProp());
        members.back().second.swap_value(comb);
        members.emplace_back("last", VProp(2));
        EXPECT_TRUE(next.lock());
        comb.swap_value(next);
    }
    VProp copy(comb);
    EXPECT_TRUE(copy == comb);
    VProp& branch = value_at_depth(copy, 999).get<VPropstruct>().find("branch")->second;
    EXPECT_EQ(depth_of(branch), 100u);
    value_at_depth(branch, 100) = 5;
    EXPECT_FALSE(copy == comb);
}

// Siblings with containers in them stand before the deep child, so they are looked at first.
TEST(PropWidth, BeforeEveryDeepChildIsNoMatter)
{
    VProp tree(1);
    for (std::size_t level = 0; level < 50000; ++level)
    {
        VProp next;
        auto& members = next.ensure<VPropstruct>();
        vela_prop_reserve(members, 3);
        members.emplace_back("a", numbers(2));
        members.emplace_back("b", VProp(VPropstruct()));
        members.emplace_back("k", VProp());
        members.back().second.swap_value(tree);
        EXPECT_TRUE(next.lock());
        tree.swap_value(next);
    }
    VProp copy(tree);
    EXPECT_TRUE(copy == tree);
    EXPECT_EQ(depth_of(copy), 50000u);
    value_at_depth(copy, 50000) = 2;
    EXPECT_FALSE(copy == tree);
    copy = 1;
    EXPECT_EQ(depth_of(tree), 50000u);
}

TEST(PropWidth, OfStructArraysWithDeepStructsIsDestroyedAndCloned)
{
    VProp tree;
    auto& structs = tree.ensure_array<VPropstruct>(100);
    for (VPropstruct& element : structs)
    {
        VProp branch(1);
        deepen(branch, 1000, Levels::struct_arrays, true);
        element.emplace_back("k", VProp());
        element.back().second.swap_value(branch);
    }
    EXPECT_TRUE(tree.lock());
    VProp copy(tree);
    EXPECT_TRUE(copy == tree);
    structs.resize(3, false);
    EXPECT_FALSE(copy == tree);
    structs.resize(3, true);
    EXPECT_EQ(depth_of(copy), 1001u);
}

}
