#include <VelaBinaryIO/VBFHeaders.h>

#include <VelaFile/VFile.h>

#include "sources/binary_io/chain_walk.h"
#include "sources/file/ReadAhead.h"

#include <cstdint>

namespace {

VBFChainEntry read_entry(VFileAccess& stream, std::uint64_t position)
{
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
    Vela::detail::ByteBudget budget(stream);
    Vela::detail::walk_chain(stream, chain.file.header.first_stack_pos,
                             [&](std::uint64_t position)
                             {
                                 chain.stacks.push_back(read_entry(stream, position));
                                 const VBFChainEntry& entry = chain.stacks.back();
                                 budget.spend(entry.name.size() + entry.description.size());
                                 return std::uint64_t{entry.header.next_stack_pos};
                             });
    stream.sync();
    return chain;
}
