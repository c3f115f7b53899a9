/// A stream that knows how many bytes it still has.
#pragma once

#include <cstdint>

namespace Vela::detail {

/// A private face beside `VFileAccess`, for streams over data that may lie about lengths.
class BoundedStream
{
public:
    /// Bytes behind the current position, all bits set where that is not known.
    virtual std::uint64_t bytes_left() const = 0;

protected:
    ~BoundedStream() = default;
};

} // namespace Vela::detail
