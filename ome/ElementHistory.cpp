#include "ome/ElementHistory.h"

#include <Ome/Id.h>

#include <algorithm>
#include <utility>

namespace Ome::detail {

namespace {

/// The value that a rule gives the element `index`.
struct Evaluation
{
    Json::Value operator()(const Json::Value& constant) const { return constant; }
    Json::Value operator()(const IdRule& rule) const { return Id(rule.name, index + 1); }
    Json::Value operator()(const PlaceRule& rule) const { return rule.place(index); }
    Json::Value operator()(const OffsetRule& rule) const { return rule.at(index); }

    std::size_t index;
};

}

std::size_t PlaceRule::place(std::size_t index) const
{
    switch (axis)
    {
    case Axis::c:
        return index % count_c;
    case Axis::t:
        return index / count_c % count_t;
    case Axis::z:
        break;
    }
    return index / count_c / count_t;
}

double OffsetRule::at(std::size_t index) const
{
    return at_place(std::get<PlaceRule>(*places->find(index)).place(index));
}

void RuleHistory::set(std::size_t end, Rule rule)
{
    while (!entries_.empty() && entries_.back().end <= end)
        entries_.pop_back();
    if (end > 0)
        entries_.push_back({end, std::move(rule)});
}

const Rule* RuleHistory::find(std::size_t index) const
{
    const auto entry = std::find_if(begin(), end(), [index](const Entry& candidate) { return index < candidate.end; });
    return entry == end() ? nullptr : &entry->rule;
}

ElementHistory::ElementHistory(const Json::Value& prototype)
    : prototype_(&prototype), rules_(prototype.if_object()->size())
{
}

void ElementHistory::extend(std::size_t count)
{
    count_ = std::max(count_, count);
}

void ElementHistory::fill(std::list<Json::Value>& list, std::size_t end) const
{
    for (std::size_t index = list.size(); index < end; ++index)
        list.push_back(element(index));
}

Json::Value ElementHistory::element(std::size_t index) const
{
    Json::Value made(*prototype_);
    auto history = rules_.begin();
    for (auto& entry : *made.if_object())
    {
        if (const Rule* rule = history->find(index))
            entry.second = std::visit(Evaluation{index}, *rule);
        ++history;
    }
    return made;
}

RuleHistory& ElementHistory::rules(const Json::Value& prototype_slot)
{
    return rules_[row(prototype_slot)];
}

const RuleHistory& ElementHistory::rules(const Json::Value& prototype_slot) const
{
    return rules_[row(prototype_slot)];
}

std::size_t ElementHistory::row(const Json::Value& prototype_slot) const
{
    const Json::Value::Object& object = *prototype_->if_object();
    const auto entry =
        std::ranges::find_if(object, [&](const auto& candidate) { return &candidate.second == &prototype_slot; });
    return static_cast<std::size_t>(std::distance(object.begin(), entry));
}

} // namespace Ome::detail
