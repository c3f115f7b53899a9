#include "ome_document.h"

#include "text.h"

#include <VelaBase/vela_dt.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string_view>

namespace {

constexpr const char* further_axes = "ZTC";

struct TypeRow
{
    vela_dt type;
    const char* name;
};

constexpr std::array<TypeRow, 10> types = {{
    {vela_dt_uint8, "uint8"},
    {vela_dt_int8, "int8"},
    {vela_dt_uint16, "uint16"},
    {vela_dt_int16, "int16"},
    {vela_dt_uint32, "uint32"},
    {vela_dt_int32, "int32"},
    {vela_dt_single, "float"},
    {vela_dt_double, "double"},
    {vela_dt_complex | vela_dt_single, "complex"},
    {vela_dt_complex | vela_dt_double, "double-complex"},
}};

std::string type_name(vela_dt type)
{
    for (const TypeRow& row : types)
    {
        if (row.type == type)
            return row.name;
    }
    throw std::runtime_error(std::string("OME has no samples of type ") + vela_dt_get_name(type) + ".");
}

/// Text for an attribute or an element. What XML cannot hold becomes U+FFFD.
std::string escaped(const std::string& text)
{
    const std::string_view replacement = "\xEF\xBF\xBD";
    std::string result;
    const std::string valid = valid_utf8(text);
    for (std::size_t i = 0; i < valid.size(); ++i)
    {
        const char c = valid[i];
        const auto byte = static_cast<unsigned char>(c);
        const std::string_view three = std::string_view(valid).substr(i, 3);
        if (three == "\xEF\xBF\xBE" || three == "\xEF\xBF\xBF") // U+FFFE, U+FFFF
        {
            result += replacement;
            i += three.size() - 1;
            continue;
        }
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '"')
            result += "&quot;";
        else if (byte < 0x20 && c != '\n' && c != '\t')
            result += replacement;
        else
            result += c;
    }
    return result;
}

std::string attribute(const std::string& key, const std::string& value)
{
    return " " + key + "=\"" + escaped(value) + "\"";
}

/// The distance of columns in micrometres or seconds, where the unit of the axis is one of them.
std::string step_attribute(const VStackInfoInterface& stack, const FooterParts& footer, std::uint64_t axis, char letter)
{
    if (letter == 'C' || axis >= stack.get_rank())
        return "";
    const bool has_unit = axis < footer.units.size() && footer.units[axis];
    if (!has_unit && stack.get_length(axis) == 1)
        return "";
    const bool time = letter == 'T';
    const si::value unit = stack.get_units(axis);
    if (!unit.is_compatible(si::value(time ? "s" : "m")))
        return "";
    constexpr double micrometres = 1e6; // the unit of the schema where none is named
    const double step = stack.get_length(axis) / static_cast<double>(stack.get_dimension_size(axis)) *
                        unit.value_in_baseunits() * (time ? 1 : micrometres);
    if (!std::isfinite(step) || static_cast<float>(step) <= 0 || std::isinf(static_cast<float>(step)))
        return "";
    return attribute(time ? "TimeIncrement" : std::string("PhysicalSize") + letter, number_text(step));
}

} // namespace

OmePlanes::OmePlanes(const VStackInfoInterface& stack)
{
    const std::vector<std::uint64_t>& stack_sizes = stack.get_sizes();
    if (stack.get_number_of_elements() == 0)
        throw std::runtime_error("The stack has no samples.");
    if (stack_sizes.size() > sizes.size())
        throw std::runtime_error("The stack has more than five axes.");
    std::copy(stack_sizes.begin(), stack_sizes.end(), sizes.begin());
    if (get_count() > max_planes)
        throw std::runtime_error("The stack has more than " + std::to_string(max_planes) + " planes.");

    std::string left = further_axes;
    std::string chosen(sizes.size(), ' ');
    for (std::uint64_t axis = 2; axis < stack_sizes.size(); ++axis)
    {
        const std::string& label = stack.get_label(axis);
        const std::size_t found = label.size() == 1 ? left.find(label[0]) : std::string::npos;
        if (found == std::string::npos)
            continue;
        chosen[axis] = label[0];
        left.erase(found, 1);
    }
    for (std::size_t axis = 2; axis < sizes.size(); ++axis)
    {
        if (chosen[axis] == ' ')
        {
            chosen[axis] = left[0];
            left.erase(0, 1);
        }
        order += chosen[axis];
    }
}

std::string ome_document(const VStackInfoInterface& stack, const FooterParts& footer, const OmePlanes& planes)
{
    std::string result = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<OME xmlns=\"http://www.openmicroscopy.org/Schemas/OME/2015-01\""
                         " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
                         " xsi:schemaLocation=\"http://www.openmicroscopy.org/Schemas/OME/2015-01"
                         " http://www.openmicroscopy.org/Schemas/OME/2015-01/ome.xsd\">\n";
    result += "<Image ID=\"Image:0\"" + attribute("Name", stack.get_name()) + ">\n";
    if (!stack.get_description().empty())
        result += "<Description>" + escaped(stack.get_description()) + "</Description>\n";
    result += "<Pixels ID=\"Pixels:0\"" + attribute("DimensionOrder", planes.order) +
              attribute("Type", type_name(stack.get_dt())) + " BigEndian=\"false\"";
    std::uint64_t count_channels = 1;
    for (std::size_t axis = 0; axis < planes.sizes.size(); ++axis)
    {
        const char letter = planes.order[axis];
        result += attribute(std::string("Size") + letter, std::to_string(planes.sizes[axis]));
        result += step_attribute(stack, footer, axis, letter);
        count_channels = letter == 'C' ? planes.sizes[axis] : count_channels;
    }
    result += ">\n";
    for (std::uint64_t channel = 0; channel < count_channels; ++channel)
        result += "<Channel" + attribute("ID", "Channel:0:" + std::to_string(channel)) + " SamplesPerPixel=\"1\"/>\n";
    result += "<TiffData" + attribute("IFD", "0") + attribute("PlaneCount", std::to_string(planes.get_count())) +
              "/>\n</Pixels>\n</Image>\n</OME>\n";
    return result;
}
