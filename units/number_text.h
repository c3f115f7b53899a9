/// Decimal numbers as texts: what the C library reads and prints in the "C" locale, whatever the locale is.
#pragma once

#include <VelaBase/export.h>

#include <string>
#include <string_view>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

/// As `sscanf(text, "%lf", &result) == 1`, for a text of digits, signs, points and "e" only. Beyond the range of
/// `double` a number is infinite or zero.
bool read_number(std::string_view text, double& result);

/// As "%.*f" prints; a negative precision counts as missing, which is 6.
///
/// The text is as long as that of `printf`: a precision of a thousand million takes a gigabyte.
std::string fixed_text(double number, long long precision);

VELA_ABI_NAMESPACE_END
}
