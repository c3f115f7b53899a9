#include <VelaProps/VProparray.h>

template class VProparray<unsigned char>;
template class VProparray<char>;
template class VProparray<unsigned short>;
template class VProparray<short>;
template class VProparray<unsigned int>;
template class VProparray<int>;
template class VProparray<std::uint64_t>;
template class VProparray<std::int64_t>;
template class VProparray<float>;
template class VProparray<double>;
template class VProparray<bool>;
template class VProparray<std::complex<unsigned char>>;
template class VProparray<std::complex<char>>;
template class VProparray<std::complex<unsigned short>>;
template class VProparray<std::complex<short>>;
template class VProparray<std::complex<unsigned int>>;
template class VProparray<std::complex<int>>;
template class VProparray<std::complex<std::uint64_t>>;
template class VProparray<std::complex<std::int64_t>>;
template class VProparray<std::complex<float>>;
template class VProparray<std::complex<double>>;
template class VProparray<VPropstring>;
