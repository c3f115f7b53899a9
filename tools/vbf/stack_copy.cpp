#include "stack_copy.h"

#include "file_document.h"
#include "progress.h"
#include "record_reader.h"
#include "sample_size.h"
#include "scanned_file.h"
#include "stack_options.h"

#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt.h>
#include <VelaBinaryIO/VBFFile.h>

#include <algorithm>
#include <numeric>

namespace {

constexpr std::uint64_t copy_step_bytes = std::uint64_t{4} * 1024 * 1024;

/// What `create` does not take over from another description, and the tags. The library answers a unit for axes without one,
/// which must not become theirs.
void copy_annotations(const VBFStackInterface& source, const FooterParts& footer, VBFStackInterface& target)
{
    for (std::size_t axis = 0; axis < footer.units.size(); ++axis)
    {
        if (footer.units[axis])
            target.set_units(axis, *footer.units[axis]);
    }
    target.set_data_units(source.get_data_units());
    for (const std::string& key : source.get_tag_keys())
        target.set_tag(key, source.get_tag(key));
    if (footer.flush.count != 0)
        target.set_flush_block_size(footer.flush.block_bytes);
}

void copy_compression(const VBFStackInterface& source, VBFStackInterface& target,
                      const std::optional<std::uint64_t>& chosen_level)
{
    int type = 0;
    int level = 0;
    source.get_compression(type, level);
    if (chosen_level)
        target.set_compression(*chosen_level == 0 ? 0 : 1, static_cast<int>(*chosen_level));
    else if (type == 1)
        target.set_compression(1, std::clamp(level, 0, static_cast<int>(max_level))); // as far as zlib has it
    else
        target.set_compression(0, level);
}

void copy_samples(VBFStackInterface& source, VBFStackInterface& target, Progress& progress)
{
    const vela_dt type = source.get_dt();
    const std::uint64_t sample_bytes = size_of(type);
    const std::uint64_t chunk = std::max<std::uint64_t>(copy_step_bytes / std::max<std::uint64_t>(sample_bytes, 1), 1);
    std::vector<unsigned char> samples;
    std::uint64_t left = source.get_number_of_elements();
    for (std::uint64_t pos = 0; left != 0;)
    {
        const std::uint64_t wanted = std::min(left, chunk);
        samples.resize(wanted * sample_bytes);
        const std::uint64_t n = source.read(type, samples.data(), nullptr, wanted, pos);
        target.write(type, samples.data(), nullptr, n);
        progress.add(n * sample_bytes);
        left -= n;
    }
}

} // namespace

SourceNotes read_notes(const std::string& path)
{
    SourceNotes notes;
    try
    {
        ScannedFile input(path);
        RecordReader reader(input.get_file());
        for (const VBFChainEntry& stack : input.get_chain().stacks)
        {
            notes.footers.push_back(read_footer_parts(reader, stack));
            notes.empty.push_back(stack.header.data_length_on_disk == 0);
        }
        notes.dictionary = input.read_file_dictionary();
        FileDocument document = read_document(notes.dictionary);
        notes.creator = std::move(document.creator);
        notes.uuid = std::move(document.uuid);
    }
    catch (const VelaError&)
    {
    }
    return notes;
}

std::vector<std::uint64_t> chosen_stacks(VBFFileInterface& source, const std::vector<std::uint64_t>& indices)
{
    if (indices.empty())
    {
        std::vector<std::uint64_t> all(source.number_of_stacks());
        std::iota(all.begin(), all.end(), std::uint64_t{0});
        return all;
    }
    for (const std::uint64_t index : indices)
        source.get_stack(index);
    return indices;
}

void add_copies(VBFFileInterface& source, const SourceNotes& notes, const std::vector<std::uint64_t>& indices,
                VBFFileInterface& target, const std::optional<std::uint64_t>& level)
{
    std::uint64_t size_bytes = 0;
    for (const std::uint64_t index : indices)
        size_bytes += source.get_stack(index)->get_size(0);
    Progress progress("copying", size_bytes);
    for (const std::uint64_t index : indices)
    {
        const boost::shared_ptr<VBFStackInterface> from = source.get_stack(index);
        const bool empty = index < notes.empty.size() && notes.empty[index];
        const boost::shared_ptr<VBFStackInterface> to = target.add_stack(empty);
        to->create(from.get(), 0);
        copy_annotations(*from, index < notes.footers.size() ? notes.footers[index] : FooterParts(), *to);
        copy_compression(*from, *to, level);
        if (empty || from->get_number_of_elements() == 0)
            to->commit(from->get_dt());
        else
            copy_samples(*from, *to, progress);
    }
}
