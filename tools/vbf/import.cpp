#include "import.h"

#include "new_vbf_file.h"
#include "tiff_stacks.h"

void import_images(const ImportOptions& options)
{
    const std::vector<std::string> inputs(options.paths.begin(), options.paths.end() - 1);
    NewVbfFile out(options.paths.back(), inputs); // before images are read: what is last may be an image
    TiffStacks stacks(inputs, options.stack);
    if (options.creator)
        out.get().set_creator(*options.creator);
    stacks.add_to(out.get());
    out.finish();
}
