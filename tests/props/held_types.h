/// The types that a `VProp` holds: their ids and names, written out once more, and two different values of each.
#pragma once

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <string>
#include <vector>

namespace prop_test {

template <class... Elements>
struct With
{
    using ArraysOfThem = testing::Types<Elements..., VProp>;
    using AllHeld = testing::Types<Elements..., VProparray<Elements>..., _s_vela_RGB, VProparray<VProp>>;
    static constexpr std::size_t count_held = 2 * sizeof...(Elements) + 2;
};

using Lists =
    With<unsigned char, char, unsigned short, short, unsigned int, int, float, double, std::uint64_t, std::int64_t,
         bool, std::complex<unsigned char>, std::complex<char>, std::complex<unsigned short>, std::complex<short>,
         std::complex<unsigned int>, std::complex<int>, std::complex<float>, std::complex<double>,
         std::complex<std::uint64_t>, std::complex<std::int64_t>, VPropstring, VPropstruct>;

/// The types of which there are arrays.
using ElementTypes = Lists::ArraysOfThem;
/// All that a `VProp` holds.
using HeldTypes = Lists::AllHeld;
static_assert(Lists::count_held == 48);

template <std::uint32_t number>
struct Id
{
    static constexpr std::uint32_t id = number;
};

template <class T>
struct Held;
template <>
struct Held<unsigned char> : Id<0x00001>
{
    static std::string name() { return "uint8"; }
};
template <>
struct Held<char> : Id<0x00002>
{
    static std::string name() { return "int8"; }
};
template <>
struct Held<unsigned short> : Id<0x00004>
{
    static std::string name() { return "uint16"; }
};
template <>
struct Held<short> : Id<0x00008>
{
    static std::string name() { return "int16"; }
};
template <>
struct Held<unsigned int> : Id<0x00010>
{
    static std::string name() { return "uint32"; }
};
template <>
struct Held<int> : Id<0x00020>
{
    static std::string name() { return "int32"; }
};
template <>
struct Held<float> : Id<0x00040>
{
    static std::string name() { return "single"; }
};
template <>
struct Held<double> : Id<0x00080>
{
    static std::string name() { return "double"; }
};
template <>
struct Held<_s_vela_RGB> : Id<0x00400>
{
    static std::string name() { return "none"; }
};
template <>
struct Held<std::uint64_t> : Id<0x01000>
{
    static std::string name() { return "uint64"; }
};
template <>
struct Held<std::int64_t> : Id<0x02000>
{
    static std::string name() { return "int64"; }
};
template <>
struct Held<VPropstruct> : Id<0x08000>
{
    static std::string name() { return "struct"; }
};
template <>
struct Held<bool> : Id<0x10000>
{
    static std::string name() { return "logical"; }
};
template <>
struct Held<VPropstring> : Id<0x20000>
{
    static std::string name() { return "char"; }
};
template <class T>
struct Held<std::complex<T>> : Id<Held<T>::id | 0x40000000>
{
    static std::string name() { return "cplx_" + Held<T>::name(); }
};
template <class T>
struct Held<VProparray<T>> : Id<Held<T>::id | 0x80000000>
{
    static std::string name() { return Held<T>::name() + "[]"; }
};
template <>
struct Held<VProparray<VProp>> : Id<0x80004000>
{
    static std::string name() { return "cell[]"; }
};

/// `one()` and `other()` differ from each other and from the default.
template <class T>
struct Sample
{
    static T one() { return static_cast<T>(65); }
    static T other() { return static_cast<T>(66); }
};
template <>
struct Sample<bool>
{
    static bool one() { return true; }
    static bool other() { return false; } // the only other one there is
};
template <>
struct Sample<_s_vela_RGB>
{
    static _s_vela_RGB one() { return {1, 2, 3}; }
    static _s_vela_RGB other() { return {1, 2, 4}; }
};
template <class T>
struct Sample<std::complex<T>>
{
    static std::complex<T> one() { return {static_cast<T>(65), static_cast<T>(1)}; }
    static std::complex<T> other() { return {static_cast<T>(65), static_cast<T>(2)}; }
};
template <>
struct Sample<VPropstring>
{
    static VPropstring one() { return L"one"; }
    static VPropstring other() { return L"other"; }
};
template <>
struct Sample<VProp>
{
    static VProp one() { return VProp(1.5); }
    static VProp other() { return VProp(L"other"); }
};
template <>
struct Sample<VPropstruct>
{
    static VPropstruct with(int number)
    {
        VPropstruct made;
        made.emplace_back("name", VProp(number));
        return made;
    }
    static VPropstruct one() { return with(1); }
    static VPropstruct other() { return with(2); }
};
template <class T>
struct Sample<VProparray<T>>
{
    static VProparray<T> one()
    {
        VProparray<T> made;
        made.push_back(Sample<T>::one());
        made.push_back(Sample<T>::other());
        return made;
    }
    static VProparray<T> other()
    {
        VProparray<T> made;
        made.push_back(Sample<T>::one());
        made.push_back(Sample<T>::one());
        return made;
    }
};

/// Equality without that of `VProp`, as far as it goes.
template <class T>
bool same(const T& a, const T& b)
{
    return a == b;
}
inline bool same(const VPropstruct& a, const VPropstruct& b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a.at(i).first != b.at(i).first || !(a.at(i).second == b.at(i).second))
            return false;
    return true;
}
template <class T>
bool same(const VProparray<T>& a, const VProparray<T>& b)
{
    if (a.count() != b.count())
        return false;
    for (std::size_t i = 0; i < a.count(); ++i)
        if (!same(static_cast<T>(a[i]), static_cast<T>(b[i])))
            return false;
    return true;
}

/// A value with the name of its type as messages print it.
struct NamedValue
{
    std::string name;
    std::uint32_t id;
    VProp value;
};

template <class... T>
std::vector<NamedValue> one_of_each(testing::Types<T...>)
{
    std::vector<NamedValue> values;
    (values.push_back({Held<T>::name(), Held<T>::id, VProp(Sample<T>::one())}), ...);
    return values;
}

/// A value of each type, and the empty one.
inline std::vector<NamedValue> one_of_each()
{
    std::vector<NamedValue> values = one_of_each(HeldTypes());
    values.push_back({"none", 0, VProp()});
    return values;
}

}
