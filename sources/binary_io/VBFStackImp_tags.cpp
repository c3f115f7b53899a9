// Tags: texts under keys. Typed ones are the property XML of their value.
#include "sources/binary_io/VBFStackImp.h"

#include <VelaBase/VelaError.h>
#include <VelaProps/property_xml.h>

#include <complex>

namespace {

/// How values of a type get into a property and out of it.
struct TagType
{
    vela_dt id;
    VProp (*wrap)(const void* value);
    void (*unwrap)(const VProp& prop, void* value);
};

template <class T>
constexpr TagType tag_type(vela_dt id = VProp::type_id<T>)
{
    return {id, [](const void* value) { return VProp(*static_cast<const T*>(value)); },
            [](const VProp& prop, void* value) { *static_cast<T*>(value) = prop.get<T>(); }};
}

constexpr TagType tag_types[] = {
    tag_type<unsigned char>(),
    tag_type<char>(),
    tag_type<unsigned short>(),
    tag_type<short>(),
    tag_type<unsigned int>(),
    tag_type<int>(),
    tag_type<float>(),
    tag_type<double>(),
    tag_type<_s_vela_RGB>(),
    tag_type<unsigned int>(vela_dt_packed_color),
    tag_type<std::uint64_t>(),
    tag_type<std::int64_t>(),
    tag_type<bool>(),
    tag_type<std::complex<unsigned char>>(),
    tag_type<std::complex<char>>(),
    tag_type<std::complex<unsigned short>>(),
    tag_type<std::complex<short>>(),
    tag_type<std::complex<unsigned int>>(),
    tag_type<std::complex<int>>(),
    tag_type<std::complex<float>>(),
    tag_type<std::complex<double>>(),
    tag_type<std::complex<std::uint64_t>>(),
    tag_type<std::complex<std::int64_t>>(),
};

/// The id of a whole property.
constexpr vela_dt tag_of_property = vela_dt_cell;

const TagType& find_type(const char* function, int id)
{
    for (const TagType& type : tag_types)
        if (type.id == id)
            return type;
    throw VelaError(function, __FILE__, __LINE__)("Tag type not supported!");
}

VProp wrapped(int type, const void* value)
{
    if (type == tag_of_property)
        return *static_cast<const VProp*>(value);
    return find_type("VBFStackImp::set_tag", type).wrap(value);
}

} // namespace

std::vector<std::string> VBFStackImp::get_tag_keys() const
{
    std::vector<std::string> keys;
    keys.reserve(tags.size());
    for (const auto& tag : tags)
        keys.push_back(tag.first);
    return keys;
}

void VBFStackImp::set_tag(const std::string& key, int type, const void* value)
{
    std::string text;
    vela_export_xml(text, wrapped(type, value), 2);
    set_tag(key, text);
}

void VBFStackImp::set_tag(const std::string& key, const std::string& text)
{
    tags.insert_or_assign(key, text); // which leaves no key without a text where memory fails
}

std::string VBFStackImp::get_tag(const std::string& key) const
{
    const auto found = tags.find(key);
    if (found == tags.end())
        throw VelaError("VBFStackImp::get_tag", __FILE__, __LINE__)("Tag with key '%s' not found!", key.c_str());
    return found->second;
}

bool VBFStackImp::get_tag(const std::string& key, int type, void* value) const
{
    const auto found = tags.find(key);
    if (found == tags.end())
        return false;
    if (type == tag_of_property)
    {
        vela_import_xml(found->second, *static_cast<VProp*>(value), 0);
        return true;
    }
    VProp prop;
    vela_import_xml(found->second, prop, 0);
    find_type("VBFStackImp::get_tag", type).unwrap(prop, value);
    return true;
}
