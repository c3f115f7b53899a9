// `VBFFile`, the handle of a file.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

using FileHandles = VbfWritingTest;

TEST_F(FileHandles, ANewOneHasAFileThatIsNotOpen)
{
    VBFFile handle;
    ASSERT_NE(handle.shared(), nullptr);
    EXPECT_FALSE(handle->is_open());
    EXPECT_EQ(handle->number_of_stacks(), 0u);
}

TEST_F(FileHandles, AllWaysLeadToTheSameFile)
{
    VBFFile handle(file_name(path("a.vbf")), VFile::write_mode);
    VBFFileInterface* const interface = handle;
    EXPECT_EQ(handle.shared().get(), interface);
    EXPECT_EQ(handle.operator->(), interface);
    const VBFFile& constant = handle;
    const VBFFileInterface* const constant_interface = constant;
    EXPECT_EQ(constant_interface, interface);
    EXPECT_EQ(constant.operator->(), interface);
    EXPECT_TRUE(constant->is_open());
}

TEST_F(FileHandles, CopiesShareTheFile)
{
    begin_file();
    VBFFile copy(file);
    VBFFile assigned;
    assigned = file;
    EXPECT_EQ(copy.shared(), file.shared());
    EXPECT_EQ(assigned.shared(), file.shared());
    add_to(copy, {4, 3}, vela_dt_uint8, true);
    EXPECT_EQ(assigned->number_of_stacks(), 1u);
}

TEST_F(FileHandles, TheFileIsFinishedWithItsLastHandle)
{
    begin_file();
    add_whole("a");
    {
        const VBFFile copy(file);
        file.reset();
        EXPECT_EQ(file.shared(), nullptr);
        EXPECT_TRUE(copy->is_open());
        EXPECT_EQ(on_disk().meta_data_pos, 0u);
    }
    EXPECT_EQ(complaints_about(on_disk()), "");
    EXPECT_NE(on_disk().meta_data_pos, 0u);
}

TEST_F(FileHandles, OpeningAgainFinishesTheFileBefore)
{
    begin_file();
    add_whole("a");
    file.open(file_name(path("second.vbf")), VFile::write_mode);
    EXPECT_EQ(complaints_about(on_disk()), "");
    EXPECT_NE(on_disk().meta_data_pos, 0u);
    EXPECT_EQ(file->number_of_stacks(), 0u);
}

TEST_F(FileHandles, TheSamePathMayBeOpenedAgain)
{
    begin_file();
    add_whole("a");
    file.open(file_name(file_path), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 1u);
    file.open(file_name(file_path), VFile::write_mode);
    EXPECT_EQ(content(), Bytes());
    add_whole("b");
    file.open(file_name(file_path), VFile::write_mode);
    file->close();
    EXPECT_EQ(on_disk().stacks.size(), 0u);
}

TEST_F(FileHandles, OpeningAgainLeavesTheFileToItsOtherHandles)
{
    begin_file();
    VBFFile copy(file);
    file.open(file_name(path("second.vbf")), VFile::write_mode);
    EXPECT_NE(copy.shared(), file.shared());
    const Stack stack = add_to(copy, {4, 3}, vela_dt_uint8);
    write_bytes(stack, counted_bytes(12));
    copy->close();
    EXPECT_EQ(on_disk().stacks.size(), 1u);
    EXPECT_TRUE(file->is_open());
}

TEST_F(FileHandles, AnEmptyOneMayBeOpened)
{
    file.reset();
    file.reset();
    EXPECT_EQ(file.shared(), nullptr);
    begin_file();
    EXPECT_TRUE(file->is_open());
}

} // namespace
