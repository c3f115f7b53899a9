/// Records of stacks without samples, and what their units are.
#pragma once

#include "binary_io/vbf_reading_test.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace vela_test {

/// A record of these sizes without samples on disk.
inline RecordFields empty_record(const std::vector<std::uint32_t>& sizes)
{
    RecordFields fields;
    fields.header.sizes = sizes;
    fields.header.lengths = std::vector<double>(sizes.size(), 1.0);
    fields.header.offsets = std::vector<double>(sizes.size(), 0.0);
    fields.header.data.clear();
    return fields;
}

/// Exponents of a unit as pairs.
inline std::vector<std::pair<std::int32_t, std::int32_t>> exponents_of(const si::value& unit)
{
    std::vector<std::pair<std::int32_t, std::int32_t>> result;
    for (std::size_t i = 0; i < si::value::dimension_count; ++i)
        result.emplace_back(unit.exponent(i).numerator(), unit.exponent(i).denominator());
    return result;
}

inline const std::vector<std::pair<std::int32_t, std::int32_t>> neutral(9, {0, 1});

inline void expect_neutral(const si::value& unit)
{
    EXPECT_EQ(exponents_of(unit), neutral);
    EXPECT_EQ(unit.value_in_baseunits(), 1.0);
}

} // namespace vela_test
