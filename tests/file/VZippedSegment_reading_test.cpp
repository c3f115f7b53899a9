// Compressed reading of streams that plain zlib made.
#include "file/segment_fixture.h"

#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

using namespace vela_test;

namespace {

class CompressedReading : public SegmentTest
{
};

TEST_F(CompressedReading, GivesTheDataWhole)
{
    for (const std::size_t size : {1u, 2u, 1000u, 300000u})
        for (const Bytes& data : bytes_of_each_kind(size))
            for (const std::uint64_t declared : {std::uint64_t{size}, all_ones})
            {
                read_stretch(deflate_whole(data), 6, declared);
                expect_bytes(data);
                EXPECT_EQ(segment.tell(), size);
                EXPECT_EQ(segment.get_beg_pos_file(), lead);
            }
}

TEST_F(CompressedReading, AnyLevelAboveZeroReads)
{
    const Bytes data = sparse_bytes(3000);
    for (const int written : {1, 9})
        for (const int level : {1, 5, 9, 10, 99, 0x7FFFFFFF})
        {
            read_stretch(deflate_whole(data, written), level, data.size());
            expect_bytes(data);
        }
}

TEST_F(CompressedReading, GivesTheDataByteByByte)
{
    for (const Bytes& data : bytes_of_each_kind(2000))
        for (const std::uint64_t declared : {std::uint64_t{data.size()}, all_ones})
        {
            read_stretch(deflate_whole(data), 6, declared);
            for (std::size_t i = 0; i < data.size(); ++i)
            {
                EXPECT_EQ(segment.tell(), i);
                ASSERT_EQ(read_bytes(1)[0], data[i]) << i;
            }
            EXPECT_EQ(segment.tell(), data.size());
        }
}

TEST_F(CompressedReading, GivesTheDataInPiecesOfAnySize)
{
    std::mt19937 random(3);
    for (const Bytes& data : bytes_of_each_kind(100000))
        for (const std::uint32_t chunk_size : {100u, 5000u, 0x400000u})
        {
            put_stretch(deflate_whole(data));
            file.set_chunk_size(chunk_size);
            start_reading(6, data.size());
            for (std::size_t begin = 0; begin < data.size();)
            {
                const std::size_t count = std::min<std::size_t>(random() % 3000, data.size() - begin);
                expect_bytes(slice(data, begin, begin + count));
                begin += count;
            }
        }
}

TEST_F(CompressedReading, WorksWithEveryChunkSizeDownToZero)
{
    for (const Bytes& data : bytes_of_each_kind(400))
    {
        const FlushedStream stream = deflate_in_blocks(data, 6, 90);
        for (std::uint32_t chunk_size = 0; chunk_size < 30; ++chunk_size)
        {
            SCOPED_TRACE(chunk_size);
            put_stretch(stream.bytes);
            file.set_chunk_size(chunk_size);
            start_reading(6, data.size());
            expect_bytes(slice(data, 0, 150));
            expect_bytes(slice(data, 150, 400));
            expect_bytes_at(data, 33, 10);
            expect_bytes_at(data, 399, 1);
            segment.set_flush_positions(stream.flush_positions, 90);
            expect_bytes_at(data, 200, 200);
            expect_bytes_at(data, 5, 1);
            expect_bytes_at(data, 360, 40);
        }
    }
}

TEST_F(CompressedReading, ChunkSizeMayChangeUnderway)
{
    const Bytes data = noisy_bytes(30000);
    put_stretch(deflate_whole(data));
    file.set_chunk_size(1000);
    start_reading(6, data.size());
    expect_bytes(slice(data, 0, 5000));
    std::size_t begin = 5000;
    for (const std::uint32_t chunk_size : {100000u, 10u, 0u})
    {
        file.set_chunk_size(chunk_size);
        expect_bytes_at(data, begin, 2000);
        begin += 5000;
        expect_bytes_at(data, begin, 2000);
        expect_bytes_at(data, 10, 5);
    }
}

TEST_F(CompressedReading, TakesWindowsOf64KiBWhateverTheChunkSize)
{
    constexpr std::size_t window = 64 * 1024;
    const Bytes data = noisy_bytes(300000);
    for (const std::uint32_t chunk_size : {100u, 4096u, 0x400000u})
    {
        put_stretch(deflate_whole(data));
        file.set_chunk_size(chunk_size);
        start_reading(6, data.size());
        expect_bytes(data);
        EXPECT_GE(file.reads.size(), data.size() / window);
        EXPECT_EQ(WatchedFile::largest(file.reads), window);
    }
}

TEST_F(CompressedReading, OfNoBytesSucceedsEverywhere)
{
    const Bytes data = sparse_bytes(1000);
    for (const std::uint64_t declared : {std::uint64_t{data.size()}, all_ones})
        for (const std::uint32_t chunk_size : {0u, 10u, 0x400000u})
        {
            put_stretch(deflate_whole(data));
            file.set_chunk_size(chunk_size);
            start_reading(6, declared);
            unsigned char byte = untouched;
            EXPECT_NO_THROW(segment.read(&byte, 0));
            EXPECT_NO_THROW(segment.read(nullptr, 0));
            EXPECT_EQ(segment.tell(), 0u);
            expect_bytes(slice(data, 0, 500));
            EXPECT_NO_THROW(segment.read(&byte, 0));
            expect_bytes(slice(data, 500, 1000));
            EXPECT_NO_THROW(segment.read(&byte, 0));
            EXPECT_NO_THROW(segment.read(&byte, 0));
            EXPECT_EQ(segment.tell(), 1000u);
            EXPECT_EQ(byte, untouched);
        }
}

TEST_F(CompressedReading, OfAnEmptyStreamHasNothingToGive)
{
    read_stretch(deflate_whole({}), 6, 0);
    unsigned char byte = untouched;
    EXPECT_NO_THROW(segment.read(&byte, 0));
    EXPECT_VELA_ERROR(segment.read(&byte, 1), -1, "Trying to read beyond segment boundary!");
    EXPECT_VELA_ERROR(segment.seek(0), -1, "Invalid position in segment!");
    start_reading(6, all_ones);
    EXPECT_VELA_ERROR(segment.read(&byte, 1), -10, "Inconsistency in segment!");
}

TEST_F(CompressedReading, StaysInsideTheDeclaredSize)
{
    const Bytes data = noisy_bytes(1000);
    read_stretch(deflate_whole(data), 6, 900);
    const char* text = "Trying to read beyond segment boundary!";
    Bytes destination(1100, untouched);
    EXPECT_VELA_ERROR_IN(segment.read(destination.data(), 901), "VZippedSegment::read", "sources/file", -1, text);
    EXPECT_EQ(destination, Bytes(1100, untouched));
    EXPECT_EQ(segment.tell(), 0u);
    expect_bytes(slice(data, 0, 500));
    EXPECT_VELA_ERROR(segment.read(destination.data(), 401), -1, text);
    EXPECT_VELA_ERROR(segment.read(destination.data(), all_ones), -1, text);
    EXPECT_VELA_ERROR(segment.read(destination.data(), all_ones - 499), -1, text);
    EXPECT_EQ(destination, Bytes(1100, untouched));
    expect_bytes(slice(data, 500, 899));
}

TEST_F(CompressedReading, BeyondTheDataOfAnUnknownSizeIsAnInconsistency)
{
    const Bytes data = sparse_bytes(1000);
    const Bytes stretch = deflate_whole(data);
    for (const std::uint32_t chunk_size : {1u, 10u, 0x400000u})
    {
        put_stretch(stretch);
        file.set_chunk_size(chunk_size);
        start_reading(6, all_ones);
        Bytes destination(2000, untouched);
        EXPECT_VELA_ERROR_IN(segment.read(destination.data(), 1001), "VZippedSegment::read", "sources/file", -10,
                             "Inconsistency in segment!");
        start_reading(6, all_ones);
        expect_bytes(data);
        EXPECT_VELA_ERROR(segment.read(destination.data(), 1), -10, "Inconsistency in segment!");
    }
}

TEST_F(CompressedReading, DeclaredSizeAboveTheDataIsAnInconsistency)
{
    const Bytes data = sparse_bytes(1000);
    read_stretch(deflate_whole(data), 6, 1001);
    Bytes destination(1001, untouched);
    EXPECT_VELA_ERROR(segment.read(destination.data(), 1001), -10, "Inconsistency in segment!");
    start_reading(6, 1001);
    expect_bytes(slice(data, 0, 999));
    EXPECT_VELA_ERROR(segment.read(destination.data(), 2), -10, "Inconsistency in segment!");
}

TEST_F(CompressedReading, DeclaredSizeBelowTheDataGivesAsMuchAsItSays)
{
    const Bytes data = noisy_bytes(1000);
    for (const std::uint32_t chunk_size : {1u, 10u, 0x400000u})
    {
        put_stretch(deflate_whole(data));
        file.set_chunk_size(chunk_size);
        start_reading(6, 900);
        expect_bytes(slice(data, 0, 900));
        EXPECT_EQ(segment.tell(), 900u);
    }
}

TEST_F(CompressedReading, FindsItsPlaceWhenOthersMoveTheFile)
{
    const Bytes data = noisy_bytes(50000);
    put_stretch(deflate_whole(data));
    file.set_chunk_size(512);
    start_reading(6, data.size());
    for (std::size_t begin = 0; begin < data.size(); begin += 1000)
    {
        file.seek(begin % 3 == 0 ? 0 : all_ones);
        expect_bytes(slice(data, begin, begin + 1000));
    }
}

TEST_F(CompressedReading, NeverTouchesTheFileBehindTheStretch)
{
    const Bytes data = noisy_bytes(50000);
    const Bytes stretch = deflate_whole(data);
    for (const std::uint32_t chunk_size : {1000u, 0x400000u})
        for (const std::uint64_t declared : {std::uint64_t{data.size()}, all_ones})
        {
            put_stretch(stretch, noisy_bytes(100000));
            file.set_chunk_size(chunk_size);
            start_reading(6, declared);
            expect_bytes(data);
            EXPECT_THROW(read_bytes(1), VelaError);
            ASSERT_FALSE(file.reads.empty());
            for (const WatchedFile::Transfer& read : file.reads)
            {
                EXPECT_GE(read.pos_file, lead);
                EXPECT_LE(read.pos_file + read.size_bytes, lead + stretch.size());
            }
        }
}

TEST_F(CompressedReading, TakesNoMoreOfTheFileThanTheStretchHas)
{
    const Bytes data = noisy_bytes(300000);
    put_stretch(deflate_whole(data));
    file.set_chunk_size(5000);
    start_reading(6, data.size());
    for (std::size_t begin = 0; begin < data.size(); begin += 1000)
        expect_bytes(slice(data, begin, begin + 1000));
    EXPECT_LE(WatchedFile::total_bytes(file.reads), stretch_size);
}

TEST_F(CompressedReading, StringsAndNumbersComeFromTheStream)
{
    const Bytes data = {2, 0, 0, 0, 'a', 'b', 0, 0, 0, 0, 4, 3, 2, 1};
    read_stretch(deflate_whole(data), 6, data.size());
    std::string text = "before";
    std::uint32_t number = 99;
    segment.read_str(text, all_ones);
    EXPECT_EQ(text, "ab");
    segment.read_str(text, all_ones);
    EXPECT_EQ(text, "");
    segment.read_value(number);
    EXPECT_EQ(number, 0x01020304u);
}

TEST_F(CompressedReading, ReadsWhatASegmentWrote)
{
    for (const Bytes& data : bytes_of_each_kind(50000))
    {
        const WrittenStretch stretch = write_stretch(data, 6, 8000, 3000, 700);
        read_stretch(stretch.bytes, 6, data.size());
        expect_bytes(data);
        start_reading(6, data.size());
        segment.set_flush_positions(stretch.flush_positions, stretch.block_size);
        expect_bytes_at(data, 33333, 10000);
        expect_bytes_at(data, 8000, 42000);
    }
}

TEST_F(CompressedReading, OfAGoodStreamWarnsOfNothing)
{
    const Bytes data = sparse_bytes(3000);
    const FlushedStream stream = deflate_in_blocks(data, 6, 1000);
    CapturedWarnings warnings;
    for (const std::uint32_t chunk_size : {1u, 10u, 0x400000u})
    {
        put_stretch(stream.bytes);
        file.set_chunk_size(chunk_size);
        start_reading(6, data.size());
        for (std::size_t begin = 0; begin < data.size(); begin += 100)
            expect_bytes(slice(data, begin, begin + 100));
        segment.set_flush_positions(stream.flush_positions, 1000);
        expect_bytes_at(data, 2000, 1000);
        start_reading(6, all_ones);
        expect_bytes(data);
    }
    EXPECT_EQ(warnings.text(), "");
}

} // namespace
