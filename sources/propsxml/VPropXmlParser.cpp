#include "sources/propsxml/VPropXmlParser.h"

#include "sources/propsxml/MemberIndex.h"

#include "sources/props/value_types.h"

#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt.h>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <optional>

namespace {

constexpr std::size_t promised_beyond_bytes_by_one = 65536;
constexpr std::size_t promised_beyond_bytes = 8388608;
/// Each member that a walk makes moves all others of its struct.
constexpr std::size_t most_paths = 8192;

[[noreturn]] void throw_invalid_size()
{
    throw VelaError("VPropXmlParser::import_xml", __FILE__, __LINE__)("Invalid size set!")(-1);
}

[[noreturn]] void throw_invalid_struct_array()
{
    throw VelaError("VPropXmlParser::import_xml", __FILE__, __LINE__)("Invalid struct array!")(-1);
}

[[noreturn]] void throw_unknown_type(const std::string& type)
{
    throw VelaError("VPropXmlParser::import_xml", __FILE__, __LINE__)("Unknown type '%s' in xml string!",
                                                                      type.c_str())(-1);
}

[[noreturn]] void throw_malformed_complex(const char* function)
{
    throw VelaError(function, __FILE__, __LINE__)("Malformed 'complex' element!")(-1);
}

void set_strict(VProparrayBase& array, const std::vector<std::size_t>& sizes)
{
    array.set_size(sizes, VProparrayBase::set_strict);
}

}

VPropXmlParser::VPropXmlParser(int document_format, int document_version, std::size_t bytes)
    : format(document_format), version(document_version), most_promised_by_one(bytes + promised_beyond_bytes_by_one),
      promises_left(bytes + promised_beyond_bytes), paths_left(most_paths)
{
}

void VPropXmlParser::import_xml(const ticpp::Node& node, VProp& out)
{
    cur_node = node;
    const std::string* const type_attribute = node.attribute("type");
    const std::string type = type_attribute ? *type_attribute : std::string();
    if (type == "complex")
    {
        import_complex(node, out);
        return;
    }
    const Sizes sizes = read_sizes(node);
    auto userbits = attribute_or<std::uint64_t>(node, "userbits", 0);
    vela_dt id = vela_dt_from_name(type.c_str());
    bool is_array = VProparrayBase::size(sizes) != 1 || sizes.size() != 2 || node.attribute("isarr") != nullptr;
    if (id == vela_dt_char)
        is_array = false;
    if (id == vela_dt_cell)
    {
        is_array = true;
        if (attribute_or(node, "isempty", false))
        {
            out = VProp();
            return;
        }
        if (attribute_or<std::int64_t>(node, "ischar", 0) != 0)
            userbits = 1;
        if ((userbits & 1) != 0)
            id = vela_dt_char;
    }
    if (!(is_array ? read_array(node, id, sizes, out) : read_scalar(node, id, sizes, out)))
        throw_unknown_type(type);
    if (is_array)
        out.get_arr(true)->userbits = userbits;
}

VPropXmlParser::Sizes VPropXmlParser::read_sizes(const ticpp::Node& node) const
{
    const std::string* const text = node.attribute("size");
    if (text == nullptr || text->empty())
        return {1, 1};
    std::vector<std::uint64_t> sizes;
    read_elements(*text, sizes);
    if (sizes.empty())
        throw_invalid_size();
    return {sizes.begin(), sizes.end()};
}

/// 0, which is no index, if it cannot be read.
std::uint64_t VPropXmlParser::read_index(const ticpp::Node& node) const
{
    std::uint64_t index = 0;
    const std::string* const text = node.attribute("idx");
    if (text == nullptr)
        return 1;
    read_value(*text, index);
    return index;
}

/// An attribute that cannot be read counts as missing.
template <class T>
T VPropXmlParser::attribute_or(const ticpp::Node& node, const char* name, T value) const
{
    if (const std::string* const text = node.attribute(name))
        read_value(*text, value);
    return value;
}

/// False, without a change, if the id is none of a scalar.
bool VPropXmlParser::read_scalar(const ticpp::Node& node, vela_dt id, const Sizes& sizes, VProp& out)
{
    if (id == vela_dt_char)
    {
        read_string(node, sizes, out.ensure<VPropstring>());
        return true;
    }
    if (id == vela_dt_struct)
    {
        read_members(node, out.ensure<VPropstruct>());
        return true;
    }
    // What cannot be read leaves the number as it was: this is wanted.
    return vela_prop::with_scalar_type(id,
                                       [&]<class T>(vela_prop::Type<T>)
                                       {
                                           T& number = out.ensure<T>();
                                           read_value(node.text(), number);
                                       });
}

/// False, without a change, if the id is none of elements.
bool VPropXmlParser::read_array(const ticpp::Node& node, vela_dt id, const Sizes& sizes, VProp& out)
{
    if (id == vela_dt_struct)
    {
        read_structs(node, sizes, out.ensure_array<VPropstruct>(0));
        return true;
    }
    const auto read_numbers = [&]<class T>(vela_prop::Type<T>)
    {
        VProparray<T>& numbers = out.ensure_array<T>(0);
        const std::string* const text = node.text_or_null();
        const std::size_t most_in_text = text ? text->size() / 2 + 1 : 0;
        numbers.reserve(numbers.size() + std::min(VProparrayBase::size(sizes), most_in_text));
        if (text)
            read_elements(*text, numbers); // and no more: the sizes tell whether all was read
    };
    if (id == vela_dt_char)
        read_strings(node, out.ensure_array<VPropstring>(0));
    else if (id == vela_dt_cell)
        read_cells(node, out.ensure_array<VProp>(0));
    else if (!vela_prop::with_scalar_type(id, read_numbers))
        return false;
    set_strict(*out.get_arr(true), sizes);
    return true;
}

void VPropXmlParser::read_string(const ticpp::Node& node, const Sizes& sizes, VPropstring& string)
{
    const std::string* const text = node.text_or_null();
    string.from(text ? *text : std::string(), VPropstring::enc_utf8);
    const std::size_t length = VProparrayBase::size(sizes);
    if (length <= string.size())
        return;
    believe(length - string.size());
    string.resize(length, L'\0');
}

void VPropXmlParser::read_members(const ticpp::Node& node, VPropstruct& members)
{
    // Room for one more than there will be: otherwise each new member moves all others.
    vela_prop_reserve(members, members.size() + node.count_children() + 1);
    MemberIndex index(members);
    for (ticpp::Node child = node.first_child(); child; child = child.next_sibling())
        import_xml(child, get_member(index, child.name()));
}

/// The member that an element is called after: a path, which nobody writes, if there is a "." in it.
VProp& VPropXmlParser::get_member(MemberIndex& members, const std::string& name)
{
    if (name.find('.') != std::string::npos && paths_left-- == 0)
        throw VelaError("VPropXmlParser::import_xml", __FILE__,
                        __LINE__)("Too many paths for names in xml string!")(-1);
    return members.get(name);
}

void VPropXmlParser::read_strings(const ticpp::Node& node, VProparray<VPropstring>& strings)
{
    for (ticpp::Node child = node.first_child(); child; child = child.next_sibling())
    {
        strings.emplace_back();
        read_string(child, read_sizes(child), strings.back());
    }
}

void VPropXmlParser::read_cells(const ticpp::Node& node, VProparray<VProp>& cells)
{
    vela_prop_reserve(cells, cells.size() + node.count_children());
    for (ticpp::Node child = node.first_child(); child; child = child.next_sibling())
    {
        cells.emplace_back();
        import_xml(child, cells.back());
    }
}

void VPropXmlParser::read_structs(const ticpp::Node& node, const Sizes& sizes, VProparray<VPropstruct>& structs)
{
    const std::size_t count = VProparrayBase::size(sizes);
    const std::size_t count_children = node.count_children();
    if (count == 0 ? count_children != 0 : count_children % count != 0)
        throw_invalid_struct_array();
    if (count_children == 0)
        believe(count);
    const std::size_t count_members = count == 0 ? 0 : count_children / count;
    structs.reserve(structs.size() + count);
    ticpp::Node child = node.first_child();
    std::optional<MemberIndex> first;
    for (std::size_t i = 0; i < count; ++i)
    {
        structs.emplace_back();
        if (!first)
            first.emplace(structs.front());
        child = read_struct(child, i, count_members, *first, structs.back());
    }
    set_strict(structs, sizes);
}

/// Reads the members of the struct `index`, and gives the element behind them.
ticpp::Node VPropXmlParser::read_struct(ticpp::Node child, std::size_t index, std::size_t count_members,
                                        MemberIndex& first, VPropstruct& members)
{
    if (count_members > 0) // otherwise promised structs would take room that nothing fills
        vela_prop_reserve(members, count_members + 1);
    MemberIndex read(members);
    for (std::size_t i = 0; i < count_members; ++i, child = child.next_sibling())
    {
        const std::string name = child.name();
        if (read_index(child) != index + 1)
            throw_invalid_struct_array();
        if (index > 0 && !first.has_key(name))
            throw_invalid_struct_array();
        import_xml(child, get_member(read, name));
    }
    return child;
}

/// Before memory is taken for `promised` entries that the document does not bring.
void VPropXmlParser::believe(std::size_t promised)
{
    if (promised > most_promised_by_one || promised > promises_left)
        throw_invalid_size();
    promises_left -= promised;
}

void VPropXmlParser::import_complex(const ticpp::Node& node, VProp& out)
{
    const ticpp::Node first = node.first_child();
    const ticpp::Node second = first ? first.next_sibling() : first;
    if (!second)
        throw_malformed_complex("VPropXmlParser::import_complex");
    VProp re;
    VProp im;
    import_xml(first, re);
    import_xml(second, im);
    if (re.get_id() != im.get_id())
        throw VelaError("VPropXmlParser::import_complex", __FILE__,
                        __LINE__)("Real and imaginary part have different types in 'complex' element!")(-1);
    const vela_dt id = re.get_id() & ~vela_dt_array;
    const bool is_array = id != re.get_id();
    const bool is_number = vela_prop::with_number_type(id, [&]<class T>(vela_prop::Type<T>)
                                                       { convert_complex<T>(re, im, out, is_array); });
    if (!is_number)
        throw VelaError("VPropXmlParser::import_complex", __FILE__, __LINE__)("Invalid type in 'complex' element!")(-1);
}

template <class T>
void VPropXmlParser::convert_complex(const VProp& re, const VProp& im, VProp& out, bool is_array)
{
    using Complex = std::complex<T>;
    if (!is_array)
    {
        out = Complex(re.get<T>(), im.get<T>());
        return;
    }
    const auto& real = re.get<VProparray<T>>();
    const auto& imaginary = im.get<VProparray<T>>();
    if (real.size() != imaginary.size())
        throw_malformed_complex("VPropXmlParser::convert_complex");
    out = VProparray<Complex>();
    auto& numbers = out.get<VProparray<Complex>>();
    numbers.reserve(real.size());
    for (std::size_t i = 0; i < real.size(); ++i)
        numbers.push_back(Complex(real[i], imaginary[i]));
    set_strict(numbers, real.get_size(true));
}

std::string VPropXmlParser::location() const
{
    if (!cur_node)
        return "<unknown-location>";
    std::string path;
    for (ticpp::Node node = cur_node; node; node = node.parent())
    {
        const std::string name = node.name();
        if (!name.empty() && !path.empty())
            path.insert(0, 1, '.');
        path.insert(0, name);
    }
    return path;
}
