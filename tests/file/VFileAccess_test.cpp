#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>
#include <VelaFile/VFileAccess.h>
#include <VelaFile/VZippedSegment.h>
#include <VelaFile/handle.h>

#include "support/allocation_watch.h"
#include "support/descriptor.h"
#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

using namespace vela_test;
using testing::ElementsAre;

namespace {

static_assert(VFileAccess::all_ones == 0xFFFFFFFFFFFFFFFFu);
static_assert(std::is_abstract_v<VFileAccess>);
static_assert(!std::has_virtual_destructor_v<VFileAccess>);
static_assert(std::is_base_of_v<VFileAccess, VFile> && std::has_virtual_destructor_v<VFile>);
static_assert(std::is_base_of_v<VFileAccess, VZippedSegment> && std::has_virtual_destructor_v<VZippedSegment>);

/// A stream in memory that notes the size of each transfer.
class MemoryStream : public VFileAccess
{
public:
    MemoryStream() = default;
    explicit MemoryStream(const Bytes& content) : bytes(content) {}
    MemoryStream(const MemoryStream&) = delete;
    MemoryStream& operator=(const MemoryStream&) = delete;
    virtual ~MemoryStream() = default;

    std::uint64_t tell() const override { return pos; }
    std::uint64_t seek(std::uint64_t target) override { return pos = static_cast<std::size_t>(target); }
    void read(void* buffer, std::uint64_t size_bytes) override
    {
        read_sizes.push_back(size_bytes);
        if (size_bytes > bytes.size() - pos)
            throw std::runtime_error("the memory stream ends");
        std::copy_n(bytes.data() + pos, size_bytes, static_cast<unsigned char*>(buffer));
        pos += static_cast<std::size_t>(size_bytes);
    }
    void write(const void* buffer, std::uint64_t size_bytes) override
    {
        write_sizes.push_back(size_bytes);
        const unsigned char* const begin = static_cast<const unsigned char*>(buffer);
        bytes.insert(bytes.end(), begin, begin + size_bytes);
        pos = bytes.size();
    }

    Bytes bytes;
    std::size_t pos = 0;
    std::vector<std::uint64_t> read_sizes;
    std::vector<std::uint64_t> write_sizes;
};

TEST(WriteStr, WithPrefixWritesTheLengthAsFourBytesFirst)
{
    MemoryStream stream;
    stream.write_str("abc", true);
    EXPECT_THAT(stream.bytes, ElementsAre(3, 0, 0, 0, 'a', 'b', 'c'));
    EXPECT_THAT(stream.write_sizes, ElementsAre(4, 3));
}

TEST(WriteStr, PrefixIsLittleEndian)
{
    MemoryStream stream;
    stream.write_str(std::string(0x10203, 'x'), true);
    ASSERT_EQ(stream.bytes.size(), 4u + 0x10203u);
    EXPECT_THAT(slice(stream.bytes, 0, 5), ElementsAre(3, 2, 1, 0, 'x'));
}

TEST(WriteStr, WithoutPrefixWritesTheBytesAlone)
{
    MemoryStream stream;
    stream.write_str("abc", false);
    EXPECT_THAT(stream.bytes, ElementsAre('a', 'b', 'c'));
    EXPECT_THAT(stream.write_sizes, ElementsAre(3));
}

TEST(WriteStr, OfAnEmptyTextWithPrefixWritesFourZeroBytes)
{
    MemoryStream stream;
    stream.write_str("", true);
    EXPECT_THAT(stream.bytes, ElementsAre(0, 0, 0, 0));
}

TEST(WriteStr, OfAnEmptyTextWithoutPrefixWritesNothing)
{
    MemoryStream stream;
    stream.write_str("", false);
    EXPECT_TRUE(stream.bytes.empty());
}

TEST(WriteStr, KeepsNulsAndBytesAboveAscii)
{
    MemoryStream stream;
    stream.write_str(std::string("\0\xC3\xA4\xFF\0", 5), true);
    EXPECT_THAT(stream.bytes, ElementsAre(5, 0, 0, 0, 0, 0xC3, 0xA4, 0xFF, 0));
}

TEST(ReadStr, OfALengthTakesThatManyBytesInOneRead)
{
    MemoryStream stream(Bytes{'a', 'b', 'c', 'd'});
    std::string text = "something longer that was there before";
    stream.read_str(text, 3);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(stream.tell(), 3u);
    EXPECT_THAT(stream.read_sizes, ElementsAre(3));
}

TEST(ReadStr, OfAllOnesTakesAFourByteLengthFromTheStream)
{
    MemoryStream stream(Bytes{2, 0, 0, 0, 'a', 'b', 'c'});
    std::string text = "before";
    stream.read_str(text, VFileAccess::all_ones);
    EXPECT_EQ(text, "ab");
    EXPECT_EQ(stream.tell(), 6u);
    EXPECT_THAT(stream.read_sizes, ElementsAre(4, 2));
}

TEST(ReadStr, LengthInTheStreamIsLittleEndian)
{
    MemoryStream stream(Bytes{1, 2, 0, 0} + Bytes(0x201, 'y') + Bytes{'z'});
    std::string text;
    stream.read_str(text, VFileAccess::all_ones);
    EXPECT_EQ(text, std::string(0x201, 'y'));
}

TEST(ReadStr, OfLengthZeroEmptiesTheTextAndReadsNothing)
{
    MemoryStream stream(Bytes{'a', 'b'});
    std::string text = "before";
    stream.read_str(text, 0);
    EXPECT_EQ(text, "");
    EXPECT_EQ(stream.tell(), 0u);
    EXPECT_TRUE(stream.read_sizes.empty());
}

TEST(ReadStr, OfAZeroPrefixEmptiesTheTextAndConsumesFourBytes)
{
    MemoryStream stream(Bytes{0, 0, 0, 0, 'a'});
    std::string text = "before";
    stream.read_str(text, VFileAccess::all_ones);
    EXPECT_EQ(text, "");
    EXPECT_EQ(stream.tell(), 4u);
    EXPECT_THAT(stream.read_sizes, ElementsAre(4));
}

TEST(ReadStr, KeepsNulsAndBytesAboveAscii)
{
    MemoryStream stream(Bytes{5, 0, 0, 0, 0, 0xC3, 0xA4, 0xFF, 0});
    std::string text;
    stream.read_str(text, VFileAccess::all_ones);
    EXPECT_EQ(text, std::string("\0\xC3\xA4\xFF\0", 5));
}

TEST(ReadStr, ReadsWhatWriteStrWroteOneAfterTheOther)
{
    MemoryStream stream;
    const std::string texts[] = {"first", "", std::string(70000, 'q'), "last"};
    for (const std::string& text : texts)
        stream.write_str(text, true);
    stream.seek(0);
    for (const std::string& expected : texts)
    {
        std::string text = "before";
        stream.read_str(text, VFileAccess::all_ones);
        EXPECT_EQ(text, expected);
    }
}

TEST(ReadStr, OfALongTextFromAnUnknownStreamComesInPiecesOfAMebibyte)
{
    const Bytes content = noisy_bytes((5u << 19) + 3);
    MemoryStream stream(content);
    std::string text;
    stream.read_str(text, content.size());
    EXPECT_TRUE(std::equal(text.begin(), text.end(), content.begin(), content.end(),
                           [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; }));
    EXPECT_THAT(stream.read_sizes, ElementsAre(1u << 20, 1u << 20, (1u << 19) + 3));
}

TEST(ReadStr, OfALyingLengthFromAnUnknownStreamFailsAsTheStreamDoesAndTakesLittleMemory)
{
    MemoryStream stream(Bytes{0xFF, 0xFF, 0xFF, 0xFF, 'a', 'b'});
    std::string text;
    const AllocationWatch watch;
    EXPECT_THROW_TEXT(stream.read_str(text, VFileAccess::all_ones), std::runtime_error, "the memory stream ends");
    EXPECT_LT(watch.peak_extra_bytes(), 3u << 20);
}

TEST(ReadStr, OfATruncatedPrefixFails)
{
    MemoryStream stream(Bytes{1, 0, 0});
    std::string text;
    EXPECT_THROW(stream.read_str(text, VFileAccess::all_ones), std::runtime_error);
}

template <class T>
void expect_one_transfer_of_exact_size(std::uint64_t size_bytes)
{
    const Bytes content = noisy_bytes(static_cast<std::size_t>(size_bytes));
    MemoryStream source(content + Bytes{0xEE});
    T value;
    std::memset(static_cast<void*>(&value), 0x5A, sizeof value);
    source.read_value(value);
    EXPECT_EQ(std::memcmp(&value, content.data(), content.size()), 0);
    EXPECT_THAT(source.read_sizes, ElementsAre(size_bytes));

    MemoryStream target;
    target.write_value(value);
    EXPECT_EQ(target.bytes, content);
    EXPECT_THAT(target.write_sizes, ElementsAre(size_bytes));
}

TEST(TypedTransfer, MovesEachRecordInOneTransferOfItsExactSize)
{
    expect_one_transfer_of_exact_size<std::uint32_t>(4);
    expect_one_transfer_of_exact_size<std::int32_t>(4);
    expect_one_transfer_of_exact_size<std::uint64_t>(8);
    expect_one_transfer_of_exact_size<double>(8);
    expect_one_transfer_of_exact_size<VBFFileHeader>(26);
    expect_one_transfer_of_exact_size<VBFStackHeader>(368);
}

TEST(TypedTransfer, NumbersAreLittleEndian)
{
    MemoryStream stream;
    stream.write_value<std::uint32_t>(0x01020304);
    stream.write_value<std::uint64_t>(0x1112131415161718);
    EXPECT_THAT(stream.bytes, ElementsAre(4, 3, 2, 1, 0x18, 0x17, 0x16, 0x15, 0x14, 0x13, 0x12, 0x11));
    stream.seek(0);
    std::uint32_t small = 99;
    std::uint64_t large = 99;
    stream.read_value(small);
    stream.read_value(large);
    EXPECT_EQ(small, 0x01020304u);
    EXPECT_EQ(large, 0x1112131415161718u);
}

using ReadStrOfFile = FolderTest;

TEST_F(ReadStrOfFile, TakesAllBytesThatAreLeft)
{
    put_bytes(path("a"), {4, 0, 0, 0, 'a', 'b', 'c', 'd'});
    VFile file(file_name(path("a")), VFile::read_mode);
    std::string text = "before";
    file.read_str(text, VFileAccess::all_ones);
    EXPECT_EQ(text, "abcd");
    EXPECT_EQ(file.tell(), 8u);
    file.seek(5);
    file.read_str(text, 3);
    EXPECT_EQ(text, "bcd");
}

TEST_F(ReadStrOfFile, OfOneByteTooManyFailsAsTheShortReadDoes)
{
    put_bytes(path("a"), {5, 0, 0, 0, 'a', 'b', 'c', 'd'});
    VFile file(file_name(path("a")), VFile::read_mode);
    std::string text;
    EXPECT_VELA_ERROR(file.read_str(text, VFileAccess::all_ones), -3, "Failed reading 5 bytes from file!");
    file.seek(4);
    EXPECT_VELA_ERROR(file.read_str(text, 5), -3, "Failed reading 5 bytes from file!");
}

TEST_F(ReadStrOfFile, HoldsALyingLengthAgainstTheFileBeforeItTakesMemory)
{
    put_bytes(path("a"), {0xFF, 0xFF, 0xFF, 0xFF, 'a', 'b', 'c', 'd'});
    VFile file(file_name(path("a")), VFile::read_mode);
    std::string text;
    const AllocationWatch watch;
    EXPECT_VELA_ERROR(file.read_str(text, VFileAccess::all_ones), -3, "Failed reading -1 bytes from file!");
    EXPECT_LT(watch.peak_extra_bytes(), 1u << 20);
}

TEST_F(ReadStrOfFile, NamesTheLowBitsOfALengthAboveFourGibibytes)
{
    put_bytes(path("a"), Bytes(20, 'x'));
    VFile file(file_name(path("a")), VFile::read_mode);
    std::string text;
    const AllocationWatch watch;
    EXPECT_VELA_ERROR(file.read_str(text, (1ull << 40) + 7), -3, "Failed reading 7 bytes from file!");
    EXPECT_VELA_ERROR(file.read_str(text, VFileAccess::all_ones - 1), -3, "Failed reading -2 bytes from file!");
    EXPECT_LT(watch.peak_extra_bytes(), 1u << 20);
}

TEST_F(ReadStrOfFile, BehindTheEndFails)
{
    put_bytes(path("a"), Bytes(20, 'x'));
    VFile file(file_name(path("a")), VFile::read_mode);
    file.seek(1000);
    std::string text;
    EXPECT_VELA_ERROR(file.read_str(text, 1), -3, "Failed reading 1 bytes from file!");
    file.seek(1000);
    EXPECT_VELA_ERROR(file.read_str(text, VFileAccess::all_ones), -3, "Failed reading 4 bytes from file!");
}

TEST_F(ReadStrOfFile, FailureAtTheEndHasNoSystemText)
{
    put_bytes(path("a"), Bytes(20, 'x'));
    VFile file(file_name(path("a")), VFile::read_mode);
    std::string text;
    try
    {
        file.read_str(text, 21);
        FAIL() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_oserr_id(), 0);
        EXPECT_THAT(error.what(), testing::Not(testing::HasSubstr("os_error")));
    }
}

TEST_F(ReadStrOfFile, OfLengthZeroLeavesThePosition)
{
    put_bytes(path("a"), {0, 0, 0, 0, 'a'});
    VFile file(file_name(path("a")), VFile::read_mode);
    std::string text = "before";
    file.read_str(text, 0);
    EXPECT_EQ(text, "");
    EXPECT_EQ(file.tell(), 0u);
    text = "before";
    file.read_str(text, VFileAccess::all_ones);
    EXPECT_EQ(text, "");
    EXPECT_EQ(file.tell(), 4u);
}

TEST(ReadStrOfPipe, WorksWhereTheEndIsNotKnown)
{
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const Descriptor out(ends[0]);
    Descriptor in(ends[1]);
    ASSERT_EQ(::write(in.get(), "\3\0\0\0abcde", 9), 9);
    in.close();
    void* handle = out.handle();
    VFile file;
    file.attach(handle, VFile::read_mode);
    std::string text = "before";
    file.read_str(text, VFileAccess::all_ones);
    EXPECT_EQ(text, "abc");
    EXPECT_VELA_ERROR(file.read_str(text, 3), -3, "Failed reading 3 bytes from file!");
    file.detach();
}

TEST(ReadStrOfPipe, TakesLittleMemoryForALengthThatLies)
{
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const Descriptor out(ends[0]);
    Descriptor in(ends[1]);
    ASSERT_EQ(::write(in.get(), "\377\377\377\377abcde", 9), 9);
    in.close();
    void* handle = out.handle();
    VFile file;
    file.attach(handle, VFile::read_mode);
    std::string text;
    const AllocationWatch watch;
    EXPECT_THROW(file.read_str(text, VFileAccess::all_ones), VelaError);
    EXPECT_LT(watch.peak_extra_bytes(), 4u * 1024 * 1024);
    file.detach();
}

using ReadStrOfSegment = FolderTest;

TEST_F(ReadStrOfSegment, BeyondTheSegmentFailsAsTheSegmentDoesAndTakesLittleMemory)
{
    put_bytes(path("a"), Bytes{3, 0, 0, 0, 'a', 'b', 'c', 0xFF, 0xFF, 0xFF, 0xFF, 'd'} + Bytes(50, 'x'));
    VFile file(file_name(path("a")), VFile::read_mode);
    VZippedSegment segment;
    segment.init_r(file, 0, 0, 12, 12);
    std::string text = "before";
    segment.read_str(text, VFileAccess::all_ones);
    EXPECT_EQ(text, "abc");
    const AllocationWatch watch;
    EXPECT_VELA_ERROR(segment.read_str(text, VFileAccess::all_ones), -1, "Trying to read beyond segment boundary!");
    EXPECT_LT(watch.peak_extra_bytes(), 2u << 20);
    segment.seek(11);
    EXPECT_VELA_ERROR(segment.read_str(text, 2), -1, "Trying to read beyond segment boundary!");
    segment.seek(11);
    segment.read_str(text, 1);
    EXPECT_EQ(text, "d");
}

} // namespace
