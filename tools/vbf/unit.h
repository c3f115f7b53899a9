/// The command `vbf unit`.
#pragma once

#include <optional>
#include <string>

struct UnitOptions
{
    std::string text;              ///< in UTF-8
    std::optional<std::string> in; ///< the unit to convert to, in UTF-8
    bool json = false;
};

/// Reads a quantity and shows its number in base units, in the unit that is asked for, and the ways in which the library
/// prints it.
///
/// @throws std::runtime_error: a text is no quantity, or the dimensions differ; and as `Output` does
void print_unit(const UnitOptions& options);
