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
struct Structure
{
    using type = Json::Value::Object;
    VELA_API static bool check(const Json::Value& value);
};

struct String
{
    using type = std::string;
    VELA_API static bool check(const Json::Value& value);
};

struct Boolean
{
    using type = bool;
    VELA_API static bool check(const Json::Value& value);
};

struct Integer
{
    using type = std::int64_t;
    VELA_API static bool check(const Json::Value& value);
};

/// An integer, 0 or above.
struct NonNegativeInt
{
    using type = std::int64_t;
    VELA_API static bool check(const Json::Value& value);
};

/// An integer above 0.
struct PositiveInt
{
    using type = std::int64_t;
    VELA_API static bool check(const Json::Value& value);
};

/// A decimal or an integer.
struct Number
{
    using type = double;
    VELA_API static bool check(const Json::Value& value);
};

/// A number above 0.
struct PositiveFloat
{
    using type = double;
    VELA_API static bool check(const Json::Value& value);
};

/// A number from 0 to 1, both included.
struct PercentFraction
{
    using type = double;
    VELA_API static bool check(const Json::Value& value);
};

/// Date and time in the form of ISO 8601, as in "2026-11-20T09:30:00+01:00". A local time without offset
/// that the time zone of the process leaves out is none.
struct Timestamp
{
    using type = std::string;
    VELA_API static bool check(const Json::Value& value);
};

/// A text that is a UUID, and not the null one, from its tenth character on, behind "urn:uuid:".
struct Uuid
{
    using type = std::string;
    VELA_API static bool check(const Json::Value& value);
};

/// Ym Zm Em Pm Tm Gm Mm km hm dam m dm cm mm um (with the micro sign) nm pm fm am zm ym, the angstrom sign U+212B,
/// thou li in ft yd mi ua ly pc pt pixel, and "reference frame".
struct LengthUnit
{
    using type = std::string;
    VELA_API static bool check(const Json::Value& value);
};

/// W with the prefixes of `LengthUnit`.
struct PowerUnit
{
    using type = std::string;
    VELA_API static bool check(const Json::Value& value);
};

/// s with the prefixes of `LengthUnit`, min and h.
struct TimeUnit
{
    using type = std::string;
    VELA_API static bool check(const Json::Value& value);
};

/// A text of the enumeration.
struct AcquisitionMode
{
    using type = Ome::AcquisitionMode;
    VELA_API static bool check(const Json::Value& value);
};

/// A text of the enumeration.
struct ContrastMethod
{
    using type = Ome::ContrastMethod;
    VELA_API static bool check(const Json::Value& value);
};

/// A text of the enumeration.
struct DimensionOrder
{
    using type = Ome::DimensionOrder;
    VELA_API static bool check(const Json::Value& value);
};

/// A text of the enumeration.
struct IlluminationType
{
    using type = Ome::IlluminationType;
    VELA_API static bool check(const Json::Value& value);
};

/// A text of the enumeration `Type`.
struct PixelType
{
    using type = Ome::Type;
    VELA_API static bool check(const Json::Value& value);
};

}

VELA_ABI_NAMESPACE_END
}
