// Every kind of value into every type of property, by a table that was written from the rules.
#include "props/attachment.h"
#include "json/property_kinds.h"

#include <Json/property_bridge.h>
#include <Json/write.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using Json::Value;
using List = Value::List;
using Object = Value::Object;
using vela_test::array_of;
using vela_test::property_kinds;
using vela_test::structure;
using vela_test::text_of_wrong_type;

namespace {

/// The integers that a type of property holds, and how one is made from its low bits.
struct IntegerRow
{
    int id;
    std::int64_t lowest;
    std::uint64_t highest;
    VProp (*make)(std::uint64_t low_bits);
};

template <class T>
IntegerRow row_of()
{
    return {VProp(T()).get_id(), static_cast<std::int64_t>(std::numeric_limits<T>::min()),
            static_cast<std::uint64_t>(std::numeric_limits<T>::max()),
            [](std::uint64_t low_bits) { return VProp(static_cast<T>(low_bits)); }};
}

const IntegerRow integer_rows[] = {row_of<char>(),           row_of<unsigned char>(), row_of<short>(),
                                   row_of<unsigned short>(), row_of<int>(),           row_of<unsigned int>(),
                                   row_of<std::int64_t>(),   row_of<std::uint64_t>()};

const IntegerRow* integer_row(int id)
{
    for (const IntegerRow& row : integer_rows)
    {
        if (row.id == id)
            return &row;
    }
    return nullptr;
}

std::optional<VProp> integer_as(const IntegerRow& row, std::int64_t integer)
{
    if (integer < row.lowest || (integer > 0 && static_cast<std::uint64_t>(integer) > row.highest))
        return std::nullopt;
    return row.make(static_cast<std::uint64_t>(integer));
}

std::optional<VProp> integer_as(const IntegerRow& row, double decimal)
{
    const double beyond = std::ldexp(1.0, std::ilogb(static_cast<double>(row.highest / 2 + 1)) + 1);
    if (!std::isfinite(decimal) || std::trunc(decimal) != decimal)
        return std::nullopt;
    if (decimal < static_cast<double>(row.lowest) || decimal >= beyond)
        return std::nullopt;
    return row.make(decimal < 0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(decimal))
                                : static_cast<std::uint64_t>(decimal));
}

/// What a property of the type of `property` becomes by `value`; nothing where it is refused.
std::optional<VProp> scalar_after(const Value& value, const VProp& property)
{
    const int id = property.get_id();
    if (const bool* boolean = value.if_boolean(); boolean && id == 0x10000)
        return VProp(*boolean);
    if (const std::string* text = value.if_string(); text && id == 0x20000)
        return VProp(*text);
    if (const std::int64_t* integer = value.if_integer())
    {
        if (id == 64)
            return VProp(static_cast<float>(*integer));
        if (id == 128)
            return VProp(static_cast<double>(*integer));
        if (const IntegerRow* row = integer_row(id))
            return integer_as(*row, *integer);
    }
    if (const double* decimal = value.if_decimal())
    {
        if (id == 64)
            return VProp(static_cast<float>(*decimal));
        if (id == 128)
            return VProp(*decimal);
        if (const IntegerRow* row = integer_row(id))
            return integer_as(*row, *decimal);
    }
    return std::nullopt;
}

/// Numbers around every limit, as integers and as decimals.
std::vector<Value> scalar_values()
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    std::vector<Value> values{Value(true), Value(false),  Value(""),        Value("x"),
                              Value("1"),  Value("true"), Value("\xc3\xa9")};
    for (int bits = 0; bits < 64; ++bits)
    {
        const bool limit = bits % 8 == 0 || bits % 8 == 7 || bits == 24 || bits == 25 || bits == 53 || bits == 54;
        for (const std::int64_t offset : {-1, 0, 1})
        {
            if (!limit)
                continue;
            const std::uint64_t low_bits = (std::uint64_t(1) << bits) + static_cast<std::uint64_t>(offset);
            values.emplace_back(static_cast<std::int64_t>(low_bits));
            values.emplace_back(static_cast<std::int64_t>(0 - low_bits));
        }
    }
    for (int bits = -3; bits <= 65; ++bits)
    {
        const double power = std::ldexp(1.0, bits);
        for (const double number :
             {power, power - 1, power + 1, std::nextafter(power, 0.0), std::nextafter(power, infinity), power + 0.5})
        {
            values.emplace_back(number);
            values.emplace_back(-number);
        }
    }
    for (const double number : {0.0, -0.0, 3.5, 0.1, 1e15, 1e19, 1e38, std::numeric_limits<double>::denorm_min()})
        values.emplace_back(number);
    return values;
}

std::string json(const Value& value)
{
    std::ostringstream out;
    out << std::hexfloat << value;
    return out.str();
}

/// Sets a scalar and holds answer, failure and what is there then against the table.
void check_scalar(const Value& value, const char* name, const VProp& start)
{
    SCOPED_TRACE(json(value) + " into " + name);
    VProp property = start;
    const std::optional<VProp> after = scalar_after(value, start);
    if (!after)
    {
        try
        {
            Json::set_value(value, property);
            ADD_FAILURE() << "taken";
        }
        catch (const std::invalid_argument& error)
        {
            EXPECT_EQ(std::string(error.what()), text_of_wrong_type(name));
        }
        EXPECT_TRUE(property == start);
        return;
    }
    EXPECT_EQ(Json::set_value(value, property), !(*after == start));
    EXPECT_EQ(property.get_id(), start.get_id());
    EXPECT_TRUE(property == *after);
    EXPECT_FALSE(Json::set_value(value, property)) << "the second time";
    EXPECT_TRUE(property == *after);
}

TEST(SettingScalars, FollowsTheTableForEveryPairOfValueAndType)
{
    const std::vector<Value> values = scalar_values();
    std::size_t taken = 0;
    for (const auto& kind : property_kinds())
    {
        for (const Value& value : values)
        {
            check_scalar(value, kind.name, kind.sample);
            taken += scalar_after(value, kind.sample).has_value();
        }
    }
    EXPECT_GT(taken, 3000u);
}

TEST(SettingScalars, RefusesListsAndObjectsInEveryOtherType)
{
    for (const auto& kind : property_kinds())
    {
        const std::string name = kind.name;
        for (const Value& value :
             {Value(List{}), Value(List{Value(1)}), Value(Object{}), Value(Object{{"a", Value(1)}})})
        {
            if (value.is_list() ? kind.sample.get_arr(false) != nullptr : name == "structure")
                continue;
            VProp property = kind.sample;
            try
            {
                Json::set_value(value, property);
                ADD_FAILURE() << json(value) << " into " << name;
            }
            catch (const std::invalid_argument& error)
            {
                EXPECT_EQ(std::string(error.what()), text_of_wrong_type(name));
            }
            EXPECT_TRUE(property == kind.sample);
        }
    }
}

TEST(SettingScalars, OfADecimalWithAFractionNamesTheIntegerType)
{
    VProp property(7);
    try
    {
        Json::set_value(Value(3.5), property);
        ADD_FAILURE();
    }
    catch (const std::invalid_argument& error)
    {
        EXPECT_EQ(std::string(error.what()), "Property has 32 bit signed integer type");
    }
    EXPECT_EQ(property.get<int>(), 7);
}

TEST(SettingScalars, OfWhatNoIntegerIsIsRefusedByEveryIntegerType)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const auto& kind : property_kinds())
    {
        if (!integer_row(kind.sample.get_id()))
            continue;
        for (const double number : {infinity, -infinity, std::nan(""), 1e300, -1e300})
            check_scalar(Value(number), kind.name, kind.sample);
    }
}

TEST(SettingScalars, OfInfinityAndNanIsTakenByBothPrecisions)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double number : {infinity, -infinity})
    {
        check_scalar(Value(number), "decimal", VProp(0.0));
        check_scalar(Value(number), "decimal", VProp(0.0F));
    }
    VProp single(0.0F);
    VProp wide(0.0);
    EXPECT_TRUE(Json::set_value(Value(std::nan("")), single));
    EXPECT_TRUE(Json::set_value(Value(std::nan("")), wide));
    EXPECT_TRUE(std::isnan(single.get<float>()));
    EXPECT_TRUE(std::isnan(wide.get<double>()));
}

TEST(SettingScalars, OfNanChangesANanAsTheyAreUnequal)
{
    VProp property(std::nan(""));
    EXPECT_TRUE(Json::set_value(Value(std::nan("")), property));
}

TEST(SettingScalars, OfAnEqualNumberWritesNothing)
{
    VProp positive(0.0);
    EXPECT_FALSE(Json::set_value(Value(-0.0), positive));
    EXPECT_FALSE(std::signbit(positive.get<double>()));
    VProp negative(-0.0F);
    EXPECT_FALSE(Json::set_value(Value(0), negative));
    EXPECT_TRUE(std::signbit(negative.get<float>()));
}

TEST(SettingScalars, ComparesAfterTheConversion)
{
    VProp single(0.1F);
    EXPECT_FALSE(Json::set_value(Value(0.1), single));
    VProp wide(9007199254740992.0);
    EXPECT_FALSE(Json::set_value(Value(9007199254740993), wide));
}

TEST(SettingScalars, MakesAStringOfTheBytesOfTheText)
{
    VProp property(L"");
    EXPECT_TRUE(Json::set_value(Value("\xc3\xa9\xe2\x82\xac"), property));
    EXPECT_EQ(static_cast<const std::wstring&>(property.get<VPropstring>()), L"\xe9\x20ac");
    EXPECT_FALSE(Json::set_value(Value("\xc3\xa9\xe2\x82\xac"), property));
}

TEST(SettingScalars, LeavesThoseWhoShareAlone)
{
    const VProp original(1);
    VProp copy(original);
    EXPECT_TRUE(Json::set_value(Value(2), copy));
    EXPECT_EQ(original.get<int>(), 1);
    EXPECT_EQ(copy.get<int>(), 2);
}

TEST(SettingScalars, KeepsTheAttachment)
{
    for (const VProp& start : {VProp(false), VProp(1), VProp(0.5F), VProp(0.5), VProp("a")})
    {
        VProp property(start);
        property.set_info(prop_test::attachment(5));
        const Value value = start.get_id() == 0x10000 ? Value(true) : start.get_id() == 0x20000 ? Value("b") : Value(7);
        EXPECT_TRUE(Json::set_value(value, property));
        EXPECT_EQ(prop_test::number_of(property), 5);
    }
}

}
