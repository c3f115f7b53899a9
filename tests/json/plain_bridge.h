/// The bridge as it is described, by recursion: what trees of a few levels are held against.
#pragma once

#include "json/WrongTypeError.h"

#include <Json/Value.h>
#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace json_test {

using Json::Value;
using Shape = std::vector<std::size_t>;
__extension__ typedef __int128 WideInteger;

Value plain_get(const VProp& property);
bool plain_set(const Value& value, VProp& property);

inline Shape plain_shape(const VProparrayBase& array)
{
    Shape shape;
    if (array.count() == 1)
        shape.push_back(1);
    else if (array.count() > 1)
        for (const std::size_t size : array.get_size(true))
            if (size != 1)
                shape.push_back(size);
    return shape;
}

inline Shape rest_of(const Shape& shape)
{
    return Shape(shape.begin() + 1, shape.end());
}

template <class T>
Value plain_element(const T& element)
{
    return Value(element);
}
inline Value plain_element(const VPropstring& element)
{
    return Value(element.operator std::string());
}
inline Value plain_element(const VProp& element)
{
    return plain_get(element);
}
inline Value plain_element(const VPropstruct& element)
{
    return plain_get(VProp(element));
}

template <class T, class Iterator>
Value plain_list(const Shape& shape, Iterator& element)
{
    Value::List list;
    for (std::size_t i = 0; !shape.empty() && i < shape[0]; ++i)
    {
        if (shape.size() > 1)
            list.push_back(plain_list<T>(rest_of(shape), element));
        else
            list.push_back(plain_element(static_cast<const T&>(*element++)));
    }
    return Value(list);
}

template <class T>
void convert_number(const Value& value, T& target)
{
    if (value.is_integer() && std::numeric_limits<T>::is_integer)
    {
        const auto wide = static_cast<WideInteger>(*value.if_integer());
        if (wide < static_cast<WideInteger>(std::numeric_limits<T>::min()) ||
            wide > static_cast<WideInteger>(std::numeric_limits<T>::max()))
            throw std::bad_cast();
        target = static_cast<T>(wide);
    }
    else if (value.is_integer())
        target = static_cast<T>(*value.if_integer());
    else if (value.is_decimal() && std::numeric_limits<T>::is_integer)
    {
        if (!(std::fabs(*value.if_decimal()) < 1e30) || std::fmod(*value.if_decimal(), 1) != 0)
            throw std::bad_cast();
        const auto wide = static_cast<WideInteger>(*value.if_decimal());
        if (wide < static_cast<WideInteger>(std::numeric_limits<T>::min()) ||
            wide > static_cast<WideInteger>(std::numeric_limits<T>::max()))
            throw std::bad_cast();
        target = static_cast<T>(wide);
    }
    else if (value.is_decimal())
        target = static_cast<T>(*value.if_decimal());
    else
        throw std::bad_cast();
}

template <class T>
void plain_convert(const Value& value, T& target)
{
    convert_number(value, target);
}
inline void plain_convert(const Value& value, bool& target)
{
    if (!value.is_boolean())
        throw std::bad_cast();
    target = *value.if_boolean();
}
inline void plain_convert(const Value& value, VPropstring& target)
{
    if (!value.is_string())
        throw std::bad_cast();
    target = *value.if_string();
}
inline void plain_convert(const Value& value, VProp& target)
{
    plain_set(value, target);
}
inline void plain_convert(const Value& value, VPropstruct& target)
{
    if (!value.is_object())
        throw std::bad_cast();
    VProp property(target);
    try
    {
        plain_set(value, property);
    }
    catch (...)
    {
        target = property.get<VPropstruct>();
        throw;
    }
    target = property.get<VPropstruct>();
}

template <class T, class Iterator>
void plain_set_list(const Value& value, const Shape& shape, Iterator& element)
{
    if (shape.empty())
        return;
    if (!value.is_list() || value.count() != shape[0])
        throw std::bad_cast();
    for (const Value& inner : *value.if_list())
    {
        if (shape.size() > 1)
        {
            plain_set_list<T>(inner, rest_of(shape), element);
            continue;
        }
        T converted = *element;
        try
        {
            plain_convert(inner, converted);
        }
        catch (...)
        {
            *element = converted;
            throw;
        }
        *element++ = converted;
    }
}

inline bool plain_set_object(const Value::Object& object, VPropstruct& members)
{
    bool result = false;
    for (const auto& [key, value] : object)
    {
        const auto member = members.find(key);
        if (member == members.end())
            throw std::invalid_argument("No property '" + key + "'");
        try
        {
            result = plain_set(value, member->second) && result;
        }
        catch (const std::invalid_argument& error)
        {
            throw std::invalid_argument("Invalid argument for property '" + key + "'\n" + error.what());
        }
    }
    return result;
}

/// What is done with a property of a type: read it into a value, or write a value into it.
struct PlainRead
{
    const VProp& property;
    Value result{};

    template <class T>
    void scalar()
    {
        result = plain_element(property.get<T>());
    }
    template <class T>
    void array()
    {
        auto element = property.get<VProparray<T>>().begin();
        result = plain_list<T>(plain_shape(property.get<VProparray<T>>()), element);
    }
    void structure()
    {
        Value::Object object;
        for (const auto& [key, member] : property.get<VPropstruct>())
            object[key] = plain_get(member);
        result = Value(object);
    }
};

struct PlainWrite
{
    const Value& value;
    VProp& property;
    bool result = false;

    template <class T>
    void scalar()
    {
        T converted{};
        plain_convert(value, converted);
        if (property.get<T>() == converted)
            return;
        property = converted;
        result = true;
    }
    template <class T>
    void array()
    {
        if (!value.is_list())
            throw std::bad_cast();
        auto element = property.get<VProparray<T>>().begin();
        plain_set_list<T>(value, plain_shape(property.get<VProparray<T>>()), element);
    }
    void structure()
    {
        if (!value.is_object())
            throw std::bad_cast();
        result = plain_set_object(*value.if_object(), property.get<VPropstruct>());
    }
};

template <class T, class Action>
bool plain_type(vela_dt id, Action& action)
{
    if (id == VProp::type_id<T>)
        action.template scalar<T>();
    else if (id == VProp::type_id<VProparray<T>>)
        action.template array<T>();
    else
        return false;
    return true;
}

template <class Action>
void plain_dispatch(vela_dt id, Action& action)
{
    if (id == vela_dt_struct)
        action.structure();
    else if (id == VProp::type_id<VProparray<VPropstruct>>)
        action.template array<VPropstruct>();
    else if (id == VProp::type_id<VProparray<VProp>>)
        action.template array<VProp>();
    else if (!plain_type<bool>(id, action) && !plain_type<char>(id, action) && !plain_type<unsigned char>(id, action) &&
             !plain_type<short>(id, action) && !plain_type<unsigned short>(id, action) &&
             !plain_type<int>(id, action) && !plain_type<unsigned int>(id, action) &&
             !plain_type<std::int64_t>(id, action) && !plain_type<std::uint64_t>(id, action) &&
             !plain_type<float>(id, action) && !plain_type<double>(id, action) && !plain_type<VPropstring>(id, action))
        throw Json::WrongTypeError(id);
}

inline Value plain_get(const VProp& property)
{
    PlainRead read{property};
    plain_dispatch(property.get_id(), read);
    return read.result;
}

inline bool plain_set(const Value& value, VProp& property)
{
    PlainWrite write{value, property};
    try
    {
        plain_dispatch(property.get_id(), write);
    }
    catch (const std::bad_cast&)
    {
        throw Json::WrongTypeError(property.get_id());
    }
    return write.result;
}

inline Value plain_merged(const Value& from, Value into)
{
    for (const auto& [key, value] : *from.if_object())
    {
        Value::Object& entries = into.as_object();
        if (entries.find(key) == entries.end())
            entries[key] = value;
        else if (value.is_object() && entries[key].is_object())
            entries[key] = plain_merged(value, entries[key]);
    }
    return into;
}

}
