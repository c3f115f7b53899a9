#include "benchmarks/peers.h"

#include <tiffio.h>

#include <cstdio>
#include <cstdlib>

namespace vela_bench {

namespace {

void require(bool holds)
{
    if (holds)
        return;
    std::fprintf(stderr, "libtiff failed\n");
    std::abort();
}

void describe_plane(TIFF* file, const ImageData& data, int level)
{
    const auto bits = static_cast<unsigned>(8 * data.plane_bytes() / data.plane_samples());
    const bool is_float = data.dt == vela_dt_single;
    require(TIFFSetField(file, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(data.sizes[0])) == 1);
    require(TIFFSetField(file, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(data.sizes[1])) == 1);
    require(TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(data.sizes[1])) == 1);
    require(TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, bits) == 1);
    require(TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 1) == 1);
    require(TIFFSetField(file, TIFFTAG_SAMPLEFORMAT, is_float ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT) == 1);
    require(TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK) == 1);
    require(TIFFSetField(file, TIFFTAG_COMPRESSION, level > 0 ? COMPRESSION_ADOBE_DEFLATE : COMPRESSION_NONE) == 1);
    if (level > 0)
        require(TIFFSetField(file, TIFFTAG_ZIPQUALITY, level) == 1);
}

} // namespace

void write_tiff(const std::string& path, const ImageData& data, int level)
{
    TIFF* const file = TIFFOpen(path.c_str(), "w");
    require(file != nullptr);
    const auto plane_bytes = static_cast<tmsize_t>(data.plane_bytes());
    for (std::uint64_t plane = 0; plane < data.sizes[2]; ++plane)
    {
        describe_plane(file, data, level);
        // The samples are in the order of the machine and there is no predictor: nothing is changed in place.
        void* const samples = const_cast<unsigned char*>(data.bytes.data() + plane * data.plane_bytes());
        require(TIFFWriteEncodedStrip(file, 0, samples, plane_bytes) == plane_bytes);
        require(TIFFWriteDirectory(file) == 1);
    }
    TIFFClose(file);
}

void read_tiff(const std::string& path, const ImageData& shape, std::vector<unsigned char>& bytes)
{
    TIFF* const file = TIFFOpen(path.c_str(), "rc"); // planes stay whole strips
    require(file != nullptr);
    const auto plane_bytes = static_cast<tmsize_t>(shape.plane_bytes());
    for (std::uint64_t plane = 0; plane < shape.sizes[2]; ++plane)
    {
        require(plane == 0 || TIFFReadDirectory(file) == 1);
        require(TIFFReadEncodedStrip(file, 0, bytes.data() + plane * shape.plane_bytes(), plane_bytes) == plane_bytes);
    }
    TIFFClose(file);
}

} // namespace vela_bench
