// Which values are equal.
#include "json/value_samples.h"
#include "json/value_text.h"

#include <Json/Value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using Json::Value;
using json_test::unequal_values;
using json_test::value_text;

void expect_equal(const Value& left, const Value& right)
{
    EXPECT_TRUE(left == right) << value_text(left) << " and " << value_text(right);
    EXPECT_FALSE(left != right) << value_text(left) << " and " << value_text(right);
}

void expect_unequal(const Value& left, const Value& right)
{
    EXPECT_FALSE(left == right) << value_text(left) << " and " << value_text(right);
    EXPECT_TRUE(left != right) << value_text(left) << " and " << value_text(right);
}

TEST(ValueEquality, HoldsForCopiesAndForNothingElse)
{
    const std::vector<Value> values = unequal_values();
    const std::vector<Value> copies = unequal_values();
    for (std::size_t i = 0; i < values.size(); ++i)
        for (std::size_t j = 0; j < values.size(); ++j)
            i == j ? expect_equal(values[i], copies[j]) : expect_unequal(values[i], copies[j]);
}

TEST(ValueEquality, NullEqualsNull)
{
    expect_equal(Value(), Value());
}

TEST(ValueEquality, IntegerOneAndDecimalOneDiffer)
{
    expect_unequal(Value(1), Value(1.0));
    expect_unequal(Value(1.0), Value(1));
}

TEST(ValueEquality, BooleanAndIntegerDiffer)
{
    expect_unequal(Value(true), Value(1));
    expect_unequal(Value(false), Value(0));
    expect_unequal(Value(false), Value());
}

TEST(ValueEquality, ZerosOfBothSignsAreEqualNumbers)
{
    expect_equal(Value(0.0), Value(-0.0));
}

TEST(ValueEquality, InfinitiesEqualThemselves)
{
    const double infinity = std::numeric_limits<double>::infinity();
    expect_equal(Value(infinity), Value(infinity));
    expect_unequal(Value(infinity), Value(-infinity));
}

TEST(ValueEquality, NoNumberIsUnequalToEverythingItselfIncluded)
{
    const Value no_number(std::nan(""));
    expect_unequal(no_number, no_number);
    expect_unequal(no_number, Value(std::nan("")));
    for (const Value& other : unequal_values())
    {
        expect_unequal(no_number, other);
        expect_unequal(other, no_number);
    }
}

TEST(ValueEquality, ListOrObjectWithNoNumberIsUnequalToItself)
{
    const Value list(Value::List{Value(1), Value(std::nan(""))});
    expect_unequal(list, list);
    const Value object(Value::Object{{"a", Value(std::nan(""))}});
    expect_unequal(object, object);
    const Value nested(Value::List{Value(Value::Object{{"a", Value(Value::List{Value(std::nan(""))})}})});
    expect_unequal(nested, nested);
}

TEST(ValueEquality, NeighbouringNumbersDiffer)
{
    expect_unequal(Value(INT64_MAX), Value(INT64_MAX - 1));
    expect_unequal(Value(9007199254740993), Value(9007199254740992));
    expect_unequal(Value(1.0), Value(1.0000000000000002));
}

TEST(ValueEquality, StringsAreComparedBytewise)
{
    expect_equal(Value(std::string("a\0b", 3)), Value(std::string("a\0b", 3)));
    expect_unequal(Value(std::string("a\0b", 3)), Value(std::string("a\0c", 3)));
    expect_unequal(Value("\xC3\xA4"), Value("a\xCC\x88")); // one letter in two encodings
}

TEST(ValueEquality, ListsAreComparedInOrder)
{
    expect_equal(Value(Value::List{Value(1), Value("a")}), Value(Value::List{Value(1), Value("a")}));
    expect_unequal(Value(Value::List{Value(1), Value("a")}), Value(Value::List{Value("a"), Value(1)}));
    expect_unequal(Value(Value::List{Value(1)}), Value(Value::List{Value(1), Value()}));
    expect_unequal(Value(Value::List{Value(1)}), Value(1));
}

TEST(ValueEquality, MapsAreComparedKeyByKeyWhateverTheOrderOfInsertion)
{
    Value left;
    left.at("a") = Value(1);
    left.at("b") = Value(2);
    Value right;
    right.at("b") = Value(2);
    right.at("a") = Value(1);
    expect_equal(left, right);
    right.at("c");
    expect_unequal(left, right);
    left.at("d");
    expect_unequal(left, right);
}

TEST(ValueEquality, ReachesTheLastLeafOfATree)
{
    const auto tree = [](int leaf)
    {
        Value value;
        value.at("a").at(3).at("b").at("").at(1) = Value(leaf);
        value.at("z") = Value("same");
        return value;
    };
    expect_equal(tree(1), tree(1));
    expect_unequal(tree(1), tree(2));
}

TEST(ValueEquality, ChangesNeitherSide)
{
    const Value integer(1);
    const Value decimal(1.0);
    expect_unequal(integer, decimal);
    EXPECT_EQ(value_text(integer), "i:1");
    EXPECT_EQ(value_text(decimal), "d:0x1p+0");
}

}
