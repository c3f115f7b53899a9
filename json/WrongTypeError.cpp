#include "json/WrongTypeError.h"

#include <string>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace {

const char* scalar_name(vela_dt id)
{
    switch (id)
    {
    case vela_dt_logical:
        return "boolean";
    case vela_dt_int8:
        return "8 bit signed integer";
    case vela_dt_uint8:
        return "8 bit unsigned integer";
    case vela_dt_int16:
        return "16 bit signed integer";
    case vela_dt_uint16:
        return "16 bit unsigned integer";
    case vela_dt_int32:
        return "32 bit signed integer";
    case vela_dt_uint32:
        return "32 bit unsigned integer";
    case vela_dt_int64:
        return "64 bit signed integer";
    case vela_dt_uint64:
        return "64 bit unsigned integer";
    case vela_dt_single:
    case vela_dt_double:
        return "decimal";
    case vela_dt_char:
        return "string";
    case vela_dt_struct:
        return "structure";
    default:
        return nullptr;
    }
}

std::string type_name(vela_dt id)
{
    if (id == (vela_dt_array | vela_dt_cell))
        return "array";
    const char* const name = scalar_name(id & ~vela_dt_array);
    if (name == nullptr)
        return "unsupported";
    return (id & vela_dt_array) == 0 ? std::string(name) : std::string(name) + " array";
}

}

WrongTypeError::WrongTypeError(vela_dt type_id) : std::invalid_argument("Property has " + type_name(type_id) + " type")
{
}

VELA_ABI_NAMESPACE_END
}
