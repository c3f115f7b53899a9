/// Stacks that take every sample type, and short hands to fill stacks and to look at them.
#pragma once

#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace naive {

/// The record refuses most types only after the description has taken them. This stack goes on in spite of it, so it can
/// be source and target in any type; its block is as large as that type wants, or larger where nothing else has that
/// size.
class OpenStack : public VStackImp
{
public:
    OpenStack() = default;
    OpenStack(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) { OpenStack::create(new_sizes, new_dt); }

    using VStackImp::create;
    void create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) override
    {
        VStackImp::create(new_sizes, stand_in_for(new_dt));
        try
        {
            set_type(new_dt);
        }
        catch (const std::invalid_argument&)
        {
            // The type stands.
        }
    }

private:
    static vela_dt stand_in_for(vela_dt id)
    {
        switch (vela_dt_get_size(static_cast<std::uint32_t>(id)))
        {
        case 2:
            return vela_dt_uint16;
        case 3:
        case 4:
            return vela_dt_uint32;
        case 8:
            return vela_dt_double;
        case 16:
            return vela_dt_double | vela_dt_complex;
        default:
            return vela_dt_uint8;
        }
    }
};

/// A source that is no `VStackImp`: the bytes are a plain vector.
class ForeignStack : public VStackInterface, public VStackInfoImp
{
public:
    ForeignStack(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt, std::vector<unsigned char> samples)
        : bytes(std::move(samples))
    {
        VStackInfoImp::create(new_sizes, new_dt);
    }

    void copy(const VStackInterface*, const VStackRegion&) override { throw std::logic_error("not a target"); }
    void copy(const VStackInterface*, vela_dt) override { throw std::logic_error("not a target"); }
    void destroy() override { bytes.clear(); }
    const unsigned char* get_data_ptr() const override { return bytes.data(); }
    unsigned char* get_data_ptr() override { return bytes.data(); }
    const char* share() const override { return ""; }

private:
    std::vector<unsigned char> bytes;
};

/// The block of a stack.
inline std::vector<unsigned char> block_of(const VStackImp& stack)
{
    const unsigned char* const first = stack.get_data_ptr();
    return first == nullptr ? std::vector<unsigned char>()
                            : std::vector<unsigned char>(first, first + stack.get_block_size());
}

template <class T>
std::vector<T> samples_of(const VStackImp& stack)
{
    std::vector<T> samples(stack.get_block_size() / sizeof(T));
    if (!samples.empty())
        std::memcpy(samples.data(), stack.get_data_ptr(), samples.size() * sizeof(T));
    return samples;
}

template <class T>
void set_samples(VStackImp& stack, const std::vector<T>& samples)
{
    std::memcpy(stack.get_data_ptr(), samples.data(), samples.size() * sizeof(T));
}

/// 1, 2, 3, ...: no sample is 0, and no two are equal in a small stack.
inline void number_bytes(VStackImp& stack)
{
    for (std::uint64_t i = 0; i < stack.get_block_size(); ++i)
        stack.get_data_ptr()[i] = static_cast<unsigned char>(i + 1);
}

inline VStackRegion box(std::vector<std::int64_t> begin, std::vector<std::int64_t> end,
                        std::vector<std::uint64_t> permutation, vela_dt dt = vela_dt_none)
{
    VStackRegion region;
    region.dt = dt;
    region.begin = std::move(begin);
    region.end = std::move(end);
    region.permutation = std::move(permutation);
    return region;
}

inline VStackRegion whole(const VStackInfoInterface& stack)
{
    VStackRegion region;
    region.create(&stack, 0);
    return region;
}

} // namespace naive
