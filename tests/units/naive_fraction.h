/// Fractions in 64 bits, cut to 32 after each operation: a plain second opinion on si::fraction.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace vela_test {

/// The 32 lowest bits, as a number with a sign.
inline std::int64_t low_32_bits(std::uint64_t number)
{
    const std::uint64_t low = number % 4294967296u;
    return low < 2147483648u ? static_cast<std::int64_t>(low) : static_cast<std::int64_t>(low) - 4294967296;
}

/// a/b, also by zero, which a sanitizer would stop.
inline double divided(double a, double b)
{
    if (b != 0)
        return a / b;
    const double infinite = std::numeric_limits<double>::infinity();
    if (a == 0 || std::isnan(a) || std::isnan(b))
        return std::numeric_limits<double>::quiet_NaN();
    return std::signbit(a) == std::signbit(b) ? infinite : -infinite;
}

struct NaiveFraction
{
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;

    bool is_zero_over_one() const { return numerator == 0 && denominator == 1; }
    double as_double() const { return divided(static_cast<double>(numerator), static_cast<double>(denominator)); }
    std::string text() const { return std::to_string(numerator) + "/" + std::to_string(denominator); }
};

inline NaiveFraction reduced(NaiveFraction given)
{
    if (given.numerator == 0)
        return {0, 1};
    std::int64_t first = given.numerator;
    std::int64_t next = given.denominator;
    while (next != 0)
    {
        const std::int64_t rest = first % next;
        first = next;
        next = rest;
    }
    return {low_32_bits(static_cast<std::uint64_t>(given.numerator / first)),
            low_32_bits(static_cast<std::uint64_t>(given.denominator / first))};
}

inline std::uint64_t times(std::int64_t left, std::int64_t right)
{
    return static_cast<std::uint64_t>(left) * static_cast<std::uint64_t>(right);
}

inline NaiveFraction of_32_bits(std::uint64_t numerator, std::uint64_t denominator)
{
    return reduced({low_32_bits(numerator), low_32_bits(denominator)});
}

inline NaiveFraction product(const NaiveFraction& a, const NaiveFraction& b)
{
    return of_32_bits(times(a.numerator, b.numerator), times(a.denominator, b.denominator));
}

inline NaiveFraction quotient(const NaiveFraction& a, const NaiveFraction& b)
{
    return of_32_bits(times(a.numerator, b.denominator), times(a.denominator, b.numerator));
}

inline NaiveFraction sum(const NaiveFraction& a, const NaiveFraction& b)
{
    return of_32_bits(times(b.numerator, a.denominator) + times(b.denominator, a.numerator),
                      times(b.denominator, a.denominator));
}

inline NaiveFraction difference(const NaiveFraction& a, const NaiveFraction& b)
{
    return of_32_bits(times(a.numerator, b.denominator) - times(a.denominator, b.numerator),
                      times(b.denominator, a.denominator));
}

/// Digits from `at` on, which moves behind them; none are 0.
inline std::int64_t digits_at(const std::string& text, std::string::size_type& at)
{
    std::uint64_t number = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at)
        number = number * 10 + static_cast<std::uint64_t>(text[at] - '0');
    return low_32_bits(number);
}

/// "(-1/2)" and its like.
inline bool parse_naively(const std::string& text, NaiveFraction& out)
{
    std::string::size_type at = 0;
    if (!text.empty() && text.front() == '(')
    {
        if (text.back() != ')')
            return false;
        at = 1;
    }
    const bool negative = at < text.size() && text[at] == '-';
    at += negative ? 1 : 0;
    const std::int64_t digits = digits_at(text, at);
    out.numerator = negative ? low_32_bits(static_cast<std::uint64_t>(-digits)) : digits;
    out.denominator = 1;
    if (at == text.size())
        return true;
    if (text[at] != '/')
        return false;
    ++at;
    out.denominator = digits_at(text, at);
    return at == text.size() || (text[at] == ')' && at + 1 == text.size());
}

} // namespace vela_test
