/// The last-error record of the process.
#pragma once

#include <string>

namespace Vela::detail {

/// Stores what `vela_get_last_error` and `vela_get_last_error_string` give.
void set_last_error(int id, std::string&& report) noexcept;

/// Copies a report into the text of the calling thread, which is valid until the next copy or the thread's end.
const char* keep_for_thread(const std::string& report);

} // namespace Vela::detail
