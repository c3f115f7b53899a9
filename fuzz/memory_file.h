/// The bytes of a fuzzer as a file.
#pragma once

#include <VelaFile/VFile.h>
#include <VelaFile/handle.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace vela_fuzz {

/// An anonymous file that holds `size` bytes, attached to a `VFile` in `mode`.
class MemoryFile
{
public:
    MemoryFile(const std::uint8_t* data, std::size_t size, VFile::mode mode)
        : descriptor(memfd_create("fuzz", MFD_CLOEXEC))
    {
        if (descriptor < 0 || write(descriptor, data, size) != static_cast<ssize_t>(size) ||
            lseek(descriptor, 0, SEEK_SET) != 0)
            __builtin_trap();
        void* handle = vela_handle_from_descriptor(descriptor);
        file.attach(handle, mode);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile()
    {
        file.detach();
        close(descriptor);
    }

    /// For those who open it by name.
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

    VFile file;

private:
    int descriptor;
};

} // namespace vela_fuzz
