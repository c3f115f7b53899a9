// What open says of a stack record that is damaged behind its data.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"

using namespace vela_test;

namespace {

class DamagedRecordTest : public WritingTest
{
protected:
    /// The bytes of a file with one stack.
    DamagedRecordTest()
    {
        add_complete({4, 3});
        const ByteMap written = closed();
        bytes = get_bytes(path("written.vbf"));
        footer = first_record_pos + stack_header_size + written.u64(first_record_pos + 352);
    }

    void set(std::uint64_t position, std::uint64_t value, int width_bytes)
    {
        for (int i = 0; i < width_bytes; ++i)
            bytes.at(position + static_cast<std::uint64_t>(i)) = static_cast<unsigned char>(value >> (8 * i));
    }

    void open()
    {
        put_bytes(path("damaged.vbf"), bytes);
        file.open(file_name(path("damaged.vbf")), VFile::read_mode);
    }

    void expect_error(int id, const std::string& text)
    {
        EXPECT_VELA_ERROR_IN(open(), "VBFStackImp::read_info", vbf_sources, id, text);
    }

    Bytes bytes;
    std::uint64_t footer;
};

} // namespace

TEST_F(DamagedRecordTest, TheBytesThatAreDamagedHereOpen)
{
    open();
    EXPECT_EQ(file->get_stack(0)->get_sizes(), Sizes({4, 3}));
}

TEST_F(DamagedRecordTest, AFooterHoldsItsOwnSize)
{
    for (const std::uint64_t size : {0U, 1U, 3U})
    {
        set(footer, size, 4);
        expect_error(-4, "Invalid footer_size in stack footer!");
    }
}

TEST_F(DamagedRecordTest, FlushPointsThatCannotBeCounted)
{
    set(footer + footer_flush_point_count_at, std::uint64_t{1} << 61, 8);
    expect_error(-4, "Invalid flush_point_count in stack footer!");
    set(footer + footer_flush_point_count_at, (std::uint64_t{1} << 61) - 1, 8);
    EXPECT_VELA_ERROR(open(), -3, "Failed reading -8 bytes from file!");
    set(footer + footer_flush_point_count_at, std::uint64_t{1} << 28, 8);
    EXPECT_VELA_ERROR(open(), -3, "Failed reading -2147483648 bytes from file!");
}

TEST_F(DamagedRecordTest, ReadersOfOtherVersions)
{
    const std::uint64_t field = footer + footer_required_reader_version_at;
    set(field, 6, 4);
    expect_error(-4, "Cannot read stack with file format reader version 5. Need >= 6!");
    set(field, 0x80000000, 4);
    expect_error(-4, "Cannot read stack with file format reader version 5. Need >= -2147483648!");
    for (const std::uint64_t version : {0U, 5U, 0xffffffffU})
    {
        set(field, version, 4);
        EXPECT_NO_THROW(open()) << version;
    }
}

TEST_F(DamagedRecordTest, ColumnPositionsThatTheFileDoesNotHave)
{
    set(first_record_pos + 24, 1 << 28, 4); // size of axis 0
    set(footer + footer_col_positions_at, 1, 4);
    EXPECT_VELA_ERROR(open(), -3, "Failed reading -2147483648 bytes from file!");
}

TEST_F(DamagedRecordTest, MetadataThatAreNoPropertyXml)
{
    set(footer + stack_footer_size + 8, '?', 1); // behind two empty labels
    try
    {
        open();
        ADD_FAILURE() << "opened";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_id(), -1);
        EXPECT_EQ(error.get_msg().rfind("Invalid metadata found!\nsources/propsxml/", 0), 0U) << error.get_msg();
        EXPECT_NE(error.get_msg().find("\n    Error parsing XML properties:\n"), std::string::npos) << error.get_msg();
    }
}

TEST_F(DamagedRecordTest, TheEndOfTheRecordIsFoundWhereTheFooterDoesNotSayIt)
{
    const std::uint64_t end = ByteMap(bytes).u64(footer + footer_stack_end_pos_at);
    set(footer + footer_stack_end_pos_at, 0, 8);
    open();
    EXPECT_EQ(file->seek_to_end_of_stack(0), end);
    set(footer + footer_stack_end_pos_at, 77, 8);
    open();
    EXPECT_EQ(file->seek_to_end_of_stack(0), 77U);
}

TEST_F(DamagedRecordTest, NaNAmongTheLengthsIsOne)
{
    const std::uint64_t nan = 0x7ff8000000000000;
    for (const std::uint64_t axis : {0U, 2U})
        set(first_record_pos + 84 + 8 * axis, nan, 8);
    set(first_record_pos + 84 + 8, 0, 8);
    open();
    EXPECT_EQ(file->get_stack(0)->get_lengths(), std::vector<double>({1.0, 0.0}));
}

TEST_F(DamagedRecordTest, StacksThatShareTheirBytes)
{
    // Headers one behind the other, all with the one footer: memory could grow with the square of the file.
    const std::uint64_t count = 20;
    const auto at = [this](std::uint64_t position) { return bytes.begin() + static_cast<std::ptrdiff_t>(position); };
    const Bytes header(at(first_record_pos), at(first_record_pos + stack_header_size));
    bytes.erase(at(first_record_pos + stack_header_size), at(footer));
    for (std::uint64_t i = 1; i < count; ++i)
        bytes.insert(at(first_record_pos), header.begin(), header.end());
    const std::uint64_t moved = (count - 1) * stack_header_size;
    footer = first_record_pos + count * stack_header_size;
    set(26, ByteMap(bytes).u64(26) + moved - 12, 8); // the dictionary
    for (std::uint64_t i = 0; i < count; ++i)
    {
        const std::uint64_t position = first_record_pos + i * stack_header_size;
        const std::uint64_t next = position + stack_header_size;
        set(position + 352, footer - next, 8);
        set(position + 360, i + 1 == count ? 0 : next, 8);
    }
    EXPECT_VELA_ERROR_IN(open(), "VBFFileImp::attach_imp", vbf_sources, -4,
                         "Invalid stack position specified in header!");
}
