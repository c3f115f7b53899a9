// One value from one scalar type to another, without undefined behaviour and in a form that the compiler
// turns into vector code.
//
// A cast of a float that the integer cannot hold is undefined in C++, and processors differ. So the value
// is first made harmless by a select, never by a branch, and then cast. What x86 gives for such a value, the
// "integer indefinite" 2^31 or 2^63 with the sign bit alone, is what every processor has to give.
//
// Unsigned targets take the low bits of a 64-bit truncation, for which SSE2 and AVX2 have no vector
// instruction. They do have the 32-bit one, so the value is taken apart by powers of two first. Each step is
// exact: with h = trunc(x / 2^k), x - h * 2^k has the sign of x, is below 2^k, and needs no more bits than x.
//
// Included once for each instruction set, inside a namespace of its own: nothing here may come from a header
// whose inline functions the linker could merge between the sets.

template <class T>
constexpr bool is_float = false;
template <>
constexpr bool is_float<float> = true;
template <>
constexpr bool is_float<double> = true;

/// `value` where |value| < bound, else 0. NaN gives 0.
template <class Float>
inline Float within(Float value, Float bound)
{
    return (value < bound) & (value > -bound) ? value : Float(0);
}

template <class Float>
constexpr Float two_to(int exponent)
{
    Float power = 1;
    for (; exponent > 0; --exponent)
        power *= 2;
    for (; exponent < 0; ++exponent)
        power /= 2;
    return power;
}

/// Truncation to 32 bits, 2^31 with the sign bit alone where they cannot hold the value.
template <class Float>
inline std::int32_t truncate_to_int32(Float value)
{
    // -2^31 itself is told apart from what lies beyond it by neither test, and need not be: both give it.
    const bool fits = (value < two_to<Float>(31)) & (value > -two_to<Float>(31));
    const auto result = static_cast<std::int32_t>(fits ? value : Float(0));
    return fits ? result : INT32_MIN;
}

/// The same for 64 bits.
template <class Float>
inline std::int64_t truncate_to_int64(Float value)
{
    const bool fits = (value < two_to<Float>(63)) & (value > -two_to<Float>(63));
    const auto result = static_cast<std::int64_t>(fits ? value : Float(0));
    return fits ? result : INT64_MIN;
}

/// Bits 0 to 15 of the 64-bit truncation; in 32 bits, the upper ones undefined.
inline std::int32_t low_16_bits(float value)
{
    // From 2^39 on a float is a multiple of 2^16.
    const float bounded = within(value, two_to<float>(39));
    const auto high = static_cast<std::int32_t>(bounded * two_to<float>(-16));
    return static_cast<std::int32_t>(bounded - static_cast<float>(high) * two_to<float>(16));
}

inline std::int32_t low_16_bits(double value)
{
    const double bounded = within(value, two_to<double>(63));
    const auto high = static_cast<std::int32_t>(bounded * two_to<double>(-32));
    const double below_32 = bounded - static_cast<double>(high) * two_to<double>(32);
    const auto middle = static_cast<std::int32_t>(below_32 * two_to<double>(-16));
    return static_cast<std::int32_t>(below_32 - static_cast<double>(middle) * two_to<double>(16));
}

/// Bits 0 to 7 of the 64-bit truncation.
inline std::int32_t low_8_bits(float value)
{
    return static_cast<std::int32_t>(within(value, two_to<float>(31))); // from 2^31 on a multiple of 2^8
}

inline std::int32_t low_8_bits(double value)
{
    return low_16_bits(value);
}

/// A value at or above 2^63, NaN included, has 2^63 subtracted and the top bit set by "or".
template <class Float>
inline std::uint64_t truncate_to_uint64(Float value)
{
    const bool below = value < two_to<Float>(63);
    const Float rest = below ? value : value - two_to<Float>(63);
    const std::uint64_t top = below ? 0 : std::uint64_t{1} << 63;
    return static_cast<std::uint64_t>(truncate_to_int64(rest)) | top;
}

template <class To, class Float>
inline To float_to_integer(Float value)
{
    constexpr bool is_signed = static_cast<To>(-1) < To(0);
    if constexpr (sizeof(To) == 8 && !is_signed)
        return truncate_to_uint64(value);
    else if constexpr (sizeof(To) == 8 || (sizeof(To) == 4 && !is_signed))
        return static_cast<To>(truncate_to_int64(value));
    else if constexpr (sizeof(To) == 4)
        return truncate_to_int32(value);
    else if constexpr (is_signed)
        return static_cast<To>(static_cast<std::int32_t>(within(value, two_to<Float>(31)))); // beyond: low bits 0
    else if constexpr (sizeof(To) == 2)
        return static_cast<To>(low_16_bits(value));
    else
        return static_cast<To>(low_8_bits(value));
}

/// A value with its top bit set is taken as negative and 2^64 added in the precision of the target, so it
/// is rounded twice. A direct cast rounds once and differs: this is wanted.
template <class Float>
inline Float uint64_to_float(std::uint64_t value)
{
    const Float as_signed = static_cast<Float>(static_cast<std::int64_t>(value));
    return as_signed + (static_cast<std::int64_t>(value) < 0 ? two_to<Float>(64) : Float(0));
}

template <class To, class From>
inline To convert_value(From value)
{
    if constexpr (is_float<From> && !is_float<To>)
        return float_to_integer<To>(value);
    else if constexpr (is_float<To> && !is_float<From> && sizeof(From) == 8 && static_cast<From>(-1) > From(0))
        return uint64_to_float<To>(value);
    else
        return static_cast<To>(value); // integers modulo 2^n; to float the nearest value
}
