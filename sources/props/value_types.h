/// All types that a `VProp` holds, to do something by the type of one.
#pragma once

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <complex>
#include <cstdint>
#include <utility>

namespace vela_prop {

template <class T>
struct Type
{
    using type = T;
};

/// Calls `function(Type<T>())` for the `T` whose id is `type`, of `Ts`; false where there is none.
template <class... Ts, class Function>
bool with_type_of(vela_dt type, Function&& function)
{
    return ((type == id<Ts> && (function(Type<Ts>()), true)) || ...);
}

/// The same for the ten numbers.
template <class Function>
bool with_number_type(vela_dt type, Function&& function)
{
    return with_type_of<double, int, unsigned char, char, unsigned short, short, unsigned int, float, std::uint64_t,
                        std::int64_t>(type, std::forward<Function>(function));
}

/// The same for all scalars of numbers: plain ones, `bool` and complex ones.
template <class Function>
bool with_scalar_type(vela_dt type, Function&& function)
{
    if ((type & vela_dt_complex) != 0)
        return with_number_type(type & ~vela_dt_complex, [&]<class T>(Type<T>) { function(Type<std::complex<T>>()); });
    return with_type_of<bool>(type, function) || with_number_type(type, function);
}

/// The same for all arrays.
template <class Function>
bool with_array_type(vela_dt type, Function&& function)
{
    if ((type & vela_dt_array) == 0)
        return false;
    const vela_dt element = type & ~vela_dt_array;
    const auto call = [&]<class T>(Type<T>) { function(Type<VProparray<T>>()); };
    return with_scalar_type(element, call) || with_type_of<VPropstring, VPropstruct>(element, call) ||
           with_type_of<VProparray<VProp>>(type, function);
}

} // namespace vela_prop
