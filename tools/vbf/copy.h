/// The command `vbf copy`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct CopyOptions
{
    std::string path;
    std::string out;
    std::vector<std::uint64_t> stacks;  ///< in this order; none: all
    std::optional<std::uint64_t> level; ///< of compression; none: that of each stack
};

/// Makes a file of the stacks of another one, with all that this library writes: the description of the file and its
/// creator; of the stacks everything. What is between and behind the stacks is left out.
///
/// @throws UsageFailure: a level that there is not, or as `NewVbfFile` does
/// @throws VelaError as `VBFFile` does. An older file stays then.
void copy_stacks(const CopyOptions& options);
