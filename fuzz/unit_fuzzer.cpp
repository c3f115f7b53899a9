// Any text is a quantity or none, whatever it is computed and printed with, and nothing throws. It is the same
// quantity that the plainest way of reading gives, and what is printed without blank and prefix reads back.

#include <si/value.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>

namespace {

void check(bool fact)
{
    if (!fact)
        __builtin_trap();
}

bool is_same_number(double left, double right)
{
    return left == right || (std::isnan(left) && std::isnan(right));
}

bool is_same(const si::value& left, const si::value& right)
{
    for (std::size_t i = 0; i < si::value::dimension_count; ++i)
        if (left.exponent(i) != right.exponent(i))
            return false;
    return left.is_valid() == right.is_valid() && is_same_number(left.value_in_baseunits(), right.value_in_baseunits());
}

enum class scan
{
    found,
    none,
    unbalanced,
};

/// The rightmost of `operators` outside parentheses.
scan find_operator(std::string_view text, std::string_view operators, std::size_t& position)
{
    int depth = 0;
    for (std::size_t i = text.size(); i-- > 0;)
    {
        depth += text[i] == ')' ? 1 : text[i] == '(' ? -1 : 0;
        position = i;
        if (depth == 0 && operators.find(text[i]) != operators.npos)
            return scan::found;
    }
    return depth == 0 ? scan::none : scan::unbalanced;
}

/// Reads by cutting, which recurses and looks at the text again for every cut.
bool read_plainly(std::string_view text, si::value& result)
{
    if (text.size() > 1 && text.front() == '(' && text.back() == ')')
        return read_plainly(text.substr(1, text.size() - 2), result);
    std::size_t at = 0;
    const scan product = find_operator(text, "*/", at);
    if (product == scan::unbalanced)
        return false;
    if (product == scan::found)
    {
        si::value right;
        if (!read_plainly(text.substr(0, at), result) || !read_plainly(text.substr(at + 1), right))
            return false;
        text[at] == '*' ? result *= right : result /= right;
        return true;
    }
    if (find_operator(text, "^", at) == scan::found)
    {
        si::fraction power;
        if (!read_plainly(text.substr(0, at), result) || !power.parse(std::string(text.substr(at + 1))))
            return false;
        result ^= power;
        return true;
    }
    result = std::string(text);
    return result.is_valid() && text.find_first_of("()") == text.npos;
}

void check_reading(const std::string& text, const si::value& quantity)
{
    si::value plain;
    const bool is_text = read_plainly(text, plain);
    check(is_text == quantity.is_valid());
    check(is_same(quantity, is_text ? plain : si::value("no unit")));
}

bool has_positive_denominators(const si::value& quantity)
{
    for (std::size_t i = 0; i < si::value::dimension_count; ++i)
        if (quantity.exponent(i).denominator() < 0)
            return false;
    return true;
}

void check_printing(const si::value& quantity, int precision)
{
    for (int flags = -1; flags < 9; ++flags)
    {
        std::string number;
        std::string unit;
        quantity.format(number, unit, precision, flags);
        check(!number.empty());
        check(quantity.format(precision, flags) == number + ((flags & 1) != 0 ? " " : "") + unit);
    }

    std::string number;
    std::string unit;
    quantity.format(number, unit, 17, 0);
    double printed = 0;
    char rest = 0;
    // The text of a number is one of the C library too.
    check(std::sscanf(number.c_str(), "%lf%c", &printed, &rest) == 1 || !std::isfinite(printed));
    if (!quantity.is_valid() || !std::isfinite(printed) || !has_positive_denominators(quantity))
        return;
    const si::value again(quantity.format(17, 0));
    check(again.is_compatible(quantity));
    if (unit.find('^') == unit.npos && std::fabs(quantity.value_in_baseunits()) > 1e-300)
        check(again == quantity);
}

void check_computing(const si::value& left, const si::value& right, const si::fraction& power)
{
    const bool are_valid = left.is_valid() && right.is_valid();
    const bool are_compatible = left.is_compatible(right);
    check((left * right).is_valid() == are_valid);
    check((left / right).is_valid() == are_valid);
    check((left + right).is_valid() == are_compatible);
    check((left - right).is_valid() == are_compatible);
    check(are_compatible || !(left == right));
    check((left != right) != (left == right));
    check((left ^ power).is_valid() == left.is_valid());
    si::value own = left;
    const si::value& self = own;
    own *= self;
    check(is_same(own, left * left));
    own ^= self.exponent(0);
    own -= self;
    own /= self;
    for (const si::value& result : {left * right, left / right, left + right, left ^ power, left / 0.0, own})
        check(!result.format(3, 3).empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 4096) // the plain reader recurses
        return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::size_t line = std::min(text.find('\n'), text.size());
    const std::string first = text.substr(0, line);
    const std::string second = text.substr(std::min(line + 1, text.size()));
    const si::value left(first);
    const si::value right(second);
    si::fraction power;
    power.parse(second);
    check_reading(first, left);
    check_reading(second, right);
    constexpr int precisions[] = {std::numeric_limits<int>::min(), -1, 0, 1, 4, 17, 400};
    const int precision = precisions[size % std::size(precisions)];
    check_printing(left, precision);
    check_printing(right, precision);
    check_computing(left, right, power);
    left.in(second);
    return 0;
}
