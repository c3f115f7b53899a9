// Prints the mean of one plane of the first stack of a VBF file: read_plane FILE PLANE
#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt_convert.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include <iostream>
#include <numeric>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    try
    {
        VFile file(VPropstring(argv[1], VPropstring::enc_utf8), VFile::read_mode);
        const VBFChainEntry stack = scan_chain(file).stacks.at(0);
        const std::uint32_t type = static_cast<std::uint32_t>(stack.header.data_type);
        const std::uint64_t count = std::uint64_t{stack.header.dimension_sizes[0]} * stack.header.dimension_sizes[1];
        const std::uint64_t plane_bytes = count * vela_dt_get_size(type);

        // The samples lie in the file as one zlib stream, or as they are at level 0.
        const int level = stack.header.compression_type == 1 ? stack.header.compression_level : 0;
        VZippedSegment segment;
        segment.init_r(file, level, stack.data_pos, stack.header.data_length_on_disk, VFileAccess::all_ones);
        segment.seek(std::stoull(argv[2]) * plane_bytes);
        std::vector<unsigned char> samples(plane_bytes);
        segment.read(samples.data(), plane_bytes);

        std::vector<double> values(count);
        if (vela_dt_convert(type, vela_dt_double, samples.data(), values.data(), count, nullptr, nullptr) != 0)
            return 1;
        std::cout << "mean " << std::accumulate(values.begin(), values.end(), 0.0) / double(count) << "\n";
    }
    catch (const std::exception& error)
    {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
