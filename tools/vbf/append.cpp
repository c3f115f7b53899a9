#include "append.h"

#include "failure.h"
#include "file_dictionary.h"
#include "new_file.h"
#include "open_file.h"
#include "repair_plan.h"
#include "stack_copy.h"
#include "tiff_stacks.h"
#include "unfinished.h"

#include <VelaBinaryIO/VBFFile.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>

namespace {

/// Until this is done the file does not open.
void mend_start(const std::string& path, const VBFDictionary& pairs)
{
    try
    {
        VFile file = open_bytes(path, VFile::append_mode);
        set_pairs_behind_append(file, pairs);
        mend_in_place(file, plan_repair(file));
    }
    catch (const std::exception& error)
    {
        throw std::runtime_error("'" + path + "' needs vbf repair now, its start was not mended: " + message_of(error));
    }
}

/// The same behind a failure, which is the one to be told at last. Of stacks that are not finished nothing stays.
void mend_after_failure(const std::string& path, const VBFDictionary& pairs, std::uint64_t old_size_bytes)
{
    try
    {
        mend_start(path, pairs);
        remove_unfinished(path, old_size_bytes);
    }
    catch (const std::exception& error)
    {
        report(message_of(error));
    }
}

/// The library appends at the end of the file, and what is missing of a stack that is cut off would be read from there.
void check_whole(const std::string& path)
{
    VFile file = open_bytes(path, VFile::read_mode);
    plan_repair(file);
}

/// Opens the file, lets `add` add stacks, and closes it, so that it opens again.
void append(const std::string& path, const std::function<void(VBFFileInterface&)>& add)
{
    check_whole(path);
    const SourceNotes notes = read_notes(path); // the library does not read the document, and writes a new one
    VBFFile file = open_vbf(path, VFile::append_mode);
    const std::uint64_t old_size_bytes = std::filesystem::file_size(path);
    try
    {
        if (notes.creator)
            file->set_creator(*notes.creator);
        if (notes.uuid)
            file->set_uuid(*notes.uuid);
        add(*file.operator->());
        file->close();
    }
    catch (...)
    {
        file.reset(); // closes it if all stacks are finished
        mend_after_failure(path, notes.dictionary, old_size_bytes);
        throw;
    }
    mend_start(path, notes.dictionary);
}

/// Copies keep their own descriptions.
void check_options_of_copies(const StackOptions& stack)
{
    const bool described =
        !stack.labels.empty() || !stack.lengths.empty() || !stack.units.empty() || !stack.tags.empty() || stack.name;
    if (described)
        throw UsageFailure("With --from, stacks keep their labels, lengths, tags and names.");
    check_level(stack.level.value_or(usual_level));
}

void check_source(const AppendOptions& options)
{
    if (options.images.empty() == options.from.empty())
        throw UsageFailure("Either TIFF files or --from is needed.");
    if (!options.from.empty() && is_same_file(options.path, options.from))
        throw UsageFailure("A file cannot be appended to itself.");
    if (is_dbl(options.path))
        throw UsageFailure("Nothing can be appended to a DBL file.");
}

} // namespace

void append_stacks(const AppendOptions& options)
{
    check_source(options);
    if (options.from.empty())
    {
        TiffStacks stacks(options.images, options.stack);
        append(options.path, [&](VBFFileInterface& file) { stacks.add_to(file); });
        return;
    }
    check_options_of_copies(options.stack);
    const SourceNotes notes = read_notes(options.from);
    VBFFile source = open_vbf(options.from, VFile::read_mode);
    append(options.path,
           [&](VBFFileInterface& file)
           {
               VBFFileInterface& from = *source.operator->();
               add_copies(from, notes, chosen_stacks(from, {}), file, options.stack.level);
           });
}
