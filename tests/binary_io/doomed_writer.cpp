// doomed_writer PATH BYTES: writes stacks and kills itself, as a power cut would, when it has written so many bytes.
// Prints how many bytes are written when each stack is finished, and at the end.
#include "binary_io/doomed_stacks.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::size_t bytes_left = 0;
std::size_t bytes_written = 0;

} // namespace

// Visible, so that the library finds this instead of that of the system.
extern "C" __attribute__((visibility("default"))) ssize_t write(int descriptor, const void* buffer, std::size_t size)
{
    if (descriptor <= STDERR_FILENO)
        return syscall(SYS_write, descriptor, buffer, size);
    if (size > bytes_left)
    {
        // A single field is written as a whole or not at all.
        if (size > sizeof(std::uint64_t))
            syscall(SYS_write, descriptor, buffer, bytes_left);
        kill(getpid(), SIGKILL);
    }
    bytes_left -= size;
    bytes_written += size;
    return syscall(SYS_write, descriptor, buffer, size);
}

int main(int argc, char** argv)
{
    if (argc != 3)
        return EXIT_FAILURE;
    bytes_left = std::strtoull(argv[2], nullptr, 10);
    try
    {
        VBFFile file(vela_test::file_name(argv[1]), VFile::write_mode);
        for (std::uint64_t index = 0; index < vela_test::doomed_stack_count; ++index)
        {
            vela_test::DoomedStack(index).write(*file.shared());
            std::printf("%zu\n", bytes_written);
        }
        file->close();
        std::printf("%zu\n", bytes_written);
    }
    catch (const std::exception& error)
    {
        std::fputs(error.what(), stderr);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
