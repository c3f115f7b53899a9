/// DBL files: one stack of doubles or singles with at most four dimensions, behind a header of 128 bytes.
///
/// An older format, explained in docs/format-dbl.md. It has no magic number: any file of 128 bytes or more reads as
/// one, and only the ending ".dbl" of its name says what it is.
///
/// Both functions answer by their result, without text or exception. Paths are UTF-8. No pointer may be null.
#pragma once

#include <VelaBase/export.h>

extern "C" {

/// Writes a file; one that exists is replaced. It is locked meanwhile, so a file that is open elsewhere is refused.
///
/// `dims` and `lengths` have four entries each, dimension 0 first, which runs fastest. The header holds the low 16 bits
/// of a dimension: 70000 is stored as 4464, with all samples behind it.
///
/// `data` are doubles, as many as the product of `dims`, of which the low 32 bits count. `single` says how they are
/// stored:
///
/// | `single`      | samples in the file                                                                  |
/// |---------------|--------------------------------------------------------------------------------------|
/// | 0             | doubles                                                                              |
/// | 1             | singles, converted from the doubles                                                  |
/// | anything else | marked as singles, and not converted: 4 bytes a sample, taken from `data` as they are |
///
/// @returns 1 when done, 0 when not:
///   - the product of `dims`, as a signed 32-bit number, is below 0, or the file cannot be opened: nothing has changed;
///   - no memory for the singles: the file is empty, and stays open and locked till the end of the process. This is
///   wanted.
///   - a write fails: the file is closed and holds what was written. The memory of the singles is not released.
VELA_API int vela_dbl_write(const char* path, const int* dims, const float* lengths, const void* data, int single);

/// Reads a file, its header or its samples too. It takes no lock, so it reads a file that is open elsewhere.
///
/// On entry `*data_or_mode` holds, in place of an address, the mode; 0, which is null, is one of the others:
///
/// | mode       | buffer      | samples   | samples are read |
/// |------------|-------------|-----------|------------------|
/// | 0xA0, 0xAD | none        | as stored | no               |
/// | 0xAA       | the caller's | singles   | yes              |
/// | 0xAB       | the caller's | as stored | yes              |
/// | 0xAC       | the caller's | doubles   | yes              |
/// | 0xAE       | allocated   | singles   | yes              |
/// | 0xAF       | allocated   | as stored | yes              |
/// | any other  | allocated   | doubles   | yes              |
///
/// `dims_or_data` receives the four dimensions as an `int[4]`, but with a buffer of the caller it is that buffer, and
/// the dimensions are not given. `lengths` receives four lengths.
///
/// Where samples are read, `*data_or_mode` is their buffer on return. One that was allocated is from `malloc` or its
/// kin and the caller's to `free`. Samples lie in it without gaps, dimension 0 fastest. The number of samples is the
/// product of the dimensions, of which the low 32 bits count. A buffer of the caller must have room for them as they
/// are stored and for the result, so for 8 bytes a sample where either is doubles. An allocated one keeps its 8 bytes a
/// sample also where doubles became singles: this is wanted.
///
/// A file that ends early is no failure. Samples that it does not bring are 0 in an allocated buffer; a buffer of the
/// caller keeps its bytes there, which are then converted as if they had been read. The header alone says how much
/// memory is asked for, up to 16 GiB, so ask a file from a stranger for its header first. Pages that no sample came for
/// are not touched.
///
/// @returns 1 if the samples are doubles, 2 if they are singles, after any conversion; 0 when not done:
///   - the file cannot be opened: nothing is given;
///   - it has fewer than 128 bytes: nothing is given, and the file stays open, unlocked, till the end of the
///     process. This is wanted.
///   - the product of the dimensions, as a signed 32-bit number, is below 0, or there is no memory for the samples:
///     lengths and dimensions are given, `*data_or_mode` is as it was.
VELA_API int vela_dbl_read(const char* path, void* dims_or_data, float* lengths, void** data_or_mode);
}
