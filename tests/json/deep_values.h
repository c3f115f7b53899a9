/// Trees that are far deeper than any stack, made and checked without recursion.
#pragma once

#include <Json/Value.h>

#include <cstddef>
#include <string>
#include <utility>

namespace json_test {

/// What each level is.
enum class Levels
{
    lists,
    objects,
    mixed ///< lists and objects by turns, with siblings before and behind
};

inline Json::Value level_around(Json::Value inner, Levels levels, std::size_t index)
{
    using Json::Value;
    if (levels == Levels::lists || (levels == Levels::mixed && index % 2 == 0))
    {
        Value::List list;
        if (levels == Levels::mixed)
            list.emplace_back(1);
        list.push_back(std::move(inner));
        return Value(std::move(list));
    }
    Value::Object object;
    if (levels == Levels::mixed)
        object["a"] = Value("sibling");
    object["k"] = std::move(inner);
    return Value(std::move(object));
}

/// `depth` levels around `leaf`.
inline Json::Value deep_value(std::size_t depth, Levels levels, Json::Value leaf = Json::Value("leaf"))
{
    for (std::size_t index = 0; index < depth; ++index)
        leaf = level_around(std::move(leaf), levels, index);
    return leaf;
}

/// The value one level down, the last element or the last entry; null where there is none.
inline Json::Value* inner_value(Json::Value& value)
{
    if (Json::Value::List* const list = value.if_list())
        return list->empty() ? nullptr : &list->back();
    if (Json::Value::Object* const object = value.if_object())
        return object->empty() ? nullptr : &object->rbegin()->second;
    return nullptr;
}

/// The value `levels` levels down, or the leaf.
inline Json::Value& value_at_depth(Json::Value& value, std::size_t levels)
{
    Json::Value* at = &value;
    for (; levels > 0; --levels)
    {
        Json::Value* const inner = inner_value(*at);
        if (inner == nullptr)
            break;
        at = inner;
    }
    return *at;
}

/// How many levels stand around the leaf.
inline std::size_t depth_of(Json::Value& value)
{
    std::size_t depth = 0;
    for (Json::Value* at = inner_value(value); at != nullptr; at = inner_value(*at))
        ++depth;
    return depth;
}

}
