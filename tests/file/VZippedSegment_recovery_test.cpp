// A failed read leaves nothing behind that a later one would take for data, and positions that the file does not
// have are never read from somewhere else.

#include "segment_fixture.h"
#include "support/descriptor.h"
#include "support/expect_vela_error.h"

#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <unistd.h>
#include <utility>

namespace {

using vela_test::Bytes;
using vela_test::file_name;

constexpr std::uint64_t all_ones = VFileAccess::all_ones;

class Recovery : public vela_test::FolderTest
{
protected:
    /// The stream of `data`, in a file that first lacks the part from `size_at_first` on.
    void put_stream(std::size_t block_size, std::size_t size_at_first)
    {
        stream = vela_test::deflate_in_blocks(data, 1, block_size);
        ASSERT_GT(stream.bytes.size(), size_at_first);
        vela_test::put_bytes(path("segment"), Bytes(stream.bytes.begin(),
                                                    stream.bytes.begin() + static_cast<std::ptrdiff_t>(size_at_first)));
        file.open(file_name(path("segment")), VFile::append_mode);
        segment.init_r(file, 1, 0, stream.bytes.size(), data.size());
    }

    /// Gives the file the rest of the stream.
    void complete(std::size_t size_at_first)
    {
        file.seek(size_at_first);
        file.write(stream.bytes.data() + size_at_first, stream.bytes.size() - size_at_first);
    }

    void expect_data(std::size_t from, std::size_t count)
    {
        Bytes got(count, 0xA5);
        segment.read(got.data(), got.size());
        const auto begin = data.begin() + static_cast<std::ptrdiff_t>(from);
        EXPECT_TRUE(std::equal(got.begin(), got.end(), begin)) << from;
    }

    Bytes data = vela_test::noisy_bytes(300000);
    vela_test::FlushedStream stream;
    VFile file;
    VZippedSegment segment;
};

TEST_F(Recovery, ASegmentThatStartsAnewHasNothingToRecover)
{
    put_stream(0, 100000);
    Bytes got(200000, 0xA5);
    EXPECT_THROW(segment.read(got.data(), got.size()), VelaError);
    segment.init_r(file, 0, 0, 100000, 100000);
    Bytes stored(100, 0xA5);
    segment.read(stored.data(), stored.size());
    EXPECT_TRUE(std::equal(stored.begin(), stored.end(), stream.bytes.begin()));
    EXPECT_EQ(segment.tell(), 100u);
}

TEST_F(Recovery, AReadAfterAFailedOneGivesTheDataOfItsPosition)
{
    put_stream(0, 100000);
    expect_data(0, 1000);
    Bytes got(200000, 0xA5);
    EXPECT_THROW(segment.read(got.data(), got.size()), VelaError);
    EXPECT_EQ(segment.tell(), 1000u);
    complete(100000);
    expect_data(1000, 150000);
    expect_data(151000, 149000);
}

TEST_F(Recovery, AReadThatFailsTwiceKeepsItsPosition)
{
    put_stream(0, 100000);
    expect_data(0, 1000);
    Bytes got(200000, 0xA5);
    EXPECT_THROW(segment.read(got.data(), got.size()), VelaError);
    std::filesystem::resize_file(path("segment"), 200);
    EXPECT_THROW(segment.read(got.data(), 10), VelaError);
    EXPECT_EQ(segment.tell(), 1000u);
    complete(200);
    expect_data(1000, 299000);
}

TEST_F(Recovery, ASeekAfterAFailedSeekLandsWhereItSays)
{
    put_stream(0, 100000);
    EXPECT_THROW(segment.seek(200000), VelaError);
    complete(100000);
    EXPECT_EQ(segment.seek(200000), 200000u);
    expect_data(200000, 1000);
}

TEST_F(Recovery, ASeekToThePositionOfAFailedReadStartsTheStreamAnew)
{
    put_stream(0, 100000);
    Bytes got(200000, 0xA5);
    EXPECT_THROW(segment.read(got.data(), got.size()), VelaError);
    complete(100000);
    EXPECT_EQ(segment.seek(0), 0u);
    expect_data(0, 300000);
}

TEST_F(Recovery, UsesTheFlushPointBelowThePosition)
{
    put_stream(50000, 130000);
    segment.set_flush_positions(stream.flush_positions, 50000);
    segment.seek(60000);
    Bytes got(200000, 0xA5);
    EXPECT_THROW(segment.read(got.data(), got.size()), VelaError);
    EXPECT_EQ(segment.tell(), 60000u);
    complete(130000);
    expect_data(60000, 240000);
}

TEST_F(Recovery, TheSameDamageFailsInTheSameWayAgain)
{
    put_stream(0, 100000);
    complete(100000);
    vela_test::Bytes wrong(1, static_cast<unsigned char>(stream.bytes.back() ^ 1));
    file.seek(stream.bytes.size() - 1);
    file.write(wrong.data(), 1);
    Bytes got(data.size(), 0xA5);
    for (int time = 0; time < 3; ++time)
        EXPECT_VELA_ERROR(segment.read(got.data(), got.size()), -10, "Zip error (-3)!");
}

TEST_F(Recovery, AReaderFromTheStartStaysOneAndSeesTheTrailerAgain)
{
    put_stream(50000, 1);
    complete(1);
    segment.set_flush_positions(stream.flush_positions, 50000);
    const Bytes wrong(1, static_cast<unsigned char>(stream.bytes.back() ^ 1));
    file.seek(stream.bytes.size() - 1);
    file.write(wrong.data(), 1);
    expect_data(0, 150000);
    Bytes got(150000, 0xA5);
    for (int time = 0; time < 3; ++time)
        EXPECT_VELA_ERROR(segment.read(got.data(), got.size()), -10, "Zip error (-3)!");
    EXPECT_NO_THROW(segment.read(got.data(), 0));
    EXPECT_EQ(segment.tell(), 150000u);
}

class TableOfFlushPositions : public Recovery
{
protected:
    void put_table(std::vector<std::uint64_t> positions)
    {
        put_stream(50000, 1);
        complete(1);
        segment.set_flush_positions(std::move(positions), 50000);
    }
};

TEST_F(TableOfFlushPositions, KeepsItsGoodEntriesWhereOnlyLaterOnesLeaveTheStretch)
{
    stream = vela_test::deflate_in_blocks(data, 1, 50000);
    std::vector<std::uint64_t> positions = stream.flush_positions;
    positions[3] = stream.bytes.size();
    positions[4] = stream.bytes.size() + 1;
    positions[5] = all_ones;
    put_table(positions);
    EXPECT_EQ(segment.seek(150000), 150000u);
    expect_data(150000, 50000);
    EXPECT_VELA_ERROR(segment.seek(210000), -4, "Invalid flush positions in segment!");
    EXPECT_VELA_ERROR(segment.seek(250000), -4, "Invalid flush positions in segment!");
}

TEST_F(TableOfFlushPositions, IsNotTrustedAtAllWhereItDoesNotAscend)
{
    stream = vela_test::deflate_in_blocks(data, 1, 50000);
    std::vector<std::uint64_t> positions = stream.flush_positions;
    // Every entry but the last stands between its neighbours, and yet the second and third are of other blocks.
    positions = {positions[0], positions[2], positions[3], positions[1], positions[4], positions[5]};
    put_table(positions);
    for (const std::uint64_t target : {50000u, 100000u, 150000u, 200000u, 250000u})
        EXPECT_VELA_ERROR(segment.seek(target), -4, "Invalid flush positions in segment!");
    EXPECT_EQ(segment.seek(49999), 49999u);
    expect_data(49999, 20000);
}

class FarPositions : public Recovery
{
};

TEST_F(FarPositions, OfAStoredStretchAreNeverReadFromElsewhere)
{
    vela_test::put_bytes(path("stored"), vela_test::constant_bytes(4096));
    file.open(file_name(path("stored")), VFile::read_mode);
    segment.init_r(file, 0, 100, all_ones, all_ones);
    for (const std::uint64_t target :
         {std::uint64_t{1} << 62, std::uint64_t{1} << 63, (std::uint64_t{1} << 63) + 5, all_ones - 101})
    {
        unsigned char got = 0xA5;
        EXPECT_EQ(segment.seek(target), target);
        file.seek(0);
        EXPECT_VELA_ERROR(segment.read(&got, 1), -3, "Failed reading 1 bytes from file!");
        EXPECT_EQ(got, 0xA5);
    }
}

TEST_F(FarPositions, ThatNoFilePositionCorrespondsToAreRefused)
{
    vela_test::put_bytes(path("stored"), vela_test::constant_bytes(4096));
    file.open(file_name(path("stored")), VFile::read_mode);
    segment.init_r(file, 0, 100, all_ones, all_ones);
    segment.seek(7);
    for (const std::uint64_t target : {all_ones, all_ones - 1, all_ones - 99, all_ones - 100})
        EXPECT_VELA_ERROR(segment.seek(target), -1, "Invalid position in segment!");
    EXPECT_EQ(segment.tell(), 7u);
}

} // namespace
