#include "sources/binary_io/stack_metadata.h"

#include <VelaBase/VelaError.h>
#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackPosition.h>

#include "sources/propsxml/ticpp.h"
#include "sources/stacks/position_fits.h"

#include <cstddef>
#include <cstdint>

namespace {

/// From this version on the metadata hold the position.
constexpr std::uint32_t first_version_with_position = 3;

constexpr int any_format = 0;

/// The XML of a damaged file may be nothing but elements, and the tree of those have a hundred times its size. What a
/// description may need, and more where it has texts, is less than this.
void require_reasonable_size(const std::string& text)
{
    constexpr std::size_t always_allowed = 0x100000;
    constexpr std::size_t bytes_of_node = 16;
    const std::size_t most_nodes = always_allowed + text.size() / bytes_of_node;
    if (text.size() > always_allowed && ticpp::count_nodes(text) > most_nodes)
        throw VelaError("VBFStackImp::read_info", __FILE__, __LINE__)("Too many elements in metadata!")(-1);
}

VProp tree_of(const std::string& text)
{
    require_reasonable_size(text);
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
