/// Looking for properties as it is described, by recursion.
#pragma once

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <cstddef>
#include <string>
#include <utility>

namespace json_test {

using Found = std::pair<VProp*, std::string>;

inline bool is_index(const std::string& part, std::size_t count, std::size_t& index)
{
    const std::size_t first = part.find_first_not_of('0');
    if (part.empty() || part.find_first_not_of("0123456789") != part.npos)
        return false;
    index = 0;
    if (first == part.npos)
        return count > 0;
    if (part.size() - first > 18)
        return false;
    index = std::stoull(part);
    return index < count;
}

inline Found plain_find(VProp& property, const std::string& path);

inline Found plain_go_on(VProp& property, const std::string& path, std::size_t slash)
{
    return slash == path.npos ? Found(&property, "") : plain_find(property, path.substr(slash + 1));
}

inline Found plain_find_member(VPropstruct& members, const std::string& path)
{
    const std::size_t slash = path.find('/');
    const auto member = members.find(path.substr(0, slash));
    return member == members.end() ? Found() : plain_go_on(member->second, path, slash);
}

inline Found plain_find(VProp& property, const std::string& path)
{
    const int id = property.get_id();
    const std::size_t slash = path.find('/');
    std::size_t index = 0;
    if (id == vela_dt_struct)
        return plain_find_member(property.get<VPropstruct>(), path);
    if (id == VProp::type_id<VProparray<VProp>>)
    {
        auto& array = property.get<VProparray<VProp>>();
        return is_index(path.substr(0, slash), array.size(), index) ? plain_go_on(array[index], path, slash) : Found();
    }
    if (id == VProp::type_id<VProparray<VPropstruct>>)
    {
        if (slash == path.npos)
            return {&property, path};
        auto& array = property.get<VProparray<VPropstruct>>();
        return is_index(path.substr(0, slash), array.size(), index)
                   ? plain_find_member(array[index], path.substr(slash + 1))
                   : Found();
    }
    return property.get_arr(false) != nullptr ? Found(&property, path) : Found();
}

}
