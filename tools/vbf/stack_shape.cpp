#include "stack_shape.h"

#include <VelaBase/VelaError.h>

#include <cstring>
#include <limits>

namespace {

/// Copies the first `count` entries out of a packed record, where they are not aligned.
template <class T>
std::vector<T> first_entries(const VBFStackHeader& header, std::size_t offset_bytes, std::size_t count)
{
    std::vector<T> entries(count);
    const char* const record = reinterpret_cast<const char*>(&header);
    if (count != 0)
        std::memcpy(entries.data(), record + offset_bytes, count * sizeof(T));
    return entries;
}

} // namespace

StackShape::StackShape(const VBFStackHeader& header)
    : sizes(first_entries<std::uint32_t>(header, offsetof(VBFStackHeader, dimension_sizes), header.rank)),
      lengths(first_entries<double>(header, offsetof(VBFStackHeader, lengths), header.rank)),
      offsets(first_entries<double>(header, offsetof(VBFStackHeader, offsets), header.rank))
{
}

std::uint64_t count_of(const std::vector<std::uint32_t>& sizes)
{
    std::uint64_t product = 1;
    for (const std::uint32_t size : sizes)
    {
        if (product == 0)
            return 0;
        if (size > std::numeric_limits<std::uint64_t>::max() / product)
            throw VelaError("count_of", __FILE__, __LINE__)("The product exceeds the maximum size.")(-1);
        product *= size;
    }
    return product;
}
