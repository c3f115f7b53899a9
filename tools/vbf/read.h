/// The command `vbf read`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct ReadOptions
{
    std::string path;
    std::uint64_t index = 0;
    std::optional<std::string> type;    ///< none: the type of the stack
    std::optional<std::uint64_t> from;  ///< in samples; none: the first one
    std::optional<std::uint64_t> count; ///< in samples; none: all that are left
    std::optional<std::uint64_t> plane; ///< of the first two dimensions, counted through all others
    std::vector<std::string> region;    ///< "begin:end" for each dimension, or "" for all of it; none: no region
    std::string out;                    ///< empty: standard output
};

/// Writes samples as raw little-endian bytes: a run, a plane, or a box in storage order.
///
/// @throws UsageFailure: there is no sample type of that name, more than one of run, plane and region, a region that is no
///         text of one, or the output is the input.
/// @throws std::runtime_error: the stack has no such plane or region.
/// @throws VelaError as `ScannedFile` and `StackReader` do
/// @throws std::runtime_error as `Output` does
void read_samples(const ReadOptions& options);
