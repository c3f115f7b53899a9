/// Image data as microscopes give them, made up with fixed seeds.
#pragma once

#include <VelaBase/vela_dt.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vela_bench {

/// A stack of planes: axis 0 runs fastest.
struct ImageData
{
    std::string name;
    vela_dt dt;
    std::vector<std::uint64_t> sizes; ///< three axes
    std::vector<unsigned char> bytes;

    std::uint64_t plane_bytes() const { return bytes.size() / sizes[2]; }
    std::uint64_t plane_samples() const { return sizes[0] * sizes[1]; }
};

/// Four stacks of 64 MiB (bright and dim camera noise and sparse photon counts of 16 bits, and single precision), and the
/// real one of the examples.
const std::vector<ImageData>& image_data();

} // namespace vela_bench
