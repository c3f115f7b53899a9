// What a walk makes on its way, and what it leaves alone.
#include "support/expect_vela_error.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Extents = std::vector<std::size_t>;

std::uint32_t id_of(const VProp& value)
{
    return static_cast<std::uint32_t>(value.get_id());
}

Extents sizes_of(const VProp& value)
{
    return value.get_arr(true)->get_size(false);
}

const VPropstruct& struct_in(const VProp& value)
{
    return value.get<VPropstruct>();
}

TEST(PathCreation, MakesStructsInStructs)
{
    VProp p;
    p["a.b"] = 1;
    ASSERT_EQ(struct_in(p).size(), 1u);
    EXPECT_EQ(struct_in(p).at(0).first, "a");
    const VProp& a = struct_in(p).at(0).second;
    ASSERT_EQ(struct_in(a).size(), 1u);
    EXPECT_EQ(struct_in(a).at(0).first, "b");
    EXPECT_EQ(struct_in(a).at(0).second.get<int>(), 1);
}

TEST(PathCreation, MakesACellArray)
{
    VProp p;
    EXPECT_TRUE(p["a{2}"].empty());
    const VProp& a = p.getp("a");
    EXPECT_EQ(id_of(a), 0x80004000u);
    EXPECT_EQ(sizes_of(a), (Extents{1, 3}));
}

TEST(PathCreation, MakesAStructArray)
{
    VProp p;
    EXPECT_TRUE(p["a(1).b"].empty());
    const VProp& a = p.getp("a");
    EXPECT_EQ(id_of(a), 0x80008000u);
    EXPECT_EQ(sizes_of(a), (Extents{1, 2}));
    EXPECT_TRUE(a.s(0).empty());
    EXPECT_TRUE(a.s(1).has_key("b"));
}

TEST(PathCreation, MakesAnyShape)
{
    VProp p;
    p["a{1,2,3}"] = 5;
    EXPECT_EQ(sizes_of(p.getp("a")), (Extents{2, 3, 4}));
    p["b(2,0).x"] = 6;
    EXPECT_EQ(sizes_of(p.getp("b")), (Extents{3, 1}));
    p["c{0,0,0,0,1}"] = 7;
    EXPECT_EQ(sizes_of(p.getp("c")), (Extents{1, 1, 1, 1, 2}));
    EXPECT_EQ(p.getp("a{1,2,3}").get<int>(), 5);
}

TEST(PathCreation, MakesTheWholeOfTheExample)
{
    VProp p;
    p["scan.axes(2).label{1,3}"] = L"x";
    EXPECT_EQ(sizes_of(p.getp("scan.axes")), (Extents{1, 3}));
    EXPECT_EQ(sizes_of(p.getp("scan.axes(2).label")), (Extents{2, 4}));
    EXPECT_TRUE(p.getp("scan.axes(2).label{1,3}").get<VPropstring>() == L"x");
    EXPECT_TRUE(p.getp("scan.axes(2).label{0,3}").empty());
}

TEST(PathCreation, MakesCellsInCells)
{
    VProp p;
    p["{1}{2}{0}"] = 4;
    EXPECT_EQ(sizes_of(p), (Extents{1, 2}));
    EXPECT_EQ(sizes_of(p.getp("{1}")), (Extents{1, 3}));
    EXPECT_EQ(sizes_of(p.getp("{1}{2}")), (Extents{1, 1}));
    EXPECT_TRUE(p.getp("{0}").empty());
}

TEST(PathCreation, GrowsArraysAlongTheirLastDimension)
{
    VProp p;
    p["a{1,1}"] = 1;
    p["a{0,4}"] = 2;
    EXPECT_EQ(sizes_of(p.getp("a")), (Extents{2, 5}));
    EXPECT_VELA_ERROR_IN(p["a{2,0}"], "VProparrayBase::get_idx", "sources/proparr", -1,
                         "Index 0 out of bounds! (2 >= 2)!");
    EXPECT_VELA_ERROR(p["a{0,0,0}{-1}"], -1, "Invalid index '-1' specified in segment '{-1}'!");
    EXPECT_EQ(sizes_of(p.getp("a")), (Extents{2, 5}));
    p["b(0).x"] = 1;
    p["b(3).x"] = 2;
    EXPECT_EQ(sizes_of(p.getp("b")), (Extents{1, 4}));
    EXPECT_EQ(p.getp("b(0).x").get<int>(), 1);
}

TEST(PathCreation, MakesElementsOfAnArrayThatIsStillEmpty)
{
    VProp p;
    p["a"] = VProparray<VProp>();
    p["a{2,2}"] = 1;
    EXPECT_EQ(sizes_of(p.getp("a")), (Extents{3, 3}));
    p["b"] = VProparray<VPropstruct>();
    p["b(1,0).x"] = 1;
    EXPECT_EQ(sizes_of(p.getp("b")), (Extents{2, 1}));
}

TEST(PathCreation, GivesThisValueForAnEmptyPath)
{
    VProp p;
    EXPECT_EQ(&p.getp("", true), &p);
    EXPECT_EQ(&p.getp("", false), &p);
    EXPECT_EQ(&p[""], &p);
    EXPECT_EQ(&static_cast<const VProp&>(p).getp(""), &p);
    EXPECT_TRUE(p.empty());
}

TEST(PathCreation, IgnoresADotAtTheEnd)
{
    VProp p;
    p["a."] = 1;
    EXPECT_EQ(struct_in(p).size(), 1u);
    EXPECT_EQ(p.getp("a").get<int>(), 1);
    p["b{1}."] = 2;
    EXPECT_EQ(p.getp("b{1}").get<int>(), 2);
    EXPECT_EQ(&p.getp("b{1}."), &p.getp("b{1}"));
}

TEST(PathCreation, ByTheConstantSubscriptOfAValueIsWanted)
{
    VProp p;
    const VProp& constant = p;
    EXPECT_TRUE(constant["a.b"].empty());
    EXPECT_TRUE(p.getp("a.b").empty());
    EXPECT_VELA_ERROR(constant.getp("a.c"), -1, "Struct member 'c' does not exist!");
    EXPECT_EQ(struct_in(p.getp("a")).size(), 1u);
    constant["c{1}"];
    EXPECT_EQ(sizes_of(p.getp("c")), (Extents{1, 2}));
}

TEST(PathCreation, LeavesWhatItMadeWhenItFails)
{
    VProp p;
    EXPECT_VELA_ERROR_IN(p["a(1)"], "VProp::getp", "sources/props", -1, "Path ...'(1)' ends in struct array!");
    ASSERT_TRUE(struct_in(p).has_key("a"));
    EXPECT_EQ(id_of(p.getp("a")), 0x80008000u);
    EXPECT_EQ(p.getp("a").get_arr(true)->count(), 0u) << "the element was not reached";

    VProp q;
    EXPECT_VELA_ERROR(q["x.y{-1}"], -1, "Invalid index '-1' specified in segment '{-1}'!");
    EXPECT_TRUE(q.getp("x.y").empty());

    VProp r;
    EXPECT_VELA_ERROR(r["x..y"], -1, "Error parsing prop path: '.y' starts with an empty segment!");
    EXPECT_TRUE(r.getp("x").empty());

    VProp t;
    EXPECT_VELA_ERROR(t["x(1){2}"], -1, "Expected path ...'{2}' to start with struct member!");
    EXPECT_EQ(sizes_of(t.getp("x")), (Extents{1, 2}));
}

TEST(PathCreation, MakesNothingWhereTheFirstSegmentIsWrong)
{
    VProp p;
    for (const char* const path : {".a", "1a", "{1", "(-1)", "{-1}.a", " a", "a b.c"})
    {
        EXPECT_THROW(p[path], VelaError) << path;
        EXPECT_TRUE(p.empty()) << path;
    }
}

TEST(PathCreation, ReplacesNoValueOfAnotherType)
{
    VProp p;
    p["number"] = 1.5;
    p["numbers"] = VProparray<double>();
    EXPECT_THROW(p["number.a"], VelaError);
    EXPECT_THROW(p["number{0}"], VelaError);
    EXPECT_THROW(p["number(0).a"], VelaError);
    EXPECT_THROW(p["numbers{0}"], VelaError);
    EXPECT_EQ(p.getp("number").get<double>(), 1.5);
    EXPECT_EQ(p.getp("numbers").get<VProparray<double>>().count(), 0u);
}

TEST(PathCreation, TakesAPathThatLiesInTheTreeItself)
{
    // Storage grows while the path is still needed, and the path lies in it.
    for (const std::string path : {"n", "new.b.c", "a-name-that-is-too-long-for-the-string-itself.short.b"})
    {
        VPropstruct members;
        members.emplace_back(path + ".x", VProp());
        members[members.begin()->first] = 5;
        EXPECT_EQ(members.getp(path + ".x").get<int>(), 5);
        VProp tree(members);
        EXPECT_EQ(tree[static_cast<const VProp&>(tree).get<VPropstruct>().begin()->first].get<int>(), 5);
    }
}

TEST(PathReading, MakesNothing)
{
    VProp p;
    EXPECT_THROW(p.getp("a", false), VelaError);
    EXPECT_THROW(p.getp("{0}", false), VelaError);
    EXPECT_THROW(p.getp("(0).a", false), VelaError);
    EXPECT_TRUE(p.empty());
    p["a{1}"] = 1;
    p["b"];
    EXPECT_THROW(p.getp("a{2}"), VelaError);
    EXPECT_THROW(p.getp("b.c"), VelaError);
    EXPECT_THROW(p.getp("b{0}"), VelaError);
    EXPECT_EQ(sizes_of(p.getp("a")), (Extents{1, 2}));
    EXPECT_TRUE(p.getp("b").empty());
}

TEST(PathReading, CountsAnIndexWithoutDigitsAsZero)
{
    VProp p;
    p["a{1,0}"] = 10;
    EXPECT_EQ(p.getp("a{1,}").get<int>(), 10);
    EXPECT_EQ(p.getp("a{1,x}").get<int>(), 10);
    p["b{}"] = 5;
    EXPECT_EQ(sizes_of(p.getp("b")), (Extents{1, 1}));
    p["c().x"] = 6;
    EXPECT_EQ(sizes_of(p.getp("c")), (Extents{1, 1}));
    p["d{,}"] = 7;
    EXPECT_EQ(p.getp("d{0,0}").get<int>(), 7);
    p["e{nothing}"] = 8;
    EXPECT_EQ(p.getp("e{0}").get<int>(), 8);
    p["f(1,).x"] = 9;
    EXPECT_EQ(sizes_of(p.getp("f")), (Extents{2, 1}));
}

TEST(PathReading, TakesTheNumberInFrontAndBlanksBeforeIt)
{
    VProp p;
    p["a{3}"] = 1;
    EXPECT_EQ(p.getp("a{ 3}").get<int>(), 1);
    EXPECT_EQ(p.getp("a{\t 3 }").get<int>(), 1);
    EXPECT_EQ(p.getp("a{+3}").get<int>(), 1);
    EXPECT_EQ(p.getp("a{003}").get<int>(), 1);
    EXPECT_EQ(p.getp("a{3x7}").get<int>(), 1);
    EXPECT_EQ(p.getp("a{0, 3}").get<int>(), 1);
    EXPECT_EQ(p.getp("a{0,3}").get<int>(), 1);
    EXPECT_EQ(p.getp("a{-0,3}").get<int>(), 1);
    EXPECT_EQ(p.getp("a{0x3,3}").get<int>(), 1);
}

TEST(PathReading, AcceptsAHigherRankWithZerosWhereItCreates)
{
    VProp p;
    p["a{3}"] = 1;
    EXPECT_EQ(p["a{0,3,0}"].get<int>(), 1);
    EXPECT_VELA_ERROR_IN(p.getp("a{0,3,0}"), "VProparrayBase::get_idx", "sources/proparr", -1,
                         "Input rank '2' too high (> '3')!");
    EXPECT_EQ(sizes_of(p.getp("a")), (Extents{1, 4}));
}

}
