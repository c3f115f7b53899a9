#include "units/naive_quantity.h"
#include "units/unit_rows.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace vela_test {
namespace {

/// The row that names the unit, or null.
const UnitRow* naming_row(const NaiveQuantity& quantity)
{
    for (const UnitRow& row : unit_rows)
    {
        NaiveQuantity unit;
        for (std::size_t i = 0; i < 9; ++i)
            unit.exponents[i].numerator = row.exponents[i];
        const std::string name = row.name;
        const bool is_skipped =
            (name == "t" && quantity.number < 1000) || (name == "g" && quantity.number > 1000) || name == "kg";
        if (same_dimension(unit, quantity) && !is_skipped)
            return &row;
    }
    return nullptr;
}

std::string composed(const NaiveQuantity& quantity, int flags)
{
    const char* const names[] = {"m", "kg", "s", "A", "K", "mol", "cd", "rad", "sr"};
    std::string above;
    std::string below;
    for (std::size_t i = 0; i < 9; ++i)
    {
        const NaiveFraction& exponent = quantity.exponents[i];
        if (exponent.numerator == 0)
            continue;
        std::string factor = names[i];
        const std::string size = std::to_string(std::abs(exponent.numerator));
        if (exponent.denominator != 1)
            factor += "^(" + size + "/" + std::to_string(exponent.denominator) + ")";
        else if (size != "1")
            factor += "^" + size;
        if ((exponent.numerator < 0) != (exponent.denominator < 0))
            below += "/" + factor;
        else
            above += (above.empty() ? "" : "*") + factor;
    }
    return (above.empty() && flags % 2 == 1 ? "1" : above) + below;
}

int decade(double number)
{
    return static_cast<int>(std::floor(std::log(std::fabs(number)) / std::log(10.0) + 0.0001));
}

std::string digits(double number, int count)
{
    std::vector<char> buffer(2000);
    std::snprintf(buffer.data(), buffer.size(), "%.*f", count, number);
    return buffer.data();
}

} // namespace

NaiveText print_naively(const NaiveQuantity& quantity, int precision, int flags)
{
    const UnitRow* const row = naming_row(quantity);
    const bool blank = flags % 2 == 1;
    bool use_prefix = (flags & 2) != 0 && row != nullptr;
    if (same_dimension(quantity, NaiveQuantity()))
        use_prefix = use_prefix && (flags & 4) != 0;
    NaiveText text;
    text.unit = row != nullptr ? row->name : composed(quantity, flags);
    if (quantity.number == 0)
    {
        text.number = "0.000";
        return text;
    }
    double mantissa = row != nullptr ? quantity.number / row->number : quantity.number;
    if (use_prefix && !(decade(mantissa) < 0 && 1 - decade(mantissa) <= (blank ? 2 : 1)))
    {
        const int exact = static_cast<int>(std::floor(decade(mantissa) / 3.0)) * 3;
        int exponent = exact;
        if (decade(mantissa) < row->least_prefix)
            exponent = row->least_prefix;
        else if (decade(mantissa) > row->greatest_prefix)
            exponent = row->greatest_prefix;
        const double scaled = mantissa / std::pow(10.0, exponent);
        if (exponent != 0 && std::fabs(scaled) < 1000 && std::fabs(scaled) >= 0.01)
        {
            mantissa = scaled;
            text.unit = printed_prefixes.at(exponent) + text.unit;
        }
    }
    const int shown = decade(mantissa);
    if (std::fabs(mantissa) >= 1000 || std::fabs(mantissa) < 0.01)
        text.number = digits(mantissa / std::pow(10.0, shown), precision - 1) + "e" + std::to_string(shown);
    else if (mantissa == 1.0)
        text.number = "1";
    else
        text.number = digits(mantissa, std::max(0, precision - shown - 1));
    return text;
}

} // namespace vela_test
