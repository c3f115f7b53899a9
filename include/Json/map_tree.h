/// The tree of entries below the map of the value tree: searching, linking, copying, destroying.
#pragma once

#include <Json/map_node.h>
#include <VelaBase/export.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN
namespace detail {

/// What stands in for a `K` in lookups: for strings what is a view of one, which has the same order. Anything else is
/// converted to the key, as in `std::map`: it might be ordered in another way than the keys are.
template <class K, class Q>
constexpr bool is_map_key_like = std::is_same_v<K, std::string> && !std::is_same_v<std::decay_t<Q>, K> &&
                                 !std::is_same_v<std::decay_t<Q>, std::nullptr_t> &&
                                 std::is_convertible_v<const std::remove_reference_t<Q>&, std::string_view>;

/// What to search for, measured only once.
inline std::string_view as_view(std::string_view text)
{
    return text;
}

/// Searching and ordering: what a map does with its nodes that knows their keys.
template <class K, class V>
struct MapTree
{
    using Entry = MapEntry<K, V>;

    /// Where a key belongs: its entry, or else the free link that the entry would hang from.
    struct Place
    {
        MapNode* existing;
        MapNode* parent;
        bool left;
    };

    MapTree() noexcept = default;
    MapTree(const MapTree&) = delete;
    MapTree& operator=(const MapTree&) = delete;
    ~MapTree() { clear(); }

    static bool is_less(const K& a, const K& b) { return std::less<K>()(a, b); }
    template <class Key = K, std::enable_if_t<std::is_same_v<Key, std::string>, int> = 0>
    static bool is_less(std::string_view a, std::string_view b)
    {
        return a < b;
    }

    /// Below 0, 0 and above 0 where `a` comes before, is and comes after `b`; for texts in one comparison.
    template <class Q>
    static int compare(const Q& a, const K& b)
    {
        if constexpr (std::is_same_v<K, std::string>)
            return std::string_view(a).compare(b);
        else if (is_less(a, b))
            return -1;
        else
            return is_less(b, a) ? 1 : 0;
    }

    static Entry& entry_at(MapNode* node) noexcept { return *entry_of<K, V>(node); }
    static const K& key_at(MapNode* node) noexcept { return entry_at(node).pair.first; }

    /// The header as a node, for iterators; those of a constant map change nothing.
    MapNode* end() const noexcept { return const_cast<MapHeader*>(&header); }

    template <class Q>
    MapNode* lower_bound(const Q& key) const
    {
        MapNode* found = end();
        for (MapNode* node = header.parent(); node;)
        {
            if (is_less(key_at(node), key))
            {
                node = node->right;
                continue;
            }
            found = node;
            node = node->left;
        }
        return found;
    }

    template <class Q>
    MapNode* upper_bound(const Q& key) const
    {
        MapNode* found = end();
        for (MapNode* node = header.parent(); node;)
        {
            if (!is_less(key, key_at(node)))
            {
                node = node->right;
                continue;
            }
            found = node;
            node = node->left;
        }
        return found;
    }

    template <class Q>
    MapNode* find(const Q& key) const
    {
        MapNode* const node = place_of(key).existing;
        return node ? node : end();
    }

    template <class Q>
    Entry& at(const Q& key) const
    {
        MapNode* const node = find(key);
        if (node == end())
            throw_key_not_found();
        return entry_at(node);
    }

    template <class Q>
    Place place_of(const Q& key) const
    {
        MapNode* parent = end();
        bool left = true;
        for (MapNode* node = header.parent(); node;)
        {
            const int order = compare(key, key_at(node));
            if (order == 0)
                return {node, nullptr, false};
            parent = node;
            left = order < 0;
            node = left ? node->left : node->right;
        }
        return {nullptr, parent, left};
    }

    /// The same without a search where the key comes right before `hint`, right behind it, or is there.
    template <class Q>
    Place place_of(const Q& key, MapNode* hint) const
    {
        if (hint == end() || is_less(key, key_at(hint)))
        {
            if (hint == header.left)
                return {nullptr, hint, true};
            MapNode* const before = previous_node(hint);
            return is_less(key_at(before), key) ? place_between(before, hint) : place_of(key);
        }
        if (!is_less(key_at(hint), key))
            return {hint, nullptr, false};
        MapNode* const behind = next_node(hint);
        return behind == end() || is_less(key, key_at(behind)) ? place_between(hint, behind) : place_of(key);
    }

    /// Of two neighbours one is below the other, so one of the links is free.
    static Place place_between(MapNode* before, MapNode* behind) noexcept
    {
        if (!before->right)
            return {nullptr, before, false};
        return {nullptr, behind, true};
    }

    MapNode* link(const Place& place, Entry* entry) noexcept
    {
        link_map_node(header, *place.parent, place.left, *entry);
        ++header.size;
        return entry;
    }

    void erase(MapNode* node) noexcept
    {
        unlink_map_node(header, *node);
        --header.size;
        destroy(entry_at(node));
    }

    void clear() noexcept
    {
        if (header.size == 0)
            return;
        MapHeader tree;
        tree.take(header);
        // All nodes of a block belong to one map: if as many live as the map has, they are the map.
        MapBlock* const block = entry_at(tree.left).block;
        if (block && block->live == tree.size && block->capacity == tree.size)
            MapBlockMemory<Entry>::destroy(block);
        else
            destroy_subtree(tree.parent());
    }

    /// When it throws, this tree is as it was; so below.
    void copy_from(const MapTree& other)
    {
        build_from(other, [](MapBlockBuilder<Entry>& block, const Entry& from) { block.add(from.pair); });
    }

    /// Values are made by default, and filled by `copy_value`.
    template <class CopyValue>
    void clone_from(const MapTree& other, CopyValue& copy_value)
    {
        build_from(other,
                   [&](MapBlockBuilder<Entry>& block, const Entry& from)
                   {
                       Entry& entry =
                           block.add(std::piecewise_construct, std::forward_as_tuple(from.pair.first), std::tuple<>());
                       copy_value(from.pair.second, entry.pair.second);
                   });
    }

    MapHeader header;

private:
    /// Takes as many entries as `other` has for its own, which `add_entry` adds to a block one by one.
    template <class AddEntry>
    void build_from(const MapTree& other, AddEntry add_entry)
    {
        if (other.header.size == 0)
        {
            clear();
            return;
        }
        MapBlockBuilder<Entry> block(other.header.size);
        for (MapNode* node = other.header.left; node != other.end(); node = next_node(node))
            add_entry(block, static_cast<const Entry&>(entry_at(node)));
        clear();
        block.link(header);
    }

    static void destroy(Entry& entry) noexcept
    {
        MapBlock* const block = entry.block;
        if (!block)
        {
            delete &entry;
            return;
        }
        entry.~Entry();
        if (--block->live == 0)
            MapBlockMemory<Entry>::free(block);
    }

    /// Recurses only as deep as the tree is.
    static void destroy_subtree(MapNode* node) noexcept
    {
        while (node)
        {
            destroy_subtree(node->right);
            MapNode* const left = node->left;
            destroy(entry_at(node));
            node = left;
        }
    }
};

}
VELA_ABI_NAMESPACE_END
}
