// Stacks whose samples are in shared memory, and other processes that attach to them.
#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/iterators.h>

#include "open_stack.h"

#include "support/expect_vela_error.h"

#include <boost/interprocess/exceptions.hpp>
#include <boost/interprocess/shared_memory_object.hpp>

#include <cstdio>
#include <functional>
#include <memory>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Sizes = std::vector<std::uint64_t>;
using Bytes = std::vector<unsigned char>;
using Vela::SharedMemory;
namespace ipc = boost::interprocess;

constexpr const char* shared_text = "Cannot resize shared data";

VStackImp numbered(const Sizes& sizes)
{
    VStackImp stack(Ome::Type::uint8, sizes, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    return stack;
}

TEST(SharedStack, SharingMovesTheSamplesIntoASegmentOfTheirSize)
{
    VStackImp stack = numbered({2, 3});
    SharedMemory segment(stack.share());
    EXPECT_EQ(segment.size(), 6U);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(std::memcmp(segment.data(), stack.get_data_ptr(), 6), 0);
    stack.get_data_ptr()[5] = 60;
    EXPECT_EQ(static_cast<unsigned char*>(segment.data())[5], 60);
    static_cast<unsigned char*>(segment.data())[0] = 10;
    EXPECT_EQ(stack.get_data_ptr()[0], 10);
    EXPECT_EQ(stack.get_sizes(), (Sizes{2, 3}));
}

TEST(SharedStack, SharingTwiceGivesTheSamePointer)
{
    const VStackImp stack = numbered({4});
    const char* const id = stack.share();
    const unsigned char* const data = stack.get_data_ptr();
    EXPECT_EQ(std::string(id).size(), 36U);
    EXPECT_EQ(stack.share(), id);
    EXPECT_EQ(stack.get_data_ptr(), data);
}

TEST(SharedStack, TwoStacksHaveTwoIds)
{
    EXPECT_NE(std::string(numbered({4}).share()), std::string(numbered({4}).share()));
}

TEST(SharedStack, AStackWithoutSamplesIsSharedToo)
{
    VStackImp stack(3);
    SharedMemory segment(stack.share());
    EXPECT_EQ(segment.size(), 0U);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    EXPECT_EQ(stack.get_block_size(), 0U);
    EXPECT_THROW_TEXT(stack.create({2}, vela_dt_uint8), std::runtime_error, shared_text);
    EXPECT_THROW_TEXT(stack.create({0, 0, 0}, 0), std::runtime_error, shared_text);
    stack.destroy();
    stack.create({2}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(stack), Bytes(2, 0));
}

TEST(SharedStack, EveryCreateAndCopyIsRefusedAlsoOfTheSameSize)
{
    const VStackImp source = numbered({4});
    const VStackImp larger = numbered({9});
    const VStackRegion part = naive::box({0}, {2}, {0});
    const std::function<void(VStackImp&)> attempts[] = {
        [](VStackImp& stack) { stack.create({4}, vela_dt_uint8); },
        [](VStackImp& stack) { stack.create({2}, vela_dt_uint8); },
        [](VStackImp& stack) { stack.create({9}, vela_dt_uint16); },
        [](VStackImp& stack) { stack.create(Sizes{0}, vela_dt_uint8); },
        [&](VStackImp& stack) { stack.create(&source, 0); },
        [&](VStackImp& stack) { stack.create(&larger, vela_dt_double); },
        [&](VStackImp& stack) { stack.create(&larger, part); },
        [](VStackImp& stack) { stack.create(&stack, 0); },
        [&](VStackImp& stack) { stack.copy(&source, 0); },
        [&](VStackImp& stack) { stack.copy(&larger, part); },
        [](VStackImp& stack) { stack.copy(&stack, 0); },
        [](VStackImp& stack) { stack.copy(&stack, naive::box({0}, {2}, {0})); },
    };
    int number = 0;
    for (const auto& attempt : attempts)
    {
        SCOPED_TRACE(number++);
        VStackImp stack(Ome::Type::uint8, {4}, Ome::DimensionOrder::XYZTC);
        for (int i = 0; i < 4; ++i)
            stack.get_data_ptr()[i] = static_cast<unsigned char>(70 + i);
        const std::string id = stack.share();
        EXPECT_THROW_TEXT(attempt(stack), std::runtime_error, shared_text);
        EXPECT_EQ(naive::block_of(stack), (Bytes{70, 71, 72, 73}));
        EXPECT_EQ(stack.share(), id);
    }
}

TEST(SharedStack, ARefusedCreateKeepsItsDescription)
{
    VStackImp stack = numbered({4});
    stack.share();
    EXPECT_THROW_TEXT(stack.create({2, 3}, vela_dt_uint16), std::runtime_error, shared_text);
    EXPECT_EQ(stack.get_sizes(), (Sizes{2, 3}));
    EXPECT_EQ(stack.get_dt(), vela_dt_uint16);
    EXPECT_EQ(stack.get_block_size(), 4U);
    EXPECT_VELA_ERROR(stack.get_iterator(naive::whole(stack)), -15,
                      "Cannot create iterator over region exceeding the stack!");
    VStackImp target;
    target.copy(&stack, 0);
    EXPECT_EQ(naive::samples_of<std::uint16_t>(target), (std::vector<std::uint16_t>{0x201, 0x403, 0, 0, 0, 0}));
}

TEST(SharedStack, OtherFailuresOfCreateComeFirst)
{
    VStackImp stack = numbered({4});
    stack.share();
    EXPECT_VELA_ERROR(stack.create({4}, 0), -1, "Unknown type of elements");
    EXPECT_VELA_ERROR(stack.create({std::uint64_t{1} << 62}, vela_dt_double), -1,
                      "The size increases the maximum size");
}

TEST(SharedStack, AfterDestroyTheStackIsPrivateAndTheNameIsGone)
{
    VStackImp stack = numbered({4});
    const std::string id = stack.share();
    stack.destroy();
    EXPECT_EQ(stack.get_rank(), 0U);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    EXPECT_THROW(SharedMemory{id}, ipc::interprocess_exception);
    stack.create({2}, vela_dt_uint16);
    EXPECT_EQ(naive::block_of(stack), Bytes(4, 0));
    EXPECT_NE(stack.share(), id);
}

TEST(SharedStack, CopiesMadeBeforeTheFirstShareKeepThePrivateBlock)
{
    VStackImp stack = numbered({2});
    VStackImp before(stack);
    const unsigned char* const block = stack.get_data_ptr();
    stack.share();
    EXPECT_EQ(before.get_data_ptr(), block);
    EXPECT_NE(stack.get_data_ptr(), block);
    stack.get_data_ptr()[0] = 50;
    EXPECT_EQ(naive::block_of(before), (Bytes{1, 2}));
    before.create({3}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(before), (Bytes{1, 2, 0}));
    EXPECT_NE(std::string(before.share()), stack.share());
}

TEST(SharedStack, CopiesMadeAfterwardsShareTheSegmentUntilTheLastOfThemGoes)
{
    auto stack = std::make_unique<VStackImp>(numbered({2}));
    const std::string id = stack->share();
    VStackImp after(*stack);
    EXPECT_EQ(after.share(), id);
    EXPECT_EQ(after.get_data_ptr(), stack->get_data_ptr());
    EXPECT_THROW_TEXT(after.create({2}, vela_dt_uint8), std::runtime_error, shared_text);
    stack->destroy();
    EXPECT_EQ(naive::block_of(after), (Bytes{1, 2})) << "one leaves the segment, the others keep it";
    EXPECT_EQ(SharedMemory(id).size(), 2U);
    stack.reset();
    after.destroy();
    EXPECT_THROW(SharedMemory{id}, ipc::interprocess_exception);
}

TEST(SharedStack, ASharedSourceIsCopied)
{
    const VStackImp source = numbered({2, 3});
    source.share();
    VStackImp target;
    target.copy(&source, naive::box({0, 0}, {2, 3}, {1, 0}));
    EXPECT_EQ(naive::block_of(target), (Bytes{1, 3, 5, 2, 4, 6}));
    EXPECT_NE(std::string(target.share()), source.share());
}

TEST(SharedStack, IteratorsWriteThroughToTheSegment)
{
    VStackImp stack = numbered({3});
    SharedMemory segment(stack.share());
    VStackInterface::iterator<std::uint8_t> it(&stack, naive::whole(stack));
    it.advance();
    it.set_value(77);
    EXPECT_EQ(static_cast<unsigned char*>(segment.data())[1], 77);
}

TEST(SharedStack, AShareThatFailsLeavesTheStackPrivate)
{
    VStackImp stack = numbered({3});
    const VStackImp copy(stack);
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_THROW(stack.share(), ipc::interprocess_exception);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2, 3}));
    EXPECT_EQ(stack.get_data_ptr(), copy.get_data_ptr());
    stack.create({4}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2, 3, 0}));
    EXPECT_EQ(SharedMemory(stack.share()).size(), 4U);
}

/// Another program: see attaching_process.cpp. What it writes is read line by line.
class Process
{
public:
    explicit Process(const std::string& verb, const std::string& id = "-")
    {
        int to_child[2] = {-1, -1};
        int from_child[2] = {-1, -1};
        if (pipe(to_child) != 0 || pipe(from_child) != 0)
            throw std::runtime_error("no pipe");
        pid = fork();
        if (pid == 0)
        {
            dup2(to_child[0], 0);
            dup2(from_child[1], 1);
            for (const int descriptor : {to_child[0], to_child[1], from_child[0], from_child[1]})
                close(descriptor);
            execl(VELA_ATTACHING_PROCESS, VELA_ATTACHING_PROCESS, verb.c_str(), id.c_str(),
                  static_cast<char*>(nullptr));
            _exit(127);
        }
        close(to_child[0]);
        close(from_child[1]);
        in = fdopen(from_child[0], "r");
        out = to_child[1];
    }
    ~Process()
    {
        go_on();
        std::fclose(in);
        wait();
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    std::string line()
    {
        std::string text;
        for (int c = std::fgetc(in); c != EOF && c != '\n'; c = std::fgetc(in))
            text += static_cast<char>(c);
        return text;
    }
    /// The other side waits for its input to end.
    void go_on()
    {
        if (out >= 0)
            close(out);
        out = -1;
    }
    int wait()
    {
        go_on();
        if (pid > 0)
            waitpid(pid, &status, 0);
        pid = -1;
        return status;
    }

private:
    pid_t pid = -1;
    std::FILE* in = nullptr;
    int out = -1;
    int status = -1;
};

TEST(SharedStackInTwoProcesses, TheOtherOneSeesSizeAndSamplesAndWritesThem)
{
    VStackImp stack = numbered({2, 3});
    Process other("increment", stack.share());
    EXPECT_EQ(other.line(), "size 6 bytes 010203040506");
    EXPECT_EQ(other.wait(), 0);
    EXPECT_EQ(naive::block_of(stack), (Bytes{2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(SharedMemory(stack.share()).size(), 6U) << "who attached has left the name";
}

TEST(SharedStackInTwoProcesses, TheOtherOneKeepsTheSamplesWhenTheStackGoes)
{
    auto stack = std::make_unique<VStackImp>(numbered({3}));
    const std::string id = stack->share();
    Process other("keep", id);
    EXPECT_EQ(other.line(), "size 3 bytes 010203");
    stack->get_data_ptr()[0] = 9;
    stack.reset();
    other.go_on();
    EXPECT_EQ(other.line(), "size 3 bytes 090203");
    EXPECT_EQ(other.line(), "no more");
    EXPECT_EQ(other.wait(), 0);
}

TEST(SharedStackInTwoProcesses, AnEmptyStackHasNoSamplesThereEither)
{
    const VStackImp stack(2);
    Process other("increment", stack.share());
    EXPECT_EQ(other.line(), "size 0 bytes ");
    EXPECT_EQ(other.wait(), 0);
}

TEST(SharedStackInTwoProcesses, TheNameGoesWithTheProcessThatMadeIt)
{
    Process other("share");
    const std::string id = other.line();
    {
        SharedMemory attached(id);
        EXPECT_EQ(attached.size(), 4U);
        EXPECT_EQ(std::string(static_cast<char*>(attached.data()), 4), "vela");
        EXPECT_EQ(other.wait(), 0);
        EXPECT_EQ(std::string(static_cast<char*>(attached.data()), 4), "vela");
    }
    EXPECT_THROW(SharedMemory{id}, ipc::interprocess_exception);
}

TEST(SharedStackInTwoProcesses, AProcessThatDiesLeavesTheNameBehind)
{
    Process other("die");
    const std::string id = other.line();
    EXPECT_NE(other.wait(), 0);
    {
        SharedMemory attached(id);
        EXPECT_EQ(std::string(static_cast<char*>(attached.data()), 4), "vela");
    }
    EXPECT_EQ(SharedMemory(id).size(), 4U) << "who attaches does not clean up";
    EXPECT_TRUE(ipc::shared_memory_object::remove(id.c_str()));
}

} // namespace
