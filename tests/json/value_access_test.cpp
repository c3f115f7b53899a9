// Tests and pointer access, which change nothing, and lookups by key and index, which make what they look for.
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"
#include "json/value_samples.h"
#include "json/value_text.h"

#include <Json/Value.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Json::Value;
using json_test::one_of_each_kind;
using json_test::value_text;

TEST(ValueTests, AnswerForExactlyTheirKind)
{
    const std::vector<Value> values = one_of_each_kind();
    for (std::size_t kind = 0; kind < values.size(); ++kind)
    {
        const Value& value = values[kind];
        const std::string before = value_text(value);
        EXPECT_EQ(static_cast<std::size_t>(value.kind()), kind);
        EXPECT_EQ(value.is_null(), kind == 0);
        EXPECT_EQ(value.is_boolean(), kind == 1);
        EXPECT_EQ(value.is_integer(), kind == 2);
        EXPECT_EQ(value.is_decimal(), kind == 3);
        EXPECT_EQ(value.is_number(), kind == 2 || kind == 3);
        EXPECT_EQ(value.is_string(), kind == 4);
        EXPECT_EQ(value.is_list(), kind == 5);
        EXPECT_EQ(value.is_object(), kind == 6);
        EXPECT_EQ(value_text(value), before);
    }
}

template <class AnyValue>
void expect_pointers_of_kind(AnyValue& value, std::size_t kind)
{
    EXPECT_EQ(value.if_boolean() != nullptr, kind == 1);
    EXPECT_EQ(value.if_integer() != nullptr, kind == 2);
    EXPECT_EQ(value.if_decimal() != nullptr, kind == 3);
    EXPECT_EQ(value.if_string() != nullptr, kind == 4);
    EXPECT_EQ(value.if_list() != nullptr, kind == 5);
    EXPECT_EQ(value.if_object() != nullptr, kind == 6);
}

TEST(ValuePointerAccess, IsNullForEveryOtherKindAndConvertsNothing)
{
    std::vector<Value> values = one_of_each_kind();
    for (std::size_t kind = 0; kind < values.size(); ++kind)
    {
        const std::string before = value_text(values[kind]);
        expect_pointers_of_kind(values[kind], kind);
        expect_pointers_of_kind(std::as_const(values[kind]), kind);
        EXPECT_EQ(static_cast<std::size_t>(values[kind].kind()), kind);
        EXPECT_EQ(value_text(values[kind]), before);
    }
}

TEST(ValuePointerAccess, PointsToThePayloadItself)
{
    Value boolean(false);
    *boolean.if_boolean() = true;
    EXPECT_EQ(value_text(boolean), "true");
    Value integer(1);
    *integer.if_integer() = 7;
    EXPECT_EQ(value_text(integer), "i:7");
    Value decimal(1.0);
    *decimal.if_decimal() = 2.0;
    EXPECT_EQ(value_text(decimal), "d:0x1p+1");
    Value text("a");
    *text.if_string() += "b";
    EXPECT_EQ(value_text(text), "'ab'");
    Value list{Value::List()};
    list.if_list()->emplace_back(1);
    EXPECT_EQ(value_text(list), "[i:1]");
    Value object{Value::Object()};
    (*object.if_object())["k"] = Value(1);
    EXPECT_EQ(value_text(object), "{k = i:1}");
}

TEST(ValuePointerAccess, OfAConstantValueSeesTheSamePayload)
{
    const std::vector<Value> values = one_of_each_kind();
    EXPECT_TRUE(*values[1].if_boolean());
    EXPECT_EQ(*values[2].if_integer(), 5);
    EXPECT_EQ(*values[3].if_decimal(), 2.5);
    EXPECT_EQ(*values[4].if_string(), "a text that is too long to stand inside a string");
    EXPECT_EQ(values[5].if_list()->size(), 2u);
    EXPECT_EQ(values[6].if_object()->size(), 2u);
}

TEST(ValueLookup, ByKeyOnNullTurnsItIntoAnObjectWithOneNullEntry)
{
    Value value;
    Value& slot = value.at("a");
    EXPECT_TRUE(slot.is_null());
    EXPECT_EQ(value_text(value), "{a = null}");
}

TEST(ValueLookup, LookingAtAMissingKeyCreatesIt)
{
    Value value(Value::Object{{"b", Value(1)}});
    EXPECT_TRUE(value.at("a").is_null());
    EXPECT_EQ(value_text(value), "{a = null, b = i:1}");
}

TEST(ValueLookup, ByKeyGivesTheEntryItself)
{
    Value value(Value::Object{{"b", Value(1)}});
    EXPECT_EQ(value_text(value.at("b")), "i:1");
    value.at("b") = Value("new");
    EXPECT_EQ(value_text(value), "{b = 'new'}");
    EXPECT_EQ(&value.at("b"), &value.at("b"));
    EXPECT_EQ(&value.at("b"), &(*value.if_object())["b"]);
}

TEST(ValueLookup, EmptyKeyAndKeyWithAZeroByteAreKeysLikeAnyOther)
{
    Value value;
    value.at("") = Value(1);
    value.at(std::string("a\0b", 3)) = Value(2);
    value.at("a") = Value(3);
    EXPECT_EQ(value_text(value), "{ = i:1, a = i:3, " + std::string("a\0b", 3) + " = i:2}");
}

TEST(ValueLookup, ByKeyOnANumberIsABadCast)
{
    Value integer(5);
    EXPECT_BAD_CAST(integer.at("a"));
    EXPECT_EQ(value_text(integer), "i:5");
    Value decimal(2.5);
    EXPECT_BAD_CAST(decimal.at("a"));
    EXPECT_EQ(value_text(decimal), "d:0x1.4p+1");
}

TEST(ValueLookup, ByKeyOnBooleanStringOrListIsABadCastAndChangesNothing)
{
    for (const std::size_t kind : {1u, 4u, 5u})
    {
        Value value = one_of_each_kind()[kind];
        const std::string before = value_text(value);
        EXPECT_BAD_CAST(value.at("a"));
        EXPECT_EQ(value_text(value), before);
    }
}

TEST(ValueLookup, KeysCanBeChained)
{
    Value value;
    value.at("a").at("b").at(1).at("c") = Value(true);
    EXPECT_EQ(value_text(value), "{a = {b = [null, {c = true}]}}");
}

TEST(ValueLookup, ByIndexGivesTheElementItself)
{
    Value value(Value::List{Value(10), Value(11), Value(12), Value(13)});
    for (std::size_t index = 0; index < 4; ++index)
        EXPECT_EQ(*value.at(index).if_integer(), static_cast<std::int64_t>(10 + index));
    value.at(2) = Value("x");
    EXPECT_EQ(value_text(value), "[i:10, i:11, 'x', i:13]");
    EXPECT_EQ(&value.at(3), &value.if_list()->back());
    EXPECT_EQ(&value.at(0), &value.if_list()->front());
}

TEST(ValueLookup, ByIndexAtTheEndAppendsOneNull)
{
    Value value(Value::List{Value(1)});
    Value& last = value.at(1);
    EXPECT_EQ(value_text(value), "[i:1, null]");
    EXPECT_EQ(&last, &value.if_list()->back());
}

TEST(ValueLookup, ByIndexPastTheEndGrowsTheListWithNulls)
{
    Value value(Value::List{Value(1)});
    value.at(4) = Value(5);
    EXPECT_EQ(value_text(value), "[i:1, null, null, null, i:5]");
}

TEST(ValueLookup, ByIndexOnNullMakesAList)
{
    Value value;
    EXPECT_TRUE(value.at(2).is_null());
    EXPECT_EQ(value_text(value), "[null, null, null]");
    Value other;
    EXPECT_TRUE(other.at(0).is_null());
    EXPECT_EQ(value_text(other), "[null]");
}

TEST(ValueLookup, ByIndexOnAnyOtherKindMakesAListOfTheOldValue)
{
    for (const std::size_t kind : {1u, 2u, 3u, 4u, 6u})
    {
        Value value = one_of_each_kind()[kind];
        const std::string before = value_text(value);
        EXPECT_EQ(value_text(value.at(0)), before);
        EXPECT_EQ(value_text(value), "[" + before + "]");
        EXPECT_TRUE(value.at(1).is_null());
        EXPECT_EQ(value_text(value), "[" + before + ", null]");
    }
}

TEST(ValueLookup, ByAnIndexThatNoListHasIsALengthErrorAndChangesNothing)
{
    std::vector<Value> values = one_of_each_kind();
    values.emplace_back(Value::List{Value(1), Value("x")});
    for (Value& value : values)
    {
        const std::string before = value_text(value);
        for (const std::size_t index : {SIZE_MAX, SIZE_MAX - 1, SIZE_MAX / 2, Value::List().max_size()})
            EXPECT_THROW_TEXT(value.at(index), std::length_error, "Unsupported list index");
        EXPECT_EQ(value_text(value), before);
    }
}

TEST(ValueLookup, ManyElementsAreCountedFromBothEnds)
{
    Value value;
    for (std::int64_t i = 0; i < 301; ++i)
        value.at(static_cast<std::size_t>(i)) = Value(i);
    for (std::int64_t i = 0; i < 301; ++i)
        EXPECT_EQ(*value.at(static_cast<std::size_t>(i)).if_integer(), i);
    EXPECT_EQ(value.count(), 301u);
}

TEST(ValueCount, IsTheSizeOfAListNothingForNullAndOneForTheRest)
{
    EXPECT_EQ(Value().count(), 0u);
    EXPECT_EQ(Value(false).count(), 1u);
    EXPECT_EQ(Value(0).count(), 1u);
    EXPECT_EQ(Value(0.0).count(), 1u);
    EXPECT_EQ(Value("").count(), 1u);
    EXPECT_EQ(Value(Value::List{}).count(), 0u);
    EXPECT_EQ(Value(Value::List{Value(), Value()}).count(), 2u);
    EXPECT_EQ(Value(Value::Object{}).count(), 1u);
    EXPECT_EQ(Value(Value::Object{{"a", Value()}, {"b", Value()}}).count(), 1u);
}

TEST(ValueReferences, StayValidWhileSiblingsAreAdded)
{
    Value list;
    Value& element = list.at(0);
    element = Value("first");
    Value object;
    Value& entry = object.at("m");
    entry = Value("entry");
    for (std::size_t i = 1; i < 1000; ++i)
    {
        list.at(i) = Value(1);
        list.if_list()->emplace_front(static_cast<int>(i));
        object.at((i % 2 == 0 ? "a" : "z") + std::to_string(i)) = Value(1);
    }
    EXPECT_EQ(value_text(element), "'first'");
    EXPECT_EQ(&object.at("m"), &entry);
    entry = Value(7);
    EXPECT_EQ(value_text(object.at("m")), "i:7");
    EXPECT_EQ(object.if_object()->size(), 1000u);
}

}
