// The states of a stack that is written, and the calls that they refuse.
#include "binary_io/vbf_writing.h"

#include <VelaStacks/VStackRegion.h>

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

class StackStatesWriting : public VbfWritingTest
{
protected:
    static constexpr const char* not_enough = "Not enough samples written!";
    static constexpr const char* too_many = "Trying to write more samples than the stack is long!";
    static constexpr const char* complete = "Stack is already complete. Invalid call to write()!";
    static constexpr const char* no_layout = "Cannot set data layout!";
    static constexpr const char* not_described = "Stack not ready to be commited. Meta-information missing!";

    const Bytes samples = numbered_bytes(12);

    void write(const Stack& stack, std::size_t begin, std::uint64_t count) const
    {
        stack->write(vela_dt_uint8, samples.data() + begin, nullptr, count);
    }
};

TEST_F(StackStatesWriting, StatesFollowTheCalls)
{
    begin_file();
    const Stack stack = file->add_stack(false);
    EXPECT_EQ(stack->get_state(), -1);
    stack->create(Sizes{4, 3}, vela_dt_uint8);
    EXPECT_EQ(stack->get_state(), 1);
    write(stack, 0, 5);
    EXPECT_EQ(stack->get_state(), 2);
    write(stack, 5, 6);
    EXPECT_EQ(stack->get_state(), 2);
    write(stack, 11, 1);
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_EQ(close_file_with_one_stack().data, samples);
}

TEST_F(StackStatesWriting, WritingAllSamplesFinishesTheStack)
{
    for (const std::uint64_t count : {std::uint64_t{12}, all_samples})
    {
        begin_file();
        const Stack stack = add({4, 3});
        write(stack, 0, count);
        EXPECT_EQ(stack->get_state(), 0);
        EXPECT_EQ(on_disk().stacks.size(), 1u) << "no commit is needed";
        EXPECT_EQ(close_file_with_one_stack().data, samples);
    }
}

TEST_F(StackStatesWriting, AStackIsDescribedOnce)
{
    VStackInfoImp info;
    info.create(Sizes{4, 3}, vela_dt_uint8);
    VStackRegion region;
    region.create(&info, 0);
    begin_file();
    for (int form = 0; form < 3; ++form)
    {
        const Stack stack = file->add_stack(false);
        if (form == 0)
            stack->create(Sizes{4, 3}, vela_dt_uint8);
        else if (form == 1)
            stack->create(&info, 0);
        else
            stack->create(&info, region);
        EXPECT_EQ(stack->get_state(), 1);
        EXPECT_VELA_ERROR(stack->create(Sizes{2}, vela_dt_uint8), -1, no_layout);
        EXPECT_VELA_ERROR(stack->create(&info, vela_dt_uint16), -1, no_layout);
        EXPECT_VELA_ERROR(stack->create(&info, region), -1, no_layout);
        EXPECT_EQ(stack->get_sizes(), (Sizes{4, 3}));
        EXPECT_EQ(stack->get_dt(), vela_dt_uint8);
        write(stack, 0, 5);
        EXPECT_VELA_ERROR(stack->create(Sizes{2}, vela_dt_uint8), -1, no_layout);
        write(stack, 5, 7);
        EXPECT_VELA_ERROR(stack->create(Sizes{2}, vela_dt_uint8), -1, no_layout);
    }
    EXPECT_EQ(close_file().stacks.size(), 3u);
}

TEST_F(StackStatesWriting, AStackWithoutDescriptionIsNotWritten)
{
    begin_file();
    const Stack stack = file->add_stack(false);
    EXPECT_STACK_ERROR(write(stack, 0, 12), "write", -1, not_described);
    EXPECT_STACK_ERROR(stack->commit(vela_dt_uint8), "write", -1, not_described);
    EXPECT_EQ(stack->get_state(), -1);
    EXPECT_STACK_ERROR(file->close(), "write", -1, not_described);
    EXPECT_STACK_ERROR(file->add_stack(false), "write", -1, not_described);
    EXPECT_STACK_ERROR(file->finish(), "write", -1, not_described);
    EXPECT_EQ(file->number_of_stacks(), 1u);
    stack->create(Sizes{4, 3}, vela_dt_uint8);
    write(stack, 0, 12);
    EXPECT_EQ(close_file_with_one_stack().data, samples);
}

TEST_F(StackStatesWriting, AFailedCreateLeavesTheStackUndescribed)
{
    begin_file();
    const Stack stack = file->add_stack(false);
    EXPECT_THROW_TEXT(stack->create(Sizes{4, 3}, vela_dt_uint64), std::invalid_argument, "Unsupported data type");
    EXPECT_EQ(stack->get_state(), -1);
    EXPECT_EQ(stack->get_dt(), vela_dt_uint64);
    EXPECT_VELA_ERROR(file->close(), -1, not_described);
    EXPECT_TRUE(file->is_open());
    stack->create(Sizes{4, 3}, vela_dt_uint8);
    EXPECT_EQ(stack->get_state(), 1);
    write(stack, 0, 12);
    EXPECT_EQ(close_file_with_one_stack().data, samples);
}

/// A description that fails when it has given its sizes and its type.
TEST_F(StackStatesWriting, ACreateThatFailsHalfwayLeavesTheStackUndescribed)
{
    class Failing : public VStackInfoImp
    {
    public:
        const std::string& get_name() const override { throw std::runtime_error("no name"); }
    };
    Failing info;
    info.create(Sizes{4, 3}, vela_dt_uint8);
    begin_file();
    const Stack stack = file->add_stack(false);
    EXPECT_THROW_TEXT(stack->create(&info, 0), std::runtime_error, "no name");
    EXPECT_EQ(stack->get_state(), -1);
    EXPECT_EQ(stack->get_sizes(), (Sizes{4, 3}));
    EXPECT_VELA_ERROR(file->close(), -1, not_described);
    stack->create(Sizes{4, 3}, vela_dt_uint8);
    write(stack, 0, 12);
    EXPECT_EQ(close_file_with_one_stack().data, samples);
}

TEST_F(StackStatesWriting, ACompleteStackIsNotWritten)
{
    begin_file();
    const Stack stack = add({4, 3});
    write(stack, 0, 12);
    const Bytes before = content();
    EXPECT_STACK_ERROR(write(stack, 0, 12), "write", -1, complete);
    EXPECT_STACK_ERROR(write(stack, 0, all_samples), "write", -1, complete);
    EXPECT_STACK_ERROR(write(stack, 0, 0), "write", -1, complete);
    EXPECT_STACK_ERROR(stack->commit(vela_dt_uint8), "write", -1, complete);
    EXPECT_EQ(stack->get_state(), 0);
    EXPECT_EQ(content(), before);
}

TEST_F(StackStatesWriting, MoreSamplesThanAreLeftAreRefusedAndNothingIsWritten)
{
    begin_file();
    const Stack stack = add({4, 3});
    write(stack, 0, 5);
    const Bytes before = content();
    EXPECT_STACK_ERROR(write(stack, 0, 8), "write", -1, too_many);
    EXPECT_STACK_ERROR(write(stack, 0, all_samples - 1), "write", -1, too_many);
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(content(), before);
    write(stack, 5, 7);
    EXPECT_EQ(close_file_with_one_stack().data, samples);
}

TEST_F(StackStatesWriting, AllThatIsLeftIsForTheFirstCallAlone)
{
    begin_file();
    const Stack stack = add({4, 3});
    write(stack, 0, 5);
    EXPECT_STACK_ERROR(write(stack, 5, all_samples), "write", -1, too_many);
    EXPECT_EQ(stack->get_state(), 2);
    write(stack, 5, 7);
    EXPECT_EQ(stack->get_state(), 0);
}

TEST_F(StackStatesWriting, AShortStackIsNotCommittedButMayGoOn)
{
    begin_file();
    const Stack stack = add({4, 3});
    write(stack, 0, 11);
    EXPECT_STACK_ERROR(stack->commit(vela_dt_uint8), "write", -1, not_enough);
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_STACK_ERROR(file->finish(), "write", -1, not_enough);
    EXPECT_STACK_ERROR(file->add_stack(false), "write", -1, not_enough);
    EXPECT_STACK_ERROR(file->close(), "write", -1, not_enough);
    EXPECT_TRUE(file->is_open());
    EXPECT_EQ(file->number_of_stacks(), 1u);
    EXPECT_EQ(on_disk().first_stack_pos, 0u);
    write(stack, 11, 1);
    EXPECT_EQ(close_file_with_one_stack().data, samples);
}

TEST_F(StackStatesWriting, CommittingADescribedStackFailsForGood)
{
    begin_file();
    add_whole("before");
    const Bytes before = content();
    const Stack stack = add({4, 3});
    EXPECT_STACK_ERROR(stack->commit(vela_dt_uint8), "write", -1, not_enough);
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(content(), before) << "its header is never written";
    EXPECT_THROW(write(stack, 0, 12), VelaError);
    EXPECT_STACK_ERROR(stack->commit(vela_dt_uint8), "write", -1, not_enough);
    EXPECT_STACK_ERROR(file->close(), "write", -1, not_enough);
    file.reset();
    EXPECT_EQ(on_disk().stack_names(), std::vector<std::string>{"before"});
    EXPECT_EQ(on_disk().meta_data_pos, 0u);
}

TEST_F(StackStatesWriting, AFirstCallWithTooManySamplesWritesNothing)
{
    begin_file();
    const Stack stack = add({4, 3});
    const Bytes before = content();
    EXPECT_STACK_ERROR(write(stack, 0, 13), "write", -1, too_many);
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(content(), before);
}

TEST_F(StackStatesWriting, AnEmptyStackHasNoSamplesOnDisk)
{
    begin_file();
    const Stack stack = add({4, 3}, vela_dt_uint16, true);
    stack->set_compression(1, 6);
    stack->set_name("none");
    stack->write(vela_dt_uint16, nullptr, nullptr, 0);
    EXPECT_EQ(stack->get_state(), 0);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.data_present, 0u);
    EXPECT_EQ(written.data_length_on_disk, 0u);
    EXPECT_EQ(written.footer_pos, written.pos + 368 + 4);
    EXPECT_EQ(written.sizes, (std::vector<std::uint32_t>{4, 3}));
    EXPECT_EQ(written.data_type, vela_dt_uint16);
    EXPECT_EQ(written.name, "none");
}

TEST_F(StackStatesWriting, AnEmptyStackIsCommittedByTheFile)
{
    begin_file();
    const Stack first = add({4, 3}, vela_dt_uint8, true);
    EXPECT_EQ(first->get_state(), 1);
    const Stack second = add({5}, vela_dt_uint8, true);
    EXPECT_EQ(first->get_state(), 0);
    file->finish();
    EXPECT_EQ(second->get_state(), 0);
    add({6}, vela_dt_uint8, true);
    EXPECT_EQ(close_file().stacks.size(), 3u);
}

TEST_F(StackStatesWriting, AnEmptyStackTakesNoSamples)
{
    begin_file();
    const Stack stack = add({4, 3}, vela_dt_uint8, true);
    for (const std::uint64_t count : {std::uint64_t{1}, std::uint64_t{12}, std::uint64_t{13}, all_samples})
        EXPECT_STACK_ERROR(write(stack, 0, count), "write", -1, "Trying to write to empty stack!");
    EXPECT_EQ(stack->get_state(), 1);
    stack->set_name("still open");
    stack->commit(vela_dt_uint8);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.name, "still open");
    EXPECT_EQ(written.data_length_on_disk, 0u);
}

TEST_F(StackStatesWriting, AStackOfNoElementsNeedsNoSamples)
{
    begin_file();
    const Stack all = add({0, 3});
    write(all, 0, all_samples);
    EXPECT_EQ(all->get_state(), 0);
    const Stack none = add({4, 0, 3});
    none->set_compression(1, 6);
    none->commit(0);
    EXPECT_EQ(none->get_state(), 0);
    add({0, 2});
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 3u);
    for (const WrittenStack& stack : written.stacks)
    {
        EXPECT_EQ(stack.data_present, 1u);
        EXPECT_EQ(stack.data_length_on_disk, 0u);
    }
}

TEST_F(StackStatesWriting, TheTypeMayBeLeftToTheFirstCall)
{
    begin_file();
    const Stack stack = add({4, 3}, vela_dt_none);
    EXPECT_EQ(stack->get_state(), 1);
    EXPECT_EQ(stack->get_dt(), 0);
    stack->write(vela_dt_uint16, noisy_bytes(24).data(), nullptr, 6);
    EXPECT_EQ(stack->get_dt(), vela_dt_uint16);
    stack->write(vela_dt_uint8, numbered_bytes(6).data(), nullptr, 6);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.data_type, vela_dt_uint16);
    EXPECT_EQ(written.data,
              slice(noisy_bytes(24), 0, 12) + bytes_of_numbers(std::vector<std::uint16_t>{1, 2, 3, 4, 5, 6}));
}

TEST_F(StackStatesWriting, ATypeThatIsLeftOpenBecomesComplexWithAnImaginaryBuffer)
{
    begin_file();
    const Stack stack = add({2}, vela_dt_none);
    const std::vector<float> real = {1.0f, 2.0f};
    const std::vector<float> imaginary = {3.0f, 4.0f};
    stack->write(vela_dt_single, real.data(), imaginary.data(), 2);
    EXPECT_EQ(stack->get_dt(), complex_single);
    const WrittenStack written = close_file_with_one_stack();
    EXPECT_EQ(written.data_type, complex_single);
    EXPECT_EQ(written.data, bytes_of_numbers(std::vector<float>{1.0f, 3.0f, 2.0f, 4.0f}));
}

TEST_F(StackStatesWriting, ATypeThatIsLeftOpenMayComeWithTheCommit)
{
    begin_file();
    add({4, 3}, vela_dt_none, true)->commit(vela_dt_int16);
    add({4, 0}, vela_dt_none)->commit(vela_dt_double);
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 2u);
    EXPECT_EQ(written.stacks[0].data_type, vela_dt_int16);
    EXPECT_EQ(written.stacks[1].data_type, vela_dt_double);
}

TEST_F(StackStatesWriting, ATypeThatIsLeftOpenIsTakenBeforeTheImaginaryBufferIsRefused)
{
    begin_file();
    const Stack stack = add({2}, vela_dt_none);
    const Bytes before = content();
    const float parts[4] = {1, 2, 3, 4};
    EXPECT_STACK_ERROR(stack->write(complex_single, parts, parts, 2), "write", -1,
                       "Imaginary block given but buffer is already complex!");
    EXPECT_EQ(stack->get_dt(), complex_single);
    EXPECT_EQ(stack->get_state(), 2);
    EXPECT_EQ(content(), before);
}

TEST_F(StackStatesWriting, ATypeThatADescriptionCannotHaveIsNotTakenByTheFirstCall)
{
    begin_file();
    const Stack stack = add({2}, vela_dt_none);
    const Bytes before = content();
    const std::uint64_t values[2] = {1, 2};
    EXPECT_THROW_TEXT(stack->write(vela_dt_uint64, values, nullptr, 2), std::invalid_argument, "Unsupported data type");
    EXPECT_EQ(stack->get_state(), 1);
    EXPECT_EQ(content(), before);
}

TEST_F(StackStatesWriting, WithoutATypeNothingIsCommitted)
{
    const char* text = "Stack data type not set. Cannot commit stack to file!";
    for (const bool empty : {false, true})
    {
        begin_file();
        const Stack stack = add({4, 3}, vela_dt_none, empty);
        const Bytes before = content();
        EXPECT_STACK_ERROR(stack->commit(0), "write", -1, text);
        EXPECT_STACK_ERROR(file->close(), "write", -1, text);
        EXPECT_EQ(stack->get_state(), 1);
        EXPECT_EQ(content(), before);
        if (empty)
            stack->commit(vela_dt_uint8);
        else
            write(stack, 0, 12);
        EXPECT_EQ(close_file_with_one_stack().data_type, vela_dt_uint8);
    }
}

TEST_F(StackStatesWriting, AStackIsCommittedByTheNextOneAndByTheFile)
{
    begin_file();
    const Stack first = add({2, 0});
    write(first, 0, 4);
    EXPECT_EQ(first->get_state(), 2);
    const Stack second = add({2, 0});
    EXPECT_EQ(first->get_state(), 0);
    EXPECT_EQ(on_disk().stacks.size(), 1u);
    write(second, 4, 6);
    file->finish();
    EXPECT_EQ(second->get_state(), 0);
    EXPECT_EQ(on_disk().stacks.size(), 2u);
    const Stack third = add({2, 0});
    write(third, 0, 2);
    const WrittenFile written = close_file();
    EXPECT_EQ(third->get_state(), 0);
    ASSERT_EQ(written.stacks.size(), 3u);
    EXPECT_EQ(written.stacks[1].data, slice(samples, 4, 10));
}

} // namespace
