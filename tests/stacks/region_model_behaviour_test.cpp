/// Regions against a plain model that walks every pixel: what of the output a stack can feed.
#include "open_info.h"

#include <VelaStacks/VStackRegion.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using vela_test::OpenInfo;
using vela_test::Sizes;
using Pixels = std::vector<std::int64_t>;

constexpr std::int64_t unspecified = 0x7fffffffffffffff;

/// One step of the procedure after the other, as it is told.
struct Model
{
    Sizes sizes;
    bool exact = true;
    bool missing_axis_empty = false; // an axis that the stack lacks does not hold pixel 0
    Pixels source_begin, source_end, target_begin, target_end;
    Sizes source_permutation, target_permutation;

    void add_missing_axis(std::size_t j, std::int64_t begin, std::int64_t end)
    {
        exact = false;
        sizes[j] = static_cast<std::uint64_t>(end - begin);
        target_begin[j] = begin > 0 ? 0 : -begin;
        target_end[j] = begin > 0 ? 0 : 1 - begin;
        if (!(begin <= 0 && 0 < end))
            missing_axis_empty = true;
    }

    void add_axis(std::size_t i, std::size_t j, std::int64_t begin, std::int64_t end, std::int64_t dim)
    {
        sizes[j] = static_cast<std::uint64_t>(end - begin);
        exact = exact && begin >= 0 && end <= dim;
        target_begin[j] = begin >= 0 ? 0 : -begin;
        source_begin[i] = begin >= 0 ? begin : 0;
        source_end[i] = end <= dim ? std::max<std::int64_t>(0, end) : dim;
        target_end[j] = target_begin[j] + source_end[i] - source_begin[i];
        source_permutation.push_back(i);
        target_permutation.push_back(j);
    }

    void add_slice(std::size_t i, std::int64_t begin, std::int64_t dim)
    {
        const bool inside = 0 <= begin && begin < dim;
        source_begin[i] = inside ? begin : 0;
        source_end[i] = inside ? begin + 1 : 0;
    }

    static void complete(Sizes& permutation, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
            if (std::find(permutation.begin(), permutation.end(), i) == permutation.end())
                permutation.push_back(i);
    }

    Model(const VStackRegion& region, const Sizes& stack)
        : sizes(region.permutation.size()), source_begin(stack.size()), source_end(stack.size()),
          target_begin(region.permutation.size()), target_end(region.permutation.size())
    {
        Pixels end = region.end;
        for (std::size_t i = 0; i < end.size(); ++i)
            if (end[i] == unspecified)
                end[i] = i < stack.size() ? static_cast<std::int64_t>(stack[i]) : region.begin[i] + 1;
        for (std::size_t j = 0; j < region.permutation.size(); ++j)
            if (const std::size_t ax = region.permutation[j]; ax >= stack.size())
                add_missing_axis(j, region.begin[ax], end[ax]);
        for (std::size_t i = 0; i < stack.size(); ++i)
        {
            const auto dim = static_cast<std::int64_t>(stack[i]);
            const auto named = std::find(region.permutation.begin(), region.permutation.end(), i);
            if (named == region.permutation.end())
                add_slice(i, i < region.begin.size() ? region.begin[i] : 0, dim);
            else
                add_axis(i, static_cast<std::size_t>(named - region.permutation.begin()), region.begin[i], end[i], dim);
        }
        complete(source_permutation, stack.size());
        complete(target_permutation, sizes.size());
    }
};

class RandomRequest
{
public:
    explicit RandomRequest(unsigned seed) : random_(seed)
    {
        stack = Sizes(static_cast<std::size_t>(pick(0, 4)));
        for (std::uint64_t& size : stack)
            size = static_cast<std::uint64_t>(pick(0, 5));
        const auto axes = static_cast<std::size_t>(pick(0, 5));
        for (std::size_t i = 0; i < axes; ++i)
        {
            region.begin.push_back(pick(-4, 6));
            region.end.push_back(region.begin[i] + pick(0, 8));
            const std::int64_t dim = i < stack.size() ? static_cast<std::int64_t>(stack[i]) : unspecified;
            if (pick(0, 4) == 0 && region.begin[i] <= dim)
                region.end[i] = unspecified;
            region.permutation.push_back(i);
        }
        std::shuffle(region.permutation.begin(), region.permutation.end(), random_);
        region.permutation.resize(static_cast<std::size_t>(pick(0, static_cast<std::int64_t>(axes))));
    }

    Sizes stack;
    VStackRegion region;

private:
    std::int64_t pick(std::int64_t low, std::int64_t high)
    {
        return low + static_cast<std::int64_t>(random_() % static_cast<std::uint64_t>(high - low + 1));
    }

    std::mt19937 random_;
};

/// A stack with the sizes alone: they need no elements.
class SizesOnly : public VStackInfoImp
{
public:
    explicit SizesOnly(const Sizes& of_sizes) { set_sizes(of_sizes); }
};

TEST(RegionModelBehaviour, RandomRequestsResolveStepByStep)
{
    for (unsigned seed = 1; seed <= 4000; ++seed)
    {
        SCOPED_TRACE(seed);
        const RandomRequest request(seed);
        const SizesOnly info(request.stack);
        const Model model(request.region, request.stack);
        bool exact = false;
        VStackRegion source, target;
        EXPECT_EQ(request.region.validate(&info, exact, source, target), model.sizes);
        EXPECT_EQ(exact, model.exact);
        EXPECT_EQ(source.begin, model.source_begin);
        EXPECT_EQ(source.end, model.source_end);
        EXPECT_EQ(source.permutation, model.source_permutation);
        EXPECT_EQ(target.permutation, model.target_permutation);
        if (model.missing_axis_empty)
            EXPECT_TRUE(target.is_empty());
        else
        {
            EXPECT_EQ(target.begin, model.target_begin);
            EXPECT_EQ(target.end, model.target_end);
        }
        if (::testing::Test::HasFailure())
            break;
    }
}

/// Whether pixel `at` of the output has a sample in the stack, by the meaning of a region alone.
bool is_fed(const VStackRegion& region, const Sizes& stack, const Pixels& at)
{
    Pixels where(std::max(stack.size(), region.begin.size()));
    for (std::size_t i = 0; i < stack.size(); ++i)
        where[i] = i < region.begin.size() ? region.begin[i] : 0;
    for (std::size_t j = 0; j < at.size(); ++j)
        where[region.permutation[j]] = region.begin[region.permutation[j]] + at[j];
    for (std::size_t i = 0; i < stack.size(); ++i)
        if (where[i] < 0 || where[i] >= static_cast<std::int64_t>(stack[i]))
            return false;
    for (const std::uint64_t ax : region.permutation)
        if (ax >= stack.size() && where[ax] != 0)
            return false;
    return true;
}

bool contains(const VStackRegion& box, const Pixels& at)
{
    for (std::size_t j = 0; j < at.size(); ++j)
        if (at[j] < box.begin[j] || at[j] >= box.end[j])
            return false;
    return true;
}

bool advance(Pixels& at, const Sizes& sizes)
{
    for (std::size_t j = 0; j < at.size(); ++j)
    {
        if (++at[j] < static_cast<std::int64_t>(sizes[j]))
            return true;
        at[j] = 0;
    }
    return false;
}

TEST(RegionModelBehaviour, BoxesHoldExactlyThePixelsThatTheStackCanFeed)
{
    for (unsigned seed = 1; seed <= 600; ++seed)
    {
        SCOPED_TRACE(seed);
        const RandomRequest request(seed);
        const SizesOnly info(request.stack);
        bool exact = false;
        VStackRegion source, target;
        const Sizes sizes = request.region.validate(&info, exact, source, target);
        if (std::find(sizes.begin(), sizes.end(), 0u) != sizes.end())
            continue;
        const bool readable = !source.is_empty() && !target.is_empty();
        std::uint64_t fed = 0;
        Pixels at(sizes.size());
        do
        {
            const bool expected = is_fed(request.region, request.stack, at);
            fed += expected ? 1 : 0;
            EXPECT_EQ(readable && contains(target, at), expected);
        } while (advance(at, sizes));
        EXPECT_EQ(readable ? source.get_num_pixels() : 0, fed);
        EXPECT_EQ(readable ? target.get_num_pixels() : 0, fed);
        if (::testing::Test::HasFailure())
            break;
    }
}

} // namespace
