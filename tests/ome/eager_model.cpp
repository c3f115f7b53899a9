#include "ome/eager_model.h"

#include <algorithm>
#include <stdexcept>
#include <typeinfo>

namespace vela_test {

namespace {

void demand(Check check, const Value& value)
{
    if (!passes(check, value))
        throw std::bad_cast();
}

Value default_of(const Row& row, std::size_t index)
{
    if (row.id_name == nullptr)
        return row.default_value;
    return index == 0 ? Value() : Value(row.id_name + std::string(":") + std::to_string(index));
}

Value number_of_text(Check check, const std::string& text)
{
    const auto& texts = enumeration_texts(check);
    const auto found = std::find(texts.begin(), texts.end(), text);
    return found == texts.end() ? Value(-1) : Value(static_cast<std::int32_t>(found - texts.begin()));
}

/// Converting access by the type that the check is read as.
Value read_as(Check check, Value& slot)
{
    switch (check)
    {
    case Check::structure:
        return slot.as_object();
    case Check::boolean:
        return slot.as_boolean();
    case Check::integer:
    case Check::non_negative_int:
    case Check::positive_int:
        return slot.as_integer();
    case Check::number:
    case Check::positive_float:
    case Check::percent_fraction:
        return slot.as_decimal();
    default:
        break;
    }
    const std::string text = slot.as_string();
    return enumeration_texts(check).empty() ? Value(text) : number_of_text(check, text);
}

/// What a handler is told of a slot that passed the check.
Value told_of(Check check, Value copy)
{
    if (!copy.is_null())
        return read_as(check, copy);
    switch (check)
    {
    case Check::boolean:
        return false;
    case Check::integer:
    case Check::non_negative_int:
    case Check::positive_int:
        return 0;
    case Check::number:
    case Check::positive_float:
    case Check::percent_fraction:
        return 0.0;
    default:
        return read_as(check, copy);
    }
}

/// "SizeX", "PhysicalSizeXUnit".
std::string key_of(const char* start, char axis, const char* end = "")
{
    std::string key = start;
    key += axis;
    key += end;
    return key;
}

} // namespace

EagerCollection::EagerCollection(Value& content, const RecordTable& elements) : content_(&content), elements_(&elements)
{
    const std::size_t count = content.at(elements.element_key).count();
    for (std::size_t index = 0; index < count; ++index)
        records_.push_back(std::make_shared<EagerRecord>(content.at(elements.element_key).at(index), elements));
}

std::shared_ptr<EagerRecord> EagerCollection::add(const Value& default_value)
{
    const std::size_t index = records_.size();
    Value& slot = content_->at(elements_->element_key).at(index);
    records_.push_back(std::make_shared<EagerRecord>(slot, *elements_, default_value, index + 1));
    return records_.back();
}

EagerRecord::EagerRecord(Value& slot, const RecordTable& table, const Value& default_value, std::size_t index)
    : table_(&table), slot_(&slot)
{
    demand(Check::structure, slot);
    if (!default_value.is_null() && slot != default_value)
    {
        demand(Check::structure, default_value);
        slot = default_value;
    }
    for (const Row& row : table.rows)
        bind(row, index);
}

Value& EagerRecord::object(In in)
{
    switch (in)
    {
    case In::own:
        return *slot_;
    case In::content:
        return *content_;
    case In::pixels:
        return *pixels_;
    case In::pixels_content:
        return *pixels_content_;
    }
    throw std::logic_error("no such object");
}

void EagerRecord::remember_object(const Row& row, Value& slot)
{
    if (row.in == In::own && row.key.empty())
        content_ = &slot;
    if (row.in == In::content && row.key == "ome:Pixels")
        pixels_ = &slot;
    if (row.in == In::pixels && row.key.empty())
        pixels_content_ = &slot;
}

void EagerRecord::bind(const Row& row, std::size_t index)
{
    fields_.emplace_back();
    if (row.elements != nullptr)
    {
        collections_[row.key] = std::make_unique<EagerCollection>(object(row.in), *row.elements);
        return;
    }
    Value& slot = object(row.in).at(row.key);
    if (slot.is_null())
        slot = default_of(row, index);
    demand(row.check, slot);
    fields_.back().slot = &slot;
    remember_object(row, slot);
}

void EagerRecord::assign(std::size_t row, const Value& value)
{
    const Field& field = fields_[row];
    if (*field.slot == value)
        return;
    demand(table_->rows[row].check, value);
    *field.slot = value;
    if (field.log != nullptr)
        field.log->push_back({field.name, told_of(table_->rows[row].check, *field.slot)});
}

Value EagerRecord::read(std::size_t row)
{
    return read_as(table_->rows[row].check, *fields_[row].slot);
}

void EagerRecord::watch(std::size_t row, ChangeLog& log, const std::string& name)
{
    fields_[row].log = &log;
    fields_[row].name = name;
}

std::int64_t EagerImage::size_of(char axis)
{
    return slot(pixels_row(key_of("Size", axis))).as_integer();
}

double EagerImage::decimal_of(const std::string& key)
{
    return slot(pixels_row(key)).as_decimal();
}

std::string EagerImage::order()
{
    Value& stored = slot(pixels_row("DimensionOrder"));
    if (stored.is_null())
        return "XYZTC";
    const std::string text = stored.as_string();
    return number_of_text(Check::dimension_order, text) == Value(-1) ? "XYZTC" : text;
}

char EagerImage::axis_of(std::size_t d)
{
    if (d < 2)
        return d == 0 ? 'X' : 'Y';
    const char axis = d > 4 ? 'C' : order()[d];
    if (axis == 'C')
        throw std::invalid_argument("Unsupported physical dimension");
    return axis;
}

void EagerImage::set_sizes(std::vector<std::size_t> sizes)
{
    for (const std::size_t size : sizes)
        if (size == 0)
            throw std::invalid_argument("Unsupported zero size");
    if (sizes.size() > 5)
        throw std::invalid_argument("Unsupported number of sizes");
    sizes.resize(5, 1);
    assign(pixels_row("SizeX"), sizes[0]);
    assign(pixels_row("SizeY"), sizes[1]);
    const std::string text = order();
    for (std::size_t d = 2; d < 5; ++d)
        assign(pixels_row(key_of("Size", text[d])), sizes[d]);

    channels.clear();
    for (std::int64_t c = 0; c < size_of('C'); ++c)
        channels.add();

    planes.clear();
    for (std::int64_t z = 0; z < size_of('Z'); ++z)
        for (std::int64_t t = 0; t < size_of('T'); ++t)
            for (std::int64_t c = 0; c < size_of('C'); ++c)
            {
                const std::shared_ptr<EagerRecord> plane = planes.add();
                plane->assign(plane_table().row(In::own, "TheZ"), z);
                plane->assign(plane_table().row(In::own, "TheT"), t);
                plane->assign(plane_table().row(In::own, "TheC"), c);
            }
}

void EagerImage::set_len(std::size_t d, double len)
{
    const char axis = axis_of(d);
    if (axis == 'T')
    {
        const bool has_time = len != 0 && size_of('T') != 1;
        assign(pixels_row("TimeIncrement"), has_time ? Value(len / static_cast<double>(size_of('T'))) : Value());
        assign(pixels_row("TimeIncrementUnit"), has_time ? Value("s") : Value());
        return;
    }
    const std::string key = key_of("PhysicalSize", axis);
    const std::string unit_key = key_of("PhysicalSize", axis, "Unit");
    if (len == 0 || len == 1)
    {
        assign(pixels_row(key), 1);
        assign(pixels_row(unit_key), "pixel");
        return;
    }
    assign(pixels_row(key), len / static_cast<double>(size_of(axis)));
    assign(pixels_row(unit_key), len <= 0.01 ? "m" : "\xC2\xB5m");
}

void EagerImage::set_positions(char axis, double off)
{
    const std::string key = key_of("Position", axis);
    const std::string unit_key = key_of("Position", axis, "Unit");
    const Value unit = slot(pixels_row(key_of("PhysicalSize", axis, "Unit")));
    for (std::size_t index = 0; index < planes.size(); ++index)
    {
        planes[index]->assign(plane_table().row(In::own, key), off);
        planes[index]->assign(plane_table().row(In::own, unit_key), unit);
    }
}

void EagerImage::set_depths(double off)
{
    const double count = static_cast<double>(size_of('Z'));
    const double step = decimal_of("PhysicalSizeZ");
    const Value unit = slot(pixels_row("PhysicalSizeZUnit"));
    for (std::size_t index = 0; index < planes.size(); ++index)
    {
        EagerRecord& plane = *planes[index];
        const double z = static_cast<double>(plane.slot(plane_table().row(In::own, "TheZ")).as_integer());
        plane.assign(plane_table().row(In::own, "PositionZ"), off + (z - 0.5 * (count - 1)) * step);
        plane.assign(plane_table().row(In::own, "PositionZUnit"), unit);
    }
}

void EagerImage::set_times(double off)
{
    const bool has_time = !slot(pixels_row("TimeIncrement")).is_null();
    const double count = has_time ? static_cast<double>(size_of('T')) : 0;
    const double step = has_time ? decimal_of("TimeIncrement") : 0;
    const Value unit = has_time ? slot(pixels_row("TimeIncrementUnit")) : Value();
    for (std::size_t index = 0; index < planes.size(); ++index)
    {
        EagerRecord& plane = *planes[index];
        Value time;
        if (has_time)
        {
            const double t = static_cast<double>(plane.slot(plane_table().row(In::own, "TheT")).as_integer());
            time = off + (t - 0.5 * (count - 1)) * step;
        }
        plane.assign(plane_table().row(In::own, "DeltaT"), time);
        plane.assign(plane_table().row(In::own, "DeltaTUnit"), unit);
    }
}

void EagerImage::set_off(std::size_t d, double off)
{
    const char axis = axis_of(d);
    if (axis == 'Z')
        return set_depths(off);
    if (axis == 'T')
        return set_times(off);
    set_positions(axis, off);
}

} // namespace vela_test
