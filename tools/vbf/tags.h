/// The command `vbf tags`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct TagsOptions
{
    std::string path;
    std::uint64_t index = 0;
    std::optional<std::string> key; ///< none: all
    bool json = false;
};

/// Lists the tags of a stack, or writes the text of one as it is stored.
///
/// @throws VelaError as `VBFFile` and `VBFStackInterface::get_tag` do
/// @throws std::runtime_error as `Output` does
void print_tags(const TagsOptions& options);
