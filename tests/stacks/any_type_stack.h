/// Stacks of any sample type, also of those that an OME record has no name for.
#pragma once

#include <VelaBase/vela_dt.h>
#include <VelaStacks/VStack.h>

#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <random>
#include <stdexcept>
#include <vector>

namespace vela_test {

constexpr std::array<vela_dt, 20> iterator_types = {
    vela_dt_uint64, vela_dt_uint64 | vela_dt_complex, vela_dt_uint32, vela_dt_uint32 | vela_dt_complex,
    vela_dt_uint16, vela_dt_uint16 | vela_dt_complex, vela_dt_uint8,  vela_dt_uint8 | vela_dt_complex,
    vela_dt_int64,  vela_dt_int64 | vela_dt_complex,  vela_dt_int32,  vela_dt_int32 | vela_dt_complex,
    vela_dt_int16,  vela_dt_int16 | vela_dt_complex,  vela_dt_int8,   vela_dt_int8 | vela_dt_complex,
    vela_dt_double, vela_dt_double | vela_dt_complex, vela_dt_single, vela_dt_single | vela_dt_complex,
};

inline std::uint64_t size_of_sample(vela_dt dt)
{
    return vela_dt_get_size(static_cast<std::uint32_t>(dt));
}

inline std::uint64_t product_of(const std::vector<std::uint64_t>& sizes)
{
    std::uint64_t product = 1;
    for (const std::uint64_t size : sizes)
        product *= size;
    return product;
}

/// A stack that takes any type that has a size. Its block is that of a stack of bytes, which stay as they are.
class AnyTypeStack : public VStackImp
{
public:
    AnyTypeStack() = default;
    AnyTypeStack(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) { create(new_sizes, new_dt); }

    using VStackImp::create;
    void create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) override
    {
        VStackImp::create({product_of(new_sizes) * size_of_sample(new_dt)}, vela_dt_uint8);
        try
        {
            set_type(new_dt);
        }
        catch (const std::invalid_argument&) // the record has no such type, the description has it
        {
        }
        set_sizes(new_sizes);
    }
};

/// The samples as bytes.
inline std::vector<unsigned char> bytes_of(const VStackInterface& stack)
{
    const unsigned char* const data = stack.get_data_ptr();
    return data == nullptr ? std::vector<unsigned char>()
                           : std::vector<unsigned char>(data, data + stack.get_size(vela_dt_none));
}

template <class T>
std::vector<T> samples_of(const VStackInterface& stack)
{
    std::vector<T> samples(stack.get_number_of_elements());
    if (!samples.empty())
        std::memcpy(static_cast<void*>(samples.data()), stack.get_data_ptr(), samples.size() * sizeof(T));
    return samples;
}

template <class T>
void set_samples(VStackInterface& stack, const std::vector<T>& samples)
{
    if (stack.get_size(vela_dt_none) != samples.size() * sizeof(T))
        throw std::logic_error("wrong number of samples");
    if (!samples.empty())
        std::memcpy(stack.get_data_ptr(), samples.data(), samples.size() * sizeof(T));
}

/// 0, 1, 2, ...
template <class T>
void count_up(VStackInterface& stack)
{
    std::vector<T> samples(stack.get_number_of_elements());
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<T>(i);
    set_samples(stack, samples);
}

/// Samples of all magnitudes, but no NaN: the payload of one may change on its way to another width.
inline void fill_randomly(VStackInterface& stack, std::mt19937& random)
{
    unsigned char* const data = stack.get_data_ptr();
    const std::uint64_t size_bytes = stack.get_size(vela_dt_none);
    const auto fill = [&](auto zero)
    {
        using Scalar = decltype(zero);
        for (std::uint64_t i = 0; i < size_bytes; i += sizeof(Scalar))
        {
            const double magnitude = std::ldexp(1.0, static_cast<int>(random() % 70));
            const Scalar value = static_cast<Scalar>((static_cast<double>(random()) / 2147483648.0 - 1.0) * magnitude);
            std::memcpy(data + i, &value, sizeof value);
        }
    };
    switch (stack.get_dt() & ~vela_dt_complex)
    {
    case vela_dt_single:
        return fill(0.0F);
    case vela_dt_double:
        return fill(0.0);
    default:
        for (std::uint64_t i = 0; i < size_bytes; ++i)
            data[i] = static_cast<unsigned char>(random() & 0xFF);
    }
}

} // namespace vela_test
