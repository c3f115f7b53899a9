/// Which pages of a TIFF file are which planes of an OME document.
#pragma once

#include <cstdint>
#include <string>

struct TiffLayout;
struct XmlElement;

/// Gives `layout`, whose sizes are known, its pages in the order in which they run through the axes: `order` has the letters Z, T
/// and C, the fastest first. Samples of a pixel are steps of C that lie in one page.
void set_pages(TiffLayout& layout, const std::string& order, std::uint64_t samples_per_pixel);

/// The same as the elements TiffData of `pixels` have it. Without any, pages are in order.
///
/// False where they do not give each page to one plane, or name another file.
bool set_pages(TiffLayout& layout, const std::string& order, std::uint64_t samples_per_pixel, const XmlElement& pixels,
               const std::string& uuid);
