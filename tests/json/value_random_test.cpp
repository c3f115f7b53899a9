// Random operations on random trees, each done to a plain tree too, which has to look the same after each.
#include "json/plain_value.h"
#include "json/value_text.h"

#include <Json/Value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using Json::Value;
using json_test::PlainValue;
using json_test::value_text;

/// A value and the plain one that has to look like it.
struct Pair
{
    Value value;
    PlainValue plain;
};

class RandomTrees
{
public:
    explicit RandomTrees(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t end) { return random_() % end; }

    Pair scalar()
    {
        static const double decimals[] = {0.0,
                                          -0.0,
                                          1.0,
                                          2.5,
                                          9007199254740993.0,
                                          9223372036854775808.0,
                                          -9223372036854775808.0,
                                          std::numeric_limits<double>::infinity()};
        static const std::int64_t integers[] = {0, 1, -1, 9007199254740993, INT64_MAX, INT64_MIN};
        Pair made;
        made.plain.kind = static_cast<int>(below(5));
        switch (made.plain.kind)
        {
        case 1:
            made.plain.boolean = below(2) == 1;
            made.value = Value(made.plain.boolean);
            break;
        case 2:
            made.plain.integer = integers[below(std::size(integers))];
            made.value = Value(made.plain.integer);
            break;
        case 3:
            made.plain.decimal = decimals[below(std::size(decimals))];
            made.value = Value(made.plain.decimal);
            break;
        case 4:
            made.plain.text = std::string(below(3) * below(20), 'x');
            made.value = Value(made.plain.text);
            break;
        default:
            break;
        }
        return made;
    }

    Pair tree(std::size_t depth)
    {
        if (depth == 0 || below(3) == 0)
            return scalar();
        Pair made;
        made.plain.kind = below(2) == 0 ? 5 : 6;
        Value::List list;
        Value::Object object;
        for (std::size_t members = below(4); members > 0; --members)
        {
            Pair member = tree(depth - 1);
            if (made.plain.kind == 5)
            {
                list.push_back(member.value);
                made.plain.list.push_back(member.plain);
                continue;
            }
            const std::string name = key();
            object[name] = member.value;
            made.plain.object[name] = member.plain;
        }
        made.value = made.plain.kind == 5 ? Value(list) : Value(object);
        return made;
    }

    std::string key()
    {
        static const char* const keys[] = {"", "a", "b", "\xFF", "long enough to stand outside the string itself"};
        return keys[below(std::size(keys))];
    }

private:
    std::mt19937 random_;
};

typedef std::pair<Value*, PlainValue*> Place;

/// A random place of the tree.
Place place_in(Pair& tree, RandomTrees& random)
{
    Place place(&tree.value, &tree.plain);
    while (random.below(4) != 0)
    {
        if (place.second->kind == 5 && !place.second->list.empty())
        {
            const std::size_t index = random.below(place.second->list.size());
            place = Place(&*std::next(place.first->if_list()->begin(), static_cast<std::ptrdiff_t>(index)),
                          &place.second->list[index]);
        }
        else if (place.second->kind == 6 && !place.second->object.empty())
        {
            const auto entry = std::next(place.second->object.begin(),
                                         static_cast<std::ptrdiff_t>(random.below(place.second->object.size())));
            place = Place(&place.first->if_object()->find(entry->first)->second, &entry->second);
        }
        else
            break;
    }
    return place;
}

/// Does both, and both succeed or both are a bad cast.
template <class ToValue, class ToPlain>
void do_both(ToValue to_value, ToPlain to_plain)
{
    bool plain_failed = false;
    try
    {
        to_plain();
    }
    catch (const PlainValue::BadCast&)
    {
        plain_failed = true;
    }
    try
    {
        to_value();
        EXPECT_FALSE(plain_failed);
    }
    catch (const std::bad_cast&)
    {
        EXPECT_TRUE(plain_failed);
    }
}

void access(const Place& place, RandomTrees& random)
{
    Value& value = *place.first;
    PlainValue& plain = *place.second;
    const std::string key = random.key();
    const std::size_t index = random.below(5);
    switch (random.below(7))
    {
    case 0:
        return do_both([&] { value.as_decimal(); }, [&] { plain.as_decimal(); });
    case 1:
        return do_both([&] { value.as_integer(); }, [&] { plain.as_integer(); });
    case 2:
        return do_both([&] { value.as_string(); }, [&] { plain.as_string(); });
    case 3:
        return do_both([&] { value.as_object(); }, [&] { plain.as_object(); });
    case 4:
        return do_both([&] { value.as_list(); }, [&] { plain.as_list(); });
    case 5:
        return do_both([&] { value.at(key); }, [&] { plain.at(key); });
    default:
        return do_both([&] { value.at(index); }, [&] { plain.at(index); });
    }
}

void change(Pair& tree, RandomTrees& random)
{
    const Place target = place_in(tree, random);
    if (random.below(3) != 0)
        return access(target, random);
    const Place source = place_in(tree, random);
    switch (random.below(4))
    {
    case 0: // within the tree: a part into another, above, below or beside it
    {
        const PlainValue copy = *source.second;
        *target.first = *source.first;
        *target.second = copy;
        return;
    }
    case 1: // a part onto the root
    {
        PlainValue copy = *source.second;
        tree.value = std::move(*source.first);
        tree.plain = std::move(copy);
        return;
    }
    case 2: {
        Pair fresh = random.tree(3);
        *target.first = std::move(fresh.value);
        *target.second = fresh.plain;
        EXPECT_TRUE(fresh.value.is_null()); // NOLINT(bugprone-use-after-move)
        return;
    }
    default: {
        const Value moved(std::move(*source.first));
        EXPECT_EQ(value_text(moved), source.second->shown());
        *source.second = PlainValue();
        return;
    }
    }
}

TEST(ValueRandom, OperationsDoWhatTheTablesSay)
{
    for (unsigned seed = 0; seed < 400; ++seed)
    {
        RandomTrees random(seed);
        Pair tree = random.tree(5);
        ASSERT_EQ(value_text(tree.value), tree.plain.shown()) << "seed " << seed;
        for (int step = 0; step < 40; ++step)
        {
            change(tree, random);
            ASSERT_EQ(value_text(tree.value), tree.plain.shown()) << "seed " << seed << ", step " << step;
            ASSERT_EQ(tree.value.count(), tree.plain.count()) << "seed " << seed << ", step " << step;
            if (tree.plain.shown().size() > 20000) // copies of the root into itself double it
                tree = random.tree(5);
        }
    }
}

TEST(ValueRandom, EqualityIsThatOfThePlainTrees)
{
    int equal_pairs = 0;
    for (unsigned seed = 0; seed < 2000; ++seed)
    {
        RandomTrees random(seed);
        const Pair left = random.tree(2);
        const Pair right = random.tree(2);
        Pair edited = left;
        *place_in(edited, random).first = right.value;
        EXPECT_TRUE(left.value == Value(left.value)) << value_text(left.value);
        EXPECT_EQ(left.value == right.value, left.plain.equals(right.plain))
            << value_text(left.value) << " and " << value_text(right.value);
        EXPECT_EQ(left.value == right.value, right.value == left.value);
        EXPECT_NE(left.value == right.value, left.value != right.value);
        // The text tells the zeros apart, which are equal: so it may differ where the values do not.
        if (left.value != edited.value)
        {
            EXPECT_NE(value_text(left.value), value_text(edited.value));
        }
        equal_pairs += left.value == right.value ? 1 : 0;
    }
    EXPECT_GT(equal_pairs, 20);
}

}
