/// The command `vbf verify`.
#pragma once

#include <string>

struct VerifyOptions
{
    std::string path;
    bool json = false;
};

/// Inspects a whole file, its samples included, and lists what is wrong and what is odd. True when nothing is wrong.
///
/// @throws VelaError: the file cannot be opened or read by the system.
/// @throws std::runtime_error as `Output` does
bool verify_file(const VerifyOptions& options);
