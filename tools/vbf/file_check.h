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
/// bounded by the bytes of the file: records that overlap are not followed.
///
/// @throws VelaError: the file cannot be opened or read by the system.
/// @throws std::runtime_error as `file_name` does
Inspected inspect_file(const std::string& path);
