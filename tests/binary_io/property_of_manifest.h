/// Compares a property tree with what a manifest says of it.
#pragma once

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include "binary_io/manifest.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <type_traits>

namespace vela_test {

/// Equal, or both no number.
inline bool same_number(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

template <class T>
bool is_element(const T& value, const nlohmann::json& expected)
{
    if constexpr (std::is_floating_point_v<T>)
        return same_number(static_cast<double>(value), number_of(expected));
    else
        return value == expected.get<T>();
}

inline bool is_element(const bool& value, const nlohmann::json& expected)
{
    return value == (expected.get<int>() != 0);
}

inline bool is_element(const char& value, const nlohmann::json& expected)
{
    return value == expected.get<int>();
}

inline bool is_element(const VPropstring& value, const nlohmann::json& expected)
{
    return value.to(VPropstring::enc_utf8) == text_of(expected);
}

template <class T>
bool is_element(const std::complex<T>& value, const nlohmann::json& expected)
{
    return is_element(value.real(), expected.at(0)) && is_element(value.imag(), expected.at(1));
}

bool is_property(const VProp& prop, const nlohmann::json& expected);

inline bool is_element(const VProp& value, const nlohmann::json& expected)
{
    return is_property(value, expected);
}

/// The members in their order.
inline bool is_element(const VPropstruct& value, const nlohmann::json& expected)
{
    if (value.size() != expected.size())
        return false;
    std::size_t i = 0;
    for (const auto& [key, member] : value)
    {
        const nlohmann::json& pair = expected[i++];
        if (key != text_of(pair.at(0)) || !is_property(member, pair.at(1)))
            return false;
    }
    return true;
}

template <class T>
bool is_value(const VProp& prop, const nlohmann::json& expected)
{
    if (expected.contains("value"))
        return prop.get_id() == VProp::type_id<T> && is_element(prop.get<T>(), expected.at("value"));
    if (prop.get_id() != VProp::type_id<VProparray<T>>)
        return false;
    const VProparray<T>& array = prop.get<VProparray<T>>();
    const nlohmann::json& values = expected.at("values");
    if (array.count() != values.size() || array.get_size(true) != expected.at("size").get<std::vector<std::size_t>>() ||
        array.userbits != expected.value("userbits", std::uint64_t(0)))
        return false;
    for (std::size_t i = 0; i < values.size(); ++i)
        if (!is_element(static_cast<const T&>(array[i]), values[i]))
            return false;
    return true;
}

template <class T>
bool is_number(const std::string& type, const std::string& name, const VProp& prop, const nlohmann::json& expected)
{
    return (type == name && is_value<T>(prop, expected)) ||
           (type == "cplx_" + name && is_value<std::complex<T>>(prop, expected));
}

inline bool is_cell_array(const VProp& prop, const nlohmann::json& expected)
{
    if (prop.get_id() != (vela_dt_cell | vela_dt_array))
        return false;
    const auto& array = prop.get<VProparray<VProp>>();
    const nlohmann::json& values = expected.at("values");
    if (array.count() != values.size() || array.get_size(true) != expected.at("size").get<std::vector<std::size_t>>())
        return false;
    for (std::size_t i = 0; i < values.size(); ++i)
        if (!is_property(array[i], values[i]))
            return false;
    return true;
}

/// The value has the type, the shape, the flags and the content that the manifest names.
inline bool is_property(const VProp& prop, const nlohmann::json& expected)
{
    const std::string type = expected.at("type").get<std::string>();
    if (type == "none")
        return prop.empty();
    if (type == "logical")
        return is_value<bool>(prop, expected);
    if (type == "char")
        return is_value<VPropstring>(prop, expected);
    if (type == "struct")
        return is_value<VPropstruct>(prop, expected);
    if (type == "cell")
        return is_cell_array(prop, expected);
    return is_number<std::uint8_t>(type, "uint8", prop, expected) || is_number<char>(type, "int8", prop, expected) ||
           is_number<std::uint16_t>(type, "uint16", prop, expected) ||
           is_number<std::int16_t>(type, "int16", prop, expected) ||
           is_number<std::uint32_t>(type, "uint32", prop, expected) ||
           is_number<std::int32_t>(type, "int32", prop, expected) ||
           is_number<std::uint64_t>(type, "uint64", prop, expected) ||
           is_number<std::int64_t>(type, "int64", prop, expected) || is_number<float>(type, "single", prop, expected) ||
           is_number<double>(type, "double", prop, expected);
}

} // namespace vela_test
