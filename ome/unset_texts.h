/// Trees over which another record is to be laid.
#pragma once

#include <Json/Value.h>

namespace Ome::detail {

/// A copy of the tree of an `Ome::Image`, over which an image can be laid.
///
/// Reading a date, a unit or an enumeration that is not set leaves the empty text, which no such field may be bound to.
/// In the copy these are not set. Planes and channels that nobody has looked at stay unmade.
Json::Value copy_of_image(const Json::Value& image);

} // namespace Ome::detail
