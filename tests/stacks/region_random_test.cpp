// Random regions against the plain meaning: which sample of the stack comes to lie where.
#include <VelaStacks/VStackRegion.h>

#include <gtest/gtest.h>

#include "stacks/open_info.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <random>

using vela_test::OpenInfo;
using vela_test::Sizes;

namespace {

using Pixel = std::vector<std::int64_t>;

class Dice
{
public:
    std::int64_t between(std::int64_t low, std::int64_t high)
    {
        return std::uniform_int_distribution<std::int64_t>(low, high)(engine_);
    }
    std::mt19937& engine() { return engine_; }

private:
    std::mt19937 engine_{20260101};
};

Sizes random_sizes(Dice& dice)
{
    Sizes sizes(static_cast<std::size_t>(dice.between(0, 4)));
    for (std::uint64_t& size : sizes)
        size = static_cast<std::uint64_t>(dice.between(0, 8) == 0 ? 0 : dice.between(1, 4));
    return sizes;
}

VStackRegion random_region(Dice& dice, const Sizes& stack_sizes)
{
    VStackRegion region;
    const auto axes = static_cast<std::size_t>(dice.between(0, 5));
    for (std::size_t axis = 0; axis < axes; ++axis)
    {
        region.begin.push_back(dice.between(-3, 5));
        const std::int64_t size = axis < stack_sizes.size() ? static_cast<std::int64_t>(stack_sizes[axis]) : 6;
        const bool to_the_end = dice.between(0, 4) == 0 && region.begin[axis] <= size;
        region.end.push_back(to_the_end ? VStackRegion::unspecified : region.begin[axis] + dice.between(0, 5));
    }
    region.permutation.resize(axes);
    std::iota(region.permutation.begin(), region.permutation.end(), std::uint64_t{0});
    std::ranges::shuffle(region.permutation, dice.engine());
    region.permutation.resize(static_cast<std::size_t>(dice.between(0, static_cast<std::int64_t>(axes))));
    return region;
}

/// Goes to the next pixel of a box, in the order of `walk`. False behind the last.
bool step(Pixel& pixel, const Pixel& begin, const Pixel& end, const Sizes& walk)
{
    for (const std::uint64_t axis : walk)
    {
        if (++pixel[axis] < end[axis])
            return true;
        pixel[axis] = begin[axis];
    }
    return false;
}

/// Which pixel of the stack each pixel of the output comes from, by the two boxes.
std::map<Pixel, Pixel> walk_boxes(const VStackRegion& source, const VStackRegion& target)
{
    std::map<Pixel, Pixel> origins;
    if (source.is_empty() || target.is_empty())
        return origins;
    Pixel from = source.begin;
    Pixel to = target.begin;
    bool more_from = true;
    bool more_to = true;
    while (more_from && more_to)
    {
        origins[to] = from;
        more_from = step(from, source.begin, source.end, source.permutation);
        more_to = step(to, target.begin, target.end, target.permutation);
    }
    EXPECT_EQ(more_from, more_to) << "as many samples in both boxes";
    return origins;
}

/// The same by what the region means.
std::map<Pixel, Pixel> walk_output(const VStackRegion& region, const Sizes& stack_sizes, const Sizes& output_sizes)
{
    std::map<Pixel, Pixel> origins;
    if (std::ranges::find(output_sizes, 0U) != output_sizes.end())
        return origins;
    const Pixel zeros(output_sizes.size());
    const Pixel ends(output_sizes.begin(), output_sizes.end());
    Sizes walk(output_sizes.size());
    std::iota(walk.begin(), walk.end(), std::uint64_t{0});
    Pixel to = zeros;
    do
    {
        Pixel from = region.begin;
        from.resize(std::max(from.size(), stack_sizes.size()));
        for (std::size_t j = 0; j < to.size(); ++j)
            from[region.permutation[j]] += to[j];
        bool inside = true;
        for (std::size_t axis = 0; axis < from.size(); ++axis)
        {
            const bool is_named = std::ranges::find(region.permutation, axis) != region.permutation.end();
            const std::int64_t size = axis < stack_sizes.size() ? static_cast<std::int64_t>(stack_sizes[axis]) : 1;
            if (axis < stack_sizes.size() || is_named)
                inside = inside && from[axis] >= 0 && from[axis] < size;
        }
        from.resize(stack_sizes.size());
        if (inside)
            origins[to] = from;
    } while (step(to, zeros, ends, walk));
    return origins;
}

bool is_exact(const VStackRegion& region, const Sizes& stack_sizes, const Sizes& output_sizes)
{
    for (std::size_t j = 0; j < output_sizes.size(); ++j)
    {
        const std::uint64_t axis = region.permutation[j];
        if (axis >= stack_sizes.size() || region.begin[axis] < 0)
            return false;
        if (static_cast<std::uint64_t>(region.begin[axis]) + output_sizes[j] > stack_sizes[axis])
            return false;
    }
    return true;
}

bool is_permutation_of_axes(Sizes permutation, std::size_t rank)
{
    std::ranges::sort(permutation);
    Sizes axes(rank);
    std::iota(axes.begin(), axes.end(), std::uint64_t{0});
    return permutation == axes;
}

TEST(RandomRegions, BoxesMeetSampleBySample)
{
    Dice dice;
    int with_samples = 0;
    for (int round = 0; round < 20000; ++round)
    {
        const Sizes stack_sizes = random_sizes(dice);
        const VStackRegion region = random_region(dice, stack_sizes);
        OpenInfo info;
        info.set_sizes(stack_sizes);
        bool exact = false;
        VStackRegion source;
        VStackRegion target;
        const Sizes sizes = region.validate(&info, exact, source, target);

        ASSERT_EQ(exact, is_exact(region, stack_sizes, sizes));
        ASSERT_TRUE(is_permutation_of_axes(source.permutation, stack_sizes.size()));
        ASSERT_TRUE(is_permutation_of_axes(target.permutation, sizes.size()));
        const std::map<Pixel, Pixel> origins = walk_boxes(source, target);
        ASSERT_EQ(origins, walk_output(region, stack_sizes, sizes));
        with_samples += origins.empty() ? 0 : 1;
    }
    EXPECT_GT(with_samples, 4000);
}

TEST(RandomRegions, DescribeThemselvesWithoutFailing)
{
    Dice dice;
    for (int round = 0; round < 5000; ++round)
    {
        OpenInfo source;
        source.set_sizes(random_sizes(dice));
        for (std::uint64_t axis = 0; axis < source.get_rank(); ++axis)
        {
            const std::uint64_t size = source.get_dimension_size(axis);
            if (dice.between(0, 2) == 0)
                source.set_col_positions(axis, std::vector<double>(size, 2.5));
            if (dice.between(0, 2) == 0)
                source.set_col_labels(axis, std::vector<std::string>(size, "column"));
        }
        VStackRegion region = random_region(dice, source.get_sizes());
        bool exact = false;
        const Sizes sizes = region.validate(&source, exact);
        OpenInfo info;
        info.create(&source, region);
        ASSERT_EQ(info.get_sizes(), sizes);
        ASSERT_TRUE(info.get_stack_position().is_valid_for(&info));
        for (std::uint64_t axis = 0; axis < sizes.size(); ++axis)
        {
            const std::size_t labels = info.get_col_labels(axis).size();
            ASSERT_TRUE(labels == 0 || labels == sizes[axis]);
            ASSERT_EQ(info.get_col_positions(axis).size(), sizes[axis]);
        }
    }
}

}
