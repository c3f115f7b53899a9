// What a description has in common with its OME record: type, sizes, lengths, offsets and the date.
#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackInfo.h>

#include "ome/current_timestamp.h"
#include "ome/pixel_types.h"
#include "ome/unset_texts.h"
#include "sources/stacks/product.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <typeinfo>
#include <utility>

namespace {

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

/// Copies the entries that both have, and notes whether they wait for elements.
void take_front(const std::vector<double>& from, std::vector<double>& to, std::vector<bool>& waiting, bool waits)
{
    const std::size_t count = std::min(from.size(), to.size());
    for (std::size_t axis = 0; axis < count; ++axis)
    {
        to[axis] = from[axis];
        waiting[axis] = waits;
    }
}

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

VStackInfoImp::VStackInfoImp(const VStackInfoImp& other)
    : VStackInfoInterface(other), col_positions(other.col_positions), lengths(other.lengths), offsets(other.offsets),
      col_labels(other.col_labels), equidistant(other.equidistant), labels(other.labels), units(other.units),
      data_units(other.data_units), position(other.position), meta_data_string(other.meta_data_string),
      locked(other.locked), dt(other.dt), sizes(other.sizes), number_of_elements(other.number_of_elements),
      meta_store(Ome::detail::copy_of_image(other.meta_store)), meta(meta_store),
      waiting_lengths(other.waiting_lengths), waiting_offsets(other.waiting_offsets)
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
    set_sizes(new_sizes);
}

void VStackInfoImp::set_sizes(const std::vector<std::uint64_t>& new_sizes)
{
    const std::uint64_t product = Vela::detail::get_product(new_sizes);
    std::vector<std::uint64_t> copy = new_sizes; // which may be those of this stack, and is later what they were
    const std::size_t rank = copy.size();

    // All memory is there before anything changes, so that the vectors always have one length.
    const auto reserve = [rank](auto&... vectors) { (vectors.reserve(rank), ...); };
    reserve(col_positions, lengths, offsets, col_labels, equidistant, labels, units, waiting_lengths, waiting_offsets);
    const bool had_elements = number_of_elements != 0;
    number_of_elements = product;
    sizes.swap(copy);
    const auto resize = [rank](auto&... vectors) { (vectors.resize(rank), ...); };
    resize(col_positions, col_labels, labels, units, waiting_lengths, waiting_offsets);
    lengths.resize(rank, default_length);
    offsets.resize(rank, default_offset);
    equidistant.resize(rank, true);

    if (number_of_elements == 0)
        return;
    meta.set_sizes(std::vector<std::size_t>(sizes.begin(), sizes.end()));
    enter_waiting(had_elements ? copy : std::vector<std::uint64_t>());
}

/// A length follows the size of its axis: it is that of the whole axis, and the record has that of a pixel. An offset is
/// entered once, as planes may have got positions and times of their own since.
void VStackInfoImp::enter_waiting(const std::vector<std::uint64_t>& sizes_before)
{
    for (std::size_t axis = 0; axis < sizes.size(); ++axis)
    {
        const bool is_new = axis >= sizes_before.size() || sizes_before[axis] != sizes[axis];
        if (waiting_lengths[axis] && is_new)
            is_refused([&] { meta.set_len(axis, lengths[axis]); });
        if (waiting_offsets[axis])
            is_refused([&] { meta.set_off(axis, offsets[axis]); });
    }
    waiting_offsets.assign(sizes.size(), false);
}

void VStackInfoImp::set_len(std::uint64_t axis, double len)
{
    _chk_lock("VStackInfoImp::set_len", __LINE__);
    _chk_ax(axis);
    lengths[axis] = len;
    waiting_lengths[axis] = number_of_elements == 0;
    if (number_of_elements != 0)
        meta.set_len(axis, len);
}

void VStackInfoImp::set_len(const std::vector<double>& lens)
{
    _chk_lock("VStackInfoImp::set_len", __LINE__);
    take_front(lens, lengths, waiting_lengths, number_of_elements == 0);
    for (std::size_t d = 0; number_of_elements != 0 && d < lens.size(); ++d)
        meta.set_len(d, lens[d]);
}

void VStackInfoImp::set_off(std::uint64_t axis, double off)
{
    _chk_lock("VStackInfoImp::set_off", __LINE__);
    _chk_ax(axis);
    offsets[axis] = off;
    waiting_offsets[axis] = number_of_elements == 0;
    if (number_of_elements != 0)
        meta.set_off(axis, off);
}

void VStackInfoImp::set_off(const std::vector<double>& offs)
{
    _chk_lock("VStackInfoImp::set_off", __LINE__);
    take_front(offs, offsets, waiting_offsets, number_of_elements == 0);
    for (std::size_t d = 0; number_of_elements != 0 && d < offs.size(); ++d)
        meta.set_off(d, offs[d]);
}

void VStackInfoImp::store_lengths(const std::vector<double>& lens)
{
    take_front(lens, lengths, waiting_lengths, number_of_elements == 0);
    enter_lengths(lens);
}

void VStackInfoImp::store_offsets(const std::vector<double>& offs)
{
    take_front(offs, offsets, waiting_offsets, number_of_elements == 0);
    enter_offsets(offs);
}

void VStackInfoImp::store_length(std::uint64_t axis, double len)
{
    lengths[axis] = len;
    waiting_lengths[axis] = number_of_elements == 0;
    if (number_of_elements != 0)
        is_refused([&] { meta.set_len(axis, len); });
}

void VStackInfoImp::store_offset(std::uint64_t axis, double off)
{
    offsets[axis] = off;
    waiting_offsets[axis] = number_of_elements == 0;
    if (number_of_elements != 0)
        is_refused([&] { meta.set_off(axis, off); });
}

void VStackInfoImp::enter_lengths(const std::vector<double>& lens)
{
    for (std::size_t d = 0; number_of_elements != 0 && d < lens.size(); ++d)
        is_refused([&] { meta.set_len(d, lens[d]); });
}

void VStackInfoImp::enter_offsets(const std::vector<double>& offs)
{
    for (std::size_t d = 0; number_of_elements != 0 && d < offs.size(); ++d)
        is_refused([&] { meta.set_off(d, offs[d]); });
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
        enter_lengths(info->get_lengths());
    if (is_refused([&] { set_off(info->get_offsets()); }))
        enter_offsets(info->get_offsets());
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
