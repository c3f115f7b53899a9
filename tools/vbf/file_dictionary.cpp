#include "file_dictionary.h"

#include "file_name.h"
#include "xml_element.h"

#include <VelaFile/VFile.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <stdexcept>

namespace {

/// Reads the dictionary at `position` and gives it with `pairs`; what it has under the same keys is lost.
VBFDictionary with_pairs(VFile& file, std::uint64_t position, const VBFDictionary& pairs)
{
    VBFDictionary dictionary;
    file.seek(position);
    read_dictionary(file, dictionary);
    for (const auto& [key, text] : pairs)
        dictionary[key] = text;
    return dictionary;
}

bool holds(VFile& file, std::uint64_t position, const VBFDictionary& pairs)
{
    return with_pairs(file, position, {}) == with_pairs(file, position, pairs);
}

} // namespace

void set_pairs(const std::string& path, const VBFDictionary& pairs)
{
    VFile file(file_name(path), VFile::append_mode);
    const std::uint64_t position = read_file_header(file).meta_data_pos;
    if (holds(file, position, pairs))
        return;
    const VBFDictionary dictionary = with_pairs(file, position, pairs);
    file.seek(position);
    write_dictionary(file, dictionary);
    const std::uint64_t end = file.tell();
    file.close();
    std::filesystem::resize_file(path, end);
}

void set_pairs_behind_append(VFile& file, const VBFDictionary& pairs)
{
    if (pairs.empty())
        return;
    constexpr char magic[] = {'V', 'E', 'L', 'A', '_', 'B', 'F', '\n'};
    std::uint64_t position = 0;
    static_assert(sizeof position == sizeof magic);
    file.seek(0);
    file.read_value(position);
    const char* const first_bytes = reinterpret_cast<const char*>(&position);
    if (std::equal(std::begin(magic), std::end(magic), first_bytes) || holds(file, position, pairs))
        return;
    const VBFDictionary dictionary = with_pairs(file, position, pairs);
    const std::uint64_t end = file.seek(VFileAccess::all_ones);
    write_dictionary(file, dictionary);
    file.seek(0);
    file.write_value(end);
}

VBFDictionary pairs_of_copy(VBFDictionary pairs)
{
    const auto found = pairs.find("ome_xml");
    if (found == pairs.end())
        return pairs;
    try
    {
        found->second = without_root_attribute(found->second, "UUID");
    }
    catch (const std::runtime_error&) // no document: nothing in it names the file
    {
    }
    return pairs;
}
