#include <VelaBase/VelaError.h>
#include <VelaProps/VPropstruct.h>

#include "sources/props/path_segment.h"

#include <algorithm>
#include <string_view>

using vela_prop::Segment;
using vela_prop::SegmentKind;
using vela_prop::split_path;

namespace {

VProp& make_member(VPropstruct& members, std::string_view key)
{
    vela_prop_reserve(members, members.size() + 1);
    return members.emplace_back(std::string(key), VProp()).second;
}

VProp& get_member(VPropstruct& members, std::string_view key, bool create)
{
    const auto found = std::ranges::find_if(members, [key](const auto& member) { return member.first == key; });
    if (found != members.end())
        return found->second;
    if (!create)
        throw VelaError("VPropstruct::getp", __FILE__, __LINE__)("Struct member '%s' does not exist!",
                                                                 std::string(key).c_str())(-1);
    return make_member(members, key);
}

/// The member that `path` begins with, and what is left of the path.
VProp& walk_struct(VPropstruct& members, std::string_view& path, bool create)
{
    const Segment segment = split_path(path);
    if (segment.kind != SegmentKind::member)
        throw VelaError("VPropstruct::getp", __FILE__, __LINE__)("Expected path ...'%s' to start with struct member!",
                                                                 std::string(path).c_str())(-1);
    path = segment.rest;
    return get_member(members, segment.head, create);
}

/// The array of `value`, which becomes one if it is empty and `create` is set; null if it is of another type.
template <class T>
VProparray<T>* find_array(VProp& value, bool create)
{
    if (value.empty() && create)
        value.ensure<VProparray<T>>();
    return value.get_id() == VProp::type_id<VProparray<T>> ? &value.get<VProparray<T>>() : nullptr;
}

/// One step along `path`, of which the rest is left.
VProp& walk_value(VProp& value, std::string_view& path, bool create)
{
    const std::string_view here = path;
    const Segment segment = split_path(path);
    path = segment.rest;
    if (segment.kind == SegmentKind::member)
    {
        if (value.empty() && create)
            value.ensure<VPropstruct>();
        return get_member(value.get<VPropstruct>(), segment.head, create);
    }
    if (segment.kind == SegmentKind::cell)
    {
        auto* const cells = find_array<VProp>(value, create);
        if (cells == nullptr)
            throw VelaError("VProp::getp", __FILE__, __LINE__)(
                "Path ...'%s' references cell content from a non-cell array!", std::string(here).c_str())(-1);
        return cells->at(segment.position, create);
    }
    auto* const structs = find_array<VPropstruct>(value, create);
    if (structs == nullptr)
        throw VelaError("VProp::getp", __FILE__, __LINE__)("Path ...'%s' references struct from a non-struct array!",
                                                           std::string(here).c_str())(-1);
    if (path.empty())
        throw VelaError("VProp::getp", __FILE__, __LINE__)("Path ...'%s' ends in struct array!",
                                                           std::string(here).c_str())(-1);
    return walk_struct(structs->at(segment.position, create), path, create);
}

VProp& walk(VProp& start, std::string_view path, bool create)
{
    VProp* value = &start;
    while (!path.empty())
        value = &walk_value(*value, path, create);
    return *value;
}

}

VPropstruct::VPropstruct() = default;
VPropstruct::VPropstruct(const VPropstruct& other) = default;
VPropstruct::VPropstruct(VPropstruct&& other) noexcept = default;

VPropstruct& VPropstruct::operator=(const VPropstruct& other)
{
    VPropstruct copy(other); // which may lie in this
    swap(copy);
    return *this;
}

VPropstruct& VPropstruct::operator=(VPropstruct&& other) noexcept = default;
VPropstruct::~VPropstruct() = default;

VProp& VPropstruct::getp(const std::string& path, bool create)
{
    const std::string own(path.data(), path.size()); // which may be a key that has to move
    std::string_view rest = own;
    VProp& member = walk_struct(*this, rest, create);
    return walk(member, rest, create);
}

const VProp& VPropstruct::getp(const std::string& path) const
{
    return const_cast<VPropstruct*>(this)->getp(path, false); // walks detach, whatever they walk through
}

VProp& VPropstruct::operator[](const std::string& path)
{
    return getp(path, true);
}

const VProp& VPropstruct::operator[](const std::string& path) const
{
    return getp(path);
}

bool VPropstruct::has_key(const std::string& key) const
{
    return find(key) != end();
}

bool VPropstruct::erase(const std::string& key)
{
    const iterator member = find(key);
    if (member == end())
        return false;
    // The members behind it move up without copies, which would lose their attachments.
    for (iterator next = member + 1; next != end(); ++next)
    {
        (next - 1)->first.swap(next->first);
        (next - 1)->second.swap(next->second);
    }
    pop_back();
    return true;
}

VPropstruct::iterator VPropstruct::find(const std::string& key)
{
    return std::ranges::find_if(*this, [&key](const value_type& member) { return member.first == key; });
}

VPropstruct::const_iterator VPropstruct::find(const std::string& key) const
{
    return std::ranges::find_if(*this, [&key](const value_type& member) { return member.first == key; });
}

VProp& VProp::getp(const std::string& path, bool create)
{
    const std::string own(path.data(), path.size()); // which may be a key that has to move
    return walk(*this, own, create);
}

const VProp& VProp::getp(const std::string& path) const
{
    return const_cast<VProp*>(this)->getp(path, false);
}

VProp& VProp::operator[](const std::string& path)
{
    return getp(path, true);
}

const VProp& VProp::operator[](const std::string& path) const
{
    return const_cast<VProp&>(*this).getp(path, true);
}
