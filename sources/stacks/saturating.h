/// Offsets that are held against the size of a block: what 64 bits cannot hold lies outside every block.
#pragma once

#include <cstdint>
#include <limits>

namespace Vela::detail {

constexpr std::uint64_t saturated = std::numeric_limits<std::uint64_t>::max();

constexpr std::uint64_t saturating_add(std::uint64_t a, std::uint64_t b)
{
    return b > saturated - a ? saturated : a + b;
}

constexpr std::uint64_t saturating_multiply(std::uint64_t a, std::uint64_t b)
{
    return a != 0 && b > saturated / a ? saturated : a * b;
}

} // namespace Vela::detail
