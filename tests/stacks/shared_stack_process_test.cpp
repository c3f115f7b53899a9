#include "stacks/any_type_stack.h"
#include "stacks/shared_memory_peer.h"

#include <VelaStacks/VStack.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace vela_test;
using testing::ElementsAre;

namespace {

VStackImp counting(const std::vector<std::uint64_t>& sizes)
{
    VStackImp stack;
    stack.create(sizes, vela_dt_uint8);
    count_up<std::uint8_t>(stack);
    return stack;
}

TEST(SharedStackInTwoProcesses, HasItsSamplesAndNothingElseInTheSegment)
{
    const VStackImp stack = counting({2, 3});
    SharedMemoryPeer peer;
    EXPECT_EQ(peer.order(std::string("attach ") + stack.share()), "6");
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(peer.order("get " + std::to_string(i)), std::to_string(i));
}

TEST(SharedStackInTwoProcesses, SeesWhatTheOtherWrites)
{
    VStackImp stack = counting({2, 3});
    SharedMemoryPeer peer;
    EXPECT_EQ(peer.order(std::string("attach ") + stack.share()), "6");
    EXPECT_EQ(peer.order("put 3 77"), "77");
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 1, 2, 77, 4, 5));
    stack.get_data_ptr()[0] = 99;
    EXPECT_EQ(peer.order("get 0"), "99");
}

TEST(SharedStackInTwoProcesses, LeavesItsSamplesToTheOtherWhenItEnds)
{
    auto stack = std::make_unique<VStackImp>(counting({2, 3}));
    const std::string id = stack->share();
    SharedMemoryPeer attached;
    SharedMemoryPeer late;
    EXPECT_EQ(attached.order("attach " + id), "6");
    stack.reset();
    EXPECT_EQ(late.order("attach " + id), "refused");
    EXPECT_EQ(attached.order("get 5"), "5");
}

} // namespace
