// The choice of the flush block against the words that define it, step by step.
#include "sources/binary_io/flush_block.h"

#include "binary_io/flush_block_model.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

using Vela::detail::any_flush_block;
using Vela::detail::choose_flush_block;

namespace {

using Sizes = std::vector<std::uint64_t>;

std::uint64_t literal_choice(const Sizes& sizes, std::uint64_t sample_size)
{
    return vela_test::chosen_block(sizes, sample_size, any_flush_block);
}

TEST(FlushBlock, IsThatOfTheLiteralSteps)
{
    std::mt19937 random(11);
    for (int round = 0; round < 20000; ++round)
    {
        Sizes sizes(1 + random() % 5);
        for (std::uint64_t& size : sizes)
            size = 1 + random() % (round % 3 == 0 ? 5000 : 700);
        const std::uint64_t sample_size = std::uint64_t{1} << random() % 5;
        ASSERT_EQ(choose_flush_block(sizes, sample_size, any_flush_block), literal_choice(sizes, sample_size))
            << testing::PrintToString(sizes) << " * " << sample_size;
    }
}

TEST(FlushBlock, OfOneLongAxisIsThatOfTheLiteralSteps)
{
    for (std::uint64_t size = 0xff00; size < 0x90000; size += 97)
        for (const std::uint64_t sample_size : {1u, 2u, 3u, 8u, 16u})
            ASSERT_EQ(choose_flush_block({size}, sample_size, any_flush_block), literal_choice({size}, sample_size))
                << size << " * " << sample_size;
}

TEST(FlushBlock, StartsWithSixtyFourKibibytes)
{
    EXPECT_EQ(choose_flush_block({0xffff}, 1, any_flush_block), 0u);
    EXPECT_EQ(choose_flush_block({0x10000}, 1, any_flush_block), 0x10000u);
    EXPECT_EQ(choose_flush_block({0x100, 0x100}, 1, any_flush_block), 0x10000u);
    EXPECT_EQ(choose_flush_block({0x40000}, 1, any_flush_block), 0x40000u);
}

TEST(FlushBlock, IsAHyperplaneOrWholeRowsOfOne)
{
    EXPECT_EQ(choose_flush_block({300, 300, 20}, 1, any_flush_block), 90000u);
    EXPECT_EQ(choose_flush_block({512, 512, 20}, 2, any_flush_block), 0x40000u);     // halves
    EXPECT_EQ(choose_flush_block({1000, 1000, 4}, 1, any_flush_block), 250000u);     // quarters
    EXPECT_EQ(choose_flush_block({1000, 997, 4}, 1, any_flush_block), 997000u / 15); // 997 is prime
}

TEST(FlushBlock, OfASmallOrGrowingStackIsNoneWhateverTheWish)
{
    EXPECT_EQ(choose_flush_block({0xffff}, 1, 100), 0u);
    EXPECT_EQ(choose_flush_block({512, 512, 0}, 2, 100), 0u);
    EXPECT_EQ(choose_flush_block({}, 16, 100), 0u);
}

TEST(FlushBlock, IsTheWishWhereThereIsOne)
{
    EXPECT_EQ(choose_flush_block({0x10000}, 1, 100), 100u);
    EXPECT_EQ(choose_flush_block({0x10000}, 1, 0), 0u);
}

TEST(FlushBlock, OfTheLargestSizesIsFoundAtOnce)
{
    // The literal steps would divide a few thousand million times.
    EXPECT_EQ(choose_flush_block({0xffff, 0xffffffff}, 1, any_flush_block), 3u * 0xffff);
    const std::uint64_t prime = 0xfffffffb;
    EXPECT_EQ(choose_flush_block({0xfffb, prime}, 1, any_flush_block), 0xfffb * prime / (0xfffb * prime / 0x10000));
}

}
