#include "file/file_fixture.h"

#include <VelaFile/VFile.h>

#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vela_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

TEST_F(VFileTest, SeekMovesToAPositionFromTheStartAndReturnsIt)
{
    put_bytes(path("a"), {1, 2, 3, 4});
    VFile file(name("a"), VFile::read_mode);
    EXPECT_EQ(file.seek(3), 3u);
    EXPECT_EQ(file.tell(), 3u);
    EXPECT_THAT(read_bytes(file, 1), ElementsAre(4));
    EXPECT_EQ(file.seek(1), 1u);
    EXPECT_THAT(read_bytes(file, 2), ElementsAre(2, 3));
}

TEST_F(VFileTest, SeekOfAllOnesMovesToTheEnd)
{
    put_bytes(path("a"), {1, 2, 3, 4});
    VFile file(name("a"), VFile::append_mode);
    EXPECT_EQ(file.seek(VFileAccess::all_ones), 4u);
    EXPECT_EQ(file.tell(), 4u);
    write_bytes(file, {5});
    EXPECT_EQ(file.seek(0), 0u);
    EXPECT_EQ(file.seek(VFileAccess::all_ones), 5u);
}

TEST_F(VFileTest, SeekBehindTheEndSucceedsAndTheReadAfterItFails)
{
    put_bytes(path("a"), {1, 2, 3, 4});
    VFile file(name("a"), VFile::read_mode);
    EXPECT_EQ(file.seek(100), 100u);
    EXPECT_EQ(file.tell(), 100u);
    unsigned char byte = 0xA5;
    EXPECT_VELA_ERROR_IN(file.read(&byte, 1), "VFile::read", "sources/file", -3, "Failed reading 1 bytes from file!");
    EXPECT_EQ(byte, 0xA5);
    EXPECT_EQ(get_bytes(path("a")).size(), 4u);
}

TEST_F(VFileTest, WriteBehindTheEndExtendsTheFile)
{
    put_bytes(path("a"), {1, 2});
    VFile file(name("a"), VFile::append_mode);
    EXPECT_EQ(file.seek(5), 5u);
    write_bytes(file, {9});
    file.close();
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 0, 0, 0, 9));
}

TEST_F(VFileTest, SeekKnowsPositionsAboveFourGibibytes)
{
    VFile file(name("a"), VFile::write_mode);
    EXPECT_EQ(file.seek((1ull << 32) + 5), (1ull << 32) + 5);
    EXPECT_EQ(file.tell(), (1ull << 32) + 5);
    write_bytes(file, {7});
    EXPECT_EQ(file.seek(VFileAccess::all_ones), (1ull << 32) + 6);
    EXPECT_EQ(file.seek((1ull << 32) + 5), (1ull << 32) + 5);
    EXPECT_THAT(read_bytes(file, 1), ElementsAre(7));
}

TEST_F(VFileTest, SeekThatTheSystemRefusesGivesAllOnesAndThrowsNothing)
{
    put_bytes(path("a"), {1, 2, 3, 4});
    VFile file(name("a"), VFile::read_mode);
    file.seek(2);
    for (const std::uint64_t position : {1ull << 63, (1ull << 63) + 1, ~0ull - 1})
    {
        std::uint64_t result = 0;
        EXPECT_NO_THROW(result = file.seek(position));
        EXPECT_EQ(result, VFileAccess::all_ones);
        EXPECT_EQ(file.tell(), 2u);
    }
}

TEST_F(VFileTest, ReadOfNoBytesSucceedsAndMovesNothing)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile file(name("a"), VFile::read_mode);
    unsigned char byte = 0xA5;
    for (const std::uint64_t position : {0u, 1u, 3u, 50u})
    {
        file.seek(position);
        EXPECT_NO_THROW(file.read(&byte, 0));
        EXPECT_NO_THROW(file.read(nullptr, 0));
        EXPECT_EQ(file.tell(), position);
    }
    EXPECT_EQ(byte, 0xA5);
}

TEST_F(VFileTest, WriteOfNoBytesSucceedsAndMovesNothing)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile file(name("a"), VFile::append_mode);
    for (const std::uint64_t position : {0u, 1u, 3u, 50u})
    {
        file.seek(position);
        EXPECT_NO_THROW(file.write("x", 0));
        EXPECT_NO_THROW(file.write(nullptr, 0));
        EXPECT_EQ(file.tell(), position);
    }
    file.close();
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 3));
}

TEST_F(VFileTest, ShortReadFailsWithoutASystemText)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile file(name("a"), VFile::read_mode);
    unsigned char bytes[4] = {0xA5, 0xA5, 0xA5, 0xA5};
    try
    {
        file.read(bytes, 4);
        FAIL() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_id(), -3);
        EXPECT_EQ(error.get_msg(), "Failed reading 4 bytes from file!");
        EXPECT_STREQ(error.get_func(), "VFile::read");
        EXPECT_EQ(error.get_oserr_id(), 0);
        EXPECT_THAT(error.what(), Not(HasSubstr("os_error")));
    }
    EXPECT_EQ(bytes[3], 0xA5);
    // Nothing is retried and nothing is remembered: the next read is served as usual.
    file.seek(1);
    EXPECT_THAT(read_bytes(file, 2), ElementsAre(2, 3));
}

TEST_F(VFileTest, ReadAndWriteMoveLargeBlocksWhole)
{
    const Bytes content = noisy_bytes(9u << 20);
    VFile file(name("a"), VFile::write_mode);
    write_bytes(file, content);
    EXPECT_EQ(file.tell(), content.size());
    file.seek(0);
    EXPECT_TRUE(read_bytes(file, content.size()) == content);
    EXPECT_TRUE(get_bytes(path("a")) == content);
}

} // namespace
