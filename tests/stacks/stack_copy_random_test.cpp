// Copies of random regions of random stacks against a model that knows nothing of rows and tiles.

#include "stacks/stack_model.h"
#include "support/rounds.h"

#include <VelaStacks/VStackRegion.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace vela_test;

namespace {

class RandomCopy : public testing::Test
{
protected:
    std::uint64_t below(std::uint64_t limit) { return random() % limit; }
    std::int64_t between(std::int64_t low, std::int64_t high)
    {
        return low + static_cast<std::int64_t>(below(static_cast<std::uint64_t>(high - low + 1)));
    }
    vela_dt any_type() { return iterator_types[below(iterator_types.size())]; }

    /// Mostly few pixels, sometimes enough for several tiles along an axis.
    std::vector<std::uint64_t> any_sizes(std::uint64_t rank)
    {
        std::vector<std::uint64_t> sizes(rank);
        for (std::uint64_t& size : sizes)
            size = below(10) == 0 ? below(2) : 1 + below(9);
        if (rank > 0 && rank < 4)
            sizes[below(rank)] *= below(3) == 0 ? 1 + below(60) : 1;
        return sizes;
    }

    /// A region of up to five axes, more or fewer than the stack has.
    VStackRegion any_region(const std::vector<std::uint64_t>& sizes)
    {
        VStackRegion region;
        const std::uint64_t count = sizes.size() + (below(5) == 0 ? below(2) : 0);
        for (std::uint64_t axis = 0; axis < count; ++axis)
        {
            const std::int64_t size = axis < sizes.size() ? static_cast<std::int64_t>(sizes[axis]) : 1;
            const bool is_inside = below(4) != 0;
            const std::int64_t begin =
                is_inside ? between(0, std::max<std::int64_t>(0, size - 1)) : between(-3, size + 1);
            const std::int64_t end = is_inside ? between(std::min(begin + 1, size), size) : between(begin, size + 3);
            region.begin.push_back(below(2) == 0 ? std::min<std::int64_t>(0, end) : begin);
            region.end.push_back(begin <= size && below(6) == 0 ? VStackRegion::unspecified : std::max(end, begin));
        }
        region.permutation.resize(count);
        std::iota(region.permutation.begin(), region.permutation.end(), 0);
        if (below(3) != 0)
            std::shuffle(region.permutation.begin(), region.permutation.end(), random);
        if (below(3) == 0 || count > 5)
            region.permutation.resize(below(std::min<std::uint64_t>(count, 5) + 1));
        region.dt = below(3) == 0 ? vela_dt_none : any_type();
        return region;
    }

    static std::string text_of(const VStackRegion& region, const PlainStack& source)
    {
        std::ostringstream text;
        text << "type " << source.dt << " to " << region.dt << ", sizes";
        for (const std::uint64_t size : source.sizes)
            text << ' ' << size;
        for (std::size_t axis = 0; axis < region.begin.size(); ++axis)
            text << ", [" << region.begin[axis] << ' ' << region.end[axis] << ')';
        text << ", order";
        for (const std::uint64_t axis : region.permutation)
            text << ' ' << axis;
        return text.str();
    }

    /// A walk of the region that ends before it begins, since it is empty along an axis that is cut away, copies nothing
    /// where the order is that of the source. The model does not know that.
    static bool is_empty_where_cut(const VStackRegion& region)
    {
        for (std::uint64_t axis = 0; axis < region.begin.size(); ++axis)
            if (region.begin[axis] >= region.end[axis] &&
                std::find(region.permutation.begin(), region.permutation.end(), axis) == region.permutation.end())
                return true;
        return false;
    }

    void expect_copy(const AnyTypeStack& source, AnyTypeStack& target, const VStackRegion& region)
    {
        const PlainStack plain = PlainStack::of(source);
        const PlainCopy expected(plain, region, bytes_of(target));
        ASSERT_NO_THROW(target.copy(&source, region)) << text_of(region, plain);
        EXPECT_EQ(target.get_sizes(), expected.target.sizes) << text_of(region, plain);
        EXPECT_EQ(target.get_dt(), expected.target.dt) << text_of(region, plain);
        ASSERT_TRUE(bytes_of(target) == expected.target.bytes) << text_of(region, plain);
    }

    std::mt19937 random{11};
};

TEST_F(RandomCopy, IsThatOfTheModel)
{
    AnyTypeStack reused;
    for (std::size_t round = 0; round < vela_test::rounds(6000); ++round)
    {
        AnyTypeStack source(any_sizes(below(5)), any_type());
        fill_randomly(source, random);
        const VStackRegion region = any_region(source.get_sizes());
        if (is_empty_where_cut(region))
            continue;
        AnyTypeStack fresh;
        expect_copy(source, fresh, region);
        expect_copy(source, reused, region);
        if (HasFatalFailure())
            return;
    }
}

/// Planes that are larger than a tile, in every order of their axes, with strides that are and are not powers of two.
TEST_F(RandomCopy, OfLargePlanesInEveryOrderIsThatOfTheModel)
{
    for (const std::vector<std::uint64_t>& sizes :
         {std::vector<std::uint64_t>{128, 64, 4}, {131, 67, 3}, {4, 128, 64}, {3, 500, 2}, {200, 5, 9}, {17, 16, 33}})
    {
        for (const std::size_t type : {0u, 1u, 4u, 6u, 16u, 17u, 18u})
        {
            AnyTypeStack source(sizes, iterator_types[type]);
            fill_randomly(source, random);
            VStackRegion region;
            region.create(&source, vela_dt_none);
            do
            {
                region.dt = below(2) == 0 ? source.get_dt() : any_type();
                AnyTypeStack target;
                expect_copy(source, target, region);
                if (HasFatalFailure())
                    return;
            } while (std::next_permutation(region.permutation.begin(), region.permutation.end()));
        }
    }
}

/// Large enough to be written past the cache. Its samples are their own numbers, so no slow model is needed.
TEST_F(RandomCopy, OfMegabytesInEveryOrderIsExact)
{
    const std::vector<std::uint64_t> sizes = {301, 512, 67};
    VStackImp source;
    source.create(sizes, vela_dt_uint32);
    count_up<std::uint32_t>(source);
    const std::uint32_t strides[3] = {1, 301, 301 * 512};
    VStackRegion region;
    region.create(&source, vela_dt_none);
    do
    {
        const std::uint64_t* const order = region.permutation.data();
        for (const vela_dt dt : {vela_dt_uint32, vela_dt_double})
        {
            region.dt = dt;
            VStackImp target;
            target.copy(&source, region);
            ASSERT_GT(target.get_block_size(), 32u * 1024 * 1024);
            VStackImp back;
            back.copy(&target, vela_dt_uint32);
            const std::vector<std::uint32_t> samples = samples_of<std::uint32_t>(back);
            std::size_t next = 0;
            std::size_t wrong = 0;
            for (std::uint32_t k = 0; k < sizes[order[2]]; ++k)
                for (std::uint32_t j = 0; j < sizes[order[1]]; ++j)
                    for (std::uint32_t i = 0; i < sizes[order[0]]; ++i)
                        wrong +=
                            samples[next++] != i * strides[order[0]] + j * strides[order[1]] + k * strides[order[2]];
            EXPECT_EQ(wrong, 0u) << dt << " in the order " << order[0] << order[1] << order[2];
        }
    } while (std::next_permutation(region.permutation.begin(), region.permutation.end()));
}

TEST_F(RandomCopy, OfAStackOntoItselfIsThatOfACopy)
{
    for (int round = 0; round < 1000; ++round)
    {
        AnyTypeStack stack(any_sizes(below(5)), any_type());
        fill_randomly(stack, random);
        const VStackRegion region = any_region(stack.get_sizes());
        if (is_empty_where_cut(region))
            continue;
        const PlainStack before = PlainStack::of(stack);
        AnyTypeStack sharing(stack);
        AnyTypeStack& source = below(2) == 0 ? stack : sharing;
        const PlainCopy expected(before, region, before.bytes);
        stack.copy(&source, region);
        ASSERT_EQ(stack.get_sizes(), expected.target.sizes) << text_of(region, before);
        ASSERT_TRUE(bytes_of(stack) == expected.target.bytes) << text_of(region, before);
    }
}

} // namespace
