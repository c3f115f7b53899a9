// Walks detach every container that they enter.
#include "support/expect_vela_error.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

namespace {

const VProp& member(const VProp& value, const char* key)
{
    return value.get<VPropstruct>().find(key)->second;
}

class PathSharing : public testing::Test
{
protected:
    PathSharing()
    {
        tree["a.b.c"] = 1;
        tree["a.d"] = 2;
        tree["e{1}"] = 3;
        tree["f(1).g"] = 4;
        copy = tree;
    }

    VProp tree;
    VProp copy;
};

TEST_F(PathSharing, StartsWithOneContainerForBoth)
{
    const VProp& constant = tree;
    EXPECT_EQ(constant.value_ptr(), static_cast<const VProp&>(copy).value_ptr());
    EXPECT_FALSE(tree.lock());
}

TEST_F(PathSharing, EndsWithAReadingWalkThroughAConstantValue)
{
    const VProp& constant = tree;
    EXPECT_EQ(constant.getp("a.b.c").get<int>(), 1);
    EXPECT_NE(constant.value_ptr(), static_cast<const VProp&>(copy).value_ptr());
    EXPECT_NE(member(tree, "a").value_ptr(), member(copy, "a").value_ptr());
    EXPECT_NE(member(member(tree, "a"), "b").value_ptr(), member(member(copy, "a"), "b").value_ptr());
    EXPECT_TRUE(tree.lock());
    EXPECT_TRUE(copy.lock());
}

TEST_F(PathSharing, EndsOnlyOnTheWay)
{
    tree.getp("a.b", false);
    const VProp& in_tree = member(tree, "a");
    const VProp& in_copy = member(copy, "a");
    EXPECT_NE(in_tree.value_ptr(), in_copy.value_ptr());
    EXPECT_EQ(member(in_tree, "b").value_ptr(), member(in_copy, "b").value_ptr()) << "the last value is not entered";
    EXPECT_EQ(member(in_tree, "d").value_ptr(), member(in_copy, "d").value_ptr());
    EXPECT_EQ(member(tree, "e").value_ptr(), member(copy, "e").value_ptr());
}

TEST_F(PathSharing, StaysForAnEmptyPath)
{
    tree.getp("", false);
    tree[""];
    EXPECT_FALSE(tree.lock());
}

TEST_F(PathSharing, EndsInCellArraysAndStructArrays)
{
    const VProp& constant = tree;
    EXPECT_EQ(constant.getp("e{1}").get<int>(), 3);
    EXPECT_NE(member(tree, "e").value_ptr(), member(copy, "e").value_ptr());
    EXPECT_EQ(member(tree, "e")(1).value_ptr(), member(copy, "e")(1).value_ptr());
    EXPECT_EQ(constant.getp("f(1).g").get<int>(), 4);
    EXPECT_NE(member(tree, "f").value_ptr(), member(copy, "f").value_ptr());
}

TEST_F(PathSharing, EndsAlsoWhereTheWalkFailsLater)
{
    EXPECT_VELA_ERROR(tree.getp("a.missing", false), -1, "Struct member 'missing' does not exist!");
    EXPECT_TRUE(tree.lock());
    EXPECT_TRUE(tree == copy);
}

TEST_F(PathSharing, KeepsWhatIsWrittenAwayFromTheCopy)
{
    tree["a.b.c"] = 10;
    tree["a.new"] = 11;
    tree["e{5}"] = 12;
    tree["f(0).g"] = 13;
    EXPECT_EQ(copy.getp("a.b.c").get<int>(), 1);
    EXPECT_FALSE(copy.getp("a").get<VPropstruct>().has_key("new"));
    EXPECT_EQ(copy.getp("e").get_arr(true)->count(), 2u);
    EXPECT_FALSE(copy.getp("f").s(0).has_key("g"));
    EXPECT_FALSE(tree == copy);
}

TEST_F(PathSharing, OfAStructEndsBelowIt)
{
    const VPropstruct original = tree.get<VPropstruct>();
    const VPropstruct copied(original);
    EXPECT_EQ(original["a.b.c"].get<int>(), 1);
    EXPECT_NE(original.at(0).second.value_ptr(), copied.at(0).second.value_ptr());
    EXPECT_EQ(original.at(1).second.value_ptr(), copied.at(1).second.value_ptr());
}

TEST_F(PathSharing, NeverLeadsIntoALockedContainerOfAnother)
{
    copy.clear();
    EXPECT_TRUE(tree.getp("a", false).lock());
    int* const address = &tree["a.b.c"].get<int>();
    VProp later(tree);
    later["a.b.c"] = 5;
    EXPECT_EQ(tree["a.b.c"].get<int>(), 1);
    EXPECT_EQ(later["a.b.c"].get<int>(), 5);
    *address = 9;
    EXPECT_EQ(later["a.b.c"].get<int>(), 5);
}

}
