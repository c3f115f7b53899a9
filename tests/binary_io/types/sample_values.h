/// Bit patterns to convert: those at the edges of a type, and many without a plan.
#pragma once

#include "binary_io/types/sample_reference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace vela_test {

inline std::uint64_t bits_of(double value)
{
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

inline std::uint64_t bits_of(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

inline float single_of(std::uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Positive numbers at which a conversion changes its ways. All are exact and within single's range.
inline std::vector<double> turning_points()
{
    std::vector<double> numbers = {0,
                                   0.25,
                                   0.5,
                                   0.75,
                                   0.999,
                                   1.25,
                                   1.5,
                                   2.5,
                                   3.5,
                                   3.9,
                                   200,
                                   300,
                                   1e5,
                                   1e6,
                                   1e10,
                                   1e15,
                                   1e18,
                                   1e19,
                                   1e20,
                                   1e30,
                                   static_cast<double>(std::numeric_limits<float>::max()),
                                   static_cast<double>(std::numeric_limits<float>::min()),
                                   static_cast<double>(std::numeric_limits<float>::denorm_min())};
    // The limits of all integer types are among these, each with its neighbours.
    for (int exponent = 0; exponent <= 66; ++exponent)
    {
        const double power = std::ldexp(1.0, exponent);
        for (const double number : {power - 1, power - 0.5, power, power + 0.5, power + 1, power + 44, power * 1.5})
            numbers.push_back(number);
    }
    return numbers;
}

inline void add_nans(const ScalarKind& kind, std::vector<std::uint64_t>& values)
{
    const int fraction_bits = kind.precision() - 1;
    const std::uint64_t infinity = static_cast<std::uint64_t>(2 * kind.bias() + 1) << fraction_bits;
    const std::uint64_t quiet = std::uint64_t{1} << (fraction_bits - 1);
    const std::uint64_t sign = std::uint64_t{1} << (kind.bits() - 1);
    for (const std::uint64_t payload : {std::uint64_t{1}, std::uint64_t{0x1234}, quiet - 1, quiet, quiet | 1,
                                        quiet | 0x55aa, quiet | (quiet >> 1), quiet | (quiet - 1)})
    {
        values.push_back(infinity | payload);
        values.push_back(sign | infinity | payload);
    }
}

inline std::vector<std::uint64_t> single_edges()
{
    std::vector<std::uint64_t> values;
    const float infinity = std::numeric_limits<float>::infinity();
    for (const double number : turning_points())
        for (const float value : {static_cast<float>(number), -static_cast<float>(number)})
            for (const float neighbour : {std::nextafter(value, -infinity), value, std::nextafter(value, infinity)})
                values.push_back(bits_of(neighbour));
    add_nans(single_kind, values);
    return values;
}

inline std::vector<std::uint64_t> double_edges()
{
    std::vector<std::uint64_t> values;
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<double> numbers = turning_points();
    for (const double number :
         {std::numeric_limits<double>::max(), std::numeric_limits<double>::min(), 1e300, 1e-300,
          std::numeric_limits<double>::denorm_min(), std::ldexp(1.0, 1000), std::ldexp(1.0, 127), std::ldexp(1.0, 128),
          std::ldexp(33554431.0, 103), std::ldexp(1.0, -149), std::ldexp(1.0, -150), std::ldexp(3.0, -150),
          std::ldexp(16777215.0, -150), std::ldexp(16777213.0, -150), std::ldexp(1.0, -151)})
        numbers.push_back(number);
    for (const double number : numbers)
        for (const double value : {number, -number})
            for (const double neighbour : {std::nextafter(value, -infinity), value, std::nextafter(value, infinity)})
                values.push_back(bits_of(neighbour));
    for (const std::uint64_t bits : single_edges())
        if (!is_nan(single_kind, bits))
            values.push_back(bits_of(static_cast<double>(single_of(static_cast<std::uint32_t>(bits)))));
    add_nans(double_kind, values);
    return values;
}

inline std::vector<std::uint64_t> integer_edges(const ScalarKind& kind)
{
    std::vector<std::uint64_t> values = {0, 44, 200, 300, 12345, 0x5555555555555555, 0x0123456789abcdef};
    for (unsigned bit = 0; bit < kind.bits(); ++bit)
        for (const std::uint64_t base : {std::uint64_t{1} << bit, std::uint64_t{3} << bit, std::uint64_t{5} << bit})
            for (const std::uint64_t value : {base - 1, base, base + 1})
            {
                values.push_back(value);
                values.push_back(~value);
            }
    return values;
}

/// The edge values of a kind as bit patterns, without repetition.
inline std::vector<std::uint64_t> edge_values(const ScalarKind& kind)
{
    std::vector<std::uint64_t> values = !kind.is_float()            ? integer_edges(kind)
                                        : kind.id == single_kind.id ? single_edges()
                                                                    : double_edges();
    for (std::uint64_t& value : values)
        value &= kind.mask();
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

typedef std::mt19937_64 Random;

/// A float whose exponent lies where integers lie; of a random pattern most are far too large or small.
inline std::uint64_t random_float_in_integer_range(const ScalarKind& kind, Random& random)
{
    const int fraction_bits = kind.precision() - 1;
    const std::uint64_t exponent = static_cast<std::uint64_t>(kind.bias() - 3) + random() % 70;
    const std::uint64_t fraction = random() & ((std::uint64_t{1} << fraction_bits) - 1);
    return ((random() & 1) << (kind.bits() - 1)) | (exponent << fraction_bits) | fraction;
}

/// A double half way between two singles, or next to that.
inline std::uint64_t random_tie_between_singles(Random& random)
{
    const std::uint64_t exponent = 1023 - 127 - 24 + random() % (2 * 127 + 26);
    const std::uint64_t kept = (random() & 0x7fffff) << 29;
    const std::uint64_t tie = (std::uint64_t{1} << 28) - 1 + random() % 3;
    return ((random() & 1) << 63) | (exponent << 52) | kept | tie;
}

/// A whole number of `bits` bits half way between two floats of either width, or next to that.
inline std::uint64_t random_tie_between_floats(unsigned bits, Random& random)
{
    const unsigned dropped = 1 + static_cast<unsigned>(random() % (bits - 1));
    const std::uint64_t kept = random() << dropped;
    const std::uint64_t value = (kept | (std::uint64_t{1} << (dropped - 1))) - 1 + random() % 3;
    return value >> (random() % 2 == 0 ? 0 : random() % bits);
}

/// At least `count` values: the edge values first, then random ones. The same at each run.
inline std::vector<std::uint64_t> mixed_values(const ScalarKind& kind, std::size_t count, std::uint64_t seed)
{
    std::vector<std::uint64_t> values = edge_values(kind);
    Random random(seed);
    std::shuffle(values.begin(), values.end(), random);
    while (values.size() < count)
    {
        values.push_back(random() & kind.mask());
        if (kind.is_float())
            values.push_back(random_float_in_integer_range(kind, random));
        if (kind.id == double_kind.id)
            values.push_back(random_tie_between_singles(random));
        if (!kind.is_float() && kind.bits() > 16)
            values.push_back(random_tie_between_floats(kind.bits(), random) & kind.mask());
    }
    return values;
}

/// All patterns of a kind of 8 or 16 bits, upwards.
inline std::vector<std::uint64_t> all_values(const ScalarKind& kind)
{
    std::vector<std::uint64_t> values(static_cast<std::size_t>(kind.mask()) + 1);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = i;
    return values;
}

} // namespace vela_test
