// The progress callback while samples are written.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"

#include <vector>

using namespace vela_test;

namespace {

/// Notes every call, and cancels the one with this number, counted from 1.
struct Progress
{
    std::vector<std::uint64_t> calls = {};
    std::size_t cancel_at = 0;
};

int note(std::uint64_t size_bytes, void* user)
{
    Progress& progress = *static_cast<Progress*>(user);
    progress.calls.push_back(size_bytes);
    return progress.calls.size() == progress.cancel_at ? 0 : 1;
}

class ProgressOfWriting : public WritingTest
{
protected:
    ProgressOfWriting() { file->set_progress_callback(note, &progress); }

    Progress progress;
};

TEST_F(ProgressOfWriting, IsToldBehindEachChunkInBytesOnDisk)
{
    file->set_chunk_size(8);
    const Stack stack = add({5}, vela_dt_uint32);
    const Bytes samples = counted_bytes(5);
    stack->write(vela_dt_uint8, samples.data(), nullptr, 5);
    EXPECT_EQ(progress.calls, (std::vector<std::uint64_t>{8, 8, 4}));
}

TEST_F(ProgressOfWriting, AChunkHasAtLeastOneSample)
{
    file->set_chunk_size(3);
    const Stack stack = add({2}, vela_dt_double);
    const std::vector<double> samples = {1.0, 2.0};
    stack->write(vela_dt_double, samples.data(), nullptr, 2);
    EXPECT_EQ(progress.calls, (std::vector<std::uint64_t>{8, 8}));
}

TEST_F(ProgressOfWriting, ACancelledChunkIsOnDiskAndDoesNotCount)
{
    file->set_chunk_size(2);
    progress.cancel_at = 2;
    const Stack stack = add({6});
    EXPECT_VELA_ERROR_IN(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), "VBFStackImp::write", vbf_sources, -11,
                         "Cancelled by user!");
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(on_disk().text(first_record_pos + stack_header_size, 4), "abcd");
    EXPECT_VELA_ERROR(stack->commit(0), -1, "Not enough samples written!");
    EXPECT_VELA_ERROR(file->close(), -1, "Not enough samples written!");
    EXPECT_EQ(on_disk().u64(14), 0u);
}

/// The chunk stays where it is, so whoever goes on has it in front of his samples.
TEST_F(ProgressOfWriting, SamplesBehindACancelledChunkAreShifted)
{
    file->set_chunk_size(2);
    for (const int level : {0, 6})
    {
        progress = Progress();
        progress.cancel_at = 2;
        const Stack stack = add({6});
        stack->set_compression(1, level);
        EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), -11, "Cancelled by user!");
        stack->write(vela_dt_uint8, "cdef", nullptr, 4);
        EXPECT_EQ(stack->get_state(), 0);
    }
    progress.cancel_at = 0;
    VBFFile& opened = reopen();
    for (const std::uint64_t index : {0u, 1u})
        EXPECT_EQ(samples_of(*opened->get_stack(index)), (Bytes{'a', 'b', 'c', 'd', 'c', 'd'}));
}

TEST_F(ProgressOfWriting, AVariableStackIsAsLongAsItsCountedSamples)
{
    file->set_chunk_size(2);
    for (const std::size_t chunks : {0u, 1u})
        for (const int level : {0, 6})
        {
            progress = Progress();
            progress.cancel_at = chunks + 1;
            const Stack stack = add({2, 0});
            stack->set_compression(1, level);
            EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "abcdef", nullptr, 6), -11, "Cancelled by user!");
            stack->commit(0);
        }
    file->set_chunk_size(100);
    add_complete({3}); // the chain goes on behind them
    VBFFile& opened = reopen();
    ASSERT_EQ(opened->number_of_stacks(), 5u);
    for (const std::uint64_t index : {0u, 1u})
        EXPECT_EQ(opened->get_stack(index)->get_sizes(), (Sizes{2, 0}));
    for (const std::uint64_t index : {2u, 3u})
    {
        EXPECT_EQ(opened->get_stack(index)->get_sizes(), (Sizes{2, 1}));
        EXPECT_EQ(samples_of(*opened->get_stack(index)), (Bytes{'a', 'b'}));
    }
    EXPECT_EQ(samples_of(*opened->get_stack(4)), counted_bytes(3));
}

}
