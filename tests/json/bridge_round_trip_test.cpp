// Round trips of random trees: through values, and through their XML form.
#include "json/property_kinds.h"

#include <Json/XmlReader.h>
#include <Json/property_bridge.h>
#include <Json/write.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using Json::Value;
using List = Value::List;
using Object = Value::Object;
using vela_test::array_of;
using vela_test::structure;

namespace {

using Sizes = std::vector<std::size_t>;

/// Random properties of all types that have a value. Two trees of one seed have the same shape; the scalars in them
/// differ where `scalar_seed` does.
class RandomProperties
{
public:
    RandomProperties(unsigned seed, unsigned scalar_seed) : shape_(seed), scalars_(scalar_seed) {}

    VProp tree(int depth)
    {
        const int kind = pick(depth > 0 ? 17 : 13);
        switch (kind)
        {
        case 13:
            return VProp(members(depth - 1));
        case 14:
            return array<VProp>([this, depth] { return tree(depth - 1); });
        case 15:
            return array<VPropstruct>([this, depth] { return members(depth - 1); });
        case 16:
            return array<VPropstring>([this] { return VPropstring(text()); });
        default:
            return pick(2) == 0 ? scalar(kind) : array_of_kind(kind);
        }
    }

    VPropstruct members(int depth)
    {
        std::vector<std::pair<std::string, VProp>> made;
        for (int i = pick(4); i > 0; --i)
            made.emplace_back("m" + std::to_string(pick(100)) + "." + std::to_string(i), tree(depth));
        return structure(made);
    }

private:
    int pick(int count) { return static_cast<int>(shape_() % static_cast<unsigned>(count)); }

    template <class T>
    T number()
    {
        const std::uint64_t bits = scalars_();
        if constexpr (std::is_floating_point_v<T>)
            return static_cast<T>(static_cast<std::int64_t>(bits) >> (bits % 60)) / static_cast<T>(1 + bits % 7);
        else if constexpr (std::is_same_v<T, std::uint64_t>)
            return bits >> 1; // no value is above the signed range
        else
            return static_cast<T>(bits);
    }

    std::wstring text()
    {
        std::wstring made(scalars_() % 5, L' ');
        for (wchar_t& c : made)
            c = static_cast<wchar_t>(1 + scalars_() % 0xd7fe);
        return made;
    }

    VProp scalar(int kind)
    {
        switch (kind)
        {
        case 0:
            return VProp(number<bool>());
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
            return VProp(number<std::uint64_t>());
        case 9:
            return VProp(number<float>());
        case 10:
            return VProp(number<double>());
        default:
            return VProp(text());
        }
    }

    VProp array_of_kind(int kind)
    {
        switch (kind)
        {
        case 0:
            return array<bool>([this] { return number<bool>(); });
        case 1:
            return array<char>([this] { return number<char>(); });
        case 2:
            return array<unsigned char>([this] { return number<unsigned char>(); });
        case 7:
            return array<std::int64_t>([this] { return number<std::int64_t>(); });
        case 8:
            return array<std::uint64_t>([this] { return number<std::uint64_t>(); });
        case 9:
            return array<float>([this] { return number<float>(); });
        default:
            return array<double>([this] { return number<double>(); });
        }
    }

    template <class T, class Make>
    VProp array(Make make)
    {
        Sizes sizes;
        for (int rank = pick(4); rank > 0; --rank)
            sizes.push_back(static_cast<std::size_t>(pick(8) == 0 ? 0 : 1 + pick(3)));
        std::vector<T> elements;
        elements.reserve(64);
        for (std::size_t count = sizes.empty() ? static_cast<std::size_t>(pick(4)) : VProparrayBase::size(sizes);
             count > 0; --count)
            elements.push_back(make());
        return array_of<T>(sizes, elements);
    }

    std::mt19937 shape_;
    std::mt19937_64 scalars_;
};

TEST(RoundTrip, OfPropertiesOntoACopyWithOtherScalarsGivesTheOriginal)
{
    std::size_t altered = 0;
    for (unsigned seed = 1; seed <= 600; ++seed)
    {
        const VProp original(RandomProperties(seed, 1).members(4));
        VProp copy(RandomProperties(seed, 2).members(4));
        altered += original == copy ? 0u : 1u;
        const Value value = Json::get_value(original);
        EXPECT_FALSE(Json::set_value(value, copy)) << seed;
        ASSERT_TRUE(copy == original) << seed;
        ASSERT_TRUE(Json::get_value(copy) == value) << seed;
    }
    EXPECT_GT(altered, 350u);
}

TEST(RoundTrip, OfPropertiesLeavesTheSourceAlone)
{
    for (unsigned seed = 1; seed <= 100; ++seed)
    {
        const VProp original(RandomProperties(seed, 1).members(3));
        const VProp twin(RandomProperties(seed, 1).members(3));
        VProp shared(original);
        Json::set_value(Json::get_value(VProp(RandomProperties(seed, 2).members(3))), shared);
        ASSERT_TRUE(original == twin) << seed;
    }
}

/// Random values that the XML form can tell apart and that come back as they are.
class RandomDocuments
{
public:
    explicit RandomDocuments(unsigned seed) : random_(seed) {}

    Object elements(int depth)
    {
        Object made;
        for (int i = 1 + pick(3); i > 0; --i)
        {
            Value& value = made[key()];
            if (pick(4) != 0)
            {
                value = element(depth);
                continue;
            }
            List repeated;
            for (int count = 2 + pick(3); count > 0; --count)
                repeated.push_back(element(depth));
            value = Value(std::move(repeated));
        }
        return made;
    }

private:
    int pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    Value element(int depth)
    {
        const int attributes = pick(3);
        if (attributes == 0 && (depth == 0 || pick(2) == 0))
            return scalar();
        Object made;
        for (int i = 0; i < attributes; ++i)
            made[key()] = pick(6) == 0 ? Value("") : pick(6) == 0 ? Value(" \n" + text()) : scalar();
        if (attributes == 0 || (depth > 0 && pick(2) == 0))
            made[""] = Value(elements(depth - 1));
        else if (pick(2) == 0)
            made[""] = scalar();
        return Value(std::move(made));
    }

    std::string key()
    {
        std::string made(1, "abcdefXYZ"[pick(9)]);
        for (int i = pick(4); i > 0; --i)
            made += "abtrueZ09_:"[pick(11)];
        return made;
    }

    /// Neither a number nor a word for a boolean, and decided at its first character.
    std::string text()
    {
        std::string made(1, "abceghXYZ_+.;/\\\xc3"[pick(16)]);
        for (int i = pick(12); i > 0; --i)
            made += static_cast<char>(pick(4) == 0 ? "<>&'\" \n\t;"[pick(9)] : pick(256));
        return made;
    }

    Value scalar()
    {
        switch (pick(6))
        {
        case 0:
            return Value(pick(2) == 0);
        case 1:
            return Value(static_cast<std::int64_t>(random_()) >> pick(64));
        case 2:
            return Value(static_cast<double>(pick(2000001) - 1000000) / 8); // nine digits at most
        case 3:
            return Value(std::ldexp(static_cast<double>(1 + pick(1000)), pick(900)));
        case 4:
            return Value(-std::stod(std::to_string(1 + pick(100000)) + "e-12"));
        default:
            return Value(text());
        }
    }

    std::mt19937_64 random_;
};

/// What the reader makes of a document that it gets in pieces.
Value read_xml(const std::string& document, std::size_t piece)
{
    Value value;
    Json::XmlReader reader(value);
    bool complete = false;
    for (std::size_t start = 0; start < document.size(); start += piece)
    {
        const char* p = document.data() + start;
        const char* const end = document.data() + std::min(document.size(), start + piece);
        while (p != end)
            complete = reader.read(p, end);
    }
    EXPECT_TRUE(complete) << document;
    return value;
}

TEST(RoundTrip, OfTheXmlFormGivesTheSameValue)
{
    for (unsigned seed = 1; seed <= 1500; ++seed)
    {
        const Value value(RandomDocuments(seed).elements(4));
        std::ostringstream out;
        Json::write_xml(value, out);
        const Value read = read_xml(out.str(), seed % 3 == 0 ? 1 : seed);
        ASSERT_TRUE(read == value) << seed << "\n" << out.str() << "\n" << read;
    }
}

}
