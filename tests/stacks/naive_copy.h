/// What a copy gives, sample by sample, and in which order a walk goes: written from the texts, without boxes and strides.
#pragma once

#include "naive_samples.h"

#include <VelaStacks/VStackRegion.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace naive {

struct Stack
{
    vela_dt dt = vela_dt_uint8;
    std::vector<std::uint64_t> sizes;
    std::vector<unsigned char> bytes;

    std::uint64_t count() const
    {
        std::uint64_t product = 1;
        for (const std::uint64_t size : sizes)
            product *= size;
        return product;
    }
};

inline Stack random_stack(std::mt19937_64& random, vela_dt dt, std::vector<std::uint64_t> sizes)
{
    Stack stack;
    stack.dt = dt;
    stack.sizes = std::move(sizes);
    stack.bytes.resize(stack.count() * size_of(dt));
    for (std::size_t at = 0; at < stack.bytes.size(); at += size_of(dt))
        store_random_sample(random, dt, &stack.bytes[at]);
    return stack;
}

/// The position of the next element, axis 0 fastest.
inline void step(std::vector<std::int64_t>& at, const std::vector<std::uint64_t>& sizes)
{
    for (std::size_t axis = 0; axis < sizes.size(); ++axis)
    {
        if (++at[axis] < static_cast<std::int64_t>(sizes[axis]))
            return;
        at[axis] = 0;
    }
}

/// The ends of a region once the unspecified ones are known.
inline std::vector<std::int64_t> ends_of(const VStackRegion& region, const std::vector<std::uint64_t>& source_sizes)
{
    std::vector<std::int64_t> ends = region.end;
    for (std::size_t axis = 0; axis < ends.size(); ++axis)
    {
        if (ends[axis] != INT64_MAX)
            continue;
        ends[axis] =
            axis < source_sizes.size() ? static_cast<std::int64_t>(source_sizes[axis]) : region.begin[axis] + 1;
    }
    return ends;
}

inline std::vector<std::uint64_t> output_sizes(const VStackRegion& region,
                                               const std::vector<std::uint64_t>& source_sizes)
{
    const std::vector<std::int64_t> ends = ends_of(region, source_sizes);
    std::vector<std::uint64_t> sizes;
    for (const std::uint64_t axis : region.permutation)
        sizes.push_back(static_cast<std::uint64_t>(ends[axis] - region.begin[axis]));
    return sizes;
}

inline bool is_named(const VStackRegion& region, std::uint64_t axis)
{
    return std::find(region.permutation.begin(), region.permutation.end(), axis) != region.permutation.end();
}

/// Where the output sample `at` comes from; -1 outside the source. An axis that the source lacks is one of size 1.
inline std::int64_t source_index(const VStackRegion& region, const std::vector<std::uint64_t>& source_sizes,
                                 const std::vector<std::int64_t>& at)
{
    std::vector<std::int64_t> pixel(std::max(source_sizes.size(), region.begin.size()), 0);
    for (std::size_t axis = 0; axis < region.begin.size(); ++axis)
        pixel[axis] = axis < source_sizes.size() || is_named(region, axis) ? region.begin[axis] : 0;
    for (std::size_t j = 0; j < region.permutation.size(); ++j)
        pixel[region.permutation[j]] += at[j];
    std::int64_t index = 0;
    std::int64_t stride = 1;
    for (std::size_t axis = 0; axis < pixel.size(); ++axis)
    {
        const std::int64_t size = axis < source_sizes.size() ? static_cast<std::int64_t>(source_sizes[axis]) : 1;
        if (pixel[axis] < 0 || pixel[axis] >= size)
            return -1;
        index += pixel[axis] * stride;
        stride *= size;
    }
    return index;
}

/// All samples of the region in the order of its permutation; -1 for those outside.
inline std::vector<std::int64_t> source_indices(const VStackRegion& region,
                                                const std::vector<std::uint64_t>& source_sizes)
{
    Stack output;
    output.sizes = output_sizes(region, source_sizes);
    std::vector<std::int64_t> at(output.sizes.size(), 0);
    std::vector<std::int64_t> indices;
    const std::uint64_t count = output.count();
    for (std::uint64_t i = 0; i < count; ++i)
    {
        indices.push_back(source_index(region, source_sizes, at));
        step(at, output.sizes);
    }
    return indices;
}

inline bool is_identity(const VStackRegion& region)
{
    for (std::size_t j = 0; j < region.permutation.size(); ++j)
    {
        if (region.permutation[j] != j)
            return false;
    }
    return true;
}

/// All of the source in its order: there the bulk conversion decides what can be done.
inline bool is_plain_copy(const VStackRegion& region, const Stack& source, const Stack& output)
{
    if (!is_identity(region) || output.sizes != source.sizes)
        return false;
    for (std::size_t j = 0; j < region.permutation.size(); ++j)
    {
        if (region.begin[j] != 0)
            return false;
    }
    return true;
}

/// What `target` becomes by `copy(source, region)`. For the 20 numeric types.
inline Stack copied(const Stack& target, const Stack& source, const VStackRegion& region)
{
    Stack output = target;
    output.dt = region.dt != 0 ? region.dt : source.dt;
    output.sizes = output_sizes(region, source.sizes);
    output.bytes.resize(output.count() * size_of(output.dt));

    const bool plain = is_plain_copy(region, source, output);
    if (plain && is_complex(source.dt) && !is_complex(output.dt))
        return output;
    const std::vector<std::int64_t> indices = source_indices(region, source.sizes);
    const bool nothing_inside =
        std::all_of(indices.begin(), indices.end(), [](std::int64_t index) { return index < 0; });
    if (nothing_inside)
        return output;
    const bool exact = std::all_of(indices.begin(), indices.end(), [](std::int64_t index) { return index >= 0; });
    const bool has_its_axes = std::all_of(region.permutation.begin(), region.permutation.end(),
                                          [&](std::uint64_t axis) { return axis < source.sizes.size(); });
    // The walk in exact order is over the region itself, and that may be empty along an axis that is cut away.
    if (!plain && is_identity(region) && exact && has_its_axes && region.is_empty())
        return output;

    for (std::size_t i = 0; i < indices.size(); ++i)
    {
        unsigned char* const sample = &output.bytes[i * size_of(output.dt)];
        if (indices[i] < 0)
            std::fill(sample, sample + size_of(output.dt), static_cast<unsigned char>(0));
        else
            convert(&source.bytes[static_cast<std::size_t>(indices[i]) * size_of(source.dt)], source.dt, sample,
                    output.dt);
    }
    return output;
}

} // namespace naive
