/// Numbers as text and back: what a stream in the classic locale does, whatever the locale is.
#pragma once

#include <complex>
#include <string>

namespace vela_prop {

/// Puts a number behind `text` as a stream with precision 20 prints it; "Inf", "-Inf" or "NaN" if it is not finite.
/// Numbers of one byte are printed as numbers. `T` is any of the numbers of the property tree, or `bool`.
template <class T>
void append_number(std::string& text, T number);

template <class T>
void append_number(std::string& text, const std::complex<T>& number)
{
    text += '(';
    append_number(text, number.real());
    text += ',';
    append_number(text, number.imag());
    text += ')';
}

/// Reads a number at the beginning of a text, as `>>` of a stream does, behind any white space.
///
/// What no stream reads: "Inf", "-Inf" and "NaN", right at the beginning. Numbers of one byte are read as `int`, and
/// lose their higher bits. Unsigned ones may be negative, and wrap around.
///
/// Gives the place behind it, or null where there is no number or it is out of range; `number` stays then.
template <class T>
const char* read_number(const char* text, const char* end, T& number);

namespace detail {

/// The place behind `character`, which may have white space in front; null where there is something else.
const char* read_character(const char* text, const char* end, char character);

}

template <class T>
const char* read_number(const char* text, const char* end, std::complex<T>& number)
{
    T real{};
    T imaginary{};
    const char* p = detail::read_character(text, end, '(');
    p = p ? read_number(p, end, real) : nullptr;
    p = p ? detail::read_character(p, end, ',') : nullptr;
    p = p ? read_number(p, end, imaginary) : nullptr;
    p = p ? detail::read_character(p, end, ')') : nullptr;
    if (p)
        number = {real, imaginary};
    return p;
}

}
