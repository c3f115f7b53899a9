#include <VelaBase/VelaError.h>

#include "sources/error/format_text.h"
#include "sources/error/last_error.h"
#include "sources/platform/platform.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <new>
#include <string>
#include <utility>

namespace {

/// A string that takes no memory to exist and is never destroyed: an error may be reported while the process ends.
template <int number>
std::string& lasting_string()
{
    alignas(std::string) static unsigned char room[sizeof(std::string)];
    static std::string* const text = new (room) std::string;
    return *text;
}

std::string& last_error_string()
{
    return lasting_string<0>();
}

/// Set once the calling thread's own text is destroyed, as that of the main thread is before static objects are.
thread_local bool thread_text_ended = false;

struct ThreadText
{
    ~ThreadText() { thread_text_ended = true; }
    std::string text;
};

std::string& thread_text()
{
    if (thread_text_ended)
        return lasting_string<1>();
    static thread_local ThreadText own;
    return own.text;
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

int Vela::detail::copy_last_error(char* text, std::size_t room, std::size_t& length)
{
    const std::lock_guard lock(last_error_mutex);
    length = strnlen(last_error_string().c_str(), room);
    std::memcpy(text, last_error_string().c_str(), length);
    return last_error_id;
}

const char* Vela::detail::keep_for_thread(const std::string& report)
{
    std::string& text = thread_text();
    text = report;
    return text.c_str();
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
    std::string& text = thread_text();
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
