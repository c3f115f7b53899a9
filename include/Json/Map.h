/// The map of the value tree.
#pragma once

#include <Json/map_tree.h>
#include <VelaBase/export.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

namespace detail {

struct MapInspector;

}

/// Unique keys, and iteration in ascending order of the key, which for strings is the order of their bytes. That
/// order is the order of attributes, elements and members in everything that is written.
///
/// The interface is that of `std::map`, with what this means: inserting and erasing leave all other entries where
/// they are in memory and all iterators to them valid; so do moving and swapping, after which they belong to the
/// other map. For keys that are `std::string`, lookups take what converts to a `std::string_view` as it is; all else is
/// converted to the key.
///
/// A copy takes memory once: its entries lie one after the other in a block, which is given back with the
/// last of them. So an entry alone can hold the memory of a whole map, and entries cannot leave their map: there
/// are no `extract` and no `merge`. There are no allocators and no order but `std::less<K>` either.
template <class K, class V>
struct Map
{
    using key_type = K;
    using mapped_type = V;
    using value_type = std::pair<const K, V>;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using key_compare = std::less<K>;
    using reference = value_type&;
    using const_reference = const value_type&;
    using pointer = value_type*;
    using const_pointer = const value_type*;
    using iterator = detail::MapIterator<K, V, false>;
    using const_iterator = detail::MapIterator<K, V, true>;
    using reverse_iterator = std::reverse_iterator<iterator>;
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;

    /// Orders entries by their keys.
    struct value_compare
    {
        bool operator()(const value_type& left, const value_type& right) const
        {
            return std::less<K>()(left.first, right.first);
        }
    };

private:
    using Entry = detail::MapEntry<K, V>;
    using Tree = detail::MapTree<K, V>;
    template <class Q>
    using IfKeyLike = std::enable_if_t<detail::is_map_key_like<K, Q>, int>;
    template <class P>
    using IfPair = std::enable_if_t<std::is_constructible_v<value_type, P&&>, int>;
    template <class It>
    using IfInput = typename std::iterator_traits<It>::iterator_category;

public:
    /// Takes no memory.
    Map() noexcept {}
    Map(const Map& other) { tree_.copy_from(other.tree_); }
    /// Touches no entry, and leaves `other` empty.
    Map(Map&& other) noexcept { tree_.header.take(other.tree_.header); }
    Map(std::initializer_list<value_type> entries) { insert(entries); }
    template <class It, class = IfInput<It>>
    Map(It first, It last)
    {
        insert(first, last);
    }

    /// When it throws, this map is as it was.
    Map& operator=(const Map& other)
    {
        if (this != &other)
            tree_.copy_from(other.tree_);
        return *this;
    }
    /// Leaves `other` empty.
    Map& operator=(Map&& other) noexcept
    {
        Map taken(std::move(other));
        swap(taken);
        return *this;
    }
    /// When it throws, this map is as it was.
    Map& operator=(std::initializer_list<value_type> entries) { return *this = Map(entries); }

    void swap(Map& other) noexcept
    {
        detail::MapHeader between;
        between.take(tree_.header);
        tree_.header.take(other.tree_.header);
        other.tree_.header.take(between);
    }
    friend void swap(Map& left, Map& right) noexcept { left.swap(right); }

    iterator begin() noexcept { return iterator(tree_.header.left); }
    const_iterator begin() const noexcept { return const_iterator(tree_.header.left); }
    const_iterator cbegin() const noexcept { return begin(); }
    iterator end() noexcept { return iterator(tree_.end()); }
    const_iterator end() const noexcept { return const_iterator(tree_.end()); }
    const_iterator cend() const noexcept { return end(); }
    reverse_iterator rbegin() noexcept { return reverse_iterator(end()); }
    const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
    const_reverse_iterator crbegin() const noexcept { return rbegin(); }
    reverse_iterator rend() noexcept { return reverse_iterator(begin()); }
    const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }
    const_reverse_iterator crend() const noexcept { return rend(); }

    bool empty() const noexcept { return tree_.header.size == 0; }
    size_type size() const noexcept { return tree_.header.size; }
    size_type max_size() const noexcept
    {
        return static_cast<size_type>(std::numeric_limits<difference_type>::max()) / sizeof(Entry);
    }
    key_compare key_comp() const noexcept { return {}; }
    value_compare value_comp() const noexcept { return {}; }

    /// @name Lookup
    /// @{
    iterator find(const K& key) { return iterator(tree_.find(key)); }
    const_iterator find(const K& key) const { return const_iterator(tree_.find(key)); }
    size_type count(const K& key) const { return contains(key) ? 1 : 0; }
    bool contains(const K& key) const { return tree_.find(key) != tree_.end(); }
    iterator lower_bound(const K& key) { return iterator(tree_.lower_bound(key)); }
    const_iterator lower_bound(const K& key) const { return const_iterator(tree_.lower_bound(key)); }
    iterator upper_bound(const K& key) { return iterator(tree_.upper_bound(key)); }
    const_iterator upper_bound(const K& key) const { return const_iterator(tree_.upper_bound(key)); }
    std::pair<iterator, iterator> equal_range(const K& key) { return {lower_bound(key), upper_bound(key)}; }
    std::pair<const_iterator, const_iterator> equal_range(const K& key) const
    {
        return {lower_bound(key), upper_bound(key)};
    }
    /// @throws std::out_of_range "map::at": there is no such key
    V& at(const K& key) { return tree_.at(key).pair.second; }
    /// @throws std::out_of_range "map::at": there is no such key
    const V& at(const K& key) const { return tree_.at(key).pair.second; }
    /// @}

    /// @name The same with what is a view of a string, without making one
    /// @{
    template <class Q, IfKeyLike<Q> = 0>
    iterator find(const Q& key)
    {
        return iterator(tree_.find(detail::as_view(key)));
    }
    template <class Q, IfKeyLike<Q> = 0>
    const_iterator find(const Q& key) const
    {
        return const_iterator(tree_.find(detail::as_view(key)));
    }
    template <class Q, IfKeyLike<Q> = 0>
    size_type count(const Q& key) const
    {
        return contains(key) ? 1 : 0;
    }
    template <class Q, IfKeyLike<Q> = 0>
    bool contains(const Q& key) const
    {
        return tree_.find(detail::as_view(key)) != tree_.end();
    }
    template <class Q, IfKeyLike<Q> = 0>
    iterator lower_bound(const Q& key)
    {
        return iterator(tree_.lower_bound(detail::as_view(key)));
    }
    template <class Q, IfKeyLike<Q> = 0>
    const_iterator lower_bound(const Q& key) const
    {
        return const_iterator(tree_.lower_bound(detail::as_view(key)));
    }
    template <class Q, IfKeyLike<Q> = 0>
    iterator upper_bound(const Q& key)
    {
        return iterator(tree_.upper_bound(detail::as_view(key)));
    }
    template <class Q, IfKeyLike<Q> = 0>
    const_iterator upper_bound(const Q& key) const
    {
        return const_iterator(tree_.upper_bound(detail::as_view(key)));
    }
    template <class Q, IfKeyLike<Q> = 0>
    std::pair<iterator, iterator> equal_range(const Q& key)
    {
        const std::string_view view = detail::as_view(key);
        return {lower_bound(view), upper_bound(view)};
    }
    template <class Q, IfKeyLike<Q> = 0>
    std::pair<const_iterator, const_iterator> equal_range(const Q& key) const
    {
        const std::string_view view = detail::as_view(key);
        return {lower_bound(view), upper_bound(view)};
    }
    template <class Q, IfKeyLike<Q> = 0>
    V& at(const Q& key)
    {
        return tree_.at(detail::as_view(key)).pair.second;
    }
    template <class Q, IfKeyLike<Q> = 0>
    const V& at(const Q& key) const
    {
        return tree_.at(detail::as_view(key)).pair.second;
    }
    /// @}

    /// @name Insertion. What takes a hint takes constant time where the entry comes right before the hint.
    /// When it throws, the map is as it was, but for ranges, of which entries may have been inserted.
    /// @{

    /// The value under `key`, which is made if it is missing.
    V& operator[](const K& key) { return try_emplace(key).first->second; }
    V& operator[](K&& key) { return try_emplace(std::move(key)).first->second; }
    /// The same for a view of a string. One is made only for a new entry.
    template <class Q, IfKeyLike<Q> = 0>
    V& operator[](Q&& key)
    {
        return try_emplace(std::forward<Q>(key)).first->second;
    }

    std::pair<iterator, bool> insert(const value_type& entry) { return try_emplace(entry.first, entry.second); }
    std::pair<iterator, bool> insert(value_type&& entry) { return try_emplace(entry.first, std::move(entry.second)); }
    template <class P, IfPair<P> = 0>
    std::pair<iterator, bool> insert(P&& entry)
    {
        return emplace(std::forward<P>(entry));
    }
    iterator insert(const_iterator hint, const value_type& entry)
    {
        return try_emplace(hint, entry.first, entry.second);
    }
    iterator insert(const_iterator hint, value_type&& entry)
    {
        return try_emplace(hint, entry.first, std::move(entry.second));
    }
    template <class P, IfPair<P> = 0>
    iterator insert(const_iterator hint, P&& entry)
    {
        return emplace_hint(hint, std::forward<P>(entry));
    }
    template <class It, class = IfInput<It>>
    void insert(It first, It last)
    {
        for (; first != last; ++first)
            emplace_hint(end(), *first);
    }
    void insert(std::initializer_list<value_type> entries) { insert(entries.begin(), entries.end()); }

    template <class... Arguments>
    std::pair<iterator, bool> emplace(Arguments&&... arguments)
    {
        std::unique_ptr<Entry> entry(new Entry(nullptr, std::forward<Arguments>(arguments)...));
        const auto place = tree_.place_of(entry->pair.first);
        if (place.existing)
            return {iterator(place.existing), false};
        return {iterator(tree_.link(place, entry.release())), true};
    }
    template <class... Arguments>
    iterator emplace_hint(const_iterator hint, Arguments&&... arguments)
    {
        std::unique_ptr<Entry> entry(new Entry(nullptr, std::forward<Arguments>(arguments)...));
        const auto place = tree_.place_of(entry->pair.first, hint.node_);
        return place.existing ? iterator(place.existing) : iterator(tree_.link(place, entry.release()));
    }

    /// Leaves the arguments alone where the key is there already.
    template <class... Arguments>
    std::pair<iterator, bool> try_emplace(const K& key, Arguments&&... arguments)
    {
        return put(tree_.place_of(key), key, std::forward<Arguments>(arguments)...);
    }
    template <class... Arguments>
    std::pair<iterator, bool> try_emplace(K&& key, Arguments&&... arguments)
    {
        return put(tree_.place_of(key), std::move(key), std::forward<Arguments>(arguments)...);
    }
    template <class Q, class... Arguments, IfKeyLike<Q> = 0>
    std::pair<iterator, bool> try_emplace(Q&& key, Arguments&&... arguments)
    {
        return put(tree_.place_of(detail::as_view(key)), std::forward<Q>(key), std::forward<Arguments>(arguments)...);
    }
    template <class... Arguments>
    iterator try_emplace(const_iterator hint, const K& key, Arguments&&... arguments)
    {
        return put(tree_.place_of(key, hint.node_), key, std::forward<Arguments>(arguments)...).first;
    }
    template <class... Arguments>
    iterator try_emplace(const_iterator hint, K&& key, Arguments&&... arguments)
    {
        return put(tree_.place_of(key, hint.node_), std::move(key), std::forward<Arguments>(arguments)...).first;
    }

    template <class T>
    std::pair<iterator, bool> insert_or_assign(const K& key, T&& value)
    {
        return put_or_assign(tree_.place_of(key), key, std::forward<T>(value));
    }
    template <class T>
    std::pair<iterator, bool> insert_or_assign(K&& key, T&& value)
    {
        return put_or_assign(tree_.place_of(key), std::move(key), std::forward<T>(value));
    }
    template <class Q, class T, IfKeyLike<Q> = 0>
    std::pair<iterator, bool> insert_or_assign(Q&& key, T&& value)
    {
        return put_or_assign(tree_.place_of(detail::as_view(key)), std::forward<Q>(key), std::forward<T>(value));
    }
    template <class T>
    iterator insert_or_assign(const_iterator hint, const K& key, T&& value)
    {
        return put_or_assign(tree_.place_of(key, hint.node_), key, std::forward<T>(value)).first;
    }
    template <class T>
    iterator insert_or_assign(const_iterator hint, K&& key, T&& value)
    {
        return put_or_assign(tree_.place_of(key, hint.node_), std::move(key), std::forward<T>(value)).first;
    }
    /// @}

    /// @name Erasure
    /// @{
    void clear() noexcept { tree_.clear(); }

    /// The entry behind the erased one.
    iterator erase(const_iterator entry) noexcept
    {
        const iterator behind(detail::next_node(entry.node_));
        tree_.erase(entry.node_);
        return behind;
    }
    iterator erase(iterator entry) noexcept { return erase(const_iterator(entry)); }
    iterator erase(const_iterator first, const_iterator last) noexcept
    {
        if (first == cbegin() && last == cend())
            clear();
        while (first != last && !empty())
            first = erase(first);
        return iterator(last.node_);
    }
    size_type erase(const K& key)
    {
        detail::MapNode* const node = tree_.find(key);
        if (node == tree_.end())
            return 0;
        erase(const_iterator(node));
        return 1;
    }
    /// @}

    friend bool operator==(const Map& left, const Map& right)
    {
        return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin());
    }
    friend bool operator!=(const Map& left, const Map& right) { return !(left == right); }
    friend bool operator<(const Map& left, const Map& right)
    {
        return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end());
    }
    friend bool operator>(const Map& left, const Map& right) { return right < left; }
    friend bool operator<=(const Map& left, const Map& right) { return !(right < left); }
    friend bool operator>=(const Map& left, const Map& right) { return !(left < right); }

    /// Takes over the keys of `other`; the values are made by default. Then calls `copy_value(from, to)`, of types
    /// `const V&` and `V&`, for each in the order of the keys; `to` stays where it is. When anything throws,
    /// this map is as it was. Not part of the interface.
    template <class CopyValue>
    void clone_from(const Map& other, CopyValue copy_value)
    {
        tree_.clone_from(other.tree_, copy_value);
    }

private:
    template <class Q, class... Arguments>
    std::pair<iterator, bool> put(const typename Tree::Place& place, Q&& key, Arguments&&... arguments)
    {
        if (place.existing)
            return {iterator(place.existing), false};
        auto* const entry = new Entry(nullptr, std::piecewise_construct, std::forward_as_tuple(std::forward<Q>(key)),
                                      std::forward_as_tuple(std::forward<Arguments>(arguments)...));
        return {iterator(tree_.link(place, entry)), true};
    }

    template <class Q, class T>
    std::pair<iterator, bool> put_or_assign(const typename Tree::Place& place, Q&& key, T&& value)
    {
        if (!place.existing)
            return put(place, std::forward<Q>(key), std::forward<T>(value));
        detail::entry_of<K, V>(place.existing)->pair.second = std::forward<T>(value);
        return {iterator(place.existing), false};
    }

    friend struct detail::MapInspector;

    Tree tree_;
};

/// Erases the entries for which `predicate(entry)` is true, and gives their count.
template <class K, class V, class Predicate>
std::size_t erase_if(Map<K, V>& map, Predicate predicate)
{
    const std::size_t size = map.size();
    for (auto entry = map.begin(); entry != map.end();)
    {
        if (predicate(*entry))
            entry = map.erase(entry);
        else
            ++entry;
    }
    return size - map.size();
}

VELA_ABI_NAMESPACE_END
}
