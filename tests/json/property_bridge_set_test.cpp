// Scalars are written where the property takes them, and only if they differ.
#include "json/forged_kind.h"
#include "json/property_trees.h"

#include <Json/property_bridge.h>
#include <VelaBase/vela_dt.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <string>

struct VPropInfo
{
};

namespace {

using Json::set_value;
using Json::Value;
using json_test::address_of;
using json_test::array_of;
using json_test::cells;
using json_test::list;
using json_test::members_of;
using json_test::object;
using json_test::structure;
using json_test::structures;

/// `property` is of type `T`, takes `value`, and holds `expected` afterwards.
template <class T>
void expect_taken(const Value& value, T before, T expected)
{
    VProp property(before);
    EXPECT_EQ(set_value(value, property), before != expected);
    EXPECT_EQ(property.get_id(), VProp::type_id<T>);
    EXPECT_EQ(property.get<T>(), expected);
    EXPECT_FALSE(set_value(value, property)); // it is there now
    EXPECT_EQ(property.get<T>(), expected);
}

void expect_refused(const Value& value, const VProp& before, const std::string& type_name)
{
    VProp property(before);
    EXPECT_INVALID_ARGUMENT(set_value(value, property), "Property has " + type_name + " type");
    EXPECT_TRUE(property == before);
    EXPECT_EQ(address_of(property), address_of(before)); // not even detached
}

/// The whole range is taken, and nothing beyond it.
template <class T>
void expect_range(const char* type_name)
{
    const auto lowest = static_cast<std::int64_t>(std::numeric_limits<T>::min());
    const auto largest = static_cast<std::int64_t>(std::numeric_limits<T>::max());
    for (const std::int64_t integer : {lowest, largest})
    {
        expect_taken<T>(Value(integer), T(1), static_cast<T>(integer));
        expect_taken<T>(Value(static_cast<double>(integer)), T(1), static_cast<T>(integer));
    }
    for (const std::int64_t integer : {lowest - 1, largest + 1, INT64_MIN, INT64_MAX})
    {
        expect_refused(Value(integer), VProp(T(1)), type_name);
        expect_refused(Value(static_cast<double>(integer)), VProp(T(1)), type_name);
    }
}

TEST(PropertyBridgeSet, BooleansTakeBooleans)
{
    expect_taken(Value(true), false, true);
    expect_taken(Value(false), true, false);
    expect_taken(Value(true), true, true);
}

TEST(PropertyBridgeSet, IntegersTakeWhatTheyCanHold)
{
    expect_range<unsigned char>("8 bit unsigned integer");
    expect_range<char>("8 bit signed integer");
    expect_range<unsigned short>("16 bit unsigned integer");
    expect_range<short>("16 bit signed integer");
    expect_range<unsigned int>("32 bit unsigned integer");
    expect_range<int>("32 bit signed integer");
}

TEST(PropertyBridgeSet, IntegersOf64BitsTakeEveryIntegerOfTheirSign)
{
    expect_taken<std::int64_t>(Value(INT64_MIN), 1, INT64_MIN);
    expect_taken<std::int64_t>(Value(INT64_MAX), 1, INT64_MAX);
    expect_taken<std::uint64_t>(Value(INT64_MAX), 1, static_cast<std::uint64_t>(INT64_MAX));
    expect_refused(Value(-1), VProp(std::uint64_t(1)), "64 bit unsigned integer");
    expect_refused(Value(INT64_MIN), VProp(std::uint64_t(1)), "64 bit unsigned integer");
}

TEST(PropertyBridgeSet, IntegersOf64BitsTakeDecimalsUpToTheirLimits)
{
    const double two_to_63 = 9223372036854775808.0;
    const double two_to_64 = 18446744073709551616.0;
    expect_taken<std::int64_t>(Value(-two_to_63), 1, INT64_MIN);
    expect_taken<std::int64_t>(Value(9223372036854774784.0), 1, 9223372036854774784);
    expect_refused(Value(two_to_63), VProp(std::int64_t(1)), "64 bit signed integer");
    expect_refused(Value(-9223372036854777856.0), VProp(std::int64_t(1)), "64 bit signed integer");
    expect_taken<std::uint64_t>(Value(two_to_63), 1, std::uint64_t(1) << 63U);
    expect_taken<std::uint64_t>(Value(18446744073709549568.0), 1, 18446744073709549568U);
    expect_refused(Value(two_to_64), VProp(std::uint64_t(1)), "64 bit unsigned integer");
    expect_refused(Value(-1.0), VProp(std::uint64_t(1)), "64 bit unsigned integer");
}

TEST(PropertyBridgeSet, IntegersTakeNoFractions)
{
    expect_refused(Value(3.5), VProp(1), "32 bit signed integer");
    expect_refused(Value(-0.25), VProp(static_cast<unsigned char>(1)), "8 bit unsigned integer");
    expect_refused(Value(255.5), VProp(static_cast<unsigned char>(1)), "8 bit unsigned integer");
    expect_refused(Value(std::numeric_limits<double>::denorm_min()), VProp(1), "32 bit signed integer");
    expect_refused(Value(std::nan("")), VProp(1), "32 bit signed integer");
    expect_refused(Value(HUGE_VAL), VProp(std::uint64_t(1)), "64 bit unsigned integer");
    expect_refused(Value(-HUGE_VAL), VProp(std::int64_t(1)), "64 bit signed integer");
    expect_taken(Value(-0.0), 1, 0);
    expect_taken<unsigned char>(Value(-0.0), 1, 0);
}

TEST(PropertyBridgeSet, DecimalsTakeEveryNumber)
{
    expect_taken(Value(2.5), 1.0, 2.5);
    expect_taken(Value(7), 1.0, 7.0);
    expect_taken(Value(INT64_MAX), 1.0, 9223372036854775808.0);
    expect_taken(Value((std::int64_t(1) << 53U) + 1), 1.0, 9007199254740992.0);
    expect_taken(Value(2.5), 1.0F, 2.5F);
    expect_taken(Value(0.1), 1.0F, 0.1F);
    expect_taken(Value((1 << 24) + 1), 1.0F, 16777216.0F);
    expect_taken(Value(INT64_MIN), 1.0F, -9223372036854775808.0F);
    expect_taken(Value(HUGE_VAL), 1.0, HUGE_VAL);
}

TEST(PropertyBridgeSet, WhatIsTooLargeForSinglePrecisionIsInfinity)
{
    expect_taken(Value(1e300), 1.0F, HUGE_VALF);
    expect_taken(Value(-1e300), 1.0F, -HUGE_VALF);
    expect_taken(Value(1e-300), 1.0F, 0.0F);
}

TEST(PropertyBridgeSet, NaNIsNeverEqualSoItIsAlwaysAChange)
{
    VProp property(1.0);
    EXPECT_TRUE(set_value(Value(std::nan("")), property));
    EXPECT_TRUE(set_value(Value(std::nan("")), property));
    EXPECT_TRUE(std::isnan(property.get<double>()));
}

TEST(PropertyBridgeSet, StringsTakeTextsInTheEncodingOfTheSystem)
{
    expect_taken(Value("new"), VPropstring(L"old"), VPropstring(L"new"));
    expect_taken(Value(""), VPropstring(L"old"), VPropstring(L""));
    expect_taken(Value("\xc2\xb5m"), VPropstring(L"old"), VPropstring(L"\u00b5m"));
    expect_taken(Value(std::string("a\0b", 3)), VPropstring(L"a"), VPropstring(std::wstring(L"a\0b", 3)));
    expect_taken(Value("same"), VPropstring(L"same"), VPropstring(L"same"));
}

TEST(PropertyBridgeSet, EveryOtherPairIsRefused)
{
    const VProp boolean(true);
    const VProp integer(1);
    const VProp decimal(1.5);
    const VProp single(1.5F);
    const VProp text("text");
    const VProp members = structure({{"a", VProp(1)}});
    const VProp array = array_of<int>({1, 2}, {1, 2});
    const Value null;
    const Value numbers = list({1, 2});
    const Value members_value = object({{"a", 2}});
    for (const Value& value : {null, Value(1), Value(1.0), Value("true"), numbers, members_value})
        expect_refused(value, boolean, "boolean");
    for (const Value& value : {null, Value(true), Value("1"), list({1}), members_value})
    {
        expect_refused(value, integer, "32 bit signed integer");
        expect_refused(value, decimal, "decimal");
        expect_refused(value, single, "decimal");
    }
    for (const Value& value : {null, Value(true), Value(1), Value(1.5), list({"text"}), members_value})
        expect_refused(value, text, "string");
    for (const Value& value : {null, Value(true), Value(1), Value(1.5), Value("a"), list({members_value})})
        expect_refused(value, members, "structure");
    for (const Value& value : {null, Value(true), Value(1), Value(1.5), Value("a"), members_value})
    {
        expect_refused(value, array, "32 bit signed integer array");
        expect_refused(value, array_of<double>({1, 1}, {1}), "decimal array");
        expect_refused(value, array_of<float>({1, 1}, {1}), "decimal array");
        expect_refused(value, array_of<bool>({1, 1}, {true}), "boolean array");
        expect_refused(value, array_of<VPropstring>({1, 1}, {L"a"}), "string array");
        expect_refused(value, cells({VProp(1)}), "array");
        expect_refused(value, structures({members_of({{"a", VProp(1)}})}), "structure array");
        expect_refused(value, VProp(VProparray<VPropstruct>()), "structure array");
    }
}

TEST(PropertyBridgeSet, PropertiesOfOtherTypesTakeNothing)
{
    for (const VProp& property :
         {VProp(_s_vela_RGB()), VProp(std::complex<double>(1, 2)), array_of<std::complex<double>>({1, 2}, {1, 2}),
          VProp(VProparray<std::complex<int>>())})
        for (const Value& value :
             {Value(), Value(true), Value(1), Value(1.5), Value("a"), list({}), list({1, 2}), object({})})
            expect_refused(value, property, "unsupported");
    for (const Value& value : {Value(), Value(true), Value(1), Value(1.5), Value("a"), list({}), object({})})
    {
        VProp empty;
        EXPECT_INVALID_ARGUMENT(set_value(value, empty), "Property has unsupported type");
        EXPECT_TRUE(empty.empty());
    }
}

TEST(PropertyBridgeSet, AValueOfNoKindIsRefused)
{
    Value value(1);
    const json_test::ForgedKind forged(value, 7);
    expect_refused(value, VProp(1), "32 bit signed integer");
    expect_refused(value, VProp("a"), "string");
    expect_refused(value, structure({}), "structure");
    expect_refused(value, cells({VProp(1)}), "array");
}

TEST(PropertyBridgeSet, WritingDetaches)
{
    const VProp original(1);
    VProp copy(original);
    EXPECT_TRUE(set_value(Value(2), copy));
    EXPECT_EQ(original.get<int>(), 1);
    EXPECT_EQ(copy.get<int>(), 2);
}

TEST(PropertyBridgeSet, AnEqualScalarIsNotWritten)
{
    const VProp number(5);
    VProp same_number(number);
    EXPECT_FALSE(set_value(Value(5), same_number));
    EXPECT_FALSE(set_value(Value(5.0), same_number));
    EXPECT_EQ(address_of(same_number), address_of(number));
    const VProp text("text");
    VProp same_text(text);
    EXPECT_FALSE(set_value(Value("text"), same_text));
    EXPECT_EQ(address_of(same_text), address_of(text));
    const VProp zero(0.0);
    VProp minus_zero(zero);
    EXPECT_FALSE(set_value(Value(-0.0), minus_zero));
    EXPECT_FALSE(std::signbit(minus_zero.get<double>()));
}

TEST(PropertyBridgeSet, ScalarsAreAssigned)
{
    VProp property(1);
    const auto info = boost::make_shared<VPropInfo>();
    property.set_info(info);
    ASSERT_TRUE(property.lock());
    const VProp locked_copy(property);
    ASSERT_NE(address_of(locked_copy), address_of(property));
    EXPECT_FALSE(set_value(Value(1), property));
    EXPECT_NE(address_of(VProp(property)), address_of(property)) << "an equal value was written";
    EXPECT_TRUE(set_value(Value(2), property));
    EXPECT_EQ(property.get<int>(), 2);
    EXPECT_EQ(property.get_info(), info);
    EXPECT_EQ(address_of(VProp(property)), address_of(property)) << "the new container is locked";
}

TEST(PropertyBridgeSet, TheValueStaysAsItIs)
{
    const Value value = object({{"a", 1}, {"b", 2.0}, {"c", list({3})}});
    const Value before(value);
    VProp property = structure({{"a", VProp(1.5)}, {"b", VProp(1)}, {"c", array_of<float>({1, 1}, {1})}});
    set_value(value, property);
    EXPECT_EQ(value, before);
}

}
