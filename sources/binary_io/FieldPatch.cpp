#include "sources/binary_io/FieldPatch.h"

#include <VelaBase/VelaError.h>

#include "sources/file/file_errors.h"

namespace Vela::detail {

void FieldPatch::put(std::uint64_t field_pos, std::uint64_t value)
{
    move_to_write(file, field_pos, sizeof value, function);
    file.write_value(value);
}

void move_to_write(VFile& file, std::uint64_t position, std::uint64_t size_bytes, const char* function)
{
    // All ones would be the end of the file.
    if (position == VFileAccess::all_ones || file.seek(position) == VFileAccess::all_ones)
        throw VelaError(function, __FILE__, __LINE__)
            .do_oserr()("Failed writing %d bytes to file!", low_bits(size_bytes))(-3);
}

} // namespace Vela::detail
