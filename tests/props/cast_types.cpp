#include "props/cast_types.h"

#include <complex>
#include <limits>

namespace cast_test {

namespace {

template <class T>
Parts parts_of(const T& number)
{
    if constexpr (std::is_arithmetic_v<T>)
        return {bits_of(number), 0};
    else
        return {bits_of(number.real()), bits_of(number.imag())};
}

template <class T>
Number number_of(T number)
{
    if constexpr (std::is_floating_point_v<T>)
        return {true, true, static_cast<double>(number), 0};
    else if constexpr (std::is_signed_v<T>)
        return {false, true, 0, static_cast<std::uint64_t>(static_cast<std::int64_t>(number))};
    else
        return {false, false, 0, static_cast<std::uint64_t>(number)};
}

/// Small ones, the limits, those around every power of two, and fractions, infinities and NaN.
template <class T>
std::vector<T> numbers()
{
    if constexpr (std::is_same_v<T, bool>)
        return {false, true};
    std::vector<T> made;
    if constexpr (std::is_floating_point_v<T>)
    {
        using limits = std::numeric_limits<T>;
        made = {0,
                T(-0.0),
                limits::infinity(),
                -limits::infinity(),
                limits::quiet_NaN(),
                limits::max(),
                limits::lowest(),
                limits::min(),
                limits::denorm_min(),
                T(3.9),
                T(-3.9),
                T(0.5),
                T(-0.5),
                T(300),
                T(1e10),
                T(-1e10),
                T(1e19),
                T(1.8446744073709549e19),
                T(1e38)};
        for (const int power : {7, 8, 15, 16, 23, 24, 31, 32, 53, 62, 63, 64, 65, 100})
        {
            const T number = std::ldexp(T(1), power);
            for (const T near : {number, std::nextafter(number, T(0)), std::nextafter(number, limits::infinity()),
                                 number - T(0.5), number + T(0.5), number + 1, number * T(1.37)})
            {
                made.push_back(near);
                made.push_back(-near);
            }
        }
    }
    else
    {
        for (const int power : {0, 1, 6, 7, 8, 15, 16, 23, 24, 25, 31, 32, 52, 53, 54, 62, 63})
        {
            const std::uint64_t number = std::uint64_t(1) << power;
            for (const std::uint64_t near : {number, number - 1, number + 1, 0 - number, number + 44, number * 3 + 5,
                                             number + 0x401, number | 0x5555555555555555})
                made.push_back(static_cast<T>(near));
        }
    }
    return made;
}

/// The number of this place; the imaginary part comes from the other end.
template <class T>
T number_at(std::size_t place)
{
    if constexpr (std::is_arithmetic_v<T>)
    {
        static const std::vector<T> all = numbers<T>();
        return all[place % all.size()];
    }
    else
    {
        using Part = typename T::value_type;
        static const std::vector<Part> all = numbers<Part>();
        return T(all[place % all.size()], all[all.size() - 1 - place % all.size()]);
    }
}

template <class T>
std::vector<Parts> elements_of(const void* target)
{
    std::vector<Parts> read;
    for (const T& element : *static_cast<const VProparray<T>*>(target))
        read.push_back(parts_of<T>(element));
    return read;
}

template <class T>
Type target_type(vela_dt id, const char* name)
{
    Type type{};
    type.id = id;
    type.name = name;
    type.size_bytes = sizeof(T);
    type.read = [](const void* scalar) { return parts_of(*static_cast<const T*>(scalar)); };
    type.make_target = [](std::size_t count) -> std::shared_ptr<void>
    {
        auto array = std::make_shared<VProparray<T>>();
        array->set_size(1, count, VProparrayBase::absent, VProparrayBase::absent, VProparrayBase::set_reset);
        array->userbits = 6;
        return array;
    };
    type.shape = [](void* target) -> VProparrayBase* { return static_cast<VProparray<T>*>(target); };
    type.elements = elements_of<T>;
    return type;
}

template <class T>
Type both_ways(vela_dt id, const char* name)
{
    Type type = target_type<T>(id, name);
    using Part = std::remove_const_t<decltype(std::real(T()))>;
    if constexpr (std::is_arithmetic_v<T>)
    {
        for (const auto number : numbers<T>())
            type.reals.push_back(number_of<T>(number));
    }
    else
    {
        const std::vector<Part> all = numbers<Part>();
        for (std::size_t i = 0; i < all.size(); ++i)
        {
            type.reals.push_back(number_of<Part>(all[i]));
            type.imaginaries.push_back(number_of<Part>(all[all.size() - 1 - i]));
        }
    }
    type.scalar = [](std::size_t number) { return VProp(number_at<T>(number)); };
    type.array = [](const std::vector<std::size_t>& sizes, std::size_t count)
    {
        VProparray<T> array;
        for (std::size_t i = 0; i < count; ++i)
            array.push_back(number_at<T>(i));
        array.userbits = 1;
        array.set_size(sizes, VProparrayBase::set_only);
        return VProp(array);
    };
    return type;
}

}

const std::vector<Type>& real_types()
{
    static const std::vector<Type> types{
        both_ways<unsigned char>(0x1, "uint8"),     both_ways<char>(0x2, "int8"),
        both_ways<unsigned short>(0x4, "uint16"),   both_ways<short>(0x8, "int16"),
        both_ways<unsigned int>(0x10, "uint32"),    both_ways<int>(0x20, "int32"),
        both_ways<std::uint64_t>(0x1000, "uint64"), both_ways<std::int64_t>(0x2000, "int64"),
        both_ways<float>(0x40, "single"),           both_ways<double>(0x80, "double"),
        both_ways<bool>(0x10000, "logical")};
    return types;
}

const std::vector<Type>& complex_types()
{
    constexpr vela_dt complex = 0x40000000;
    static const std::vector<Type> types{both_ways<std::complex<unsigned char>>(complex | 0x1, "cplx_uint8"),
                                         both_ways<std::complex<char>>(complex | 0x2, "cplx_int8"),
                                         both_ways<std::complex<unsigned short>>(complex | 0x4, "cplx_uint16"),
                                         both_ways<std::complex<short>>(complex | 0x8, "cplx_int16"),
                                         both_ways<std::complex<unsigned int>>(complex | 0x10, "cplx_uint32"),
                                         both_ways<std::complex<int>>(complex | 0x20, "cplx_int32"),
                                         both_ways<std::complex<std::uint64_t>>(complex | 0x1000, "cplx_uint64"),
                                         both_ways<std::complex<std::int64_t>>(complex | 0x2000, "cplx_int64"),
                                         both_ways<std::complex<float>>(complex | 0x40, "cplx_single"),
                                         both_ways<std::complex<double>>(complex | 0x80, "cplx_double"),
                                         target_type<std::complex<bool>>(complex | 0x10000, "cplx_logical")};
    return types;
}

}
