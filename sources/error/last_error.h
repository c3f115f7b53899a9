/// The last-error record of the process.
#pragma once

#include <string>

namespace Vela::detail {

/// Stores what `vela_get_last_error` and `vela_get_last_error_string` give. Not guarded against other threads.
void set_last_error(int id, std::string&& report) noexcept;

} // namespace Vela::detail
