#include "findings.h"

void Findings::add(bool wrong, std::uint64_t position, const std::string& text)
{
    ++count;
    count_wrong += wrong ? 1 : 0;
    if (list.size() < max_listed)
        list.push_back({wrong, stack, position, text});
}
