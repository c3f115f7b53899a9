// Objects into structures, and lists into arrays.
#include "support/expect_vela_error.h"
#include "json/property_kinds.h"

#include <Json/property_bridge.h>
#include <Json/write.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
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

using Sizes = std::vector<std::size_t>;

std::string json_of(const VProp& property)
{
    std::ostringstream out;
    out << Json::get_value(property);
    return out.str();
}

/// The text of the invalid argument that setting this value is.
std::string failure_of(const Value& value, VProp& property)
{
    try
    {
        Json::set_value(value, property);
    }
    catch (const std::invalid_argument& error)
    {
        return error.what();
    }
    return "nothing failed";
}

Value list(std::initializer_list<Value> elements)
{
    return Value(List(elements));
}

TEST(SettingStructures, SetsTheNamedMembersAndLeavesTheOthers)
{
    VProp property(structure({{"a", VProp(1)}, {"b", VProp("x")}, {"c", VProp(2.5)}}));
    EXPECT_FALSE(Json::set_value(Value(Object{{"c", Value(4)}, {"a", Value(7.0)}}), property));
    EXPECT_EQ(json_of(property), R"({"a":7,"b":"x","c":4.0})");
}

TEST(SettingStructures, AnswersFalseWhateverChanged)
{
    VProp property(structure({{"a", VProp(1)}, {"b", VProp(true)}}));
    EXPECT_FALSE(Json::set_value(Value(Object{{"a", Value(2)}, {"b", Value(false)}}), property));
    EXPECT_FALSE(Json::set_value(Value(Object{{"a", Value(2)}}), property));
    EXPECT_FALSE(Json::set_value(Value(Object{}), property));
    EXPECT_EQ(json_of(property), R"({"a":2,"b":false})");
}

TEST(SettingStructures, RefusesAKeyThatIsNoMember)
{
    VProp property(structure({{"a", VProp(structure({{"b", VProp(1)}}))}}));
    EXPECT_THROW_TEXT(Json::set_value(Value(Object{{"x y", Value(1)}}), property), std::invalid_argument,
                      "No property 'x y'");
    EXPECT_THROW_TEXT(Json::set_value(Value(Object{{"", Value(1)}}), property), std::invalid_argument,
                      "No property ''");
    EXPECT_THROW_TEXT(Json::set_value(Value(Object{{"a.b", Value(1)}}), property), std::invalid_argument,
                      "No property 'a.b'");
    EXPECT_THROW_TEXT(Json::set_value(Value(Object{{"a", Value(Object{{"c", Value()}})}}), property),
                      std::invalid_argument, "Invalid argument for property 'a'\nNo property 'c'");
    EXPECT_EQ(json_of(property), R"({"a":{"b":1}})");
}

TEST(SettingStructures, SetsAMemberWhoseNameIsNoPath)
{
    VProp property(structure({{"a.b{1}", VProp(1)}, {"", VProp(2)}}));
    Json::set_value(Value(Object{{"a.b{1}", Value(3)}, {"", Value(4)}}), property);
    EXPECT_EQ(json_of(property), R"({"":4,"a.b{1}":3})");
}

TEST(SettingStructures, SetsTheFirstOfTwoMembersOfOneName)
{
    VProp property(structure({{"a", VProp(1)}, {"a", VProp(2)}}));
    Json::set_value(Value(Object{{"a", Value(9)}}), property);
    const VProp& read = property;
    EXPECT_EQ(read.get<VPropstruct>().front().second, VProp(9));
    EXPECT_EQ(read.get<VPropstruct>().back().second, VProp(2));
}

TEST(SettingStructures, TellsANestedFailureAsAPath)
{
    VProp property(structure({{"a", VProp(structure({{"b", VProp(structure({{"c", VProp(1)}}))}}))}}));
    const Value value(Object{{"a", Value(Object{{"b", Value(Object{{"c", Value("x")}})}})}});
    EXPECT_THROW_TEXT(Json::set_value(value, property), std::invalid_argument,
                      "Invalid argument for property 'a'\nInvalid argument for property 'b'\n"
                      "Invalid argument for property 'c'\nProperty has 32 bit signed integer type");
}

TEST(SettingStructures, KeepsWhatWasWrittenBeforeAFailureAndNothingBehind)
{
    VProp property(structure({{"d", VProp(1)}, {"c", VProp(1)}, {"b", VProp(1)}, {"a", VProp(1)}}));
    const Value value(Object{{"a", Value(2)}, {"b", Value(2)}, {"c", Value(true)}, {"d", Value(2)}});
    EXPECT_EQ(failure_of(value, property),
              "Invalid argument for property 'c'\nProperty has 32 bit signed integer type");
    EXPECT_EQ(json_of(property), R"({"a":2,"b":2,"c":1,"d":1})");
}

TEST(SettingStructures, KeepsWhatWasWrittenInAMemberThatFailed)
{
    VProp property(structure({{"m", VProp(structure({{"a", VProp(1)}, {"b", VProp(1)}}))}, {"n", VProp(1)}}));
    const Value value(Object{{"m", Value(Object{{"a", Value(2)}, {"b", Value()}})}, {"n", Value(2)}});
    EXPECT_EQ(failure_of(value, property), "Invalid argument for property 'm'\nInvalid argument for property 'b'\n"
                                           "Property has 32 bit signed integer type");
    EXPECT_EQ(json_of(property), R"({"m":{"a":2,"b":1},"n":1})");
}

TEST(SettingStructures, LeavesThoseWhoShareAlone)
{
    const VProp original(structure({{"a", VProp(structure({{"b", array_of<int>({}, {1, 2})}}))}}));
    VProp copy(original);
    Json::set_value(Value(Object{{"a", Value(Object{{"b", list({Value(3), Value(4)})}})}}), copy);
    EXPECT_EQ(json_of(original), R"({"a":{"b":[1,2]}})");
    EXPECT_EQ(json_of(copy), R"({"a":{"b":[3,4]}})");
}

TEST(SettingArrays, OfOneDimensionSetsEachElement)
{
    for (const Sizes& sizes : {Sizes{}, Sizes{3}, Sizes{1, 3}, Sizes{3, 1}, Sizes{1, 1, 3}})
    {
        VProp property = array_of<int>(sizes, {1, 2, 3});
        EXPECT_FALSE(Json::set_value(list({Value(4), Value(5.0), Value(-6)}), property));
        EXPECT_TRUE(property == array_of<int>({}, {4, 5, -6}));
        const VProp& read = property;
        EXPECT_EQ(read.get_arr(true)->get_size(false), sizes.empty() ? Sizes({1, 3}) : sizes);
    }
}

TEST(SettingArrays, OfTwoAndThreeDimensionsGoesByTheOrderOfStorage)
{
    VProp two = array_of<int>({2, 3}, {0, 0, 0, 0, 0, 0});
    Json::set_value(list({list({Value(1), Value(2), Value(3)}), list({Value(4), Value(5), Value(6)})}), two);
    EXPECT_TRUE(two == array_of<int>({}, {1, 2, 3, 4, 5, 6}));

    VProp three = array_of<double>({2, 1, 1, 3, 2}, std::vector<double>(12, 0.5));
    const auto triple = [](int first)
    {
        return list({list({Value(first), Value(first + 1)}), list({Value(first + 2), Value(first + 3)}),
                     list({Value(first + 4), Value(first + 5)})});
    };
    Json::set_value(list({triple(1), triple(7)}), three);
    EXPECT_TRUE(three == array_of<double>({}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST(SettingArrays, RefusesAListOfAnotherLength)
{
    VProp row = array_of<int>({}, {1, 2, 3});
    EXPECT_EQ(failure_of(list({}), row), "Property has 32 bit signed integer array type");
    EXPECT_EQ(failure_of(list({Value(4), Value(5)}), row), "Property has 32 bit signed integer array type");
    EXPECT_EQ(failure_of(list({Value(4), Value(5), Value(6), Value(7)}), row),
              "Property has 32 bit signed integer array type");
    EXPECT_TRUE(row == array_of<int>({}, {1, 2, 3}));

    VProp two = array_of<int>({2, 2}, {1, 2, 3, 4});
    EXPECT_EQ(failure_of(list({Value(1), Value(2), Value(3), Value(4)}), two),
              "Property has 32 bit signed integer array type");
    EXPECT_TRUE(two == array_of<int>({}, {1, 2, 3, 4}));
    const Value ragged = list({list({Value(5), Value(6)}), list({Value(7), Value(8), Value(9)})});
    EXPECT_EQ(failure_of(ragged, two), "Property has 32 bit signed integer array type");
    EXPECT_TRUE(two == array_of<int>({}, {5, 6, 3, 4})) << "the first line was written";
}

TEST(SettingArrays, RefusesAnElementThatIsNoListWhereOneHasToBe)
{
    VProp two = array_of<int>({2, 2}, {1, 2, 3, 4});
    for (const Value& wrong : {Value(9), Value(), Value(Object{}), Value("x")})
    {
        EXPECT_EQ(failure_of(list({list({Value(5), Value(6)}), wrong}), two),
                  "Property has 32 bit signed integer array type");
        EXPECT_TRUE(two == array_of<int>({}, {5, 6, 3, 4}));
    }
}

TEST(SettingArrays, RefusesAListWhereAnElementHasToBe)
{
    VProp row = array_of<int>({}, {1, 2});
    EXPECT_EQ(failure_of(list({list({Value(5)}), list({Value(6)})}), row),
              "Property has 32 bit signed integer array type");
    EXPECT_TRUE(row == array_of<int>({}, {1, 2}));
}

TEST(SettingArrays, WithoutElementsTakesAnyListAndSetsNothing)
{
    for (const auto& kind : property_kinds())
    {
        const std::string name = kind.name;
        if (name.find("array") == std::string::npos)
            continue;
        for (const Sizes& sizes : {Sizes{}, Sizes{0, 0}, Sizes{2, 0}, Sizes{0}})
        {
            VProp property = kind.sample;
            property.own();
            property.get_arr(true)->resize(0, true);
            property.get_arr(true)->set_size(sizes, VProparrayBase::set_only);
            EXPECT_FALSE(Json::set_value(list({}), property)) << name;
            EXPECT_FALSE(Json::set_value(list({Value(1), Value("x"), Value()}), property)) << name;
            EXPECT_EQ(property.get_arr(true)->count(), 0u) << name;
        }
    }
}

TEST(SettingArrays, OfOneElementTakesAListOfOne)
{
    VProp property = array_of<int>({1, 1, 1}, {1});
    EXPECT_FALSE(Json::set_value(list({Value(5)}), property));
    EXPECT_TRUE(property == array_of<int>({}, {5}));
    EXPECT_EQ(failure_of(list({list({Value(6)})}), property), "Property has 32 bit signed integer array type");
    EXPECT_TRUE(property == array_of<int>({}, {5}));
}

/// A list of two into arrays of two: what is taken, and how the second element fails.
struct ElementCase
{
    VProp start;
    Value good;
    std::vector<Value> refused;
    VProp after;
    const char* name;
};

template <class T>
ElementCase case_of(const char* name, const Value& good, T after, std::vector<Value> refused)
{
    refused.insert(refused.end(), {Value(), list({}), Value(Object{})});
    return {array_of<T>({}, {T(), T()}), good, refused, array_of<T>({}, {after, T()}), name};
}

TEST(SettingArrays, ConvertsElementsAsScalarsAndKeepsThoseBeforeAFailure)
{
    const Value text("1");
    const Value half(0.5);
    const std::vector<ElementCase> cases{
        case_of<bool>("boolean array", Value(true), true, {Value(1), Value(1.0), text}),
        case_of<char>("8 bit signed integer array", Value(-128.0), char(-128), {Value(128), Value(-129), half, text}),
        case_of<unsigned char>("8 bit unsigned integer array", Value(255), 255, {Value(256), Value(-1), half, text}),
        case_of<short>("16 bit signed integer array", Value(-32768), -32768, {Value(32768), half, Value(true)}),
        case_of<unsigned short>("16 bit unsigned integer array", Value(65535), 65535, {Value(65536), half, text}),
        case_of<int>("32 bit signed integer array", Value(-7.0), -7, {Value(2147483648), half, Value(true), text}),
        case_of<unsigned int>("32 bit unsigned integer array", Value(4294967295), 4294967295U, {Value(-1), half}),
        case_of<std::int64_t>("64 bit signed integer array", Value(-1e18), -1000000000000000000, {Value(1e19), half}),
        case_of<std::uint64_t>("64 bit unsigned integer array", Value(1e19), 10000000000000000000U, {Value(-1), half}),
        case_of<float>("decimal array", Value(0.1), 0.1F, {Value(true), text}),
        case_of<double>("decimal array", Value(3), 3.0, {Value(true), text}),
        case_of<VPropstring>("string array", Value("\xc3\xa9"), VPropstring(L"\xe9"), {Value(1), Value(true), half}),
    };
    for (const ElementCase& row : cases)
    {
        for (const Value& refused : row.refused)
        {
            VProp property(row.start);
            EXPECT_EQ(failure_of(list({row.good, refused}), property), text_of_wrong_type(row.name));
            EXPECT_TRUE(property == row.after) << row.name;
        }
    }
}

TEST(SettingArrays, OfStructuresTakesObjects)
{
    const auto element = [](int a) { return structure({{"a", VProp(a)}, {"b", VProp("x")}}); };
    VProp property = array_of<VPropstruct>({2, 2}, {element(1), element(2), element(3), element(4)});
    const auto object = [](int a) { return Value(Object{{"a", Value(a)}}); };
    EXPECT_FALSE(Json::set_value(list({list({object(5), object(6)}), list({Value(Object{}), object(8)})}), property));
    EXPECT_TRUE(property == array_of<VPropstruct>({}, {element(5), element(6), element(3), element(8)}));
}

TEST(SettingArrays, OfStructuresTellsAFailureOfTheElementAsThatOfAStructure)
{
    const VProp start = array_of<VPropstruct>({}, {structure({{"a", VProp(1)}}), structure({{"a", VProp(1)}})});
    VProp property(start);
    EXPECT_EQ(failure_of(list({Value(Object{{"a", Value(2)}}), Value(Object{{"b", Value(2)}})}), property),
              "No property 'b'");
    EXPECT_EQ(json_of(property), R"([{"a":2},{"a":1}])");
    EXPECT_EQ(failure_of(list({Value(Object{}), Value(Object{{"a", Value(2.5)}})}), property),
              "Invalid argument for property 'a'\nProperty has 32 bit signed integer type");
}

TEST(SettingArrays, OfStructuresRefusesElementsThatAreNoObjects)
{
    VProp property = array_of<VPropstruct>({}, {structure({{"a", VProp(1)}}), structure({{"a", VProp(1)}})});
    for (const Value& wrong : {Value(), Value(1), Value("x"), list({}), Value(true)})
    {
        EXPECT_EQ(failure_of(list({Value(Object{{"a", Value(2)}}), wrong}), property),
                  "Property has structure array type");
        EXPECT_EQ(json_of(property), R"([{"a":2},{"a":1}])");
    }
}

TEST(SettingArrays, OfPropertiesSetsEachByItsOwnType)
{
    VProp property =
        array_of<VProp>({}, {VProp(1), VProp("x"), array_of<int>({}, {1, 2}), VProp(structure({{"a", VProp(1)}}))});
    EXPECT_FALSE(Json::set_value(
        list({Value(2.0), Value("y"), list({Value(3), Value(4)}), Value(Object{{"a", Value(5)}})}), property));
    EXPECT_EQ(json_of(property), R"([2,"y",[3,4],{"a":5}])");
}

TEST(SettingArrays, OfPropertiesTellsTheTypeOfTheElement)
{
    VProp property = array_of<VProp>({}, {VProp(1), VProp("x"), VProp()});
    EXPECT_EQ(failure_of(list({Value(2), Value(3), Value(4)}), property), "Property has string type");
    EXPECT_EQ(failure_of(list({Value(3), Value("y"), Value(4)}), property), "Property has unsupported type");
    const VProp& read = property;
    EXPECT_EQ(read(0), VProp(3));
    EXPECT_EQ(read(1), VProp("y"));
    EXPECT_EQ(failure_of(list({Value(3)}), property), "Property has array type");
    VProp within(structure({{"c", property}}));
    EXPECT_EQ(failure_of(Value(Object{{"c", list({Value(1.5), Value(), Value()})}}), within),
              "Invalid argument for property 'c'\nProperty has 32 bit signed integer type");
}

TEST(SettingArrays, OfComplexNumbersIsRefused)
{
    for (const auto& kind : property_kinds())
    {
        VProp property = kind.sample;
        if (std::string(kind.name) != "unsupported" || !property.get_arr(false))
            continue;
        EXPECT_EQ(failure_of(list({Value(1)}), property), "Property has unsupported type");
    }
}

TEST(SettingArrays, GoesByTheLengthOfARowThatGrewBehindItsSizes)
{
    VProp property = array_of<int>({1, 2}, {1, 2, 3});
    EXPECT_FALSE(Json::set_value(list({Value(4), Value(5), Value(6)}), property));
    EXPECT_TRUE(property == array_of<int>({}, {4, 5, 6}));
}

TEST(SettingArrays, FailsWithItsOwnTextWhereTheSizesDoNotFit)
{
    const std::string text = "Invalid size vector in property array!";
    VProp property(structure({{"a", array_of<int>({2, 2}, {1, 2, 3})}}));
    EXPECT_VELA_ERROR(Json::set_value(Value(Object{{"a", list({Value(4), Value(5)})}}), property), -1, text);
}

}
