// What docs/format.md and docs/guide-reading.md say is what is so.
#include "support/temporary_folder.h"

#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include <cstddef>
#include <cstring>
#include <sstream>

using namespace vela_test;

namespace {

std::string text_of(const std::string& path_in_tree)
{
    const Bytes bytes = get_bytes(std::string(VELA_SOURCE_ROOT) + "/" + path_in_tree);
    return std::string(bytes.begin(), bytes.end());
}

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

/// A fenced block, with the line that stands before its fence.
struct Block
{
    std::string line_before;
    std::string kind;
    std::string text;
};

std::vector<Block> blocks_of(const std::string& document)
{
    std::vector<Block> blocks;
    std::string previous;
    bool inside = false;
    for (const std::string& line : lines_of(document))
    {
        const bool fence = line.rfind("```", 0) == 0;
        if (fence && !inside)
            blocks.push_back({previous, line.substr(3), ""});
        else if (!fence && inside)
            blocks.back().text += line + "\n";
        inside = inside != fence;
        previous = line;
    }
    return blocks;
}

/// The bytes of lines "offset  xx xx ...  |text|"; each line must stand at its offset and show its text.
Bytes bytes_of_hex_dump(const std::string& dump)
{
    Bytes bytes;
    for (const std::string& line : lines_of(dump))
    {
        std::istringstream in(line.substr(0, line.find('|')));
        std::size_t offset = 0;
        in >> std::hex >> offset;
        EXPECT_EQ(offset, bytes.size()) << line;
        std::string shown;
        for (unsigned byte = 0; in >> byte;)
        {
            bytes.push_back(static_cast<unsigned char>(byte));
            shown += byte >= 0x20 && byte < 0x7f ? static_cast<char>(byte) : '.';
        }
        EXPECT_THAT(line, testing::EndsWith("|" + shown + "|"));
    }
    return bytes;
}

Bytes example_bytes()
{
    for (const Block& block : blocks_of(text_of("docs/format.md")))
    {
        if (block.kind == "hex")
            return bytes_of_hex_dump(block.text);
    }
    throw std::runtime_error("docs/format.md has no hex block");
}

/// One row "| offset | width | `name` | ...".
struct Row
{
    std::uint64_t offset;
    std::uint64_t width;
    std::string name;
};

/// The rows of the first table of numbers behind `heading`.
std::vector<Row> table_behind(const std::string& heading)
{
    std::vector<Row> rows;
    bool found = false;
    for (const std::string& line : lines_of(text_of("docs/format.md")))
    {
        found = found || line == heading;
        Row row = {};
        char bar = 0;
        std::istringstream in(line);
        if (found && in >> bar >> row.offset >> bar >> row.width >> bar && bar == '|' && in >> row.name)
            rows.push_back(row);
        else if (!rows.empty())
            break;
    }
    return rows;
}

/// The rows follow each other without a gap and end at `size`.
void expect_complete(const std::vector<Row>& rows, std::uint64_t size)
{
    std::uint64_t position = 0;
    for (const Row& row : rows)
    {
        EXPECT_EQ(row.offset, position) << row.name;
        position = row.offset + row.width;
    }
    EXPECT_EQ(position, size);
}

class FormatDocumentTest : public FolderTest
{
protected:
    void SetUp() override
    {
        put_bytes(path("example.vbf"), example_bytes());
        file.open(file_name(path("example.vbf")), VFile::read_mode);
        chain = scan_chain(file);
        ASSERT_EQ(chain.stacks.size(), 1u);
    }

    VFile file;
    VBFChain chain;
};

} // namespace

TEST_F(FormatDocumentTest, FileHeaderOfTheExampleIsAsExplained)
{
    EXPECT_EQ(std::uint32_t{chain.file.header.format_version}, 2u);
    EXPECT_EQ(std::uint64_t{chain.file.header.first_stack_pos}, 41u);
    EXPECT_EQ(chain.file.description, "Example");
    EXPECT_EQ(chain.file.meta_data_pos, 417u);
}

TEST_F(FormatDocumentTest, StackHeaderOfTheExampleIsAsExplained)
{
    const VBFChainEntry& stack = chain.stacks[0];
    EXPECT_EQ(stack.position, 41u);
    EXPECT_EQ(stack.data_pos, 413u);
    EXPECT_EQ(stack.name, "tiny");
    EXPECT_EQ(stack.description, "");
    // Everything from the rank to the next position, as the table of the page lists it.
    std::uint32_t expected_words[92] = {};
    std::memcpy(expected_words, "VELA_BF_STACK\n\xff\xff", 16);
    expected_words[5] = 2;                                // rank
    expected_words[6] = expected_words[7] = 2;            // sizes
    expected_words[22] = expected_words[24] = 0x40000000; // lengths: high half of 2.0
    expected_words[81] = 1;                               // data_type
    expected_words[84] = 4;                               // name_length
    expected_words[86] = 1;                               // data_present
    expected_words[88] = 4;                               // data_length_on_disk
    static_assert(sizeof expected_words == sizeof(VBFStackHeader));
    EXPECT_EQ(std::memcmp(&stack.header, expected_words, sizeof expected_words), 0);
}

TEST_F(FormatDocumentTest, SamplesOfTheExampleAreAsExplained)
{
    const VBFChainEntry& stack = chain.stacks[0];
    VZippedSegment segment;
    segment.init_r(file, 0, stack.data_pos, stack.header.data_length_on_disk, 4);
    Bytes samples(4);
    segment.read(samples.data(), 4);
    EXPECT_EQ(samples, (Bytes{10, 20, 30, 40}));
}

TEST_F(FormatDocumentTest, DictionaryEndsTheExample)
{
    VBFDictionary dictionary;
    file.seek(chain.file.meta_data_pos);
    read_dictionary(file, dictionary);
    EXPECT_EQ(dictionary, (VBFDictionary{{"note", "2x2"}}));
    EXPECT_EQ(file.tell(), example_bytes().size());
}

TEST(FormatDocument, TablesHaveNoGaps)
{
    expect_complete(table_behind("## File header"), sizeof(VBFFileHeader));
    expect_complete(table_behind("## Stack header"), sizeof(VBFStackHeader));
    expect_complete(table_behind("## An example"), example_bytes().size());
}

TEST(FormatDocument, TablesNameTheFieldsOfTheRecords)
{
    const std::vector<Row> rows = table_behind("## Stack header");
    std::vector<std::pair<std::string, std::uint64_t>> listed;
    for (const Row& row : rows)
        listed.emplace_back(row.name, row.offset);
    const std::vector<std::pair<std::string, std::uint64_t>> expected = {
        {"`magic`", offsetof(VBFStackHeader, magic)},
        {"`format_version`", offsetof(VBFStackHeader, format_version)},
        {"`rank`", offsetof(VBFStackHeader, rank)},
        {"`dimension_sizes`", offsetof(VBFStackHeader, dimension_sizes)},
        {"`lengths`", offsetof(VBFStackHeader, lengths)},
        {"`offsets`", offsetof(VBFStackHeader, offsets)},
        {"`data_type`", offsetof(VBFStackHeader, data_type)},
        {"`compression_type`", offsetof(VBFStackHeader, compression_type)},
        {"`compression_level`", offsetof(VBFStackHeader, compression_level)},
        {"`name_length`", offsetof(VBFStackHeader, name_length)},
        {"`description_length`", offsetof(VBFStackHeader, description_length)},
        {"`data_present`", offsetof(VBFStackHeader, data_present)},
        {"`data_length_on_disk`", offsetof(VBFStackHeader, data_length_on_disk)},
        {"`next_stack_pos`", offsetof(VBFStackHeader, next_stack_pos)},
    };
    EXPECT_EQ(listed, expected);
}

// A block behind a line "<!-- path -->" is the content of that file.
TEST(ReadingGuide, ItsCodeAndOutputAreThoseOfTheExamples)
{
    std::vector<std::string> quoted;
    for (const Block& block : blocks_of(text_of("docs/guide-reading.md")))
    {
        ASSERT_THAT(block.line_before, testing::MatchesRegex("<!-- [a-z_./]+ -->"));
        const std::string path = block.line_before.substr(5, block.line_before.size() - 9);
        EXPECT_EQ(block.text, text_of(path)) << path;
        quoted.push_back(path);
    }
    EXPECT_THAT(quoted, testing::IsSupersetOf(
                            {"examples/list_stacks.cpp", "examples/read_plane.cpp", "examples/write_segment.cpp"}));
}
