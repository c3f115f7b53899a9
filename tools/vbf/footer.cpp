#include "footer.h"

#include "findings.h"
#include "record_reader.h"
#include "stack_shape.h"

#include <Json/property_bridge.h>
#include <VelaBase/VelaError.h>
#include <VelaProps/VProp.h>
#include <VelaProps/property_xml.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace {

constexpr std::uint32_t this_reader = 5;
constexpr std::uint32_t no_version_needed = ~std::uint32_t{0};

#pragma pack(push, 1)

struct UnitRecord
{
    struct
    {
        std::int32_t numerator, denominator;
    } exponents[9];
    double number;
};

/// As on disk. Entries that an older, shorter footer lacks stay 0, and all ones for the version.
struct Footer
{
    std::uint32_t footer_size;
    std::uint32_t has_col_positions[VBFStackHeader::max_rank];
    std::uint32_t has_col_labels[VBFStackHeader::max_rank];
    std::uint32_t metadata_length;
    UnitRecord data_units;
    UnitRecord dimension_units[VBFStackHeader::max_rank];
    std::uint64_t flush_point_count;
    std::uint64_t flush_block_size;
    std::uint64_t tag_dictionary_length;
    std::uint64_t stack_end_pos;
    std::uint32_t required_reader_version;
};

#pragma pack(pop)

static_assert(sizeof(Footer) == 1444, "on-disk size");
static_assert(offsetof(Footer, data_units) == 128, "on-disk offset");
static_assert(offsetof(Footer, flush_point_count) == 1408, "on-disk offset");

/// One footer with what is known of its stack.
class FooterInspection
{
public:
    FooterInspection(RecordReader& in_reader, const VBFStackHeader& in_header, Findings& in_findings)
        : reader(in_reader), header(in_header), sizes(StackShape(in_header).sizes), findings(in_findings),
          start(in_reader.tell())
    {
    }

    FooterParts run()
    {
        FooterParts parts;
        read_footer();
        check_fields();
        parts.data_unit = unit_at(offsetof(Footer, data_units), footer.data_units);
        for (std::size_t axis = 0; axis < sizes.size(); ++axis)
            parts.units.push_back(
                unit_at(offsetof(Footer, dimension_units) + axis * sizeof(UnitRecord), footer.dimension_units[axis]));
        read_columns();
        read_metadata();
        parts.flush = read_flush_table();
        read_tags();
        check_end();
        return parts;
    }

private:
    void read_footer()
    {
        footer.required_reader_version = no_version_needed;
        const auto size_bytes = reader.number<std::uint32_t>("footer_size");
        if (size_bytes < sizeof size_bytes)
            throw Damage(start, "footer_size is " + std::to_string(size_bytes) + ", less than its own 4 bytes");
        footer.footer_size = size_bytes;
        const std::uint64_t known_bytes = std::min<std::uint64_t>(size_bytes, sizeof footer) - sizeof size_bytes;
        reader.read(reinterpret_cast<unsigned char*>(&footer) + sizeof size_bytes, known_bytes, "footer");
        reader.skip(size_bytes - sizeof size_bytes - known_bytes, "footer of a newer writer");
    }

    bool reaches(std::size_t end_of_field) const { return std::uint32_t{footer.footer_size} >= end_of_field; }

    void check_fields()
    {
        const std::uint32_t needed = footer.required_reader_version;
        if (needed != no_version_needed && needed > this_reader)
            findings.add_wrong(start + offsetof(Footer, required_reader_version),
                               "the stack needs a reader of version " + std::to_string(needed));
        for (std::size_t axis = 0; axis < VBFStackHeader::max_rank; ++axis)
        {
            if (footer.has_col_positions[axis] > 1 || footer.has_col_labels[axis] > 1)
                findings.add_odd(start, "a flag of columns of axis " + std::to_string(axis) + " is neither 0 nor 1");
        }
        if (reaches(offsetof(Footer, dimension_units)))
            check_unit(footer.data_units, offsetof(Footer, data_units), "the samples");
        for (std::size_t axis = 0; axis < sizes.size() && reaches(offsetof(Footer, flush_point_count)); ++axis)
            check_unit(footer.dimension_units[axis], offsetof(Footer, dimension_units) + axis * sizeof(UnitRecord),
                       "axis " + std::to_string(axis));
    }

    void check_unit(const UnitRecord& record, std::size_t offset_bytes, const std::string& what)
    {
        const UnitRecord unit = record; // aligned
        const bool has_exponents = std::all_of(std::begin(unit.exponents), std::end(unit.exponents),
                                               [](const auto& exponent) { return exponent.denominator != 0; });
        if (!has_exponents || !std::isfinite(unit.number))
            findings.add_odd(start + offset_bytes, "the unit of " + what + " is none");
    }

    std::optional<si::value> unit_at(std::size_t offset_bytes, const UnitRecord& field) const
    {
        if (!reaches(offset_bytes + sizeof(UnitRecord)))
            return std::nullopt;
        const UnitRecord record = field; // aligned
        std::array<si::fraction, si::value::dimension_count> exponents;
        bool neutral = record.number == 1;
        for (std::size_t i = 0; i < exponents.size(); ++i)
        {
            exponents[i] = si::fraction(record.exponents[i].numerator, record.exponents[i].denominator);
            neutral = neutral && record.exponents[i].numerator == 0;
        }
        return neutral ? std::optional<si::value>() : si::value(record.number, exponents);
    }

    void read_columns()
    {
        for (std::size_t axis = 0; axis < sizes.size(); ++axis)
            reader.skip_counted_text("label of axis " + std::to_string(axis));
        for (std::size_t axis = 0; axis < sizes.size(); ++axis)
        {
            if (footer.has_col_positions[axis] != 0)
                reader.skip_entries(sizes[axis], sizeof(double), "column positions of axis " + std::to_string(axis));
        }
        for (std::size_t axis = 0; axis < sizes.size(); ++axis)
        {
            const std::uint32_t count = footer.has_col_labels[axis] != 0 ? sizes[axis] : 0;
            for (std::uint32_t column = 0; column < count; ++column)
                reader.skip_counted_text("column labels of axis " + std::to_string(axis));
        }
    }

    void read_metadata()
    {
        if (footer.metadata_length == 0)
            return;
        const std::uint64_t metadata_pos = reader.tell();
        const std::string xml = reader.text(footer.metadata_length, "metadata");
        try
        {
            VProp tree;
            vela_import_xml(xml, tree, 0);
            if (header.format_version >= 3)
                check_position(tree, metadata_pos);
        }
        catch (const std::exception& error)
        {
            findings.add_wrong(metadata_pos, std::string("the metadata cannot be read: ") + text_of(error));
        }
    }

    static std::string text_of(const std::exception& error)
    {
        const VelaError* const ours = dynamic_cast<const VelaError*>(&error);
        return ours != nullptr ? ours->get_msg() : error.what();
    }

    void check_position(const VProp& tree, std::uint64_t metadata_pos)
    {
        for (const char* const member : {"axes", "offset", "projection"})
        {
            const std::string path = std::string("global_pos/") + member;
            if (const auto found = Json::find_property(tree, path); found.first == nullptr || !found.second.empty())
                findings.add_wrong(metadata_pos, "the metadata have no global_pos." + std::string(member));
        }
    }

    FlushTable read_flush_table()
    {
        FlushTable table;
        table.position_in_file = reader.tell();
        table.block_bytes = footer.flush_block_size;
        table.count = footer.flush_point_count;
        if (table.count > reader.left() / sizeof(std::uint64_t))
            throw Damage(reader.tell(), "flush positions: " + std::to_string(table.count) +
                                            " are said to be here, the file has " + std::to_string(reader.left()) +
                                            " bytes");
        reader.skip(table.count * sizeof(std::uint64_t), "flush positions");
        return table;
    }

    void read_tags()
    {
        const std::uint64_t length_bytes = footer.tag_dictionary_length;
        if (length_bytes == 0)
        {
            if (reaches(offsetof(Footer, stack_end_pos)))
                findings.add_odd(start + offsetof(Footer, tag_dictionary_length), "the stack has no list of tags");
            return;
        }
        const std::uint64_t tags_pos = reader.tell();
        inspect_dictionary(reader, "tags", findings);
        const std::uint64_t real_bytes = reader.tell() - tags_pos;
        if (real_bytes != length_bytes)
            findings.add_wrong(start + offsetof(Footer, tag_dictionary_length),
                               "tag_dictionary_length is " + std::to_string(length_bytes) + ", the tags have " +
                                   std::to_string(real_bytes) + " bytes");
    }

    void check_end()
    {
        if (!reaches(offsetof(Footer, required_reader_version)))
            return;
        const std::uint64_t field = footer.stack_end_pos;
        const std::uint64_t field_pos = start + offsetof(Footer, stack_end_pos);
        if (field == 0)
            findings.add_odd(field_pos, "stack_end_pos is not filled in");
        else if (field != reader.tell())
            findings.add_wrong(field_pos, "stack_end_pos is " + std::to_string(field) + ", the stack ends at " +
                                              std::to_string(reader.tell()));
    }

    RecordReader& reader;
    const VBFStackHeader& header;
    const std::vector<std::uint32_t> sizes;
    Findings& findings;
    const std::uint64_t start;
    Footer footer = {};
};

} // namespace

FooterParts inspect_footer(RecordReader& reader, const VBFStackHeader& header, Findings& findings)
{
    if (header.format_version == 0)
        return {};
    return FooterInspection(reader, header, findings).run();
}

FooterParts read_footer_parts(RecordReader& reader, const VBFChainEntry& stack)
{
    try
    {
        Findings ignored;
        reader.seek(stack.data_pos, "data segment");
        reader.skip(stack.header.data_length_on_disk, "data segment");
        return inspect_footer(reader, stack.header, ignored);
    }
    catch (const Damage&)
    {
        return {};
    }
}

FlushPoints read_flush_points(RecordReader& reader, const FlushTable& table)
{
    FlushPoints points = {table, {}};
    reader.seek(table.position_in_file, "flush positions");
    if (table.count > reader.left() / sizeof(std::uint64_t))
        throw Damage(reader.tell(), "the flush positions lie behind the end of the file");
    points.positions.resize(table.count);
    reader.read(points.positions.data(), table.count * sizeof(std::uint64_t), "flush positions");
    return points;
}

std::vector<std::string> inspect_dictionary(RecordReader& reader, const std::string& what, Findings& findings)
{
    std::vector<std::string> keys;
    for (;;)
    {
        const std::uint64_t key_pos = reader.tell();
        std::string key = reader.counted_text("key of the " + what);
        if (key.empty())
            return keys;
        reader.skip_counted_text("value of the " + what);
        if (!keys.empty() && key <= keys.back())
            findings.add_odd(key_pos, "the keys of the " + what + " do not ascend");
        keys.push_back(std::move(key));
    }
}
