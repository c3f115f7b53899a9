// Trees of any depth are copied, compared, detached and destroyed without running out of stack.
#include "props/deep_trees.h"
#include "support/little_stack.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <utility>

namespace {

using prop_test::deepen;
using prop_test::depth_of;
using prop_test::Levels;
using prop_test::value_at_depth;

class PropDepth : public testing::TestWithParam<Levels>
{
protected:
    static constexpr std::size_t depth = vela_test::depth_beyond_stack;

    /// A tree for each test, around this leaf.
    static void grow(VProp& leaf, bool lock = false) { deepen(leaf, depth, GetParam(), lock); }
};

INSTANTIATE_TEST_SUITE_P(Of, PropDepth,
                         testing::Values(Levels::structs, Levels::cells, Levels::struct_arrays, Levels::mixed),
                         [](const testing::TestParamInfo<Levels>& levels) { return prop_test::name_of(levels.param); });

TEST_P(PropDepth, IsDestroyed)
{
    VProp tree(L"leaf");
    grow(tree);
    EXPECT_EQ(depth_of(tree), depth);
    tree.clear();
    EXPECT_TRUE(tree.empty());
}

TEST_P(PropDepth, IsDestroyedWhenItIsLocked)
{
    VProp tree(L"leaf");
    grow(tree, true);
    EXPECT_EQ(depth_of(tree), depth);
    tree = VProp();
    EXPECT_TRUE(tree.empty());
}

TEST_P(PropDepth, IsDestroyedByItsLastOwner)
{
    VProp tree(1);
    grow(tree);
    auto copy = std::make_unique<VProp>(tree);
    tree.clear();
    EXPECT_EQ(depth_of(*copy), depth);
    const VProp half(value_at_depth(*copy, depth / 2));
    copy.reset();
    VProp rest(half);
    EXPECT_EQ(depth_of(rest), depth - depth / 2);
}

TEST_P(PropDepth, IsSharedByACopy)
{
    VProp tree(L"leaf");
    grow(tree);
    VProp copy(tree);
    EXPECT_EQ(copy.value_ptr(), tree.value_ptr());
    EXPECT_EQ(depth_of(copy), depth);
}

TEST_P(PropDepth, IsClonedWholeWhenEveryContainerIsLocked)
{
    VProp tree(1);
    grow(tree, true);
    VProp copy(tree);
    EXPECT_EQ(depth_of(copy), depth);
    EXPECT_EQ(depth_of(tree), depth);
    VProp& leaf = value_at_depth(copy, depth);
    VProp& original = value_at_depth(tree, depth);
    EXPECT_NE(leaf.value_ptr(), original.value_ptr());
    leaf = 2;
    EXPECT_EQ(original.get<int>(), 1);
    EXPECT_FALSE(copy == tree);
    leaf = 1;
    EXPECT_TRUE(copy == tree);
}

TEST_P(PropDepth, IsClonedWithAnUnlockedCopyAtTheEnd)
{
    VProp tree(1);
    grow(tree, true);
    VProp copy(tree);
    VProp another(copy);
    EXPECT_EQ(another.value_ptr(), copy.value_ptr()) << "a clone starts unlocked";
    EXPECT_EQ(value_at_depth(another, 777).value_ptr(), value_at_depth(copy, 777).value_ptr());
}

TEST_P(PropDepth, IsDetachedOneLevelWhenItIsOwned)
{
    VProp tree(1);
    grow(tree);
    VProp copy(tree);
    copy.own();
    EXPECT_NE(copy.value_ptr(), tree.value_ptr());
    EXPECT_EQ(value_at_depth(copy, 1).value_ptr(), value_at_depth(tree, 1).value_ptr());
    EXPECT_EQ(depth_of(copy), depth);
}

TEST_P(PropDepth, IsClonedWholeWhenTheOwnedOneHasLockedMembers)
{
    VProp tree(1);
    grow(tree, true);
    prop_test::wrap(tree, Levels::structs, false); // not locked itself, so it can be shared
    VProp copy(tree);
    EXPECT_EQ(copy.value_ptr(), tree.value_ptr());
    copy.own();
    EXPECT_NE(value_at_depth(copy, depth).value_ptr(), value_at_depth(tree, depth).value_ptr());
    EXPECT_EQ(depth_of(copy), depth + 1);
    EXPECT_TRUE(copy == tree);
}

TEST_P(PropDepth, IsComparedDownToTheLeaf)
{
    VProp one(1);
    grow(one);
    VProp same(1);
    grow(same);
    EXPECT_TRUE(one == same);
    EXPECT_FALSE(one != same);
    VProp other(2);
    grow(other);
    EXPECT_FALSE(one == other);
    EXPECT_TRUE(one != other);
}

TEST_P(PropDepth, IsComparedDownToTheLeafAlsoWithItsCopy)
{
    VProp tree(std::nan(""));
    grow(tree);
    const VProp copy(tree);
    EXPECT_FALSE(tree == copy);
    value_at_depth(tree, depth) = 1.5;
    EXPECT_TRUE(tree == copy) << "the two share every level";
}

TEST_P(PropDepth, IsUnequalToATreeOfAnotherDepth)
{
    VProp one(1);
    grow(one);
    VProp deeper(1);
    deepen(deeper, depth + 3, GetParam());
    EXPECT_FALSE(one == deeper);
    EXPECT_FALSE(deeper == one);
}

TEST_P(PropDepth, IsCopiedAsAHeldValue)
{
    const std::size_t half = depth / 2; // it is cloned four times
    VProp tree(1);
    deepen(tree, half - 1, GetParam(), true);
    VPropstruct members;
    members.emplace_back("k", VProp());
    members.begin()->second.swap_value(tree);
    const VPropstruct copy(members);
    EXPECT_EQ(copy.size(), 1u);
    VProp value(members);
    EXPECT_EQ(depth_of(value), half);
    value = copy;
    EXPECT_EQ(depth_of(value), half);
    VPropstruct assigned;
    assigned = members;
    EXPECT_EQ(depth_of(assigned.begin()->second), half - 1);
}

TEST_P(PropDepth, IsReplacedByAPartOfItself)
{
    VProp tree(1);
    grow(tree);
    tree = value_at_depth(tree, 1);
    EXPECT_EQ(depth_of(tree), depth - 1);
    tree = value_at_depth(tree, depth - 5);
    EXPECT_EQ(depth_of(tree), 4u);
    tree = value_at_depth(tree, 4);
    EXPECT_EQ(tree.get<int>(), 1);
}

TEST_P(PropDepth, IsErasedClearedAndReset)
{
    VProp tree(1);
    grow(tree);
    VProp holder;
    holder["a"].swap_value(tree);
    EXPECT_TRUE(holder.get<VPropstruct>().erase("a"));
    VProp second(1);
    grow(second);
    VProp cells;
    cells(0).swap_value(second);
    cells.get<VProparray<VProp>>().resize(1, true);
    EXPECT_TRUE(cells(0).empty());
    VProp third(1);
    grow(third);
    third = 5;
    EXPECT_EQ(third.get<int>(), 5);
}

TEST_P(PropDepth, LosesItsInnerHalf)
{
    VProp tree(1);
    grow(tree);
    value_at_depth(tree, depth / 2).clear();
    EXPECT_EQ(depth_of(tree), depth / 2);
}

TEST_P(PropDepth, OfThreeTimesAsManyLevelsIsNoMatterEither)
{
    const std::size_t more = 3 * depth;
    VProp tree(1);
    deepen(tree, more, GetParam(), true);
    VProp copy(tree);
    EXPECT_TRUE(copy == tree);
    EXPECT_EQ(depth_of(copy), more);
    value_at_depth(copy, more) = 2;
    EXPECT_FALSE(copy == tree);
}

}
