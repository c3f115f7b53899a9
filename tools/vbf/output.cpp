#include "output.h"

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace {

std::string with_system_text(const std::string& message, int system_error)
{
    if (system_error == 0)
        return message;
    return message + " (" + std::generic_category().message(system_error) + ")";
}

} // namespace

Output::Output(std::string output_path, const std::string& input_path) : path(std::move(output_path))
{
    if (!path.empty())
        place.emplace(path, std::vector<std::string>{input_path});
}

Output::~Output()
{
    if (file == nullptr || path.empty())
        return;
    std::fclose(file);
}

std::FILE* Output::stream()
{
    if (file != nullptr)
        return file;
    const std::string written_path = place ? place->create() : path;
    errno = 0;
    file = path.empty() ? stdout : std::fopen(written_path.c_str(), "wb");
    const int system_error = errno;
    if (file == nullptr)
        throw std::runtime_error(with_system_text("Cannot create '" + path + "'", system_error));
    return file;
}

void Output::write(const void* data, std::size_t size_bytes)
{
    std::FILE* const target = stream();
    errno = 0;
    if (std::fwrite(data, 1, size_bytes, target) != size_bytes)
        throw_failed_write(errno);
}

void Output::finish()
{
    std::FILE* const target = stream();
    errno = 0;
    if (std::fflush(target) != 0 || std::ferror(target) != 0)
        throw_failed_write(errno);
    if (path.empty())
        return;
    file = nullptr;
    const bool closed = std::fclose(target) == 0;
    const int system_error = errno;
    if (!closed)
        throw_failed_write(system_error);
    place->finish();
}

void Output::throw_failed_write(int system_error) const
{
    const std::string target = path.empty() ? "standard output" : "'" + path + "'";
    throw std::runtime_error(with_system_text("Cannot write to " + target, system_error));
}
