// How many system calls opening, a scan and a seek make. A count, unlike a time, is the same on every machine.
#include "binary_io/disk_reads.h"
#include "support/temporary_folder.h"
#include "support/vbf_bytes.h"

#include <VelaBinaryIO/VBFFile.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using vela_test::Bytes;
using vela_test::DiskReads;
using vela_test::file_name;
using vela_test::FolderTest;
using vela_test::StackFields;
using vela_test::VbfBytes;

/// Opening a scan: where the file stands and how long it is, and back; the file header; the last position.
constexpr std::size_t calls_around = 8;

class ScanCalls : public FolderTest
{
protected:
    /// Scans a file of `count` stacks of `data_bytes` bytes with a text of `text_bytes` and gives the calls.
    std::size_t scan(std::size_t count, std::size_t data_bytes, std::size_t text_bytes)
    {
        VbfBytes file;
        file.file_header(2, "many");
        StackFields fields;
        fields.sizes = {static_cast<std::uint32_t>(data_bytes)};
        fields.lengths = {1.0};
        fields.offsets = {0.0};
        fields.data = Bytes(data_bytes, 0x5a);
        fields.description = std::string(text_bytes, 'd');
        for (std::size_t i = 0; i < count; ++i)
            file.stack(fields);
        vela_test::put_bytes(path("many.vbf"), file.bytes());
        VFile opened(file_name(path("many.vbf")), VFile::read_mode);
        const DiskReads disk;
        EXPECT_EQ(scan_chain(opened).stacks.size(), count);
        EXPECT_GT(disk.count_calls(), 0u);
        return disk.count_calls();
    }
};

TEST_F(ScanCalls, AtMostTwoAStackWhereHeadersLieClose)
{
    EXPECT_LE(scan(10000, 100, 0), 2 * 10000 + calls_around);
}

TEST_F(ScanCalls, AtMostTwoAStackWhereDataLieBetween)
{
    EXPECT_LE(scan(1000, 20000, 100), 2 * 1000 + calls_around);
}

TEST_F(ScanCalls, AtMostFourAStackWithLongTexts)
{
    EXPECT_LE(scan(200, 100, 20000), 4 * 200 + calls_around);
}

class OpenCalls : public FolderTest
{
protected:
    /// Opens a file of `count` stacks of `data_bytes` bytes and gives the calls.
    std::size_t open(std::size_t count, std::size_t data_bytes)
    {
        VBFFile file(file_name(path("many.vbf")), VFile::write_mode);
        const Bytes samples(data_bytes, 0x5a);
        for (std::size_t i = 0; i < count; ++i)
        {
            const auto stack = file->add_stack(false);
            stack->create({data_bytes, 1}, vela_dt_uint8);
            stack->set_name("a stack of many");
            stack->set_tag("key", "value");
            stack->write(vela_dt_uint8, samples.data(), nullptr, VBFStackInterface::all_samples);
        }
        file->close();
        const DiskReads disk;
        file.open(file_name(path("many.vbf")), VFile::read_mode);
        EXPECT_EQ(file->number_of_stacks(), count);
        EXPECT_GT(disk.count_calls(), 0u);
        return disk.count_calls();
    }
};

TEST_F(OpenCalls, AtMostThreeAStack)
{
    EXPECT_LE(open(500, 10), 3 * 500 + calls_around);
    EXPECT_LE(open(500, 2000), 3 * 500 + calls_around);
    EXPECT_LE(open(200, 20000), 3 * 200 + calls_around);
}

class SeekCost : public FolderTest
{
};

TEST_F(SeekCost, APlaneReadsNoMoreThanItsBlockAndOneWindow)
{
    constexpr std::size_t plane = 256 * 1024;
    constexpr std::size_t planes = 16;
    constexpr std::uint64_t window = 64 * 1024;
    std::mt19937 random(5);
    Bytes data(plane * planes);
    for (unsigned char& byte : data)
        byte = static_cast<unsigned char>(random() & 0x3f);

    VFile file(file_name(path("segment")), VFile::write_mode);
    VZippedSegment segment;
    segment.init_w(file, 1, data.size());
    segment.set_flush_block_size(plane);
    segment.write(data.data(), data.size());
    const std::uint64_t length = segment.write_end();
    std::uint64_t block = 0;
    const std::vector<std::uint64_t> positions = segment.get_flush_positions(block);

    segment.init_r(file, 1, 0, length, data.size());
    segment.set_flush_positions(positions, block);
    for (const std::size_t index : {9u, 3u, 15u, 1u})
    {
        Bytes got(plane, 0xA5);
        const DiskReads disk;
        segment.seek(index * plane);
        segment.read(got.data(), got.size());
        const auto begin = data.begin() + static_cast<std::ptrdiff_t>(index * plane);
        EXPECT_TRUE(std::equal(got.begin(), got.end(), begin));
        const std::uint64_t end = index < positions.size() ? positions[index] : length;
        EXPECT_LE(disk.count_bytes(), end - positions[index - 1] + window);
        EXPECT_GT(disk.count_bytes(), 0u);
    }
}

} // namespace
