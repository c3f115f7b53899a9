/// Trees that are far deeper than any stack, made and measured without recursion and without paths.
#pragma once

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <cstddef>
#include <string>
#include <utility>

namespace prop_test {

/// What each level is.
enum class Levels
{
    structs,
    cells,
    struct_arrays,
    mixed ///< the three by turns, with siblings before and behind
};

inline const char* name_of(Levels levels)
{
    switch (levels)
    {
    case Levels::structs:
        return "Structs";
    case Levels::cells:
        return "Cells";
    case Levels::struct_arrays:
        return "StructArrays";
    case Levels::mixed:
        break;
    }
    return "Mixed";
}

inline Levels kind_at(Levels levels, std::size_t index)
{
    return levels == Levels::mixed ? static_cast<Levels>(index % 3) : levels;
}

/// The value that lies one level down; null where there is none. Detaches nothing.
inline VProp* inner_value(VProp& value)
{
    if (value.get_id() == VProp::type_id<VPropstruct>)
    {
        auto& members = *static_cast<VPropstruct*>(value.value_ptr());
        const auto found = members.find("k");
        return found == members.end() ? nullptr : &found->second;
    }
    if (value.get_id() == VProp::type_id<VProparray<VProp>>)
    {
        auto& cells = *static_cast<VProparray<VProp>*>(value.value_ptr());
        return cells.empty() ? nullptr : &cells.front();
    }
    if (value.get_id() == VProp::type_id<VProparray<VPropstruct>>)
    {
        auto& structs = *static_cast<VProparray<VPropstruct>*>(value.value_ptr());
        if (structs.empty())
            return nullptr;
        const auto found = structs.front().find("k");
        return found == structs.front().end() ? nullptr : &found->second;
    }
    return nullptr;
}

/// Puts a new level of `kind` around `value`, with or without siblings.
inline void wrap(VProp& value, Levels kind, bool with_siblings)
{
    VProp level;
    if (kind == Levels::cells)
    {
        auto& cells = level.ensure_array<VProp>(with_siblings ? 3 : 1);
        if (with_siblings)
            cells[2] = 7.5;
    }
    else
    {
        VPropstruct* members = nullptr;
        if (kind == Levels::structs)
            members = &level.ensure<VPropstruct>();
        else
            members = &level.ensure_array<VPropstruct>(with_siblings ? 2 : 1)[0];
        vela_prop_reserve(*members, with_siblings ? 3 : 1);
        if (with_siblings)
            members->emplace_back("a", VProp(1));
        members->emplace_back("k", VProp());
        if (with_siblings)
            members->emplace_back("z", VProp(L"sibling"));
    }
    inner_value(level)->swap_value(value);
    value.swap_value(level);
}

/// Makes `depth` levels around `value`; with `lock` every container is locked.
inline void deepen(VProp& value, std::size_t depth, Levels levels, bool lock = false)
{
    for (std::size_t index = 0; index < depth; ++index)
    {
        if (lock)
            value.lock();
        wrap(value, kind_at(levels, index), levels == Levels::mixed);
    }
    if (lock)
        value.lock();
}

/// The value `levels` levels down, or the leaf. Detaches nothing.
inline VProp& value_at_depth(VProp& value, std::size_t levels)
{
    VProp* at = &value;
    for (; levels > 0; --levels)
    {
        VProp* const inner = inner_value(*at);
        if (inner == nullptr)
            break;
        at = inner;
    }
    return *at;
}

/// How many levels stand around the leaf.
inline std::size_t depth_of(VProp& value)
{
    std::size_t depth = 0;
    for (VProp* at = inner_value(value); at != nullptr; at = inner_value(*at))
        ++depth;
    return depth;
}

/// The path to the leaf of a tree of so many levels. Of mixed ones, level 0 is the innermost.
inline std::string path_of(std::size_t depth, Levels levels)
{
    std::string path;
    for (std::size_t index = depth; index-- > 0;)
    {
        const Levels kind = kind_at(levels, index);
        if (kind == Levels::cells)
            path += "{0}";
        else if (kind == Levels::struct_arrays)
            path += "(0).k";
        else
            path += path.empty() ? "k" : ".k";
    }
    return path;
}

}
