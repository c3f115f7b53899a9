/// The units that the OME 2015-01 schema lists, in UTF-8.
#pragma once

#include <array>
#include <string_view>

namespace Ome::detail {

// clang-format off
constexpr std::array<std::string_view, 34> length_units{
    "Ym", "Zm", "Em", "Pm", "Tm", "Gm", "Mm", "km", "hm", "dam", "m",
    "dm", "cm", "mm", "\xC2\xB5m", "nm", "pm", "fm", "am", "zm", "ym",
    "\xE2\x84\xAB", // the angstrom sign
    "thou", "li", "in", "ft", "yd", "mi", "ua", "ly", "pc", "pt", "pixel", "reference frame",
};

constexpr std::array<std::string_view, 21> power_units{
    "YW", "ZW", "EW", "PW", "TW", "GW", "MW", "kW", "hW", "daW", "W",
    "dW", "cW", "mW", "\xC2\xB5W", "nW", "pW", "fW", "aW", "zW", "yW",
};

constexpr std::array<std::string_view, 23> time_units{
    "Ys", "Zs", "Es", "Ps", "Ts", "Gs", "Ms", "ks", "hs", "das", "s",
    "ds", "cs", "ms", "\xC2\xB5s", "ns", "ps", "fs", "as", "zs", "ys",
    "min", "h",
};
// clang-format on

} // namespace Ome::detail
