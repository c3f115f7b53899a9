/// What lies behind the samples of a stack.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include <cstdint>
#include <vector>

class Findings;
class RecordReader;

/// What the inspection of the samples needs of the footer.
struct FlushTable
{
    std::vector<std::uint64_t> positions; ///< offsets in the data segment
    std::uint64_t position_in_file = 0;
    std::uint64_t block_bytes = 0;
};

/// Inspects the footer of a stack and the parts behind it, from the place where `reader` stands to the end of the record,
/// where it leaves `reader`. Stacks of version 0 have no footer.
///
/// @throws Damage: the rest of the record cannot be read.
FlushTable inspect_footer(RecordReader& reader, const VBFStackHeader& header, Findings& findings);

/// Inspects a dictionary, that of a file or the tags of a stack; gives its keys. `reader` is left behind it.
///
/// @throws Damage
std::vector<std::string> inspect_dictionary(RecordReader& reader, const std::string& what, Findings& findings);
