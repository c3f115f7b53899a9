// Flush points that this library wrote, where a reader jumps.
#include "binary_io/written_vbf.h"
#include "support/sample_bytes.h"

#include <random>

using namespace vela_test;

namespace {

class FlushPoints : public WritingTest
{
protected:
    /// 70000 samples of two bytes, compressed, in calls of 7 samples less than a block.
    Bytes write_compressed(std::uint64_t block_size)
    {
        const Bytes samples = sparse_bytes(140000);
        const Stack stack = add({700, 100}, vela_dt_uint16);
        stack->set_compression(1, 6);
        stack->set_flush_block_size(block_size);
        for (std::uint64_t at = 0; at < 70000; at += 4993)
            stack->write(vela_dt_uint16, samples.data() + 2 * at, nullptr, std::min<std::uint64_t>(4993, 70000 - at));
        EXPECT_EQ(stack->get_state(), 0);
        return samples;
    }
};

TEST_F(FlushPoints, OfAnySizeAreJumpedToInAnyOrder)
{
    std::mt19937 random(7);
    for (const std::uint64_t block_size : {1000u, 1001u, 65536u, 139999u, 140000u, 1000000u, 0u})
    {
        SCOPED_TRACE(block_size);
        file.open(file_name(path("written.vbf")), VFile::write_mode);
        const Bytes samples = write_compressed(block_size);
        const ByteMap map = closed();
        const std::uint64_t footer =
            first_record_pos + stack_header_size + map.u64(first_record_pos + stack_data_length_at);
        EXPECT_EQ(map.u64(footer + footer_flush_block_size_at), block_size);
        EXPECT_EQ(map.u64(footer + footer_flush_point_count_at), block_size == 0 ? 0 : 140000 / block_size);

        file.open(file_name(path("written.vbf")), VFile::read_mode);
        const Stack stack = file->get_stack(0);
        for (int jump = 0; jump < 60; ++jump)
        {
            const std::uint64_t first = random() % 70000;
            const std::uint64_t count = 1 + random() % std::min<std::uint64_t>(3000, 70000 - first);
            std::uint64_t pos = first;
            Bytes read(2 * count, 0xcd);
            ASSERT_EQ(stack->read(vela_dt_uint16, read.data(), nullptr, count, pos), count);
            ASSERT_TRUE(read == slice(samples, 2 * first, 2 * (first + count))) << first << ", " << count;
        }
        EXPECT_TRUE(samples_of(*stack) == samples);
    }
}

/// Between two blocks, and in the middle of a sample.
TEST_F(FlushPoints, AreJumpedToFromBothSides)
{
    const Bytes samples = write_compressed(1001);
    const Stack stack = reopen()->get_stack(0);
    for (const std::uint64_t at : {1000u, 1002u, 2000u, 2002u, 2004u, 138998u, 139998u, 500u, 0u})
    {
        std::uint64_t pos = at / 2;
        Bytes read(2, 0xcd);
        stack->read(vela_dt_uint16, read.data(), nullptr, 1, pos);
        EXPECT_EQ(read, slice(samples, at, at + 2)) << at;
    }
}

}
