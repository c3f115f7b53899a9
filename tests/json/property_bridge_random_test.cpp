// Random trees are read, written and walked through as the plainest code does it.
#include "json/plain_bridge.h"
#include "json/plain_find.h"
#include "json/property_trees.h"

#include <Json/property_bridge.h>
#include <Json/write.h>

#include <complex>
#include <cstddef>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Json::find_property;
using Json::get_value;
using Json::set_value;
using Json::Value;
using json_test::Sizes;

class RandomTree
{
public:
    explicit RandomTree(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t end) { return random_() % end; }

    /// Of a type that has values, unless `with_others`.
    VProp property(unsigned levels, bool with_others = false)
    {
        if (with_others && below(40) == 0)
            return below(2) == 0 ? VProp() : VProp(std::complex<double>(1, 2));
        const std::size_t choice = below(levels == 0 ? 24 : 40);
        switch (choice)
        {
        case 0:
            return VProp(below(2) == 0);
        case 1:
            return VProp(number<char>());
        case 2:
            return VProp(number<unsigned char>());
        case 3:
            return VProp(number<short>());
        case 4:
            return VProp(number<unsigned short>());
        case 5:
            return VProp(number<int>());
        case 6:
            return VProp(number<unsigned int>());
        case 7:
            return VProp(number<std::int64_t>());
        case 8:
            return VProp(signed_number());
        case 9:
            return VProp(static_cast<float>(number<short>()) / 8);
        case 10:
            return VProp(static_cast<double>(number<std::int64_t>()) / 1024);
        case 11:
            return VProp(text());
        case 12:
            return array<bool>([&] { return below(2) == 0; });
        case 13:
            return array<char>([&] { return number<char>(); });
        case 14:
            return array<unsigned char>([&] { return number<unsigned char>(); });
        case 15:
            return array<short>([&] { return number<short>(); });
        case 16:
            return array<unsigned short>([&] { return number<unsigned short>(); });
        case 17:
            return array<int>([&] { return number<int>(); });
        case 18:
            return array<unsigned int>([&] { return number<unsigned int>(); });
        case 19:
            return array<std::int64_t>([&] { return number<std::int64_t>(); });
        case 20:
            return array<std::uint64_t>([&] { return signed_number(); });
        case 21:
            return array<float>([&] { return static_cast<float>(number<short>()) / 8; });
        case 22:
            return array<double>([&] { return static_cast<double>(number<int>()) / 1024; });
        case 23:
            return array<VPropstring>([&] { return text(); });
        default:
            return container(choice, levels - 1, with_others);
        }
    }

    /// The same tree with some of its values replaced, so that it often does not fit any more.
    void damage(Value& value)
    {
        if (below(30) == 0)
        {
            value = scalar();
            return;
        }
        if (Value::List* const list = value.if_list())
        {
            for (Value& element : *list)
                damage(element);
            if (below(30) == 0)
                list->emplace_back(scalar());
            if (below(30) == 0 && !list->empty())
                list->pop_front();
        }
        if (Value::Object* const object = value.if_object())
        {
            for (auto& entry : *object)
                damage(entry.second);
            if (below(20) == 0)
                (*object)[key()] = scalar();
            if (below(5) == 0 && !object->empty())
                object->erase(object->begin());
        }
    }

    std::string path()
    {
        const char* const parts[] = {"a", "b", "c", "", "0", "1", "2", "3", "07", "-1", "x", "1x"};
        std::string path = parts[below(std::size(parts))];
        for (std::size_t count = below(5); count > 0; --count)
            path.append("/").append(parts[below(std::size(parts))]);
        return path;
    }

private:
    template <class T>
    T number()
    {
        using Limits = std::numeric_limits<T>;
        switch (below(4))
        {
        case 0:
            return Limits::max();
        case 1:
            return Limits::min();
        default:
            return static_cast<T>((std::uint64_t(random_()) << 32U) | random_());
        }
    }

    std::uint64_t signed_number() { return static_cast<std::uint64_t>(number<std::int64_t>()) >> 1U; }

    VPropstring text()
    {
        const wchar_t* const texts[] = {L"", L"text", L"\u00b5m", L"\u4e2d", L"a longer text that needs memory"};
        return VPropstring(texts[below(std::size(texts))]);
    }

    std::string key()
    {
        const char* const keys[] = {"a", "b", "c", "", "0", "1"};
        return keys[below(std::size(keys))];
    }

    Value scalar()
    {
        switch (below(7))
        {
        case 0:
            return {};
        case 1:
            return Value(true);
        case 2:
            return Value(number<std::int64_t>());
        case 3:
            return Value(5);
        case 4:
            return Value(static_cast<double>(number<short>()) / 2);
        case 5:
            return Value("text");
        default:
            return json_test::list({1, 2});
        }
    }

    template <class T, class Make>
    VProp array(Make make)
    {
        const std::vector<Sizes> shapes = {{},        {0, 0},    {1, 1},       {1, 3},      {3, 1}, {4},
                                           {2, 3},    {3, 2},    {2, 1, 2},    {2, 2, 2},   {1, 5}, {1, 1, 3, 1},
                                           {1, 2, 3}, {5, 0, 2}, {2, 1, 1, 2}, {3, 1, 2, 2}};
        const Sizes sizes = shapes[below(shapes.size())];
        std::vector<T> elements;
        for (std::size_t count = VProparrayBase::size(sizes); count > 0; --count)
            elements.push_back(make());
        return json_test::array_of<T>(sizes, elements);
    }

    /// Keys of members differ, or nobody could write to them all.
    VPropstruct members(unsigned levels, bool with_others)
    {
        VPropstruct made;
        for (std::size_t count = below(4); count > 0; --count)
        {
            const std::string name = key();
            if (made.has_key(name))
                continue;
            vela_prop_reserve(made, made.size() + 1);
            made.push_back({name, property(levels, with_others)});
        }
        return made;
    }

    VProp container(std::size_t choice, unsigned levels, bool with_others)
    {
        if (choice < 31)
            return VProp(members(levels, with_others));
        if (choice < 36)
            return array<VProp>([&] { return property(levels, with_others); });
        if (choice < 39)
            return array<VPropstruct>([&] { return members(levels, with_others); });
        const VProp shared = property(levels, with_others);
        return json_test::cells({shared, shared});
    }

    std::mt19937 random_;
};

/// The same types and shapes, with other values in them.
VProp blank(const VProp& property);

struct Blank
{
    const VProp& property;
    VProp result{};

    template <class T>
    void scalar()
    {
        result = VProp(T());
    }
    template <class T>
    void array()
    {
        VProparray<T> array(property.get<VProparray<T>>());
        if constexpr (std::is_same_v<T, VProp>)
        {
            for (VProp& element : array)
                element = blank(element);
        }
        else if constexpr (std::is_same_v<T, VPropstruct>)
        {
            for (VPropstruct& element : array)
                element = blank(VProp(element)).template get<VPropstruct>();
        }
        else
        {
            std::fill(array.begin(), array.end(), T());
        }
        result = VProp(array);
    }
    void structure()
    {
        VPropstruct members(property.get<VPropstruct>());
        for (auto& member : members)
            member.second = blank(member.second);
        result = VProp(members);
    }
};

VProp blank(const VProp& property)
{
    Blank made{property};
    json_test::plain_dispatch(property.get_id(), made);
    return made.result;
}

/// What `statement()` answers, or how it fails.
template <class Statement>
std::string outcome(const Statement& statement)
{
    try
    {
        return statement();
    }
    catch (const std::invalid_argument& error)
    {
        return std::string("invalid argument: ") + error.what();
    }
}

std::string text_of(const Value& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

constexpr unsigned seeds = 3000;

TEST(PropertyBridgeRandom, WhatWasReadIsWrittenBack)
{
    std::size_t containers = 0;
    for (unsigned seed = 0; seed < seeds; ++seed)
    {
        const VProp original = RandomTree(seed).property(4);
        const Value value = get_value(original);
        VProp copy = blank(original);
        containers += value.is_list() || value.is_object() ? 1U : 0U;
        const bool has_changed = set_value(value, copy);
        EXPECT_TRUE(copy == original) << seed;
        EXPECT_TRUE(!has_changed || (copy.get_arr(false) == nullptr && copy.get_id() != vela_dt_struct)) << seed;
        EXPECT_FALSE(set_value(value, copy)) << seed;
        EXPECT_EQ(get_value(copy), value) << seed;
    }
    EXPECT_GT(containers, seeds / 10);
}

TEST(PropertyBridgeRandom, IsReadAsThePlainestCodeReads)
{
    std::size_t failures = 0;
    for (unsigned seed = 0; seed < seeds; ++seed)
    {
        const VProp property = RandomTree(seed).property(4, true);
        const std::string answer = outcome([&] { return text_of(get_value(property)); });
        EXPECT_EQ(answer, outcome([&] { return text_of(json_test::plain_get(property)); })) << seed;
        failures += answer.rfind("invalid", 0) == 0 ? 1U : 0U;
    }
    EXPECT_GT(failures, 50u);
    EXPECT_LT(failures, seeds / 2);
}

TEST(PropertyBridgeRandom, IsWrittenAsThePlainestCodeWrites)
{
    std::size_t failures = 0;
    std::size_t places = 0;
    for (unsigned seed = 0; seed < seeds; ++seed)
    {
        RandomTree random(seed);
        const VProp original = random.property(5);
        Value value = get_value(original);
        random.damage(value);
        VProp one = blank(original);
        VProp other(one);
        const std::string answer = outcome([&] { return std::to_string(set_value(value, one)); });
        EXPECT_EQ(answer, outcome([&] { return std::to_string(json_test::plain_set(value, other)); })) << seed;
        EXPECT_TRUE(one == other) << seed;
        failures += answer.rfind("invalid", 0) == 0 ? 1U : 0U;
        places += answer.find('\n') != answer.npos ? 1U : 0U;
    }
    EXPECT_GT(failures, 100u);
    EXPECT_LT(failures, seeds / 2);
    EXPECT_GT(places, 50u);
}

TEST(PropertyBridgeRandom, IsFoundAsThePlainestCodeFinds)
{
    std::size_t found = 0;
    for (unsigned seed = 0; seed < seeds; ++seed)
    {
        RandomTree random(seed);
        VProp property = random.property(5, true);
        for (int i = 0; i < 20; ++i)
        {
            const std::string path = random.path();
            const auto answer = find_property(property, path);
            EXPECT_EQ(answer, json_test::plain_find(property, path)) << seed << ' ' << path;
            found += answer.first != nullptr ? 1U : 0U;
        }
    }
    EXPECT_GT(found, 200u);
}

TEST(MergeRandom, GivesWhatEitherHasAndPrefersTheTarget)
{
    for (unsigned seed = 0; seed < seeds; ++seed)
    {
        RandomTree random(seed);
        const Value from = json_test::object({{"t", get_value(random.property(5))}});
        Value into(from);
        random.damage(into.at("t"));
        const Value before(into);
        Json::merge(*from.if_object(), into.as_object());
        EXPECT_EQ(into, json_test::plain_merged(from, before)) << seed;
    }
}

}
