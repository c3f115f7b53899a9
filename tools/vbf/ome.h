/// The command `vbf ome`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct OmeOptions
{
    std::string path;
    std::optional<std::uint64_t> index; ///< none: the document of the file
};

/// Writes the OME document of a file as it is stored, or the record of a stack as XML.
///
/// @throws VelaError as `ScannedFile` and `VBFFile` do
/// @throws std::runtime_error: the file has no document; and as `Output` does
void print_ome(const OmeOptions& options);
