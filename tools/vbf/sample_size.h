/// The bytes of a sample.
#pragma once

#include <VelaBase/vela_dt.h>

#include <cstdint>

/// 0 for what is no type of samples.
inline std::uint64_t size_of(vela_dt type)
{
    return vela_dt_get_size(static_cast<std::uint32_t>(type));
}
