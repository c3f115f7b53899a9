#include "ome/trees.h"

#include <cstdio>
#include <cstring>
#include <utility>

namespace vela_test {

namespace {

std::string show_decimal(double decimal)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", decimal);
    const std::string digits = text;
    return digits.find_first_of(".en") == std::string::npos ? digits + ".0" : digits;
}

std::string show_list(const Value::List& list)
{
    std::string text = "[";
    for (const Value& element : list)
        text += (text.size() > 1 ? ", " : "") + show(element);
    return text + "]";
}

std::string show_object(const Value::Object& object)
{
    std::string text = "{";
    for (const auto& [key, entry] : object)
        text += (text.size() > 1 ? ", \"" : "\"") + key + "\": " + show(entry);
    return text + "}";
}

bool same_bits(double left, double right)
{
    return std::memcmp(&left, &right, sizeof left) == 0 || (left != left && right != right);
}

/// Where the trees differ first, and what stands there; "" where they are the same.
std::string difference(const Value& got, const Value& expected, const std::string& path);

std::string difference_of_lists(const Value::List& got, const Value::List& expected, const std::string& path)
{
    std::size_t index = 0;
    auto right = expected.begin();
    for (auto left = got.begin(); left != got.end() && right != expected.end(); ++left, ++right, ++index)
    {
        const std::string found = difference(*left, *right, path + "[" + std::to_string(index) + "]");
        if (!found.empty())
            return found;
    }
    if (got.size() == expected.size())
        return "";
    return path + ": " + std::to_string(got.size()) + " elements, expected " + std::to_string(expected.size());
}

std::string difference_of_objects(const Value::Object& got, const Value::Object& expected, const std::string& path)
{
    for (const auto& [key, entry] : expected)
    {
        const auto found = got.find(key);
        if (found == got.end())
            return path + ": no key \"" + key + "\", expected " + show(entry);
        const std::string below = difference(found->second, entry, path + "/" + key);
        if (!below.empty())
            return below;
    }
    for (const auto& [key, entry] : got)
        if (expected.find(key) == expected.end())
            return path + ": has the key \"" + key + "\": " + show(entry);
    return "";
}

bool same_scalar(const Value& got, const Value& expected)
{
    if (got.is_decimal())
        return same_bits(*got.if_decimal(), *expected.if_decimal());
    return got == expected;
}

std::string difference(const Value& got, const Value& expected, const std::string& path)
{
    if (got.kind() != expected.kind())
        return path + ": " + show(got) + ", expected " + show(expected);
    if (got.is_list())
        return difference_of_lists(*got.if_list(), *expected.if_list(), path);
    if (got.is_object())
        return difference_of_objects(*got.if_object(), *expected.if_object(), path);
    return same_scalar(got, expected) ? "" : path + ": " + show(got) + ", expected " + show(expected);
}

} // namespace

Value list_of(Value::List elements)
{
    return Value(std::move(elements));
}

std::string show(const Value& value)
{
    switch (value.kind())
    {
    case Value::Kind::null:
        return "null";
    case Value::Kind::boolean:
        return *value.if_boolean() ? "true" : "false";
    case Value::Kind::integer:
        return std::to_string(*value.if_integer());
    case Value::Kind::decimal:
        return show_decimal(*value.if_decimal());
    case Value::Kind::string:
        return "\"" + *value.if_string() + "\"";
    case Value::Kind::list:
        return show_list(*value.if_list());
    case Value::Kind::object:
        return show_object(*value.if_object());
    }
    return "?";
}

testing::AssertionResult same_tree(const Value& got, const Value& expected)
{
    const std::string found = difference(got, expected, "");
    if (found.empty())
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "at " << found;
}

} // namespace vela_test
