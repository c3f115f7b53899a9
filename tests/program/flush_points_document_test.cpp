// The example of flush points in docs/format.md, taken as a reader without this library would take it.
#include "hex_dump.h"
#include "page_tables.h"

#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include <zlib.h>

using namespace vela_test;

namespace {

class FlushExample : public FolderTest
{
protected:
    static constexpr std::uint64_t block_size = 32768;
    static constexpr std::uint64_t sample_count = 3 * block_size;
    const std::vector<std::uint64_t> points = {53, 104, 155};

    static Bytes segment() { return bytes_of_dump(blocks_behind("## An example of flush points", "hex").at(0)); }

    /// `count` bytes behind an offset, inflated with these window bits.
    static Bytes inflated(const Bytes& bytes, std::uint64_t offset, std::uint64_t count, int window_bits)
    {
        Bytes input(bytes.begin() + static_cast<std::ptrdiff_t>(offset), bytes.end());
        Bytes output(count, 0xcd);
        z_stream stream = {};
        EXPECT_EQ(inflateInit2(&stream, window_bits), Z_OK);
        stream.next_in = input.data();
        stream.avail_in = static_cast<uInt>(input.size());
        stream.next_out = output.data();
        stream.avail_out = static_cast<uInt>(output.size());
        inflate(&stream, Z_SYNC_FLUSH);
        output.resize(stream.total_out);
        inflateEnd(&stream);
        return output;
    }

    static Bytes samples()
    {
        Bytes all;
        for (const int value : {10, 20, 30})
            all.insert(all.end(), block_size, static_cast<unsigned char>(value));
        return all;
    }
};

TEST_F(FlushExample, SegmentIsOneStreamOfAllSamples)
{
    EXPECT_EQ(inflated(segment(), 0, sample_count + 1, 15), samples());
}

TEST_F(FlushExample, EachPointStartsTheBlockBehindIt)
{
    const Bytes bytes = segment();
    EXPECT_EQ(inflated(bytes, points[0], 1, -15), Bytes{20});
    EXPECT_EQ(inflated(bytes, points[1], 1, -15), Bytes{30});
    EXPECT_EQ(inflated(bytes, points[1], block_size + 1, -15), Bytes(block_size, 30));
    EXPECT_EQ(inflated(bytes, points[2], 1, -15), Bytes());
    EXPECT_EQ(points[2] + 2 + 4, bytes.size()); // 03 00 and the trailer
}

TEST_F(FlushExample, TrailerIsTheChecksumWithItsHighByteFirst)
{
    const Bytes all = samples();
    const Bytes bytes = segment();
    const auto checksum = static_cast<std::uint32_t>(adler32(adler32(0, nullptr, 0), all.data(), sample_count));
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(bytes.end()[static_cast<std::ptrdiff_t>(i) - 4],
                  static_cast<unsigned char>(checksum >> (24 - 8 * i)));
}

TEST_F(FlushExample, LibraryReadsItFromItsPoints)
{
    put_bytes(path("segment"), segment());
    VFile file;
    file.open(file_name(path("segment")), VFile::read_mode);
    VZippedSegment reader;
    reader.init_r(file, 1, 0, segment().size(), sample_count);
    reader.set_flush_positions(points, block_size);
    Bytes run(5000, 0xcd);
    reader.seek(30000);
    reader.read(run.data(), run.size());
    EXPECT_EQ(std::count(run.begin(), run.end(), 10), 2768);
    EXPECT_EQ(std::count(run.begin(), run.end(), 20), 2232);
    reader.seek(70000);
    reader.read(run.data(), run.size());
    EXPECT_EQ(run, Bytes(5000, 30));
}

} // namespace
