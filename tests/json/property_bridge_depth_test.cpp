// Trees of many levels go through the bridge without running out of stack, and in a time that grows with their size.
#include "support/little_stack.h"
#include "json/deep_values.h"
#include "json/property_trees.h"

#include <Json/property_bridge.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using Json::find_property;
using Json::get_value;
using Json::set_value;
using Json::Value;
using json_test::deep_value;
using json_test::depth_of;
using json_test::value_at_depth;

constexpr std::size_t depth = vela_test::depth_beyond_stack;

/// What each level is.
enum class Levels
{
    structures,
    cells,
    arrays_of_structures, ///< and a member in each
    mixed                 ///< with siblings before and behind
};

VProp level_around(const VProp& inner, Levels levels, std::size_t index)
{
    const bool is_mixed = levels == Levels::mixed;
    const Levels level = is_mixed ? static_cast<Levels>(index % 3) : levels;
    const VProp sibling = json_test::cells({VProp(1)});
    if (level == Levels::cells)
        return json_test::cells(is_mixed ? std::vector<VProp>{sibling, inner} : std::vector<VProp>{inner});
    const VPropstruct members = is_mixed ? json_test::members_of({{"a", sibling}, {"k", inner}, {"b", VProp(2)}})
                                         : json_test::members_of({{"k", inner}});
    return level == Levels::structures ? VProp(members) : json_test::structures({members});
}

VProp deep_property(Levels levels, VProp inner = VProp(1))
{
    for (std::size_t index = 0; index < depth; ++index)
        inner = level_around(inner, levels, index);
    return inner;
}

/// The value that a level around `inner` has.
Value value_around(Value inner, Levels levels, std::size_t index)
{
    const bool is_mixed = levels == Levels::mixed;
    const Levels level = is_mixed ? static_cast<Levels>(index % 3) : levels;
    Value::List list;
    if (level == Levels::cells)
    {
        if (is_mixed)
            list.push_back(json_test::list({1}));
        list.push_back(std::move(inner));
        return Value(std::move(list));
    }
    Value::Object object;
    object["k"] = std::move(inner);
    if (is_mixed)
    {
        object["a"] = json_test::list({1});
        object["b"] = Value(2);
    }
    if (level == Levels::structures)
        return Value(std::move(object));
    list.emplace_back(std::move(object));
    return Value(std::move(list));
}

Value deep_value_of(Levels levels, Value inner = Value(1))
{
    for (std::size_t index = 0; index < depth; ++index)
        inner = value_around(std::move(inner), levels, index);
    return inner;
}

std::size_t structures_in(Levels levels)
{
    std::size_t count = 0;
    for (std::size_t index = 0; index < depth; ++index)
        count += (levels == Levels::mixed ? static_cast<Levels>(index % 3) : levels) != Levels::cells;
    return count;
}

std::string path_to_leaf(Levels levels)
{
    std::string path;
    for (std::size_t index = depth; index-- > 0;)
        switch (levels == Levels::mixed ? static_cast<Levels>(index % 3) : levels)
        {
        case Levels::structures:
            path += "k/";
            break;
        case Levels::cells:
            path += levels == Levels::mixed ? "1/" : "0/";
            break;
        default:
            path += "0/k/";
        }
    path.pop_back();
    return path;
}

/// The text of what `statement` throws.
template <class Statement>
std::string text_of_failure(const Statement& statement)
{
    try
    {
        statement();
    }
    catch (const std::invalid_argument& error)
    {
        return error.what();
    }
    return "no failure";
}

class PropertyBridgeDepth : public testing::TestWithParam<Levels>
{
};

std::string name_of(const testing::TestParamInfo<Levels>& info)
{
    const char* const names[] = {"Structures", "Cells", "ArraysOfStructures", "Mixed"};
    return names[static_cast<std::size_t>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(Of, PropertyBridgeDepth,
                         testing::Values(Levels::structures, Levels::cells, Levels::arrays_of_structures,
                                         Levels::mixed),
                         name_of);

TEST_P(PropertyBridgeDepth, IsRead)
{
    const VProp property = deep_property(GetParam());
    EXPECT_TRUE(get_value(property) == deep_value_of(GetParam()));
}

TEST_P(PropertyBridgeDepth, IsWrittenAndItsCopyIsNot)
{
    const VProp original = deep_property(GetParam());
    VProp copy(original);
    EXPECT_FALSE(set_value(deep_value_of(GetParam(), Value(5)), copy));
    EXPECT_TRUE(copy == deep_property(GetParam(), VProp(5)));
    EXPECT_TRUE(original == deep_property(GetParam()));
}

TEST_P(PropertyBridgeDepth, FailsAtTheLeafWithAllThatIsAround)
{
    VProp property = deep_property(GetParam());
    std::string expected;
    for (std::size_t count = structures_in(GetParam()); count > 0; --count)
        expected += "Invalid argument for property 'k'\n";
    expected += "Property has 32 bit signed integer type";
    const Value value = deep_value_of(GetParam(), Value(3.5));
    EXPECT_TRUE(text_of_failure([&] { set_value(value, property); }) == expected);
    const VProp unreadable = deep_property(GetParam(), VProp());
    EXPECT_EQ(text_of_failure([&] { get_value(unreadable); }), "Property has unsupported type");
}

TEST_P(PropertyBridgeDepth, IsFoundAtTheLeaf)
{
    VProp property = deep_property(GetParam());
    const VProp copy(property);
    const auto [leaf, rest] = find_property(property, path_to_leaf(GetParam()));
    ASSERT_NE(leaf, nullptr);
    EXPECT_EQ(rest, "");
    *leaf = 5;
    EXPECT_TRUE(property == deep_property(GetParam(), VProp(5)));
    EXPECT_EQ(find_property(copy, path_to_leaf(GetParam())).first->get<int>(), 1);
    EXPECT_EQ(find_property(copy, path_to_leaf(GetParam()) + "/x").first, nullptr);
}

TEST(MergeDepth, GoesDownToTheLeaf)
{
    const Value from = deep_value(depth, json_test::Levels::objects, json_test::object({{"a", 1}, {"b", 2}}));
    Value into = deep_value(depth, json_test::Levels::objects, json_test::object({{"b", 5}, {"c", 3}}));
    Json::merge(*from.if_object(), into.as_object());
    EXPECT_TRUE(value_at_depth(into, depth) == json_test::object({{"a", 1}, {"b", 5}, {"c", 3}}));
    Value empty = json_test::object({});
    Json::merge(*from.if_object(), empty.as_object());
    EXPECT_TRUE(empty == from);
}

}
