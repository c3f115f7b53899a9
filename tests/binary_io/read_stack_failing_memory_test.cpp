// Memory that fails while a whole stack is read: at each request once.
#include "binary_io/vbf_reading_test.h"
#include "support/failing_memory.h"

#include <VelaStacks/VStack.h>

#include <algorithm>
#include <new>

using namespace vela_test;

namespace {

class ReadStackFailingMemory : public VbfReadingTest
{
protected:
    /// Whether it is read although the request behind the first `requests` fails.
    bool is_read(std::size_t requests)
    {
        try
        {
            const OneRequestFailsAfter failing(requests);
            file->read_stack(0, vela_dt_uint16);
            return true;
        }
        catch (const std::bad_alloc&)
        {
            return false;
        }
        catch (const VelaError& error)
        {
            EXPECT_EQ(error.get_msg(), "Out of memory");
            return false;
        }
    }
};

/// Without metadata: the XML parser leaves behind what it has parsed where memory ends.
TEST_F(ReadStackFailingMemory, LeavesNothingBehindAndTheFileAsItWas)
{
    const Bytes samples = counted_bytes(30000);
    RecordFields fields = bytes_record(samples);
    fields.labels = {"a label that is longer than what fits into a string without memory of its own"};
    fields.tags = {{"key", "text"}};
    VbfRecords built(1);
    built.add_stack_record(fields);
    open(built);
    file->get_stack(0)->get_name(); // what is made at the first look
    const std::size_t blocks = blocks_taken();
    std::size_t requests = 0;
    while (!is_read(requests))
        ASSERT_LT(++requests, 3000u) << "it never comes to its end";
    EXPECT_GT(requests, 20u);
    EXPECT_LE(blocks_taken(), blocks + 1) << "but for the list of handles";
    const auto stack = file->read_stack(0, vela_dt_uint8);
    EXPECT_TRUE(std::equal(samples.begin(), samples.end(), stack->get_data_ptr()));
}

}
