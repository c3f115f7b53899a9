/// Properties from lists of what they hold.
#pragma once

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vela_test {

/// A structure of these members, which may have equal names.
inline VPropstruct structure(const std::vector<std::pair<std::string, VProp>>& members)
{
    VPropstruct made;
    vela_prop_reserve(made, members.size() + 1);
    for (const auto& member : members)
        made.push_back(member);
    return made;
}

/// An array of these sizes with these elements; without sizes, none are set.
template <class T>
VProp array_of(const std::vector<std::size_t>& sizes, const std::vector<T>& elements)
{
    VProparray<T> array;
    array.resize(elements.size(), true);
    for (std::size_t i = 0; i < elements.size(); ++i)
        array[i] = elements[i];
    if (!sizes.empty())
        array.set_size(sizes, VProparrayBase::set_only);
    return VProp(array);
}

} // namespace vela_test
