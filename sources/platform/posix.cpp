#include "sources/platform/platform.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vela::platform {

namespace {

/// The most that Linux moves in one read or write.
constexpr std::size_t max_system_transfer = 0x7ffff000;

/// A reservation that a signal interrupts may give back all that it has taken. With a timer that fires again and again a
/// large one then never comes to its end; one of this size fits between two signals.
constexpr std::uint64_t reserved_at_once = std::uint64_t{4} * 1024 * 1024;

std::atomic<DebugSink> debug_sink = nullptr;

template <class Call>
auto retried(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

bool is_openable(const struct stat& status)
{
    return S_ISREG(status.st_mode) || S_ISBLK(status.st_mode);
}

/// False only when somebody else holds the file. Where the file system cannot lock it opens unlocked:
/// NFS, for one, refuses an exclusive lock on a descriptor that cannot write (EBADF).
bool lock_exclusively(int descriptor)
{
    if (retried([&] { return flock(descriptor, LOCK_EX | LOCK_NB); }) == 0)
        return true;
    switch (errno)
    {
    case EBADF:
    case ENOLCK:
    case EOPNOTSUPP:
    case ENOSYS:
    case EINVAL:
        return true;
    default:
        return false;
    }
}

/// O_NONBLOCK only kept the open itself from waiting.
bool wait_from_now_on(int descriptor)
{
    const int flags = fcntl(descriptor, F_GETFL);
    return flags >= 0 && fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) == 0;
}

bool prepare_exclusive(int descriptor, Creation creation)
{
    struct stat status;
    if (fstat(descriptor, &status) != 0 || !is_openable(status) || !lock_exclusively(descriptor) ||
        !wait_from_now_on(descriptor))
        return false;
    if (creation == Creation::create_or_truncate && S_ISREG(status.st_mode))
        return retried([&] { return ftruncate(descriptor, 0); }) == 0;
    return true;
}

bool prepare_shared(int descriptor)
{
    struct stat status;
    return fstat(descriptor, &status) == 0 && is_openable(status) && wait_from_now_on(descriptor);
}

/// Opens a file that `prepare` makes ready or refuses.
template <class Prepare>
void* open_prepared(const std::string& path, int flags, Prepare prepare)
{
    if (path.find('\0') != std::string::npos)
        return nullptr; // the system would open what stands before the NUL
    const int all_flags = flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    const int descriptor = retried([&] { return open(path.c_str(), all_flags, 0666); });
    if (descriptor < 0)
        return nullptr;
    if (!prepare(descriptor))
    {
        ::close(descriptor);
        return nullptr;
    }
    return handle_of_descriptor(descriptor);
}

/// Calls `call(done, size)` until `size_bytes` are moved, it gives 0 (end of file) or fails.
template <class SystemCall>
std::uint64_t transfer(std::uint32_t size_bytes, SystemCall call)
{
    std::uint64_t moved = 0;
    while (moved < size_bytes)
    {
        const std::size_t step = std::min<std::size_t>(size_bytes - moved, max_system_transfer);
        const ssize_t count = retried([&] { return call(moved, step); });
        if (count < 0)
            return moved;
        if (count == 0)
            break;
        moved += static_cast<std::uint64_t>(count);
    }
    errno = 0; // no call failed: nothing of an earlier failure or interruption is to be seen
    return moved;
}

} // namespace

void* handle_of_descriptor(int descriptor)
{
    return descriptor < 0 ? nullptr : reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor) + 1);
}

int descriptor_of_handle(void* handle)
{
    return static_cast<int>(reinterpret_cast<std::intptr_t>(handle) - 1);
}

void* open_exclusive(const std::string& path, Access access, Creation creation)
{
    int flags = access == Access::read ? O_RDONLY : O_RDWR;
    if (creation == Creation::create_or_truncate)
        flags |= O_CREAT;
    return open_prepared(path, flags, [&](int descriptor) { return prepare_exclusive(descriptor, creation); });
}

void* open_shared(const std::string& path)
{
    return open_prepared(path, O_RDONLY, prepare_shared);
}

std::uint64_t read(void* handle, void* buffer, std::uint32_t size_bytes)
{
    const int descriptor = descriptor_of_handle(handle);
    return transfer(size_bytes, [&](std::uint64_t done, std::size_t step)
                    { return ::read(descriptor, static_cast<char*>(buffer) + done, step); });
}

std::uint64_t write(void* handle, const void* buffer, std::uint32_t size_bytes)
{
    const int descriptor = descriptor_of_handle(handle);
    return transfer(size_bytes, [&](std::uint64_t done, std::size_t step)
                    { return ::write(descriptor, static_cast<const char*>(buffer) + done, step); });
}

std::uint64_t move(void* handle, std::int64_t offset, Origin origin)
{
    static_assert(sizeof(off_t) == 8, "file positions have 64 bits");
    const int whence = origin == Origin::start ? SEEK_SET : origin == Origin::current ? SEEK_CUR : SEEK_END;
    return static_cast<std::uint64_t>(lseek(descriptor_of_handle(handle), offset, whence));
}

void close(void* handle)
{
    // Not retried: on Linux the descriptor is gone even after EINTR.
    ::close(descriptor_of_handle(handle));
}

int reserve(void* handle, std::uint64_t size_bytes)
{
    if (size_bytes == 0)
        return 0; // the call refuses to reserve nothing
    const int descriptor = descriptor_of_handle(handle);
    // All at once first: a size that nobody has is refused before anything is taken. The call gives its error and leaves
    // errno alone.
    int error = posix_fallocate(descriptor, 0, static_cast<off_t>(size_bytes));
    if (error != EINTR)
        return error;
    for (std::uint64_t done = 0; done < size_bytes; done += reserved_at_once)
    {
        const std::uint64_t piece = std::min(reserved_at_once, size_bytes - done);
        do
            error = posix_fallocate(descriptor, static_cast<off_t>(done), static_cast<off_t>(piece));
        while (error == EINTR);
        if (error != 0)
            return error;
    }
    return 0;
}

bool remove_file(const std::string& path)
{
    if (path.find('\0') != std::string::npos)
    {
        errno = EINVAL;
        return false;
    }
    return unlink(path.c_str()) == 0;
}

int last_error()
{
    return errno;
}

void clear_last_error()
{
    errno = 0;
}

const char* error_text(int code)
{
    return strerrordesc_np(code);
}

void debug_line(const char* text) noexcept
{
    if (const DebugSink sink = debug_sink)
        sink(text);
}

DebugSink set_debug_sink(DebugSink sink)
{
    return debug_sink.exchange(sink);
}

std::uint32_t thread_id()
{
    return static_cast<std::uint32_t>(gettid());
}

std::uint32_t process_id()
{
    return static_cast<std::uint32_t>(getpid());
}

void* make_mutex()
{
    return new std::recursive_mutex;
}

void free_mutex(void* mutex)
{
    delete static_cast<std::recursive_mutex*>(mutex);
}

void lock_mutex(void* mutex)
{
    static_cast<std::recursive_mutex*>(mutex)->lock();
}

void unlock_mutex(void* mutex)
{
    static_cast<std::recursive_mutex*>(mutex)->unlock();
}

unsigned code_page()
{
    return 65001; // UTF-8, whatever the locale says
}

} // namespace Vela::platform
