// Whole stacks in memory that are written in one call.
#include "binary_io/record_model.h"
#include "binary_io/vbf_writing.h"

#include <VelaBase/vela_dt_convert.h>
#include <VelaStacks/VStack.h>

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

class WriteStack : public VbfWritingTest
{
protected:
    static void fill(VStackImp& stack, const Bytes& samples)
    {
        ASSERT_EQ(stack.get_block_size(), samples.size());
        if (!samples.empty())
            std::memcpy(stack.get_data_ptr(), samples.data(), samples.size());
    }
};

TEST_F(WriteStack, WritesSamplesAndDescription)
{
    VStackImp stack(Ome::Type::uint16, {4, 3, 2}, Ome::DimensionOrder::XYZTC);
    fill(stack, noisy_bytes(48));
    stack.set_name("cells");
    stack.set_description("of an onion");
    stack.set_len({8.0, 6.0, 2.5});
    stack.set_off({1.0, -2.0, 0.5});
    stack.set_labels({"X", "", "Z"});
    stack.set_col_positions(1, {1.0, 2.0, 4.0});
    stack.set_col_labels(2, {"front", "back"});
    VStackPosition position;
    position.create(&stack, 4);
    position.origin[3] = 9.0;
    stack.set_stack_position(position);
    begin_file();
    file->write_stack(&stack, 0);
    EXPECT_EQ(file->number_of_stacks(), 1u);
    EXPECT_EQ(on_disk().stacks.size(), 1u) << "it is complete at once";

    const WrittenStack written = close_file_with_one_stack();
    RecordModel model({4, 3, 2});
    model.data_type = 4;
    model.data = noisy_bytes(48);
    model.name = "cells";
    model.description = "of an onion";
    model.lengths = {8.0, 6.0, 2.5};
    model.offsets = {1.0, -2.0, 0.5};
    model.labels = {"X", "", "Z"};
    model.col_positions[1] = {1.0, 2.0, 4.0};
    model.col_labels[2] = {"front", "back"};
    model.metadata = metadata_of(position);
    expect_record(content(), written, model);
}

TEST_F(WriteStack, LeavesOutTheUnits)
{
    VStackImp stack(Ome::Type::uint8, {4, 3}, Ome::DimensionOrder::XYZTC);
    stack.set_units(0, si::value("mm"));
    stack.set_data_units(si::value("V"));
    begin_file();
    file->write_stack(&stack, 0);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.dimension_units, std::vector<WrittenUnit>(2));
    EXPECT_EQ(written.data_units, WrittenUnit());
}

TEST_F(WriteStack, FlagsAreTheTypeOnDisk)
{
    VStackImp stack(Ome::Type::float64, {6}, Ome::DimensionOrder::XYZTC);
    const std::vector<double> samples = {0.9, 1.0, 2.5, -1.0, 300.0, 7.0};
    fill(stack, bytes_of_numbers(samples));
    begin_file();
    file->write_stack(&stack, 0);
    file->write_stack(&stack, vela_dt_uint8);
    file->write_stack(&stack, vela_dt_single);
    file->write_stack(&stack, complex_single);
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 4u);
    EXPECT_EQ(written.stacks[0].data_type, vela_dt_double);
    EXPECT_EQ(written.stacks[0].data, bytes_of_numbers(samples));
    EXPECT_EQ(written.stacks[1].data_type, vela_dt_uint8);
    EXPECT_EQ(written.stacks[1].data, (Bytes{0, 1, 2, 255, 44, 7}));
    EXPECT_EQ(written.stacks[2].data, bytes_of_numbers(std::vector<float>{0.9f, 1.0f, 2.5f, -1.0f, 300.0f, 7.0f}));
    EXPECT_EQ(written.stacks[3].data,
              bytes_of_numbers(std::vector<float>{0.9f, 0, 1.0f, 0, 2.5f, 0, -1.0f, 0, 300.0f, 0, 7.0f, 0}));
}

TEST_F(WriteStack, TakesTheDefaultCompression)
{
    VStackImp stack(Ome::Type::uint8, {300, 300}, Ome::DimensionOrder::XYZTC);
    fill(stack, sparse_bytes(90000));
    begin_file();
    file->set_default_compression(1, 6);
    file->write_stack(&stack, 0);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.compression_type, 1);
    EXPECT_EQ(written.compression_level, 6);
    EXPECT_EQ(written.flush_block_size, 90000u);
    EXPECT_EQ(written.flush_point_count, 1u);
    EXPECT_TRUE(written.samples() == sparse_bytes(90000));
}

TEST_F(WriteStack, LeavesTheStackInMemoryAsItIs)
{
    VStackImp stack(Ome::Type::uint8, {4, 3}, Ome::DimensionOrder::XYZTC);
    fill(stack, numbered_bytes(12));
    begin_file();
    file->write_stack(&stack, vela_dt_uint16);
    EXPECT_EQ(stack.get_dt(), vela_dt_uint8);
    EXPECT_EQ(Bytes(stack.get_data_ptr(), stack.get_data_ptr() + 12), numbered_bytes(12));
    EXPECT_NO_THROW(stack.set_name("not locked"));
}

TEST_F(WriteStack, OfFiveAxesKeepsLengthsAndOffsetsThatTheRecordRefuses)
{
    class Stored : public VStackImp
    {
    public:
        using VStackImp::VStackImp;
        using VStackInfoImp::store_lengths;
        using VStackInfoImp::store_offsets;
    };
    Stored stack(Ome::Type::uint8, {2, 2, 2, 3, 2}, Ome::DimensionOrder::XYZTC);
    const std::vector<double> lengths = {4.0, 3.0, 0.001, 6.0, 2.0};
    const std::vector<double> offsets = {0.0, -1.0, 0.0, 0.0, 5.0};
    stack.store_lengths(lengths);
    stack.store_offsets(offsets);
    begin_file();
    EXPECT_NO_THROW(file->write_stack(&stack, 0));
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.lengths, lengths);
    EXPECT_EQ(written.offsets, offsets);
    EXPECT_EQ(written.data, Bytes(48, 0));
}

TEST_F(WriteStack, OfNoElementsIsNotVariable)
{
    VStackImp stack(Ome::Type::uint8, {1}, Ome::DimensionOrder::XYZTC);
    stack.create(Sizes{4, 0}, vela_dt_uint8);
    begin_file();
    file->set_default_compression(1, 6);
    file->write_stack(&stack, 0);
    EXPECT_EQ(on_disk().stacks.size(), 1u);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.sizes, (std::vector<std::uint32_t>{4, 0}));
    EXPECT_EQ(written.data_length_on_disk, 0u);
    EXPECT_EQ(written.data_present, 1u);
}

TEST_F(WriteStack, SamplesThatTheBlockNoLongerHasAreZero)
{
    VStackImp stack(Ome::Type::uint16, {100}, Ome::DimensionOrder::XYZTC);
    fill(stack, noisy_bytes(200));
    VStackImp sharing(stack);
    sharing.create(Sizes{30}, vela_dt_uint16);
    begin_file();
    file->write_stack(&stack, 0);
    sharing.create(Sizes{0}, vela_dt_uint16);
    file->set_default_compression(1, 1);
    file->write_stack(&stack, 0);
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 2u);
    EXPECT_EQ(written.stacks[0].data, slice(noisy_bytes(200), 0, 60) + Bytes(140, 0));
    EXPECT_EQ(written.stacks[1].samples(), Bytes(200, 0));
}

TEST_F(WriteStack, NeedsAFileThatIsOpenForWriting)
{
    VStackImp stack(Ome::Type::uint8, {4, 3}, Ome::DimensionOrder::XYZTC);
    EXPECT_FILE_ERROR(file->write_stack(&stack, 0), "add_stack", -1, "File not open for writing!");
    begin_file();
    file->close();
    file.open(file_name(file_path), VFile::read_mode);
    EXPECT_FILE_ERROR(file->write_stack(&stack, 0), "add_stack", -1, "File not open for writing!");
}

TEST_F(WriteStack, CommitsTheStackBefore)
{
    VStackImp stack(Ome::Type::uint8, {4, 3}, Ome::DimensionOrder::XYZTC);
    begin_file();
    const Stack open = add({2, 0});
    open->write(vela_dt_uint8, numbered_bytes(4).data(), nullptr, 4);
    file->write_stack(&stack, 0);
    EXPECT_EQ(open->get_state(), 0);
    add({5})->write(vela_dt_uint8, numbered_bytes(5).data(), nullptr, 2);
    EXPECT_STACK_ERROR(file->write_stack(&stack, 0), "write", -1, "Not enough samples written!");
    EXPECT_EQ(on_disk().stacks.size(), 2u);
}

TEST_F(WriteStack, OfATypeThatCannotBeConvertedFailsAndStaysInTheFile)
{
    VStackImp stack(Ome::Type::complex64, {4, 3}, Ome::DimensionOrder::XYZTC);
    begin_file();
    add_whole("before");
    EXPECT_STACK_ERROR(file->write_stack(&stack, vela_dt_uint8), "write", -1,
                       std::string("Invalid on-the-fly conversion from '") + vela_dt_get_name(complex_single) +
                           "' to 'uint8'!");
    EXPECT_EQ(file->number_of_stacks(), 2u);
    EXPECT_STACK_ERROR(file->close(), "write", -1, "Not enough samples written!");
    file.reset();
    EXPECT_EQ(on_disk().stack_names(), std::vector<std::string>{"before"});
}

TEST_F(WriteStack, IntoATypeThatADescriptionCannotHaveFails)
{
    VStackImp stack(Ome::Type::uint8, {4, 3}, Ome::DimensionOrder::XYZTC);
    begin_file();
    EXPECT_THROW_TEXT(file->write_stack(&stack, vela_dt_uint64), std::invalid_argument, "Unsupported data type");
    EXPECT_EQ(file->number_of_stacks(), 1u);
    EXPECT_STACK_ERROR(file->write_stack(&stack, 0), "write", -1,
                       "Stack not ready to be commited. Meta-information missing!");
    EXPECT_STACK_ERROR(file->close(), "write", -1, "Stack not ready to be commited. Meta-information missing!");
}

TEST_F(WriteStack, WithoutATypeFails)
{
    VStackImp stack(3);
    begin_file();
    EXPECT_STACK_ERROR(file->write_stack(&stack, 0), "write", -1,
                       "Stack data type not set. Cannot commit stack to file!");
}

TEST_F(WriteStack, IsCancelledLikeAnyOtherWrite)
{
    VStackImp stack(Ome::Type::uint8, {4, 3}, Ome::DimensionOrder::XYZTC);
    begin_file();
    file->set_progress_callback([](std::uint64_t, void*) { return 0; }, nullptr);
    EXPECT_STACK_ERROR(file->write_stack(&stack, 0), "write", -11, "Cancelled by user!");
    EXPECT_EQ(on_disk().first_stack_pos, 0u);
}

TEST_F(WriteStack, OfTheSameStackTwiceGivesEqualRecords)
{
    VStackImp stack(Ome::Type::int16, {4, 3}, Ome::DimensionOrder::XYZTC);
    fill(stack, noisy_bytes(24));
    begin_file();
    file->write_stack(&stack, 0);
    file->write_stack(&stack, 0);
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 2u);
    EXPECT_EQ(written.stacks[0].data, written.stacks[1].data);
    EXPECT_EQ(written.stacks[0].metadata, written.stacks[1].metadata);
    EXPECT_EQ(written.stacks[0].end - written.stacks[0].pos, written.stacks[1].end - written.stacks[1].pos);
}

} // namespace
