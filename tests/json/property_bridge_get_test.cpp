// Properties become values, and stay as they are.
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"
#include "json/property_trees.h"

#include <Json/property_bridge.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using Json::get_parameters;
using Json::get_value;
using Json::Value;
using json_test::address_of;
using json_test::array_of;
using json_test::cells;
using json_test::list;
using json_test::member_of;
using json_test::members_of;
using json_test::object;
using json_test::structure;
using json_test::structures;

const char* const unsupported = "Property has unsupported type";

template <class T>
void expect_limits()
{
    using Limits = std::numeric_limits<T>;
    EXPECT_EQ(get_value(VProp(Limits::max())), Value(Limits::max()));
    EXPECT_EQ(get_value(VProp(Limits::min())), Value(Limits::min()));
    EXPECT_TRUE(get_value(VProp(T(1))).is_integer());
}

TEST(PropertyBridgeGet, BooleansAreBooleans)
{
    EXPECT_EQ(get_value(VProp(true)), Value(true));
    EXPECT_EQ(get_value(VProp(false)), Value(false));
}

TEST(PropertyBridgeGet, IntegersOfEveryWidthAreIntegers)
{
    expect_limits<unsigned char>();
    expect_limits<char>();
    expect_limits<unsigned short>();
    expect_limits<short>();
    expect_limits<unsigned int>();
    expect_limits<int>();
    expect_limits<std::int64_t>();
}

TEST(PropertyBridgeGet, AnUnsignedNumberAboveTheSignedOnesIsABadCast)
{
    const std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(get_value(VProp(largest)), Value(INT64_MAX));
    EXPECT_BAD_CAST(get_value(VProp(largest + 1)));
    EXPECT_BAD_CAST(get_value(VProp(UINT64_MAX)));
    EXPECT_BAD_CAST(get_value(array_of<std::uint64_t>({1, 2}, {1, largest + 1})));
    EXPECT_BAD_CAST(get_value(structure({{"a", VProp(UINT64_MAX)}})));
}

TEST(PropertyBridgeGet, SingleAndDoublePrecisionAreDecimals)
{
    EXPECT_EQ(get_value(VProp(2.5)), Value(2.5));
    EXPECT_EQ(get_value(VProp(2.5F)), Value(2.5));
    EXPECT_EQ(get_value(VProp(0.1F)), Value(static_cast<double>(0.1F)));
    EXPECT_EQ(get_value(VProp(3.0)), Value(3.0)); // not the integer 3
    EXPECT_EQ(get_value(VProp(-INFINITY)), Value(-HUGE_VAL));
    EXPECT_TRUE(std::isnan(*get_value(VProp(std::nan(""))).if_decimal()));
}

TEST(PropertyBridgeGet, TextsComeInTheEncodingOfTheSystem)
{
    EXPECT_EQ(get_value(VProp("text")), Value("text"));
    EXPECT_EQ(get_value(VProp("")), Value(""));
    EXPECT_EQ(get_value(VProp(L"\u00b5m")), Value("\xc2\xb5m"));
    EXPECT_EQ(get_value(VProp(std::wstring(L"a\0b", 3))), Value(std::string("a\0b", 3)));
}

TEST(PropertyBridgeGet, StructuresAreObjects)
{
    EXPECT_EQ(get_value(structure({})), object({}));
    EXPECT_EQ(get_value(structure({{"b", VProp(1)}, {"a", VProp("x")}, {"", VProp(true)}})),
              object({{"a", "x"}, {"b", 1}, {"", true}}));
    EXPECT_EQ(get_value(structure({{"a", structure({{"b", structure({})}})}})),
              object({{"a", object({{"b", object({})}})}}));
}

TEST(PropertyBridgeGet, OfTwoMembersWithOneNameTheLastCounts)
{
    EXPECT_EQ(get_value(structure({{"a", VProp(1)}, {"b", VProp(2)}, {"a", VProp("last")}})),
              object({{"a", "last"}, {"b", 2}}));
    EXPECT_EQ(get_value(structure({{"a", structure({{"x", VProp(1)}})}, {"a", structure({{"y", VProp(2)}})}})),
              object({{"a", object({{"y", 2}})}}));
    EXPECT_EQ(get_value(structure({{"a", cells({VProp(1), cells({VProp(5)})})}, {"a", cells({VProp(2)})}})),
              object({{"a", list({2})}}));
}

TEST(PropertyBridgeGet, NothingElseHasAValue)
{
    EXPECT_INVALID_ARGUMENT(get_value(VProp()), unsupported);
    EXPECT_INVALID_ARGUMENT(get_value(VProp(_s_vela_RGB())), unsupported);
    EXPECT_INVALID_ARGUMENT(get_value(VProp(std::complex<double>(1, 2))), unsupported);
    EXPECT_INVALID_ARGUMENT(get_value(array_of<std::complex<float>>({1, 1}, {{1, 2}})), unsupported);
    EXPECT_INVALID_ARGUMENT(get_value(VProp(VProparray<std::complex<float>>())), unsupported);
    EXPECT_INVALID_ARGUMENT(get_value(structure({{"a", VProp(1)}, {"b", VProp()}})), unsupported);
    EXPECT_INVALID_ARGUMENT(get_value(cells({VProp(1), VProp()})), unsupported);
}

TEST(PropertyBridgeGet, TheFirstFailureIsTold)
{
    const VProp too_large(UINT64_MAX);
    EXPECT_BAD_CAST(get_value(structure({{"b", structure({{"c", too_large}})}, {"a", VProp()}})));
    EXPECT_INVALID_ARGUMENT(get_value(structure({{"b", structure({{"c", VProp()}})}, {"a", too_large}})), unsupported);
    EXPECT_BAD_CAST(get_value(cells({cells({too_large}), VProp()})));
    EXPECT_INVALID_ARGUMENT(get_value(structures({members_of({{"a", VProp()}}), members_of({{"a", too_large}})})),
                            unsupported);
}

TEST(PropertyBridgeGet, ARowIsOneList)
{
    EXPECT_EQ(get_value(array_of<int>({1, 3}, {1, 2, 3})), list({1, 2, 3}));
    EXPECT_EQ(get_value(array_of<int>({3, 1}, {1, 2, 3})), list({1, 2, 3}));
    EXPECT_EQ(get_value(array_of<int>({3}, {1, 2, 3})), list({1, 2, 3}));
    EXPECT_EQ(get_value(array_of<int>({}, {1, 2, 3})), list({1, 2, 3}));
    EXPECT_EQ(get_value(array_of<int>({1, 1, 3, 1}, {1, 2, 3})), list({1, 2, 3}));
}

TEST(PropertyBridgeGet, TwoDimensionsAreListsInTheOrderOfTheElements)
{
    EXPECT_EQ(get_value(array_of<int>({2, 3}, {1, 2, 3, 4, 5, 6})), list({list({1, 2, 3}), list({4, 5, 6})}));
    EXPECT_EQ(get_value(array_of<int>({3, 2}, {1, 2, 3, 4, 5, 6})), list({list({1, 2}), list({3, 4}), list({5, 6})}));
}

TEST(PropertyBridgeGet, ThreeDimensionsWithoutThatOfSizeOne)
{
    EXPECT_EQ(get_value(array_of<short>({2, 1, 2, 2}, {1, 2, 3, 4, 5, 6, 7, 8})),
              list({list({list({1, 2}), list({3, 4})}), list({list({5, 6}), list({7, 8})})}));
}

TEST(PropertyBridgeGet, OneElementIsAListOfOneWhateverTheSizes)
{
    EXPECT_EQ(get_value(array_of<int>({1, 1}, {7})), list({7}));
    EXPECT_EQ(get_value(array_of<int>({}, {7})), list({7}));
    EXPECT_EQ(get_value(array_of<int>({2, 3}, {7})), list({7}));
}

TEST(PropertyBridgeGet, WithoutElementsTheListIsEmptyWhateverTheSizes)
{
    EXPECT_EQ(get_value(VProp(VProparray<int>())), list({}));
    EXPECT_EQ(get_value(array_of<int>({2, 3}, {})), list({}));
    EXPECT_EQ(get_value(VProp(VProparray<VProp>())), list({}));
    EXPECT_EQ(get_value(VProp(VProparray<VPropstruct>())), list({}));
    EXPECT_EQ(get_value(array_of<bool>({0, 5}, {})), list({}));
}

TEST(PropertyBridgeGet, ARowThatGrewIsReadWhole)
{
    VProp row = array_of<int>({1, 2}, {1, 2});
    row.get<VProparray<int>>().push_back(3);
    EXPECT_EQ(get_value(row), list({1, 2, 3}));
}

TEST(PropertyBridgeGet, SizesThatDoNotFitTheElementsAreRefused)
{
    EXPECT_VELA_ERROR(get_value(array_of<int>({2, 3}, {1, 2, 3, 4, 5})), -1, "Invalid size vector in property array!");
    EXPECT_VELA_ERROR(get_value(array_of<VProp>({2, 2}, {VProp(1), VProp(2)})), -1,
                      "Invalid size vector in property array!");
}

TEST(PropertyBridgeGet, ArraysOfEveryElementType)
{
    EXPECT_EQ(get_value(array_of<bool>({1, 3}, {true, false, true})), list({true, false, true}));
    EXPECT_EQ(get_value(array_of<unsigned char>({1, 2}, {0, 255})), list({0, 255}));
    EXPECT_EQ(get_value(array_of<char>({1, 2}, {-128, 127})), list({-128, 127}));
    EXPECT_EQ(get_value(array_of<unsigned short>({1, 2}, {0, 65535})), list({0, 65535}));
    EXPECT_EQ(get_value(array_of<short>({1, 2}, {-32768, 32767})), list({-32768, 32767}));
    EXPECT_EQ(get_value(array_of<unsigned int>({1, 2}, {0, 4294967295U})), list({0, 4294967295U}));
    EXPECT_EQ(get_value(array_of<std::uint64_t>({1, 2}, {0, 5})), list({0, 5}));
    EXPECT_EQ(get_value(array_of<std::int64_t>({1, 2}, {INT64_MIN, INT64_MAX})), list({INT64_MIN, INT64_MAX}));
    EXPECT_EQ(get_value(array_of<float>({1, 2}, {0.5F, 2})), list({0.5, 2.0}));
    EXPECT_EQ(get_value(array_of<double>({1, 2}, {0.5, 2})), list({0.5, 2.0}));
    EXPECT_EQ(get_value(array_of<VPropstring>({1, 2}, {L"a", L"\u00b5"})), list({"a", "\xc2\xb5"}));
    EXPECT_EQ(get_value(structures({members_of({{"a", VProp(1)}}), members_of({{"b", VProp("x")}})})),
              list({object({{"a", 1}}), object({{"b", "x"}})}));
    EXPECT_EQ(get_value(cells({VProp(1), VProp("x"), structure({}), cells({VProp(true)})})),
              list({1, "x", object({}), list({true})}));
}

TEST(PropertyBridgeGet, ArraysOfPropertiesAndOfStructuresHaveShapesToo)
{
    EXPECT_EQ(get_value(array_of<VProp>({2, 2}, {VProp(1), VProp("b"), cells({VProp(3)}), VProp(4.0)})),
              list({list({1, "b"}), list({list({3}), 4.0})}));
    EXPECT_EQ(get_value(array_of<VPropstruct>({2, 2}, {members_of({{"a", VProp(1)}}), members_of({}),
                                                       members_of({{"a", VProp(3)}}), members_of({})})),
              list({list({object({{"a", 1}}), object({})}), list({object({{"a", 3}}), object({})})}));
}

TEST(PropertyBridgeGet, DetachesNothing)
{
    const VProp original = structure({{"a", structure({{"b", array_of<int>({1, 2}, {1, 2})}})}});
    const VProp copy(original);
    get_value(copy);
    get_parameters(copy);
    EXPECT_EQ(address_of(copy), address_of(original));
    EXPECT_EQ(address_of(member_of(copy, "a")), address_of(member_of(original, "a")));
}

TEST(PropertyBridgeParameters, AreTheObjectOfAStructure)
{
    const Json::Map<std::string, Value> parameters =
        get_parameters(structure({{"a", VProp(1)}, {"b", cells({VProp(2)})}}));
    EXPECT_EQ(Value(parameters), object({{"a", 1}, {"b", list({2})}}));
    EXPECT_TRUE(get_parameters(structure({})).empty());
}

TEST(PropertyBridgeParameters, AreEmptyForAnythingElse)
{
    for (const VProp& property : {VProp(), VProp(1), VProp("text"), cells({VProp(1)}), VProp(_s_vela_RGB()),
                                  structures({members_of({{"a", VProp(1)}})}), VProp(UINT64_MAX)})
        EXPECT_TRUE(get_parameters(property).empty());
}

TEST(PropertyBridgeParameters, FailAsTheirValues)
{
    EXPECT_INVALID_ARGUMENT(get_parameters(structure({{"a", VProp()}})), unsupported);
    EXPECT_BAD_CAST(get_parameters(structure({{"a", VProp(UINT64_MAX)}})));
}

}
