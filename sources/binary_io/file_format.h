/// Constants that readers and writers of VBF files share. docs/format.md explains them.
#pragma once

#include <bit>
#include <cstdint>

namespace Vela::detail {

static_assert(std::endian::native == std::endian::little, "records move between file and memory as they are");

constexpr char file_magic[10] = {'V', 'E', 'L', 'A', '_', 'B', 'F', '\n', '\xFF', '\xFF'};
constexpr char stack_magic[16] = {'V', 'E', 'L', 'A', '_', 'B',  'F',    '_',
                                  'S', 'T', 'A', 'C', 'K', '\n', '\xFF', '\xFF'};

/// What the header of a written stack says. From this version on nothing that a reader has to know has changed.
constexpr std::uint32_t stack_format_version = 5;

/// Files up to this version end their header with the description and have no dictionary.
constexpr std::uint32_t last_version_without_dictionary = 1;

/// Stacks of this version end with their data.
constexpr std::uint32_t stack_version_without_footer = 0;

/// Where a file header has `first_stack_pos` and a stack header `next_stack_pos`, from its start.
constexpr std::uint64_t first_stack_field = 14;
constexpr std::uint64_t next_stack_field = 360;

} // namespace Vela::detail
