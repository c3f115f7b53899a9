/// The checks that Qt makes; of the library only this and `current_timestamp.h` know it.
#pragma once

#include <string>

namespace Ome::detail {

/// Whether `text` is a valid date and time in the form `Qt::ISODate`.
bool is_timestamp(const std::string& text);

/// Whether `text` is a UUID, and not the null one, from its tenth character on.
bool is_uuid_urn(const std::string& text);

} // namespace Ome::detail
