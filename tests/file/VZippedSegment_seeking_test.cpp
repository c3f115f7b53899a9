// Random access into compressed data, with and without flush points.
#include "file/segment_fixture.h"

#include "support/descriptor.h"
#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>

using namespace vela_test;
using testing::IsEmpty;

namespace {

class Seeking : public SegmentTest
{
protected:
    static constexpr std::size_t block_size = 1000;

    /// Ten blocks and a half, noisy so that positions in the stretch are about those in the data.
    Seeking() : data(noisy_bytes(10 * block_size + 500)), stream(deflate_in_blocks(data, 6, block_size)) {}

    void start_with_table(std::uint64_t declared)
    {
        put_stretch(stream.bytes);
        start_reading(6, declared);
        segment.set_flush_positions(stream.flush_positions, block_size);
    }

    void start_without_table(std::uint64_t declared)
    {
        put_stretch(stream.bytes);
        start_reading(6, declared);
    }

    /// File position of the first byte that is read from now on.
    std::uint64_t next_read_at(const std::function<void()>& action)
    {
        file.reads.clear();
        action();
        for (const WatchedFile::Transfer& read : file.reads)
            if (read.size_bytes > 0)
                return read.pos_file;
        return all_ones;
    }

    const Bytes data;
    const FlushedStream stream;
};

TEST_F(Seeking, JumpsToTheFlushPointBelow)
{
    for (const std::size_t target : {3 * block_size, 3 * block_size + 1, 3 * block_size + 499, 4 * block_size - 1})
    {
        start_with_table(data.size());
        const std::uint64_t first_read = next_read_at([&] { expect_bytes_at(data, target, 100); });
        EXPECT_EQ(first_read, lead + stream.flush_positions[2]) << target;
    }
}

TEST_F(Seeking, ToAMultipleOfTheBlockSizeSkipsNothing)
{
    for (std::size_t k = 1; k <= stream.flush_positions.size(); ++k)
    {
        start_with_table(data.size());
        const std::uint64_t read_by_seek =
            next_read_at([&] { EXPECT_EQ(segment.seek(k * block_size), k * block_size); });
        EXPECT_EQ(read_by_seek, all_ones);
        EXPECT_EQ(segment.tell(), k * block_size);
        const std::uint64_t first_read =
            next_read_at([&] { expect_bytes(slice(data, k * block_size, k * block_size + 1)); });
        EXPECT_EQ(first_read, lead + stream.flush_positions[k - 1]);
    }
}

TEST_F(Seeking, ReachesEveryPlaceFromEveryPlace)
{
    std::mt19937 random(17);
    for (const bool with_table : {true, false})
        for (const std::uint64_t declared : {std::uint64_t{data.size()}, all_ones})
        {
            if (with_table)
                start_with_table(declared);
            else
                start_without_table(declared);
            for (int i = 0; i < 300; ++i)
            {
                const std::size_t target = random() % data.size();
                expect_bytes_at(data, target, random() % std::min<std::size_t>(data.size() - target + 1, 2500));
            }
        }
}

TEST_F(Seeking, ReachesTheEdgesOfEveryBlock)
{
    start_with_table(data.size());
    for (std::size_t edge = data.size() / block_size * block_size; edge >= block_size; edge -= block_size)
        for (const std::size_t target : {edge - 1, edge, edge + 1, edge, edge - 1})
            expect_bytes_at(data, target, 3);
    expect_bytes_at(data, 0, data.size());
}

TEST_F(Seeking, ToTheCurrentPositionDoesNothing)
{
    start_with_table(data.size());
    EXPECT_EQ(next_read_at([&] { EXPECT_EQ(segment.seek(0), 0u); }), all_ones);
    expect_bytes(slice(data, 0, 1234));
    const std::uint64_t pos_file = segment.get_cur_pos_file();
    EXPECT_EQ(next_read_at([&] { EXPECT_EQ(segment.seek(1234), 1234u); }), all_ones);
    EXPECT_EQ(segment.get_cur_pos_file(), pos_file);
    expect_bytes(slice(data, 1234, data.size()));
}

TEST_F(Seeking, JumpsBackToTheFlushPointEvenWhereReadingOnIsShorter)
{
    start_with_table(data.size());
    expect_bytes(slice(data, 0, 2 * block_size + 300));
    const std::uint64_t first_read = next_read_at([&] { expect_bytes_at(data, 2 * block_size + 310, 10); });
    EXPECT_EQ(first_read, lead + stream.flush_positions[1]);
}

TEST_F(Seeking, FromAFlushPointReadsOnInTheSameStream)
{
    // The flush point is where the segment stands already, so the stream goes on to its check sum.
    Bytes damaged = stream.bytes;
    damaged.back() ^= 1;
    put_stretch(damaged);
    start_reading(6, data.size());
    segment.set_flush_positions(stream.flush_positions, block_size);
    expect_bytes(slice(data, 0, 5 * block_size));
    EXPECT_EQ(segment.seek(5 * block_size + 7), 5 * block_size + 7);
    Bytes destination(data.size() - segment.tell());
    EXPECT_VELA_ERROR(segment.read(destination.data(), destination.size()), -10, "Zip error (-3)!");
}

TEST_F(Seeking, BackIntoTheFirstBlockStartsFromTheBeginning)
{
    start_with_table(data.size());
    expect_bytes(slice(data, 0, 700));
    EXPECT_EQ(next_read_at([&] { expect_bytes_at(data, 650, 10); }), lead);
    expect_bytes_at(data, 8 * block_size + 3, 10);
    EXPECT_EQ(next_read_at([&] { expect_bytes_at(data, 5, 10); }), lead);
    expect_bytes_at(data, 9 * block_size, 10);
    EXPECT_EQ(next_read_at([&] { expect_bytes_at(data, 0, data.size()); }), lead);
}

TEST_F(Seeking, BackToTheBeginningChecksTheWholeStreamAgain)
{
    Bytes damaged = stream.bytes;
    damaged.back() ^= 1;
    put_stretch(damaged);
    start_reading(6, data.size());
    segment.set_flush_positions(stream.flush_positions, block_size);
    expect_bytes_at(data, 8 * block_size, 100);
    EXPECT_EQ(segment.seek(1), 1u);
    Bytes destination(data.size() - 1);
    EXPECT_VELA_ERROR(segment.read(destination.data(), destination.size()), -10, "Zip error (-3)!");
}

TEST_F(Seeking, WithoutATableGoesForwardByReadingAndBackFromTheBeginning)
{
    put_stretch(stream.bytes);
    file.set_chunk_size(500);
    start_reading(6, data.size());
    expect_bytes(slice(data, 0, 3000));
    EXPECT_GT(next_read_at([&] { expect_bytes_at(data, 6000, 100); }), lead + 2500);
    EXPECT_EQ(next_read_at([&] { expect_bytes_at(data, 2999, 100); }), lead);
}

TEST_F(Seeking, EmptyTableWithABlockSizeIsNoTable)
{
    put_stretch(stream.bytes);
    start_reading(6, data.size());
    segment.set_flush_positions({}, block_size);
    expect_bytes_at(data, 7777, 100);
    expect_bytes_at(data, 7000, 100);
    expect_bytes_at(data, 10, 100);
}

TEST_F(Seeking, TableThatEndsEarlyServesAsFarAsItReaches)
{
    put_stretch(stream.bytes);
    start_reading(6, data.size());
    segment.set_flush_positions({stream.flush_positions[0], stream.flush_positions[1]}, block_size);
    EXPECT_EQ(next_read_at([&] { expect_bytes_at(data, 9123, 100); }), lead + stream.flush_positions[1]);
    EXPECT_EQ(next_read_at([&] { expect_bytes_at(data, 1500, 100); }), lead + stream.flush_positions[0]);
    expect_bytes_at(data, 2000, data.size() - 2000);
}

TEST_F(Seeking, TableIsNotUsedWithABlockSizeOfZero)
{
    start_without_table(data.size());
    segment.set_flush_positions({0, 3, 1, all_ones}, 0);
    expect_bytes_at(data, 5000, 100);
    expect_bytes_at(data, 3, data.size() - 3);
}

TEST_F(Seeking, ReadFromAFlushPointToTheEndLeavesTheTrailerUnchecked)
{
    Bytes damaged = stream.bytes;
    for (std::size_t i = damaged.size() - 4; i < damaged.size(); ++i)
        damaged[i] ^= 0xFF;
    CapturedWarnings warnings;
    put_stretch(damaged);
    start_reading(6, data.size());
    segment.set_flush_positions(stream.flush_positions, block_size);
    expect_bytes_at(data, 4 * block_size, data.size() - 4 * block_size);
    EXPECT_EQ(warnings.text(), "");
}

TEST_F(Seeking, ReadFromAFlushPointAcceptsNoOrFourBytesBehindTheStream)
{
    for (const std::size_t trailer : {0u, 4u})
    {
        Bytes stretch = slice(stream.bytes, 0, stream.bytes.size() - 4) + noisy_bytes(trailer, 5);
        put_stretch(stretch);
        start_reading(6, data.size());
        segment.set_flush_positions(stream.flush_positions, block_size);
        expect_bytes_at(data, 4 * block_size, data.size() - 4 * block_size);
    }
    for (const std::size_t trailer : {1u, 2u, 3u, 5u, 8u, 100u})
    {
        Bytes stretch = slice(stream.bytes, 0, stream.bytes.size() - 4) + noisy_bytes(trailer, 5);
        put_stretch(stretch);
        start_reading(6, data.size());
        segment.set_flush_positions(stream.flush_positions, block_size);
        segment.seek(4 * block_size);
        Bytes destination(data.size() - 4 * block_size);
        EXPECT_VELA_ERROR(segment.read(destination.data(), destination.size()), -10, "Inconsistency in segment!");
    }
}

TEST_F(Seeking, ToAFlushPointAtTheVeryEndOfTheDataWorksWithAnUnknownSize)
{
    const Bytes even = noisy_bytes(4 * block_size);
    const FlushedStream even_stream = deflate_in_blocks(even, 6, block_size);
    ASSERT_EQ(even_stream.flush_positions.size(), 4u);
    put_stretch(even_stream.bytes);
    start_reading(6, all_ones);
    segment.set_flush_positions(even_stream.flush_positions, block_size);
    EXPECT_EQ(segment.seek(4 * block_size), 4 * block_size);
    unsigned char byte = untouched;
    EXPECT_VELA_ERROR(segment.read(&byte, 1), -10, "Inconsistency in segment!");
    EXPECT_EQ(byte, untouched);
    start_reading(6, even.size());
    segment.set_flush_positions(even_stream.flush_positions, block_size);
    expect_bytes_at(even, 4 * block_size - 1, 1);
    EXPECT_VELA_ERROR(segment.seek(4 * block_size), -1, "Invalid position in segment!");
}

TEST_F(Seeking, EndIsNoTargetEvenFromTheEnd)
{
    start_with_table(data.size());
    const char* text = "Invalid position in segment!";
    EXPECT_VELA_ERROR_IN(segment.seek(data.size()), "VZippedSegment::seek", "sources/file", -1, text);
    EXPECT_VELA_ERROR(segment.seek(data.size() + 1), -1, text);
    EXPECT_VELA_ERROR(segment.seek(all_ones), -1, text);
    EXPECT_EQ(segment.tell(), 0u);
    expect_bytes(data);
    EXPECT_VELA_ERROR(segment.seek(data.size()), -1, text);
    EXPECT_EQ(segment.tell(), data.size());
    expect_bytes_at(data, data.size() - 1, 1);
}

TEST_F(Seeking, BeyondTheDataOfAnUnknownSizeFailsAsReadingDoes)
{
    for (const bool with_table : {true, false})
        for (const std::uint64_t target : {std::uint64_t{data.size() + 1}, std::uint64_t{1} << 40})
        {
            if (with_table)
                start_with_table(all_ones);
            else
                start_without_table(all_ones);
            EXPECT_VELA_ERROR(segment.seek(target), -10, "Inconsistency in segment!");
        }
    start_without_table(all_ones);
    EXPECT_EQ(segment.seek(data.size()), data.size());
}

TEST_F(Seeking, BlockSizeOfOneGivesATableOfEveryByte)
{
    const Bytes few = noisy_bytes(60);
    const FlushedStream few_stream = deflate_in_blocks(few, 6, 1);
    ASSERT_EQ(few_stream.flush_positions.size(), 60u);
    put_stretch(few_stream.bytes);
    start_reading(6, few.size());
    segment.set_flush_positions(few_stream.flush_positions, 1);
    for (std::size_t target = few.size(); target-- > 0;)
        expect_bytes_at(few, target, few.size() - target);
}

TEST_F(Seeking, TableWithABadPositionFailsWhereItIsUsed)
{
    const std::vector<std::uint64_t>& good = stream.flush_positions;
    const std::uint64_t stretch = stream.bytes.size();
    const std::vector<std::uint64_t> bad_tables[] = {
        {0},
        {good[0], 0},
        {good[0], good[0]},
        {good[1], good[0]},
        {stretch + 1},
        {good[0], stretch + 1},
        {good[0], std::uint64_t{1} << 63},
        {good[0], all_ones},
        {all_ones - 10}, // The sum with the start of the stretch wraps around.
    };
    for (const std::vector<std::uint64_t>& table : bad_tables)
    {
        put_stretch(stream.bytes);
        start_reading(6, data.size());
        SCOPED_TRACE(testing::PrintToString(table));
        EXPECT_NO_THROW(segment.set_flush_positions(table, block_size));
        EXPECT_VELA_ERROR_IN(segment.seek(table.size() * block_size + 10), "VZippedSegment::seek", "sources/file", -4,
                             "Invalid flush positions in segment!");
    }
}

TEST_F(Seeking, TableThatIsNeverNeededDoesNoHarm)
{
    for (const std::vector<std::uint64_t>& table :
         {std::vector<std::uint64_t>{0, 0}, std::vector<std::uint64_t>{all_ones, 7}})
    {
        put_stretch(stream.bytes);
        start_reading(6, data.size());
        segment.set_flush_positions(table, block_size);
        expect_bytes_at(data, 500, 100);
        expect_bytes_at(data, block_size - 1, 100);
        expect_bytes_at(data, 0, data.size());
        start_reading(6, data.size());
        segment.set_flush_positions(table, data.size());
        expect_bytes_at(data, data.size() - 1, 1);
        expect_bytes_at(data, 1, 1);
    }
}

TEST_F(Seeking, TableAfterATableReplacesIt)
{
    put_stretch(stream.bytes);
    start_reading(6, data.size());
    segment.set_flush_positions({5, 4}, 10);
    segment.set_flush_positions(stream.flush_positions, block_size);
    expect_bytes_at(data, 4321, 100);
    segment.set_flush_positions({}, 0);
    EXPECT_EQ(next_read_at([&] { expect_bytes_at(data, 4000, 100); }), lead);
}

TEST_F(Seeking, FailsAsTheReadDoesThatItNeeds)
{
    const std::size_t cut = static_cast<std::size_t>(stream.flush_positions[4]) + 100;
    put_stretch(slice(stream.bytes, 0, cut), slice(stream.bytes, cut, stream.bytes.size()));
    start_reading(6, data.size());
    EXPECT_VELA_ERROR(segment.seek(8 * block_size), -1, "Trying to read beyond segment boundary!");
    put_stretch(slice(stream.bytes, 0, cut), {});
    segment.init_r(file, 6, lead, stream.bytes.size(), data.size());
    EXPECT_THROW(segment.seek(8 * block_size), VelaError);
    segment.init_r(file, 6, lead, stream.bytes.size(), data.size());
    segment.set_flush_positions(stream.flush_positions, block_size);
    EXPECT_EQ(segment.seek(8 * block_size), 8 * block_size);
    EXPECT_THROW(read_bytes(1), VelaError);
}

TEST_F(Seeking, CostsNoMoreThanTheBytesThatItNeeds)
{
    constexpr std::size_t large_block = 256 * 1024;
    constexpr std::size_t blocks = 64;
    constexpr std::size_t slack = 64 * 1024;
    const Bytes large = noisy_bytes(blocks * large_block);
    const FlushedStream large_stream = deflate_in_blocks(large, 1, large_block);
    put_bytes(path("large"), noisy_bytes(lead) + large_stream.bytes);
    // The test keeps the descriptor, to see where the file stands.
    const Descriptor descriptor(path("large"), O_RDONLY);
    void* handle = descriptor.handle();
    file.attach(handle, VFile::read_mode);
    const std::size_t last_block = (blocks - 1) * large_block;
    const struct
    {
        std::size_t target;
        std::size_t count;
    } reads[] = {{last_block, 1},
                 {last_block, 1000},
                 {last_block + 1000, 1},
                 {last_block + large_block - 1, 1},
                 {20 * large_block + 5, 100}};
    for (const auto& [target, count] : reads)
    {
        SCOPED_TRACE(target);
        segment.init_r(file, 1, lead, large_stream.bytes.size(), large.size());
        segment.set_flush_positions(large_stream.flush_positions, large_block);
        file.reads.clear();
        expect_bytes_at(large, target, count);
        const std::uint64_t flush_position = large_stream.flush_positions[target / large_block - 1];
        const std::size_t needed = inflate_from(large_stream.bytes, static_cast<std::size_t>(flush_position),
                                                raw_window, target % large_block + count)
                                       .used;
        EXPECT_LE(WatchedFile::total_bytes(file.reads), needed + slack);
        EXPECT_LE(static_cast<std::uint64_t>(::lseek(descriptor.get(), 0, SEEK_CUR)),
                  lead + flush_position + needed + slack);
    }
    segment.end();
    file.detach();
}

} // namespace
