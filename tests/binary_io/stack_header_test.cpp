// The stack header: layout, reading, writing, failures.
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VZippedSegment.h>

#include "binary_io/memory_stream.h"
#include "binary_io/plain_scan.h"
#include "binary_io/vbf_file_test.h"
#include "support/expect_vela_error.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

using namespace vela_test;

namespace {

/// Reads a stack header that stands at the start of a file.
class VBFStackHeaderTest : public VbfFileTest
{
protected:
    /// A record of a stack alone, without a file header.
    static VbfBytes record(const StackFields& fields)
    {
        VbfBytes built;
        built.file_header(1);
        built.stack(fields);
        return built;
    }

    /// Positions in `record`: the header stands behind a file header of 26 bytes.
    static std::uint64_t at(std::uint64_t offset) { return 26 + offset; }

    VBFStackRecord read(const VbfBytes& built) { return read_stack_header(reopen(built.bytes(), 26)); }
};

/// 368 bytes, put together by their offsets, with the rank 15 and a different number in each entry.
Bytes literal_stack_header()
{
    Bytes bytes(368, 0);
    const auto put = [&bytes](std::size_t offset, std::initializer_list<int> values)
    {
        for (const int value : values)
            bytes[offset++] = static_cast<unsigned char>(value);
    };
    put(0, {'V', 'E', 'L', 'A', '_', 'B', 'F', '_', 'S', 'T', 'A', 'C', 'K', '\n', 0xff, 0xff});
    put(16, {0x05, 0, 0, 0});
    put(20, {0x0f, 0, 0, 0});
    for (int i = 0; i < 15; ++i)
    {
        put(24 + 4 * static_cast<std::size_t>(i), {i + 1, 0x20, 0x30, 0x40});       // 0x40302001 and so on
        put(84 + 8 * static_cast<std::size_t>(i), {0, 0, 0, 0, 0, i, 0xf0, 0x3f});  // 1 + i / 4096
        put(204 + 8 * static_cast<std::size_t>(i), {0, 0, 0, 0, 0, i, 0xf0, 0xbf}); // -1 - i / 4096
    }
    put(324, {0x80, 0x00, 0x00, 0x40});
    put(328, {0x01, 0x12, 0x13, 0x14});
    put(332, {0xff, 0xff, 0xff, 0xff});
    put(336, {0x03, 0, 0, 0});
    put(340, {0x02, 0, 0, 0});
    put(344, {0x01, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58});
    put(352, {0x61, 0x62, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68});
    put(360, {0x71, 0x72, 0x73, 0x74, 0x75, 0x76, 0x77, 0xf8});
    return bytes;
}

/// The same with the texts "abc" and "de" behind it.
Bytes literal_stack_record()
{
    Bytes bytes = literal_stack_header();
    append_text(bytes, "abcde");
    return bytes;
}

} // namespace

TEST(VBFStackHeader, FieldsHaveTheirPlacesInThe368Bytes)
{
    EXPECT_EQ(sizeof(VBFStackHeader), 368u);
    EXPECT_EQ(offsetof(VBFStackHeader, magic), 0u);
    EXPECT_EQ(offsetof(VBFStackHeader, format_version), 16u);
    EXPECT_EQ(offsetof(VBFStackHeader, rank), 20u);
    EXPECT_EQ(offsetof(VBFStackHeader, dimension_sizes), 24u);
    EXPECT_EQ(offsetof(VBFStackHeader, lengths), 84u);
    EXPECT_EQ(offsetof(VBFStackHeader, offsets), 204u);
    EXPECT_EQ(offsetof(VBFStackHeader, data_type), 324u);
    EXPECT_EQ(offsetof(VBFStackHeader, compression_type), 328u);
    EXPECT_EQ(offsetof(VBFStackHeader, compression_level), 332u);
    EXPECT_EQ(offsetof(VBFStackHeader, name_length), 336u);
    EXPECT_EQ(offsetof(VBFStackHeader, description_length), 340u);
    EXPECT_EQ(offsetof(VBFStackHeader, data_present), 344u);
    EXPECT_EQ(offsetof(VBFStackHeader, data_length_on_disk), 352u);
    EXPECT_EQ(offsetof(VBFStackHeader, next_stack_pos), 360u);
    static_assert(std::is_trivially_copyable_v<VBFStackHeader>);
}

TEST(VBFStackHeader, ReadsLiteralBytes)
{
    MemoryStream stream(literal_stack_record());

    const VBFStackRecord stack = read_stack_header(stream);

    EXPECT_EQ(std::string(stack.header.magic, 16), "VELA_BF_STACK\n\xff\xff");
    EXPECT_EQ(copied(stack.header.format_version), 5u);
    EXPECT_EQ(copied(stack.header.rank), 15u);
    for (unsigned i = 0; i < 15; ++i)
    {
        SCOPED_TRACE(i);
        EXPECT_EQ(copied(stack.header.dimension_sizes[i]), 0x40302001u + i);
        EXPECT_EQ(copied(stack.header.lengths[i]), 1.0 + i / 4096.0);
        EXPECT_EQ(copied(stack.header.offsets[i]), -1.0 - i / 4096.0);
    }
    EXPECT_EQ(copied(stack.header.data_type), 0x40000080);
    EXPECT_EQ(copied(stack.header.compression_type), 0x14131201);
    EXPECT_EQ(copied(stack.header.compression_level), -1);
    EXPECT_EQ(copied(stack.header.name_length), 3u);
    EXPECT_EQ(copied(stack.header.description_length), 2u);
    EXPECT_EQ(copied(stack.header.data_present), 0x5857565554535201u);
    EXPECT_EQ(copied(stack.header.data_length_on_disk), 0x6867666564636261u);
    EXPECT_EQ(copied(stack.header.next_stack_pos), 0xf877767574737271u);
    EXPECT_EQ(stack.name, "abc");
    EXPECT_EQ(stack.description, "de");
    EXPECT_EQ(stream.tell(), 373u) << "stands at the data segment";
    EXPECT_EQ(bytes_of(stack.header), literal_stack_header());
}

TEST(VBFStackHeader, WritesLiteralBytes)
{
    VBFStackHeader header = {};
    std::memcpy(header.magic, "VELA_BF_STACK\n\xff\xff", 16);
    header.format_version = 5;
    header.rank = 15;
    for (unsigned i = 0; i < 15; ++i)
    {
        header.dimension_sizes[i] = 0x40302001u + i;
        header.lengths[i] = 1.0 + i / 4096.0;
        header.offsets[i] = -1.0 - i / 4096.0;
    }
    header.data_type = 0x40000080;
    header.compression_type = 0x14131201;
    header.compression_level = -1;
    header.name_length = 3;
    header.description_length = 2;
    header.data_present = 0x5857565554535201;
    header.data_length_on_disk = 0x6867666564636261;
    header.next_stack_pos = 0xf877767574737271;
    MemoryStream stream;

    stream.write_value(header);

    EXPECT_EQ(stream.bytes(), literal_stack_header());
    EXPECT_EQ(stream.write_sizes, std::vector<std::uint64_t>{368}) << "one write";
}

TEST(VBFStackHeader, TheHeaderAndEachTextComeInOneRead)
{
    MemoryStream stream(literal_stack_record());

    read_stack_header(stream);

    EXPECT_EQ(stream.read_sizes, (std::vector<std::uint64_t>{368, 3, 2}));
}

TEST(VBFStackHeader, EmptyTextsAreNotRead)
{
    VbfBytes built;
    built.file_header(1);
    built.stack({.name = "", .description = "", .data = {}});
    MemoryStream stream(built.bytes(), 26);

    const VBFStackRecord stack = read_stack_header(stream);

    EXPECT_EQ(stack.name, "");
    EXPECT_EQ(stack.description, "");
    EXPECT_EQ(stream.read_sizes, std::vector<std::uint64_t>{368});
}

TEST_F(VBFStackHeaderTest, TextsMayHoldAnyBytes)
{
    const std::string name("\0\xff\xb5 \n", 5);
    const std::string description("\xf0\x9f\x94\xac\0", 5);

    const VBFStackRecord stack = read(record({.name = name, .description = description}));

    EXPECT_EQ(stack.name, name);
    EXPECT_EQ(stack.description, description);
    EXPECT_EQ(file.tell(), 26u + 368 + 10);
}

TEST_F(VBFStackHeaderTest, ALengthThatIsNoNumberBecomesOne)
{
    const std::uint64_t not_numbers[] = {
        0x7ff8000000000000, // quiet
        0xfff8000000000000, // with a sign
        0x7ff0000000000001, // signalling
        0xfff0000000000001, // signalling, with a sign
        0x7fffffffffffffff, // all other bits
        0x7ff8dead00beef00, // with a payload
    };
    for (const std::uint64_t bits : not_numbers)
    {
        SCOPED_TRACE(bits);
        for (std::size_t i = 0; i < 3; ++i)
        {
            VbfBytes built = record({.sizes = {2, 3, 4}, .lengths = {5, 6, 7}});
            built.set_u64_at(at(stack_lengths_at + 8 * i), bits);

            const VBFStackRecord stack = read(built);

            for (std::size_t k = 0; k < 3; ++k)
                EXPECT_EQ(copied(stack.header.lengths[k]), k == i ? 1.0 : 5.0 + static_cast<double>(k));
        }
    }
}

TEST_F(VBFStackHeaderTest, AllLengthsOfTheHighestRankAreRepaired)
{
    VbfBytes built = record({.sizes = std::vector<std::uint32_t>(15, 1)});
    for (std::uint64_t i = 0; i < 15; ++i)
        built.set_u64_at(at(stack_lengths_at + 8 * i), 0x7ff8000000000000);

    const VBFStackRecord stack = read(built);

    for (std::size_t i = 0; i < 15; ++i)
        EXPECT_EQ(copied(stack.header.lengths[i]), 1.0) << i;
}

TEST_F(VBFStackHeaderTest, OtherUnusualLengthsStay)
{
    const std::uint64_t unusual[] = {
        0x0000000000000000, // 0
        0x8000000000000000, // -0
        0x7ff0000000000000, // infinity
        0xfff0000000000000, // -infinity
        0x0000000000000001, // the smallest
        0xbff0000000000000, // -1
        0x7fefffffffffffff, // the largest
    };
    for (const std::uint64_t bits : unusual)
    {
        SCOPED_TRACE(bits);
        VbfBytes built = record({});
        built.set_u64_at(at(stack_lengths_at), bits);

        EXPECT_EQ(std::bit_cast<std::uint64_t>(copied(read(built).header.lengths[0])), bits);
    }
}

TEST_F(VBFStackHeaderTest, EntriesBehindTheRankStayAsOnDisk)
{
    VbfBytes built = record({.sizes = {4, 3}});
    for (std::uint64_t i = 2; i < 15; ++i)
    {
        built.set_u32_at(at(stack_sizes_at + 4 * i), 0xdead0000u + static_cast<std::uint32_t>(i));
        built.set_u64_at(at(stack_lengths_at + 8 * i), 0x7ff0000000000001);
        built.set_u64_at(at(stack_offsets_at + 8 * i), 0xfff8123456789abc);
    }
    const Bytes expected(built.bytes().begin() + 26, built.bytes().begin() + 26 + 368);

    EXPECT_EQ(bytes_of(read(built).header), expected);
}

TEST_F(VBFStackHeaderTest, RankZeroRepairsNothing)
{
    VbfBytes built = record({.sizes = {}});
    built.set_u64_at(at(stack_lengths_at), 0x7ff8000000000000);

    const VBFStackRecord stack = read(built);

    EXPECT_EQ(copied(stack.header.rank), 0u);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(copied(stack.header.lengths[0])), 0x7ff8000000000000u);
}

TEST_F(VBFStackHeaderTest, OffsetsAreNotRepaired)
{
    VbfBytes built = record({});
    built.set_u64_at(at(stack_offsets_at), 0x7ff8000000000000);

    EXPECT_TRUE(std::isnan(copied(read(built).header.offsets[0])));
}

TEST_F(VBFStackHeaderTest, AWrongByteOfTheMagicIsNoStackHeader)
{
    for (std::uint64_t i = 0; i < 16; ++i)
    {
        SCOPED_TRACE(i);
        VbfBytes built = record({});
        built.set_byte_at(at(i), static_cast<unsigned char>(built.bytes()[at(i)] ^ 0x20));

        EXPECT_VELA_ERROR_IN(read(built), "VBFStackImp::read_info", "sources/binary_io", -4,
                             "Stack header not in vbf format!");
    }
}

TEST_F(VBFStackHeaderTest, TheMagicIsTestedBeforeTheTextsAreRead)
{
    VbfBytes built = record({});
    built.set_byte_at(at(0), 'v').set_u32_at(at(stack_name_length_at), 0xffffffff);

    EXPECT_VELA_ERROR(read(built), -4, "Stack header not in vbf format!");

    MemoryStream stream(built.bytes(), 26);
    EXPECT_VELA_ERROR(read_stack_header(stream), -4, "Stack header not in vbf format!");
    EXPECT_EQ(stream.read_sizes, std::vector<std::uint64_t>{368});
}

TEST_F(VBFStackHeaderTest, TheHighestRankIsFifteen)
{
    VbfBytes built = record({});
    built.set_u32_at(at(stack_rank_at), 15);
    EXPECT_EQ(copied(read(built).header.rank), 15u);

    for (const std::uint32_t rank : {16u, 17u, 0x7fffffffu, 0x80000000u, 0x80000002u, 0xffffffffu})
    {
        SCOPED_TRACE(rank);
        built.set_u32_at(at(stack_rank_at), rank);
        EXPECT_VELA_ERROR_IN(read(built), "VBFStackImp::read_info", "sources/binary_io", -4,
                             "Stack header not in vbf format!");
    }
}

TEST_F(VBFStackHeaderTest, ARankAboveFifteenIsRefusedBeforeTheTextsAreRead)
{
    VbfBytes built = record({});
    built.set_u32_at(at(stack_rank_at), 16).set_u32_at(at(stack_name_length_at), 0xffffffff);

    EXPECT_VELA_ERROR(read(built), -4, "Stack header not in vbf format!");
}

TEST_F(VBFStackHeaderTest, AWrongMagicWithAHugeRankIsNoStackHeader)
{
    VbfBytes built = record({});
    built.set_byte_at(at(3), 0).set_u32_at(at(stack_rank_at), 0xffffffff);

    EXPECT_VELA_ERROR(read(built), -4, "Stack header not in vbf format!");
}

TEST_F(VBFStackHeaderTest, WhatTheScanDoesNotNeedIsNotLookedAt)
{
    VbfBytes built = record({});
    built.set_u32_at(at(stack_format_version_at), 0xffffffff)
        .set_u32_at(at(stack_sizes_at), 0xffffffff)
        .set_u32_at(at(stack_sizes_at + 4), 0xffffffff)
        .set_u32_at(at(stack_data_type_at), 0x80000001)
        .set_u32_at(at(stack_compression_type_at), 77)
        .set_u32_at(at(stack_compression_level_at), 99)
        .set_u64_at(at(stack_data_present_at), 0xffffffffffffffff)
        .set_u64_at(at(stack_data_length_at), 0xffffffffffffffff);

    const VBFStackRecord stack = read(built);

    EXPECT_EQ(stack.name, "a");
    EXPECT_EQ(copied(stack.header.data_type), std::numeric_limits<std::int32_t>::min() + 1);
    EXPECT_EQ(copied(stack.header.compression_type), 77);
    EXPECT_EQ(copied(stack.header.data_length_on_disk), 0xffffffffffffffffu);
}

TEST_F(VBFStackHeaderTest, ACutRecordFailsOnItsField)
{
    const Bytes whole = record({.name = "name", .description = "of five", .data = {}}).bytes();
    ASSERT_EQ(whole.size(), 26u + 368 + 4 + 7);
    for (std::size_t size = 26; size < whole.size(); ++size)
    {
        SCOPED_TRACE(size);
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const std::string field = size < 394 ? "368" : size < 398 ? "4" : "7";

        EXPECT_VELA_ERROR(read_stack_header(reopen(cut, 26)), -3, "Failed reading " + field + " bytes from file!");
    }
}

TEST_F(VBFStackHeaderTest, ALengthThatTheFileDoesNotHaveFailsOnThatLength)
{
    const std::pair<std::uint32_t, const char*> cases[] = {
        {15, "Failed reading 15 bytes from file!"}, // fourteen are left
        {0x7fffffff, "Failed reading 2147483647 bytes from file!"},
        {0x80000000, "Failed reading -2147483648 bytes from file!"},
        {0xfffffffe, "Failed reading -2 bytes from file!"},
        {0xffffffff, "Failed reading -1 bytes from file!"},
    };
    for (const auto& [length, message] : cases)
    {
        SCOPED_TRACE(length);
        VbfBytes long_name = record({.name = "a", .description = "b"});
        long_name.set_u32_at(at(stack_name_length_at), length);
        EXPECT_VELA_ERROR(read(long_name), -3, message);

        VbfBytes long_description = record({.name = "", .description = "bc"});
        long_description.set_u32_at(at(stack_description_length_at), length);
        EXPECT_VELA_ERROR(read(long_description), -3, message);
    }
}

TEST(VBFStackHeader, AFailureOfAnotherStreamPassesThrough)
{
    for (const std::uint32_t length : {4u, 0x100000u, 0x7fffffffu, 0xffffffffu})
    {
        SCOPED_TRACE(length);
        VbfBytes built;
        built.file_header(1);
        built.stack({.name = "abc", .data = {}});
        built.set_u32_at(26 + stack_name_length_at, length);
        MemoryStream stream(built.bytes(), 26);

        EXPECT_THROW_TEXT(read_stack_header(stream), std::out_of_range, "the memory ends");
    }
}

TEST(VBFStackHeader, NotANumberOnAStreamOfAnotherKindBecomesOneToo)
{
    Bytes bytes = literal_stack_record();
    bytes[84 + 6] = 0xf8;
    bytes[84 + 7] = 0x7f;
    MemoryStream stream(bytes);

    const VBFStackRecord stack = read_stack_header(stream);

    EXPECT_EQ(copied(stack.header.lengths[0]), 1.0);
    EXPECT_EQ(copied(stack.header.lengths[1]), 1.0 + 1 / 4096.0);
}

TEST_F(VBFStackHeaderTest, ACompressedSegmentIsAStreamToo)
{
    VbfBytes built = record({.name = "name", .description = "text", .data = {}});
    const auto write_segment = [&built, this](VZippedSegment& segment)
    {
        segment.init_w(file, 6, VFileAccess::all_ones);
        segment.write(built.bytes().data(), built.size());
        const std::uint64_t length_on_disk = segment.write_end();
        segment.init_r(file, 6, segment.get_beg_pos_file(), length_on_disk, built.size());
    };
    file.open(file_name(path("segment")), VFile::write_mode);
    VZippedSegment segment;
    write_segment(segment);

    EXPECT_EQ(copied(read_file_header(segment).header.first_stack_pos), 26u);
    const VBFStackRecord stack = read_stack_header(segment);
    EXPECT_EQ(stack.name, "name");
    EXPECT_EQ(stack.description, "text");

    built.set_u32_at(at(stack_name_length_at), 0xffffffff);
    write_segment(segment);
    read_file_header(segment);
    EXPECT_VELA_ERROR(read_stack_header(segment), -1, "Trying to read beyond segment boundary!");
}
