/// Units as pairs of numbers, as a record holds them.
#pragma once

#include <si/value.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace vela_test {

typedef std::vector<std::pair<std::int32_t, std::int32_t>> UnitExponents;

/// Those of a unit without a dimension.
inline const UnitExponents neutral(9, {0, 1});

inline UnitExponents exponents_of(const si::value& unit)
{
    UnitExponents result;
    for (std::size_t i = 0; i < si::value::dimension_count; ++i)
        result.emplace_back(unit.exponent(i).numerator(), unit.exponent(i).denominator());
    return result;
}

inline void expect_neutral(const si::value& unit)
{
    EXPECT_EQ(exponents_of(unit), neutral);
    EXPECT_EQ(unit.value_in_baseunits(), 1.0);
}

} // namespace vela_test
