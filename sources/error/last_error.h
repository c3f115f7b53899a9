/// The last-error record of the process.
#pragma once

#include <cstddef>
#include <string>

namespace Vela::detail {

/// Stores what `vela_get_last_error` and `vela_get_last_error_string` give.
void set_last_error(int id, std::string&& report) noexcept;

/// Copies the front of the last report, up to `room` bytes or its first NUL, without taking memory. `length`
/// becomes how many bytes that are. Gives the id of the report.
int copy_last_error(char* text, std::size_t room, std::size_t& length);

/// Copies a report into the text of the calling thread, which is valid until the next copy or the thread's end.
const char* keep_for_thread(const std::string& report);

} // namespace Vela::detail
