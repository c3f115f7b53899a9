// The positions that link the chain: behind the end, refused, wrong, and coming back.
#include "binary_io/scan_chain_fixture.h"

using namespace vela_test;

namespace {

const char* const short_header = "Failed reading 368 bytes from file!";

class ChainPositionsTest : public ScanChainTest
{
};

} // namespace

TEST_F(ChainPositionsTest, APositionBehindTheEndFailsAtTheHeaderThere)
{
    const ThreeStacks built;
    const std::uint64_t size = built.size();
    for (const std::uint64_t position : {size, size - 367, size + 1, size + 100000, std::uint64_t{1} << 40})
    {
        SCOPED_TRACE(position);
        ThreeStacks first = built;
        first.set_u64_at(first.first_stack_pos_at(), position);
        EXPECT_VELA_ERROR(scan(first), -3, short_header);

        ThreeStacks next = built;
        next.set_u64_at(next.third + stack_next_at, position);
        EXPECT_VELA_ERROR(scan(next), -3, short_header);
    }
}

TEST_F(ChainPositionsTest, APositionOfAllOnesIsTheEndOfTheFile)
{
    ThreeStacks first;
    first.set_u64_at(first.first_stack_pos_at(), 0xffffffffffffffff);
    EXPECT_VELA_ERROR(scan(first), -3, short_header);

    ThreeStacks next;
    next.set_u64_at(next.third + stack_next_at, 0xffffffffffffffff);
    EXPECT_VELA_ERROR(scan(next), -3, short_header);
}

TEST_F(ChainPositionsTest, APositionThatTheSystemRefusesIsInvalid)
{
    for (const std::uint64_t position : {0x8000000000000000u, 0x8000000000000001u, 0xfffffffffffffffeu})
    {
        SCOPED_TRACE(position);
        ThreeStacks first;
        first.set_u64_at(first.first_stack_pos_at(), position);
        expect_invalid_position(first);

        ThreeStacks next;
        next.set_u64_at(next.third + stack_next_at, position);
        expect_invalid_position(next);
    }
}

TEST_F(ChainPositionsTest, APositionAtSomethingElseIsNoStackHeader)
{
    for (const std::uint64_t position : {1u, 26u, 45u, 47u, 414u})
    {
        SCOPED_TRACE(position);
        ThreeStacks built;
        built.gap(1000).set_u64_at(built.first_stack_pos_at(), position);

        EXPECT_VELA_ERROR_IN(scan(built), "VBFStackImp::read_info", "sources/binary_io", -4,
                             "Stack header not in vbf format!");
    }
}

TEST_F(ChainPositionsTest, AChainThatComesBackIsInvalid)
{
    for (const bool later : {false, true})
    {
        const ThreeStacks good(later ? 500 : 0);
        for (const std::uint64_t from : {good.first, good.second, good.third})
            for (const std::uint64_t to : {good.first, good.second, good.third})
            {
                if (to > from)
                    continue; // no way back
                SCOPED_TRACE(testing::Message() << from << " to " << to);
                ThreeStacks built = good;
                built.set_u64_at(from + stack_next_at, to);
                expect_invalid_position(built);
            }
    }
}

TEST_F(ChainPositionsTest, AnOnlyStackThatPointsToItselfIsInvalid)
{
    VbfBytes built;
    built.file_header(1);
    const std::uint64_t only = built.stack();
    built.set_u64_at(only + stack_next_at, only);

    expect_invalid_position(built);
}

TEST_F(ChainPositionsTest, TenThousandStacksAreListed)
{
    VbfBytes built;
    built.file_header(2);
    std::uint64_t middle = 0;
    std::uint64_t last = 0;
    for (int i = 0; i < 10000; ++i)
    {
        last = built.stack({.name = std::to_string(i), .data = {}});
        if (i == 5000)
            middle = last;
    }

    const VBFChain chain = scan(built);
    ASSERT_EQ(chain.stacks.size(), 10000u);
    for (std::size_t i = 0; i < chain.stacks.size(); ++i)
        ASSERT_EQ(chain.stacks[i].name, std::to_string(i));
    EXPECT_EQ(chain.stacks.back().position, last);

    built.set_u64_at(last + stack_next_at, middle);
    expect_invalid_position(built);
}

TEST_F(ChainPositionsTest, ADamagedStackInTheMiddleFailsTheScan)
{
    ThreeStacks wrong_magic;
    wrong_magic.set_byte_at(wrong_magic.second + 5, 0);
    EXPECT_VELA_ERROR(scan(wrong_magic), -4, "Stack header not in vbf format!");

    ThreeStacks high_rank;
    high_rank.set_u32_at(high_rank.second + stack_rank_at, 16);
    EXPECT_VELA_ERROR(scan(high_rank), -4, "Stack header not in vbf format!");

    ThreeStacks long_name;
    long_name.set_u32_at(long_name.second + stack_name_length_at, 0xffffffff);
    EXPECT_VELA_ERROR(scan(long_name), -3, "Failed reading -1 bytes from file!");
}

TEST_F(ChainPositionsTest, ALengthThatIsNoNumberIsRepairedInEachStack)
{
    ThreeStacks built;
    for (const std::uint64_t position : {built.first, built.second, built.third})
        built.set_u64_at(position + stack_lengths_at, 0x7ff8000000000000);

    for (const VBFChainEntry& stack : scan(built).stacks)
        EXPECT_EQ(copied(stack.header.lengths[0]), 1.0);
    EXPECT_EQ(library_scan(reopen(built)), plain_scan(built.bytes()));
}
