/// The command `vbf read`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct ReadOptions
{
    std::string path;
    std::uint64_t index = 0;
    std::optional<std::string> type;    ///< none: the type of the stack
    std::uint64_t from = 0;             ///< in samples
    std::optional<std::uint64_t> count; ///< in samples; none: all that are left
    std::string out;                    ///< empty: standard output
};

/// Writes samples as raw little-endian bytes.
///
/// @throws UsageFailure: there is no sample type of that name, or the output is the input.
/// @throws VelaError as `ScannedFile` and `StackReader` do
/// @throws std::runtime_error as `Output` does
void read_samples(const ReadOptions& options);
