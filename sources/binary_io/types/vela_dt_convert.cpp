#include <VelaBase/vela_dt_convert.h>

#include "sources/binary_io/types/convert_tables.h"

#include <array>
#include <cstddef>
#include <cstring>

namespace {

using namespace Vela::detail;

/// The scalar ids in the order of the tables.
constexpr std::array<std::uint32_t, scalar_count> scalar_ids = {
    vela_dt_uint8, vela_dt_int8,   vela_dt_uint16, vela_dt_int16,  vela_dt_uint32,
    vela_dt_int32, vela_dt_single, vela_dt_double, vela_dt_uint64, vela_dt_int64,
};

constexpr std::uint32_t complex_flag = vela_dt_complex;

/// One of the ids that the tables know.
struct Numeric
{
    std::size_t scalar = scalar_count; ///< index into the tables; `scalar_count` for every other id
    bool is_complex = false;

    bool is_known() const { return scalar < scalar_count; }
};

Numeric classify(std::uint32_t id)
{
    Numeric numeric;
    numeric.is_complex = (id & complex_flag) != 0;
    for (std::size_t index = 0; index < scalar_count; ++index)
        if (scalar_ids[index] == (id & ~complex_flag))
            numeric.scalar = index;
    return numeric;
}

/// The widest set that this processor has. Every set gives the same result.
const ConvertTables& select_tables()
{
#if defined(VELA_X86_VARIANTS)
    if (__builtin_cpu_supports("avx2"))
        return convert_tables_avx2;
#endif
    return convert_tables_baseline;
}

const ConvertTables& tables()
{
    static const ConvertTables& selected = select_tables();
    return selected;
}

template <class From, class To>
void convert_colors(const void* source, void* target, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i)
    {
        From from;
        std::memcpy(static_cast<void*>(&from), static_cast<const char*>(source) + i * sizeof from, sizeof from);
        const To to = static_cast<To>(from);
        std::memcpy(static_cast<char*>(target) + i * sizeof to, &to, sizeof to);
    }
}

/// Null where one of the ids is no colour type.
PlainLoop find_color_loop(std::uint32_t source_dt, std::uint32_t target_dt)
{
    if (source_dt == vela_dt_rgb && target_dt == vela_dt_rgb)
        return convert_colors<_s_vela_RGB, _s_vela_RGB>;
    if (source_dt == vela_dt_rgb && target_dt == vela_dt_packed_color)
        return convert_colors<_s_vela_RGB, std::uint32_t>;
    if (source_dt == vela_dt_packed_color && target_dt == vela_dt_rgb)
        return convert_colors<std::uint32_t, _s_vela_RGB>;
    if (source_dt == vela_dt_packed_color && target_dt == vela_dt_packed_color)
        return convert_colors<std::uint32_t, std::uint32_t>;
    return nullptr;
}

constexpr int done = 0;
constexpr int not_supported = -1;

int convert_plain(std::uint32_t source_dt, std::uint32_t target_dt, const void* source, void* target,
                  std::uint64_t count)
{
    const Numeric from = classify(source_dt);
    const Numeric to = classify(target_dt);
    PlainLoop loop = nullptr;
    if (from.is_known() && to.is_known() && (to.is_complex || !from.is_complex))
    {
        const bool joins_zero = to.is_complex && !from.is_complex;
        loop = (joins_zero ? tables().to_complex : tables().scalar)[from.scalar][to.scalar];
        if (from.is_complex)
            count *= 2;
    }
    else
        loop = find_color_loop(source_dt, target_dt);
    if (loop == nullptr)
        return not_supported;
    loop(source, target, count);
    return done;
}

int convert_split(std::uint32_t source_dt, std::uint32_t target_dt, const void* source, void* target, void* imag_target,
                  std::uint64_t count)
{
    const Numeric from = classify(source_dt);
    const Numeric to = classify(target_dt);
    if (!from.is_known() || !from.is_complex || !to.is_known() || to.is_complex)
        return not_supported;
    tables().split[from.scalar][to.scalar](source, target, imag_target, count);
    return done;
}

int convert_join(std::uint32_t source_dt, std::uint32_t target_dt, const void* source, const void* imag_source,
                 void* target, std::uint64_t count)
{
    const Numeric from = classify(source_dt);
    const Numeric to = classify(target_dt);
    if (!from.is_known() || from.is_complex || !to.is_known() || !to.is_complex)
        return not_supported;
    tables().join[from.scalar][to.scalar](source, imag_source, target, count);
    return done;
}

} // namespace

int vela_dt_convert(std::uint32_t source_dt, std::uint32_t target_dt, const void* source, void* target,
                    std::uint64_t count, const void* imag_source, void* imag_target)
{
    if (imag_source == nullptr && imag_target == nullptr)
        return convert_plain(source_dt, target_dt, source, target, count);
    if (imag_source == nullptr)
        return convert_split(source_dt, target_dt, source, target, imag_target, count);
    if (imag_target == nullptr)
        return convert_join(source_dt, target_dt, source, imag_source, target, count);
    return not_supported;
}
