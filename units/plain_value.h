/// The parts that a text of a quantity is composed of: a number and a unit.
#pragma once

#include <si/value.h>

#include <string_view>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

/// Reads a number, blanks and a unit, any of which may be missing, but not all. `result` changes only if that
/// succeeds.
bool parse_plain_value(std::string_view text, value& result);

VELA_ABI_NAMESPACE_END
}
