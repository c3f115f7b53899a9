// A disk that is full: what has been linked stays whole, and what failed can be tried again or is refused.
#include "binary_io/disk_writes.h"
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"

#include <cstdint>
#include <string>

using namespace vela_test;

namespace {

/// Four stacks: stored, compressed in two calls, growing, and empty.
void write_stacks(VBFFileInterface& file)
{
    const Bytes samples = sparse_bytes(5000);
    const Stack stored = file.add_stack(false);
    stored->create({50, 100}, vela_dt_uint8);
    stored->set_name("stored");
    stored->write(vela_dt_uint8, samples.data(), nullptr, 5000);
    const Stack compressed = file.add_stack(false);
    compressed->create({2500}, vela_dt_uint16);
    compressed->set_compression(1, 6);
    compressed->write(vela_dt_uint16, samples.data(), nullptr, 2000);
    compressed->write(vela_dt_uint16, samples.data() + 4000, nullptr, 500);
    const Stack grown = file.add_stack(false);
    grown->create({500, 0}, vela_dt_uint8);
    grown->set_compression(1, 1);
    for (std::size_t step = 0; step < 10; ++step)
        grown->write(vela_dt_uint8, samples.data() + 500 * step, nullptr, 500);
    grown->commit(0);
    const Stack empty = file.add_stack(true);
    empty->create({7}, vela_dt_uint8);
    empty->commit(0);
}

/// The stacks of a closed file that `write_stacks` began: as many as there are, each is whole.
void expect_whole_stacks(VBFFileInterface& file)
{
    for (std::uint64_t index = 0; index < file.number_of_stacks(); ++index)
    {
        const Bytes samples = samples_of(*file.get_stack(index));
        EXPECT_TRUE(samples == (index < 3 ? sparse_bytes(5000) : Bytes(7, 0))) << index;
    }
}

class FailingWrites : public WritingTest
{
protected:
    /// Stacks that the chain on disk reaches.
    std::uint64_t linked() const
    {
        const ByteMap map = on_disk();
        std::uint64_t count = 0;
        if (map.size() < first_record_pos)
            return 0;
        for (std::uint64_t at = map.u64(14); at != 0; at = map.u64(at + stack_next_at))
            ++count;
        return count;
    }

    /// Makes a closed file of one that was not.
    void give_empty_dictionary()
    {
        Bytes bytes = get_bytes(path("written.vbf"));
        const std::uint64_t end = bytes.size();
        append_u32(bytes, 0);
        for (std::size_t i = 0; i < 8; ++i)
            bytes[26 + i] = static_cast<unsigned char>(end >> (8 * i));
        put_bytes(path("written.vbf"), bytes);
    }
};

TEST_F(FailingWrites, AtEveryPlaceLeaveTheChainWhole)
{
    std::uint64_t total = 0;
    std::vector<std::uint64_t> places;
    {
        const DiskWrites disk;
        write_stacks(*file.shared());
        file->close();
        for (const DiskWrite& write : disk.log())
        {
            // Nothing of it, a part, all but one byte.
            for (const std::uint64_t part : {std::uint64_t{0}, write.size_bytes / 2, write.size_bytes - 1})
                places.push_back(total + part);
            total += write.size_bytes;
        }
    }
    std::uint64_t most_linked = 0;
    for (const std::uint64_t room : places)
    {
        SCOPED_TRACE(testing::Message() << room << " bytes");
        file.open(file_name(path("written.vbf")), VFile::write_mode);
        DiskWrites disk;
        disk.set_room(room);
        EXPECT_THROW(
            {
                write_stacks(*file.shared());
                file->close();
            },
            VelaError);
        file.reset(); // which tries to close it, in vain
        const std::uint64_t count = linked();
        most_linked = std::max(most_linked, count);
        if (on_disk().size() < first_record_pos)
            continue;
        disk.set_room(~std::uint64_t{0});
        give_empty_dictionary();
        file.open(file_name(path("written.vbf")), VFile::read_mode);
        EXPECT_EQ(file->number_of_stacks(), count);
        expect_whole_stacks(*file.shared());
    }
    EXPECT_EQ(most_linked, 4u);
}

TEST_F(FailingWrites, OnceThereIsRoomAgainCloseGoesOnOrRefuses)
{
    std::uint64_t total = 0;
    {
        const DiskWrites disk;
        write_stacks(*file.shared());
        file->close();
        total = disk.count_bytes();
    }
    int closed_files = 0;
    int refused_files = 0;
    for (std::uint64_t room = 0; room < total; room += 41)
    {
        SCOPED_TRACE(testing::Message() << room << " bytes");
        file.open(file_name(path("written.vbf")), VFile::write_mode);
        DiskWrites disk;
        disk.set_room(room);
        EXPECT_THROW(
            {
                write_stacks(*file.shared());
                file->close();
            },
            VelaError);
        disk.set_room(~std::uint64_t{0});
        try
        {
            file->close();
            ++closed_files;
        }
        catch (const VelaError&)
        {
            ++refused_files;
            continue;
        }
        file.open(file_name(path("written.vbf")), VFile::read_mode);
        for (std::uint64_t index = 0; index < file->number_of_stacks(); ++index)
        {
            // A stack that was growing has the steps that were counted.
            const Bytes samples = samples_of(*file->get_stack(index));
            const Bytes expected = index < 3 ? sparse_bytes(5000) : Bytes(7, 0);
            ASSERT_LE(samples.size(), expected.size());
            EXPECT_TRUE(samples == slice(expected, 0, samples.size())) << index;
        }
    }
    EXPECT_GT(closed_files, 0);
    EXPECT_GT(refused_files, 0);
}

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
                EXPECT_EQ(stack->get_state(), 1);
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

/// Nothing but a compressed stream that has lost bytes is beyond repair.
TEST_F(FailingWrites, AFileOfStoredStacksClosesOnceThereIsRoom)
{
    const Bytes samples = sparse_bytes(3000);
    const auto write_all = [&]
    {
        add_complete({3});
        const Stack grown = add({500, 0});
        grown->set_name("grown");
        for (std::size_t step = 0; step < 6; ++step)
            grown->write(vela_dt_uint8, samples.data() + 500 * step, nullptr, 500);
        grown->commit(0);
        file->add_stack(true)->create({7}, vela_dt_uint8);
        file->close();
    };
    std::uint64_t total = 0;
    {
        const DiskWrites disk;
        write_all();
        total = disk.count_bytes();
    }
    // The first stack has to come to its end: its size is known, and nobody writes its samples again.
    std::uint64_t first_end = 0;
    {
        file.open(file_name(path("written.vbf")), VFile::read_mode);
        first_end = file->seek_to_end_of_stack(0) + 3 * sizeof(std::uint64_t);
    }
    for (std::uint64_t room = first_end; room < total; room += 79)
    {
        SCOPED_TRACE(testing::Message() << room << " bytes");
        file.open(file_name(path("written.vbf")), VFile::write_mode);
        DiskWrites disk;
        disk.set_room(room);
        EXPECT_THROW(write_all(), VelaError);
        disk.set_room(~std::uint64_t{0});
        ASSERT_NO_THROW(file->close());
        file.open(file_name(path("written.vbf")), VFile::read_mode);
        ASSERT_GE(file->number_of_stacks(), 1u);
        EXPECT_EQ(samples_of(*file->get_stack(0)), counted_bytes(3));
        if (file->number_of_stacks() < 2)
            continue;
        const Bytes grown = samples_of(*file->get_stack(1));
        EXPECT_EQ(grown.size() % 500, 0u);
        EXPECT_TRUE(grown == slice(samples, 0, grown.size()));
    }
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
