#include <Json/property_bridge.h>

#include <string>
#include <vector>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace {

/// An object that is being merged, and how far.
struct Merging
{
    Value::Object::const_iterator entry;
    Value::Object::const_iterator end;
    Value::Object* into;
};

}

void merge(const Map<std::string, Value>& from, Map<std::string, Value>& into)
{
    std::vector<Merging> open{{from.begin(), from.end(), &into}};
    while (!open.empty())
    {
        Merging& merging = open.back();
        if (merging.entry == merging.end)
        {
            open.pop_back();
            continue;
        }
        const auto& [key, value] = *merging.entry++;
        const auto [existing, is_new] = merging.into->try_emplace(key, value);
        const Value::Object* const inner = value.if_object();
        Value::Object* const inner_into = existing->second.if_object();
        if (!is_new && inner != nullptr && inner_into != nullptr)
            open.push_back({inner->begin(), inner->end(), inner_into});
    }
}

VELA_ABI_NAMESPACE_END
}
