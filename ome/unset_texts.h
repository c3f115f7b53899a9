/// Trees over which another record is to be laid.
///
/// Reading a date, a unit or an enumeration that is not set leaves the empty text, which no such field may be bound to.
#pragma once

#include <Json/Value.h>

namespace Ome::detail {

/// A copy of the tree of an `Ome::Image`, over which an image can be laid.
///
/// In the copy such fields are not set. Planes and channels that nobody has looked at stay unmade.
Json::Value copy_of_image(const Json::Value& image);

/// The fields of this element that hold such a text are not set again.
void unset_empty_texts(Json::Value& element);

/// @name The same for those channels or planes of an image that somebody has looked at.
/// @{
void unset_empty_texts_of_channels(Json::Value& pixels_content);
void unset_empty_texts_of_planes(Json::Value& pixels_content);
/// @}

} // namespace Ome::detail
