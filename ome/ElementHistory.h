/// The elements of a list that nobody has looked at yet, as what has been done to all of them.
#pragma once

#include <Json/ListSource.h>
#include <Json/Value.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace Ome::detail {

/// "Name:1" for the first element, and so on.
struct IdRule
{
    const char* name;
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

    Axis axis;
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
};

/// What the value under one key follows from.
using Rule = std::variant<Json::Value, IdRule, PlaceRule, OffsetRule>;

/// The rules that have been given for one key, each to all elements before an end.
///
/// A rule replaces those that it reaches beyond, so the ends descend from the oldest rule to the newest.
class RuleHistory
{
public:
    struct Entry
    {
        std::size_t end;
        Rule rule;
    };

    bool empty() const { return entries_.empty(); }

    /// Gives the elements before `end` a rule; with an `end` of 0, none.
    void set(std::size_t end, Rule rule);

    /// The newest rule that reaches `index`; null where there is none.
    const Rule* find(std::size_t index) const;

    /// From the newest, which holds from element 0, to the oldest.
    auto begin() const { return entries_.rbegin(); }
    auto end() const { return entries_.rend(); }

private:
    std::vector<Entry> entries_;
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

} // namespace Ome::detail
