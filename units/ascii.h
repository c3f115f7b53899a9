/// Character classes of the text forms, whatever the locale and the sign of char.
#pragma once

#include <VelaBase/export.h>

#include <cstddef>
#include <string_view>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

constexpr bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

/// The position of the first character from `from` on that is no digit.
constexpr std::size_t skip_digits(std::string_view text, std::size_t from)
{
    while (from < text.size() && is_digit(text[from]))
        ++from;
    return from;
}

VELA_ABI_NAMESPACE_END
}
