/// Samples as the texts on conversion have them, written down once more without a look at the library.
#pragma once

#include <VelaBase/vela_dt.h>

#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace naive {

struct SampleType
{
    vela_dt dt;
    std::size_t size;
};

/// The types that samples are read and written in, in the order of the slots.
constexpr std::array<SampleType, 20> sample_types = {{
    {0x1000, 8}, {0x40001000, 16}, {0x10, 4}, {0x40000010, 8}, {0x4, 2}, {0x40000004, 4}, {0x1, 1}, {0x40000001, 2},
    {0x2000, 8}, {0x40002000, 16}, {0x20, 4}, {0x40000020, 8}, {0x8, 2}, {0x40000008, 4}, {0x2, 1}, {0x40000002, 2},
    {0x80, 8},   {0x40000080, 16}, {0x40, 4}, {0x40000040, 8},
}};

/// The ten that a description takes without complaint.
constexpr std::array<vela_dt, 10> record_types = {0x1, 0x2, 0x4, 0x8, 0x10, 0x20, 0x40, 0x80, 0x40000040, 0x40000080};

inline bool is_complex(vela_dt dt)
{
    return (dt & vela_dt_complex) != 0;
}

inline vela_dt scalar_of(vela_dt dt)
{
    return dt & ~vela_dt_complex;
}

inline std::size_t size_of(vela_dt dt)
{
    for (const SampleType& type : sample_types)
    {
        if (type.dt == dt)
            return type.size;
    }
    return 0;
}

inline bool is_floating(vela_dt scalar)
{
    return scalar == vela_dt_single || scalar == vela_dt_double;
}

inline bool is_signed_integer(vela_dt scalar)
{
    return scalar == vela_dt_int8 || scalar == vela_dt_int16 || scalar == vela_dt_int32 || scalar == vela_dt_int64;
}

/// A real number in the width of a scalar type.
struct Number
{
    vela_dt scalar = vela_dt_uint8;
    std::uint64_t bits = 0; ///< of an integer, its sign extended
    double value = 0;       ///< of a floating one
};

inline Number load(const unsigned char* bytes, vela_dt scalar)
{
    Number number;
    number.scalar = scalar;
    if (scalar == vela_dt_single)
    {
        float single = 0;
        std::memcpy(&single, bytes, sizeof single);
        number.value = static_cast<double>(single);
        return number;
    }
    if (scalar == vela_dt_double)
    {
        std::memcpy(&number.value, bytes, sizeof number.value);
        return number;
    }
    const std::size_t size = size_of(scalar);
    for (std::size_t i = 0; i < size; ++i)
        number.bits |= static_cast<std::uint64_t>(bytes[i]) << (8 * i);
    const bool negative = (bytes[size - 1] & 0x80) != 0;
    if (is_signed_integer(scalar) && negative && size < 8)
        number.bits |= ~std::uint64_t{0} << (8 * size);
    return number;
}

/// Truncated; what is not below `limit` in size, and what is no number, is `-limit`.
inline std::int64_t truncate(double value, double limit)
{
    const double whole = std::trunc(value);
    const bool fits = whole >= -limit && whole < limit;
    return fits ? static_cast<std::int64_t>(whole) : (limit > 1e10 ? INT64_MIN : static_cast<std::int64_t>(-limit));
}

inline std::uint64_t integer_bits(const Number& number, vela_dt target)
{
    constexpr double two_to_31 = 2147483648.0;
    constexpr double two_to_63 = 9223372036854775808.0;
    if (!is_floating(number.scalar))
        return number.bits;
    if (target == vela_dt_int8 || target == vela_dt_int16 || target == vela_dt_int32)
        return static_cast<std::uint64_t>(truncate(number.value, two_to_31));
    if (target == vela_dt_uint64 && !(number.value < two_to_63))
        return static_cast<std::uint64_t>(truncate(number.value - two_to_63, two_to_63)) | (std::uint64_t{1} << 63);
    return static_cast<std::uint64_t>(truncate(number.value, two_to_63));
}

template <class Float>
Float floating_value(const Number& number)
{
    if (is_floating(number.scalar))
        return static_cast<Float>(number.value);
    const Float taken_as_signed = static_cast<Float>(static_cast<std::int64_t>(number.bits));
    const bool top_bit = (number.bits >> 63) != 0;
    if (number.scalar == vela_dt_uint64 && top_bit)
        return taken_as_signed + static_cast<Float>(18446744073709551616.0);
    return taken_as_signed;
}

inline void store(const Number& number, vela_dt target, unsigned char* bytes)
{
    if (target == vela_dt_single)
    {
        const float single = floating_value<float>(number);
        std::memcpy(bytes, &single, sizeof single);
        return;
    }
    if (target == vela_dt_double)
    {
        const double value = floating_value<double>(number);
        std::memcpy(bytes, &value, sizeof value);
        return;
    }
    const std::uint64_t bits = integer_bits(number, target);
    for (std::size_t i = 0; i < size_of(target); ++i)
        bytes[i] = static_cast<unsigned char>((bits >> (8 * i)) & 0xFF);
}

/// As an iterator converts: of complex to real the imaginary part is dropped.
inline void convert(const unsigned char* source, vela_dt source_dt, unsigned char* target, vela_dt target_dt)
{
    const vela_dt from = scalar_of(source_dt);
    const vela_dt to = scalar_of(target_dt);
    store(load(source, from), to, target);
    if (!is_complex(target_dt))
        return;
    Number imaginary;
    if (is_complex(source_dt))
        imaginary = load(source + size_of(from), from);
    store(imaginary, to, target + size_of(to));
}

/// Whether two samples have the same bytes; two parts that are both no number are the same.
inline bool same_sample(const unsigned char* a, const unsigned char* b, vela_dt dt)
{
    const vela_dt scalar = scalar_of(dt);
    const std::size_t size = size_of(scalar);
    for (std::size_t part = 0; part < (is_complex(dt) ? 2U : 1U); ++part, a += size, b += size)
    {
        const bool both_nan =
            is_floating(scalar) && std::isnan(load(a, scalar).value) && std::isnan(load(b, scalar).value);
        if (!both_nan && std::memcmp(a, b, size) != 0)
            return false;
    }
    return true;
}

/// A real number of the type, half of the time one that lies at an edge.
inline void store_random_number(std::mt19937_64& random, vela_dt scalar, unsigned char* bytes)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    static const double floats[] = {
        0.0,           -0.0,   0.5,   -0.999,     300.7, -300.7,   2147483647.5, -2147483648.5,
        4294967296.25, -1e10,  1e18,  -1e19,      1e300, inf,      -inf,         std::nan(""),
        1.9e19,        9.3e18, 1e-40, 16777217.0, 0.1,   65535.99, -128.99,      9223372036854775808.0};
    static const std::uint64_t integers[] = {0,
                                             1,
                                             0x7F,
                                             0x80,
                                             0xFF,
                                             0x8000,
                                             0xFFFF,
                                             0x80000000U,
                                             0x8000000000000401U,
                                             0x7FFFFFFFFFFFFFFFU,
                                             0xFFFFFFFFFFFFFFFFU,
                                             0x20000020000001U};
    Number number;
    number.scalar = vela_dt_uint64;
    const bool at_an_edge = random() % 2 == 0;
    if (is_floating(scalar))
    {
        number.scalar = vela_dt_double;
        number.value =
            at_an_edge ? floats[random() % std::size(floats)]
                       : std::ldexp(static_cast<double>(random() % 2000) - 1000.0, static_cast<int>(random() % 40) - 8);
    }
    else
        number.bits = at_an_edge ? integers[random() % std::size(integers)] : random();
    store(number, scalar, bytes);
}

inline void store_random_sample(std::mt19937_64& random, vela_dt dt, unsigned char* bytes)
{
    const vela_dt scalar = scalar_of(dt);
    store_random_number(random, scalar, bytes);
    if (is_complex(dt))
        store_random_number(random, scalar, bytes + size_of(scalar));
}

/// Bytes as digits, for messages.
inline std::string digits(const unsigned char* bytes, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
    {
        text += "0123456789abcdef"[bytes[i] >> 4];
        text += "0123456789abcdef"[bytes[i] & 15];
    }
    return text;
}

} // namespace naive
