/// Samples along one axis: converted, gathered and scattered.
#pragma once

#include <VelaBase/vela_dt.h>

#include <cstddef>
#include <cstdint>

namespace Vela::detail {

/// Converts samples that lie side by side, between any two types of iterators, as iterators do.
class RowConverter
{
public:
    RowConverter(vela_dt source_dt, vela_dt target_dt);

    std::size_t source_size() const { return source_bytes; }
    std::size_t target_size() const { return target_bytes; }
    /// Whether nothing is changed on the way.
    bool is_plain() const { return source_id == target_id; }

    void operator()(const unsigned char* source, unsigned char* target, std::uint64_t count) const;

private:
    void drop_imaginary(const unsigned char* source, unsigned char* target, std::uint64_t count) const;

    std::uint32_t source_id;
    std::uint32_t target_id;
    std::size_t source_bytes;
    std::size_t target_bytes;
};

/// What depends on the size of a sample alone.
struct SampleMoves
{
    /// `count` samples that are `stride` bytes apart, side by side to `target`.
    void (*gather)(const unsigned char* source, std::uint64_t stride, unsigned char* target, std::uint64_t count);
    /// `count` samples side by side, to `target` with `stride` bytes from one to the next.
    void (*scatter)(const unsigned char* source, unsigned char* target, std::uint64_t stride, std::uint64_t count);
    /// See `transpose_tile`.
    void (*transpose)(const unsigned char* source, std::size_t source_step, std::size_t rows, std::size_t columns,
                      unsigned char* target, std::size_t row_step, std::size_t column_step);
};

/// For 1, 2, 4, 8 and 16 bytes, the sizes of the types of iterators.
const SampleMoves& moves_of_size(std::size_t size_bytes);

} // namespace Vela::detail
