#include <Ome/checks.h>

#include "ome/qt_checks.h"
#include "ome/units.h"

#include <algorithm>

namespace Ome {
VELA_ABI_NAMESPACE_BEGIN
namespace check {

namespace {

template <class Condition>
bool integer_passes(const Json::Value& value, Condition condition)
{
    const std::int64_t* integer = value.if_integer();
    return integer != nullptr && condition(*integer);
}

template <class Condition>
bool number_passes(const Json::Value& value, Condition condition)
{
    if (const std::int64_t* integer = value.if_integer())
        return condition(static_cast<double>(*integer));
    const double* decimal = value.if_decimal();
    return decimal != nullptr && condition(*decimal);
}

template <class Condition>
bool text_passes(const Json::Value& value, Condition condition)
{
    const std::string* text = value.if_string();
    return text != nullptr && condition(*text);
}

template <class Table>
bool is_unit(const Json::Value& value, const Table& units)
{
    return text_passes(value,
                       [&units](const std::string& text) { return std::ranges::find(units, text) != units.end(); });
}

template <class Enumeration>
bool is_enumerator(const Json::Value& value)
{
    return text_passes(value,
                       [](const std::string& text)
                       {
                           Enumeration enumerator{};
                           get_enumeration(text, enumerator);
                           return enumerator != static_cast<Enumeration>(-1);
                       });
}

}

bool Structure::check(const Json::Value& value)
{
    return value.is_object();
}

bool String::check(const Json::Value& value)
{
    return value.is_string();
}

bool Boolean::check(const Json::Value& value)
{
    return value.is_boolean();
}

bool Integer::check(const Json::Value& value)
{
    return value.is_integer();
}

bool NonNegativeInt::check(const Json::Value& value)
{
    return integer_passes(value, [](std::int64_t integer) { return integer >= 0; });
}

bool PositiveInt::check(const Json::Value& value)
{
    return integer_passes(value, [](std::int64_t integer) { return integer > 0; });
}

bool Number::check(const Json::Value& value)
{
    return value.is_number();
}

bool PositiveFloat::check(const Json::Value& value)
{
    return number_passes(value, [](double number) { return number > 0; });
}

bool PercentFraction::check(const Json::Value& value)
{
    return number_passes(value, [](double number) { return number >= 0 && number <= 1; });
}

bool Timestamp::check(const Json::Value& value)
{
    return text_passes(value, Ome::detail::is_timestamp);
}

bool Uuid::check(const Json::Value& value)
{
    return text_passes(value, Ome::detail::is_uuid_urn);
}

bool LengthUnit::check(const Json::Value& value)
{
    return is_unit(value, Ome::detail::length_units);
}

bool PowerUnit::check(const Json::Value& value)
{
    return is_unit(value, Ome::detail::power_units);
}

bool TimeUnit::check(const Json::Value& value)
{
    return is_unit(value, Ome::detail::time_units);
}

bool AcquisitionMode::check(const Json::Value& value)
{
    return is_enumerator<type>(value);
}

bool ContrastMethod::check(const Json::Value& value)
{
    return is_enumerator<type>(value);
}

bool DimensionOrder::check(const Json::Value& value)
{
    return is_enumerator<type>(value);
}

bool IlluminationType::check(const Json::Value& value)
{
    return is_enumerator<type>(value);
}

bool PixelType::check(const Json::Value& value)
{
    return is_enumerator<type>(value);
}

}
VELA_ABI_NAMESPACE_END
}
