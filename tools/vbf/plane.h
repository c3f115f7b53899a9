/// One plane of a stack.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include <cstdint>
#include <optional>

/// Where a plane of the first two dimensions lies.
struct Plane
{
    /// A plane of more samples is not drawn.
    static constexpr std::uint64_t max_samples = std::uint64_t{32} * 1024 * 1024;
    /// Nor is one that is wider or higher: no PNG reader takes it.
    static constexpr std::uint64_t max_extent = 1000000;

    std::uint32_t width;
    std::uint32_t height;
    std::uint64_t first_sample; ///< in storage order

    std::uint64_t get_count_samples() const { return std::uint64_t{width} * height; }
};

/// The plane `number` counted through all further dimensions, the middle one without a number.
/// A stack of one dimension is one row, one without dimensions a single sample.
///
/// @throws std::runtime_error: the stack has no such plane, or no samples.
/// @throws VelaError id -1 "The product exceeds the maximum size."
Plane find_plane(const VBFStackHeader& header, std::optional<std::uint64_t> number);

/// @throws std::runtime_error: the plane is beyond the limits for a picture.
void check_drawable(const Plane& plane);
