#include "ome/unset_texts.h"

#include "json/list_keeper.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using Json::Value;

/// The keys of fields that may not hold the empty text.
bool is_checked_text(std::string_view key)
{
    constexpr std::array<std::string_view, 6> keys{"AcquisitionMode",  "ContrastMethod", "DimensionOrder",
                                                   "IlluminationType", "Type",           "ome:AcquisitionDate"};
    return key.ends_with("Unit") || std::ranges::find(keys, key) != keys.end();
}

Value* child_of(Value* element, const char* key)
{
    Value::Object* const members = element == nullptr ? nullptr : element->if_object();
    if (members == nullptr)
        return nullptr;
    const auto found = members->find(key);
    return found == members->end() ? nullptr : &found->second;
}

/// Those that somebody has looked at.
template <class Change>
void for_each_element(Value* list, Change change)
{
    if (list == nullptr || !list->is_list())
        return;
    for (Value& element : Json::detail::ListKeeper::fill(*list, 0))
        change(element);
}

}

namespace Ome::detail {

void unset_empty_texts(Value& element)
{
    Value::Object* const members = element.if_object();
    if (members == nullptr)
        return;
    for (auto& [key, value] : *members)
        if (is_checked_text(key) && value.is_string() && value.if_string()->empty())
            value = Value();
}

void unset_empty_texts_of_channels(Value& pixels_content)
{
    const auto change = [](Value& channel)
    {
        unset_empty_texts(channel);
        for_each_element(child_of(child_of(&channel, ""), "ome:LightSourceSettings"), unset_empty_texts);
    };
    for_each_element(child_of(&pixels_content, "ome:Channel"), change);
}

void unset_empty_texts_of_planes(Value& pixels_content)
{
    for_each_element(child_of(&pixels_content, "ome:Plane"), unset_empty_texts);
}

Value copy_of_image(const Value& image)
{
    Value copy(image);
    Value* const content = child_of(&copy, "");
    if (content == nullptr)
        return copy;
    unset_empty_texts(*content);
    Value* const pixels = child_of(content, "ome:Pixels");
    if (pixels == nullptr)
        return copy;
    unset_empty_texts(*pixels);
    if (Value* const pixels_content = child_of(pixels, ""))
    {
        unset_empty_texts_of_channels(*pixels_content);
        unset_empty_texts_of_planes(*pixels_content);
    }
    return copy;
}

} // namespace Ome::detail
