// What a segment is, and what it refuses in which state.
#include "file/segment_fixture.h"

#include "support/allocation_watch.h"
#include "support/descriptor.h"
#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vela_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

static_assert(!std::is_copy_constructible_v<VZippedSegment> && !std::is_copy_assignable_v<VZippedSegment>);

const int levels[] = {-1, 0, 1, 6};

/// Reaches the protected part.
class OpenSegment : public VZippedSegment
{
public:
    using VZippedSegment::initialize;
};

class SegmentStates : public SegmentTest
{
protected:
    std::vector<std::uint64_t> flush_positions() const
    {
        std::uint64_t ignored = 0;
        return segment.get_flush_positions(ignored);
    }

    std::uint64_t block_size() const
    {
        std::uint64_t size = 12345;
        segment.get_flush_positions(size);
        return size;
    }

    const Bytes data = sparse_bytes(1000);
};

TEST_F(SegmentStates, IsNotInitialisedAtFirst)
{
    EXPECT_EQ(segment.is_initialized(), 0);
    EXPECT_EQ(segment.tell(), 0u);
    EXPECT_THAT(flush_positions(), IsEmpty());
    EXPECT_EQ(block_size(), 0u);
}

TEST_F(SegmentStates, IsOneWhenReadingAndTwoWhenWriting)
{
    for (const int level : levels)
    {
        start_file();
        segment.init_w(file, level, all_ones);
        EXPECT_EQ(segment.is_initialized(), 2);
        segment.end();
        EXPECT_EQ(segment.is_initialized(), 0);
        put_stretch(data);
        start_reading(level, data.size());
        EXPECT_EQ(segment.is_initialized(), 1);
        segment.end();
        EXPECT_EQ(segment.is_initialized(), 0);
    }
}

TEST_F(SegmentStates, TransfersBeforeAnyInitFail)
{
    char byte = 0;
    EXPECT_VELA_ERROR_IN(segment.read(&byte, 1), "VZippedSegment::read", "sources/file", -1, "File not open!");
    // A segment that is not writing is no writer, which is looked at first.
    EXPECT_VELA_ERROR_IN(segment.write(&byte, 1), "VZippedSegment::write", "sources/file", -1,
                         "Trying to write to file in read mode!");
    EXPECT_VELA_ERROR(segment.write_end(), -1, "Trying to write to file in read mode!");
}

TEST_F(SegmentStates, TransfersAfterEndFail)
{
    for (const int level : levels)
    {
        char byte = 0;
        start_file();
        segment.init_w(file, level, all_ones);
        segment.end();
        EXPECT_THROW(segment.read(&byte, 1), VelaError);
        EXPECT_VELA_ERROR(segment.write(&byte, 1), -1, "File not open!");
        EXPECT_VELA_ERROR(segment.write_end(), -1, "File not open!");
        put_stretch(data);
        start_reading(level, data.size());
        segment.end();
        EXPECT_VELA_ERROR(segment.read(&byte, 1), -1, "File not open!");
        EXPECT_VELA_ERROR(segment.write(&byte, 1), -1, "Trying to write to file in read mode!");
    }
}

TEST_F(SegmentStates, EndIsQuietFromEveryState)
{
    EXPECT_NO_THROW(segment.end());
    for (const int level : levels)
    {
        start_file();
        segment.init_w(file, level, all_ones);
        EXPECT_NO_THROW(segment.end());
        EXPECT_NO_THROW(segment.end());
        segment.init_w(file, level, all_ones);
        segment.write(data.data(), data.size());
        EXPECT_NO_THROW(segment.end());
    }
}

TEST_F(SegmentStates, InitOnAClosedFileFails)
{
    VFile closed;
    for (const int level : levels)
    {
        EXPECT_VELA_ERROR(segment.init_w(closed, level, all_ones), -1, "File not open!");
        EXPECT_VELA_ERROR(segment.init_r(closed, level, 0, 10, 10), -1, "File not open!");
        EXPECT_EQ(segment.is_initialized(), 0);
    }
}

TEST_F(SegmentStates, FailedInitEndsWhatWasInProgress)
{
    VFile closed;
    read_stretch(deflate_whole(data), 6, data.size());
    EXPECT_VELA_ERROR(segment.init_r(closed, 6, 0, 10, 10), -1, "File not open!");
    EXPECT_EQ(segment.is_initialized(), 0);
}

TEST_F(SegmentStates, WritingToAFileInReadModeIsRefused)
{
    put_stretch(data);
    for (const int level : levels)
    {
        EXPECT_VELA_ERROR_IN(segment.init_w(file, level, all_ones), "VZippedSegment::init_w", "sources/file", -1,
                             "Trying to write in read mode!");
        EXPECT_EQ(segment.is_initialized(), 0);
    }
}

TEST_F(SegmentStates, WritesToAFileInAppendMode)
{
    put_bytes(path("a"), {1, 2, 3, 4, 5});
    VFile append(file_name(path("a")), VFile::append_mode);
    append.seek(2);
    EXPECT_EQ(segment.init_w(append, 0, all_ones), 2u);
    segment.write("xy", 2);
    segment.end();
    append.close();
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 'x', 'y', 5));
}

TEST_F(SegmentStates, InitForWritingReturnsTheFilesPosition)
{
    for (const int level : levels)
    {
        start_file();
        EXPECT_EQ(segment.init_w(file, level, all_ones), lead);
        EXPECT_EQ(segment.get_beg_pos_file(), lead);
        EXPECT_EQ(segment.get_cur_pos_file(), lead);
        EXPECT_EQ(segment.tell(), 0u);
        EXPECT_THAT(file.writes, IsEmpty());
    }
}

TEST_F(SegmentStates, InitForReadingStartsAtTheGivenPositionAndTouchesNothing)
{
    for (const int level : levels)
    {
        put_stretch(data);
        start_reading(level, data.size());
        EXPECT_EQ(segment.get_beg_pos_file(), lead);
        EXPECT_EQ(segment.get_cur_pos_file(), lead);
        EXPECT_EQ(segment.tell(), 0u);
        EXPECT_EQ(WatchedFile::total_bytes(file.reads), 0u);
    }
}

TEST_F(SegmentStates, InitializeServesBothDirections)
{
    start_file();
    {
        OpenSegment open;
        open.initialize(file, 0, 100, all_ones, true, 3);
        EXPECT_EQ(open.is_initialized(), 2);
        EXPECT_EQ(open.get_beg_pos_file(), 100u);
        open.write("abc", 3);
        EXPECT_VELA_ERROR(open.write("d", 1), -1, "Trying to write beyond segment boundary!");
        EXPECT_EQ(open.write_end(), 3u);
        open.initialize(file, 0, 101, 2, false, 2);
        EXPECT_EQ(open.is_initialized(), 1);
        EXPECT_THAT(read_from(open, 2), ElementsAre('b', 'c'));
        VFile closed;
        EXPECT_VELA_ERROR_IN(open.initialize(closed, 0, 0, 0, false, 0), "VZippedSegment::initialize", "sources/file",
                             -1, "File not open!");
    }
}

TEST_F(SegmentStates, ReaderRefusesToWrite)
{
    for (const int level : levels)
    {
        put_stretch(data);
        start_reading(level, data.size());
        const char* text = "Trying to write to file in read mode!";
        EXPECT_VELA_ERROR_IN(segment.write("a", 1), "VZippedSegment::write", "sources/file", -1, text);
        EXPECT_VELA_ERROR(segment.write("a", 0), -1, text);
        EXPECT_VELA_ERROR(segment.write(nullptr, 0), -1, text);
        EXPECT_VELA_ERROR(segment.write_end(), -1, text);
        EXPECT_EQ(segment.is_initialized(), 1);
    }
}

TEST_F(SegmentStates, WriterRefusesToReadAndToSeek)
{
    for (const int level : levels)
    {
        start_file();
        segment.init_w(file, level, 100);
        segment.write("abc", 3);
        char byte = 0;
        EXPECT_VELA_ERROR_IN(segment.read(&byte, 1), "VZippedSegment::read", "sources/file", -1,
                             "Trying to read from file in write mode!");
        EXPECT_VELA_ERROR(segment.read(&byte, 0), -1, "Trying to read from file in write mode!");
        for (const std::uint64_t target : {0u, 3u, 100u})
            EXPECT_VELA_ERROR_IN(segment.seek(target), "VZippedSegment::seek", "sources/file", -1,
                                 "Trying to seek in write mode!");
        segment.write_end();
        EXPECT_VELA_ERROR(segment.read(&byte, 1), -1, "Trying to read from file in write mode!");
        EXPECT_VELA_ERROR(segment.seek(0), -1, "Trying to seek in write mode!");
    }
}

TEST_F(SegmentStates, FileClosedUnderARunningSegmentIsNoticed)
{
    for (const int level : levels)
    {
        char byte = 0;
        read_stretch(level > 0 ? deflate_whole(data) : data, level, data.size());
        file.close();
        EXPECT_VELA_ERROR(segment.read(&byte, 1), -1, "File not open!");
        EXPECT_NO_THROW(segment.end());
        start_file();
        segment.init_w(file, level, all_ones);
        segment.write("abc", 3);
        file.close();
        EXPECT_VELA_ERROR(segment.write("abc", 3), -1, "File not open!");
        EXPECT_VELA_ERROR(segment.write_end(), -1, "File not open!");
        EXPECT_NO_THROW(segment.end());
    }
}

TEST_F(SegmentStates, FlushBlockSizeIsForWritersOnly)
{
    const char* text = "Setting flush block size only possible in write mode!";
    EXPECT_VELA_ERROR_IN(segment.set_flush_block_size(10), "VZippedSegment::set_flush_block_size", "sources/file", -1,
                         text);
    put_stretch(data);
    for (const int level : levels)
    {
        start_reading(level, data.size());
        EXPECT_VELA_ERROR(segment.set_flush_block_size(10), -1, text);
    }
    segment.end();
    EXPECT_VELA_ERROR(segment.set_flush_block_size(10), -1, text);
}

TEST_F(SegmentStates, FlushBlockSizeIsSetBeforeTheFirstByte)
{
    for (const int level : levels)
    {
        start_file();
        segment.init_w(file, level, all_ones);
        segment.set_flush_block_size(10);
        segment.write("a", 0);
        segment.set_flush_block_size(20);
        EXPECT_EQ(block_size(), 20u);
        segment.write("a", 1);
        EXPECT_VELA_ERROR_IN(segment.set_flush_block_size(30), "VZippedSegment::set_flush_block_size", "sources/file",
                             -1, "Setting flush block size not possible after writing has started!");
        EXPECT_EQ(block_size(), 20u);
    }
}

TEST_F(SegmentStates, FlushPositionsAreForReadersOnly)
{
    const char* text = "Setting flush positions when writing.";
    EXPECT_VELA_ERROR_IN(segment.set_flush_positions({1, 2}, 10), "VZippedSegment::set_flush_positions", "sources/file",
                         -1, text);
    for (const int level : levels)
    {
        start_file();
        segment.init_w(file, level, all_ones);
        EXPECT_VELA_ERROR(segment.set_flush_positions({1, 2}, 10), -1, text);
        segment.end();
        EXPECT_VELA_ERROR(segment.set_flush_positions({1, 2}, 10), -1, text);
    }
    EXPECT_THAT(flush_positions(), IsEmpty());
}

TEST_F(SegmentStates, FlushPositionsComeBackAsTheyWereSet)
{
    put_stretch(data);
    for (const int level : levels)
    {
        start_reading(level, data.size());
        segment.set_flush_positions({7, 5, 5}, 333);
        EXPECT_THAT(flush_positions(), ElementsAre(7, 5, 5));
        EXPECT_EQ(block_size(), 333u);
        segment.set_flush_positions({}, 0);
        EXPECT_THAT(flush_positions(), IsEmpty());
        EXPECT_EQ(block_size(), 0u);
    }
}

TEST_F(SegmentStates, FlushPositionsAreThereBetweenWriteEndAndEnd)
{
    start_file();
    segment.init_w(file, 6, data.size());
    segment.set_flush_block_size(400);
    segment.write(data.data(), data.size());
    segment.write_end();
    EXPECT_EQ(segment.is_initialized(), 2);
    EXPECT_EQ(flush_positions().size(), 2u);
    EXPECT_EQ(block_size(), 400u);
    segment.end();
    EXPECT_THAT(flush_positions(), IsEmpty());
    EXPECT_EQ(block_size(), 0u);
}

TEST_F(SegmentStates, InitForgetsTheTableOfTheLastStream)
{
    start_file();
    segment.init_w(file, 6, data.size());
    segment.set_flush_block_size(400);
    segment.write(data.data(), data.size());
    segment.init_w(file, 6, data.size());
    EXPECT_THAT(flush_positions(), IsEmpty());
    EXPECT_EQ(block_size(), 0u);
    put_stretch(data);
    start_reading(0, data.size());
    segment.set_flush_positions({5}, 10);
    start_reading(0, data.size());
    EXPECT_THAT(flush_positions(), IsEmpty());
    EXPECT_EQ(block_size(), 0u);
}

TEST_F(SegmentStates, StartsAgainFromEveryState)
{
    const Bytes other = noisy_bytes(700);
    const Bytes stretch = deflate_whole(other);
    for (const int old_level : levels)
        for (int state = 0; state < 5; ++state)
        {
            put_stretch(stretch);
            VFile out(file_name(path("out")), VFile::write_mode);
            VZippedSegment used;
            switch (state)
            {
            case 1: // Fresh writer
                used.init_w(out, old_level, all_ones);
                break;
            case 2: // In the midst of writing
                used.init_w(out, old_level, all_ones);
                used.write(data.data(), data.size());
                break;
            case 3: // Written to the end
                used.init_w(out, old_level, all_ones);
                used.write(data.data(), data.size());
                used.write_end();
                break;
            case 4: // In the midst of reading
                used.init_r(file, old_level, lead, stretch.size(), other.size());
                read_from(used, 100);
                break;
            default:
                break;
            }
            used.init_r(file, 6, lead, stretch.size(), other.size());
            EXPECT_EQ(used.tell(), 0u);
            EXPECT_EQ(read_from(used, other.size()), other);

            out.seek(0);
            EXPECT_EQ(used.init_w(out, 6, other.size()), 0u);
            EXPECT_EQ(used.tell(), 0u);
            used.write(other.data(), other.size());
            const std::uint64_t length = used.write_end();
            used.end();
            out.close();
            EXPECT_EQ(inflate_whole(slice(get_bytes(path("out")), 0, static_cast<std::size_t>(length))).bytes, other);
        }
}

TEST_F(SegmentStates, StartsAgainAfterAFailure)
{
    const Bytes stretch = deflate_whole(data);
    read_stretch(Bytes(100, 0xFF), 6, data.size());
    EXPECT_THROW(read_bytes(10), VelaError);
    segment.end();
    read_stretch(stretch, 6, data.size());
    expect_bytes(data);
    read_stretch(Bytes(100, 0xFF), 6, data.size());
    EXPECT_THROW(read_bytes(10), VelaError);
    put_bytes(path("b"), stretch);
    VFile second(file_name(path("b")), VFile::read_mode);
    segment.init_r(second, 6, 0, stretch.size(), data.size());
    expect_bytes(data);
    segment.end();
}

TEST_F(SegmentStates, TakesTheChunkSizeAndLittleMoreMemoryAndEndReleasesIt)
{
    const Bytes large = noisy_bytes(6u << 20);
    const FlushedStream stream = deflate_in_blocks(large, 1, 1u << 20);
    Bytes destination(large.size());
    put_stretch(stream.bytes);
    file.set_chunk_size(1u << 16);
    for (int run = 0; run < 2; ++run)
    {
        const AllocationWatch watch;
        start_reading(1, large.size());
        segment.read(destination.data(), destination.size());
        EXPECT_TRUE(destination == large);
        segment.set_flush_positions(stream.flush_positions, 1u << 20);
        segment.seek((3u << 20) + 12345);
        EXPECT_LT(watch.peak_extra_bytes(), (1u << 16) + (1u << 20));
        segment.end();
        file.reads.clear();
        file.reads.shrink_to_fit();
        EXPECT_LT(watch.extra_bytes(), 1000u);
    }

    start_file(1u << 16);
    const AllocationWatch watch;
    segment.init_w(file, 1, large.size());
    segment.set_flush_block_size(1u << 20);
    segment.write(large.data(), large.size());
    segment.write_end();
    EXPECT_LT(watch.peak_extra_bytes(), (1u << 16) + (1u << 20));
    segment.end();
    file.writes.clear();
    file.writes.shrink_to_fit();
    EXPECT_LT(watch.extra_bytes(), 1000u);
}

} // namespace
