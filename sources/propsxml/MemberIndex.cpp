#include "sources/propsxml/MemberIndex.h"

VProp& MemberIndex::get(const std::string& path)
{
    if (!is_worthwhile() || !vela_prop_is_valid_name(path))
        return members[path];
    add_new_members();
    const auto [place, is_new] = places.try_emplace(path, members.size());
    if (!is_new)
        return members.at(place->second).second;
    vela_prop_reserve(members, members.size() + 1);
    ++indexed_count;
    return members.emplace_back(path, VProp()).second;
}

bool MemberIndex::has_key(const std::string& key)
{
    if (!is_worthwhile())
        return members.has_key(key);
    add_new_members();
    return places.contains(key);
}

/// Paths make members too.
void MemberIndex::add_new_members()
{
    for (; indexed_count < members.size(); ++indexed_count)
        places.try_emplace(members.at(indexed_count).first,
                           indexed_count); // the first of two equal keys hides the other
}
