#include "file/file_fixture.h"

#include <VelaFile/VFile.h>
#include <VelaFile/handle.h>

#include "support/descriptor.h"
#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using namespace vela_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

static_assert(VFile::read_mode == 0 && VFile::write_mode == 1 && VFile::append_mode == 2);
static_assert(std::is_copy_constructible_v<VFile> && std::is_copy_assignable_v<VFile>);

TEST_F(VFileTest, IsClosedAtFirst)
{
    const VFile file;
    EXPECT_FALSE(file.is_open());
    EXPECT_EQ(file.get_mode(), closed_mode);
}

TEST_F(VFileTest, ChunkSizeIsFourMebibytesAtFirst)
{
    VFile file;
    EXPECT_EQ(file.get_chunk_size(), 4u * 1024 * 1024);
    file.set_chunk_size(17);
    EXPECT_EQ(file.get_chunk_size(), 17u);
}

TEST_F(VFileTest, ChunkSizeStaysOverOpenAndCloseAndLimitsNoTransfer)
{
    put_bytes(path("a"), {1, 2, 3, 4, 5});
    VFile file;
    file.set_chunk_size(2);
    file.open(name("a"), VFile::read_mode);
    EXPECT_THAT(read_bytes(file, 5), ElementsAre(1, 2, 3, 4, 5));
    file.close();
    EXPECT_EQ(file.get_chunk_size(), 2u);
}

TEST_F(VFileTest, OperationsOnAClosedFileFail)
{
    VFile file;
    char byte = 0;
    EXPECT_VELA_ERROR_IN(file.tell(), "VFile::tell", "sources/file", -1, "File not open!");
    EXPECT_VELA_ERROR_IN(file.seek(0), "VFile::seek", "sources/file", -1, "File not open!");
    EXPECT_VELA_ERROR_IN(file.seek(VFileAccess::all_ones), "VFile::seek", "sources/file", -1, "File not open!");
    EXPECT_VELA_ERROR_IN(file.read(&byte, 1), "VFile::read", "sources/file", -1, "File not open!");
    EXPECT_VELA_ERROR_IN(file.write(&byte, 1), "VFile::write", "sources/file", -1, "File not open!");
    EXPECT_VELA_ERROR(file.read(&byte, 0), -1, "File not open!");
    EXPECT_VELA_ERROR(file.write(&byte, 0), -1, "File not open!");
}

TEST_F(VFileTest, ReadModeReadsWhatIsThere)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile file;
    file.open(name("a"), VFile::read_mode);
    EXPECT_TRUE(file.is_open());
    EXPECT_EQ(file.get_mode(), VFile::read_mode);
    EXPECT_EQ(file.tell(), 0u);
    EXPECT_THAT(read_bytes(file, 3), ElementsAre(1, 2, 3));
    EXPECT_EQ(file.tell(), 3u);
}

TEST_F(VFileTest, ReadModeRefusesToWrite)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile file(name("a"), VFile::read_mode);
    try
    {
        write_bytes(file, {9, 9});
        FAIL() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_id(), -3);
        EXPECT_EQ(error.get_msg(), "Failed writing 2 bytes to file!");
        EXPECT_GT(error.get_oserr_id(), 0);
    }
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 3));
}

TEST_F(VFileTest, ReadModeFailsOnAMissingFileAndMakesNone)
{
    VFile file;
    EXPECT_VELA_ERROR_IN(file.open(name("a"), VFile::read_mode), "VFile::open", "sources/file", -1,
                         "Could not open file!");
    EXPECT_FALSE(exists("a"));
}

TEST_F(VFileTest, FailedOpenHasNoSystemTextAndLeavesTheFileClosed)
{
    VFile file;
    try
    {
        file.open(name("missing"), VFile::read_mode);
        FAIL() << "threw nothing";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_oserr_id(), 0);
        EXPECT_EQ(error.get_oserr(), "");
        EXPECT_THAT(error.what(), Not(HasSubstr("os_error")));
    }
    EXPECT_FALSE(file.is_open());
    EXPECT_EQ(file.get_mode(), closed_mode);
    EXPECT_EQ(file.detach(), nullptr);
    file.open(name("a"), VFile::write_mode);
    EXPECT_TRUE(file.is_open());
}

TEST_F(VFileTest, WriteModeCreatesAMissingFile)
{
    VFile file(name("a"), VFile::write_mode);
    EXPECT_EQ(file.get_mode(), VFile::write_mode);
    EXPECT_EQ(file.tell(), 0u);
    write_bytes(file, {1, 2, 3});
    EXPECT_EQ(file.tell(), 3u);
    file.close();
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 3));
}

TEST_F(VFileTest, WriteModeCutsAnExistingFileToNothing)
{
    put_bytes(path("a"), {1, 2, 3});
    VFile file(name("a"), VFile::write_mode);
    EXPECT_TRUE(get_bytes(path("a")).empty());
    EXPECT_EQ(file.seek(VFileAccess::all_ones), 0u);
}

TEST_F(VFileTest, WriteModeReadsToo)
{
    VFile file(name("a"), VFile::write_mode);
    write_bytes(file, {1, 2, 3});
    file.seek(1);
    EXPECT_THAT(read_bytes(file, 2), ElementsAre(2, 3));
}

TEST_F(VFileTest, AppendModeFailsOnAMissingFileAndMakesNone)
{
    VFile file;
    EXPECT_VELA_ERROR_IN(file.open(name("a"), VFile::append_mode), "VFile::open", "sources/file", -1,
                         "Could not open file!");
    EXPECT_FALSE(exists("a"));
    EXPECT_FALSE(file.is_open());
}

TEST_F(VFileTest, AppendModeStartsAtPositionZeroAndOverwritesThere)
{
    put_bytes(path("a"), {1, 2, 3, 4});
    VFile file(name("a"), VFile::append_mode);
    EXPECT_EQ(file.get_mode(), VFile::append_mode);
    EXPECT_EQ(file.tell(), 0u);
    write_bytes(file, {9, 8});
    EXPECT_EQ(file.tell(), 2u);
    EXPECT_THAT(read_bytes(file, 2), ElementsAre(3, 4));
    write_bytes(file, {5});
    file.close();
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(9, 8, 3, 4, 5));
}

TEST_F(VFileTest, ConstructorWithAPathOpens)
{
    put_bytes(path("a"), {7});
    VFile file(name("a"), VFile::read_mode);
    EXPECT_TRUE(file.is_open());
    EXPECT_EQ(file.get_chunk_size(), 0x400000u);
    EXPECT_THAT(read_bytes(file, 1), ElementsAre(7));
    EXPECT_VELA_ERROR_IN(VFile(name("missing"), VFile::read_mode), "VFile::open", "sources/file", -1,
                         "Could not open file!");
}

TEST_F(VFileTest, OpenOfAnOpenFileFailsAndLeavesItOpen)
{
    put_bytes(path("a"), {1, 2});
    put_bytes(path("b"), {3, 4});
    VFile file(name("a"), VFile::read_mode);
    EXPECT_VELA_ERROR_IN(file.open(name("b"), VFile::write_mode), "VFile::open", "sources/file", -1,
                         "File already open or attached!");
    EXPECT_EQ(file.get_mode(), VFile::read_mode);
    EXPECT_THAT(read_bytes(file, 2), ElementsAre(1, 2));
    EXPECT_THAT(get_bytes(path("b")), ElementsAre(3, 4));
}

TEST_F(VFileTest, OpenAndAttachOnAnAttachedFileFail)
{
    put_bytes(path("a"), {1, 2});
    const Descriptor descriptor(path("a"), O_RDONLY);
    void* handle = descriptor.handle();
    VFile file;
    file.attach(handle, VFile::read_mode);
    EXPECT_VELA_ERROR_IN(file.open(name("b"), VFile::write_mode), "VFile::open", "sources/file", -1,
                         "File already open or attached!");
    EXPECT_FALSE(exists("b"));
    EXPECT_VELA_ERROR_IN(file.attach(handle, VFile::append_mode), "VFile::attach", "sources/file", -1,
                         "File already open or attached!");
    EXPECT_EQ(file.get_mode(), VFile::read_mode);
    file.detach();
}

TEST_F(VFileTest, AttachOnAnOpenFileFails)
{
    put_bytes(path("a"), {1, 2});
    put_bytes(path("b"), {3, 4});
    const Descriptor descriptor(path("b"), O_RDONLY);
    void* handle = descriptor.handle();
    VFile file(name("a"), VFile::append_mode);
    EXPECT_VELA_ERROR_IN(file.attach(handle, VFile::read_mode), "VFile::attach", "sources/file", -1,
                         "File already open or attached!");
    EXPECT_EQ(file.get_mode(), VFile::append_mode);
    EXPECT_THAT(read_bytes(file, 2), ElementsAre(1, 2));
    EXPECT_TRUE(is_open_descriptor(descriptor.get()));
}

TEST_F(VFileTest, OpenInAnUnknownModeFailsAndTouchesNothing)
{
    put_bytes(path("a"), {1, 2});
    for (const int number : {-1, 3, 4, 100, std::numeric_limits<int>::min()})
    {
        VFile file;
        const VFile::mode unknown_mode = static_cast<VFile::mode>(number);
        EXPECT_VELA_ERROR_IN(file.open(name("a"), unknown_mode), "VFile::open", "sources/file", -1,
                             "Invalid file mode when opening file.");
        EXPECT_VELA_ERROR(file.open(name("b"), unknown_mode), -1, "Invalid file mode when opening file.");
        EXPECT_FALSE(file.is_open());
    }
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2));
    EXPECT_FALSE(exists("b"));
}

TEST_F(VFileTest, OpenOfAnOpenFileInAnUnknownModeComplainsOfTheFileFirst)
{
    VFile file(name("a"), VFile::write_mode);
    EXPECT_VELA_ERROR(file.open(name("b"), static_cast<VFile::mode>(7)), -1, "File already open or attached!");
}

TEST_F(VFileTest, CloseIsQuietTwiceAndOnAFileThatWasNeverOpen)
{
    VFile file;
    EXPECT_NO_THROW(file.close());
    file.open(name("a"), VFile::write_mode);
    file.close();
    EXPECT_FALSE(file.is_open());
    EXPECT_EQ(file.get_mode(), closed_mode);
    EXPECT_NO_THROW(file.close());
    EXPECT_FALSE(file.is_open());
}

TEST_F(VFileTest, CloseClosesTheDescriptor)
{
    VFile file(name("a"), VFile::write_mode);
    void* handle = file.detach();
    const int descriptor = vela_descriptor_from_handle(handle);
    ASSERT_TRUE(is_open_descriptor(descriptor));
    ::close(descriptor);
    file.open(name("a"), VFile::write_mode);
    // The lowest free number is taken again, so this is the descriptor of the second open.
    ASSERT_TRUE(is_open_descriptor(descriptor));
    file.close();
    EXPECT_FALSE(is_open_descriptor(descriptor));
}

TEST_F(VFileTest, OpensAgainAfterClose)
{
    put_bytes(path("b"), {4, 5});
    VFile file(name("a"), VFile::write_mode);
    file.close();
    file.open(name("b"), VFile::read_mode);
    EXPECT_EQ(file.get_mode(), VFile::read_mode);
    EXPECT_THAT(read_bytes(file, 2), ElementsAre(4, 5));
}

TEST_F(VFileTest, CloseOfAnAttachedFileFailsAndDetachIsTheRightCall)
{
    put_bytes(path("a"), {1, 2});
    const Descriptor descriptor(path("a"), O_RDONLY);
    void* handle = descriptor.handle();
    VFile file;
    file.attach(handle, VFile::read_mode);
    EXPECT_VELA_ERROR_IN(file.close(), "VFile::close", "sources/file", -1,
                         "File not opened with open(), cannot close.");
    EXPECT_TRUE(file.is_open());
    EXPECT_THAT(read_bytes(file, 1), ElementsAre(1));
    EXPECT_EQ(vela_descriptor_from_handle(file.detach()), descriptor.get());
    EXPECT_FALSE(file.is_open());
    EXPECT_NO_THROW(file.close());
}

TEST_F(VFileTest, CloseOfAnAttachedFileFailsAlsoAfterAnEarlierOpen)
{
    put_bytes(path("a"), {1, 2});
    const Descriptor descriptor(path("a"), O_RDONLY);
    void* handle = descriptor.handle();
    VFile file(name("b"), VFile::write_mode);
    file.close();
    file.attach(handle, VFile::read_mode);
    EXPECT_VELA_ERROR(file.close(), -1, "File not opened with open(), cannot close.");
    file.detach();
}

TEST_F(VFileTest, AttachTakesTheHandleWhereItStandsInTheGivenMode)
{
    put_bytes(path("a"), {1, 2, 3, 4});
    const Descriptor descriptor(path("a"), O_RDWR);
    ASSERT_EQ(::lseek(descriptor.get(), 2, SEEK_SET), 2);
    for (const VFile::mode mode : all_modes)
    {
        void* handle = descriptor.handle();
        VFile file;
        file.attach(handle, mode);
        EXPECT_TRUE(file.is_open());
        EXPECT_EQ(file.get_mode(), mode);
        EXPECT_EQ(file.tell(), 2u);
        file.detach();
    }
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 3, 4));
}

TEST_F(VFileTest, AttachedFileReadsAndWritesThroughTheHandle)
{
    put_bytes(path("a"), {1, 2, 3, 4});
    const Descriptor descriptor(path("a"), O_RDWR);
    void* handle = descriptor.handle();
    VFile file;
    file.attach(handle, VFile::append_mode);
    EXPECT_THAT(read_bytes(file, 2), ElementsAre(1, 2));
    write_bytes(file, {9});
    EXPECT_EQ(::lseek(descriptor.get(), 0, SEEK_CUR), 3);
    EXPECT_EQ(file.seek(0), 0u);
    EXPECT_EQ(::lseek(descriptor.get(), 0, SEEK_CUR), 0);
    file.detach();
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 9, 4));
}

TEST_F(VFileTest, AttachOfANullHandleLeavesNothingToReadFrom)
{
    void* handle = nullptr;
    VFile file;
    file.attach(handle, VFile::read_mode);
    char byte = 0;
    EXPECT_VELA_ERROR(file.read(&byte, 1), -1, "File not open!");
    EXPECT_VELA_ERROR(file.tell(), -1, "File not open!");
    EXPECT_NO_THROW(file.close());
}

TEST_F(VFileTest, DetachGivesTheHandleBackOpen)
{
    VFile file(name("a"), VFile::write_mode);
    const Descriptor descriptor(vela_descriptor_from_handle(file.detach()));
    EXPECT_FALSE(file.is_open());
    EXPECT_EQ(file.get_mode(), closed_mode);
    EXPECT_VELA_ERROR(file.tell(), -1, "File not open!");
    EXPECT_TRUE(is_open_descriptor(descriptor.get()));
    EXPECT_EQ(file.detach(), nullptr);
    EXPECT_NO_THROW(file.close());
    EXPECT_TRUE(is_open_descriptor(descriptor.get()));
}

TEST_F(VFileTest, DetachedHandleServesAnotherFileWhichDoesNotOwnIt)
{
    int descriptor = -1;
    {
        VFile second;
        {
            VFile first(name("a"), VFile::write_mode);
            write_bytes(first, {1, 2, 3});
            void* handle = first.detach();
            descriptor = vela_descriptor_from_handle(handle);
            second.attach(handle, VFile::append_mode);
        }
        EXPECT_EQ(second.tell(), 3u);
        write_bytes(second, {4});
        EXPECT_VELA_ERROR(second.close(), -1, "File not opened with open(), cannot close.");
    }
    EXPECT_TRUE(is_open_descriptor(descriptor));
    ::close(descriptor);
    EXPECT_THAT(get_bytes(path("a")), ElementsAre(1, 2, 3, 4));
}

TEST_F(VFileTest, OpenAfterDetachSucceeds)
{
    put_bytes(path("b"), {5, 6});
    VFile file(name("a"), VFile::write_mode);
    const Descriptor descriptor(vela_descriptor_from_handle(file.detach()));
    file.open(name("b"), VFile::read_mode);
    EXPECT_THAT(read_bytes(file, 2), ElementsAre(5, 6));
    file.close();
    EXPECT_TRUE(is_open_descriptor(descriptor.get()));
}

TEST_F(VFileTest, OpenAfterAttachAndDetachOwnsTheNewHandle)
{
    put_bytes(path("a"), {1});
    const Descriptor descriptor(path("a"), O_RDONLY);
    void* handle = descriptor.handle();
    VFile file;
    file.attach(handle, VFile::read_mode);
    file.detach();
    file.open(name("b"), VFile::write_mode);
    EXPECT_NO_THROW(file.close());
    EXPECT_TRUE(is_open_descriptor(descriptor.get()));
}

TEST_F(VFileTest, DestructorClosesWhatOpenOpened)
{
    {
        VFile file(name("a"), VFile::write_mode);
        write_bytes(file, {1, 2});
    }
    VFile again;
    EXPECT_NO_THROW(again.open(name("a"), VFile::append_mode));
    EXPECT_THAT(read_bytes(again, 2), ElementsAre(1, 2));
}

TEST_F(VFileTest, DestructorLeavesWhatWasAttachedOpen)
{
    put_bytes(path("a"), {1});
    const Descriptor descriptor(path("a"), O_RDONLY);
    {
        void* handle = descriptor.handle();
        VFile file;
        file.attach(handle, VFile::read_mode);
    }
    EXPECT_TRUE(is_open_descriptor(descriptor.get()));
}

TEST_F(VFileTest, CopiesShareTheHandle)
{
    put_bytes(path("a"), {1, 2, 3, 4});
    const Descriptor descriptor(path("a"), O_RDONLY);
    void* handle = descriptor.handle();
    VFile first;
    first.set_chunk_size(77);
    first.attach(handle, VFile::read_mode);
    VFile second(first);
    VFile third;
    third = first;
    for (VFile* copy : {&second, &third})
    {
        EXPECT_TRUE(copy->is_open());
        EXPECT_EQ(copy->get_mode(), VFile::read_mode);
        EXPECT_EQ(copy->get_chunk_size(), 77u);
        EXPECT_VELA_ERROR(copy->close(), -1, "File not opened with open(), cannot close.");
    }
    first.seek(1);
    EXPECT_EQ(second.tell(), 1u);
    EXPECT_THAT(read_bytes(third, 1), ElementsAre(2));
    EXPECT_EQ(first.tell(), 2u);
}

} // namespace
