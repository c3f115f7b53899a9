// Converting access, cell by cell: what becomes what for good, and what is a bad cast that changes nothing.
#include "support/expect_bad_cast.h"
#include "json/forged_kind.h"
#include "json/value_samples.h"
#include "json/value_text.h"

#include <Json/Value.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using Json::Value;
using json_test::ForgedKind;
using json_test::one_of_each_kind;
using json_test::value_text;

/// `access` is a bad cast for the samples of these kinds, and leaves them as they were.
template <class Access>
void expect_bad_casts(const std::vector<std::size_t>& kinds, Access access)
{
    for (const std::size_t kind : kinds)
    {
        Value value = one_of_each_kind()[kind];
        const std::string before = value_text(value);
        EXPECT_BAD_CAST(access(value));
        EXPECT_EQ(static_cast<std::size_t>(value.kind()), kind);
        EXPECT_EQ(value_text(value), before);
    }
}

TEST(ValueAsBoolean, GivesThePayloadOfABooleanAlone)
{
    Value value(true);
    value.as_boolean() = false;
    EXPECT_EQ(value_text(value), "false");
    EXPECT_EQ(&value.as_boolean(), value.if_boolean());
    expect_bad_casts({0, 2, 3, 4, 5, 6}, [](Value& other) { other.as_boolean(); });
}

TEST(ValueAsDecimal, GivesThePayloadOfADecimal)
{
    Value value(2.5);
    value.as_decimal() = 3.5;
    EXPECT_EQ(value_text(value), "d:0x1.cp+1");
    EXPECT_EQ(&value.as_decimal(), value.if_decimal());
}

TEST(ValueAsDecimal, TurnsAnIntegerIntoADecimalForGood)
{
    Value value(3);
    EXPECT_EQ(value.as_decimal(), 3.0);
    EXPECT_TRUE(value.is_decimal());
    EXPECT_FALSE(value.is_integer());
    value.as_decimal() = 1.25;
    EXPECT_EQ(value_text(value), "d:0x1.4p+0");
}

TEST(ValueAsDecimal, RoundsIntegersThatADoubleCannotHold)
{
    const auto as_decimal = [](std::int64_t integer) { return Value(integer).as_decimal(); };
    EXPECT_EQ(as_decimal(9007199254740992), 9007199254740992.0);
    EXPECT_EQ(as_decimal(9007199254740993), 9007199254740992.0);
    EXPECT_EQ(as_decimal(9007199254740995), 9007199254740996.0);
    EXPECT_EQ(as_decimal(INT64_MAX), 9223372036854775808.0);
    EXPECT_EQ(as_decimal(INT64_MIN), -9223372036854775808.0);
    EXPECT_EQ(as_decimal(0), 0.0);
    EXPECT_FALSE(std::signbit(as_decimal(0)));
}

TEST(ValueAsDecimal, IsABadCastForNullAndAllButNumbers)
{
    expect_bad_casts({0, 1, 4, 5, 6}, [](Value& other) { other.as_decimal(); });
}

TEST(ValueAsInteger, GivesThePayloadOfAnInteger)
{
    Value value(5);
    value.as_integer() = INT64_MIN;
    EXPECT_EQ(value_text(value), "i:-9223372036854775808");
    EXPECT_EQ(&value.as_integer(), value.if_integer());
}

TEST(ValueAsInteger, TurnsAWholeDecimalIntoAnIntegerForGood)
{
    Value value(2.0);
    EXPECT_EQ(value.as_integer(), 2);
    EXPECT_TRUE(value.is_integer());
    EXPECT_FALSE(value.is_decimal());
    EXPECT_EQ(value_text(value), "i:2");
}

TEST(ValueAsInteger, OfTwoAndAHalfIsABadCastAndLeavesADecimal)
{
    Value value(2.5);
    EXPECT_BAD_CAST(value.as_integer());
    EXPECT_TRUE(value.is_decimal());
    EXPECT_EQ(*value.if_decimal(), 2.5);
}

TEST(ValueAsInteger, TakesEveryWholeDecimalOfTheSignedRange)
{
    const auto as_integer = [](double decimal)
    {
        Value value(decimal);
        const std::int64_t integer = value.as_integer();
        return value_text(value) + " holding " + std::to_string(integer);
    };
    EXPECT_EQ(as_integer(0.0), "i:0 holding 0");
    EXPECT_EQ(as_integer(-0.0), "i:0 holding 0");
    EXPECT_EQ(as_integer(-2.0), "i:-2 holding -2");
    EXPECT_EQ(as_integer(1e15), "i:1000000000000000 holding 1000000000000000");
    EXPECT_EQ(as_integer(9007199254740992.0), "i:9007199254740992 holding 9007199254740992");
    EXPECT_EQ(as_integer(9223372036854774784.0), "i:9223372036854774784 holding 9223372036854774784");
    EXPECT_EQ(as_integer(-9223372036854774784.0), "i:-9223372036854774784 holding -9223372036854774784");
    EXPECT_EQ(as_integer(-9223372036854775808.0), "i:-9223372036854775808 holding -9223372036854775808");
}

TEST(ValueAsInteger, OfADecimalThatNoIntegerHoldsIsABadCast)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double number : {0.5, -0.5, 0.9999999999999999, -1.0000000000000002, 4503599627370495.5,
                                4.9406564584124654e-324, DBL_MIN, 9223372036854775808.0, -9223372036854777856.0,
                                18446744073709551616.0, 1e300, -1e300, DBL_MAX, infinity, -infinity})
    {
        Value value(number);
        EXPECT_BAD_CAST(value.as_integer());
        ASSERT_TRUE(value.is_decimal()) << number;
        EXPECT_EQ(*value.if_decimal(), number);
    }
}

TEST(ValueAsInteger, OfNoNumberIsABadCast)
{
    Value value(std::nan(""));
    EXPECT_BAD_CAST(value.as_integer());
    ASSERT_TRUE(value.is_decimal());
    EXPECT_TRUE(std::isnan(*value.if_decimal()));
}

TEST(ValueAsInteger, IsABadCastForNullAndAllButNumbers)
{
    expect_bad_casts({0, 1, 4, 5, 6}, [](Value& other) { other.as_integer(); });
}

TEST(ValueAsString, GivesThePayloadOfAString)
{
    Value value("a");
    value.as_string() += "b";
    EXPECT_EQ(value_text(value), "'ab'");
    EXPECT_EQ(&value.as_string(), value.if_string());
}

TEST(ValueAsString, TurnsNullIntoTheEmptyString)
{
    Value value;
    EXPECT_EQ(value.as_string(), "");
    EXPECT_EQ(value_text(value), "''");
}

TEST(ValueAsString, IsABadCastForAllButStringsAndNull)
{
    expect_bad_casts({1, 2, 3, 5, 6}, [](Value& other) { other.as_string(); });
}

TEST(ValueAsObject, GivesThePayloadOfAnObject)
{
    Value value(Value::Object{{"a", Value(1)}});
    value.as_object()["b"] = Value(2);
    EXPECT_EQ(value_text(value), "{a = i:1, b = i:2}");
    EXPECT_EQ(&value.as_object(), value.if_object());
}

TEST(ValueAsObject, TurnsNullIntoTheEmptyMap)
{
    Value value;
    EXPECT_TRUE(value.as_object().empty());
    EXPECT_EQ(value_text(value), "{}");
}

TEST(ValueAsObject, IsABadCastForAllButObjectsAndNull)
{
    expect_bad_casts({1, 2, 3, 4, 5}, [](Value& other) { other.as_object(); });
}

TEST(ValueAsList, GivesThePayloadOfAListAndWrapsItNoFurther)
{
    Value value(Value::List{Value(1)});
    value.as_list().emplace_back(2);
    value.as_list();
    EXPECT_EQ(value_text(value), "[i:1, i:2]");
    EXPECT_EQ(&value.as_list(), value.if_list());
    Value empty{Value::List()};
    EXPECT_TRUE(empty.as_list().empty());
    EXPECT_EQ(value_text(empty), "[]");
}

TEST(ValueAsList, TurnsNullIntoTheEmptyList)
{
    Value value;
    EXPECT_TRUE(value.as_list().empty());
    EXPECT_EQ(value_text(value), "[]");
}

TEST(ValueAsList, OfAStringIsAListOfOneElementFromThenOn)
{
    Value value("text");
    EXPECT_EQ(value.as_list().size(), 1u);
    EXPECT_TRUE(value.is_list());
    EXPECT_EQ(value_text(value), "['text']");
    EXPECT_BAD_CAST(value.as_string());
    EXPECT_EQ(value_text(value), "['text']");
}

TEST(ValueAsList, OfEveryOtherKindHoldsTheOldValue)
{
    for (const std::size_t kind : {1u, 2u, 3u, 4u, 6u})
    {
        Value value = one_of_each_kind()[kind];
        const std::string before = value_text(value);
        EXPECT_EQ(value.as_list().size(), 1u);
        EXPECT_EQ(value_text(value), "[" + before + "]");
    }
}

TEST(ValueConversions, GoThereAndBack)
{
    Value value(4);
    EXPECT_EQ(value.as_decimal(), 4.0);
    EXPECT_EQ(value.as_integer(), 4);
    EXPECT_EQ(value_text(value), "i:4");
    EXPECT_EQ(value.as_decimal(), 4.0);
    EXPECT_EQ(value_text(value), "d:0x1p+2");
}

TEST(ValueOfAKindOutsideTheSeven, IsABadCastForEveryAccess)
{
    for (const std::int32_t tag : {7, 8, -1, INT32_MAX, INT32_MIN})
    {
        Value value;
        const ForgedKind forged(value, tag);
        ASSERT_EQ(static_cast<std::int32_t>(value.kind()), tag);
        EXPECT_BAD_CAST(value.as_boolean());
        EXPECT_BAD_CAST(value.as_integer());
        EXPECT_BAD_CAST(value.as_decimal());
        EXPECT_BAD_CAST(value.as_string());
        EXPECT_BAD_CAST(value.as_object());
        EXPECT_BAD_CAST(value.as_list());
        EXPECT_BAD_CAST(value.fill_list(0));
        EXPECT_BAD_CAST(value.set_list_source(nullptr));
        EXPECT_BAD_CAST(value.at("a"));
        EXPECT_BAD_CAST(value.at(0));
        EXPECT_BAD_CAST(value.at(1));
        EXPECT_EQ(static_cast<std::int32_t>(value.kind()), tag);
    }
}

TEST(ValueOfAKindOutsideTheSeven, IsABadCastForCopyAndComparison)
{
    for (const std::int32_t tag : {7, -1})
    {
        Value one;
        Value two;
        const ForgedKind forged_one(one, tag);
        const ForgedKind forged_two(two, tag);
        EXPECT_BAD_CAST(const Value copy(one));
        EXPECT_BAD_CAST(static_cast<void>(one == two));
    }
}

TEST(ValueOfAKindOutsideTheSeven, IsABadCastForCopyAndComparisonOfATreeAroundIt)
{
    Value tree;
    tree.at("a").at(1).at("b") = Value(1);
    Value other(tree);
    const ForgedKind forged(tree.at("a").at(1).at("b"), 7);
    const ForgedKind forged_other(other.at("a").at(1).at("b"), 7);
    EXPECT_BAD_CAST(const Value copy(tree));
    EXPECT_BAD_CAST(static_cast<void>(tree == other));
}

}
