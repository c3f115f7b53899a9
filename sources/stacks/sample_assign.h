/// One sample from one type to another.
#pragma once

#include <complex>
#include <cstdint>
#include <type_traits>

namespace Vela::detail {

// The same conversions as those of `vela_dt_convert`.
namespace sample_assign {
#include "sources/binary_io/types/convert_value.h"
}

template <class T>
constexpr bool is_complex_sample = false;
template <class T>
inline constexpr bool is_complex_sample<std::complex<T>> = true;

/// Scalars by the rules of `vela_dt_convert`. A scalar becomes a real part, with an imaginary part of 0; parts of a
/// complex sample go each on its own; to a scalar the imaginary part is dropped, where `vela_dt_convert` refuses.
template <class To, class From>
To assign(const From& from)
{
    if constexpr (is_complex_sample<To>)
    {
        using Part = typename To::value_type;
        if constexpr (is_complex_sample<From>)
            return To(assign<Part>(from.real()), assign<Part>(from.imag()));
        else
            return To(assign<Part>(from), Part(0));
    }
    else if constexpr (is_complex_sample<From>)
        return assign<To>(from.real());
    else
        return sample_assign::convert_value<To>(from);
}

} // namespace Vela::detail
