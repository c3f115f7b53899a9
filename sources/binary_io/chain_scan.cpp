#include <VelaBinaryIO/VBFHeaders.h>

#include <VelaBase/VelaError.h>
#include <VelaFile/VFile.h>

#include "sources/file/ReadAhead.h"

#include <cstdint>
#include <unordered_set>
#include <utility>

namespace {

[[noreturn]] void throw_invalid_position(int line)
{
    throw VelaError("VBFFileImp::attach_imp", __FILE__, line)("Invalid stack position specified in header!")(-4);
}

VBFChainEntry read_entry(VFileAccess& stream, std::uint64_t position)
{
    if (stream.seek(position) == VFileAccess::all_ones)
        throw_invalid_position(__LINE__);
    VBFChainEntry entry;
    static_cast<VBFStackRecord&>(entry) = read_stack_header(stream);
    entry.position = position;
    entry.data_pos = stream.tell();
    return entry;
}

} // namespace

VBFChain scan_chain(VFile& file)
{
    Vela::detail::ReadAhead stream(file);
    VBFChain chain;
    chain.file = read_file_header(stream);
    std::unordered_set<std::uint64_t> visited;
    std::uint64_t text_bytes = 0;
    for (std::uint64_t pos = chain.file.header.first_stack_pos; pos > 0;)
    {
        if (!visited.insert(pos).second)
            throw_invalid_position(__LINE__);
        chain.stacks.push_back(read_entry(stream, pos));
        // Headers may be laid so that each has all that follows as its text: memory would grow with the square
        // of the file. Texts of a true chain do not share bytes.
        text_bytes += chain.stacks.back().name.size() + chain.stacks.back().description.size();
        if (text_bytes > stream.file_size())
            throw_invalid_position(__LINE__);
        pos = chain.stacks.back().header.next_stack_pos;
    }
    stream.sync();
    return chain;
}
