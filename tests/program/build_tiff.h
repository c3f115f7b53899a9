/// Makes TIFF files by libtiff alone.
#pragma once

#include "support/temporary_folder.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <tiffio.h>
#include <vector>

namespace vela_test {

/// All pages have one form. Samples are as they lie in memory, those of one pixel side by side.
struct TiffRecipe
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<Bytes> pages;
    std::uint16_t bits = 8;
    std::uint16_t sample_format = SAMPLEFORMAT_UINT;
    std::uint16_t samples_per_pixel = 1;
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint32_t tile = 0; ///< edge of tiles; 0: strips
    std::uint32_t rows_per_strip = 2;
    bool planar = false; ///< each sample of the pixels in a plane of its own; `pages` has the planes behind each other
    bool big_endian = false;
    bool big_tiff = false;                              ///< with positions of 64 bits
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK; ///< of one sample a pixel
    std::uint16_t orientation = 0;                      ///< 0: the file does not say
    std::uint32_t depth = 0;                            ///< 0: the file does not say
    std::string description;
    float resolution = 0; ///< in pixels per unit
};

namespace detail {

inline void require(bool good)
{
    if (!good)
        throw std::runtime_error("cannot write the TIFF file");
}

inline void put_tiles(TIFF* file, const TiffRecipe& recipe, const Bytes& page, std::uint16_t plane)
{
    const std::size_t pixel = recipe.bits / 8u * (recipe.planar ? 1u : recipe.samples_per_pixel);
    for (std::uint32_t top = 0; top < recipe.height; top += recipe.tile)
    {
        for (std::uint32_t left = 0; left < recipe.width; left += recipe.tile)
        {
            Bytes tile(recipe.tile * recipe.tile * pixel);
            for (std::uint32_t y = top; y < std::min(top + recipe.tile, recipe.height); ++y)
            {
                for (std::uint32_t x = left; x < std::min(left + recipe.tile, recipe.width); ++x)
                    std::copy_n(&page[((plane * recipe.height + y) * recipe.width + x) * pixel], pixel,
                                &tile[((y - top) * recipe.tile + x - left) * pixel]);
            }
            require(TIFFWriteTile(file, tile.data(), left, top, 0, plane) >= 0);
        }
    }
}

inline void put_rows(TIFF* file, const TiffRecipe& recipe, Bytes page, std::uint16_t plane)
{
    const std::size_t row_bytes = page.size() / recipe.height / (recipe.planar ? recipe.samples_per_pixel : 1u);
    for (std::uint32_t y = 0; y < recipe.height; ++y)
        require(TIFFWriteScanline(file, &page[(std::size_t{plane} * recipe.height + y) * row_bytes], y, plane) == 1);
}

} // namespace detail

inline void put_tiff(const std::string& path, const TiffRecipe& recipe)
{
    const std::string mode = std::string("w") + (recipe.big_endian ? "b" : "l") + (recipe.big_tiff ? "8" : "");
    TIFF* const file = TIFFOpen(path.c_str(), mode.c_str());
    detail::require(file != nullptr);
    for (const Bytes& page : recipe.pages)
    {
        TIFFSetField(file, TIFFTAG_IMAGEWIDTH, recipe.width);
        TIFFSetField(file, TIFFTAG_IMAGELENGTH, recipe.height);
        TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, recipe.bits);
        TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, recipe.samples_per_pixel);
        TIFFSetField(file, TIFFTAG_SAMPLEFORMAT, recipe.sample_format);
        TIFFSetField(file, TIFFTAG_COMPRESSION, recipe.compression);
        TIFFSetField(file, TIFFTAG_PHOTOMETRIC, recipe.samples_per_pixel == 3 ? PHOTOMETRIC_RGB : recipe.photometric);
        TIFFSetField(file, TIFFTAG_PLANARCONFIG, recipe.planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
        if (recipe.tile != 0)
        {
            TIFFSetField(file, TIFFTAG_TILEWIDTH, recipe.tile);
            TIFFSetField(file, TIFFTAG_TILELENGTH, recipe.tile);
        }
        else
            TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, recipe.rows_per_strip);
        if (!recipe.description.empty())
            TIFFSetField(file, TIFFTAG_IMAGEDESCRIPTION, recipe.description.c_str());
        if (recipe.resolution > 0)
        {
            TIFFSetField(file, TIFFTAG_XRESOLUTION, static_cast<double>(recipe.resolution));
            TIFFSetField(file, TIFFTAG_YRESOLUTION, static_cast<double>(recipe.resolution));
        }
        if (recipe.orientation != 0)
            TIFFSetField(file, TIFFTAG_ORIENTATION, recipe.orientation);
        if (recipe.depth != 0)
            TIFFSetField(file, TIFFTAG_IMAGEDEPTH, recipe.depth);
        const std::uint16_t planes = recipe.planar ? recipe.samples_per_pixel : std::uint16_t{1};
        for (std::uint16_t plane = 0; plane < planes; ++plane)
            recipe.tile != 0 ? detail::put_tiles(file, recipe, page, plane)
                             : detail::put_rows(file, recipe, page, plane);
        detail::require(TIFFWriteDirectory(file) == 1);
    }
    TIFFClose(file);
}

} // namespace vela_test
