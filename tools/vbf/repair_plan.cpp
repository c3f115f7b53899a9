#include "repair_plan.h"

#include "chain_check.h"
#include "extents.h"
#include "file_magic.h"
#include "old_dictionary.h"

#include <Json/SignalingReference.h>
#include <Json/write.h>
#include <Ome/Document.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <sstream>
#include <stdexcept>

namespace {

constexpr char stack_magic[] = "VELA_BF_STACK\n\xff\xff";
constexpr std::size_t stack_magic_bytes = sizeof VBFStackHeader::magic;

std::string bytes_of(std::uint64_t number)
{
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

/// Takes what is written to it into a text.
class TextStream : public VFileAccess
{
public:
    virtual ~TextStream() = default;
    std::uint64_t tell() const override { return text.size(); }
    std::uint64_t seek(std::uint64_t) override { throw std::logic_error("TextStream::seek"); }
    void read(void*, std::uint64_t) override { throw std::logic_error("TextStream::read"); }
    void write(const void* bytes, std::uint64_t size_bytes) override
    {
        text.append(static_cast<const char*>(bytes), size_bytes);
    }

    std::string text;
};

std::string bytes_of(const VBFDictionary& dictionary)
{
    TextStream stream;
    write_dictionary(stream, dictionary);
    return stream.text;
}

std::string empty_document()
{
    Json::Value root;
    const Ome::Document<Json::SignalingReference> document{Json::SignalingReference(root)};
    std::ostringstream xml;
    Json::write_xml(root, xml);
    return xml.str();
}

std::string what_is_lost(std::size_t count_kept)
{
    if (count_kept == 0)
        return "What the old one said could not be read and is lost.";
    return "It has the " + std::to_string(count_kept) + (count_kept == 1 ? " pair" : " pairs") +
           " of the old one that could be read; others are lost.";
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
        extents.claim(0, header_end, "the file header");
        end_of_stacks = std::max(claim_chain(file, header.first_stack_pos, extents), header_end);
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
        const FoundDictionary old = dictionary_at(meta_data_pos);
        if (overwritten || !old.whole)
            mend_dictionary(old);
        if (overwritten)
            add({0, std::string(file_magic)},
                "The start of the file was overwritten when stacks were appended. It is as it was.");
        return result;
    }

private:
    bool has_dictionary() const { return header.format_version > 1; }

    /// Only the first 8 of the 10 bytes, and with a position that the end of an appending writer can have had.
    bool is_overwritten() const
    {
        const bool rest_is_magic =
            std::memcmp(header.magic + sizeof number_in_magic, file_magic.data() + sizeof number_in_magic,
                        file_magic.size() - sizeof number_in_magic) == 0;
        return rest_is_magic && has_dictionary() && number_in_magic >= header_end && number_in_magic <= file_size;
    }

    void check_header()
    {
        file.seek(0);
        read_file_header(file);
    }

    FoundDictionary dictionary_at(std::uint64_t position)
    {
        if (position < header_end || position >= file_size)
            return {};
        FoundDictionary found = find_dictionary(file, position);
        if (!found.whole && !extents.is_free(position))
            found.pairs.clear(); // bytes of a stack
        return found;
    }

    /// Behind the stacks there may also be one that was being written.
    bool is_stack_at(std::uint64_t position)
    {
        std::string bytes(std::min<std::uint64_t>(stack_magic_bytes, file_size - position), '\0');
        file.seek(position);
        file.read(bytes.data(), bytes.size());
        return bytes == std::string_view(stack_magic, bytes.size());
    }

    /// Lets `meta_data_pos` lead to a dictionary: to the newest one that is there, or else to a new one.
    void mend_dictionary(const FoundDictionary& old)
    {
        const bool is_named = overwritten && number_in_magic >= end_of_stacks;
        const FoundDictionary appended = is_named ? dictionary_at(number_in_magic) : FoundDictionary();
        if (appended.whole)
        {
            tell_other_document(old, appended);
            return lead_to(number_in_magic);
        }
        const bool something_is_last = end_of_stacks < file_size && !is_stack_at(end_of_stacks);
        const FoundDictionary last = something_is_last ? find_dictionary(file, end_of_stacks) : FoundDictionary();
        if (last.whole && last.end == file_size)
            return lead_to(end_of_stacks);

        const bool appended_is_cut = is_named && number_in_magic < file_size;
        const bool old_is_cut = !old.whole && meta_data_pos != 0;
        const bool last_is_cut = something_is_last && !last.whole;
        if (!appended.pairs.empty())
            write_new(appended.pairs, true);
        else if (!old.pairs.empty())
            write_new(old.pairs, old_is_cut || appended_is_cut);
        else if (last_is_cut && !last.pairs.empty())
            write_new(last.pairs, true);
        else
            write_new(old.pairs, old_is_cut || appended_is_cut || last_is_cut);
    }

    /// An append through the library writes a document of its own, and keeps the other pairs.
    void tell_other_document(const FoundDictionary& old, const FoundDictionary& appended)
    {
        const auto before = old.pairs.find("ome_xml");
        const auto now = appended.pairs.find("ome_xml");
        const bool both = old.whole && before != old.pairs.end() && now != appended.pairs.end();
        if (both && before->second != now->second)
            result.done.push_back(
                "The OME document is that of the append. The one before is another one, it stays in the "
                "dictionary at " +
                std::to_string(meta_data_pos) + ", which is no longer read.");
    }

    void write_new(const VBFDictionary& pairs, bool others_are_lost)
    {
        const bool none = pairs.empty();
        add({file_size, bytes_of(none ? VBFDictionary{{"ome_xml", empty_document()}} : pairs)},
            "A new dictionary is at the end of the file, at " + std::to_string(file_size) + ".");
        if (others_are_lost)
            result.done.push_back(what_is_lost(pairs.size()));
        lead_to(file_size);
    }

    void lead_to(std::uint64_t position)
    {
        if (position != meta_data_pos)
            add({meta_field_pos, bytes_of(position)},
                "meta_data_pos is " + std::to_string(position) + ", it was " + std::to_string(meta_data_pos) + ".");
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
    std::uint64_t end_of_stacks = 0;
    bool overwritten = false;
    Extents extents;
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
