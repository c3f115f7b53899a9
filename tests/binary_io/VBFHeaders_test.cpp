// The file header: layout, reading, writing, failures.
#include <VelaBinaryIO/VBFHeaders.h>

#include "binary_io/memory_stream.h"
#include "binary_io/vbf_file_test.h"
#include "support/expect_vela_error.h"

#include <cstring>
#include <type_traits>

using namespace vela_test;

namespace {

class VBFFileHeaderTest : public VbfFileTest
{
};

/// A header with a different number in each byte, version 2, the description "hi".
const Bytes literal_file_header = {
    'V',  'E',  'L',  'A',  '_',  'B',  'F',  '\n', 0xff, 0xff, // 0: magic
    0x02, 0x00, 0x00, 0x00,                                     // 10: format_version
    0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11,             // 14: first_stack_pos
    0x02, 0x00, 0x00, 0x00,                                     // 22: description_length
    'h',  'i',                                                  // 26: description
    0xa8, 0xa7, 0xa6, 0xa5, 0xa4, 0xa3, 0xa2, 0xa1,             // 28: meta_data_pos
};

VBFFileHeader file_header_record(std::uint32_t format_version, std::uint64_t first_stack_pos,
                                 std::uint32_t description_length)
{
    VBFFileHeader header = {};
    std::memcpy(header.magic, "VELA_BF\n\xff\xff", 10);
    header.format_version = format_version;
    header.first_stack_pos = first_stack_pos;
    header.description_length = description_length;
    return header;
}

/// The description of a file header with these bytes in it.
VbfBytes described(const std::string& description)
{
    VbfBytes built;
    built.file_header(2, description);
    return built;
}

} // namespace

TEST(VBFFileHeader, FieldsHaveTheirPlacesInThe26Bytes)
{
    EXPECT_EQ(sizeof(VBFFileHeader), 26u);
    EXPECT_EQ(offsetof(VBFFileHeader, magic), 0u);
    EXPECT_EQ(offsetof(VBFFileHeader, format_version), 10u);
    EXPECT_EQ(offsetof(VBFFileHeader, first_stack_pos), 14u);
    EXPECT_EQ(offsetof(VBFFileHeader, description_length), 22u);
    static_assert(std::is_trivially_copyable_v<VBFFileHeader>);
    static_assert(std::is_same_v<decltype(VBFFileHeader::first_stack_pos), std::uint64_t>);
}

TEST(VBFFileHeader, ReadsLiteralBytes)
{
    MemoryStream stream(literal_file_header);

    const VBFFileInfo info = read_file_header(stream);

    EXPECT_EQ(std::string(info.header.magic, 10), "VELA_BF\n\xff\xff");
    EXPECT_EQ(copied(info.header.format_version), 2u);
    EXPECT_EQ(copied(info.header.first_stack_pos), 0x1122334455667788u);
    EXPECT_EQ(copied(info.header.description_length), 2u);
    EXPECT_EQ(info.description, "hi");
    EXPECT_EQ(info.meta_data_pos, 0xa1a2a3a4a5a6a7a8u);
    EXPECT_EQ(stream.tell(), 36u);
}

TEST(VBFFileHeader, WritesLiteralBytes)
{
    MemoryStream stream;

    stream.write_value(file_header_record(2, 0x1122334455667788, 2));
    stream.write_str("hi", false);
    stream.write_value(std::uint64_t{0xa1a2a3a4a5a6a7a8});

    EXPECT_EQ(stream.bytes(), literal_file_header);
    EXPECT_EQ(stream.write_sizes, (std::vector<std::uint64_t>{26, 2, 8}));
}

TEST(VBFFileHeader, TheFixedBytesComeInOneRead)
{
    MemoryStream with_text(literal_file_header);
    read_file_header(with_text);
    EXPECT_EQ(with_text.read_sizes, (std::vector<std::uint64_t>{26, 2, 8}));

    MemoryStream without_text(described("").bytes());
    read_file_header(without_text);
    EXPECT_EQ(without_text.read_sizes, (std::vector<std::uint64_t>{26, 8})) << "no read for an empty description";
}

TEST(VBFFileHeader, ReadsAtTheCurrentPosition)
{
    Bytes bytes(5, 0x77);
    append_bytes(bytes, literal_file_header);
    bytes.push_back(0x77);
    MemoryStream stream(bytes, 5);

    EXPECT_EQ(read_file_header(stream).description, "hi");
    EXPECT_EQ(stream.tell(), 41u);
}

TEST(VBFFileHeader, VersionsAboveOneHaveAMetaDataPosition)
{
    for (const std::uint32_t version : {2u, 3u, 100u, 0x80000000u, 0xffffffffu})
    {
        SCOPED_TRACE(version);
        VbfBytes built;
        built.file_header(version, "text").set_u64_at(30, 0x0102030405060708);
        MemoryStream stream(built.bytes());

        const VBFFileInfo info = read_file_header(stream);

        EXPECT_EQ(copied(info.header.format_version), version);
        EXPECT_EQ(info.meta_data_pos, 0x0102030405060708u);
        EXPECT_EQ(stream.tell(), 38u);
    }
}

TEST(VBFFileHeader, VersionsZeroAndOneHaveNone)
{
    for (const std::uint32_t version : {0u, 1u})
    {
        SCOPED_TRACE(version);
        VbfBytes built;
        built.file_header(version, "text").gap(8);
        MemoryStream stream(built.bytes());

        const VBFFileInfo info = read_file_header(stream);

        EXPECT_EQ(copied(info.header.format_version), version);
        EXPECT_EQ(info.description, "text");
        EXPECT_EQ(info.meta_data_pos, 0u);
        EXPECT_EQ(stream.tell(), 30u) << "stands behind the description";
    }
}

TEST(VBFFileHeader, ADescriptionMayHoldAnyBytes)
{
    std::string all_bytes;
    for (int i = 0; i < 256; ++i)
        all_bytes += static_cast<char>(i);
    MemoryStream stream(described(all_bytes).bytes());

    EXPECT_EQ(read_file_header(stream).description, all_bytes);
}

TEST(VBFFileHeader, ADescriptionLongerThanAPieceIsWhole)
{
    std::string text(3 * 1024 * 1024 + 5, 'x');
    text.front() = 'a';
    text.back() = 'z';
    MemoryStream stream(described(text).bytes());

    EXPECT_EQ(read_file_header(stream).description, text);
}

TEST_F(VBFFileHeaderTest, AWrongByteOfTheMagicIsNoHeader)
{
    for (std::uint64_t i = 0; i < 10; ++i)
    {
        SCOPED_TRACE(i);
        VbfBytes built = described("text");
        built.set_byte_at(i, static_cast<unsigned char>(built.bytes()[i] ^ 1));

        EXPECT_VELA_ERROR_IN(read_file_header(reopen(built)), "VBFFileImp::attach_imp", "sources/binary_io", -4,
                             "No VBF file header found!");
    }
}

TEST_F(VBFFileHeaderTest, TheMagicIsTestedBeforeTheDescriptionIsRead)
{
    VbfBytes built = described("");
    built.set_byte_at(0, 'v').set_u32_at(22, 0xffffffff).cut_to(26);

    EXPECT_VELA_ERROR(read_file_header(reopen(built)), -4, "No VBF file header found!");

    MemoryStream stream(built.bytes());
    EXPECT_VELA_ERROR(read_file_header(stream), -4, "No VBF file header found!");
    EXPECT_EQ(stream.read_sizes, std::vector<std::uint64_t>{26});
}

TEST_F(VBFFileHeaderTest, ACutHeaderFailsOnItsField)
{
    const Bytes whole = described("text").bytes();
    ASSERT_EQ(whole.size(), 38u);
    for (std::size_t size = 0; size < 38; ++size)
    {
        SCOPED_TRACE(size);
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const std::string field = size < 26 ? "26" : size < 30 ? "4" : "8";

        EXPECT_VELA_ERROR(read_file_header(reopen(cut)), -3, "Failed reading " + field + " bytes from file!");
    }
    EXPECT_EQ(read_file_header(reopen(whole)).description, "text");
}

TEST_F(VBFFileHeaderTest, ALengthThatTheFileDoesNotHaveFailsOnThatLength)
{
    const std::pair<std::uint32_t, const char*> cases[] = {
        {5, "Failed reading 5 bytes from file!"}, // four are left
        {0x7fffffff, "Failed reading 2147483647 bytes from file!"},
        {0x80000000, "Failed reading -2147483648 bytes from file!"},
        {0xffffffff, "Failed reading -1 bytes from file!"},
    };
    for (const auto& [length, message] : cases)
    {
        SCOPED_TRACE(length);
        VbfBytes built;
        built.file_header(1, "text").set_u32_at(22, length);

        EXPECT_VELA_ERROR(read_file_header(reopen(built)), -3, message);
    }
}

TEST(VBFFileHeader, AFailureOfAnotherStreamPassesThrough)
{
    for (const std::uint32_t length : {3u, 0x7fffffffu, 0xffffffffu})
    {
        SCOPED_TRACE(length);
        MemoryStream stream(described("hi").set_u32_at(22, length).cut_to(28).bytes());

        EXPECT_THROW_TEXT(read_file_header(stream), std::out_of_range, "the memory ends");
    }
}

TEST_F(VBFFileHeaderTest, AClosedFileIsRefused)
{
    VFile closed;

    EXPECT_VELA_ERROR(read_file_header(closed), -1, "File not open!");
    EXPECT_VELA_ERROR(read_stack_header(closed), -1, "File not open!");
}
