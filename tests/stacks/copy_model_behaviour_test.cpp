// Copies and walks of random stacks against the plain model of naive_copy.h, the same in every run.
#include <VelaStacks/iterators.h>

#include "naive_copy.h"
#include "open_stack.h"

#include "support/expect_vela_error.h"

#include <algorithm>
#include <numeric>
#include <sstream>

namespace {

using Random = std::mt19937_64;

std::int64_t between(Random& random, std::int64_t low, std::int64_t high)
{
    return low + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(high - low + 1));
}

std::vector<std::uint64_t> random_sizes(Random& random, std::int64_t max_rank)
{
    std::vector<std::uint64_t> sizes(static_cast<std::size_t>(between(random, 0, max_rank)));
    for (std::uint64_t& size : sizes)
        size = static_cast<std::uint64_t>(random() % 12 == 0 ? 0 : between(random, 1, 4));
    return sizes;
}

/// Some of the axes in some order.
std::vector<std::uint64_t> random_axes(Random& random, std::size_t rank)
{
    std::vector<std::uint64_t> axes(rank);
    std::iota(axes.begin(), axes.end(), std::uint64_t{0});
    if (random() % 3 != 0)
        std::shuffle(axes.begin(), axes.end(), random);
    if (rank != 0 && random() % 3 == 0)
        axes.resize(static_cast<std::size_t>(between(random, 0, static_cast<std::int64_t>(rank))));
    return axes;
}

/// Around the stack, at times far beside it, at times with an axis that the stack lacks or one that `begin` lacks.
VStackRegion random_region(Random& random, const std::vector<std::uint64_t>& sizes)
{
    VStackRegion region;
    const std::size_t rank = sizes.size();
    const bool reaches_out = random() % 2 == 0;
    std::size_t axes = rank;
    if (reaches_out && rank < 4 && random() % 4 == 0)
        axes = rank + 1;
    else if (rank != 0 && random() % 6 == 0)
        axes = rank - 1;
    for (std::size_t axis = 0; axis < axes; ++axis)
    {
        const std::int64_t size = axis < rank ? static_cast<std::int64_t>(sizes[axis]) : 1;
        const std::int64_t margin = reaches_out ? 2 : 0;
        const std::int64_t begin = random() % 3 == 0 ? 0 : between(random, -margin, size + margin);
        region.begin.push_back(begin);
        region.end.push_back(
            random() % 3 == 0 && begin <= size ? INT64_MAX : between(random, begin, std::max(begin, size + margin)));
    }
    region.permutation = random_axes(random, axes);
    if (axes > rank && !naive::is_named(region, rank))
        region.permutation.push_back(rank);
    return region;
}

std::string text_of(const naive::Stack& source, const naive::Stack& target, const VStackRegion& region)
{
    std::ostringstream text;
    text << std::hex << source.dt << " -> " << region.dt << " into " << target.dt << std::dec << " sizes ";
    for (const std::uint64_t size : source.sizes)
        text << size << ' ';
    text << "region ";
    for (std::size_t axis = 0; axis < region.begin.size(); ++axis)
        text << region.begin[axis] << ".." << region.end[axis] << ' ';
    text << "permutation ";
    for (const std::uint64_t axis : region.permutation)
        text << axis << ' ';
    return text.str();
}

void put(VStackImp& stack, const naive::Stack& model)
{
    stack.create(model.sizes, model.dt);
    if (!model.bytes.empty())
        std::memcpy(stack.get_data_ptr(), model.bytes.data(), model.bytes.size());
}

void expect_same(const VStackImp& stack, const naive::Stack& expected)
{
    ASSERT_EQ(stack.get_dt(), expected.dt);
    ASSERT_EQ(stack.get_sizes(), expected.sizes);
    const std::vector<unsigned char> block = naive::block_of(stack);
    ASSERT_EQ(block.size(), expected.bytes.size());
    const std::size_t size = naive::size_of(expected.dt);
    for (std::size_t at = 0; at < block.size(); at += size)
    {
        ASSERT_TRUE(naive::same_sample(&block[at], &expected.bytes[at], expected.dt))
            << "sample " << at / size << ": " << naive::digits(&block[at], size) << " for "
            << naive::digits(&expected.bytes[at], size);
    }
}

vela_dt any_type(Random& random)
{
    return naive::sample_types[random() % naive::sample_types.size()].dt;
}

/// An unspecified end before the begin is no region.
bool is_valid(const VStackRegion& region, const std::vector<std::uint64_t>& sizes)
{
    const std::vector<std::int64_t> ends = naive::ends_of(region, sizes);
    for (std::size_t axis = 0; axis < ends.size(); ++axis)
    {
        if (ends[axis] < region.begin[axis])
            return false;
    }
    return true;
}

TEST(CopyModel, RandomRegionsOfRandomStacksInRandomTypes)
{
    Random random(20240611);
    int plain = 0;
    int reordered = 0;
    int reaching_out = 0;
    int left_alone = 0;
    for (int round = 0; round < 6000 && !HasFatalFailure(); ++round)
    {
        const naive::Stack source = naive::random_stack(random, any_type(random), random_sizes(random, 4));
        const naive::Stack before = naive::random_stack(random, any_type(random), random_sizes(random, 3));
        VStackRegion region = random_region(random, source.sizes);
        region.dt = random() % 4 == 0 ? 0 : any_type(random);
        if (!is_valid(region, source.sizes))
            continue;
        SCOPED_TRACE(testing::Message() << "round " << round << ": " << text_of(source, before, region));
        naive::OpenStack from;
        put(from, source);
        naive::OpenStack into;
        put(into, before);
        into.copy(&from, region);
        const naive::Stack expected = naive::copied(before, source, region);
        expect_same(into, expected);
        expect_same(from, source);

        naive::Stack resized = before;
        resized.bytes.resize(expected.bytes.size());
        const std::vector<std::int64_t> indices = naive::source_indices(region, source.sizes);
        const bool inside = std::find(indices.begin(), indices.end(), -1) == indices.end();
        if (resized.bytes == expected.bytes)
            ++left_alone;
        else if (naive::is_plain_copy(region, source, expected))
            ++plain;
        else if (inside)
            ++reordered;
        else
            ++reaching_out;
    }
    // Every path is gone many times.
    EXPECT_GT(plain, 300);
    EXPECT_GT(reordered, 300);
    EXPECT_GT(reaching_out, 300);
    EXPECT_GT(left_alone, 300);
}

TEST(CopyModel, EveryPairOfTypesWholeAndTransposed)
{
    Random random(7);
    for (const naive::SampleType& from_type : naive::sample_types)
    {
        const naive::Stack source = naive::random_stack(random, from_type.dt, {5, 7});
        naive::OpenStack from;
        put(from, source);
        for (const naive::SampleType& into_type : naive::sample_types)
        {
            const naive::Stack before = naive::random_stack(random, into_type.dt, {7, 5});
            for (const VStackRegion& region :
                 {naive::box({0, 0}, {5, 7}, {0, 1}, into_type.dt), naive::box({0, 0}, {5, 7}, {1, 0}, into_type.dt),
                  naive::box({1, 0}, {5, 6}, {0, 1}, into_type.dt), naive::box({-1, 2}, {4, 9}, {0, 1}, into_type.dt)})
            {
                SCOPED_TRACE(text_of(source, before, region));
                naive::OpenStack into;
                put(into, before);
                into.copy(&from, region);
                expect_same(into, naive::copied(before, source, region));
            }
        }
        if (HasFatalFailure())
            return;
    }
}

// As if the source had been copied first: the target is the source, or shares its block.
TEST(CopyModel, OntoItselfAndOntoOneThatSharesItsBlock)
{
    Random random(99);
    for (int round = 0; round < 2500 && !HasFatalFailure(); ++round)
    {
        const vela_dt dt = naive::record_types[random() % naive::record_types.size()];
        const naive::Stack source = naive::random_stack(random, dt, random_sizes(random, 3));
        VStackRegion region = random_region(random, source.sizes);
        region.dt = random() % 3 == 0 ? 0 : naive::record_types[random() % naive::record_types.size()];
        if (!is_valid(region, source.sizes))
            continue;
        SCOPED_TRACE(testing::Message() << "round " << round << ": " << text_of(source, source, region));
        const naive::Stack expected = naive::copied(source, source, region);

        VStackImp itself;
        put(itself, source);
        itself.copy(&itself, region);
        expect_same(itself, expected);

        VStackImp from;
        put(from, source);
        VStackImp sharing(from);
        sharing.copy(&from, region);
        expect_same(sharing, expected);
        ASSERT_EQ(from.get_data_ptr(), sharing.get_data_ptr());
        ASSERT_EQ(from.get_sizes(), source.sizes);
    }
}

TEST(WalkModel, RandomBoxesInRandomOrders)
{
    Random random(4);
    int walks = 0;
    for (int round = 0; round < 3000 && !HasFailure(); ++round)
    {
        const std::vector<std::uint64_t> sizes = random_sizes(random, 4);
        VStackRegion region = random_region(random, sizes);
        if (region.permutation.empty() || region.is_empty() || !is_valid(region, sizes))
            continue;
        const std::vector<std::int64_t> indices = naive::source_indices(region, sizes);
        if (indices.empty() || std::find(indices.begin(), indices.end(), -1) != indices.end())
            continue;
        SCOPED_TRACE(testing::Message() << "round " << round << ": " << text_of({0, sizes, {}}, {}, region));
        if (std::any_of(region.permutation.begin(), region.permutation.end(),
                        [&](std::uint64_t axis) { return axis >= sizes.size(); }))
        {
            VStackImp stack;
            stack.create(sizes, vela_dt_uint32);
            EXPECT_VELA_ERROR(stack.get_iterator(region), -15,
                              "Cannot create iterator over region exceeding the stack!");
            continue;
        }
        ++walks;
        VStackImp stack;
        stack.create(sizes, vela_dt_uint32);
        std::vector<std::uint32_t> numbers(stack.get_number_of_elements());
        std::iota(numbers.begin(), numbers.end(), 0U);
        naive::set_samples(stack, numbers);

        std::vector<std::int64_t> read;
        const auto it = stack.get_iterator(region);
        for (; !it->at_end(); it->advance())
        {
            std::int64_t sample = -1;
            it->get_value(sample);
            read.push_back(sample);
            it->set_value(std::uint32_t{1000000} + static_cast<std::uint32_t>(sample));
        }
        EXPECT_EQ(read, indices);

        for (const std::int64_t index : indices)
            numbers[static_cast<std::size_t>(index)] = 1000000U + static_cast<std::uint32_t>(index);
        EXPECT_EQ(naive::samples_of<std::uint32_t>(stack), numbers);
    }
    EXPECT_GT(walks, 300);
}

} // namespace
