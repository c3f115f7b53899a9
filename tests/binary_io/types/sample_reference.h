/// The conversion of one sample, worked out bit by bit.
///
/// It shares nothing with the library: a sample is a pattern of bits, a number is a sign, a whole
/// magnitude and a power of two, and no floating-point operation takes part. So it holds the same
/// answer on every processor, and for numbers that a cast may not touch.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace vela_test {

__extension__ typedef unsigned __int128 Wide;

enum class Form
{
    unsigned_integer,
    signed_integer,
    binary_float,
};

/// A numeric scalar. Ids and sizes are written out, they stand in files.
struct ScalarKind
{
    std::uint32_t id;
    const char* name;
    unsigned size_bytes;
    Form form;

    constexpr unsigned bits() const { return size_bytes * 8; }
    constexpr bool is_float() const { return form == Form::binary_float; }
    constexpr std::uint64_t mask() const { return ~std::uint64_t{0} >> (64 - bits()); }
    /// Of a float: bits of the significand with the hidden one, and the bias of the exponent.
    constexpr int precision() const { return size_bytes == 4 ? 24 : 53; }
    constexpr int bias() const { return size_bytes == 4 ? 127 : 1023; }
};

constexpr std::uint32_t complex_flag = 0x40000000;

constexpr ScalarKind uint8_kind = {0x00001, "Uint8", 1, Form::unsigned_integer};
constexpr ScalarKind int8_kind = {0x00002, "Int8", 1, Form::signed_integer};
constexpr ScalarKind uint16_kind = {0x00004, "Uint16", 2, Form::unsigned_integer};
constexpr ScalarKind int16_kind = {0x00008, "Int16", 2, Form::signed_integer};
constexpr ScalarKind uint32_kind = {0x00010, "Uint32", 4, Form::unsigned_integer};
constexpr ScalarKind int32_kind = {0x00020, "Int32", 4, Form::signed_integer};
constexpr ScalarKind single_kind = {0x00040, "Single", 4, Form::binary_float};
constexpr ScalarKind double_kind = {0x00080, "Double", 8, Form::binary_float};
constexpr ScalarKind uint64_kind = {0x01000, "Uint64", 8, Form::unsigned_integer};
constexpr ScalarKind int64_kind = {0x02000, "Int64", 8, Form::signed_integer};

constexpr std::array<ScalarKind, 10> scalar_kinds = {uint8_kind, int8_kind,   uint16_kind, int16_kind,  uint32_kind,
                                                     int32_kind, single_kind, double_kind, uint64_kind, int64_kind};

template <typename Word>
std::uint64_t load_word(const unsigned char* from)
{
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

template <typename Word>
void store_word(unsigned char* to, std::uint64_t bits)
{
    const Word word = static_cast<Word>(bits);
    std::memcpy(to, &word, sizeof word);
}

inline std::uint64_t load_bits(unsigned size_bytes, const unsigned char* from)
{
    switch (size_bytes)
    {
    case 1:
        return load_word<std::uint8_t>(from);
    case 2:
        return load_word<std::uint16_t>(from);
    case 4:
        return load_word<std::uint32_t>(from);
    case 8:
        return load_word<std::uint64_t>(from);
    default:
        throw std::logic_error("no sample has this size");
    }
}

inline void store_bits(unsigned size_bytes, unsigned char* to, std::uint64_t bits)
{
    switch (size_bytes)
    {
    case 1:
        return store_word<std::uint8_t>(to, bits);
    case 2:
        return store_word<std::uint16_t>(to, bits);
    case 4:
        return store_word<std::uint32_t>(to, bits);
    case 8:
        return store_word<std::uint64_t>(to, bits);
    default:
        throw std::logic_error("no sample has this size");
    }
}

/// A finite number is (-1)^negative * magnitude * 2^exponent, exactly.
struct Number
{
    enum class Range
    {
        finite,
        infinite,
        nan,
    };

    Range range = Range::finite;
    bool negative = false;
    std::uint64_t magnitude = 0;
    int exponent = 0;
};

inline Number decode_float(const ScalarKind& kind, std::uint64_t bits)
{
    const int fraction_bits = kind.precision() - 1;
    const std::uint64_t fraction = bits & ((std::uint64_t{1} << fraction_bits) - 1);
    const int biased = static_cast<int>((bits >> fraction_bits) & static_cast<unsigned>(2 * kind.bias() + 1));
    Number number;
    number.negative = ((bits >> (kind.bits() - 1)) & 1) != 0;
    if (biased == 2 * kind.bias() + 1)
    {
        number.range = fraction == 0 ? Number::Range::infinite : Number::Range::nan;
        return number;
    }
    number.magnitude = biased == 0 ? fraction : fraction | (std::uint64_t{1} << fraction_bits);
    number.exponent = (biased == 0 ? 1 : biased) - kind.bias() - fraction_bits;
    return number;
}

inline Number decode(const ScalarKind& kind, std::uint64_t bits)
{
    if (kind.is_float())
        return decode_float(kind, bits);
    Number number;
    number.negative = kind.form == Form::signed_integer && ((bits >> (kind.bits() - 1)) & 1) != 0;
    number.magnitude = number.negative ? (~bits + 1) & kind.mask() : bits;
    return number;
}

inline bool is_nan(const ScalarKind& kind, std::uint64_t bits)
{
    return kind.is_float() && decode_float(kind, bits).range == Number::Range::nan;
}

/// Truncates toward zero to a signed integer of `width` bits, in two's complement of 64 bits.
/// What does not fit gives -2^(width - 1), the indefinite value.
inline std::uint64_t truncated(const Number& number, unsigned width)
{
    const Wide limit = Wide{1} << (width - 1);
    const std::uint64_t indefinite = ~static_cast<std::uint64_t>(limit) + 1;
    if (number.range != Number::Range::finite)
        return indefinite;
    Wide whole = 0;
    if (number.exponent <= -64)
        whole = 0;
    else if (number.exponent <= 0)
        whole = number.magnitude >> -number.exponent;
    else if (number.exponent <= 63)
        whole = Wide{number.magnitude} << number.exponent;
    else if (number.magnitude != 0)
        return indefinite;
    if (number.negative ? whole > limit : whole >= limit)
        return indefinite;
    const std::uint64_t low = static_cast<std::uint64_t>(whole);
    return number.negative ? ~low + 1 : low;
}

inline bool is_at_least_2_to_63(const Number& number)
{
    if (number.range != Number::Range::finite)
        return number.range == Number::Range::infinite && !number.negative;
    if (number.negative || number.magnitude == 0)
        return false;
    int length = 0;
    while (length < 64 && (number.magnitude >> length) != 0)
        ++length;
    return length + number.exponent >= 64;
}

/// Truncates to uint64: signed below 2^63; from there on, 2^63 less, and the top bit on again.
inline std::uint64_t truncated_unsigned(const Number& number)
{
    const std::uint64_t top_bit = std::uint64_t{1} << 63;
    if (number.range == Number::Range::nan)
        return top_bit;
    if (!is_at_least_2_to_63(number))
        return truncated(number, 64);
    const bool below_2_to_64 = number.range == Number::Range::finite && number.exponent <= 63 &&
                               (Wide{number.magnitude} << (number.exponent < 0 ? 0 : number.exponent)) >> 64 == 0;
    if (!below_2_to_64)
        return top_bit;
    const std::uint64_t whole =
        number.exponent < 0 ? number.magnitude >> -number.exponent : number.magnitude << number.exponent;
    return whole | top_bit;
}

/// The float nearest to (-1)^negative * magnitude * 2^exponent, ties to the even one.
inline std::uint64_t nearest_float(const ScalarKind& kind, bool negative, Wide magnitude, int exponent)
{
    const std::uint64_t sign = negative ? std::uint64_t{1} << (kind.bits() - 1) : 0;
    if (magnitude == 0)
        return sign;
    int length = 0;
    while (length < 128 && (magnitude >> length) != 0)
        ++length;

    // `quantum` is the exponent of the last bit that the float can hold.
    const int fraction_bits = kind.precision() - 1;
    const int least_quantum = 1 - kind.bias() - fraction_bits;
    int quantum = exponent + length - kind.precision();
    if (quantum < least_quantum)
        quantum = least_quantum;

    const int dropped = quantum - exponent;
    Wide significand = 0;
    if (dropped <= 0)
    {
        significand = magnitude << -dropped;
    }
    else if (dropped < 128)
    {
        significand = magnitude >> dropped;
        const Wide rest = magnitude - (significand << dropped);
        const Wide half = Wide{1} << (dropped - 1);
        if (rest > half || (rest == half && (significand & 1) != 0))
            ++significand;
    }
    if (significand >> kind.precision() != 0)
    {
        significand >>= 1;
        ++quantum;
    }
    const std::uint64_t hidden = std::uint64_t{1} << fraction_bits;
    const std::uint64_t low = static_cast<std::uint64_t>(significand);
    if (low < hidden) // denormal or zero
        return sign | low;
    const int biased = quantum + fraction_bits + kind.bias();
    if (biased > 2 * kind.bias())
        return sign | (static_cast<std::uint64_t>(2 * kind.bias() + 1) << fraction_bits);
    return sign | (static_cast<std::uint64_t>(biased) << fraction_bits) | (low - hidden);
}

/// uint64 to a float: rounded as a signed number, and 2^64 added with a second rounding.
inline std::uint64_t float_of_uint64(const ScalarKind& kind, std::uint64_t value)
{
    const Number as_signed = decode(int64_kind, value);
    const std::uint64_t first = nearest_float(kind, as_signed.negative, as_signed.magnitude, 0);
    if (!as_signed.negative)
        return first;
    const Number rounded = decode_float(kind, first);
    const Wide whole = rounded.exponent < 0 ? Wide{rounded.magnitude} >> -rounded.exponent
                                            : Wide{rounded.magnitude} << rounded.exponent;
    return nearest_float(kind, false, (Wide{1} << 64) - whole, 0);
}

/// Some quiet NaN; which one a cast gives is left to the processor.
inline std::uint64_t quiet_nan(const ScalarKind& kind)
{
    const int fraction_bits = kind.precision() - 1;
    return (static_cast<std::uint64_t>(2 * kind.bias() + 1) << fraction_bits) |
           (std::uint64_t{1} << (fraction_bits - 1));
}

/// The bits of one converted sample.
inline std::uint64_t converted_bits(const ScalarKind& source, const ScalarKind& target, std::uint64_t bits)
{
    if (source.id == target.id)
        return bits;
    const Number number = decode(source, bits);
    if (!target.is_float())
    {
        if (!source.is_float())
            return (number.negative ? ~number.magnitude + 1 : number.magnitude) & target.mask();
        if (target.id == uint64_kind.id)
            return truncated_unsigned(number);
        const bool by_32_bits = target.form == Form::signed_integer && target.size_bytes <= 4;
        return truncated(number, by_32_bits ? 32 : 64) & target.mask();
    }
    if (source.id == uint64_kind.id)
        return float_of_uint64(target, bits);
    if (number.range == Number::Range::nan)
        return quiet_nan(target);
    if (number.range == Number::Range::infinite)
        return (std::uint64_t{number.negative} << (target.bits() - 1)) |
               (static_cast<std::uint64_t>(2 * target.bias() + 1) << (target.precision() - 1));
    return nearest_float(target, number.negative, number.magnitude, number.exponent);
}

/// True where `actual` is what `expected` asks for. A NaN that went through a cast may have any payload.
inline bool is_expected(const ScalarKind& source, const ScalarKind& target, std::uint64_t expected,
                        std::uint64_t actual)
{
    return expected == actual || (source.id != target.id && is_nan(target, expected) && is_nan(target, actual));
}

} // namespace vela_test
