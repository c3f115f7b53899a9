#include <VelaBase/vela_dt.h>

#include <VelaBase/VTypemap.h>
#include <VelaProps/VProp.h>
#include <VelaProps/VPropstring.h>
#include <VelaProps/VPropstruct.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>

namespace {

/// Carries the element type of an id to a visitor; void where there is none.
template <class Element>
struct Tag
{
};

/// Calls `visit` with the tag of the element type of `id`, without the array flag.
template <class Visitor>
auto visit_element(vela_dt id, Visitor visit)
{
    switch (id)
    {
    case vela_dt_uint8:
        return visit(Tag<std::uint8_t>());
    case vela_dt_int8:
        return visit(Tag<char>());
    case vela_dt_uint16:
        return visit(Tag<std::uint16_t>());
    case vela_dt_int16:
        return visit(Tag<std::int16_t>());
    case vela_dt_uint32:
    case vela_dt_packed_color:
        return visit(Tag<std::uint32_t>());
    case vela_dt_int32:
        return visit(Tag<std::int32_t>());
    case vela_dt_single:
        return visit(Tag<float>());
    case vela_dt_double:
        return visit(Tag<double>());
    case vela_dt_uint64:
        return visit(Tag<std::uint64_t>());
    case vela_dt_int64:
        return visit(Tag<std::int64_t>());
    case vela_dt_rgb:
        return visit(Tag<_s_vela_RGB>());
    case vela_dt_logical:
        return visit(Tag<bool>());
    default:
        return visit(Tag<void>());
    }
}

template <class Scalar>
constexpr bool has_complex_form =
    !std::is_same_v<Scalar, void> && !std::is_same_v<Scalar, bool> && !std::is_same_v<Scalar, _s_vela_RGB>;

constexpr bool is_color(vela_dt id)
{
    return id == vela_dt_rgb || id == vela_dt_packed_color;
}

void fill_names(VTypemap<std::string>& names)
{
    const auto add_both = [&names](vela_dt id, const std::string& name)
    {
        names.add(id, name);
        names.add(id | vela_dt_complex, "cplx_" + name);
    };
    add_both(vela_dt_logical, "logical"); // "cplx_logical" has a name and nothing else; this is wanted
    add_both(vela_dt_uint8, "uint8");
    add_both(vela_dt_uint16, "uint16");
    add_both(vela_dt_uint32, "uint32");
    add_both(vela_dt_uint64, "uint64");
    add_both(vela_dt_int8, "int8");
    add_both(vela_dt_int16, "int16");
    add_both(vela_dt_int32, "int32");
    add_both(vela_dt_int64, "int64");
    add_both(vela_dt_single, "single");
    add_both(vela_dt_double, "double");
    names.add(vela_dt_cell, "cell");
    names.add(vela_dt_struct, "struct");
    names.add(vela_dt_char, "char");
    names.add(vela_dt_none, "none");
}

/// Array ids share the names of their elements.
constexpr std::uint32_t without_array_flag = 0x7fffffff;

const VTypemap<std::string> type_names(without_array_flag, fill_names);

} // namespace

static_assert(std::is_signed_v<char>, "\"int8\" is char");

std::uint64_t vela_dt_get_size(std::uint32_t id)
{
    const auto signed_id = static_cast<vela_dt>(id);
    const bool is_complex = (signed_id & vela_dt_complex) != 0;
    const vela_dt scalar_id = signed_id & ~vela_dt_complex;
    if (is_complex && is_color(scalar_id))
        return 0;
    return visit_element(scalar_id,
                         [is_complex]<class Element>(Tag<Element>) -> std::uint64_t
                         {
                             if constexpr (std::is_same_v<Element, void>)
                                 return 0;
                             else if (is_complex)
                                 return has_complex_form<Element> ? 2 * sizeof(Element) : 0;
                             else
                                 return sizeof(Element);
                         });
}

namespace {

/// The type of one element, or of an array of them.
template <class Element>
const std::type_info* identity(bool is_array)
{
    return is_array ? &typeid(VProparray<Element>) : &typeid(Element);
}

template <>
const std::type_info* identity<void>(bool)
{
    return &typeid(void);
}

}

const std::type_info& vela_dt_get_type(vela_dt id)
{
    const bool is_array = (id & vela_dt_array) != 0;
    const bool is_complex = (id & vela_dt_complex) != 0;
    const vela_dt element_id = id & ~vela_dt_array;
    const vela_dt scalar_id = element_id & ~vela_dt_complex;
    switch (element_id)
    {
    case vela_dt_cell:
        return *identity<VProp>(is_array);
    case vela_dt_struct:
        return *identity<VPropstruct>(is_array);
    case vela_dt_char:
        return *identity<VPropstring>(is_array);
    default:
        break;
    }
    if (is_complex && is_color(scalar_id))
        return typeid(void);
    return *visit_element(scalar_id,
                          [=]<class Element>(Tag<Element>)
                          {
                              if (!is_complex)
                                  return identity<Element>(is_array);
                              if constexpr (has_complex_form<Element>)
                                  return identity<std::complex<Element>>(is_array);
                              else
                                  return identity<void>(is_array);
                          });
}

const char* vela_dt_get_name(vela_dt id)
{
    return type_names.get(id).c_str();
}

vela_dt vela_dt_from_name(const char* name)
{
    // No name is longer than this; a longer one would take memory to look up, and that may fail.
    constexpr std::size_t longest_name = std::string_view("cplx_logical").size();
    if (name == nullptr || strnlen(name, longest_name + 1) > longest_name)
        return vela_dt_none;
    return type_names.get_key(name);
}
