#include "extents.h"

#include <iterator>

std::optional<std::string> Extents::claim(std::uint64_t begin, std::uint64_t end, const std::string& owner)
{
    if (begin >= end)
        return std::nullopt;
    const auto next = owned.lower_bound(begin);
    if (next != owned.end() && next->first < end)
        return next->second.owner;
    if (next != owned.begin() && std::prev(next)->second.end > begin)
        return std::prev(next)->second.owner;
    owned.emplace_hint(next, begin, Owned{end, owner});
    return std::nullopt;
}

bool Extents::is_free(std::uint64_t position) const
{
    const auto next = owned.upper_bound(position);
    return next == owned.begin() || std::prev(next)->second.end <= position;
}

std::vector<Extents::Stretch> Extents::gaps(std::uint64_t end) const
{
    std::vector<Stretch> result;
    std::uint64_t done = 0;
    for (const auto& [begin, stretch] : owned)
    {
        if (begin > done)
            result.push_back({done, begin});
        done = stretch.end;
    }
    if (end > done)
        result.push_back({done, end});
    return result;
}
