// Files with anything in them, written and read back through the public classes.
#include "binary_io/random_stack.h"

using namespace vela_test;

namespace {

class RandomRoundTrip : public WritingTest
{
};

TEST_F(RandomRoundTrip, GivesBackWhatWasWritten)
{
    for (unsigned seed = 1; seed <= 80; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Draw draw(seed);
        file.open(file_name(path("written.vbf")), VFile::write_mode);
        std::vector<RandomStack> stacks;
        for (std::uint64_t count = draw.below(7); count > 0; --count)
        {
            stacks.emplace_back(draw);
            file->set_chunk_size(stacks.back().draw_chunk_size(draw));
            stacks.back().write(*file.shared(), draw);
        }
        reopen();
        ASSERT_EQ(file->number_of_stacks(), stacks.size());
        for (std::uint64_t i = 0; i < stacks.size(); ++i)
        {
            SCOPED_TRACE(testing::Message() << "stack " << i << ", sizes " << testing::PrintToString(stacks[i].sizes));
            file->set_chunk_size(stacks[i].draw_chunk_size(draw));
            stacks[i].expect_in(*file.shared(), i, draw);
        }
        if (HasFailure())
            return;
    }
}

TEST_F(RandomRoundTrip, ThroughSeveralOpeningsOfAnOldFile)
{
    Draw draw(1000);
    for (int round = 0; round < 10; ++round)
    {
        SCOPED_TRACE(testing::Message() << "file " << round);
        file.reset();
        put_bytes(path("written.vbf"), VbfBytes().file_header(1, "old").bytes());
        std::vector<RandomStack> stacks;
        for (std::uint64_t opening = 1 + draw.below(4); opening > 0; --opening)
        {
            file.open(file_name(path("written.vbf")), VFile::append_mode);
            for (std::uint64_t count = draw.below(4); count > 0; --count)
            {
                stacks.emplace_back(draw);
                stacks.back().write(*file.shared(), draw);
            }
            file->close();
        }
        file.open(file_name(path("written.vbf")), VFile::read_mode);
        ASSERT_EQ(file->number_of_stacks(), stacks.size());
        for (std::uint64_t i = 0; i < stacks.size(); ++i)
            stacks[i].expect_in(*file.shared(), i, draw);
    }
}

}
