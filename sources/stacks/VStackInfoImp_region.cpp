// The description of a region of another stack.
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackRegion.h>

#include "sources/stacks/signed_pixels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace {

/// The columns of a source axis that a region has, and how many columns before them it asks for in vain.
struct Columns
{
    Columns(const VStackRegion& region, std::size_t axis, std::uint64_t size)
        : begin(inside(region.begin[axis], size)), end(inside(region.end[axis], size)),
          pad(static_cast<std::uint64_t>(Vela::detail::pixels_before_zero(region.begin[axis])))
    {
    }

    /// What the region has of `values`, one for each column of the source; "" or 0 for the others of its `count`.
    template <class T>
    std::vector<T> of(const std::vector<T>& values, std::uint64_t count) const
    {
        std::vector<T> result(count);
        const std::uint64_t known_end = std::min<std::uint64_t>(end, values.size());
        for (std::uint64_t column = begin, to = pad; column < known_end && to < count; ++column, ++to)
            result[to] = values[column];
        return result;
    }

private:
    static std::uint64_t inside(std::int64_t pixel, std::uint64_t size)
    {
        return std::min(size, static_cast<std::uint64_t>(std::max<std::int64_t>(0, pixel)));
    }

    std::uint64_t begin;
    std::uint64_t end;
    std::uint64_t pad;
};

/// The length of `count` pixels of an axis.
double length_of(const VStackInfoInterface* info, std::uint64_t axis, std::uint64_t count)
{
    const std::uint64_t size = info->get_dimension_size(axis);
    return size == 0 ? 1.0 : info->get_length(axis) * static_cast<double>(count) / static_cast<double>(size);
}

/// The middle of `count` pixels from `begin` on. That the begin counts in whole pixels here instead of their size,
/// modulo 2^64, is wanted.
double offset_of(const VStackInfoInterface* info, std::uint64_t axis, std::int64_t begin, std::uint64_t count)
{
    const std::uint64_t size = info->get_dimension_size(axis);
    if (size == 0)
        return 0.0;
    const std::uint64_t begin_pixels = static_cast<std::uint64_t>(begin) * count / size;
    return (info->get_offset(axis) - info->get_length(axis) * 0.5) + static_cast<double>(begin_pixels) +
           length_of(info, axis, count) * 0.5;
}

/// Where along its axis a slice lies that is cut away; nowhere where the axis has no such column. For an equidistant axis
/// that is its offset, whatever the slice: this is wanted.
std::optional<double> position_of_slice(const VStackInfoInterface* info, std::uint64_t axis, const VStackRegion& region)
{
    if (info->is_equidistant(axis))
        return info->get_offset(axis);
    const std::vector<double>& positions = info->get_col_positions(axis);
    const std::int64_t slice = axis < region.begin.size() ? region.begin[axis] : 0;
    if (slice < 0 || static_cast<std::uint64_t>(slice) >= positions.size())
        return std::nullopt;
    return positions[static_cast<std::size_t>(slice)];
}

/// Moves the columns of the matrix as the permutation moves the axes, one after the other in place: this is wanted.
void permute_columns(VStackPosition& position, const std::vector<std::uint64_t>& permutation, std::uint64_t source_rank)
{
    const std::size_t rows = position.origin.size();
    const std::size_t columns = permutation.size();
    for (std::size_t axis = 0; axis < columns; ++axis)
    {
        const std::uint64_t from = permutation[axis];
        if (from == axis || from >= std::min<std::uint64_t>(source_rank, columns))
            continue;
        const auto column = [&](std::uint64_t i)
        { return position.matrix.begin() + static_cast<std::ptrdiff_t>(i * rows); };
        std::copy_n(column(from), rows, column(axis));
    }
}

/// Moves the origin by the slices of those axes of `info` that the region cuts away.
void move_origin(VStackPosition& position, const VStackInfoInterface* info, const VStackRegion& region)
{
    const VStackPosition& from = info->get_stack_position();
    const std::size_t rows = from.origin.size();
    for (std::uint64_t axis = 0; axis < info->get_rank(); ++axis)
    {
        if (std::ranges::find(region.permutation, axis) != region.permutation.end())
            continue;
        const std::optional<double> slice = position_of_slice(info, axis, region);
        if (!slice)
            continue;
        for (std::size_t row = 0; row < rows; ++row)
            position.origin[row] += from.matrix[row + axis * rows] * *slice;
    }
}

}

void VStackInfoImp::create(const VStackInfoInterface* info, const VStackRegion& region)
{
    if (info == static_cast<const VStackInfoInterface*>(this))
    {
        const VStackInfoImp source(*this);
        VStackInfoImp::create(&source, region);
        return;
    }
    bool exact = false;
    const std::vector<std::uint64_t> asked_sizes = region.validate(info, exact);
    create(asked_sizes, region.dt == vela_dt_none ? info->get_dt() : region.dt);

    const VStackPosition& from = info->get_stack_position();
    VStackPosition made;
    made.create(this, std::max<std::uint64_t>(from.origin.size(), get_rank()));
    set_description(info->get_description());
    set_name(info->get_name());
    for (std::uint64_t axis = 0; axis < region.permutation.size(); ++axis)
        if (region.permutation[axis] < info->get_rank())
            take_axis(axis, asked_sizes[axis], info, region);
    permute_columns(made, region.permutation, info->get_rank());
    std::ranges::copy(from.labels, made.labels.begin());
    std::ranges::copy(from.origin, made.origin.begin());
    move_origin(made, info, region);
    set_stack_position(made);
}

/// What the region has of the axis of `info` that becomes `axis`, with `count` pixels.
void VStackInfoImp::take_axis(std::uint64_t axis, std::uint64_t count, const VStackInfoInterface* info,
                              const VStackRegion& region)
{
    const std::uint64_t from = region.permutation[axis];
    const Columns columns(region, from, info->get_dimension_size(from));
    const bool equidistant_there = info->is_equidistant(from);
    set_label(axis, info->get_label(from));
    store_length(axis, equidistant_there ? length_of(info, from, count) : 1.0);
    store_offset(axis, equidistant_there ? offset_of(info, from, region.begin[from], count) : 0.0);

    // Where that axis has none, those that this description had before stay: this is wanted.
    if (!equidistant_there)
        set_col_positions(axis, columns.of(info->get_col_positions(from), count));
    if (const std::vector<std::string>& column_labels = info->get_col_labels(from); !column_labels.empty())
        set_col_labels(axis, columns.of(column_labels, count));
}
