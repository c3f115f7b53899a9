/// Builds VBF files with whole stack records, byte by byte and without the library.
#pragma once

#include "support/vbf_bytes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vela_test {

/// A unit record: numerators and denominators, those not given are 0/1, and a number.
struct UnitFields
{
    std::vector<std::pair<std::int32_t, std::int32_t>> exponents;
    double number = 1.0;
};

/// What a stack record says; `header.data` are the bytes of the data segment as they lie on disk.
struct RecordFields
{
    StackFields header;
    std::vector<std::string> labels; ///< missing ones are empty
    std::vector<UnitFields> units;   ///< missing ones are neutral
    UnitFields data_units;
    std::map<std::size_t, std::vector<double>> col_positions; ///< by axis; those that are there are flagged
    std::map<std::size_t, std::vector<std::string>> col_labels;
    std::string metadata;
    std::vector<std::uint64_t> flush_positions;
    std::uint64_t flush_block_size = 0;
    std::vector<std::pair<std::string, std::string>> tags;
    bool has_tag_dictionary = true; ///< without it, its length is 0
    /// Less cuts the footer, more puts bytes behind it.
    std::uint32_t footer_size = 1444;
    std::uint32_t required_reader_version = 0;
    bool tells_end = true; ///< otherwise `stack_end_pos` is 0
};

/// Where the pieces of a record stand.
struct RecordPlaces
{
    std::uint64_t header;
    std::uint64_t data;
    std::uint64_t footer;
    std::uint64_t labels;
    std::uint64_t metadata;
    std::uint64_t tags;
    std::uint64_t end;
};

inline void append_unit(Bytes& bytes, const UnitFields& unit)
{
    for (std::size_t i = 0; i < 9; ++i)
    {
        const bool given = i < unit.exponents.size();
        append_u32(bytes, static_cast<std::uint32_t>(given ? unit.exponents[i].first : 0));
        append_u32(bytes, static_cast<std::uint32_t>(given ? unit.exponents[i].second : 1));
    }
    append_f64(bytes, unit.number);
}

inline Bytes dictionary_bytes(const std::vector<std::pair<std::string, std::string>>& pairs)
{
    Bytes bytes;
    for (const auto& [key, value] : pairs)
    {
        append_string(bytes, key);
        append_string(bytes, value);
    }
    append_u32(bytes, 0);
    return bytes;
}

/// A file of whole records.
///
///     VbfRecords file(1);
///     const RecordPlaces first = file.add_stack_record({});
///     file.set_u32_at(first.footer + footer_required_reader_version_at, 6);
class VbfRecords : public VbfBytes
{
public:
    /// A field that a reader reads in one piece.
    struct Piece
    {
        std::uint64_t begin;
        std::uint64_t size;
    };

    explicit VbfRecords(std::uint32_t format_version = 1, const std::string& description = "",
                        std::size_t foreign_bytes = 0)
        : VbfBytes(foreign_bytes)
    {
        file_header(format_version, description);
        note(foreign_bytes, 26);
        note(foreign_bytes + 26, description.size());
        if (format_version > 1)
            note(foreign_bytes + 26 + description.size(), 8);
        header_end = size();
    }

    /// Where the file header and its description end.
    std::uint64_t header_end_pos() const { return header_end; }

    RecordPlaces add_stack_record(const RecordFields& fields)
    {
        RecordPlaces places = {};
        places.header = stack(fields.header);
        const std::uint64_t texts = places.header + 368;
        places.data = texts + fields.header.name.size() + fields.header.description.size();
        note(places.header, 368);
        note(texts, fields.header.name.size());
        note(texts + fields.header.name.size(), fields.header.description.size());
        places.footer = size();
        if (fields.header.format_version == 0)
        {
            places.labels = places.metadata = places.tags = places.end = places.footer;
            return places;
        }
        append(footer(fields));
        note(places.footer, 4);
        note(places.footer + 4, std::min<std::uint64_t>(fields.footer_size, 1444) - 4);
        places.labels = size();
        add_columns(fields);
        places.metadata = add_piece(text_bytes(fields.metadata));
        Bytes flush;
        for (const std::uint64_t position : fields.flush_positions)
            append_u64(flush, position);
        add_piece(flush);
        places.tags = size();
        if (fields.has_tag_dictionary)
            add_pairs(fields.tags);
        places.end = size();
        if (fields.tells_end && fields.footer_size >= footer_stack_end_pos_at + 8)
            set_u64_at(places.footer + footer_stack_end_pos_at, places.end);
        return places;
    }

    /// The file dictionary of a format version above 1. Returns its position.
    std::uint64_t add_dictionary(const std::vector<std::pair<std::string, std::string>>& pairs = {{"ome_xml", "<a/>"}})
    {
        const std::uint64_t position = size();
        add_pairs(pairs);
        set_u64_at(meta_data_pos_at(), position);
        return position;
    }

    /// What is read, in the order in which it lies in the file.
    const std::vector<Piece>& pieces() const { return noted; }

private:
    static Bytes text_bytes(const std::string& text) { return Bytes(text.begin(), text.end()); }

    /// Nothing is read for an empty piece.
    void note(std::uint64_t begin, std::uint64_t size_bytes)
    {
        if (size_bytes != 0)
            noted.push_back({begin, size_bytes});
    }

    std::uint64_t add_piece(const Bytes& bytes)
    {
        note(size(), bytes.size());
        return append(bytes);
    }

    void add_string(const std::string& text)
    {
        Bytes length;
        append_u32(length, text.size());
        add_piece(length);
        add_piece(text_bytes(text));
    }

    void add_pairs(const std::vector<std::pair<std::string, std::string>>& pairs)
    {
        for (const auto& [key, value] : pairs)
        {
            add_string(key);
            add_string(value);
        }
        add_string("");
    }

    void add_columns(const RecordFields& fields)
    {
        for (std::size_t i = 0; i < fields.header.sizes.size(); ++i)
            add_string(i < fields.labels.size() ? fields.labels[i] : "");
        for (const auto& axis : fields.col_positions)
        {
            Bytes numbers;
            for (const double position : axis.second)
                append_f64(numbers, position);
            add_piece(numbers);
        }
        for (const auto& axis : fields.col_labels)
            for (const std::string& label : axis.second)
                add_string(label);
    }

    static Bytes footer(const RecordFields& fields)
    {
        Bytes bytes;
        append_u32(bytes, fields.footer_size);
        for (std::size_t i = 0; i < 15; ++i)
            append_u32(bytes, fields.col_positions.count(i));
        for (std::size_t i = 0; i < 15; ++i)
            append_u32(bytes, fields.col_labels.count(i));
        append_u32(bytes, fields.metadata.size());
        append_unit(bytes, fields.data_units);
        for (std::size_t i = 0; i < 15; ++i)
            append_unit(bytes, i < fields.units.size() ? fields.units[i] : UnitFields());
        append_u64(bytes, fields.flush_positions.size());
        append_u64(bytes, fields.flush_block_size);
        append_u64(bytes, fields.has_tag_dictionary ? dictionary_bytes(fields.tags).size() : 0);
        append_u64(bytes, 0);
        append_u32(bytes, fields.required_reader_version);
        bytes.resize(fields.footer_size, 0xdd);
        return bytes;
    }

    std::vector<Piece> noted;
    std::uint64_t header_end = 0;
};

} // namespace vela_test
