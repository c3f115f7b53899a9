// Lists go into arrays of their shape, objects into structures, and failures say where.
#include "support/expect_vela_error.h"
#include "json/counting_source.h"
#include "json/property_trees.h"

#include <Json/property_bridge.h>

#include <cstdint>
#include <string>

namespace {

using Json::get_value;
using Json::set_value;
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

/// The property takes the list, and gives it back.
void expect_written(VProp property, const Value& value)
{
    const vela_dt id = property.get_id();
    EXPECT_FALSE(set_value(value, property));
    EXPECT_EQ(property.get_id(), id);
    EXPECT_EQ(get_value(property), value);
}

void expect_refused(VProp property, const Value& value, const std::string& text)
{
    EXPECT_INVALID_ARGUMENT(set_value(value, property), text);
}

TEST(PropertyBridgeSetObject, WritesTheMembersThatItNames)
{
    VProp property = structure({{"c", VProp(1)}, {"a", VProp("old")}, {"b", VProp(true)}, {"", VProp(2.5)}});
    set_value(object({{"a", "new"}, {"c", 5}, {"", 3}}), property);
    EXPECT_TRUE(property == structure({{"c", VProp(5)}, {"a", VProp("new")}, {"b", VProp(true)}, {"", VProp(3.0)}}));
}

TEST(PropertyBridgeSetObject, WritesTheFirstOfTwoMembersWithOneName)
{
    VProp property = structure({{"a", VProp(1)}, {"a", VProp(2)}});
    set_value(object({{"a", 5}}), property);
    EXPECT_TRUE(property == structure({{"a", VProp(5)}, {"a", VProp(2)}}));
}

TEST(PropertyBridgeSetObject, AnEmptyOneChangesNothing)
{
    VProp property = structure({{"a", VProp(1)}});
    EXPECT_FALSE(set_value(object({}), property));
    EXPECT_TRUE(property == structure({{"a", VProp(1)}}));
}

TEST(PropertyBridgeSetObject, TheAnswerIsFalseWhateverChanged)
{
    VProp property = structure({{"a", VProp(1)}, {"b", VProp(2)}, {"c", structure({{"d", VProp(3)}})}});
    EXPECT_FALSE(set_value(object({{"a", 5}, {"b", 6}, {"c", object({{"d", 7}})}}), property));
    EXPECT_EQ(get_value(property), object({{"a", 5}, {"b", 6}, {"c", object({{"d", 7}})}}));
    VProp array = array_of<int>({1, 1}, {1});
    EXPECT_FALSE(set_value(list({2}), array));
    EXPECT_EQ(get_value(array), list({2}));
    VProp one_cell = cells({VProp(1)});
    EXPECT_FALSE(set_value(list({2}), one_cell));
    EXPECT_EQ(get_value(one_cell), list({2}));
}

TEST(PropertyBridgeSetObject, AMissingMemberIsNamed)
{
    expect_refused(structure({{"a", VProp(1)}}), object({{"b", 1}}), "No property 'b'");
    expect_refused(structure({}), object({{"", 1}}), "No property ''");
    expect_refused(structure({{"a.b", VProp(1)}}), object({{"a", 1}}), "No property 'a'");
    expect_refused(structure({{"a", structure({})}}), object({{"a/b", 1}}), "No property 'a/b'");
}

TEST(PropertyBridgeSetObject, AFailureInAMemberIsToldFromTheOutsideIn)
{
    const VProp property = structure({{"a", structure({{"b", VProp(1)}})}});
    expect_refused(property, object({{"a", object({{"b", 3.5}})}}),
                   "Invalid argument for property 'a'\n"
                   "Invalid argument for property 'b'\n"
                   "Property has 32 bit signed integer type");
    expect_refused(property, object({{"a", object({{"c", 1}})}}), "Invalid argument for property 'a'\nNo property 'c'");
    expect_refused(property, object({{"a", 1}}), "Invalid argument for property 'a'\nProperty has structure type");
    expect_refused(property, object({{"a", Value()}}),
                   "Invalid argument for property 'a'\nProperty has structure type");
}

TEST(PropertyBridgeSetObject, OnlyTheMembersThatAreOpenAreTold)
{
    const VProp property =
        structure({{"a", structure({{"x", VProp(1)}})}, {"b", structure({{"y", VProp(1)}})}, {"c", VProp(1)}});
    const Value inner_a = object({{"x", 2}});
    expect_refused(property, object({{"a", inner_a}, {"b", object({{"y", "no"}})}}),
                   "Invalid argument for property 'b'\nInvalid argument for property 'y'\n"
                   "Property has 32 bit signed integer type");
    expect_refused(property, object({{"a", inner_a}, {"b", object({{"y", 1}})}, {"c", true}}),
                   "Invalid argument for property 'c'\nProperty has 32 bit signed integer type");
    expect_refused(property, object({{"a", inner_a}, {"d", 1}}), "No property 'd'");
}

TEST(PropertyBridgeSetObject, ArraysAddNothingToThePlace)
{
    const VProp property =
        structure({{"a", cells({VProp(1), structure({{"b", structures({members_of({{"c", VProp(1)}})})}})})}});
    expect_refused(property, object({{"a", list({1, object({{"b", list({object({{"c", "no"}})})}})})}}),
                   "Invalid argument for property 'a'\nInvalid argument for property 'b'\n"
                   "Invalid argument for property 'c'\nProperty has 32 bit signed integer type");
    expect_refused(property, object({{"a", list({"no", object({})})}}),
                   "Invalid argument for property 'a'\nProperty has 32 bit signed integer type");
}

TEST(PropertyBridgeSetObject, WhatWasWrittenBeforeAFailureStays)
{
    VProp property = structure({{"c", VProp(1)}, {"b", VProp(1)}, {"a", VProp(1)}});
    EXPECT_INVALID_ARGUMENT(set_value(object({{"a", 5}, {"b", "no"}, {"c", 5}}), property),
                            "Invalid argument for property 'b'\nProperty has 32 bit signed integer type");
    EXPECT_EQ(get_value(property), object({{"a", 5}, {"b", 1}, {"c", 1}}));
    VProp array = array_of<int>({1, 3}, {1, 1, 1});
    EXPECT_INVALID_ARGUMENT(set_value(list({5, "no", 5}), array), "Property has 32 bit signed integer array type");
    EXPECT_EQ(get_value(array), list({5, 1, 1}));
}

TEST(PropertyBridgeSetObject, ManyMembersAreFoundAsFew)
{
    VPropstruct members;
    Value::Object object;
    vela_prop_reserve(members, 20000);
    for (int i = 20000 - 1; i >= 0; --i)
    {
        const std::string key = "member " + std::to_string(i / 2); // each twice
        members.push_back({key, VProp(-1)});
        object[key] = Value(i / 2);
    }
    VProp property(members);
    set_value(Value(object), property);
    int count = 0;
    for (const auto& [key, member] : std::as_const(property).get<VPropstruct>())
    {
        const bool is_first = count++ % 2 == 0;
        EXPECT_EQ(member.get<int>(), is_first ? *object.at(key).if_integer() : -1) << key;
    }
    object["no member"] = Value(1);
    EXPECT_INVALID_ARGUMENT(set_value(Value(object), property), "No property 'no member'");
}

TEST(PropertyBridgeSetList, GoesIntoArraysOfEveryElementType)
{
    expect_written(array_of<bool>({1, 3}, {false, false, true}), list({true, false, false}));
    expect_written(array_of<unsigned char>({1, 2}, {1, 1}), list({0, 255}));
    expect_written(array_of<char>({1, 2}, {1, 1}), list({-128, 127}));
    expect_written(array_of<unsigned short>({1, 2}, {1, 1}), list({0, 65535}));
    expect_written(array_of<short>({1, 2}, {1, 1}), list({-32768, 32767}));
    expect_written(array_of<unsigned int>({1, 2}, {1, 1}), list({0, 4294967295U}));
    expect_written(array_of<int>({1, 2}, {1, 1}), list({INT32_MIN, INT32_MAX}));
    expect_written(array_of<std::uint64_t>({1, 2}, {1, 1}), list({0, INT64_MAX}));
    expect_written(array_of<std::int64_t>({1, 2}, {1, 1}), list({INT64_MIN, INT64_MAX}));
    expect_written(array_of<float>({1, 2}, {1, 1}), list({0.5, -2.0}));
    expect_written(array_of<double>({1, 2}, {1, 1}), list({0.1, 1e300}));
    expect_written(array_of<VPropstring>({1, 2}, {L"", L""}), list({"a", "\xc2\xb5"}));
    expect_written(cells({VProp(1), VProp("x"), structure({{"a", VProp(1)}}), cells({VProp(true)})}),
                   list({2, "y", object({{"a", 5}}), list({false})}));
    expect_written(structures({members_of({{"a", VProp(1)}}), members_of({{"b", VProp("x")}})}),
                   list({object({{"a", 5}}), object({{"b", "y"}})}));
}

TEST(PropertyBridgeSetList, ElementsAreConvertedAsScalarsAre)
{
    VProp integers = array_of<short>({1, 2}, {0, 0});
    set_value(list({7.0, -7}), integers);
    EXPECT_EQ(get_value(integers), list({7, -7}));
    VProp decimals = array_of<float>({1, 2}, {0, 0});
    set_value(list({7, 0.1}), decimals);
    EXPECT_EQ(get_value(decimals), list({7.0, static_cast<double>(0.1F)}));
    const VProp bytes = array_of<unsigned char>({1, 1}, {0});
    for (const Value& value :
         {Value(256), Value(-1), Value(0.5), Value(256.0), Value(true), Value("1"), Value(), list({1}), object({})})
        expect_refused(bytes, list({value}), "Property has 8 bit unsigned integer array type");
    expect_refused(array_of<bool>({1, 1}, {true}), list({1}), "Property has boolean array type");
    expect_refused(array_of<VPropstring>({1, 1}, {L"a"}), list({1}), "Property has string array type");
    expect_refused(array_of<double>({1, 1}, {1}), list({"1"}), "Property has decimal array type");
    expect_refused(structures({members_of({})}), list({1}), "Property has structure array type");
    expect_refused(structures({members_of({})}), list({object({{"a", 1}})}), "No property 'a'");
    expect_refused(cells({VProp(1)}), list({"1"}), "Property has 32 bit signed integer type");
    expect_refused(cells({VProp()}), list({1}), "Property has unsupported type");
}

TEST(PropertyBridgeSetList, HasToBeAsLongAsTheArray)
{
    const VProp array = array_of<int>({1, 3}, {1, 2, 3});
    for (const Value& value : {list({}), list({1}), list({1, 2}), list({1, 2, 3, 4})})
    {
        expect_refused(array, value, "Property has 32 bit signed integer array type");
        expect_refused(cells({VProp(1), VProp(1), VProp(1)}), value, "Property has array type");
        expect_refused(structures({members_of({}), members_of({}), members_of({})}), value,
                       "Property has structure array type");
    }
    expect_refused(cells({VProp(1)}), list({}), "Property has array type");
}

TEST(PropertyBridgeSetList, OfAnotherLengthLeavesASharedArrayShared)
{
    const VProp original = array_of<int>({1, 3}, {1, 2, 3});
    VProp copy(original);
    EXPECT_INVALID_ARGUMENT(set_value(list({1, 2}), copy), "Property has 32 bit signed integer array type");
    EXPECT_EQ(address_of(copy), address_of(original));
}

TEST(PropertyBridgeSetList, TwoDimensionsTakeListsOfLists)
{
    const VProp array = array_of<int>({2, 3}, {0, 0, 0, 0, 0, 0});
    const Value value = list({list({1, 2, 3}), list({4, 5, 6})});
    expect_written(array, value);
    VProp written(array);
    set_value(value, written);
    EXPECT_TRUE(written == array_of<int>({2, 3}, {1, 2, 3, 4, 5, 6})); // in the order in which they lie
    EXPECT_EQ(written.get_arr(true)->get_size(true), (json_test::Sizes{2, 3}));
    for (const Value& other :
         {list({1, 2, 3, 4, 5, 6}), list({list({1, 2}), list({3, 4}), list({5, 6})}),
          list({list({1, 2, 3}), list({4, 5})}), list({list({1, 2, 3}), 4}), list({list({1, 2, 3}), object({})}),
          list({list({1, 2, list({3})}), list({4, 5, 6})}), list({list({list({1, 2, 3}), list({4, 5, 6})})})})
        expect_refused(array, other, "Property has 32 bit signed integer array type");
}

TEST(PropertyBridgeSetList, DimensionsOfSizeOneHaveNoList)
{
    expect_written(array_of<int>({1, 3}, {0, 0, 0}), list({1, 2, 3}));
    expect_written(array_of<int>({3, 1, 1}, {0, 0, 0}), list({1, 2, 3}));
    expect_written(array_of<int>({2, 1, 2}, {0, 0, 0, 0}), list({list({1, 2}), list({3, 4})}));
    expect_written(array_of<int>({1, 1}, {0}), list({1}));
    expect_refused(array_of<int>({1, 3}, {0, 0, 0}), list({list({1, 2, 3})}),
                   "Property has 32 bit signed integer array type");
}

TEST(PropertyBridgeSetList, ArraysOfPropertiesAndOfStructuresHaveShapesToo)
{
    expect_written(array_of<VProp>({2, 2}, {VProp(0), VProp(""), cells({VProp(0)}), VProp(0.0)}),
                   list({list({1, "b"}), list({list({3}), 4.5})}));
    const VProp members = array_of<VPropstruct>(
        {2, 2}, {members_of({{"a", VProp(0)}}), members_of({}), members_of({}), members_of({{"b", VProp(0)}})});
    expect_written(members, list({list({object({{"a", 1}}), object({})}), list({object({}), object({{"b", 2}})})}));
    expect_refused(members, list({list({object({{"a", 1}}), object({})}), list({object({})})}),
                   "Property has structure array type");
    // What comes first is told first.
    expect_refused(members, list({list({object({{"x", 1}}), object({})}), 5}), "No property 'x'");
}

TEST(PropertyBridgeSetList, AnArrayWithoutElementsTakesAnyListAndNothingIsSet)
{
    for (const Value& value : {list({}), list({1, 2}), list({"a", Value()})})
        for (const VProp& property : {VProp(VProparray<int>()), array_of<int>({0, 3}, {}), VProp(VProparray<VProp>()),
                                      VProp(VProparray<VPropstruct>()), VProp(VProparray<bool>())})
        {
            VProp target(property);
            EXPECT_FALSE(set_value(value, target));
            EXPECT_EQ(get_value(target), list({}));
        }
}

TEST(PropertyBridgeSetList, SizesThatDoNotFitTheElementsAreRefused)
{
    VProp array = array_of<int>({2, 3}, {1, 2, 3, 4, 5});
    EXPECT_VELA_ERROR(set_value(list({1, 2, 3, 4, 5}), array), -1, "Invalid size vector in property array!");
}

TEST(PropertyBridgeSetList, WritingLeavesCopiesAsTheyWere)
{
    const VProp original = structure({{"a", array_of<int>({1, 2}, {1, 2})},
                                      {"b", structures({members_of({{"c", VProp(1)}})})},
                                      {"d", cells({VProp(1), structure({{"e", VProp("x")}})})},
                                      {"f", structure({{"g", VProp(1)}})},
                                      {"h", structure({{"i", VProp(1)}})}});
    const Value before = get_value(original);
    VProp copy(original);
    const Value changes = object({{"a", list({5, 6})},
                                  {"b", list({object({{"c", 7}})})},
                                  {"d", list({8, object({{"e", "y"}})})},
                                  {"f", object({{"g", 9}})}});
    EXPECT_FALSE(set_value(changes, copy));
    EXPECT_EQ(get_value(original), before);
    Value after(changes);
    after.at("h") = before.if_object()->at("h");
    EXPECT_EQ(get_value(copy), after);
    EXPECT_EQ(address_of(member_of(copy, "h")), address_of(member_of(original, "h"))); // nobody came there
}

TEST(PropertyBridgeSetList, MembersThatShareAContainerAreWrittenEachForItself)
{
    const VProp shared = structure({{"x", VProp(1)}});
    VProp property = structure({{"a", shared}, {"b", shared}});
    set_value(object({{"a", object({{"x", 5}})}}), property);
    EXPECT_EQ(get_value(property), object({{"a", object({{"x", 5}})}, {"b", object({{"x", 1}})}}));
    EXPECT_EQ(get_value(shared), object({{"x", 1}}));
}

Value self_filling(std::size_t count, boost::shared_ptr<json_test::CountingSource>& source)
{
    source = json_test::counting_source(count);
    return Value(boost::shared_ptr<const Json::ListSource>(source));
}

TEST(PropertyBridgeSetList, AListThatFillsItselfIsWritten)
{
    boost::shared_ptr<json_test::CountingSource> source;
    VProp array = array_of<int>({1, 4}, {9, 9, 9, 9});
    EXPECT_FALSE(set_value(self_filling(4, source), array));
    EXPECT_EQ(get_value(array), list({0, 1, 2, 3}));
    VProp elements = cells({VProp(9), VProp(9.5)});
    EXPECT_FALSE(set_value(self_filling(2, source), elements));
    EXPECT_EQ(get_value(elements), list({0, 1.0}));
}

TEST(PropertyBridgeSetList, AListThatFillsItselfAndIsOfAnotherLengthIsNotFilled)
{
    boost::shared_ptr<json_test::CountingSource> source;
    expect_refused(array_of<int>({1, 4}, {9, 9, 9, 9}), self_filling(1000000, source),
                   "Property has 32 bit signed integer array type");
    EXPECT_EQ(source->made, 0u);
    expect_refused(structure({{"a", VProp(1)}}), object({{"a", self_filling(1000000, source)}}),
                   "Invalid argument for property 'a'\nProperty has 32 bit signed integer type");
    EXPECT_EQ(source->made, 0u);
}

}
