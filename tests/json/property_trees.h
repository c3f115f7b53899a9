/// Property trees in few words, and how the bridge between them and values fails.
#pragma once

#include <Json/Value.h>
#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// `statement` throws a `std::invalid_argument`, of whatever type derived from it, with this text.
#define EXPECT_INVALID_ARGUMENT(statement, expected_text)                                                              \
    try                                                                                                                \
    {                                                                                                                  \
        statement;                                                                                                     \
        ADD_FAILURE() << #statement " threw nothing, expected: " << (expected_text);                                   \
    }                                                                                                                  \
    catch (const std::invalid_argument& error)                                                                         \
    {                                                                                                                  \
        EXPECT_EQ(std::string(error.what()), std::string(expected_text));                                              \
    }                                                                                                                  \
    catch (const std::exception& error)                                                                                \
    {                                                                                                                  \
        ADD_FAILURE() << #statement " threw no std::invalid_argument but: " << error.what();                           \
    }

namespace json_test {

using Sizes = std::vector<std::size_t>;

inline Json::Value list(std::initializer_list<Json::Value> elements)
{
    return Json::Value(Json::Value::List(elements));
}

inline Json::Value object(std::initializer_list<std::pair<const std::string, Json::Value>> entries)
{
    return Json::Value(Json::Value::Object(entries));
}

inline VPropstruct members_of(std::initializer_list<std::pair<std::string, VProp>> members)
{
    VPropstruct made;
    vela_prop_reserve(made, members.size());
    for (const auto& member : members)
        made.push_back(member);
    return made;
}

inline VProp structure(std::initializer_list<std::pair<std::string, VProp>> members)
{
    return VProp(members_of(members));
}

template <class T>
VProp array_of(const Sizes& sizes, const std::vector<T>& elements)
{
    VProparray<T> array;
    array.resize(elements.size(), true);
    for (std::size_t i = 0; i < elements.size(); ++i)
        array[i] = elements[i];
    array.set_size(sizes, VProparrayBase::set_only);
    return VProp(array);
}

/// A row of properties.
inline VProp cells(const std::vector<VProp>& elements)
{
    return array_of<VProp>({1, elements.size()}, elements);
}

/// A row of structures.
inline VProp structures(const std::vector<VPropstruct>& elements)
{
    return array_of<VPropstruct>({1, elements.size()}, elements);
}

/// Where the value lies: different for two properties that share no container.
inline const void* address_of(const VProp& property)
{
    return property.value_ptr();
}

inline const VProp& member_of(const VProp& property, const std::string& key)
{
    return property.get<VPropstruct>().find(key)->second;
}

}
