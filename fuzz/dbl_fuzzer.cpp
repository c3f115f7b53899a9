// Any bytes read as a DBL file in every mode: never beyond a buffer of the promised size, and the same samples
// in a buffer of the caller as in an allocated one.

#include "fuzz/memory_file.h"
#include "fuzz/text_pieces.h"

#include <VelaBinaryIO/vela_dbl.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using vela_fuzz::require;

/// No more samples than this in one run, so that it stays quick.
constexpr std::int32_t most_samples = 1 << 16;

int read(const std::string& path, std::uintptr_t mode, void* dims_or_data, void** buffer)
{
    float lengths[4];
    *buffer = reinterpret_cast<void*>(mode);
    return vela_dbl_read(path.c_str(), dims_or_data, lengths, buffer);
}

/// Reads in a mode that allocates and in its twin that does not.
void read_samples(const std::string& path, std::uintptr_t allocating, std::uintptr_t own, std::int32_t count)
{
    int dims[4];
    void* allocated = nullptr;
    const int result = read(path, allocating, dims, &allocated);
    require(result == 1 || result == 2);
    const std::unique_ptr<void, void (*)(void*)> keeper(allocated, std::free);
    std::vector<unsigned char> mine(static_cast<std::size_t>(count) * 8);
    if (mine.empty())
        return;
    void* place = nullptr;
    require(read(path, own, mine.data(), &place) == result && place == mine.data());
    require(std::memcmp(mine.data(), allocated, static_cast<std::size_t>(count) * (result == 2 ? 4 : 8)) == 0);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 128)
        return 0; // such a file stays open, on purpose
    const vela_fuzz::MemoryFile memory(data, size, VFile::read_mode);
    const std::string path = memory.path();
    int dims[4];
    void* mode = nullptr;
    const int stored = read(path, 0xA0, dims, &mode);
    require(stored == (data[24] == 1 ? 2 : 1));
    std::uint32_t product = 1;
    for (const int dim : dims)
        product *= static_cast<std::uint32_t>(dim);
    const auto count = static_cast<std::int32_t>(product);
    if (count > most_samples)
        return 0;
    if (count < 0)
    {
        require(read(path, 0xAF, dims, &mode) == 0);
        return 0;
    }
    read_samples(path, 0xAE, 0xAA, count);
    read_samples(path, 0xAF, 0xAB, count);
    read_samples(path, 0, 0xAC, count);
    return 0;
}
