// Records of other versions, and footers of other lengths.
#include "binary_io/described_stacks.h"

using namespace vela_test;

namespace {

typedef std::vector<double> Doubles;

class VbfStackFooters : public VbfReadingTest
{
};

} // namespace

TEST_F(VbfStackFooters, ARecordOfVersionZeroHasNoFooter)
{
    RecordFields fields = bytes_record({1, 2, 3});
    fields.header.format_version = 0;
    VbfRecords built(1);
    built.add_stack_record(fields);
    built.append(Bytes(2000, 0xff)); // what a footer would not say
    const StackPointer stack = open(built)->get_stack(0);
    EXPECT_EQ(stack->get_label(0), "");
    expect_neutral(stack->get_units(0));
    expect_neutral(stack->get_data_units());
    EXPECT_TRUE(stack->is_equidistant(0));
    EXPECT_TRUE(stack->get_tag_keys().empty());
    EXPECT_EQ(stack->get_meta_data_string(), "");
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_EQ(read_whole(*stack, vela_dt_uint8), (Bytes{1, 2, 3}));
}

TEST_F(VbfStackFooters, OtherVersionsAllHaveOne)
{
    for (const std::uint32_t version : {1u, 2u, 3u, 4u, 5u, 6u, 0xffffffffu})
    {
        RecordFields fields = bytes_record({1, 2, 3});
        fields.header.format_version = version;
        fields.labels = {"label"};
        fields.tags = {{"key", "value"}};
        const StackPointer stack = only_stack(fields);
        EXPECT_EQ(stack->get_label(0), "label") << version;
        EXPECT_EQ(stack->get_tag("key"), "value") << version;
    }
}

TEST_F(VbfStackFooters, AFooterOfFourBytesLeavesOnlyLabels)
{
    RecordFields fields = bytes_record({1, 2, 3});
    fields.footer_size = 4;
    fields.labels = {"first"};
    fields.units = {{{{1, 1}}, 3.0}};
    fields.has_tag_dictionary = false;
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_label(0), "first");
    expect_neutral(stack->get_units(0));
    expect_neutral(stack->get_data_units());
    EXPECT_TRUE(stack->get_tag_keys().empty());
}

TEST_F(VbfStackFooters, AFooterOfAHundredBytesGivesNeutralUnitsAndNoTags)
{
    RecordFields fields = bytes_record({1, 2, 3});
    fields.footer_size = 100;
    fields.labels = {"label"};
    fields.col_positions = {{0, {1.0, 2.0, 4.0}}};
    fields.col_labels = {{0, {"a", "b", "c"}}}; // its flag lies within
    fields.units = {{{{1, 1}}, 3.0}};
    fields.data_units = {{{1, 1}}, 3.0};
    fields.has_tag_dictionary = false;
    VbfRecords built(1);
    const RecordPlaces places = built.add_stack_record(fields);
    open(built);
    const StackPointer stack = file->get_stack(0);
    EXPECT_EQ(stack->get_col_positions(0), (Doubles{1.0, 2.0, 4.0}));
    EXPECT_EQ(stack->get_col_labels(0), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(exponents_of(stack->get_data_units()), neutral);
    EXPECT_EQ(stack->get_data_units().value_in_baseunits(), 1.0);
    EXPECT_TRUE(stack->get_tag_keys().empty());
    EXPECT_EQ(stack->get_meta_data_string(), "");
    EXPECT_EQ(file->seek_to_end_of_stack(0), places.end);
}

TEST_F(VbfStackFooters, AFooterMayEndInsideAField)
{
    // Two bytes of the numerator 0x00030001 of the first axis: the rest of it stays 0.
    RecordFields fields = bytes_record({1, 2, 3});
    fields.footer_size = footer_units_at + 2;
    fields.units = {{{{0x00030001, 1}}, 3.0}};
    fields.data_units = {{{2, 1}}, 5.0};
    fields.has_tag_dictionary = false;
    const StackPointer stack = only_stack(fields);
    EXPECT_EQ(stack->get_data_units().value_in_baseunits(), 5.0);
    std::vector<std::pair<std::int32_t, std::int32_t>> expected = neutral;
    expected[0] = {1, 1};
    EXPECT_EQ(exponents_of(stack->get_units(0)), expected);
    EXPECT_EQ(stack->get_units(0).value_in_baseunits(), 1.0);
}

TEST_F(VbfStackFooters, ShortFootersGiveWhatTheyReach)
{
    for (const std::uint32_t size : {1408u, 1416u, 1424u, 1432u, 1440u})
    {
        RecordFields fields = bytes_record({1, 2, 3});
        fields.footer_size = size;
        fields.units = {{{{1, 1}}, 3.0}};
        fields.has_tag_dictionary = size >= 1432;
        fields.tags = {{"key", "value"}};
        VbfRecords built(1);
        const RecordPlaces places = built.add_stack_record(fields);
        open(built);
        const StackPointer stack = file->get_stack(0);
        EXPECT_EQ(stack->get_units(0).value_in_baseunits(), 3.0) << size;
        EXPECT_EQ(stack->get_tag_keys().size(), size >= 1432 ? 1u : 0u) << size;
        EXPECT_EQ(file->seek_to_end_of_stack(0), places.end) << size;
    }
}

TEST_F(VbfStackFooters, WhatANewerFooterAddsIsSkipped)
{
    for (const std::uint32_t size : {1445u, 1448u, 1500u, 70000u})
    {
        RecordFields fields = bytes_record({1, 2, 3});
        fields.footer_size = size;
        fields.labels = {"behind it"};
        fields.tags = {{"key", "value"}};
        VbfRecords built(1);
        built.add_stack_record(fields);
        built.add_stack_record(bytes_record({9}));
        open(built);
        const StackPointer stack = file->get_stack(0);
        EXPECT_EQ(stack->get_label(0), "behind it") << size;
        EXPECT_EQ(stack->get_tag("key"), "value") << size;
        EXPECT_EQ(read_whole(*file->get_stack(1), vela_dt_uint8), Bytes{9}) << size;
    }
}

TEST_F(VbfStackFooters, ReadersUpToVersionFiveMayRead)
{
    for (const std::uint32_t version : {0u, 1u, 4u, 5u, 0xffffffffu})
    {
        RecordFields fields = bytes_record({1, 2, 3});
        fields.required_reader_version = version;
        EXPECT_NO_THROW(only_stack(fields)) << version;
    }
}

TEST_F(VbfStackFooters, ARecordForNewerReadersIsRefused)
{
    const std::pair<std::uint32_t, const char*> versions[] = {
        {6, "6"}, {7, "7"}, {100, "100"}, {0x7fffffff, "2147483647"}, {0x80000000, "-2147483648"}, {0xfffffffe, "-2"}};
    for (const auto& [version, text] : versions)
    {
        RecordFields fields = bytes_record({1, 2, 3});
        fields.required_reader_version = version;
        EXPECT_VELA_ERROR_IN(only_stack(fields), "VBFStackImp::read_info", binary_io_folder, -4,
                             std::string("Cannot read stack with file format reader version 5. Need >= ") + text + "!");
        EXPECT_FALSE(file->is_open());
    }
}

TEST_F(VbfStackFooters, AFooterThatCutsTheReaderVersionKeepsTheRestOfMinusOne)
{
    RecordFields fields = bytes_record({1, 2, 3});
    fields.footer_size = 1443;
    EXPECT_VELA_ERROR(only_stack(fields), -4,
                      "Cannot read stack with file format reader version 5. Need >= -16777216!");
}
