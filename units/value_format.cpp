#include <si/value.h>

#include "number_text.h"
#include "prefix.h"
#include "unit_table.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

namespace {

/// The decimal exponent of the first digit, for numbers just below a power of ten that of the power. 0 where there is
/// none: for zero, infinities and NaN.
int decade(double number)
{
    if (number == 0 || !std::isfinite(number))
        return 0;
    return static_cast<int>(std::floor(std::log(std::fabs(number)) / std::log(10.0) + 0.0001));
}

double over_power_of_ten(double number, int exponent)
{
    if (exponent < -300) // where powers of ten lose their digits, and at last become 0
        return number * 1e300 / std::pow(10.0, exponent + 300);
    return number / std::pow(10.0, exponent);
}

/// Too many digits before or behind the point.
bool is_unwieldy(double number)
{
    return std::fabs(number) >= 1000 || std::fabs(number) < 0.01;
}

/// The first row of this dimension. A mass is taken in g, above 1000 kg in t, and never in kg, which has no prefix.
const unit* find_named_unit(const value& quantity)
{
    const double number = quantity.value_in_baseunits();
    const auto is_skipped = [number](const std::string& name)
    { return name == "kg" || (name == "t" && number < 1000) || (name == "g" && number > 1000); };
    const unit* row = find_compatible_unit(quantity, 0);
    while (row != nullptr && is_skipped(row->name()))
        row = find_compatible_unit(quantity, static_cast<std::size_t>(row - unit_table().data()) + 1);
    return row;
}

/// A base unit with its power, whose numerator is positive.
void append_power(std::string& text, const std::string& name, std::int64_t numerator, int denominator)
{
    text += name;
    if (numerator == 1 && denominator == 1)
        return;
    text += denominator == 1 ? "^" : "^(";
    text += std::to_string(numerator);
    if (denominator != 1)
        text.append("/").append(std::to_string(denominator)).append(")");
}

/// The dimension in base units, as "m*kg/s^2".
///
/// The sign of an exponent is that of its numerator, and the denominator is printed as it stands, so 1/-2 gives
/// "m^(1/-2)": equality sees the sign of a denominator, and what differs should not print alike. Such a text cannot be
/// read back.
std::string composed_unit(const value& quantity, int flags)
{
    std::string numerators;
    std::string denominators;
    for (std::size_t i = 0; i < value::dimension_count; ++i)
    {
        const fraction& exponent = quantity.exponent(i);
        const std::int64_t numerator = exponent.numerator();
        if (numerator == 0)
            continue;
        std::string& text = numerator < 0 ? denominators : numerators;
        if (numerator < 0)
            text += '/';
        else if (!text.empty())
            text += '*';
        append_power(text, unit_table()[i].name(), std::abs(numerator), exponent.denominator());
    }
    if (numerators.empty() && (flags & value::with_blank) != 0)
        numerators = "1";
    return numerators + denominators;
}

/// Takes a prefix out of the mantissa and answers its exponent, 0 for none.
int take_prefix(double& mantissa, const unit& named, int flags)
{
    const int d = decade(mantissa);
    const int allowance = (flags & value::with_blank) != 0 ? 2 : 1;
    if (d < 0 && 1 - d <= allowance)
        return 0; // small fractions are printed as they are
    const int nearest = static_cast<int>(std::floor(d / 3.0)) * 3;
    const int exponent = d < named.smallest_prefix()  ? named.smallest_prefix()
                         : d > named.largest_prefix() ? named.largest_prefix()
                                                      : nearest;
    const double scaled = over_power_of_ten(mantissa, exponent);
    if (exponent == 0 || is_unwieldy(scaled))
        return 0;
    mantissa = scaled;
    return exponent;
}

/// A number of digits, a mantissa times ten to the `shift`.
std::string text_with_exponent(double mantissa, int precision, int shift = 0)
{
    const int d = decade(mantissa);
    return fixed_text(over_power_of_ten(mantissa, d), precision - 1LL) + "e" + std::to_string(d + shift);
}

std::string number_text(double mantissa, int precision)
{
    const int d = decade(mantissa);
    const long long digits = precision;
    if (is_unwieldy(mantissa))
        return text_with_exponent(mantissa, precision);
    if (mantissa == 1.0)
        return "1";
    return fixed_text(mantissa, std::max(0LL, digits - d - 1));
}

/// How many of `named` a finite number is, where `double` cannot hold that: grams and barns are small.
std::string text_beyond_double(double number, const unit& named, int precision)
{
    constexpr int shift = 100;
    return text_with_exponent(number / 1e100 / named.value_in_baseunits(), precision, shift);
}

bool wants_prefix(const value& quantity, int flags)
{
    const bool is_allowed = !quantity.is_dimensionless() || (flags & value::with_dimensionless_prefix) != 0;
    return is_allowed && (flags & value::with_prefix) != 0;
}

} // namespace

void value::format(std::string& number, std::string& unit, int precision, int flags) const
{
    double mantissa = number_;
    std::string unit_text;
    const si::unit* const named = find_named_unit(*this);
    if (named == nullptr)
        unit_text = composed_unit(*this, flags);
    else
    {
        unit_text = named->name();
        mantissa /= named->value_in_baseunits();
    }
    if (number_ == 0)
    {
        number = fixed_text(0, 3);
        unit = std::move(unit_text);
        return;
    }
    if (std::isinf(mantissa) && std::isfinite(number_)) // and no prefix reaches it
    {
        number = text_beyond_double(number_, *named, precision);
        unit = std::move(unit_text);
        return;
    }
    if (named != nullptr && wants_prefix(*this, flags))
        if (const int exponent = take_prefix(mantissa, *named, flags); exponent != 0)
            unit_text.insert(unit_text.begin(), prefix_byte(exponent));
    number = number_text(mantissa, precision);
    unit = std::move(unit_text);
}

std::string value::format(int precision, int flags) const
{
    std::string text;
    std::string unit;
    format(text, unit, precision, flags);
    if ((flags & with_blank) != 0)
        text += ' ';
    return text += unit;
}

VELA_ABI_NAMESPACE_END
}
