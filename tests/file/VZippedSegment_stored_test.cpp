// Level 0 and below: the stretch holds the bytes themselves.
#include "file/segment_fixture.h"

#include "support/descriptor.h"
#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

using namespace vela_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

class StoredSegment : public SegmentTest, public testing::WithParamInterface<int>
{
protected:
    int level() const { return GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Level, StoredSegment, testing::Values(0, -1, -99),
                         [](const auto& test) {
                             return test.param == 0 ? "Zero" : test.param == -1 ? "MinusOne" : "Low";
                         });

TEST_P(StoredSegment, WritesTheBytesThemselves)
{
    put_bytes(path("a"), {1, 2, 3, 4, 5, 6, 7, 8});
    VFile out(file_name(path("a")), VFile::append_mode);
    out.seek(3);
    EXPECT_EQ(segment.init_w(out, level(), all_ones), 3u);
    segment.write("ab", 2);
    EXPECT_EQ(segment.tell(), 2u);
    EXPECT_EQ(segment.get_cur_pos_file(), 5u);
    EXPECT_EQ(segment.get_beg_pos_file(), 3u);
    segment.write("c", 1);
    EXPECT_EQ(segment.tell(), 3u);
    EXPECT_EQ(segment.get_cur_pos_file(), 6u);
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 3, 'a', 'b', 'c', 7, 8));
    segment.end();
}

TEST_P(StoredSegment, WriteEndWritesNothingAndReturnsTheNumberOfBytes)
{
    start_file();
    segment.init_w(file, level(), all_ones);
    EXPECT_EQ(segment.write_end(), 0u);
    segment.write("abc", 3);
    file.writes.clear();
    EXPECT_EQ(segment.write_end(), 3u);
    EXPECT_EQ(WatchedFile::total_bytes(file.writes), 0u);
    EXPECT_EQ(segment.is_initialized(), 2);
    segment.write("de", 2);
    EXPECT_EQ(segment.write_end(), 5u);
    segment.end();
    file.close();
    EXPECT_EQ(get_bytes(path("written")), noisy_bytes(lead, 98) + Bytes({'a', 'b', 'c', 'd', 'e'}));
}

TEST_P(StoredSegment, WriteOfNoBytesDoesNothing)
{
    start_file();
    segment.init_w(file, level(), 0);
    EXPECT_NO_THROW(segment.write("x", 0));
    EXPECT_NO_THROW(segment.write(nullptr, 0));
    EXPECT_EQ(segment.tell(), 0u);
    EXPECT_EQ(segment.write_end(), 0u);
    EXPECT_EQ(get_bytes(path("written")).size(), lead);
}

TEST_P(StoredSegment, WriteStaysInsideTheDeclaredSize)
{
    start_file();
    segment.init_w(file, level(), 5);
    segment.write("abc", 3);
    const char* text = "Trying to write beyond segment boundary!";
    EXPECT_VELA_ERROR_IN(segment.write("def", 3), "VZippedSegment::write", "sources/file", -1, text);
    EXPECT_VELA_ERROR(segment.write("d", all_ones), -1, text);
    EXPECT_VELA_ERROR(segment.write("d", all_ones - 2), -1, text);
    EXPECT_EQ(segment.tell(), 3u);
    segment.write("de", 2);
    EXPECT_VELA_ERROR(segment.write("f", 1), -1, text);
    EXPECT_NO_THROW(segment.write("f", 0));
    EXPECT_EQ(segment.write_end(), 5u);
    segment.end();
    file.close();
    EXPECT_EQ(get_bytes(path("written")), noisy_bytes(lead, 98) + Bytes({'a', 'b', 'c', 'd', 'e'}));
}

TEST_P(StoredSegment, WriteIsOneTransferWhateverTheChunkSize)
{
    const Bytes data = noisy_bytes(1000);
    start_file(16);
    segment.init_w(file, level(), all_ones);
    segment.write(data.data(), data.size());
    ASSERT_EQ(file.writes.size(), 1u);
    EXPECT_EQ(file.writes[0].size_bytes, 1000u);
    EXPECT_EQ(finish_stretch().bytes, data);
}

TEST_P(StoredSegment, HasNoFlushPositions)
{
    const Bytes data = noisy_bytes(1000);
    const WrittenStretch written = write_stretch(data, level(), 100, 30);
    EXPECT_EQ(written.bytes, data);
    EXPECT_THAT(written.flush_positions, IsEmpty());
    EXPECT_EQ(written.block_size, 100u);
}

TEST_P(StoredSegment, WriteFindsItsPlaceWhenOthersMoveTheFile)
{
    start_file();
    segment.init_w(file, level(), all_ones);
    segment.write("ab", 2);
    file.seek(0);
    segment.write("cd", 2);
    file.seek(all_ones);
    file.seek(3);
    segment.write("ef", 2);
    EXPECT_EQ(finish_stretch().bytes, Bytes({'a', 'b', 'c', 'd', 'e', 'f'}));
}

TEST_P(StoredSegment, WriteThatTheSystemRefusesFailsWithItsText)
{
    const Descriptor full("/dev/full", O_RDWR);
    void* handle = full.handle();
    VFile device;
    device.attach(handle, VFile::write_mode);
    segment.init_w(device, level(), all_ones);
    try
    {
        segment.write("abcd", 4);
        FAIL() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_id(), -3);
        EXPECT_EQ(error.get_msg(), "Failed writing 4 bytes to file!");
        EXPECT_EQ(error.get_oserr_id(), 28);
    }
    segment.end();
}

TEST_P(StoredSegment, ReadsTheBytesOfItsStretchOnly)
{
    read_stretch({'a', 'b', 'c', 'd', 'e'}, level(), 5);
    EXPECT_THAT(read_bytes(2), ElementsAre('a', 'b'));
    EXPECT_EQ(segment.tell(), 2u);
    EXPECT_EQ(segment.get_cur_pos_file(), lead + 2);
    EXPECT_EQ(segment.get_beg_pos_file(), lead);
    EXPECT_THAT(read_bytes(3), ElementsAre('c', 'd', 'e'));
    EXPECT_EQ(segment.tell(), 5u);
    EXPECT_EQ(segment.get_cur_pos_file(), lead + 5);
}

TEST_P(StoredSegment, ReadOfNoBytesSucceedsEverywhere)
{
    read_stretch({'a', 'b', 'c'}, level(), 3);
    unsigned char byte = 0xA5;
    EXPECT_NO_THROW(segment.read(&byte, 0));
    EXPECT_NO_THROW(segment.read(nullptr, 0));
    expect_bytes({'a', 'b', 'c'});
    EXPECT_NO_THROW(segment.read(&byte, 0));
    EXPECT_EQ(segment.tell(), 3u);
    EXPECT_EQ(byte, 0xA5);
    start_reading(level(), all_ones);
    EXPECT_NO_THROW(segment.read(&byte, 0));
    read_stretch({}, level(), 0);
    EXPECT_NO_THROW(segment.read(&byte, 0));
}

TEST_P(StoredSegment, ReadStaysInsideTheDeclaredSize)
{
    read_stretch({'a', 'b', 'c', 'd', 'e'}, level(), 4);
    const char* text = "Trying to read beyond segment boundary!";
    Bytes destination(8, untouched);
    EXPECT_VELA_ERROR_IN(segment.read(destination.data(), 5), "VZippedSegment::read", "sources/file", -1, text);
    EXPECT_EQ(destination, Bytes(8, untouched));
    EXPECT_EQ(segment.tell(), 0u);
    expect_bytes({'a', 'b', 'c'});
    EXPECT_VELA_ERROR(segment.read(destination.data(), 2), -1, text);
    EXPECT_VELA_ERROR(segment.read(destination.data(), all_ones), -1, text);
    EXPECT_VELA_ERROR(segment.read(destination.data(), all_ones - 2), -1, text);
    EXPECT_EQ(destination, Bytes(8, untouched));
    expect_bytes({'d'});
    EXPECT_VELA_ERROR(segment.read(destination.data(), 1), -1, text);
}

TEST_P(StoredSegment, FileThatEndsInsideTheStretchFailsAsTheFileDoes)
{
    put_stretch({'a', 'b', 'c', 'd', 'e'}, {});
    segment.init_r(file, level(), lead, 100, 100);
    expect_bytes({'a', 'b'});
    Bytes destination(10, untouched);
    EXPECT_VELA_ERROR(segment.read(destination.data(), 4), -3, "Failed reading 4 bytes from file!");
}

TEST_P(StoredSegment, ReadFindsItsPlaceWhenOthersMoveTheFile)
{
    read_stretch({'a', 'b', 'c', 'd', 'e'}, level(), 5);
    expect_bytes({'a'});
    file.seek(0);
    expect_bytes({'b', 'c'});
    file.seek(all_ones);
    expect_bytes({'d', 'e'});
}

TEST_P(StoredSegment, SeekMovesAnywhereBelowTheEnd)
{
    const Bytes data = noisy_bytes(500);
    read_stretch(data, level(), data.size());
    std::mt19937 random(5);
    for (int i = 0; i < 300; ++i)
    {
        const std::size_t target = random() % data.size();
        expect_bytes_at(data, target, random() % (data.size() - target + 1));
    }
    EXPECT_EQ(segment.seek(77), 77u);
    EXPECT_EQ(segment.get_cur_pos_file(), lead + 77);
    EXPECT_EQ(segment.seek(77), 77u);
    EXPECT_EQ(segment.tell(), 77u);
}

TEST_P(StoredSegment, SeekReadsNothing)
{
    read_stretch(noisy_bytes(500), level(), 500);
    segment.seek(400);
    segment.seek(3);
    EXPECT_EQ(WatchedFile::total_bytes(file.reads), 0u);
}

TEST_P(StoredSegment, EndIsNoTargetEvenFromTheEnd)
{
    read_stretch({'a', 'b', 'c'}, level(), 3);
    const char* text = "Invalid position in segment!";
    EXPECT_VELA_ERROR_IN(segment.seek(3), "VZippedSegment::seek", "sources/file", -1, text);
    EXPECT_VELA_ERROR(segment.seek(4), -1, text);
    EXPECT_VELA_ERROR(segment.seek(all_ones), -1, text);
    EXPECT_EQ(segment.tell(), 0u);
    expect_bytes({'a', 'b', 'c'});
    EXPECT_VELA_ERROR(segment.seek(3), -1, text);
    EXPECT_EQ(segment.tell(), 3u);
    read_stretch({}, level(), 0);
    EXPECT_VELA_ERROR(segment.seek(0), -1, text);
}

TEST_P(StoredSegment, FlushPositionsDoNotMatter)
{
    const Bytes data = noisy_bytes(100);
    read_stretch(data, level(), data.size());
    segment.set_flush_positions({900, 0, 3}, 10);
    expect_bytes_at(data, 57, 43);
    expect_bytes_at(data, 10, 10);
}

TEST_P(StoredSegment, SizeThatIsNotKnownSetsNoBoundBelowTheStretch)
{
    const Bytes data = noisy_bytes(100);
    read_stretch(data, level(), all_ones);
    expect_bytes(slice(data, 0, 60));
    expect_bytes_at(data, 10, 90);
}

TEST_P(StoredSegment, StringsAndNumbersLieInItAsInAFile)
{
    start_file();
    segment.init_w(file, level(), all_ones);
    segment.write_str("ab", true);
    segment.write_value<std::uint32_t>(0x01020304);
    const Bytes stretch = finish_stretch().bytes;
    EXPECT_THAT(stretch, ElementsAre(2, 0, 0, 0, 'a', 'b', 4, 3, 2, 1));
    read_stretch(stretch, level(), stretch.size());
    std::string text = "before";
    std::uint32_t number = 99;
    segment.read_str(text, all_ones);
    segment.read_value(number);
    EXPECT_EQ(text, "ab");
    EXPECT_EQ(number, 0x01020304u);
}

} // namespace
