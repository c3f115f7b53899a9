#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackRegion.h>

#include "sources/stacks/signed_pixels.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

namespace {

[[noreturn]] void fail_region(int line)
{
    throw VelaError("VStackRegion::validate", __FILE__, line)("Called on invalid region!");
}

/// Marks an axis of the stack that is cut to one slice.
constexpr std::size_t cut_away = std::numeric_limits<std::size_t>::max();

/// A request on its way to the three boxes: the output, the part of it that the stack feeds, and the same in the stack.
struct Resolution
{
    Resolution(const VStackRegion& asked, const VStackInfoInterface* stack)
        : region(asked), info(stack), rank(stack->get_rank()), sizes(asked.permutation.size()),
          output_axes(std::max<std::size_t>(rank, asked.begin.size()), cut_away)
    {
        source.create(info, vela_dt_none);
        target.create(sizes, vela_dt_none);
    }

    void resolve()
    {
        find_ends();
        name_axes();
        for (std::size_t axis = 0; axis < rank; ++axis)
        {
            if (output_axes[axis] == cut_away)
                cut(axis);
            else
                meet(axis, output_axes[axis]);
        }
        order_axes();
    }

    void find_ends()
    {
        ends = region.end;
        if (ends.size() != region.begin.size())
            fail_region(__LINE__);
        for (std::size_t axis = 0; axis < ends.size(); ++axis)
        {
            if (ends[axis] == VStackRegion::unspecified)
                ends[axis] = default_end(axis);
            if (ends[axis] < region.begin[axis])
                fail_region(__LINE__);
        }
    }

    std::int64_t default_end(std::size_t axis) const
    {
        if (axis < rank)
            return Vela::detail::as_position(info->get_sizes()[axis]);
        if (region.begin[axis] == Vela::detail::last_pixel)
            fail_region(__LINE__);
        return region.begin[axis] + 1;
    }

    void name_axes()
    {
        for (std::size_t j = 0; j < region.permutation.size(); ++j)
        {
            const std::uint64_t axis = region.permutation[j];
            if (axis >= region.begin.size() || output_axes[axis] != cut_away)
                throw VelaError("VStackRegion::validate", __FILE__, __LINE__)("Invalid permutation!")(-15);
            output_axes[axis] = j;
            sizes[j] = extent(axis);
            if (axis >= rank)
                meet_missing(axis, j);
        }
    }

    std::uint64_t extent(std::size_t axis) const
    {
        const std::uint64_t pixels = Vela::detail::distance(region.begin[axis], ends[axis]);
        if (pixels > static_cast<std::uint64_t>(Vela::detail::last_pixel))
            fail_region(__LINE__);
        return pixels;
    }

    /// An axis that the stack does not have is as one of size 1.
    void meet_missing(std::size_t axis, std::size_t j)
    {
        exact = false;
        const bool has_pixel_zero = region.begin[axis] <= 0 && ends[axis] > 0;
        target.begin[j] = has_pixel_zero ? -region.begin[axis] : 0;
        target.end[j] = has_pixel_zero ? 1 - region.begin[axis] : 0;
    }

    void meet(std::size_t axis, std::size_t j)
    {
        const std::int64_t begin = region.begin[axis];
        const std::int64_t size = Vela::detail::as_position(info->get_dimension_size(axis));
        exact = exact && begin >= 0 && ends[axis] <= size;
        target.begin[j] = Vela::detail::pixels_before_zero(begin);
        source.begin[axis] = std::max<std::int64_t>(0, begin);
        source.end[axis] = std::clamp<std::int64_t>(ends[axis], 0, size);
        target.end[j] = target.begin[j] + (source.end[axis] - source.begin[axis]);
    }

    /// `exact` stays as it is: a slice outside the stack is an empty source, and no more than that.
    void cut(std::size_t axis)
    {
        const std::int64_t slice = axis < region.begin.size() ? region.begin[axis] : 0;
        const bool inside = slice >= 0 && slice < Vela::detail::as_position(info->get_dimension_size(axis));
        source.begin[axis] = inside ? slice : 0;
        source.end[axis] = inside ? slice + 1 : 0;
    }

    /// Both boxes are walked along the axes that they share, ascending in the stack. The others have one sample, or none.
    void order_axes()
    {
        std::vector<std::uint64_t> source_only;
        std::vector<std::uint64_t> shared;
        std::vector<std::uint64_t> shared_in_target;
        for (std::size_t axis = 0; axis < rank; ++axis)
        {
            if (output_axes[axis] == cut_away)
            {
                source_only.push_back(axis);
                continue;
            }
            shared.push_back(axis);
            shared_in_target.push_back(output_axes[axis]);
        }
        std::vector<std::uint64_t> target_only;
        for (std::size_t j = 0; j < sizes.size(); ++j)
            if (region.permutation[j] >= rank)
                target_only.push_back(j);
        std::ranges::copy(source_only, std::ranges::copy(shared, source.permutation.begin()).out);
        std::ranges::copy(target_only, std::ranges::copy(shared_in_target, target.permutation.begin()).out);
    }

    const VStackRegion& region;
    const VStackInfoInterface* info;
    std::size_t rank; ///< of the stack

    std::vector<std::uint64_t> sizes; ///< of the output
    bool exact = true;
    VStackRegion source;
    VStackRegion target;

    std::vector<std::size_t> output_axes; ///< for each axis of stack or region
    std::vector<std::int64_t> ends;
};

}

std::vector<std::uint64_t> VStackRegion::validate(const VStackInfoInterface* info, bool& exact) const
{
    VStackRegion source;
    VStackRegion target;
    return validate(info, exact, source, target);
}

std::vector<std::uint64_t> VStackRegion::validate(const VStackInfoInterface* info, bool& exact, VStackRegion& source,
                                                  VStackRegion& target) const
{
    Resolution resolution(*this, info);
    resolution.resolve();
    exact = resolution.exact;
    source = std::move(resolution.source);
    target = std::move(resolution.target);
    return std::move(resolution.sizes);
}
