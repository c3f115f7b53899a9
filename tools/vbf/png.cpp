#include "png.h"

#include "output.h"

#include <png.h>

#include <stdexcept>
#include <string>

// libpng's simplified interface: it jumps over no frame of ours when it fails, and unlike its form that
// takes a file name it removes no file by itself.
void write_png(Output& output, const Image& image)
{
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    header.width = image.width;
    header.height = image.height;
    header.format = image.colour ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    constexpr int as_8_bit = 0;
    constexpr png_int_32 packed_rows = 0;
    if (png_image_write_to_stdio(&header, output.stream(), as_8_bit, image.pixels.data(), packed_rows, nullptr) == 0)
    {
        const std::string message = header.message;
        png_image_free(&header);
        throw std::runtime_error("Cannot write the PNG image: " + message);
    }
}
