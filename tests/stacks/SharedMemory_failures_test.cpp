// What the system may refuse to a segment of shared memory. This program defines the calls itself and so can make them
// fail; the names that are left are counted by support/shared_names.cpp.

#include <VelaStacks/SharedMemory.h>

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

using boost::interprocess::interprocess_exception;
using Vela::SharedMemory;

namespace {

/// How the next calls go; 0 passes them on.
struct Script
{
    int truncate_error = 0;
    int reserve_error = 0;
    int reserve_interruptions = 0;
    off_t reserved = 0; ///< what was reserved last
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
    script.reserved = size;
    return next(descriptor, offset, size);
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

TEST_F(SharedMemoryFailure, IsUnlikelyLaterAsThePagesAreReserved)
{
    const SharedMemory memory(std::uint64_t{64} * 4096);
    const int descriptor = shm_open((std::string("/") + memory.id()).c_str(), O_RDONLY, 0);
    ASSERT_GE(descriptor, 0);
    struct stat status = {};
    EXPECT_EQ(fstat(descriptor, &status), 0);
    close(descriptor);
    EXPECT_EQ(status.st_blocks * 512, 64 * 4096);
}

} // namespace
