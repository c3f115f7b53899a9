/// Child elements that occur more than once.
#pragma once

#include <Json/SignalingReference.h>
#include <Ome/checks.h>
#include <VelaBase/export.h>

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <deque>
#include <iterator>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

template <class Record>
struct CollectionFiller;

/// The records over a list of the tree.
///
/// The list stands under the element key of `T` in the content of the owner. Records are made when they are
/// looked at; which and how many there are is settled before.
template <class T>
class VELA_API Collection
{
public:
    using Content = Json::SignalingReference::Field<check::Structure>;

    /// Lays records over what `content` holds under the key: one for each element of a list, none for null,
    /// and one for anything else, which thereby becomes a list of one. Nothing is added to the elements.
    ///
    /// Where the slots are `settled`, which is where an element is bound that was made before, there are none.
    ///
    /// @throws std::bad_cast "bad cast": a slot of an element holds what its field may not hold
    explicit Collection(const Content& content, bool settled = false);
    ~Collection();
    Collection(const Collection&) = delete;
    Collection& operator=(const Collection&) = delete;

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    /// The record `index`, which must be below `size()`. The elements of the tree up to its own are made.
    /// @throws std::bad_cast "bad cast": somebody has put something else than an object in the place of its element
    const boost::shared_ptr<T>& operator[](std::size_t index) const;

    /// Adds a record: on the slot behind those of the records there are, which a collection that has been cleared
    /// finds filled with what it was before. A `default_value` that is not null is assigned to the element; its ID, if
    /// it has one and it is not set, ends in the new size. Where the list is longer, its slot is walked to.
    boost::shared_ptr<T> add(const Json::Value& default_value = Json::Value());

    /// Forgets the records. The elements of the tree stay as they are.
    void clear();

    class const_iterator;
    const_iterator begin() const { return const_iterator(*this, 0); }
    const_iterator end() const { return const_iterator(*this, size_); }

private:
    template <class Record>
    friend struct CollectionFiller;

    Json::Value& list() const;
    Json::Value& element(std::size_t index) const;

    const Content* content_;
    std::size_t size_ = 0;
    mutable std::deque<boost::shared_ptr<T>> records_;     ///< null where nobody has looked yet
    boost::shared_ptr<std::deque<Json::Value*>> elements_; ///< the elements that are in the tree
};

/// Makes the record of an element when it is looked at.
template <class T>
class Collection<T>::const_iterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = boost::shared_ptr<T>;
    using difference_type = std::ptrdiff_t;
    using pointer = const value_type*;
    using reference = const value_type&;

    const_iterator(const Collection& collection, std::size_t index) : collection_(&collection), index_(index) {}

    reference operator*() const { return (*collection_)[index_]; }
    pointer operator->() const { return &**this; }
    const_iterator& operator++()
    {
        ++index_;
        return *this;
    }
    const_iterator operator++(int)
    {
        const const_iterator before = *this;
        ++index_;
        return before;
    }
    friend bool operator==(const const_iterator& left, const const_iterator& right)
    {
        return left.index_ == right.index_;
    }
    friend bool operator!=(const const_iterator& left, const const_iterator& right) { return !(left == right); }

private:
    const Collection* collection_;
    std::size_t index_;
};

VELA_ABI_NAMESPACE_END
}
