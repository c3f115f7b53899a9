/// The command `vbf repair`.
#pragma once

#include <string>

struct RepairOptions
{
    std::string path;
    std::string out;       ///< the mended copy; empty with `in_place`
    bool in_place = false; ///< mend the file itself
};

/// Mends a file whose writer did not come to an end, see `plan_repair`, and says what was done and what is lost. A file
/// that needs none of this is neither copied nor changed, whatever else is wrong with it.
///
/// @throws UsageFailure: neither or both of `out` and `in_place`, the output is the input, or a name of a DBL file.
/// @throws VelaError and std::runtime_error as `plan_repair` does: nothing was written.
/// @throws std::runtime_error: the file does not open for another reason. What could be mended is, also in place.
/// @throws std::runtime_error as `open_bytes` and `Output` do
void repair_file(const RepairOptions& options);
