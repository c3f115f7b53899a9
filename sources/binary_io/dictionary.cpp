#include <VelaBinaryIO/VBFHeaders.h>

#include <VelaFile/VFile.h>
#include <VelaFile/VFileAccess.h>

#include "sources/file/ReadAhead.h"

#include <cstdint>
#include <string>
#include <utility>

namespace {

void read_pairs(VFileAccess& stream, VBFDictionary& dictionary)
{
    for (;;)
    {
        std::string key;
        stream.read_str(key, VFileAccess::all_ones);
        if (key.empty())
            return;
        std::string value;
        stream.read_str(value, VFileAccess::all_ones);
        dictionary[std::move(key)] = std::move(value);
    }
}

} // namespace

void read_dictionary(VFileAccess& file, VBFDictionary& dictionary)
{
    dictionary.clear();
    auto* const byte_file = dynamic_cast<VFile*>(&file);
    if (byte_file == nullptr)
        return read_pairs(file, dictionary);
    Vela::detail::ReadAhead stream(*byte_file);
    read_pairs(stream, dictionary);
    stream.sync();
}

void write_dictionary(VFileAccess& file, const VBFDictionary& dictionary)
{
    for (const auto& [key, value] : dictionary)
    {
        file.write_str(key, true);
        file.write_str(value, true);
    }
    file.write_value(std::uint32_t{0});
}
