/// Copies of boxes of samples in any order of their axes.
#pragma once

#include <VelaBase/vela_dt.h>

#include <cstdint>
#include <vector>

namespace Vela::detail {

/// One axis of a box: how many samples, and how many bytes from one to the next on either side.
struct CopyAxis
{
    std::uint64_t extent;
    std::uint64_t source_stride;
    std::uint64_t target_stride;
};

/// A box of samples, none of which lies on both sides.
struct SampleCopy
{
    std::vector<CopyAxis> axes; ///< in any order
    const unsigned char* source;
    std::uint64_t source_size_bytes; ///< from `source` on
    vela_dt source_dt;
    unsigned char* target;
    std::uint64_t target_size_bytes; ///< from `target` on
    vela_dt target_dt;
};

/// Whether all samples of the box lie within the bytes of both sides.
bool is_inside(const SampleCopy& copy);

/// Copies the samples of the box that lie within the bytes of both sides, converted as iterators do. Both types are among
/// those of iterators.
void copy_samples(const SampleCopy& copy);

} // namespace Vela::detail
