#include <Json/map_node.h>

#include <bit>
#include <boost/intrusive/rbtree_algorithms.hpp>
#include <cstddef>
#include <stdexcept>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

namespace {

/// How Boost gets at the links and the colour.
struct NodeTraits
{
    using node = MapNode;
    using node_ptr = MapNode*;
    using const_node_ptr = const MapNode*;
    enum color
    {
        black_color,
        red_color
    };

    static node_ptr get_parent(const_node_ptr node) { return node->parent(); }
    static void set_parent(node_ptr node, node_ptr parent) { node->set_parent(parent); }
    static node_ptr get_left(const_node_ptr node) { return node->left; }
    static void set_left(node_ptr node, node_ptr left) { node->left = left; }
    static node_ptr get_right(const_node_ptr node) { return node->right; }
    static void set_right(node_ptr node, node_ptr right) { node->right = right; }
    static color get_color(const_node_ptr node) { return node->is_red() ? red_color : black_color; }
    static void set_color(node_ptr node, color colour) { node->set_red(colour == red_color); }
    static color black() { return black_color; }
    static color red() { return red_color; }
};

using Algorithms = boost::intrusive::rbtree_algorithms<NodeTraits>;

/// Nodes that lie in the order of their keys.
struct SortedNodes
{
    std::byte* first;
    std::size_t stride_bytes;
    std::size_t red_depth;

    MapNode* at(std::size_t index) const
    {
        return static_cast<MapNode*>(static_cast<void*>(first + index * stride_bytes));
    }

    /// The root of the tree of `count` nodes from `begin`, at least one; it lies `depth` below the root of all.
    MapNode* link(std::size_t begin, std::size_t count, std::size_t depth) const
    {
        const std::size_t count_left = count / 2;
        const std::size_t count_right = count - count_left - 1;
        MapNode* const node = at(begin + count_left);
        node->parent_and_colour = depth == red_depth ? MapNode::red_bit : 0;
        node->left = count_left == 0 ? nullptr : link(begin, count_left, depth + 1);
        node->right = count_right == 0 ? nullptr : link(begin + count_left + 1, count_right, depth + 1);
        if (node->left)
            node->left->set_parent(node);
        if (node->right)
            node->right->set_parent(node);
        return node;
    }
};

}

void link_map_node(MapHeader& header, MapNode& parent, bool left, MapNode& node) noexcept
{
    Algorithms::insert_commit_data place;
    place.link_left = left;
    place.node = &parent;
    Algorithms::insert_unique_commit(&header, &node, place);
}

void unlink_map_node(MapHeader& header, MapNode& node) noexcept
{
    Algorithms::erase(&header, &node);
}

void link_sorted_map_nodes(MapHeader& header, MapNode& first, std::size_t stride_bytes, std::size_t count) noexcept
{
    // Halving makes all levels full but the last one. The nodes there are red, all others black, so every way
    // down passes equally many black ones. A full last level is black too.
    const auto red_depth = static_cast<std::size_t>(std::bit_width(count + 1)) - 1;
    const SortedNodes nodes{reinterpret_cast<std::byte*>(&first), stride_bytes, red_depth};
    MapNode* const root = nodes.link(0, count, 0);
    root->set_parent(&header);
    header.set_parent(root);
    header.left = nodes.at(0);
    header.right = nodes.at(count - 1);
}

void throw_key_not_found()
{
    throw std::out_of_range("map::at");
}

}
VELA_ABI_NAMESPACE_END
}
