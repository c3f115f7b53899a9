/// Fields of a file that are filled in later.
#pragma once

#include <VelaFile/VFile.h>

#include "sources/binary_io/PositionGuard.h"

#include <cstdint>

namespace Vela::detail {

/// Writes 8-byte fields anywhere in a file. At its end the file stands at `in_return_pos`, whatever happened.
class FieldPatch
{
public:
    /// Failures name `in_function`.
    FieldPatch(VFile& in_file, std::uint64_t in_return_pos, const char* in_function)
        : file(in_file), guard(in_file, in_return_pos), function(in_function)
    {
    }

    /// @throws VelaError id -3 "Failed writing %d bytes to file!": also where the file cannot be moved
    void put(std::uint64_t field_pos, std::uint64_t value);

private:
    VFile& file;
    PositionGuard guard;
    const char* function;
};

/// Moves a file to where it is to be written, since bytes in the wrong place would destroy what stands there.
/// @throws VelaError id -3 "Failed writing %d bytes to file!" on `size_bytes`, in `function`: the system refuses the
///         position
void move_to_write(VFile& file, std::uint64_t position, std::uint64_t size_bytes, const char* function);

} // namespace Vela::detail
