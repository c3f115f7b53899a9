/// The command `vbf info`.
#pragma once

#include "stack_details.h"

#include <VelaBinaryIO/VBFHeaders.h>

#include <string>

struct InfoOptions
{
    std::string path;
    bool json = false;
};

/// Lists the file and every stack of its chain, also of a file that was not closed; of one that opens all that is in it.
///
/// @throws VelaError as `ScannedFile` does
/// @throws std::runtime_error as `Output` does
void print_info(const InfoOptions& options);

/// What is listed.
struct Listing
{
    VBFChain chain;
    bool is_dbl;
    bool has_dictionary;
    bool not_closed;
    FileDetails details;
};

/// The listing for people.
std::string info_as_text(const std::string& path, const Listing& listing);

/// The listing as one JSON document.
std::string info_as_json(const Listing& listing);
