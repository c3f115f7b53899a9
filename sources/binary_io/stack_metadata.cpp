#include "sources/binary_io/stack_metadata.h"

#include <VelaBase/VelaError.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackPosition.h>

#include <cstdint>
#include <utility>

namespace {

/// From this version on the metadata hold the position.
constexpr std::uint32_t first_version_with_position = 3;

constexpr int any_format = 0;

VStackPosition position_in(const VProp& tree, const VStackInfoInterface& info)
{
    VStackPosition position;
    position.create(&info, 0);
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

void Vela::detail::import_metadata(const std::string& text, bool with_position, VStackInfoInterface& info)
{
    try
    {
        VProp tree;
        vela_import_xml(text, tree, any_format);
        if (with_position)
            info.set_stack_position(position_in(std::as_const(tree), info));
    }
    catch (const VelaError& error)
    {
        throw VelaError("VBFStackImp::read_info", __FILE__, __LINE__)("Invalid metadata found!\n%s", error.what())(-1);
    }
}
