/// The command `vbf repair`.
#pragma once

#include <string>

struct RepairOptions
{
    std::string path;
    std::string out;       ///< the mended copy; empty with `in_place`
    bool in_place = false; ///< mend the file itself
};

/// Mends a file whose writer did not come to an end, see `plan_repair`, and says what was done. A file with which nothing
/// is wrong is neither copied nor changed.
///
/// @throws UsageFailure: neither or both of `out` and `in_place`, or the output is the input.
/// @throws VelaError: the file cannot be read, or has something else that is wrong.
/// @throws std::runtime_error: the mended file does not open; and as `Output` does
void repair_file(const RepairOptions& options);
