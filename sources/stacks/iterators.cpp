#include <VelaBase/VelaError.h>
#include <VelaStacks/VStackRegion.h>
#include <VelaStacks/iterators.h>

#include "sources/stacks/sample_types.h"

#include <boost/make_shared.hpp>
#include <string>
#include <type_traits>

namespace {

/// The type in the names of constructors that errors carry, as callers of this library know them.
template <class T>
const char* type_name();
template <>
const char* type_name<std::uint64_t>()
{
    return "unsigned __int64";
}
template <>
const char* type_name<std::uint32_t>()
{
    return "unsigned int";
}
template <>
const char* type_name<std::uint16_t>()
{
    return "unsigned short";
}
template <>
const char* type_name<std::uint8_t>()
{
    return "unsigned char";
}
template <>
const char* type_name<std::int64_t>()
{
    return "__int64";
}
template <>
const char* type_name<std::int32_t>()
{
    return "int";
}
template <>
const char* type_name<std::int16_t>()
{
    return "short";
}
template <>
const char* type_name<char>()
{
    return "char";
}
template <>
const char* type_name<double>()
{
    return "double";
}
template <>
const char* type_name<float>()
{
    return "float";
}

/// "VStackInterface::iterator<class std::complex<float> >::iterator"
std::string constructor_name(const char* kind, const char* scalar, bool is_complex)
{
    std::string name = "VStackInterface::";
    name.append(kind).append("<");
    if (is_complex)
        name.append("class std::complex<").append(scalar).append("> ");
    else
        name.append(scalar);
    return name.append(">::").append(kind);
}

/// The name lives as long as the library: errors do not copy it.
template <class T, bool is_const>
const char* constructor_of()
{
    using Scalar = typename Vela::detail::SampleType<T>::Scalar;
    static const std::string name =
        constructor_name(is_const ? "const_iterator" : "iterator", type_name<Scalar>(), !std::is_same_v<T, Scalar>);
    return name.c_str();
}

}

boost::shared_ptr<VStackInterface::iterator_base> VStackInterface::get_iterator(const VStackRegion& region) const
{
    boost::shared_ptr<iterator_base> made;
    const bool is_known =
        Vela::detail::AllSampleTypes::visit(get_dt(), [&]<class T>(Vela::detail::SampleType<T>)
                                            { made = boost::make_shared<const_iterator<T>>(this, region); });
    if (!is_known)
        throw VelaError("VStackInterface::get_iterator", __FILE__, __LINE__)("Invalid type!");
    return made;
}

template <class T>
VStackInterface::iterator<T>::iterator(VStackInterface* stack, const VStackRegion& region)
    : typed_iterator<T>(stack, region)
{
    this->check_type(stack, Vela::detail::SampleType<T>::id, constructor_of<T, false>(), __LINE__);
}

template <class T>
VStackInterface::const_iterator<T>::const_iterator(const VStackInterface* stack, const VStackRegion& region)
    : typed_iterator<T>(stack, region)
{
    this->check_type(stack, Vela::detail::SampleType<T>::id, constructor_of<T, true>(), __LINE__);
}

template class VStackInterface::iterator<std::uint64_t>;
template class VStackInterface::iterator<std::complex<std::uint64_t>>;
template class VStackInterface::iterator<std::uint32_t>;
template class VStackInterface::iterator<std::complex<std::uint32_t>>;
template class VStackInterface::iterator<std::uint16_t>;
template class VStackInterface::iterator<std::complex<std::uint16_t>>;
template class VStackInterface::iterator<std::uint8_t>;
template class VStackInterface::iterator<std::complex<std::uint8_t>>;
template class VStackInterface::iterator<std::int64_t>;
template class VStackInterface::iterator<std::complex<std::int64_t>>;
template class VStackInterface::iterator<std::int32_t>;
template class VStackInterface::iterator<std::complex<std::int32_t>>;
template class VStackInterface::iterator<std::int16_t>;
template class VStackInterface::iterator<std::complex<std::int16_t>>;
template class VStackInterface::iterator<char>;
template class VStackInterface::iterator<std::complex<char>>;
template class VStackInterface::iterator<double>;
template class VStackInterface::iterator<std::complex<double>>;
template class VStackInterface::iterator<float>;
template class VStackInterface::iterator<std::complex<float>>;
template class VStackInterface::const_iterator<std::uint64_t>;
template class VStackInterface::const_iterator<std::complex<std::uint64_t>>;
template class VStackInterface::const_iterator<std::uint32_t>;
template class VStackInterface::const_iterator<std::complex<std::uint32_t>>;
template class VStackInterface::const_iterator<std::uint16_t>;
template class VStackInterface::const_iterator<std::complex<std::uint16_t>>;
template class VStackInterface::const_iterator<std::uint8_t>;
template class VStackInterface::const_iterator<std::complex<std::uint8_t>>;
template class VStackInterface::const_iterator<std::int64_t>;
template class VStackInterface::const_iterator<std::complex<std::int64_t>>;
template class VStackInterface::const_iterator<std::int32_t>;
template class VStackInterface::const_iterator<std::complex<std::int32_t>>;
template class VStackInterface::const_iterator<std::int16_t>;
template class VStackInterface::const_iterator<std::complex<std::int16_t>>;
template class VStackInterface::const_iterator<char>;
template class VStackInterface::const_iterator<std::complex<char>>;
template class VStackInterface::const_iterator<double>;
template class VStackInterface::const_iterator<std::complex<double>>;
template class VStackInterface::const_iterator<float>;
template class VStackInterface::const_iterator<std::complex<float>>;
