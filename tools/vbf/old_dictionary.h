/// A dictionary that may be damaged.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include <cstdint>

class VFile;

/// What lies at a position.
struct FoundDictionary
{
    VBFDictionary pairs;   ///< those before the damage
    bool whole = false;    ///< it is all there
    std::uint64_t end = 0; ///< where a whole one ends
};

/// Reads as much of a dictionary as can be read.
FoundDictionary find_dictionary(VFile& file, std::uint64_t position);
