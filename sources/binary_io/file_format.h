/// Constants that readers and writers of VBF files share. docs/format.md explains them.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

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

/// A header counts the columns of an axis with 32 bits.
constexpr std::uint64_t most_columns = std::numeric_limits<std::uint32_t>::max();

/// More axes with samples the OME record of a stack does not have.
constexpr std::size_t max_record_rank = 5;

} // namespace Vela::detail
