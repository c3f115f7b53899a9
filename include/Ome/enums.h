/// Enumerations of the OME records.
#pragma once

#include <VelaBase/export.h>

#include <cstdint>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// The pixel type of the OME schema; the number is the row in the schema's list of names.
/// Names that C++ does not allow are `float32`, `float64`, `complex64` and `complex128`.
enum class Type : std::int32_t
{
    bit = 0, ///< "bit"; no sample type corresponds to it
    int8 = 1,
    int16 = 2,
    int32 = 3,
    uint8 = 4,
    uint16 = 5,
    uint32 = 6,
    float32 = 7,     ///< "float"
    float64 = 8,     ///< "double"
    complex64 = 9,   ///< "complex": pairs of 32-bit floats
    complex128 = 10, ///< "double-complex": pairs of 64-bit floats
};

/// The pixel type for a sample type id (`VelaBase/vela_dt.h`).
///
/// @throws std::invalid_argument "Unsupported data type": `id` is none of the ten that OME has.
VELA_API Type get_type(std::int32_t id);

VELA_ABI_NAMESPACE_END
}
