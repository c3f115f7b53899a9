#include "stack_details.h"

#include "file_name.h"
#include "quantity_text.h"

#include <VelaBase/VelaError.h>

namespace {

/// "m" of one metre.
std::string unit_text(const si::value& unit)
{
    const std::string text = quantity_text(unit, si::value::with_blank | si::value::with_prefix);
    return text.rfind("1 ", 0) == 0 ? text.substr(2) : text;
}

AxisDetails describe_axis(const VStackInfoInterface& stack, std::uint64_t axis, const FooterParts& footer)
{
    AxisDetails result;
    result.label = stack.get_label(axis);
    if (axis < footer.units.size() && footer.units[axis])
        result.unit = unit_text(*footer.units[axis]);
    result.equidistant = stack.is_equidistant(axis);
    result.col_labels = stack.get_col_labels(axis);
    return result;
}

StackDetails describe(const VBFStackInterface& stack, const FooterParts& footer)
{
    StackDetails result;
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
        result.axes.push_back(describe_axis(stack, axis, footer));
    for (const std::string& key : stack.get_tag_keys())
        result.tags[key] = stack.get_tag(key);
    result.count_flush_points = footer.flush.positions.size();
    result.flush_block_bytes = footer.flush.block_bytes;
    return result;
}

} // namespace

FileDetails read_details(const std::string& path, const std::vector<FooterParts>& footers)
{
    FileDetails details;
    const VPropstring name = file_name(path);
    try
    {
        VBFFile file(name, VFile::read_mode);
        for (std::uint64_t index = 0; index < file->number_of_stacks(); ++index)
            details.stacks.push_back(
                describe(*file->get_stack(index), index < footers.size() ? footers[index] : FooterParts()));
    }
    catch (const VelaError& error)
    {
        details.open_failure = error.get_msg();
    }
    catch (const std::exception& error) // a description that a stack cannot have
    {
        details.open_failure = error.what();
    }
    if (details.open_failure)
        details.stacks.clear();
    return details;
}
