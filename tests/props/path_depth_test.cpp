// Paths of a hundred thousand segments.
#include "props/deep_trees.h"
#include "support/expect_vela_error.h"
#include "support/little_stack.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using prop_test::deepen;
using prop_test::depth_of;
using prop_test::Levels;
using prop_test::path_of;
using prop_test::value_at_depth;

class PathDepth : public testing::TestWithParam<Levels>
{
protected:
    static constexpr std::size_t depth = vela_test::depth_beyond_stack;

    PathDepth() : path(path_of(depth, GetParam())) {}

    const std::string path;
};

INSTANTIATE_TEST_SUITE_P(Of, PathDepth,
                         testing::Values(Levels::structs, Levels::cells, Levels::struct_arrays, Levels::mixed),
                         [](const testing::TestParamInfo<Levels>& levels) { return prop_test::name_of(levels.param); });

TEST_P(PathDepth, CreatesEveryLevel)
{
    VProp tree;
    tree[path] = 5;
    EXPECT_EQ(depth_of(tree), depth);
    EXPECT_EQ(value_at_depth(tree, depth).get<int>(), 5);
}

TEST_P(PathDepth, FindsTheLeafWithoutCreating)
{
    VProp tree(5);
    deepen(tree, depth, GetParam());
    const VProp& constant = tree;
    EXPECT_EQ(&constant.getp(path), &value_at_depth(tree, depth));
    EXPECT_EQ(constant.getp(path).get<int>(), 5);
}

TEST_P(PathDepth, DetachesEveryLevel)
{
    VProp tree(5);
    deepen(tree, depth, GetParam());
    VProp copy(tree);
    copy[path] = 6;
    EXPECT_EQ(tree.getp(path).get<int>(), 5);
    EXPECT_NE(value_at_depth(copy, depth - 1).value_ptr(), value_at_depth(tree, depth - 1).value_ptr());
    EXPECT_FALSE(copy == tree);
}

TEST_P(PathDepth, FailsAtTheEndWithWhatIsLeft)
{
    VProp tree(5);
    deepen(tree, depth, GetParam());
    EXPECT_VELA_ERROR(tree.getp(path + ".x.y", false), -1, "Type mismatch: found int32, expected struct");
    EXPECT_VELA_ERROR(tree[path + "{1}.x"], -1, "Path ...'{1}.x' references cell content from a non-cell array!");
    EXPECT_VELA_ERROR(tree[path + "."
                                  ".x"],
                      -1, "Error parsing prop path: '.x' starts with an empty segment!");
    VProp creating;
    EXPECT_VELA_ERROR(creating[path + "{-1}"], -1, "Invalid index '-1' specified in segment '{-1}'!");
    EXPECT_EQ(depth_of(creating), depth);
}

TEST_P(PathDepth, IsAValidPath)
{
    EXPECT_TRUE(vela_prop_is_valid_path(path));
    EXPECT_FALSE(vela_prop_is_valid_path(path + "(1)"));
}

TEST_P(PathDepth, WorksBelowAStruct)
{
    VPropstruct tree;
    const std::string below = "k" + (path.front() == 'k' ? "." + path : path);
    tree[below] = 5;
    const VPropstruct& constant = tree;
    EXPECT_EQ(constant[below].get<int>(), 5);
    EXPECT_EQ(constant.getp(below).get<int>(), 5);
}

TEST(PathLength, OfOneSegmentMayBeLarge)
{
    VProp tree;
    const std::string name(1000000, 'a');
    tree[name] = 1;
    EXPECT_EQ(tree.getp(name).get<int>(), 1);
    const std::string digits(100000, '0');
    tree["c{" + digits + "3}"] = 2;
    EXPECT_EQ(tree.getp("c{3}").get<int>(), 2);
}

TEST(PathLength, OfManyIndicesIsNoMatter)
{
    std::string zeros = "0";
    for (int i = 1; i < 100000; ++i)
        zeros += ",0";
    VProp tree;
    tree["{" + zeros + "}"] = 1;
    EXPECT_EQ(tree.get_arr(true)->get_rank(), 100000u);
    EXPECT_EQ(tree.getp("{" + zeros + "}").get<int>(), 1);
}

}
