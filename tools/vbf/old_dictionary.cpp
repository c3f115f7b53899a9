#include "old_dictionary.h"

#include <VelaBase/VelaError.h>
#include <VelaFile/VFile.h>

FoundDictionary find_dictionary(VFile& file, std::uint64_t position)
{
    FoundDictionary found;
    if (file.seek(position) == VFileAccess::all_ones)
        return found;
    try
    {
        read_dictionary(file, found.pairs);
        found.whole = true;
        found.end = file.tell();
    }
    catch (const VelaError&)
    {
    }
    return found;
}
