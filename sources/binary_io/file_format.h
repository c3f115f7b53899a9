/// Constants that readers and writers of VBF files share. docs/format.md explains them.
#pragma once

#include <bit>
#include <cstdint>

namespace Vela::detail {

static_assert(std::endian::native == std::endian::little, "records move between file and memory as they are");

constexpr char file_magic[10] = {'V', 'E', 'L', 'A', '_', 'B', 'F', '\n', '\xFF', '\xFF'};
constexpr char stack_magic[16] = {'V', 'E', 'L', 'A', '_', 'B',  'F',    '_',
                                  'S', 'T', 'A', 'C', 'K', '\n', '\xFF', '\xFF'};

/// Files up to this version end their header with the description and have no dictionary.
constexpr std::uint32_t last_version_without_dictionary = 1;

} // namespace Vela::detail
