#include <VelaBinaryIO/VBFHeaders.h>

#include <VelaBase/VelaError.h>
#include <VelaFile/VFileAccess.h>

#include "sources/binary_io/StackRecord.h"
#include "sources/binary_io/file_format.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

[[noreturn]] void throw_no_stack_header(int line)
{
    throw VelaError("VBFStackImp::read_info", __FILE__, line)("Stack header not in vbf format!")(-4);
}

/// A length that is not a number reads as 1.
void repair_lengths(VBFStackHeader& header)
{
    const std::uint32_t count = std::min(header.rank, VBFStackHeader::max_rank);
    for (std::uint32_t axis = 0; axis < count; ++axis)
    {
        const double length = header.lengths[axis];
        if (std::isnan(length))
            header.lengths[axis] = 1.0;
    }
}

} // namespace

VBFFileInfo read_file_header(VFileAccess& file)
{
    VBFFileInfo info;
    file.read_value(info.header);
    if (std::memcmp(info.header.magic, Vela::detail::file_magic, sizeof info.header.magic) != 0)
        throw VelaError("VBFFileImp::attach_imp", __FILE__, __LINE__)("No VBF file header found!")(-4);
    file.read_str(info.description, info.header.description_length);
    if (info.header.format_version > Vela::detail::last_version_without_dictionary)
        file.read_value(info.meta_data_pos);
    return info;
}

VBFStackHeader Vela::detail::read_fixed_header(VFileAccess& file)
{
    VBFStackHeader header;
    file.read_value(header);
    repair_lengths(header);
    if (std::memcmp(header.magic, Vela::detail::stack_magic, sizeof header.magic) != 0)
        throw_no_stack_header(__LINE__);
    if (header.rank > VBFStackHeader::max_rank)
        throw_no_stack_header(__LINE__);
    return header;
}

VBFStackRecord read_stack_header(VFileAccess& file)
{
    VBFStackRecord record;
    record.header = Vela::detail::read_fixed_header(file);
    file.read_str(record.name, record.header.name_length);
    file.read_str(record.description, record.header.description_length);
    return record;
}
