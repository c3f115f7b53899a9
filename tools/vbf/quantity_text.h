/// Physical quantities at the terminal and in JSON, where the micro sign is UTF-8.
#pragma once

#include <si/value.h>

#include <string>

/// @throws std::runtime_error: `text` is no quantity.
si::value parse_quantity(const std::string& text);

/// The quantity as the library prints it with `flags` of `si::value::format`, as UTF-8.
std::string quantity_text(const si::value& quantity, int flags);
