// Stacks whose last size is known only at the end.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"

#include <VelaStacks/VStackInfo.h>

#include <stdexcept>

using namespace vela_test;

namespace {

constexpr std::uint64_t all = VBFStackInterface::all_samples;

class VariableStack : public WritingTest
{
};

TEST_F(VariableStack, GrowsByEachWrite)
{
    const Stack stack = add({2, 3, 0});
    const Bytes samples = counted_bytes(18);
    stack->write(vela_dt_uint8, samples.data(), nullptr, 6);
    EXPECT_EQ(stack->get_sizes(), (Sizes{2, 3, 1}));
    stack->write(vela_dt_uint8, samples.data() + 6, nullptr, 3); // half a step
    EXPECT_EQ(stack->get_sizes(), (Sizes{2, 3, 1}));
    stack->write(vela_dt_uint8, samples.data() + 9, nullptr, 9);
    EXPECT_EQ(stack->get_sizes(), (Sizes{2, 3, 3}));
    EXPECT_EQ(stack->get_state(), 2);
    stack->commit(0);
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_EQ(samples_of(*stack), samples);
    const Stack read = reopen()->get_stack(0);
    EXPECT_EQ(read->get_sizes(), (Sizes{2, 3, 3}));
    EXPECT_EQ(samples_of(*read), samples);
}

TEST_F(VariableStack, HasItsSizeInTheHeaderOnlyAtTheEnd)
{
    const Stack stack = add({2, 0});
    stack->write(vela_dt_uint8, "abcdef", nullptr, 6);
    EXPECT_EQ(on_disk().u32(first_record_pos + stack_sizes_at + 4), 0u);
    stack->commit(0);
    EXPECT_EQ(on_disk().u32(first_record_pos + stack_sizes_at + 4), 3u);
    EXPECT_EQ(on_disk().u32(first_record_pos + stack_sizes_at + 8), 0u);
}

TEST_F(VariableStack, KeepsTheLengthThatItHadAtTheStart)
{
    const Stack stack = add({2, 0});
    stack->set_len(1, 5.0);
    stack->write(vela_dt_uint8, "abcdef", nullptr, 6);
    stack->commit(0);
    EXPECT_EQ(closed().f64(first_record_pos + stack_lengths_at + 8), 5.0);
}

TEST_F(VariableStack, AllSamplesInTheFirstCallCommits)
{
    const Stack stack = add({2, 0});
    stack->write(vela_dt_uint8, nullptr, nullptr, all);
    EXPECT_EQ(stack->get_state(), 0);
    const Stack read = reopen()->get_stack(0);
    EXPECT_EQ(read->get_sizes(), (Sizes{2, 0}));
    EXPECT_TRUE(samples_of(*read).empty());
}

TEST_F(VariableStack, AllSamplesInALaterCallAreTooMany)
{
    const Stack stack = add({0});
    stack->write(vela_dt_uint8, "a", nullptr, 1);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "b", nullptr, all), -1,
                      "Trying to write more samples than the stack is long!");
    stack->commit(0);
    EXPECT_EQ(reopen()->get_stack(0)->get_sizes(), Sizes{1});
}

TEST_F(VariableStack, NeedsWholeSteps)
{
    const Stack stack = add({4, 0});
    stack->write(vela_dt_uint8, "abcdef", nullptr, 6);
    EXPECT_VELA_ERROR_IN(stack->commit(0), "VBFStackImp::write", vbf_sources, -1, "Not on sample boundary!");
    EXPECT_EQ(stack->get_sizes(), (Sizes{4, 1}));
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_VELA_ERROR(file->close(), -1, "Not on sample boundary!");
    stack->write(vela_dt_uint8, "gh", nullptr, 2);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'}));
}

TEST_F(VariableStack, WhoseStepsHaveNoSamplesTakesNone)
{
    const Stack stack = add({0, 3, 0});
    const std::uint64_t size_before = on_disk().size();
    EXPECT_VELA_ERROR_IN(stack->write(vela_dt_uint8, "a", nullptr, 1), "VBFStackImp::write", vbf_sources, -1,
                         "Not on sample boundary!");
    EXPECT_EQ(on_disk().size(), size_before);
    EXPECT_EQ(stack->get_state(), 1);
    stack->commit(0);
    EXPECT_EQ(reopen()->get_stack(0)->get_sizes(), (Sizes{0, 3, 0}));
}

TEST_F(VariableStack, CannotGrowBeyondItsHeader)
{
    const Stack stack = add({1, 0});
    const std::uint64_t size_before = on_disk().size();
    EXPECT_VELA_ERROR_IN(stack->write(vela_dt_uint8, "a", nullptr, std::uint64_t{1} << 32), "VBFStackImp::write",
                         vbf_sources, -1, "Size of axis 1 does not fit the file format!");
    EXPECT_EQ(on_disk().size(), size_before);
    stack->write(vela_dt_uint8, "a", nullptr, 1);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "b", nullptr, 0xffffffff), -1,
                      "Size of axis 1 does not fit the file format!");
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "b", nullptr, all - 1), -1,
                      "Size of axis 1 does not fit the file format!");
    stack->commit(0);
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), Bytes{'a'});
}

TEST_F(VariableStack, OfSixAxesTakesNoSamplesThatNobodyCouldRead)
{
    const Stack stack = add({1, 1, 1, 1, 1, 0});
    const std::uint64_t size_before = on_disk().size();
    EXPECT_THROW_TEXT(stack->write(vela_dt_uint8, "a", nullptr, 1), std::invalid_argument,
                      "Unsupported number of sizes");
    EXPECT_EQ(stack->get_state(), 1);
    EXPECT_EQ(on_disk().size(), size_before);
    VBFFile& opened = reopen();
    ASSERT_EQ(opened->number_of_stacks(), 1u);
    EXPECT_EQ(opened->get_stack(0)->get_sizes(), (Sizes{1, 1, 1, 1, 1, 0}));
}

TEST_F(VariableStack, OfFifteenAxesLosesHalfOfItsFirstLength)
{
    Sizes sizes(15, 1);
    sizes.back() = 0;
    const Stack stack = add(sizes);
    stack->set_len(0, 2.3);
    stack->commit(0);
    const ByteMap map = closed();
    EXPECT_EQ(map.u64(first_record_pos + stack_lengths_at), std::bit_cast<std::uint64_t>(2.3) >> 32 << 32);
    EXPECT_NE(map.f64(first_record_pos + stack_lengths_at), 2.3);
    EXPECT_EQ(map.f64(first_record_pos + stack_lengths_at + 8), 1.0);
}

TEST_F(VariableStack, IsNotMadeFromAnotherDescription)
{
    VStackInfo info;
    info->create({2, 0}, vela_dt_uint8);
    const Stack stack = file->add_stack(false);
    stack->create(info, 0);
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, "ab", nullptr, 2), -1,
                      "Trying to write more samples than the stack is long!");
}

TEST_F(VariableStack, WithoutSamplesComesFromAnotherDescription)
{
    VStackInfo info;
    info->create({2, 0}, vela_dt_uint8);
    const Stack stack = file->add_stack(false);
    stack->create(info, 0);
    stack->write(vela_dt_uint8, nullptr, nullptr, all);
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_TRUE(samples_of(*stack).empty());
    EXPECT_EQ(reopen()->get_stack(0)->get_sizes(), (Sizes{2, 0}));
}

TEST_F(VariableStack, DeclaredEmptyTakesSamplesAllTheSame)
{
    const Stack stack = file->add_stack(true);
    stack->create({2, 0}, vela_dt_uint8);
    stack->write(vela_dt_uint8, "ab", nullptr, 2);
    stack->commit(0);
    EXPECT_EQ(samples_of(*stack), (Bytes{'a', 'b'}));
    EXPECT_EQ(samples_of(*reopen()->get_stack(0)), (Bytes{'a', 'b'}));
}

}
