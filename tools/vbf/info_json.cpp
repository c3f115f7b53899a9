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

Document texts(const std::vector<std::string>& list)
{
    Document result = Document::array();
    for (const std::string& text : list)
        result.push_back(valid_utf8(text));
    return result;
}

Document describe_axis(const AxisDetails& axis)
{
    Document result;
    result["label"] = valid_utf8(axis.label);
    result["unit"] = axis.unit.empty() ? Document(nullptr) : Document(axis.unit);
    result["equidistant"] = axis.col_positions.empty();
    if (!axis.col_positions.empty())
        result["column_positions"] = axis.col_positions;
    if (!axis.col_labels.empty())
        result["column_labels"] = texts(axis.col_labels);
    return result;
}

Document describe_position(const std::optional<GlobalPosition>& position)
{
    if (!position)
        return nullptr;
    Document result;
    result["labels"] = texts(position->labels);
    result["origin"] = position->origin;
    result["matrix"] = position->matrix;
    return result;
}

Document text_or_null(const std::optional<std::string>& text)
{
    return text ? Document(valid_utf8(*text)) : Document(nullptr);
}

/// What only an open file tells.
void add_details(Document& result, const StackDetails& details)
{
    Document& axes = result["axes"] = Document::array();
    for (const AxisDetails& axis : details.axes)
        axes.push_back(describe_axis(axis));
    result["data_unit"] = details.data_unit.empty() ? Document(nullptr) : Document(details.data_unit);
    result["global_position"] = describe_position(details.position);
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
    result["format"] = listing.is_dbl ? "DBL" : "VBF";
    result["format_version"] = listing.is_dbl ? Document(nullptr) : Document(copy_of(chain.file.header.format_version));
    result["description"] = valid_utf8(chain.file.description);
    result["meta_data_pos"] = listing.has_dictionary ? Document(chain.file.meta_data_pos) : Document(nullptr);
    if (listing.details.open_failure)
        result["open"] = valid_utf8(*listing.details.open_failure);
    result["creator"] = text_or_null(listing.details.document.creator);
    result["uuid"] = text_or_null(listing.details.document.uuid);
    Document& stacks = result["stacks"] = Document::array();
    for (std::size_t index = 0; index < chain.stacks.size(); ++index)
    {
        stacks.push_back(describe(chain.stacks[index], index));
        if (index < listing.details.stacks.size())
            add_details(stacks.back(), listing.details.stacks[index]);
    }
    return result.dump(2) + "\n";
}
