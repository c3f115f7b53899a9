// A disk that is full: what has been linked stays whole, and what failed can be tried again or is refused.
#include "binary_io/failing_writes_test.h"
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

/// Makes a closed file of one that was not.
void give_empty_dictionary(const std::string& path)
{
    Bytes bytes = get_bytes(path);
    const std::uint64_t end = bytes.size();
    append_u32(bytes, 0);
    for (std::size_t i = 0; i < 8; ++i)
        bytes[26 + i] = static_cast<unsigned char>(end >> (8 * i));
    put_bytes(path, bytes);
}

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
        give_empty_dictionary(path("written.vbf"));
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

}
