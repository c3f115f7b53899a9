// Where paths lead, and what merging adds.
#include "json/property_kinds.h"

#include <Json/property_bridge.h>
#include <Json/write.h>

#include <gtest/gtest.h>

#include <complex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using Json::Value;
using List = Value::List;
using Object = Value::Object;
using vela_test::array_of;
using vela_test::property_kinds;
using vela_test::structure;

namespace {

using Found = std::pair<const VProp*, std::string>;

const Found not_found{nullptr, ""};

/// Where both forms lead, which has to be the same.
Found found(VProp& property, const std::string& path)
{
    const std::pair<VProp*, std::string> written = Json::find_property(property, path);
    const Found read = Json::find_property(static_cast<const VProp&>(property), path);
    EXPECT_EQ(read.first, written.first) << path;
    EXPECT_EQ(read.second, written.second) << path;
    return read;
}

/// a: { b: 1, "": 2, n: [1,2] }, c: {1, { x: 5 }, "t"}, s: ({ y: 6 }, { y: 7, z: { w: 8 } })
VProp sample()
{
    const VProp a(structure({{"b", VProp(1)}, {"", VProp(2)}, {"n", array_of<int>({}, {1, 2})}}));
    const VProp c = array_of<VProp>({}, {VProp(1), VProp(structure({{"x", VProp(5)}})), VProp("t")});
    const VProp s = array_of<VPropstruct>(
        {}, {structure({{"y", VProp(6)}}), structure({{"y", VProp(7)}, {"z", VProp(structure({{"w", VProp(8)}}))}})});
    return VProp(structure({{"a", a}, {"c", c}, {"s", s}, {"e", VProp()}}));
}

TEST(Finding, OfAMemberHasNoRest)
{
    VProp property = sample();
    EXPECT_EQ(found(property, "a"), Found(&property.getp("a", false), ""));
    EXPECT_EQ(found(property, "a/b"), Found(&property.getp("a.b", false), ""));
    EXPECT_EQ(found(property, "e"), Found(&property.getp("e", false), ""));
    EXPECT_EQ(found(property, "c"), Found(&property.getp("c", false), ""));
    EXPECT_EQ(found(property, "s"), Found(&property.getp("s", false), ""));
    EXPECT_EQ(found(property, "a/n"), Found(&property.getp("a.n", false), ""));
}

TEST(Finding, OfAMissingMemberIsNothing)
{
    VProp property = sample();
    for (const char* path : {"", "x", "A", "a/x", "x/a", "/a", "a//b", " a", "a /b", "a.b"})
        EXPECT_EQ(found(property, path), not_found) << path;
}

TEST(Finding, TakesTheEmptyPartForAMemberWithoutAName)
{
    VProp property = sample();
    VProp& a = property.getp("a", false);
    const VProp* const nameless = &a.get<VPropstruct>().at(1).second;
    EXPECT_EQ(found(a, ""), Found(nameless, ""));
    EXPECT_EQ(found(property, "a/"), Found(nameless, ""));
}

TEST(Finding, GoesOnBehindAMemberThatHoldsNothingMore)
{
    VProp property = sample();
    EXPECT_EQ(found(property, "a/b/"), not_found);
    EXPECT_EQ(found(property, "a/b/x"), not_found);
    EXPECT_EQ(found(property, "e/x"), not_found);
}

TEST(Finding, CountsTheElementsOfAnArrayOfProperties)
{
    VProp property = sample();
    EXPECT_EQ(found(property, "c/0"), Found(&property.getp("c{0}", false), ""));
    EXPECT_EQ(found(property, "c/2"), Found(&property.getp("c{2}", false), ""));
    EXPECT_EQ(found(property, "c/1/x"), Found(&property.getp("c{1}.x", false), ""));
    EXPECT_EQ(found(property, "c/01/x"), Found(&property.getp("c{1}.x", false), ""));
    EXPECT_EQ(found(property, "c/0/x"), not_found);
    EXPECT_EQ(found(property, "c/1/y"), not_found);
}

TEST(Finding, InAnArrayOfPropertiesGoesThroughElementTwo)
{
    VProp property(structure({{"a", array_of<VProp>({}, {VProp(0), VProp(0), VProp(structure({{"b", VProp(1)}}))})}}));
    EXPECT_EQ(found(property, "a/2/b"), Found(&property.getp("a{2}.b", false), ""));
    EXPECT_EQ(found(property, "a/9"), not_found);
}

TEST(Finding, NeedsANumberBelowTheCountOfAnArrayOfProperties)
{
    VProp property = sample();
    for (const char* part : {"3", "9", "-1", "-0", "", "x", "1x", "1.0", "0x1", "18446744073709551616",
                             "18446744073709551617", "18446744073709551615", "99999999999999999999999", "1e0"})
    {
        EXPECT_EQ(found(property, std::string("c/") + part), not_found) << part;
        EXPECT_EQ(found(property, std::string("c/") + part + "/x"), not_found) << part;
    }
}

TEST(Finding, CountsInTheOrderOfStorageWhateverTheSizes)
{
    VProp cells = array_of<VProp>({2, 2}, {VProp(1), VProp(2), VProp(3), VProp(4)});
    EXPECT_EQ(found(cells, "1"), Found(&cells.getp("{1,0}", false), ""));
    EXPECT_EQ(found(cells, "2"), Found(&cells.getp("{0,1}", false), ""));
}

TEST(Finding, StopsAtAnArrayOfStructuresWithItsLastPart)
{
    VProp property = sample();
    const VProp* const array = &property.getp("s", false);
    for (const char* part : {"0", "1", "9", "-1", "x", ""})
        EXPECT_EQ(found(property, std::string("s/") + part), Found(array, part));
}

TEST(Finding, GoesThroughAnElementOfAnArrayOfStructuresToItsMember)
{
    VProp property = sample();
    EXPECT_EQ(found(property, "s/0/y"), Found(&property.getp("s(0).y", false), ""));
    EXPECT_EQ(found(property, "s/1/z"), Found(&property.getp("s(1).z", false), ""));
    EXPECT_EQ(found(property, "s/1/z/w"), Found(&property.getp("s(1).z.w", false), ""));
    for (const char* path : {"s/2/y", "s/-1/y", "s/x/y", "s//y", "s/0/z", "s/0/", "s/0/y/"})
        EXPECT_EQ(found(property, path), not_found) << path;
}

TEST(Finding, StopsAtAnyOtherArrayWithTheWholePath)
{
    for (const auto& kind : property_kinds())
    {
        VProp property = kind.sample;
        if (!property.get_arr(false) || property.get_id() == VProp::type_id<VProparray<VProp>> ||
            property.get_id() == VProp::type_id<VProparray<VPropstruct>>)
            continue;
        for (const char* path : {"0", "7", "x", "", "1/2/3", "/"})
            EXPECT_EQ(found(property, path), Found(&property, path)) << kind.name;
    }
    VProp property = sample();
    EXPECT_EQ(found(property, "a/n/1"), Found(&property.getp("a.n", false), "1"));
    EXPECT_EQ(found(property, "a/n/"), Found(&property.getp("a.n", false), ""));
}

TEST(Finding, InEveryOtherTypeIsNothing)
{
    for (const auto& kind : property_kinds())
    {
        VProp property = kind.sample;
        if (property.get_arr(false))
            continue;
        for (const char* path : {"", "0", "a", "a/b"})
            EXPECT_EQ(found(property, path), not_found) << kind.name;
    }
}

TEST(Finding, GivesWhatBelongsToThisTreeAlone)
{
    const VProp original = sample();
    VProp copy(original);
    for (const char* path : {"a/b", "c/1/x", "s/1/z/w"})
        Json::set_value(Value(77), *Json::find_property(copy, path).first);
    EXPECT_EQ(original.getp("a.b"), VProp(1));
    EXPECT_EQ(original.getp("c{1}.x"), VProp(5));
    EXPECT_EQ(original.getp("s(1).z.w"), VProp(8));
    EXPECT_EQ(copy.getp("a.b", false), VProp(77));
    EXPECT_EQ(copy.getp("c{1}.x", false), VProp(77));
    EXPECT_EQ(copy.getp("s(1).z.w", false), VProp(77));
}

TEST(Finding, CreatesNothing)
{
    VProp property = sample();
    const VProp before = sample();
    for (const char* path : {"x", "a/x/y", "c/9/x", "s/9/x", "e/x", "e/0"})
        found(property, path);
    EXPECT_TRUE(property == before);
}

std::string merged(const Object& from, Object into)
{
    const Object given = from;
    Json::merge(from, into);
    EXPECT_TRUE(from == given);
    std::ostringstream out;
    out << into;
    return out.str();
}

TEST(Merging, CopiesTheEntriesThatAreMissing)
{
    EXPECT_EQ(merged({{"a", Value(1)}, {"b", Value()}, {"", Value(List{Value(2)})}}, {{"c", Value(3)}}),
              R"({"":[2],"a":1,"b":null,"c":3})");
    EXPECT_EQ(merged({}, {{"c", Value(3)}}), R"({"c":3})");
    EXPECT_EQ(merged({{"c", Value(3)}}, {}), R"({"c":3})");
}

TEST(Merging, NeverOverwrites)
{
    const std::vector<Value> kinds{
        Value(), Value(true), Value(1), Value(1.5), Value("x"), Value(List{Value(1)}), Value(Object{{"k", Value(1)}})};
    for (const Value& from : kinds)
    {
        for (const Value& into : kinds)
        {
            if (from.is_object() && into.is_object())
                continue;
            Object target{{"a", into}};
            Json::merge(Object{{"a", from}}, target);
            EXPECT_TRUE(target == Object({{"a", into}}));
        }
    }
}

TEST(Merging, OfAnObjectAgainstANumberKeepsTheNumber)
{
    EXPECT_EQ(merged({{"a", Value(Object{{"b", Value(1)}})}}, {{"a", Value(5)}}), R"({"a":5})");
}

TEST(Merging, GoesOnInObjectsThatBothHave)
{
    const Object from{{"a", Value(Object{{"x", Value(Object{{"p", Value(1)}, {"q", Value(2)}})}, {"y", Value(3)}})}};
    const Object into{{"a", Value(Object{{"x", Value(Object{{"q", Value(9)}})}, {"z", Value(8)}})}};
    EXPECT_EQ(merged(from, into), R"({"a":{"x":{"p":1,"q":9},"y":3,"z":8}})");
}

TEST(Merging, DoesNotGoIntoLists)
{
    EXPECT_EQ(merged({{"a", Value(List{Value(Object{{"b", Value(1)}})})}}, {{"a", Value(List{Value(Object{})})}}),
              R"({"a":[{}]})");
}

TEST(Merging, WithItselfChangesNothing)
{
    Object object{{"a", Value(Object{{"b", Value(1)}})}, {"c", Value(2)}};
    const Object before = object;
    Json::merge(object, object);
    EXPECT_TRUE(object == before);
}

TEST(Merging, CopiesDeeply)
{
    const Object from{{"a", Value(Object{{"b", Value(1)}})}};
    Object into;
    Json::merge(from, into);
    into["a"].at("b") = Value(2);
    EXPECT_TRUE(from == Object({{"a", Value(Object{{"b", Value(1)}})}}));
}

}
