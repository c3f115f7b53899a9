// Stacks that are added to files that are there.
#include "binary_io/vbf_writing.h"
#include "support/descriptor.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

class Appending : public VbfWritingTest
{
protected:
    typedef std::vector<std::string> Names;

    void put_file(const Bytes& bytes)
    {
        before = bytes;
        file_path = path("old.vbf");
        put_bytes(file_path, bytes);
    }

    void open_to_append() { file.open(file_name(file_path), VFile::append_mode); }

    /// A file of an old version with two stacks, which have no footer.
    VbfBytes old_file(std::uint32_t format_version)
    {
        VbfBytes built;
        built.file_header(format_version, "an old file");
        built.stack({.name = "one", .format_version = 0});
        last_pos = built.stack({.name = "two", .format_version = 0});
        return built;
    }

    /// A file of version 2 that the library wrote.
    void write_new_file(const std::vector<std::string>& names)
    {
        begin_file();
        for (const std::string& name : names)
            add_whole(name);
        file->close();
        before = content();
    }

    /// Adds the stack "new" to the file that begins at `start` of a stream.
    void append_new_from(off_t start)
    {
        const Descriptor descriptor(file_path, O_RDWR);
        ASSERT_EQ(::lseek(descriptor.get(), start, SEEK_SET), start);
        file->attach(descriptor.handle(), VFile::append_mode);
        add_whole("new");
        EXPECT_EQ(vela_descriptor_from_handle(file->detach()), descriptor.get());
    }

    /// All old bytes are as they were, but for 8 at `link_pos`, which lead to the end of the old file.
    void expect_linked_behind(std::uint64_t link_pos)
    {
        Bytes expected;
        append_u64(expected, before.size());
        const auto at = static_cast<std::size_t>(link_pos);
        Bytes now = content();
        ASSERT_GT(now.size(), before.size());
        EXPECT_EQ(slice(now, at, at + 8), expected);
        std::copy_n(before.begin() + static_cast<std::ptrdiff_t>(at), 8, now.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_EQ(slice(now, 0, before.size()), before);
    }

    Bytes before;
    std::uint64_t last_pos = 0;
};

TEST_F(Appending, LinksNewStacksBehindTheOldOnesAndWritesNoDictionary)
{
    for (const std::uint32_t version : {0u, 1u})
    {
        put_file(old_file(version).bytes());
        open_to_append();
        EXPECT_EQ(file->get_mode(), VFile::append_mode);
        EXPECT_EQ(file->number_of_stacks(), 2u);
        add_whole("three");
        EXPECT_EQ(file->number_of_stacks(), 3u);
        const Stack last = add({300});
        last->set_name("four");
        last->set_compression(1, 6);
        write_bytes(last, sparse_bytes(300));
        file->close();
        expect_linked_behind(last_pos + 360);
        const WrittenFile written = on_disk();
        EXPECT_EQ(written.stack_names(), (Names{"one", "two", "three", "four"}));
        EXPECT_EQ(written.format_version, version);
        EXPECT_EQ(written.stacks[2].pos, before.size());
        EXPECT_EQ(written.stacks[3].pos, written.stacks[2].end);
        EXPECT_EQ(written.stacks[3].end, content().size());
        EXPECT_EQ(complaints_about(written.stacks[2]) + complaints_about(written.stacks[3]), "");
        EXPECT_EQ(written.stacks[3].samples(), sparse_bytes(300));
    }
}

TEST_F(Appending, ToAFileOfVersionOneWithoutStacksFillsItsFirstPosition)
{
    put_file(VbfBytes().file_header(1, "none yet").bytes());
    open_to_append();
    add_whole("first");
    file->close();
    expect_linked_behind(14);
    EXPECT_EQ(on_disk().stack_names(), Names{"first"});
}

TEST_F(Appending, BeginsAtTheEndOfTheFileAndNotOfItsLastStack)
{
    put_file(old_file(1).gap(100).bytes());
    open_to_append();
    add_whole("three");
    file->close();
    expect_linked_behind(last_pos + 360);
    EXPECT_EQ(on_disk().stacks.at(2).pos, before.size());
}

TEST_F(Appending, NothingToAFileOfVersionOneChangesNothing)
{
    put_file(old_file(1).bytes());
    open_to_append();
    file->finish();
    file->close();
    EXPECT_EQ(content(), before);
}

TEST_F(Appending, CanBeDoneAgainAndAgainToAFileOfVersionOne)
{
    put_file(VbfBytes().file_header(1).bytes());
    Names names;
    for (int i = 0; i < 5; ++i)
    {
        open_to_append();
        EXPECT_EQ(file->number_of_stacks(), static_cast<std::uint64_t>(i));
        names.push_back("stack " + std::to_string(i));
        add_whole(names.back());
        file->close();
        EXPECT_EQ(complaints_about(on_disk()), "");
        EXPECT_EQ(on_disk().stack_names(), names);
    }
    file.open(file_name(file_path), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 5u);
}

TEST_F(Appending, ALinkIsWrittenBehindTheFooterHereToo)
{
    put_file(old_file(1).bytes());
    open_to_append();
    const Stack stack = add({4, 3});
    stack->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 11);
    EXPECT_EQ(slice(content(), 0, before.size()), before);
    stack->write(vela_dt_uint8, counted_bytes(12).data() + 11, nullptr, 1);
    expect_linked_behind(last_pos + 360);
}

TEST_F(Appending, AStackThatIsNotCompleteStaysOutside)
{
    put_file(old_file(1).bytes());
    open_to_append();
    add({4, 3})->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 5);
    EXPECT_VELA_ERROR(file->close(), -1, "Not enough samples written!");
    file.reset();
    EXPECT_EQ(slice(content(), 0, before.size()), before);
}

TEST_F(Appending, TheDescriptionOfTheFileCannotBeChanged)
{
    put_file(old_file(1).bytes());
    open_to_append();
    EXPECT_FILE_ERROR(file->set_file_desc("new"), "set_file_desc", -1,
                      "Header already written. Cannot set file description!");
    std::string text;
    file->get_file_desc(text);
    EXPECT_EQ(text, "an old file");
}

TEST_F(Appending, OldStacksCannotBeWritten)
{
    put_file(old_file(1).bytes());
    open_to_append();
    const Stack old = file->get_stack(0);
    EXPECT_EQ(old->get_state(), 0);
    EXPECT_STACK_ERROR(old->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 12), "write", -1,
                       "Stack is already complete. Invalid call to write()!");
    EXPECT_VELA_ERROR(old->create(Sizes{2}, vela_dt_uint8), -1, "Cannot set data layout!");
    EXPECT_VELA_ERROR(old->set_name("new"), -1, "Cannot set values. Object locked!");
}

TEST_F(Appending, OldStacksAreReadMeanwhile)
{
    VbfBytes built;
    built.file_header(1);
    built.stack({.name = "old", .format_version = 0, .data = numbered_bytes(12)});
    put_file(built.bytes());
    open_to_append();
    const Stack old = file->get_stack(0);
    const Stack added = add({12});
    for (std::size_t i = 0; i < 12; ++i)
    {
        added->write(vela_dt_uint8, numbered_bytes(12).data() + i, nullptr, 1);
        std::uint64_t pos = i;
        unsigned char sample = 0xCD;
        old->read(vela_dt_uint8, &sample, nullptr, 1, pos);
        EXPECT_EQ(sample, i + 1);
    }
    file->close();
    EXPECT_EQ(on_disk().stacks.at(0).data, numbered_bytes(12));
    EXPECT_EQ(on_disk().stacks.at(1).data, numbered_bytes(12));
}

TEST_F(Appending, AFileThatIsNoVbfFileIsRefusedAndLeft)
{
    put_file(noisy_bytes(200));
    EXPECT_FILE_ERROR(open_to_append(), "attach_imp", -4, "No VBF file header found!");
    EXPECT_FALSE(file->is_open());
    EXPECT_EQ(content(), before);
}

TEST_F(Appending, AnAttachedStreamThatIsNoVbfFileIsLeftByDetachToo)
{
    put_file(Bytes(300, 'x'));
    const Descriptor descriptor(file_path, O_RDWR);
    EXPECT_FILE_ERROR(file->attach(descriptor.handle(), VFile::append_mode), "attach_imp", -4,
                      "No VBF file header found!");
    EXPECT_VELA_ERROR(file->add_stack(false), -1, "File not open for writing!");
    EXPECT_EQ(vela_descriptor_from_handle(file->detach()), descriptor.get());
    EXPECT_EQ(content(), before);
}

TEST_F(Appending, ToVersionTwoWritesTheNewDictionaryPositionOverTheMagic)
{
    write_new_file({"one", "two"});
    const std::uint64_t last = on_disk().stacks.at(1).pos;
    open_to_append();
    EXPECT_EQ(file->number_of_stacks(), 2u);
    add_whole("three");
    EXPECT_EQ(slice(content(), 0, 34), slice(before, 0, 34)) << "not before it is closed";
    const std::size_t new_dictionary = content().size();
    file->close();

    const Bytes now = content();
    Bytes start;
    append_u64(start, new_dictionary);
    EXPECT_EQ(slice(now, 0, 8), start);
    EXPECT_EQ(slice(now, 8, 34), slice(before, 8, 34)) << "the old dictionary position stays";

    // With its magic the file is one again.
    Bytes mended = now;
    std::copy_n(before.begin(), 8, mended.begin());
    const WrittenFile written = read_written(mended);
    EXPECT_EQ(written.stack_names(), (Names{"one", "two", "three"}));
    EXPECT_EQ(written.stacks.at(1).next_stack_pos, before.size());
    EXPECT_EQ(written.stacks.at(2).pos, before.size());
    EXPECT_EQ(written.stacks.at(2).end, new_dictionary);
    EXPECT_EQ(written.stacks.at(1).pos, last);
    Bytes dictionary;
    append_string(dictionary, "ome_xml");
    append_string(dictionary, plain_document());
    append_u32(dictionary, 0);
    EXPECT_EQ(slice(now, new_dictionary, now.size()), dictionary);

    EXPECT_FILE_ERROR(VBFFile(file_name(file_path), VFile::read_mode), "attach_imp", -4, "No VBF file header found!");
}

TEST_F(Appending, NothingToVersionTwoDestroysTheMagicToo)
{
    write_new_file({"one"});
    open_to_append();
    file->close();
    Bytes start;
    append_u64(start, before.size());
    EXPECT_EQ(slice(content(), 0, 8), start);
    EXPECT_GT(content().size(), before.size());
}

TEST_F(Appending, ToVersionTwoKeepsTheOtherPairsOfTheDictionary)
{
    VbfBytes built;
    built.file_header(2, "");
    built.stack({.name = "one", .format_version = 0});
    built.dictionary({{"z", "last"}, {"ome_xml", "replaced"}, {"a", "first"}});
    put_file(built.bytes());
    open_to_append();
    file->set_creator("the second writer");
    file->close();
    Bytes mended = content();
    std::copy_n(before.begin(), 8, mended.begin());
    Bytes position;
    append_u64(position, before.size());
    std::copy_n(position.begin(), 8, mended.begin() + 26);
    const WrittenPairs pairs = read_written(mended).dictionary;
    ASSERT_EQ(pairs.size(), 3u);
    EXPECT_EQ(pairs[0], (std::pair<std::string, std::string>("a", "first")));
    EXPECT_EQ(pairs[1].first, "ome_xml");
    EXPECT_NE(pairs[1].second.find("<ome:OME Creator=\"the second writer\" xmlns:ome="), std::string::npos);
    EXPECT_EQ(pairs[2], (std::pair<std::string, std::string>("z", "last")));
}

TEST_F(Appending, ToAnAttachedFileOfVersionOneCountsFromTheStartOfTheStream)
{
    VbfBytes built(50);
    built.file_header(1);
    const std::uint64_t old = built.stack({.name = "old", .format_version = 0});
    put_file(built.bytes());
    append_new_from(50);
    expect_linked_behind(old + 360);
    EXPECT_EQ(read_written(content(), 50).stack_names(), (Names{"old", "new"}));
}

TEST_F(Appending, ToAnAttachedFileOfVersionOneWithoutStacksFillsItsFirstPosition)
{
    VbfBytes built(50);
    built.file_header(1);
    put_file(built.bytes());
    append_new_from(50);
    expect_linked_behind(50 + 14);
    EXPECT_EQ(read_written(content(), 50).stack_names(), (Names{"new"}));
}

/// The object goes on to another file with nothing of the one before.
TEST_F(Appending, ThePairsOfOneFileDoNotComeIntoTheNext)
{
    VbfBytes built;
    built.file_header(2, "");
    built.dictionary({{"a", "first"}});
    put_file(built.bytes());
    file.open(file_name(file_path), VFile::read_mode);
    file->close();
    file_path = path("next.vbf");
    file->open(file_name(file_path), VFile::write_mode);
    const WrittenPairs pairs = close_file().dictionary;
    ASSERT_EQ(pairs.size(), 1u);
    EXPECT_EQ(pairs[0].first, "ome_xml");
}

} // namespace
