#include "tiff_layout.h"

#include "quantity_text.h"
#include "tiff_file.h"

#include <Json/Value.h>
#include <Json/XmlReader.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <sstream>
#include <stdexcept>

namespace {

typedef std::map<std::string, std::string> Keys;

std::optional<double> positive_number(const std::string& text)
{
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(number) || number <= 0)
        return std::nullopt;
    return number;
}

std::uint64_t count_of(const Keys& keys, const std::string& key)
{
    const auto found = keys.find(key);
    const std::optional<double> number = found == keys.end() ? std::nullopt : positive_number(found->second);
    constexpr double most = 1e9;
    return number && *number >= 1 && *number <= most ? static_cast<std::uint64_t>(*number) : 1;
}

/// The unit in metres or seconds, 0 where it is none.
double factor_of(const std::string& unit, const char* base_unit)
{
    static const std::map<std::string, std::string> other_names = {
        {"micron", "um"}, {"microns", "um"}, {"\\u00B5m", "um"}, {"\xB5m", "um"}, {"sec", "s"}};
    const auto found = other_names.find(unit);
    try
    {
        const si::value value = parse_quantity(found == other_names.end() ? unit : found->second);
        if (value.is_compatible(si::value(base_unit)))
            return value.value_in_baseunits();
    }
    catch (const std::runtime_error&) // such as "pixel"
    {
    }
    return 0;
}

/// Nothing where there is no number, or the factor is 0.
std::optional<double> product(const std::optional<double>& number, double factor)
{
    if (!number || factor == 0)
        return std::nullopt;
    return *number * factor;
}

std::optional<double> value_of(const Keys& keys, const std::string& key)
{
    const auto found = keys.find(key);
    return found == keys.end() ? std::nullopt : positive_number(found->second);
}

/// Steps of pages for axes in the order in which they run, the fastest first.
void set_steps(TiffLayout& layout, const std::string& order, std::uint64_t samples_per_pixel)
{
    std::uint64_t step = 1;
    for (const char axis : order)
    {
        if (axis == 'Z')
        {
            layout.pages_per_z = step;
            step *= layout.size_z;
        }
        else if (axis == 'T')
        {
            layout.pages_per_t = step;
            step *= layout.size_t;
        }
        else if (axis == 'C')
        {
            layout.pages_per_c = step;
            step *= layout.size_c / samples_per_pixel;
        }
    }
}

bool fits(const TiffLayout& layout, const TiffFile& file)
{
    const std::uint64_t samples = file.get_samples_per_pixel();
    if (layout.size_c % samples != 0)
        return false;
    const std::uint64_t pages = file.get_count_pages();
    const std::uint64_t channel_pages = layout.size_c / samples;
    return pages % layout.size_z == 0 && pages / layout.size_z % layout.size_t == 0 &&
           pages / layout.size_z / layout.size_t == channel_pages;
}

void set_lengths(TiffLayout& layout, const TiffFile& file, const std::array<std::optional<double>, 4>& steps)
{
    const std::array<std::uint64_t, 4> sizes = {file.get_width(), file.get_height(), layout.size_z, layout.size_t};
    for (std::size_t axis = 0; axis < steps.size(); ++axis)
    {
        const bool has_extent = axis < 2 || sizes[axis] > 1;
        layout.lengths[axis] =
            has_extent ? product(steps[axis], static_cast<double>(sizes[axis])) : std::optional<double>();
    }
}

TiffLayout pages_as_z(const TiffFile& file)
{
    TiffLayout layout;
    layout.size_z = file.get_count_pages();
    layout.size_c = file.get_samples_per_pixel();
    set_steps(layout, "ZTC", layout.size_c);
    return layout;
}

TiffLayout with_remark(const TiffFile& file)
{
    TiffLayout layout = pages_as_z(file);
    layout.remark = "the description is not in keeping with the " + std::to_string(file.get_count_pages()) +
                    " pages, which become the axis Z";
    return layout;
}

Keys read_lines(const std::string& description)
{
    Keys keys;
    std::istringstream in(description);
    for (std::string line; std::getline(in, line);)
    {
        const std::size_t sign = line.find('=');
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (sign != std::string::npos)
            keys[line.substr(0, sign)] = line.substr(sign + 1);
    }
    return keys;
}

TiffLayout layout_of_lines(const TiffFile& file)
{
    const Keys keys = read_lines(file.get_description());
    TiffLayout layout;
    layout.size_z = count_of(keys, "slices");
    layout.size_t = count_of(keys, "frames");
    layout.size_c = count_of(keys, "channels");
    if (layout.size_c == 1)
        layout.size_c = file.get_samples_per_pixel();
    if (!fits(layout, file))
        return with_remark(file);
    set_steps(layout, "CZT", file.get_samples_per_pixel());
    const auto unit = keys.find("unit");
    const double metres = unit == keys.end() ? 0 : factor_of(unit->second, "m");
    const auto step_of = [&](double resolution)
    { return resolution > 0 ? product(1 / resolution, metres) : std::optional<double>(); };
    set_lengths(layout, file,
                {step_of(file.get_resolution_x()), step_of(file.get_resolution_y()),
                 product(value_of(keys, "spacing"), metres), value_of(keys, "finterval")});
    return layout;
}

/// The XML reader knows no comments.
std::string without_comments(std::string xml)
{
    for (std::size_t begin = xml.find("<!--"); begin != std::string::npos; begin = xml.find("<!--", begin))
    {
        const std::size_t end = xml.find("-->", begin);
        xml.erase(begin, end == std::string::npos ? end : end + 3 - begin);
    }
    return xml;
}

std::string local_name(const std::string& key)
{
    return key.substr(key.find(':') + 1);
}

/// The first child or attribute of that name, whatever its prefix; null without one. `count` is how many there are.
Json::Value* find(Json::Value* parent, const std::string& name, std::size_t* count = nullptr)
{
    Json::Value::Object* const object = parent == nullptr ? nullptr : parent->if_object();
    if (object == nullptr)
        return nullptr;
    for (auto&& [key, value] : *object)
    {
        if (local_name(key) != name)
            continue;
        Json::Value::List* const list = value.if_list();
        if (count != nullptr)
            *count = list != nullptr ? list->size() : 1;
        return list != nullptr && !list->empty() ? &list->front() : &value;
    }
    return nullptr;
}

/// A child is under the attribute "" of elements that have attributes.
Json::Value* child(Json::Value* parent, const std::string& name, std::size_t* count = nullptr)
{
    Json::Value::Object* const object = parent == nullptr ? nullptr : parent->if_object();
    if (object == nullptr)
        return nullptr;
    for (auto&& [key, value] : *object)
    {
        if (key.empty())
            return find(&value, name, count);
    }
    return find(parent, name, count);
}

std::string text_of(Json::Value* parent, const std::string& attribute, const std::string& missing)
{
    const Json::Value* const value = find(parent, attribute);
    if (value == nullptr)
        return missing;
    if (const std::string* const text = value->if_string())
        return *text;
    std::ostringstream out; // numbers are read as such
    out.precision(17);
    if (const std::int64_t* const integer = value->if_integer())
        out << *integer;
    else if (const double* const decimal = value->if_decimal())
        out << *decimal;
    return out.str();
}

std::optional<double> step_of(Json::Value* pixels, const std::string& attribute, const std::string& usual_unit,
                              const char* base_unit)
{
    return product(positive_number(text_of(pixels, attribute, "")),
                   factor_of(text_of(pixels, attribute + "Unit", usual_unit), base_unit));
}

bool is_order(const std::string& text)
{
    std::string sorted = text;
    std::sort(sorted.begin(), sorted.end());
    return sorted == "CTXYZ" && text.compare(0, 2, "XY") == 0;
}

TiffLayout layout_of_document(const TiffFile& file)
{
    const std::string xml = without_comments(file.get_description());
    Json::Value document;
    std::size_t count_images = 0;
    Json::XmlReader reader(document);
    const char* begin = xml.data();
    reader.read(begin, begin + xml.size());
    Json::Value* const image = child(find(&document, "OME"), "Image", &count_images);
    Json::Value* const pixels = child(image, "Pixels");
    const std::string order = text_of(pixels, "DimensionOrder", "");
    if (count_images != 1 || !is_order(order))
        return with_remark(file);
    const Keys keys = {
        {"Z", text_of(pixels, "SizeZ", "")}, {"T", text_of(pixels, "SizeT", "")}, {"C", text_of(pixels, "SizeC", "")}};
    TiffLayout layout;
    layout.size_z = count_of(keys, "Z");
    layout.size_t = count_of(keys, "T");
    layout.size_c = count_of(keys, "C");
    if (!fits(layout, file))
        return with_remark(file);
    set_steps(layout, order.substr(2), file.get_samples_per_pixel());
    set_lengths(layout, file,
                {step_of(pixels, "PhysicalSizeX", "um", "m"), step_of(pixels, "PhysicalSizeY", "um", "m"),
                 step_of(pixels, "PhysicalSizeZ", "um", "m"), step_of(pixels, "TimeIncrement", "s", "s")});
    layout.name = text_of(image, "Name", "");
    return layout;
}

bool starts_with(const std::string& text, const char* beginning)
{
    return text.rfind(beginning, 0) == 0;
}

} // namespace

TiffLayout find_layout(const TiffFile& file)
{
    const std::string& description = file.get_description();
    if (starts_with(description, "ImageJ="))
        return layout_of_lines(file);
    if (description.find("<OME") == std::string::npos && description.find("<ome:OME") == std::string::npos)
        return pages_as_z(file);
    try
    {
        return layout_of_document(file);
    }
    catch (const Json::XmlReader::Unexpected&)
    {
        return with_remark(file);
    }
}
