/// Conversion of a single sample between C++ types, for checks against literal values.
#pragma once

#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace vela_test {

/// A complex sample: real part, imaginary part.
template <typename Scalar>
using Complex = std::array<Scalar, 2>;

template <typename Sample>
constexpr vela_dt dt_of = vela_dt_none;
template <>
inline constexpr vela_dt dt_of<std::uint8_t> = vela_dt_uint8;
template <>
inline constexpr vela_dt dt_of<std::int8_t> = vela_dt_int8;
template <>
inline constexpr vela_dt dt_of<std::uint16_t> = vela_dt_uint16;
template <>
inline constexpr vela_dt dt_of<std::int16_t> = vela_dt_int16;
template <>
inline constexpr vela_dt dt_of<std::uint32_t> = vela_dt_uint32;
template <>
inline constexpr vela_dt dt_of<std::int32_t> = vela_dt_int32;
template <>
inline constexpr vela_dt dt_of<float> = vela_dt_single;
template <>
inline constexpr vela_dt dt_of<double> = vela_dt_double;
template <>
inline constexpr vela_dt dt_of<std::uint64_t> = vela_dt_uint64;
template <>
inline constexpr vela_dt dt_of<std::int64_t> = vela_dt_int64;
template <typename Scalar>
inline constexpr vela_dt dt_of<Complex<Scalar>> = dt_of<Scalar> | vela_dt_complex;

/// The id in the form that the converter takes.
constexpr std::uint32_t id_of(vela_dt dt)
{
    return static_cast<std::uint32_t>(dt);
}

/// `value` as a `Target`.
template <typename Target, typename Source>
Target converted(const Source& value)
{
    static_assert(dt_of<Source> != vela_dt_none && dt_of<Target> != vela_dt_none);
    unsigned char bytes[sizeof(Target)];
    std::memset(bytes, 0xa5, sizeof bytes);
    EXPECT_EQ(vela_dt_convert(id_of(dt_of<Source>), id_of(dt_of<Target>), &value, bytes, 1, nullptr, nullptr), 0);
    Target result;
    std::memcpy(&result, bytes, sizeof result);
    return result;
}

} // namespace vela_test
