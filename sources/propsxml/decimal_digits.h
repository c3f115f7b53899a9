/// The first 20 decimal digits of floating-point numbers.
#pragma once

#include <array>
#include <cstddef>

namespace vela_prop {

/// A number as 0.d1 d2 ... d20 * 10^(exponent + 1), rounded to the nearest.
struct DecimalDigits
{
    static constexpr std::size_t count = 20;
    /// `count` of '0' to '9', the first one not '0'; behind them room for copies of `count` characters from any of
    /// them.
    std::array<char, 2 * count> digits;
    int exponent; ///< of the first digit
};

/// The digits of a finite `number` above 0, as "%.19e" prints them. False, without a result, where 128 bits do not tell
/// how to round; that is where the digits behind come very close to one half.
bool find_digits(double number, DecimalDigits& result);

}
