/// The clock, which Qt reads.
#pragma once

#include <string>

namespace Ome::detail {

/// The local time of the call with its offset from UTC, in the form `Qt::ISODate`.
std::string current_timestamp();

} // namespace Ome::detail
