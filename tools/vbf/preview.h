/// The command `vbf preview`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct PreviewOptions
{
    std::string path;
    std::uint64_t index = 0;
    std::string out;
    std::optional<std::uint64_t> plane; ///< none: the middle one
};

/// Draws a plane as an 8-bit PNG: numbers as stretched grey levels, complex ones by their magnitude,
/// colours as they are. Memory: 9 bytes a sample, for at most `Plane::max_samples`.
///
/// @throws UsageFailure: the output is the input.
/// @throws VelaError as `ScannedFile` and `StackReader` do
/// @throws std::runtime_error as `find_plane`, `write_png` and `Output` do
void write_preview(const PreviewOptions& options);
