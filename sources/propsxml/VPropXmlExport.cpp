#include "sources/propsxml/VPropXmlExport.h"

#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt.h>

#include <cstdint>
#include <utility>

namespace {

using Sizes = std::vector<std::size_t>;

std::string text_of(std::uint64_t number)
{
    std::string text;
    vela_prop::append_number(text, number);
    return text;
}

std::string text_of(const Sizes& sizes)
{
    std::string text;
    for (const std::size_t size : sizes)
    {
        if (!text.empty())
            text += ' ';
        vela_prop::append_number(text, std::uint64_t{size});
    }
    return text;
}

Sizes size_of(const VPropstring& text)
{
    return VProparrayBase::val2size(text.size());
}

enum class Kind
{
    empty,
    number,
    numbers,
    string,
    strings,
    container, ///< a struct, a struct array or a cell array
};

Kind kind_of(vela_dt id)
{
    switch (id)
    {
    case vela_dt_none:
        return Kind::empty;
    case vela_dt_char:
        return Kind::string;
    case vela_dt_char | vela_dt_array:
        return Kind::strings;
    case vela_dt_struct:
    case vela_dt_struct | vela_dt_array:
    case vela_dt_cell | vela_dt_array:
        return Kind::container;
    case vela_dt_rgb:
        throw VelaError("VPropXmlExport::visit", __FILE__,
                        __LINE__)("Type unknown or incompatible with xml export!")(-1);
    default:
        return (id & vela_dt_array) == 0 ? Kind::number : Kind::numbers;
    }
}

}

VPropXmlExport::VPropXmlExport(int wanted_format, int schema_version) : format(wanted_format), version(schema_version)
{
}

ticpp::Element& VPropXmlExport::get_top()
{
    if (elements.size() != 1)
        throw VelaError("VPropXmlExport::get_top", __FILE__, __LINE__)("Internal error!")(-1);
    return elements.front();
}

int VPropXmlExport::visit(const VProp& prop)
{
    const vela_dt id = prop.get_id();
    const Kind kind = kind_of(id);
    check_depth();
    ticpp::Element element = make_element();
    Sizes sizes{1, 1};
    if (kind == Kind::empty)
        sizes = {0, 0};
    else if (kind == Kind::string)
        sizes = size_of(prop.get<VPropstring>());
    VProparrayBase* const array = prop.get_arr(false);
    if (array)
    {
        sizes = array->get_size(true);
        if (kind == Kind::strings)
            array->userbits |= 1; // in the array itself: that is how readers and writers know it for one of strings
    }
    if (kind == Kind::number || kind == Kind::numbers || kind == Kind::string)
        set_text_of(element, prop);

    if (kind == Kind::empty)
        element.set_attribute("isempty", "1");
    if (kind == Kind::numbers && VProparrayBase::size(sizes) == 1)
        element.set_attribute("isarr", "1");
    if (array)
        element.set_attribute("userbits", text_of(array->userbits));
    const bool is_cell = kind == Kind::empty || kind == Kind::strings;
    element.set_attribute("type", vela_dt_get_name(is_cell ? vela_dt_cell : id));
    element.set_attribute("size", text_of(sizes));
    elements.push_back(std::move(element));
    return 1;
}

bool VPropXmlExport::visit(const VPropstring& text)
{
    check_depth();
    ticpp::Element element("item");
    element.set_text(text.to(VPropstring::enc_utf8));
    element.set_attribute("idx", text_of(std::uint64_t{string_idx})); // from 0, unlike all others
    element.set_attribute("type", "char");
    element.set_attribute("size", text_of(size_of(text)));
    elements.back().link_end_child(std::move(element));
    return true;
}

bool VPropXmlExport::visit_exit(const VProp& /*prop*/)
{
    if (elements.size() < 2)
        return true;
    ticpp::Element child = std::move(elements.back());
    elements.pop_back();
    elements.back().link_end_child(std::move(child));
    return true;
}

/// With its name and its place.
ticpp::Element VPropXmlExport::make_element() const
{
    ticpp::Element element;
    std::uint64_t index = 0;
    if (!containers.empty())
    {
        const std::string key = get_cur_key();
        element.set_name(key.empty() ? "item" : key);
        if (get_cur_idx() != no_index)
            index = get_cur_idx();
    }
    element.set_attribute("idx", text_of(index + 1));
    return element;
}

/// Before one more element is opened.
void VPropXmlExport::check_depth() const
{
    const std::size_t wrappers = format == 1 ? 1 : 0;
    if (elements.size() + wrappers >= ticpp::deepest_level)
        throw VelaError("VPropXmlExport::visit", __FILE__,
                        __LINE__)("Property tree nested deeper than 512 levels!")(-1);
}

void VPropXmlExport::set_text_of(ticpp::Element& element, const VProp& prop) const
{
    std::string text;
    codec.append_value(text, prop);
    element.set_text(text);
}
