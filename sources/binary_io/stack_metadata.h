/// The metadata text of a stack: property XML that says where the stack lies.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include <cstdint>
#include <string>

class VStackInfoInterface;

namespace Vela::detail {

/// Whether metadata of this record's version say a position.
bool has_position(const VBFStackHeader& header);

/// Whether `import_metadata` takes the text for a stack of `rank` axes, at a fraction of what making one costs.
bool is_good_metadata(const std::string& text, bool with_position, std::uint64_t rank);

/// Imports the text, and gives `info` the position that it says if `with_position`.
/// @throws VelaError id -1 "Invalid metadata found!\n%s"
void import_metadata(const std::string& text, bool with_position, VStackInfoInterface& info);

} // namespace Vela::detail
