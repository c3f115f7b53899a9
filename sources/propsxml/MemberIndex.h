/// Members of a struct by name while many are added.
#pragma once

#include <VelaProps/VPropstruct.h>

#include <cstddef>
#include <map>
#include <string>

/// A struct looks at member after member; for a document of many members that would take time for each pair of them.
class MemberIndex
{
public:
    explicit MemberIndex(VPropstruct& indexed) : members(indexed) {}

    /// As `members[path]`.
    VProp& get(const std::string& path);

    /// As `members.has_key(key)`.
    bool has_key(const std::string& key);

private:
    bool is_worthwhile() const { return members.size() >= 32; }
    void add_new_members();

    VPropstruct& members; ///< members come behind those that are there; none goes
    std::map<std::string, std::size_t> places;
    std::size_t indexed_count = 0;
};
