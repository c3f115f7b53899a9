#include "stacks/shared_memory_peer.h"

#include <VelaStacks/SharedMemory.h>

#include <boost/interprocess/exceptions.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using boost::interprocess::interprocess_exception;
using Vela::SharedMemory;
using vela_test::SharedMemoryPeer;

namespace {

unsigned char* bytes_of(SharedMemory& memory)
{
    return static_cast<unsigned char*>(memory.data());
}

TEST(TwoProcesses, ShareTheBytesOfASegment)
{
    SharedMemory memory(10000);
    bytes_of(memory)[9999] = 77;
    SharedMemoryPeer peer;
    ASSERT_NE(peer.process_id(), getpid());
    EXPECT_EQ(peer.order(std::string("attach ") + memory.id()), "10000");
    EXPECT_EQ(peer.order("get 9999"), "77");
    EXPECT_EQ(peer.order("put 5 123"), "123");
    EXPECT_EQ(bytes_of(memory)[5], 123);
    bytes_of(memory)[5] = 124;
    EXPECT_EQ(peer.order("get 5"), "124");
    EXPECT_EQ(peer.order("leave"), "left");
    EXPECT_EQ(bytes_of(memory)[5], 124);
    EXPECT_EQ(peer.order(std::string("attach ") + memory.id()), "10000");
}

TEST(TwoProcesses, GoOnWhenTheOtherEnds)
{
    SharedMemory memory(100);
    {
        SharedMemoryPeer peer;
        EXPECT_EQ(peer.order(std::string("attach ") + memory.id()), "100");
        EXPECT_EQ(peer.order("put 99 1"), "1");
    }
    EXPECT_EQ(bytes_of(memory)[99], 1);
    EXPECT_EQ(SharedMemory(std::string(memory.id())).size(), 100u) << "the name belongs to its owner";
}

TEST(TwoProcesses, CannotAttachAnyMoreOnceTheOwnerIsGone)
{
    auto memory = std::make_unique<SharedMemory>(100);
    const std::string id = memory->id();
    SharedMemoryPeer attached;
    SharedMemoryPeer late;
    EXPECT_EQ(attached.order("attach " + id), "100");
    bytes_of(*memory)[50] = 42;
    memory.reset();
    EXPECT_EQ(late.order("attach " + id), "refused");
    EXPECT_EQ(attached.order("get 50"), "42");
    EXPECT_EQ(attached.order("put 50 43"), "43");
}

TEST(TwoProcesses, MayBothBeTheOwner)
{
    std::string id;
    std::unique_ptr<SharedMemory> memory;
    {
        SharedMemoryPeer peer;
        id = peer.order("make 300");
        memory = std::make_unique<SharedMemory>(id);
        EXPECT_EQ(memory->size(), 300u);
        bytes_of(*memory)[0] = 9;
        EXPECT_EQ(peer.order("get 0"), "9");
        EXPECT_EQ(peer.order("put 1 10"), "10");
        EXPECT_EQ(peer.order("leave"), "left");
        EXPECT_THROW(SharedMemory{id}, interprocess_exception);
    }
    EXPECT_EQ(bytes_of(*memory)[0], 9);
    EXPECT_EQ(bytes_of(*memory)[1], 10);
}

TEST(TwoProcesses, LeaveTheNameToTheOneThatMadeItWhereOneIsForkedFromTheOther)
{
    auto memory = std::make_unique<SharedMemory>(100);
    const std::string id = memory->id();
    const pid_t child = fork();
    if (child == 0)
    {
        bytes_of(*memory)[0] = 5;
        memory.reset();
        _exit(0);
    }
    ASSERT_GT(child, 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(bytes_of(*memory)[0], 5);
    EXPECT_NO_THROW(EXPECT_EQ(SharedMemory(id).size(), 100u));
    memory.reset();
    EXPECT_THROW(SharedMemory{id}, interprocess_exception);
}

TEST(TwoProcesses, ShareASegmentOfSizeZero)
{
    const SharedMemory memory(0);
    SharedMemoryPeer peer;
    EXPECT_EQ(peer.order(std::string("attach ") + memory.id()), "0");
}

} // namespace
