// What the record of a stack says, as a reader of the file gets it.
#include "binary_io/described_stacks.h"

#include <VelaStacks/VStackRegion.h>

#include <cmath>
#include <limits>

using namespace vela_test;

namespace {

typedef std::vector<std::uint64_t> Sizes;
typedef std::vector<double> Doubles;

constexpr double no_number = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

class VbfStackDescription : public VbfReadingTest
{
};

} // namespace

TEST_F(VbfStackDescription, HeaderFieldsArriveInTheDescription)
{
    RecordFields fields;
    fields.header.name = "a name";
    fields.header.description = "a description";
    fields.header.sizes = {4, 3, 2};
    fields.header.lengths = {0.5, 1.5, 2.5};
    fields.header.offsets = {-1.0, 0.0, 1e-12};
    fields.header.data_type = static_cast<std::uint32_t>(vela_dt_uint16);
    fields.header.compression_type = 0;
    fields.header.compression_level = 9;
    fields.header.data = Bytes(48, 1);
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_name(), "a name");
    EXPECT_EQ(stack->get_description(), "a description");
    EXPECT_EQ(stack->get_rank(), 3u);
    EXPECT_EQ(stack->get_sizes(), (Sizes{4, 3, 2}));
    EXPECT_EQ(stack->get_number_of_elements(), 24u);
    EXPECT_EQ(stack->get_size(0), 48u);
    EXPECT_EQ(stack->get_lengths(), (Doubles{0.5, 1.5, 2.5}));
    EXPECT_EQ(stack->get_offsets(), (Doubles{-1.0, 0.0, 1e-12}));
    EXPECT_EQ(stack->get_dt(), vela_dt_uint16);
    EXPECT_EQ(stack->get_state(), 0);
}

TEST_F(VbfStackDescription, NameAndDescriptionStandInTheRecord)
{
    RecordFields fields = bytes_record({1});
    fields.header.name = "na\xc3\xafve";
    fields.header.description = "line\nline";
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(std::string(stack->meta_data().name), "na\xc3\xafve");
    EXPECT_EQ(std::string(stack->meta_data().description), "line\nline");
}

TEST_F(VbfStackDescription, TextsAreTakenByteForByte)
{
    RecordFields fields = bytes_record({1});
    fields.header.name = "";
    fields.header.description = std::string("a\0b\xff", 4);
    fields.labels = {std::string("\0\xfe", 2)};
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_name(), "");
    EXPECT_EQ(stack->get_description(), std::string("a\0b\xff", 4));
    EXPECT_EQ(stack->get_label(0), std::string("\0\xfe", 2));
}

TEST_F(VbfStackDescription, CompressionFieldsAreTakenAsTheyStand)
{
    for (const auto& [type, level] : {std::pair<int, int>{0, 0}, {1, 0}, {0, 9}, {7, 3}, {1, -1}, {-1, -2}, {2, 99}})
    {
        RecordFields fields = bytes_record({1});
        fields.header.compression_type = static_cast<std::uint32_t>(type);
        fields.header.compression_level = static_cast<std::uint32_t>(level);
        int got_type = 1234;
        int got_level = 1234;
        only_stack(fields)->get_compression(got_type, got_level);
        EXPECT_EQ(got_type, type);
        EXPECT_EQ(got_level, level);
    }
}

TEST_F(VbfStackDescription, EveryTypeOfTheRecordIsRead)
{
    for (const vela_dt type :
         {vela_dt_uint8, vela_dt_int8, vela_dt_uint16, vela_dt_int16, vela_dt_uint32, vela_dt_int32, vela_dt_single,
          vela_dt_double, vela_dt_single | vela_dt_complex, vela_dt_double | vela_dt_complex})
    {
        RecordFields fields = empty_record({2, 2});
        fields.header.data_type = static_cast<std::uint32_t>(type);
        EXPECT_EQ(only_stack(fields)->get_dt(), type);
    }
}

TEST_F(VbfStackDescription, TypesThatTheRecordLacksAreRefused)
{
    for (const std::uint32_t type :
         {0x3u, 0x100u, 0x400u, 0x800u, 0x1000u, 0x2000u, 0x4000u, 0x8000u, 0x10000u, 0x20000u, 0x40000001u,
          0x40000000u, 0x40001000u, 0x40010000u, 0x80000001u, 0xffffffffu})
    {
        RecordFields fields = empty_record({2, 2});
        fields.header.data_type = type;
        EXPECT_THROW_TEXT(only_stack(fields), std::invalid_argument, "Unsupported data type");
        EXPECT_FALSE(file->is_open());
    }
}

TEST_F(VbfStackDescription, RanksFromNoneToFiveHaveElements)
{
    for (std::size_t rank = 0; rank <= 5; ++rank)
    {
        RecordFields fields = empty_record(std::vector<std::uint32_t>(rank, 2));
        const StackPointer stack = only_stack(fields);
        EXPECT_EQ(stack->get_rank(), rank);
        EXPECT_EQ(stack->get_number_of_elements(), 1u << rank);
    }
}

TEST_F(VbfStackDescription, SixAxesWithElementsAreRefused)
{
    EXPECT_THROW_TEXT(only_stack(empty_record({1, 1, 1, 1, 1, 1})), std::invalid_argument,
                      "Unsupported number of sizes");
}

TEST_F(VbfStackDescription, WithoutElementsThereMayBeFifteenAxes)
{
    std::vector<std::uint32_t> sizes(15, 2);
    sizes[14] = 0;
    RecordFields fields = empty_record(sizes);
    fields.header.lengths[14] = 12.5;
    fields.labels = std::vector<std::string>(15, "L");
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_rank(), 15u);
    EXPECT_EQ(stack->get_length(14), 12.5);
    EXPECT_EQ(stack->get_label(14), "L");
    EXPECT_EQ(stack->get_number_of_elements(), 0u);
}

TEST_F(VbfStackDescription, SizesWhoseProductOverflowsAreRefused)
{
    EXPECT_VELA_ERROR(only_stack(empty_record({0xffffffff, 0xffffffff, 0xffffffff})), -1,
                      "The product exceeds the maximum size.");
    EXPECT_VELA_ERROR(only_stack(empty_record({0x80000000, 0x80000000, 4})), -1,
                      "The product exceeds the maximum size.");
    EXPECT_NO_THROW(only_stack(empty_record({0x80000000, 0x80000000, 3})));
}

TEST_F(VbfStackDescription, ALengthThatIsNoNumberIsOne)
{
    RecordFields fields = bytes_record(Bytes(6, 0));
    fields.header.sizes = {3, 2};
    fields.header.lengths = {no_number, -no_number};
    EXPECT_EQ(only_stack(fields)->get_lengths(), (Doubles{1.0, 1.0}));
    fields.header.lengths = {std::numeric_limits<double>::signaling_NaN(), 2.5};
    EXPECT_EQ(only_stack(fields)->get_lengths(), (Doubles{1.0, 2.5}));
}

TEST_F(VbfStackDescription, OtherLengthsStayAsTheyAre)
{
    RecordFields fields = empty_record({2, 2, 2, 2, 0});
    fields.header.lengths = {0.0, -3.5, infinity, -infinity, 1e-300};
    EXPECT_EQ(only_stack(fields)->get_lengths(), (Doubles{0.0, -3.5, infinity, -infinity, 1e-300}));
}

TEST_F(VbfStackDescription, NumbersBehindTheRankDoNotMatter)
{
    RecordFields fields = bytes_record(Bytes(3, 0));
    fields.header.lengths = Doubles(15, no_number);
    fields.header.lengths[0] = 4.0;
    fields.header.offsets = Doubles(15, no_number);
    fields.header.offsets[0] = 5.0;
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(fields);
    for (std::uint64_t i = 1; i < 15; ++i)
        built.set_u32_at(places.header + stack_sizes_at + 4 * i, 0xffffffff);
    const StackPointer stack = open(built)->get_stack(0);
    EXPECT_EQ(stack->get_sizes(), Sizes{3});
    EXPECT_EQ(stack->get_lengths(), Doubles{4.0});
    EXPECT_EQ(stack->get_offsets(), Doubles{5.0});
}

TEST_F(VbfStackDescription, LengthsAndOffsetsThatTheRecordCannotExpressAreStored)
{
    // A channel axis has no length there, and a time series around 0 has times below it.
    RecordFields fields = empty_record({2, 2, 2, 4, 3});
    fields.header.lengths = {2.0, 3.0, 4.0, 5.0, 6.0};
    fields.header.offsets = {0.0, 0.0, 0.0, 0.0, 7.0};
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_lengths(), (Doubles{2.0, 3.0, 4.0, 5.0, 6.0}));
    EXPECT_EQ(stack->get_offsets(), (Doubles{0.0, 0.0, 0.0, 0.0, 7.0}));
    EXPECT_EQ(std::int64_t(stack->meta_data().size_t), 4);
    EXPECT_EQ(double(stack->meta_data().physical_size_y), 1.5);
}

TEST_F(VbfStackDescription, WithoutBytesOnDiskAStackIsEmptyWhateverElseIsSaid)
{
    RecordFields fields = empty_record({1000, 1000});
    fields.header.data_present = 1;
    const StackPointer stack = only_stack(fields);
    std::uint64_t pos = 0;
    EXPECT_EQ(read_run(*stack, vela_dt_uint8, 5, pos), Bytes(5, 0));
    EXPECT_EQ(pos, 0u);

    RecordFields present = bytes_record({7, 8});
    present.header.data_present = 0;
    EXPECT_EQ(read_whole(*only_stack(present), vela_dt_uint8), (Bytes{7, 8}));
}

TEST_F(VbfStackDescription, TheDescriptionIsLocked)
{
    const StackPointer stack = only_stack(bytes_record({1, 2}));
    const char* const text = "Cannot set values. Object locked!";
    EXPECT_VELA_ERROR(stack->set_name("new"), -1, text);
    EXPECT_VELA_ERROR(stack->set_description("new"), -1, text);
    EXPECT_VELA_ERROR(stack->set_acquisition_date(), -1, text);
    EXPECT_VELA_ERROR(stack->set_len(0, 2.0), -1, text);
    EXPECT_VELA_ERROR(stack->set_len(Doubles{2.0}), -1, text);
    EXPECT_VELA_ERROR(stack->set_off(0, 2.0), -1, text);
    EXPECT_VELA_ERROR(stack->set_off(Doubles{2.0}), -1, text);
    EXPECT_VELA_ERROR(stack->set_label(0, "new"), -1, text);
    EXPECT_VELA_ERROR(stack->set_labels({"new"}), -1, text);
    EXPECT_VELA_ERROR(stack->set_col_labels(0, {"a", "b"}), -1, text);
    EXPECT_VELA_ERROR(stack->set_col_positions(0, {1.0, 2.0}), -1, text);
    EXPECT_VELA_ERROR(stack->set_units(0, si::value("m")), -1, text);
    EXPECT_VELA_ERROR(stack->set_data_units(si::value("m")), -1, text);
    const VStackInfo other;
    EXPECT_VELA_ERROR(stack->set_info(other), -1, text);
    EXPECT_EQ(stack->get_name(), "a");
}

TEST_F(VbfStackDescription, WithoutAFooterTheDescriptionIsLockedToo)
{
    RecordFields fields = bytes_record({1, 2});
    fields.header.format_version = 0;
    EXPECT_VELA_ERROR(only_stack(fields)->set_name("new"), -1, "Cannot set values. Object locked!");
}

TEST_F(VbfStackDescription, NoneOfTheThreeFormsDescribesItAgain)
{
    const StackPointer stack = only_stack(bytes_record({1, 2}));
    VStackInfo other;
    other->create({3, 2}, vela_dt_uint8);
    VStackRegion region;
    region.create(other, 0);
    const char* const text = "Cannot set data layout!";
    EXPECT_VELA_ERROR(stack->create({3, 2}, vela_dt_uint8), -1, text);
    EXPECT_VELA_ERROR(stack->create(other, 0), -1, text);
    EXPECT_VELA_ERROR(stack->create(other, region), -1, text);
    EXPECT_EQ(stack->get_sizes(), Sizes{2});
    EXPECT_EQ(stack->get_state(), 0);
}

TEST_F(VbfStackDescription, CompressionAndFlushPointsCannotBeChanged)
{
    const StackPointer stack = only_stack(bytes_record({1, 2}));
    EXPECT_VELA_ERROR_IN(stack->set_compression(1, 6), "VBFStackImp::set_compression", binary_io_folder, -1,
                         "Cannot change compression mode!");
    EXPECT_VELA_ERROR_IN(stack->set_flush_block_size(0), "VBFStackImp::set_flush_block_size", binary_io_folder, -1,
                         "Flush block size can only be set before starting to write!");
    int type = 5;
    int level = 5;
    stack->get_compression(type, level);
    EXPECT_EQ(type, 0);
    EXPECT_EQ(level, 0);
}
