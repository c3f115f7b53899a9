/// What a copy of a region has to be, sample by sample and with nothing of the library but the conversion of one sample.
#pragma once

#include "stacks/any_type_stack.h"

#include <VelaBase/vela_dt_convert.h>
#include <VelaStacks/VStackRegion.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vela_test {

/// A stack without a class.
struct PlainStack
{
    std::vector<std::uint64_t> sizes;
    vela_dt dt = vela_dt_none;
    std::vector<unsigned char> bytes;

    static PlainStack of(const VStackInterface& stack) { return {stack.get_sizes(), stack.get_dt(), bytes_of(stack)}; }

    /// The first byte of a sample; null outside.
    const unsigned char* at(const std::vector<std::int64_t>& pixel) const
    {
        std::uint64_t offset = 0;
        std::uint64_t stride = size_of_sample(dt);
        for (std::size_t axis = 0; axis < pixel.size(); ++axis)
        {
            const std::uint64_t size = axis < sizes.size() ? sizes[axis] : 1; // a further axis has pixel 0 and no other
            if (pixel[axis] < 0 || static_cast<std::uint64_t>(pixel[axis]) >= size)
                return nullptr;
            offset += static_cast<std::uint64_t>(pixel[axis]) * stride;
            stride *= size;
        }
        return bytes.data() + offset;
    }
};

inline std::vector<unsigned char> plainly_converted(const unsigned char* sample, vela_dt from, vela_dt to)
{
    if ((from & vela_dt_complex) != 0 && (to & vela_dt_complex) == 0)
        from &= ~vela_dt_complex; // the real part, which stands first
    std::vector<unsigned char> bytes(size_of_sample(to));
    vela_dt_convert(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to), sample, bytes.data(), 1, nullptr,
                    nullptr);
    return bytes;
}

class PlainCopy
{
public:
    /// `target` holds what was in the block before, cut or filled up with zeros to its new size.
    PlainCopy(const PlainStack& from, const VStackRegion& asked, const std::vector<unsigned char>& before)
        : source(from), region(asked)
    {
        target.dt = region.dt == vela_dt_none ? source.dt : region.dt;
        for (const std::uint64_t axis : region.permutation)
            target.sizes.push_back(static_cast<std::uint64_t>(end_of(axis) - region.begin[axis]));
        target.bytes = before;
        target.bytes.resize(product_of(target.sizes) * size_of_sample(target.dt), 0);
        if (is_all_in_order() && (source.dt & vela_dt_complex) != 0 && (target.dt & vela_dt_complex) == 0)
            return; // arrays of these types are not converted, and the block stays
        if (has_common_pixel())
            copy();
    }

    PlainStack target;

private:
    std::int64_t end_of(std::uint64_t axis) const
    {
        if (region.end[axis] != VStackRegion::unspecified)
            return region.end[axis];
        return axis < source.sizes.size() ? static_cast<std::int64_t>(source.sizes[axis]) : region.begin[axis] + 1;
    }

    bool is_all_in_order() const
    {
        for (std::size_t axis = 0; axis < region.permutation.size(); ++axis)
            if (region.permutation[axis] != axis || region.begin[axis] != 0 || axis >= source.sizes.size() ||
                target.sizes[axis] != source.sizes[axis])
                return false;
        return region.permutation.size() == source.sizes.size();
    }

    /// The pixel of the source for a pixel of the target, as long as the longer of the ranks of source and region.
    std::vector<std::int64_t> source_pixel(const std::vector<std::uint64_t>& pixel) const
    {
        std::vector<std::int64_t> from(source.sizes.size(), 0);
        for (std::size_t axis = 0; axis < std::min(region.begin.size(), from.size()); ++axis)
            from[axis] = region.begin[axis]; // of axes that are cut away
        for (std::size_t j = 0; j < pixel.size(); ++j)
        {
            const std::uint64_t axis = region.permutation[j];
            from.resize(std::max<std::size_t>(from.size(), axis + 1), 0);
            from[axis] = region.begin[axis] + static_cast<std::int64_t>(pixel[j]);
        }
        return from;
    }

    template <class Visit>
    void for_each_pixel(Visit visit) const
    {
        std::vector<std::uint64_t> pixel(target.sizes.size(), 0);
        const std::uint64_t count = product_of(target.sizes);
        for (std::uint64_t i = 0; i < count; ++i)
        {
            visit(i, source.at(source_pixel(pixel)));
            for (std::size_t j = 0; j < pixel.size() && ++pixel[j] == target.sizes[j]; ++j)
                pixel[j] = 0;
        }
    }

    bool has_common_pixel() const
    {
        bool found = false;
        for_each_pixel([&](std::uint64_t, const unsigned char* from) { found = found || from != nullptr; });
        return found;
    }

    void copy()
    {
        const std::uint64_t size = size_of_sample(target.dt);
        for_each_pixel(
            [&](std::uint64_t i, const unsigned char* from)
            {
                const std::vector<unsigned char> sample = from == nullptr
                                                              ? std::vector<unsigned char>(size, 0)
                                                              : plainly_converted(from, source.dt, target.dt);
                std::copy(sample.begin(), sample.end(), target.bytes.begin() + static_cast<std::ptrdiff_t>(i * size));
            });
    }

    const PlainStack& source;
    const VStackRegion& region;
};

} // namespace vela_test
