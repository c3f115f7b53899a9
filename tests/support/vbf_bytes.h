/// Builds and patches the bytes of VBF files, number by number and without the library.
#pragma once

#include "support/temporary_folder.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vela_test {

/// What a stack header says. The three arrays have 15 entries on disk; those not given are 0.
struct StackFields
{
    std::string name = "a";
    std::string description = "";
    std::vector<std::uint32_t> sizes = {4, 3};
    std::vector<double> lengths = {1.0, 1.0};
    std::vector<double> offsets = {0.0, 0.0};
    std::uint32_t data_type = 1;
    std::uint32_t compression_type = 0;
    std::uint32_t compression_level = 0;
    std::uint32_t format_version = 5;
    std::uint64_t data_present = 1;
    Bytes data = Bytes(12, 0x5a);
};

/// Verbs that append little-endian numbers and text.
inline void append_number(Bytes& bytes, std::uint64_t value, int width_bytes)
{
    for (int i = 0; i < width_bytes; ++i)
        bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

inline void append_u32(Bytes& bytes, std::size_t value)
{
    append_number(bytes, value, 4);
}

inline void append_u64(Bytes& bytes, std::uint64_t value)
{
    append_number(bytes, value, 8);
}

inline void append_f64(Bytes& bytes, double value)
{
    append_number(bytes, std::bit_cast<std::uint64_t>(value), 8);
}

inline void append_bytes(Bytes& bytes, const Bytes& more)
{
    for (const unsigned char byte : more)
        bytes.push_back(byte);
}

inline void append_text(Bytes& bytes, const std::string& text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
}

/// A text behind its 4-byte length.
inline void append_string(Bytes& bytes, const std::string& text)
{
    append_u32(bytes, text.size());
    append_text(bytes, text);
}

/// A file that grows and is then damaged.
///
///     VbfBytes file;
///     file.file_header(2, "two stacks");
///     file.stack({.name = "a"});
///     const auto second = file.stack({.name = "b"});
///     file.set_u32_at(second + 20, 16);
class VbfBytes
{
public:
    /// `foreign_bytes` bytes of something else stand in front.
    explicit VbfBytes(std::size_t foreign_bytes = 0) : content(foreign_bytes, 0xee), start(foreign_bytes) {}

    /// 10 magic, 4 format_version, 8 first_stack_pos, 4 description_length, the description and,
    /// from version 2 on, 8 meta_data_pos. Both positions are 0 at first.
    VbfBytes& file_header(std::uint32_t format_version, const std::string& description = "")
    {
        append_text(content, "VELA_BF\n\xff\xff");
        append_u32(content, format_version);
        link_pos = content.size();
        append_u64(content, 0);
        append_u32(content, description.size());
        append_text(content, description);
        meta_pos = content.size();
        if (format_version > 1)
            append_u64(content, 0);
        return *this;
    }

    /// A stack header, its texts and its data; becomes the last of the chain. Returns its position.
    std::uint64_t stack(const StackFields& fields = {})
    {
        const std::uint64_t position = content.size();
        append_text(content, "VELA_BF_STACK\n\xff\xff");
        append_u32(content, fields.format_version);
        append_u32(content, fields.sizes.size());
        for (std::size_t i = 0; i < 15; ++i)
            append_u32(content, i < fields.sizes.size() ? fields.sizes[i] : 0);
        append_doubles(fields.lengths);
        append_doubles(fields.offsets);
        append_u32(content, fields.data_type);
        append_u32(content, fields.compression_type);
        append_u32(content, fields.compression_level);
        append_u32(content, fields.name.size());
        append_u32(content, fields.description.size());
        append_u64(content, fields.data_present);
        append_u64(content, fields.data.size());
        const std::uint64_t next_link_pos = content.size();
        append_u64(content, 0);
        append_text(content, fields.name);
        append_text(content, fields.description);
        append_bytes(content, fields.data);
        set_u64_at(link_pos, position);
        link_pos = next_link_pos;
        return position;
    }

    /// The file dictionary; `meta_data_pos` points to it. Returns its position.
    std::uint64_t dictionary(const std::vector<std::pair<std::string, std::string>>& pairs)
    {
        const std::uint64_t position = content.size();
        for (const auto& [key, value] : pairs)
        {
            append_string(content, key);
            append_string(content, value);
        }
        append_u32(content, 0);
        set_u64_at(meta_pos, position);
        return position;
    }

    /// Bytes that are built elsewhere. Returns their position.
    std::uint64_t append(const Bytes& more)
    {
        const std::uint64_t position = content.size();
        append_bytes(content, more);
        return position;
    }

    /// Bytes that belong to no record.
    VbfBytes& gap(std::size_t size_bytes)
    {
        content.insert(content.end(), size_bytes, 0xdd);
        return *this;
    }

    VbfBytes& set_byte_at(std::uint64_t position, unsigned char value)
    {
        content.at(position) = value;
        return *this;
    }

    VbfBytes& set_u32_at(std::uint64_t position, std::uint32_t value) { return set_number_at(position, value, 4); }

    VbfBytes& set_u64_at(std::uint64_t position, std::uint64_t value) { return set_number_at(position, value, 8); }

    VbfBytes& set_f64_at(std::uint64_t position, double value)
    {
        return set_u64_at(position, std::bit_cast<std::uint64_t>(value));
    }

    VbfBytes& cut_to(std::size_t size_bytes)
    {
        while (content.size() > size_bytes)
            content.pop_back();
        return *this;
    }

    const Bytes& bytes() const { return content; }
    std::size_t size() const { return content.size(); }

    /// Where the file header stands, and its fields behind it.
    std::uint64_t start_pos() const { return start; }
    std::uint64_t first_stack_pos_at() const { return start + 14; }
    std::uint64_t meta_data_pos_at() const { return meta_pos; }

private:
    void append_doubles(const std::vector<double>& values)
    {
        for (std::size_t i = 0; i < 15; ++i)
            append_f64(content, i < values.size() ? values[i] : 0.0);
    }

    VbfBytes& set_number_at(std::uint64_t position, std::uint64_t value, int width_bytes)
    {
        for (int i = 0; i < width_bytes; ++i)
            content.at(position + static_cast<std::uint64_t>(i)) = static_cast<unsigned char>(value >> (8 * i));
        return *this;
    }

    Bytes content;
    std::uint64_t start;
    std::uint64_t link_pos = 0;
    std::uint64_t meta_pos = 0;
};

/// Offsets of fields in a stack header.
enum StackOffset : std::uint64_t
{
    stack_format_version_at = 16,
    stack_rank_at = 20,
    stack_sizes_at = 24,
    stack_lengths_at = 84,
    stack_offsets_at = 204,
    stack_data_type_at = 324,
    stack_compression_type_at = 328,
    stack_compression_level_at = 332,
    stack_name_length_at = 336,
    stack_description_length_at = 340,
    stack_data_present_at = 344,
    stack_data_length_at = 352,
    stack_next_at = 360,
};

/// Offsets of fields in the footer of a stack.
enum FooterOffset : std::uint64_t
{
    footer_size_at = 0,
    footer_col_positions_at = 4,
    footer_col_labels_at = 64,
    footer_metadata_length_at = 124,
    footer_data_units_at = 128,
    footer_dimension_units_at = 208,
    footer_flush_point_count_at = 1408,
    footer_flush_block_size_at = 1416,
    footer_tag_dictionary_length_at = 1424,
    footer_stack_end_pos_at = 1432,
    footer_required_reader_version_at = 1440,
};

} // namespace vela_test
