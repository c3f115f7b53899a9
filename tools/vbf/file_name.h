/// The names of files, from the command line to the library.
#pragma once

#include <VelaProps/VPropstring.h>

#include <string>

/// @throws std::runtime_error: `path` is no UTF-8, so the library cannot name the file.
VPropstring file_name(const std::string& path);
