#include "sources/binary_io/stack_metadata.h"

#include <VelaBase/VelaError.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackPosition.h>

#include "sources/stacks/position_fits.h"

#include <cstdint>

namespace {

/// From this version on the metadata hold the position.
constexpr std::uint32_t first_version_with_position = 3;

constexpr int any_format = 0;

VProp tree_of(const std::string& text)
{
    VProp tree;
    vela_import_xml(text, tree, any_format);
    return tree;
}

VStackPosition position_in(const VProp& tree)
{
    VStackPosition position;
    position.labels = tree["global_pos.axes"].get<VProparray<VPropstring>>();
    position.origin = tree["global_pos.offset"].get<VProparray<double>>();
    position.matrix = tree["global_pos.projection"].get<VProparray<double>>();
    return position;
}

} // namespace

bool Vela::detail::has_position(const VBFStackHeader& header)
{
    return header.format_version >= first_version_with_position;
}

bool Vela::detail::is_good_metadata(const std::string& text, bool with_position, std::uint64_t rank)
{
    try
    {
        const VProp tree = tree_of(text);
        return !with_position || position_fits(position_in(tree), rank);
    }
    catch (const VelaError&)
    {
        return false;
    }
}

void Vela::detail::import_metadata(const std::string& text, bool with_position, VStackInfoInterface& info)
{
    try
    {
        const VProp tree = tree_of(text);
        if (with_position)
            info.set_stack_position(position_in(tree));
    }
    catch (const VelaError& error)
    {
        throw VelaError("VBFStackImp::read_info", __FILE__, __LINE__)("Invalid metadata found!\n%s", error.what())(-1);
    }
}
