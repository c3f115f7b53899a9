/// The table that relates OME pixel types to sample type ids, for both directions.
#pragma once

#include <Ome/enums.h>
#include <VelaBase/vela_dt.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace Ome::detail {

struct PixelType
{
    Type type;
    const char* name; ///< in the OME schema
    vela_dt id;       ///< none for "bit", which leads nowhere in either direction
};

/// The row is the number of the type.
constexpr std::array<PixelType, 11> pixel_types{{
    {Type::bit, "bit", vela_dt_none},
    {Type::int8, "int8", vela_dt_int8},
    {Type::int16, "int16", vela_dt_int16},
    {Type::int32, "int32", vela_dt_int32},
    {Type::uint8, "uint8", vela_dt_uint8},
    {Type::uint16, "uint16", vela_dt_uint16},
    {Type::uint32, "uint32", vela_dt_uint32},
    {Type::float32, "float", vela_dt_single},
    {Type::float64, "double", vela_dt_double},
    {Type::complex64, "complex", vela_dt_complex | vela_dt_single},
    {Type::complex128, "double-complex", vela_dt_complex | vela_dt_double},
}};

static_assert(std::ranges::all_of(pixel_types, [](const PixelType& row)
                                  { return &row - pixel_types.data() == static_cast<int>(row.type); }),
              "the row is the number of the type");

/// The sample type id of a stack of this type.
///
/// @throws std::invalid_argument "Unsupported stack type": "bit", or a number outside the enumeration
inline vela_dt get_dt(Type type)
{
    const auto row = static_cast<std::int32_t>(type);
    if (row <= 0 || row >= static_cast<std::int32_t>(pixel_types.size()))
        throw std::invalid_argument("Unsupported stack type");
    return pixel_types[static_cast<std::size_t>(row)].id;
}

} // namespace Ome::detail
