#include "file_check.h"

#include "extents.h"
#include "footer.h"
#include "open_failure.h"
#include "open_file.h"
#include "progress.h"
#include "record_reader.h"
#include "repair_plan.h"
#include "samples_check.h"
#include "scanned_file.h"

#include <Json/Value.h>
#include <Json/XmlReader.h>
#include <VelaBase/VelaError.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include <cstddef>
#include <set>

namespace {

constexpr std::uint32_t newest_file_version = 2;
constexpr std::uint32_t newest_stack_version = 5;
constexpr std::int32_t best_level = 9;
constexpr std::size_t max_document_bytes = std::size_t{16} * 1024 * 1024;

class FileInspection
{
public:
    FileInspection(VFile& in_file, Inspected& in_result)
        : file(in_file), reader(in_file), result(in_result), findings(in_result.findings),
          progress("verifying", 2 * reader.get_file_size())
    {
    }

    void run()
    {
        VBFFileInfo info;
        file.seek(0);
        try
        {
            info = read_file_header(file);
        }
        catch (const VelaError& error)
        {
            findings.add_wrong(0, error.get_msg() + (can_be_mended() ? " vbf repair mends this" : ""));
            return;
        }
        header_end = file.tell();
        extents.claim(0, header_end, "the file header");
        if (info.header.format_version > newest_file_version)
            findings.add_odd(offsetof(VBFFileHeader, format_version),
                             "format_version " + std::to_string(info.header.format_version) + " is not known");
        walk(info.header.first_stack_pos);
        findings.set_stack(std::nullopt);
        if (info.header.format_version > 1)
            inspect_file_dictionary(info);
        if (whole_file_is_known)
            report_gaps();
    }

private:
    /// An append leaves the start of the file overwritten.
    bool can_be_mended()
    {
        try
        {
            return !plan_repair(file).patches.empty();
        }
        catch (const std::exception&)
        {
            return false;
        }
    }

    void walk(std::uint64_t first_stack_pos)
    {
        std::uint64_t field_pos = offsetof(VBFFileHeader, first_stack_pos);
        std::uint64_t before = 0;
        std::set<std::uint64_t> seen;
        for (std::uint64_t pos = first_stack_pos; pos != 0;)
        {
            if (!seen.insert(pos).second)
                return stop_chain(field_pos, "the chain comes back to a stack at " + std::to_string(pos));
            if (pos >= reader.get_file_size())
                return stop_chain(field_pos, "the next stack is said to be at " + std::to_string(pos) +
                                                 ", the file has " + std::to_string(reader.get_file_size()) + " bytes");
            if (pos < before)
                findings.add_odd(field_pos, "the next stack lies before this one");
            findings.set_stack(result.count_stacks);
            VBFChainEntry stack;
            if (!read_header(pos, stack))
                return;
            inspect_stack(stack);
            ++result.count_stacks;
            before = pos;
            pos = stack.header.next_stack_pos;
            field_pos = stack.position + offsetof(VBFStackHeader, next_stack_pos);
        }
    }

    void stop_chain(std::uint64_t field_pos, const std::string& text)
    {
        findings.add_wrong(field_pos, text);
        whole_file_is_known = false;
    }

    bool read_header(std::uint64_t pos, VBFChainEntry& stack)
    {
        file.seek(pos);
        try
        {
            static_cast<VBFStackRecord&>(stack) = read_stack_header(file);
        }
        catch (const VelaError& error)
        {
            stop_chain(pos, error.get_msg());
            return false;
        }
        stack.position = pos;
        stack.data_pos = file.tell();
        return claim(pos, stack.data_pos, "the header");
    }

    /// The bytes of stacks must not overlap: what they share could be read again and again.
    bool claim(std::uint64_t begin, std::uint64_t end, const std::string& what)
    {
        const std::string owner = "stack " + std::to_string(result.count_stacks);
        const std::optional<std::string> other = extents.claim(begin, end, owner);
        if (other)
            stop_chain(begin, what + " of the stack lies within " + *other);
        return !other;
    }

    void inspect_stack(const VBFChainEntry& stack)
    {
        check_header(stack);
        const std::uint64_t length_bytes = stack.header.data_length_on_disk;
        try
        {
            reader.seek(stack.data_pos, "data segment");
            reader.skip(length_bytes, "data segment");
            if (!claim(stack.data_pos, reader.tell(), "the data segment"))
                return;
            const std::uint64_t footer_pos = reader.tell();
            const FlushPoints table = inspect_parts(stack, footer_pos);
            result.count_flush_points += table.count;
            result.size_samples_bytes += inspect_samples(file, stack, table, findings, progress);
            progress.set(2 * reader.tell());
        }
        catch (const Damage& damage)
        {
            findings.add_wrong(damage.get_position(), damage.what());
            whole_file_is_known = false;
        }
    }

    /// The samples are inspected also where the parts behind them are damaged.
    FlushPoints inspect_parts(const VBFChainEntry& stack, std::uint64_t footer_pos)
    {
        try
        {
            const FlushTable table = inspect_footer(reader, stack.header, findings).flush;
            claim(footer_pos, reader.tell(), "the footer");
            return read_flush_points(reader, table);
        }
        catch (const Damage& damage)
        {
            findings.add_wrong(damage.get_position(), damage.what());
            whole_file_is_known = false;
            return {};
        }
    }

    void check_header(const VBFChainEntry& stack)
    {
        const auto odd = [&](std::size_t offset_bytes, const std::string& text)
        { findings.add_odd(stack.position + offset_bytes, text); };
        const VBFStackHeader& header = stack.header;
        if (header.format_version > newest_stack_version)
            odd(offsetof(VBFStackHeader, format_version),
                "format_version " + std::to_string(header.format_version) + " is not known");
        if (header.compression_type > 1)
            odd(offsetof(VBFStackHeader, compression_type),
                "compression_type " + std::to_string(header.compression_type) + " is not known");
        if (header.compression_type == 1 && header.compression_level > best_level)
            odd(offsetof(VBFStackHeader, compression_level),
                "compression_level is " + std::to_string(header.compression_level));
        if (header.data_present > 1)
            odd(offsetof(VBFStackHeader, data_present), "data_present is neither 0 nor 1");
        if (header.data_present == 0 && header.data_length_on_disk != 0)
            odd(offsetof(VBFStackHeader, data_present), "the stack is declared empty, and has a data segment");
    }

    void inspect_file_dictionary(const VBFFileInfo& info)
    {
        const std::uint64_t field_pos = header_end - sizeof info.meta_data_pos;
        if (info.meta_data_pos == 0)
        {
            findings.add_wrong(field_pos, "the file was not closed: meta_data_pos is 0. vbf repair mends this");
            whole_file_is_known = false;
            return;
        }
        try
        {
            reader.seek(info.meta_data_pos, "the file dictionary");
            inspect_dictionary(reader, "file dictionary", findings);
            if (const auto other = extents.claim(info.meta_data_pos, reader.tell(), "the file dictionary"))
                findings.add_wrong(field_pos, "the file dictionary lies within " + *other);
            check_document(info.meta_data_pos);
        }
        catch (const Damage& damage)
        {
            findings.add_wrong(damage.get_position(), damage.what());
            whole_file_is_known = false;
        }
    }

    void check_document(std::uint64_t dictionary_pos)
    {
        VBFDictionary dictionary;
        file.seek(dictionary_pos);
        read_dictionary(file, dictionary);
        const auto found = dictionary.find("ome_xml");
        if (found == dictionary.end() || found->second.size() > max_document_bytes)
            return;
        try
        {
            const char* begin = found->second.data();
            Json::Value document;
            Json::XmlReader xml(document);
            if (!xml.read(begin, begin + found->second.size()))
                findings.add_odd(dictionary_pos, "the OME document is not complete");
        }
        catch (const std::exception& error)
        {
            findings.add_odd(dictionary_pos, std::string("the OME document cannot be read: ") + error.what());
        }
    }

    void report_gaps()
    {
        for (const Extents::Stretch& gap : extents.gaps(reader.get_file_size()))
            findings.add_odd(gap.begin, std::to_string(gap.end - gap.begin) + " bytes belong to nothing");
    }

    VFile& file;
    RecordReader reader;
    Inspected& result;
    Findings& findings;
    Progress progress; ///< the samples are inspected twice
    Extents extents;
    std::uint64_t header_end = 0;
    bool whole_file_is_known = true;
};

/// Whether the samples fill the file: nothing else in it can be wrong.
void inspect_dbl(const std::string& path, Inspected& result)
{
    ScannedFile input(path);
    const VBFChainEntry& stack = input.get_stack(0);
    const std::uint64_t file_size = input.get_file().seek(VFileAccess::all_ones);
    const std::uint64_t there_bytes = file_size - stack.data_pos;
    const std::uint64_t needed_bytes = stack.header.data_length_on_disk;
    result.count_stacks = 1;
    result.size_samples_bytes = needed_bytes;
    result.findings.set_stack(0);
    if (there_bytes < needed_bytes)
        result.findings.add_wrong(stack.data_pos, "the file has " + std::to_string(there_bytes) + " of " +
                                                      std::to_string(needed_bytes) + " bytes of samples");
    result.findings.set_stack(std::nullopt);
    if (there_bytes > needed_bytes)
        result.findings.add_odd(stack.data_pos + needed_bytes,
                                std::to_string(there_bytes - needed_bytes) + " bytes belong to nothing");
}

void inspect_vbf(const std::string& path, Inspected& result)
{
    VFile file = open_bytes(path, VFile::read_mode);
    FileInspection(file, result).run();
}

} // namespace

Inspected inspect_file(const std::string& path)
{
    Inspected result;
    if (is_dbl(path))
    {
        inspect_dbl(path, result);
        return result;
    }
    inspect_vbf(path, result);
    if (const auto failure = open_failure(path))
        result.findings.add_wrong(0, "the file does not open: " + *failure);
    return result;
}
