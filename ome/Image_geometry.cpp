#include "ome/CollectionFiller.h"
#include "ome/dimension_axes.h"

#include <Ome/Image.h>

#include <algorithm>
#include <limits>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

namespace {

using detail::Axis;
using detail::ElementHistory;
using detail::OffsetRule;
using detail::PlaceRule;
using detail::RuleHistory;

/// Lengths up to this one are guessed to be in metres, longer ones in micrometres.
constexpr double longest_in_metres = 0.01;

/// A size of 0, which somebody has written past the field, gives what the division gives where it is defined.
double divide(double len, std::int64_t size)
{
    return size == 0 ? len * std::numeric_limits<double>::infinity() : len / static_cast<double>(size);
}

template <class Size, class PhysicalSize, class Unit>
void set_physical_size(double len, const Size& size, PhysicalSize& physical_size, Unit& unit)
{
    if (len == 0 || len == 1)
    {
        physical_size = 1;
        unit = "pixel";
        return;
    }
    physical_size = divide(len, size);
    unit = len <= longest_in_metres ? "m" : "\xC2\xB5m";
}

/// The first plane of a layout, from `begin` on, whose time is not above 0; at best one at or behind `end`.
///
/// Times rise or fall with T, C running faster and Z slower. So those that fail are the first or the last of each Z.
std::size_t first_failing_time(const OffsetRule& times, const PlaceRule& layout, std::size_t begin, std::size_t end)
{
    const auto fails = [&times](std::size_t place) { return !(times.at_place(place) > 0); };
    if (fails(layout.place(begin)))
        return begin;
    const std::size_t planes_of_z = layout.count_t * layout.count_c;
    const std::size_t begin_of_z = begin / planes_of_z * planes_of_z;
    if (fails(0))
        return begin_of_z + planes_of_z;
    std::size_t passing_end = 1;
    for (std::size_t failing = layout.count_t; passing_end < failing;)
    {
        const std::size_t middle = passing_end + (failing - passing_end) / 2;
        if (fails(middle))
            failing = middle;
        else
            passing_end = middle + 1;
    }
    return passing_end == layout.count_t ? end : begin_of_z + passing_end * layout.count_c;
}

/// The same for all layouts from `begin` to `end`; `end` if there is none.
std::size_t first_failing_time(const OffsetRule& times, std::size_t begin, std::size_t end)
{
    for (const RuleHistory::Entry& entry : *times.places)
    {
        const std::size_t layout_end = std::min(entry.end, end);
        if (begin >= layout_end)
            continue;
        const std::size_t failing = first_failing_time(times, std::get<PlaceRule>(entry.rule), begin, layout_end);
        if (failing < layout_end)
            return failing;
        begin = layout_end;
    }
    return end;
}

/// What `set_off` does to every plane: one number, and its unit.
template <class Record, class Number, class Unit>
struct PlaneChange
{
    Number Record::*number;
    Unit Record::*unit;
    Json::Value new_unit;

    /// Planes that are in the list: `number_of(plane)` is the new number.
    template <class NumberOf>
    void present(Collection<Record>& planes, NumberOf number_of) const
    {
        const CollectionFiller<Record> filler{planes};
        filler.change_present(
            [&](Record& plane)
            {
                plane.*number = number_of(plane);
                plane.*unit = new_unit;
            });
    }

    /// The others: by the rule `rule_of(history)`, the numbers of which are refused from `first_failing(begin, end)`
    /// on.
    template <class RuleOf, class FirstFailing>
    void absent(Collection<Record>& planes, RuleOf rule_of, FirstFailing first_failing) const
    {
        bool failed = false;
        const CollectionFiller<Record> filler{planes};
        filler.change_absent(
            [&](ElementHistory& history, std::size_t begin, std::size_t end)
            {
                const Record& prototype = Prototype<Record>::instance().record;
                const auto rule = rule_of(history);
                std::size_t number_end = first_failing(rule, begin, end);
                std::size_t unit_end = number_end;
                if (number_end > begin && !unit_passes())
                {
                    number_end = begin + 1;
                    unit_end = begin;
                }
                failed = unit_end < end;
                if (number_end > begin)
                    history.rules((prototype.*number).value()).set(number_end, rule);
                if (unit_end > begin)
                    history.rules((prototype.*unit).value()).set(unit_end, new_unit);
            });
        if (failed)
            Json::detail::throw_bad_cast();
    }

private:
    /// Tries the unit on a field of its own.
    bool unit_passes() const
    {
        Json::Value slot(new_unit);
        try
        {
            Unit trial{typename Record::Binding(slot)};
        }
        catch (const std::bad_cast&)
        {
            return false;
        }
        return true;
    }
};

template <class Record, class Number, class Unit>
PlaneChange(Number Record::*, Unit Record::*, Json::Value) -> PlaneChange<Record, Number, Unit>;

/// The same number for all planes, or null.
template <class Change, class Planes>
void set_constant(Planes& planes, const Change& change, const Json::Value& number)
{
    change.present(planes, [&](const auto&) { return number; });
    change.absent(
        planes, [&](const ElementHistory&) { return number; },
        [](const Json::Value&, std::size_t, std::size_t end) { return end; });
}

/// Numbers that grow by `step` from place to place, with `off` in the middle of the `count` places.
template <class Record, class Change, class Place, class FirstFailing>
void set_steps(Collection<Record>& planes, const Change& change, Place Record::*place, double off, double step,
               std::int64_t count, FirstFailing first_failing)
{
    OffsetRule numbers{off, step, 0.5 * (static_cast<double>(count) - 1), nullptr};
    change.present(planes, [&](const Record& plane) { return numbers.at_place((plane.*place).get()); });
    change.absent(
        planes,
        [&](const ElementHistory& history)
        {
            const Json::Value& slot = (Prototype<Record>::instance().record.*place).value();
            numbers.places = boost::make_shared<RuleHistory>(history.rules(slot));
            return numbers;
        },
        first_failing);
}

}

template <class Reference>
void Image<Reference>::set_len(std::size_t d, double len)
{
    switch (detail::axis_of_dimension(d, dimension_order.value()))
    {
    case Axis::x:
        return set_physical_size(len, size_x, physical_size_x, physical_size_x_unit);
    case Axis::y:
        return set_physical_size(len, size_y, physical_size_y, physical_size_y_unit);
    case Axis::z:
        return set_physical_size(len, size_z, physical_size_z, physical_size_z_unit);
    case Axis::c:
        detail::fail_physical_dimension();
    case Axis::t:
        break;
    }
    const bool timed = len != 0 && size_t != 1;
    time_increment = timed ? Json::Value(divide(len, size_t)) : Json::Value();
    time_increment_unit = timed ? Json::Value("s") : Json::Value();
}

template <class Reference>
void Image<Reference>::set_off(std::size_t d, double off)
{
    using Record = Plane<Reference>;
    const auto none_fails = [](const OffsetRule&, std::size_t, std::size_t end) { return end; };
    switch (detail::axis_of_dimension(d, dimension_order.value()))
    {
    case Axis::x:
        set_constant(planes, PlaneChange{&Record::position_x, &Record::position_x_unit, physical_size_x_unit.value()},
                     off);
        return;
    case Axis::y:
        set_constant(planes, PlaneChange{&Record::position_y, &Record::position_y_unit, physical_size_y_unit.value()},
                     off);
        return;
    case Axis::z: {
        const std::int64_t count = size_z;
        set_steps(planes, PlaneChange{&Record::position_z, &Record::position_z_unit, physical_size_z_unit.value()},
                  &Record::the_z, off, physical_size_z, count, none_fails);
        return;
    }
    case Axis::c:
        detail::fail_physical_dimension();
    case Axis::t:
        break;
    }
    if (time_increment.is_null())
    {
        set_constant(planes, PlaneChange{&Record::delta_t, &Record::delta_t_unit, Json::Value()}, Json::Value());
        return;
    }
    const std::int64_t count = size_t;
    set_steps(planes, PlaneChange{&Record::delta_t, &Record::delta_t_unit, time_increment_unit.value()}, &Record::the_t,
              off, time_increment, count,
              [](const OffsetRule& times, std::size_t begin, std::size_t end)
              { return first_failing_time(times, begin, end); });
}

template void Image<Json::SignalingReference>::set_len(std::size_t, double);
template void Image<Json::SignalingReference>::set_off(std::size_t, double);

VELA_ABI_NAMESPACE_END
}
