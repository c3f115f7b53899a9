// What value a property has.
#include "support/expect_bad_cast.h"
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

/// A failure of a kind that the caller sees as an invalid argument.
template <class Call>
void expect_invalid_argument(Call call, const std::string& text)
{
    try
    {
        call();
        ADD_FAILURE() << "nothing was thrown, expected: " << text;
    }
    catch (const std::invalid_argument& error)
    {
        EXPECT_EQ(std::string(error.what()), text);
    }
}

std::string json(const Value& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

std::string json_of(const VProp& property)
{
    return json(Json::get_value(property));
}

TEST(PropertyAsValue, OfABooleanIsABoolean)
{
    EXPECT_EQ(Json::get_value(VProp(true)), Value(true));
    EXPECT_EQ(Json::get_value(VProp(false)), Value(false));
}

TEST(PropertyAsValue, OfEveryIntegerIsAnInteger)
{
    EXPECT_EQ(Json::get_value(VProp(char(-128))), Value(-128));
    EXPECT_EQ(Json::get_value(VProp(static_cast<unsigned char>(255))), Value(255));
    EXPECT_EQ(Json::get_value(VProp(short(-32768))), Value(-32768));
    EXPECT_EQ(Json::get_value(VProp(static_cast<unsigned short>(65535))), Value(65535));
    EXPECT_EQ(Json::get_value(VProp(std::numeric_limits<int>::min())), Value(std::numeric_limits<int>::min()));
    EXPECT_EQ(Json::get_value(VProp(0xffffffffU)), Value(0xffffffffU));
    EXPECT_EQ(Json::get_value(VProp(std::numeric_limits<std::int64_t>::min())),
              Value(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(Json::get_value(VProp(std::uint64_t(0x7fffffffffffffff))), Value(0x7fffffffffffffff));
}

TEST(PropertyAsValue, OfAnUnsignedNumberAboveTheSignedRangeIsABadCastAtAnyDepth)
{
    const VProp above(std::uint64_t(0x8000000000000000));
    const VProp within(structure({{"a", array_of<VProp>({}, {VProp(1), above})}}));
    EXPECT_BAD_CAST(Json::get_value(above));
    EXPECT_BAD_CAST(Json::get_value(within));
    EXPECT_BAD_CAST(Json::get_parameters(within));
    EXPECT_BAD_CAST(Json::get_value(array_of<std::uint64_t>({}, {1, std::numeric_limits<std::uint64_t>::max()})));
}

TEST(PropertyAsValue, OfBothPrecisionsIsADecimal)
{
    EXPECT_EQ(Json::get_value(VProp(2.0)), Value(2.0));
    EXPECT_EQ(Json::get_value(VProp(0.1F)), Value(static_cast<double>(0.1F)));
    EXPECT_TRUE(Json::get_value(VProp(1.0F)).is_decimal());
}

TEST(PropertyAsValue, OfAStringIsItsByteForm)
{
    EXPECT_EQ(Json::get_value(VProp(L"")), Value(""));
    EXPECT_EQ(Json::get_value(VProp(L"\xe9\x20ac<")), Value("\xc3\xa9\xe2\x82\xac<"));
    EXPECT_EQ(Json::get_value(VProp(std::wstring(L"a\0b", 3))), Value(std::string("a\0b", 3)));
    EXPECT_EQ(Json::get_value(VProp("12")), Value("12"));
}

TEST(PropertyAsValue, OfAStructureIsAnObjectOfItsMembers)
{
    EXPECT_EQ(json_of(VProp(VPropstruct())), "{}");
    const VProp inner(structure({{"y", VProp(1.5)}}));
    EXPECT_EQ(json_of(VProp(structure({{"b", VProp(1)}, {"a", inner}, {"", VProp("x")}, {"a.b/{1}", VProp(true)}}))),
              R"({"":"x","a":{"y":1.5},"a.b/{1}":true,"b":1})");
}

TEST(PropertyAsValue, OfTwoMembersOfOneNameIsTheLast)
{
    EXPECT_EQ(json_of(VProp(structure({{"a", VProp(1)}, {"a", VProp(2)}}))), R"({"a":2})");
    EXPECT_EQ(json_of(VProp(structure({{"a", VProp(structure({{"x", VProp(1)}}))}, {"a", VProp(structure({}))}}))),
              R"({"a":{}})");
}

TEST(PropertyAsValue, IsMissingForEveryOtherType)
{
    std::size_t count = 0;
    for (const auto& kind : property_kinds())
    {
        if (std::string(kind.name) != "unsupported")
            continue;
        ++count;
        expect_invalid_argument([&kind] { Json::get_value(kind.sample); }, text_of_wrong_type("unsupported"));
        expect_invalid_argument(
            [&kind] {
                Json::get_value(VProp(structure({{"a", kind.sample}})));
            },
            text_of_wrong_type("unsupported"));
        expect_invalid_argument([&kind] { Json::get_value(array_of<VProp>({}, {kind.sample})); },
                                text_of_wrong_type("unsupported"));
    }
    EXPECT_EQ(count, 22u);
}

TEST(PropertyAsValue, OfEveryOtherTypeIsThere)
{
    for (const auto& kind : property_kinds())
    {
        const std::string name = kind.name;
        // An array of properties is made with an empty one, which has no value.
        if (name == "unsupported" || name == "array")
            continue;
        EXPECT_FALSE(Json::get_value(kind.sample).is_null()) << name;
    }
}

TEST(PropertyAsValue, LeavesSharedContainersShared)
{
    const VProp original(structure({{"a", array_of<int>({}, {1, 2})}}));
    const VProp copy(original);
    Json::get_value(copy);
    EXPECT_EQ(copy.value_ptr(), original.value_ptr());
}

TEST(ArrayAsValue, OfNoElementsIsTheEmptyListWhateverItsSizes)
{
    for (const auto& kind : property_kinds())
    {
        const std::string name = kind.name;
        if (name.find("array") == std::string::npos)
            continue;
        VProp array = kind.sample;
        array.own();
        array.get_arr(true)->resize(0, true);
        for (const Sizes& sizes : {Sizes{}, Sizes{0, 0}, Sizes{0}, Sizes{2, 0}, Sizes{1, 0}, Sizes{3, 0, 1}})
        {
            array.get_arr(true)->set_size(sizes, VProparrayBase::set_only);
            EXPECT_EQ(json_of(array), "[]") << name;
        }
    }
}

TEST(ArrayAsValue, OfOneElementIsAListOfOneWhateverItsSizes)
{
    for (const Sizes& sizes : {Sizes{}, Sizes{1}, Sizes{1, 1}, Sizes{1, 1, 1}})
        EXPECT_EQ(json_of(array_of<int>(sizes, {7})), "[7]");
}

TEST(ArrayAsValue, OfTwoDimensionsIsListsInTheOrderOfStorage)
{
    const std::vector<int> six{1, 2, 3, 4, 5, 6};
    EXPECT_EQ(json_of(array_of<int>({2, 3}, six)), "[[1,2,3],[4,5,6]]");
    EXPECT_EQ(json_of(array_of<int>({3, 2}, six)), "[[1,2],[3,4],[5,6]]");
}

TEST(ArrayAsValue, DropsDimensionsOfSizeOne)
{
    const std::vector<int> six{1, 2, 3, 4, 5, 6};
    for (const Sizes& sizes : {Sizes{}, Sizes{6}, Sizes{1, 6}, Sizes{6, 1}, Sizes{1, 1, 6, 1}})
        EXPECT_EQ(json_of(array_of<int>(sizes, six)), "[1,2,3,4,5,6]");
    for (const Sizes& sizes : {Sizes{1, 2, 3}, Sizes{2, 1, 3}, Sizes{2, 3, 1}, Sizes{1, 2, 1, 3, 1}})
        EXPECT_EQ(json_of(array_of<int>(sizes, six)), "[[1,2,3],[4,5,6]]");
    EXPECT_EQ(json_of(array_of<int>({1, 3}, {1, 2, 3})), "[1,2,3]");
}

TEST(ArrayAsValue, OfThreeDimensionsIsListsInListsInLists)
{
    std::vector<int> elements;
    for (int i = 0; i < 24; ++i)
        elements.push_back(i);
    EXPECT_EQ(json_of(array_of<int>({2, 3, 4}, elements)),
              "[[[0,1,2,3],[4,5,6,7],[8,9,10,11]],[[12,13,14,15],[16,17,18,19],[20,21,22,23]]]");
    EXPECT_EQ(json_of(array_of<int>({4, 3, 2}, elements)),
              "[[[0,1],[2,3],[4,5]],[[6,7],[8,9],[10,11]],[[12,13],[14,15],[16,17]],[[18,19],[20,21],[22,23]]]");
}

TEST(ArrayAsValue, HasTheElementsAsTheyHaveValuesOutsideOfArrays)
{
    EXPECT_EQ(json_of(array_of<bool>({}, {true, false, true})), "[true,false,true]");
    EXPECT_EQ(json_of(array_of<char>({}, {char(-1), char(65)})), "[-1,65]");
    EXPECT_EQ(json_of(array_of<unsigned char>({}, {255, 65})), "[255,65]");
    EXPECT_EQ(json_of(array_of<short>({}, {-2, 3})), "[-2,3]");
    EXPECT_EQ(json_of(array_of<unsigned short>({}, {65535, 3})), "[65535,3]");
    EXPECT_EQ(json_of(array_of<unsigned int>({}, {4294967295U, 3})), "[4294967295,3]");
    EXPECT_EQ(json_of(array_of<std::int64_t>({}, {-5, 3})), "[-5,3]");
    EXPECT_EQ(json_of(array_of<std::uint64_t>({}, {5, 3})), "[5,3]");
    EXPECT_EQ(json_of(array_of<float>({}, {0.5F, 3})), "[0.5,3.0]");
    EXPECT_EQ(json_of(array_of<double>({}, {0.25, -3})), "[0.25,-3.0]");
    EXPECT_EQ(json_of(array_of<VPropstring>({}, {VPropstring(L"\xe9"), VPropstring(L"")})), "[\"\xc3\xa9\",\"\"]");
    EXPECT_EQ(json_of(array_of<VPropstruct>({2, 2}, {structure({{"a", VProp(1)}}), structure({}), structure({}),
                                                     structure({{"b", array_of<int>({}, {4})}})})),
              R"([[{"a":1},{}],[{},{"b":[4]}]])");
    EXPECT_EQ(json_of(array_of<VProp>({}, {VProp(1), VProp("x"), array_of<int>({}, {1, 2}), VProp(structure({}))})),
              R"([1,"x",[1,2],{}])");
}

TEST(ArrayAsValue, OfARowThatGrewBehindItsSizesIsAsLongAsItIs)
{
    EXPECT_EQ(json_of(array_of<int>({1, 2}, {1, 2, 3})), "[1,2,3]");
    EXPECT_EQ(json_of(array_of<int>({0, 0}, {1, 2, 3})), "[1,2,3]");
    EXPECT_EQ(json_of(array_of<int>({5}, {1, 2, 3})), "[1,2,3]");
}

TEST(ArrayAsValue, FailsWhereTheSizesDoNotFitTheElements)
{
    const std::string text = "Invalid size vector in property array!";
    const VProp stale = array_of<int>({2, 2}, {1, 2, 3});
    EXPECT_VELA_ERROR(Json::get_value(stale), -1, text);
    EXPECT_VELA_ERROR(Json::get_value(VProp(structure({{"a", stale}}))), -1, text);
    EXPECT_VELA_ERROR(Json::get_value(array_of<VProp>({}, {stale, VProp(1)})), -1, text);
}

TEST(Parameters, OfAStructureAreItsObject)
{
    const VProp property(structure({{"b", VProp(1)}, {"a", VProp(structure({{"c", VProp("x")}}))}}));
    EXPECT_EQ(json(Value(Json::get_parameters(property))), R"({"a":{"c":"x"},"b":1})");
}

TEST(Parameters, OfEveryOtherTypeAreNone)
{
    for (const auto& kind : property_kinds())
        EXPECT_TRUE(Json::get_parameters(kind.sample).empty()) << kind.name;
}

TEST(Parameters, FailAsTheValueDoes)
{
    expect_invalid_argument(
        [] {
            Json::get_parameters(VProp(structure({{"a", VProp()}})));
        },
        text_of_wrong_type("unsupported"));
}

TEST(TypeNames, StandInTheFailureOfNullForEveryType)
{
    for (const auto& kind : property_kinds())
    {
        VProp property = kind.sample;
        const VProp before(property);
        expect_invalid_argument([&property] { Json::set_value(Value(), property); }, text_of_wrong_type(kind.name));
        EXPECT_TRUE(property == before) << kind.name;
    }
}

TEST(TypeNames, StandBehindThePathOfAMember)
{
    for (const auto& kind : property_kinds())
    {
        VProp property(structure({{"m", kind.sample}}));
        expect_invalid_argument(
            [&property] {
                Json::set_value(Value(Object{{"m", Value()}}), property);
            },
            "Invalid argument for property 'm'\n" + text_of_wrong_type(kind.name));
    }
}

}
