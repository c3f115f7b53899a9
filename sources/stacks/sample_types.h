/// The types that iterators read and write.
#pragma once

#include <VelaBase/vela_dt.h>
#include <VelaProps/VProp.h>

#include <complex>
#include <cstdint>

namespace Vela::detail {

template <class T>
struct ScalarOf
{
    using type = T;
};
template <class T>
struct ScalarOf<std::complex<T>>
{
    using type = T;
};

/// Stands for the type `T`.
template <class T>
struct SampleType
{
    using Scalar = typename ScalarOf<T>::type;
    static constexpr vela_dt id = vela_prop::id<T>;
};

template <class... Scalar>
struct SampleTypes
{
    /// Calls `visit` with the `SampleType` of the id `dt`. False where that is none of these, or complex of one.
    template <class Visitor>
    static bool visit(vela_dt dt, Visitor visit)
    {
        return (visit_if<Scalar>(dt, visit) || ...) || (visit_if<std::complex<Scalar>>(dt, visit) || ...);
    }

private:
    template <class T, class Visitor>
    static bool visit_if(vela_dt dt, Visitor& visit)
    {
        if (dt != SampleType<T>::id)
            return false;
        visit(SampleType<T>());
        return true;
    }
};

using AllSampleTypes = SampleTypes<std::uint64_t, std::uint32_t, std::uint16_t, std::uint8_t, std::int64_t,
                                   std::int32_t, std::int16_t, char, double, float>;

inline bool is_sample_type(vela_dt dt)
{
    return AllSampleTypes::visit(dt, [](auto) {});
}

}
