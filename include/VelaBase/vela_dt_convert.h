/// Bulk conversion of samples from one type to another.
#pragma once

#include <VelaBase/export.h>
#include <VelaBase/vela_dt.h>

#include <cstdint>

extern "C" {

/// Converts `count` samples of the type `source_dt` at `source` to the type `target_dt` at `target`.
///
/// The two optional buffers choose one of three modes:
///
/// | `imag_source` | `imag_target` | mode                                                              |
/// |---------------|---------------|-------------------------------------------------------------------|
/// | null          | null          | plain: one array in, one array out                                |
/// | null          | set           | split: a complex array in; real parts to `target`, imaginary ones to `imag_target`; `target_dt` is the scalar type of both |
/// | set           | null          | join: real parts from `source`, imaginary ones from `imag_source`; `source_dt` is the scalar type of both; a complex array out |
///
/// Both set is not supported. Supported are: in plain mode any of the 10 numeric scalars to any
/// scalar or complex type, any complex type to any complex type, and the colour types 0x400 and
/// 0x800 among each other; in split mode any complex type to any scalar; in join mode any scalar to
/// any complex type.
///
/// Nothing saturates and nothing is rounded on the way to an integer:
/// - integer to integer keeps the low bits; widening extends the sign of a signed source;
/// - float to int8, int16, int32 truncates to 32 bits, then keeps the low bits; what 32 bits cannot
///   hold, NaN included, counts as -2^31;
/// - float to uint8, uint16, uint32, int64 truncates to 64 bits, then keeps the low bits; what
///   64 bits cannot hold, NaN included, counts as -2^63;
/// - float to uint64 does the same below 2^63; otherwise (NaN included) 2^63 is subtracted, the rest
///   is truncated and the top bit is set;
/// - integer to float takes the nearest value; a uint64 is taken as signed, and 2^64 is added in the
///   target's precision when its top bit was set, so a value may be rounded twice;
/// - a scalar becomes the real part of a complex sample, the imaginary part is 0;
/// - 0x400 to 0x800 packs and 0x800 to 0x400 unpacks, as `_s_vela_RGB` does.
/// The result is the same on every processor, but for the payload of a NaN that changes its width.
///
/// The buffers need no alignment beyond that of bytes. An output must not overlap any other buffer;
/// the two inputs of a join may. `count` 0 is fine, also with null buffers.
///
/// @returns 0 when done; -1 when the combination is not supported, and then nothing was written.
VELA_API int vela_dt_convert(std::uint32_t source_dt, std::uint32_t target_dt, const void* source, void* target,
                             std::uint64_t count, const void* imag_source, void* imag_target);
}
