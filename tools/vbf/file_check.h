/// Inspects a whole file.
#pragma once

#include "findings.h"

#include <cstdint>
#include <string>

/// What an inspection saw.
struct Inspected
{
    Findings findings;
    std::size_t count_stacks = 0;
    std::uint64_t size_samples_bytes = 0; ///< uncompressed
    std::uint64_t count_flush_points = 0;
};

/// Inspects the records of a file, its chain, its dictionary and all samples, and tries whether it opens. Time and memory are
/// bounded by the bytes of the file: records that overlap are not followed. Of a DBL file there is the length to inspect.
/// Shows how far it is.
///
/// @throws VelaError: the file cannot be read by the system, or is too short for a DBL file.
/// @throws std::runtime_error as `open_bytes` does
Inspected inspect_file(const std::string& path);
