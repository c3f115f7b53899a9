#include "binary_io/disk_writes.h"

#include <algorithm>
#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

namespace vela_test {

DiskWrites* DiskWrites::current = nullptr;

DiskWrites::DiskWrites()
{
    current = this;
}

DiskWrites::~DiskWrites()
{
    current = nullptr;
}

std::uint64_t DiskWrites::count_bytes() const
{
    std::uint64_t bytes = 0;
    for (const DiskWrite& write : writes)
        bytes += write.size_bytes;
    return bytes;
}

std::uint64_t DiskWrites::take_room(std::uint64_t size_bytes)
{
    const std::uint64_t taken = std::min(room, size_bytes);
    room -= taken;
    return taken;
}

void DiskWrites::note_write(std::uint64_t position, const unsigned char* bytes, std::uint64_t size_bytes)
{
    writes.push_back({position, size_bytes});
    if (kept_bytes != nullptr)
        kept_bytes->emplace_back(bytes, bytes + size_bytes);
}

} // namespace vela_test

using vela_test::DiskWrites;

// Visible, so that the library finds these instead of those of the system.
extern "C" __attribute__((visibility("default"))) ssize_t write(int descriptor, const void* buffer, std::size_t size)
{
    DiskWrites* const watch = descriptor > STDERR_FILENO ? DiskWrites::current : nullptr;
    if (watch == nullptr)
        return syscall(SYS_write, descriptor, buffer, size);
    watch->note_call();
    const std::size_t allowed = watch->take_room(size);
    if (allowed == 0 && size != 0)
    {
        errno = ENOSPC;
        return -1;
    }
    const auto position = static_cast<std::uint64_t>(syscall(SYS_lseek, descriptor, 0, SEEK_CUR));
    const ssize_t written = syscall(SYS_write, descriptor, buffer, allowed);
    if (written > 0)
        watch->note_write(position, static_cast<const unsigned char*>(buffer), static_cast<std::uint64_t>(written));
    return written;
}

extern "C" __attribute__((visibility("default"))) off_t lseek(int descriptor, off_t offset, int whence) noexcept
{
    if (DiskWrites* const watch = DiskWrites::current)
    {
        watch->note_call();
        if (whence == SEEK_SET && watch->refuses(static_cast<std::uint64_t>(offset)))
        {
            errno = EINVAL;
            return -1;
        }
    }
    return syscall(SYS_lseek, descriptor, offset, whence);
}
