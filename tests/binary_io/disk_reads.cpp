#include "binary_io/disk_reads.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace vela_test {

DiskReads* DiskReads::current = nullptr;

DiskReads::DiskReads()
{
    current = this;
}

DiskReads::~DiskReads()
{
    current = nullptr;
}

} // namespace vela_test

using vela_test::DiskReads;

// Visible, so that the library finds these instead of those of the system.
extern "C" __attribute__((visibility("default"))) ssize_t read(int descriptor, void* buffer, std::size_t size)
{
    const ssize_t count = syscall(SYS_read, descriptor, buffer, size);
    if (DiskReads::current != nullptr)
        DiskReads::current->note_read(count > 0 ? static_cast<std::uint64_t>(count) : 0);
    return count;
}

extern "C" __attribute__((visibility("default"))) off_t lseek(int descriptor, off_t offset, int whence) noexcept
{
    if (DiskReads::current != nullptr)
        DiskReads::current->note_move();
    return syscall(SYS_lseek, descriptor, offset, whence);
}
