// Files that end too early, and lengths that lie.
#include "binary_io/vbf_reading_test.h"

#include <limits>

using namespace vela_test;

namespace {

std::string short_read(std::uint64_t size_bytes)
{
    return "Failed reading " + std::to_string(static_cast<std::int32_t>(size_bytes)) + " bytes from file!";
}

class VbfDamagedRecords : public VbfReadingTest
{
protected:
    /// One of everything.
    static RecordFields rich_record()
    {
        RecordFields fields = bytes_record(counted_bytes(24));
        fields.header.name = "name";
        fields.header.description = "some text";
        fields.header.sizes = {4, 3, 2};
        fields.header.lengths = {1.0, 2.0, 3.0};
        fields.header.offsets = {0.0, 0.0, 0.0};
        fields.labels = {"X", "", "third"};
        fields.col_positions = {{0, {0.0, 1.0, 2.0, 4.0}}, {2, {7.0, 8.0}}};
        fields.col_labels = {{1, {"one", "", "three"}}};
        fields.metadata = position_xml({"a", "b", "c"}, "1 2 3", "3 3", "1 0 0 0 1 0 0 0 1");
        fields.flush_positions = {3, 6, 9};
        fields.flush_block_size = 8;
        fields.tags = {{"k", "value"}, {"second", ""}};
        return fields;
    }

    void expect_short_read(const VbfBytes& built, std::uint64_t size_bytes)
    {
        put(built);
        EXPECT_VELA_ERROR(file->open(file_name(path("test.vbf")), VFile::read_mode), -3, short_read(size_bytes));
        EXPECT_FALSE(file->is_open());
    }

    void expect_bad_header(const VbfBytes& built)
    {
        put(built);
        EXPECT_VELA_ERROR_IN(file->open(file_name(path("test.vbf")), VFile::read_mode), "VBFStackImp::read_info",
                             binary_io_folder, -4, "Stack header not in vbf format!");
        EXPECT_FALSE(file->is_open());
    }

    void expect_format_error(const VbfBytes& built, const std::string& text)
    {
        put(built);
        EXPECT_VELA_ERROR_IN(file->open(file_name(path("test.vbf")), VFile::read_mode), "VBFStackImp::read_info",
                             binary_io_folder, -4, text);
        EXPECT_FALSE(file->is_open());
    }
};

/// The size of the first piece that a file of `size` bytes has not whole, in the order of reading.
std::uint64_t first_missing(const std::vector<VbfRecords::Piece>& pieces, std::uint64_t size)
{
    for (const VbfRecords::Piece& piece : pieces)
        if (piece.begin + piece.size > size)
            return piece.size;
    return 0;
}

} // namespace

TEST_F(VbfDamagedRecords, AFileCutAnywhereNamesTheFieldThatItNoLongerHas)
{
    VbfRecords built(1, "file text");
    built.add_stack_record(rich_record());
    ASSERT_NO_THROW(open(built));
    file->close();
    for (std::size_t size = 0; size < built.size(); ++size)
    {
        SCOPED_TRACE(size);
        VbfRecords cut = built;
        cut.cut_to(size);
        ASSERT_NE(first_missing(built.pieces(), size), 0u);
        expect_short_read(cut, first_missing(built.pieces(), size));
    }
}

TEST_F(VbfDamagedRecords, WithADictionaryAFileCutAnywhereNamesTheFieldOfThatFirst)
{
    VbfRecords built(2, "file text");
    const std::size_t in_header = built.pieces().size();
    built.add_stack_record(bytes_record({1, 2, 3}));
    const std::size_t in_chain = built.pieces().size();
    built.add_dictionary({{"ome_xml", "<a/>"}, {"z", ""}});
    std::vector<VbfRecords::Piece> order(built.pieces().begin(),
                                         built.pieces().begin() + static_cast<std::ptrdiff_t>(in_header));
    order.insert(order.end(), built.pieces().begin() + static_cast<std::ptrdiff_t>(in_chain), built.pieces().end());
    ASSERT_NO_THROW(open(built));
    file->close();
    for (std::size_t size = 0; size < built.size(); ++size)
    {
        SCOPED_TRACE(size);
        VbfRecords cut = built;
        cut.cut_to(size);
        expect_short_read(cut, first_missing(order, size));
    }
}

TEST_F(VbfDamagedRecords, EachByteOfTheMagicCounts)
{
    for (std::uint64_t i = 0; i < 16; ++i)
    {
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(bytes_record({1}));
        built.set_byte_at(places.header + i, 0x40);
        expect_bad_header(built);
    }
}

TEST_F(VbfDamagedRecords, ARankAboveFifteenIsNoStackHeader)
{
    for (const std::uint32_t rank : {16u, 17u, 0x7fffffffu, 0xffffffffu})
    {
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(bytes_record({1}));
        built.set_u32_at(places.header + stack_rank_at, rank);
        expect_bad_header(built);
        built.set_byte_at(places.header + 15, 0);
        expect_bad_header(built);
    }
}

TEST_F(VbfDamagedRecords, ALengthOfATextThatTheFileHasNotIsAFailedRead)
{
    for (const std::uint32_t length : {0x10000u, 0x7fffffffu, 0x80000000u, 0xffffffffu})
    {
        VbfRecords built(1, "text");
        const RecordPlaces places = built.add_stack_record(rich_record());
        for (const std::uint64_t at :
             {built.start_pos() + 22, places.header + stack_name_length_at, places.header + stack_description_length_at,
              places.labels, places.footer + footer_metadata_length_at, places.tags})
        {
            SCOPED_TRACE(at);
            VbfRecords damaged = built;
            damaged.set_u32_at(at, length);
            expect_short_read(damaged, length);
        }
    }
}

TEST_F(VbfDamagedRecords, ALengthInTheDictionaryThatTheFileHasNotIsAFailedRead)
{
    VbfRecords built(2);
    const std::uint64_t dictionary = built.add_dictionary({{"key", "value"}});
    for (const std::uint64_t at : {dictionary, dictionary + 4 + 3})
    {
        VbfRecords damaged = built;
        damaged.set_u32_at(at, 0xfffffffe);
        expect_short_read(damaged, 0xfffffffe);
    }
}

TEST_F(VbfDamagedRecords, AFooterSizeBelowFourIsRefused)
{
    for (const std::uint32_t size : {0u, 1u, 2u, 3u})
    {
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(bytes_record({1}));
        built.set_u32_at(places.footer, size);
        expect_format_error(built, "Invalid footer_size in stack footer!");
    }
}

TEST_F(VbfDamagedRecords, AFooterSizeBeyondTheFileLeavesNoLabels)
{
    for (const std::uint32_t size : {0x7fffffffu, 0xffffffffu})
    {
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(bytes_record({1}));
        built.set_u32_at(places.footer, size);
        expect_short_read(built, 4);
    }
}

TEST_F(VbfDamagedRecords, AFlushPointCountWhoseBytesOverflowIsRefused)
{
    for (const std::uint64_t count : {0x2000000000000000u, 0x2000000000000001u, 0xffffffffffffffffu})
    {
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(bytes_record({1}));
        built.set_u64_at(places.footer + footer_flush_point_count_at, count);
        expect_format_error(built, "Invalid flush_point_count in stack footer!");
    }
}

TEST_F(VbfDamagedRecords, AFlushPointCountBeyondTheFileIsAFailedRead)
{
    for (const std::uint64_t count :
         {std::uint64_t(1000), std::uint64_t(0x10000000), std::uint64_t(0x1fffffffffffffff)})
    {
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(bytes_record({1}));
        built.set_u64_at(places.footer + footer_flush_point_count_at, count);
        expect_short_read(built, count * 8);
    }
}

TEST_F(VbfDamagedRecords, ColumnPositionsBeyondTheFileAreOneFailedRead)
{
    for (const std::uint32_t size : {1000u, 0x10000000u, 0xffffffffu})
    {
        RecordFields fields = bytes_record({1});
        fields.header.sizes = {size};
        fields.col_positions = {{0, {1.0}}};
        VbfRecords built(1);
        built.add_stack_record(fields);
        expect_short_read(built, std::uint64_t(size) * 8);
    }
}

TEST_F(VbfDamagedRecords, ColumnLabelsBeyondTheFileFailWhereTheyEnd)
{
    for (const std::uint32_t size : {1000u, 0x10000000u, 0xffffffffu})
    {
        RecordFields fields = bytes_record({1});
        fields.header.sizes = {size};
        fields.col_labels = {{0, {"a", "", ""}}};
        fields.has_tag_dictionary = false;
        VbfRecords built(1);
        built.add_stack_record(fields);
        expect_short_read(built, 4);
    }
}

TEST_F(VbfDamagedRecords, ADataLengthThatLeavesTheFileMissesTheFooter)
{
    for (const std::uint64_t length : {std::uint64_t(2), std::uint64_t(1) << 20, std::uint64_t(1) << 40})
    {
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(bytes_record({1}));
        built.set_u64_at(places.header + stack_data_length_at, length + built.size());
        put(built);
        EXPECT_VELA_ERROR(file->open(file_name(path("test.vbf")), VFile::read_mode), -3, short_read(4));
    }
}

TEST_F(VbfDamagedRecords, ATagThatDoesNotEndIsAFailedRead)
{
    RecordFields fields = bytes_record({1});
    fields.tags = {{"k", "v"}};
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(fields);
    built.set_u32_at(places.end - 4, 2);
    expect_short_read(built, 2);
}

TEST_F(VbfDamagedRecords, DataThatAreCutDoNotMatterBeforeTheyAreRead)
{
    RecordFields fields = bytes_record(counted_bytes(100));
    fields.header.format_version = 0;
    VbfRecords built(1);
    built.add_stack_record(fields);
    built.cut_to(built.size() - 1);
    open(built);
    const StackPointer stack = file->get_stack(0);
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 99, 0), counted_bytes(99));
    Bytes bytes(100, stale);
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr), -3, short_read(100));
    std::uint64_t pos = 99;
    EXPECT_VELA_ERROR(stack->read(vela_dt_uint8, bytes.data(), nullptr, 1, pos), -3, short_read(1));
    EXPECT_EQ(pos, 99u);
    EXPECT_EQ(read_at(*stack, vela_dt_uint8, 1, 98), Bytes{98});
}

TEST_F(VbfDamagedRecords, SamplesWhoseBytesOverflowMatterOnlyWhenTheyAreRead)
{
    // 3 * 2^62 doubles.
    RecordFields fields = bytes_record({1, 2, 3});
    fields.header.sizes = {0x80000000, 0x80000000, 3};
    fields.header.data_type = static_cast<std::uint32_t>(vela_dt_double);
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_number_of_elements(), 0xc000000000000000u);
    double value = 17.0;
    std::uint64_t pos = 0;
    EXPECT_VELA_ERROR(stack->read(vela_dt_double, &value, nullptr, 1, pos), -4,
                      "Invalid dimension_sizes in stack header!");
    EXPECT_EQ(value, 17.0);
    EXPECT_EQ(pos, 0u);
}

TEST_F(VbfDamagedRecords, SamplesWithoutATypeAreListedButNotRead)
{
    RecordFields fields = bytes_record({1, 2, 3});
    fields.header.data_type = 0;
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_dt(), vela_dt_none);
    Bytes bytes(3, stale);
    EXPECT_VELA_ERROR_IN(stack->read(vela_dt_uint8, bytes.data(), nullptr), "VBFStackImp::read_imp", binary_io_folder,
                         -1, "Invalid on-the-fly conversion from 'none' to 'uint8'!");
    EXPECT_VELA_ERROR(stack->read(0, bytes.data(), nullptr), -1,
                      "Invalid on-the-fly conversion from 'none' to 'none'!");
    EXPECT_EQ(bytes, Bytes(3, stale));
}
