// Whole stacks from memory to a file.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"

#include <VelaStacks/VStack.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

using namespace vela_test;

namespace {

class WriteStack : public WritingTest
{
protected:
    static boost::shared_ptr<VStackImp> counted_stack(const Sizes& sizes, int dt)
    {
        const boost::shared_ptr<VStackImp> stack(new VStackImp);
        stack->create(sizes, dt);
        const Bytes samples = counted_bytes(stack->get_size(vela_dt_none));
        std::copy(samples.begin(), samples.end(), stack->get_data_ptr());
        return stack;
    }
};

TEST_F(WriteStack, TakesDescriptionAndSamples)
{
    const auto stack = counted_stack({4, 3}, vela_dt_uint16);
    stack->set_name("name");
    stack->set_labels({"X", "Y"});
    stack->set_len(0, 4.5);
    stack->set_col_labels(1, {"a", "b", "c"});
    file->write_stack(stack.get(), 0);
    const Stack read = reopen()->get_stack(0);
    EXPECT_EQ(read->get_dt(), vela_dt_uint16);
    EXPECT_EQ(read->get_name(), "name");
    EXPECT_EQ(read->get_labels(), (std::vector<std::string>{"X", "Y"}));
    EXPECT_EQ(read->get_length(0), 4.5);
    EXPECT_EQ(read->get_col_labels(1), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(samples_of(*read), counted_bytes(24));
}

TEST_F(WriteStack, ConvertsToTheTypeThatIsAskedFor)
{
    const auto stack = counted_stack({5}, vela_dt_uint8);
    file->write_stack(stack.get(), vela_dt_double);
    const Stack read = reopen()->get_stack(0);
    EXPECT_EQ(read->get_dt(), vela_dt_double);
    std::vector<double> values(5);
    read->read(vela_dt_double, values.data(), nullptr);
    EXPECT_EQ(values, (std::vector<double>{0, 1, 2, 3, 4}));
}

TEST_F(WriteStack, HasTheDefaultCompression)
{
    file->set_default_compression(1, 9);
    file->write_stack(counted_stack({300, 300}, vela_dt_uint8).get(), 0);
    const ByteMap map = on_disk();
    EXPECT_EQ(map.u32(first_record_pos + stack_compression_type_at), 1u);
    EXPECT_LT(map.u64(first_record_pos + stack_data_length_at), 90000u);
    EXPECT_TRUE(samples_of(*reopen()->get_stack(0)) == counted_bytes(90000));
}

TEST_F(WriteStack, WithoutSamplesIsComplete)
{
    const auto stack = counted_stack({4, 0}, vela_dt_uint8);
    file->write_stack(stack.get(), 0);
    EXPECT_EQ(file->get_stack(0)->get_state(), 0);
    EXPECT_EQ(reopen()->get_stack(0)->get_sizes(), (Sizes{4, 0}));
}

TEST_F(WriteStack, SamplesThatTheBlockNoLongerHasAreZero)
{
    const auto stack = counted_stack({100}, vela_dt_uint16);
    VStackImp sharing(*stack);
    const std::vector<std::uint64_t> smaller = {30};
    sharing.create(smaller, vela_dt_uint16);
    Bytes expected = counted_bytes(60);
    expected.resize(200, 0);
    file->write_stack(stack.get(), 0);
    const std::vector<std::uint64_t> nothing = {0};
    sharing.create(nothing, vela_dt_uint16);
    file->set_default_compression(1, 1);
    file->write_stack(stack.get(), 0);
    VBFFile& opened = reopen();
    EXPECT_EQ(samples_of(*opened->get_stack(0)), expected);
    EXPECT_EQ(samples_of(*opened->get_stack(1)), Bytes(200, 0));
}

TEST_F(WriteStack, NeedsAFileThatIsOpenForWriting)
{
    const auto stack = counted_stack({2}, vela_dt_uint8);
    EXPECT_VELA_ERROR(reopen()->write_stack(stack.get(), 0), -1, "File not open for writing!");
}

TEST_F(WriteStack, OfATypeThatCannotBeStoredStaysWithoutDescription)
{
    const auto stack = counted_stack({2}, vela_dt_uint8);
    EXPECT_THROW_TEXT(file->write_stack(stack.get(), vela_dt_uint64), std::invalid_argument, "Unsupported data type");
    EXPECT_EQ(file->number_of_stacks(), 1u);
    EXPECT_EQ(file->get_stack(0)->get_state(), -1);
    EXPECT_VELA_ERROR(file->close(), -1, "Stack not ready to be commited. Meta-information missing!");
}

}
