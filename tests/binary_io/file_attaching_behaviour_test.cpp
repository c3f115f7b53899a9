// Attaching and detaching: where a stream stands afterwards.
#include "binary_io/vbf_opening_test.h"

using namespace vela_test;

namespace {

class VbfAttaching : public VbfOpening
{
protected:
    static constexpr std::uint64_t start = 100;

    /// Attaching fails with this id and text, and the stream stands at `position` then.
    void expect_failure(const VbfBytes& built, int id, const std::string& text, std::uint64_t position)
    {
        AttachedFile attached(put(built), start);
        EXPECT_VELA_ERROR(attached.attach(), id, text);
        EXPECT_EQ(attached.position(), position);
        EXPECT_TRUE(attached.file->is_open());
        EXPECT_EQ(attached.file->detach(), attached.descriptor.handle());
        EXPECT_FALSE(attached.file->is_open());
    }
};

} // namespace

TEST_F(VbfAttaching, AFileInsideAnotherStreamIsReadFromThePositionOfTheHandle)
{
    VbfRecords built = two_stacks(start);
    built.append(Bytes(50, 0xaa));
    AttachedFile attached(put(built), start);
    attached.attach();
    EXPECT_TRUE(attached.file->is_open());
    EXPECT_TRUE(attached.file->is_attached());
    EXPECT_EQ(attached.file->get_mode(), VFile::read_mode);
    ASSERT_EQ(attached.file->number_of_stacks(), 2u);
    EXPECT_EQ(read_whole(*attached.file->get_stack(1), vela_dt_uint8), (Bytes{4, 5, 6, 7}));
}

TEST_F(VbfAttaching, TheStreamStandsBehindTheHeaderAfterwards)
{
    for (const std::uint32_t version : {0u, 1u, 2u})
    {
        VbfRecords built(version, "text", start);
        built.add_stack_record(bytes_record({1, 2, 3}));
        if (version > 1)
            built.add_dictionary();
        AttachedFile attached(put(built), start);
        attached.attach();
        EXPECT_EQ(attached.position(), start + 26 + 4 + (version > 1 ? 8 : 0)) << version;
    }
}

TEST_F(VbfAttaching, InAppendModeItStandsAtTheEnd)
{
    VbfRecords built(1, "text", start);
    built.add_stack_record(bytes_record({1, 2, 3}));
    AttachedFile attached(put(built), start);
    attached.attach(VFile::append_mode);
    EXPECT_EQ(attached.position(), built.size());
    EXPECT_EQ(attached.file->get_mode(), VFile::append_mode);
    EXPECT_EQ(attached.file->number_of_stacks(), 1u);
    attached.file->detach();
    EXPECT_EQ(get_bytes(path("test.vbf")), built.bytes());
}

TEST_F(VbfAttaching, DetachGivesTheHandleBackBehindTheDictionary)
{
    VbfRecords built = two_stacks(start);
    const std::uint64_t behind = built.size();
    built.append(Bytes(50, 0xaa));
    AttachedFile attached(put(built), start);
    attached.attach();
    EXPECT_EQ(attached.file->detach(), attached.descriptor.handle());
    EXPECT_EQ(attached.position(), behind);
    EXPECT_FALSE(attached.file->is_open());
    EXPECT_EQ(attached.file->number_of_stacks(), 0u);
    EXPECT_TRUE(is_open_descriptor(attached.descriptor.get()));
}

TEST_F(VbfAttaching, DetachGivesAwayAHandleThatWasOpenedToo)
{
    const VbfRecords built = two_stacks();
    open(built);
    const Descriptor descriptor(vela_descriptor_from_handle(file->detach()));
    EXPECT_FALSE(file->is_open());
    EXPECT_TRUE(is_open_descriptor(descriptor.get()));
    EXPECT_EQ(::lseek(descriptor.get(), 0, SEEK_CUR), static_cast<off_t>(built.size()));
}

TEST_F(VbfAttaching, WithoutADictionaryDetachLeavesTheStreamWhereItStands)
{
    VbfRecords built(1, "", start);
    built.add_stack_record(bytes_record({1, 2, 3}));
    AttachedFile attached(put(built), start);
    attached.attach();
    const std::uint64_t end = attached.file->seek_to_end_of_stack(0);
    attached.file->detach();
    EXPECT_EQ(attached.position(), end);
}

TEST_F(VbfAttaching, DetachGivesNullWhereNothingIsAttached)
{
    EXPECT_EQ(file->detach(), nullptr);
}

TEST_F(VbfAttaching, CloseRefusesAHandleOfSomebodyElseButForgetsTheStacks)
{
    AttachedFile attached(put(two_stacks()));
    attached.attach();
    EXPECT_VELA_ERROR(attached.file->close(), -1, "File not opened with open(), cannot close.");
    EXPECT_EQ(attached.file->number_of_stacks(), 0u);
    EXPECT_TRUE(attached.file->is_open());
    EXPECT_EQ(attached.file->detach(), attached.descriptor.handle());
}

TEST_F(VbfAttaching, TheLastHandleDoesNotCloseWhatItDoesNotOwn)
{
    AttachedFile attached(put(two_stacks()));
    attached.attach();
    attached.file.reset();
    EXPECT_TRUE(is_open_descriptor(attached.descriptor.get()));
}

TEST_F(VbfAttaching, AFileThatIsOpenKeepsItsStacksWhenAnotherHandleIsRefused)
{
    open(two_stacks());
    VbfRecords other(1);
    const Descriptor descriptor(put(other, "other.vbf"), O_RDONLY);
    EXPECT_VELA_ERROR(file->attach(descriptor.handle(), VFile::read_mode), -1, "File already open or attached!");
    ASSERT_EQ(file->number_of_stacks(), 2u);
    EXPECT_EQ(read_whole(*file->get_stack(0), vela_dt_uint8), (Bytes{1, 2, 3}));
}

TEST_F(VbfAttaching, AHandleThatWasDetachedCanBeAttachedAgain)
{
    AttachedFile attached(put(two_stacks()));
    attached.attach();
    attached.file->detach();
    attached.move_to(0);
    attached.attach();
    EXPECT_EQ(attached.file->number_of_stacks(), 2u);
}

TEST_F(VbfAttaching, AnUnknownModeIsRefused)
{
    AttachedFile attached(put(two_stacks()));
    EXPECT_VELA_ERROR_IN(attached.attach(unknown_mode), function_attach, binary_io_folder, -15,
                         "Invalid opening mode!");
    EXPECT_EQ(attached.file->detach(), attached.descriptor.handle());
}

TEST_F(VbfAttaching, AFailureInTheFileHeaderPutsTheStreamBackToItsStart)
{
    VbfRecords magic = two_stacks(start);
    magic.set_byte_at(start + 3, 0);
    expect_failure(magic, -4, no_header, start);

    VbfRecords fixed_part = two_stacks(start);
    fixed_part.cut_to(start + 25);
    expect_failure(fixed_part, -3, "Failed reading 26 bytes from file!", start);

    VbfRecords description = two_stacks(start);
    description.cut_to(start + 30);
    expect_failure(description, -3, "Failed reading 10 bytes from file!", start);

    VbfRecords dictionary_position = two_stacks(start);
    dictionary_position.cut_to(start + 26 + 10 + 7);
    expect_failure(dictionary_position, -3, "Failed reading 8 bytes from file!", start);
}

TEST_F(VbfAttaching, BehindAFailureDetachDoesNotGoToTheEndOfAFileBefore)
{
    AttachedFile attached(put(VbfBytes(300)), start);
    put_bytes(path("before.vbf"), two_stacks().bytes());
    attached.file->open(file_name(path("before.vbf")), VFile::read_mode);
    attached.file->close();
    EXPECT_VELA_ERROR(attached.attach(), -4, no_header);
    attached.file->detach();
    EXPECT_EQ(attached.position(), start);
}

TEST_F(VbfAttaching, AFailureInTheDictionaryPutsTheStreamBackToItsStart)
{
    VbfRecords no_end = two_stacks(start);
    no_end.cut_to(no_end.size() - 4);
    expect_failure(no_end, -3, "Failed reading 4 bytes from file!", start);

    VbfRecords beyond = two_stacks(start);
    beyond.set_u64_at(beyond.meta_data_pos_at(), beyond.size() + 10);
    expect_failure(beyond, -3, "Failed reading 4 bytes from file!", start);
}

TEST_F(VbfAttaching, AFailureInTheChainPutsTheStreamBehindTheHeader)
{
    VbfRecords built(2, "text", start);
    built.add_stack_record(bytes_record({1}));
    const RecordPlaces second = built.add_stack_record(bytes_record({2}));
    built.add_dictionary();
    const std::uint64_t behind = start + 26 + 4 + 8;

    VbfRecords refused = built;
    refused.set_u64_at(refused.first_stack_pos_at(), 0x8000000000000000);
    expect_failure(refused, -4, bad_position, behind);

    VbfRecords comes_back = built;
    comes_back.set_u64_at(second.header + stack_next_at, second.header);
    expect_failure(comes_back, -4, bad_position, behind);

    VbfRecords magic = built;
    magic.set_byte_at(second.header, 0);
    expect_failure(magic, -4, bad_stack_header, behind);

    VbfRecords beyond = built;
    beyond.set_u64_at(second.header + stack_next_at, beyond.size());
    expect_failure(beyond, -3, "Failed reading 368 bytes from file!", behind);

    VbfRecords newer = built;
    newer.set_u32_at(second.footer + footer_required_reader_version_at, 9);
    expect_failure(newer, -4, "Cannot read stack with file format reader version 5. Need >= 9!", behind);
}

TEST_F(VbfAttaching, OtherExceptionsLeaveTheHandleAttached)
{
    VbfRecords built(1, "", start);
    const RecordPlaces places = built.add_stack_record(bytes_record({1}));
    built.set_u32_at(places.header + stack_data_type_at, 3);
    AttachedFile attached(put(built), start);
    EXPECT_THROW_TEXT(attached.attach(), std::invalid_argument, "Unsupported data type");
    EXPECT_TRUE(attached.file->is_open());
    EXPECT_EQ(attached.file->detach(), attached.descriptor.handle());
}

TEST_F(VbfAttaching, AStackPositionCountsFromTheStartOfTheStreamNotOfTheVbfFile)
{
    VbfRecords built(1, "", start);
    const RecordPlaces places = built.add_stack_record(bytes_record({1}));
    built.set_u64_at(built.first_stack_pos_at(), places.header - start);
    AttachedFile attached(put(built), start);
    EXPECT_VELA_ERROR(attached.attach(), -4, bad_stack_header);
}
