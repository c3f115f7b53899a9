// What the flush positions of a record are good for. A damaged byte in front shows whether a read went past it.
#include "binary_io/vbf_reading_test.h"

#include "support/zlib_stream.h"

using namespace vela_test;

namespace {

constexpr std::uint64_t block = 1000;
constexpr const char* bad_positions = "Invalid flush positions in segment!";

class VbfFlushPoints : public VbfReadingTest
{
protected:
    /// 3500 bytes in a stream with flush points at 1000, 2000 and 3000.
    static RecordFields flushed_record()
    {
        const FlushedStream stream = deflate_in_blocks(data(), 6, block);
        RecordFields fields = bytes_record(stream.bytes);
        fields.header.sizes = {3500};
        fields.header.compression_type = 1;
        fields.header.compression_level = 6;
        fields.flush_positions = stream.flush_positions;
        fields.flush_block_size = block;
        return fields;
    }

    static Bytes data() { return sparse_bytes(3500); }

    /// The first deflate block has no type that exists.
    static void damage_begin(RecordFields& fields) { fields.header.data.at(2) = 0xff; }

    static void expect_samples(VBFStackInterface& stack, std::uint64_t first)
    {
        EXPECT_EQ(read_at(stack, vela_dt_uint8, 10, first), slice(data(), first, first + 10)) << first;
    }

    static void expect_failure(VBFStackInterface& stack, std::uint64_t first, int id, const std::string& text)
    {
        Bytes bytes(10, stale);
        std::uint64_t pos = first;
        EXPECT_VELA_ERROR(stack.read(vela_dt_uint8, bytes.data(), nullptr, 10, pos), id, text);
        EXPECT_EQ(pos, first);
    }
};

} // namespace

TEST_F(VbfFlushPoints, AReadStartsAtTheOneBelowIt)
{
    RecordFields fields = flushed_record();
    damage_begin(fields);
    const StackPointer stack = only_stack(fields);
    for (const std::uint64_t first : {1000u, 1500u, 1995u, 2000u, 3000u, 3489u})
        expect_samples(*file->get_stack(0), first);
    expect_failure(*stack, 0, -10, "Zip error (-3)!");
    expect_failure(*stack, 990, -10, "Zip error (-3)!");
    expect_samples(*stack, 2345);
}

TEST_F(VbfFlushPoints, WithoutAnyAReadStartsAtTheBeginOfTheData)
{
    RecordFields fields = flushed_record();
    fields.flush_positions.clear(); // the block size alone is ignored
    expect_samples(*only_stack(fields), 2345);
    damage_begin(fields);
    expect_failure(*only_stack(fields), 2345, -10, "Zip error (-3)!");
}

TEST_F(VbfFlushPoints, AreNotUsedWithABlockSizeOfZero)
{
    RecordFields fields = flushed_record();
    fields.flush_block_size = 0;
    fields.tags = {{"behind", "them"}};
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_tag("behind"), "them");
    expect_samples(*stack, 2345);
    damage_begin(fields);
    expect_failure(*only_stack(fields), 2345, -10, "Zip error (-3)!");
}

TEST_F(VbfFlushPoints, ABlockSizeOnAStackThatIsNotCompressedIsIgnored)
{
    RecordFields fields = bytes_record(data());
    fields.flush_block_size = block;
    const StackPointer stack = only_stack(fields);
    expect_samples(*stack, 2345);
    expect_samples(*stack, 0);
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), data());
}

TEST_F(VbfFlushPoints, ThatDoNotAscendMatterOnlyToAReadThatNeedsThem)
{
    RecordFields fields = flushed_record();
    std::swap(fields.flush_positions[0], fields.flush_positions[1]);
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), data());
    expect_samples(*stack, 0);
    expect_failure(*file->get_stack(0), 1500, -4, bad_positions);
    expect_failure(*file->get_stack(0), 2345, -4, bad_positions);
}

TEST_F(VbfFlushPoints, ThatLeaveTheDataMatterOnlyToAReadThatNeedsThem)
{
    RecordFields fields = flushed_record();
    fields.flush_positions[2] = 1000000;
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), data());
    expect_samples(*file->get_stack(0), 2345);
    expect_failure(*file->get_stack(0), 3100, -4, bad_positions);
}

TEST_F(VbfFlushPoints, EachSampleIsReachedFromAnyOther)
{
    const StackPointer stack = only_stack(flushed_record());
    const Bytes expected = data();
    std::uint64_t at = 1;
    for (int i = 0; i < 500; ++i)
    {
        at = at * 1103515245 % 3489;
        ASSERT_EQ(read_at(*stack, vela_dt_uint8, 10, at), slice(expected, at, at + 10)) << at;
    }
}
