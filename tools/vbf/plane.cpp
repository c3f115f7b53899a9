#include "plane.h"

#include "stack_shape.h"

#include <stdexcept>
#include <string>

void check_drawable(const Plane& plane)
{
    const bool drawable = plane.width <= Plane::max_extent && plane.height <= Plane::max_extent &&
                          plane.get_count_samples() <= Plane::max_samples;
    if (!drawable)
        throw std::runtime_error("The plane is too large for a preview: " + std::to_string(plane.width) + " x " +
                                 std::to_string(plane.height) + " samples. At most " +
                                 std::to_string(Plane::max_samples) + " samples are drawn, and " +
                                 std::to_string(Plane::max_extent) + " in a row or column.");
}

Plane find_plane(const VBFStackHeader& header, std::optional<std::uint64_t> number)
{
    const std::vector<std::uint32_t> sizes = StackShape(header).sizes;
    const std::uint64_t count_samples = count_of(sizes);
    if (count_samples == 0)
        throw std::runtime_error("The stack has no samples.");

    Plane plane = {sizes.empty() ? 1 : sizes[0], sizes.size() < 2 ? 1 : sizes[1], 0};
    const std::uint64_t count_planes = count_samples / plane.get_count_samples();
    const std::uint64_t chosen = number.value_or(count_planes / 2);
    if (chosen >= count_planes)
        throw std::runtime_error("There is no plane " + std::to_string(chosen) + ", the stack has " +
                                 std::to_string(count_planes) + " counted from 0.");
    plane.first_sample = chosen * plane.get_count_samples();
    return plane;
}
