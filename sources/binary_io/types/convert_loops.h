// The loops over `convert_value` and the tables of them. Included inside a namespace for each instruction set.
//
// Floats become small integers in lanes of 32 bits where the instruction set has them (`Lanes`). Its truncation
// gives the integer indefinite for what 32 bits cannot hold, which for most pairs is just what the rules want in
// the low bits. Words, and unsigned targets that take their bits from 64, are tried block by block: first as
// values that the target can hold, which is what images are and costs least; else by their low bits, while no
// indefinite comes up that matters; else value by value. Written without intrinsics, as a choice between the value and
// 0 or as a search of the block before plain casts, the same loops were measured 3 to 4 times slower with SSE2 (AMD
// EPYC, GCC 12): the compiler narrows the masks along with the values.
//
// Everything else is a plain loop that the compiler turns into vector code.

#include "sources/binary_io/types/convert_value.h"

/// Samples need no alignment: every value is moved byte by byte, which compilers turn into plain moves.
template <class T>
inline T load(const void* base, std::uint64_t index)
{
    T value;
    __builtin_memcpy(&value, static_cast<const char*>(base) + index * sizeof(T), sizeof(T));
    return value;
}

template <class T>
inline void store(void* base, std::uint64_t index, T value)
{
    __builtin_memcpy(static_cast<char*>(base) + index * sizeof(T), &value, sizeof(T));
}

/// Stores of whole vectors that straddle cache lines cost up to a quarter of the speed (AVX2, AMD EPYC): loops begin
/// at such a boundary.
constexpr std::uint64_t vector_bytes = 32;

/// How many values of `size` bytes lie before the next boundary of `target`, at most `count`. None where no
/// value ends at a boundary.
inline std::uint64_t values_to_boundary(const char* target, std::uint64_t size, std::uint64_t count)
{
    const std::uint64_t bytes = (vector_bytes - reinterpret_cast<std::uintptr_t>(target) % vector_bytes) % vector_bytes;
    if (bytes % size != 0)
        return 0;
    return bytes / size < count ? bytes / size : count;
}

template <class From, class To>
void plain_run(const char* __restrict source, char* __restrict target, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
        store(target, i, convert_value<To>(load<From>(source, i)));
}

template <class From, class To>
void to_complex_run(const char* __restrict source, char* __restrict target, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
    {
        store(target, 2 * i, convert_value<To>(load<From>(source, i)));
        store(target, 2 * i + 1, To(0));
    }
}

template <class From, class To>
void split_run(const char* __restrict source, char* __restrict target, char* __restrict imag_target,
               std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
    {
        store(target, i, convert_value<To>(load<From>(source, 2 * i)));
        store(imag_target, i, convert_value<To>(load<From>(source, 2 * i + 1)));
    }
}

template <class From, class To>
void join_run(const char* __restrict source, const char* __restrict imag_source, char* __restrict target,
              std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
    {
        store(target, 2 * i, convert_value<To>(load<From>(source, i)));
        store(target, 2 * i + 1, convert_value<To>(load<From>(imag_source, i)));
    }
}

/// Same size and both floats or both integers: a conversion only moves the bits.
template <class From, class To>
constexpr bool keeps_bits = sizeof(From) == sizeof(To) && is_float<From> == is_float<To>;

#if defined(VELA_LANES)

/// Values of a block; a multiple of what one step of any lanes takes.
constexpr std::uint64_t block_size = 1024;

/// Calls `step(target, a, b, c, d)` with the truncated values of one block, four vectors at a time.
template <class From, class To, class Step>
inline void truncate_block(const char* source, char* target, Step step)
{
    for (std::uint64_t i = 0; i < block_size; i += 4 * Lanes::count)
    {
        const char* const in = source + i * sizeof(From);
        constexpr std::uint64_t vector = Lanes::count * sizeof(From);
        step(target + i * sizeof(To), Lanes::truncate(in, From()), Lanes::truncate(in + vector, From()),
             Lanes::truncate(in + 2 * vector, From()), Lanes::truncate(in + 3 * vector, From()));
    }
}

/// One block to an unsigned target. False when it has a value that the target cannot hold; what is then in the
/// target is of no use.
template <class From, class To>
inline bool block_in_range(const char* source, char* target)
{
    auto seen = Lanes::none();
    truncate_block<From, To>(source, target,
                             [&seen](char* out, auto a, auto b, auto c, auto d)
                             {
                                 if constexpr (sizeof(To) == 1)
                                     seen = Lanes::either(seen, Lanes::store_uint8(out, a, b, c, d));
                                 else
                                 {
                                     seen = Lanes::either(seen, Lanes::store_uint16(out, a, b));
                                     char* const next = out + 2 * sizeof(To) * Lanes::count;
                                     seen = Lanes::either(seen, Lanes::store_uint16(next, c, d));
                                 }
                             });
    return !Lanes::any_of_bits(seen, sizeof(To) == 1 ? Lanes::beyond_uint8 : Lanes::beyond_uint16);
}

/// One block to words through signed saturation. False when a value may have been lost: one that reached a limit
/// of int16, or for uint16 a negative one. One operation a value less than `block_in_range` with SSE2, which takes
/// single to uint16 from 0.73 to 0.97 of the speed of a copy (AMD EPYC).
template <class From, class To>
inline bool block_in_words(const char* source, char* target)
{
    auto smallest = Lanes::none();
    auto largest = Lanes::none();
    truncate_block<From, To>(source, target,
                             [&](char* out, auto a, auto b, auto c, auto d)
                             {
                                 const auto ab = Lanes::store_saturated(out, a, b);
                                 const auto cd = Lanes::store_saturated(out + 2 * sizeof(To) * Lanes::count, c, d);
                                 smallest = Lanes::smaller_words(smallest, Lanes::smaller_words(ab, cd));
                                 largest = Lanes::larger_words(largest, Lanes::larger_words(ab, cd));
                             });
    constexpr auto signs_of_words = static_cast<std::int32_t>(0x80008000);
    const bool too_small =
        is_signed<To> ? Lanes::any_word(smallest, INT16_MIN) : Lanes::any_of_bits(smallest, signs_of_words);
    return !too_small && !Lanes::any_word(largest, INT16_MAX);
}

/// One block by the low bits of the truncated values. With `look`, false when an indefinite came up.
template <class From, class To, bool look>
inline bool block_by_low_bits(const char* source, char* target)
{
    auto seen = Lanes::none();
    truncate_block<From, To>(
        source, target,
        [&](char* out, auto a, auto b, auto c, auto d)
        {
            if constexpr (look)
                seen =
                    Lanes::either(Lanes::either(seen, Lanes::either(Lanes::is_indefinite(a), Lanes::is_indefinite(b))),
                                  Lanes::either(Lanes::is_indefinite(c), Lanes::is_indefinite(d)));
            if constexpr (sizeof(To) == 1)
                return Lanes::store_low_8(out, a, b, c, d);
            Lanes::store_low_16(out, a, b);
            Lanes::store_low_16(out + 2 * sizeof(To) * Lanes::count, c, d);
        });
    return !look || !Lanes::any_of_bits(seen, -1);
}

/// Signed targets take their bits from 32, and so may a byte of a single: from 2^31 on it is a multiple of 2^8.
template <class From, class To>
constexpr bool takes_indefinite = is_signed<To> || (sizeof(To) == 1 && sizeof(From) == 4);

template <class From, class To>
void floats_to_small_integers(const char* source, char* target, std::uint64_t count)
{
    bool in_words = sizeof(To) == 2; // once a block was not, no more are tried
    std::uint64_t done = 0;
    for (; count - done >= block_size; done += block_size)
    {
        const char* const in = source + done * sizeof(From);
        char* const out = target + done * sizeof(To);
        if constexpr (sizeof(To) == 2)
            in_words = in_words && block_in_words<From, To>(in, out);
        if (in_words)
            continue;
        if constexpr (takes_indefinite<From, To>)
            block_by_low_bits<From, To, false>(in, out);
        else if (!block_in_range<From, To>(in, out) && !block_by_low_bits<From, To, true>(in, out))
            plain_run<From, To>(in, out, block_size);
    }
    plain_run<From, To>(source + done * sizeof(From), target + done * sizeof(To), count - done);
}

/// Bytes to doubles: three widenings, which the compiler does through every size between; 0.9 of the speed of a copy
/// against 0.77 with AVX2 (target of 4 MiB, AMD EPYC, GCC 12).
inline void bytes_to_doubles(const char* source, char* target, std::uint64_t count)
{
    constexpr std::uint64_t step = 8;
    std::uint64_t done = 0;
    for (; count - done >= step; done += step)
        Lanes::widen_to_doubles(source + done, target + done * sizeof(double));
    plain_run<std::uint8_t, double>(source + done, target + done * sizeof(double), count - done);
}

/// Pairs that only change places, where the instruction set does that better than the compiler: measured with AVX2,
/// 1.04 of the speed of a copy against 0.87 (AMD EPYC, GCC 12).
template <class From, class To>
constexpr bool interleaves_in_lanes = Lanes::interleaves&& keeps_bits<From, To> && (sizeof(To) == 4 || sizeof(To) == 8);

/// Both give the number of pairs that they moved.
template <class T, class L = Lanes>
inline std::uint64_t split_in_lanes(const char* pairs, char* first, char* second, std::uint64_t count)
{
    constexpr std::uint64_t step = 32 / sizeof(T);
    std::uint64_t done = 0;
    for (; count - done >= step; done += step)
        L::template deinterleave<sizeof(T)>(pairs + done * 2 * sizeof(T), first + done * sizeof(T),
                                            second + done * sizeof(T));
    return done;
}

template <class T, class L = Lanes>
inline std::uint64_t join_in_lanes(const char* first, const char* second, char* pairs, std::uint64_t count)
{
    constexpr std::uint64_t step = 32 / sizeof(T);
    std::uint64_t done = 0;
    for (; count - done >= step; done += step)
        L::template interleave<sizeof(T)>(first + done * sizeof(T), second + done * sizeof(T),
                                          pairs + done * 2 * sizeof(T));
    return done;
}

#else

template <class From, class To>
constexpr bool interleaves_in_lanes = false;

#endif

template <class From, class To>
void convert_plain(const void* source, void* target, std::uint64_t count)
{
    const auto* in = static_cast<const char*>(source);
    auto* out = static_cast<char*>(target);
    if constexpr (keeps_bits<From, To>)
    {
        if (count != 0)
            __builtin_memcpy(out, in, count * sizeof(To)); // the same bits
    }
    else
    {
        const std::uint64_t head = values_to_boundary(out, sizeof(To), count);
        plain_run<From, To>(in, out, head);
        in += head * sizeof(From);
        out += head * sizeof(To);
#if defined(VELA_LANES)
        if constexpr (is_float<From> && !is_float<To> && sizeof(To) <= 2)
            return floats_to_small_integers<From, To>(in, out, count - head);
        if constexpr (sizeof(From) == 1 && !is_signed<From> && is_float<To> && sizeof(To) == 8)
            return bytes_to_doubles(in, out, count - head);
#endif
        plain_run<From, To>(in, out, count - head);
    }
}

template <class From, class To>
void convert_to_complex(const void* source, void* target, std::uint64_t count)
{
    const auto* const in = static_cast<const char*>(source);
    auto* const out = static_cast<char*>(target);
    const std::uint64_t head = values_to_boundary(out, 2 * sizeof(To), count);
    to_complex_run<From, To>(in, out, head);
    to_complex_run<From, To>(in + head * sizeof(From), out + head * 2 * sizeof(To), count - head);
}

template <class From, class To>
void convert_split(const void* source, void* target, void* imag_target, std::uint64_t count)
{
    const auto* const in = static_cast<const char*>(source);
    auto* const out = static_cast<char*>(target);
    auto* const imag_out = static_cast<char*>(imag_target);
    std::uint64_t head = values_to_boundary(out, sizeof(To), count);
    split_run<From, To>(in, out, imag_out, head);
    if constexpr (interleaves_in_lanes<From, To>)
        head += split_in_lanes<To>(in + head * 2 * sizeof(To), out + head * sizeof(To), imag_out + head * sizeof(To),
                                   count - head);
    split_run<From, To>(in + head * 2 * sizeof(From), out + head * sizeof(To), imag_out + head * sizeof(To),
                        count - head);
}

template <class From, class To>
void convert_join(const void* source, const void* imag_source, void* target, std::uint64_t count)
{
    const auto* const in = static_cast<const char*>(source);
    const auto* const imag_in = static_cast<const char*>(imag_source);
    auto* const out = static_cast<char*>(target);
    std::uint64_t head = values_to_boundary(out, 2 * sizeof(To), count);
    join_run<From, To>(in, imag_in, out, head);
    if constexpr (interleaves_in_lanes<From, To>)
        head += join_in_lanes<To>(in + head * sizeof(To), imag_in + head * sizeof(To), out + head * 2 * sizeof(To),
                                  count - head);
    join_run<From, To>(in + head * sizeof(From), imag_in + head * sizeof(From), out + head * 2 * sizeof(To),
                       count - head);
}

template <class... Scalars>
struct TablesOf
{
    template <class From>
    static constexpr void fill_row(ConvertTables& tables, std::size_t row)
    {
        std::size_t column = 0;
        (
            [&]
            {
                tables.scalar[row][column] = convert_plain<From, Scalars>;
                tables.to_complex[row][column] = convert_to_complex<From, Scalars>;
                tables.split[row][column] = convert_split<From, Scalars>;
                tables.join[row][column] = convert_join<From, Scalars>;
                ++column;
            }(),
            ...);
    }

    static constexpr ConvertTables make()
    {
        static_assert(sizeof...(Scalars) == scalar_count);
        ConvertTables tables{};
        std::size_t row = 0;
        (fill_row<Scalars>(tables, row++), ...);
        return tables;
    }
};

typedef TablesOf<std::uint8_t, char, std::uint16_t, std::int16_t, std::uint32_t, std::int32_t, float, double,
                 std::uint64_t, std::int64_t>
    AllTables;
