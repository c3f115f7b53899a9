/// What the members of collections do, and how an image lays out the elements that nobody has looked at yet.
#pragma once

#include "ome/ElementHistory.h"

#include <Ome/Collection.h>

#include <algorithm>
#include <boost/make_shared.hpp>
#include <cstddef>
#include <iterator>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// A record over an element that nothing is known of: what all elements of its list begin as.
template <class T>
struct Prototype
{
    Json::Value element;
    T record{element};

    static const Prototype& instance()
    {
        static const Prototype prototype;
        return prototype;
    }
};

/// The far end of a collection: its list, and what the list does not hold yet.
template <class T>
struct CollectionFiller
{
    using History = detail::ElementHistory;

    Collection<T>& collection;

    /// Lays the collection out anew with `count` elements: calls `lay_out(element, index)` for those that the list
    /// holds; `plan(history)` gives the rules of the others.
    template <class LayOut, class Plan>
    void refill(std::size_t count, LayOut lay_out, Plan plan) const
    {
        collection.clear();
        Json::Value& list = collection.list();
        boost::shared_ptr<const History> before = history(list);
        std::size_t index = 0;
        for (Json::Value& element : list.fill_list(0))
        {
            if (index == count)
                return;
            lay_out(element, index);
            collection.size_ = ++index;
        }
        if (index == count)
            return;
        const auto after = before ? boost::make_shared<History>(*before)
                                  : boost::make_shared<History>(Prototype<T>::instance().element);
        after->extend(count);
        plan(*after);
        list.set_list_source(after);
        collection.size_ = count;
    }

    /// Makes the record of the next element.
    void make_record(Json::Value& element, std::size_t index) const
    {
        collection.records_.push_back(boost::make_shared<T>(element, Json::Value(), index + 1));
    }

    /// Makes the records of all elements that the list holds, and calls `change` with each.
    template <class Change>
    void change_present(Change change) const
    {
        Json::Value& list = collection.list();
        history(list);
        collection.make_records(std::min(collection.size_, list.filled_count()));
        for (const auto& record : collection.records_)
            change(*record);
    }

    /// Calls `plan(history, begin, end)` where elements of the collection from `begin` to `end` are not in the list.
    template <class Plan>
    void change_absent(Plan plan) const
    {
        Json::Value& list = collection.list();
        const std::size_t begin = list.filled_count();
        if (begin >= collection.size_)
            return;
        const boost::shared_ptr<const History> before = history(list);
        if (!before)
            return;
        const auto after = boost::make_shared<History>(*before);
        plan(*after, begin, collection.size_);
        list.set_list_source(after);
    }

    /// The history that the rest of the list follows from. A list with another source is filled.
    static boost::shared_ptr<const History> history(Json::Value& list)
    {
        const auto found = boost::dynamic_pointer_cast<const History>(list.list_source());
        if (found && &found->prototype() == &Prototype<T>::instance().element)
            return found;
        list.as_list();
        return nullptr;
    }
};

template <class T>
Collection<T>::Collection(const Content& content, bool settled) : content_(&content)
{
    Json::Value& slot = list();
    if (settled || slot.is_null())
        return;
    CollectionFiller<T>::history(slot);
    for (Json::Value& element : slot.fill_list(0))
        records_.push_back(boost::make_shared<T>(element));
    size_ = slot.count();
}

template <class T>
Collection<T>::~Collection() = default;

template <class T>
const boost::shared_ptr<T>& Collection<T>::operator[](std::size_t index) const
{
    if (index >= records_.size())
        make_records(index + 1);
    return records_[index];
}

template <class T>
boost::shared_ptr<T> Collection<T>::add(const Json::Value& default_value)
{
    make_records(size_);
    records_.push_back(boost::make_shared<T>(list().at(size_), default_value, size_ + 1));
    ++size_;
    return records_.back();
}

template <class T>
void Collection<T>::clear()
{
    records_.clear();
    size_ = 0;
}

template <class T>
Json::Value& Collection<T>::list() const
{
    return content_->slot().at(T::element_key());
}

/// Makes the first records, `end` of them. They were checked when the collection was laid out.
template <class T>
void Collection<T>::make_records(std::size_t end) const
{
    const std::size_t begin = records_.size();
    if (begin >= end)
        return;
    Json::Value::List& elements = list().fill_list(end);
    if (elements.size() < end) // some were taken out of the tree
        elements.resize(end);
    if (elements.size() > end) // walking to the first again and again has to stay rare
        end = std::min({size_, elements.size(), std::max(end, begin + begin / 2)});

    const std::size_t from_end = elements.size() - begin;
    auto element = from_end < begin ? std::prev(elements.end(), static_cast<std::ptrdiff_t>(from_end))
                                    : std::next(elements.begin(), static_cast<std::ptrdiff_t>(begin));
    for (; records_.size() < end; ++element)
    {
        typename T::Binding binding(*element);
        binding.settled = true;
        records_.push_back(boost::make_shared<T>(binding));
    }
}

VELA_ABI_NAMESPACE_END
}
