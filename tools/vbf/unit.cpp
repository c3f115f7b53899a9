#include "unit.h"

#include "output.h"
#include "text.h"

#include <si/value.h>

#include <nlohmann/json.hpp>

#include <array>
#include <charconv>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace {

constexpr std::array<const char*, si::value::dimension_count> base_units = {"m",   "kg", "s",   "A", "K",
                                                                            "mol", "cd", "rad", "sr"};
constexpr int digits = 4; ///< of the printed forms
constexpr int count_flags = 8;

constexpr char micro = '\xB5';                      // the library's, in Latin-1
constexpr std::string_view micro_sign = "\xC2\xB5"; // U+00B5
constexpr std::string_view greek_mu = "\xCE\xBC";   // U+03BC, which keyboards have too

/// A text of the terminal as the library takes it.
std::string to_library(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const std::string_view two = std::string_view(text).substr(i, 2);
        const bool is_micro = two == micro_sign || two == greek_mu;
        result += is_micro ? micro : text[i];
        i += is_micro ? 1 : 0;
    }
    return result;
}

/// A text that the library printed, as UTF-8.
std::string from_library(const std::string& text)
{
    std::string result;
    for (const char c : text)
        c == micro ? result += micro_sign : result += c;
    return valid_utf8(result); // a prefix without a sign is the byte 0x80
}

si::value parse_quantity(const std::string& text)
{
    si::value quantity(to_library(text));
    if (!quantity.is_valid())
        throw std::runtime_error("'" + text + "' is no quantity");
    return quantity;
}

/// The number as short as it can be without loss.
std::string number_text(double number)
{
    std::array<char, 32> buffer = {};
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
}

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

std::string printed(const si::value& quantity, int flags)
{
    return from_library(quantity.format(digits, flags));
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
    result += line("plain", printed(quantity, 0));
    result += line("blank", printed(quantity, blank));
    result += line("prefix", printed(quantity, prefix));
    result += line("blank, prefix", printed(quantity, blank | prefix));
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
        formats.push_back(printed(quantity, flags));
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
