// What docs/format.md says is what is so: its tables, and its examples byte by byte.
#include "binary_io/written_vbf.h"
#include "hex_dump.h"
#include "page_tables.h"

#include "sources/binary_io/StackRecord.h"

#include <VelaBinaryIO/VBFHeaders.h>
#include <si/value.h>

#include <bit>
#include <cstddef>
#include <functional>
#include <map>

using namespace vela_test;

namespace {

/// The single values of "1, 2, 3 times 0".
std::vector<std::string> values_of(const std::string& text)
{
    std::vector<std::string> values;
    for (const std::string& piece : pieces_of(text, ','))
    {
        const std::string times = " times ";
        const std::size_t at = piece.find(times);
        const std::size_t count = at == std::string::npos ? 1 : std::stoull(piece.substr(0, at));
        values.insert(values.end(), count, at == std::string::npos ? piece : piece.substr(at + times.size()));
    }
    return values;
}

std::string unquoted(const std::string& text)
{
    EXPECT_TRUE(text.size() >= 2 && text.front() == '"' && text.back() == '"') << text;
    return text.substr(1, text.size() - 2);
}

void append_signed(Bytes& bytes, const std::string& number)
{
    append_number(bytes, static_cast<std::uint64_t>(std::stoll(number)), 4);
}

void append_fraction(Bytes& bytes, const std::string& fraction)
{
    const std::vector<std::string> parts = pieces_of(fraction, '/');
    ASSERT_EQ(parts.size(), 2u) << fraction;
    append_signed(bytes, parts[0]);
    append_signed(bytes, parts[1]);
}

void append_double(Bytes& bytes, const std::string& number)
{
    append_number(bytes, std::bit_cast<std::uint64_t>(std::stod(number)), 8);
}

void append_neutral_unit(Bytes& bytes)
{
    for (int i = 0; i < 9; ++i)
        append_fraction(bytes, "0/1");
    append_double(bytes, "1");
}

void append_string(Bytes& bytes, const std::string& text)
{
    append_u32(bytes, text.size());
    bytes.insert(bytes.end(), text.begin(), text.end());
}

using Append = std::function<void(Bytes&, const std::string&)>;

/// How the values of each kind lie in a file.
const std::map<std::string, Append>& kinds()
{
    static const std::map<std::string, Append> all = {
        {"u16", [](Bytes& bytes, const std::string& value) { append_number(bytes, std::stoull(value), 2); }},
        {"u32", [](Bytes& bytes, const std::string& value) { append_number(bytes, std::stoull(value), 4); }},
        {"u64", [](Bytes& bytes, const std::string& value) { append_number(bytes, std::stoull(value), 8); }},
        {"i32", append_signed},
        {"f64", append_double},
        {"fraction", append_fraction},
        {"unit",
         [](Bytes& bytes, const std::string& value)
         {
             EXPECT_EQ(value, "the neutral one");
             append_neutral_unit(bytes);
         }},
    };
    return all;
}

/// The bytes that a row of the example promises; `xml` are the blocks still to come.
Bytes bytes_of(const Row& row, std::vector<std::string>& xml)
{
    Bytes bytes;
    if (row.kind == "bytes")
    {
        for (const std::string& byte : pieces_of(row.value, ' '))
            bytes.push_back(static_cast<unsigned char>(std::stoul(byte, nullptr, 16)));
    }
    else if (row.kind == "text")
    {
        const std::string text = unquoted(row.value);
        bytes.assign(text.begin(), text.end());
    }
    else if (row.kind == "string")
        append_string(bytes, unquoted(row.value));
    else if (row.kind == "XML")
    {
        // A block ends with a line feed, whether the document does or not.
        bytes.assign(xml.front().begin(), xml.front().end());
        if (bytes.size() == row.width + 1)
            bytes.pop_back();
        xml.erase(xml.begin());
    }
    else
    {
        for (const std::string& value : values_of(row.value))
            kinds().at(row.kind)(bytes, value);
    }
    return bytes;
}

/// Writes the example of the page.
class FormatExample : public WritingTest
{
protected:
    Bytes written()
    {
        file->set_file_desc("Example");
        const Stack stack = add({3, 2}, vela_dt_uint16);
        stack->set_name("tiny");
        stack->set_description("3 by 2");
        stack->set_len({3.0, 5.0});
        stack->set_off({10.0, 0.25});
        stack->set_labels({"X", "Y"});
        stack->set_units(0, si::value("1 um"));
        stack->set_units(1, si::value("1 um"));
        stack->set_data_units(si::value("1 V"));
        stack->set_col_positions(1, {-1.0, 1.5});
        stack->set_col_labels(0, {"left", "", "right"});
        const double gain = 1.5;
        stack->set_tag("gain", vela_dt_double, &gain);
        stack->set_tag("operator", "Ada");
        const std::uint16_t samples[] = {10, 20, 30, 40, 50, 1000};
        stack->write(vela_dt_uint16, samples, nullptr, VBFStackInterface::all_samples);
        file->close();
        return get_bytes(path("written.vbf"));
    }
};

TEST_F(FormatExample, DumpIsWhatTheLibraryWrites)
{
    EXPECT_EQ(blocks_behind("## An example", "hex").at(0), dump_of(written()));
}

TEST_F(FormatExample, TableExplainsEachByte)
{
    const Bytes file_bytes = written();
    std::vector<std::string> xml = blocks_behind("### XML of the example", "xml");
    const std::vector<Row> rows = table_behind("## An example");
    expect_complete(rows, file_bytes.size());
    for (const Row& row : rows)
    {
        ASSERT_LE(row.position + row.width, file_bytes.size()) << row.field;
        const auto begin = file_bytes.begin() + static_cast<std::ptrdiff_t>(row.position);
        const Bytes lying(begin, begin + static_cast<std::ptrdiff_t>(row.width));
        EXPECT_EQ(dump_of(bytes_of(row, xml)), dump_of(lying)) << row.position << ", " << row.field;
    }
    EXPECT_TRUE(xml.empty());
}

TEST_F(FormatExample, PageTellsItsSize)
{
    EXPECT_THAT(text_of("docs/format.md"),
                testing::HasSubstr("The " + std::to_string(written().size()) + " bytes of the file."));
}

TEST(FormatDocument, TablesHaveNoGaps)
{
    expect_complete(table_behind("## File header"), sizeof(VBFFileHeader));
    expect_complete(table_behind("## Stack header"), sizeof(VBFStackHeader));
    expect_complete(table_behind("## Footer"), sizeof(Vela::detail::StackFooter));
}

using Offsets = std::vector<std::pair<std::string, std::uint64_t>>;

Offsets listed_behind(const std::string& heading)
{
    Offsets listed;
    for (const Row& row : table_behind(heading))
        listed.emplace_back(row.field, row.position);
    return listed;
}

#define LISTED(RECORD, FIELD)                                                                                          \
    {                                                                                                                  \
        "`" #FIELD "`", offsetof(RECORD, FIELD)                                                                        \
    }

TEST(FormatDocument, TablesNameTheFieldsOfTheHeaders)
{
    EXPECT_EQ(listed_behind("## File header"),
              (Offsets{LISTED(VBFFileHeader, magic), LISTED(VBFFileHeader, format_version),
                       LISTED(VBFFileHeader, first_stack_pos), LISTED(VBFFileHeader, description_length)}));
    EXPECT_EQ(listed_behind("## Stack header"),
              (Offsets{LISTED(VBFStackHeader, magic), LISTED(VBFStackHeader, format_version),
                       LISTED(VBFStackHeader, rank), LISTED(VBFStackHeader, dimension_sizes),
                       LISTED(VBFStackHeader, lengths), LISTED(VBFStackHeader, offsets),
                       LISTED(VBFStackHeader, data_type), LISTED(VBFStackHeader, compression_type),
                       LISTED(VBFStackHeader, compression_level), LISTED(VBFStackHeader, name_length),
                       LISTED(VBFStackHeader, description_length), LISTED(VBFStackHeader, data_present),
                       LISTED(VBFStackHeader, data_length_on_disk), LISTED(VBFStackHeader, next_stack_pos)}));
}

TEST(FormatDocument, TableNamesTheFieldsOfTheFooter)
{
    using Vela::detail::StackFooter;
    EXPECT_EQ(listed_behind("## Footer"),
              (Offsets{LISTED(StackFooter, footer_size), LISTED(StackFooter, has_col_positions),
                       LISTED(StackFooter, has_col_labels), LISTED(StackFooter, metadata_length),
                       LISTED(StackFooter, data_units), LISTED(StackFooter, dimension_units),
                       LISTED(StackFooter, flush_point_count), LISTED(StackFooter, flush_block_size),
                       LISTED(StackFooter, tag_dictionary_length), LISTED(StackFooter, stack_end_pos),
                       LISTED(StackFooter, required_reader_version)}));
}

} // namespace
