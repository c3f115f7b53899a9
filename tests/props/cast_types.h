/// The numbers that a cast reads and writes, type by type, as plain bits: one table that all its tests go through.
#pragma once

#include <VelaProps/VProp.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

namespace cast_test {

/// A real number of some type.
struct Number
{
    bool floating;
    bool is_signed;
    double decimal;        ///< of floating-point types
    std::uint64_t integer; ///< of the others, widened to 64 bits
};

/// The bits of a real number, or of the two parts of a complex one; NaN is always the same.
struct Parts
{
    std::uint64_t real;
    std::uint64_t imaginary;
    friend bool operator==(const Parts& a, const Parts& b) { return a.real == b.real && a.imaginary == b.imaginary; }
};

template <class T>
std::uint64_t bits_of(T number)
{
    if constexpr (std::is_same_v<T, float>)
        return std::isnan(number) ? 0x7fc00000 : std::bit_cast<std::uint32_t>(number);
    else if constexpr (std::is_same_v<T, double>)
        return std::isnan(number) ? 0x7ff8000000000000 : std::bit_cast<std::uint64_t>(number);
    else if constexpr (std::is_same_v<T, bool>)
        return number ? 1 : 0;
    else
        return static_cast<std::make_unsigned_t<T>>(number);
}

/// What the tests do with one type, the same for all of them.
struct Type
{
    vela_dt id;
    const char* name;
    std::size_t size_bytes;
    std::vector<Number> reals;
    std::vector<Number> imaginaries; ///< empty for real types
    VProp (*scalar)(std::size_t number);
    VProp (*array)(const std::vector<std::size_t>& sizes, std::size_t count); ///< its first numbers, repeated
    Parts (*read)(const void* scalar);

    /// A target that holds `count` defaults, with sizes (1, `count`), and the caller's flags 6.
    std::shared_ptr<void> (*make_target)(std::size_t count);
    VProparrayBase* (*shape)(void* target);
    std::vector<Parts> (*elements)(const void* target);
};

const std::vector<Type>& real_types();

/// "cplx_logical" can only be a target.
const std::vector<Type>& complex_types();

inline std::vector<const Type*> all_types()
{
    std::vector<const Type*> all;
    for (const Type& type : real_types())
        all.push_back(&type);
    for (const Type& type : complex_types())
        all.push_back(&type);
    return all;
}

inline bool is_complex(const Type& type)
{
    return (type.id & 0x40000000) != 0;
}

inline bool is_source(const Type& type)
{
    return type.scalar != nullptr;
}

/// Whether there is a conversion.
inline bool accepted(const Type& source, const Type& target)
{
    return is_complex(target) || !is_complex(source);
}

} // namespace cast_test
