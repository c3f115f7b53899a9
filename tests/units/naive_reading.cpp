#include "units/naive_quantity.h"
#include "units/unit_rows.h"

#include <cmath>
#include <cstdio>

namespace vela_test {
namespace {

const std::string::size_type none = std::string::npos;
const std::string::size_type unbalanced = none - 1;

/// The rightmost of these characters outside parentheses, none, or unbalanced.
std::string::size_type rightmost(const std::string& text, const std::string& characters)
{
    int depth = 0;
    for (std::string::size_type i = text.size(); i-- > 0;)
    {
        if (text[i] == ')')
            ++depth;
        else if (text[i] == '(')
            --depth;
        else if (depth == 0 && characters.find(text[i]) != none)
            return i;
    }
    return depth == 0 ? none : unbalanced;
}

bool read_product(const std::string& text, std::string::size_type at, NaiveQuantity& out)
{
    NaiveQuantity left;
    NaiveQuantity right;
    if (!read_naively(text.substr(0, at), left) || !read_naively(text.substr(at + 1), right))
        return false;
    const bool divides = text[at] == '/';
    out.number = divides ? divided(left.number, right.number) : left.number * right.number;
    for (std::size_t i = 0; i < 9; ++i)
        out.exponents[i] =
            divides ? difference(left.exponents[i], right.exponents[i]) : sum(left.exponents[i], right.exponents[i]);
    return true;
}

bool read_power(const std::string& text, std::string::size_type at, NaiveQuantity& out)
{
    NaiveQuantity base;
    NaiveFraction power;
    if (!read_naively(text.substr(0, at), base) || !parse_naively(text.substr(at + 1), power))
        return false;
    out.number = std::pow(base.number, power.as_double());
    for (std::size_t i = 0; i < 9; ++i)
        out.exponents[i] = product(base.exponents[i], power);
    return true;
}

bool is_digit(char character)
{
    return character >= '0' && character <= '9';
}

/// How many characters the number has; false if the text is none.
bool measure_number(const std::string& text, std::string::size_type& length)
{
    bool has_point = text[0] == '.';
    bool has_exponent = false;
    for (length = 1; length < text.size(); ++length)
    {
        const char character = text[length];
        if (is_digit(character))
            continue;
        if (character == '.')
        {
            if (has_point)
                return false;
            has_point = true;
            continue;
        }
        const bool is_mark = character == 'e' || character == 'E';
        if (!is_mark || has_exponent || length + 1 == text.size())
            return true;
        const char next = text[length + 1];
        if (!is_digit(next) && next != '+' && next != '-')
            return false;
        has_exponent = true;
        ++length;
    }
    return true;
}

bool read_unit(const std::string& name, double number, NaiveQuantity& out)
{
    const auto take = [&out](const UnitRow& row, double factor)
    {
        out.number = row.number * factor;
        for (std::size_t i = 0; i < 9; ++i)
            out.exponents[i].numerator = row.exponents[i];
        return true;
    };
    if (const UnitRow* const row = row_named(name))
        return take(*row, number);
    for (const Prefix& prefix : prefixes)
        if (prefix.byte == name[0])
        {
            const UnitRow* const row = row_named(name.substr(1));
            if (row == nullptr || is_refused(prefix.exponent, row->name))
                return false;
            return take(*row, number * std::pow(10.0, prefix.exponent));
        }
    return false;
}

} // namespace

bool read_naively(const std::string& text, NaiveQuantity& out)
{
    out = NaiveQuantity();
    if (text.empty())
        return false;
    if (text.size() > 1 && text.front() == '(' && text.back() == ')')
        return read_naively(text.substr(1, text.size() - 2), out);
    const auto product_at = rightmost(text, "*/");
    if (product_at == unbalanced)
        return false;
    if (product_at != none)
        return read_product(text, product_at, out);
    const auto power_at = rightmost(text, "^");
    if (power_at == unbalanced)
        return false;
    if (power_at != none)
        return read_power(text, power_at, out);
    double number = 1;
    std::string::size_type at = 0;
    if (is_digit(text[0]) || std::string("+-.").find(text[0]) != none)
    {
        if (!measure_number(text, at) || std::sscanf(text.substr(0, at).c_str(), "%lf", &number) != 1)
            return false;
    }
    while (at < text.size() && text[at] == ' ')
        ++at;
    return read_unit(text.substr(at), number, out);
}

} // namespace vela_test
