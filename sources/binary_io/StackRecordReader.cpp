#include "sources/binary_io/StackRecordReader.h"

#include <Ome/enums.h>
#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackInfo.h>

#include "sources/binary_io/file_format.h"
#include "sources/binary_io/stack_metadata.h"
#include "sources/file/ReadAhead.h"
#include "sources/file/file_errors.h"
#include "sources/stacks/product.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace Vela::detail {

namespace {

/// Writers leave this field 0. A future one can lock out readers up to a version.
constexpr std::uint32_t own_reader_version = 5;
constexpr std::uint32_t any_reader = std::numeric_limits<std::uint32_t>::max();

/// Bytes that even an empty label has.
constexpr std::uint64_t label_prefix = sizeof(std::uint32_t);

/// Fails as `create` would, without making a description where it cannot fail.
void require_possible_description(const VBFStackHeader& header)
{
    const std::vector<std::uint64_t> sizes = sizes_of(header);
    const vela_dt dt = header.data_type;
    if (dt != vela_dt_none)
        Ome::get_type(dt);
    const std::uint64_t product = get_product(sizes);
    constexpr std::uint64_t countable = std::numeric_limits<std::int64_t>::max();
    if (product == 0 || (sizes.size() <= max_record_rank && product <= countable))
        return;
    VStackInfoImp().create(sizes, dt);
}

void require_own_version(std::uint32_t required)
{
    if (required != any_reader && required > own_reader_version)
        throw VelaError("VBFStackImp::read_info", __FILE__,
                        __LINE__)("Cannot read stack with file format reader version %d. Need >= %d!",
                                  low_bits(own_reader_version), low_bits(required))(-4);
}

void take_units(const StackFooter& footer, StackRecord& record)
{
    record.data_units = from_record(footer.data_units);
    const auto* const units_end = footer.dimension_units + record.header.rank;
    if (!std::all_of(footer.dimension_units, units_end, is_neutral))
        std::transform(footer.dimension_units, units_end, std::back_inserter(record.dimension_units), from_record);
}

} // namespace

StackRecord StackRecordReader::read(std::uint64_t position)
{
    StackRecord record;
    record.position = position;
    read_front(record);
    if (record.header.format_version == stack_version_without_footer)
        record.stack_end_pos = record.data_pos + record.header.data_length_on_disk;
    else
        read_back(record);
    return record;
}

void StackRecordReader::read_front(StackRecord& record)
{
    record.header = read_fixed_header(stream);
    require_possible_description(record.header);
    stream.read_str(record.name, record.header.name_length);
    stream.read_str(record.description, record.header.description_length);
    record.data_pos = stream.tell();
    budget.spend(sizeof record.header + record.name.size() + record.description.size());
}

/// The footer and what follows it. A position that the system refuses is not left: what stands there is tried.
void StackRecordReader::read_back(StackRecord& record)
{
    stream.seek(record.data_pos + record.header.data_length_on_disk);
    const StackFooter footer = read_footer();
    const std::uint64_t begin = stream.tell();
    require_own_version(footer.required_reader_version);
    record.labels.resize(record.header.rank);
    for (std::string& label : record.labels)
        stream.read_str(label, VFileAccess::all_ones);
    take_units(footer, record);
    read_column_positions(footer, record);
    read_column_labels(footer, record);
    read_metadata(footer, record);
    read_flush_positions(footer, record);
    if (footer.tag_dictionary_length != 0)
        read_dictionary(stream, record.tags);
    record.stack_end_pos = footer.stack_end_pos > 0 ? footer.stack_end_pos : stream.tell();
    budget.spend(stream.tell() - begin);
}

StackFooter StackRecordReader::read_footer()
{
    StackFooter footer = neutral_footer();
    std::uint32_t size = 0;
    stream.read_value(size);
    if (size < sizeof size)
        throw VelaError("VBFStackImp::read_info", __FILE__, __LINE__)("Invalid footer_size in stack footer!")(-4);
    footer.footer_size = size;
    const std::uint64_t known = std::min<std::uint64_t>(size, sizeof footer);
    stream.read(reinterpret_cast<unsigned char*>(&footer) + sizeof size, known - sizeof size);
    if (size > sizeof footer)
        stream.seek(stream.tell() + (size - sizeof footer));
    return footer;
}

void StackRecordReader::read_column_positions(const StackFooter& footer, StackRecord& record)
{
    for (std::uint32_t axis = 0; axis < record.header.rank; ++axis)
    {
        const std::uint64_t count = record.header.dimension_sizes[axis];
        if (footer.has_col_positions[axis] == 0 || count == 0)
            continue;
        record.col_positions.resize(record.header.rank);
        std::vector<double>& positions = record.col_positions[axis];
        require_bytes(count * sizeof positions[0]);
        positions.resize(count);
        stream.read(positions.data(), count * sizeof positions[0]);
    }
}

void StackRecordReader::read_column_labels(const StackFooter& footer, StackRecord& record)
{
    for (std::uint32_t axis = 0; axis < record.header.rank; ++axis)
    {
        const std::uint64_t count = record.header.dimension_sizes[axis];
        if (footer.has_col_labels[axis] == 0 || count == 0)
            continue;
        record.col_labels.resize(record.header.rank);
        std::vector<std::string>& labels = record.col_labels[axis];
        if (count > stream.bytes_left() / label_prefix)
            fail_in_labels(count);
        // A stream that cannot say what it has gives the labels one by one.
        if (stream.bytes_left() != VFileAccess::all_ones)
            labels.reserve(count);
        while (labels.size() < count)
            stream.read_str(labels.emplace_back(), VFileAccess::all_ones);
    }
}

/// The file ends in front of the last of so many labels: reads up to where it does, and keeps none.
void StackRecordReader::fail_in_labels(std::uint64_t count)
{
    std::string label;
    for (std::uint64_t i = 0; i < count; ++i)
        stream.read_str(label, VFileAccess::all_ones);
    throw_file_too_short(label_prefix);
}

void StackRecordReader::read_metadata(const StackFooter& footer, StackRecord& record)
{
    if (footer.metadata_length == 0)
        return;
    std::string text;
    stream.read_str(text, footer.metadata_length);
    if (good_metadata != nullptr && text == *good_metadata)
        record.metadata = good_metadata;
    else
        record.metadata = std::make_shared<const std::string>(std::move(text));
    try_metadata(record);
}

void StackRecordReader::try_metadata(const StackRecord& record)
{
    const bool with_position = has_position(record.header);
    const bool is_known = record.metadata == good_metadata;
    if (is_known && record.header.rank == good_rank && (good_position || !with_position))
        return;
    if (!is_good_metadata(*record.metadata, with_position, record.header.rank))
    {
        VStackInfoImp stack(record.header.rank);
        import_metadata(*record.metadata, with_position, stack); // tells what is wrong
    }
    good_metadata = record.metadata;
    good_rank = record.header.rank;
    good_position = with_position;
}

void StackRecordReader::read_flush_positions(const StackFooter& footer, StackRecord& record)
{
    const std::uint64_t count = footer.flush_point_count;
    if (count == 0)
        return;
    constexpr std::uint64_t size = sizeof record.flush_positions[0];
    if (count > std::numeric_limits<std::uint64_t>::max() / size)
        throw VelaError("VBFStackImp::read_info", __FILE__, __LINE__)("Invalid flush_point_count in stack footer!")(-4);
    require_bytes(count * size);
    record.flush_positions.resize(count);
    stream.read(record.flush_positions.data(), count * size);
    record.flush_block_size = footer.flush_block_size;
}

void StackRecordReader::require_bytes(std::uint64_t size_bytes) const
{
    if (size_bytes > stream.bytes_left())
        throw_file_too_short(size_bytes);
}

} // namespace Vela::detail
