#include "number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

namespace {

constexpr long long far_away = 1'000'000'000'000'000'000; // an exponent that no count of digits makes up for

long long read_exponent(std::string_view text)
{
    const bool negative = text.substr(0, 1) == "-";
    if (negative || text.substr(0, 1) == "+")
        text.remove_prefix(1);
    long long exponent = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), exponent).ec == std::errc::result_out_of_range)
        exponent = far_away;
    exponent = std::min(exponent, far_away);
    return negative ? -exponent : exponent;
}

/// Of a number without sign that is beyond the range: whether it is above it or too close to zero.
bool is_huge(std::string_view number)
{
    const std::size_t mark = number.find_first_of("eE");
    const std::string_view digits = number.substr(0, mark);
    const long long exponent = mark == std::string_view::npos ? 0 : read_exponent(number.substr(mark + 1));
    const auto point = static_cast<long long>(std::min(digits.find('.'), digits.size()));
    const auto first = static_cast<long long>(std::min(digits.find_first_of("123456789"), digits.size()));
    return exponent + point - first > 0;
}

} // namespace

bool read_number(std::string_view text, double& result)
{
    if (text.substr(0, 1) == "+") // which from_chars refuses
        text.remove_prefix(1);
    const std::from_chars_result read = std::from_chars(text.data(), text.data() + text.size(), result);
    if (read.ec == std::errc::invalid_argument)
        return false;
    if (read.ec == std::errc::result_out_of_range)
    {
        const bool negative = text.front() == '-';
        const double size = is_huge(text.substr(negative ? 1 : 0)) ? std::numeric_limits<double>::infinity() : 0;
        result = negative ? -size : size;
    }
    return true;
}

std::string fixed_text(double number, long long precision)
{
    // No double has more digits behind the point; zeros follow.
    constexpr long long most_digits = std::numeric_limits<double>::digits - std::numeric_limits<double>::min_exponent;
    constexpr std::size_t room = most_digits + std::numeric_limits<double>::max_exponent10 + 3; // "-", digits, "."
    std::array<char, room> buffer;
    const long long digits = precision < 0 ? 6 : precision;
    const std::to_chars_result end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::fixed,
                      static_cast<int>(std::min(digits, most_digits)));
    std::string text(buffer.data(), end.ptr);
    if (digits > most_digits && std::isfinite(number))
        text.append(static_cast<std::size_t>(digits - most_digits), '0');
    return text;
}

VELA_ABI_NAMESPACE_END
}
