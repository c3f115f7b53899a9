#include "open_file.h"

#include "file_name.h"

#include <VelaBase/VelaError.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string text_of(int system_error)
{
    return std::generic_category().message(system_error);
}

/// Why an open descriptor is not taken.
std::string refusal_of(int descriptor)
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0)
        return text_of(errno);
    if (S_ISDIR(status.st_mode))
        return text_of(EISDIR);
    if (!S_ISREG(status.st_mode) && !S_ISBLK(status.st_mode))
        return "it is no regular file";
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return "it is in use";
    return "";
}

/// A file that is to be made lacks its folder, or may not be made there.
std::string refusal_of_folder(const std::string& path)
{
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0 ? "" : text_of(errno);
}

/// The library does not say it. Empty where it opens now.
std::string reason(const std::string& path, VFile::mode mode)
{
    const int flags = mode == VFile::read_mode ? O_RDONLY : O_RDWR;
    const int descriptor = open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC);
    const int system_error = errno;
    if (descriptor < 0)
        return mode == VFile::write_mode && system_error == ENOENT ? refusal_of_folder(path) : text_of(system_error);
    std::string result = refusal_of(descriptor);
    close(descriptor);
    return result;
}

/// Leaves alone what goes wrong behind the opening.
void name_failure(const VelaError& error, const std::string& path, VFile::mode mode)
{
    const std::string& message = error.get_msg();
    const bool is_short_dbl = message == "Error reading .dbl file!"; // unless it could not be opened
    if (!is_short_dbl && message != "Could not open file!")
        return;
    const std::string why = reason(path, mode);
    if (is_short_dbl && why.empty())
        return;
    throw std::runtime_error("'" + path + "': Could not open file!" + (why.empty() ? "" : " (" + why + ")"));
}

} // namespace

VFile open_bytes(const std::string& path, VFile::mode mode)
{
    const VPropstring name = file_name(path);
    try
    {
        return VFile(name, mode); // never copied
    }
    catch (const VelaError& error)
    {
        name_failure(error, path, mode);
        throw;
    }
}

VBFFile open_vbf(const std::string& path, VFile::mode mode)
{
    const VPropstring name = file_name(path);
    try
    {
        return VBFFile(name, mode);
    }
    catch (const VelaError& error)
    {
        name_failure(error, path, mode);
        throw;
    }
}

bool is_dbl(const std::string& path)
{
    return std::string_view(path).ends_with(".dbl");
}
