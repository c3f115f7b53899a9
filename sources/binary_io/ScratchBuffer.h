/// Bytes that are needed for a moment.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

namespace Vela::detail {

class ScratchBuffer
{
public:
    /// Room for `size_bytes`, which are not above `most_bytes`; what was there before is gone. It grows by doubling, up
    /// to `most_bytes`, or somebody who needs a little more each time would pay for it each time.
    unsigned char* get(std::uint64_t size_bytes, std::uint64_t most_bytes)
    {
        if (size_bytes > capacity)
        {
            release();
            const std::uint64_t wanted = std::clamp(2 * size_bytes, size_bytes, std::max(size_bytes, most_bytes));
            bytes = std::make_unique_for_overwrite<unsigned char[]>(wanted);
            capacity = wanted;
        }
        return bytes.get();
    }

    void release()
    {
        bytes.reset();
        capacity = 0;
    }

private:
    std::unique_ptr<unsigned char[]> bytes; // not set when taken, unlike a vector
    std::uint64_t capacity = 0;
};

} // namespace Vela::detail
