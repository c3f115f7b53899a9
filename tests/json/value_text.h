/// Shows a value with its kinds, for the comparisons of the tests. Shares nothing with the library's own writers.
#pragma once

#include <Json/Value.h>

#include <cstdio>
#include <string>

namespace json_test {

/// A decimal in a form that tells any two of them apart, zeros of both signs included.
inline std::string decimal_text(double decimal)
{
    char text[64];
    std::snprintf(text, sizeof text, "d:%a", decimal);
    return text;
}

inline std::string value_text(const Json::Value& value);

inline std::string object_text(const Json::Value::Object& object)
{
    std::string text = "{";
    for (const auto& [key, member] : object)
        text += (text.size() == 1 ? "" : ", ") + key + " = " + value_text(member);
    return text + "}";
}

/// "null", "true", "i:5", "d:0x1.4p+1", "'text'", "[i:1, null]", "{a = i:1, b = []}". A list is filled.
/// Recurses by depth: not for deep trees.
inline std::string value_text(const Json::Value& value)
{
    if (const bool* const boolean = value.if_boolean())
        return *boolean ? "true" : "false";
    if (const std::int64_t* const integer = value.if_integer())
        return "i:" + std::to_string(*integer);
    if (const double* const decimal = value.if_decimal())
        return decimal_text(*decimal);
    if (const std::string* const text = value.if_string())
        return "'" + *text + "'";
    if (const Json::Value::Object* const object = value.if_object())
        return object_text(*object);
    const Json::Value::List* const list = value.if_list();
    if (list == nullptr)
        return value.is_null() ? "null" : "no kind";
    std::string text = "[";
    for (const Json::Value& element : *list)
        text += (text.size() == 1 ? "" : ", ") + value_text(element);
    return text + "]";
}

}
