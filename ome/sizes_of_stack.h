/// How the record of a stack gets its sizes.
#pragma once

#include <Ome/Image.h>

#include <cstddef>
#include <vector>

namespace Ome::detail {

/// `Image::set_sizes` for the record of a stack. Dates, units and enumerations of planes and channels that somebody has
/// read without their being set do not make it fail: they are not set again.
///
/// Where the stack `grows`, planes that keep their places are laid out anew only if somebody has looked at them through
/// `image.planes` since they were laid out last. So a stack may grow plane by plane. Where the planes have been added to or
/// laid out otherwise since, or somebody has got their list as such from the tree, all are laid out.
/// @throws as `Image::set_sizes`
void set_sizes_of_stack(Image<Json::SignalingReference>& image, const std::vector<std::size_t>& sizes, bool grows);

} // namespace Ome::detail
