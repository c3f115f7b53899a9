/// Fields of a file that are filled in later.
#pragma once

#include <VelaFile/VFile.h>

#include "sources/binary_io/move_back.h"

#include <cstdint>

namespace Vela::detail {

/// Writes 8-byte fields anywhere in a file. At its end the file stands at `in_return_pos`, whatever happened.
class FieldPatch
{
public:
    /// Failures name `in_function`.
    FieldPatch(VFile& in_file, std::uint64_t in_return_pos, const char* in_function)
        : file(in_file), return_pos(in_return_pos), function(in_function)
    {
    }
    FieldPatch(const FieldPatch&) = delete;
    FieldPatch& operator=(const FieldPatch&) = delete;
    ~FieldPatch() { move_back(file, return_pos); }

    /// @throws VelaError id -3 "Failed writing %d bytes to file!": also where the file cannot be moved
    void put(std::uint64_t field_pos, std::uint64_t value);

private:
    VFile& file;
    const std::uint64_t return_pos;
    const char* function;
};

/// Moves a file to where it is to be written, since bytes in the wrong place would destroy what stands there.
/// @throws VelaError id -3 "Failed writing %d bytes to file!" on `size_bytes`, in `function`: the system refuses the
///         position
void move_to_write(VFile& file, std::uint64_t position, std::uint64_t size_bytes, const char* function);

} // namespace Vela::detail
