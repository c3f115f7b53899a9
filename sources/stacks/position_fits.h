/// Whether a position and a stack go together.
#pragma once

#include <cstdint>

class VStackPosition;

namespace Vela::detail {

/// `VStackPosition::is_valid_for` a stack of `rank` axes.
bool position_fits(const VStackPosition& position, std::uint64_t rank);

} // namespace Vela::detail
