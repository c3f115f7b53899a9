#include <si/value.h>

#include "quotient.h"
#include "value_text.h"

#include <cmath>
#include <limits>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

namespace {

bool nearly_equal(double left, double right)
{
    constexpr double tolerance = 1e-9;
    if (left == 0 || right == 0)
        return left == right;
    const double difference = std::fabs(left - right);
    return difference / std::fabs(left) < tolerance && difference / std::fabs(right) < tolerance;
}

} // namespace

value::value() : valid_(true), number_(1) {}

value::value(double number) : valid_(true), number_(number) {}

value::value(const std::string& text) : value()
{
    *this = text;
}

value::value(const char* text) : value()
{
    *this = text;
}

value::value(double number, const std::array<fraction, dimension_count>& exponents)
    : valid_(true), exponents_(exponents), number_(number)
{
}

value::value(const value& other) = default;

value::~value() = default;

value& value::operator=(const value& other) = default;

value& value::operator=(double number)
{
    clear();
    number_ = number;
    return *this;
}

value& value::operator=(const std::string& text)
{
    if (!parse_value(text, *this))
        invalidate();
    return *this;
}

value& value::operator=(const char* text)
{
    if (text == nullptr || !parse_value(text, *this))
        invalidate();
    return *this;
}

void value::clear()
{
    valid_ = true;
    exponents_.fill(fraction());
    number_ = 1;
}

void value::invalidate()
{
    clear();
    valid_ = false;
}

bool value::set_value(const std::string& text, double factor)
{
    *this = text;
    *this *= factor;
    return is_valid();
}

// `other` may be this value: each pair of exponents is read before it is written, and so are the numbers.

value& value::operator*=(const value& other)
{
    if (!other.valid_)
    {
        invalidate();
        return *this;
    }
    for (std::size_t i = 0; i < dimension_count; ++i)
        exponents_[i] += other.exponents_[i];
    number_ *= other.number_;
    return *this;
}

value& value::operator/=(const value& other)
{
    if (!other.valid_)
    {
        invalidate();
        return *this;
    }
    for (std::size_t i = 0; i < dimension_count; ++i)
        exponents_[i] -= other.exponents_[i];
    number_ = quotient(number_, other.number_);
    return *this;
}

value& value::operator+=(const value& other)
{
    if (is_compatible(other))
        number_ += other.number_;
    else
        invalidate();
    return *this;
}

value& value::operator-=(const value& other)
{
    if (is_compatible(other))
        number_ -= other.number_;
    else
        invalidate();
    return *this;
}

value& value::operator*=(double factor)
{
    number_ *= factor;
    return *this;
}

value& value::operator/=(double divisor)
{
    number_ = quotient(number_, divisor);
    return *this;
}

value& value::operator^=(const fraction& power)
{
    const fraction own = power; // it may be one of the exponents
    for (fraction& exponent : exponents_)
        exponent *= own;
    number_ = std::pow(number_, quotient(own.numerator(), own.denominator()));
    return *this;
}

bool value::is_dimensionless() const
{
    const std::array<fraction, dimension_count> none;
    return valid_ && exponents_ == none;
}

bool value::is_compatible(const value& other) const
{
    return valid_ && other.valid_ && exponents_ == other.exponents_;
}

bool value::equals(const value& other) const
{
    return is_compatible(other) && nearly_equal(number_, other.number_);
}

value::operator double() const
{
    return is_dimensionless() ? number_ : std::numeric_limits<double>::quiet_NaN();
}

double value::in(const std::string& unit) const
{
    return static_cast<double>(*this / value(unit));
}

VELA_ABI_NAMESPACE_END
}
