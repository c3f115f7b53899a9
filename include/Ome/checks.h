/// What the fields of the OME records may hold: the types `T` of `Json::SignalingReference::Field<T>`.
#pragma once

#include <Json/Value.h>
#include <Ome/enums.h>
#include <VelaBase/export.h>

#include <cstdint>
#include <string>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN

/// Each says what a field is read as, and whether a value passes. Null always passes: that field is not set.
///
/// Integers have to be of kind integer: decimal 3.0 is no `PositiveInt`. Numbers may be of either kind, and keep it
/// until they are read. Units and enumerations compare as whole texts in UTF-8, the micro sign being U+00B5.
namespace check {

/// An object.
struct VELA_API Structure
{
    using type = Json::Value::Object;
    static bool check(const Json::Value& value);
};

/// A text.
struct VELA_API String
{
    using type = std::string;
    static bool check(const Json::Value& value);
};

/// True or false.
struct VELA_API Boolean
{
    using type = bool;
    static bool check(const Json::Value& value);
};

/// A whole number.
struct VELA_API Integer
{
    using type = std::int64_t;
    static bool check(const Json::Value& value);
};

/// An integer, 0 or above.
struct VELA_API NonNegativeInt
{
    using type = std::int64_t;
    static bool check(const Json::Value& value);
};

/// An integer above 0.
struct VELA_API PositiveInt
{
    using type = std::int64_t;
    static bool check(const Json::Value& value);
};

/// A decimal or an integer.
struct VELA_API Number
{
    using type = double;
    static bool check(const Json::Value& value);
};

/// A number above 0.
struct VELA_API PositiveFloat
{
    using type = double;
    static bool check(const Json::Value& value);
};

/// A number from 0 to 1, both included.
struct VELA_API PercentFraction
{
    using type = double;
    static bool check(const Json::Value& value);
};

/// Date and time in the form of ISO 8601, as in "2026-11-20T09:30:00+01:00". A local time without offset
/// that the time zone of the process leaves out is none.
struct VELA_API Timestamp
{
    using type = std::string;
    static bool check(const Json::Value& value);
};

/// A text that is a UUID, and not the null one, from its tenth character on, behind "urn:uuid:".
struct VELA_API Uuid
{
    using type = std::string;
    static bool check(const Json::Value& value);
};

/// Ym Zm Em Pm Tm Gm Mm km hm dam m dm cm mm um (with the micro sign) nm pm fm am zm ym, the angstrom sign U+212B,
/// thou li in ft yd mi ua ly pc pt pixel, and "reference frame".
struct VELA_API LengthUnit
{
    using type = std::string;
    static bool check(const Json::Value& value);
};

/// W with the prefixes of `LengthUnit`.
struct VELA_API PowerUnit
{
    using type = std::string;
    static bool check(const Json::Value& value);
};

/// s with the prefixes of `LengthUnit`, min and h.
struct VELA_API TimeUnit
{
    using type = std::string;
    static bool check(const Json::Value& value);
};

/// A text of the enumeration.
struct VELA_API AcquisitionMode
{
    using type = Ome::AcquisitionMode;
    static bool check(const Json::Value& value);
};

/// A text of the enumeration.
struct VELA_API ContrastMethod
{
    using type = Ome::ContrastMethod;
    static bool check(const Json::Value& value);
};

/// A text of the enumeration.
struct VELA_API DimensionOrder
{
    using type = Ome::DimensionOrder;
    static bool check(const Json::Value& value);
};

/// A text of the enumeration.
struct VELA_API IlluminationType
{
    using type = Ome::IlluminationType;
    static bool check(const Json::Value& value);
};

/// A text of the enumeration `Type`.
struct VELA_API PixelType
{
    using type = Ome::Type;
    static bool check(const Json::Value& value);
};

}

VELA_ABI_NAMESPACE_END
}
