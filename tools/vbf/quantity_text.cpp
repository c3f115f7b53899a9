#include "quantity_text.h"

#include "text.h"

#include <stdexcept>
#include <string_view>

namespace {

constexpr int digits = 4; ///< of the printed forms

constexpr char micro = '\xB5';                      // the library's, in Latin-1
constexpr std::string_view micro_sign = "\xC2\xB5"; // U+00B5
constexpr std::string_view greek_mu = "\xCE\xBC";   // U+03BC, which keyboards have too

/// A text of the terminal as the library takes it.
std::string to_library(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const std::string_view two = std::string_view(text).substr(i, 2);
        const bool is_micro = two == micro_sign || two == greek_mu;
        result += is_micro ? micro : text[i];
        i += is_micro ? 1 : 0;
    }
    return result;
}

/// A text that the library printed, as UTF-8.
std::string from_library(const std::string& text)
{
    std::string result;
    for (const char c : text)
        c == micro ? result += micro_sign : result += c;
    return valid_utf8(result); // a prefix without a sign is the byte 0x80
}

} // namespace

si::value parse_quantity(const std::string& text)
{
    si::value quantity(to_library(text));
    if (!quantity.is_valid())
        throw std::runtime_error("'" + text + "' is no quantity");
    return quantity;
}

std::string quantity_text(const si::value& quantity, int flags)
{
    return from_library(quantity.format(digits, flags));
}
