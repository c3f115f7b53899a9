/// Random property trees that XML text carries without a change: see tree_roundtrip_test.cpp for what it changes.
#pragma once

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace xml_test {

class RandomTree
{
public:
    explicit RandomTree(std::uint32_t seed) : random(seed) {}

    /// A number below `bound`.
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random() % bound); }

    /// Any pattern of bits that is finite, often one with few digits.
    template <class T>
    T number()
    {
        if constexpr (std::is_same_v<T, bool>)
            return below(2) == 1;
        else if (below(3) == 0)
            return static_cast<T>(below(5));
        const std::uint64_t bits = random();
        T value;
        std::memcpy(&value, &bits, sizeof value);
        if constexpr (std::is_floating_point_v<T>)
            return value - value == T(0) || value != value ? (value == value ? value : T(-0.5)) : value;
        else
            return value;
    }

    template <class T>
    void fill(T& value)
    {
        value = number<T>();
    }
    template <class T>
    void fill(std::complex<T>& value)
    {
        const T real = number<T>();
        value = std::complex<T>(real, number<T>());
    }
    void fill(VPropstring& value) { value = text(); }

    /// Code points of all lengths in UTF-8, markup, blanks and control characters; never nothing but
    /// blanks and marks of the byte order.
    std::wstring text()
    {
        static const wchar_t special[] = L"<>&\"';#x \t\n\r]![-/=%\x01\x1f\x7f\x85\xa0\xfeff\xfffd\xffff";
        const std::size_t length = below(12);
        std::wstring made;
        for (std::size_t i = 0; i < length; ++i)
            switch (below(6))
            {
            case 0:
                made += special[below(std::size(special) - 1)];
                break;
            case 1:
                made += static_cast<wchar_t>(0xa1 + below(0x700));
                break;
            case 2:
                made += static_cast<wchar_t>(0x800 + below(0xd000));
                break;
            case 3:
                made += static_cast<wchar_t>(0x10000 + below(0x100000));
                break;
            default:
                made += static_cast<wchar_t>(L'!' + static_cast<wchar_t>(below(94)));
            }
        const bool is_blank = made.find_first_not_of(L" \t\n\r\v\f\xfeff\xfffe\xffff") == std::wstring::npos;
        return is_blank && !made.empty() ? made + L"." : made;
    }

    std::string key()
    {
        static const char first[] = "abcXYZ_";
        static const char further[] = "abcXYZ_019-";
        std::string made(1, first[below(sizeof first - 1)]);
        for (std::size_t more = below(6); more > 0; --more)
            made += further[below(sizeof further - 1)];
        return made;
    }

    /// Sizes of rank 1 to 4, or none, which is left to the array.
    std::vector<std::size_t> sizes()
    {
        std::vector<std::size_t> made(below(5));
        for (std::size_t& size : made)
            size = below(8) == 0 ? 0 : 1 + below(3);
        return made;
    }

    VProp tree(std::size_t depth)
    {
        VProp value;
        const std::size_t containers = depth == 0 ? 0 : 4;
        switch (below(4 + containers))
        {
        case 0:
            make_number(value, below(21), false);
            break;
        case 1:
            make_number(value, below(21), true);
            break;
        case 2:
            value = text();
            break;
        case 3:
            if (below(2) == 0)
                make_array<VPropstring>(value);
            break;
        case 4:
        case 5:
            make_struct(value.ensure<VPropstruct>(), depth);
            break;
        case 6:
            make_cells(value, depth);
            break;
        default:
            make_structs(value, depth);
        }
        return value;
    }

    /// A number, or an array of numbers, of type 0 to 20.
    void make_number(VProp& value, std::size_t type, bool array)
    {
        make_one_of<unsigned char, char, unsigned short, short, unsigned int, int, float, double, std::uint64_t,
                    std::int64_t, std::complex<unsigned char>, std::complex<char>, std::complex<unsigned short>,
                    std::complex<short>, std::complex<unsigned int>, std::complex<int>, std::complex<float>,
                    std::complex<double>, std::complex<std::uint64_t>, std::complex<std::int64_t>, bool>(value, type,
                                                                                                         array);
    }

private:
    template <class... T>
    void make_one_of(VProp& value, std::size_t type, bool array)
    {
        std::size_t index = 0;
        const auto make = [&]<class One>(One made)
        {
            if (index++ != type)
                return;
            if (array)
                return make_array<One>(value);
            fill(made);
            value = made;
        };
        (make(T()), ...);
    }

    template <class T>
    void make_array(VProp& value)
    {
        const std::vector<std::size_t> shape = sizes();
        const std::size_t count = shape.empty() ? below(5) : VProparrayBase::size(shape);
        VProparray<T> array;
        for (std::size_t i = 0; i < count; ++i)
        {
            T element{};
            fill(element);
            array.push_back(element);
        }
        finish(array, shape);
        value = array;
    }

    void finish(VProparrayBase& array, const std::vector<std::size_t>& shape)
    {
        if (!shape.empty())
            array.set_size(shape, VProparrayBase::set_strict);
        if (below(2) == 0)
            array.userbits = random() & ~std::uint64_t(1);
    }

    void make_struct(VPropstruct& members, std::size_t depth)
    {
        for (std::size_t more = below(4); more > 0; --more)
            members[key()] = tree(depth - 1);
    }

    void make_cells(VProp& value, std::size_t depth)
    {
        const std::vector<std::size_t> shape = sizes();
        const std::size_t count = shape.empty() ? below(4) : VProparrayBase::size(shape);
        auto& cells = value.ensure_array<VProp>(count);
        for (VProp& cell : cells)
            cell = tree(depth - 1);
        finish(cells, shape);
    }

    /// All structs have the same keys, and there is not just one.
    void make_structs(VProp& value, std::size_t depth)
    {
        const std::vector<std::size_t> shape = sizes();
        std::size_t count = shape.empty() ? below(4) : VProparrayBase::size(shape);
        if (count == 1 && (shape.empty() || shape.size() == 2))
            return;
        auto& structs = value.ensure_array<VPropstruct>(count);
        VPropstruct first;
        make_struct(first, 1);
        for (VPropstruct& members : structs)
            for (const auto& member : first)
                members[member.first] = tree(depth - 1);
        finish(structs, shape);
    }

    std::mt19937_64 random;
};

}
