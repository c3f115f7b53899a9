#include "info.h"

#include "scanned_file.h"
#include "stack_shape.h"
#include "text.h"

#include <VelaBase/vela_dt.h>

#include <nlohmann/json.hpp>

namespace {

/// Keeps the order in which the keys are set.
typedef nlohmann::ordered_json Json;

/// Fields are copied out of the packed header, never referred to.
template <class T>
T copy_of(T field)
{
    return field;
}

Json describe(const VBFChainEntry& stack, std::size_t index)
{
    const StackShape shape(stack.header);
    Json result;
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

} // namespace

std::string info_as_json(ScannedFile& input)
{
    const VBFChain& chain = input.get_chain();
    Json result;
    result["format_version"] = copy_of(chain.file.header.format_version);
    result["description"] = valid_utf8(chain.file.description);
    result["meta_data_pos"] = input.has_dictionary() ? Json(chain.file.meta_data_pos) : Json(nullptr);
    if (const std::optional<std::string> failure = input.get_open_failure())
        result["open"] = valid_utf8(*failure);
    Json& stacks = result["stacks"] = Json::array();
    for (std::size_t index = 0; index < chain.stacks.size(); ++index)
        stacks.push_back(describe(chain.stacks[index], index));
    return result.dump(2) + "\n";
}
