/// Numbers of the property tree as numbers of another type.
#pragma once

#include <VelaBase/export.h>
#include <VelaProps/VProp.h>

/// Writes the number or the array of numbers in `prop` to `out` as the type `target`.
///
/// `out` points to a `T`, for a complex id to a `std::complex<T>`, and with the array flag to a `VProparray` of exactly
/// that element type: nothing can check it. "cplx_logical" is a `std::complex<bool>`.
///
/// Real numbers ("uint8" to "double" and "logical") become any of them, and complex ones with the imaginary part 0.
/// Complex numbers become complex numbers, part by part. A scalar becomes an array of size (1, 1); an array keeps
/// its size, as `VProparrayBase::get_size(true)` gives it; what the array held before is gone, but for its flags.
///
/// Numbers are converted as by `static_cast`: integers keep their low bits, floating-point numbers lose their fraction
/// towards zero; one that the integer cannot hold becomes what `vela_dt_convert` makes of it, on every processor.
/// For "logical", all but 0 is true, NaN too.
///
/// On failure `out` is as it was.
///
/// @throws VelaError id -1 "Cannot cast from array to scalar!": also for arrays of one element
/// @throws VelaError id -1 "Invalid cast!": `prop` or `target` is no number, or `prop` is complex and `target` is not
/// @throws VelaError id -1 "Invalid size vector in property array!": see `VProparrayBase::get_size`
VELA_API void vela_prop_cast(const VProp& prop, void* out, int target);
