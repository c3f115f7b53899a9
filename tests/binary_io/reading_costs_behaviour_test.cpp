// What opening and reading cost in memory and in calls of the system.
#include "binary_io/disk_reads.h"
#include "binary_io/vbf_reading_test.h"

#include "support/allocation_watch.h"
#include "support/zlib_stream.h"

#include <unistd.h>

using namespace vela_test;

namespace {

constexpr std::size_t mebibyte = 1 << 20;

class VbfReadingCosts : public VbfReadingTest
{
protected:
    /// The most memory that an attempt to open takes.
    std::size_t peak_of_opening(const VbfBytes& built)
    {
        file.reset();
        put(built);
        const VPropstring name = file_name(path("test.vbf"));
        const AllocationWatch watch;
        try
        {
            file.open(name, VFile::read_mode);
        }
        catch (const std::exception&)
        {
        }
        return watch.peak_extra_bytes();
    }

    static RecordFields empty_record(const std::vector<std::uint32_t>& sizes)
    {
        RecordFields fields = bytes_record({});
        fields.header.sizes = sizes;
        fields.header.lengths = std::vector<double>(sizes.size(), 1.0);
        fields.header.offsets = std::vector<double>(sizes.size(), 0.0);
        return fields;
    }

    /// Memory that opening, and a copy of the stack, take.
    std::size_t peak_of_stack(const std::vector<std::uint32_t>& sizes)
    {
        VbfRecords built(1);
        built.add_stack_record(empty_record(sizes));
        std::size_t peak = peak_of_opening(built);
        const AllocationWatch watch;
        const StackPointer stack = file->get_stack(0);
        EXPECT_EQ(stack->get_rank(), sizes.size());
        return std::max(peak, watch.peak_extra_bytes());
    }
};

} // namespace

TEST_F(VbfReadingCosts, ALengthThatLiesTakesNoMemory)
{
    RecordFields fields = bytes_record({1, 2, 3});
    fields.labels = {"label"};
    fields.col_labels = {{0, {"a", "b", "c"}}};
    fields.metadata = position_xml({"a", "b"}, "1 2", "2 1", "1 0");
    fields.tags = {{"key", "value"}};
    VbfRecords built(2, "text");
    const RecordPlaces places = built.add_stack_record(fields);
    const std::uint64_t dictionary = built.add_dictionary();
    const std::uint64_t usual = peak_of_opening(built);
    ASSERT_TRUE(file->is_open());
    for (const std::uint64_t at :
         {built.start_pos() + 22, places.header + stack_name_length_at, places.header + stack_description_length_at,
          places.labels, places.labels + 4 + 5, places.footer + footer_metadata_length_at, places.tags,
          places.tags + 4 + 3, dictionary, dictionary + 4 + 7})
        for (const std::uint32_t length : {0x7fffffffu, 0xffffffffu})
        {
            VbfRecords damaged = built;
            damaged.set_u32_at(at, length);
            EXPECT_LE(peak_of_opening(damaged), usual + mebibyte) << at;
            EXPECT_FALSE(file->is_open()) << at;
        }
}

TEST_F(VbfReadingCosts, ACountThatLiesTakesNoMemory)
{
    for (const std::uint64_t count : {std::uint64_t(1) << 27, std::uint64_t(1) << 40, (std::uint64_t(1) << 61) - 1})
    {
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(bytes_record({1, 2, 3}));
        built.set_u64_at(places.footer + footer_flush_point_count_at, count);
        EXPECT_LE(peak_of_opening(built), mebibyte);
    }
    for (const std::uint32_t size : {0x08000000u, 0xffffffffu})
    {
        RecordFields positions = bytes_record({1});
        positions.header.sizes = {size};
        positions.col_positions = {{0, {1.0}}};
        VbfRecords built(1);
        built.add_stack_record(positions);
        EXPECT_LE(peak_of_opening(built), mebibyte);

        RecordFields labels = bytes_record({1});
        labels.header.sizes = {size};
        labels.col_labels = {{0, {"a"}}};
        VbfRecords other(1);
        other.add_stack_record(labels);
        EXPECT_LE(peak_of_opening(other), mebibyte);
    }
}

TEST_F(VbfReadingCosts, ManyRecordsThatShareTheirBytesTakeNoMoreThanAFewFiles)
{
    constexpr std::uint32_t large = 1 << 19;
    RecordFields fields = bytes_record({});
    fields.header.format_version = 0;

    VbfRecords names(1);
    for (int i = 0; i < 500; ++i)
    {
        const RecordPlaces places = names.add_stack_record(fields);
        names.set_u32_at(places.header + stack_name_length_at, large);
    }
    names.append(Bytes(large, 'n'));
    EXPECT_LE(peak_of_opening(names), 32 * mebibyte);

    VbfRecords tags(1);
    std::vector<RecordPlaces> sharing;
    for (int i = 0; i < 500; ++i)
        sharing.push_back(tags.add_stack_record(fields));
    fields.header.format_version = 5;
    fields.tags = {{"key", std::string(large, 'v')}};
    const RecordPlaces shared = tags.add_stack_record(fields);
    for (const RecordPlaces& places : sharing)
    {
        tags.set_u32_at(places.header + stack_format_version_at, 5);
        tags.set_u64_at(places.header + stack_data_length_at, shared.footer - places.data);
    }
    EXPECT_LE(peak_of_opening(tags), 32 * mebibyte);
}

TEST_F(VbfReadingCosts, AMillionPlanesTakeNoMoreThanOne)
{
    const std::size_t one = peak_of_stack({4, 4, 1, 1, 1});
    EXPECT_LE(peak_of_stack({4, 4, 1000, 1000, 1}), one + 65536);
    EXPECT_LE(peak_of_stack({4, 4, 1, 1, 1000000}), one + 65536);
    EXPECT_LE(peak_of_stack({1, 1, 65535, 65535}), one + 65536);
}

TEST_F(VbfReadingCosts, AnEmptyStackOfAnySizeIsReadWithoutMemory)
{
    VbfRecords built(1);
    built.add_stack_record(empty_record({0xffffffff, 0xffffffff}));
    const StackPointer stack = open(built)->get_stack(0);
    Bytes bytes(100, stale);
    std::uint64_t pos = 1;
    const AllocationWatch watch;
    EXPECT_EQ(stack->read(vela_dt_uint8, bytes.data(), nullptr, 100, pos), 100u);
    EXPECT_LE(watch.peak_extra_bytes(), mebibyte);
    EXPECT_EQ(bytes, Bytes(100, 0));
}

TEST_F(VbfReadingCosts, ConversionTakesOneChunkOfMemoryAtMost)
{
    RecordFields fields = bytes_record(Bytes(2000000, 7));
    const StackPointer stack = only_stack(fields);
    file->set_chunk_size(100000);
    std::vector<std::uint16_t> samples(2000000);
    const AllocationWatch watch;
    stack->read(vela_dt_uint16, samples.data(), nullptr);
    EXPECT_LE(watch.peak_extra_bytes(), 300000u);
    EXPECT_EQ(samples.back(), 7);
}

TEST_F(VbfReadingCosts, AReadToTheEndReleasesTheMemoryOfTheStream)
{
    const Bytes data = sparse_bytes(1000000);
    RecordFields fields = bytes_record(deflate_whole(data));
    fields.header.sizes = {1000000};
    fields.header.compression_type = 1;
    fields.header.compression_level = 6;
    const StackPointer stack = only_stack(fields);
    Bytes samples(1000000, stale);
    const AllocationWatch watch;
    stack->read(vela_dt_uint8, samples.data(), nullptr);
    EXPECT_LE(watch.extra_bytes(), 4096u);
    EXPECT_EQ(samples, data);
}

TEST_F(VbfReadingCosts, ManySmallFieldsTakeFewCalls)
{
    RecordFields fields = bytes_record({});
    fields.header.sizes = {20000};
    fields.col_labels = {{0, std::vector<std::string>(20000, "label")}};
    for (int i = 0; i < 5000; ++i)
        fields.tags.emplace_back("key" + std::to_string(10000 + i), "value");
    VbfRecords built(1);
    built.add_stack_record(fields);
    put(built);
    const VPropstring name = file_name(path("test.vbf"));
    const DiskReads disk;
    file.open(name, VFile::read_mode);
    EXPECT_GT(disk.count_reads(), 0u);
    EXPECT_LE(disk.count_reads(), 20 + built.size() / 4096);
    EXPECT_LE(disk.count_bytes(), 2 * built.size() + 200000);
    EXPECT_EQ(file->get_stack(0)->get_tag("key14999"), "value");
    EXPECT_EQ(file->get_stack(0)->get_col_labels(0).at(19999), "label");
}

TEST_F(VbfReadingCosts, ReadingOnMovesNoStreamBack)
{
    const Bytes data = noisy_bytes(1000000);
    RecordFields fields = bytes_record(deflate_whole(data));
    const std::size_t on_disk = fields.header.data.size();
    fields.header.sizes = {1000000};
    fields.header.compression_type = 1;
    fields.header.compression_level = 6;
    const StackPointer stack = only_stack(fields);
    const DiskReads disk;
    std::uint64_t pos = 0;
    for (std::uint64_t i = 0; i < 1000; ++i)
    {
        ASSERT_EQ(read_run(*stack, vela_dt_uint8, 1000, pos), slice(data, i * 1000, i * 1000 + 1000));
        if (i < 999)
            pos = VBFStackInterface::continued;
    }
    EXPECT_LE(disk.count_bytes(), on_disk + 65536);
    EXPECT_EQ(pos, VBFStackInterface::exhausted);
}

// ---- files in which one byte lies

namespace {

/// One of everything, small.
VbfRecords small_file()
{
    const Bytes data = sparse_bytes(600);
    const FlushedStream stream = deflate_in_blocks(data, 6, 200);
    RecordFields fields = bytes_record(stream.bytes);
    fields.header.sizes = {30, 20};
    fields.header.lengths = {1.0, 2.0};
    fields.header.offsets = {0.0, 0.0};
    fields.header.compression_type = 1;
    fields.header.compression_level = 6;
    fields.labels = {"X", "Y"};
    fields.metadata = position_xml({"a", "b"}, "1 2", "2 2", "1 0 0 1");
    fields.flush_positions = stream.flush_positions;
    fields.flush_block_size = 200;
    fields.tags = {{"k", "v"}};
    VbfRecords built(2, "t");
    built.add_stack_record(fields);
    built.add_dictionary({{"k", "v"}});
    return built;
}

/// Opens and reads a little; only exceptions may come of it.
void look_through(const VPropstring& name)
{
    try
    {
        VBFFile file(name, VFile::read_mode);
        for (std::uint64_t i = 0; i < file->number_of_stacks(); ++i)
        {
            const StackPointer stack = file->get_stack(i);
            stack->get_stack_position();
            const std::uint64_t last = stack->get_number_of_elements() - 1;
            for (const std::uint64_t first : {std::uint64_t(0), std::uint64_t(450), last})
            {
                Bytes bytes(100 * 16, stale);
                std::uint64_t pos = first;
                stack->read(vela_dt_double | vela_dt_complex, bytes.data(), nullptr, 100, pos);
            }
        }
    }
    catch (const std::exception&)
    {
    }
}

} // namespace

TEST_F(VbfReadingCosts, WhateverOneByteSaysMemoryStaysBounded)
{
    const VbfRecords built = small_file();
    put(built);
    const VPropstring name = file_name(path("test.vbf"));
    look_through(name);
    const Descriptor writer(path("test.vbf"), O_WRONLY);
    for (std::size_t at = 0; at < built.size(); ++at)
    {
        const unsigned char good = built.bytes()[at];
        for (const int change : {0x01, 0xff})
        {
            const auto bad = static_cast<unsigned char>(good ^ change);
            ASSERT_EQ(::pwrite(writer.get(), &bad, 1, static_cast<off_t>(at)), 1);
            const AllocationWatch watch;
            look_through(name);
            ASSERT_LE(watch.peak_extra_bytes(), 16 * mebibyte) << at << ' ' << change;
        }
        ASSERT_EQ(::pwrite(writer.get(), &good, 1, static_cast<off_t>(at)), 1);
    }
}
