#include "open_failure.h"

#include "file_name.h"

#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFFile.h>

std::optional<std::string> open_failure(const std::string& path)
{
    const VPropstring name = file_name(path);
    try
    {
        const VBFFile file(name, VFile::read_mode);
    }
    catch (const VelaError& error)
    {
        return error.get_msg();
    }
    catch (const std::exception& error) // a description that a stack cannot have
    {
        return error.what();
    }
    return std::nullopt;
}
