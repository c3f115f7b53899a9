#include "stack_details.h"

#include "footer.h"
#include "open_file.h"
#include "quantity_text.h"
#include "record_reader.h"
#include "scanned_file.h"

#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackPosition.h>

#include <algorithm>

namespace {

/// "m" of one metre.
std::string unit_text(const std::optional<si::value>& unit)
{
    if (!unit)
        return "";
    const std::string text = quantity_text(*unit, si::value::with_blank | si::value::with_prefix);
    return text.rfind("1 ", 0) == 0 ? text.substr(2) : text;
}

AxisDetails describe_axis(const VStackInfoInterface& stack, std::uint64_t axis)
{
    AxisDetails result;
    result.label = stack.get_label(axis);
    if (!stack.is_equidistant(axis))
        result.col_positions = stack.get_col_positions(axis);
    result.col_labels = stack.get_col_labels(axis);
    return result;
}

GlobalPosition position_of(const VStackPosition& position)
{
    GlobalPosition result;
    for (const VPropstring& label : position.labels)
        result.labels.push_back(label.to(VPropstring::enc_utf8));
    result.origin.assign(position.origin.begin(), position.origin.end());
    const std::size_t count_rows = result.origin.size();
    result.matrix.resize(count_rows);
    for (std::size_t i = 0; i < position.matrix.count(); ++i)
        result.matrix[i % count_rows].push_back(position.matrix[i]);
    return result;
}

/// As a stack has it that was not moved.
bool is_plain(const GlobalPosition& position, const VStackInfoInterface& stack)
{
    if (position.origin.size() != stack.get_rank())
        return false;
    VStackPosition made;
    made.create(&stack, 0);
    const GlobalPosition plain = position_of(made);
    const bool unlabelled = std::all_of(position.labels.begin(), position.labels.end(),
                                        [](const std::string& label) { return label.empty(); });
    return position.origin == plain.origin && position.matrix == plain.matrix &&
           (unlabelled || position.labels == plain.labels);
}

StackDetails describe(const VBFStackInterface& stack)
{
    StackDetails result;
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
        result.axes.push_back(describe_axis(stack, axis));
    if (const VStackPosition& position = stack.get_stack_position(); position.is_valid_for(&stack))
        result.position = position_of(position);
    if (result.position && is_plain(*result.position, stack))
        result.position.reset();
    for (const std::string& key : stack.get_tag_keys())
        result.tags[key] = stack.get_tag(key);
    return result;
}

void add_footer(StackDetails& details, const FooterParts& footer)
{
    details.data_unit = unit_text(footer.data_unit);
    for (std::size_t axis = 0; axis < std::min(details.axes.size(), footer.units.size()); ++axis)
        details.axes[axis].unit = unit_text(footer.units[axis]);
    details.count_flush_points = footer.flush.count;
    details.flush_block_bytes = footer.flush.block_bytes;
}

/// What the library does not show.
void add_footers(const std::string& path, FileDetails& details)
{
    ScannedFile input(path);
    details.document = read_document(input.read_file_dictionary());
    const std::vector<VBFChainEntry>& stacks = input.get_chain().stacks;
    RecordReader reader(input.get_file());
    for (std::size_t index = 0; index < std::min(stacks.size(), details.stacks.size()); ++index)
        add_footer(details.stacks[index], read_footer_parts(reader, stacks[index]));
}

std::vector<StackDetails> read_stacks(const std::string& path)
{
    std::vector<StackDetails> stacks;
    VBFFile file = open_vbf(path, VFile::read_mode);
    for (std::uint64_t index = 0; index < file->number_of_stacks(); ++index)
        stacks.push_back(describe(*file->get_stack(index)));
    return stacks;
}

} // namespace

FileDetails read_details(const std::string& path)
{
    FileDetails details;
    try
    {
        details.stacks = read_stacks(path);
        add_footers(path, details);
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
