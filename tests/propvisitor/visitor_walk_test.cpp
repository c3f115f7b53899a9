// In which order a walk calls what, and what the answers do.
#include "propvisitor/recorder.h"
#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using visitor_test::array_of;
using visitor_test::numbers;
using visitor_test::Recorder;
using visitor_test::structure;

namespace {

std::vector<std::string> calls_of(const VProp& tree)
{
    Recorder visitor;
    EXPECT_TRUE(visitor.process(tree));
    EXPECT_THAT(visitor.level_keys(), IsEmpty());
    EXPECT_THAT(visitor.level_indices(), IsEmpty());
    EXPECT_THAT(visitor.level_containers(), IsEmpty());
    EXPECT_EQ(visitor.cur_string(), VPropPos::no_index);
    return visitor.calls;
}

VProp strings()
{
    return array_of<VPropstring>({}, {VPropstring(L"x"), VPropstring(L""), VPropstring(L"z")});
}

/// Two structures, the first with members "a" and "b", the second with "c".
VProp two_structures()
{
    return array_of<VPropstruct>({}, {structure({{"a", VProp(1)}, {"b", VProp(2)}}), structure({{"c", VProp(3)}})});
}

TEST(Walk, VisitsAndLeavesALeafOnce)
{
    for (const VProp& leaf :
         {VProp(), VProp(1), VProp("x"), VProp(true), VProp(_s_vela_RGB()), VProp(std::complex<float>()),
          array_of<double>({}, {1, 2, 3}), array_of<bool>({}, {true}), array_of<std::complex<int>>({}, {{1, 2}})})
        EXPECT_THAT(calls_of(leaf), ElementsAre("value ", "exit "));
}

TEST(Walk, GoesIntoExactlyFourTypes)
{
    const Recorder visitor;
    EXPECT_TRUE(visitor.goes_into(VProp(VProparray<VProp>())));
    EXPECT_TRUE(visitor.goes_into(VProp(VProparray<VPropstruct>())));
    EXPECT_TRUE(visitor.goes_into(VProp(VProparray<VPropstring>())));
    EXPECT_TRUE(visitor.goes_into(VProp(VPropstruct())));
    for (const VProp& leaf : {VProp(), VProp(1), VProp("x"), VProp(0.5), VProp(_s_vela_RGB()),
                              VProp(std::complex<int>()), VProp(VProparray<int>()), VProp(VProparray<bool>()),
                              VProp(VProparray<char>()), VProp(VProparray<std::complex<double>>())})
        EXPECT_FALSE(visitor.goes_into(leaf));
}

TEST(Walk, OfEmptyContainersFindsNothingInThem)
{
    for (const VProp& empty : {VProp(VProparray<VProp>()), VProp(VProparray<VPropstruct>()),
                               VProp(VProparray<VPropstring>()), VProp(VPropstruct())})
        EXPECT_THAT(calls_of(empty), ElementsAre("value ", "exit "));
}

TEST(Walk, OfAStructureGoesThroughItsMembersInTheirOrder)
{
    EXPECT_THAT(
        calls_of(VProp(structure({{"b", VProp(1)}, {"a", VProp(structure({{"x", VProp()}}))}, {"c", VProp()}}))),
        ElementsAre("value ", "value b", "exit b", "value a", "value a.x", "exit a.x", "exit a", "value c", "exit c",
                    "exit "));
}

TEST(Walk, OfAStructureGivesOneLevelAllKeysInTurn)
{
    Recorder visitor;
    visitor.record_moves = true;
    EXPECT_TRUE(visitor.process(VProp(structure({{"a", VProp(1)}, {"b", VProp(2)}}))));
    EXPECT_THAT(visitor.calls, ElementsAre("value ", "decend none", "key a", "value a", "exit a", "key b", "value b",
                                           "exit b", "ascend", "exit "));
}

TEST(Walk, OfACellArrayGoesDownForEachElement)
{
    Recorder visitor;
    visitor.record_moves = true;
    EXPECT_TRUE(visitor.process(array_of<VProp>({}, {VProp(1), VProp(VPropstruct())})));
    EXPECT_THAT(visitor.calls, ElementsAre("value ", "decend 0", "value {0}", "exit {0}", "ascend", "decend 1",
                                           "value {1}", "decend none", "ascend", "exit {1}", "ascend", "exit "));
}

TEST(Walk, OfAStructArrayVisitsTheElementsAsStructures)
{
    Recorder visitor;
    visitor.record_moves = true;
    EXPECT_TRUE(visitor.process(two_structures()));
    EXPECT_THAT(visitor.calls,
                ElementsAre("value ", "decend 0", "element (0)", "key a", "value (0)", "exit (0)", "key b", "value (0)",
                            "exit (0)", "element exit (0)", "ascend", "decend 1", "element (1)", "key c", "value (1)",
                            "exit (1)", "element exit (1)", "ascend", "exit "));
}

TEST(Walk, OfAStringArrayMakesNoLevels)
{
    Recorder visitor;
    visitor.record_moves = true;
    EXPECT_TRUE(visitor.process(VProp(structure({{"s", strings()}}))));
    EXPECT_THAT(visitor.calls, ElementsAre("value ", "decend none", "key s", "value s", "string 0 at s: x",
                                           "string 1 at s: ", "string 2 at s: z", "exit s", "ascend", "exit "));
}

TEST(Walk, KnowsItsContainersFromTheOutermost)
{
    const VProp tree(structure({{"c", array_of<VProp>({}, {two_structures()})}}));
    const VProp& cell = tree.getp("c");
    const VProp& array = tree.getp("c{0}");
    Recorder visitor;
    std::size_t checked = 0;
    visitor.on_element = [&](const std::string&)
    {
        EXPECT_THAT(visitor.level_containers(), ElementsAre(&tree, &cell, &array));
        EXPECT_EQ(visitor.level_indices().size(), 3u);
        ++checked;
        return 1;
    };
    EXPECT_TRUE(visitor.process(tree));
    EXPECT_EQ(checked, 2u);
}

TEST(WalkAnswers, OfTwoLeaveOutTheChildrenAndStillExit)
{
    for (const VProp& container :
         {VProp(structure({{"a", VProp(1)}})), array_of<VProp>({}, numbers(2)), two_structures(), strings()})
    {
        Recorder visitor;
        visitor.on_value = [](const std::string&, const VProp&) { return 2; };
        EXPECT_TRUE(visitor.process(container));
        EXPECT_THAT(visitor.calls, ElementsAre("value ", "exit "));
        EXPECT_THAT(visitor.level_containers(), IsEmpty());
    }
}

TEST(WalkAnswers, OfTwoOnALeafGoOn)
{
    Recorder visitor;
    visitor.on_value = [](const std::string& path, const VProp&) { return path.empty() ? 1 : 2; };
    EXPECT_TRUE(visitor.process(VProp(structure({{"a", VProp(1)}, {"b", VProp(structure({{"x", VProp()}}))}}))));
    EXPECT_THAT(visitor.calls, ElementsAre("value ", "value a", "exit a", "value b", "exit b", "exit "));
}

TEST(WalkAnswers, OfZeroStopAtOnceWithoutAnyExit)
{
    Recorder visitor;
    visitor.on_value = [](const std::string&, const VProp&) { return 0; };
    EXPECT_FALSE(visitor.process(VProp(1)));
    EXPECT_THAT(visitor.calls, ElementsAre("value "));
}

TEST(WalkAnswers, OfZeroOnAMemberLeaveThePlaceThere)
{
    const VProp tree(structure({{"a", VProp(1)}, {"b", VProp(2)}, {"c", VProp(3)}}));
    Recorder visitor;
    visitor.record_moves = true;
    visitor.on_value = [](const std::string& path, const VProp&) { return path == "b" ? 0 : 1; };
    EXPECT_FALSE(visitor.process(tree));
    EXPECT_EQ(visitor.get_cur_path(), "b");
    EXPECT_EQ(visitor.get_cur_key(), "b");
    EXPECT_THAT(visitor.level_containers(), ElementsAre(&tree));
    EXPECT_THAT(visitor.calls, ElementsAre("value ", "decend none", "key a", "value a", "exit a", "key b", "value b"));
}

TEST(WalkAnswers, OfZeroDeepInsideLeaveAllLevels)
{
    const VProp tree(structure({{"m", array_of<VProp>({}, {VProp(0), VProp(structure({{"x", VProp(1)}}))})}}));
    Recorder visitor;
    visitor.on_value = [](const std::string& path, const VProp&) { return path == "m{1}.x" ? 0 : 1; };
    EXPECT_FALSE(visitor.process(tree));
    EXPECT_EQ(visitor.get_cur_path(), "m{1}.x");
    EXPECT_THAT(visitor.level_keys(), ElementsAre("m", "", "x"));
    EXPECT_EQ(visitor.level_containers().size(), 3u);
    visitor.reset();
    EXPECT_EQ(visitor.get_cur_path(), "");
    EXPECT_EQ(visitor.level_containers().size(), 3u) << "a visitor is for one walk";
}

TEST(WalkAnswers, ThatAreNoneOfTheThreeFail)
{
    for (const int answer : {3, -1, 100, 1 << 30})
    {
        const VProp tree(structure({{"a", VProp(1)}, {"b", VProp(structure({{"x", VProp(2)}}))}}));
        Recorder visitor;
        visitor.on_value = [answer](const std::string& path, const VProp&) { return path == "b" ? answer : 1; };
        EXPECT_VELA_ERROR_IN(visitor.process(tree), "VPropVisitor::process", "sources/propvisitor", -1,
                             "Invalid return value from visit()!");
        EXPECT_THAT(visitor.calls, ElementsAre("value ", "value a", "exit a", "value b"));
        EXPECT_EQ(visitor.get_cur_path(), "b");
        EXPECT_THAT(visitor.level_containers(), ElementsAre(&tree));
    }
}

TEST(WalkAnswers, ThatAreNoneOfTheThreeFailOnALeafToo)
{
    Recorder visitor;
    visitor.on_value = [](const std::string&, const VProp&) { return 3; };
    EXPECT_VELA_ERROR_IN(visitor.process(VProp(1)), "VPropVisitor::process", "sources/propvisitor", -1,
                         "Invalid return value from visit()!");
    EXPECT_THAT(visitor.calls, ElementsAre("value "));
}

TEST(WalkAnswers, OfAnExitStopTheEnclosingWalk)
{
    const VProp tree(structure({{"a", VProp(1)}, {"b", VProp(2)}}));
    Recorder visitor;
    visitor.on_value_exit = [](const std::string& path) { return path != "a"; };
    EXPECT_FALSE(visitor.process(tree));
    EXPECT_THAT(visitor.calls, ElementsAre("value ", "value a", "exit a"));
    EXPECT_EQ(visitor.get_cur_path(), "a");
    EXPECT_THAT(visitor.level_containers(), ElementsAre(&tree));
}

TEST(WalkAnswers, OfTheOutermostExitAreTheAnswerOfTheWalk)
{
    const VProp tree(structure({{"a", VProp(1)}}));
    Recorder visitor;
    visitor.on_value_exit = [](const std::string& path) { return !path.empty(); };
    EXPECT_FALSE(visitor.process(tree));
    EXPECT_THAT(visitor.calls, ElementsAre("value ", "value a", "exit a", "exit "));
    EXPECT_THAT(visitor.level_containers(), IsEmpty());
}

TEST(WalkAnswers, OfAnElementOtherThanZeroAndOneLeaveOutItsMembersWithoutComplaint)
{
    for (const int answer : {2, 3, -1, 1 << 30})
    {
        Recorder visitor;
        visitor.on_element = [answer](const std::string& path) { return path == "(0)" ? answer : 1; };
        EXPECT_TRUE(visitor.process(two_structures()));
        EXPECT_THAT(visitor.calls, ElementsAre("value ", "element (0)", "element exit (0)", "element (1)", "value (1)",
                                               "exit (1)", "element exit (1)", "exit "));
    }
}

TEST(WalkAnswers, OfZeroForAnElementStopTheWalkThere)
{
    const VProp tree = two_structures();
    Recorder visitor;
    visitor.on_element = [](const std::string& path) { return path == "(1)" ? 0 : 1; };
    EXPECT_FALSE(visitor.process(tree));
    EXPECT_EQ(visitor.calls.back(), "element (1)");
    EXPECT_EQ(visitor.get_cur_path(), "(1)");
    EXPECT_EQ(visitor.get_cur_idx(), 1u);
    EXPECT_THAT(visitor.level_containers(), ElementsAre(&tree));
}

TEST(WalkAnswers, OfTheExitOfAnElementDoNotCount)
{
    for (const int answer : {0, 1, 2, -5})
    {
        Recorder visitor;
        visitor.on_element_exit = [answer](const std::string&) { return answer; };
        EXPECT_TRUE(visitor.process(two_structures()));
        EXPECT_EQ(visitor.calls.size(), 12u);
    }
}

TEST(WalkAnswers, OfAMemberOfAnElementStopTheWalkBeforeTheExitOfTheElement)
{
    Recorder visitor;
    visitor.on_value = [](const std::string& path, const VProp&) { return path == "(0)" ? 0 : 1; };
    EXPECT_FALSE(visitor.process(two_structures()));
    EXPECT_THAT(visitor.calls, ElementsAre("value ", "element (0)", "value (0)"));
    EXPECT_EQ(visitor.get_cur_key(), "a");
    EXPECT_EQ(visitor.get_cur_idx(), 0u);
}

TEST(WalkAnswers, OfAStringStopTheWalkAndTheIndexShowsWhere)
{
    const VProp tree(structure({{"s", strings()}}));
    Recorder visitor;
    visitor.on_string = [](std::size_t index) { return index != 1; };
    EXPECT_FALSE(visitor.process(tree));
    EXPECT_EQ(visitor.calls.back(), "string 1 at s: ");
    EXPECT_EQ(visitor.cur_string(), 1u);
    EXPECT_EQ(visitor.level_containers().size(), 2u);
}

TEST(WalkFailures, OfOverridesPassAndLeaveThePlace)
{
    const VProp tree(structure({{"m", array_of<VProp>({}, {two_structures(), strings()})}}));
    const auto fail = [](auto&&...) -> int { throw std::runtime_error("mine"); };
    const auto fail_bool = [](auto&&...) -> bool { throw std::runtime_error("mine"); };

    Recorder value;
    value.on_value = [](const std::string& path, const VProp&) -> int
    {
        if (path == "m{0}(0)")
            throw std::runtime_error("mine");
        return 1;
    };
    EXPECT_THROW_TEXT(value.process(tree), std::runtime_error, "mine");
    EXPECT_THAT(value.level_keys(), ElementsAre("m", "", "a"));
    EXPECT_THAT(value.level_indices(), ElementsAre(VPropPos::no_index, 0u, 0u));
    EXPECT_EQ(value.level_containers().size(), 3u);

    Recorder element;
    element.on_element = fail;
    EXPECT_THROW_TEXT(element.process(tree), std::runtime_error, "mine");
    EXPECT_EQ(element.get_cur_path(), "m{0}(0)");
    EXPECT_EQ(element.level_containers().size(), 3u);

    Recorder element_exit;
    element_exit.on_element_exit = fail;
    EXPECT_THROW_TEXT(element_exit.process(tree), std::runtime_error, "mine");
    EXPECT_EQ(element_exit.get_cur_path(), "m{0}(0)");
    EXPECT_EQ(element_exit.get_cur_key(), "b") << "that of the last member";

    Recorder text;
    text.on_string = fail_bool;
    EXPECT_THROW_TEXT(text.process(tree), std::runtime_error, "mine");
    EXPECT_EQ(text.get_cur_path(), "m{1}");
    EXPECT_EQ(text.cur_string(), 0u);
    EXPECT_EQ(text.level_containers().size(), 3u);

    Recorder value_exit;
    value_exit.on_value_exit = fail_bool;
    EXPECT_THROW_TEXT(value_exit.process(tree), std::runtime_error, "mine");
    EXPECT_EQ(value_exit.get_cur_path(), "m{0}(0)");
    EXPECT_EQ(value_exit.level_containers().size(), 3u);
}

TEST(WalkOfMembers, SetsKeysOnTheLevelOfTheCaller)
{
    Recorder visitor;
    visitor.decend("start");
    EXPECT_TRUE(visitor.process_members(structure({{"a", VProp(1)}, {"b", VProp(2)}})));
    EXPECT_THAT(visitor.calls, ElementsAre("value a", "exit a", "value b", "exit b"));
    EXPECT_THAT(visitor.level_keys(), ElementsAre("b"));
}

TEST(WalkOfMembers, StopsAtOnce)
{
    Recorder visitor;
    visitor.decend("start");
    visitor.on_value = [](const std::string& path, const VProp&) { return path == "a" ? 0 : 1; };
    EXPECT_FALSE(visitor.process_members(structure({{"a", VProp(1)}, {"b", VProp(2)}})));
    EXPECT_THAT(visitor.calls, ElementsAre("value a"));
    EXPECT_EQ(visitor.get_cur_key(), "a");
}

TEST(Walk, LeavesTheTreeAsItIsAndShared)
{
    const VProp original(structure({{"c", array_of<VProp>({}, {two_structures(), strings()})}}));
    const VProp copy(original);
    calls_of(copy);
    EXPECT_EQ(copy.value_ptr(), original.value_ptr());
}

}
