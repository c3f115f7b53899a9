#include "file_name.h"

#include <stdexcept>

VPropstring file_name(const std::string& path)
{
    // The library drops bytes that are no UTF-8, and the name of another file could be left.
    VPropstring name(path, VPropstring::enc_utf8);
    if (name.to(VPropstring::enc_utf8) != path)
        throw std::runtime_error("The file name is no UTF-8: '" + path + "'");
    return name;
}
