// A dictionary of any bytes ends with a VelaError of id -3 or with pairs; those, written and read again, are the
// same pairs.

#include "fuzz/memory_file.h"

#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFHeaders.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vela_fuzz::MemoryFile memory(data, size, VFile::write_mode);
    VBFDictionary dictionary;
    try
    {
        read_dictionary(memory.file, dictionary);
    }
    catch (const VelaError& error)
    {
        if (error.get_id() != -3)
            __builtin_trap();
        return 0;
    }
    memory.file.seek(0);
    write_dictionary(memory.file, dictionary);
    memory.file.seek(0);
    VBFDictionary again;
    read_dictionary(memory.file, again);
    if (again != dictionary)
        __builtin_trap();
    return 0;
}
