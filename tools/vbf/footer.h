/// What lies behind the samples of a stack.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include <si/value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class Findings;
class RecordReader;

/// Where the flush points of a stack are listed.
struct FlushTable
{
    std::uint64_t count = 0;
    std::uint64_t position_in_file = 0;
    std::uint64_t block_bytes = 0;
};

/// The flush points themselves, which may be most of a file.
struct FlushPoints : FlushTable
{
    std::vector<std::uint64_t> positions; ///< offsets in the data segment
};

/// What a footer says that the library does not show. Units are as they are stored; nothing where none is.
struct FooterParts
{
    FlushTable flush;
    std::optional<si::value> data_unit;
    std::vector<std::optional<si::value>> units; ///< of each axis
};

/// Inspects the footer of a stack and the parts behind it, from the place where `reader` stands to the end of the record,
/// where it leaves `reader`. Stacks of version 0 have no footer.
///
/// @throws Damage: the rest of the record cannot be read.
FooterParts inspect_footer(RecordReader& reader, const VBFStackHeader& header, Findings& findings);

/// The same for a stack of a scan; what cannot be read is empty.
FooterParts read_footer_parts(RecordReader& reader, const VBFChainEntry& stack);

/// Reads the flush points. `reader` moves.
///
/// @throws Damage
FlushPoints read_flush_points(RecordReader& reader, const FlushTable& table);

/// Inspects a dictionary, that of a file or the tags of a stack; gives its keys. `reader` is left behind it.
///
/// @throws Damage
std::vector<std::string> inspect_dictionary(RecordReader& reader, const std::string& what, Findings& findings);
