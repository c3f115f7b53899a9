/// What the library needs of the operating system, as plain functions.
///
/// This folder alone includes operating-system headers, retries calls and may be made to fail in tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Vela::platform {

enum class Access
{
    read,
    read_write,
};

enum class Creation
{
    open_existing,
    create_or_truncate,
};

enum class Origin
{
    start,
    current,
    end,
};

/// A handle is the descriptor + 1, null when there is none.
void* handle_of_descriptor(int descriptor);
int descriptor_of_handle(void* handle);

/// Opens a regular file or block device, named in UTF-8, for exclusive use. Null on failure.
/// A file that exists is cut to nothing only after the lock is held.
void* open_exclusive(const std::string& path, Access access, Creation creation);

/// Opens a regular file or block device, named in UTF-8, to read beside whoever else has it open, locked or not.
/// Null on failure.
void* open_shared(const std::string& path);

/// One transfer: continues over short system calls and interruptions until done, end of file or failure. Gives the
/// bytes moved. The last system error is then that of the call that failed, and 0 where none did.
std::uint64_t read(void* handle, void* buffer, std::uint32_t size_bytes);
std::uint64_t write(void* handle, const void* buffer, std::uint32_t size_bytes);

/// Moves the file position and returns the new one, all bits set where the system refuses.
std::uint64_t move(void* handle, std::int64_t offset, Origin origin);

void close(void* handle);

/// Takes the memory or the disk space that a file of `size_bytes` needs, so that no later write to a mapping fails for
/// want of it. 0, or the system's error code.
int reserve(void* handle, std::uint64_t size_bytes);

/// Removes a file, named in UTF-8, but no directory.
bool remove_file(const std::string& path);

/// The calling thread's last system error code.
int last_error();
void clear_last_error();

/// The system's text for a code, without a line break and independent of the locale. Null for an unknown code.
const char* error_text(int code);

/// Hands a text to the debug sink, if one is set.
void debug_line(const char* text) noexcept;
typedef void (*DebugSink)(const char* text);
DebugSink set_debug_sink(DebugSink sink);

std::uint32_t thread_id();
std::uint32_t process_id();

/// A recursive mutex.
void* make_mutex();
void free_mutex(void* mutex);
void lock_mutex(void* mutex);
void unlock_mutex(void* mutex);

/// Number of the code page that narrow system texts are in.
unsigned code_page();

} // namespace Vela::platform
