#include "file_dictionary.h"

#include "file_magic.h"
#include "file_name.h"
#include "xml_element.h"

#include <VelaFile/VFile.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace {

/// The dictionary at `position` with `pairs`; what it has under the same keys is lost. Nothing where it holds them already.
std::optional<VBFDictionary> with_pairs(VFile& file, std::uint64_t position, const VBFDictionary& pairs)
{
    VBFDictionary dictionary;
    file.seek(position);
    read_dictionary(file, dictionary);
    bool holds_all = true;
    for (const auto& [key, text] : pairs)
    {
        const auto held = dictionary.find(key);
        holds_all = holds_all && held != dictionary.end() && held->second == text;
        dictionary[key] = text;
    }
    if (holds_all)
        return std::nullopt;
    return dictionary;
}

} // namespace

void set_pairs(const std::string& path, const VBFDictionary& pairs)
{
    VFile file(file_name(path), VFile::append_mode);
    const std::uint64_t position = read_file_header(file).meta_data_pos;
    const std::optional<VBFDictionary> dictionary = with_pairs(file, position, pairs);
    if (!dictionary)
        return;
    file.seek(position);
    write_dictionary(file, *dictionary);
    const std::uint64_t end = file.tell();
    file.close();
    std::filesystem::resize_file(path, end);
}

void set_pairs_behind_append(VFile& file, const VBFDictionary& pairs)
{
    if (pairs.empty())
        return;
    std::uint64_t position = 0;
    file.seek(0);
    file.read_value(position);
    if (std::memcmp(&position, file_magic.data(), sizeof position) == 0)
        return;
    const std::optional<VBFDictionary> dictionary = with_pairs(file, position, pairs);
    if (!dictionary)
        return;
    const std::uint64_t end = file.seek(VFileAccess::all_ones);
    write_dictionary(file, *dictionary);
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
