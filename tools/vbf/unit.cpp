#include "unit.h"

#include "output.h"
#include "quantity_text.h"
#include "text.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdint>
#include <stdexcept>

namespace {

constexpr std::array<const char*, si::value::dimension_count> base_units = {"m",   "kg", "s",   "A", "K",
                                                                            "mol", "cd", "rad", "sr"};
constexpr int count_flags = 8;

/// " m^2 kg s^-3"
std::string dimension_text(const si::value& quantity)
{
    std::string result;
    for (std::size_t i = 0; i < base_units.size(); ++i)
    {
        const std::string numerator = std::to_string(quantity.exponent(i).numerator());
        const std::string denominator = std::to_string(quantity.exponent(i).denominator());
        if (numerator == "0")
            continue;
        result += std::string(" ") + base_units[i];
        if (denominator != "1")
            result.append("^(").append(numerator).append("/").append(denominator).append(")");
        else if (numerator != "1")
            result += "^" + numerator;
    }
    return result;
}

/// One line "  label        value".
std::string line(const std::string& label, const std::string& value)
{
    constexpr std::size_t width = 15;
    return "  " + label + std::string(width - label.size(), ' ') + terminal_safe(value) + "\n";
}

std::string as_text(const UnitOptions& options, const si::value& quantity, const si::value& unit)
{
    constexpr int blank = si::value::with_blank;
    constexpr int prefix = si::value::with_prefix | si::value::with_dimensionless_prefix;
    const std::string number = number_text(quantity.value_in_baseunits());
    std::string result = terminal_safe(options.text) + "\n";
    result += line("base units", number + dimension_text(quantity));
    if (options.in)
        result += line("converted", number_text(quantity / unit) + " in " + *options.in);
    result += line("plain", quantity_text(quantity, 0));
    result += line("blank", quantity_text(quantity, blank));
    result += line("prefix", quantity_text(quantity, prefix));
    result += line("blank, prefix", quantity_text(quantity, blank | prefix));
    return result;
}

std::string as_json(const UnitOptions& options, const si::value& quantity, const si::value& unit)
{
    typedef nlohmann::ordered_json Json;
    Json result;
    result["text"] = valid_utf8(options.text);
    result["number"] = quantity.value_in_baseunits(); // JSON has no NaN and no infinity: both are written as null
    Json& exponents = result["exponents"] = Json::object();
    for (std::size_t i = 0; i < base_units.size(); ++i)
        if (const si::fraction& exponent = quantity.exponent(i); exponent != si::fraction())
            exponents[base_units[i]] = {exponent.numerator(), exponent.denominator()};
    if (options.in)
        result["in"] = {{"unit", valid_utf8(*options.in)}, {"number", static_cast<double>(quantity / unit)}};
    Json& formats = result["formats"] = Json::array();
    for (int flags = 0; flags < count_flags; ++flags)
        formats.push_back(quantity_text(quantity, flags));
    return result.dump(2) + "\n";
}

} // namespace

void print_unit(const UnitOptions& options)
{
    Output output("", "");
    const si::value quantity = parse_quantity(options.text);
    const si::value unit = options.in ? parse_quantity(*options.in) : quantity;
    if (!quantity.is_compatible(unit))
        throw std::runtime_error("'" + options.text + "' and '" + *options.in + "' differ in their dimensions");
    const std::string listing = options.json ? as_json(options, quantity, unit) : as_text(options, quantity, unit);
    output.write(listing.data(), listing.size());
    output.finish();
}
