#include "length_unit.h"

#include "quantity_text.h"

#include <array>
#include <stdexcept>
#include <string_view>

namespace {

struct Row
{
    std::string_view name;
    double factor;
};

constexpr double metres_per_inch = 0.0254;
constexpr double metres_per_parsec = 3.0856775814913673e16;

constexpr std::array<Row, 20> names_of_lengths = {{
    {"\xC3\x85", 1e-10},     // the letter with a ring
    {"\xE2\x84\xAB", 1e-10}, // the sign of the unit
    {"thou", metres_per_inch / 1000},
    {"li", metres_per_inch / 12},
    {"in", metres_per_inch},
    {"inch", metres_per_inch},
    {"ft", metres_per_inch * 12},
    {"yd", metres_per_inch * 36},
    {"mi", metres_per_inch * 63360},
    {"pt", metres_per_inch / 72},
    {"ua", 149597870700.0},
    {"ly", 9460730472580800.0},
    {"pc", metres_per_parsec},
    {"micron", 1e-6},
    {"microns", 1e-6},
    {"\\u00B5m", 1e-6},
    {"pixel", 0},
    {"pixels", 0},
    {"reference frame", 0},
    {"", 0},
}};

constexpr std::array<Row, 5> names_of_times = {{
    {"min", 60},
    {"h", 3600},
    {"d", 86400},
    {"sec", 1},
    {"", 0},
}};

constexpr std::array<Row, 24> prefixes = {{
    {"Y", 1e24},  {"Z", 1e21},        {"E", 1e18},        {"P", 1e15},    {"T", 1e12}, {"G", 1e9},   {"M", 1e6},
    {"k", 1e3},   {"h", 1e2},         {"da", 1e1},        {"", 1},        {"d", 1e-1}, {"c", 1e-2},  {"m", 1e-3},
    {"u", 1e-6},  {"\xC2\xB5", 1e-6}, {"\xCE\xBC", 1e-6}, {"\xB5", 1e-6}, {"n", 1e-9}, {"p", 1e-12}, {"f", 1e-15},
    {"a", 1e-18}, {"z", 1e-21},       {"y", 1e-24},
}};

template <class Rows>
std::optional<double> find(const Rows& rows, std::string_view name)
{
    for (const Row& row : rows)
    {
        if (row.name == name)
            return row.factor;
    }
    return std::nullopt;
}

std::optional<double> as_quantity(const std::string& unit, const char* base_unit)
{
    try
    {
        const si::value value = parse_quantity(unit);
        if (value.is_compatible(si::value(base_unit)))
            return value.value_in_baseunits();
    }
    catch (const std::runtime_error&)
    {
    }
    return std::nullopt;
}

} // namespace

std::optional<double> factor_of(const std::string& unit, UnitKind kind)
{
    const bool is_length = kind == UnitKind::length;
    const auto named = is_length ? find(names_of_lengths, unit) : find(names_of_times, unit);
    if (named)
        return named;
    const std::string_view name = unit;
    const char base_unit = is_length ? 'm' : 's';
    if (name.back() == base_unit)
    {
        if (const auto factor = find(prefixes, name.substr(0, name.size() - 1)))
            return factor;
    }
    return as_quantity(unit, is_length ? "m" : "s");
}
