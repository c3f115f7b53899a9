/// Where a writer breaks the compressed samples of a stack.
#pragma once

#include <cstdint>
#include <vector>

namespace Vela::detail {

/// A wish that leaves the choice to `choose_flush_block`.
constexpr std::uint64_t any_flush_block = ~std::uint64_t{0};

/// The uncompressed bytes between two flush points of a stack of these sizes and `sample_size` bytes a sample, 0 for
/// none. A stack below 64 KiB, such as one that is still to grow, has none, whatever the wish. Otherwise a `wish`
/// counts. Otherwise it is a hyperplane of the stack, or a part of one that is made of whole rows where that is
/// possible: 64 to 256 KiB. Sizes have at most 32 bits each, and the bytes of the stack can be counted in 64.
std::uint64_t choose_flush_block(const std::vector<std::uint64_t>& sizes, std::uint64_t sample_size,
                                 std::uint64_t wish);

} // namespace Vela::detail
