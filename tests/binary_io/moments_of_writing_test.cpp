// What is in a file at every moment of its writing.
#include "binary_io/disk_writes.h"
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace vela_test;

namespace {

class MomentsOfWriting : public VbfWritingTest
{
protected:
    static constexpr std::size_t stack_count = 4;

    /// One stack of each kind.
    void write_stack_number(std::size_t i)
    {
        const Stack stack = file->add_stack(i == 2);
        stack->create(i == 3 ? Sizes{100, 0} : Sizes{300, 300}, vela_dt_uint8);
        stack->set_name("stack " + std::to_string(i));
        stack->set_compression(i == 1 ? 1 : 0, 6);
        for (std::size_t begin = 0; i != 2 && begin < 90000; begin += 30000)
            stack->write(vela_dt_uint8, samples.data() + begin, nullptr, 30000);
        if (i >= 2)
            stack->commit(0);
    }

    void expect_stack(const WrittenStack& stack, std::size_t i) const
    {
        EXPECT_EQ(complaints_about(stack), "");
        EXPECT_EQ(stack.name, "stack " + std::to_string(i));
        EXPECT_EQ(stack.sizes, i == 3 ? (std::vector<std::uint32_t>{100, 900}) : std::vector<std::uint32_t>(2, 300));
        EXPECT_TRUE(stack.samples() == (i == 2 ? Bytes() : samples));
    }

    /// All stacks that the chain reaches are whole. Gives their number.
    std::size_t count_whole_stacks(const Bytes& bytes) const
    {
        const std::vector<WrittenStack> stacks = read_written_chain(bytes).stacks;
        EXPECT_LE(stacks.size(), stack_count);
        for (std::size_t i = 0; i < stacks.size(); ++i)
            expect_stack(stacks[i], i);
        return stacks.size();
    }

    const Bytes samples = sparse_bytes(90000);
};

TEST_F(MomentsOfWriting, AllThatTheChainReachesIsWhole)
{
    begin_file();
    std::vector<Bytes> written;
    DiskWrites disk;
    disk.keep_bytes_in(written);
    file->set_file_desc("desc");
    for (std::size_t i = 0; i < stack_count; ++i)
        write_stack_number(i);
    file->close();

    Bytes so_far;
    std::size_t stacks_before = 0;
    for (std::size_t i = 0; i < written.size(); ++i)
    {
        const auto pos = static_cast<std::size_t>(disk.log()[i].position);
        so_far.resize(std::max(so_far.size(), pos + written[i].size()));
        std::copy(written[i].begin(), written[i].end(), so_far.begin() + static_cast<std::ptrdiff_t>(pos));
        const std::size_t stacks_now = count_whole_stacks(so_far);
        EXPECT_TRUE(stacks_now == stacks_before || stacks_now == stacks_before + 1);
        stacks_before = stacks_now;
    }
    EXPECT_EQ(stacks_before, stack_count);
    EXPECT_EQ(so_far, content());
    EXPECT_GE(written.size(), 2 * stack_count) << "each stack, and then its link";
}

} // namespace
