#include <VelaBase/VelaError.h>

#include "sources/error/format_text.h"
#include "sources/error/last_error.h"
#include "sources/platform/platform.h"

#include <cstdint>
#include <mutex>
#include <new>
#include <string>
#include <utility>

namespace {

/// Takes no memory to exist and is never destroyed: an error may be reported while the process ends.
std::string& last_error_string()
{
    alignas(std::string) static unsigned char room[sizeof(std::string)];
    static std::string* const text = new (room) std::string;
    return *text;
}

/// Reports of several threads overwrite each other, but each whole: `what()` is called where errors are printed,
/// and two threads that print must not tear a string between them.
std::mutex last_error_mutex;
std::int32_t last_error_id = 0;

std::string flag_text(int flags)
{
    std::string text;
    if ((flags & 8) != 0)
        text += "[rank]";
    if ((flags & 1) != 0)
        text += "[rng min]";
    if ((flags & 2) != 0)
        text += "[rng max]";
    if ((flags & 4) != 0)
        text += "[rounding]";
    return text;
}

} // namespace

void Vela::detail::set_last_error(int id, std::string&& report) noexcept
{
    const std::lock_guard lock(last_error_mutex);
    last_error_id = id;
    last_error_string().swap(report);
}

void vela_err(const char* msg, const char* func, const char* file, int line)
{
    throw VelaError(Vela::detail::format_without_arguments(msg), func, file, line);
}

void vela_warn(const char* msg, const char* func, const char* file, int line)
{
    VelaError(Vela::detail::format_without_arguments(msg), func, file, line).do_warn();
}

void vela_lasterr(const char* msg, const char* func, const char* file, int line)
{
    throw VelaError(Vela::detail::format_without_arguments(msg), func, file, line)(1);
}

int vela_get_last_error()
{
    const std::lock_guard lock(last_error_mutex);
    return last_error_id;
}

const char* vela_get_last_error_string()
{
    // A copy for each thread: nothing that another one reports changes it.
    static thread_local std::string text;
    const std::lock_guard lock(last_error_mutex);
    text = last_error_string();
    return text.c_str();
}

void wrap_array_report_error(const VelaError& err, int flags, int, bool warn)
{
    VelaError copy(err);
    copy("Runtime error during type conversion: Flags: %s", flag_text(flags).c_str());
    if (!warn)
        throw copy;
    copy.do_warn(); // delivered when it is destroyed
}

vela_debug_sink vela_set_debug_sink(vela_debug_sink sink)
{
    return Vela::platform::set_debug_sink(sink);
}
