// Stacks whose last axis grows while they are written.
#include "binary_io/vbf_writing.h"

#include <VelaStacks/VStackRegion.h>

#include <gtest/gtest.h>

#include <bit>
#include <sys/mman.h>

using namespace vela_test;

namespace {

class VariableWriting : public VbfWritingTest
{
protected:
    static constexpr const char* boundary = "Not on sample boundary!";

    const Bytes samples = numbered_bytes(200);

    void write(const Stack& stack, std::size_t begin, std::uint64_t count) const
    {
        stack->write(vela_dt_uint8, samples.data() + begin, nullptr, count);
    }
};

TEST_F(VariableWriting, TheLastSizeFollowsWhatIsWritten)
{
    begin_file();
    const Stack stack = add({3, 2, 0});
    EXPECT_EQ(stack->get_state(), 1);
    write(stack, 0, 6);
    EXPECT_EQ(stack->get_sizes(), (Sizes{3, 2, 1}));
    write(stack, 6, 12);
    EXPECT_EQ(stack->get_sizes(), (Sizes{3, 2, 3}));
    EXPECT_EQ(stack->get_state(), 2) << "it never ends by itself";
    stack->commit(0);
    EXPECT_EQ(stack->get_state(), 0);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.sizes, (std::vector<std::uint32_t>{3, 2, 3}));
    EXPECT_EQ(written.data, slice(samples, 0, 18));
    EXPECT_EQ(written.data_present, 1u);
}

TEST_F(VariableWriting, TheHeaderHasTheLastSizeBehindTheCommitAlone)
{
    begin_file();
    const Stack stack = add({3, 0});
    write(stack, 0, 9);
    const std::size_t last_size_at = 34 + 24 + 4;
    EXPECT_EQ(slice(content(), last_size_at, last_size_at + 4), (Bytes{0, 0, 0, 0}));
    stack->commit(0);
    EXPECT_EQ(slice(content(), last_size_at, last_size_at + 4), (Bytes{3, 0, 0, 0}));
}

TEST_F(VariableWriting, AStepMayComeInPieces)
{
    begin_file();
    const Stack stack = add({5, 0});
    write(stack, 0, 3);
    EXPECT_EQ(stack->get_dimension_size(1), 0u);
    write(stack, 3, 6);
    EXPECT_EQ(stack->get_dimension_size(1), 1u);
    write(stack, 9, 1);
    EXPECT_EQ(stack->get_dimension_size(1), 2u);
    EXPECT_EQ(close_file_with_one_stack().data, slice(samples, 0, 10));
}

TEST_F(VariableWriting, APartOfAStepIsNotCommitted)
{
    begin_file();
    const Stack stack = add({5, 0});
    write(stack, 0, 13);
    EXPECT_STACK_ERROR(stack->commit(0), "write", -1, boundary);
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(stack->get_dimension_size(1), 2u);
    EXPECT_STACK_ERROR(file->add_stack(false), "write", -1, boundary);
    EXPECT_STACK_ERROR(file->close(), "write", -1, boundary);
    write(stack, 13, 2);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.sizes, (std::vector<std::uint32_t>{5, 3}));
    EXPECT_EQ(written.data, slice(samples, 0, 15));
}

TEST_F(VariableWriting, AllSamplesInTheFirstCallWritesNothingAndCommits)
{
    begin_file();
    const Stack stack = add({5, 0}, vela_dt_uint16);
    stack->set_compression(1, 6);
    stack->write(vela_dt_uint16, samples.data(), nullptr, all_samples);
    EXPECT_EQ(stack->get_state(), 0);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.sizes, (std::vector<std::uint32_t>{5, 0}));
    EXPECT_EQ(written.data_length_on_disk, 0u);
    EXPECT_EQ(written.data_present, 1u);
}

TEST_F(VariableWriting, CommittedWithoutSamplesItHasALastSizeOfZero)
{
    begin_file();
    add({5, 0})->commit(0);
    add({0});
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 2u);
    EXPECT_EQ(written.stacks[0].sizes, (std::vector<std::uint32_t>{5, 0}));
    EXPECT_EQ(written.stacks[1].sizes, std::vector<std::uint32_t>{0});
    EXPECT_EQ(written.stacks[1].data_length_on_disk, 0u);
}

TEST_F(VariableWriting, OfOneAxisItGrowsSampleBySample)
{
    begin_file();
    const Stack stack = add({0});
    for (std::size_t i = 0; i < 7; ++i)
    {
        write(stack, i, 1);
        EXPECT_EQ(stack->get_dimension_size(0), i + 1);
    }
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.sizes, std::vector<std::uint32_t>{7});
    EXPECT_EQ(written.data, slice(samples, 0, 7));
}

TEST_F(VariableWriting, CompressedItIsOneStream)
{
    begin_file();
    const Stack stack = add({10, 0}, vela_dt_uint16);
    stack->set_compression(1, 9);
    Bytes all;
    for (unsigned i = 1; i < 5; ++i)
    {
        const Bytes steps = sparse_bytes(20 * i, i);
        stack->write(vela_dt_uint16, steps.data(), nullptr, 10 * i);
        append_bytes(all, steps);
    }
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.sizes, (std::vector<std::uint32_t>{10, 10}));
    EXPECT_EQ(written.samples(), all);
}

TEST_F(VariableWriting, TheLengthStaysAsItWasAtTheFirstCall)
{
    begin_file();
    const Stack stack = add({3, 0});
    stack->set_len({6.0, 2.5});
    write(stack, 0, 12);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.lengths, (std::vector<double>{6.0, 2.5}));
    EXPECT_EQ(written.sizes, (std::vector<std::uint32_t>{3, 4}));
}

TEST_F(VariableWriting, ItHasNoFlushPointsWhateverWasSet)
{
    for (const std::uint64_t block : {std::uint64_t{1000}, std::uint64_t{0}, all_samples})
    {
        begin_file();
        const Stack stack = add({50000, 0});
        stack->set_compression(1, 1);
        stack->set_flush_block_size(block);
        const Bytes data = sparse_bytes(150000);
        write_bytes(stack, data);
        const WrittenStack written = close_file_with_one_stack();
        EXPECT_EQ(written.flush_block_size, 0u);
        EXPECT_EQ(written.flush_point_count, 0u);
        EXPECT_EQ(written.samples(), data);
    }
}

TEST_F(VariableWriting, FromAnotherDescriptionItIsNeverVariable)
{
    VStackInfoImp info;
    info.create(Sizes{3, 0}, vela_dt_uint8);
    VStackRegion region;
    region.create(&info, 0);
    begin_file();
    const Stack by_info = file->add_stack(false);
    by_info->create(&info, 0);
    EXPECT_STACK_ERROR(write(by_info, 0, 3), "write", -1, "Trying to write more samples than the stack is long!");
    begin_file();
    const Stack by_region = file->add_stack(false);
    by_region->create(&info, region);
    EXPECT_STACK_ERROR(write(by_region, 0, 3), "write", -1, "Trying to write more samples than the stack is long!");
    begin_file();
    const Stack committed = file->add_stack(false);
    committed->create(&info, 0);
    write(committed, 0, all_samples);
    EXPECT_EQ(committed->get_state(), 0);
    EXPECT_EQ(close_file_with_one_stack().sizes, (std::vector<std::uint32_t>{3, 0}));
}

TEST_F(VariableWriting, AStepWithoutSamplesCannotBeWritten)
{
    begin_file();
    const Stack stack = add({0, 0});
    const Bytes before = content();
    EXPECT_STACK_ERROR(write(stack, 0, 1), "write", -1, boundary);
    EXPECT_EQ(content(), before);
}

TEST_F(VariableWriting, DeclaredEmptyItTakesSamplesAllTheSame)
{
    begin_file();
    const Stack stack = add({3, 0}, vela_dt_uint8, true);
    write(stack, 0, 6);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.data_present, 0u);
    EXPECT_EQ(written.data, slice(samples, 0, 6));
}

/// The stack that was written is empty or not as a reader of the file finds it, whatever `add_stack` was told.
TEST_F(VariableWriting, ReadByItsWriterItHasWhatWasWritten)
{
    begin_file();
    const Stack declared_empty = add({3, 0}, vela_dt_uint8, true);
    write(declared_empty, 0, 6);
    declared_empty->commit(0);
    Bytes bytes(6, 0xcd);
    std::uint64_t pos = 0;
    EXPECT_EQ(declared_empty->read(vela_dt_uint8, bytes.data(), nullptr, all_samples, pos), 6u);
    EXPECT_EQ(bytes, slice(samples, 0, 6));
    EXPECT_EQ(pos, VBFStackInterface::exhausted);

    const Stack without_samples = add({3, 0});
    without_samples->commit(0);
    pos = 0;
    EXPECT_EQ(without_samples->read(vela_dt_uint8, nullptr, nullptr, all_samples, pos), 0u);
    EXPECT_EQ(pos, 0u);
}

TEST_F(VariableWriting, ConvertsLikeAnyOther)
{
    begin_file();
    const Stack stack = add({2, 0}, vela_dt_uint16);
    write(stack, 0, 6);
    EXPECT_EQ(close_file_with_one_stack().data, bytes_of_numbers(std::vector<std::uint16_t>{1, 2, 3, 4, 5, 6}));
}

TEST_F(VariableWriting, OfRankFifteenItClearsTheLowHalfOfTheFirstLength)
{
    begin_file();
    Sizes sizes(15, 2);
    sizes[14] = 0;
    const Stack stack = add(sizes);
    std::vector<double> lengths(15, 1.0);
    lengths[0] = 2.3;
    lengths[1] = 0.1;
    // The channel axis has none in the record of the stack; they are set all the same.
    EXPECT_THROW_TEXT(stack->set_len(lengths), std::invalid_argument, "Unsupported physical dimension");
    stack->commit(0);
    const WrittenStack written = close_file_with_one_stack();
    const auto damaged = std::bit_cast<double>(std::bit_cast<std::uint64_t>(2.3) & 0xFFFFFFFF00000000);
    ASSERT_NE(damaged, 2.3);
    lengths[0] = damaged;
    EXPECT_EQ(written.lengths, lengths);
    EXPECT_EQ(written.sizes.at(14), 0u);
}

TEST_F(VariableWriting, OfRankFourteenItDamagesNothing)
{
    begin_file();
    Sizes sizes(14, 2);
    sizes[13] = 0;
    const Stack stack = add(sizes);
    const std::vector<double> lengths(14, 2.3);
    EXPECT_THROW_TEXT(stack->set_len(lengths), std::invalid_argument, "Unsupported physical dimension");
    stack->commit(0);
    EXPECT_EQ(close_file_with_one_stack().lengths, lengths);
}

TEST_F(VariableWriting, ASizeThatTheHeaderCannotHoldIsRefusedBeforeItIsWritten)
{
    // Nobody may read from here.
    void* const page = ::mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(page, MAP_FAILED);
    begin_file();
    const Stack stack = add({2, 0});
    write(stack, 0, 4);
    const Bytes before = content();
    EXPECT_VELA_ERROR(stack->write(vela_dt_uint8, page, nullptr, 1ull << 33), -1,
                      "Size of axis 1 does not fit the file format!");
    EXPECT_EQ(content(), before);
    ::munmap(page, 4096);
}

} // namespace
