#include "support/allocation_watch.h"
#include "json/map_check.h"

#include <Json/Map.h>
#include <Json/Value.h>

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using Json::Map;
using vela_test::AllocationWatch;
using vela_test::check_tree;

std::string key_of(int number)
{
    return std::to_string(1000 + number);
}

template <class V = int>
Map<std::string, V> numbered(int count)
{
    Map<std::string, V> map;
    for (int number = 0; number < count; ++number)
        map.try_emplace(key_of((number * 7) % count), (number * 7) % count);
    return map;
}

/// Counts its objects, and throws from the copy after which none is allowed.
struct Fragile
{
    Fragile() { ++alive; }
    explicit Fragile(int value) : number(value) { ++alive; }
    Fragile(const Fragile& other) : number(other.number)
    {
        if (copies_left == 0)
            throw std::runtime_error("no more copies");
        --copies_left;
        ++alive;
    }
    Fragile& operator=(const Fragile&) = delete;
    ~Fragile() { --alive; }

    int number = 0;
    static inline int alive = 0;
    static inline int copies_left = 0;
};

using FragileMap = Map<std::string, Fragile>;

struct alignas(64) Aligned
{
    Aligned() = default;
    explicit Aligned(int value) : number(value) {}
    int number = 0;
};

TEST(MapCopy, AllocatesOnce)
{
    for (const int count : {1, 2, 13, 1000})
    {
        const auto map = numbered(count);
        const AllocationWatch watch;
        const auto copy = map;
        EXPECT_EQ(watch.count_allocations(), 1u);
        const std::size_t entry_bytes = sizeof(Json::detail::MapEntry<std::string, int>);
        EXPECT_LE(watch.extra_bytes(), static_cast<std::size_t>(count) * entry_bytes + 40);
        EXPECT_EQ(copy, map);
    }
}

TEST(MapCopy, EveryCountMakesASoundTree)
{
    for (int count = 0; count < 130; ++count)
    {
        const auto map = numbered(count);
        const auto copy = map;
        check_tree(copy);
        EXPECT_EQ(copy, map);
    }
}

TEST(MapCopy, EntriesLieInTheOrderOfTheirKeys)
{
    const auto map = numbered(50);
    const auto copy = map;
    const auto* before = &*copy.begin();
    for (auto entry = std::next(copy.begin()); entry != copy.end(); ++entry)
    {
        const auto* const here = &*entry;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(here) - reinterpret_cast<std::uintptr_t>(before),
                  sizeof(Json::detail::MapEntry<std::string, int>));
        before = here;
    }
}

TEST(MapCopy, MemoryGoesWithTheLastEntryOfTheBlock)
{
    const auto map = numbered(20);
    const AllocationWatch watch;
    auto copy = map;
    const std::size_t whole = watch.extra_bytes();
    while (copy.size() > 1)
        copy.erase(copy.size() % 2 == 0 ? copy.begin() : std::prev(copy.end()));
    EXPECT_EQ(watch.extra_bytes(), whole);
    copy.clear();
    EXPECT_EQ(watch.extra_bytes(), 0u);
}

TEST(MapCopy, BlocksAndSingleEntriesMix)
{
    const auto map = numbered(20);
    const AllocationWatch watch;
    {
        auto copy = map;
        for (int number = 100; number < 120; ++number)
            copy.emplace(key_of(number), number);
        auto copy_of_copy = copy;
        for (int number = 0; number < 120; number += 3)
            copy.erase(key_of(number));
        check_tree(copy);
        copy_of_copy.erase(copy_of_copy.begin());
        copy_of_copy.emplace("another", 0); // as many entries as the block had, but not the same
        EXPECT_EQ(copy_of_copy.size(), 40u);
    }
    EXPECT_EQ(watch.extra_bytes(), 0u);
}

TEST(MapCopy, CopiedEntriesSurviveTheirOrigin)
{
    Map<std::string, std::string> copy;
    {
        const Map<std::string, std::string> map{{std::string(40, 'k'), std::string(40, 'v')}, {"a", "b"}};
        copy = map;
    }
    EXPECT_EQ(copy.at(std::string(40, 'k')), std::string(40, 'v'));
    const auto& same = copy;
    const auto* const entry = &*copy.begin();
    copy = same;
    EXPECT_EQ(&*copy.begin(), entry) << "assigning a map to itself does nothing";
}

TEST(MapCopy, OverAlignedValuesAreAligned)
{
    auto map = numbered<Aligned>(5);
    auto copy = map;
    copy.erase(std::next(copy.begin()));
    for (const auto* one : {&map, &copy})
        for (const auto& entry : *one)
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&entry.second) % 64, 0u);
}

TEST(MapCopy, ThrowingCopyLeaksNothing)
{
    FragileMap source;
    for (int number = 0; number < 13; ++number)
        source.try_emplace(key_of(number) + std::string(40, 'k'), number);
    for (int allowed = 0; allowed < 13; ++allowed)
    {
        FragileMap target;
        target.try_emplace("kept", 5);
        const int alive = Fragile::alive;
        const AllocationWatch watch;
        Fragile::copies_left = allowed;
        EXPECT_THROW(target = source, std::runtime_error);
        Fragile::copies_left = allowed;
        EXPECT_THROW(FragileMap{source}, std::runtime_error);
        EXPECT_EQ(Fragile::alive, alive);
        EXPECT_EQ(watch.extra_bytes(), 0u);
        EXPECT_EQ(target.size(), 1u);
        EXPECT_EQ(target.at("kept").number, 5);
    }
    Fragile::copies_left = 13;
    const FragileMap copy = source;
    EXPECT_EQ(copy.size(), 13u);
}

using Texts = Map<std::string, std::string>;

/// Changes a copy of 13 entries, each with memory of another size, and lets go of it in both ways.
template <class Change>
void expect_nothing_left_of_a_copy(Change change)
{
    Texts source;
    for (int number = 0; number < 13; ++number)
        source.try_emplace(key_of(number), std::string(static_cast<std::size_t>(100 + 50 * number), 'v'));
    const AllocationWatch watch;
    for (const bool clears : {true, false})
    {
        Texts copy = source;
        change(copy);
        if (clears)
        {
            copy.clear();
            EXPECT_EQ(watch.extra_bytes(), 0u);
        }
    }
    EXPECT_EQ(watch.extra_bytes(), 0u);
}

TEST(MapCopy, OfWhichEntriesWereErasedLeavesNothing)
{
    expect_nothing_left_of_a_copy([](Texts& copy) { copy.erase(copy.begin()); });
    expect_nothing_left_of_a_copy([](Texts& copy) { copy.erase(std::prev(copy.end())); });
    expect_nothing_left_of_a_copy([](Texts& copy) { copy.erase(key_of(6)); });
}

TEST(MapCopy, ToWhichEntriesWereAddedLeavesNothing)
{
    expect_nothing_left_of_a_copy([](Texts& copy) { copy.try_emplace("9" + std::string(40, 'k'), "v"); });
    expect_nothing_left_of_a_copy([](Texts& copy) { copy.try_emplace("0" + std::string(40, 'k'), "v"); });
    expect_nothing_left_of_a_copy(
        [](Texts& copy)
        {
            copy.erase(key_of(12));
            copy.try_emplace("9", "v");
        });
}

TEST(MapCopy, ThrowingInsertionLeavesTheMap)
{
    FragileMap map;
    map.try_emplace("a", 1);
    const Fragile value(2);
    const int alive = Fragile::alive;
    Fragile::copies_left = 0;
    EXPECT_THROW(map.try_emplace("b", value), std::runtime_error);
    EXPECT_THROW(map.emplace("b", value), std::runtime_error);
    EXPECT_THROW(map.emplace_hint(map.end(), "b", value), std::runtime_error);
    EXPECT_THROW(map.insert({"b", value}), std::runtime_error);
    EXPECT_EQ(Fragile::alive, alive);
    EXPECT_EQ(map.size(), 1u);
    check_tree(map);
}

TEST(MapClone, CallsForEachValueInTheOrderOfTheKeys)
{
    const auto map = numbered(13);
    Map<std::string, int> clone;
    std::vector<int> seen;
    std::vector<int*> places;
    const AllocationWatch watch;
    clone.clone_from(map,
                     [&](const int& from, int& to)
                     {
                         EXPECT_EQ(to, 0);
                         seen.push_back(from);
                         places.push_back(&to);
                         to = from + 1;
                     });
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    std::size_t index = 0;
    for (auto& [key, value] : clone)
    {
        EXPECT_EQ(value, map.at(key) + 1);
        EXPECT_EQ(&value, places[index++]);
    }
    check_tree(clone);
}

TEST(MapClone, LeavesTheMapAsItWasWhenACallThrows)
{
    auto source = numbered<Fragile>(13);
    for (int allowed = 0; allowed < 13; ++allowed)
    {
        FragileMap clone;
        const int alive = Fragile::alive;
        int left = allowed;
        const auto copy_value = [&](const Fragile& from, Fragile& to)
        {
            if (left-- == 0)
                throw std::runtime_error("enough");
            to.number = from.number;
        };
        EXPECT_THROW(clone.clone_from(source, copy_value), std::runtime_error);
        EXPECT_EQ(Fragile::alive, alive);
        EXPECT_TRUE(clone.empty());
        check_tree(clone);
    }
}

TEST(MapClone, ObjectsOfTheValueTreeAreCopiedInOneBlockEach)
{
    Json::Value plane;
    for (int number = 0; number < 13; ++number)
        plane.at(key_of(number)) = number;
    const AllocationWatch watch;
    const Json::Value copy = plane;
    EXPECT_EQ(watch.count_allocations(), 1u);
    EXPECT_EQ(copy, plane);
}

} // namespace
