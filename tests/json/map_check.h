/// Looks into a map and holds its tree against what must hold of every red-black tree.
#pragma once

#include <Json/Map.h>

#include <cstddef>
#include <gtest/gtest.h>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

struct MapInspector
{
    template <class K, class V>
    static const MapHeader& header(const Map<K, V>& map)
    {
        return map.tree_.header;
    }
};

}
VELA_ABI_NAMESPACE_END
}

namespace vela_test {

/// Black nodes on every way down from `node`, which must be as many; counts the nodes.
inline std::size_t check_subtree(const Json::detail::MapNode* node, const Json::detail::MapNode* parent,
                                 std::size_t& count_nodes)
{
    if (!node)
        return 0;
    ++count_nodes;
    EXPECT_EQ(node->parent(), parent);
    EXPECT_FALSE(node->is_red() && parent->is_red()) << "red below red";
    const std::size_t left = check_subtree(node->left, node, count_nodes);
    const std::size_t right = check_subtree(node->right, node, count_nodes);
    EXPECT_EQ(left, right) << "black nodes to the left and to the right";
    return left + (node->is_red() ? 0 : 1);
}

template <class K, class V>
void check_tree(const Json::Map<K, V>& map)
{
    const Json::detail::MapHeader& header = Json::detail::MapInspector::header(map);
    EXPECT_TRUE(header.is_red());
    std::size_t count_nodes = 0;
    check_subtree(header.parent(), &header, count_nodes); // the header is red, so the root must be black
    EXPECT_EQ(count_nodes, map.size());
    if (map.empty())
    {
        EXPECT_EQ(header.left, &header);
        EXPECT_EQ(header.right, &header);
        return;
    }
    EXPECT_FALSE(header.left->left) << "not the first node";
    EXPECT_FALSE(header.right->right) << "not the last node";
    for (auto entry = map.begin(), behind = std::next(entry); behind != map.end(); ++entry, ++behind)
        EXPECT_LT(entry->first, behind->first);
}

} // namespace vela_test
