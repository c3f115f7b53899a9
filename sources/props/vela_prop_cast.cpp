#include <VelaProps/vela_prop_cast.h>

#include "sources/props/value_types.h"

#include <complex>
#include <cstdint>
#include <type_traits>

namespace {

namespace bulk {
#include "sources/binary_io/types/convert_value.h"
}

template <class T>
constexpr bool is_complex = false;
template <class T>
constexpr bool is_complex<std::complex<T>> = true;

template <class To, class From>
constexpr bool is_castable = is_complex<To> || !is_complex<From>;

template <class To, class From>
To cast_real(From value)
{
    if constexpr (std::is_same_v<To, bool>)
        return value != From();
    else if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To>)
        return bulk::convert_value<To>(value);
    else
        return static_cast<To>(value);
}

template <class To, class From>
To cast_value(const From& value)
{
    if constexpr (!is_complex<To>)
        return cast_real<To>(value);
    else if constexpr (is_complex<From>)
        return To(cast_real<typename To::value_type>(value.real()), cast_real<typename To::value_type>(value.imag()));
    else
        return To(cast_real<typename To::value_type>(value), typename To::value_type());
}

template <class To, class From>
void write(const VProp& prop, void* out, bool is_array)
{
    if (!is_array)
    {
        *static_cast<To*>(out) = cast_value<To>(prop.get<From>());
        return;
    }
    auto& target = *static_cast<VProparray<To>*>(out);
    if ((prop.get_id() & vela_dt_array) == 0)
    {
        target.set_size(1, 1, VProparrayBase::absent, VProparrayBase::absent, VProparrayBase::set_reset);
        target[0] = cast_value<To>(prop.get<From>());
        return;
    }
    const auto& source = prop.get<VProparray<From>>();
    target.set_size(source.get_size(true), VProparrayBase::set_reset);
    for (std::size_t i = 0; i < source.size(); ++i)
        target[i] = cast_value<To, From>(source[i]);
}

/// There is no property of complex booleans, but a target may be one.
template <class Function>
bool with_target_type(vela_dt type, Function&& function)
{
    if (type != (vela_dt_logical | vela_dt_complex))
        return vela_prop::with_scalar_type(type, function);
    function(vela_prop::Type<std::complex<bool>>());
    return true;
}

}

void vela_prop_cast(const VProp& prop, void* out, int target)
{
    const vela_dt source = prop.get_id();
    const bool is_array = (target & vela_dt_array) != 0;
    if ((source & vela_dt_array) != 0 && !is_array)
        throw VelaError("vela_prop_cast", __FILE__, __LINE__)("Cannot cast from array to scalar!")(-1);
    bool done = false;
    with_target_type(target & ~vela_dt_array,
                     [&]<class To>(vela_prop::Type<To>)
                     {
                         vela_prop::with_scalar_type(source & ~vela_dt_array,
                                                     [&]<class From>(vela_prop::Type<From>)
                                                     {
                                                         if constexpr (is_castable<To, From>)
                                                         {
                                                             write<To, From>(prop, out, is_array);
                                                             done = true;
                                                         }
                                                     });
                     });
    if (!done)
        throw VelaError("vela_prop_cast", __FILE__, __LINE__)("Invalid cast!")(-1);
}
