/// The exception of the property, stack and file layers, the last-error record, and their C functions.
#pragma once

#include <VelaBase/export.h>

#include <cstdint>
#include <exception>
#include <string>

/// A failure with its place, a message, an id and, where a system call failed, the system's text.
///
/// Built in one expression and thrown by value:
///
///     throw VelaError("VFile::open", "sources/file/VFile.cpp", 42)("Could not open file!")(-1);
///
/// The text form, which `what()` and `process()` compose, is
///
///     sources/file/VFile.cpp(42): ERROR
///         in function 'VFile::open':
///         Could not open file!
///         os_error(2): No such file or directory
///
/// with "WARNING" for "ERROR" when `do_warn()` was called. Without a file or with line 0 it starts
/// directly with the message and has no label; without a function the second line is missing;
/// the last line stands there only for a system code above 0.
///
/// Ids: -3 file system, -4 file format, -5 type conversion, -6 stack index, -9 handle,
/// -10 compression stream, -11 cancelled, -15 a bad argument; -1 where nothing else is said.
///
/// A thrown error says nothing by itself. It reaches the last-error record when somebody calls
/// `what()` or `process()`, and at its destruction when `do_process()` or `do_warn()` was called.
/// Threads share that record: reports made at the same time overwrite each other, in some order and whole.
/// The destructor never throws. A copy carries the flags along: copies of an error that has
/// `do_warn()` set deliver the warning once each.
class VELA_API VelaError : public std::exception
{
public:
    /// Without function, file and line.
    VelaError();

    /// `func` and `file` are not copied and have to outlive the error; both may be null.
    /// `line` 0 means that there is no source place.
    VelaError(const char* func, const char* file, int line);

    /// The same with a message, taken as it stands and of any length.
    VelaError(const std::string& msg, const char* func, const char* file, int line);

    VelaError(const VelaError& other);
    VelaError& operator=(const VelaError& other);

    /// Delivers the warning when `do_warn()` was called, else calls `process()` when `do_process()` was.
    ~VelaError() override;

    /// The report, as in the description of the class. Also makes it the last error.
    /// The pointer is valid until the next `process()` or `what()` anywhere in the process, and at most until the
    /// calling thread ends. Where no memory is
    /// left for the report, this is the bare message, and the last error stays as it was.
    const char* what() const noexcept override;

    /// A copy on the heap, owned by the caller, that keeps `file` and `func` in storage of its own
    /// and so outlives a library that is unloaded. A null `file` or `func` becomes an empty text.
    virtual VelaError* clone() const;

    /// Replaces the message by `format` with its arguments, as `vsnprintf` forms it, cut to 4095 characters.
    /// A null `format` gives an empty message.
    VelaError& operator()(const char* format, ...) VELA_PRINTF_FORMAT(2, 3);

    /// Sets the id, which is -1 at first.
    VelaError& operator()(int new_id);

    /// Delivers a warning when this object is destroyed.
    VelaError& do_warn();

    /// Calls `process()` when this object is destroyed.
    VelaError& do_process();

    /// Stores the last system error code of the calling thread and the system's text for it,
    /// "Unknown system error." where the system has none.
    VelaError& do_oserr();

    /// Composes the report, hands it with a line break to the debug sink, makes id and report the
    /// last error, and returns the id.
    int process() const;

    /// Hands `what()` with function, file and line to the warning sink, which prints it to standard error.
    void do_warn_now() const;

    const char* get_file() const { return file; }
    const char* get_func() const { return func; }
    int get_line() const { return line; }
    int get_id() const { return id; }
    const std::string& get_msg() const { return msg; }
    const std::string& get_oserr() const { return oserr; }
    int get_oserr_id() const { return oserr_id; }

    /// The id.
    operator int() const { return id; }

private:
    void compose(std::string& report) const;
    void announce(std::string&& report) const;
    void copy_place(const VelaError& other);

    const char* file;
    const char* func;
    std::int32_t line;
    std::int32_t id = -1;
    std::int32_t oserr_id = 0;
    std::string msg;
    std::string oserr;
    bool warn = false;
    bool process_on_destroy = false;
    std::uint32_t thread_id;
    std::string file_store;
    std::string func_store;
};

extern "C" {

/// Throws a `VelaError` of `func`, `file` and `line` with id -1.
/// `msg` is a format without arguments: "%%" becomes "%", any other directive stays as it stands.
/// The text is cut to 4095 characters. A null `msg` gives an empty one.
[[noreturn]] VELA_API void vela_err(const char* msg, const char* func, const char* file, int line);

/// Builds the same error and delivers it as a warning.
VELA_API void vela_warn(const char* msg, const char* func, const char* file, int line);

/// As `vela_err`, with the fixed id 1. In spite of its name it reads no system error: this is wanted.
[[noreturn]] VELA_API void vela_lasterr(const char* msg, const char* func, const char* file, int line);

/// Id of the last error that was reported in this process, 0 before the first.
VELA_API int vela_get_last_error();

/// Report of the last error, without a line break at its end. Valid until the next report or the next call of this
/// function, and at most until the calling thread ends.
VELA_API const char* vela_get_last_error_string();

/// Reports what went wrong in an array conversion of a layer outside this library.
///
/// `flags` is a set of bits: 1 a value below the range of the target, 2 a value above it, 4 a value
/// that lost precision, 8 a rank that did not fit. The message is
/// "Runtime error during type conversion: Flags: " followed, without separators and in this order, by
/// "[rank]" (8), "[rng min]" (1), "[rng max]" (2), "[rounding]" (4). Place and id are those of `err`.
/// With `warn` the error is delivered as a warning, otherwise it is thrown. `unused_arg` is not used.
/// This works on a copy of `err`: what `do_warn()` was called on before delivers for each copy besides.
VELA_API void wrap_array_report_error(const VelaError& err, int flags, int unused_arg, bool warn);

/// Receives each report of `VelaError::process()` with a line break behind it, on the thread that reports.
/// It must neither throw nor report an error itself.
typedef void (*vela_debug_sink)(const char* text);

/// Sets the debug sink and returns the one before it. Null, the state at start, is silent.
VELA_API vela_debug_sink vela_set_debug_sink(vela_debug_sink sink);
}
