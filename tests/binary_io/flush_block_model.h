/// The choice of the flush block, step by step as it is laid down.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vela_test {

/// The block of a stack whose sizes are known when its writing starts. `requested` is what was asked for, all ones for
/// nothing.
inline std::uint64_t chosen_block(const std::vector<std::uint64_t>& sizes, std::uint64_t sample_size,
                                  std::uint64_t requested)
{
    constexpr std::uint64_t smallest = 0x10000;
    constexpr std::uint64_t largest = 0x40000;
    std::uint64_t total = sample_size;
    for (const std::uint64_t size : sizes)
        total *= size;
    if (total < smallest)
        return 0;
    if (requested != ~std::uint64_t{0})
        return requested;
    std::uint64_t block = sample_size;
    std::size_t i = 0;
    for (;; ++i)
    {
        block *= sizes.at(i);
        if (block >= smallest)
            break;
    }
    if (block <= largest)
        return block;
    for (std::uint64_t d = 2;; ++d)
    {
        if (block / d > largest)
            continue;
        if (block / d < smallest)
            return d == 2 ? smallest : block / (d - 1);
        if (sizes.at(i) % d == 0)
            return block / d;
    }
}

} // namespace vela_test
