/// The failure to take a value from a property, or to store one into it.
#pragma once

#include <VelaBase/export.h>
#include <VelaBase/vela_dt.h>

#include <stdexcept>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

/// "Property has 32 bit signed integer type" and the like. Callers of the library catch it as `std::invalid_argument`.
class WrongTypeError : public std::invalid_argument
{
public:
    /// @param type_id the type of the property
    explicit WrongTypeError(vela_dt type_id);
};

VELA_ABI_NAMESPACE_END
}
