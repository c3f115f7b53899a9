// Opening, closing, attaching and detaching of files that are written.
#include "binary_io/vbf_writing.h"
#include "support/descriptor.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

class FileStatesWriting : public VbfWritingTest
{
protected:
    static constexpr const char* not_open = "File not open for writing!";
    static constexpr const char* file_closed = "Cannot access VBFStack, file has been closed!";
};

TEST_F(FileStatesWriting, AddStackNeedsAFileThatIsOpenForWriting)
{
    EXPECT_FILE_ERROR(file->add_stack(false), "add_stack", -1, not_open);
    begin_file();
    file->close();
    EXPECT_FILE_ERROR(file->add_stack(false), "add_stack", -1, not_open);
    EXPECT_FILE_ERROR(file->add_stack(true), "add_stack", -1, not_open);
    file.open(file_name(file_path), VFile::read_mode);
    EXPECT_FILE_ERROR(file->add_stack(false), "add_stack", -1, not_open);
    EXPECT_EQ(file->number_of_stacks(), 0u);
}

TEST_F(FileStatesWriting, AFileIsOpenInItsModeUntilItIsClosed)
{
    EXPECT_FALSE(file->is_open());
    EXPECT_EQ(file->get_mode(), -1);
    begin_file();
    EXPECT_TRUE(file->is_open());
    EXPECT_EQ(file->get_mode(), VFile::write_mode);
    EXPECT_FALSE(file->is_attached());
    file->close();
    EXPECT_FALSE(file->is_open());
    EXPECT_EQ(file->get_mode(), -1);
}

TEST_F(FileStatesWriting, FinishDoesNothingToAFileThatIsRead)
{
    begin_file();
    add_whole("a");
    file->close();
    const Bytes before = content();
    file.open(file_name(file_path), VFile::read_mode);
    EXPECT_NO_THROW(file->finish());
    EXPECT_NO_THROW(file->close());
    EXPECT_EQ(content(), before);
}

TEST_F(FileStatesWriting, AnOpenFileCannotBeAttached)
{
    begin_file();
    put_bytes(path("foreign"), {});
    const Descriptor descriptor(path("foreign"), O_RDWR);
    EXPECT_VELA_ERROR(file->attach(descriptor.handle(), VFile::write_mode), -1, "File already open or attached!");
    EXPECT_EQ(get_bytes(path("foreign")), Bytes());
}

TEST_F(FileStatesWriting, AFileThatIsWrittenOpensNowhereElse)
{
    begin_file();
    VBFFile other;
    EXPECT_VELA_ERROR(other.open(file_name(file_path), VFile::write_mode), -1, "Could not open file!");
    EXPECT_VELA_ERROR(other.open(file_name(file_path), VFile::read_mode), -1, "Could not open file!");
    add_whole("a");
    close_file();
    EXPECT_NO_THROW(other.open(file_name(file_path), VFile::read_mode));
}

TEST_F(FileStatesWriting, AnAttachedFileStandsBehindForeignBytes)
{
    const Bytes foreign = noisy_bytes(37);
    put_bytes(path("foreign"), foreign);
    const Descriptor descriptor(path("foreign"), O_RDWR);
    ASSERT_EQ(::lseek(descriptor.get(), 37, SEEK_SET), 37);
    file->attach(descriptor.handle(), VFile::write_mode);
    EXPECT_TRUE(file->is_attached());
    EXPECT_EQ(file->get_mode(), VFile::write_mode);
    file->set_file_desc("inside");
    add_whole("a");
    add_whole("b");
    EXPECT_EQ(vela_descriptor_from_handle(file->detach()), descriptor.get());
    EXPECT_FALSE(file->is_open());

    const Bytes bytes = get_bytes(path("foreign"));
    EXPECT_EQ(slice(bytes, 0, 37), foreign);
    const WrittenFile written = read_written(bytes, 37);
    EXPECT_EQ(complaints_about(written), "");
    EXPECT_EQ(written.first_stack_pos, 37u + 34 + 6);
    EXPECT_EQ(written.stack_names(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(::lseek(descriptor.get(), 0, SEEK_CUR), static_cast<off_t>(bytes.size()));
}

TEST_F(FileStatesWriting, AnAttachedFileLeavesWhatStandsBehindIt)
{
    const Bytes foreign = noisy_bytes(10000);
    put_bytes(path("foreign"), foreign);
    const Descriptor descriptor(path("foreign"), O_RDWR);
    ASSERT_EQ(::lseek(descriptor.get(), 1000, SEEK_SET), 1000);
    file->attach(descriptor.handle(), VFile::write_mode);
    add_whole("a");
    file->detach();
    const Bytes bytes = get_bytes(path("foreign"));
    ASSERT_EQ(bytes.size(), foreign.size());
    const WrittenFile written = read_written(bytes, 1000);
    EXPECT_EQ(written.stack_names(), std::vector<std::string>{"a"});
    EXPECT_EQ(::lseek(descriptor.get(), 0, SEEK_CUR), static_cast<off_t>(written.meta_end));
    EXPECT_EQ(slice(bytes, 0, 1000), slice(foreign, 0, 1000));
    const auto end = static_cast<std::size_t>(written.meta_end);
    EXPECT_EQ(slice(bytes, end, bytes.size()), slice(foreign, end, foreign.size()));
}

TEST_F(FileStatesWriting, AnAttachedFileIsFinishedByCloseButNotClosed)
{
    put_bytes(path("foreign"), {});
    const Descriptor descriptor(path("foreign"), O_RDWR);
    file->attach(descriptor.handle(), VFile::write_mode);
    add_whole("a");
    EXPECT_VELA_ERROR(file->close(), -1, "File not opened with open(), cannot close.");
    EXPECT_TRUE(is_open_descriptor(descriptor.get()));
    const WrittenFile written = read_written(get_bytes(path("foreign")));
    EXPECT_EQ(written.stack_names(), std::vector<std::string>{"a"});
    EXPECT_EQ(written.dictionary.size(), 1u);
}

TEST_F(FileStatesWriting, DetachOfAFileThatWasOpenedGivesItsHandle)
{
    begin_file();
    add_whole("a");
    const int number = vela_descriptor_from_handle(file->detach());
    ASSERT_GE(number, 0);
    const Descriptor descriptor(number);
    EXPECT_TRUE(is_open_descriptor(number));
    EXPECT_EQ(complaints_about(on_disk()), "");
    EXPECT_EQ(on_disk().dictionary.size(), 1u);
}

TEST_F(FileStatesWriting, FilesMayBeWrittenOneAfterTheOtherByOneObject)
{
    begin_file();
    add_whole("first");
    file->close();
    const boost::shared_ptr<VBFFileInterface> same = file.shared();
    const std::string second_path = path("second.vbf");
    same->open(file_name(second_path), VFile::write_mode);
    EXPECT_EQ(same->number_of_stacks(), 0u);
    add_whole("second");
    add_whole("third");
    same->close();
    EXPECT_EQ(on_disk().stack_names(), std::vector<std::string>{"first"});
    const WrittenFile written = read_written(get_bytes(second_path));
    EXPECT_EQ(written.stack_names(), (std::vector<std::string>{"second", "third"}));
    EXPECT_EQ(complaints_about(written), "");
}

TEST_F(FileStatesWriting, TwoFilesAreWrittenByTurns)
{
    begin_file();
    VBFFile other(file_name(path("other.vbf")), VFile::write_mode);
    const Stack here = add({4, 3});
    const Stack there = add_to(other, {2, 5}, vela_dt_uint8);
    for (std::size_t i = 0; i < 5; ++i)
    {
        here->write(vela_dt_uint8, numbered_bytes(12).data() + 2 * i, nullptr, 2);
        there->write(vela_dt_uint8, numbered_bytes(10).data() + 2 * i, nullptr, 2);
    }
    here->write(vela_dt_uint8, numbered_bytes(12).data() + 10, nullptr, 2);
    other->close();
    EXPECT_EQ(close_file_with_one_stack().data, numbered_bytes(12));
    EXPECT_EQ(read_written(get_bytes(path("other.vbf"))).stacks.at(0).data, numbered_bytes(10));
}

TEST_F(FileStatesWriting, AStackOfAClosedFileIsNotWritten)
{
    begin_file();
    const Stack stack = add_whole("a");
    file->close();
    const Bytes samples = numbered_bytes(12);
    EXPECT_STACK_ERROR(stack->write(vela_dt_uint8, samples.data(), nullptr, 12), "write", -1, file_closed);
    EXPECT_STACK_ERROR(stack->commit(vela_dt_uint8), "write", -1, file_closed);
    EXPECT_EQ(stack->get_name(), "a");
    EXPECT_EQ(stack->get_sizes(), (Sizes{4, 3}));
    EXPECT_EQ(stack->get_state(), 0);
}

TEST_F(FileStatesWriting, AStackOfADetachedOrDestroyedFileIsNotWritten)
{
    put_bytes(path("foreign"), {});
    const Descriptor descriptor(path("foreign"), O_RDWR);
    file->attach(descriptor.handle(), VFile::write_mode);
    const Stack first = add_whole("a");
    file->detach();
    EXPECT_STACK_ERROR(first->commit(0), "write", -1, file_closed);
    begin_file();
    const Stack second = add_whole("a");
    file.reset();
    EXPECT_STACK_ERROR(second->commit(0), "write", -1, file_closed);
}

TEST_F(FileStatesWriting, AStackThatOutlivesAFileThatCouldNotBeFinishedIsNotWritten)
{
    begin_file();
    const Stack stack = add({4, 3});
    const Bytes samples = numbered_bytes(12);
    stack->write(vela_dt_uint8, samples.data(), nullptr, 5);
    EXPECT_VELA_ERROR(file->close(), -1, "Not enough samples written!");
    file.reset();
    EXPECT_STACK_ERROR(stack->write(vela_dt_uint8, samples.data(), nullptr, 7), "write", -1, file_closed);
    EXPECT_STACK_ERROR(stack->commit(0), "write", -1, file_closed);
}

TEST_F(FileStatesWriting, TheEndOfAStackIsNotSoughtInAFileThatIsWritten)
{
    const char* text = "File must be open in read mode to allow seeking to end of file!";
    EXPECT_FILE_ERROR(file->seek_to_end_of_stack(0), "seek_to_end_of_stack", -1, text);
    begin_file();
    add_whole("a");
    EXPECT_FILE_ERROR(file->seek_to_end_of_stack(0), "seek_to_end_of_stack", -1, text);
    EXPECT_FILE_ERROR(file->seek_to_end_of_stack(1), "seek_to_end_of_stack", -1, text);
}

TEST_F(FileStatesWriting, AStackCountsAsSoonAsItIsAdded)
{
    begin_file();
    EXPECT_EQ(file->number_of_stacks(), 0u);
    EXPECT_FILE_ERROR(file->get_stack(0), "get_stack", -4, "Invalid stack index 0!");
    add({4, 3});
    EXPECT_EQ(file->number_of_stacks(), 1u);
    EXPECT_NO_THROW(file->get_stack(0));
    EXPECT_FILE_ERROR(file->get_stack(1), "get_stack", -4, "Invalid stack index 1!");
    EXPECT_FILE_ERROR(file->get_stack(~0ull), "get_stack", -4, "Invalid stack index -1!");
    EXPECT_FILE_ERROR(file->get_stack(0x700000005), "get_stack", -4, "Invalid stack index 5!");
}

TEST_F(FileStatesWriting, AddStackGivesTheStackOfTheFileItself)
{
    begin_file();
    const Stack stack = add({4, 3});
    stack->set_name("from outside");
    EXPECT_EQ(file->get_stack(0)->get_name(), "from outside");
    EXPECT_NE(file->get_stack(0), stack);
    write_bytes(stack, numbered_bytes(12));
    EXPECT_EQ(file->get_stack(0)->get_state(), 0);
}

TEST_F(FileStatesWriting, AnAbandonedFileIsFinishedByItsDestructor)
{
    begin_file();
    file->set_creator("nobody closed this");
    add_whole("a");
    add({4, 3}, vela_dt_uint8, true);
    file.reset();
    EXPECT_EQ(file.shared(), nullptr);
    const WrittenFile written = on_disk();
    EXPECT_EQ(complaints_about(written), "");
    EXPECT_EQ(written.stacks.size(), 2u);
    ASSERT_EQ(written.dictionary.size(), 1u);
    EXPECT_NE(written.dictionary[0].second.find("nobody closed this"), std::string::npos);
}

TEST_F(FileStatesWriting, WhatFailsInTheDestructorIsSwallowed)
{
    begin_file();
    add_whole("a");
    add({4, 3});
    EXPECT_NO_THROW(file.reset());
    EXPECT_EQ(on_disk().stack_names(), std::vector<std::string>{"a"});
    EXPECT_EQ(on_disk().meta_data_pos, 0u);
    EXPECT_NO_THROW(file.open(file_name(file_path), VFile::write_mode)) << "the handle is closed";
}

// ---- the handles of a file

TEST_F(FileStatesWriting, TheFileIsFinishedWithItsLastHandle)
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

TEST_F(FileStatesWriting, OpeningAgainFinishesTheFileBefore)
{
    begin_file();
    add_whole("a");
    file.open(file_name(path("second.vbf")), VFile::write_mode);
    EXPECT_EQ(complaints_about(on_disk()), "");
    EXPECT_NE(on_disk().meta_data_pos, 0u);
    EXPECT_EQ(file->number_of_stacks(), 0u);
}

TEST_F(FileStatesWriting, TheSamePathMayBeOpenedAgain)
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

TEST_F(FileStatesWriting, OpeningAgainLeavesTheFileToItsOtherHandles)
{
    begin_file();
    VBFFile copy(file);
    file.open(file_name(path("second.vbf")), VFile::write_mode);
    EXPECT_NE(copy.shared(), file.shared());
    const Stack stack = add_to(copy, {4, 3}, vela_dt_uint8);
    write_bytes(stack, numbered_bytes(12));
    copy->close();
    EXPECT_EQ(on_disk().stacks.size(), 1u);
    EXPECT_TRUE(file->is_open());
}

TEST_F(FileStatesWriting, AnEmptyOneMayBeOpened)
{
    file.reset();
    file.reset();
    EXPECT_EQ(file.shared(), nullptr);
    begin_file();
    EXPECT_TRUE(file->is_open());
}

} // namespace
