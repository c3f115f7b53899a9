/// The text form of a quantity: reading.
#pragma once

#include <si/value.h>

#include <string_view>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

/// Reads the text that `value` describes and answers whether it is one. `result` changes only if it is.
bool parse_value(std::string_view text, value& result);

VELA_ABI_NAMESPACE_END
}
