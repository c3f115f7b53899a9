// A whole stack of a file as a stack in memory.
#include "binary_io/vbf_reading_test.h"

#include "support/zlib_stream.h"

#include <VelaStacks/VStack.h>

#include <complex>

using namespace vela_test;

namespace {

typedef std::vector<std::uint64_t> Sizes;
typedef std::vector<double> Doubles;
typedef boost::shared_ptr<VStackInterface> MemoryStack;

constexpr vela_dt cplx_single = vela_dt_single | vela_dt_complex;

class VbfWholeStacks : public VbfReadingTest
{
protected:
    MemoryStack read_stack(const RecordFields& fields, vela_dt type)
    {
        VbfRecords built(1);
        built.add_stack_record(fields);
        return open(built)->read_stack(0, type);
    }
};

Bytes bytes_of(const MemoryStack& stack)
{
    const unsigned char* const begin = stack->get_data_ptr();
    return Bytes(begin, begin + stack->get_size(0));
}

} // namespace

TEST_F(VbfWholeStacks, HaveTheirSamplesAndTheirType)
{
    RecordFields fields = bytes_record(counted_bytes(12));
    fields.header.sizes = {3, 2};
    fields.header.data_type = static_cast<std::uint32_t>(vela_dt_uint16);
    const MemoryStack stack = read_stack(fields, 0);
    EXPECT_EQ(stack->get_sizes(), (Sizes{3, 2}));
    EXPECT_EQ(stack->get_dt(), vela_dt_uint16);
    EXPECT_EQ(bytes_of(stack), counted_bytes(12));
}

TEST_F(VbfWholeStacks, ThatAreCompressedAreReadToo)
{
    const Bytes data = sparse_bytes(100000);
    const FlushedStream stream = deflate_in_blocks(data, 6, 30000);
    RecordFields fields = bytes_record(stream.bytes);
    fields.header.sizes = {1000, 100};
    fields.header.compression_type = 1;
    fields.header.compression_level = 6;
    fields.flush_positions = stream.flush_positions;
    fields.flush_block_size = 30000;
    EXPECT_EQ(bytes_of(read_stack(fields, 0)), data);
}

TEST_F(VbfWholeStacks, BringTheirDescriptionAlong)
{
    RecordFields fields = bytes_record(counted_bytes(6));
    fields.header.name = "name";
    fields.header.description = "text";
    fields.header.sizes = {3, 2};
    fields.header.lengths = {1.5, 2.5};
    fields.header.offsets = {-1.0, 4.0};
    fields.labels = {"X", "second"};
    fields.col_positions = {{0, {0.0, 1.0, 5.0}}};
    fields.col_labels = {{1, {"a", "b"}}};
    fields.metadata = position_xml({"x", "y", "z"}, "1.5 -2 100", "3 2", "1 0 0 0 0.5 0.25");
    const MemoryStack stack = read_stack(fields, 0);
    EXPECT_EQ(stack->get_name(), "name");
    EXPECT_EQ(stack->get_description(), "text");
    EXPECT_EQ(stack->get_lengths(), (Doubles{1.5, 2.5}));
    EXPECT_EQ(stack->get_offsets(), (Doubles{-1.0, 4.0}));
    EXPECT_EQ(stack->get_labels(), (std::vector<std::string>{"X", "second"}));
    EXPECT_EQ(stack->get_col_positions(0), (Doubles{0.0, 1.0, 5.0}));
    EXPECT_EQ(stack->get_col_labels(1), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(stack->get_stack_position().origin[2], 100.0);
    stack->set_name("not locked");
    EXPECT_EQ(stack->get_name(), "not locked");
}

TEST_F(VbfWholeStacks, ComeInAnotherTypeWhereOneIsNamed)
{
    const RecordFields fields = values_record<std::uint8_t>(vela_dt_uint8, {1, 2, 255});
    const MemoryStack stack = read_stack(fields, vela_dt_single);
    EXPECT_EQ(stack->get_dt(), vela_dt_single);
    float values[3] = {};
    std::memcpy(values, stack->get_data_ptr(), sizeof values);
    EXPECT_EQ(std::vector<float>(values, values + 3), (std::vector<float>{1.0f, 2.0f, 255.0f}));

    const MemoryStack complex = read_stack(fields, cplx_single);
    std::complex<float> pairs[3];
    std::memcpy(static_cast<void*>(pairs), complex->get_data_ptr(), sizeof pairs);
    EXPECT_EQ(pairs[2], (std::complex<float>(255.0f, 0.0f)));
}

TEST_F(VbfWholeStacks, ThatAreComplexDoNotBecomeReal)
{
    const RecordFields fields = values_record<std::complex<float>>(cplx_single, {{1.0f, 2.0f}});
    EXPECT_VELA_ERROR_IN(read_stack(fields, vela_dt_single), "VBFStackImp::read_imp", binary_io_folder, -1,
                         "Invalid on-the-fly conversion from 'cplx_single' to 'single'!");
    EXPECT_EQ(bytes_of(file->read_stack(0, 0)), fields.header.data);
}

TEST_F(VbfWholeStacks, WithoutSamplesOnDiskAreZeros)
{
    RecordFields fields = bytes_record({});
    fields.header.sizes = {4, 5};
    EXPECT_EQ(bytes_of(read_stack(fields, 0)), Bytes(20, 0));
    EXPECT_EQ(bytes_of(read_stack(fields, vela_dt_double)), Bytes(160, 0));
}

TEST_F(VbfWholeStacks, WithoutElementsHaveNone)
{
    RecordFields fields = bytes_record({});
    fields.header.sizes = {4, 0};
    const MemoryStack stack = read_stack(fields, 0);
    EXPECT_EQ(stack->get_sizes(), (Sizes{4, 0}));
    EXPECT_EQ(stack->get_dt(), vela_dt_uint8);
}

TEST_F(VbfWholeStacks, WithoutAxesHaveOneElement)
{
    RecordFields fields = values_record<double>(vela_dt_double, {2.5});
    fields.header.sizes = {};
    const MemoryStack stack = read_stack(fields, 0);
    EXPECT_EQ(stack->get_rank(), 0u);
    EXPECT_EQ(bytes_of(stack), fields.header.data);
}

TEST_F(VbfWholeStacks, ThatTheRecordCannotExpressComeAsTheyAre)
{
    RecordFields fields = bytes_record(counted_bytes(32));
    fields.header.sizes = {2, 2, 2, 2, 2};
    fields.header.lengths = {1.0, 2.0, 3.0, 4.0, 5.0};
    fields.header.offsets = {0.0, 0.0, 0.0, 0.0, 6.0};
    const MemoryStack stack = read_stack(fields, 0);
    EXPECT_EQ(stack->get_lengths(), (Doubles{1.0, 2.0, 3.0, 4.0, 5.0}));
    EXPECT_EQ(stack->get_offsets(), (Doubles{0.0, 0.0, 0.0, 0.0, 6.0}));
    EXPECT_EQ(bytes_of(stack), counted_bytes(32));
}

TEST_F(VbfWholeStacks, OutliveTheirFile)
{
    const MemoryStack stack = read_stack(bytes_record({1, 2, 3}), 0);
    file->close();
    file.reset();
    EXPECT_EQ(bytes_of(stack), (Bytes{1, 2, 3}));
    EXPECT_EQ(stack->get_name(), "a");
}

TEST_F(VbfWholeStacks, EachCallGivesAnother)
{
    const MemoryStack first = read_stack(bytes_record({1, 2, 3}), 0);
    const MemoryStack second = file->read_stack(0, 0);
    first->get_data_ptr()[0] = 9;
    EXPECT_EQ(bytes_of(second), (Bytes{1, 2, 3}));
}

TEST_F(VbfWholeStacks, TheFailuresOfReadingComeUnchanged)
{
    EXPECT_VELA_ERROR(file->read_stack(0, 0), -4, "Invalid stack index 0!");
    VbfRecords built(1);
    RecordFields damaged = bytes_record({1, 2, 3});
    damaged.header.compression_type = 1;
    damaged.header.compression_level = 6;
    built.add_stack_record(damaged);
    built.add_stack_record(bytes_record({4}));
    open(built);
    EXPECT_VELA_ERROR_IN(file->read_stack(2, 0), "VBFFileImp::get_stack", binary_io_folder, -4,
                         "Invalid stack index 2!");
    EXPECT_VELA_ERROR(file->read_stack(0, 0), -10, "Zip error (-3)!");
    file->set_progress_callback([](std::uint64_t, void*) { return 0; }, nullptr);
    EXPECT_VELA_ERROR(file->read_stack(1, 0), -11, "Cancelled by user!");
    EXPECT_EQ(file->number_of_stacks(), 2u);
}
