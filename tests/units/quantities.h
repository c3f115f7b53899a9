/// Fractions and quantities as texts that a test can name, made without parser or printer of the library.
#pragma once

#include <si/fraction.h>
#include <si/value.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>

namespace vela_test {

using Exponents = std::array<si::fraction, si::value::dimension_count>;

enum Base : std::size_t
{
    metre,
    kilogram,
    second,
    ampere,
    kelvin,
    mole,
    candela,
    radian,
    steradian,
};

inline const char* const base_names[] = {"m", "kg", "s", "A", "K", "mol", "cd", "rad", "sr"};

/// "numerator/denominator", as they stand.
inline std::string text(const si::fraction& fraction)
{
    return std::to_string(fraction.numerator()) + "/" + std::to_string(fraction.denominator());
}

/// What is not literally 0/1: "m" for 1/1, "s^-2" for -2/1, "kg^2/4" for 2/4, with a blank between two.
inline std::string dimension(const si::value& value)
{
    std::string all;
    for (std::size_t i = 0; i < si::value::dimension_count; ++i)
    {
        const si::fraction& exponent = value.exponent(i);
        if (exponent.numerator() == 0 && exponent.denominator() == 1)
            continue;
        all += all.empty() ? "" : " ";
        all += base_names[i];
        if (exponent.denominator() != 1)
            all += "^" + text(exponent);
        else if (exponent.numerator() != 1)
            all += "^" + std::to_string(exponent.numerator());
    }
    return all;
}

/// Exponents, the others being 0/1.
inline Exponents exponents(std::initializer_list<std::pair<Base, si::fraction>> given)
{
    Exponents all;
    for (const auto& [base, exponent] : given)
        all[base] = exponent;
    return all;
}

inline si::value quantity(double number, std::initializer_list<std::pair<Base, si::fraction>> given)
{
    return si::value(number, exponents(given));
}

/// The same but for the last few bits; infinite and not-a-number each equal to itself.
inline bool same_number(double left, double right, double tolerance = 1e-15)
{
    if (std::isnan(left) || std::isnan(right))
        return std::isnan(left) && std::isnan(right);
    if (left == right)
        return true;
    if (std::isinf(left) || std::isinf(right))
        return false;
    return std::fabs(left - right) <= tolerance * std::fabs(right);
}

/// Valid, with this number in base units and this `dimension`.
inline testing::AssertionResult is_quantity(const si::value& value, double number,
                                            const std::string& expected_dimension)
{
    if (value.is_valid() && same_number(value.value_in_baseunits(), number) && dimension(value) == expected_dimension)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << (value.is_valid() ? "" : "invalid ") << value.value_in_baseunits() << " ["
                                       << dimension(value) << "], expected " << number << " [" << expected_dimension
                                       << "]";
}

/// What a failure leaves: not valid, the number one, no dimension.
inline testing::AssertionResult is_invalid(const si::value& value)
{
    if (!value.is_valid() && value.value_in_baseunits() == 1.0 && dimension(value).empty())
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << (value.is_valid() ? "valid " : "invalid ") << value.value_in_baseunits()
                                       << " [" << dimension(value) << "]";
}

/// The text reads as this quantity.
inline testing::AssertionResult reads(const std::string& text, double number, const std::string& expected_dimension)
{
    return is_quantity(si::value(text), number, expected_dimension) << ", text \"" << text << "\"";
}

/// The text is that of no quantity.
inline testing::AssertionResult fails(const std::string& text)
{
    return is_invalid(si::value(text)) << ", text \"" << text << "\"";
}

inline std::string repeated(const std::string& piece, std::size_t count)
{
    std::string all;
    all.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        all += piece;
    return all;
}

} // namespace vela_test
