// Header and footer of a stack on their way to disk.
#include "sources/binary_io/VBFStackImp.h"

#include <VelaBase/VelaError.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include "sources/binary_io/FieldPatch.h"
#include "sources/binary_io/StackRecord.h"
#include "sources/binary_io/VBFFileImp.h"
#include "sources/binary_io/file_format.h"
#include "sources/file/WriteBehind.h"
#include "sources/file/file_errors.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>

using Vela::detail::StackFooter;

namespace {

constexpr const char* in_header = "VBFStackImp::write_header";
constexpr const char* in_footer = "VBFStackImp::write_footer";

VelaError header_error(int line)
{
    return VelaError(in_header, __FILE__, line);
}

std::uint32_t length_of(const std::string& text, const char* function)
{
    if (text.size() > std::numeric_limits<std::uint32_t>::max())
        throw VelaError(function, __FILE__, __LINE__)("String too long for its 4-byte length!")(-1);
    return static_cast<std::uint32_t>(text.size());
}

/// The parts of a header that have one entry for each axis; the other entries are 0.
void fill_axes(VBFStackHeader& header, const VStackInfoInterface& info)
{
    const std::vector<std::uint64_t>& sizes = info.get_sizes();
    if (sizes.size() > VBFStackHeader::max_rank)
        throw header_error(__LINE__)("Rank %d does not fit the file format!", Vela::detail::low_bits(sizes.size()))(-1);
    header.rank = static_cast<std::uint32_t>(sizes.size());
    for (std::size_t axis = 0; axis < sizes.size(); ++axis)
    {
        if (sizes[axis] > Vela::detail::most_columns)
            throw header_error(__LINE__)("Size of axis %d does not fit the file format!", static_cast<int>(axis))(-1);
        header.dimension_sizes[axis] = static_cast<std::uint32_t>(sizes[axis]);
        header.lengths[axis] = info.get_length(axis);
        header.offsets[axis] = info.get_offset(axis);
    }
}

/// Bytes of `tags` as a dictionary.
std::uint64_t dictionary_length(const VBFDictionary& tags)
{
    constexpr std::uint64_t prefix = sizeof(std::uint32_t);
    std::uint64_t length = prefix;
    for (const auto& [key, text] : tags)
        length += prefix + key.size() + prefix + text.size();
    return length;
}

/// As many labels as the axis has columns, whatever it had when they were set.
void write_labels(VFileAccess& stream, const std::vector<std::string>& labels, std::uint64_t count)
{
    for (std::uint64_t column = 0; column < count; ++column)
        stream.write_str(column < labels.size() ? labels[column] : std::string(), true);
}

} // namespace

void VBFStackImp::write_header()
{
    VBFStackHeader header = {};
    fill_axes(header, *this);
    header.data_type = get_dt();
    header.compression_type = static_cast<std::uint32_t>(compression_type);
    header.compression_level = compression_level;
    if (header.compression_type >= 2)
        throw header_error(__LINE__)("Invalid compression type specified!")(-1);
    std::copy(std::begin(Vela::detail::stack_magic), std::end(Vela::detail::stack_magic), header.magic);
    header.format_version = Vela::detail::stack_format_version;
    header.data_present = empty ? 0 : 1;
    header.name_length = length_of(get_name(), in_header);
    header.description_length = length_of(get_description(), in_header);

    Vela::detail::WriteBehind stream(*file);
    stream.write_value(header);
    stream.write_str(get_name(), false);
    stream.write_str(get_description(), false);
    stream.flush();
    locked = true;
}

void VBFStackImp::write_footer()
{
    compose_metadata();
    StackFooter footer = Vela::detail::neutral_footer();
    footer.footer_size = sizeof footer;
    for (std::size_t axis = 0; axis < get_rank(); ++axis)
    {
        footer.has_col_positions[axis] = stored_col_positions(axis).empty() ? 0 : 1;
        footer.has_col_labels[axis] = get_col_labels(axis).empty() ? 0 : 1;
        footer.dimension_units[axis] = Vela::detail::to_record(stored_units(axis));
    }
    footer.data_units = Vela::detail::to_record(get_data_units());
    footer.metadata_length = length_of(meta_data_string, in_footer);
    footer.flush_point_count = flush_positions.size();
    footer.flush_block_size = flush_block_size;
    footer.tag_dictionary_length = dictionary_length(tags);
    footer.required_reader_version = 0;

    // Not where the file stands: behind the last chunk may be one that the caller cancelled.
    const std::uint64_t footer_pos = data_pos + data_length;
    Vela::detail::move_to_write(*file, footer_pos, sizeof footer, in_footer);
    Vela::detail::WriteBehind stream(*file);
    stream.write_value(footer);
    write_behind_footer(stream);
    stream.flush();
    patch_record(footer_pos, stream.tell());
}

/// The position in global axes as the metadata of the stack.
void VBFStackImp::compose_metadata()
{
    const VStackPosition& global = get_stack_position();
    VProp tree;
    tree["global_pos.axes"] = VProp(global.labels);
    tree["global_pos.offset"] = VProp(global.origin);
    tree["global_pos.projection"] = VProp(global.matrix);
    try
    {
        vela_export_xml(meta_data_string, tree, 2);
    }
    catch (const VelaError& error)
    {
        throw VelaError(in_footer, __FILE__, __LINE__)("Invalid meta information! Could not export to xml.\n%s",
                                                       error.what())(-1);
    }
}

void VBFStackImp::write_behind_footer(VFileAccess& stream) const
{
    for (const std::string& label : get_labels())
        stream.write_str(label, true);
    for (std::uint64_t axis = 0; axis < get_rank(); ++axis)
    {
        const std::vector<double> positions = stored_col_positions(axis);
        stream.write(positions.data(), positions.size() * sizeof(double));
    }
    for (std::uint64_t axis = 0; axis < get_rank(); ++axis)
        if (!get_col_labels(axis).empty())
            write_labels(stream, get_col_labels(axis), get_dimension_size(axis));
    stream.write_str(meta_data_string, false);
    stream.write(flush_positions.data(), flush_positions.size() * sizeof(std::uint64_t));
    write_dictionary(stream, tags);
}

/// What is known only now that the record is complete.
void VBFStackImp::patch_record(std::uint64_t footer_pos, std::uint64_t end_pos) const
{
    Vela::detail::FieldPatch patch(*file, end_pos, in_footer);
    patch.put(footer_pos + offsetof(StackFooter, stack_end_pos), end_pos);
    patch.put(header_pos + offsetof(VBFStackHeader, data_length_on_disk), data_length);
    if (!variable)
        return;
    // 8 bytes in a field of 4: the zeros behind fall on the size of the next axis and, with 15 axes, on half of the
    // first length. This is part of the format.
    const std::uint64_t last_axis = get_rank() - 1;
    const std::uint64_t field = offsetof(VBFStackHeader, dimension_sizes) + sizeof(std::uint32_t) * last_axis;
    patch.put(header_pos + field, get_dimension_size(last_axis));
}
