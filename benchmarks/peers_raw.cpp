#include "benchmarks/peers.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace vela_bench {

namespace {

constexpr std::size_t piece = 4 * 1024 * 1024;

int opened(const std::string& path, int flags)
{
    const int descriptor = ::open(path.c_str(), flags, 0666);
    if (descriptor >= 0)
        return descriptor;
    std::perror(path.c_str());
    std::abort();
}

/// Moves all of `bytes` with `transfer(position, count)`.
template <class Transfer>
void in_pieces(std::size_t bytes, Transfer transfer)
{
    for (std::size_t done = 0; done < bytes;)
    {
        const ssize_t moved = transfer(done, std::min(piece, bytes - done));
        if (moved <= 0)
        {
            std::perror("transfer");
            std::abort();
        }
        done += static_cast<std::size_t>(moved);
    }
}

} // namespace

void write_raw(const std::string& path, const ImageData& data)
{
    const int descriptor = opened(path, O_CREAT | O_TRUNC | O_WRONLY);
    in_pieces(data.bytes.size(), [&](std::size_t position, std::size_t count)
              { return ::write(descriptor, data.bytes.data() + position, count); });
    ::close(descriptor);
}

void read_raw(const std::string& path, std::vector<unsigned char>& bytes)
{
    const int descriptor = opened(path, O_RDONLY);
    in_pieces(bytes.size(), [&](std::size_t position, std::size_t count)
              { return ::read(descriptor, bytes.data() + position, count); });
    ::close(descriptor);
}

} // namespace vela_bench
