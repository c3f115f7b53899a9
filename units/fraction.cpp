#include <si/fraction.h>

#include "ascii.h"
#include "fraction_text.h"

#include <cstdint>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

namespace {

/// The low 32 bits: what every result is brought back to.
int wrapped(std::int64_t number)
{
    return static_cast<int>(static_cast<std::uint32_t>(number));
}

/// Unlike the sum of two products, a product of two `int` always fits.
std::int64_t product(int left, int right)
{
    return std::int64_t{left} * right;
}

/// The sum modulo 2^64, whose low 32 bits are those of the true sum.
std::int64_t sum(std::int64_t left, std::int64_t right)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(left) + static_cast<std::uint64_t>(right));
}

/// The digits as a number modulo 2^32; 0 for none.
int read_digits(std::string_view digits)
{
    std::uint32_t number = 0;
    for (const char digit : digits)
        number = number * 10 + static_cast<std::uint32_t>(digit - '0');
    return static_cast<int>(number);
}

/// What `fraction::reduce` does.
void reduce_pair(int& numerator, int& denominator)
{
    if (numerator == 0)
        denominator = 1;
    if (denominator == 1) // the loop below would find 1
        return;
    // In 64 bits INT_MIN has a quotient and a remainder by -1.
    std::int64_t divisor = numerator;
    std::int64_t rest = denominator;
    while (rest != 0)
    {
        const std::int64_t next = divisor % rest;
        divisor = rest;
        rest = next;
    }
    numerator = wrapped(numerator / divisor);
    denominator = wrapped(denominator / divisor);
}

} // namespace

fraction::fraction(int n, int d) : numerator_(n), denominator_(d)
{
    reduce_pair(numerator_, denominator_);
}

fraction fraction::unreduced(int n, int d)
{
    fraction result;
    result.numerator_ = n;
    result.denominator_ = d;
    return result;
}

fraction& fraction::operator*=(const fraction& other)
{
    denominator_ = wrapped(product(denominator_, other.denominator_));
    numerator_ = wrapped(product(numerator_, other.numerator_));
    reduce_pair(numerator_, denominator_);
    return *this;
}

// `other` may be this fraction: the rest read all that they need before they write.

fraction& fraction::operator/=(const fraction& other)
{
    const std::int64_t n = product(numerator_, other.denominator_);
    denominator_ = wrapped(product(denominator_, other.numerator_));
    numerator_ = wrapped(n);
    reduce_pair(numerator_, denominator_);
    return *this;
}

fraction& fraction::operator+=(const fraction& other)
{
    const std::int64_t n = sum(product(other.numerator_, denominator_), product(numerator_, other.denominator_));
    denominator_ = wrapped(product(other.denominator_, denominator_));
    numerator_ = wrapped(n);
    reduce_pair(numerator_, denominator_);
    return *this;
}

fraction& fraction::operator-=(const fraction& other)
{
    const std::int64_t n = sum(product(numerator_, other.denominator_), -product(denominator_, other.numerator_));
    denominator_ = wrapped(product(other.denominator_, denominator_));
    numerator_ = wrapped(n);
    reduce_pair(numerator_, denominator_);
    return *this;
}

void fraction::reduce()
{
    reduce_pair(numerator_, denominator_);
}

bool fraction::parse(const std::string& text)
{
    return parse_fraction(text, *this);
}

bool parse_fraction(std::string_view text, fraction& result)
{
    std::size_t at = 0;
    const auto is_at = [&](char c) { return at < text.size() && text[at] == c; };
    const auto take_digits = [&]
    {
        const std::size_t from = at;
        at = skip_digits(text, at);
        return read_digits(text.substr(from, at - from));
    };

    if (is_at('('))
    {
        if (text.back() != ')')
            return false;
        ++at;
    }
    const bool negative = is_at('-');
    if (negative)
        ++at;
    const int digits = take_digits();
    const int numerator = negative ? wrapped(-std::int64_t{digits}) : digits;
    result = fraction(numerator);
    if (at == text.size())
        return true;
    if (!is_at('/'))
        return false;
    ++at;
    result = fraction::unreduced(numerator, take_digits());
    return at == text.size() || (is_at(')') && at + 1 == text.size());
}

VELA_ABI_NAMESPACE_END
}
