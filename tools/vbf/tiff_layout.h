/// What the description of a TIFF file says of its pages.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

class TiffFile;

/// How the planes of a file make up a stack with the axes X, Y, Z, T and C. The samples of a pixel belong to the axis C.
struct TiffLayout
{
    std::uint64_t size_z = 1;
    std::uint64_t size_t = 1;
    std::uint64_t size_c = 1; ///< with all samples of a pixel

    /// Pages from one step to the next, 0 for an axis of one step.
    std::uint64_t pages_per_z = 0;
    std::uint64_t pages_per_t = 0;
    std::uint64_t pages_per_c = 0; ///< a step of as many channels as a pixel has samples

    /// Lengths of the axes X, Y, Z in metres and T in seconds, where they are known.
    std::array<std::optional<double>, 4> lengths;

    std::string name;   ///< of the image; empty: none
    std::string remark; ///< what could not be honoured; empty: nothing
};

/// Reads the description. Known are OME documents of one image, and lines "key=value" under a first line "ImageJ=...". With any
/// other, or one that is not in keeping with the pages, the pages become the axis Z.
TiffLayout find_layout(const TiffFile& file);
