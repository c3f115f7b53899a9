/// Whether a file opens.
#pragma once

#include <optional>
#include <string>

/// Why the library does not open the file; nothing if it opens. The file must not be open already.
///
/// @throws std::runtime_error as `file_name` does
std::optional<std::string> open_failure(const std::string& path);
