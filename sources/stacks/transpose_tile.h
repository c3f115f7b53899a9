/// Transposes a small matrix of samples.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace Vela::detail {

/// `edge` vectors of `edge` samples of `size` bytes: 16 bytes each, whatever the size.
template <std::size_t size>
struct SquareOf;
template <>
struct SquareOf<1>
{
    typedef std::uint8_t Vector __attribute__((vector_size(16)));
};
template <>
struct SquareOf<2>
{
    typedef std::uint16_t Vector __attribute__((vector_size(16)));
};
template <>
struct SquareOf<4>
{
    typedef std::uint32_t Vector __attribute__((vector_size(16)));
};
template <>
struct SquareOf<8>
{
    typedef std::uint64_t Vector __attribute__((vector_size(16)));
};

/// (a0, b0, a1, b1, ...) of the halves that begin at `first`.
template <std::size_t first, class Vector, std::size_t... i>
inline Vector interleave(Vector a, Vector b, std::index_sequence<i...>)
{
    constexpr std::size_t edge = sizeof...(i);
    return __builtin_shufflevector(a, b, static_cast<int>(first + i / 2 + i % 2 * edge)...);
}

/// One step of a transposition: after log2(edge) of them row and column have changed places. Each step interleaves
/// row k with row k + edge / 2, which rotates the bits of "row, column" by one.
template <class Vector, std::size_t edge>
inline void interleave_rows(const Vector (&in)[edge], Vector (&out)[edge])
{
    using Indices = std::make_index_sequence<edge>;
#pragma GCC unroll 8
    for (std::size_t k = 0; k < edge / 2; ++k)
    {
        out[2 * k] = interleave<0>(in[k], in[k + edge / 2], Indices());
        out[2 * k + 1] = interleave<edge / 2>(in[k], in[k + edge / 2], Indices());
    }
}

/// The square of 16 / size rows at `source`, `source_step` bytes apart, to `target` with rows and columns exchanged.
template <std::size_t size>
inline void transpose_square(const unsigned char* source, std::size_t source_step, unsigned char* target,
                             std::size_t target_step)
{
    using Vector = typename SquareOf<size>::Vector;
    constexpr std::size_t edge = 16 / size;
    Vector rows[edge];
    Vector other[edge];
#pragma GCC unroll 16
    for (std::size_t k = 0; k < edge; ++k)
        std::memcpy(&rows[k], source + k * source_step, sizeof(Vector));
#pragma GCC unroll 4
    for (std::size_t width = 1; width < edge; width *= 4)
    {
        interleave_rows(rows, other);
        if (width * 2 < edge)
            interleave_rows(other, rows);
    }
    constexpr bool odd_steps = edge == 2 || edge == 8;
#pragma GCC unroll 16
    for (std::size_t k = 0; k < edge; ++k)
        std::memcpy(target + k * target_step, odd_steps ? &other[k] : &rows[k], sizeof(Vector));
}

/// The `rows` by `columns` samples at `source`, whose rows are `source_step` bytes apart and without gaps, to `target`:
/// row i and column j to i * `row_step` + j * `column_step` bytes.
template <std::size_t size>
void transpose_tile(const unsigned char* source, std::size_t source_step, std::size_t rows, std::size_t columns,
                    unsigned char* target, std::size_t row_step, std::size_t column_step)
{
    std::size_t square_rows = 0;
    std::size_t square_columns = 0;
    if constexpr (size < 16)
    {
        constexpr std::size_t edge = 16 / size;
        if (row_step == size)
        {
            square_rows = rows / edge * edge;
            square_columns = columns / edge * edge;
        }
        for (std::size_t j = 0; j < square_columns; j += edge)
            for (std::size_t i = 0; i < square_rows; i += edge)
                transpose_square<size>(source + i * source_step + j * size, source_step,
                                       target + i * row_step + j * column_step, column_step);
    }
    for (std::size_t j = 0; j < columns; ++j)
        for (std::size_t i = j < square_columns ? square_rows : 0; i < rows; ++i)
            std::memcpy(target + i * row_step + j * column_step, source + i * source_step + j * size, size);
}

} // namespace Vela::detail
