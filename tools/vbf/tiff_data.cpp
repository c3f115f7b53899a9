#include "tiff_data.h"

#include "text.h"
#include "tiff_layout.h"
#include "xml_element.h"

#include <array>
#include <limits>
#include <optional>
#include <vector>

namespace {

constexpr std::uint64_t no_page = std::numeric_limits<std::uint64_t>::max();

/// The axes in the order in which pages run through them.
class Walk
{
public:
    Walk(const TiffLayout& layout, const std::string& in_order, std::uint64_t in_samples)
        : order(in_order), samples(in_samples), size_z(layout.size_z), size_t(layout.size_t),
          size_c(layout.size_c / in_samples)
    {
    }

    std::uint64_t get_count() const { return size_z * size_t * size_c; }

    /// The place in `TiffLayout::pages` of the plane with that number in the order of pages.
    std::uint64_t place_of(std::uint64_t number) const
    {
        std::uint64_t z = 0, t = 0, c = 0;
        for (const char axis : order)
        {
            std::uint64_t& index = axis == 'Z' ? z : axis == 'T' ? t : c;
            index = number % size_of(axis);
            number /= size_of(axis);
        }
        return z + size_z * (t + size_t * c);
    }

    /// The number of a plane in the order of pages; nothing where there is no such plane.
    std::optional<std::uint64_t> number_of(std::uint64_t z, std::uint64_t t, std::uint64_t c) const
    {
        if (z >= size_z || t >= size_t || c % samples != 0 || c / samples >= size_c)
            return std::nullopt;
        std::uint64_t number = 0, step = 1;
        for (const char axis : order)
        {
            number += step * (axis == 'Z' ? z : axis == 'T' ? t : c / samples);
            step *= size_of(axis);
        }
        return number;
    }

private:
    std::uint64_t size_of(char axis) const { return axis == 'Z' ? size_z : axis == 'T' ? size_t : size_c; }

    const std::string order;
    const std::uint64_t samples;
    const std::uint64_t size_z;
    const std::uint64_t size_t;
    const std::uint64_t size_c; ///< in pages
};

/// Nothing where the attribute is there and is no number.
std::optional<std::uint64_t> attribute_of(const XmlElement& element, const std::string& name, std::uint64_t missing)
{
    const std::string* const text = element.find_attribute(name);
    if (text == nullptr)
        return missing;
    return number_in(*text);
}

bool is_in_this_file(const XmlElement& tiff_data, const std::string& uuid)
{
    const XmlElement* const named = tiff_data.find_child("UUID");
    return named == nullptr || named->text == uuid;
}

/// Gives the planes of one element their pages.
bool place(const XmlElement& tiff_data, const Walk& walk, std::vector<std::uint64_t>& pages)
{
    const bool names_page = tiff_data.find_attribute("IFD") != nullptr;
    const auto page = attribute_of(tiff_data, "IFD", 0);
    const auto count = attribute_of(tiff_data, "PlaneCount", names_page ? 1 : pages.size());
    const auto z = attribute_of(tiff_data, "FirstZ", 0);
    const auto t = attribute_of(tiff_data, "FirstT", 0);
    const auto c = attribute_of(tiff_data, "FirstC", 0);
    if (!page || !count || !z || !t || !c)
        return false;
    const auto first = walk.number_of(*z, *t, *c);
    if (!first || *count > pages.size() - *first || *page >= pages.size() || *count > pages.size() - *page)
        return false;
    for (std::uint64_t i = 0; i < *count; ++i)
    {
        std::uint64_t& target = pages[walk.place_of(*first + i)];
        if (target != no_page)
            return false;
        target = *page + i;
    }
    return true;
}

/// Every page once.
bool is_whole(const std::vector<std::uint64_t>& pages)
{
    std::vector<bool> seen(pages.size());
    for (const std::uint64_t page : pages)
    {
        if (page == no_page || seen[page])
            return false;
        seen[page] = true;
    }
    return true;
}

} // namespace

void set_pages(TiffLayout& layout, const std::string& order, std::uint64_t samples_per_pixel)
{
    const Walk walk(layout, order, samples_per_pixel);
    layout.pages.resize(walk.get_count());
    for (std::uint64_t page = 0; page < layout.pages.size(); ++page)
        layout.pages[walk.place_of(page)] = page;
}

bool set_pages(TiffLayout& layout, const std::string& order, std::uint64_t samples_per_pixel, const XmlElement& pixels,
               const std::string& uuid)
{
    set_pages(layout, order, samples_per_pixel);
    if (pixels.find_child("TiffData") == nullptr)
        return true;
    const Walk walk(layout, order, samples_per_pixel);
    layout.pages.assign(walk.get_count(), no_page);
    for (const XmlElement& child : pixels.children)
    {
        if (child.name == "TiffData" && !(is_in_this_file(child, uuid) && place(child, walk, layout.pages)))
            return false;
    }
    return is_whole(layout.pages);
}
