// Trees of any depth are copied, compared, moved, assigned and destroyed without running out of stack.
#include "json/deep_values.h"

#include <Json/Value.h>

#include <gtest/gtest.h>

#include <utility>

namespace {

using Json::Value;
using json_test::deep_value;
using json_test::depth_of;
using json_test::level_around;
using json_test::Levels;
using json_test::value_at_depth;

const char* name_of(Levels levels)
{
    return levels == Levels::lists ? "Lists" : levels == Levels::objects ? "Objects" : "Mixed";
}

class ValueDepth : public testing::TestWithParam<Levels>
{
protected:
    static constexpr std::size_t depth = 100000;

    static Value tree(Value leaf = Value("leaf")) { return deep_value(depth, GetParam(), std::move(leaf)); }
};

INSTANTIATE_TEST_SUITE_P(Of, ValueDepth, testing::Values(Levels::lists, Levels::objects, Levels::mixed),
                         [](const testing::TestParamInfo<Levels>& levels) { return name_of(levels.param); });

TEST_P(ValueDepth, IsCopiedWhole)
{
    Value original = tree();
    Value copy(original);
    EXPECT_EQ(depth_of(copy), depth);
    Value& leaf = value_at_depth(copy, depth);
    EXPECT_EQ(*leaf.if_string(), "leaf");
    leaf = Value(1);
    EXPECT_EQ(*value_at_depth(original, depth).if_string(), "leaf");
}

TEST_P(ValueDepth, IsComparedDownToTheLeaf)
{
    const Value one = tree();
    const Value same = tree();
    EXPECT_TRUE(one == same);
    EXPECT_FALSE(one != same);
    const Value other = tree(Value("other"));
    EXPECT_FALSE(one == other);
    EXPECT_TRUE(one != other);
}

TEST_P(ValueDepth, IsUnequalToATreeOfAnotherDepth)
{
    const Value one = tree();
    const Value deeper = tree(level_around(Value("leaf"), GetParam(), 1));
    EXPECT_FALSE(one == deeper);
    EXPECT_FALSE(deeper == one);
}

TEST_P(ValueDepth, IsMoved)
{
    Value original = tree();
    const Value* const leaf = &value_at_depth(original, depth);
    Value moved(std::move(original));
    EXPECT_TRUE(original.is_null()); // NOLINT(bugprone-use-after-move)
    Value assigned(Value::List{Value(1)});
    assigned = std::move(moved);
    EXPECT_EQ(&value_at_depth(assigned, depth), leaf);
}

TEST_P(ValueDepth, IsAssignedOverAnotherOne)
{
    const Value original = tree();
    Value lists = deep_value(depth, Levels::lists);
    lists = original;
    EXPECT_TRUE(lists == original);
    Value objects = deep_value(depth, Levels::objects);
    objects = original;
    EXPECT_EQ(depth_of(objects), depth);
}

TEST_P(ValueDepth, GivesWayToAScalar)
{
    Value value = tree();
    value = Value(1);
    EXPECT_TRUE(value == Value(1));
    Value moved_over = tree();
    moved_over = Value();
    EXPECT_TRUE(moved_over.is_null());
}

TEST_P(ValueDepth, TakesItsChildForItself)
{
    Value value = tree();
    value = value_at_depth(value, 1);
    EXPECT_EQ(depth_of(value), depth - 1);
    value = std::move(value_at_depth(value, 1));
    EXPECT_EQ(depth_of(value), depth - 2);
    value = value_at_depth(value, depth);
    EXPECT_TRUE(value == Value("leaf"));
}

TEST_P(ValueDepth, TakesItselfIntoItsLeaf)
{
    Value value = tree();
    value_at_depth(value, depth) = value;
    EXPECT_EQ(depth_of(value), 2 * depth);
}

TEST_P(ValueDepth, IsWrappedIntoAList)
{
    Value value(Value::Object{{"k", tree()}});
    EXPECT_EQ(value.as_list().size(), 1u);
    EXPECT_EQ(depth_of(value), depth + 2);
}

TEST_P(ValueDepth, LosesItsInnerHalfWhenAListOrMapIsCleared)
{
    Value value = tree();
    Value& half = value_at_depth(value, depth / 2);
    if (Value::List* const list = half.if_list())
        list->clear();
    else
        half.if_object()->clear();
    EXPECT_EQ(depth_of(value), depth / 2);
}

TEST_P(ValueDepth, OfAMillionIsNoMatterEither)
{
    const std::size_t million = 1000000;
    Value original = deep_value(million, GetParam());
    Value copy(original);
    EXPECT_TRUE(copy == original);
    EXPECT_EQ(depth_of(copy), million);
    value_at_depth(copy, million) = Value("other leaf");
    EXPECT_FALSE(copy == original);
    original = std::move(copy);
    original = value_at_depth(original, million - 10);
    EXPECT_EQ(depth_of(original), 10u);
    EXPECT_TRUE(value_at_depth(original, 10) == Value("other leaf"));
}

TEST(ValueDepthOfManyBranches, IsCopiedComparedAndDestroyed)
{
    Value comb; // a deep list at every tenth level of a deep object
    for (std::size_t level = 0; level < 2000; ++level)
    {
        Value::Object object;
        object["m"] = std::move(comb);
        if (level % 10 == 0)
            object["a"] = deep_value(1000, Levels::mixed, Value(static_cast<std::int64_t>(level)));
        object["z"] = Value(Value::List{Value(1), Value(Value::List{})});
        comb = Value(std::move(object));
    }
    Value copy(comb);
    EXPECT_TRUE(copy == comb);
    Value* at = &copy;
    for (std::size_t level = 2000 - 1; level > 10; --level)
        at = &at->at("m");
    value_at_depth(at->at("a"), 1000) = Value(-1);
    EXPECT_FALSE(copy == comb);
}

// Siblings with containers in them stand before the deep child, so they are looked at first.
TEST(ValueDepthBehindSiblings, IsCopiedComparedAndDestroyed)
{
    Value tree("leaf");
    for (std::size_t level = 0; level < 100000; ++level)
    {
        Value sibling(Value::List{Value(Value::List{Value(1)})});
        if (level % 3 == 0)
        {
            Value::Object object;
            object["a"] = std::move(sibling);
            object["b"] = std::move(tree);
            tree = Value(std::move(object));
        }
        else
        {
            Value::List list;
            list.push_back(std::move(sibling));
            list.push_back(std::move(tree));
            tree = Value(std::move(list));
        }
    }
    Value copy(tree);
    EXPECT_TRUE(copy == tree);
    EXPECT_EQ(depth_of(copy), 100000u);
    copy = Value();
    EXPECT_EQ(depth_of(tree), 100000u);
}

}
