/// The two ways in which a message becomes text.
#pragma once

#include <VelaBase/export.h>

#include <cstdarg>
#include <cstddef>
#include <string>

namespace Vela::detail {

/// Messages are formed in a buffer of this size, terminating NUL included: longer ones are cut, not refused.
constexpr std::size_t message_buffer_size = 4096;

/// As `vsnprintf` forms it, cut.
std::string format_message(const char* format, std::va_list arguments) VELA_PRINTF_FORMAT(1, 0);

/// The text of a format that has no arguments: "%%" becomes "%", any other directive stays as it stands,
/// since it may come from outside. Cut in the same way. Null gives an empty text.
std::string format_without_arguments(const char* format);

} // namespace Vela::detail
