/// Random operations on a map and on `std::map`, which have to agree.

#include "json/map_check.h"

#include <Json/Map.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using Json::Map;
using vela_test::check_tree;

using Tested = Map<std::string, std::string>;
using Model = std::map<std::string, std::string>;

struct Pair
{
    Tested tested;
    Model model;

    void expect_equal() const
    {
        ASSERT_EQ(tested.size(), model.size());
        ASSERT_TRUE(std::equal(tested.begin(), tested.end(), model.begin(), model.end()));
        ASSERT_TRUE(std::equal(tested.rbegin(), tested.rend(), model.rbegin(), model.rend()));
        check_tree(tested);
    }
};

class MapProperty : public testing::TestWithParam<unsigned>
{
protected:
    std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random); }

    /// Some short, some too long for a string to hold in place.
    std::string text() { return std::string(below(4) == 0 ? 30 : 1, 'x') + std::to_string(below(count_keys)); }

    Tested::iterator tested_at(Pair& pair, std::size_t index)
    {
        return std::next(pair.tested.begin(), static_cast<std::ptrdiff_t>(index));
    }

    Model::iterator model_at(Pair& pair, std::size_t index)
    {
        return std::next(pair.model.begin(), static_cast<std::ptrdiff_t>(index));
    }

    void insert(Pair& pair)
    {
        const std::string key = text();
        const std::string value = text();
        switch (below(6))
        {
        case 0:
            EXPECT_EQ(pair.tested.insert({key, value}).second, pair.model.insert({key, value}).second);
            break;
        case 1:
            EXPECT_EQ(pair.tested.emplace(key, value).first->second, pair.model.emplace(key, value).first->second);
            break;
        case 2:
            EXPECT_EQ(pair.tested.try_emplace(key, value).second, pair.model.try_emplace(key, value).second);
            break;
        case 3:
            EXPECT_EQ(pair.tested.insert_or_assign(key, value).second, pair.model.insert_or_assign(key, value).second);
            break;
        case 4:
            pair.tested[key] += value;
            pair.model[key] += value;
            break;
        default: {
            const std::size_t hint = below(pair.model.size() + 1);
            EXPECT_EQ(pair.tested.emplace_hint(tested_at(pair, hint), key, value)->first, key);
            pair.model.emplace_hint(model_at(pair, hint), key, value);
        }
        }
    }

    void erase(Pair& pair)
    {
        const std::size_t size = pair.model.size();
        if (below(2) == 0 || size == 0)
        {
            const std::string key = text();
            EXPECT_EQ(pair.tested.erase(key), pair.model.erase(key));
            return;
        }
        const std::size_t first = below(size);
        if (below(8) != 0)
        {
            const auto behind = pair.tested.erase(tested_at(pair, first));
            pair.model.erase(model_at(pair, first));
            EXPECT_EQ(behind, tested_at(pair, first));
            return;
        }
        const std::size_t last = first + below(std::min<std::size_t>(size - first, 5) + 1);
        pair.tested.erase(tested_at(pair, first), tested_at(pair, last));
        pair.model.erase(model_at(pair, first), model_at(pair, last));
    }

    void look_up(Pair& pair)
    {
        const std::string key = text();
        const auto found = pair.model.find(key);
        EXPECT_EQ(pair.tested.find(key) == pair.tested.end(), found == pair.model.end());
        EXPECT_EQ(pair.tested.contains(key), found != pair.model.end());
        EXPECT_EQ(std::distance(pair.tested.begin(), pair.tested.lower_bound(key.c_str())),
                  std::distance(pair.model.begin(), pair.model.lower_bound(key)));
        EXPECT_EQ(std::distance(pair.tested.begin(), pair.tested.upper_bound(key)),
                  std::distance(pair.model.begin(), pair.model.upper_bound(key)));
    }

    void involve_another(Pair& pair, Pair& other)
    {
        switch (below(5))
        {
        case 0:
            pair = other;
            break;
        case 1:
            std::swap(pair.model, other.model);
            swap(pair.tested, other.tested);
            break;
        case 2: {
            Pair taken(std::move(other));
            other.model.clear();
            EXPECT_TRUE(other.tested.empty());
            pair = std::move(taken);
            break;
        }
        case 3:
            pair.tested.insert(other.tested.begin(), other.tested.end());
            pair.model.insert(other.model.begin(), other.model.end());
            break;
        default:
            EXPECT_EQ(pair.tested == other.tested, pair.model == other.model);
            EXPECT_EQ(pair.tested < other.tested, pair.model < other.model);
        }
    }

    static constexpr std::size_t count_keys = 120;
    std::mt19937 random{GetParam()};
};

TEST_P(MapProperty, AgreesWithTheStandardMap)
{
    std::array<Pair, 3> pairs;
    for (int step = 0; step < 3000; ++step)
    {
        Pair& pair = pairs[below(pairs.size())];
        const std::size_t what = below(1000);
        if (what < 550)
            insert(pair);
        else if (what < 850)
            erase(pair);
        else if (what < 980)
            look_up(pair);
        else if (what < 998)
            involve_another(pair, pairs[below(pairs.size())]);
        else
        {
            pair.tested.clear();
            pair.model.clear();
        }
        ASSERT_NO_FATAL_FAILURE(pair.expect_equal()) << "step " << step;
    }
    for (const Pair& pair : pairs)
        pair.expect_equal();
}

TEST_P(MapProperty, EntriesStayWhereTheyAre)
{
    Tested origin;
    for (std::size_t index = 0; index < 60; ++index)
        origin.emplace(text(), text());
    Tested map = origin; // entries of a block and, later, others
    std::map<std::string, Tested::iterator> entries;
    std::map<std::string, const Tested::value_type*> addresses;
    const auto note = [&](Tested::iterator entry)
    {
        entries[entry->first] = entry;
        addresses[entry->first] = &*entry;
    };
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        note(entry);
    for (int step = 0; step < 1000; ++step)
    {
        const std::string key = text();
        if (below(2) == 0)
            note(map.try_emplace(key, key).first);
        else if (map.erase(key) == 1)
        {
            entries.erase(key);
            addresses.erase(key);
        }
        ASSERT_EQ(map.size(), entries.size());
        for (const auto& [name, entry] : entries)
        {
            ASSERT_EQ(entry->first, name);
            ASSERT_EQ(&*entry, addresses[name]);
            ASSERT_EQ(entry, map.find(name));
        }
    }
    check_tree(map);
}

TEST_P(MapProperty, CopiedEntriesGoInAnyOrder)
{
    Tested origin;
    for (std::size_t index = 0; index < 80; ++index)
        origin.emplace(text(), text());
    Tested copy = origin;
    Tested copy_of_copy = copy;
    std::vector<std::string> keys;
    for (const auto& entry : origin)
        keys.push_back(entry.first);
    std::shuffle(keys.begin(), keys.end(), random);
    for (const std::string& key : keys)
    {
        EXPECT_EQ(copy.erase(key), 1u);
        check_tree(copy);
    }
    EXPECT_TRUE(copy.empty());
    EXPECT_EQ(copy_of_copy, origin);
}

INSTANTIATE_TEST_SUITE_P(Seeds, MapProperty, testing::Range(1u, 6u));

} // namespace
