// The loops over `convert_value` and the tables of them. Included inside a namespace for each instruction set.

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

template <class From, class To>
void convert_plain(const void* __restrict source, void* __restrict target, std::uint64_t count)
{
    constexpr bool same_bits = sizeof(From) == sizeof(To) && is_float<From> == is_float<To>;
    if constexpr (same_bits)
    {
        if (count != 0)
            __builtin_memcpy(target, source, count * sizeof(To));
    }
    else
    {
        for (std::uint64_t i = 0; i < count; ++i)
            store(target, i, convert_value<To>(load<From>(source, i)));
    }
}

template <class From, class To>
void convert_to_complex(const void* __restrict source, void* __restrict target, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
    {
        store(target, 2 * i, convert_value<To>(load<From>(source, i)));
        store(target, 2 * i + 1, To(0));
    }
}

template <class From, class To>
void convert_split(const void* __restrict source, void* __restrict target, void* __restrict imag_target,
                   std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
    {
        store(target, i, convert_value<To>(load<From>(source, 2 * i)));
        store(imag_target, i, convert_value<To>(load<From>(source, 2 * i + 1)));
    }
}

template <class From, class To>
void convert_join(const void* __restrict source, const void* __restrict imag_source, void* __restrict target,
                  std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
    {
        store(target, 2 * i, convert_value<To>(load<From>(source, i)));
        store(target, 2 * i + 1, convert_value<To>(load<From>(imag_source, i)));
    }
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
