#include "repair_plan.h"

#include <Json/SignalingReference.h>
#include <Json/write.h>
#include <Ome/Document.h>
#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <set>
#include <sstream>

namespace {

constexpr char whole_magic[] = "VELA_BF\n\xff\xff";
constexpr std::size_t magic_bytes = sizeof VBFFileHeader::magic;

std::string bytes_of(std::uint64_t number)
{
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

std::string empty_document()
{
    Json::Value root;
    const Ome::Document<Json::SignalingReference> document{Json::SignalingReference(root)};
    std::ostringstream xml;
    Json::write_xml(root, xml);
    return xml.str();
}

std::string bytes_of(const VBFDictionary& dictionary)
{
    const auto counted = [](const std::string& text)
    {
        const auto length_bytes = static_cast<std::uint32_t>(text.size());
        return std::string(reinterpret_cast<const char*>(&length_bytes), sizeof length_bytes) + text;
    };
    std::string result;
    for (const auto& [key, value] : dictionary)
        result += counted(key) + counted(value);
    return result + counted("");
}

/// A file of which the header may be overwritten.
class Patient
{
public:
    explicit Patient(VFile& in_file) : file(in_file), file_size(in_file.seek(VFileAccess::all_ones))
    {
        file.seek(0);
        file.read_value(header);
        std::memcpy(&number_in_magic, header.magic, sizeof number_in_magic);
        meta_field_pos = sizeof header + header.description_length;
        header_end = meta_field_pos + (has_dictionary() ? sizeof meta_data_pos : 0);
        overwritten = is_overwritten();
        if (!overwritten)
            check_header();
        check_chain();
        if (has_dictionary())
        {
            file.seek(meta_field_pos);
            file.read_value(meta_data_pos);
        }
    }

    RepairPlan plan()
    {
        if (!has_dictionary())
            return {};
        const std::optional<VBFDictionary> old_dictionary = dictionary_at(meta_data_pos);
        if (overwritten)
            mend_field(dictionary_at(number_in_magic) ? std::optional(number_in_magic) : std::nullopt, old_dictionary);
        else if (!old_dictionary)
            mend_field(std::nullopt, std::nullopt);
        if (overwritten)
            add({0, std::string(whole_magic, magic_bytes)},
                "The start of the file was overwritten when stacks were appended. It is as it was.");
        return result;
    }

private:
    bool has_dictionary() const { return header.format_version > 1; }

    /// Only the first 8 of the 10 bytes, and with a position that the end of an appending writer can have had.
    bool is_overwritten() const
    {
        const bool rest_is_magic =
            std::memcmp(header.magic + sizeof number_in_magic, whole_magic + sizeof number_in_magic,
                        magic_bytes - sizeof number_in_magic) == 0;
        return rest_is_magic && has_dictionary() && number_in_magic >= header_end && number_in_magic <= file_size;
    }

    void check_header()
    {
        file.seek(0);
        read_file_header(file);
    }

    void check_chain()
    {
        const auto refuse = [](int line)
        { throw VelaError("check_chain", __FILE__, line)("Invalid stack position specified in header!")(-4); };
        std::set<std::uint64_t> seen;
        for (std::uint64_t pos = header.first_stack_pos; pos != 0;)
        {
            if (!seen.insert(pos).second || file.seek(pos) == VFileAccess::all_ones)
                refuse(__LINE__);
            pos = read_stack_header(file).header.next_stack_pos;
        }
    }

    std::optional<VBFDictionary> dictionary_at(std::uint64_t position)
    {
        if (position < header_end || position >= file_size)
            return std::nullopt;
        try
        {
            VBFDictionary dictionary;
            file.seek(position);
            read_dictionary(file, dictionary);
            return dictionary;
        }
        catch (const VelaError&)
        {
            return std::nullopt;
        }
    }

    /// Lets `meta_data_pos` lead to `position`, or else to a new dictionary.
    void mend_field(std::optional<std::uint64_t> position, const std::optional<VBFDictionary>& old_dictionary)
    {
        if (!position)
        {
            position = file_size;
            add({file_size, bytes_of(old_dictionary.value_or(VBFDictionary{{"ome_xml", empty_document()}}))},
                "A new dictionary is at the end of the file, at " + std::to_string(file_size) + ".");
        }
        if (position != meta_data_pos)
            add({meta_field_pos, bytes_of(*position)},
                "meta_data_pos is " + std::to_string(*position) + ", it was " + std::to_string(meta_data_pos) + ".");
    }

    void add(Patch patch, const std::string& sentence)
    {
        result.patches.push_back(std::move(patch));
        result.done.push_back(sentence);
    }

    VFile& file;
    const std::uint64_t file_size;
    VBFFileHeader header = {};
    std::uint64_t number_in_magic = 0;
    std::uint64_t meta_field_pos = 0;
    std::uint64_t meta_data_pos = 0;
    std::uint64_t header_end = 0;
    bool overwritten = false;
    RepairPlan result;
};

} // namespace

RepairPlan plan_repair(VFile& file)
{
    return Patient(file).plan();
}

void mend_in_place(VFile& file, const RepairPlan& plan)
{
    for (const Patch& patch : plan.patches)
    {
        file.seek(patch.position);
        file.write(patch.bytes.data(), patch.bytes.size());
    }
}
