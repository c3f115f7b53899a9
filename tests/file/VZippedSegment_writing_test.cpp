// Compressed writing, read back with plain zlib.
#include "file/segment_fixture.h"

#include "support/descriptor.h"
#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/mman.h>

using namespace vela_test;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

class CompressedWriting : public SegmentTest
{
protected:
    /// The stretch is one whole zlib stream of `data`, its check sum included.
    static void expect_stream_of(const Bytes& stretch, const Bytes& data)
    {
        const Inflated inflated = inflate_whole(stretch);
        EXPECT_EQ(inflated.code, Z_STREAM_END);
        EXPECT_EQ(inflated.used, stretch.size());
        EXPECT_TRUE(inflated.bytes == data) << "of " << data.size() << " bytes";
    }

    /// Entry k starts a raw stream that yields everything from (k + 1) * block size on, and there is
    /// one for each whole block.
    static void expect_flush_points(const WrittenStretch& stretch, const Bytes& data, std::size_t block_size)
    {
        EXPECT_EQ(stretch.block_size, block_size);
        ASSERT_EQ(stretch.flush_positions.size(), data.size() / block_size);
        std::uint64_t last = 0;
        for (std::size_t k = 0; k < stretch.flush_positions.size(); ++k)
        {
            const std::uint64_t position = stretch.flush_positions[k];
            ASSERT_GT(position, last);
            ASSERT_LT(position, stretch.bytes.size());
            last = position;
            const Inflated raw = inflate_from(stretch.bytes, static_cast<std::size_t>(position), raw_window);
            EXPECT_EQ(raw.code, Z_STREAM_END);
            EXPECT_TRUE(raw.bytes == slice(data, (k + 1) * block_size, data.size())) << "from flush point " << k;
            // Behind a raw stream stands the check sum of the whole.
            EXPECT_EQ(position + raw.used + 4, stretch.bytes.size());
        }
    }
};

TEST_F(CompressedWriting, MakesOneZlibStreamAtEveryLevel)
{
    for (const Bytes& data : bytes_of_each_kind(20000))
        for (int level = 1; level <= 9; ++level)
            expect_stream_of(write_stretch(data, level).bytes, data);
}

TEST_F(CompressedWriting, HandsTheLevelToZlib)
{
    // FLEVEL, the two high bits of the second byte (RFC 1950).
    const int expected[] = {0, 1, 1, 1, 1, 2, 3, 3, 3};
    for (int level = 1; level <= 9; ++level)
        EXPECT_EQ(write_stretch(sparse_bytes(100), level).bytes.at(1) >> 6, expected[level - 1]) << level;
}

TEST_F(CompressedWriting, OfNothingMakesAnEmptyStream)
{
    const WrittenStretch stretch = write_stretch({}, 6);
    expect_stream_of(stretch.bytes, {});
    EXPECT_THAT(stretch.flush_positions, IsEmpty());
    EXPECT_EQ(stretch.block_size, 0u);
    const WrittenStretch with_blocks = write_stretch({}, 6, 100);
    expect_stream_of(with_blocks.bytes, {});
    EXPECT_THAT(with_blocks.flush_positions, IsEmpty());
}

TEST_F(CompressedWriting, PositionsFollowWhatIsWritten)
{
    const Bytes data = noisy_bytes(200000);
    start_file(1000);
    segment.init_w(file, 6, all_ones);
    for (std::size_t begin = 0; begin < data.size(); begin += 20000)
    {
        segment.write(data.data() + begin, 20000);
        EXPECT_EQ(segment.tell(), begin + 20000);
        EXPECT_EQ(segment.get_beg_pos_file(), lead);
        EXPECT_EQ(segment.get_cur_pos_file(), get_bytes(path("written")).size());
    }
    const std::uint64_t length = segment.write_end();
    EXPECT_EQ(segment.tell(), data.size());
    EXPECT_EQ(segment.get_cur_pos_file(), lead + length);
    EXPECT_EQ(segment.is_initialized(), 2);
    EXPECT_EQ(get_bytes(path("written")).size(), lead + length);
}

TEST_F(CompressedWriting, OfNoBytesDoesNotEndTheStream)
{
    const Bytes data = sparse_bytes(1000);
    start_file();
    segment.init_w(file, 6, data.size());
    segment.write(data.data(), 0);
    segment.write(data.data(), 400);
    segment.write(data.data() + 400, 0);
    EXPECT_EQ(segment.tell(), 400u);
    segment.write(data.data() + 400, 600);
    segment.write(data.data(), 0);
    expect_stream_of(finish_stretch().bytes, data);
}

TEST_F(CompressedWriting, NullAndNoBytesEndTheStreamAsWriteEndDoes)
{
    const Bytes data = sparse_bytes(1000);
    start_file();
    segment.init_w(file, 6, all_ones);
    segment.write(data.data(), data.size());
    segment.write(nullptr, 0);
    const Bytes content = get_bytes(path("written"));
    expect_stream_of(slice(content, lead, content.size()), data);
    EXPECT_EQ(segment.get_cur_pos_file(), content.size());
}

TEST_F(CompressedWriting, NullDoesNotStandForBytesThatAreCounted)
{
    const Bytes data = sparse_bytes(1000);
    start_file();
    segment.init_w(file, 6, all_ones);
    segment.write(data.data(), 400);
    EXPECT_VELA_ERROR_IN(segment.write(nullptr, 5), "VZippedSegment::write", "sources/file", -3,
                         "Failed writing 5 bytes to file!");
    EXPECT_EQ(segment.tell(), 400u);
    segment.write(data.data() + 400, 600);
    expect_stream_of(finish_stretch().bytes, data);
}

TEST_F(CompressedWriting, EndsOnceHoweverOftenItIsAsked)
{
    const Bytes data = sparse_bytes(1000);
    start_file();
    segment.init_w(file, 6, data.size());
    segment.write(data.data(), data.size());
    const std::uint64_t length = segment.write_end();
    EXPECT_EQ(segment.write_end(), length);
    const Bytes stretch = finish_stretch().bytes;
    EXPECT_EQ(stretch.size(), length);
    expect_stream_of(stretch, data);
}

TEST_F(CompressedWriting, AfterTheEndOfTheStreamFails)
{
    start_file();
    segment.init_w(file, 6, all_ones);
    segment.write("abc", 3);
    segment.write_end();
    EXPECT_VELA_ERROR(segment.write("d", 1), -10, "Zip error (id: -2)!");
    EXPECT_EQ(segment.tell(), 3u);
}

TEST_F(CompressedWriting, StaysInsideTheDeclaredSize)
{
    start_file();
    segment.init_w(file, 6, 5);
    segment.write("abc", 3);
    const char* text = "Trying to write beyond segment boundary!";
    EXPECT_VELA_ERROR_IN(segment.write("def", 3), "VZippedSegment::write", "sources/file", -1, text);
    EXPECT_VELA_ERROR(segment.write("d", all_ones), -1, text);
    EXPECT_VELA_ERROR(segment.write("d", all_ones - 2), -1, text);
    EXPECT_VELA_ERROR(segment.write("d", 1ull << 32), -1, text);
    segment.write("de", 2);
    EXPECT_VELA_ERROR(segment.write("f", 1), -1, text);
    EXPECT_EQ(segment.tell(), 5u);
    expect_stream_of(finish_stretch().bytes, {'a', 'b', 'c', 'd', 'e'});
}

TEST_F(CompressedWriting, MayEndBelowTheDeclaredSize)
{
    start_file();
    segment.init_w(file, 6, 1000);
    segment.write("abc", 3);
    expect_stream_of(finish_stretch().bytes, {'a', 'b', 'c'});
}

TEST_F(CompressedWriting, OfMoreThanFourGibibytesInOneCallIsRefused)
{
    start_file();
    segment.init_w(file, 6, all_ones);
    const char* text = "Zlib cannot handle chunks larger than 4GB";
    EXPECT_VELA_ERROR_IN(segment.write("abc", 1ull << 32), "VZippedSegment::write", "sources/file", -1, text);
    EXPECT_VELA_ERROR(segment.write("abc", (1ull << 32) + 1), -1, text);
    EXPECT_EQ(segment.tell(), 0u);
    segment.write("abc", 3);
    expect_stream_of(finish_stretch().bytes, {'a', 'b', 'c'});
}

TEST_F(CompressedWriting, AtALevelThatZlibDoesNotKnowFailsAtTheFirstByte)
{
    for (const int level : {10, 99, 1000000})
    {
        start_file();
        EXPECT_NO_THROW(segment.init_w(file, level, all_ones));
        EXPECT_VELA_ERROR_IN(segment.write("abc", 3), "VZippedSegment::write", "sources/file", -10,
                             "Zip error (id: -2)!");
        EXPECT_EQ(segment.tell(), 0u);
        segment.init_w(file, level, all_ones);
        EXPECT_VELA_ERROR(segment.write_end(), -10, "Zip error (id: -2)!");
        EXPECT_NO_THROW(segment.end());
        EXPECT_EQ(get_bytes(path("written")).size(), lead);
    }
}

TEST_F(CompressedWriting, ThatTheSystemRefusesFailsWithItsText)
{
    const Bytes data = noisy_bytes(100000);
    const Descriptor full("/dev/full", O_RDWR);
    void* handle = full.handle();
    VFile device;
    device.set_chunk_size(1000);
    device.attach(handle, VFile::write_mode);
    for (const bool at_end : {false, true})
    {
        segment.init_w(device, 6, all_ones);
        try
        {
            if (at_end)
                segment.write_end();
            else
                segment.write(data.data(), data.size());
            ADD_FAILURE() << "threw nothing";
        }
        catch (const VelaError& error)
        {
            EXPECT_EQ(error.get_id(), -3);
            EXPECT_THAT(error.get_msg(), StartsWith("Failed writing "));
            EXPECT_EQ(error.get_oserr_id(), 28);
        }
    }
    segment.end();
}

TEST_F(CompressedWriting, FindsItsPlaceWhenOthersMoveTheFile)
{
    const Bytes data = noisy_bytes(50000);
    start_file(512);
    segment.init_w(file, 6, data.size());
    for (std::size_t begin = 0; begin < data.size(); begin += 1000)
    {
        file.seek(begin % 3 == 0 ? 0 : all_ones);
        segment.write(data.data() + begin, 1000);
    }
    file.seek(5);
    expect_stream_of(finish_stretch().bytes, data);
}

TEST_F(CompressedWriting, MovesAtMostAChunkAtATime)
{
    for (const std::uint32_t chunk_size : {100u, 4096u})
    {
        const Bytes data = noisy_bytes(60000);
        start_file(chunk_size);
        segment.init_w(file, 1, data.size());
        segment.set_flush_block_size(7000);
        segment.write(data.data(), data.size());
        segment.write_end();
        EXPECT_GT(file.writes.size(), data.size() / chunk_size);
        EXPECT_LE(WatchedFile::largest(file.writes), chunk_size);
        EXPECT_EQ(WatchedFile::total_bytes(file.writes), segment.get_cur_pos_file() - lead);
    }
}

TEST_F(CompressedWriting, WorksWithEveryChunkSizeDownToZero)
{
    for (const Bytes& data : bytes_of_each_kind(700))
        for (std::uint32_t chunk_size = 0; chunk_size < 30; ++chunk_size)
            for (const std::size_t block_size : {std::size_t{0}, std::size_t{1}, std::size_t{100}, std::size_t{701}})
            {
                SCOPED_TRACE(testing::Message() << "chunk " << chunk_size << " block " << block_size);
                const WrittenStretch stretch = write_stretch(data, 6, block_size, 133, chunk_size);
                expect_stream_of(stretch.bytes, data);
                if (block_size != 0 && (block_size > 1 || chunk_size % 5 == 0))
                    expect_flush_points(stretch, data, block_size);
            }
}

TEST_F(CompressedWriting, ChunkSizeMayChangeUnderway)
{
    const Bytes data = noisy_bytes(30000);
    start_file(1000);
    segment.init_w(file, 6, data.size());
    std::uint32_t chunk_size = 3000;
    for (std::size_t begin = 0; begin < data.size(); begin += 5000)
    {
        segment.write(data.data() + begin, 5000);
        file.set_chunk_size(chunk_size);
        chunk_size /= 10;
    }
    expect_stream_of(finish_stretch().bytes, data);
}

TEST_F(CompressedWriting, FlushesAtEachMultipleOfTheBlockSize)
{
    for (const Bytes& data : bytes_of_each_kind(10500))
        for (const int level : {1, 6, 9})
        {
            const WrittenStretch stretch = write_stretch(data, level, 1000);
            EXPECT_EQ(stretch.flush_positions.size(), 10u);
            expect_stream_of(stretch.bytes, data);
            expect_flush_points(stretch, data, 1000);
        }
}

TEST_F(CompressedWriting, FlushesAtTheVeryEndOfAMultipleToo)
{
    for (const Bytes& data : bytes_of_each_kind(5000))
    {
        const WrittenStretch stretch = write_stretch(data, 6, 1000);
        ASSERT_EQ(stretch.flush_positions.size(), 5u);
        expect_stream_of(stretch.bytes, data);
        expect_flush_points(stretch, data, 1000);
        const Inflated end =
            inflate_from(stretch.bytes, static_cast<std::size_t>(stretch.flush_positions[4]), raw_window);
        EXPECT_EQ(end.code, Z_STREAM_END);
        EXPECT_THAT(end.bytes, IsEmpty());
    }
}

TEST_F(CompressedWriting, OfOneBlockRecordsOneFlushPointAtOnce)
{
    const Bytes data = noisy_bytes(1000);
    start_file();
    segment.init_w(file, 6, all_ones);
    segment.set_flush_block_size(1000);
    segment.write(data.data(), 999);
    std::uint64_t block_size = 0;
    EXPECT_THAT(segment.get_flush_positions(block_size), IsEmpty());
    segment.init_w(file, 6, all_ones);
    segment.set_flush_block_size(1000);
    segment.write(data.data(), 1000);
    const std::vector<std::uint64_t> positions = segment.get_flush_positions(block_size);
    ASSERT_EQ(positions.size(), 1u);
    EXPECT_EQ(positions[0], segment.get_cur_pos_file() - segment.get_beg_pos_file());
    EXPECT_EQ(segment.tell(), 1000u);
}

TEST_F(CompressedWriting, HasNoFlushPointWithoutABlockSizeOrBelowIt)
{
    const Bytes data = sparse_bytes(5000);
    EXPECT_THAT(write_stretch(data, 6).flush_positions, IsEmpty());
    const WrittenStretch stretch = write_stretch(data, 6, 5001);
    EXPECT_THAT(stretch.flush_positions, IsEmpty());
    EXPECT_EQ(stretch.block_size, 5001u);
    EXPECT_THAT(write_stretch(data, 6, all_ones).flush_positions, IsEmpty());
    EXPECT_THAT(write_stretch(data, 6, 1ull << 32).flush_positions, IsEmpty());
}

TEST_F(CompressedWriting, InPiecesGivesTheSameDataAndFlushPoints)
{
    constexpr std::size_t block_size = 2500;
    for (const Bytes& data : bytes_of_each_kind(4 * block_size + 100))
        for (const std::size_t piece_size : {std::size_t{1}, std::size_t{7}, std::size_t{1000}, block_size - 1,
                                             block_size, block_size + 1, 2 * block_size, 4 * block_size + 100})
        {
            SCOPED_TRACE(piece_size);
            const WrittenStretch stretch = write_stretch(data, 6, block_size, piece_size);
            EXPECT_EQ(stretch.flush_positions.size(), 4u);
            expect_stream_of(stretch.bytes, data);
            expect_flush_points(stretch, data, block_size);
        }
}

TEST_F(CompressedWriting, FlushedBlockMayExceedTheChunk)
{
    for (const Bytes& data : bytes_of_each_kind(250000))
    {
        const WrittenStretch stretch = write_stretch(data, 1, 60000, 17000, 2048);
        expect_stream_of(stretch.bytes, data);
        expect_flush_points(stretch, data, 60000);
    }
}

TEST_F(CompressedWriting, TakesTheInputAsItIsAndLeavesIt)
{
    // A page that must not be written to, with nothing readable behind it.
    const std::size_t page = 4096;
    void* const pages = ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    unsigned char* const input = static_cast<unsigned char*>(pages);
    const Bytes data = noisy_bytes(page);
    std::copy(data.begin(), data.end(), input);
    ASSERT_EQ(::mprotect(input, page, PROT_READ), 0);
    ASSERT_EQ(::mprotect(input + page, page, PROT_NONE), 0);
    start_file();
    segment.init_w(file, 6, page);
    segment.set_flush_block_size(1000);
    segment.write(input, page);
    expect_stream_of(finish_stretch().bytes, data);
    ::munmap(pages, 2 * page);
}

TEST_F(CompressedWriting, SegmentsOnOneFileDoNotDisturbEachOther)
{
    const Bytes first_data = noisy_bytes(30000, 1);
    const Bytes second_data = sparse_bytes(30000, 2);
    const Bytes third_data = noisy_bytes(30000, 3);
    start_file(700);
    const std::uint64_t second_start = 100000;
    const std::uint64_t third_start = 200000;
    VZippedSegment first;
    VZippedSegment second;
    VZippedSegment third;
    EXPECT_EQ(first.init_w(file, 6, all_ones), lead);
    file.seek(second_start);
    EXPECT_EQ(second.init_w(file, 0, second_data.size()), second_start);
    file.seek(third_start);
    EXPECT_EQ(third.init_w(file, 1, third_data.size()), third_start);
    first.set_flush_block_size(4000);
    for (std::size_t begin = 0; begin < 30000; begin += 1500)
    {
        first.write(first_data.data() + begin, 1500);
        second.write(second_data.data() + begin, 1500);
        file.seek(begin);
        third.write(third_data.data() + begin, 1500);
    }
    const std::uint64_t third_length = third.write_end();
    const std::uint64_t first_length = first.write_end();
    EXPECT_EQ(second.write_end(), second_data.size());
    std::uint64_t block_size = 0;
    const std::vector<std::uint64_t> positions = first.get_flush_positions(block_size);
    ASSERT_LT(lead + first_length, second_start);

    const Bytes content = get_bytes(path("written"));
    const WrittenStretch stretch = {slice(content, lead, lead + static_cast<std::size_t>(first_length)), positions,
                                    block_size};
    expect_stream_of(stretch.bytes, first_data);
    expect_flush_points(stretch, first_data, 4000);
    EXPECT_EQ(slice(content, second_start, second_start + second_data.size()), second_data);
    expect_stream_of(slice(content, third_start, third_start + static_cast<std::size_t>(third_length)), third_data);

    // And the same three, read by turns.
    first.init_r(file, 6, lead, first_length, first_data.size());
    first.set_flush_positions(positions, block_size);
    second.init_r(file, 0, second_start, second_data.size(), second_data.size());
    third.init_r(file, 1, third_start, third_length, third_data.size());
    for (std::size_t begin = 0; begin < 30000; begin += 1500)
    {
        EXPECT_EQ(read_from(first, 1500), slice(first_data, begin, begin + 1500));
        file.seek(begin);
        EXPECT_EQ(read_from(second, 1500), slice(second_data, begin, begin + 1500));
        EXPECT_EQ(read_from(third, 1500), slice(third_data, begin, begin + 1500));
    }
    for (const std::size_t target : {20000u, 100u, 8000u})
    {
        first.seek(target);
        third.seek(target);
        EXPECT_EQ(read_from(first, 500), slice(first_data, target, target + 500));
        EXPECT_EQ(read_from(third, 500), slice(third_data, target, target + 500));
    }
    first.end();
    second.end();
    third.end();
}

TEST_F(CompressedWriting, OverwritesInTheMiddleOfAFile)
{
    const Bytes old_content = noisy_bytes(5000, 9);
    put_bytes(path("a"), old_content);
    VFile out(file_name(path("a")), VFile::append_mode);
    out.seek(100);
    segment.init_w(out, 6, all_ones);
    const Bytes data = constant_bytes(3000);
    segment.write(data.data(), data.size());
    const std::size_t length = static_cast<std::size_t>(segment.write_end());
    segment.end();
    out.close();
    const Bytes content = get_bytes(path("a"));
    ASSERT_EQ(content.size(), old_content.size());
    EXPECT_EQ(slice(content, 0, 100), slice(old_content, 0, 100));
    EXPECT_EQ(slice(content, 100 + length, 5000), slice(old_content, 100 + length, 5000));
    expect_stream_of(slice(content, 100, 100 + length), data);
}

TEST_F(CompressedWriting, StringsAndNumbersLieInTheStream)
{
    start_file();
    segment.init_w(file, 6, all_ones);
    segment.write_str("ab", true);
    segment.write_str("", true);
    segment.write_value<std::uint32_t>(0x01020304);
    expect_stream_of(finish_stretch().bytes, {2, 0, 0, 0, 'a', 'b', 0, 0, 0, 0, 4, 3, 2, 1});
}

} // namespace
