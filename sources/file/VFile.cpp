#include <VelaFile/VFile.h>

#include <VelaBase/VelaError.h>

#include "sources/file/file_errors.h"
#include "sources/platform/platform.h"

#include <string>

namespace platform = Vela::platform;

namespace {

constexpr VFile::mode closed = static_cast<VFile::mode>(-1);

[[noreturn]] void throw_not_open(const char* function, int line)
{
    throw VelaError(function, __FILE__, line)("File not open!")(-1);
}

/// The path in UTF-8. Empty, which names no file, where it has no such form: what is left of the text after the
/// conversion dropped characters could name another file.
std::string system_path(const VPropstring& path)
{
    std::string narrow = path.to(VPropstring::enc_utf8);
    if (VPropstring(narrow, VPropstring::enc_utf8) != path)
        narrow.clear();
    return narrow;
}

} // namespace

void Vela::detail::throw_already_open(const char* function)
{
    throw VelaError(function, __FILE__, __LINE__)("File already open or attached!")(-1);
}

void Vela::detail::throw_read_failure(std::uint64_t size_bytes)
{
    throw VelaError("VFile::read", __FILE__, __LINE__)
        .do_oserr()("Failed reading %d bytes from file!", low_bits(size_bytes))(-3);
}

void Vela::detail::throw_file_too_short(std::uint64_t size_bytes)
{
    platform::clear_last_error();
    throw_read_failure(size_bytes);
}

VFile::VFile() = default;

VFile::VFile(const VPropstring& path, mode open_mode)
{
    open(path, open_mode);
}

VFile::~VFile()
{
    if (opened && handle != nullptr)
        platform::close(handle);
}

void VFile::open(const VPropstring& path, mode open_mode)
{
    if (handle != nullptr)
        Vela::detail::throw_already_open("VFile::open");
    if (open_mode != read_mode && open_mode != write_mode && open_mode != append_mode)
        throw VelaError("VFile::open", __FILE__, __LINE__)("Invalid file mode when opening file.")(-1);

    const auto access = open_mode == read_mode ? platform::Access::read : platform::Access::read_write;
    const auto creation =
        open_mode == write_mode ? platform::Creation::create_or_truncate : platform::Creation::open_existing;
    void* const new_handle = platform::open_exclusive(system_path(path), access, creation);
    if (new_handle == nullptr)
        throw VelaError("VFile::open", __FILE__, __LINE__)("Could not open file!");
    handle = new_handle;
    opened = true;
    current_mode = open_mode;
}

void VFile::close()
{
    if (handle == nullptr)
        return;
    if (!opened)
        throw VelaError("VFile::close", __FILE__, __LINE__)("File not opened with open(), cannot close.");
    platform::close(handle);
    handle = nullptr;
    current_mode = closed;
}

void VFile::attach(void*& new_handle, mode attach_mode)
{
    if (handle != nullptr)
        Vela::detail::throw_already_open("VFile::attach");
    handle = new_handle;
    current_mode = attach_mode;
    opened = false;
}

void* VFile::detach()
{
    void* const given_back = handle;
    handle = nullptr;
    current_mode = closed;
    return given_back;
}

std::uint64_t VFile::tell() const
{
    if (handle == nullptr)
        throw_not_open("VFile::tell", __LINE__);
    return platform::move(handle, 0, platform::Origin::current);
}

std::uint64_t VFile::seek(std::uint64_t pos)
{
    if (handle == nullptr)
        throw_not_open("VFile::seek", __LINE__);
    if (pos == all_ones)
        return platform::move(handle, 0, platform::Origin::end);
    // A position of 2^63 or above is negative for the system, which refuses it.
    return platform::move(handle, static_cast<std::int64_t>(pos), platform::Origin::start);
}

void VFile::read(void* buffer, std::uint64_t size_bytes)
{
    if (handle == nullptr)
        throw_not_open("VFile::read", __LINE__);
    if (platform::read(handle, buffer, static_cast<std::uint32_t>(size_bytes)) != size_bytes)
        Vela::detail::throw_read_failure(size_bytes);
}

void VFile::write(const void* buffer, std::uint64_t size_bytes)
{
    if (handle == nullptr)
        throw_not_open("VFile::write", __LINE__);
    if (platform::write(handle, buffer, static_cast<std::uint32_t>(size_bytes)) != size_bytes)
        throw VelaError("VFile::write", __FILE__, __LINE__)
            .do_oserr()("Failed writing %d bytes to file!", Vela::detail::low_bits(size_bytes))(-3);
}

void VFile::remove(const VPropstring& path)
{
    if (!platform::remove_file(system_path(path)))
        throw VelaError("VFile::remove", __FILE__, __LINE__).do_oserr()("Could not remove file.");
}
