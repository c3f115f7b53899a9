#include "sources/binary_io/flush_block.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace {

constexpr std::uint64_t smallest_block = 0x10000;
constexpr std::uint64_t largest_block = 0x40000;

std::uint64_t total_size(const std::vector<std::uint64_t>& sizes, std::uint64_t sample_size)
{
    std::uint64_t total = sample_size;
    for (const std::uint64_t size : sizes)
        total *= size;
    return total;
}

/// The smallest divisor of `number` from `lowest` on. Divisors come in pairs, so only those up to the root are tried: a
/// size may be 2^32 - 1.
std::optional<std::uint64_t> divisor_from(std::uint64_t number, std::uint64_t lowest)
{
    std::optional<std::uint64_t> best;
    const auto consider = [&](std::uint64_t divisor)
    {
        if (divisor >= lowest)
            best = std::min(best.value_or(divisor), divisor);
    };
    for (std::uint64_t small = 1; small * small <= number; ++small)
    {
        if (number % small != 0)
            continue;
        consider(small);
        consider(number / small);
    }
    return best;
}

/// A part of `block` bytes, which is above the largest block, along an axis of `size` columns.
std::uint64_t split(std::uint64_t block, std::uint64_t size)
{
    const std::uint64_t fewest_parts = block / (largest_block + 1) + 1;
    const std::uint64_t most_parts = block / smallest_block;
    const std::optional<std::uint64_t> parts = divisor_from(size, fewest_parts);
    return block / (parts && *parts <= most_parts ? *parts : most_parts);
}

} // namespace

namespace Vela::detail {

std::uint64_t choose_flush_block(const std::vector<std::uint64_t>& sizes, std::uint64_t sample_size, std::uint64_t wish)
{
    if (total_size(sizes, sample_size) < smallest_block)
        return 0;
    if (wish != any_flush_block)
        return wish;
    std::uint64_t block = sample_size;
    std::uint64_t last_size = 1;
    for (auto size = sizes.begin(); block < smallest_block && size != sizes.end(); ++size)
    {
        last_size = *size;
        block *= last_size;
    }
    return block <= largest_block ? block : split(block, last_size);
}

} // namespace Vela::detail
