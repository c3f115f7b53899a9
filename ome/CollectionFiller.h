/// What the members of collections do, and how an image lays out the elements that nobody has looked at yet.
#pragma once

#include "ome/ElementHistory.h"
#include "json/list_keeper.h"

#include <Ome/Collection.h>

#include <algorithm>
#include <boost/make_shared.hpp>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// A record over an element that nothing is known of: what all elements of its list begin as.
template <class T>
struct Prototype
{
    Json::Value element;
    T record{element};

    /// Never destroyed: images may live as long as the process.
    static const Prototype& instance()
    {
        static const Prototype& prototype = *new Prototype;
        return prototype;
    }
};

/// The far end of a collection: its list, and what the list does not hold yet.
template <class T>
struct CollectionFiller
{
    using History = detail::ElementHistory;
    using Watched = detail::WatchedHistory;
    using Notes = detail::NotedElements;
    using Keeper = Json::detail::ListKeeper;

    /// A history with more rules than this gives way to the elements.
    static constexpr std::size_t most_weight = 512;

    Collection<T>& collection;

    /// Lays the collection out anew with `count` elements: calls `lay_out(element, index)` for those that the list
    /// holds; `plan(history)` gives the rules of the others.
    template <class LayOut, class Plan>
    void refill(std::size_t count, LayOut lay_out, Plan plan) const
    {
        collection.clear();
        Json::Value& list = collection.list();
        const Source before = source(list);
        Keeper::keep(list);
        std::size_t index = 0;
        for (Json::Value& element : Keeper::fill(list, 0))
        {
            if (index == count)
                return;
            lay_out(element, index);
            note(element);
            collection.size_ = ++index;
        }
        plan_rest(list, before, count, plan);
    }

    /// The same for a collection of which `is_undisturbed` says yes, and whose elements are to stay as they were laid out
    /// last: calls `lay_out` for those alone that somebody has looked at since then. Costs nothing for the others.
    template <class LayOut, class Plan>
    void extend(std::size_t count, LayOut lay_out, Plan plan) const
    {
        Json::Value& list = collection.list();
        std::vector<std::size_t> looked_at = std::exchange(notes().looked_at, {});
        std::ranges::sort(looked_at); // where one fails, those behind it have not changed
        for (const std::size_t index : looked_at)
            collection.records_[index].reset();
        for (const std::size_t index : looked_at)
            lay_out(list.at(index), index);
        plan_rest(list, source(list), count, plan);
    }

    /// Whether the list is still as the collection has left it, and has made no element behind those of the collection.
    /// Where somebody has got the list as such, nobody knows.
    bool is_undisturbed() const
    {
        Json::Value& list = collection.list();
        const auto& elements = collection.elements_;
        if (!elements || elements->size() > collection.size_)
            return false;
        if (!Keeper::is_kept(list) || list.filled_count() != elements->size())
            return false;
        // Another record over the tree may keep another list in this place.
        const auto& filled = Keeper::fill(list, 0);
        if (!filled.empty() && (&filled.front() != elements->front() || &filled.back() != elements->back()))
            return false;
        const auto from = list.list_source();
        const auto watched = boost::dynamic_pointer_cast<const Watched>(from);
        return !from || (watched && watched->notes_in(elements));
    }

    /// What is known of the elements.
    Notes& notes() const
    {
        if (!collection.elements_)
            collection.elements_ = boost::make_shared<Notes>();
        return notes(*collection.elements_);
    }

    static Notes& notes(detail::ElementTable& elements) { return static_cast<Notes&>(elements); }

    /// Makes the record of the next element.
    void make_record(Json::Value& element, std::size_t index) const
    {
        collection.records_.push_back(boost::make_shared<T>(element, Json::Value(), index + 1));
    }

    /// Calls `change` with the records of all elements that the list holds, also of those that come while it runs.
    template <class Change>
    void change_present(Change change) const
    {
        for (std::size_t index = 0; index < collection.size_ && index < count_present(); ++index)
        {
            const boost::shared_ptr<T> record = collection[index];
            change(*record);
        }
    }

    /// Calls `plan(history, begin, end)` where elements of the collection from `begin` to `end` are not in the list.
    template <class Plan>
    void change_absent(Plan plan) const
    {
        const std::size_t begin = count_present();
        if (begin >= collection.size_)
            return;
        Json::Value& list = collection.list();
        const auto watched = boost::dynamic_pointer_cast<const Watched>(list.list_source());
        if (!watched || !watched->notes_in(collection.elements_))
            return;
        const auto after = boost::make_shared<History>(*watched->history());
        plan(*after, begin, collection.size_);
        watch(list, {after, watched->tables()});
    }

    /// Lays records over the elements that the list holds, and watches for the others.
    void lay_over() const
    {
        Json::Value& list = collection.list();
        const Source found = source(list);
        for (Json::Value& element : Keeper::fill(list, 0))
        {
            collection.records_.push_back(boost::make_shared<T>(element));
            note(element);
        }
        collection.size_ = list.count();
        if (found.history)
            watch(list, found);
    }

private:
    /// What the rest of a list follows from, and who else wants to know of it.
    struct Source
    {
        boost::shared_ptr<const History> history;
        typename Watched::Tables tables;
    };

    /// A list with a source of another making is filled.
    static Source source(Json::Value& list)
    {
        Source found;
        const auto from = list.list_source();
        if (const auto watched = boost::dynamic_pointer_cast<const Watched>(from))
            found = {watched->history(), watched->tables()};
        else
            found.history = boost::dynamic_pointer_cast<const History>(from);
        if (found.history && &found.history->prototype() == &Prototype<T>::instance().element)
            return found;
        Keeper::fill(list, list.count());
        return {};
    }

    std::size_t count_present() const { return collection.elements_ ? collection.elements_->size() : 0; }

    void note(Json::Value& element) const { notes().push_back(&element); }

    /// Elements up to `count` that the list does not hold follow from `before` and `plan`.
    template <class Plan>
    void plan_rest(Json::Value& list, const Source& before, std::size_t count, Plan plan) const
    {
        if (count <= count_present())
            return;
        const auto after = before.history ? boost::make_shared<History>(*before.history)
                                          : boost::make_shared<History>(Prototype<T>::instance().element);
        after->extend(count);
        plan(*after);
        watch(list, {after, before.tables});
        collection.size_ = count;
    }

    /// The rest of the list follows from `rest`, and the collection is told of it.
    void watch(Json::Value& list, Source rest) const
    {
        notes();
        const auto is_own = [&](const auto& table) { return table.lock() == collection.elements_; };
        if (std::ranges::none_of(rest.tables, is_own))
            rest.tables.emplace_back(collection.elements_);
        const bool heavy = rest.history->weight() > most_weight;
        list.set_list_source(boost::make_shared<Watched>(std::move(rest.history), rest.tables));
        if (heavy)
            Keeper::fill(list, list.count());
    }
};

template <class T>
Collection<T>::Collection(const Content& content, bool settled) : content_(&content)
{
    if (!list().is_null() && !settled)
        CollectionFiller<T>{*this}.lay_over();
}

template <class T>
Collection<T>::~Collection() = default;

template <class T>
const boost::shared_ptr<T>& Collection<T>::operator[](std::size_t index) const
{
    if (index >= records_.size())
        records_.resize(index + 1);
    if (!records_[index])
    {
        typename T::Binding binding(element(index));
        binding.settled = true; // it was checked when the collection was laid out
        if (elements_)
            CollectionFiller<T>::notes(*elements_).looked_at.push_back(index);
        records_[index] = boost::make_shared<T>(binding);
    }
    return records_[index];
}

template <class T>
boost::shared_ptr<T> Collection<T>::add(const Json::Value& default_value)
{
    Json::Value& slot = list().at(size_);
    auto record = boost::make_shared<T>(slot, default_value, size_ + 1);
    detail::NotedElements& notes = CollectionFiller<T>{*this}.notes();
    notes.resize(std::max(notes.size(), size_ + 1));
    records_.resize(size_ + 1);
    notes[size_] = &slot;
    records_[size_] = record;
    ++size_;
    return record;
}

template <class T>
void Collection<T>::clear()
{
    records_.clear();
    elements_.reset();
    size_ = 0;
}

template <class T>
Json::Value& Collection<T>::list() const
{
    return content_->slot().at(T::element_key());
}

/// The element of a record, made if it is not there yet.
template <class T>
Json::Value& Collection<T>::element(std::size_t index) const
{
    const auto is_noted = [&] { return elements_ && index < elements_->size() && (*elements_)[index] != nullptr; };
    if (!is_noted() && elements_)
    {
        const std::size_t end =
            std::max(index + 1, std::min(size_, index + index / 2)); // going to the list is not free
        Json::detail::ListKeeper::fill(list(), end);
    }
    // Where the list has been replaced since, the place counts.
    return is_noted() ? *(*elements_)[index] : list().at(index);
}

VELA_ABI_NAMESPACE_END
}
