// Any path in any tree finds what the plainest way of looking finds; both forms find the same, and nothing changes.
// The first line of the input makes the tree, the second is the path.

#include "tests/json/plain_find.h"

#include <Json/property_bridge.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace {

void require(bool holds)
{
    if (!holds)
        __builtin_trap();
}

/// Makes a tree, one character for each property: "{" a structure, "[" an array of properties, "(" one of structures,
/// "i" and "s" arrays of numbers and of texts, and anything else a number. Within a structure a character for the name
/// of the member comes first; "." is the empty name. "}", "]", ")" close.
class TreeMaker
{
public:
    explicit TreeMaker(const std::string& source) : at(source.data()), end(at + source.size()) {}

    VProp make(std::size_t levels)
    {
        const char kind = take();
        if (levels > 0 && kind == '{')
            return VProp(make_members(levels - 1));
        if (levels > 0 && kind == '[')
            return make_array<VProp>(']', [&] { return make(levels - 1); });
        if (levels > 0 && kind == '(')
            return make_array<VPropstruct>(')', [&] { return make_members(levels - 1); });
        if (kind == 'i')
            return VProp(VProparray<int>());
        if (kind == 's')
            return VProp(VProparray<VPropstring>());
        return VProp(kind);
    }

private:
    char take() { return at == end ? '\0' : *at++; }

    /// Whether this is the end of what `closing` closes.
    bool takes_end(char closing)
    {
        if (at != end && *at != closing)
            return false;
        take();
        return true;
    }

    VPropstruct make_members(std::size_t levels)
    {
        VPropstruct members;
        while (!takes_end('}'))
        {
            const char name = take();
            vela_prop_reserve(members, members.size() + 1);
            members.push_back({name == '.' ? std::string() : std::string(1, name), make(levels)});
        }
        return members;
    }

    template <class T, class Make>
    VProp make_array(char closing, Make make_element)
    {
        VProparray<T> array;
        while (!takes_end(closing))
            array.push_back(make_element());
        return VProp(array);
    }

    const char* at;
    const char* end;
};

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t line = std::min(input.find('\n'), input.size());
    const std::string path = input.substr(std::min(line + 1, input.size()));
    const std::string source = input.substr(0, line);
    if (path.size() > 4096) // the plain way recurses
        return 0;
    VProp tree = TreeMaker(source).make(16);
    const VProp before(tree);
    const auto found = Json::find_property(tree, path);
    require(found == json_test::plain_find(tree, path));
    const auto constant = Json::find_property(std::as_const(tree), path);
    require(constant.first == found.first && constant.second == found.second);
    require(found.first != nullptr || found.second.empty());
    require(found.second.size() <= path.size() &&
            path.compare(path.size() - found.second.size(), path.npos, found.second) == 0);
    require(tree == before);
    return 0;
}
