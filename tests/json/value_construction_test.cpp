// What a value can be made from, and which kind it then has.
#include "support/expect_bad_cast.h"
#include "json/value_text.h"

#include <Json/Value.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <list>
#include <string>
#include <type_traits>

namespace {

using Json::Value;
using json_test::value_text;

static_assert(sizeof(Value::Kind) == 4);
static_assert(static_cast<int>(Value::Kind::null) == 0);
static_assert(static_cast<int>(Value::Kind::boolean) == 1);
static_assert(static_cast<int>(Value::Kind::integer) == 2);
static_assert(static_cast<int>(Value::Kind::decimal) == 3);
static_assert(static_cast<int>(Value::Kind::string) == 4);
static_assert(static_cast<int>(Value::Kind::list) == 5);
static_assert(static_cast<int>(Value::Kind::object) == 6);
static_assert(std::is_same_v<Value::List, std::list<Value>>);
static_assert(std::is_same_v<Value::Object, Json::Map<std::string, Value>>);

// No pointer becomes a boolean by accident, and no character of a wide text an integer.
static_assert(!std::is_constructible_v<Value, std::nullptr_t>);
static_assert(!std::is_constructible_v<Value, int*>);
static_assert(!std::is_constructible_v<Value, void*>);
static_assert(!std::is_constructible_v<Value, wchar_t>);
static_assert(!std::is_constructible_v<Value, char16_t>);
static_assert(!std::is_constructible_v<Value, char32_t>);
#ifdef __cpp_char8_t
static_assert(!std::is_constructible_v<Value, char8_t>);
#endif
static_assert(!std::is_constructible_v<Value, const wchar_t*>);
static_assert(std::is_nothrow_default_constructible_v<Value>);
static_assert(std::is_nothrow_move_constructible_v<Value>);
static_assert(std::is_nothrow_move_assignable_v<Value>);
static_assert(std::is_nothrow_destructible_v<Value>);

enum class Colour
{
    red
};
[[maybe_unused]] std::string get_enumeration_text(Colour)
{
    return "Red";
}
enum class WithoutText
{
    one
};
static_assert(!std::is_constructible_v<Value, WithoutText>);

TEST(ValueConstruction, DefaultIsNull)
{
    const Value value;
    EXPECT_EQ(value.kind(), Value::Kind::null);
    EXPECT_TRUE(value.is_null());
}

TEST(ValueConstruction, BooleanIsKindOne)
{
    const Value no(false);
    const Value yes(true);
    EXPECT_EQ(no.kind(), Value::Kind::boolean);
    EXPECT_EQ(yes.kind(), Value::Kind::boolean);
    EXPECT_FALSE(*no.if_boolean());
    EXPECT_TRUE(*yes.if_boolean());
}

template <class T>
class ValueFromInteger : public testing::Test
{
};

using IntegersThatFit =
    testing::Types<signed char, char, unsigned char, short, unsigned short, int, unsigned, long, long long>;
TYPED_TEST_SUITE(ValueFromInteger, IntegersThatFit);

TYPED_TEST(ValueFromInteger, IsKindTwoOverTheWholeRange)
{
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam number : {Limits::min(), TypeParam(0), TypeParam(1), TypeParam(100), Limits::max()})
    {
        const Value value(number);
        ASSERT_EQ(value.kind(), Value::Kind::integer);
        EXPECT_EQ(*value.if_integer(), static_cast<std::int64_t>(number));
    }
}

TEST(ValueConstruction, LimitsOfEachWidthAreKeptExactly)
{
    EXPECT_EQ(value_text(Value(std::int8_t(-128))), "i:-128");
    EXPECT_EQ(value_text(Value(std::uint8_t(255))), "i:255");
    EXPECT_EQ(value_text(Value(std::int16_t(-32768))), "i:-32768");
    EXPECT_EQ(value_text(Value(std::uint16_t(65535))), "i:65535");
    EXPECT_EQ(value_text(Value(std::int32_t(-2147483647 - 1))), "i:-2147483648");
    EXPECT_EQ(value_text(Value(std::uint32_t(4294967295u))), "i:4294967295");
    EXPECT_EQ(value_text(Value(INT64_MAX)), "i:9223372036854775807");
    EXPECT_EQ(value_text(Value(INT64_MIN)), "i:-9223372036854775808");
}

TEST(ValueConstruction, UnsignedUpToTheLargestSignedNumberIsAnInteger)
{
    EXPECT_EQ(value_text(Value(std::uint64_t(0))), "i:0");
    EXPECT_EQ(value_text(Value(std::uint64_t(0x7FFFFFFFFFFFFFFF))), "i:9223372036854775807");
    EXPECT_EQ(value_text(Value(0x7FFFFFFFFFFFFFFFull)), "i:9223372036854775807");
}

TEST(ValueConstruction, UnsignedWithOnlyItsTopBitSetIsNoValue)
{
    EXPECT_BAD_CAST(Value(std::uint64_t(0x8000000000000000)));
    EXPECT_BAD_CAST(Value(0x8000000000000000ull));
}

TEST(ValueConstruction, UnsignedAboveTheSignedRangeIsNoValue)
{
    EXPECT_BAD_CAST(Value(std::uint64_t(0x8000000000000001)));
    EXPECT_BAD_CAST(Value(std::uint64_t(0xFFFFFFFFFFFFFFFF)));
}

TEST(ValueConstruction, FloatIsWidenedToADecimal)
{
    const Value value(0.1f);
    ASSERT_EQ(value.kind(), Value::Kind::decimal);
    EXPECT_EQ(*value.if_decimal(), 0.100000001490116119384765625);
}

TEST(ValueConstruction, DoubleIsADecimalBitForBit)
{
    for (const double number : {0.0, -0.0, 1.0, 0.1, DBL_MAX, -DBL_MAX, DBL_MIN, 4.9406564584124654e-324,
                                std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()})
    {
        const Value value(number);
        ASSERT_EQ(value.kind(), Value::Kind::decimal);
        EXPECT_EQ(*value.if_decimal(), number);
        EXPECT_EQ(std::signbit(*value.if_decimal()), std::signbit(number));
    }
    EXPECT_TRUE(std::isnan(*Value(std::nan("")).if_decimal()));
}

TEST(ValueConstruction, StringIsKeptByteForByte)
{
    std::string all_bytes;
    for (int byte = 0; byte < 256; ++byte)
        all_bytes += static_cast<char>(byte);
    const Value value(all_bytes);
    ASSERT_EQ(value.kind(), Value::Kind::string);
    EXPECT_EQ(*value.if_string(), all_bytes);
    EXPECT_EQ(*Value(std::string()).if_string(), "");
}

TEST(ValueConstruction, CharacterPointerEndsAtTheZero)
{
    const char text[] = "ab\0cd";
    const Value value(text);
    ASSERT_EQ(value.kind(), Value::Kind::string);
    EXPECT_EQ(*value.if_string(), "ab");
    char writable[] = "xy";
    EXPECT_EQ(*Value(writable).if_string(), "xy");
    EXPECT_EQ(Value("").kind(), Value::Kind::string);
}

TEST(ValueConstruction, TextOfAnyWordIsAString)
{
    for (const char* const text : {"null", "true", "false", "1", "1.5", "[]", "{}"})
        EXPECT_EQ(value_text(Value(text)), "'" + std::string(text) + "'");
}

TEST(ValueConstruction, ListIsKindFive)
{
    const Value value(Value::List{Value(1), Value("a"), Value()});
    ASSERT_EQ(value.kind(), Value::Kind::list);
    EXPECT_EQ(value_text(value), "[i:1, 'a', null]");
    EXPECT_EQ(value_text(Value(Value::List())), "[]");
}

TEST(ValueConstruction, MapIsKindSix)
{
    const Value value(Value::Object{{"b", Value(1)}, {"a", Value(true)}});
    ASSERT_EQ(value.kind(), Value::Kind::object);
    EXPECT_EQ(value_text(value), "{a = true, b = i:1}");
    EXPECT_EQ(value_text(Value(Value::Object())), "{}");
}

TEST(ValueConstruction, MadeFromAListOrMapItSharesNothingWithIt)
{
    Value::List list{Value(1)};
    Value::Object object{{"a", Value(1)}};
    const Value from_list(list);
    const Value from_object(object);
    list.front() = Value(2);
    object["a"] = Value(2);
    EXPECT_EQ(value_text(from_list), "[i:1]");
    EXPECT_EQ(value_text(from_object), "{a = i:1}");
}

TEST(ValueConstruction, EnumerationIsItsText)
{
    EXPECT_EQ(value_text(Value(Colour::red)), "'Red'");
}

TEST(ValueConstruction, PayloadsStandInsideTheValue)
{
    const auto stands_inside = [](const Value& value, const void* payload)
    {
        const char* const begin = reinterpret_cast<const char*>(&value);
        const char* const at = static_cast<const char*>(payload);
        return at >= begin + 4 && at < begin + sizeof(Value);
    };
    Value boolean(true);
    Value integer(1);
    Value decimal(1.5);
    Value text(std::string(1000, 'x'));
    Value list(Value::List{Value(1)});
    Value object(Value::Object{{"a", Value(1)}});
    EXPECT_TRUE(stands_inside(boolean, boolean.if_boolean()));
    EXPECT_TRUE(stands_inside(integer, integer.if_integer()));
    EXPECT_TRUE(stands_inside(decimal, decimal.if_decimal()));
    EXPECT_TRUE(stands_inside(text, text.if_string()));
    EXPECT_TRUE(stands_inside(list, list.if_list()));
    EXPECT_TRUE(stands_inside(object, object.if_object()));
}

TEST(JsonMap, IteratesInAscendingByteOrderOfTheKey)
{
    const Value::Object object{{"b", Value()},    {"B", Value()},  {"", Value()},  {"\x80", Value()}, {"a", Value()},
                               {"\xFF", Value()}, {"ab", Value()}, {"1", Value()}, {"~", Value()},    {"_", Value()}};
    std::string keys;
    for (const auto& [key, value] : object)
        keys += key + ",";
    EXPECT_EQ(keys, ",1,B,_,a,ab,b,~,\x80,\xFF,");
}

TEST(JsonMap, HasTheInterfaceOfAStandardMap)
{
    Json::Map<std::string, int> map;
    map["a"] = 1;
    EXPECT_FALSE(map.insert({"a", 2}).second);
    EXPECT_EQ(map.at("a"), 1);
    EXPECT_TRUE(map.emplace("b", 3).second);
    EXPECT_EQ(map.size(), 2u);
    EXPECT_EQ(map.find("c"), map.end());
    EXPECT_EQ(map.lower_bound("aa")->first, "b");
    EXPECT_EQ(map.erase("a"), 1u);
    const Json::Map<std::string, int> copy(map.begin(), map.end());
    EXPECT_EQ(copy, map);
    static_assert(std::is_same_v<Json::Map<std::string, int>::key_compare, std::less<std::string>>);
}

}
