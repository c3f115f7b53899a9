// In which order bytes go to disk, and how often the system is asked. Counts, unlike times, are the same on every
// machine.
#include "binary_io/disk_writes.h"
#include "binary_io/written_vbf.h"
#include "support/allocation_watch.h"

#include <gmock/gmock.h>

#include <cstddef>

using namespace vela_test;
using testing::ElementsAre;

namespace {

class DiskWritesTest : public WritingTest
{
};

TEST_F(DiskWritesTest, PositionsFollowWhatTheyLeadTo)
{
    DiskWrites disk;
    const Stack first = add({4, 2});
    first->set_name("one");
    first->write(vela_dt_uint8, "abcd", nullptr, 4);
    first->write(vela_dt_uint8, "efgh", nullptr, 4);
    const std::uint64_t data = first_record_pos + stack_header_size + 3;
    const std::uint64_t footer = data + 8;
    const std::uint64_t end = on_disk().u64(footer + footer_stack_end_pos_at);
    EXPECT_THAT(disk.log(), ElementsAre(DiskWrite{0, 34},                                      // file header
                                        DiskWrite{first_record_pos, stack_header_size + 3},    // header and name
                                        DiskWrite{data, 4},                                    //
                                        DiskWrite{data + 4, 4},                                //
                                        DiskWrite{footer, end - footer},                       // and all that follows
                                        DiskWrite{footer + footer_stack_end_pos_at, 8},        //
                                        DiskWrite{first_record_pos + stack_data_length_at, 8}, //
                                        DiskWrite{14, 8}));                                    // the link
}

TEST_F(DiskWritesTest, TheLastSizeOfAVariableStackComesBeforeTheLink)
{
    add_complete({1});
    DiskWrites disk;
    const Stack stack = add({2, 0});
    stack->write(vela_dt_uint8, "abcd", nullptr, 4);
    stack->commit(0);
    const std::uint64_t header = on_disk().u64(first_record_pos + stack_next_at);
    const std::uint64_t data = header + stack_header_size;
    const std::uint64_t footer = data + 4;
    const std::uint64_t end = on_disk().u64(footer + footer_stack_end_pos_at);
    EXPECT_THAT(disk.log(),
                ElementsAre(DiskWrite{header, stack_header_size}, DiskWrite{data, 4}, DiskWrite{footer, end - footer},
                            DiskWrite{footer + footer_stack_end_pos_at, 8}, DiskWrite{header + stack_data_length_at, 8},
                            DiskWrite{header + stack_sizes_at + 4, 8}, DiskWrite{first_record_pos + stack_next_at, 8}));
}

TEST_F(DiskWritesTest, TheDictionaryIsThereBeforeTheFieldThatLeadsToIt)
{
    add_complete({1});
    DiskWrites disk;
    file->close();
    const ByteMap map = on_disk();
    const std::uint64_t dictionary = map.u64(26);
    EXPECT_THAT(disk.log(), ElementsAre(DiskWrite{dictionary, map.size() - dictionary}, DiskWrite{26, 8}));
}

TEST_F(DiskWritesTest, SamplesOfTheStacksTypeGoThereInChunks)
{
    DiskWrites disk;
    file->set_chunk_size(1000);
    const Stack stack = add({600}, vela_dt_uint32);
    const Bytes samples = counted_bytes(2400);
    stack->write(vela_dt_uint32, samples.data(), nullptr, 600);
    ASSERT_GE(disk.log().size(), 5u);
    EXPECT_EQ(disk.log()[2].size_bytes, 1000u);
    EXPECT_EQ(disk.log()[3].size_bytes, 1000u);
    EXPECT_EQ(disk.log()[4].size_bytes, 400u);
}

TEST_F(DiskWritesTest, ALongPartGoesThereByItself)
{
    const std::string text(200000, 't');
    const Stack stack = add({1});
    stack->set_tag("long", text);
    DiskWrites disk;
    stack->write(vela_dt_uint8, "a", nullptr, 1);
    std::size_t long_writes = 0;
    for (const DiskWrite& write : disk.log())
        long_writes += write.size_bytes == text.size() ? 1u : 0u;
    EXPECT_EQ(long_writes, 1u);
    EXPECT_EQ(reopen()->get_stack(0)->get_tag("long"), text);
}

TEST_F(DiskWritesTest, ASmallStackTakesFewSystemCalls)
{
    add_complete({16, 16});
    DiskWrites disk;
    constexpr std::size_t stacks = 100;
    for (std::size_t i = 0; i < stacks; ++i)
    {
        const Stack stack = add({16, 16});
        stack->set_labels({"X", "Y"});
        stack->set_col_labels(0, std::vector<std::string>(16, "column"));
        for (int tag = 0; tag < 50; ++tag)
            stack->set_tag("tag " + std::to_string(tag), "text");
        const Bytes samples = counted_bytes(256);
        stack->write(vela_dt_uint8, samples.data(), nullptr, 256);
    }
    EXPECT_LE(disk.count_calls(), 20 * stacks);
}

/// What 100 more frames cost.
struct Cost
{
    std::size_t calls;
    std::size_t allocations;
};

TEST_F(DiskWritesTest, AGrowingStackTakesAsMuchForItsTenThousandthFrame)
{
    const Stack stack = add({8, 8, 0}, vela_dt_uint16);
    const Bytes frame = counted_bytes(128);
    const auto write_frames = [&](int count)
    {
        const DiskWrites disk;
        const AllocationWatch memory;
        for (int i = 0; i < count; ++i)
            stack->write(vela_dt_uint16, frame.data(), nullptr, 64);
        return Cost{disk.count_calls(), memory.count_allocations()};
    };
    write_frames(900);
    const Cost early = write_frames(100);
    write_frames(8900);
    const Cost late = write_frames(100);
    EXPECT_EQ(stack->get_sizes(), (Sizes{8, 8, 10000}));
    EXPECT_EQ(early.calls, 200u); // a move and a write
    EXPECT_EQ(late.calls, early.calls);
    EXPECT_LE(2 * late.allocations, 3 * early.allocations);
    stack->commit(0);
}

TEST_F(DiskWritesTest, WritingWithoutConversionTakesNoMemoryForSamples)
{
    const Bytes samples(8 << 20, 0x11);
    const Stack stack = add({8 << 20});
    const AllocationWatch memory;
    stack->write(vela_dt_uint8, samples.data(), nullptr, samples.size());
    EXPECT_LE(memory.peak_extra_bytes(), 256u * 1024);
}

TEST_F(DiskWritesTest, AFinishedStackKeepsNoBuffers)
{
    const Bytes samples = counted_bytes(1 << 20);
    const AllocationWatch memory;
    std::vector<Stack> stacks;
    for (int i = 0; i < 20; ++i)
    {
        stacks.push_back(add({1 << 20}, vela_dt_uint16));
        stacks.back()->set_compression(1, 1);
        stacks.back()->write(vela_dt_uint8, samples.data(), nullptr, samples.size());
    }
    EXPECT_LE(memory.extra_bytes(), 20u * 16 * 1024);
}

}
