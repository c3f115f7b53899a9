// A chain scan of any bytes ends with a list or a VelaError of a known id, and what it lists lies in the file.

#include "fuzz/memory_file.h"

#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFHeaders.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vela_fuzz::MemoryFile memory(data, size, VFile::read_mode);
    try
    {
        const VBFChain chain = scan_chain(memory.file);
        for (const VBFChainEntry& stack : chain.stacks)
        {
            if (stack.header.rank > VBFStackHeader::max_rank || stack.data_pos > size)
                __builtin_trap();
            if (stack.name.size() != stack.header.name_length)
                __builtin_trap();
        }
    }
    catch (const VelaError& error)
    {
        if (error.get_id() != -3 && error.get_id() != -4)
            __builtin_trap();
    }
    return 0;
}
