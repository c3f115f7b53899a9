#include "plain_value.h"

#include "ascii.h"
#include "number_text.h"
#include "prefix.h"
#include "unit_table.h"

namespace si {
VELA_ABI_NAMESPACE_BEGIN

namespace {

constexpr std::size_t malformed = std::string_view::npos;

bool is_sign(char c)
{
    return c == '+' || c == '-';
}

/// How many characters the number has that `text` begins with, or `malformed`.
std::size_t number_length(std::string_view text)
{
    bool has_point = text[0] == '.';
    bool has_exponent = false;
    for (std::size_t at = 1;;)
    {
        at = skip_digits(text, at);
        if (at == text.size())
            return at;
        if (text[at] == '.')
        {
            if (has_point)
                return malformed;
            has_point = true;
            ++at;
            continue;
        }
        const bool is_mark = text[at] == 'e' || text[at] == 'E';
        if (!is_mark || has_exponent || at + 1 == text.size())
            return at;
        if (!is_sign(text[at + 1]) && !is_digit(text[at + 1]))
            return malformed; // not a unit behind a number either: "1eV"
        has_exponent = true;
        at += 2;
    }
}

/// Cuts the number off the start of `text`; without one it is 1.
bool take_number(std::string_view& text, double& number)
{
    number = 1;
    if (text.empty() || (!is_digit(text[0]) && !is_sign(text[0]) && text[0] != '.'))
        return true;
    const std::size_t length = number_length(text);
    if (length == malformed || !read_number(text.substr(0, length), number))
        return false;
    text.remove_prefix(length);
    return true;
}

bool is_refused(int prefix_exponent, std::string_view name)
{
    return name == "kg" || (name == "g" && prefix_exponent >= 4) || (name == "t" && prefix_exponent < 2) ||
           (name == "s" && prefix_exponent >= 1);
}

} // namespace

bool parse_plain_value(std::string_view text, value& result)
{
    double number = 1;
    if (text.empty() || !take_number(text, number))
        return false;
    while (!text.empty() && text[0] == ' ')
        text.remove_prefix(1);
    double factor = 1;
    const unit* row = find_unit(text); // the unit without a name included
    if (row == nullptr)
    {
        const prefix prefix = find_prefix(text[0]);
        text.remove_prefix(1);
        if (prefix.exponent == 0 || is_refused(prefix.exponent, text))
            return false;
        row = find_unit(text);
        if (row == nullptr)
            return false;
        factor = prefix.factor;
    }
    result = row->one();
    result *= number;
    result *= factor;
    return true;
}

VELA_ABI_NAMESPACE_END
}
