#include <VelaBase/VelaError.h>

#include "sources/error/format_text.h"
#include "sources/error/last_error.h"
#include "sources/platform/platform.h"

#include <cstdio>
#include <memory>
#include <utility>

namespace Vela::detail {

std::string format_message(const char* format, std::va_list arguments)
{
    char buffer[message_buffer_size] = "";
    if (format == nullptr)
        return buffer;
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    return buffer;
}

std::string format_without_arguments(const char* format)
{
    std::string text;
    if (format == nullptr)
        return text;
    for (; *format != '\0' && text.size() < message_buffer_size - 1; ++format)
    {
        text += *format;
        if (format[0] == '%' && format[1] == '%')
            ++format;
    }
    return text;
}

} // namespace Vela::detail

namespace {

/// True when `text` is the content of `store` itself and not merely equal to it.
bool stands_in(const char* text, const std::string& store)
{
    return text == store.c_str();
}

void print_warning(const char* message, const char*, const char*, std::int32_t)
{
    std::fprintf(stderr, "%s\n", message);
}

typedef void (*WarningSink)(const char* message, const char* function, const char* file, std::int32_t line);
constexpr WarningSink warning_sink = print_warning;

} // namespace

VelaError::VelaError() : VelaError(nullptr, nullptr, 0) {}

VelaError::VelaError(const char* in_func, const char* in_file, int in_line)
    : file(in_file), func(in_func), line(in_line), thread_id(Vela::platform::thread_id())
{
}

VelaError::VelaError(const std::string& in_msg, const char* in_func, const char* in_file, int in_line)
    : VelaError(in_func, in_file, in_line)
{
    msg = in_msg;
}

VelaError::VelaError(const VelaError& other)
    : std::exception(other), file(nullptr), func(nullptr), line(other.line), id(other.id), oserr_id(other.oserr_id),
      msg(other.msg), oserr(other.oserr), warn(other.warn), process_on_destroy(other.process_on_destroy),
      thread_id(other.thread_id)
{
    copy_place(other);
}

VelaError& VelaError::operator=(const VelaError& other)
{
    if (this == &other)
        return *this;
    std::exception::operator=(other);
    line = other.line;
    id = other.id;
    oserr_id = other.oserr_id;
    msg = other.msg;
    oserr = other.oserr;
    warn = other.warn;
    process_on_destroy = other.process_on_destroy;
    thread_id = other.thread_id;
    copy_place(other);
    return *this;
}

/// Takes over file and function: pointers into a store lead to a copy of it here, others are copied.
void VelaError::copy_place(const VelaError& other)
{
    if (stands_in(other.file, other.file_store))
    {
        file_store = other.file_store;
        file = file_store.c_str();
    }
    else
        file = other.file;
    if (stands_in(other.func, other.func_store))
    {
        func_store = other.func_store;
        func = func_store.c_str();
    }
    else
        func = other.func;
}

VelaError::~VelaError()
{
    try
    {
        if (warn)
            do_warn_now();
        else if (process_on_destroy)
            process();
    }
    catch (...)
    {
        // Only memory can fail here, and a destructor has nobody to tell.
    }
}

const char* VelaError::what() const noexcept
{
    try
    {
        std::string report;
        compose(report);
        // This thread's copy first: another thread may report at once, and without memory nothing is to change.
        const char* const text = Vela::detail::keep_for_thread(report);
        announce(std::move(report));
        return text;
    }
    catch (...)
    {
        return msg.c_str(); // no memory for the report
    }
}

VelaError* VelaError::clone() const
{
    auto copy = std::make_unique<VelaError>(*this);
    if (file != nullptr)
        copy->file_store = file;
    copy->file = copy->file_store.c_str();
    if (func != nullptr)
        copy->func_store = func;
    copy->func = copy->func_store.c_str();
    return copy.release();
}

VelaError& VelaError::operator()(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    msg = Vela::detail::format_message(format, arguments);
    va_end(arguments);
    return *this;
}

VelaError& VelaError::operator()(int new_id)
{
    id = new_id;
    return *this;
}

VelaError& VelaError::do_warn()
{
    warn = true;
    return *this;
}

VelaError& VelaError::do_process()
{
    process_on_destroy = true;
    return *this;
}

VelaError& VelaError::do_oserr()
{
    const int code = Vela::platform::last_error();
    const char* const text = Vela::platform::error_text(code);
    oserr = text != nullptr ? text : "Unknown system error.";
    oserr_id = code;
    return *this;
}

void VelaError::compose(std::string& report) const
{
    // Without a file or a line the report starts directly with the message and has no label. This is wanted.
    if (line != 0 && file != nullptr)
    {
        report.append(file).append("(").append(std::to_string(line)).append("): ");
        report.append(warn ? "WARNING" : "ERROR").append("\n    ");
        if (func != nullptr)
            report.append("in function '").append(func).append("':\n    ");
    }
    report.append(msg);
    if (oserr_id > 0)
        report.append("\n    os_error(").append(std::to_string(oserr_id)).append("): ").append(oserr);
}

int VelaError::process() const
{
    std::string report;
    compose(report);
    announce(std::move(report));
    return id;
}

/// Hands the report to the debug sink and makes it the last error.
void VelaError::announce(std::string&& report) const
{
    Vela::platform::debug_line((report + "\n").c_str());
    Vela::detail::set_last_error(id, std::move(report));
}

void VelaError::do_warn_now() const
{
    const char* const text = what();
    warning_sink(text, func, file, line);
}
