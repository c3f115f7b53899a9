/// Numbers as grey levels.
#pragma once

#include <vector>

/// One level for each value: the range from the 0.1 to the 99.9 percent quantile of the finite values
/// is spread over 0 to 255, so that a few hot or dead pixels do not darken the rest.
///
/// Where the two quantiles are equal the whole finite range is spread instead; if there is just one
/// finite value it becomes 128. Values beyond the range and infinities are black or white, NaN is black.
/// Quantiles of more than about a million values are taken from an evenly spaced part of them.
std::vector<unsigned char> grey_levels(const std::vector<double>& values);
