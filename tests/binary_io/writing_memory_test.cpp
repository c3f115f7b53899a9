// How much memory writing takes.
#include "binary_io/vbf_writing.h"
#include "support/allocation_watch.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

class WritingMemory : public VbfWritingTest
{
protected:
    static constexpr std::uint32_t chunk_size = 1u << 18;
    static constexpr std::size_t sample_count = 6u << 20;

    Stack begin_stack(int level)
    {
        begin_file();
        file->set_chunk_size(chunk_size);
        const Stack stack = add({sample_count});
        stack->set_compression(1, level);
        stack->set_flush_block_size(0);
        return stack;
    }

    const Bytes samples = constant_bytes(sample_count);
};

/// One chunk that is converted, and what a segment says of itself: a chunk and 1 MiB.
TEST_F(WritingMemory, IsThatOfAFewChunksHoweverLargeTheStackIs)
{
    for (const int level : {0, 1})
        for (const vela_dt type : {vela_dt_uint8, vela_dt_int8})
        {
            const Stack stack = begin_stack(level);
            const AllocationWatch watch;
            stack->write(type, samples.data(), nullptr, sample_count);
            EXPECT_EQ(stack->get_state(), 0);
            EXPECT_LT(watch.peak_extra_bytes(), 2u * chunk_size + (1u << 20) + (1u << 17)) << level << ' ' << type;
        }
}

TEST_F(WritingMemory, IsNotAskedForAgainByLaterCalls)
{
    for (const int level : {0, 1})
        for (const vela_dt type : {vela_dt_uint8, vela_dt_int8})
        {
            const Stack stack = begin_stack(level);
            stack->write(type, samples.data(), nullptr, chunk_size);
            const AllocationWatch watch;
            for (std::size_t begin = chunk_size; begin < 10 * chunk_size; begin += chunk_size)
                stack->write(type, samples.data() + begin, nullptr, chunk_size);
            EXPECT_EQ(watch.count_allocations(), 0u) << level << ' ' << type;
        }
}

} // namespace
