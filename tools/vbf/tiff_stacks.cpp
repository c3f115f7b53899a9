#include "tiff_stacks.h"

#include "failure.h"
#include "progress.h"

TiffStacks::TiffStacks(const std::vector<std::string>& paths, const StackOptions& options)
{
    check_level(options.level.value_or(usual_level));
    split_tags(options.tags);
    for (const std::string& path : paths)
    {
        stacks.push_back(std::make_unique<TiffStack>(path, options));
        if (!stacks.back()->get_remark().empty())
            report("'" + path + "': " + stacks.back()->get_remark());
    }
}

void TiffStacks::add_to(VBFFileInterface& target)
{
    std::uint64_t size_bytes = 0;
    for (const auto& stack : stacks)
        size_bytes += stack->get_size_bytes();
    Progress progress("importing", size_bytes);
    for (const auto& stack : stacks)
        stack->add_to(target, progress);
}
