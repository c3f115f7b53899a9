// What a description has in common with its OME record: type, sizes, lengths, offsets and the date.
#include <Remote/Stack.h>
#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackInfo.h>

#include "ome/current_timestamp.h"
#include "ome/dimension_axes.h"
#include "ome/pixel_types.h"
#include "ome/sizes_of_stack.h"
#include "ome/unset_texts.h"
#include "sources/stacks/product.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <typeinfo>

namespace {

using Image = Ome::Image<Json::SignalingReference>;

constexpr double default_length = 1.0;
constexpr double default_offset = 0.0;

/// Whether the record refuses what `enter` enters.
template <class Enter>
bool is_refused(Enter enter)
{
    try
    {
        enter();
        return false;
    }
    catch (const std::invalid_argument&)
    {
        return true;
    }
    catch (const std::bad_cast&)
    {
        return true;
    }
}

}

/// Lengths or offsets: one for each axis, and its counterpart in the record. While there are no elements, what is set
/// waits; but the channel axis is refused at once.
struct VStackInfoImp::Mirrored
{
    void set(std::size_t axis, double value) const
    {
        take(axis, value);
        enter_or_wait(axis, value);
    }

    void set(const std::vector<double>& from) const
    {
        take_front(from);
        for (std::size_t d = 0; d < from.size(); ++d)
            enter_or_wait(d, from[d]);
    }

    /// The same, where what the record refuses is no failure.
    void store(std::size_t axis, double value) const
    {
        take(axis, value);
        if (!waits)
            is_refused([&] { enter(axis, value); });
    }

    void store(const std::vector<double>& from) const
    {
        take_front(from);
        enter_expressible(from);
    }

    void enter_expressible(const std::vector<double>& from) const
    {
        if (waits)
            return;
        for (std::size_t d = 0; d < from.size(); ++d)
            is_refused([&] { enter(d, from[d]); });
    }

    void enter(std::size_t d, double value) const { (record.*record_setter)(d, value); }

    void enter_or_wait(std::size_t d, double value) const
    {
        if (!waits)
            enter(d, value);
        else if (d < Ome::detail::dimension_count &&
                 Ome::detail::axis_of_dimension(d, record.dimension_order.value()) == Ome::detail::Axis::c)
            Ome::detail::fail_physical_dimension();
    }

    std::vector<double>& values;
    std::vector<bool>& waiting;
    bool waits;
    Image& record;
    void (Image::*record_setter)(std::size_t, double);

private:
    void take(std::size_t axis, double value) const
    {
        values[axis] = value;
        waiting[axis] = waits;
    }

    void take_front(const std::vector<double>& from) const
    {
        const std::size_t count = std::min(from.size(), values.size());
        for (std::size_t axis = 0; axis < count; ++axis)
            take(axis, from[axis]);
    }
};

VStackInfoImp::Mirrored VStackInfoImp::mirrored_lengths()
{
    return {lengths, waiting_lengths, number_of_elements == 0, meta, &Image::set_len};
}

VStackInfoImp::Mirrored VStackInfoImp::mirrored_offsets()
{
    return {offsets, waiting_offsets, number_of_elements == 0, meta, &Image::set_off};
}

VStackInfoImp::VStackInfoImp(Ome::Type type, const std::vector<std::uint64_t>& new_sizes, Ome::DimensionOrder order)
    : dt(Ome::detail::get_dt(type)), meta(meta_store)
{
    meta.type = type;
    meta.dimension_order = order;
    set_sizes(new_sizes);
}

VStackInfoImp::VStackInfoImp(std::uint64_t rank) : meta(meta_store)
{
    meta.dimension_order = Ome::DimensionOrder::XYZTC;
    set_sizes(std::vector<std::uint64_t>(rank));
}

VStackInfoImp::VStackInfoImp(const Remote::Stack& stack) : labels(stack.labels()), dt(stack.type()), meta(meta_store)
{
    set_sizes(stack.sizes());
    store_lengths(stack.lengths());
    store_offsets(stack.offsets());
    meta.name = stack.name();
    meta.description = stack.description();
}

VStackInfoImp::VStackInfoImp(const VStackInfoImp& other)
    : VStackInfoInterface(other), col_positions(other.col_positions), lengths(other.lengths), offsets(other.offsets),
      col_labels(other.col_labels), equidistant(other.equidistant), labels(other.labels), units(other.units),
      data_units(other.data_units), position(other.position), meta_data_string(other.meta_data_string),
      locked(other.locked), dt(other.dt), sizes(other.sizes), number_of_elements(other.number_of_elements),
      meta_store(Ome::detail::copy_of_image(other.meta_store)), meta(meta_store),
      waiting_lengths(other.waiting_lengths), waiting_offsets(other.waiting_offsets), entered_sizes(other.entered_sizes)
{
}

VStackInfoImp::~VStackInfoImp() = default;

void VStackInfoImp::set_type(vela_dt new_dt)
{
    dt = new_dt;
    if (new_dt != vela_dt_none)
        meta.type = Ome::get_type(new_dt);
}

void VStackInfoImp::set_variable_type(vela_dt new_dt)
{
    if (dt != vela_dt_none)
        throw VelaError("VStackInfoImp::set_variable_type", __FILE__, __LINE__)("The type is already set to %d.", dt);
    set_type(new_dt);
}

void VStackInfoImp::set_variable_size(std::uint64_t size)
{
    std::vector<std::uint64_t> new_sizes = get_sizes();
    _chk_ax(new_sizes.size() - 1);
    new_sizes.back() = size;
    apply_sizes(new_sizes, true);
}

void VStackInfoImp::set_sizes(const std::vector<std::uint64_t>& new_sizes)
{
    apply_sizes(new_sizes, false);
}

void VStackInfoImp::apply_sizes(const std::vector<std::uint64_t>& new_sizes, bool grows)
{
    const std::uint64_t product = Vela::detail::get_product(new_sizes);
    std::vector<std::uint64_t> copy = new_sizes; // which may be those of this stack
    const std::size_t rank = copy.size();

    // All memory is there before anything changes, so that the vectors always have one length.
    const auto reserve = [rank](auto&... vectors) { (vectors.reserve(rank), ...); };
    reserve(col_positions, lengths, offsets, col_labels, equidistant, labels, units);
    reserve(waiting_lengths, waiting_offsets, entered_sizes);
    number_of_elements = product;
    sizes.swap(copy);
    const auto resize = [rank](auto&... vectors) { (vectors.resize(rank), ...); };
    resize(col_positions, col_labels, labels, units, waiting_lengths, waiting_offsets);
    lengths.resize(rank, default_length);
    offsets.resize(rank, default_offset);
    equidistant.resize(rank, true);

    if (number_of_elements == 0)
    {
        entered_sizes.clear();
        return;
    }
    Ome::detail::set_sizes_of_stack(meta, std::vector<std::size_t>(sizes.begin(), sizes.end()), grows);
    enter_waiting();
}

/// A length follows the size of its axis: it is that of the whole axis, and the record has that of a pixel. An offset is
/// entered once, as planes may have got positions and times of their own since.
void VStackInfoImp::enter_waiting()
{
    for (std::size_t axis = 0; axis < sizes.size(); ++axis)
    {
        const bool is_new = axis >= entered_sizes.size() || entered_sizes[axis] != sizes[axis];
        if (waiting_lengths[axis] && is_new)
            is_refused([&] { meta.set_len(axis, lengths[axis]); });
        if (waiting_offsets[axis])
            is_refused([&] { meta.set_off(axis, offsets[axis]); });
    }
    waiting_offsets.assign(sizes.size(), false);
    entered_sizes = sizes;
}

void VStackInfoImp::set_len(std::uint64_t axis, double len)
{
    _chk_lock("VStackInfoImp::set_len", __LINE__);
    _chk_ax(axis);
    mirrored_lengths().set(axis, len);
}

void VStackInfoImp::set_len(const std::vector<double>& lens)
{
    _chk_lock("VStackInfoImp::set_len", __LINE__);
    mirrored_lengths().set(lens);
}

void VStackInfoImp::set_off(std::uint64_t axis, double off)
{
    _chk_lock("VStackInfoImp::set_off", __LINE__);
    _chk_ax(axis);
    mirrored_offsets().set(axis, off);
}

void VStackInfoImp::set_off(const std::vector<double>& offs)
{
    _chk_lock("VStackInfoImp::set_off", __LINE__);
    mirrored_offsets().set(offs);
}

void VStackInfoImp::store_lengths(const std::vector<double>& lens)
{
    mirrored_lengths().store(lens);
}

void VStackInfoImp::store_offsets(const std::vector<double>& offs)
{
    mirrored_offsets().store(offs);
}

void VStackInfoImp::store_length(std::uint64_t axis, double len)
{
    mirrored_lengths().store(axis, len);
}

void VStackInfoImp::store_offset(std::uint64_t axis, double off)
{
    mirrored_offsets().store(axis, off);
}

void VStackInfoImp::set_acquisition_date()
{
    _chk_lock("VStackInfoImp::set_acquisition_date", __LINE__);
    meta.acquisition_date = Ome::detail::current_timestamp();
}

void VStackInfoImp::create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt)
{
    _chk_lock("VStackInfoImp::create", __LINE__);
    set_type(new_dt);
    set_sizes(new_sizes);
}

void VStackInfoImp::create(const VStackInfoInterface* info, vela_dt new_dt)
{
    create(info->get_sizes(), new_dt == vela_dt_none ? info->get_dt() : new_dt);
    set_info(info);
}

void VStackInfoImp::set_info(const VStackInfoInterface* info)
{
    _chk_lock("VStackInfoImp::set_info", __LINE__);
    // A length that the record cannot express stops `set_len`; the axes behind it have theirs all the same.
    if (is_refused([&] { set_len(info->get_lengths()); }))
        mirrored_lengths().enter_expressible(info->get_lengths());
    if (is_refused([&] { set_off(info->get_offsets()); }))
        mirrored_offsets().enter_expressible(info->get_offsets());
    set_labels(info->get_labels());
    set_description(info->get_description());
    set_name(info->get_name());
    for (std::uint64_t axis = 0; axis < std::min(get_rank(), info->get_rank()); ++axis)
    {
        set_col_labels(axis, info->get_col_labels(axis));
        set_col_positions(axis, info->is_equidistant(axis) ? std::vector<double>() : info->get_col_positions(axis));
    }
    set_stack_position(info->get_stack_position());
}
