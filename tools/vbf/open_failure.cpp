#include "open_failure.h"

#include "scanned_file.h"

#include <VelaBase/VelaError.h>

std::optional<std::string> open_failure(const std::string& path)
{
    try
    {
        return ScannedFile(path).get_open_failure();
    }
    catch (const VelaError& error)
    {
        return error.get_msg();
    }
}
