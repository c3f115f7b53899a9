// What is in a file at every moment of its writing, and what stays when the disk fails. This program defines the call
// that writes itself.
#include "binary_io/vbf_writing.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct WrittenPiece
{
    std::size_t pos;
    vela_test::Bytes bytes;
};

/// What the calls do.
struct Script
{
    bool armed = false;
    std::size_t calls_left = ~std::size_t{0}; ///< then they fail with ENOSPC
    std::vector<WrittenPiece> pieces;         ///< what was written
};
Script script;

} // namespace

// Visible, so that the library finds this instead of that of the system.
extern "C" __attribute__((visibility("default"))) ssize_t write(int descriptor, const void* buffer, std::size_t size)
{
    if (!script.armed)
        return syscall(SYS_write, descriptor, buffer, size);
    if (script.calls_left == 0)
    {
        errno = ENOSPC;
        return -1;
    }
    --script.calls_left;
    const off_t pos = ::lseek(descriptor, 0, SEEK_CUR);
    const ssize_t written = syscall(SYS_write, descriptor, buffer, size);
    if (written > 0)
    {
        const unsigned char* const bytes = static_cast<const unsigned char*>(buffer);
        script.pieces.push_back({static_cast<std::size_t>(pos), vela_test::Bytes(bytes, bytes + written)});
    }
    return written;
}

using namespace vela_test;

namespace {

class SystemCallsWriting : public VbfWritingTest
{
protected:
    SystemCallsWriting() { script = Script(); }
    ~SystemCallsWriting() override
    {
        script.armed = false;
        file.reset();
        script = Script();
    }

    static constexpr std::size_t stack_count = 4;

    /// One stack of each kind.
    void write_stack_number(std::size_t i)
    {
        const Stack made = file->add_stack(i == 2);
        last = made;
        made->create(i == 3 ? Sizes{100, 0} : Sizes{300, 300}, vela_dt_uint8);
        made->set_name("stack " + std::to_string(i));
        made->set_tag("number", std::to_string(i));
        made->set_compression(i == 1 ? 1 : 0, 6);
        if (i == 2)
            made->commit(0);
        else
            for (std::size_t begin = 0; begin < 90000; begin += 30000)
                made->write(vela_dt_uint8, samples.data() + begin, nullptr, 30000);
        if (i == 3)
            made->commit(0);
    }

    void expect_stack(const WrittenStack& stack, std::size_t i) const
    {
        EXPECT_EQ(complaints_about(stack), "");
        EXPECT_EQ(stack.name, "stack " + std::to_string(i));
        EXPECT_EQ(stack.sizes,
                  i == 3 ? (std::vector<std::uint32_t>{100, 900}) : (std::vector<std::uint32_t>{300, 300}));
        EXPECT_TRUE(stack.samples() == (i == 2 ? Bytes() : samples));
    }

    /// All stacks that the chain reaches are whole. Gives their number.
    std::size_t expect_whole_chain(const Bytes& bytes) const
    {
        const WrittenFile file_now = read_written_chain(bytes);
        EXPECT_LE(file_now.stacks.size(), stack_count);
        for (std::size_t i = 0; i < file_now.stacks.size(); ++i)
            expect_stack(file_now.stacks[i], i);
        return file_now.stacks.size();
    }

    /// Where the header is complete.
    static constexpr std::size_t header_end = 34 + 4;

    const Bytes samples = sparse_bytes(90000);
    Stack last;
};

TEST_F(SystemCallsWriting, AtEveryMomentTheChainIsWhole)
{
    begin_file();
    script.armed = true;
    file->set_file_desc("desc");
    for (std::size_t i = 0; i < stack_count; ++i)
        write_stack_number(i);
    file->close();
    script.armed = false;

    Bytes so_far;
    std::size_t stacks_before = 0;
    for (const WrittenPiece& piece : script.pieces)
    {
        so_far.resize(std::max(so_far.size(), piece.pos + piece.bytes.size()));
        std::copy(piece.bytes.begin(), piece.bytes.end(), so_far.begin() + static_cast<std::ptrdiff_t>(piece.pos));
        if (so_far.size() < header_end)
            continue;
        const std::size_t stacks_now = expect_whole_chain(so_far);
        EXPECT_TRUE(stacks_now == stacks_before || stacks_now == stacks_before + 1);
        stacks_before = stacks_now;
    }
    EXPECT_EQ(stacks_before, stack_count);
    EXPECT_EQ(so_far, content());
    EXPECT_GE(script.pieces.size(), 2 * stack_count) << "each stack, and then its link";
}

TEST_F(SystemCallsWriting, ADiskThatFailsKeepsTheStacksThatWereFinished)
{
    bool failed = true;
    std::size_t calls = 0;
    for (; failed; ++calls)
    {
        ASSERT_LT(calls, 1000u) << "the script is over";
        SCOPED_TRACE(calls);
        begin_file();
        file->set_file_desc("desc");
        script.calls_left = calls;
        script.armed = true;
        std::size_t finished = 0;
        failed = false;
        try
        {
            for (; finished < stack_count; ++finished)
                write_stack_number(finished);
            file->close();
        }
        catch (const VelaError& error)
        {
            failed = true;
            EXPECT_EQ(error.get_id(), -3);
            EXPECT_EQ(error.get_msg().rfind("Failed writing ", 0), 0u) << error.get_msg();
            EXPECT_EQ(error.get_oserr_id(), ENOSPC);
        }
        file.reset();
        script.armed = false;
        EXPECT_EQ(content().size() < header_end ? 0u : expect_whole_chain(content()), finished);
        std::filesystem::remove(file_path);
    }
    EXPECT_GE(calls, 2 * stack_count);
}

TEST_F(SystemCallsWriting, AWriteThatFailsLeavesTheStackInItsState)
{
    begin_file();
    const Stack stack = add({4, 3});
    script.armed = true;
    script.calls_left = 0;
    EXPECT_THROW(stack->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 12), VelaError);
    EXPECT_EQ(stack->get_state(), 2);
    script.armed = false;
    EXPECT_EQ(on_disk().stacks.size(), 0u);

    begin_file();
    const Stack begun = add({4, 3});
    begun->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 5);
    script.armed = true;
    EXPECT_THROW(begun->write(vela_dt_uint8, counted_bytes(12).data(), nullptr, 7), VelaError);
    EXPECT_EQ(begun->get_state(), 2);
    script.armed = false;
    EXPECT_EQ(on_disk().stacks.size(), 0u);
}

} // namespace
