/// The command `vbf import`.
#pragma once

#include "stack_options.h"

#include <optional>
#include <string>
#include <vector>

struct ImportOptions
{
    std::vector<std::string> paths; ///< TIFF files, and last the VBF file to be made
    StackOptions stack;
    std::optional<std::string> creator;
};

/// Makes a VBF file of TIFF files, a stack of each.
///
/// @throws UsageFailure: options that do not fit, or as `NewVbfFile` does
/// @throws std::runtime_error as `TiffFile` does
/// @throws VelaError as `VBFFile` does. An older file stays then.
void import_images(const ImportOptions& options);
