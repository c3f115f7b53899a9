#include "sources/propsxml/VPropValueCodec.h"

#include "sources/props/value_types.h"

namespace {

void append(std::string& text, const VPropstring& string)
{
    text += string.to(VPropstring::enc_utf8);
}

template <class T>
void append(std::string& text, const T& number)
{
    vela_prop::append_number(text, number);
}

template <class Elements>
void append_elements(std::string& text, const Elements& elements, const std::string& separator)
{
    for (std::size_t i = 0; i < elements.size(); ++i)
    {
        if (i != 0)
            text += separator;
        append(text, static_cast<const typename Elements::value_type&>(elements[i]));
    }
}

}

bool VPropValueCodec::append_value(std::string& text, const VProp& prop) const
{
    using vela_prop::Type;
    const vela_dt id = prop.get_id();
    const auto append_one = [&]<class T>(Type<T>) { append(text, prop.get<T>()); };
    const auto append_all = [&]<class T>(Type<T>) { append_elements(text, prop.get<VProparray<T>>(), separator); };
    if ((id & vela_dt_array) == 0)
        return vela_prop::with_scalar_type(id, append_one) || vela_prop::with_type_of<VPropstring>(id, append_one);
    const vela_dt element = id & ~vela_dt_array;
    return vela_prop::with_scalar_type(element, append_all) ||
           vela_prop::with_type_of<VPropstring>(element, append_all);
}
