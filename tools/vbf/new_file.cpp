#include "new_file.h"

#include "failure.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <system_error>

namespace {

namespace fs = std::filesystem;

/// A file that is not there yet.
std::string named_by_links(fs::path path)
{
    constexpr int most_links = 40; // as many as the system follows
    std::error_code missing;
    for (int i = 0; i < most_links && fs::is_symlink(path, missing); ++i)
        path = path.parent_path() / fs::read_symlink(path, missing);
    return path.string();
}

std::string behind_links(const std::string& path)
{
    std::error_code missing;
    const fs::path found = fs::is_symlink(path, missing) ? fs::canonical(path, missing) : fs::path();
    if (!found.empty())
        return found.string();
    return fs::exists(fs::status(path, missing)) ? path : named_by_links(path);
}

/// Only regular files can give way to another one.
bool gives_way(const std::string& path)
{
    std::error_code ignored;
    const fs::file_type type = fs::status(path, ignored).type();
    return type == fs::file_type::regular || type == fs::file_type::not_found;
}

} // namespace

bool is_same_file(const std::string& one, const std::string& other)
{
    std::error_code one_is_missing;
    return fs::equivalent(one, other, one_is_missing);
}

NewFile::NewFile(const std::string& out_path, const std::vector<std::string>& inputs)
    : path(out_path), target(behind_links(out_path))
{
    for (const std::string& input : inputs)
    {
        if (is_same_file(path, input))
            throw UsageFailure("The output would overwrite the input.");
    }
    part_path = gives_way(target) ? target + "." + std::to_string(std::random_device()()) + ".part" : target;
}

NewFile::~NewFile()
{
    std::error_code ignored;
    if (unfinished)
        fs::remove(part_path, ignored);
}

const std::string& NewFile::create()
{
    if (part_path == target)
        return part_path;
    std::error_code ignored;
    const fs::file_status old = fs::status(target, ignored);
    if (fs::exists(old))
        open_and_close(target, "r+b"); // a file that must not be written is not replaced
    open_and_close(part_path, "wbx");
    unfinished = true;
    if (fs::exists(old))
        fs::permissions(part_path, old.permissions(), ignored);
    return part_path;
}

void NewFile::open_and_close(const std::string& name, const char* mode) const
{
    errno = 0;
    std::FILE* const file = std::fopen(name.c_str(), mode);
    if (file == nullptr)
        fail(errno);
    std::fclose(file);
}

void NewFile::finish()
{
    if (!unfinished)
        return;
    if (std::rename(part_path.c_str(), target.c_str()) != 0)
        fail(errno);
    unfinished = false;
}

void NewFile::fail(int system_error) const
{
    throw std::runtime_error("Cannot create '" + path + "' (" + std::generic_category().message(system_error) + ")");
}
