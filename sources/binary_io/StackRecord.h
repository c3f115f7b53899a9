/// A stack as it is written in a file, in front of and behind its samples. docs/format.md explains the bytes.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>
#include <si/value.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class VFileAccess;
class VStackPosition;

namespace Vela::detail {

#pragma pack(push, 1)

/// The disk form of `si::value`: nine fractions, numerator first, and the number.
struct UnitRecord
{
    struct Fraction
    {
        std::int32_t numerator;
        std::int32_t denominator;
    };

    Fraction exponents[9];
    double number;
};

/// The fixed part of the footer. Packed: copy a field out before you refer to it.
struct StackFooter
{
    static constexpr std::uint32_t max_rank = VBFStackHeader::max_rank;

    std::uint32_t footer_size;
    std::uint32_t has_col_positions[max_rank];
    std::uint32_t has_col_labels[max_rank];
    std::uint32_t metadata_length; ///< bytes
    UnitRecord data_units;
    UnitRecord dimension_units[max_rank];
    std::uint64_t flush_point_count;
    std::uint64_t flush_block_size;      ///< uncompressed bytes
    std::uint64_t tag_dictionary_length; ///< bytes
    std::uint64_t stack_end_pos;
    std::uint32_t required_reader_version;
};

#pragma pack(pop)

static_assert(sizeof(UnitRecord) == 80, "on-disk size");
static_assert(offsetof(UnitRecord, number) == 72, "on-disk offset");
static_assert(sizeof(StackFooter) == 1444, "on-disk size");
static_assert(offsetof(StackFooter, has_col_positions) == 4, "on-disk offset");
static_assert(offsetof(StackFooter, has_col_labels) == 64, "on-disk offset");
static_assert(offsetof(StackFooter, metadata_length) == 124, "on-disk offset");
static_assert(offsetof(StackFooter, data_units) == 128, "on-disk offset");
static_assert(offsetof(StackFooter, dimension_units) == 208, "on-disk offset");
static_assert(offsetof(StackFooter, flush_point_count) == 1408, "on-disk offset");
static_assert(offsetof(StackFooter, flush_block_size) == 1416, "on-disk offset");
static_assert(offsetof(StackFooter, tag_dictionary_length) == 1424, "on-disk offset");
static_assert(offsetof(StackFooter, stack_end_pos) == 1432, "on-disk offset");
static_assert(offsetof(StackFooter, required_reader_version) == 1440, "on-disk offset");

/// The neutral unit: the number 1.
UnitRecord neutral_unit();

/// Bit for bit.
bool is_neutral(const UnitRecord& unit);

/// What a footer that is shorter than this one leaves out: no columns, neutral units, no flush points, no tags, and all
/// bits of the reader version set.
StackFooter neutral_footer();

/// Exponents go past the reducing constructor: 2/4 stays 2/4, in both directions.
UnitRecord to_record(const si::value& unit);
si::value from_record(const UnitRecord& record);

/// The first entries of a header, as many as it has axes.
std::vector<std::uint64_t> sizes_of(const VBFStackHeader& header);
std::vector<double> lengths_of(const VBFStackHeader& header);
std::vector<double> offsets_of(const VBFStackHeader& header);

/// The 368 bytes of a stack header, with its lengths repaired. `read_stack_header` reads the texts behind it too.
/// @throws VelaError as that does
VBFStackHeader read_fixed_header(VFileAccess& file);

/// All that a file says about a stack. It is what an open file keeps of each stack, so it takes little more memory than
/// the stack's texts and columns need; the description with its OME record is built when somebody looks.
struct StackRecord : VBFChainEntry
{
    std::uint64_t flush_block_size = 0;
    std::uint64_t stack_end_pos = 0;
    si::value data_units;
    std::vector<si::value> dimension_units;           ///< `rank` of them, or none where all are neutral
    std::vector<std::string> labels;                  ///< `rank` of them, or none without a footer
    std::vector<std::vector<double>> col_positions;   ///< `rank` of them, or none; an empty one is not there
    std::vector<std::vector<std::string>> col_labels; ///< likewise
    std::shared_ptr<const std::string> metadata;      ///< property XML, not empty; null: none. Stacks share equal ones
    /// Of a stack that was written here, which the text may say less exactly. Null: the text says it. Shared likewise.
    std::shared_ptr<const VStackPosition> global_position;
    std::vector<std::uint64_t> flush_positions; ///< offsets from `data_pos`
    VBFDictionary tags;
};

} // namespace Vela::detail
