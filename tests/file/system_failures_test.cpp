// What the system may do to a file: move less than it was asked for, be interrupted, fail, or not know locks. This
// program defines the calls itself and so can make them do it.

#include "support/descriptor.h"
#include "support/expect_vela_error.h"
#include "support/sample_bytes.h"
#include "support/temporary_folder.h"

#include <VelaFile/VFile.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// How the next calls go. Only `armed` calls are changed.
struct Script
{
    bool armed = false;
    std::size_t most_bytes = ~std::size_t{0}; ///< a call moves no more
    int interruptions = 0;                    ///< so many calls fail with EINTR first
    int fail_after_bytes = -1;                ///< then calls fail with EIO
    int lock_error = 0;                       ///< flock fails with it
    std::size_t calls = 0;
};
Script script;

/// What the script says of a call of `size` bytes: the size to pass on, or -1 with errno set.
ssize_t permitted(std::size_t size)
{
    ++script.calls;
    if (!script.armed)
        return static_cast<ssize_t>(size);
    if (script.interruptions > 0)
    {
        --script.interruptions;
        errno = EINTR;
        return -1;
    }
    if (script.fail_after_bytes == 0)
    {
        errno = EIO;
        return -1;
    }
    size = std::min(size, script.most_bytes);
    if (script.fail_after_bytes > 0)
    {
        size = std::min(size, static_cast<std::size_t>(script.fail_after_bytes));
        script.fail_after_bytes -= static_cast<int>(size);
    }
    return static_cast<ssize_t>(size);
}

} // namespace

// Visible, so that the library finds these instead of those of the system.
extern "C" __attribute__((visibility("default"))) ssize_t read(int descriptor, void* buffer, std::size_t size)
{
    const ssize_t allowed = permitted(size);
    return allowed < 0 ? -1 : syscall(SYS_read, descriptor, buffer, allowed);
}

extern "C" __attribute__((visibility("default"))) ssize_t write(int descriptor, const void* buffer, std::size_t size)
{
    const ssize_t allowed = permitted(size);
    return allowed < 0 ? -1 : syscall(SYS_write, descriptor, buffer, allowed);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow" // the system has a struct of this name too
extern "C" __attribute__((visibility("default"))) int flock(int descriptor, int operation) noexcept
{
    if (script.armed && script.interruptions > 0)
    {
        --script.interruptions;
        errno = EINTR;
        return -1;
    }
    if (script.armed && script.lock_error != 0)
    {
        errno = script.lock_error;
        return -1;
    }
    return static_cast<int>(syscall(SYS_flock, descriptor, operation));
}
#pragma GCC diagnostic pop

namespace {

using vela_test::Bytes;
using vela_test::file_name;

class SystemFailures : public vela_test::FolderTest
{
protected:
    SystemFailures() { script = Script(); }
    ~SystemFailures() override { script = Script(); }

    VPropstring data_name() const { return file_name(path("data")); }

    const Bytes data = vela_test::noisy_bytes(5000);
};

TEST_F(SystemFailures, AReadGoesOnOverShortTransfersAndInterruptions)
{
    vela_test::put_bytes(path("data"), data);
    VFile file(data_name(), VFile::read_mode);
    Bytes got(data.size(), 0xA5);
    script.armed = true;
    script.most_bytes = 999;
    script.interruptions = 3;
    file.read(got.data(), got.size());
    EXPECT_TRUE(got == data);
    EXPECT_EQ(script.calls, 3u + 6u);
}

TEST_F(SystemFailures, AWriteGoesOnOverShortTransfersAndInterruptions)
{
    {
        VFile file(data_name(), VFile::write_mode);
        script.armed = true;
        script.most_bytes = 1001;
        script.interruptions = 2;
        file.write(data.data(), data.size());
        EXPECT_EQ(script.calls, 2u + 5u);
        script.armed = false;
    }
    EXPECT_TRUE(vela_test::get_bytes(path("data")) == data);
}

TEST_F(SystemFailures, AFailureAfterSomeBytesCarriesTheSystemsText)
{
    vela_test::put_bytes(path("data"), data);
    VFile file(data_name(), VFile::append_mode);
    Bytes got(data.size(), 0xA5);
    script.armed = true;
    script.fail_after_bytes = 1234;
    try
    {
        file.read(got.data(), got.size());
        ADD_FAILURE() << "no failure";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_id(), -3);
        EXPECT_EQ(error.get_msg(), "Failed reading 5000 bytes from file!");
        EXPECT_EQ(error.get_oserr_id(), EIO);
        EXPECT_EQ(error.get_oserr(), "Input/output error");
    }
    script.fail_after_bytes = 0;
    try
    {
        file.write(data.data(), 7);
        ADD_FAILURE() << "no failure";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_msg(), "Failed writing 7 bytes to file!");
        EXPECT_EQ(error.get_oserr_id(), EIO);
    }
}

TEST_F(SystemFailures, ATransferThatEndsShortShowsNoEarlierSystemError)
{
    vela_test::put_bytes(path("data"), data);
    VFile file(data_name(), VFile::read_mode);
    Bytes got(data.size() + 1, 0xA5);
    errno = ENOENT;
    try
    {
        file.read(got.data(), got.size());
        ADD_FAILURE() << "no failure";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_oserr_id(), 0);
    }
    errno = ENOENT;
    try
    {
        file.read(got.data(), std::uint64_t{1} << 32); // cut to a transfer of nothing, which no call refuses
        ADD_FAILURE() << "no failure";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_msg(), "Failed reading 0 bytes from file!");
        EXPECT_EQ(error.get_oserr_id(), 0);
    }
}

TEST_F(SystemFailures, AnInterruptionBeforeTheEndOfTheFileIsNotReported)
{
    vela_test::put_bytes(path("data"), data);
    VFile file(data_name(), VFile::read_mode);
    Bytes got(data.size() + 1, 0xA5);
    script.armed = true;
    script.interruptions = 1;
    try
    {
        file.read(got.data(), got.size());
        ADD_FAILURE() << "no failure";
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_oserr_id(), 0);
    }
}

TEST_F(SystemFailures, AFileOpensUnlockedWhereTheFileSystemCannotLock)
{
    vela_test::put_bytes(path("data"), data);
    for (const int error : {EBADF, ENOLCK, EOPNOTSUPP, ENOSYS, EINVAL})
    {
        script.armed = true;
        script.lock_error = error;
        VFile file;
        EXPECT_NO_THROW(file.open(data_name(), VFile::read_mode)) << error;
        EXPECT_NO_THROW(VFile(data_name(), VFile::read_mode)) << "a second time, since nothing is locked: " << error;
    }
}

TEST_F(SystemFailures, AFileThatIsLockedElsewhereDoesNotOpenAndIsNotCut)
{
    vela_test::put_bytes(path("data"), data);
    script.armed = true;
    script.lock_error = EWOULDBLOCK;
    VFile file;
    EXPECT_VELA_ERROR(file.open(data_name(), VFile::write_mode), -1, "Could not open file!");
    EXPECT_FALSE(file.is_open());
    script.armed = false;
    EXPECT_TRUE(vela_test::get_bytes(path("data")) == data);
}

TEST_F(SystemFailures, AnInterruptedLockIsTriedAgain)
{
    vela_test::put_bytes(path("data"), data);
    script.armed = true;
    script.interruptions = 2;
    VFile file(data_name(), VFile::read_mode);
    EXPECT_EQ(script.interruptions, 0);
    VFile second;
    EXPECT_VELA_ERROR(second.open(data_name(), VFile::read_mode), -1, "Could not open file!");
}

} // namespace
