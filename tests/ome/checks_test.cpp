#include "ome/record_tables.h"
#include "support/expect_bad_cast.h"

#include <Json/SignalingReference.h>
#include <Ome/checks.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

namespace check = Ome::check;
using Json::Value;
using vela_test::Check;
using vela_test::show;

template <class T>
using Field = Json::SignalingReference::Field<T>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double least_decimal = std::numeric_limits<double>::denorm_min();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();

/// A field lets `value` in, by assignment and from a slot that holds it.
template <class T>
void expect_passes(const Value& value)
{
    SCOPED_TRACE(show(value));
    EXPECT_TRUE(T::check(value));
    Value slot;
    Field<T> field(slot);
    EXPECT_NO_THROW(field = value);
    EXPECT_TREE(slot, value);
    EXPECT_NO_THROW(Field<T>{slot});
    EXPECT_TREE(slot, value);
}

/// A field keeps `value` out, which changes nothing.
template <class T>
void expect_refused(const Value& value)
{
    SCOPED_TRACE(show(value));
    EXPECT_FALSE(T::check(value));
    Value slot;
    Field<T> field(slot);
    EXPECT_BAD_CAST(field = value);
    EXPECT_TREE(slot, Value());
    Value filled = value;
    EXPECT_BAD_CAST(Field<T>{filled});
    EXPECT_TREE(filled, value);
}

/// Values of every kind do what the table of checks says.
template <class T>
void expect_kinds(Check kind)
{
    for (const Value& value : vela_test::probe_values())
    {
        if (value.is_null())
            continue;
        if (vela_test::passes(kind, value))
            expect_passes<T>(value);
        else
            expect_refused<T>(value);
    }
}

template <class T>
void expect_all(const std::vector<Value>& passing, const std::vector<Value>& refused)
{
    for (const Value& value : passing)
        expect_passes<T>(value);
    for (const Value& value : refused)
        expect_refused<T>(value);
}

template <class T>
void expect_null_passes()
{
    Value slot;
    EXPECT_NO_THROW(Field<T>{slot});
    Value filled = vela_test::probe_values().back();
    Field<T>* field = nullptr;
    for (const Value& value : vela_test::probe_values())
    {
        if (value.is_null() || !T::check(value))
            continue;
        slot = value;
        Field<T> full(slot);
        field = &full;
        EXPECT_NO_THROW(*field = Value());
        EXPECT_TREE(slot, Value());
    }
    EXPECT_NE(field, nullptr) << "no value of the probes passes";
}

TEST(OmeChecks, NullPassesEveryOne)
{
    expect_null_passes<check::Structure>();
    expect_null_passes<check::String>();
    expect_null_passes<check::Boolean>();
    expect_null_passes<check::Integer>();
    expect_null_passes<check::NonNegativeInt>();
    expect_null_passes<check::PositiveInt>();
    expect_null_passes<check::Number>();
    expect_null_passes<check::PositiveFloat>();
    expect_null_passes<check::PercentFraction>();
    expect_null_passes<check::Timestamp>();
    expect_null_passes<check::Uuid>();
    expect_null_passes<check::LengthUnit>();
    expect_null_passes<check::PowerUnit>();
    expect_null_passes<check::TimeUnit>();
    expect_null_passes<check::AcquisitionMode>();
    expect_null_passes<check::ContrastMethod>();
    expect_null_passes<check::DimensionOrder>();
    expect_null_passes<check::IlluminationType>();
    expect_null_passes<check::PixelType>();
}

TEST(OmeChecks, StructureIsAnObject)
{
    expect_kinds<check::Structure>(Check::structure);
    expect_all<check::Structure>({Value::Object(), Value::Object{{"", Value::Object()}}}, {Value::List(), "", "{}", 0});
}

TEST(OmeChecks, StringIsAnyString)
{
    expect_kinds<check::String>(Check::string);
    expect_all<check::String>({"", "text", std::string("a\0b", 3), "\xFF\xFE"}, {0, false, 1.0, Value::Object()});
}

TEST(OmeChecks, BooleanIsNeitherNumberNorText)
{
    expect_kinds<check::Boolean>(Check::boolean);
    expect_all<check::Boolean>({true, false}, {0, 1, 1.0, "true", "false"});
}

TEST(OmeChecks, IntegerIsOfKindInteger)
{
    expect_kinds<check::Integer>(Check::integer);
    expect_all<check::Integer>({0, 1, -1, least, greatest}, {0.0, 3.0, nan, "1", true, Value::List{1}});
}

TEST(OmeChecks, NonNegativeIntStartsAtZero)
{
    expect_kinds<check::NonNegativeInt>(Check::non_negative_int);
    expect_all<check::NonNegativeInt>({0, 1, greatest}, {-1, least, 0.0, 3.0, "0", false});
}

TEST(OmeChecks, PositiveIntStartsAtOne)
{
    expect_kinds<check::PositiveInt>(Check::positive_int);
    expect_all<check::PositiveInt>({1, 2, greatest}, {0, -1, least, 1.0, "1", true});
}

TEST(OmeChecks, DecimalThreeIsNoPositiveInt)
{
    expect_refused<check::PositiveInt>(3.0);
    expect_passes<check::PositiveInt>(3);
}

TEST(OmeChecks, NumberIsOfEitherKind)
{
    expect_kinds<check::Number>(Check::number);
    expect_all<check::Number>({0, -1, greatest, least, 0.0, -0.0, -1.5, infinity, -infinity, nan},
                              {"1", "", true, Value::List{1}, Value::Object()});
}

TEST(OmeChecks, PositiveFloatIsAboveZero)
{
    expect_kinds<check::PositiveFloat>(Check::positive_float);
    expect_all<check::PositiveFloat>({1, greatest, least_decimal, 1.5, infinity},
                                     {0, -1, least, 0.0, -0.0, -least_decimal, -infinity, nan, "1.5", true});
}

TEST(OmeChecks, PercentFractionIncludesZeroAndOne)
{
    expect_kinds<check::PercentFraction>(Check::percent_fraction);
    expect_all<check::PercentFraction>({0, 1, 0.0, -0.0, least_decimal, 0.5, 1.0},
                                       {2, -1, -least_decimal, 1.0 + std::numeric_limits<double>::epsilon(), infinity,
                                        -infinity, nan, "0.5", true, false});
}

TEST(OmeChecks, UnitsAreTextsOfTheirList)
{
    expect_kinds<check::LengthUnit>(Check::length_unit);
    expect_kinds<check::PowerUnit>(Check::power_unit);
    expect_kinds<check::TimeUnit>(Check::time_unit);
}

template <class T>
void expect_texts_of(Check kind)
{
    expect_kinds<T>(kind);
    for (const std::string& text : vela_test::enumeration_texts(kind))
        expect_passes<T>(text);
    for (std::int64_t number = -1; number < 21; ++number)
        expect_refused<T>(number);
    expect_refused<T>("");
}

TEST(OmeChecks, EnumerationsHoldTheTextsOfTheirTableAndNoNumbers)
{
    expect_texts_of<check::AcquisitionMode>(Check::acquisition_mode);
    expect_texts_of<check::ContrastMethod>(Check::contrast_method);
    expect_texts_of<check::DimensionOrder>(Check::dimension_order);
    expect_texts_of<check::IlluminationType>(Check::illumination_type);
    expect_texts_of<check::PixelType>(Check::pixel_type);
}

TEST(OmeChecks, TypeBitPassesThoughNoSampleTypeLeadsToIt)
{
    expect_passes<check::PixelType>("bit");
}

TEST(OmeChecks, ANumberKeepsItsKindUntilItIsReadAsDecimal)
{
    Value slot;
    Field<check::PositiveFloat> field(slot);
    field = 3;
    EXPECT_TREE(slot, 3);
    EXPECT_EQ(field.get(), 3.0);
    EXPECT_TREE(slot, 3.0);
}

TEST(OmeChecks, AnEnumerationThatIsReadOutsideItsTableHasAllBitsSet)
{
    Value slot = "XYCZT";
    Field<check::DimensionOrder> field(slot);
    EXPECT_EQ(field.get(), Ome::DimensionOrder::XYCZT);
    slot = "XYCZZ";
    EXPECT_EQ(static_cast<std::int32_t>(field.get()), -1);
    EXPECT_TREE(slot, "XYCZZ");
}

TEST(OmeChecks, AnEnumeratorIsStoredAsItsText)
{
    Value slot;
    Field<check::PixelType> field(slot);
    field = Ome::Type::complex128;
    EXPECT_TREE(slot, "double-complex");
    EXPECT_BAD_CAST(field = static_cast<Ome::Type>(-1));
    EXPECT_BAD_CAST(field = Ome::DimensionOrder::XYZCT);
    EXPECT_TREE(slot, "double-complex");
}

} // namespace
