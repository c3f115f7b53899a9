// Any value passes a check or fails it, a field takes what passes and refuses the rest without a change, and texts
// pass as what they say: enumerators by the table, UUIDs and times only with the digits that these need.

#include "fuzz/text_pieces.h"

#include <Json/SignalingReference.h>
#include <Ome/checks.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <typeinfo>

namespace {

using Json::Value;
using vela_fuzz::require;

/// The first byte chooses the kind, the others are the payload.
Value make_value(const std::uint8_t* data, std::size_t size)
{
    const int kind = size == 0 ? 0 : data[0] % 7;
    const std::string payload(reinterpret_cast<const char*>(data) + (size == 0 ? 0 : 1), size == 0 ? 0 : size - 1);
    std::int64_t integer = 0;
    double decimal = 0;
    std::memcpy(&integer, payload.data(), std::min(payload.size(), sizeof integer));
    std::memcpy(&decimal, payload.data(), std::min(payload.size(), sizeof decimal));
    switch (kind)
    {
    case 0:
        return Value(payload);
    case 1:
        return Value(!payload.empty());
    case 2:
        return Value(integer);
    case 3:
        return Value(decimal);
    case 4:
        return Value(Value::List(payload.size() % 5, Value(payload)));
    case 5:
        return Value(Value::Object{{payload, Value(integer)}});
    default:
        return Value();
    }
}

bool is_same(const Value& left, const Value& right)
{
    const double* const a = left.if_decimal();
    const double* const b = right.if_decimal();
    return left == right || (a != nullptr && b != nullptr && std::isnan(*a) && std::isnan(*b));
}

/// A field does what its check says; null always passes.
template <class Check>
void check_field(const Value& value)
{
    const bool passes = value.is_null() || Check::check(value);
    Value slot;
    Json::SignalingReference::Field<Check> field{Json::SignalingReference::Binding(slot)};
    bool taken = true;
    try
    {
        field = value;
    }
    catch (const std::bad_cast&)
    {
        taken = false;
    }
    require(taken == passes);
    require(taken ? is_same(slot, value) : slot.is_null());
    Value filled(value);
    bool made = true;
    try
    {
        Json::SignalingReference::Field<Check> over{Json::SignalingReference::Binding(filled)};
        if (!value.is_null())
            static_cast<void>(over.get());
    }
    catch (const std::bad_cast&)
    {
        made = false;
    }
    require(made == passes);
}

/// The texts of an enumeration pass, and no others.
template <class Check>
void check_enumeration(const Value& value)
{
    check_field<Check>(value);
    const std::string* const text = value.if_string();
    typename Check::type enumerator{};
    bool known = false;
    if (text != nullptr)
    {
        get_enumeration(*text, enumerator);
        known = get_enumeration_text(enumerator) == *text && !text->empty();
    }
    require(Check::check(value) == known);
}

template <class... Checks>
void check_fields(const Value& value)
{
    (check_field<Checks>(value), ...);
}

template <class... Checks>
void check_enumerations(const Value& value)
{
    (check_enumeration<Checks>(value), ...);
}

std::size_t count_hex_digits(const std::string& text, std::size_t begin)
{
    const auto first = text.begin() + static_cast<std::ptrdiff_t>(std::min(begin, text.size()));
    return static_cast<std::size_t>(std::count_if(
        first, text.end(), [](char c) { return std::strchr("0123456789abcdefABCDEF", c) != nullptr && c != '\0'; }));
}

/// What Qt answers has to be about the text that was given.
void check_texts(const Value& value)
{
    const std::string* const text = value.if_string();
    if (Ome::check::Uuid::check(value))
        require(text != nullptr && text->size() >= 9 + 32 && count_hex_digits(*text, 9) >= 32);
    if (Ome::check::Timestamp::check(value))
        require(text != nullptr && count_hex_digits(*text, 0) >= 8); // Qt takes any separators
    for (const bool passes : {Ome::check::LengthUnit::check(value), Ome::check::TimeUnit::check(value),
                              Ome::check::PowerUnit::check(value)})
        require(!passes || (text != nullptr && !text->empty() && text->size() <= std::strlen("reference frame")));
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    namespace check = Ome::check;
    const Value value = make_value(data, size);
    check_fields<check::Structure, check::String, check::Boolean, check::Integer, check::NonNegativeInt,
                 check::PositiveInt, check::Number, check::PositiveFloat, check::PercentFraction, check::Timestamp,
                 check::Uuid, check::LengthUnit, check::PowerUnit, check::TimeUnit>(value);
    check_enumerations<check::AcquisitionMode, check::ContrastMethod, check::DimensionOrder, check::IlluminationType,
                       check::PixelType>(value);
    check_texts(value);
    return 0;
}
