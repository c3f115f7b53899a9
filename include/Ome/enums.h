/// Enumerations of the OME records.
///
/// Names, numbers and texts are those of the OME 2015-01 schema; the number is the row in its list. Records store the
/// text, and so does a `Json::Value` that is made from an enumerator.
#pragma once

#include <VelaBase/export.h>

#include <cstdint>
#include <string>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// The pixel type. Names that C++ does not allow are `float32`, `float64`, `complex64` and `complex128`.
enum class VELA_API Type : std::int32_t
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

/// The order of the dimensions, the one that runs fastest first.
enum class VELA_API DimensionOrder : std::int32_t
{
    XYZCT = 0,
    XYZTC = 1,
    XYCTZ = 2,
    XYCZT = 3,
    XYTCZ = 4,
    XYTZC = 5,
};

/// How a channel is illuminated.
enum class VELA_API IlluminationType : std::int32_t
{
    Transmitted = 0,
    Epifluorescence = 1,
    Oblique = 2,
    NonLinear = 3,
    Other = 4,
};

/// How a channel is acquired.
enum class VELA_API AcquisitionMode : std::int32_t
{
    WideField = 0,
    LaserScanningConfocalMicroscopy = 1,
    SpinningDiskConfocal = 2,
    SlitScanConfocal = 3,
    MultiPhotonMicroscopy = 4,
    StructuredIllumination = 5,
    SingleMoleculeImaging = 6,
    TotalInternalReflection = 7,
    FluorescenceLifetime = 8,
    SpectralImaging = 9,
    FluorescenceCorrelationSpectroscopy = 10,
    NearFieldScanningOpticalMicroscopy = 11,
    SecondHarmonicGenerationImaging = 12,
    PALM = 13,
    STORM = 14,
    STED = 15,
    TIRF = 16,
    FSM = 17,
    LCM = 18,
    Other = 19,
};

/// What makes the contrast of a channel.
enum class VELA_API ContrastMethod : std::int32_t
{
    Brightfield = 0,
    Phase = 1,
    DIC = 2,
    HoffmanModulation = 3,
    ObliqueIllumination = 4,
    PolarizedLight = 5,
    Darkfield = 6,
    Fluorescence = 7,
    Other = 8,
};

/// @name The text of an enumerator; "" for a number outside the table.
/// @{
VELA_API const char* get_enumeration_text(Type enumerator);
VELA_API const char* get_enumeration_text(DimensionOrder enumerator);
VELA_API const char* get_enumeration_text(IlluminationType enumerator);
VELA_API const char* get_enumeration_text(AcquisitionMode enumerator);
VELA_API const char* get_enumeration_text(ContrastMethod enumerator);
/// @}

/// @name The enumerator of a text; all bits set, which is -1, for a text outside the table.
/// @{
VELA_API void get_enumeration(const std::string& text, Type& result);
VELA_API void get_enumeration(const std::string& text, DimensionOrder& result);
VELA_API void get_enumeration(const std::string& text, IlluminationType& result);
VELA_API void get_enumeration(const std::string& text, AcquisitionMode& result);
VELA_API void get_enumeration(const std::string& text, ContrastMethod& result);
/// @}

/// The pixel type for a sample type id (`VelaBase/vela_dt.h`).
///
/// @throws std::invalid_argument "Unsupported data type": `id` is none of the ten that OME has.
VELA_API Type get_type(std::int32_t id);

VELA_ABI_NAMESPACE_END
}
