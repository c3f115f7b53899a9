#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackRegion.h>

#include <algorithm>
#include <cstddef>

namespace {

/// Up to this length an axis may be one in metres.
constexpr double longest_in_metres = 0.01;

/// The entries that both have; the others stay.
template <class T>
void copy_front(const std::vector<T>& from, std::vector<T>& to)
{
    const auto count = static_cast<std::ptrdiff_t>(std::min(from.size(), to.size()));
    if (&from != &to)
        std::copy(from.begin(), from.begin() + count, to.begin());
}

/// Where the middles of the columns of an equidistant axis lie.
std::vector<double> equidistant_positions(double offset, double length, std::uint64_t size)
{
    std::vector<double> positions(size);
    if (size == 0)
        return positions;
    const double step = length / static_cast<double>(size);
    double next = offset - length / 2 + step / 2;
    for (double& position : positions)
    {
        position = next;
        next += step;
    }
    return positions;
}

}

void VStackInfoImp::_chk_lock(const char* func, int line) const
{
    if (locked)
        throw VelaError(func, __FILE__, line)("Cannot set values. Object locked!")(-1);
}

void VStackInfoImp::_chk_ax(std::uint64_t axis) const
{
    if (axis >= sizes.size())
        throw VelaError("VStackInfoImp::_chk_ax", __FILE__, __LINE__)("Invalid axis specified!")(-15);
}

void VStackInfoImp::set_name(const std::string& name)
{
    _chk_lock("VStackInfoImp::set_name", __LINE__);
    meta.name = name;
}

void VStackInfoImp::set_description(const std::string& description)
{
    _chk_lock("VStackInfoImp::set_description", __LINE__);
    meta.description = description;
}

void VStackInfoImp::set_labels(const std::vector<std::string>& new_labels)
{
    _chk_lock("VStackInfoImp::set_labels", __LINE__);
    copy_front(new_labels, labels);
}

void VStackInfoImp::set_stack_position(const VStackPosition& new_position)
{
    if (!new_position.is_valid_for(this))
        throw VelaError("VStackInfoImp::set_stack_position", __FILE__, __LINE__)("Invalid global stack position!");
    position = new_position;
}

void VStackInfoImp::set_col_labels(std::uint64_t axis, const std::vector<std::string>& new_labels)
{
    _chk_lock("VStackInfoImp::set_col_labels", __LINE__);
    _chk_ax(axis);
    if (!new_labels.empty() && new_labels.size() != sizes[axis])
        throw VelaError("VStackInfoImp::set_col_labels", __FILE__, __LINE__)("Wrong number of labels!")(-15);
    col_labels[axis] = new_labels;
}

void VStackInfoImp::set_col_positions(std::uint64_t axis, const std::vector<double>& new_positions)
{
    _chk_lock("VStackInfoImp::set_col_positions", __LINE__);
    _chk_ax(axis);
    if (!new_positions.empty() && new_positions.size() != sizes[axis])
        throw VelaError("VStackInfoImp::set_col_positions", __FILE__, __LINE__)("Wrong number of positions!")(-15);
    col_positions[axis] = new_positions; // which may fail
    equidistant[axis] = new_positions.empty();
}

void VStackInfoImp::set_label(std::uint64_t axis, const std::string& label)
{
    _chk_lock("VStackInfoImp::set_label", __LINE__);
    _chk_ax(axis);
    labels[axis] = label;
}

void VStackInfoImp::set_units(std::uint64_t axis, const si::value& new_units)
{
    _chk_lock("VStackInfoImp::set_units", __LINE__);
    _chk_ax(axis);
    units[axis] = new_units;
}

void VStackInfoImp::set_data_units(const si::value& new_units)
{
    _chk_lock("VStackInfoImp::set_data_units", __LINE__);
    data_units = new_units;
}

std::uint64_t VStackInfoImp::get_size(vela_dt as_dt) const
{
    const vela_dt id = as_dt == vela_dt_none ? dt : as_dt;
    return vela_dt_get_size(static_cast<std::uint32_t>(id)) * number_of_elements;
}

std::uint64_t VStackInfoImp::get_number_of_elements() const
{
    return number_of_elements;
}

std::uint64_t VStackInfoImp::get_rank() const
{
    return sizes.size();
}

const std::vector<std::uint64_t>& VStackInfoImp::get_sizes() const
{
    return sizes;
}

vela_dt VStackInfoImp::get_dt() const
{
    return dt;
}

const std::string& VStackInfoImp::get_description() const
{
    return meta.description.get();
}

const std::string& VStackInfoImp::get_name() const
{
    return meta.name.get();
}

const std::vector<double>& VStackInfoImp::get_lengths() const
{
    return lengths;
}

const std::vector<double>& VStackInfoImp::get_offsets() const
{
    return offsets;
}

const std::vector<std::string>& VStackInfoImp::get_labels() const
{
    return labels;
}

const std::vector<std::string>& VStackInfoImp::get_col_labels(std::uint64_t axis) const
{
    _chk_ax(axis);
    return col_labels[axis];
}

std::vector<double>& VStackInfoImp::get_col_positions(std::uint64_t axis) const
{
    _chk_ax(axis);
    std::vector<double>& positions = col_positions[axis];
    if (positions.size() == sizes[axis])
        return positions;
    if (equidistant[axis])
        positions = equidistant_positions(offsets[axis], lengths[axis], sizes[axis]);
    else
        positions.clear();
    return positions;
}

double VStackInfoImp::get_col_position(std::uint64_t axis, std::uint64_t pixel) const
{
    _chk_ax(axis);
    const bool is_known = equidistant[axis] || pixel < col_positions[axis].size();
    if (pixel >= sizes[axis] || !is_known)
        throw VelaError("VStackInfoImp::get_col_position", __FILE__, __LINE__)("Invalid pixel position!")(-15);
    if (!equidistant[axis])
        return col_positions[axis][pixel];
    const double step = lengths[axis] / static_cast<double>(sizes[axis]);
    return offsets[axis] - lengths[axis] / 2 + step * (static_cast<double>(pixel) + 0.5);
}

bool VStackInfoImp::is_equidistant(std::uint64_t axis) const
{
    _chk_ax(axis);
    return equidistant[axis];
}

const VStackPosition& VStackInfoImp::get_stack_position() const
{
    if (!position.is_valid_for(this))
        position.create(this, 0);
    return position;
}

std::uint64_t VStackInfoImp::get_dimension_size(std::uint64_t axis) const
{
    _chk_ax(axis);
    return sizes[axis];
}

double VStackInfoImp::get_length(std::uint64_t axis) const
{
    _chk_ax(axis);
    return lengths[axis];
}

double VStackInfoImp::get_offset(std::uint64_t axis) const
{
    _chk_ax(axis);
    return offsets[axis];
}

const std::string& VStackInfoImp::get_label(std::uint64_t axis) const
{
    _chk_ax(axis);
    return labels[axis];
}

si::value VStackInfoImp::get_units(std::uint64_t axis) const
{
    _chk_ax(axis);
    const std::string& label = labels[axis];
    si::value unit = units[axis];
    if (!unit.is_valid())
        unit.clear();
    if (!unit.is_dimensionless() || label.empty())
        return units[axis];
    if (label.back() >= 'X' && label.back() <= 'Z')
    {
        unit.set_value("m", 1.0);
        // No axis is that long: such a length can only be meant in micrometres.
        if (lengths[axis] > longest_in_metres)
            unit *= 1e-6;
    }
    return unit;
}

const si::value& VStackInfoImp::stored_units(std::uint64_t axis) const
{
    _chk_ax(axis);
    return units[axis];
}

std::vector<double> VStackInfoImp::stored_col_positions(std::uint64_t axis) const
{
    _chk_ax(axis);
    const std::vector<double>& positions = col_positions[axis];
    if (positions.empty() || positions.size() == sizes[axis])
        return positions;
    return equidistant_positions(offsets[axis], lengths[axis], sizes[axis]);
}

const si::value& VStackInfoImp::get_data_units() const
{
    return data_units;
}

const std::string& VStackInfoImp::get_meta_data_string() const
{
    return meta_data_string;
}

Ome::Image<Json::SignalingReference>& VStackInfoImp::meta_data()
{
    return meta;
}
