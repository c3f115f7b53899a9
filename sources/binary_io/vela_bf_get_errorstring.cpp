#include <VelaBinaryIO/VBFFile.h>

#include "sources/error/last_error.h"

#include <cstddef>
#include <cstring>

namespace {

const char* text_of(int id)
{
    switch (id)
    {
    case -11:
        return "Operation cancelled by caller";
    case -10:
        return "Error in vbf filter queue";
    case -9:
        return "Problem with vbf handle";
    case -8:
        return "Invalid string buffer supplied";
    case -6:
        return "Stack index error";
    case -5:
        return "Error during type conversion";
    case -4:
        return "Error in file format";
    case -3:
        return "Filesystem error";
    default:
        return "Error in vbf routine";
    }
}

constexpr std::size_t buffer_size = 2048;

/// Puts `text` behind the `length` characters of `buffer`, as far as there is room, and gives the new length.
std::size_t append(char* buffer, std::size_t length, const char* text)
{
    const std::size_t count = strnlen(text, buffer_size - 1 - length);
    std::memcpy(buffer + length, text, count);
    return length + count;
}

} // namespace

/// Takes no memory: no exception may leave through a C function.
const char* vela_bf_get_errorstring(int id)
{
    static char buffer[buffer_size];
    char report[buffer_size];
    std::size_t report_length = 0;
    const bool is_last = id < 0;
    if (is_last)
        id = Vela::detail::copy_last_error(report, buffer_size - 1, report_length);
    report[report_length] = '\0';
    std::size_t length = 0;
    if (id != 0)
    {
        length = append(buffer, length, "Error in vbf module: ");
        length = append(buffer, length, text_of(id));
        length = append(buffer, length, is_last ? "\n" : "");
        length = append(buffer, length, report);
    }
    buffer[length] = '\0';
    return buffer;
}
