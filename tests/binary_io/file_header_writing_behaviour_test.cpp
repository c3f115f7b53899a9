// The header of a file that is written, and its dictionary.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

class FileHeaderWriting : public VbfWritingTest
{
protected:
    /// The 26 fixed bytes, the description and `meta_data_pos`.
    static Bytes header(const std::string& description, std::uint64_t first_stack_pos, std::uint64_t meta_data_pos)
    {
        Bytes bytes;
        append_text(bytes, "VELA_BF\n\xff\xff");
        append_u32(bytes, 2);
        append_u64(bytes, first_stack_pos);
        append_u32(bytes, description.size());
        append_text(bytes, description);
        append_u64(bytes, meta_data_pos);
        return bytes;
    }

    /// A header and a dictionary with the document alone.
    static Bytes file_without_stacks(const std::string& description)
    {
        Bytes bytes = header(description, 0, 34 + description.size());
        append_string(bytes, "ome_xml");
        append_string(bytes, plain_document());
        append_u32(bytes, 0);
        return bytes;
    }
};

TEST_F(FileHeaderWriting, NothingIsWrittenByOpening)
{
    begin_file();
    EXPECT_EQ(content(), Bytes());
    file->set_file_desc("cells");
    file->set_creator("a test");
    file->set_default_compression(1, 6);
    EXPECT_EQ(content(), Bytes());
}

TEST_F(FileHeaderWriting, AFileWithoutStacksIsAHeaderAndADictionary)
{
    begin_file();
    file->close();
    EXPECT_EQ(content(), file_without_stacks(""));
}

TEST_F(FileHeaderWriting, AFileWithoutStacksOpensAndHasNone)
{
    begin_file();
    file->close();
    file.open(file_name(file_path), VFile::read_mode);
    EXPECT_EQ(file->number_of_stacks(), 0u);
}

TEST_F(FileHeaderWriting, TheDescriptionStandsBehindTheFixedBytesWithoutATerminator)
{
    for (const std::string& description : {std::string("x"), std::string("two words"), std::string("\0nul\0", 5),
                                           std::string("\xff\xb5\n\t"), std::string(70000, 'd')})
    {
        begin_file();
        file->set_file_desc(description);
        file->close();
        EXPECT_TRUE(content() == file_without_stacks(description)) << description.substr(0, 20);
    }
}

TEST_F(FileHeaderWriting, FinishWritesTheHeaderAndNoMore)
{
    begin_file();
    file->set_file_desc("cells");
    file->finish();
    EXPECT_EQ(content(), header("cells", 0, 0));
    file->finish();
    EXPECT_EQ(content(), header("cells", 0, 0));
    file->close();
    EXPECT_EQ(content(), file_without_stacks("cells"));
}

TEST_F(FileHeaderWriting, TheFirstAddStackWritesTheHeader)
{
    begin_file();
    file->set_file_desc("cells");
    file->add_stack(false);
    EXPECT_EQ(content(), header("cells", 0, 0));
}

TEST_F(FileHeaderWriting, TheDescriptionMayChangeUntilTheHeaderIsWritten)
{
    begin_file();
    file->set_file_desc("first");
    file->set_file_desc("second");
    std::string text = "wrong";
    file->get_file_desc(text);
    EXPECT_EQ(text, "second");
    EXPECT_EQ(close_file().description, "second");
}

TEST_F(FileHeaderWriting, TheDescriptionCannotBeSetBehindTheFirstAddStack)
{
    begin_file();
    file->set_file_desc("kept");
    file->add_stack(false);
    EXPECT_FILE_ERROR(file->set_file_desc("late"), "set_file_desc", -1,
                      "Header already written. Cannot set file description!");
    std::string text;
    file->get_file_desc(text);
    EXPECT_EQ(text, "kept");
}

TEST_F(FileHeaderWriting, TheDescriptionCannotBeSetBehindFinish)
{
    begin_file();
    file->finish();
    EXPECT_FILE_ERROR(file->set_file_desc("late"), "set_file_desc", -1,
                      "Header already written. Cannot set file description!");
    EXPECT_EQ(close_file().description, "");
}

TEST_F(FileHeaderWriting, TheDescriptionOfAFileThatIsNotWrittenCannotBeSet)
{
    EXPECT_FILE_ERROR(file->set_file_desc("none"), "set_file_desc", -9,
                      "Read-only handle specified in write function!");
    begin_file();
    file->set_file_desc("kept");
    file->close();
    file.open(file_name(file_path), VFile::read_mode);
    EXPECT_FILE_ERROR(file->set_file_desc("changed"), "set_file_desc", -9,
                      "Read-only handle specified in write function!");
    std::string text;
    file->get_file_desc(text);
    EXPECT_EQ(text, "kept");
}

TEST_F(FileHeaderWriting, TheFirstStackStandsBehindTheHeader)
{
    begin_file();
    add_whole("a");
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 1u);
    EXPECT_EQ(written.first_stack_pos, 34u);
    EXPECT_EQ(written.stacks[0].data_pos, 403u);
    EXPECT_EQ(written.stacks[0].footer_pos, 415u);
    EXPECT_EQ(written.stacks[0].data_length_on_disk, 12u);
    EXPECT_EQ(slice(content(), 403, 415), numbered_bytes(12));
}

TEST_F(FileHeaderWriting, TheDictionaryHoldsTheDocumentOnceHoweverManyStacksThereAre)
{
    begin_file();
    for (const char* name : {"a", "b", "c"})
        add_whole(name);
    const WrittenFile written = close_file();
    EXPECT_EQ(written.stacks.size(), 3u);
    EXPECT_EQ(written.dictionary, (WrittenPairs{{"ome_xml", plain_document()}}));
}

TEST_F(FileHeaderWriting, TheDictionaryIsWrittenByCloseAlone)
{
    begin_file();
    add_whole("a");
    file->finish();
    EXPECT_EQ(on_disk().meta_data_pos, 0u);
    EXPECT_EQ(on_disk().size_bytes, on_disk().stacks.at(0).end);
    EXPECT_NE(close_file().meta_data_pos, 0u);
}

} // namespace
