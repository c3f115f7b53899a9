#include "grey.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

constexpr std::size_t max_values_for_quantiles = std::size_t{1024} * 1024;
constexpr double low_quantile = 0.001;
constexpr double high_quantile = 0.999;
constexpr unsigned char middle_grey = 128;

struct Range
{
    double low = 0;
    double high = 0;
};

std::vector<double> spread_finite_values(const std::vector<double>& values)
{
    const std::size_t step = values.size() / max_values_for_quantiles + 1;
    std::vector<double> finite;
    for (std::size_t i = 0; i < values.size(); i += step)
    {
        if (std::isfinite(values[i]))
            finite.push_back(values[i]);
    }
    return finite;
}

Range quantile_range(std::vector<double> values)
{
    if (values.empty())
        return {};
    const double last = static_cast<double>(values.size() - 1);
    const auto at = [&](double rank)
    {
        const auto nth = values.begin() + static_cast<std::ptrdiff_t>(rank);
        std::nth_element(values.begin(), nth, values.end());
        return *nth;
    };
    const double low = at(std::floor(low_quantile * last));
    const double high = at(std::ceil(high_quantile * last));
    return {low, high};
}

Range finite_range(const std::vector<double>& values)
{
    Range range;
    bool first = true;
    for (const double value : values)
    {
        if (!std::isfinite(value))
            continue;
        range.low = first ? value : std::min(range.low, value);
        range.high = first ? value : std::max(range.high, value);
        first = false;
    }
    return range;
}

/// `range` is not empty.
double part_of_range(double value, const Range& range)
{
    const double width = range.high - range.low;
    if (std::isfinite(width))
        return (value - range.low) / width;
    return (value / 2 - range.low / 2) / (range.high / 2 - range.low / 2); // the width itself overflows
}

unsigned char level_of(double value, const Range& range)
{
    if (std::isnan(value) || value <= range.low)
        return 0;
    if (value >= range.high)
        return 255;
    return static_cast<unsigned char>(std::lround(part_of_range(value, range) * 255));
}

unsigned char level_without_contrast(double value, double constant)
{
    if (std::isnan(value))
        return 0;
    if (std::isinf(value))
        return value > 0 ? 255 : 0;
    return value == constant ? middle_grey : 0;
}

} // namespace

std::vector<unsigned char> grey_levels(const std::vector<double>& values)
{
    Range range = quantile_range(spread_finite_values(values));
    if (!(range.low < range.high))
        range = finite_range(values);
    const bool contrast = range.low < range.high;

    std::vector<unsigned char> levels(values.size());
    std::transform(values.begin(), values.end(), levels.begin(),
                   [&](double value)
                   { return contrast ? level_of(value, range) : level_without_contrast(value, range.low); });
    return levels;
}
