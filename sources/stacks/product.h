/// How many elements there are.
#pragma once

#include <VelaBase/VelaError.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace Vela::detail {

/// The product of the sizes; 1 without any. Behind a 0 nothing is looked at.
/// @throws VelaError id -1 "The product exceeds the maximum size."
inline std::uint64_t get_product(const std::vector<std::uint64_t>& sizes)
{
    std::uint64_t product = 1;
    for (const std::uint64_t size : sizes)
    {
        if (product == 0)
            return 0;
        if (size > std::numeric_limits<std::uint64_t>::max() / product)
            throw VelaError("`anonymous-namespace'::get_product", __FILE__,
                            __LINE__)("The product exceeds the maximum size.");
        product *= size;
    }
    return product;
}

} // namespace Vela::detail
