#include "tiff_stack.h"

#include "failure.h"
#include "progress.h"
#include "quantity_text.h"

#include <VelaBinaryIO/VBFFile.h>

#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>

namespace {

constexpr std::array<const char*, 5> axis_names = {"X", "Y", "Z", "T", "C"};
constexpr std::size_t axis_t = 3;
constexpr std::size_t axis_c = 4;

/// The unit of lengths of which nobody says the unit.
si::value usual_unit(std::size_t axis)
{
    if (axis == axis_c)
        return si::value(1.0);
    return si::value(axis == axis_t ? "s" : "m");
}

double parse_length(const std::string& text)
{
    double length = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, length);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(length) || length < 0)
        throw UsageFailure("--length: '" + text + "' is no length.");
    return length;
}

/// One in base units.
si::value without_number(const si::value& quantity)
{
    std::array<si::fraction, si::value::dimension_count> exponents;
    for (std::size_t i = 0; i < exponents.size(); ++i)
        exponents[i] = quantity.exponent(i);
    return si::value(1.0, exponents);
}

} // namespace

TiffStack::TiffStack(const std::string& path, const StackOptions& in_options)
    : file(path), layout(find_layout(file)), options(in_options)
{
    describe();
}

void TiffStack::describe()
{
    std::vector<std::uint64_t> sizes = {file.get_width(), file.get_height(), layout.size_z, layout.size_t,
                                        layout.size_c};
    while (sizes.size() > 2 && sizes.back() == 1)
        sizes.pop_back();
    info->create(sizes, file.get_type());
    const std::string stem = std::filesystem::path(file.get_path()).stem().string();
    info->set_name(options.name.value_or(layout.name.empty() ? stem : layout.name));
    info->set_description(layout.description);
    set_labels();
    set_lengths();
}

void TiffStack::set_labels()
{
    std::vector<std::string> labels(axis_names.begin(),
                                    axis_names.begin() + static_cast<std::ptrdiff_t>(info->get_rank()));
    if (options.labels.size() > labels.size())
        throw UsageFailure("--label: the stack has " + std::to_string(labels.size()) + " axes.");
    std::copy(options.labels.begin(), options.labels.end(), labels.begin());
    info->set_labels(labels);
}

void TiffStack::set_lengths()
{
    const std::size_t rank = info->get_rank();
    if (options.lengths.size() > rank)
        throw UsageFailure("--length: the stack has " + std::to_string(rank) + " axes.");
    if (options.units.size() > 1 && options.units.size() != options.lengths.size())
        throw UsageFailure("--unit: one for each length is needed, or one for all.");
    if (!options.units.empty() && options.lengths.empty())
        throw UsageFailure("--unit needs --length.");
    for (std::size_t axis = 0; axis < rank && axis < layout.lengths.size(); ++axis)
    {
        if (layout.lengths[axis])
            set_length(axis, *layout.lengths[axis], usual_unit(axis));
    }
    for (std::size_t axis = 0; axis < options.lengths.size(); ++axis)
    {
        const double number = parse_length(options.lengths[axis]);
        if (options.units.empty())
            set_length(axis, number, usual_unit(axis));
        else
            set_length(axis, number, parse_quantity(options.units[options.units.size() == 1 ? 0 : axis]));
    }
}

/// The library takes lengths for metres and seconds in the OME record; so they are stored in base units. The stack
/// begins at 0.
void TiffStack::set_length(std::size_t axis, double length, const si::value& unit)
{
    const double in_base_units = length * unit.value_in_baseunits();
    if (!std::isfinite(in_base_units))
        throw UsageFailure("--length: a length is too large.");
    info->set_len(axis, in_base_units);
    info->set_off(axis, in_base_units / 2);
    units[axis] = without_number(unit);
}

void TiffStack::add_to(VBFFileInterface& target, Progress& progress)
{
    const boost::shared_ptr<VBFStackInterface> stack = target.add_stack(false);
    stack->create(info, 0);
    for (const auto& [axis, unit] : units)
        stack->set_units(axis, unit);
    for (const auto& [key, text] : split_tags(options.tags))
        stack->set_tag(key, text);
    const std::uint64_t level = options.level.value_or(usual_level);
    stack->set_compression(level == 0 ? 0 : 1, static_cast<int>(level));

    const std::uint64_t count_samples = std::uint64_t{file.get_width()} * file.get_height();
    const std::uint64_t samples_per_pixel = file.get_samples_per_pixel();
    for (std::uint64_t c = 0; c < layout.size_c; ++c)
    {
        for (std::uint64_t t = 0; t < layout.size_t; ++t)
        {
            for (std::uint64_t z = 0; z < layout.size_z; ++z)
            {
                const std::uint64_t place = z + layout.size_z * (t + layout.size_t * (c / samples_per_pixel));
                const std::vector<unsigned char> plane =
                    file.read_plane(layout.pages[place], static_cast<std::uint32_t>(c % samples_per_pixel));
                stack->write(file.get_type(), plane.data(), nullptr, count_samples);
                progress.add(plane.size());
            }
        }
    }
    file.close();
}
