/// Quantities, their reader and their printer once more, as plain as can be: a second opinion on si::value.
#pragma once

#include "units/naive_fraction.h"

#include <array>
#include <string>

namespace vela_test {

struct NaiveQuantity
{
    double number = 1;
    std::array<NaiveFraction, 9> exponents;
};

inline bool same_dimension(const NaiveQuantity& left, const NaiveQuantity& right)
{
    for (std::size_t i = 0; i < 9; ++i)
        if (left.exponents[i].text() != right.exponents[i].text())
            return false;
    return true;
}

/// Reads a text by calling itself for each part of it.
bool read_naively(const std::string& text, NaiveQuantity& out);

struct NaiveText
{
    std::string number;
    std::string unit;
};

/// Prints a valid quantity.
NaiveText print_naively(const NaiveQuantity& quantity, int precision, int flags);

} // namespace vela_test
