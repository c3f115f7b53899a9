#include "tiff_layout.h"

#include "length_unit.h"
#include "tiff_data.h"
#include "tiff_file.h"
#include "xml_element.h"

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

/// Nothing where there is no number, the factor is 0 or the product too large.
std::optional<double> product(const std::optional<double>& number, double factor)
{
    if (!number || factor == 0 || !std::isfinite(*number * factor))
        return std::nullopt;
    return *number * factor;
}

std::optional<double> value_of(const Keys& keys, const std::string& key)
{
    const auto found = keys.find(key);
    return found == keys.end() ? std::nullopt : positive_number(found->second);
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

void add_remark(TiffLayout& layout, const std::string& remark)
{
    layout.remark += (layout.remark.empty() ? "" : "; ") + remark;
}

/// 0 for a unit that is not known.
double factor_or_remark(TiffLayout& layout, const std::string& unit, UnitKind kind)
{
    const std::optional<double> factor = factor_of(unit, kind);
    if (!factor)
        add_remark(layout, "the unit '" + unit + "' is not known, lengths in it are left out");
    return factor.value_or(0);
}

TiffLayout pages_as_z(const TiffFile& file)
{
    TiffLayout layout;
    layout.size_z = file.get_count_pages();
    layout.size_c = file.get_samples_per_pixel();
    set_pages(layout, "ZTC", layout.size_c);
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
    set_pages(layout, "CZT", file.get_samples_per_pixel());
    const auto unit = keys.find("unit");
    const double metres = unit == keys.end() ? 0 : factor_or_remark(layout, unit->second, UnitKind::length);
    const auto step_of = [&](double resolution)
    { return resolution > 0 ? product(1 / resolution, metres) : std::optional<double>(); };
    set_lengths(layout, file,
                {step_of(file.get_resolution_x()), step_of(file.get_resolution_y()),
                 product(value_of(keys, "spacing"), metres), value_of(keys, "finterval")});
    return layout;
}

std::string text_of(const XmlElement& element, const std::string& attribute, const std::string& missing)
{
    const std::string* const text = element.find_attribute(attribute);
    return text == nullptr ? missing : *text;
}

/// The distance of columns in metres or seconds.
std::optional<double> step_of(TiffLayout& layout, const XmlElement& pixels, const std::string& attribute, UnitKind kind)
{
    const std::optional<double> number = positive_number(text_of(pixels, attribute, ""));
    if (!number)
        return std::nullopt;
    const std::string usual_unit = kind == UnitKind::length ? "um" : "s";
    return product(number, factor_or_remark(layout, text_of(pixels, attribute + "Unit", usual_unit), kind));
}

/// The only image of the document; null where there are more or none.
const XmlElement* find_image(const XmlElement& root)
{
    const XmlElement* const image = root.name == "OME" ? root.find_child("Image") : nullptr;
    const auto is_image = [](const XmlElement& child) { return child.name == "Image"; };
    const bool alone = std::count_if(root.children.begin(), root.children.end(), is_image) == 1;
    return alone ? image : nullptr;
}

bool is_order(const std::string& text)
{
    std::string sorted = text;
    std::sort(sorted.begin(), sorted.end());
    return sorted == "CTXYZ" && text.compare(0, 2, "XY") == 0;
}

TiffLayout layout_of_document(const TiffFile& file)
{
    const XmlElement root = parse_xml(file.get_description());
    const XmlElement* const image = find_image(root);
    const XmlElement* const pixels = image == nullptr ? nullptr : image->find_child("Pixels");
    if (pixels == nullptr)
        return with_remark(file);
    const std::string order = text_of(*pixels, "DimensionOrder", "");
    const Keys keys = {{"Z", text_of(*pixels, "SizeZ", "")},
                       {"T", text_of(*pixels, "SizeT", "")},
                       {"C", text_of(*pixels, "SizeC", "")}};
    TiffLayout layout;
    layout.size_z = count_of(keys, "Z");
    layout.size_t = count_of(keys, "T");
    layout.size_c = count_of(keys, "C");
    if (!is_order(order) || !fits(layout, file) ||
        !set_pages(layout, order.substr(2), file.get_samples_per_pixel(), *pixels, text_of(root, "UUID", "")))
        return with_remark(file);
    set_lengths(layout, file,
                {step_of(layout, *pixels, "PhysicalSizeX", UnitKind::length),
                 step_of(layout, *pixels, "PhysicalSizeY", UnitKind::length),
                 step_of(layout, *pixels, "PhysicalSizeZ", UnitKind::length),
                 step_of(layout, *pixels, "TimeIncrement", UnitKind::time)});
    layout.name = text_of(*image, "Name", "");
    if (const XmlElement* const description = image->find_child("Description"))
        layout.description = description->text;
    return layout;
}

bool starts_with(const std::string& text, const char* beginning)
{
    return text.rfind(beginning, 0) == 0;
}

TiffLayout layout_of_description(const TiffFile& file)
{
    const std::string& description = file.get_description();
    if (starts_with(description, "ImageJ="))
        return layout_of_lines(file);
    if (description.find("<OME") == std::string::npos && description.find("<ome:OME") == std::string::npos)
    {
        TiffLayout layout = pages_as_z(file);
        layout.description = description;
        return layout;
    }
    try
    {
        return layout_of_document(file);
    }
    catch (const std::runtime_error&) // it is no XML
    {
        return with_remark(file);
    }
}

} // namespace

TiffLayout find_layout(const TiffFile& file)
{
    TiffLayout layout = layout_of_description(file);
    for (const std::string& remark : file.get_remarks())
        add_remark(layout, remark);
    return layout;
}
