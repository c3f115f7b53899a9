/// Units of lengths and of times by their names in documents.
#pragma once

#include <optional>
#include <string>

enum class UnitKind
{
    length,
    time,
};

/// The unit in metres or seconds; 0 where it is none, as "pixel"; nothing where the name is not known. Known are all names of
/// the OME schema, some that other writers use, and what the library can read.
std::optional<double> factor_of(const std::string& unit, UnitKind kind);
