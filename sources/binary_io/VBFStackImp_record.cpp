// A stack that a file has.
#include "sources/binary_io/StackRecord.h"
#include "sources/binary_io/VBFStackImp.h"
#include "sources/binary_io/stack_metadata.h"

VBFStackImp::VBFStackImp(VBFFileImp* in_file, const Vela::detail::StackRecord& record)
    : tags(record.tags), file(in_file), empty(record.header.data_length_on_disk == 0),
      compression_type(static_cast<std::int32_t>(record.header.compression_type)),
      compression_level(record.header.compression_level), state(0), data_pos(record.data_pos),
      data_length(record.header.data_length_on_disk), header_pos(record.position), stack_end_pos(record.stack_end_pos),
      flush_block_size(record.flush_block_size), flush_positions(record.flush_positions)
{
    describe(record);
    locked = true;
}

void VBFStackImp::describe(const Vela::detail::StackRecord& record)
{
    VStackInfoImp::create(Vela::detail::sizes_of(record.header), record.header.data_type);
    store_lengths(Vela::detail::lengths_of(record.header));
    store_offsets(Vela::detail::offsets_of(record.header));
    set_name(record.name);
    set_description(record.description);
    set_labels(record.labels);
    set_data_units(record.data_units);
    for (std::size_t axis = 0; axis < record.dimension_units.size(); ++axis)
        set_units(axis, record.dimension_units[axis]);
    for (std::size_t axis = 0; axis < record.col_positions.size(); ++axis)
        set_col_positions(axis, record.col_positions[axis]);
    for (std::size_t axis = 0; axis < record.col_labels.size(); ++axis)
        set_col_labels(axis, record.col_labels[axis]);
    if (record.metadata == nullptr)
        return;
    meta_data_string = *record.metadata;
    if (record.global_position != nullptr)
        set_stack_position(*record.global_position);
    else
        Vela::detail::import_metadata(meta_data_string, Vela::detail::has_position(record.header), *this);
}

void VBFStackImp::set_plain_data(const std::vector<std::uint64_t>& in_sizes, const std::vector<double>& in_lengths,
                                 vela_dt in_dt, std::uint64_t in_data_pos, std::uint64_t in_data_length)
{
    VStackInfoImp::create(in_sizes, in_dt);
    store_lengths(in_lengths);
    data_pos = in_data_pos;
    data_length = in_data_length;
    flush_block_size = 0;
    state = 0;
    locked = true;
}
