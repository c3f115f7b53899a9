#include <VelaBinaryIO/VBFFile.h>

#include <VelaBase/VelaError.h>

#include <algorithm>
#include <cstring>
#include <string>

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

std::string report_of(int id)
{
    std::string tail;
    if (id < 0)
    {
        tail = std::string("\n") + vela_get_last_error_string();
        id = vela_get_last_error();
    }
    return id == 0 ? std::string() : std::string("Error in vbf module: ") + text_of(id) + tail;
}

} // namespace

const char* vela_bf_get_errorstring(int id)
{
    static char buffer[2048];
    const std::string report = report_of(id);
    const std::size_t length = std::min(report.size(), sizeof buffer - 1);
    std::memcpy(buffer, report.data(), length);
    buffer[length] = '\0';
    return buffer;
}
