#include "ome/ElementHistory.h"

#include <Ome/Id.h>

#include <algorithm>
#include <cmath>
#include <iterator>
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

bool PlaneLayout::keeps(const PlaneLayout& before) const
{
    if (count_c != before.count_c || count() < before.count())
        return false;
    return count_t == before.count_t || (before.count_z == 1 && count_t > before.count_t);
}

double OffsetRule::at(std::size_t index) const
{
    return at_place(std::get<PlaceRule>(*places->find(index)).place(index));
}

std::size_t OffsetRule::weight() const
{
    return places->weight();
}

namespace {

/// Whether elements with the value of the one rule keep it where the other is given.
bool is_equal(const Rule& left, const Rule& right)
{
    return left == right;
}

/// The same, and their text is the same too: zeros of either sign are equal.
bool is_identical(const Rule& left, const Rule& right)
{
    if (!is_equal(left, right))
        return false;
    const auto* const value = std::get_if<Json::Value>(&left);
    const double* const decimal = value == nullptr ? nullptr : value->if_decimal();
    return decimal == nullptr || std::signbit(*decimal) == std::signbit(*std::get<Json::Value>(right).if_decimal());
}

void append(std::vector<RuleHistory::Entry>& entries, std::size_t end, const Rule& rule)
{
    if (!entries.empty() && is_identical(entries.back().rule, rule))
        entries.back().end = end;
    else
        entries.push_back({end, rule});
}

}

void RuleHistory::set(std::size_t end, const Rule& rule)
{
    std::vector<Entry> after;
    std::size_t begin = 0;
    for (const Entry& entry : entries_)
    {
        if (begin < end && !is_equal(entry.rule, rule))
            append(after, std::min(entry.end, end), rule);
        else
            append(after, std::min(entry.end, std::max(begin, end)), entry.rule);
        if (entry.end > end)
            append(after, entry.end, entry.rule);
        begin = entry.end;
    }
    if (begin < end)
        append(after, end, rule);
    entries_ = std::move(after);
}

const Rule* RuleHistory::find(std::size_t index) const
{
    const auto entry = std::ranges::upper_bound(entries_, index, {}, &Entry::end);
    return entry == entries_.end() ? nullptr : &entry->rule;
}

std::size_t RuleHistory::weight() const
{
    std::size_t sum = 0;
    for (const Entry& entry : entries_)
    {
        const auto* const offset = std::get_if<OffsetRule>(&entry.rule);
        sum += 1 + (offset == nullptr ? 0 : offset->weight());
    }
    return sum;
}

ElementHistory::ElementHistory(const Json::Value& prototype)
    : prototype_(&prototype), rules_(prototype.if_object()->size())
{
}

std::size_t ElementHistory::weight() const
{
    std::size_t sum = 0;
    for (const RuleHistory& rules : rules_)
        sum += rules.weight();
    return sum;
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

WatchedHistory::WatchedHistory(History history, const Tables& tables) : history_(std::move(history))
{
    std::ranges::copy_if(tables, std::back_inserter(tables_), [](const auto& table) { return !table.expired(); });
}

bool WatchedHistory::notes_in(const boost::shared_ptr<ElementTable>& table) const
{
    return std::ranges::any_of(tables_, [&](const auto& noted) { return table && noted.lock() == table; });
}

void WatchedHistory::fill(std::list<Json::Value>& list, std::size_t end) const
{
    std::vector<boost::shared_ptr<ElementTable>> noted;
    for (const auto& table : tables_)
        if (auto locked = table.lock())
            noted.push_back(std::move(locked));
    for (std::size_t index = list.size(); index < end; ++index)
    {
        for (const auto& table : noted)
            table->resize(std::max(table->size(), index + 1));
        history_->fill(list, index + 1);
        for (const auto& table : noted)
            (*table)[index] = &list.back();
    }
}

} // namespace Ome::detail
