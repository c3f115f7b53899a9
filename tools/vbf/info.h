/// The command `vbf info`.
#pragma once

#include <string>

class ScannedFile;

struct InfoOptions
{
    std::string path;
    bool json = false;
};

/// Lists the file and every stack of its chain, also of a file that was not closed.
///
/// @throws VelaError as `ScannedFile` does
/// @throws std::runtime_error as `Output` does
void print_info(const InfoOptions& options);

/// The listing for people.
std::string info_as_text(const std::string& path, ScannedFile& input);

/// The listing as one JSON document.
std::string info_as_json(ScannedFile& input);
