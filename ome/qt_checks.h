/// The checks that Qt makes; of the library only this and `current_timestamp.h` know it.
#pragma once

#include <string>

namespace Ome::detail {

/// Whether `text` is a valid date and time in the form `Qt::ISODate`.
bool is_timestamp(const std::string& text);

/// Whether `text` is a UUID, and not the null one, from its tenth character on.
bool is_uuid_urn(const std::string& text);

/// "urn:uuid:" and the 36 characters of a UUID, in lower case. `text` is a UUID with or without braces and with or
/// without "urn:uuid:"; anything else gives the null one.
std::string uuid_urn(const std::string& text);

} // namespace Ome::detail
