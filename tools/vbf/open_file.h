/// Opens the files of the user, with messages that name them.
#pragma once

#include <VelaBinaryIO/VBFFile.h>
#include <VelaFile/VFile.h>

#include <string>

/// Opens the bytes of a file. What comes is the open file itself; it must not be copied.
///
/// @throws std::runtime_error "'%s': Could not open file! (%s)" on the path and the reason
/// @throws std::runtime_error as `file_name` does
VFile open_bytes(const std::string& path, VFile::mode mode);

/// Opens a VBF or DBL file through the library.
///
/// @throws std::runtime_error as `open_bytes` does
/// @throws VelaError as `VBFFile::open` does for what is in the file
VBFFile open_vbf(const std::string& path, VFile::mode mode);

/// Whether the library reads the file as a DBL file. The name alone says it.
bool is_dbl(const std::string& path);
