// When a stack becomes part of the file: behind its footer, and not before.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

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
    write_bytes(variable, counted_bytes(10));
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
    first->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 11);
    EXPECT_EQ(on_disk().first_stack_pos, 0u);
    first->write(vela_dt_uint8, counted_bytes(12).data() + 11, nullptr, 1);
    EXPECT_EQ(names_on_disk(), Names{"a"});
    EXPECT_EQ(on_disk().first_stack_pos, 34u);
    EXPECT_EQ(complaints_about(on_disk().stacks.at(0)), "");
    EXPECT_EQ(on_disk().stacks.at(0).next_stack_pos, 0u);

    const Stack second = add({4, 3});
    second->set_name("b");
    second->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 11);
    EXPECT_EQ(names_on_disk(), Names{"a"});
    EXPECT_EQ(on_disk().stacks.at(0).next_stack_pos, 0u);
    second->write(vela_dt_uint8, counted_bytes(12).data() + 11, nullptr, 1);
    EXPECT_EQ(names_on_disk(), (Names{"a", "b"}));
}

TEST_F(ChainWriting, TheHeaderHasNoLengthUntilTheFooterIsWritten)
{
    begin_file();
    const Stack stack = add({4, 3});
    stack->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 11);
    const Bytes during = content();
    EXPECT_EQ(slice(during, 34 + 352, 34 + 368), Bytes(16, 0));
    EXPECT_EQ(slice(during, 34, 48),
              slice(Bytes{'V', 'E', 'L', 'A', '_', 'B', 'F', '_', 'S', 'T', 'A', 'C', 'K', '\n'}, 0, 14));
    EXPECT_EQ(during.size(), 34u + 368 + 11);
    stack->write(vela_dt_uint8, counted_bytes(12).data() + 11, nullptr, 1);
    EXPECT_EQ(slice(content(), 34 + 352, 34 + 360), (Bytes{12, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(ChainWriting, AFailedCommitLinksNothing)
{
    begin_file();
    add_whole("a");
    const Stack stack = add({4, 3});
    stack->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 5);
    EXPECT_VELA_ERROR(file->close(), -1, "Not enough samples written!");
    EXPECT_EQ(names_on_disk(), Names{"a"});
    EXPECT_EQ(on_disk().meta_data_pos, 0u);
    EXPECT_EQ(file->number_of_stacks(), 2u);
}

/// Runs `body` in a process that ends without closing anything.
template <class Body>
void run_and_die(Body body)
{
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0)
    {
        int status = 0;
        try
        {
            body();
        }
        catch (...)
        {
            status = 1;
        }
        ::_exit(status);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(ChainWriting, AWriterThatDiesLeavesTheStacksBefore)
{
    for (std::size_t whole = 0; whole < 4; ++whole)
    {
        file_path = path("died" + std::to_string(whole) + ".vbf");
        run_and_die(
            [&]
            {
                VBFFile dying(file_name(file_path), VFile::write_mode);
                for (std::size_t i = 0; i < whole; ++i)
                    write_bytes(add_to(dying, {50}, vela_dt_uint8), constant_bytes(50));
                const Stack last = add_to(dying, {50}, vela_dt_uint8);
                last->set_compression(1, 6);
                last->write(vela_dt_uint8, constant_bytes(50).data(), nullptr, 49);
                ::_exit(0);
            });
        const WrittenFile left = on_disk();
        EXPECT_EQ(left.stacks.size(), whole);
        EXPECT_EQ(left.meta_data_pos, 0u);
        for (const WrittenStack& stack : left.stacks)
        {
            EXPECT_EQ(complaints_about(stack), "");
            EXPECT_EQ(stack.data, constant_bytes(50));
        }
        // The dictionary is read from the start of the file, where the magic is a length of "VELA" bytes.
        EXPECT_VELA_ERROR(VBFFile(file_name(file_path), VFile::read_mode), -3,
                          "Failed reading 1095517526 bytes from file!");
    }
}

TEST_F(ChainWriting, AWriterThatDiesBeforeTheFirstStackLeavesNothing)
{
    file_path = path("died.vbf");
    run_and_die(
        [&]
        {
            VBFFile dying(file_name(file_path), VFile::write_mode);
            dying->set_file_desc("never written");
            ::_exit(0);
        });
    EXPECT_EQ(content(), Bytes());
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

} // namespace
