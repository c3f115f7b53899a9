// The containers of all types but those that the header of structs declares.

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

template class VProparray<VProp>;
template class VProparray<VPropstruct>;

template class VProp::holder<unsigned char>;
template class VProp::holder<char>;
template class VProp::holder<unsigned short>;
template class VProp::holder<short>;
template class VProp::holder<unsigned int>;
template class VProp::holder<int>;
template class VProp::holder<float>;
template class VProp::holder<double>;
template class VProp::holder<_s_vela_RGB>;
template class VProp::holder<std::uint64_t>;
template class VProp::holder<std::int64_t>;
template class VProp::holder<bool>;
template class VProp::holder<VPropstring>;
template class VProp::holder<std::complex<unsigned char>>;
template class VProp::holder<std::complex<char>>;
template class VProp::holder<std::complex<unsigned short>>;
template class VProp::holder<std::complex<short>>;
template class VProp::holder<std::complex<unsigned int>>;
template class VProp::holder<std::complex<int>>;
template class VProp::holder<std::complex<float>>;
template class VProp::holder<std::complex<double>>;
template class VProp::holder<std::complex<std::uint64_t>>;
template class VProp::holder<std::complex<std::int64_t>>;
template class VProp::holder<VProparray<unsigned char>>;
template class VProp::holder<VProparray<char>>;
template class VProp::holder<VProparray<unsigned short>>;
template class VProp::holder<VProparray<short>>;
template class VProp::holder<VProparray<unsigned int>>;
template class VProp::holder<VProparray<int>>;
template class VProp::holder<VProparray<float>>;
template class VProp::holder<VProparray<double>>;
template class VProp::holder<VProparray<std::uint64_t>>;
template class VProp::holder<VProparray<std::int64_t>>;
template class VProp::holder<VProparray<bool>>;
template class VProp::holder<VProparray<VPropstring>>;
template class VProp::holder<VProparray<VProp>>;
template class VProp::holder<VProparray<std::complex<unsigned char>>>;
template class VProp::holder<VProparray<std::complex<char>>>;
template class VProp::holder<VProparray<std::complex<unsigned short>>>;
template class VProp::holder<VProparray<std::complex<short>>>;
template class VProp::holder<VProparray<std::complex<unsigned int>>>;
template class VProp::holder<VProparray<std::complex<int>>>;
template class VProp::holder<VProparray<std::complex<float>>>;
template class VProp::holder<VProparray<std::complex<double>>>;
template class VProp::holder<VProparray<std::complex<std::uint64_t>>>;
template class VProp::holder<VProparray<std::complex<std::int64_t>>>;
template class VProp::holder<VPropstruct>;
template class VProp::holder<VProparray<VPropstruct>>;
