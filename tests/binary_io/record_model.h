/// What a stack record has to look like, byte by byte.
#pragma once

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>
#include <VelaStacks/VStackPosition.h>
#include <si/value.h>

#include "support/dissected_vbf.h"
#include "support/sample_bytes.h"
#include "support/vbf_bytes.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace vela_test {

/// The metadata of a stack with this position, by the export that has tests of its own.
inline std::string metadata_of(const VStackPosition& position)
{
    VProp tree;
    tree["global_pos.axes"] = VProp(position.labels);
    tree["global_pos.offset"] = VProp(position.origin);
    tree["global_pos.projection"] = VProp(position.matrix);
    std::string xml;
    vela_export_xml(xml, tree, 2);
    return xml;
}

/// The record of a unit.
inline WrittenUnit unit_of(const si::value& unit)
{
    WrittenUnit result;
    for (std::size_t i = 0; i < result.exponents.size(); ++i)
        result.exponents[i] = {unit.exponent(i).numerator(), unit.exponent(i).denominator()};
    result.number = unit.value_in_baseunits();
    return result;
}

/// What was asked of a stack. Vectors by axis have the length of `sizes`.
struct RecordModel
{
    std::vector<std::uint64_t> sizes;
    std::vector<double> lengths;
    std::vector<double> offsets;
    std::int32_t data_type = 1;
    std::int32_t compression_type = 0;
    std::int32_t compression_level = 1;
    bool empty = false;
    std::string name;
    std::string description;
    Bytes data; ///< as on disk

    WrittenUnit data_units;
    std::vector<WrittenUnit> dimension_units;
    std::vector<std::string> labels;
    std::map<std::size_t, std::vector<double>> col_positions; ///< by axis
    std::map<std::size_t, std::vector<std::string>> col_labels;
    std::string metadata;
    std::uint64_t flush_block_size = 0;
    std::vector<std::uint64_t> flush_positions;
    std::map<std::string, std::string> tags;

    /// Without lengths, offsets, units and labels that differ from those at first.
    explicit RecordModel(const std::vector<std::uint64_t>& of_sizes)
        : sizes(of_sizes), lengths(of_sizes.size(), 1.0), offsets(of_sizes.size(), 0.0),
          dimension_units(of_sizes.size()), labels(of_sizes.size())
    {
    }
};

namespace record_detail {

/// 15 entries, of which the first are given.
template <class Entries, class Append>
void append_fifteen(const Entries& entries, Append append)
{
    for (std::size_t i = 0; i < 15; ++i)
        append(i < entries.size() ? entries[i] : typename Entries::value_type());
}

inline void append_unit(Bytes& bytes, const WrittenUnit& unit)
{
    for (const auto& [numerator, denominator] : unit.exponents)
    {
        append_u32(bytes, static_cast<std::uint32_t>(numerator));
        append_u32(bytes, static_cast<std::uint32_t>(denominator));
    }
    append_f64(bytes, unit.number);
}

/// 0 where there is nothing to say.
inline void append_unit_or_zeros(Bytes& bytes, const std::vector<WrittenUnit>& units, std::size_t axis)
{
    if (axis < units.size())
        append_unit(bytes, units[axis]);
    else
        bytes.insert(bytes.end(), 80, 0);
}

inline void append_header(Bytes& bytes, const RecordModel& model, std::uint64_t next_stack_pos)
{
    append_text(bytes, "VELA_BF_STACK\n\xff\xff");
    append_u32(bytes, 5);
    append_u32(bytes, model.sizes.size());
    append_fifteen(model.sizes, [&](std::uint64_t size) { append_u32(bytes, size); });
    append_fifteen(model.lengths, [&](double length) { append_f64(bytes, length); });
    append_fifteen(model.offsets, [&](double offset) { append_f64(bytes, offset); });
    append_u32(bytes, static_cast<std::uint32_t>(model.data_type));
    append_u32(bytes, static_cast<std::uint32_t>(model.compression_type));
    append_u32(bytes, static_cast<std::uint32_t>(model.compression_level));
    append_u32(bytes, model.name.size());
    append_u32(bytes, model.description.size());
    append_u64(bytes, model.empty ? 0 : 1);
    append_u64(bytes, model.data.size());
    append_u64(bytes, next_stack_pos);
    append_text(bytes, model.name);
    append_text(bytes, model.description);
}

template <class Columns>
void append_flags(Bytes& bytes, const Columns& columns)
{
    for (std::size_t i = 0; i < 15; ++i)
        append_u32(bytes, columns.count(i));
}

inline std::uint64_t tags_size(const RecordModel& model)
{
    std::uint64_t size_bytes = 4;
    for (const auto& [key, value] : model.tags)
        size_bytes += 4 + key.size() + 4 + value.size();
    return size_bytes;
}

/// All but `stack_end_pos`, which is 0 here.
inline void append_footer(Bytes& bytes, const RecordModel& model)
{
    append_u32(bytes, 1444);
    append_flags(bytes, model.col_positions);
    append_flags(bytes, model.col_labels);
    append_u32(bytes, model.metadata.size());
    append_unit(bytes, model.data_units);
    for (std::size_t i = 0; i < 15; ++i)
        append_unit_or_zeros(bytes, model.dimension_units, i);
    append_u64(bytes, model.flush_positions.size());
    append_u64(bytes, model.flush_block_size);
    append_u64(bytes, tags_size(model));
    append_u64(bytes, 0);
    append_u32(bytes, 0);
}

inline void append_behind_footer(Bytes& bytes, const RecordModel& model)
{
    for (const std::string& label : model.labels)
        append_string(bytes, label);
    for (const auto& [axis, positions] : model.col_positions)
        for (const double position : positions)
            append_f64(bytes, position);
    for (const auto& [axis, labels] : model.col_labels)
        for (const std::string& label : labels)
            append_string(bytes, label);
    append_text(bytes, model.metadata);
    for (const std::uint64_t position : model.flush_positions)
        append_u64(bytes, position);
    for (const auto& [key, value] : model.tags)
    {
        append_string(bytes, key);
        append_string(bytes, value);
    }
    append_u32(bytes, 0);
}

} // namespace record_detail

/// The record of `model` at `pos`, with zeros for what is not defined.
inline Bytes record_bytes(const RecordModel& model, std::uint64_t pos, std::uint64_t next_stack_pos)
{
    Bytes bytes;
    record_detail::append_header(bytes, model, next_stack_pos);
    append_bytes(bytes, model.data);
    const std::size_t footer = bytes.size();
    record_detail::append_footer(bytes, model);
    record_detail::append_behind_footer(bytes, model);
    Bytes end;
    append_u64(end, pos + bytes.size());
    for (std::size_t i = 0; i < end.size(); ++i)
        bytes[footer + 1432 + i] = end[i];
    return bytes;
}

/// The record of `written` in the bytes of its file is that of `model`, but for what is not defined.
inline void expect_record(Bytes file_bytes, const WrittenStack& written, const RecordModel& model)
{
    clear_undefined(file_bytes, written);
    const Bytes expected = record_bytes(model, written.pos, written.next_stack_pos);
    const Bytes found = slice(file_bytes, static_cast<std::size_t>(written.pos), static_cast<std::size_t>(written.end));
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        ASSERT_EQ(found[i], expected[i]) << "byte " << i << " of the record";
}

} // namespace vela_test
