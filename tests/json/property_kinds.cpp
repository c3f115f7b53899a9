#include "json/property_kinds.h"

#include <complex>
#include <cstdint>

namespace vela_test {

namespace {

VProp array_of_one(VProp array)
{
    array.get_arr(true)->resize(1, true);
    return array;
}

std::vector<PropertyKind> make_kinds()
{
    std::vector<PropertyKind> kinds;
    kinds.reserve(48);
    const auto add = [&kinds](const char* name, const VProp& sample) {
        kinds.push_back({name, sample.get_arr(false) ? array_of_one(sample) : sample});
    };
    add("boolean", VProp(false));
    add("8 bit signed integer", VProp(char(0)));
    add("8 bit unsigned integer", VProp(static_cast<unsigned char>(0)));
    add("16 bit signed integer", VProp(short(0)));
    add("16 bit unsigned integer", VProp(static_cast<unsigned short>(0)));
    add("32 bit signed integer", VProp(0));
    add("32 bit unsigned integer", VProp(0U));
    add("64 bit signed integer", VProp(std::int64_t(0)));
    add("64 bit unsigned integer", VProp(std::uint64_t(0)));
    add("decimal", VProp(0.0F));
    add("decimal", VProp(0.0));
    add("string", VProp(VPropstring()));
    add("structure", VProp(VPropstruct()));
    add("boolean array", VProp(VProparray<bool>()));
    add("8 bit signed integer array", VProp(VProparray<char>()));
    add("8 bit unsigned integer array", VProp(VProparray<unsigned char>()));
    add("16 bit signed integer array", VProp(VProparray<short>()));
    add("16 bit unsigned integer array", VProp(VProparray<unsigned short>()));
    add("32 bit signed integer array", VProp(VProparray<int>()));
    add("32 bit unsigned integer array", VProp(VProparray<unsigned int>()));
    add("64 bit signed integer array", VProp(VProparray<std::int64_t>()));
    add("64 bit unsigned integer array", VProp(VProparray<std::uint64_t>()));
    add("decimal array", VProp(VProparray<float>()));
    add("decimal array", VProp(VProparray<double>()));
    add("string array", VProp(VProparray<VPropstring>()));
    add("structure array", VProp(VProparray<VPropstruct>()));
    add("array", VProp(VProparray<VProp>()));
    add("unsupported", VProp());
    add("unsupported", VProp(_s_vela_RGB(1, 2, 3)));
    add("unsupported", VProp(std::complex<unsigned char>()));
    add("unsupported", VProp(std::complex<char>()));
    add("unsupported", VProp(std::complex<unsigned short>()));
    add("unsupported", VProp(std::complex<short>()));
    add("unsupported", VProp(std::complex<unsigned int>()));
    add("unsupported", VProp(std::complex<int>()));
    add("unsupported", VProp(std::complex<float>()));
    add("unsupported", VProp(std::complex<double>()));
    add("unsupported", VProp(std::complex<std::uint64_t>()));
    add("unsupported", VProp(std::complex<std::int64_t>()));
    add("unsupported", VProp(VProparray<std::complex<unsigned char>>()));
    add("unsupported", VProp(VProparray<std::complex<char>>()));
    add("unsupported", VProp(VProparray<std::complex<unsigned short>>()));
    add("unsupported", VProp(VProparray<std::complex<short>>()));
    add("unsupported", VProp(VProparray<std::complex<unsigned int>>()));
    add("unsupported", VProp(VProparray<std::complex<int>>()));
    add("unsupported", VProp(VProparray<std::complex<float>>()));
    add("unsupported", VProp(VProparray<std::complex<double>>()));
    add("unsupported", VProp(VProparray<std::complex<std::uint64_t>>()));
    add("unsupported", VProp(VProparray<std::complex<std::int64_t>>()));
    return kinds;
}

}

const std::vector<PropertyKind>& property_kinds()
{
    static const std::vector<PropertyKind> kinds = make_kinds();
    return kinds;
}

} // namespace vela_test
