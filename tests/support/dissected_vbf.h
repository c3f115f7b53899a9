/// A second reader of VBF files: it takes a whole file apart byte by byte, to check what was written, and shares no
/// code with the library.
#pragma once

#include "support/temporary_folder.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vela_test {

/// A dictionary in the order of the file.
typedef std::vector<std::pair<std::string, std::string>> WrittenPairs;

/// The 80 bytes of a unit. At first the neutral one.
struct WrittenUnit
{
    std::array<std::pair<std::int32_t, std::int32_t>, 9> exponents = {
        {{0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}}};
    double number = 1.0;

    bool operator==(const WrittenUnit&) const = default;
};

/// What stands in a stack record. Of the arrays with 15 entries, those below the rank.
struct WrittenStack
{
    std::uint64_t pos = 0;
    std::uint32_t format_version = 0;
    std::vector<std::uint32_t> sizes;
    std::vector<double> lengths;
    std::vector<double> offsets;
    std::int32_t data_type = 0;
    std::int32_t compression_type = 0;
    std::int32_t compression_level = 0;
    std::uint64_t data_present = 0;
    std::uint64_t data_length_on_disk = 0;
    std::uint64_t next_stack_pos = 0;
    std::string name;
    std::string description;

    std::uint64_t data_pos = 0;
    Bytes data; ///< as on disk

    // Without a footer, which is format version 0, all that follows stays as it is here.
    std::uint64_t footer_pos = 0;
    std::uint32_t footer_size = 0;
    std::vector<std::uint32_t> has_col_positions;
    std::vector<std::uint32_t> has_col_labels;
    std::uint32_t metadata_length = 0;
    WrittenUnit data_units;
    std::vector<WrittenUnit> dimension_units;
    std::uint64_t flush_point_count = 0;
    std::uint64_t flush_block_size = 0;
    std::uint64_t tag_dictionary_length = 0;
    std::uint64_t stack_end_pos = 0;
    std::uint32_t required_reader_version = 0;
    std::vector<std::string> labels;
    std::map<std::size_t, std::vector<double>> col_positions; ///< by axis
    std::map<std::size_t, std::vector<std::string>> col_labels;
    std::string metadata;
    std::vector<std::uint64_t> flush_positions;
    std::uint64_t tags_pos = 0;
    WrittenPairs tags;

    std::uint64_t end = 0; ///< behind the last byte that was read

    std::size_t rank() const { return sizes.size(); }
    bool is_compressed() const { return compression_type == 1 && compression_level > 0; }

    /// The samples, inflated where they are compressed.
    /// @throws std::runtime_error: the segment is no single whole zlib stream
    Bytes samples() const;
};

struct WrittenFile
{
    std::uint64_t start = 0;
    std::uint32_t format_version = 0;
    std::uint64_t first_stack_pos = 0;
    std::string description;
    std::uint64_t meta_data_pos = 0;
    std::uint64_t header_end = 0;
    std::vector<WrittenStack> stacks;
    WrittenPairs dictionary;    ///< read if `meta_data_pos` is not 0
    std::uint64_t meta_end = 0; ///< behind the dictionary, 0 without one
    std::uint64_t size_bytes = 0;

    std::vector<std::string> stack_names() const;
};

/// Reads the file whose header stands at `start`.
/// @throws std::runtime_error with a text that says what is wrong where
WrittenFile read_written(const Bytes& bytes, std::uint64_t start = 0);

/// The same without the dictionary.
WrittenFile read_written_chain(const Bytes& bytes, std::uint64_t start = 0);

/// What is wrong with a file that was written and closed at once, in format version 1 or 2: gaps, counts, lengths and
/// flush points that do not fit together. Empty where nothing is.
std::string complaints_about(const WrittenFile& file);

/// What is wrong with a single stack.
std::string complaints_about(const WrittenStack& stack);

/// Sets what is not defined to 0: the entries of a stack header and of its footer behind the rank.
void clear_undefined(Bytes& bytes, const WrittenStack& stack);

} // namespace vela_test
