// Memory that fails while stacks are written and read: at each request once.
#include "binary_io/written_vbf.h"
#include "support/expect_vela_error.h"
#include "support/failing_memory.h"
#include "support/sample_bytes.h"

#include <new>

using namespace vela_test;

namespace {

class FailingMemory : public WritingTest
{
protected:
    /// Opens the file for writing again, with one complete stack.
    void start()
    {
        file.open(file_name(path("written.vbf")), VFile::write_mode);
        add_complete({3});
    }

    /// Whether `operation` runs through although the request behind the first `requests` fails. Some failures come as
    /// a `VelaError` that says where it was.
    template <class Operation>
    static bool succeeds(std::size_t requests, Operation operation)
    {
        try
        {
            const OneRequestFailsAfter failing(requests);
            operation();
            return true;
        }
        catch (const std::bad_alloc&)
        {
            return false;
        }
        catch (const VelaError&)
        {
            return false;
        }
    }

    void expect_first_stack() { EXPECT_EQ(samples_of(*file->get_stack(0)), counted_bytes(3)); }
};

TEST_F(FailingMemory, WhileAStackIsWrittenLeavesACommitThatIsRightOrRefused)
{
    const Bytes samples = sparse_bytes(70000);
    int refused = 0;
    bool done = false;
    for (std::size_t requests = 0; !done; ++requests)
    {
        SCOPED_TRACE(requests);
        ASSERT_LT(requests, 2000u) << "it never comes to its end";
        start();
        const Stack stack = add({1000, 0}, vela_dt_uint16);
        stack->set_compression(1, 1);
        stack->set_name("a name that is longer than what fits into a string without memory of its own");
        done = succeeds(requests, [&] { stack->write(vela_dt_uint8, samples.data(), nullptr, 70000); });
        const int state = stack->get_state();
        ASSERT_TRUE(state == 1 || state == 2);
        if (state == 1) // nothing has happened yet
            stack->write(vela_dt_uint8, samples.data(), nullptr, 70000);
        try
        {
            file->close();
        }
        catch (const VelaError& error)
        {
            ++refused;
            EXPECT_EQ(error.get_msg(), "File not open!"); // a stream that lost bytes
            EXPECT_FALSE(done);
            continue;
        }
        file.open(file_name(path("written.vbf")), VFile::read_mode);
        expect_first_stack();
        const Stack read = file->get_stack(1);
        const std::uint64_t count = read->get_number_of_elements();
        EXPECT_EQ(count % 1000, 0u);
        EXPECT_TRUE(count == 70000 || state == 2);
        Bytes bytes(count);
        read->read(vela_dt_uint8, bytes.data(), nullptr);
        EXPECT_TRUE(bytes == slice(samples, 0, count));
    }
    EXPECT_LT(refused, 10);
}

TEST_F(FailingMemory, WhileAStackIsCommittedLeavesItToTheNextCommit)
{
    const Bytes samples = sparse_bytes(4000);
    bool done = false;
    for (std::size_t requests = 0; !done; ++requests)
    {
        SCOPED_TRACE(requests);
        ASSERT_LT(requests, 2000u) << "it never comes to its end";
        start();
        const Stack stack = add({1000, 0});
        stack->set_compression(1, 1);
        stack->set_tag("key", "text");
        stack->write(vela_dt_uint8, samples.data(), nullptr, 4000);
        done = succeeds(requests, [&] { stack->commit(0); });
        EXPECT_EQ(stack->get_state(), done ? 0 : 2);
        file->close();
        file.open(file_name(path("written.vbf")), VFile::read_mode);
        expect_first_stack();
        EXPECT_TRUE(samples_of(*file->get_stack(1)) == samples);
        EXPECT_EQ(file->get_stack(1)->get_tag("key"), "text");
    }
}

TEST_F(FailingMemory, WhileSamplesAreReadLeavesThePosition)
{
    const Bytes samples = sparse_bytes(300000);
    const Stack written = add({300000});
    written->set_compression(1, 6);
    written->write(vela_dt_uint8, samples.data(), nullptr, 300000);
    reopen();
    Bytes buffer(600000, 0xcd);
    bool done = false;
    for (std::size_t requests = 0; !done; ++requests)
    {
        SCOPED_TRACE(requests);
        ASSERT_LT(requests, 100u) << "it never comes to its end";
        const Stack stack = file->get_stack(0);
        std::uint64_t pos = 200000;
        done = succeeds(requests, [&] { stack->read(vela_dt_uint16, buffer.data(), nullptr, 5000, pos); });
        EXPECT_EQ(pos, done ? 205000u : 200000u);
        pos = 200000;
        EXPECT_EQ(stack->read(vela_dt_uint8, buffer.data(), nullptr, 5000, pos), 5000u);
        EXPECT_TRUE(slice(buffer, 0, 5000) == slice(samples, 200000, 205000));
    }
}

TEST_F(FailingMemory, LeavesNoTagWithoutItsText)
{
    const std::string long_key(100, 'k');
    const std::string long_text(100, 't');
    bool done = false;
    for (std::size_t requests = 0; !done; ++requests)
    {
        ASSERT_LT(requests, 100u) << "it never comes to its end";
        const Stack stack = add({3});
        stack->set_tag("old", "text");
        done = succeeds(requests, [&] { stack->set_tag(long_key, long_text); });
        EXPECT_EQ(stack->get_tag_keys().size(), done ? 2u : 1u);
        succeeds(requests, [&] { stack->set_tag("old", long_text); });
        const std::string text = stack->get_tag("old");
        EXPECT_TRUE(text == "text" || text == long_text) << text;
        stack->write(vela_dt_uint8, "abc", nullptr, 3);
    }
}

}
