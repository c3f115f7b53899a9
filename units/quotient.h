/// Division as IEEE 754 defines it, by zero too, where C++ leaves it undefined.
#pragma once

#include <VelaBase/export.h>

#include <cmath>
#include <limits>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

inline double quotient(double dividend, double divisor)
{
    if (divisor != 0)
        return dividend / divisor;
    if (dividend == 0 || std::isnan(dividend))
        return std::numeric_limits<double>::quiet_NaN();
    const bool negative = std::signbit(dividend) != std::signbit(divisor);
    return negative ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
}

VELA_ABI_NAMESPACE_END
}
