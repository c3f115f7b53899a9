/// The dictionary of a file that the library wrote anew.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include <string>

class VFile;

/// The library writes a document of its own into the dictionary of each file. Another writer's has more in it, which is
/// kept here, as it stands.
///
/// Puts `pairs` into the dictionary of a new file, which is closed.
///
/// @throws VelaError as `VFile`, `read_file_header` and `read_dictionary` do
void set_pairs(const std::string& path, const VBFDictionary& pairs);

/// The same for a file to which the library appended stacks: its first 8 bytes are the position of its dictionary. With
/// other first bytes nothing is done. Until its last write the file is one that `vbf repair` mends.
///
/// @throws VelaError as `VFile` and `read_dictionary` do
void set_pairs_behind_append(VFile& file, const VBFDictionary& pairs);

/// The pairs for a copy of the file, which is another file: the document is without the UUID.
VBFDictionary pairs_of_copy(VBFDictionary pairs);
