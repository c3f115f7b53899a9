#include "preview.h"

#include "grey.h"
#include "output.h"
#include "plane.h"
#include "png.h"
#include "progress.h"
#include "scanned_file.h"
#include "stack_reader.h"

#include <cmath>
#include <complex>
#include <cstring>

namespace {

/// Calls `take` on each sample of the plane, converted to `T`, which is the type of the id `type`.
template <class T, class Take>
void for_each_sample(StackReader& reader, const Plane& plane, vela_dt type, Take take)
{
    Progress progress("reading", plane.get_count_samples());
    reader.read(plane.first_sample, plane.get_count_samples(), type,
                [&](const unsigned char* samples, std::uint64_t size_bytes)
                {
                    for (std::uint64_t offset = 0; offset < size_bytes; offset += sizeof(T))
                    {
                        T sample;
                        std::memcpy(&sample, samples + offset, sizeof sample);
                        take(sample);
                    }
                    progress.add(size_bytes / sizeof(T));
                });
}

std::vector<double> read_values(StackReader& reader, const Plane& plane)
{
    std::vector<double> values;
    values.reserve(plane.get_count_samples());
    if (reader.get_type() == vela_dt_logical) // the one type of numbers that is not converted
        for_each_sample<std::uint8_t>(reader, plane, vela_dt_logical, [&](std::uint8_t v) { values.push_back(v); });
    else if ((reader.get_type() & vela_dt_complex) != 0)
        for_each_sample<std::complex<double>>(reader, plane, vela_dt_complex | vela_dt_double,
                                              [&](const std::complex<double>& v) { values.push_back(std::abs(v)); });
    else
        for_each_sample<double>(reader, plane, vela_dt_double, [&](double v) { values.push_back(v); });
    return values;
}

std::vector<unsigned char> read_colours(StackReader& reader, const Plane& plane)
{
    std::vector<unsigned char> pixels;
    pixels.reserve(plane.get_count_samples() * sizeof(_s_vela_RGB));
    for_each_sample<_s_vela_RGB>(reader, plane, vela_dt_rgb,
                                 [&](const _s_vela_RGB& colour)
                                 { pixels.insert(pixels.end(), std::begin(colour.bytes), std::end(colour.bytes)); });
    return pixels;
}

Image draw(StackReader& reader, const Plane& plane)
{
    const bool colour = reader.get_type() == vela_dt_rgb || reader.get_type() == vela_dt_packed_color;
    return {plane.width, plane.height, colour,
            colour ? read_colours(reader, plane) : grey_levels(read_values(reader, plane))};
}

} // namespace

void write_preview(const PreviewOptions& options)
{
    Output output(options.out, options.path);
    ScannedFile input(options.path);
    const VBFChainEntry& stack = input.get_stack(options.index);
    const Plane plane = find_plane(stack.header, options.plane);
    check_drawable(plane);
    StackReader reader(input.get_file(), stack);
    write_png(output, draw(reader, plane));
    output.finish();
}
