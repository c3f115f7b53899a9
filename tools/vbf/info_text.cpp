#include "info.h"

#include "sample_size.h"
#include "stack_shape.h"
#include "text.h"

#include <VelaBase/vela_dt.h>

#include <array>
#include <cstdio>

namespace {

std::string number_text(double number)
{
    std::array<char, 32> buffer = {};
    std::snprintf(buffer.data(), buffer.size(), "%.6g", number);
    return buffer.data();
}

std::string number_text(std::uint32_t number)
{
    return std::to_string(number);
}

/// "147 x 137 x 25"
template <class T>
std::string times(const std::vector<T>& numbers)
{
    std::string result;
    for (const T& number : numbers)
        result += (result.empty() ? "" : " x ") + number_text(number);
    return result;
}

/// "0, 0, 4.5"
std::string listed(const std::vector<double>& numbers)
{
    std::string result;
    for (const double number : numbers)
        result += (result.empty() ? "" : ", ") + number_text(number);
    return result;
}

/// The first numbers of a long list, and the last one.
std::string shortened(const std::vector<double>& numbers)
{
    constexpr std::size_t count_first = 4;
    constexpr std::size_t count_all = 8;
    if (numbers.size() <= count_all)
        return listed(numbers);
    const std::vector<double> first(numbers.begin(), numbers.begin() + count_first);
    return listed(first) + ", ... " + number_text(numbers.back()) + " (" + std::to_string(numbers.size()) + " columns)";
}

std::string type_text(vela_dt type)
{
    if (type == vela_dt_rgb)
        return "colour of 3 bytes";
    if (type == vela_dt_packed_color)
        return "packed colour";
    if (size_of(type) != 0)
        return vela_dt_get_name(type);
    std::array<char, 64> buffer = {};
    std::snprintf(buffer.data(), buffer.size(), "%s (0x%x, not a type of samples)", vela_dt_get_name(type),
                  static_cast<unsigned>(type));
    return buffer.data();
}

std::string compression_text(const VBFStackHeader& header)
{
    const std::string level = std::to_string(header.compression_level);
    if (header.compression_type == 0)
        return "none";
    if (header.compression_type != 1)
        return "type " + std::to_string(header.compression_type) + ", unknown";
    return header.compression_level > 0 ? "zlib, level " + level : "none (zlib, level " + level + ")";
}

std::string segment_text(const VBFChainEntry& stack)
{
    if (stack.header.data_length_on_disk == 0)
        return "no bytes: all samples are zero";
    return std::to_string(stack.header.data_length_on_disk) + " bytes at " + std::to_string(stack.data_pos);
}

/// One line "  label        value"; nothing for an empty value.
std::string line(const std::string& label, const std::string& value)
{
    if (value.empty())
        return "";
    constexpr std::size_t width = 13;
    return "  " + label + std::string(label.size() < width ? width - label.size() : 1, ' ') + terminal_safe(value) +
           "\n";
}

std::string describe(const VBFChainEntry& stack, std::size_t index, bool is_dbl)
{
    const StackShape shape(stack.header);
    std::string result = "\nstack " + std::to_string(index) + "\n";
    result += line("name", stack.name);
    result += line("description", stack.description);
    result += line("size", shape.sizes.empty() ? "a single sample" : times(shape.sizes));
    result += line("length", times(shape.lengths));
    result += line("offset", listed(shape.offsets));
    result += line("type", type_text(stack.header.data_type));
    result += line("compression", compression_text(stack.header));
    result += line("on disk", segment_text(stack));
    if (!is_dbl)
        result += line("header", "version " + std::to_string(stack.header.format_version) + " at " +
                                     std::to_string(stack.position));
    return result;
}

/// "X, Y in m, Z": nothing where no axis has a label or unit.
std::string axes_text(const std::vector<AxisDetails>& axes)
{
    std::string result;
    bool any = false;
    for (const AxisDetails& axis : axes)
    {
        any = any || !axis.label.empty() || !axis.unit.empty();
        result += result.empty() ? "" : ", ";
        result += axis.label.empty() ? "-" : axis.label;
        if (!axis.unit.empty())
            result += " in " + axis.unit;
    }
    return any ? result : "";
}

std::string column_text(const std::vector<std::string>& labels)
{
    std::string result;
    for (const std::string& label : labels)
        result += (result.empty() ? "" : ", ") + label;
    return result;
}

/// "  global X     from 0.5, axes by 1, 0, 0": a line for each global axis, with its share of each axis of the stack.
std::string position_text(const GlobalPosition& position)
{
    std::string result;
    for (std::size_t row = 0; row < position.origin.size(); ++row)
    {
        const std::string& label = position.labels[row];
        result += line("global " + (label.empty() ? std::to_string(row) : terminal_safe(label)),
                       "from " + number_text(position.origin[row]) + ", axes by " + listed(position.matrix[row]));
    }
    return result;
}

/// What only an open file tells.
std::string describe(const StackDetails& details)
{
    std::string result = line("axes", axes_text(details.axes));
    for (std::size_t axis = 0; axis < details.axes.size(); ++axis)
    {
        result += line("positions " + std::to_string(axis), shortened(details.axes[axis].col_positions));
        result += line("columns " + std::to_string(axis), column_text(details.axes[axis].col_labels));
    }
    result += line("unit of data", details.data_unit);
    if (details.position)
        result += position_text(*details.position);
    if (details.count_flush_points != 0)
        result += line("flush points", std::to_string(details.count_flush_points) + ", one each " +
                                           std::to_string(details.flush_block_bytes) + " bytes");
    for (const auto& [key, text] : details.tags)
        result += line("tag", std::string(key).append("=").append(text));
    return result;
}

/// Nothing for a file that opens.
std::string state_text(const Listing& listing)
{
    const std::optional<std::string>& failure = listing.details.open_failure;
    if (!failure)
        return "";
    const std::string why = "does not open (" + *failure + ")";
    return listing.not_closed ? "was not closed, " + why : why;
}

} // namespace

std::string info_as_text(const std::string& path, const Listing& listing)
{
    const VBFChain& chain = listing.chain;
    const std::size_t count_stacks = chain.stacks.size();
    std::string result = terminal_safe(path) + "\n";
    result += line("description", chain.file.description);
    const std::string version = std::to_string(chain.file.header.format_version);
    result += line("format", listing.is_dbl ? "DBL" : "VBF version " + version);
    result += line("creator", listing.details.document.creator.value_or(""));
    result += line("UUID", listing.details.document.uuid.value_or(""));
    result += line("state", state_text(listing));
    result += line("stacks", std::to_string(count_stacks));
    for (std::size_t index = 0; index < count_stacks; ++index)
    {
        result += describe(chain.stacks[index], index, listing.is_dbl);
        if (index < listing.details.stacks.size())
            result += describe(listing.details.stacks[index]);
    }
    return result;
}
