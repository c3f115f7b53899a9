#include "copy.h"

#include "file_dictionary.h"
#include "new_vbf_file.h"
#include "open_file.h"
#include "stack_copy.h"
#include "stack_options.h"

void copy_stacks(const CopyOptions& options)
{
    check_level(options.level.value_or(0));
    const SourceNotes notes = read_notes(options.path);
    VBFFile source = open_vbf(options.path, VFile::read_mode);
    const std::vector<std::uint64_t> indices = chosen_stacks(*source.operator->(), options.stacks);

    NewVbfFile out(options.out, {options.path});
    std::string description;
    source->get_file_desc(description);
    out.get().set_file_desc(description);
    if (notes.creator)
        out.get().set_creator(*notes.creator);
    add_copies(*source.operator->(), notes, indices, out.get(), options.level);
    out.finish(pairs_of_copy(notes.dictionary));
}
