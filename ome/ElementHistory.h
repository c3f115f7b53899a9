/// The elements of a list that nobody has looked at yet, as what has been done to all of them.
#pragma once

#include <Json/ListSource.h>
#include <Json/Value.h>

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <cstddef>
#include <deque>
#include <list>
#include <optional>
#include <variant>
#include <vector>

namespace Ome::detail {

/// "Name:1" for the first element, and so on.
struct IdRule
{
    const char* name;

    bool operator==(const IdRule&) const = default;
};

/// The place of a plane along one axis. Planes are counted with C running fastest, then T, then Z.
struct PlaceRule
{
    enum class Axis
    {
        z,
        t,
        c,
    };

    std::size_t place(std::size_t index) const;

    bool operator==(const PlaceRule&) const = default;

    Axis axis;
    std::size_t count_t;
    std::size_t count_c;
};

/// The planes of an image.
struct PlaneLayout
{
    std::size_t count() const { return count_z * count_t * count_c; }

    PlaceRule z() const { return {PlaceRule::Axis::z, count_t, count_c}; }
    PlaceRule t() const { return {PlaceRule::Axis::t, count_t, count_c}; }
    PlaceRule c() const { return {PlaceRule::Axis::c, count_t, count_c}; }

    /// Whether all planes of `before` have the place here that they had there.
    bool keeps(const PlaneLayout& before) const;

    std::size_t count_z;
    std::size_t count_t;
    std::size_t count_c;
};

class RuleHistory;

/// offset + (place - centre) * step
struct OffsetRule
{
    double offset;
    double step;
    double centre;
    boost::shared_ptr<const RuleHistory> places; ///< as they were when the offset was given

    template <class Place>
    double at_place(Place place) const
    {
        return offset + (static_cast<double>(place) - centre) * step;
    }

    double at(std::size_t index) const;
    std::size_t weight() const;

    bool operator==(const OffsetRule&) const = default;
};

/// What the value under one key follows from.
using Rule = std::variant<Json::Value, IdRule, PlaceRule, OffsetRule>;

/// The rules that hold for one key: each for the elements from the end of the one before to its own end.
class RuleHistory
{
public:
    struct Entry
    {
        std::size_t end;
        Rule rule;
    };

    bool empty() const { return entries_.empty(); }

    /// Gives the elements before `end` a rule; with an `end` of 0, none. An element whose value is equal keeps the
    /// old one, as a field does: a zero keeps its sign.
    void set(std::size_t end, const Rule& rule);

    /// The rule for `index`; null where there is none.
    const Rule* find(std::size_t index) const;

    /// How much there is to keep, which grows where each layout is smaller than the one before.
    std::size_t weight() const;

    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

private:
    std::vector<Entry> entries_; ///< by ascending ends
};

/// The source of a list of elements that all began as copies of one.
class ElementHistory final : public Json::ListSource
{
public:
    /// `prototype` is an object, and outlives this.
    explicit ElementHistory(const Json::Value& prototype);

    const Json::Value& prototype() const { return *prototype_; }

    std::size_t count() const override { return count_; }
    void fill(std::list<Json::Value>& list, std::size_t end) const override;

    std::size_t weight() const;

    /// Makes the list at least `count` elements long.
    void extend(std::size_t count);

    /// The history of the key whose slot in the prototype is `prototype_slot`.
    RuleHistory& rules(const Json::Value& prototype_slot);
    const RuleHistory& rules(const Json::Value& prototype_slot) const;

private:
    std::size_t row(const Json::Value& prototype_slot) const;
    Json::Value element(std::size_t index) const;

    const Json::Value* prototype_;
    std::size_t count_ = 0;
    std::vector<RuleHistory> rules_; ///< in the order of the prototype's keys
};

/// The elements of a list, in the order in which they stood there when they were made.
using ElementTable = std::deque<Json::Value*>;

/// The table of a collection, and what has happened to its elements.
struct NotedElements : ElementTable
{
    std::optional<PlaneLayout> layout;  ///< of all elements, as they were laid out last
    std::vector<std::size_t> looked_at; ///< since then, through the collection
};

/// A history that notes the elements which it makes in the tables of the collections that lie over the list, so
/// that they find them wherever somebody moves them within the tree.
class WatchedHistory final : public Json::ListSource
{
public:
    using History = boost::shared_ptr<const ElementHistory>;
    using Tables = std::vector<boost::weak_ptr<ElementTable>>;

    /// Tables whose collection is gone are forgotten.
    WatchedHistory(History history, const Tables& tables);

    const History& history() const { return history_; }
    const Tables& tables() const { return tables_; }
    bool notes_in(const boost::shared_ptr<ElementTable>& table) const;

    std::size_t count() const override { return history_->count(); }
    void fill(std::list<Json::Value>& list, std::size_t end) const override;
    boost::shared_ptr<const Json::ListSource> source_of_copy() const override { return history_; }

private:
    History history_;
    Tables tables_;
};

} // namespace Ome::detail
