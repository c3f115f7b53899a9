/// The header of a .dbl file. docs/format-dbl.md explains it.
///
///     offset  width
///          0      8   dimensions 2, 1, 0, 3: unsigned 16-bit, big-endian
///          8     16   lengths 2, 1, 0, 3: single precision, little-endian
///         24      1   1: samples are singles; anything else: doubles
///         25    103   not defined
///        128          samples, little-endian, dimension 0 fastest
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace Vela::detail {

static_assert(std::endian::native == std::endian::little,
              "lengths and samples move between file and memory as they are");

constexpr std::size_t dbl_header_size = 128;
constexpr std::size_t dbl_rank = 4;

/// Which dimension stands at which place.
constexpr std::array<std::size_t, dbl_rank> dbl_order = {2, 1, 0, 3};

constexpr std::size_t dbl_lengths_at = 8;
constexpr std::size_t dbl_single_at = 24;
constexpr unsigned char dbl_is_single = 1;

typedef std::array<unsigned char, dbl_header_size> DblHeaderBytes;

/// What the header says.
struct DblHeader
{
    std::array<int, dbl_rank> dims = {};
    std::array<float, dbl_rank> lengths = {};
    bool is_single = false;
};

/// Of the dimensions only the low 16 bits have room.
DblHeaderBytes encode_dbl_header(const DblHeader& header);
DblHeader decode_dbl_header(const DblHeaderBytes& bytes);

/// The number of samples that dimensions stand for: their product as signed 32 bits count it. Below 0 where no block
/// can have it.
std::int32_t count_dbl_samples(const int* dims);

} // namespace Vela::detail
