/// PNG images.
#pragma once

#include <cstdint>
#include <vector>

class Output;

/// Rows of pixels from the top, each of one byte (grey) or three (red, green, blue).
struct Image
{
    std::uint32_t width;
    std::uint32_t height;
    bool colour;
    std::vector<unsigned char> pixels;
};

/// @throws std::runtime_error with libpng's message
void write_png(Output& output, const Image& image);
