/// The first segment of a path.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace vela_prop {

enum class SegmentKind
{
    member,
    cell,
    struct_element,
};

struct Segment
{
    SegmentKind kind;
    std::string_view head;             ///< the name, or brackets and indices
    std::string_view rest;             ///< the path behind it
    std::vector<std::size_t> position; ///< of an element
};

/// Parts `path` behind its first segment, into which the result refers.
/// @throws VelaError: the texts of `VPropstruct.h` that tell of the path itself
Segment split_path(std::string_view path);

/// Letters and digits of ASCII, "_" and "-", and no digit and no "-" first.
bool is_valid_name(std::string_view name);

} // namespace vela_prop
