/// The sample types that a stack can have.
#pragma once

#include <VelaBase/vela_dt.h>

#include <array>
#include <cstdint>

namespace vela_test {

constexpr vela_dt complex_single = vela_dt_single | vela_dt_complex;
constexpr vela_dt complex_double = vela_dt_double | vela_dt_complex;

constexpr std::array<vela_dt, 10> types_of_stacks = {vela_dt_uint8,  vela_dt_int8,  vela_dt_uint16, vela_dt_int16,
                                                     vela_dt_uint32, vela_dt_int32, vela_dt_single, vela_dt_double,
                                                     complex_single, complex_double};

inline std::uint64_t size_of(vela_dt dt)
{
    return vela_dt_get_size(static_cast<std::uint32_t>(dt));
}

} // namespace vela_test
