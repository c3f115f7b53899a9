// Any text is a path or ends with a VelaError: a walk that makes what is missing succeeds where it is said to, a walk
// that only reads finds what it made, and a visitor comes by the same value.

#include <VelaBase/VelaError.h>
#include <VelaProps/VPropVisitor.h>
#include <VelaProps/VPropstruct.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace {

constexpr double mark = 1.5;

void require(bool holds)
{
    if (!holds)
        __builtin_trap();
}

/// Larger indices would take memory for that many elements.
bool has_large_index(const std::string& path)
{
    std::size_t digits = 0;
    for (const char c : path)
    {
        digits = c >= '0' && c <= '9' ? digits + 1 : 0;
        if (digits > 2)
            return true;
    }
    return std::count(path.begin(), path.end(), ',') > 3;
}

bool makes(VProp& tree, const std::string& path)
{
    try
    {
        tree.getp(path, true) = mark;
        return true;
    }
    catch (const VelaError& error)
    {
        require(error.get_id() == -1);
        return false;
    }
}

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wnon-virtual-dtor"
#endif
class Finder final : public VPropVisitor
{
public:
    bool has_found = false;

protected:
    using VPropVisitor::visit;
    int visit(const VProp& prop) override
    {
        if (prop.get_id() == VProp::type_id<double>)
            has_found = true;
        return 1;
    }
};
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string path(reinterpret_cast<const char*>(data), size);
    const bool is_valid = vela_prop_is_valid_path(path);
    if (has_large_index(path))
        return 0;
    VProp tree;
    require(makes(tree, path) == is_valid);
    if (!is_valid)
        return 0;
    require(tree.getp(path, false).get<double>() == mark);
    const VProp copy(tree);
    require(copy.getp(path).get<double>() == mark && copy == tree);
    Finder finder;
    require(finder.process(tree) && finder.has_found);
    require(makes(tree, path));
    require(copy == tree);
    return 0;
}
