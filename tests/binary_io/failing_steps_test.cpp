// A disk that is full at one step of writing: the step is taken again, or the stack says that it cannot be completed.
#include "binary_io/failing_writes_test.h"
#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"

#include <cstdint>
#include <string>

using namespace vela_test;

namespace {

TEST_F(FailingWrites, NameTheBytesAndTheReasonOfTheSystem)
{
    const Stack stack = add({100});
    DiskWrites disk;
    disk.set_room(stack_header_size);
    try
    {
        const Bytes samples = counted_bytes(100);
        stack->write(vela_dt_uint8, samples.data(), nullptr, 100);
        ADD_FAILURE() << "nothing was thrown";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_id(), -3);
        EXPECT_EQ(error.get_msg(), "Failed writing 100 bytes to file!");
        EXPECT_EQ(error.get_oserr(), "No space left on device");
    }
    EXPECT_EQ(stack->get_state(), 2);
}

TEST_F(FailingWrites, StoredSamplesCanBeWrittenAgain)
{
    const Stack stack = add({100});
    const Bytes samples = counted_bytes(100);
    {
        DiskWrites disk;
        disk.set_room(stack_header_size + 50);
        EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, samples.data(), nullptr, 100), -3,
                          "Failed writing 100 bytes to file!");
    }
    EXPECT_VELA_ERROR(stack->commit(0), -1, "Not enough samples written!");
    stack->write(vela_dt_uint8, samples.data(), nullptr, 100);
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), samples);
}

TEST_F(FailingWrites, ACompressedStreamThatLostBytesIsNotContinued)
{
    const Stack stack = add({1000, 0});
    stack->set_compression(1, 1);
    const Bytes samples = noisy_bytes(200000);
    file->set_chunk_size(1000);
    {
        DiskWrites disk;
        disk.set_room(100000);
        EXPECT_THROW(stack->write(vela_dt_uint8, samples.data(), nullptr, 200000), VelaError);
    }
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, samples.data(), nullptr, 1000), -1, "File not open!");
    EXPECT_VELA_ERROR(stack->commit(0), -1, "File not open!");
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(linked(), 0u);
}

TEST_F(FailingWrites, AFooterIsWrittenAgainByTheNextCommit)
{
    const Bytes samples = sparse_bytes(70000);
    const auto add_tagged = [&](int level)
    {
        const Stack stack = add({70000});
        stack->set_compression(1, level);
        stack->set_tag("tag", "text");
        return stack;
    };
    for (const int level : {0, 6})
    {
        std::uint64_t all_bytes = 0;
        {
            const DiskWrites disk;
            add_tagged(level)->write(vela_dt_uint8, samples.data(), nullptr, 70000);
            all_bytes = disk.count_bytes();
        }
        const Stack stack = add_tagged(level);
        {
            DiskWrites disk;
            disk.set_room(all_bytes - 1000);
            EXPECT_THROW(stack->write(vela_dt_uint8, samples.data(), nullptr, 70000), VelaError);
        }
        EXPECT_EQ(stack->get_state(), 2);
        stack->commit(0);
        EXPECT_EQ(stack->get_state(), 0);
    }
    VBFFile& opened = reopen();
    ASSERT_EQ(opened->number_of_stacks(), 4u);
    for (std::uint64_t index = 0; index < 4; ++index)
    {
        EXPECT_TRUE(samples_of(*opened->get_stack(index)) == samples);
        EXPECT_EQ(opened->get_stack(index)->get_tag("tag"), "text");
    }
}

TEST_F(FailingWrites, ACommitThatFailsCanBeTriedAgain)
{
    const Stack stack = add({2, 0});
    stack->write(vela_dt_uint8, "abcd", nullptr, 4);
    {
        DiskWrites disk;
        disk.set_room(100);
        EXPECT_THROW(stack->commit(0), VelaError);
    }
    EXPECT_EQ(stack->get_state(), 2);
    stack->commit(0);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b', 'c', 'd'}));
}

TEST_F(FailingWrites, AHeaderOfAStackIsWrittenAgain)
{
    for (const std::uint64_t room : {std::uint64_t{0}, std::uint64_t{1}, stack_header_size + 3})
        for (const int level : {0, 6})
        {
            SCOPED_TRACE(testing::Message() << room << " bytes");
            const Stack stack = add({6});
            stack->set_compression(1, level);
            stack->set_name("name");
            for (int repetition = 0; repetition < 2; ++repetition)
            {
                DiskWrites disk;
                disk.set_room(room);
                EXPECT_VELA_ERROR_IN(stack->write(vela_dt_uint8, "abcdef", nullptr, VBFStackInterface::all_samples),
                                     "VFile::write", "sources/file", -3, "Failed writing 372 bytes to file!");
                EXPECT_EQ(stack->get_state(), 2);
            }
            stack->set_name("new name");
            stack->write(vela_dt_uint8, "abcdef", nullptr, VBFStackInterface::all_samples);
            EXPECT_EQ(stack->get_state(), 0);
        }
    EXPECT_EQ(linked(), 6u);
    VBFFile& opened = reopen();
    ASSERT_EQ(opened->number_of_stacks(), 6u);
    std::uint64_t end = first_record_pos;
    for (std::uint64_t index = 0; index < 6; ++index)
    {
        EXPECT_EQ(opened->get_stack(index)->get_name(), "new name");
        EXPECT_EQ(samples_of(*opened->get_stack(index)), (Bytes{'a', 'b', 'c', 'd', 'e', 'f'}));
        EXPECT_EQ(on_disk().text(end, 13), "VELA_BF_STACK") << "without a gap";
        end = opened->seek_to_end_of_stack(index);
    }
}

TEST_F(FailingWrites, AVariableStackWhoseHeaderFailedIsCommittedByClose)
{
    add_complete({3});
    const Stack stack = add({2, 0});
    {
        DiskWrites disk;
        disk.set_room(100);
        EXPECT_THROW(stack->write(vela_dt_uint8, "abcd", nullptr, 4), VelaError);
    }
    VBFFile& opened = reopen();
    ASSERT_EQ(opened->number_of_stacks(), 2u);
    EXPECT_EQ(opened->get_stack(1)->get_sizes(), (Sizes{2, 0}));
}

/// From the samples on: footer, three fields, the link.
TEST_F(FailingWrites, EachStepOfACommitIsTakenAgainByTheNextOne)
{
    const Bytes samples = sparse_bytes(2000);
    for (const int level : {0, 6})
    {
        file.open(file_name(path("written.vbf")), VFile::write_mode);
        const auto add_written = [&]
        {
            const Stack stack = add({1000, 0});
            stack->set_compression(1, level);
            stack->write(vela_dt_uint8, samples.data(), nullptr, 2000);
            return stack;
        };
        std::vector<std::uint64_t> rooms = {0};
        {
            const Stack stack = add_written();
            const DiskWrites disk;
            stack->commit(0);
            for (const DiskWrite& write : disk.log())
                rooms.push_back(rooms.back() + write.size_bytes);
        }
        ASSERT_EQ(rooms.size(), level == 0 ? 6u : 7u);
        const std::size_t first = level == 0 ? 0 : 1; // the end of a compressed stream cannot be repeated
        for (std::size_t step = first; step + 1 < rooms.size(); ++step)
        {
            SCOPED_TRACE(step);
            const Stack stack = add_written();
            const std::uint64_t linked_before = linked();
            for (const std::uint64_t part : {0u, 3u})
            {
                DiskWrites disk;
                // The second time the stream has ended already.
                disk.set_room(rooms[step] - (part > 0 ? rooms[first] : 0) + part);
                EXPECT_THROW(stack->commit(0), VelaError);
                EXPECT_EQ(stack->get_state(), 2);
                EXPECT_EQ(linked(), linked_before + (part > 0 && step + 2 == rooms.size() ? 1 : 0));
            }
            if (step % 2 == 0)
                stack->commit(0);
            else
                add_complete({3});
            EXPECT_EQ(stack->get_state(), 0);
        }
        const Bytes counted = counted_bytes(3);
        VBFFile& opened = reopen();
        for (std::uint64_t index = 0; index < opened->number_of_stacks(); ++index)
        {
            const Stack stack = opened->get_stack(index);
            const Bytes& expected = stack->get_rank() == 2 ? samples : counted;
            EXPECT_TRUE(samples_of(*stack) == expected) << index;
        }
        EXPECT_GE(opened->number_of_stacks(), rooms.size());
    }
}

TEST_F(FailingWrites, ALinkThatFailsNamesItsBytes)
{
    std::uint64_t all_bytes = 0;
    {
        const DiskWrites disk;
        add_complete({3});
        all_bytes = disk.count_bytes() - first_record_pos;
    }
    const Stack stack = add({3});
    {
        DiskWrites disk;
        disk.set_room(all_bytes - sizeof(std::uint64_t));
        EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "abc", nullptr, 3), -3, "Failed writing 8 bytes to file!");
        EXPECT_EQ(linked(), 1u);
        EXPECT_EQ(stack->get_state(), 2);
        EXPECT_THROW(file->close(), VelaError);
    }
    EXPECT_TRUE(file->is_open());
    VBFFile& opened = reopen();
    ASSERT_EQ(opened->number_of_stacks(), 2u);
    EXPECT_EQ(samples_of(*opened->get_stack(1)), (Bytes{'a', 'b', 'c'}));
}

/// What cannot be written where it belongs is written nowhere.
TEST_F(FailingWrites, APlaceThatTheSystemRefusesIsNotWrittenElsewhere)
{
    add_complete({3});
    const std::uint64_t begin = on_disk().size();
    const std::uint64_t footer_pos = begin + stack_header_size;
    const std::uint64_t link_pos = first_record_pos + stack_next_at;
    const Stack stack = file->add_stack(true);
    stack->create(Sizes{3}, vela_dt_uint8);
    DiskWrites disk;
    disk.refuse_position(footer_pos);
    EXPECT_VELA_ERROR(stack->commit(0), -3, "Failed writing 1444 bytes to file!");
    EXPECT_EQ(disk.count_bytes(), stack_header_size);
    for (const std::uint64_t position : {footer_pos + footer_stack_end_pos_at, begin + stack_data_length_at, link_pos})
    {
        SCOPED_TRACE(position);
        disk.refuse_position(position);
        EXPECT_VELA_ERROR(stack->commit(0), -3, "Failed writing 8 bytes to file!");
        EXPECT_EQ(stack->get_state(), 2);
        EXPECT_EQ(linked(), 1u);
    }
    disk.refuse_position(~std::uint64_t{0});
    stack->commit(0);
    EXPECT_EQ(linked(), 2u);
    EXPECT_EQ(reopen()->number_of_stacks(), 2u);
    EXPECT_EQ(samples_of(*file->get_stack(0)), counted_bytes(3));
}

TEST_F(FailingWrites, SamplesAreNotWrittenElsewhereEither)
{
    const Stack stack = add({3});
    DiskWrites disk;
    disk.refuse_position(first_record_pos + stack_header_size);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "abc", nullptr, 3), -3, "Failed writing 3 bytes to file!");
    EXPECT_EQ(disk.count_bytes(), stack_header_size);
    disk.refuse_position(~std::uint64_t{0});
    stack->write(vela_dt_uint8, "abc", nullptr, 3);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b', 'c'}));
}

TEST_F(FailingWrites, AHeaderOfTheFileStandsAtItsStartAllTheSame)
{
    file->set_file_desc("description");
    {
        DiskWrites disk;
        disk.set_room(20);
        EXPECT_VELA_ERROR(file->add_stack(false), -3, "Failed writing 45 bytes to file!");
    }
    EXPECT_EQ(file->number_of_stacks(), 0u);
    add_complete({3});
    VBFFile& opened = reopen();
    std::string text;
    opened->get_file_desc(text);
    EXPECT_EQ(text, "description");
    EXPECT_EQ(samples_of(*opened->get_stack(0)), counted_bytes(3));
}

TEST_F(FailingWrites, ADictionaryIsWrittenAgainByTheNextClose)
{
    add_complete({3});
    const std::uint64_t size_before = on_disk().size();
    {
        DiskWrites disk;
        disk.set_room(50);
        EXPECT_THROW(file->close(), VelaError);
    }
    EXPECT_TRUE(file->is_open());
    EXPECT_EQ(on_disk().u64(26), 0u);
    file->close();
    EXPECT_EQ(on_disk().u64(26), size_before);
    EXPECT_EQ(reopen()->number_of_stacks(), 1u);
}

}
