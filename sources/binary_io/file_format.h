/// Constants that readers and writers of VBF files share. docs/format.md explains them.
#pragma once

#include <bit>
#include <cstdint>

namespace Vela::detail {

static_assert(std::endian::native == std::endian::little, "records move between file and memory as they are");

constexpr char file_magic[10] = {'V', 'E', 'L', 'A', '_', 'B', 'F', '\n', '\xFF', '\xFF'};
constexpr char stack_magic[16] = {'V', 'E', 'L', 'A', '_', 'B',  'F',    '_',
                                  'S', 'T', 'A', 'C', 'K', '\n', '\xFF', '\xFF'};

/// What the header of a written stack says. A reader makes no difference between versions 3 to 5.
constexpr std::uint32_t stack_format_version = 5;

/// Files up to this version end their header with the description and have no dictionary.
constexpr std::uint32_t last_version_without_dictionary = 1;

/// Stacks of this version end with their data.
constexpr std::uint32_t stack_version_without_footer = 0;

} // namespace Vela::detail
