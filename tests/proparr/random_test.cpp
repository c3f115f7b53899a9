// Random operations on an array against a slow model that is written from the rules alone.
#include "proparr/shape_of.h"

#include <VelaBase/VelaError.h>

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using prop_test::Extents;
using Base = VProparrayBase;

/// A failure, or the answer.
template <class T>
struct Outcome
{
    std::optional<T> value;
    std::string failure;

    bool operator==(const Outcome&) const = default;
};

template <class T>
std::ostream& operator<<(std::ostream& out, const Outcome<T>& outcome)
{
    return out << (outcome.value ? testing::PrintToString(*outcome.value) : outcome.failure);
}

template <class Call>
auto outcome_of(Call call) -> Outcome<decltype(call())>
{
    try
    {
        return {call(), ""};
    }
    catch (const VelaError& error)
    {
        return {std::nullopt, error.get_msg()};
    }
}

[[noreturn]] void fail(const std::string& text)
{
    throw VelaError(text, nullptr, nullptr, 0);
}

std::string text(std::size_t number)
{
    return std::to_string(static_cast<std::int32_t>(number));
}

std::size_t product(const Extents& extents)
{
    if (extents.empty())
        return 0;
    std::size_t n = 1;
    for (const std::size_t extent : extents)
        n *= extent;
    return n;
}

struct Model
{
    Extents sizes;
    std::vector<int> data;

    Extents row() const { return data.empty() ? Extents{0, 0} : Extents{1, data.size()}; }

    Extents get_size(bool check) const
    {
        if (sizes.empty())
            return row();
        if (!check || product(sizes) == data.size())
            return sizes;
        if (sizes == Extents{0, 0} || (sizes.size() == 2 && sizes[0] == 1))
            return row();
        if (sizes.size() == 1)
            return {data.size()};
        fail("Invalid size vector in property array!");
    }

    void set_size(const Extents& wanted, int mode)
    {
        const std::size_t n = product(wanted);
        if (mode == 3)
            data.assign(n, 0);
        else if (!wanted.empty() && n != data.size() && mode == 1)
            fail("Invalid size set!");
        else if (!wanted.empty() && n != data.size() && mode != 0)
            data.resize(n);
        sizes = wanted;
    }

    std::size_t get_idx(const Extents& pos, bool grow)
    {
        const bool was_empty = product(sizes) == 0;
        Extents current = get_size(true);
        const std::size_t rank = current.size();
        const std::string ranks = "'" + text(rank);
        if (pos.size() > rank && !grow)
            fail("Input rank " + ranks + "' too high (> '" + text(pos.size()) + "')!");
        if (pos.size() < rank)
            fail("Input rank " + ranks + "' too low (< '" + text(pos.size()) + "')!");
        current.resize(pos.size(), 1);
        bool changed = false;
        for (std::size_t i = 0; i < pos.size(); ++i)
        {
            if (pos[i] < current[i])
                continue;
            if (!grow || !(was_empty || i + 1 == rank))
                fail("Index " + text(i) + " out of bounds! (" + text(pos[i]) +
                     " >= " + (i < sizes.size() ? text(sizes[i]) : "open") + ")!");
            current[i] = pos[i] + 1;
            changed = true;
        }
        if (changed)
            set_size(current, 2);
        std::size_t index = 0;
        for (std::size_t i = pos.size(); i-- > 0;)
            index = index * current[i] + pos[i];
        return index;
    }

    Extents get_pos(std::size_t index) const
    {
        if (sizes.empty())
            return index == 0 ? Extents{0, 0} : Extents{1, index};
        Extents pos;
        for (std::size_t i = 0; i + 1 < sizes.size(); ++i)
        {
            pos.push_back(index % sizes[i]);
            index /= sizes[i];
        }
        pos.push_back(index);
        return pos;
    }

    bool has_zero_before_the_last() const
    {
        for (std::size_t i = 0; i + 1 < sizes.size(); ++i)
            if (sizes[i] == 0)
                return true;
        return false;
    }
};

class ProparrayRandom : public testing::TestWithParam<unsigned>
{
protected:
    std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random); }

    Extents some_extents(std::size_t max_rank, std::size_t end)
    {
        Extents extents(below(max_rank + 1));
        for (std::size_t& extent : extents)
            extent = below(end);
        return extents;
    }

    void expect_same_index(const Extents& pos, bool grow)
    {
        Outcome<std::size_t> expected = outcome_of([&] { return model.get_idx(pos, grow); });
        const Outcome<std::size_t> found = outcome_of([&] { return array.get_idx(pos, grow); });
        if (const auto open = expected.failure.find("open)!"); open != std::string::npos)
        {
            expected.failure.erase(open);
            EXPECT_EQ(found.failure.compare(0, open, expected.failure), 0) << found.failure;
            return;
        }
        EXPECT_EQ(found, expected) << testing::PrintToString(pos);
    }

    void expect_same_setting(const Extents& sizes, int mode)
    {
        const auto expected = outcome_of([&] { return model.set_size(sizes, mode), 0; });
        const auto found = outcome_of([&] { return array.set_size(sizes, static_cast<Base::set_mode>(mode)), 0; });
        EXPECT_EQ(found, expected) << testing::PrintToString(sizes) << mode;
    }

    void expect_same_position(std::size_t index)
    {
        if (model.has_zero_before_the_last())
            return;
        EXPECT_EQ(array.get_pos(index), model.get_pos(index));
    }

    void change()
    {
        switch (below(9))
        {
        case 0:
            array.push_back(1);
            model.data.push_back(1);
            break;
        case 1:
            if (!array.empty())
            {
                array.pop_back();
                model.data.pop_back();
            }
            break;
        case 2: {
            const std::size_t n = below(12);
            const bool reset = below(2) == 0;
            array.resize(n, reset);
            if (reset)
                model.data.clear();
            model.data.resize(n);
            break;
        }
        case 3:
        case 4:
            expect_same_setting(some_extents(4, 4), static_cast<int>(below(5)));
            break;
        case 5:
            if (!array.empty())
            {
                const std::size_t index = below(array.count());
                array[index] = model.data[index] = static_cast<int>(below(1000));
            }
            break;
        default:
            expect_same_index(some_extents(4, 5), below(4) != 0);
        }
    }

    void expect_same() const
    {
        EXPECT_EQ(static_cast<const std::vector<int>&>(array), model.data);
        EXPECT_EQ(array.count(), model.data.size());
        EXPECT_EQ(array.get_size(false), model.get_size(false));
        EXPECT_EQ(outcome_of([&] { return array.get_size(true); }), outcome_of([&] { return model.get_size(true); }));
        EXPECT_EQ(outcome_of([&] { return array.get_rank(); }),
                  outcome_of([&] { return model.get_size(true).size(); }));
    }

    std::mt19937 random{GetParam()};
    VProparray<int> array;
    Model model;
};

INSTANTIATE_TEST_SUITE_P(Seeds, ProparrayRandom, testing::Range(1u, 41u));

TEST_P(ProparrayRandom, BehavesAsTheModel)
{
    for (int step = 0; step < 2000 && !HasFailure(); ++step)
    {
        change();
        expect_same_position(below(20));
        expect_same();
        // Sizes that fit nothing stay for good: begin anew before they do nothing but fail.
        if (below(60) == 0)
            expect_same_setting({}, 3);
    }
}

}
