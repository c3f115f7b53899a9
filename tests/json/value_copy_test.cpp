// Copies are deep, a moved-from value is null, and assignment works between all kinds and within one tree.
#include "json/value_samples.h"
#include "json/value_text.h"

#include <Json/Value.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Json::Value;
using json_test::one_of_each_kind;
using json_test::unequal_values;
using json_test::value_text;

Value family()
{
    Value value;
    value.at("child").at("grandchild").at(2) = Value("a text that is too long to stand inside a string");
    value.at("other") = Value(1);
    return value;
}

const char* const family_text = "{child = {grandchild = [null, null, 'a text that is too long to stand inside a "
                                "string']}, other = i:1}";

TEST(ValueCopy, EqualsTheOriginalAndLeavesIt)
{
    for (const Value& original : unequal_values())
    {
        const std::string before = value_text(original);
        const Value copy(original);
        EXPECT_EQ(value_text(copy), before);
        EXPECT_EQ(value_text(original), before);
    }
}

TEST(ValueCopy, IsDeep)
{
    Value original = family();
    Value copy(original);
    original.at("child").at("grandchild").at(0) = Value(9);
    EXPECT_EQ(value_text(copy), family_text);
    copy.at("child").at("new");
    EXPECT_EQ(original.at("child").if_object()->count("new"), 0u);
}

TEST(ValueMove, LeavesNullAndTakesThePayload)
{
    for (Value original : unequal_values())
    {
        const std::string before = value_text(original);
        const Value moved(std::move(original));
        EXPECT_EQ(value_text(moved), before);
        EXPECT_TRUE(original.is_null()); // NOLINT(bugprone-use-after-move)
    }
}

TEST(ValueMove, KeepsElementsAndEntriesWhereTheyAre)
{
    Value list(Value::List{Value(1), Value(2)});
    const Value* const element = &list.at(1);
    const Value moved_list(std::move(list));
    EXPECT_EQ(&moved_list.if_list()->back(), element);

    Value object(Value::Object{{"a", Value(1)}});
    const Value* const entry = &object.at("a");
    Value moved_object;
    moved_object = std::move(object);
    EXPECT_EQ(&moved_object.at("a"), entry);
}

TEST(ValueMove, FromValueCanBeUsedAgain)
{
    Value value("old");
    const Value moved(std::move(value));
    value.at("a") = Value(1); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(value_text(value), "{a = i:1}");
    EXPECT_EQ(value_text(moved), "'old'");
}

TEST(ValueAssignment, CopiesBetweenAllPairsOfKinds)
{
    for (const Value& from : unequal_values())
        for (const Value& into : unequal_values())
        {
            Value target(into);
            const std::string expected = value_text(from);
            EXPECT_EQ(&(target = from), &target);
            EXPECT_EQ(value_text(target), expected);
            EXPECT_EQ(value_text(from), expected);
        }
}

TEST(ValueAssignment, MovesBetweenAllPairsOfKinds)
{
    for (const Value& from : unequal_values())
        for (const Value& into : unequal_values())
        {
            Value source(from);
            Value target(into);
            EXPECT_EQ(&(target = std::move(source)), &target);
            EXPECT_EQ(value_text(target), value_text(from));
            EXPECT_TRUE(source.is_null()); // NOLINT(bugprone-use-after-move)
        }
}

TEST(ValueAssignment, OfAPlainTypeMakesThatKind)
{
    Value value(family());
    value = 5;
    EXPECT_EQ(value_text(value), "i:5");
    value = 2.5f;
    EXPECT_EQ(value_text(value), "d:0x1.4p+1");
    value = "text";
    EXPECT_EQ(value_text(value), "'text'");
    value = true;
    EXPECT_EQ(value_text(value), "true");
    value = Value::List{Value(1)};
    EXPECT_EQ(value_text(value), "[i:1]");
    value = Value::Object{{"a", Value(1)}};
    EXPECT_EQ(value_text(value), "{a = i:1}");
    value = Value();
    EXPECT_EQ(value_text(value), "null");
}

TEST(ValueAssignment, OfACopyIsDeep)
{
    const Value original = family();
    Value copy(Value::Object{{"child", Value(1)}, {"gone", Value(2)}});
    copy = original;
    copy.at("child").at("grandchild").at(0) = Value(9);
    EXPECT_EQ(value_text(original), family_text);
}

TEST(ValueAssignment, ToItselfChangesNothing)
{
    for (Value value : one_of_each_kind())
    {
        const std::string before = value_text(value);
        const Value& same = value;
        value = same;
        EXPECT_EQ(value_text(value), before);
    }
}

TEST(ValueAssignment, MovedToItselfStaysWhole)
{
    for (Value value : one_of_each_kind())
    {
        const std::string before = value_text(value);
        Value& same = value;
        value = std::move(same);
        EXPECT_EQ(value_text(value), before);
    }
}

TEST(ValueAssignment, OfAChildReplacesItsParent)
{
    Value value = family();
    value = value.at("child");
    EXPECT_EQ(value_text(value), "{grandchild = [null, null, 'a text that is too long to stand inside a string']}");
    value = value.at("grandchild");
    EXPECT_EQ(value_text(value), "[null, null, 'a text that is too long to stand inside a string']");
    value = value.at(2);
    EXPECT_EQ(value_text(value), "'a text that is too long to stand inside a string'");
}

TEST(ValueAssignment, OfAListInAListReplacesTheOuterOne)
{
    Value value(Value::List{Value(0), Value(Value::List{Value(1), Value(2), Value(3)}), Value(4)});
    value = value.at(1);
    EXPECT_EQ(value_text(value), "[i:1, i:2, i:3]");
}

TEST(ValueAssignment, OfAGrandchildReplacesTheRoot)
{
    Value value = family();
    value = value.at("child").at("grandchild").at(2);
    EXPECT_EQ(value_text(value), "'a text that is too long to stand inside a string'");
}

TEST(ValueAssignment, MovesAChildOntoItsParent)
{
    Value value = family();
    value = std::move(value.at("child").at("grandchild"));
    EXPECT_EQ(value_text(value), "[null, null, 'a text that is too long to stand inside a string']");
    value = std::move(value.at(2));
    EXPECT_EQ(value_text(value), "'a text that is too long to stand inside a string'");
    Value objects = family();
    objects = std::move(objects.at("child"));
    EXPECT_EQ(value_text(objects), "{grandchild = [null, null, 'a text that is too long to stand inside a string']}");
}

TEST(ValueAssignment, OfAParentToItsChildCopiesTheTreeAsItWas)
{
    Value value(Value::Object{{"a", Value(1)}, {"b", Value(2)}});
    value.at("a") = value;
    EXPECT_EQ(value_text(value), "{a = {a = i:1, b = i:2}, b = i:2}");
    Value list(Value::List{Value(1), Value(Value::List{})});
    list.at(1) = list;
    EXPECT_EQ(value_text(list), "[i:1, [i:1, []]]");
}

TEST(ValueAssignment, BetweenSiblingsLeavesTheOthers)
{
    Value value = family();
    value.at("other") = value.at("child");
    value.at("child") = Value();
    EXPECT_EQ(
        value_text(value),
        "{child = null, other = {grandchild = [null, null, 'a text that is too long to stand inside a string']}}");
}

TEST(ValueAssignment, KeepsTheAddressOfTheSlotThatIsAssignedTo)
{
    Value value = family();
    Value& slot = value.at("other");
    slot = value.at("child");
    slot = Value("x");
    EXPECT_EQ(&value.at("other"), &slot);
    EXPECT_EQ(value_text(value.at("other")), "'x'");
}

TEST(ValueAssignment, SwapsByMoves)
{
    Value left = family();
    Value right(Value::List{Value(1)});
    std::swap(left, right);
    EXPECT_EQ(value_text(left), "[i:1]");
    EXPECT_EQ(value_text(right), family_text);
}

}
