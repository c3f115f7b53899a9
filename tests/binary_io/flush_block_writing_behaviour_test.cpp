// Which flush block is chosen, and that reading may start at each flush point.
#include "binary_io/flush_block_model.h"
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace vela_test;

namespace {

class FlushBlockWriting : public VbfWritingTest
{
protected:
    /// Writes a stack of zeros without compression, which keeps its block on disk, and gives that.
    std::uint64_t block_of(const Sizes& sizes, vela_dt dt = vela_dt_uint8, std::uint64_t requested = all_samples)
    {
        begin_file();
        const Stack stack = add(sizes, dt);
        stack->set_flush_block_size(requested);
        write_bytes(stack, Bytes(static_cast<std::size_t>(stack->get_size(0)), 0));
        const WrittenStack written = close_file_with_one_stack();
        EXPECT_EQ(written.flush_point_count, 0u) << "nothing is compressed";
        std::filesystem::remove(file_path);
        return written.flush_block_size;
    }

    /// The same with the size of an empty stack, which costs nothing to write.
    std::uint64_t block_of_empty(const Sizes& sizes, vela_dt dt)
    {
        begin_file();
        add(sizes, dt, true);
        const WrittenStack written = close_file_with_one_stack();
        EXPECT_EQ(written.flush_point_count, 0u);
        std::filesystem::remove(file_path);
        return written.flush_block_size;
    }
};

TEST_F(FlushBlockWriting, IsNoneBelow64KiB)
{
    EXPECT_EQ(block_of({65535}), 0u);
    EXPECT_EQ(block_of({32767}, vela_dt_uint16), 0u);
    EXPECT_EQ(block_of({255, 257}), 0u) << "65535";
    EXPECT_EQ(block_of({65535}, vela_dt_uint8, 1000), 0u) << "whatever was asked for";
    EXPECT_EQ(block_of({1}, vela_dt_uint8, 1), 0u);
}

TEST_F(FlushBlockWriting, IsTheFirstHyperplaneFrom64To256KiB)
{
    EXPECT_EQ(block_of({65536}), 65536u);
    EXPECT_EQ(block_of({65537}), 65537u);
    EXPECT_EQ(block_of({256, 256}), 65536u);
    EXPECT_EQ(block_of({256, 256, 3}), 65536u);
    EXPECT_EQ(block_of({255, 256, 3}), 195840u) << "a plane is too small, the stack is not";
    EXPECT_EQ(block_of({262144}), 262144u);
    EXPECT_EQ(block_of({2, 40000, 3}, vela_dt_uint16), 160000u);
    EXPECT_EQ(block_of({64, 64, 4}, complex_double), 65536u);
    EXPECT_EQ(block_of({1, 1, 1, 1, 70000}), 70000u);
}

TEST_F(FlushBlockWriting, OfALargerHyperplaneIsAWholePartOfIt)
{
    EXPECT_EQ(block_of({512, 512, 2}, vela_dt_uint16), 262144u) << "halves";
    EXPECT_EQ(block_of({1000, 1000}), 250000u) << "quarters";
    EXPECT_EQ(block_of({300000}), 150000u) << "of the axis at which 64 KiB are passed";
    EXPECT_EQ(block_of({1024, 300}), 153600u);
    EXPECT_EQ(block_of({1000, 333}), 111000u) << "two does not divide 333, three does";
}

TEST_F(FlushBlockWriting, OfAHyperplaneThatDoesNotDivideIsTheLastThatIsLargeEnough)
{
    EXPECT_EQ(block_of({1000, 997}), 66466u) << "997000 / 15";
    EXPECT_EQ(block_of({262145}), 65536u) << "262145 / 4";
    EXPECT_EQ(block_of({1000, 331}), 66200u) << "331000 / 5";
}

TEST_F(FlushBlockWriting, ThatIsAskedForStandsFrom64KiBOn)
{
    for (const std::uint64_t block : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{4096}, std::uint64_t{65536},
                                      std::uint64_t{1} << 40, all_samples - 1})
        EXPECT_EQ(block_of({256, 256}, vela_dt_uint8, block), block);
}

TEST_F(FlushBlockWriting, IsChosenWhereAllOnesAreAskedFor)
{
    begin_file();
    const Stack stack = add({1000, 1000});
    stack->set_flush_block_size(7);
    stack->set_flush_block_size(all_samples);
    write_bytes(stack, constant_bytes(1000000));
    EXPECT_EQ(close_file_with_one_stack().flush_block_size, 250000u);
}

TEST_F(FlushBlockWriting, OfAnEmptyStackIsChosenFromItsSizes)
{
    EXPECT_EQ(block_of_empty({512, 512, 4}, vela_dt_uint16), 262144u);
    EXPECT_EQ(block_of_empty({255, 257}, vela_dt_uint8), 0u);
}

TEST_F(FlushBlockWriting, OfRandomStacksIsThatOfTheModel)
{
    std::mt19937 random(20);
    const std::vector<vela_dt> types = {vela_dt_uint8, vela_dt_uint16, vela_dt_single, vela_dt_double, complex_double};
    int chosen = 0;
    while (chosen < 25)
    {
        Sizes sizes(1 + random() % 4);
        const vela_dt dt = types[random() % types.size()];
        std::uint64_t total = size_of(dt);
        for (std::uint64_t& size : sizes)
        {
            size = 1 + random() % (random() % 3 == 0 ? 2000u : 150u);
            total *= size;
        }
        if (total < 60000 || total > 3000000)
            continue;
        ++chosen;
        const std::uint64_t sample_size = size_of(dt);
        ASSERT_EQ(block_of(sizes, dt), chosen_block(sizes, sample_size, all_samples))
            << testing::PrintToString(sizes) << " of " << sample_size;
    }
}

TEST_F(FlushBlockWriting, OfLargeEmptyStacksIsThatOfTheModel)
{
    std::mt19937 random(21);
    const std::vector<vela_dt> types = {vela_dt_uint8, vela_dt_int16, vela_dt_uint32, vela_dt_double, complex_double};
    for (int i = 0; i < 40; ++i)
    {
        Sizes sizes(1 + random() % 3);
        for (std::uint64_t& size : sizes)
            size = 1 + random() % (1u << (1 + random() % 20));
        const vela_dt dt = types[random() % types.size()];
        const std::uint64_t sample_size = size_of(dt);
        ASSERT_EQ(block_of_empty(sizes, dt), chosen_block(sizes, sample_size, all_samples))
            << testing::PrintToString(sizes) << " of " << sample_size;
    }
}

/// `complaints_about` inflates from each flush point.
TEST_F(FlushBlockWriting, EveryWholeBlockEndsInAFlushPoint)
{
    const Bytes data = sparse_bytes(300007);
    for (const std::uint64_t block : {std::uint64_t{0}, std::uint64_t{20000}, std::uint64_t{65536},
                                      std::uint64_t{300007}, std::uint64_t{300008}, all_samples})
        for (const std::size_t piece : {std::size_t{50000}, data.size()})
        {
            SCOPED_TRACE(block);
            begin_file();
            const Stack stack = add({300007});
            stack->set_compression(1, 1);
            stack->set_flush_block_size(block);
            for (std::size_t begin = 0; begin < data.size(); begin += piece)
                write_bytes(stack, slice(data, begin, std::min(begin + piece, data.size())));
            const WrittenStack written = close_file_with_one_stack();
            const std::uint64_t expected = block == all_samples ? 75001 : block;
            EXPECT_EQ(written.flush_block_size, expected);
            EXPECT_EQ(written.flush_point_count, expected == 0 ? 0 : 300007 / expected);
            EXPECT_TRUE(written.samples() == data);
        }
}

TEST_F(FlushBlockWriting, AnExactMultipleHasAFlushPointAtItsEnd)
{
    begin_file();
    const Stack stack = add({256, 256, 3});
    stack->set_compression(1, 6);
    const Bytes data = noisy_bytes(3 * 65536);
    write_bytes(stack, data);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.flush_point_count, 3u);
    EXPECT_TRUE(written.samples() == data);
}

TEST_F(FlushBlockWriting, CountsTheBytesOfTheStackAndNotOfTheBuffer)
{
    begin_file();
    const Stack stack = add({100000}, vela_dt_uint8);
    stack->set_compression(1, 6);
    const std::vector<double> source(100000, 3.0);
    stack->write(vela_dt_double, source.data(), nullptr, 100000);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.flush_block_size, 100000u);
    EXPECT_EQ(written.flush_point_count, 1u);
}

TEST_F(FlushBlockWriting, OfAZlibTypeAtLevelZeroHasNoFlushPoints)
{
    begin_file();
    const Stack stack = add({256, 256});
    stack->set_compression(1, 0);
    write_bytes(stack, constant_bytes(65536));
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.flush_block_size, 65536u);
    EXPECT_EQ(written.flush_point_count, 0u);
    EXPECT_EQ(written.data.size(), 65536u);
}

} // namespace
