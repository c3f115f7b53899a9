/// One value of each kind, for tests that go through all of them.
#pragma once

#include <Json/Value.h>

#include <string>
#include <vector>

namespace json_test {

/// In the order of the kinds.
inline std::vector<Json::Value> one_of_each_kind()
{
    using Json::Value;
    return {Value(),
            Value(true),
            Value(5),
            Value(2.5),
            Value("a text that is too long to stand inside a string"),
            Value(Value::List{Value(1), Value("two")}),
            Value(Value::Object{{"a", Value(1)}, {"b", Value(Value::List{Value()})}})};
}

/// Different values, no two of which are equal, some of them of one kind.
inline std::vector<Json::Value> unequal_values()
{
    using Json::Value;
    return {Value(),
            Value(false),
            Value(true),
            Value(0),
            Value(1),
            Value(-1),
            Value(INT64_MAX),
            Value(INT64_MIN),
            Value(0.0),
            Value(1.0),
            Value(2.5),
            Value(9.2233720368547758e18),
            Value(""),
            Value("a"),
            Value(std::string("a\0", 2)),
            Value("b"),
            Value("1"),
            Value("null"),
            Value("\x80"),
            Value(Value::List{}),
            Value(Value::List{Value()}),
            Value(Value::List{Value(1)}),
            Value(Value::List{Value(1.0)}),
            Value(Value::List{Value(1), Value(2)}),
            Value(Value::List{Value(2), Value(1)}),
            Value(Value::List{Value(Value::List{})}),
            Value(Value::List{Value(Value::Object{})}),
            Value(Value::Object{}),
            Value(Value::Object{{"", Value()}}),
            Value(Value::Object{{"a", Value()}}),
            Value(Value::Object{{"a", Value(1)}}),
            Value(Value::Object{{"a", Value(1.0)}}),
            Value(Value::Object{{"A", Value(1)}}),
            Value(Value::Object{{"b", Value(1)}}),
            Value(Value::Object{{"a", Value(1)}, {"b", Value(1)}}),
            Value(Value::Object{{"a", Value(Value::Object{})}})};
}

}
