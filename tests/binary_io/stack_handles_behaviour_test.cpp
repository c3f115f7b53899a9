// Stacks that a file hands out, and what becomes of them.
#include "binary_io/vbf_reading_test.h"

using namespace vela_test;

namespace {

class VbfStackHandles : public VbfReadingTest
{
protected:
    static VbfRecords three_stacks(std::uint32_t version = 1, std::size_t foreign_bytes = 0)
    {
        VbfRecords built(version, "", foreign_bytes);
        for (unsigned char i = 0; i < 3; ++i)
        {
            RecordFields fields = bytes_record(Bytes(10, i));
            fields.header.name = std::string(1, static_cast<char>('a' + i));
            fields.tags = {{"key", "value"}};
            built.add_stack_record(fields);
        }
        if (version > 1)
            built.add_dictionary();
        return built;
    }

    /// The description and the tags are there, the samples are not.
    static void expect_closed(VBFStackInterface& stack)
    {
        Bytes bytes(10, stale);
        std::uint64_t pos = 0;
        EXPECT_VELA_ERROR_IN(stack.read(vela_dt_uint8, bytes.data(), nullptr), "VBFStackImp::read_imp",
                             binary_io_folder, -1, closed_text);
        EXPECT_VELA_ERROR_IN(stack.read(vela_dt_uint8, bytes.data(), nullptr, 1, pos), "VBFStackImp::read_imp",
                             binary_io_folder, -1, closed_text);
        EXPECT_EQ(bytes, Bytes(10, stale));
        EXPECT_EQ(pos, 0u);
        EXPECT_EQ(stack.get_sizes(), std::vector<std::uint64_t>{10});
        EXPECT_EQ(stack.get_dt(), vela_dt_uint8);
        EXPECT_EQ(stack.get_tag("key"), "value");
        EXPECT_EQ(stack.get_state(), 0);
    }
};

} // namespace

TEST_F(VbfStackHandles, EachCallGivesACopyOfItsOwn)
{
    open(three_stacks());
    const StackPointer first = file->get_stack(1);
    const StackPointer second = file->get_stack(1);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->get_name(), "b");
    EXPECT_EQ(second->get_name(), "b");
}

TEST_F(VbfStackHandles, WhatIsDoneToOneCopyNoOtherSees)
{
    open(three_stacks());
    const StackPointer first = file->get_stack(1);
    first->set_tag("key", std::string("changed"));
    VStackPosition position;
    position.create(first.get(), 2);
    first->set_stack_position(position);
    EXPECT_EQ(first->get_tag("key"), "changed");
    for (const StackPointer& other : {file->get_stack(1), file->get_stack(1)})
    {
        EXPECT_EQ(other->get_tag("key"), "value");
        EXPECT_EQ(other->get_stack_position().origin.size(), 1u);
    }
}

TEST_F(VbfStackHandles, AnIndexBehindTheLastStackIsRefused)
{
    open(three_stacks());
    EXPECT_VELA_ERROR_IN(file->get_stack(3), "VBFFileImp::get_stack", binary_io_folder, -4, "Invalid stack index 3!");
    // The text has room for 32 bits.
    EXPECT_VELA_ERROR(file->get_stack(0x100000001), -4, "Invalid stack index 1!");
    EXPECT_VELA_ERROR(file->get_stack(0xffffffffffffffff), -4, "Invalid stack index -1!");
}

TEST_F(VbfStackHandles, AFileThatIsNotOpenHasNoStack)
{
    EXPECT_VELA_ERROR(file->get_stack(0), -4, "Invalid stack index 0!");
    open(three_stacks());
    file->close();
    EXPECT_VELA_ERROR(file->get_stack(0), -4, "Invalid stack index 0!");
}

TEST_F(VbfStackHandles, LoseTheirFileWhenItIsClosed)
{
    open(three_stacks(2));
    const StackPointer used = file->get_stack(0);
    const StackPointer unused = file->get_stack(0);
    EXPECT_EQ(read_at(*used, vela_dt_uint8, 4, 2), Bytes(4, 0));
    file->close();
    expect_closed(*used);
    expect_closed(*unused);
}

TEST_F(VbfStackHandles, LoseTheirFileWhenItIsDetached)
{
    AttachedFile attached(put(three_stacks()));
    attached.attach();
    const StackPointer stack = attached.file->get_stack(2);
    attached.file->detach();
    expect_closed(*stack);
}

TEST_F(VbfStackHandles, LoseTheirFileWithItsLastHandle)
{
    open(three_stacks());
    const StackPointer stack = file->get_stack(2);
    VBFFile other = file;
    file.reset();
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), Bytes(10, 2));
    other.reset();
    expect_closed(*stack);
}

TEST_F(VbfStackHandles, LoseTheirFileWhenItsHandleOpensAnother)
{
    open(three_stacks());
    const StackPointer stack = file->get_stack(2);
    put(three_stacks(), "other.vbf");
    file.open(file_name(path("other.vbf")), VFile::read_mode);
    expect_closed(*stack);
    EXPECT_EQ(read_whole(*file->get_stack(2), vela_dt_uint8), Bytes(10, 2));
}

TEST_F(VbfStackHandles, DoNotComeBackToAFileThatIsOpenedAgain)
{
    open(three_stacks());
    const StackPointer stack = file->get_stack(2);
    file->close();
    file->open(file_name(path("test.vbf")), VFile::read_mode);
    expect_closed(*stack);
    EXPECT_EQ(read_whole(*file->get_stack(2), vela_dt_uint8), Bytes(10, 2));
}

TEST_F(VbfStackHandles, OnesThatAreGoneDoNotMatterToClose)
{
    open(three_stacks());
    StackPointer stack = file->get_stack(0);
    const StackPointer kept = file->get_stack(1);
    stack.reset();
    file->close();
    expect_closed(*kept);
}

TEST_F(VbfStackHandles, AClosedFileMattersLessThanAnExhaustedPosition)
{
    open(three_stacks());
    const StackPointer stack = file->get_stack(0);
    file->close();
    std::uint64_t pos = VBFStackInterface::exhausted;
    EXPECT_VELA_ERROR_IN(stack->read(vela_dt_uint8, nullptr, nullptr, 1, pos), "VBFStackImp::read_imp",
                         binary_io_folder, -1, exhausted_text);
}

// ---- the end of a stack

TEST_F(VbfStackHandles, TheEndOfAStackIsThePositionBehindItsTags)
{
    VbfRecords built(1);
    const RecordPlaces first = built.add_stack_record(bytes_record({1, 2, 3}));
    built.gap(20);
    const RecordPlaces second = built.add_stack_record(bytes_record({4, 5}));
    AttachedFile attached(put(built));
    attached.attach();
    EXPECT_EQ(attached.file->seek_to_end_of_stack(0), first.end);
    EXPECT_EQ(attached.position(), first.end);
    EXPECT_EQ(attached.file->seek_to_end_of_stack(1), second.end);
    EXPECT_EQ(attached.position(), second.end);
}

TEST_F(VbfStackHandles, TheEndIsWhatTheFooterSays)
{
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(bytes_record({1, 2, 3}));
    built.set_u64_at(places.footer + footer_stack_end_pos_at, 7);
    AttachedFile attached(put(built));
    attached.attach();
    EXPECT_EQ(attached.file->seek_to_end_of_stack(0), 7u);
    EXPECT_EQ(attached.position(), 7u);
}

TEST_F(VbfStackHandles, AFooterWithoutAnEndMeansWhereReadingStopped)
{
    VbfRecords built(1);
    RecordFields fields = bytes_record({1, 2, 3});
    fields.tells_end = false;
    fields.tags = {{"a", "b"}};
    const RecordPlaces places = built.add_stack_record(fields);
    open(built);
    EXPECT_EQ(file->seek_to_end_of_stack(0), places.end);
}

TEST_F(VbfStackHandles, WithoutAFooterTheEndIsThatOfTheData)
{
    VbfRecords built(1);
    RecordFields fields = bytes_record({1, 2, 3});
    fields.header.format_version = 0;
    const RecordPlaces places = built.add_stack_record(fields);
    open(built);
    EXPECT_EQ(file->seek_to_end_of_stack(0), places.data + 3);
}

TEST_F(VbfStackHandles, TheEndOfAStackThatIsNotThereIsRefused)
{
    open(three_stacks());
    EXPECT_VELA_ERROR_IN(file->seek_to_end_of_stack(3), "VBFFileImp::seek_to_end_of_stack", binary_io_folder, -1,
                         "Invalid stack number!");
    EXPECT_VELA_ERROR(file->seek_to_end_of_stack(0xffffffffffffffff), -1, "Invalid stack number!");
}

TEST_F(VbfStackHandles, TheEndOfAStackIsFoundOnlyInAFileThatIsRead)
{
    const char* const text = "File must be open in read mode to allow seeking to end of file!";
    EXPECT_VELA_ERROR_IN(file->seek_to_end_of_stack(0), "VBFFileImp::seek_to_end_of_stack", binary_io_folder, -1, text);
    put(three_stacks());
    file.open(file_name(path("test.vbf")), VFile::append_mode);
    EXPECT_VELA_ERROR(file->seek_to_end_of_stack(0), -1, text);
    EXPECT_VELA_ERROR(file->seek_to_end_of_stack(9), -1, text);
    file.open(file_name(path("new.vbf")), VFile::write_mode);
    EXPECT_VELA_ERROR(file->seek_to_end_of_stack(0), -1, text);
}
