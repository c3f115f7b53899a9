#include "info.h"

#include "stack_shape.h"
#include "text.h"

#include <VelaBase/vela_dt.h>

#include <nlohmann/json.hpp>

namespace {

/// Keeps the order in which the keys are set.
typedef nlohmann::ordered_json Document;

/// Fields are copied out of the packed header, never referred to.
template <class T>
T copy_of(T field)
{
    return field;
}

Document describe(const VBFChainEntry& stack, std::size_t index)
{
    const StackShape shape(stack.header);
    Document result;
    result["index"] = index;
    result["position"] = stack.position;
    result["format_version"] = copy_of(stack.header.format_version);
    result["rank"] = copy_of(stack.header.rank);
    result["sizes"] = shape.sizes;
    result["lengths"] = shape.lengths; // JSON has no NaN and no infinity: both are written as null
    result["offsets"] = shape.offsets;
    result["data_type"] = copy_of(stack.header.data_type);
    result["type"] = vela_dt_get_name(stack.header.data_type);
    result["compression_type"] = copy_of(stack.header.compression_type);
    result["compression_level"] = copy_of(stack.header.compression_level);
    result["name"] = valid_utf8(stack.name);
    result["description"] = valid_utf8(stack.description);
    result["data_pos"] = stack.data_pos;
    result["data_length_on_disk"] = copy_of(stack.header.data_length_on_disk);
    return result;
}

Document describe_axis(const AxisDetails& axis)
{
    Document result;
    result["label"] = valid_utf8(axis.label);
    result["unit"] = axis.unit.empty() ? Document(nullptr) : Document(axis.unit);
    result["equidistant"] = axis.equidistant;
    if (!axis.col_labels.empty())
    {
        Document& labels = result["column_labels"] = Document::array();
        for (const std::string& label : axis.col_labels)
            labels.push_back(valid_utf8(label));
    }
    return result;
}

/// What only an open file tells.
void add_details(Document& result, const StackDetails& details)
{
    Document& axes = result["axes"] = Document::array();
    for (const AxisDetails& axis : details.axes)
        axes.push_back(describe_axis(axis));
    Document& tags = result["tags"] = Document::object();
    for (const auto& [key, text] : details.tags)
        tags[valid_utf8(key)] = valid_utf8(text);
    result["flush_points"] = details.count_flush_points;
    result["flush_block_size"] = details.flush_block_bytes;
}

} // namespace

std::string info_as_json(const Listing& listing)
{
    const VBFChain& chain = listing.chain;
    Document result;
    result["format_version"] = copy_of(chain.file.header.format_version);
    result["description"] = valid_utf8(chain.file.description);
    result["meta_data_pos"] = listing.has_dictionary ? Document(chain.file.meta_data_pos) : Document(nullptr);
    if (listing.details.open_failure)
        result["open"] = valid_utf8(*listing.details.open_failure);
    Document& stacks = result["stacks"] = Document::array();
    for (std::size_t index = 0; index < chain.stacks.size(); ++index)
    {
        stacks.push_back(describe(chain.stacks[index], index));
        if (index < listing.details.stacks.size())
            add_details(stacks.back(), listing.details.stacks[index]);
    }
    return result.dump(2) + "\n";
}
