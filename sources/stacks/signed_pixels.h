/// Arithmetic of pixel positions that comes from outside: it ends at the limits of the type instead of beyond.
#pragma once

#include <cstdint>
#include <limits>

namespace Vela::detail {

constexpr std::int64_t last_pixel = std::numeric_limits<std::int64_t>::max();

/// The size as a position, at most `last_pixel`.
constexpr std::int64_t as_position(std::uint64_t size)
{
    return size > static_cast<std::uint64_t>(last_pixel) ? last_pixel : static_cast<std::int64_t>(size);
}

/// How many pixels lie before pixel 0 where something begins at `begin`.
constexpr std::int64_t pixels_before_zero(std::int64_t begin)
{
    if (begin >= 0)
        return 0;
    return begin < -last_pixel ? last_pixel : -begin;
}

/// `end` - `begin`, where it is not below; it may be twice what a position can be.
constexpr std::uint64_t distance(std::int64_t begin, std::int64_t end)
{
    return static_cast<std::uint64_t>(end) - static_cast<std::uint64_t>(begin);
}

} // namespace Vela::detail
