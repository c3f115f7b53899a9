/// The text form of a fraction, read without a copy of the text.
#pragma once

#include <si/fraction.h>

#include <string_view>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

/// As `fraction::parse`.
bool parse_fraction(std::string_view text, fraction& result);

VELA_ABI_NAMESPACE_END
}
