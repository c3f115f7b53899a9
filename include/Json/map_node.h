/// What the map of the value tree is made of: nodes, the blocks that they lie in, iterators.
///
/// A map is a red-black tree. Its header is a node too: `left` and `right` are the first and the last node of
/// the tree, or the header itself where there is none, and its parent is the root. Only the header is red and
/// the parent of its own parent at once, for the root is black.
#pragma once

#include <VelaBase/export.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <type_traits>
#include <utility>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

template <class K, class V>
struct Map;

namespace detail {

/// The links of a node, the colour in the lowest bit of the link to the parent.
struct MapNode
{
    static constexpr std::uintptr_t red_bit = 1;

    MapNode* parent() const noexcept { return reinterpret_cast<MapNode*>(parent_and_colour & ~red_bit); }
    bool is_red() const noexcept { return (parent_and_colour & red_bit) != 0; }
    void set_parent(MapNode* node) noexcept
    {
        parent_and_colour = reinterpret_cast<std::uintptr_t>(node) | (parent_and_colour & red_bit);
    }
    void set_red(bool red) noexcept { parent_and_colour = (parent_and_colour & ~red_bit) | (red ? red_bit : 0); }

    std::uintptr_t parent_and_colour = 0;
    MapNode* left = nullptr;
    MapNode* right = nullptr;
};

/// The node that stands above the root and behind the last entry.
struct MapHeader : MapNode
{
    MapHeader() noexcept { reset(); }
    MapHeader(const MapHeader&) = delete;
    MapHeader& operator=(const MapHeader&) = delete;

    /// Forgets the tree.
    void reset() noexcept
    {
        parent_and_colour = red_bit;
        left = right = this;
        size = 0;
    }

    /// Takes the place of the header of another tree, which becomes empty. This one's own is forgotten.
    void take(MapHeader& other) noexcept
    {
        reset();
        if (other.size == 0)
            return;
        set_parent(other.parent());
        parent()->set_parent(this);
        left = other.left;
        right = other.right;
        size = other.size;
        other.reset();
    }

    std::size_t size;
};

static_assert(sizeof(MapHeader) == 4 * sizeof(void*), "three links and the size");

/// The node behind `node`, the header behind the last one.
inline MapNode* next_node(MapNode* node) noexcept
{
    if (node->right)
    {
        node = node->right;
        while (node->left)
            node = node->left;
        return node;
    }
    MapNode* above = node->parent();
    while (node == above->right)
    {
        node = above;
        above = above->parent();
    }
    // A root that is the last node: the header points to it as its right too, and was passed.
    return node->right == above ? node : above;
}

/// The node before `node`, the last one before the header of a tree that is not empty.
inline MapNode* previous_node(MapNode* node) noexcept
{
    if (node->is_red() && node->parent()->parent() == node)
        return node->right;
    if (node->left)
    {
        node = node->left;
        while (node->right)
            node = node->right;
        return node;
    }
    MapNode* above = node->parent();
    while (node == above->left)
    {
        node = above;
        above = above->parent();
    }
    return above;
}

/// Hangs `node` below `parent`, whose link on that side is free, and balances the tree. The first node of all
/// goes to the left of the header. Counting is up to the caller.
VELA_API void link_map_node(MapHeader& header, MapNode& parent, bool left, MapNode& node) noexcept;

/// Takes `node` out of the tree and balances it. Counting is up to the caller.
VELA_API void unlink_map_node(MapHeader& header, MapNode& node) noexcept;

/// Makes a tree for the empty `header` out of `count` nodes, at least one, that lie in the order of their keys,
/// `stride_bytes` apart. It is as balanced as can be.
VELA_API void link_sorted_map_nodes(MapHeader& header, MapNode& first, std::size_t stride_bytes,
                                    std::size_t count) noexcept;

/// Throws a `std::out_of_range` with the text "map::at".
[[noreturn]] VELA_API void throw_key_not_found();

/// The beginning of a block of nodes, all of which belong to one map. It goes with its last node.
struct MapBlock
{
    std::size_t live; ///< how many nodes there are still, in whatever places
    std::size_t capacity;
};

/// A node with its key and its value.
template <class K, class V>
struct MapEntry : MapNode
{
    template <class... Arguments>
    explicit MapEntry(MapBlock* in_block, Arguments&&... arguments)
        : block(in_block), pair(std::forward<Arguments>(arguments)...)
    {
    }

    MapBlock* block; ///< null: memory of its own
    std::pair<const K, V> pair;
};

template <class K, class V>
MapEntry<K, V>* entry_of(MapNode* node) noexcept
{
    return static_cast<MapEntry<K, V>*>(node);
}

/// Where blocks for entries come from and go to.
template <class Entry>
struct MapBlockMemory
{
    static constexpr std::size_t alignment = alignof(Entry) > alignof(MapBlock) ? alignof(Entry) : alignof(MapBlock);
    static constexpr std::size_t header_bytes = (sizeof(MapBlock) + alignment - 1) / alignment * alignment;
    static constexpr bool is_over_aligned = alignment > __STDCPP_DEFAULT_NEW_ALIGNMENT__;

    /// `capacity` entries that are there already somewhere else, so their size in bytes does not overflow.
    static MapBlock* allocate(std::size_t capacity)
    {
        const std::size_t size_bytes = header_bytes + capacity * sizeof(Entry);
        if constexpr (is_over_aligned)
            return new (::operator new(size_bytes, std::align_val_t(alignment))) MapBlock{0, capacity};
        else
            return new (::operator new(size_bytes)) MapBlock{0, capacity};
    }

    static void free(MapBlock* block) noexcept
    {
        if constexpr (is_over_aligned)
            ::operator delete(static_cast<void*>(block), std::align_val_t(alignment));
        else
            ::operator delete(static_cast<void*>(block));
    }

    static void* place(MapBlock* block, std::size_t index) noexcept
    {
        return reinterpret_cast<std::byte*>(block) + header_bytes + index * sizeof(Entry);
    }

    static Entry* entry(MapBlock* block, std::size_t index) noexcept
    {
        return std::launder(static_cast<Entry*>(place(block, index)));
    }

    /// Destroys a block whose entries all lie at its beginning.
    static void destroy(MapBlock* block) noexcept
    {
        for (std::size_t index = 0; index < block->live; ++index)
            entry(block, index)->~Entry();
        free(block);
    }
};

/// A block that is filled in the order of the keys, and destroyed unless a map takes it.
template <class Entry>
class MapBlockBuilder
{
public:
    using Memory = MapBlockMemory<Entry>;

    explicit MapBlockBuilder(std::size_t capacity) : block_(Memory::allocate(capacity)) {}
    MapBlockBuilder(const MapBlockBuilder&) = delete;
    MapBlockBuilder& operator=(const MapBlockBuilder&) = delete;
    ~MapBlockBuilder()
    {
        if (block_)
            Memory::destroy(block_);
    }

    template <class... Arguments>
    Entry& add(Arguments&&... arguments)
    {
        Entry* const entry =
            new (Memory::place(block_, block_->live)) Entry(block_, std::forward<Arguments>(arguments)...);
        ++block_->live;
        return *entry;
    }

    /// Hands the entries, which are `capacity` by now, over to the tree of the empty `header`.
    void link(MapHeader& header) noexcept
    {
        link_sorted_map_nodes(header, *Memory::entry(block_, 0), sizeof(Entry), block_->live);
        header.size = block_->live;
        block_ = nullptr;
    }

private:
    MapBlock* block_;
};

/// Goes from entry to entry in the order of the keys.
template <class K, class V, bool is_const>
class MapIterator
{
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using difference_type = std::ptrdiff_t;
    using value_type = std::pair<const K, V>;
    using reference = std::conditional_t<is_const, const value_type&, value_type&>;
    using pointer = std::conditional_t<is_const, const value_type*, value_type*>;

    MapIterator() noexcept = default;

    /// A constant iterator from one that is not.
    template <bool is_other_const, std::enable_if_t<is_const && !is_other_const, int> = 0>
    MapIterator(const MapIterator<K, V, is_other_const>& other) noexcept : node_(other.node_)
    {
    }

    reference operator*() const noexcept { return entry_of<K, V>(node_)->pair; }
    pointer operator->() const noexcept { return &entry_of<K, V>(node_)->pair; }

    MapIterator& operator++() noexcept
    {
        node_ = next_node(node_);
        return *this;
    }

    MapIterator operator++(int) noexcept
    {
        const MapIterator before(*this);
        ++*this;
        return before;
    }

    MapIterator& operator--() noexcept
    {
        node_ = previous_node(node_);
        return *this;
    }

    MapIterator operator--(int) noexcept
    {
        const MapIterator before(*this);
        --*this;
        return before;
    }

    friend bool operator==(const MapIterator& left, const MapIterator& right) noexcept
    {
        return left.node_ == right.node_;
    }
    friend bool operator!=(const MapIterator& left, const MapIterator& right) noexcept { return !(left == right); }

private:
    friend struct Map<K, V>;
    friend class MapIterator<K, V, !is_const>;

    explicit MapIterator(MapNode* node) noexcept : node_(node) {}

    MapNode* node_ = nullptr;
};

}
VELA_ABI_NAMESPACE_END
}
