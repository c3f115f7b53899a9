// What the system may refuse to a segment of shared memory. This program defines the calls itself and so can make them
// fail; the names that are left are counted by support/shared_names.cpp.

#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>

#include "support/shared_names.h"

#include <boost/interprocess/exceptions.hpp>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <dlfcn.h>
#include <fcntl.h>
#include <set>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using boost::interprocess::interprocess_exception;
using Vela::SharedMemory;

namespace {

/// How the next calls go; 0 passes them on.
struct Script
{
    int truncate_error = 0;
    int reserve_error = 0;
    int map_error = 0;
    int reserve_interruptions = 0;
    /// Reservations of more are always interrupted, as by a timer that fires again and again; after so many in vain the
    /// system gives up.
    off_t most_reserved_at_once = INT64_MAX;
    int interruptions_left = 100;
    off_t reserved = 0; ///< bytes from the start on, without a gap
};
Script script;

template <class Function>
Function* next_definition(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

class SharedMemoryFailure : public testing::Test
{
protected:
    void SetUp() override { script = Script(); }
    void TearDown() override { script = Script(); }

    static void expect_error(std::uint64_t size, int code)
    {
        try
        {
            const SharedMemory memory(size);
            ADD_FAILURE() << "made a segment";
        }
        catch (const interprocess_exception& error)
        {
            EXPECT_EQ(error.get_native_error(), code);
        }
        EXPECT_EQ(vela_test::shared_names_left(), std::set<std::string>());
    }
};

} // namespace

// Visible, so that the library finds these instead of those of the system.
extern "C" __attribute__((visibility("default"))) int ftruncate(int descriptor, off_t size) noexcept
{
    static const auto next = next_definition<int(int, off_t)>("ftruncate");
    if (script.truncate_error == 0)
        return next(descriptor, size);
    errno = script.truncate_error;
    return -1;
}

extern "C" __attribute__((visibility("default"))) int posix_fallocate(int descriptor, off_t offset, off_t size)
{
    static const auto next = next_definition<int(int, off_t, off_t)>("posix_fallocate");
    if (script.reserve_interruptions > 0)
    {
        --script.reserve_interruptions;
        return EINTR;
    }
    if (script.reserve_error != 0)
        return script.reserve_error;
    if (size > script.most_reserved_at_once)
        return script.interruptions_left-- > 0 ? EINTR : EIO;
    if (offset == script.reserved)
        script.reserved += size;
    return next(descriptor, offset, size);
}

extern "C" __attribute__((visibility("default"))) void* mmap(void* address, size_t size, int protection, int flags,
                                                             int descriptor, off_t offset) noexcept
{
    static const auto next = next_definition<void*(void*, size_t, int, int, int, off_t)>("mmap");
    if (script.map_error == 0)
        return next(address, size, protection, flags, descriptor, offset);
    errno = script.map_error;
    return MAP_FAILED;
}

namespace {

TEST_F(SharedMemoryFailure, OfTheSizeLeavesNoName)
{
    script.truncate_error = EFBIG;
    expect_error(100, EFBIG);
}

TEST_F(SharedMemoryFailure, ForWantOfMemoryComesWhenTheSegmentIsMade)
{
    script.reserve_error = ENOSPC;
    expect_error(100, ENOSPC);
}

TEST_F(SharedMemoryFailure, OfTheReservationIsNotAskedForWithoutBytes)
{
    script.reserve_error = ENOSPC;
    EXPECT_EQ(SharedMemory(0).size(), 0u);
}

TEST_F(SharedMemoryFailure, IsNoneWhenTheReservationIsInterrupted)
{
    script.reserve_interruptions = 3;
    SharedMemory memory(123456);
    EXPECT_EQ(script.reserve_interruptions, 0);
    EXPECT_EQ(script.reserved, 123456);
    EXPECT_EQ(memory.size(), 123456u);
}

TEST_F(SharedMemoryFailure, IsNoneWhenEveryLargeReservationIsInterrupted)
{
    const off_t size = off_t{10} * 1024 * 1024 + 5;
    script.most_reserved_at_once = off_t{4} * 1024 * 1024;
    const SharedMemory memory(static_cast<std::uint64_t>(size));
    EXPECT_EQ(script.reserved, size);
    EXPECT_EQ(memory.size(), static_cast<std::uint64_t>(size));
}

TEST_F(SharedMemoryFailure, OfAPieceOfTheReservationLeavesNoName)
{
    script.reserve_interruptions = 1;
    script.reserve_error = ENOSPC;
    expect_error(100, ENOSPC);
}

TEST_F(SharedMemoryFailure, OfTheMappingLeavesNoName)
{
    script.map_error = ENOMEM;
    expect_error(100, ENOMEM);
    script.map_error = 0;
    const SharedMemory memory(100);
    script.map_error = EACCES;
    EXPECT_THROW(SharedMemory{std::string(memory.id())}, interprocess_exception);
    script.map_error = 0;
    EXPECT_EQ(SharedMemory(std::string(memory.id())).size(), 100u) << "the name belongs to its owner";
}

TEST_F(SharedMemoryFailure, LeavesAStackThatWantsToShareAsItWas)
{
    VStackImp stack;
    stack.create(std::vector<std::uint64_t>{3}, vela_dt_uint8);
    stack.get_data_ptr()[2] = 7;
    const unsigned char* const before = stack.get_data_ptr();
    const auto fails = [&]
    {
        EXPECT_THROW(stack.share(), interprocess_exception);
        EXPECT_EQ(vela_test::shared_names_left(), std::set<std::string>());
        EXPECT_EQ(stack.get_data_ptr(), before);
        EXPECT_EQ(stack.get_data_ptr()[2], 7);
    };
    script.truncate_error = EFBIG;
    fails();
    script = Script();
    script.reserve_error = ENOSPC;
    fails();
    script = Script();
    script.map_error = ENOMEM;
    fails();
    script = Script();
    stack.create(std::vector<std::uint64_t>{4}, vela_dt_uint8); // private as before
    EXPECT_EQ(SharedMemory(std::string(stack.share())).size(), 4u);
    EXPECT_EQ(stack.get_data_ptr()[2], 7);
}

TEST_F(SharedMemoryFailure, IsUnlikelyLaterAsThePagesAreReserved)
{
    const SharedMemory memory(std::uint64_t{64} * 4096);
    const int descriptor = shm_open((std::string("/") + memory.id()).c_str(), O_RDONLY, 0);
    ASSERT_GE(descriptor, 0);
    struct stat status = {};
    EXPECT_EQ(fstat(descriptor, &status), 0);
    close(descriptor);
    EXPECT_EQ(status.st_blocks * 512, std::int64_t{64} * 4096);
}

} // namespace
