#include "sources/stacks/sample_rows.h"

#include <VelaBase/vela_dt_convert.h>

#include "sources/stacks/transpose_tile.h"

#include <algorithm>
#include <cstring>

namespace {

using Vela::detail::SampleMoves;

template <std::size_t size>
void gather(const unsigned char* source, std::uint64_t stride, unsigned char* target, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
        std::memcpy(target + i * size, source + i * stride, size);
}

template <std::size_t size>
void scatter(const unsigned char* source, unsigned char* target, std::uint64_t stride, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
        std::memcpy(target + i * stride, source + i * size, size);
}

template <std::size_t size>
constexpr SampleMoves moves = {gather<size>, scatter<size>, Vela::detail::transpose_tile<size>};

constexpr std::uint32_t complex_flag = vela_dt_complex;

std::uint32_t id_of(vela_dt dt)
{
    return static_cast<std::uint32_t>(dt);
}

}

const SampleMoves& Vela::detail::moves_of_size(std::size_t size_bytes)
{
    switch (size_bytes)
    {
    case 1:
        return moves<1>;
    case 2:
        return moves<2>;
    case 4:
        return moves<4>;
    case 8:
        return moves<8>;
    default:
        return moves<16>;
    }
}

Vela::detail::RowConverter::RowConverter(vela_dt source_dt, vela_dt target_dt)
    : source_id(id_of(source_dt)), target_id(id_of(target_dt)), source_bytes(vela_dt_get_size(source_id)),
      target_bytes(vela_dt_get_size(target_id))
{
}

void Vela::detail::RowConverter::operator()(const unsigned char* source, unsigned char* target,
                                            std::uint64_t count) const
{
    if (is_plain())
        std::memcpy(target, source, count * source_bytes);
    else if (vela_dt_convert(source_id, target_id, source, target, count, nullptr, nullptr) != 0)
        drop_imaginary(source, target, count);
}

/// From complex to real, the one pair that the conversion of whole arrays refuses. It splits them, though.
void Vela::detail::RowConverter::drop_imaginary(const unsigned char* source, unsigned char* target,
                                                std::uint64_t count) const
{
    constexpr std::uint64_t most = 256;
    alignas(8) unsigned char dropped[most * 8];
    while (count != 0)
    {
        const std::uint64_t step = std::min(count, most);
        vela_dt_convert(source_id, target_id & ~complex_flag, source, target, step, nullptr, dropped);
        source += step * source_bytes;
        target += step * target_bytes;
        count -= step;
    }
}
