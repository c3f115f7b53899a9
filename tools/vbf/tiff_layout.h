/// What the description of a TIFF file says of its pages.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class TiffFile;

/// How the planes of a file make up a stack with the axes X, Y, Z, T and C. The samples of a pixel belong to the axis C.
struct TiffLayout
{
    std::uint64_t size_z = 1;
    std::uint64_t size_t = 1;
    std::uint64_t size_c = 1; ///< with all samples of a pixel

    /// The page of each plane: Z fastest, then T, then C, a step of as many channels as a pixel has samples.
    std::vector<std::uint64_t> pages;

    /// Lengths of the axes X, Y, Z in metres and T in seconds, where they are known.
    std::array<std::optional<double>, 4> lengths;

    std::string name;        ///< of the image; empty: none
    std::string description; ///< of the image; empty: none
    std::string remark;      ///< what could not be honoured; empty: nothing
};

/// Reads the description. Known are OME documents of one image, and lines "key=value" under a first line "ImageJ=...". With
/// one that is not in keeping with the pages they become the axis Z. So they do with any other, which describes the image.
TiffLayout find_layout(const TiffFile& file);
