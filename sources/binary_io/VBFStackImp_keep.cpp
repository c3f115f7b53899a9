// What a file keeps of a stack that is written and that nobody else holds.
#include "sources/binary_io/StackRecord.h"
#include "sources/binary_io/VBFStackImp.h"
#include "sources/binary_io/file_format.h"

#include <VelaStacks/VStackPosition.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

using Vela::detail::StackRecord;

namespace {

template <class T>
bool is_equal(const VProparray<T>& left, const VProparray<T>& right)
{
    if (left.get_size(false) != right.get_size(false) || left.count() != right.count())
        return false;
    for (std::size_t i = 0; i < left.count(); ++i)
        if (!(left[i] == right[i]))
            return false;
    return true;
}

bool is_equal(const VStackPosition& left, const VStackPosition& right)
{
    return is_equal(left.labels, right.labels) && is_equal(left.origin, right.origin) &&
           is_equal(left.matrix, right.matrix);
}

/// `like`, where it is equal to `value`, else a copy of `value`.
template <class T, class Equal>
std::shared_ptr<const T> shared_with(const std::shared_ptr<const T>& like, const T& value, Equal equal)
{
    return like != nullptr && equal(*like, value) ? like : std::make_shared<const T>(value);
}

VBFStackHeader header_of(const VStackInfoInterface& info)
{
    VBFStackHeader header = {};
    header.format_version = Vela::detail::stack_format_version;
    header.rank = static_cast<std::uint32_t>(info.get_rank());
    for (std::uint32_t axis = 0; axis < header.rank; ++axis)
    {
        header.dimension_sizes[axis] = static_cast<std::uint32_t>(info.get_dimension_size(axis));
        header.lengths[axis] = info.get_length(axis);
        header.offsets[axis] = info.get_offset(axis);
    }
    header.data_type = info.get_dt();
    return header;
}

} // namespace

void VBFStackImp::set_acquisition_date()
{
    has_own_ome_record = true;
    VStackInfoImp::set_acquisition_date();
}

/// More lengths than axes reach axes that only the OME record has.
void VBFStackImp::set_len(const std::vector<double>& lens)
{
    has_own_ome_record = has_own_ome_record || lens.size() > get_rank();
    VStackInfoImp::set_len(lens);
}

void VBFStackImp::set_off(const std::vector<double>& offs)
{
    has_own_ome_record = has_own_ome_record || offs.size() > get_rank();
    VStackInfoImp::set_off(offs);
}

Ome::Image<Json::SignalingReference>& VBFStackImp::meta_data()
{
    has_own_ome_record = true;
    return VStackInfoImp::meta_data();
}

/// Positions of columns do not: a record cannot say that an axis is equidistant all the same.
bool VBFStackImp::fits_record() const
{
    if (state != 0 || has_own_ome_record || read_pos != 0 || meta_data_string.empty())
        return false;
    for (std::uint64_t axis = 0; axis < get_rank(); ++axis)
    {
        const std::size_t column_labels = get_col_labels(axis).size();
        if (!is_equidistant(axis) || !stored_col_positions(axis).empty() ||
            (column_labels != 0 && column_labels != get_dimension_size(axis)))
            return false;
    }
    return true;
}

StackRecord VBFStackImp::to_record(const StackRecord* like) const
{
    StackRecord record;
    record.header = header_of(*this);
    record.header.compression_type = static_cast<std::uint32_t>(compression_type);
    record.header.compression_level = compression_level;
    record.header.data_length_on_disk = data_length;
    record.name = get_name();
    record.description = get_description();
    record.position = header_pos;
    record.data_pos = data_pos;
    record.flush_block_size = flush_block_size;
    record.flush_positions = flush_positions;
    record.stack_end_pos = stack_end_pos;
    record.data_units = get_data_units();
    for (std::uint64_t axis = 0; axis < get_rank(); ++axis)
    {
        record.dimension_units.push_back(stored_units(axis));
        record.col_labels.push_back(get_col_labels(axis));
    }
    const auto neutral = [](const si::value& unit) { return Vela::detail::is_neutral(Vela::detail::to_record(unit)); };
    if (std::all_of(record.dimension_units.begin(), record.dimension_units.end(), neutral))
        record.dimension_units = {};
    if (std::all_of(record.col_labels.begin(), record.col_labels.end(),
                    [](const auto& texts) { return texts.empty(); }))
        record.col_labels = {};
    record.labels = get_labels();
    record.metadata = shared_with(like == nullptr ? nullptr : like->metadata, meta_data_string,
                                  [](const std::string& left, const std::string& right) { return left == right; });
    record.global_position =
        shared_with(like == nullptr ? nullptr : like->global_position, get_stack_position(),
                    [](const VStackPosition& left, const VStackPosition& right) { return is_equal(left, right); });
    record.tags = tags;
    return record;
}
