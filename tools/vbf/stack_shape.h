/// The dimensions of a stack, out of its packed header.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include <cstdint>
#include <vector>

/// One entry a dimension, the fastest first.
struct StackShape
{
    explicit StackShape(const VBFStackHeader& header);

    std::vector<std::uint32_t> sizes;
    std::vector<double> lengths;
    std::vector<double> offsets;
};

/// The product of `sizes`, 1 where there are none.
///
/// @throws VelaError id -1 "The product exceeds the maximum size."
std::uint64_t count_of(const std::vector<std::uint32_t>& sizes);
