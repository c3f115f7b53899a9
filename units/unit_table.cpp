#include "unit_table.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

unit::unit(std::string name, const value& one, int smallest_prefix, int largest_prefix)
    : value(one), smallest_prefix_(smallest_prefix), largest_prefix_(largest_prefix), name_(std::move(name))
{
}

unit::~unit() = default;

namespace {

value base_unit(std::size_t i)
{
    std::array<fraction, value::dimension_count> exponents;
    exponents[i] = 1;
    return value(1, exponents);
}

std::vector<unit> make_table()
{
    const value m = base_unit(0), kg = base_unit(1), s = base_unit(2), A = base_unit(3), K = base_unit(4),
                mol = base_unit(5), cd = base_unit(6), rad = base_unit(7), sr = base_unit(8);
    // Those that others are made of.
    const value N = m * kg / (s ^ 2), Pa = N / (m ^ 2), J = N * m, W = J / s, C = s * A, V = W / A, Wb = V * s,
                T = Wb / (m ^ 2), lm = cd * sr, Bq = value() / s, e = C * 1.60217733e-19;
    // "Bq" stands here twice; the second never matches.
    // clang-format off
    return {
        {"m", m, -24, 3},
        {"kg", kg, 0, 0},
        {"s", s, -24, 0},
        {"A", A, -24, 24},
        {"K", K, -24, 0},
        {"mol", mol, -24, 0},
        {"cd", cd, -24, 24},
        {"rad", rad, -3, 0},
        {"sr", sr, 0, 0},
        {"", value(), -24, 24},
        {"Hz", value() / s, -24, 24},
        {"N", N, -24, 24},
        {"Pa", Pa, -24, 24},
        {"J", J, -24, 24},
        {"W", W, -24, 24},
        {"C", C, -24, 24},
        {"V", V, -24, 24},
        {"F", C / V, -24, 24},
        {"ohm", V / A, -24, 24},
        {"S", A / V, -24, 24},
        {"Wb", Wb, -24, 24},
        {"T", T, -24, 24},
        {"H", Wb / A, -24, 24},
        {"lm", lm, -24, 24},
        {"lux", lm / (m ^ 2), -24, 24},
        {"Bq", Bq, -24, 24},
        {"Gy", J / kg, -24, 24},
        {"g", kg * 0.001, -24, 3},
        {"t", kg * 1000, 0, 24},
        {"deg", rad * 0.017453292519943295, 0, 0},
        {"pc", m * 3.0856775807e16, -24, 24},
        {"angstrom", m * 1e-10, 0, 0},
        {"fermi", m * 1e-15, 0, 0},
        {"barn", (m ^ 2) * 1e-28, 0, 0},
        {"h", s * 3600, 0, 0},
        {"e", e, 0, 0},
        {"eV", e * V, -24, 24},
        {"bar", Pa * 100000, -24, 24},
        {"G", T * 0.0001, -24, 24},
        {"Bq", Bq, -24, 24},
        {"Ci", Bq * 3.7e10, -24, 24},
    };
    // clang-format on
}

constexpr std::size_t longest_name = sizeof(std::uint64_t); // "angstrom"

/// A name of at most eight bytes as a number, so that a search compares numbers.
std::uint64_t packed(std::string_view name)
{
    std::uint64_t key = 0;
    std::memcpy(&key, name.data(), name.size());
    return key;
}

struct named_units
{
    named_units() : rows(make_table())
    {
        for (const unit& row : rows)
            keys.push_back(packed(row.name()));
    }

    const std::vector<unit> rows;
    std::vector<std::uint64_t> keys; ///< of the rows
};

const named_units& units()
{
    // Never destroyed: the destructor of some static object may still read or print a value.
    static const named_units* const table = new named_units;
    return *table;
}

} // namespace

const std::vector<unit>& unit_table()
{
    return units().rows;
}

const unit* find_unit(std::string_view name)
{
    if (name.size() > longest_name)
        return nullptr;
    const named_units& table = units();
    const auto found = std::find(table.keys.begin(), table.keys.end(), packed(name));
    if (found == table.keys.end())
        return nullptr;
    const unit& row = table.rows[static_cast<std::size_t>(found - table.keys.begin())];
    return row.name() == name ? &row : nullptr; // a zero byte at the end packs like no byte
}

VELA_ABI_NAMESPACE_END
}
