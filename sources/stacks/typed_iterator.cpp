#include <VelaStacks/iterators.h>

#include "sources/stacks/sample_assign.h"

#include <cstring>

namespace {

/// Samples are reached by `memcpy`: their block may come from anywhere.
template <class T, class X>
void store(unsigned char* data, const X& value)
{
    const T converted = Vela::detail::assign<T>(value);
    std::memcpy(data, &converted, sizeof converted);
}

template <class T, class X>
void load(const unsigned char* data, X& out)
{
    T sample;
    std::memcpy(&sample, data, sizeof sample);
    out = Vela::detail::assign<X>(sample);
}

}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::uint64_t& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<std::uint64_t>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::uint32_t& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<std::uint32_t>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::uint16_t& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<std::uint16_t>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::uint8_t& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<std::uint8_t>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::int64_t& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<std::int64_t>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::int32_t& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<std::int32_t>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::int16_t& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<std::int16_t>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const char& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<char>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const double& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<double>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const float& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::set_value(const std::complex<float>& value)
{
    store<T>(this->data, value);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::uint64_t& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<std::uint64_t>& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::uint32_t& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<std::uint32_t>& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::uint16_t& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<std::uint16_t>& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::uint8_t& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<std::uint8_t>& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::int64_t& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<std::int64_t>& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::int32_t& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<std::int32_t>& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::int16_t& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<std::int16_t>& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(char& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<char>& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(double& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<double>& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(float& out) const
{
    load<T>(this->data, out);
}

template <class T>
void VStackInterface::typed_iterator<T>::get_value(std::complex<float>& out) const
{
    load<T>(this->data, out);
}

template class VStackInterface::typed_iterator<std::uint64_t>;
template class VStackInterface::typed_iterator<std::complex<std::uint64_t>>;
template class VStackInterface::typed_iterator<std::uint32_t>;
template class VStackInterface::typed_iterator<std::complex<std::uint32_t>>;
template class VStackInterface::typed_iterator<std::uint16_t>;
template class VStackInterface::typed_iterator<std::complex<std::uint16_t>>;
template class VStackInterface::typed_iterator<std::uint8_t>;
template class VStackInterface::typed_iterator<std::complex<std::uint8_t>>;
template class VStackInterface::typed_iterator<std::int64_t>;
template class VStackInterface::typed_iterator<std::complex<std::int64_t>>;
template class VStackInterface::typed_iterator<std::int32_t>;
template class VStackInterface::typed_iterator<std::complex<std::int32_t>>;
template class VStackInterface::typed_iterator<std::int16_t>;
template class VStackInterface::typed_iterator<std::complex<std::int16_t>>;
template class VStackInterface::typed_iterator<char>;
template class VStackInterface::typed_iterator<std::complex<char>>;
template class VStackInterface::typed_iterator<double>;
template class VStackInterface::typed_iterator<std::complex<double>>;
template class VStackInterface::typed_iterator<float>;
template class VStackInterface::typed_iterator<std::complex<float>>;
