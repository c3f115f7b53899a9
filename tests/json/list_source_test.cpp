// Lists that fill themselves: they know what they are before anybody looks, and fill from the front as far as
// somebody does.
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"
#include "json/counting_source.h"
#include "json/value_text.h"

#include <Json/ListSource.h>
#include <Json/Value.h>

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace {

using boost::shared_ptr;
using Json::ListSource;
using Json::Value;
using json_test::counting_source;
using json_test::CountingSource;
using json_test::value_text;

static_assert(std::has_virtual_destructor_v<ListSource>);
static_assert(std::is_abstract_v<ListSource>);
static_assert(!std::is_convertible_v<shared_ptr<const ListSource>, Value>);

Value list_from(const shared_ptr<CountingSource>& source)
{
    return Value(shared_ptr<const ListSource>(source));
}

TEST(ListSource, TellsKindAndCountWithoutFilling)
{
    const auto source = counting_source(5);
    const Value value = list_from(source);
    EXPECT_EQ(value.kind(), Value::Kind::list);
    EXPECT_TRUE(value.is_list());
    EXPECT_FALSE(value.is_null());
    EXPECT_EQ(value.if_object(), nullptr);
    EXPECT_EQ(value.count(), 5u);
    EXPECT_EQ(value.filled_count(), 0u);
    EXPECT_EQ(value.list_source(), source);
    EXPECT_EQ(source->fills, 0u);
}

TEST(ListSource, FillsFromTheFrontAsFarAsAnIndexIsLookedAt)
{
    const auto source = counting_source(1000);
    Value value = list_from(source);
    EXPECT_EQ(value_text(value.at(3)), "i:3");
    EXPECT_EQ(value.filled_count(), 4u);
    EXPECT_EQ(source->made, 4u);
    EXPECT_EQ(value.count(), 1000u);
    EXPECT_EQ(value_text(value.at(1)), "i:1");
    EXPECT_EQ(source->made, 4u);
    EXPECT_EQ(value_text(value.at(10)), "i:10");
    EXPECT_EQ(value.filled_count(), 11u);
    EXPECT_EQ(source->largest_end, 11u);
    EXPECT_EQ(value.list_source(), source);
}

TEST(ListSource, MakesNoElementTwice)
{
    const auto source = counting_source(20);
    Value value = list_from(source);
    for (std::size_t index = 20; index-- > 0;)
        EXPECT_EQ(*value.at(index).if_integer(), static_cast<std::int64_t>(index));
    EXPECT_EQ(value.as_list().size(), 20u);
    EXPECT_EQ(source->made, 20u);
}

TEST(ListSource, IsLetGoOnceTheListIsWhole)
{
    auto source = counting_source(3);
    const boost::weak_ptr<CountingSource> watched(source);
    Value value = list_from(source);
    source.reset();
    value.at(1);
    EXPECT_FALSE(watched.expired());
    value.at(2);
    EXPECT_EQ(value.list_source(), nullptr);
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(value.filled_count(), 3u);
    EXPECT_EQ(value_text(value), "[i:0, i:1, i:2]");
}

TEST(ListSource, IsLetGoWithTheValue)
{
    auto source = counting_source(3);
    const boost::weak_ptr<CountingSource> watched(source);
    {
        const Value value = list_from(source);
        source.reset();
        EXPECT_FALSE(watched.expired());
    }
    EXPECT_TRUE(watched.expired());
}

TEST(ListSource, IsLetGoWhenTheValueIsAssigned)
{
    const auto source = counting_source(3);
    Value value = list_from(source);
    value = Value(1);
    EXPECT_TRUE(source.unique());
    value = list_from(source);
    value = Value(Value::List{Value(7)});
    EXPECT_TRUE(source.unique());
    EXPECT_EQ(value_text(value), "[i:7]");
    EXPECT_EQ(value.list_source(), nullptr);
    EXPECT_EQ(source->fills, 0u);
}

TEST(ListSource, ElementsThatWereChangedStayAsTheyAre)
{
    const auto source = counting_source(4);
    Value value = list_from(source);
    value.at(1) = Value("mine");
    EXPECT_EQ(value_text(value), "[i:0, 'mine', i:2, i:3]");
}

TEST(ListSource, ReferencesStayValidWhileTheRestComes)
{
    Value value = list_from(counting_source(100));
    Value& second = value.at(1);
    value.at(99);
    EXPECT_EQ(&value.at(1), &second);
    EXPECT_EQ(value_text(second), "i:1");
}

TEST(ListSource, IndexPastTheEndFillsTheListAndGrowsItWithNulls)
{
    const auto source = counting_source(2);
    Value value = list_from(source);
    EXPECT_TRUE(value.at(3).is_null());
    EXPECT_EQ(value.count(), 4u);
    EXPECT_EQ(value.filled_count(), 4u);
    EXPECT_EQ(value.list_source(), nullptr);
    EXPECT_EQ(source->made, 2u);
    EXPECT_EQ(value_text(value), "[i:0, i:1, null, null]");
}

TEST(ListSource, ConvertingAccessFillsTheListWhole)
{
    Value value = list_from(counting_source(3));
    EXPECT_EQ(value.as_list().size(), 3u);
    EXPECT_EQ(value.list_source(), nullptr);
    EXPECT_EQ(value_text(value), "[i:0, i:1, i:2]");
}

TEST(ListSource, PointerAccessFillsTheListWholeAlsoOfAConstantValue)
{
    const Value constant = list_from(counting_source(3));
    ASSERT_NE(constant.if_list(), nullptr);
    EXPECT_EQ(constant.if_list()->size(), 3u);
    EXPECT_EQ(constant.filled_count(), 3u);
    EXPECT_EQ(constant.list_source(), nullptr);
    Value value = list_from(counting_source(2));
    ASSERT_NE(value.if_list(), nullptr);
    EXPECT_EQ(value.if_list()->size(), 2u);
}

TEST(ListSource, OtherAccessIsABadCastThatFillsNothing)
{
    const auto source = counting_source(3);
    Value value = list_from(source);
    EXPECT_BAD_CAST(value.as_object());
    EXPECT_BAD_CAST(value.as_string());
    EXPECT_BAD_CAST(value.at("a"));
    EXPECT_EQ(source->fills, 0u);
    EXPECT_EQ(value.count(), 3u);
}

TEST(ListSource, CopiesShareItAndFillOnTheirOwn)
{
    const auto source = counting_source(10);
    Value original = list_from(source);
    original.at(1) = Value("mine");
    Value copy(original);
    EXPECT_EQ(copy.list_source(), source);
    EXPECT_EQ(copy.filled_count(), 2u);
    EXPECT_EQ(source->made, 2u);
    copy.at(4) = Value("its own");
    EXPECT_EQ(copy.filled_count(), 5u);
    EXPECT_EQ(original.filled_count(), 2u);
    EXPECT_EQ(value_text(original), "[i:0, 'mine', i:2, i:3, i:4, i:5, i:6, i:7, i:8, i:9]");
    EXPECT_EQ(value_text(copy), "[i:0, 'mine', i:2, i:3, 'its own', i:5, i:6, i:7, i:8, i:9]");
}

TEST(ListSource, AssignmentSharesItToo)
{
    const auto source = counting_source(3);
    const Value original = list_from(source);
    for (Value target : {Value(), Value("text"), Value(Value::List{Value(9), Value(8)})})
    {
        target = original;
        EXPECT_EQ(target.list_source(), source);
        EXPECT_EQ(target.filled_count(), 0u);
        EXPECT_EQ(value_text(target), "[i:0, i:1, i:2]");
    }
    EXPECT_EQ(original.filled_count(), 0u);
}

TEST(ListSource, SelfAssignmentKeepsIt)
{
    const auto source = counting_source(3);
    Value value = list_from(source);
    value.at(0) = Value("mine");
    const Value& same = value;
    value = same;
    EXPECT_EQ(value.list_source(), source);
    EXPECT_EQ(value_text(value), "['mine', i:1, i:2]");
}

TEST(ListSource, MovesWithTheValue)
{
    const auto source = counting_source(3);
    Value original = list_from(source);
    original.at(0) = Value("mine");
    Value moved(std::move(original));
    EXPECT_TRUE(original.is_null()); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(original.list_source(), nullptr);
    EXPECT_EQ(original.filled_count(), 0u);
    Value assigned;
    assigned = std::move(moved);
    EXPECT_EQ(assigned.list_source(), source);
    EXPECT_EQ(assigned.filled_count(), 1u);
    EXPECT_EQ(value_text(assigned), "['mine', i:1, i:2]");
}

TEST(ListSource, ListInATreeStaysUnfilledInCopiesOfTheTree)
{
    const auto source = counting_source(1000000);
    Value tree;
    tree.at("a").at("list") = list_from(source);
    Value copy(tree);
    EXPECT_EQ(copy.at("a").at("list").count(), 1000000u);
    EXPECT_EQ(value_text(copy.at("a").at("list").at(2)), "i:2");
    EXPECT_EQ(source->made, 3u);
    EXPECT_EQ(tree.at("a").at("list").filled_count(), 0u);
}

TEST(ListSource, EqualityHoldsTheElementsAgainstEachOther)
{
    const Value lazy = list_from(counting_source(3));
    const Value plain(Value::List{Value(0), Value(1), Value(2)});
    EXPECT_TRUE(lazy == plain);
    EXPECT_TRUE(plain == list_from(counting_source(3)));
    EXPECT_TRUE(list_from(counting_source(3)) == list_from(counting_source(3)));
    EXPECT_FALSE(list_from(counting_source(3)) == list_from(counting_source(4)));
    EXPECT_FALSE(list_from(counting_source(3)) == Value(Value::List{Value(0), Value(1), Value(3)}));
    EXPECT_FALSE(list_from(counting_source(3)) == Value(3));
    EXPECT_TRUE(list_from(counting_source(0)) == Value(Value::List{}));
}

TEST(ListSource, EqualityFillsBothSides)
{
    const Value left = list_from(counting_source(3));
    const Value right = list_from(counting_source(3));
    EXPECT_TRUE(left == right);
    EXPECT_EQ(left.filled_count(), 3u);
    EXPECT_EQ(right.filled_count(), 3u);
}

TEST(ListSource, EqualityFillsNothingWhereTheCountsDiffer)
{
    const auto one = counting_source(1);
    const auto million = counting_source(1000000);
    const Value left = list_from(one);
    const Value right = list_from(million);
    EXPECT_FALSE(left == right);
    EXPECT_FALSE(right == left);
    EXPECT_FALSE(right == Value(Value::List{Value(0)}));
    Value left_tree;
    left_tree.at("list") = left;
    Value right_tree;
    right_tree.at("list") = right;
    EXPECT_TRUE(left_tree != right_tree);
    EXPECT_EQ(one->fills, 0u);
    EXPECT_EQ(million->fills, 0u);
    EXPECT_EQ(right.filled_count(), 0u);
}

TEST(ListSource, CopyWithAChangedElementDiffers)
{
    const Value original = list_from(counting_source(3));
    Value copy(original);
    EXPECT_TRUE(copy == original);
    Value changed = list_from(counting_source(3));
    changed.at(2) = Value("mine");
    EXPECT_FALSE(changed == original);
}

/// Elements that are no numbers.
class NoNumbers : public CountingSource
{
public:
    using CountingSource::CountingSource;

protected:
    Value make(std::size_t) const override { return Value(std::nan("")); }
};

TEST(ListSource, ListsOfNoNumbersAreUnequalAlsoWhenTheyShareTheSource)
{
    const Value original{shared_ptr<const ListSource>(boost::make_shared<NoNumbers>(2))};
    const Value copy(original);
    EXPECT_FALSE(copy == original);
    EXPECT_TRUE(copy != original);
}

/// Elements that are such lists themselves.
class NestedSource : public CountingSource
{
public:
    using CountingSource::CountingSource;

protected:
    Value make(std::size_t index) const override { return list_from(counting_source(index)); }
};

TEST(ListSource, ElementsCanBeSuchListsThemselves)
{
    Value value{shared_ptr<const ListSource>(boost::make_shared<NestedSource>(4))};
    EXPECT_EQ(value.at(3).count(), 3u);
    EXPECT_EQ(value.at(3).filled_count(), 0u);
    Value copy(value);
    EXPECT_TRUE(copy == value);
    EXPECT_EQ(value_text(copy), "[[], [i:0], [i:0, i:1], [i:0, i:1, i:2]]");
}

TEST(ListSource, FillListFillsUpToItsEndAndNoFurther)
{
    const auto source = counting_source(10);
    Value value = list_from(source);
    EXPECT_EQ(value.fill_list(4).size(), 4u);
    EXPECT_EQ(value.filled_count(), 4u);
    EXPECT_EQ(value.count(), 10u);
    EXPECT_EQ(value.fill_list(2).size(), 4u);
    EXPECT_EQ(value.fill_list(0).size(), 4u);
    EXPECT_EQ(source->made, 4u);
    EXPECT_EQ(value.fill_list(100).size(), 10u);
    EXPECT_EQ(value.list_source(), nullptr);
    EXPECT_EQ(source->largest_end, 10u);
}

TEST(ListSource, FillListConvertsAsListAccessDoes)
{
    Value null;
    EXPECT_TRUE(null.fill_list(5).empty());
    EXPECT_EQ(value_text(null), "[]");
    Value text("text");
    EXPECT_EQ(text.fill_list(5).size(), 1u);
    EXPECT_EQ(value_text(text), "['text']");
    Value list(Value::List{Value(1), Value(2)});
    EXPECT_EQ(list.fill_list(1).size(), 2u);
}

TEST(ListSource, FilledCountIsNothingForAnyOtherKind)
{
    EXPECT_EQ(Value().filled_count(), 0u);
    EXPECT_EQ(Value(5).filled_count(), 0u);
    EXPECT_EQ(Value("text").filled_count(), 0u);
    EXPECT_EQ(Value(Value::Object{{"a", Value()}}).filled_count(), 0u);
    EXPECT_EQ(Value(Value::List{Value(), Value()}).filled_count(), 2u);
    EXPECT_EQ(Value(5).list_source(), nullptr);
    EXPECT_EQ(Value(Value::List{Value()}).list_source(), nullptr);
}

TEST(ListSource, OfNoElementsIsTheEmptyList)
{
    const auto source = counting_source(0);
    Value value = list_from(source);
    EXPECT_TRUE(value.is_list());
    EXPECT_EQ(value.count(), 0u);
    EXPECT_EQ(value.list_source(), nullptr);
    EXPECT_TRUE(value.as_list().empty());
    EXPECT_EQ(source->made, 0u);
}

TEST(ListSource, CanBeSetOnNullAndOnAList)
{
    const auto source = counting_source(4);
    Value null;
    null.set_list_source(source);
    EXPECT_EQ(null.count(), 4u);
    EXPECT_EQ(null.filled_count(), 0u);
    EXPECT_EQ(null.list_source(), source);
    EXPECT_EQ(value_text(null), "[i:0, i:1, i:2, i:3]");

    Value list(Value::List{Value("a"), Value("b")});
    list.set_list_source(source);
    EXPECT_EQ(list.count(), 4u);
    EXPECT_EQ(list.filled_count(), 2u);
    EXPECT_EQ(value_text(list), "['a', 'b', i:2, i:3]");
}

TEST(ListSource, SetOnAnotherKindFollowsTheOldValue)
{
    Value text("text");
    text.set_list_source(counting_source(3));
    EXPECT_EQ(text.count(), 3u);
    EXPECT_EQ(value_text(text), "['text', i:1, i:2]");
}

TEST(ListSource, SetAnewTakesTheRestFromTheNewOneAndAsksTheOldNoMore)
{
    const auto first = counting_source(10);
    const auto second = counting_source(5);
    Value value = list_from(first);
    value.at(1) = Value("mine");
    value.set_list_source(second);
    EXPECT_TRUE(first.unique());
    EXPECT_EQ(first->made, 2u);
    EXPECT_EQ(value.list_source(), second);
    EXPECT_EQ(value.filled_count(), 2u);
    EXPECT_EQ(value.count(), 5u);
    EXPECT_EQ(value_text(value), "[i:0, 'mine', i:2, i:3, i:4]");
    EXPECT_EQ(second->made, 3u);
}

TEST(ListSource, ThatCountsNoMoreThanIsThereIsDropped)
{
    for (const std::size_t element_count : {0u, 1u, 2u})
    {
        const auto source = counting_source(element_count);
        Value list(Value::List{Value("a"), Value("b")});
        list.set_list_source(source);
        EXPECT_EQ(list.list_source(), nullptr);
        EXPECT_TRUE(source.unique());
        EXPECT_EQ(list.count(), 2u);
        EXPECT_EQ(value_text(list), "['a', 'b']");
    }
}

TEST(ListSource, DroppedOneTakesTheOldOneWithIt)
{
    Value value = list_from(counting_source(10));
    value.at(2);
    value.set_list_source(counting_source(1));
    EXPECT_EQ(value.list_source(), nullptr);
    EXPECT_EQ(value.count(), 3u);
    EXPECT_EQ(value_text(value), "[i:0, i:1, i:2]");
}

TEST(ListSource, SetToNullEndsTheListAtWhatIsThere)
{
    Value value = list_from(counting_source(10));
    value.at(1);
    value.set_list_source(nullptr);
    EXPECT_EQ(value.count(), 2u);
    EXPECT_EQ(value_text(value), "[i:0, i:1]");
}

TEST(ListSource, ThatFailsLeavesTheElementsBeforeAndCanBeAskedAgain)
{
    const auto source = counting_source(6);
    source->fails_at = 3;
    source->failures_left = 1;
    Value value = list_from(source);
    EXPECT_THROW_TEXT(value.at(5), std::runtime_error, "source is out of order");
    EXPECT_EQ(value.filled_count(), 3u);
    EXPECT_EQ(value.count(), 6u);
    EXPECT_EQ(value.list_source(), source);
    EXPECT_EQ(value_text(value.at(2)), "i:2");
    EXPECT_EQ(value_text(value), "[i:0, i:1, i:2, i:3, i:4, i:5]");
    EXPECT_EQ(source->made, 6u);
}

TEST(ListSource, FailureComesOutOfEveryKindOfLook)
{
    const auto failing = []
    {
        const auto source = counting_source(4);
        source->fails_at = 2;
        source->failures_left = 100;
        return list_from(source);
    };
    Value value = failing();
    EXPECT_THROW_TEXT(value.as_list(), std::runtime_error, "source is out of order");
    EXPECT_THROW_TEXT(value.if_list(), std::runtime_error, "source is out of order");
    EXPECT_THROW_TEXT(std::as_const(value).if_list(), std::runtime_error, "source is out of order");
    EXPECT_THROW_TEXT(value.at(9), std::runtime_error, "source is out of order");
    EXPECT_THROW_TEXT(value.fill_list(4), std::runtime_error, "source is out of order");
    EXPECT_THROW_TEXT(static_cast<void>(value == failing()), std::runtime_error, "source is out of order");
    EXPECT_EQ(value.filled_count(), 2u);
    EXPECT_EQ(value.count(), 4u);
    EXPECT_EQ(value_text(value.at(1)), "i:1");
}

TEST(ListSource, FailureInATreeLeavesCopiesAndTheTreeWhole)
{
    const auto source = counting_source(4);
    source->fails_at = 2;
    source->failures_left = 1;
    Value tree;
    tree.at("a") = list_from(source);
    Value copy(tree);
    EXPECT_THROW_TEXT(tree.at("a").as_list(), std::runtime_error, "source is out of order");
    EXPECT_EQ(value_text(copy), "{a = [i:0, i:1, i:2, i:3]}");
    EXPECT_EQ(value_text(tree), "{a = [i:0, i:1, i:2, i:3]}");
}

TEST(ListSource, UnfilledListIsWrappedByNothing)
{
    Value value = list_from(counting_source(2));
    value.as_list();
    value.as_list();
    EXPECT_EQ(value_text(value), "[i:0, i:1]");
}

TEST(ListSource, ElementTakesThePlaceOfItsList)
{
    Value value{shared_ptr<const ListSource>(boost::make_shared<NestedSource>(4))};
    value = value.at(2);
    EXPECT_EQ(value_text(value), "[i:0, i:1]");
}

}
