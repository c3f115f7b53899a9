// Stacks that are added to a file that is there.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"

using namespace vela_test;

namespace {

class Append : public FolderTest
{
protected:
    /// A file of version 1: its header with a description, and no stack.
    void put_version_1(const std::string& description = "old")
    {
        put_bytes(path("old.vbf"), VbfBytes().file_header(1, description).bytes());
    }

    VBFFile open(VFile::mode mode) const { return VBFFile(file_name(path("old.vbf")), mode); }

    ByteMap on_disk() const { return ByteMap(get_bytes(path("old.vbf"))); }

    static void add(VBFFileInterface& file, const Bytes& samples)
    {
        const Stack stack = file.add_stack(false);
        stack->create({samples.size()}, vela_dt_uint8);
        stack->write(vela_dt_uint8, samples.data(), nullptr, samples.size());
    }
};

TEST_F(Append, ToAFileOfVersion1IsClean)
{
    put_version_1();
    const Bytes header = get_bytes(path("old.vbf"));
    std::uint64_t end = header.size();
    for (std::uint64_t count = 1; count <= 4; ++count)
    {
        VBFFile file = open(VFile::append_mode);
        EXPECT_EQ(file->number_of_stacks(), count - 1);
        EXPECT_EQ(file->get_mode(), VFile::append_mode);
        add(*file.shared(), counted_bytes(10 * count));
        file->close();
        const ByteMap map = on_disk();
        EXPECT_EQ(map.text(0, 14), ByteMap(header).text(0, 14));
        EXPECT_EQ(map.text(end, 14), "VELA_BF_STACK\n"); // where the file ended
        EXPECT_EQ(map.u64(end + stack_header_size + 10 * count + footer_stack_end_pos_at), map.size());
        end = map.size(); // no dictionary behind it
        VBFFile opened = open(VFile::read_mode);
        ASSERT_EQ(opened->number_of_stacks(), count);
        for (std::uint64_t index = 0; index < count; ++index)
            EXPECT_EQ(samples_of(*opened->get_stack(index)), counted_bytes(10 * (index + 1)));
        std::string text;
        opened->get_file_desc(text);
        EXPECT_EQ(text, "old");
    }
}

TEST_F(Append, OfSeveralStacksLinksThemAll)
{
    put_version_1();
    {
        VBFFile file = open(VFile::append_mode);
        add(*file.shared(), counted_bytes(1));
        add(*file.shared(), counted_bytes(2));
    } // the last handle closes it
    VBFFile file = open(VFile::append_mode);
    add(*file.shared(), counted_bytes(3));
    const Stack grown = file->add_stack(false);
    grown->create({2, 0}, vela_dt_uint8);
    grown->write(vela_dt_uint8, "abcd", nullptr, 4);
    EXPECT_EQ(samples_of(*file->get_stack(0)), counted_bytes(1)); // old ones can be read meanwhile
    grown->write(vela_dt_uint8, "ef", nullptr, 2);
    file->close();
    VBFFile opened = open(VFile::read_mode);
    ASSERT_EQ(opened->number_of_stacks(), 4u);
    for (std::uint64_t index = 0; index < 3; ++index)
        EXPECT_EQ(samples_of(*opened->get_stack(index)), counted_bytes(index + 1));
    EXPECT_EQ(samples_of(*opened->get_stack(3)), (Bytes{'a', 'b', 'c', 'd', 'e', 'f'}));
}

TEST_F(Append, OfNothingChangesNothingInVersion1)
{
    put_version_1();
    open(VFile::append_mode)->close();
    EXPECT_EQ(get_bytes(path("old.vbf")), VbfBytes().file_header(1, "old").bytes());
}

TEST_F(Append, GoesOnBehindWhatFollowsTheLastStack)
{
    put_version_1();
    {
        VBFFile file = open(VFile::append_mode);
        add(*file.shared(), counted_bytes(5));
    }
    Bytes bytes = get_bytes(path("old.vbf"));
    const std::uint64_t end = bytes.size() + 100;
    bytes.resize(end, 0xdd);
    put_bytes(path("old.vbf"), bytes);
    {
        VBFFile file = open(VFile::append_mode);
        add(*file.shared(), counted_bytes(6));
    }
    EXPECT_EQ(on_disk().u64(29 + stack_next_at), end);
    EXPECT_EQ(samples_of(*open(VFile::read_mode)->get_stack(1)), counted_bytes(6));
}

TEST_F(Append, ToAFileOfVersion2OverwritesItsMagicWhenItIsClosed)
{
    {
        VBFFile file = open(VFile::write_mode);
        add(*file.shared(), counted_bytes(5));
    }
    const ByteMap before = on_disk();
    {
        VBFFile file = open(VFile::append_mode);
        add(*file.shared(), counted_bytes(6));
        EXPECT_EQ(on_disk().text(0, 8), "VELA_BF\n");
        file->close();
    }
    const ByteMap map = on_disk();
    const std::uint64_t second = map.u64(first_record_pos + stack_next_at);
    EXPECT_EQ(second, before.size()); // behind the old dictionary
    const std::uint64_t dictionary = map.u64(second + stack_header_size + 6 + footer_stack_end_pos_at);
    EXPECT_EQ(map.u64(0), dictionary);
    EXPECT_EQ(map.u64(26), before.u64(26)); // the old one
    EXPECT_EQ(map.text(8, 2), "\xff\xff");
    std::uint64_t at = dictionary;
    EXPECT_EQ(map.string(at), "ome_xml");
    EXPECT_VELA_ERROR(open(VFile::read_mode), -4, "No VBF file header found!");

    // The magic and the field are all that is wrong.
    Bytes bytes = get_bytes(path("old.vbf"));
    const std::string magic = "VELA_BF\n";
    for (std::size_t i = 0; i < 8; ++i)
    {
        bytes[26 + i] = bytes[i];
        bytes[i] = static_cast<unsigned char>(magic[i]);
    }
    put_bytes(path("old.vbf"), bytes);
    VBFFile repaired = open(VFile::read_mode);
    ASSERT_EQ(repaired->number_of_stacks(), 2u);
    EXPECT_EQ(samples_of(*repaired->get_stack(0)), counted_bytes(5));
    EXPECT_EQ(samples_of(*repaired->get_stack(1)), counted_bytes(6));
}

TEST_F(Append, CannotChangeTheDescriptionOfTheFile)
{
    put_version_1();
    VBFFile file = open(VFile::append_mode);
    EXPECT_VELA_ERROR(file->set_file_desc("new"), -1, "Header already written. Cannot set file description!");
}

TEST_F(Append, ThatFailsLeavesTheOldStacks)
{
    put_version_1();
    {
        VBFFile file = open(VFile::append_mode);
        add(*file.shared(), counted_bytes(5));
    }
    {
        VBFFile file = open(VFile::append_mode);
        const Stack stack = file->add_stack(false);
        stack->create({100}, vela_dt_uint8);
        stack->write(vela_dt_uint8, "ab", nullptr, 2);
        EXPECT_VELA_ERROR(file->close(), -1, "Not enough samples written!");
    }
    VBFFile opened = open(VFile::read_mode);
    ASSERT_EQ(opened->number_of_stacks(), 1u);
    EXPECT_EQ(samples_of(*opened->get_stack(0)), counted_bytes(5));
}

}
