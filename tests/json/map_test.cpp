#include "support/allocation_watch.h"
#include "support/expect_vela_error.h"
#include "json/map_check.h"

#include <Json/Map.h>
#include <Json/Value.h>

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Json::Map;
using testing::ElementsAre;
using testing::Pair;
using vela_test::AllocationWatch;
using vela_test::check_tree;

using Texts = Map<std::string, std::string>;
using Numbers = Map<std::string, int>;

static_assert(sizeof(Numbers) == 32);
static_assert(sizeof(Json::Value::Object) == 32);
static_assert(sizeof(Json::detail::MapEntry<std::string, Json::Value>) ==
              4 * sizeof(void*) + sizeof(std::pair<const std::string, Json::Value>));
static_assert(std::is_nothrow_default_constructible_v<Json::Value::Object>);
static_assert(std::is_nothrow_move_constructible_v<Json::Value::Object>);
static_assert(std::is_nothrow_move_assignable_v<Json::Value::Object>);
static_assert(std::is_nothrow_swappable_v<Json::Value::Object>);
static_assert(std::is_same_v<Numbers::value_type, std::map<std::string, int>::value_type>);
static_assert(std::is_convertible_v<Numbers::iterator, Numbers::const_iterator>);
static_assert(!std::is_convertible_v<Numbers::const_iterator, Numbers::iterator>);
static_assert(std::is_same_v<decltype(*std::declval<Numbers::const_iterator>()), const Numbers::value_type&>);
static_assert(
    std::is_same_v<std::iterator_traits<Numbers::iterator>::iterator_category, std::bidirectional_iterator_tag>);

/// A map of the type can be a member of the type.
struct Nested
{
    Map<std::string, Nested> children;
};

TEST(Map, IsEmptyAtFirst)
{
    const Numbers map;
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.size(), 0u);
    EXPECT_EQ(map.begin(), map.end());
    EXPECT_EQ(map.rbegin(), map.rend());
    EXPECT_EQ(map.find("a"), map.end());
    EXPECT_GT(map.max_size(), std::size_t(1) << 32);
    check_tree(map);
}

TEST(Map, IteratesInTheOrderOfBytes)
{
    const Numbers map{{"b", 1}, {"\xc3\xa4", 2}, {"", 3}, {"B", 4}, {"aa", 5}, {"a", 6}};
    EXPECT_THAT(map,
                ElementsAre(Pair("", 3), Pair("B", 4), Pair("a", 6), Pair("aa", 5), Pair("b", 1), Pair("\xc3\xa4", 2)));
    std::vector<int> backwards;
    for (auto entry = map.rbegin(); entry != map.rend(); ++entry)
        backwards.push_back(entry->second);
    EXPECT_THAT(backwards, ElementsAre(2, 1, 5, 6, 4, 3));
}

TEST(Map, IteratorsStepBothWays)
{
    Numbers map{{"a", 1}, {"b", 2}};
    Numbers::iterator entry = map.begin();
    EXPECT_EQ((entry++)->second, 1);
    EXPECT_EQ((entry--)->second, 2);
    EXPECT_EQ((++entry)->first, "b");
    EXPECT_EQ(++entry, map.end());
    EXPECT_EQ((--entry)->first, "b");
    const Numbers::const_iterator constant = entry;
    EXPECT_EQ(constant, entry);
    EXPECT_EQ(entry, constant);
    EXPECT_NE(constant, map.cend());
    EXPECT_EQ(map.crbegin()->second, 2);
    EXPECT_EQ(std::prev(map.crend())->second, 1);
    entry->second = 5;
    EXPECT_EQ(map.at("b"), 5);
}

TEST(Map, OneEntryIsFirstAndLast)
{
    Numbers map{{"a", 1}};
    EXPECT_EQ(std::next(map.begin()), map.end());
    EXPECT_EQ(std::prev(map.end()), map.begin());
    check_tree(map);
}

TEST(Map, ConstructsFromARangeAndKeepsTheFirstOfEqualKeys)
{
    const std::vector<std::pair<std::string, int>> entries{{"b", 1}, {"a", 2}, {"b", 3}};
    const Numbers map(entries.begin(), entries.end());
    EXPECT_THAT(map, ElementsAre(Pair("a", 2), Pair("b", 1)));
}

TEST(Map, SubscriptMakesWhatIsMissing)
{
    Numbers map;
    const std::string key = "b";
    map[key] = 1;
    map[std::string("a")] = 2;
    map["c"] = 3;
    map[std::string_view("d")] = 4;
    EXPECT_EQ(map["e"], 0);
    EXPECT_EQ(++map["b"], 2);
    EXPECT_THAT(map, ElementsAre(Pair("a", 2), Pair("b", 2), Pair("c", 3), Pair("d", 4), Pair("e", 0)));
}

TEST(Map, AtThrowsForAMissingKey)
{
    Numbers map{{"a", 1}};
    map.at("a") = 2;
    const Numbers& constant = map;
    EXPECT_EQ(constant.at(std::string("a")), 2);
    EXPECT_EQ(constant.at(std::string_view("a")), 2);
    EXPECT_THROW_TEXT(map.at("b"), std::out_of_range, "map::at");
    EXPECT_THROW_TEXT(map.at(std::string("b")), std::out_of_range, "map::at");
    EXPECT_THROW_TEXT(constant.at("b"), std::out_of_range, "map::at");
    EXPECT_THROW_TEXT(constant.at(std::string()), std::out_of_range, "map::at");
}

TEST(Map, BoundsEncloseAKey)
{
    Numbers map{{"b", 1}, {"d", 2}};
    const Numbers& constant = map;
    for (const char* key : {"a", "b", "c", "d", "e"})
    {
        const std::map<std::string, int> model{{"b", 1}, {"d", 2}};
        const auto at = [&](Numbers::const_iterator entry) { return std::distance(map.cbegin(), entry); };
        const auto lower = std::distance(model.begin(), model.lower_bound(key));
        const auto upper = std::distance(model.begin(), model.upper_bound(key));
        const std::string text = key;
        EXPECT_EQ(at(map.lower_bound(text)), lower);
        EXPECT_EQ(at(constant.lower_bound(key)), lower);
        EXPECT_EQ(at(map.upper_bound(text)), upper);
        EXPECT_EQ(at(constant.upper_bound(std::string_view(key))), upper);
        EXPECT_EQ(at(map.equal_range(text).first), lower);
        EXPECT_EQ(at(constant.equal_range(text).second), upper);
        EXPECT_EQ(at(map.equal_range(std::string_view(key)).first), lower);
        EXPECT_EQ(at(map.equal_range(key).second), upper);
        EXPECT_EQ(at(constant.equal_range(key).first), lower);
        EXPECT_EQ(at(constant.equal_range(std::string_view(key)).second), upper);
        EXPECT_EQ(map.count(text), model.count(text));
        EXPECT_EQ(map.contains(key), model.count(text) == 1);
    }
}

TEST(Map, LooksTextsUpWithoutMakingStrings)
{
    const std::string key(100, 'k');
    const Numbers map{{key, 1}};
    const std::string_view view = key;
    const char* const text = key.c_str();
    const AllocationWatch watch;
    EXPECT_EQ(map.find(view)->second, 1);
    EXPECT_EQ(map.find(text)->second, 1);
    EXPECT_EQ(map.find("another key, too long for a string to hold it in place"), map.end());
    EXPECT_EQ(map.count(view), 1u);
    EXPECT_TRUE(map.contains(text));
    EXPECT_EQ(map.lower_bound(view), map.begin());
    EXPECT_EQ(map.equal_range(view).second, map.end());
    EXPECT_EQ(map.at(view), 1);
    EXPECT_EQ(watch.count_allocations(), 0u);
}

TEST(Map, MakesAStringOfAViewOnlyForANewEntry)
{
    const std::string key(100, 'k');
    const std::string_view view = key;
    Numbers map{{key, 1}};
    const AllocationWatch watch;
    EXPECT_FALSE(map.try_emplace(view, 2).second);
    EXPECT_FALSE(map.insert_or_assign(view, 3).second);
    EXPECT_EQ(map[view], 3);
    EXPECT_EQ(watch.count_allocations(), 0u);
    EXPECT_TRUE(map.try_emplace(view.substr(1), 4).second);
    EXPECT_EQ(watch.count_allocations(), 2u) << "the entry and its key";
    EXPECT_EQ(map.at(key.substr(1)), 4);
}

TEST(Map, NumbersAreConvertedToTheKeyAsEver)
{
    const Map<int, int> map{{-1, 5}, {2, 6}};
    EXPECT_EQ(map.count(-1L), 1u);
    EXPECT_EQ(map.find(short{2})->second, 6);
}

/// Paths have an order of their own, in which "/" comes before everything else and "a//b" is "a/b".
TEST(Map, PathsAreConvertedToTheKeyAsEver)
{
    const std::vector<std::string> keys{"a-b", "a/b", "a/c", "a", "a.b", "ab", "a//b"};
    Numbers map;
    std::map<std::string, int> model;
    for (const std::string& key : keys)
    {
        ++map[std::filesystem::path(key)];
        ++model[std::filesystem::path(key)];
    }
    EXPECT_TRUE(std::equal(map.begin(), map.end(), model.begin(), model.end()));
    const Numbers& constant = map;
    for (const std::string& key : keys)
    {
        const std::filesystem::path path(key);
        EXPECT_EQ(map.find(path), map.find(key)) << key;
        EXPECT_EQ(constant.lower_bound(path), constant.find(key)) << key;
        EXPECT_EQ(constant.upper_bound(path), std::next(constant.find(key))) << key;
        EXPECT_EQ(constant.equal_range(path).first, constant.find(key)) << key;
        EXPECT_TRUE(constant.contains(path)) << key;
        EXPECT_EQ(constant.count(path), 1u) << key;
        EXPECT_EQ(constant.at(path), 1) << key;
        EXPECT_FALSE(map.try_emplace(path, 5).second) << key;
        EXPECT_FALSE(map.insert_or_assign(path, 6).second) << key;
    }
    EXPECT_EQ(map.size(), keys.size());
    check_tree(map);
}

/// A key that numbers are converted to, but are ordered backwards against.
struct Level
{
    Level(int level_number) : number(level_number) {}

    int number;

    friend bool operator<(const Level& left, const Level& right) { return left.number < right.number; }
    [[maybe_unused]] friend bool operator<(const Level& left, int right) { return left.number > right; }
    [[maybe_unused]] friend bool operator<(int left, const Level& right) { return left > right.number; }
};

TEST(Map, KeysAreOrderedByTheirOwnOrderAlone)
{
    Map<Level, int> map;
    for (int number = 0; number < 10; ++number)
        map[number] = number;
    int expected = 0;
    for (const auto& [level, value] : map)
        EXPECT_EQ(level.number, expected++);
    for (int number = 0; number < 10; ++number)
    {
        EXPECT_EQ(map.at(number), number);
        EXPECT_EQ(map.lower_bound(number)->second, number);
        EXPECT_EQ(map.count(number), 1u);
    }
    EXPECT_EQ(map.find(10), map.end());
    check_tree(map);
}

/// A text with an order of its own, which is looked up as the text that it is.
struct BackwardText
{
    std::string_view text;

    operator std::string_view() const { return text; }
    [[maybe_unused]] friend bool operator<(const BackwardText& left, const std::string& right)
    {
        return left.text > right;
    }
    [[maybe_unused]] friend bool operator<(const std::string& left, const BackwardText& right)
    {
        return left > right.text;
    }
};

TEST(Map, WhatIsAViewIsLookedUpInTheOrderOfBytes)
{
    const Numbers map{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}};
    for (const char* const key : {"a", "b", "c", "d"})
    {
        EXPECT_EQ(map.find(BackwardText{key}), map.find(key));
        EXPECT_EQ(map.lower_bound(BackwardText{key}), map.find(key));
        EXPECT_EQ(map.upper_bound(BackwardText{key}), std::next(map.find(key)));
    }
}

TEST(Map, EraseIfErasesWhatThePredicatePicks)
{
    Numbers map{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}, {"e", 6}};
    const Numbers::value_type* const kept = &*map.find("c");
    const auto is_even = [](const Numbers::value_type& entry) { return entry.second % 2 == 0; };
    EXPECT_EQ(erase_if(map, is_even), 3u);
    EXPECT_THAT(map, ElementsAre(Pair("a", 1), Pair("c", 3)));
    EXPECT_EQ(&*map.find("c"), kept);
    EXPECT_EQ(erase_if(map, is_even), 0u);
    check_tree(map);
    EXPECT_EQ(erase_if(map, [](const auto&) { return true; }), 2u);
    EXPECT_TRUE(map.empty());
    check_tree(map);
}

TEST(Map, InsertKeepsWhatIsThere)
{
    Texts map;
    const Texts::value_type constant("a", "1");
    EXPECT_TRUE(map.insert(constant).second);
    EXPECT_FALSE(map.insert(Texts::value_type("a", "2")).second);
    EXPECT_TRUE(map.insert(std::make_pair("b", "3")).second);
    EXPECT_TRUE(map.insert({"c", "4"}).second);
    EXPECT_EQ(map.insert(std::pair<std::string, std::string>("c", "5")).first->second, "4");
    EXPECT_EQ(map.insert(map.end(), constant)->second, "1");
    EXPECT_EQ(map.insert(map.begin(), {"d", "6"})->second, "6");
    EXPECT_EQ(map.insert(map.begin(), std::make_pair("e", "7"))->second, "7");
    map.insert({{"f", "8"}, {"a", "9"}});
    const Texts others{{"g", "10"}};
    map.insert(others.begin(), others.end());
    EXPECT_THAT(map, ElementsAre(Pair("a", "1"), Pair("b", "3"), Pair("c", "4"), Pair("d", "6"), Pair("e", "7"),
                                 Pair("f", "8"), Pair("g", "10")));
    check_tree(map);
}

TEST(Map, EmplaceMakesAnEntryOfItsArguments)
{
    Texts map;
    EXPECT_TRUE(map.emplace("a", "1").second);
    EXPECT_FALSE(map.emplace("a", "2").second);
    EXPECT_TRUE(map.emplace(std::piecewise_construct, std::forward_as_tuple(2, 'b'), std::forward_as_tuple()).second);
    EXPECT_EQ(map.emplace_hint(map.end(), "c", "3")->second, "3");
    EXPECT_EQ(map.emplace_hint(map.end(), "c", "4")->second, "3");
    EXPECT_THAT(map, ElementsAre(Pair("a", "1"), Pair("bb", ""), Pair("c", "3")));
}

TEST(Map, TryEmplaceLeavesItsArgumentsWhereTheKeyIsThere)
{
    Map<std::string, std::unique_ptr<int>> map;
    auto first = std::make_unique<int>(1);
    auto second = std::make_unique<int>(2);
    std::string key(50, 'k');
    EXPECT_TRUE(map.try_emplace(key, std::move(first)).second);
    EXPECT_FALSE(map.try_emplace(std::move(key), std::move(second)).second);
    EXPECT_FALSE(map.try_emplace(map.begin(), std::string(50, 'k'), std::move(second))->second == nullptr);
    EXPECT_EQ(key.size(), 50u);
    EXPECT_EQ(*second, 2);
    const std::string another = "l";
    EXPECT_EQ(*map.try_emplace(map.end(), another, std::move(second))->second, 2);
    EXPECT_EQ(map.size(), 2u);
}

TEST(Map, InsertOrAssignReplacesTheValue)
{
    Texts map;
    const std::string key = "a";
    EXPECT_TRUE(map.insert_or_assign(key, "1").second);
    EXPECT_FALSE(map.insert_or_assign(std::string("a"), "2").second);
    EXPECT_EQ(map.at("a"), "2");
    EXPECT_EQ(map.insert_or_assign(map.end(), key, "3")->second, "3");
    EXPECT_EQ(map.insert_or_assign(map.begin(), std::string("b"), "4")->second, "4");
    EXPECT_FALSE(map.insert_or_assign("b", "5").second);
    EXPECT_THAT(map, ElementsAre(Pair("a", "3"), Pair("b", "5")));
}

/// A key that counts how often it is compared.
struct CountedKey
{
    int number = 0;
    static inline int comparisons = 0;

    friend bool operator<(const CountedKey& left, const CountedKey& right)
    {
        ++comparisons;
        return left.number < right.number;
    }
};

TEST(Map, ARightHintSavesTheSearch)
{
    Map<CountedKey, int> map;
    for (int number = 0; number < 1000; ++number)
    {
        CountedKey::comparisons = 0;
        map.emplace_hint(map.end(), CountedKey{2 * number}, number);
        EXPECT_LE(CountedKey::comparisons, 1);
    }
    auto hint = std::next(map.begin(), 500);
    CountedKey::comparisons = 0;
    map.try_emplace(hint, CountedKey{999}, 0);
    EXPECT_LE(CountedKey::comparisons, 2);
    CountedKey::comparisons = 0;
    map.try_emplace(hint, CountedKey{1001}, 0);
    EXPECT_LE(CountedKey::comparisons, 4);
    EXPECT_EQ(map.size(), 1002u);
    check_tree(map);
}

TEST(Map, AWrongHintDoesNoHarm)
{
    for (int hint = 0; hint <= 10; ++hint)
        for (int key = -1; key <= 20; ++key)
        {
            Map<int, int> map;
            for (int number = 0; number < 10; ++number)
                map[2 * number] = number;
            map.emplace_hint(std::next(map.begin(), hint), key, -1);
            EXPECT_EQ(map.size(), key >= 0 && key < 20 && key % 2 == 0 ? 10u : 11u);
            check_tree(map);
        }
}

TEST(Map, EraseGivesTheEntryBehind)
{
    Numbers map{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}, {"e", 5}};
    EXPECT_EQ(map.erase(map.find("b"))->first, "c");
    EXPECT_EQ(map.erase(map.cbegin())->first, "c");
    EXPECT_EQ(map.erase("x"), 0u);
    EXPECT_EQ(map.erase("e"), 1u);
    EXPECT_EQ(map.erase(std::next(map.begin())), map.end());
    EXPECT_THAT(map, ElementsAre(Pair("c", 3)));
    check_tree(map);
}

TEST(Map, EraseOfARangeGivesItsEnd)
{
    Numbers map{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}};
    EXPECT_EQ(map.erase(map.cbegin(), map.cbegin()), map.begin());
    EXPECT_EQ(map.erase(std::next(map.cbegin()), std::prev(map.cend()))->first, "d");
    EXPECT_EQ(map.size(), 2u);
    EXPECT_EQ(map.erase(map.cbegin(), map.cend()), map.end());
    EXPECT_TRUE(map.empty());
    map["z"] = 1;
    EXPECT_THAT(map, ElementsAre(Pair("z", 1)));
}

TEST(Map, EraseTakesAKeyOfItsOwnEntry)
{
    Numbers map{{std::string(50, 'a'), 1}};
    EXPECT_EQ(map.erase(map.begin()->first), 1u);
    EXPECT_TRUE(map.empty());
}

TEST(Map, ComparesEntryByEntry)
{
    const Numbers small{{"a", 1}};
    const Numbers equal{{"a", 1}};
    const Numbers other_value{{"a", 2}};
    const Numbers longer{{"a", 1}, {"b", 0}};
    EXPECT_TRUE(small == equal);
    EXPECT_FALSE(small != equal);
    EXPECT_TRUE(small != other_value);
    EXPECT_TRUE(small != longer);
    EXPECT_TRUE(small < longer);
    EXPECT_TRUE(longer < other_value);
    EXPECT_TRUE(other_value > small);
    EXPECT_TRUE(small <= equal);
    EXPECT_TRUE(small >= equal);
    EXPECT_FALSE(small < Numbers());
    EXPECT_TRUE(small.value_comp()(*small.begin(), *std::next(longer.begin())));
    EXPECT_TRUE(small.key_comp()("a", "b"));
}

TEST(Map, MoveLeavesEntriesWhereTheyAre)
{
    Numbers map{{"a", 1}, {"b", 2}};
    const Numbers::value_type* const entry = &*map.begin();
    const Numbers::iterator last = std::prev(map.end());
    Numbers moved(std::move(map));
    EXPECT_TRUE(map.empty()); // NOLINT(bugprone-use-after-move): that is promised
    EXPECT_EQ(&*moved.begin(), entry);
    EXPECT_EQ(std::next(last), moved.end());
    map["c"] = 3;
    map = std::move(moved);
    EXPECT_EQ(&*map.begin(), entry);
    EXPECT_TRUE(moved.empty()); // NOLINT(bugprone-use-after-move): that is promised
    EXPECT_EQ(std::next(last), map.end());
    check_tree(map);
    check_tree(moved);
    Numbers from_empty(std::move(moved));
    check_tree(from_empty);
}

TEST(Map, MoveOntoItselfChangesNothing)
{
    Numbers map{{"a", 1}};
    Numbers& same = map;
    map = std::move(same);
    EXPECT_THAT(map, ElementsAre(Pair("a", 1)));
}

TEST(Map, SwapsWithFullAndEmptyMaps)
{
    Numbers left{{"a", 1}};
    Numbers right{{"b", 2}, {"c", 3}};
    const Numbers::iterator entry = left.begin();
    swap(left, right);
    EXPECT_THAT(left, ElementsAre(Pair("b", 2), Pair("c", 3)));
    EXPECT_EQ(right.begin(), entry);
    Numbers empty;
    empty.swap(right);
    EXPECT_TRUE(right.empty());
    EXPECT_EQ(std::next(entry), empty.end());
    for (const Numbers* map : {&left, &right, &empty})
        check_tree(*map);
}

TEST(Map, AssignsAnInitializerList)
{
    Numbers map{{"a", 1}};
    map = {{"c", 3}, {"b", 2}};
    EXPECT_THAT(map, ElementsAre(Pair("b", 2), Pair("c", 3)));
}

TEST(Map, TakesNoMemoryForEmptyMapsAndMoves)
{
    Numbers map{{"a", 1}, {"b", 2}};
    const AllocationWatch watch;
    Numbers moved(std::move(map));
    Numbers empty;
    Numbers copy_of_empty(empty);
    empty.swap(moved);
    moved = std::move(empty);
    EXPECT_EQ(watch.count_allocations(), 0u);
    EXPECT_EQ(moved.size(), 2u);
    EXPECT_TRUE(copy_of_empty.empty());
}

TEST(Map, HoldsMapsOfItsOwnType)
{
    Nested root;
    root.children["a"].children["b"].children["c"];
    const Nested copy = root;
    // The new value is part of the old one.
    root = Nested(root.children.at("a"));
    EXPECT_THAT(root.children.size(), 1u);
    EXPECT_TRUE(root.children.contains("b"));
    root.children = root.children.at("b").children;
    EXPECT_TRUE(root.children.contains("c"));
    EXPECT_TRUE(copy.children.at("a").children.at("b").children.contains("c"));
}

} // namespace
