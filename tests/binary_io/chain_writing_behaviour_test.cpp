// When a stack becomes part of the file: behind its footer, and not before. Those that are part of it can be read.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

using namespace vela_test;

namespace {

class ChainWriting : public VbfWritingTest
{
protected:
    typedef std::vector<std::string> Names;

    Names names_on_disk() const { return on_disk().stack_names(); }
};

TEST_F(ChainWriting, StacksFollowEachOtherWithoutAGap)
{
    begin_file();
    file->set_file_desc("chain");
    add_whole("a");
    const Stack compressed = add({300, 300});
    compressed->set_name("b");
    compressed->set_compression(1, 6);
    write_bytes(compressed, sparse_bytes(90000));
    const Stack empty = add({7}, vela_dt_double, true);
    empty->set_name("c");
    const Stack variable = add({5, 0});
    variable->set_name("d");
    write_bytes(variable, numbered_bytes(10));
    const WrittenFile written = close_file(); // which looks for gaps
    EXPECT_EQ(written.stack_names(), (Names{"a", "b", "c", "d"}));
    EXPECT_EQ(written.first_stack_pos, written.stacks.at(0).pos);
    EXPECT_EQ(written.stacks.at(0).next_stack_pos, written.stacks.at(1).pos);
    EXPECT_EQ(written.stacks.at(3).next_stack_pos, 0u);
}

TEST_F(ChainWriting, AStackIsLinkedWithItsLastSample)
{
    begin_file();
    const Stack first = add({4, 3});
    first->set_name("a");
    first->write(vela_dt_uint8, numbered_bytes(12).data(), nullptr, 11);
    EXPECT_EQ(on_disk().first_stack_pos, 0u);
    first->write(vela_dt_uint8, numbered_bytes(12).data() + 11, nullptr, 1);
    EXPECT_EQ(names_on_disk(), Names{"a"});
    EXPECT_EQ(on_disk().first_stack_pos, 34u);
    EXPECT_EQ(complaints_about(on_disk().stacks.at(0)), "");
    EXPECT_EQ(on_disk().stacks.at(0).next_stack_pos, 0u);

    const Stack second = add({4, 3});
    second->set_name("b");
    second->write(vela_dt_uint8, numbered_bytes(12).data(), nullptr, 11);
    EXPECT_EQ(names_on_disk(), Names{"a"});
    EXPECT_EQ(on_disk().stacks.at(0).next_stack_pos, 0u);
    second->write(vela_dt_uint8, numbered_bytes(12).data() + 11, nullptr, 1);
    EXPECT_EQ(names_on_disk(), (Names{"a", "b"}));
}

TEST_F(ChainWriting, TheHeaderHasNoLengthUntilTheFooterIsWritten)
{
    begin_file();
    const Stack stack = add({4, 3});
    stack->write(vela_dt_uint8, numbered_bytes(12).data(), nullptr, 11);
    const Bytes during = content();
    EXPECT_EQ(slice(during, 34 + 352, 34 + 368), Bytes(16, 0));
    EXPECT_EQ(slice(during, 34, 48),
              slice(Bytes{'V', 'E', 'L', 'A', '_', 'B', 'F', '_', 'S', 'T', 'A', 'C', 'K', '\n'}, 0, 14));
    EXPECT_EQ(during.size(), 34u + 368 + 11);
    stack->write(vela_dt_uint8, numbered_bytes(12).data() + 11, nullptr, 1);
    EXPECT_EQ(slice(content(), 34 + 352, 34 + 360), (Bytes{12, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(ChainWriting, AFailedCommitLinksNothing)
{
    begin_file();
    add_whole("a");
    const Stack stack = add({4, 3});
    stack->write(vela_dt_uint8, numbered_bytes(12).data(), nullptr, 5);
    EXPECT_VELA_ERROR(file->close(), -1, "Not enough samples written!");
    EXPECT_EQ(names_on_disk(), Names{"a"});
    EXPECT_EQ(on_disk().meta_data_pos, 0u);
    EXPECT_EQ(file->number_of_stacks(), 2u);
}

TEST_F(ChainWriting, AFileOfAHundredStacksIsOneChain)
{
    begin_file();
    for (int i = 0; i < 100; ++i)
        add_whole("stack " + std::to_string(i));
    const WrittenFile written = close_file();
    ASSERT_EQ(written.stacks.size(), 100u);
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(written.stacks[i].name, "stack " + std::to_string(i));
}

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
    stack->write(vela_dt_uint8, numbered_bytes(4).data(), nullptr, 4);
    const Stack copy = file->get_stack(0);
    EXPECT_EQ(copy->get_state(), 2);
    EXPECT_EQ(copy->get_sizes(), (Sizes{2, 2}));
    stack->set_tag("key", "value");
    stack->write(vela_dt_uint8, numbered_bytes(4).data(), nullptr, 4);
    EXPECT_EQ(copy->get_sizes(), (Sizes{2, 2}));
    EXPECT_EQ(copy->get_tag_keys(), std::vector<std::string>());
    EXPECT_EQ(close_file_with_one_stack().data.size(), 8u);
}

} // namespace
