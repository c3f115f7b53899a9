/// Stacks from one VBF file to another.
#pragma once

#include "footer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class VBFFileInterface;

/// What a file says that an open file of the library does not show.
struct SourceNotes
{
    VBFDictionary dictionary;
    std::optional<std::string> creator;
    std::optional<std::string> uuid;
    std::vector<FooterParts> footers; ///< of each stack
    std::vector<bool> empty;          ///< whether a stack has no bytes on disk
};

/// Reads the file, which must not be open. Of one that is no VBF file, but an older file that opens, there are no notes.
SourceNotes read_notes(const std::string& path);

/// The stacks that a user chose of `source`; all where none was named.
///
/// @throws VelaError id -4 "Invalid stack index %d!"
std::vector<std::uint64_t> chosen_stacks(VBFFileInterface& source, const std::vector<std::uint64_t>& indices);

/// Adds copies of stacks of `source` to `target`: samples, descriptions, units and tags. They are compressed at `level`, or as
/// they were. Shows how far it is.
void add_copies(VBFFileInterface& source, const SourceNotes& notes, const std::vector<std::uint64_t>& indices,
                VBFFileInterface& target, const std::optional<std::uint64_t>& level);
