#include <Json/property_bridge.h>
#include <VelaProps/VPropstruct.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace {

/// What is left of a path.
class PathRest
{
public:
    explicit PathRest(std::string_view path) : rest_(path) {}

    /// Takes the first part away.
    std::string_view take_part()
    {
        const std::size_t length = std::min(rest_.find('/'), rest_.size());
        const std::string_view part = rest_.substr(0, length);
        is_used_up_ = length == rest_.size();
        rest_.remove_prefix(is_used_up_ ? length : length + 1);
        return part;
    }

    bool has_separator() const { return rest_.find('/') != rest_.npos; }

    /// No part is left. An empty one may be, as behind the last "/".
    bool is_used_up() const { return is_used_up_; }

    std::string text() const { return std::string(rest_); }

private:
    std::string_view rest_;
    bool is_used_up_ = false;
};

/// Digits alone, of a number below `count`.
std::optional<std::size_t> read_index(std::string_view part, std::size_t count)
{
    std::size_t index = 0;
    const char* const end = part.data() + part.size();
    const auto [stopped, error] = std::from_chars(part.data(), end, index);
    if (error != std::errc() || stopped != end || index >= count)
        return std::nullopt;
    return index;
}

VProp* find_member(VPropstruct& members, std::string_view key)
{
    const auto found = std::ranges::find_if(members, [key](const auto& member) { return member.first == key; });
    return found == members.end() ? nullptr : &found->second;
}

/// The element that the next part counts, or null.
template <class T>
T* take_element(VProparray<T>& array, PathRest& path)
{
    const std::optional<std::size_t> index = read_index(path.take_part(), array.count());
    return index ? &array[*index] : nullptr;
}

/// One step down, or null.
VProp* take_child(VProp& property, PathRest& path)
{
    switch (property.get_id())
    {
    case VProp::type_id<VPropstruct>:
        return find_member(property.get<VPropstruct>(), path.take_part());
    case VProp::type_id<VProparray<VProp>>:
        return take_element(property.get<VProparray<VProp>>(), path);
    case VProp::type_id<VProparray<VPropstruct>>: {
        VPropstruct* const members = take_element(property.get<VProparray<VPropstruct>>(), path);
        return members == nullptr ? nullptr : find_member(*members, path.take_part());
    }
    default:
        return nullptr;
    }
}

/// An array into which the path does not go.
bool is_end(vela_dt id, const PathRest& path)
{
    if (id == VProp::type_id<VProparray<VPropstruct>>)
        return !path.has_separator();
    return (id & vela_dt_array) != 0 && id != VProp::type_id<VProparray<VProp>>;
}

}

std::pair<VProp*, std::string> find_property(VProp& property, const std::string& path)
{
    PathRest rest(path);
    for (VProp* at = &property; at != nullptr; at = take_child(*at, rest))
        if (rest.is_used_up() || is_end(at->get_id(), rest))
            return {at, rest.text()};
    return {nullptr, {}};
}

std::pair<const VProp*, std::string> find_property(const VProp& property, const std::string& path)
{
    return find_property(const_cast<VProp&>(property), path);
}

VELA_ABI_NAMESPACE_END
}
