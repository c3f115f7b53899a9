/// The command `vbf append`.
#pragma once

#include "stack_options.h"

#include <string>
#include <vector>

struct AppendOptions
{
    std::string path;
    std::vector<std::string> images; ///< TIFF files
    std::string from;                ///< a VBF file; empty with `images`
    StackOptions stack;              ///< with `from` only the level: none, that of each stack
};

/// Adds stacks to a file: of TIFF files, or those of another VBF file.
///
/// The library overwrites the start of a file to which stacks were appended; this puts it right again, also when something
/// fails on the way. If the process dies in between, `vbf repair` does.
///
/// @throws UsageFailure: neither or both of `images` and `from`, the file itself as source, or options that do not fit.
/// @throws as `plan_repair` does: a stack of the file is cut off, for example. The file stays as it was.
/// @throws as `TiffFile` and `VBFFile` do. The stacks that were finished by then are in the file, and
///         nothing of others.
void append_stacks(const AppendOptions& options);
