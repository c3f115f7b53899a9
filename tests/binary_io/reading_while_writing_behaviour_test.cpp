// Finished stacks are read while others are written.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

class ReadingWhileWriting : public VbfWritingTest
{
protected:
    static Bytes read_all(const Stack& stack)
    {
        Bytes samples(static_cast<std::size_t>(stack->get_size(0)), 0xCD);
        stack->read(stack->get_dt(), samples.data(), nullptr);
        return samples;
    }
};

TEST_F(ReadingWhileWriting, TheWritersOwnStackReadsWhenItIsComplete)
{
    for (const int level : {0, 6})
    {
        begin_file();
        const Stack stack = add({300, 300});
        stack->set_compression(1, level);
        const Bytes samples = sparse_bytes(90000);
        stack->write(vela_dt_uint8, samples.data(), nullptr, 50000);
        EXPECT_VELA_ERROR(read_all(stack), -1, "Stack not committed to disk. Cannot read!");
        stack->write(vela_dt_uint8, samples.data() + 50000, nullptr, 40000);
        EXPECT_TRUE(read_all(stack) == samples);
        EXPECT_TRUE(read_all(stack) == samples);
        EXPECT_TRUE(close_file_with_one_stack().samples() == samples);
    }
}

TEST_F(ReadingWhileWriting, ReadsBetweenAnyTwoCallsDisturbNothing)
{
    for (const int level : {0, 6})
    {
        begin_file();
        file->set_default_compression(1, level);
        const Bytes first_samples = sparse_bytes(90000, 1);
        const Bytes second_samples = sparse_bytes(90000, 2);
        const Stack first = add({300, 300});
        write_bytes(first, first_samples);
        const auto read_first = [&]
        {
            EXPECT_TRUE(read_all(first) == first_samples);
            EXPECT_TRUE(read_all(file->get_stack(0)) == first_samples);
        };
        read_first();
        const Stack second = file->add_stack(false);
        read_first();
        second->create(Sizes{300, 300}, vela_dt_uint8);
        read_first();
        for (std::size_t begin = 0; begin < 90000; begin += 30000)
        {
            second->write(vela_dt_uint8, second_samples.data() + begin, nullptr, 30000);
            read_first();
        }
        EXPECT_TRUE(read_all(second) == second_samples);
        const WrittenFile written = close_file();
        ASSERT_EQ(written.stacks.size(), 2u);
        EXPECT_TRUE(written.stacks[0].samples() == first_samples);
        EXPECT_TRUE(written.stacks[1].samples() == second_samples);
    }
}

TEST_F(ReadingWhileWriting, ACopyKnowsNothingOfWhatIsWrittenLater)
{
    begin_file();
    const Stack stack = add({2, 0});
    stack->write(vela_dt_uint8, counted_bytes(4).data(), nullptr, 4);
    const Stack copy = file->get_stack(0);
    EXPECT_EQ(copy->get_state(), 2);
    EXPECT_EQ(copy->get_sizes(), (Sizes{2, 2}));
    stack->set_tag("key", "value");
    stack->write(vela_dt_uint8, counted_bytes(4).data(), nullptr, 4);
    EXPECT_EQ(copy->get_sizes(), (Sizes{2, 2}));
    EXPECT_EQ(copy->get_tag_keys(), std::vector<std::string>());
    EXPECT_EQ(close_file_with_one_stack().data.size(), 8u);
}

TEST_F(ReadingWhileWriting, TheFileReadsBackWhenItIsClosed)
{
    begin_file();
    file->set_file_desc("desc");
    const Stack stack = add({3, 2}, vela_dt_int16);
    stack->set_name("cells");
    stack->set_tag("key", "value");
    write_bytes(stack, noisy_bytes(12));
    file->close();
    file.open(file_name(file_path), VFile::read_mode);
    ASSERT_EQ(file->number_of_stacks(), 1u);
    const Stack read = file->get_stack(0);
    EXPECT_EQ(read->get_name(), "cells");
    EXPECT_EQ(read->get_sizes(), (Sizes{3, 2}));
    EXPECT_EQ(read->get_tag("key"), "value");
    EXPECT_EQ(read_all(read), noisy_bytes(12));
    EXPECT_EQ(file->seek_to_end_of_stack(0), on_disk().stacks.at(0).end);
}

} // namespace
