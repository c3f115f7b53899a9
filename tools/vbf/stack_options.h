/// What a user says of stacks that are made of images.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

struct StackOptions
{
    std::optional<std::uint64_t> level; ///< of zlib; 0: not compressed; none: `usual_level`
    std::vector<std::string> labels;    ///< of the first axes, instead of X, Y, Z, T, C
    std::vector<std::string> lengths;   ///< numbers: lengths of the first axes
    std::vector<std::string> units;     ///< of the lengths: one for each, or one for all
    std::vector<std::string> tags;      ///< "key=text"
    std::optional<std::string> name;    ///< none: that of the image, or of its file
};

constexpr std::uint64_t usual_level = 1;

/// The best compression of zlib.
constexpr std::uint64_t max_level = 9;

/// @throws UsageFailure: the level is above `max_level`.
void check_level(std::uint64_t level);

/// The tags by their keys.
///
/// @throws UsageFailure: one has no "=", or no key.
std::map<std::string, std::string> split_tags(const std::vector<std::string>& tags);
