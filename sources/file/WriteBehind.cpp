#include "sources/file/WriteBehind.h"

#include <VelaBase/VelaError.h>

#include <algorithm>

namespace {

/// From here on a field goes to the file by itself.
constexpr std::uint64_t capacity = std::uint64_t{64} * 1024;

/// Below the limit of one transfer of a file.
constexpr std::uint64_t largest_transfer = std::uint64_t{1} << 30;

} // namespace

namespace Vela::detail {

WriteBehind::WriteBehind(VFile& in_file) : file(in_file), position(in_file.tell()) {}

std::uint64_t WriteBehind::seek(std::uint64_t pos)
{
    flush();
    const std::uint64_t reached = file.seek(pos);
    if (reached != all_ones)
        position = reached;
    return reached;
}

void WriteBehind::read(void*, std::uint64_t)
{
    throw VelaError("WriteBehind::read", __FILE__, __LINE__)("Trying to read from file in write mode!")(-1);
}

void WriteBehind::write(const void* buffer, std::uint64_t size_bytes)
{
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    position += size_bytes;
    if (pending.size() + size_bytes > capacity)
        flush();
    if (size_bytes < capacity)
    {
        pending.insert(pending.end(), bytes, bytes + size_bytes);
        return;
    }
    while (size_bytes > 0)
    {
        const std::uint64_t count = std::min(size_bytes, largest_transfer);
        file.write(bytes, count);
        bytes += count;
        size_bytes -= count;
    }
}

void WriteBehind::flush()
{
    if (pending.empty())
        return;
    file.write(pending.data(), pending.size());
    pending.clear();
}

} // namespace Vela::detail
