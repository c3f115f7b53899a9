/// The tables of units and prefixes, written down once more for the tests.
#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace vela_test {

struct UnitRow
{
    const char* name;
    double number;
    int exponents[9]; // m kg s A K mol cd rad sr
    int least_prefix; // of printing
    int greatest_prefix;
};

// The order decides every tie.
inline const UnitRow unit_rows[] = {
    {"m", 1, {1}, -24, 3},
    {"kg", 1, {0, 1}, 0, 0},
    {"s", 1, {0, 0, 1}, -24, 0},
    {"A", 1, {0, 0, 0, 1}, -24, 24},
    {"K", 1, {0, 0, 0, 0, 1}, -24, 0},
    {"mol", 1, {0, 0, 0, 0, 0, 1}, -24, 0},
    {"cd", 1, {0, 0, 0, 0, 0, 0, 1}, -24, 24},
    {"rad", 1, {0, 0, 0, 0, 0, 0, 0, 1}, -3, 0},
    {"sr", 1, {0, 0, 0, 0, 0, 0, 0, 0, 1}, 0, 0},
    {"", 1, {}, -24, 24},
    {"Hz", 1, {0, 0, -1}, -24, 24},
    {"N", 1, {1, 1, -2}, -24, 24},
    {"Pa", 1, {-1, 1, -2}, -24, 24},
    {"J", 1, {2, 1, -2}, -24, 24},
    {"W", 1, {2, 1, -3}, -24, 24},
    {"C", 1, {0, 0, 1, 1}, -24, 24},
    {"V", 1, {2, 1, -3, -1}, -24, 24},
    {"F", 1, {-2, -1, 4, 2}, -24, 24},
    {"ohm", 1, {2, 1, -3, -2}, -24, 24},
    {"S", 1, {-2, -1, 3, 2}, -24, 24},
    {"Wb", 1, {2, 1, -2, -1}, -24, 24},
    {"T", 1, {0, 1, -2, -1}, -24, 24},
    {"H", 1, {2, 1, -2, -2}, -24, 24},
    {"lm", 1, {0, 0, 0, 0, 0, 0, 1, 0, 1}, -24, 24},
    {"lux", 1, {-2, 0, 0, 0, 0, 0, 1, 0, 1}, -24, 24},
    {"Bq", 1, {0, 0, -1}, -24, 24},
    {"Gy", 1, {2, 0, -2}, -24, 24},
    {"g", 0.001, {0, 1}, -24, 3},
    {"t", 1000, {0, 1}, 0, 24},
    {"deg", 0.017453292519943295, {0, 0, 0, 0, 0, 0, 0, 1}, 0, 0},
    {"pc", 3.0856775807e16, {1}, -24, 24},
    {"angstrom", 1e-10, {1}, 0, 0},
    {"fermi", 1e-15, {1}, 0, 0},
    {"barn", 1e-28, {2}, 0, 0},
    {"h", 3600, {0, 0, 1}, 0, 0},
    {"e", 1.60217733e-19, {0, 0, 1, 1}, 0, 0},
    {"eV", 1.60217733e-19, {2, 1, -2}, -24, 24},
    {"bar", 100000, {-1, 1, -2}, -24, 24},
    {"G", 0.0001, {0, 1, -2, -1}, -24, 24},
    {"Bq", 1, {0, 0, -1}, -24, 24},
    {"Ci", 3.7e10, {0, 0, -1}, -24, 24},
};
static_assert(sizeof unit_rows / sizeof unit_rows[0] == 41);

/// The first row of that name, or null.
inline const UnitRow* row_named(const std::string& name)
{
    for (const UnitRow& row : unit_rows)
        if (name == row.name)
            return &row;
    return nullptr;
}

struct Prefix
{
    char byte;
    int exponent;
};

/// What is read.
inline const Prefix prefixes[] = {
    {'Y', 24}, {'Z', 21}, {'E', 18}, {'P', 15},    {'T', 12}, {'G', 9},   {'M', 6},   {'k', 3},   {'h', 2},   {'d', -1},
    {'c', -2}, {'m', -3}, {'u', -6}, {'\xB5', -6}, {'n', -9}, {'p', -12}, {'f', -15}, {'z', -21}, {'y', -24},
};

/// What is printed; these are all that are multiples of three.
inline const std::map<int, std::string> printed_prefixes = {
    {-24, "y"}, {-21, "z"}, {-18, "a"}, {-15, "f"}, {-12, "p"}, {-9, "n"}, {-6, "\xB5"}, {-3, "m"}, {0, ""},
    {3, "k"},   {6, "M"},   {9, "G"},   {12, "T"},  {15, "P"},  {18, "E"}, {21, "Z"},    {24, "Y"},
};

/// Combinations that have no meaning for the parser.
inline bool is_refused(int prefix_exponent, const std::string& name)
{
    if (name == "kg")
        return true;
    if (name == "g")
        return prefix_exponent >= 4;
    if (name == "t")
        return prefix_exponent < 2;
    if (name == "s")
        return prefix_exponent >= 1;
    return false;
}

/// "m^2 kg s^-2", as `dimension` writes it.
inline std::string dimension_of(const UnitRow& row)
{
    const char* const names[] = {"m", "kg", "s", "A", "K", "mol", "cd", "rad", "sr"};
    std::string all;
    for (std::size_t i = 0; i < 9; ++i)
    {
        if (row.exponents[i] == 0)
            continue;
        all += all.empty() ? "" : " ";
        all += names[i];
        if (row.exponents[i] != 1)
            all += "^" + std::to_string(row.exponents[i]);
    }
    return all;
}

} // namespace vela_test
