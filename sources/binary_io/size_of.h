/// Bytes of a sample.
#pragma once

#include <VelaBase/vela_dt.h>

#include <cstdint>

namespace Vela::detail {

/// 0 for a type that has no size.
inline std::uint64_t size_of(vela_dt type)
{
    return vela_dt_get_size(static_cast<std::uint32_t>(type));
}

} // namespace Vela::detail
