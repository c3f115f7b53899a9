// The record of a stack on disk, byte by byte.
#include "binary_io/record_model.h"
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

#include <bit>

using namespace vela_test;

namespace {

class StackRecordWriting : public VbfWritingTest
{
protected:
    /// The record of the only stack of the closed file is that of `model`, and a document follows.
    void expect_only_record(const RecordModel& model)
    {
        const WrittenStack stack = close_file_with_one_stack();
        expect_record(content(), stack, model);
    }

    std::uint64_t number_at(std::uint64_t pos, int width_bytes) const
    {
        const Bytes bytes = content();
        std::uint64_t number = 0;
        for (int i = 0; i < width_bytes; ++i)
            number |= static_cast<std::uint64_t>(bytes.at(pos + static_cast<std::uint64_t>(i))) << (8 * i);
        return number;
    }
};

/// Without an own position: as many global axes as the stack has.
const char* const plain_metadata = //
    "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">\n"
    "    <global_pos idx=\"1\" type=\"struct\" size=\"1 1\">\n"
    "        <axes idx=\"1\" userbits=\"1\" type=\"cell\" size=\"2\">\n"
    "            <item idx=\"0\" type=\"char\" size=\"1 1\">X</item>\n"
    "            <item idx=\"1\" type=\"char\" size=\"0 0\"></item>\n"
    "        </axes>\n"
    "        <offset idx=\"1\" userbits=\"0\" type=\"double\" size=\"2\">0 0</offset>\n"
    "        <projection idx=\"1\" userbits=\"0\" type=\"double\" size=\"2 2\">1 0 0 1</projection>\n"
    "    </global_pos>\n"
    "</root>\n";

TEST_F(StackRecordWriting, OfAPlainStackIsHeaderDataFooterAndWhatFollows)
{
    begin_file();
    const Stack stack = add({4, 3});
    stack->set_label(0, "X");
    write_bytes(stack, numbered_bytes(12));
    RecordModel model({4, 3});
    model.labels = {"X", ""};
    model.metadata = plain_metadata;
    model.data = numbered_bytes(12);
    expect_only_record(model);
}

TEST_F(StackRecordWriting, FieldsStandAtTheirOffsets)
{
    begin_file();
    const Stack stack = add({4, 3}, vela_dt_int16);
    stack->set_name("ab");
    stack->set_description("cde");
    stack->set_len({8.0, 6.0});
    stack->set_off({0.5, -1.5});
    stack->set_compression(0, 9);
    stack->set_tag("k", "value");
    stack->set_data_units(si::value(2.5));
    write_bytes(stack, noisy_bytes(24));
    file->close();
    constexpr std::uint64_t header = 34;
    EXPECT_EQ(number_at(14, 8), header);
    EXPECT_EQ(slice(content(), 34, 50), bytes_of_numbers(std::vector<char>{'V', 'E', 'L', 'A', '_', 'B', 'F', '_', 'S',
                                                                           'T', 'A', 'C', 'K', '\n', '\xff', '\xff'}));
    EXPECT_EQ(number_at(header + 16, 4), 5u);
    EXPECT_EQ(number_at(header + 20, 4), 2u);
    EXPECT_EQ(number_at(header + 24, 4), 4u);
    EXPECT_EQ(number_at(header + 28, 4), 3u);
    EXPECT_EQ(number_at(header + 84, 8), std::bit_cast<std::uint64_t>(8.0));
    EXPECT_EQ(number_at(header + 92, 8), std::bit_cast<std::uint64_t>(6.0));
    EXPECT_EQ(number_at(header + 204, 8), std::bit_cast<std::uint64_t>(0.5));
    EXPECT_EQ(number_at(header + 212, 8), std::bit_cast<std::uint64_t>(-1.5));
    EXPECT_EQ(number_at(header + 324, 4), 8u);
    EXPECT_EQ(number_at(header + 328, 4), 0u);
    EXPECT_EQ(number_at(header + 332, 4), 9u);
    EXPECT_EQ(number_at(header + 336, 4), 2u);
    EXPECT_EQ(number_at(header + 340, 4), 3u);
    EXPECT_EQ(number_at(header + 344, 8), 1u);
    EXPECT_EQ(number_at(header + 352, 8), 24u);
    EXPECT_EQ(number_at(header + 360, 8), 0u);
    EXPECT_EQ(slice(content(), header + 368, header + 373), (Bytes{'a', 'b', 'c', 'd', 'e'}));
    constexpr std::uint64_t footer = header + 373 + 24;
    EXPECT_EQ(number_at(footer, 4), 1444u);
    EXPECT_EQ(number_at(footer + 4, 8), 0u);
    EXPECT_EQ(number_at(footer + 64, 8), 0u);
    EXPECT_EQ(number_at(footer + 128, 8), 1ull << 32) << "0 and 1";
    EXPECT_EQ(number_at(footer + 200, 8), std::bit_cast<std::uint64_t>(2.5));
    EXPECT_EQ(number_at(footer + 208, 8), 1ull << 32);
    EXPECT_EQ(number_at(footer + 280, 8), std::bit_cast<std::uint64_t>(1.0));
    EXPECT_EQ(number_at(footer + 1408, 8), 0u);
    EXPECT_EQ(number_at(footer + 1416, 8), 0u);
    EXPECT_EQ(number_at(footer + 1424, 8), 4u + 4 + 1 + 4 + 5);
    EXPECT_EQ(number_at(footer + 1432, 8), number_at(26, 8)) << "the dictionary follows";
    EXPECT_EQ(number_at(footer + 1440, 4), 0u);
}

TEST_F(StackRecordWriting, TextsHaveNoTerminatorAndMayHoldAnything)
{
    begin_file();
    const Stack stack = add({2});
    const std::string name("a\0b\xff", 4);
    const std::string description(100000, '\n');
    stack->set_name(name);
    stack->set_description(description);
    write_bytes(stack, {7, 8});
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.name, name);
    EXPECT_TRUE(written.description == description);
    EXPECT_EQ(written.data_pos, 34u + 368 + 4 + 100000);
}

TEST_F(StackRecordWriting, OfEverythingAtOnce)
{
    begin_file();
    file->set_file_desc("one of everything");
    const Stack stack = add({4, 3, 2}, vela_dt_uint16);
    stack->set_name("cells");
    stack->set_description("of an onion");
    stack->set_len({8.0, 6.0, 2.5});
    stack->set_off({1.0, -2.0, 0.0});
    stack->set_labels({"stage X", "", "Z"});
    stack->set_units(0, si::value("mm"));
    stack->set_units(2, si::value("m/s^2"));
    stack->set_data_units(si::value(3.0));
    stack->set_col_positions(1, {1.0, 2.0, 4.0});
    stack->set_col_labels(0, {"a", "", std::string("n\0l", 3), "dd"});
    stack->set_col_labels(2, {"front", "back"});
    stack->set_tag("b", "second");
    stack->set_tag("a", "first");
    stack->set_tag("empty", "");
    VStackPosition position;
    position.create(stack.get(), 5);
    position.origin[4] = 0.1;
    position.matrix[3] = -2.5;
    position.labels[4] = VPropstring("t & s", VPropstring::enc_utf8);
    stack->set_stack_position(position);
    write_bytes(stack, noisy_bytes(48));

    RecordModel model({4, 3, 2});
    model.data_type = 4;
    model.name = "cells";
    model.description = "of an onion";
    model.lengths = {8.0, 6.0, 2.5};
    model.offsets = {1.0, -2.0, 0.0};
    model.labels = {"stage X", "", "Z"};
    model.dimension_units[0] = unit_of(si::value("mm"));
    model.dimension_units[2] = unit_of(si::value("m/s^2"));
    model.data_units.number = 3.0;
    model.col_positions[1] = {1.0, 2.0, 4.0};
    model.col_labels[0] = {"a", "", std::string("n\0l", 3), "dd"};
    model.col_labels[2] = {"front", "back"};
    model.tags = {{"a", "first"}, {"b", "second"}, {"empty", ""}};
    model.metadata = metadata_of(position);
    model.data = noisy_bytes(48);
    expect_only_record(model);
}

TEST_F(StackRecordWriting, OfRankZeroHasOneSample)
{
    begin_file();
    const Stack stack = add({}, vela_dt_double);
    const double sample = 2.5;
    stack->write(vela_dt_double, &sample, nullptr, 1);
    EXPECT_EQ(stack->get_state(), 0);
    RecordModel model({});
    model.data_type = 128;
    model.data = bytes_of_numbers(std::vector<double>{2.5});
    model.metadata = metadata_of(stack->get_stack_position());
    expect_only_record(model);
}

TEST_F(StackRecordWriting, EveryTypeKeepsItsIdAndItsBytes)
{
    for (const vela_dt dt : {vela_dt_uint8, vela_dt_int8, vela_dt_uint16, vela_dt_int16, vela_dt_uint32, vela_dt_int32,
                             vela_dt_single, vela_dt_double, complex_single, complex_double})
    {
        begin_file();
        const Stack stack = add({3, 2}, dt);
        const Bytes samples = noisy_bytes(6 * size_of(dt));
        write_bytes(stack, samples);
        const WrittenStack written = close_file_with_one_stack();
        EXPECT_EQ(written.data_type, dt);
        EXPECT_EQ(written.data, samples);
    }
}

TEST_F(StackRecordWriting, AUnitStandsAsPairsOfNumeratorAndDenominatorAndANumber)
{
    begin_file();
    const Stack stack = add({2});
    stack->set_units(0, si::value("5 m"));
    stack->set_data_units(si::value("kg"));
    write_bytes(stack, numbered_bytes(2));
    const WrittenStack written = close_file_with_one_stack();
    WrittenUnit five_metres;
    five_metres.exponents[0] = {1, 1};
    five_metres.number = 5.0;
    EXPECT_EQ(written.dimension_units[0], five_metres);
    WrittenUnit kilogram;
    kilogram.exponents[1] = {1, 1};
    EXPECT_EQ(written.data_units, kilogram);
}

TEST_F(StackRecordWriting, UnitsStandAsTheyWereSetAndNotReduced)
{
    begin_file();
    const Stack stack = add({2, 2});
    std::array<si::fraction, 9> exponents;
    for (int i = 0; i < 9; ++i)
        exponents[static_cast<std::size_t>(i)] = si::fraction::unreduced(2 * i - 7, 4 - i);
    stack->set_units(1, si::value(-1.5e-300, exponents));
    write_bytes(stack, numbered_bytes(4));
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.dimension_units[0], WrittenUnit());
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(written.dimension_units[1].exponents[static_cast<std::size_t>(i)],
                  (std::pair<std::int32_t, std::int32_t>(2 * i - 7, 4 - i)));
    EXPECT_EQ(written.dimension_units[1].number, -1.5e-300);
}

TEST_F(StackRecordWriting, UnitsThatTheGetterGuessesAreNotWritten)
{
    begin_file();
    const Stack stack = add({2, 2});
    stack->set_labels({"stage X", "stage Y"});
    stack->set_len({80.0, 0.001});
    ASSERT_FALSE(stack->get_units(0).is_dimensionless());
    write_bytes(stack, numbered_bytes(4));
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.dimension_units, std::vector<WrittenUnit>(2));
}

TEST_F(StackRecordWriting, ColumnPositionsThatAGetterFilledAreWrittenToo)
{
    begin_file();
    const Stack stack = add({4, 3});
    stack->set_len({4.0, 3.0});
    ASSERT_EQ(stack->get_col_positions(0).size(), 4u);
    write_bytes(stack, numbered_bytes(12));
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.has_col_positions, (std::vector<std::uint32_t>{1, 0}));
    EXPECT_EQ(written.col_positions.at(0), (std::vector<double>{-1.5, -0.5, 0.5, 1.5}));
}

TEST_F(StackRecordWriting, LabelsOfColumnsThatAnAxisHadBeforeArePadded)
{
    begin_file();
    const Stack stack = file->add_stack(false);
    EXPECT_THROW(stack->create(Sizes{2, 2, 2, 2, 2, 2}, vela_dt_uint8), std::invalid_argument);
    stack->set_col_labels(0, {"a", "b"});
    stack->create(Sizes{5, 2}, vela_dt_uint8);
    stack->set_tag("behind", "them");
    write_bytes(stack, numbered_bytes(10));
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.has_col_labels, (std::vector<std::uint32_t>{1, 0}));
    EXPECT_EQ(written.col_labels.at(0), (std::vector<std::string>{"a", "b", "", "", ""}));
    EXPECT_EQ(written.tags, (WrittenPairs{{"behind", "them"}}));
}

TEST_F(StackRecordWriting, LabelsOfColumnsThatAnAxisNoLongerHasAreLeftOut)
{
    begin_file();
    const Stack stack = file->add_stack(false);
    EXPECT_THROW(stack->create(Sizes{2, 2, 2, 2, 2, 2}, vela_dt_uint8), std::invalid_argument);
    stack->set_col_labels(0, {"a", "b"});
    stack->set_col_positions(0, {5.0, 6.0});
    stack->create(Sizes{1, 2}, vela_dt_uint8);
    write_bytes(stack, numbered_bytes(2));
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.col_labels.at(0), std::vector<std::string>{"a"});
    EXPECT_EQ(written.col_positions.at(0), std::vector<double>{0.0});
}

TEST_F(StackRecordWriting, PositionsOfColumnsThatAnAxisHadBeforeAreFilledAnew)
{
    begin_file();
    const Stack stack = add({3, 0});
    stack->set_len(1, 4.0);
    stack->write(vela_dt_uint8, numbered_bytes(6).data(), nullptr, 6);
    ASSERT_EQ(stack->get_col_positions(1).size(), 2u);
    stack->write(vela_dt_uint8, numbered_bytes(6).data(), nullptr, 6);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.has_col_positions, (std::vector<std::uint32_t>{0, 1}));
    EXPECT_EQ(written.col_positions.at(1), (std::vector<double>{-1.5, -0.5, 0.5, 1.5}));
}

TEST_F(StackRecordWriting, ThePositionIsThatOfTheLastMoment)
{
    begin_file();
    const Stack stack = add({4, 3});
    stack->write(vela_dt_uint8, numbered_bytes(12).data(), nullptr, 11);
    VStackPosition position;
    position.create(stack.get(), 3);
    position.origin[2] = 7.0;
    stack->set_stack_position(position);
    stack->write(vela_dt_uint8, numbered_bytes(12).data(), nullptr, 1);
    EXPECT_EQ(close_file_with_one_stack().metadata, metadata_of(position));
}

TEST_F(StackRecordWriting, TheMetadataOfOneAxisAreArraysOfOneNumber)
{
    begin_file();
    const Stack stack = add({2});
    stack->set_label(0, "X");
    write_bytes(stack, numbered_bytes(2));
    EXPECT_EQ(close_file_with_one_stack().metadata,
              "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">\n"
              "    <global_pos idx=\"1\" type=\"struct\" size=\"1 1\">\n"
              "        <axes idx=\"1\" userbits=\"1\" type=\"cell\" size=\"1\">\n"
              "            <item idx=\"0\" type=\"char\" size=\"1 1\">X</item>\n"
              "        </axes>\n"
              "        <offset idx=\"1\" isarr=\"1\" userbits=\"0\" type=\"double\" size=\"1\">0</offset>\n"
              "        <projection idx=\"1\" isarr=\"1\" userbits=\"0\" type=\"double\" size=\"1 1\">1</projection>\n"
              "    </global_pos>\n"
              "</root>\n");
}

TEST_F(StackRecordWriting, TheMetadataStringOfTheStackIsThatOnDisk)
{
    begin_file();
    const Stack stack = add({4, 3});
    write_bytes(stack, numbered_bytes(12));
    EXPECT_EQ(stack->get_meta_data_string(), close_file_with_one_stack().metadata);
}

TEST_F(StackRecordWriting, TheDescriptionIsLockedFromTheFirstWriteOn)
{
    begin_file();
    const Stack stack = add({4, 3});
    stack->write(vela_dt_uint8, numbered_bytes(12).data(), nullptr, 1);
    EXPECT_VELA_ERROR_IN(stack->set_name("late"), "VStackInfoImp::set_name", "sources/stacks", -1,
                         "Cannot set values. Object locked!");
    EXPECT_VELA_ERROR_IN(stack->set_units(0, si::value("m")), "VStackInfoImp::set_units", "sources/stacks", -1,
                         "Cannot set values. Object locked!");
    stack->write(vela_dt_uint8, numbered_bytes(12).data(), nullptr, 11);
    EXPECT_VELA_ERROR(stack->set_description("late"), -1, "Cannot set values. Object locked!");
}

} // namespace
