#include "chain_check.h"

#include "findings.h"
#include "footer.h"
#include "record_reader.h"

#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include <algorithm>
#include <set>
#include <stdexcept>

namespace {

[[noreturn]] void throw_invalid_position(int line)
{
    throw VelaError("claim_chain", __FILE__, line)("Invalid stack position specified in header!")(-4);
}

std::string stack_name(std::size_t index)
{
    return "stack " + std::to_string(index);
}

/// Where the record of a stack ends, whose samples begin at `data_pos`.
std::uint64_t end_of_stack(RecordReader& reader, const VBFStackHeader& header, std::uint64_t data_pos,
                           std::size_t index)
{
    try
    {
        Findings ignored;
        reader.seek(data_pos, "data segment");
        reader.skip(header.data_length_on_disk, "data segment");
        inspect_footer(reader, header, ignored);
        return reader.tell();
    }
    catch (const Damage& damage)
    {
        throw std::runtime_error("The file is cut off or damaged, " + stack_name(index) + " is not whole: byte " +
                                 std::to_string(damage.get_position()) + ", " + damage.what());
    }
}

} // namespace

std::uint64_t claim_chain(VFile& file, std::uint64_t first_stack_pos, Extents& extents)
{
    RecordReader reader(file);
    std::set<std::uint64_t> seen;
    std::uint64_t end = 0;
    for (std::uint64_t pos = first_stack_pos; pos != 0;)
    {
        if (!seen.insert(pos).second || file.seek(pos) == VFileAccess::all_ones)
            throw_invalid_position(__LINE__);
        const VBFStackHeader header = read_stack_header(file).header;
        const std::size_t index = seen.size() - 1;
        const std::uint64_t end_of_this = end_of_stack(reader, header, file.tell(), index);
        if (const auto other = extents.claim(pos, end_of_this, stack_name(index)))
            throw std::runtime_error("The file is damaged, " + stack_name(index) + " lies within " + *other);
        end = std::max(end, end_of_this);
        pos = header.next_stack_pos;
    }
    return end;
}
