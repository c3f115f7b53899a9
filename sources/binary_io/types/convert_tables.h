/// The conversion loops of one instruction set, as tables to select from once a call.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Vela::detail {

/// The scalars in the order of the tables: uint8, int8, uint16, int16, uint32, int32, single, double, uint64, int64.
constexpr std::size_t scalar_count = 10;

/// `count` values from `source` to `target`.
typedef void (*PlainLoop)(const void* source, void* target, std::uint64_t count);
/// `count` complex samples from `source`, real parts to `target`, imaginary parts to `imag_target`.
typedef void (*SplitLoop)(const void* source, void* target, void* imag_target, std::uint64_t count);
/// Real parts from `source`, imaginary parts from `imag_source`, `count` complex samples to `target`.
typedef void (*JoinLoop)(const void* source, const void* imag_source, void* target, std::uint64_t count);

/// First index: the scalar of the source, second: that of the target.
struct ConvertTables
{
    /// A complex run is converted as a run of twice as many scalars.
    PlainLoop scalar[scalar_count][scalar_count];
    PlainLoop to_complex[scalar_count][scalar_count];
    SplitLoop split[scalar_count][scalar_count];
    JoinLoop join[scalar_count][scalar_count];
};

extern const ConvertTables convert_tables_baseline;
#if defined(VELA_X86_VARIANTS)
extern const ConvertTables convert_tables_avx2;
#endif

} // namespace Vela::detail
