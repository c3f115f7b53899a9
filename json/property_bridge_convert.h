/// From a value to what a property holds.
#pragma once

#include <Json/Value.h>
#include <VelaBase/export.h>
#include <VelaProps/VPropstring.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

/// @throws std::bad_cast: `T` does not hold it
template <class T>
T convert_integer(std::int64_t integer)
{
    using Limits = std::numeric_limits<T>;
    if constexpr (std::is_unsigned_v<T>)
    {
        if (integer < 0 || static_cast<std::uint64_t>(integer) > Limits::max())
            throw_bad_cast();
    }
    else if constexpr (std::is_integral_v<T>)
    {
        if (integer < Limits::min() || integer > Limits::max())
            throw_bad_cast();
    }
    return static_cast<T>(integer);
}

/// @throws std::bad_cast: `T` is an integer that does not hold it, or it has a fraction
template <class T>
T convert_decimal(double decimal)
{
    static_assert(std::numeric_limits<float>::is_iec559, "what is too large for a decimal becomes infinity");
    if constexpr (std::is_integral_v<T>)
    {
        constexpr auto lowest = static_cast<double>(std::numeric_limits<T>::min());
        const double limit =
            std::ldexp(1.0, std::numeric_limits<T>::digits); // as a decimal, the largest may be rounded
        const bool is_held = decimal >= lowest && decimal < limit && std::trunc(decimal) == decimal;
        if (!is_held)
            throw_bad_cast();
    }
    return static_cast<T>(decimal);
}

/// @tparam T `bool`, `VPropstring` or a number
/// @throws std::bad_cast: the value is of a kind that does not become a `T`, or this one does not
template <class T>
T convert(const Value& value)
{
    if constexpr (std::is_same_v<T, bool>)
    {
        if (const bool* const boolean = value.if_boolean())
            return *boolean;
    }
    else if constexpr (std::is_same_v<T, VPropstring>)
    {
        if (const std::string* const text = value.if_string())
            return VPropstring(*text, VPropstring::enc_system);
    }
    else
    {
        if (const std::int64_t* const integer = value.if_integer())
            return convert_integer<T>(*integer);
        if (const double* const decimal = value.if_decimal())
            return convert_decimal<T>(*decimal);
    }
    throw_bad_cast();
}

}
VELA_ABI_NAMESPACE_END
}
