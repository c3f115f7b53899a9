// One value from one scalar type to another, without undefined behaviour and the same on every processor.
//
// A cast of a float that the integer cannot hold is undefined in C++, and processors differ. What x86 gives
// for such a value, the "integer indefinite" with the sign bit alone, is what every processor has to give.
//
// Included once for each instruction set, inside a namespace of its own: nothing here may come from a header
// whose inline functions the linker could merge between the sets.

template <class T>
constexpr bool is_float = false;
template <>
inline constexpr bool is_float<float> = true;
template <>
inline constexpr bool is_float<double> = true;

template <class T>
constexpr bool is_signed = static_cast<T>(-1) < T(0);

template <class Float>
constexpr Float two_to(int exponent)
{
    Float power = 1;
    for (; exponent > 0; --exponent)
        power *= 2;
    return power;
}

/// Truncation to 32 bits, the sign bit alone where they cannot hold the value.
template <class Float>
inline std::int32_t truncate_to_int32(Float value)
{
    // -2^31 itself and what truncates to it need no cast: they get the same answer.
    return value < two_to<Float>(31) && value > -two_to<Float>(31) ? static_cast<std::int32_t>(value) : INT32_MIN;
}

/// The same for 64 bits.
template <class Float>
inline std::int64_t truncate_to_int64(Float value)
{
    return value < two_to<Float>(63) && value > -two_to<Float>(63) ? static_cast<std::int64_t>(value) : INT64_MIN;
}

/// A value at or above 2^63, NaN included, has 2^63 subtracted and the top bit set by "or".
template <class Float>
inline std::uint64_t truncate_to_uint64(Float value)
{
    if (value < two_to<Float>(63))
        return static_cast<std::uint64_t>(truncate_to_int64(value));
    return static_cast<std::uint64_t>(truncate_to_int64(value - two_to<Float>(63))) | (std::uint64_t{1} << 63);
}

template <class To, class Float>
inline To float_to_integer(Float value)
{
    if constexpr (sizeof(To) == 8 && !is_signed<To>)
        return truncate_to_uint64(value);
    else if constexpr (sizeof(To) == 8 || !is_signed<To>)
        return static_cast<To>(truncate_to_int64(value)); // unsigned: the low bits of 64
    else
        return static_cast<To>(truncate_to_int32(value));
}

/// A value with its top bit set is taken as negative and 2^64 added in the precision of the target, so it
/// is rounded twice. A direct cast rounds once and differs: this is wanted.
template <class Float>
inline Float uint64_to_float(std::uint64_t value)
{
    const auto as_signed = static_cast<std::int64_t>(value);
    return static_cast<Float>(as_signed) + (as_signed < 0 ? two_to<Float>(64) : Float(0));
}

template <class To, class From>
inline To convert_value(From value)
{
    if constexpr (is_float<From> && !is_float<To>)
        return float_to_integer<To>(value);
    else if constexpr (is_float<To> && !is_float<From> && !is_signed<From> && sizeof(From) == 8)
        return uint64_to_float<To>(value);
    else
        return static_cast<To>(value); // integers modulo 2^n; to float the nearest value
}
