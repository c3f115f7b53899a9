#include <VelaProps/VPropVisitor.h>

#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

// Visitors have no virtual destructor: nobody destroys them as what they are derived from.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace {

/// Writes down what is called, and answers as it is told.
class Recorder : public VPropVisitor
{
public:
    using VPropVisitor::is_container;
    using VPropVisitor::process;

    bool visit(const VPropstring& text) override
    {
        log.push_back("string " + std::to_string(string_idx) + " " + text.to(VPropstring::enc_utf8) + " at " +
                      get_cur_path());
        return on_string(text);
    }
    int visit(const VPropstruct& members) override
    {
        log.push_back("struct of " + std::to_string(members.size()) + " at " + get_cur_path());
        return on_struct(members);
    }
    int visit(const VProp& prop) override
    {
        log.push_back(std::string(vela_dt_get_name(prop.get_id())) + " at " + get_cur_path());
        return on_value(prop);
    }
    int visit_exit(const VPropstruct&) override
    {
        log.push_back("end of struct at " + get_cur_path());
        return 0;
    }
    bool visit_exit(const VProp& prop) override
    {
        log.push_back("end at " + get_cur_path());
        return on_exit(prop);
    }

    std::size_t depth() const { return indices.size(); }
    std::size_t open_containers() const { return containers.size(); }
    std::size_t string_index() const { return string_idx; }

    std::vector<std::string> log;
    std::function<bool(const VPropstring&)> on_string = [](const VPropstring&) { return true; };
    std::function<int(const VPropstruct&)> on_struct = [](const VPropstruct&) { return 1; };
    std::function<int(const VProp&)> on_value = [](const VProp&) { return 1; };
    std::function<bool(const VProp&)> on_exit = [](const VProp&) { return true; };
};

using Log = std::vector<std::string>;

TEST(VPropPosition, IsEmptyAtFirst)
{
    VPropPos pos;
    EXPECT_EQ(pos.get_cur_idx(), VPropPos::no_index);
    EXPECT_EQ(pos.get_cur_key(), "");
    EXPECT_FALSE(pos.set_key("a"));
    EXPECT_EQ(pos.get_cur_key(), "");
}

TEST(VPropPosition, GoesDownByKeyAndByIndex)
{
    VPropPos pos;
    EXPECT_TRUE(pos.decend(std::string("a")));
    EXPECT_EQ(pos.get_cur_key(), "a");
    EXPECT_EQ(pos.get_cur_idx(), VPropPos::no_index);
    EXPECT_TRUE(pos.decend(std::size_t{3}));
    EXPECT_EQ(pos.get_cur_key(), "");
    EXPECT_EQ(pos.get_cur_idx(), 3u);
    EXPECT_TRUE(pos.set_key("b"));
    EXPECT_EQ(pos.get_cur_key(), "b");
    EXPECT_EQ(pos.get_cur_idx(), 3u);
    const VPropPos copy(pos);
    pos.ascend();
    EXPECT_EQ(pos.get_cur_key(), "a");
    EXPECT_EQ(copy.get_cur_key(), "b");
    pos.reset();
    EXPECT_EQ(pos.get_cur_key(), "");
    EXPECT_FALSE(pos.set_key("c"));
}

TEST(VPropVisit, OfAnEmptyValueIsOneVisitAndItsEnd)
{
    Recorder recorder;
    EXPECT_TRUE(recorder.process(VProp()));
    EXPECT_EQ(recorder.log, (Log{"none at ", "end at "}));
}

TEST(VPropVisit, OfANumberOrAnArrayOfNumbersIsTheSame)
{
    Recorder recorder;
    EXPECT_TRUE(recorder.process(VProp(1.5)));
    VProp array;
    array.ensure_array<int>(3);
    EXPECT_TRUE(recorder.process(array));
    EXPECT_EQ(recorder.log, (Log{"double at ", "end at ", "int32 at ", "end at "}));
}

TEST(VPropVisit, GoesThroughMembersInTheirOrder)
{
    VProp tree;
    tree["m.x"] = 1;
    tree["a"] = true;
    Recorder recorder;
    EXPECT_TRUE(recorder.process(tree));
    EXPECT_EQ(recorder.log, (Log{"struct at ", "struct at m", "int32 at m.x", "end at m.x", "end at m", "logical at a",
                                 "end at a", "end at "}));
    EXPECT_EQ(recorder.depth(), 0u);
    EXPECT_EQ(recorder.open_containers(), 0u);
}

TEST(VPropVisit, GoesThroughCellsInLinearOrder)
{
    VProp tree;
    tree["c{1,0}"] = 1;
    tree["c{1,1}"] = "text";
    Recorder recorder;
    EXPECT_TRUE(recorder.process(tree));
    EXPECT_EQ(recorder.log,
              (Log{"struct at ", "cell at c", "none at c{0,0}", "end at c{0,0}", "int32 at c{1,0}", "end at c{1,0}",
                   "none at c{0,1}", "end at c{0,1}", "char at c{1,1}", "end at c{1,1}", "end at c", "end at "}));
}

TEST(VPropVisit, OfStructArraysCallsTheStructsToo)
{
    VProp tree;
    tree["a(1).b.c"] = 1;
    Recorder recorder;
    EXPECT_TRUE(recorder.process(tree));
    EXPECT_EQ(recorder.log, (Log{"struct at ", "struct at a", "struct of 0 at a(0)", "end of struct at a(0)",
                                 "struct of 1 at a(1)", "struct at a(1)", "int32 at a(1).c", "end at a(1).c",
                                 "end at a(1)", "end of struct at a(1)", "end at a", "end at "}));
}

TEST(VPropVisit, OfStringsHasAnIndexAndNoLevel)
{
    VProp strings;
    auto& array = strings.ensure_array<VPropstring>(0);
    array.push_back(VPropstring(L"x"));
    array.push_back(VPropstring(L"y"));
    VProp tree;
    tree["s"] = strings;
    Recorder recorder;
    EXPECT_TRUE(recorder.process(tree));
    EXPECT_EQ(recorder.log,
              (Log{"struct at ", "char at s", "string 0 x at s", "string 1 y at s", "end at s", "end at "}));
    EXPECT_EQ(recorder.string_index(), VPropPos::no_index);
    recorder.on_string = [](const VPropstring& text) { return text == L"x"; };
    EXPECT_FALSE(recorder.process(tree));
    EXPECT_EQ(recorder.string_index(), 1u);
}

TEST(VPropVisit, ThatAnswers2LeavesOutTheMembersButNotTheEnd)
{
    VProp tree;
    tree["a"] = 1;
    Recorder recorder;
    recorder.on_value = [](const VProp&) { return 2; };
    EXPECT_TRUE(recorder.process(tree));
    EXPECT_EQ(recorder.log, (Log{"struct at ", "end at "}));
}

TEST(VPropVisit, ThatAnswers0StopsAndStaysWhereItIs)
{
    VProp tree;
    tree["a"] = 1;
    tree["b"] = 2.0;
    tree["c"] = 3;
    Recorder recorder;
    recorder.on_value = [](const VProp& prop) { return prop.get_id() == vela_dt_double ? 0 : 1; };
    EXPECT_FALSE(recorder.process(tree));
    EXPECT_EQ(recorder.get_cur_path(), "b");
    EXPECT_EQ(recorder.log.back(), "double at b");
    EXPECT_EQ(recorder.open_containers(), 1u);
    recorder.reset();
    EXPECT_EQ(recorder.get_cur_path(), "");
    EXPECT_EQ(recorder.open_containers(), 1u);
}

TEST(VPropVisit, WhoseEndAnswersFalseStopsInTheLevelAbove)
{
    VProp tree;
    tree["a.b"] = 1;
    tree["c"] = 2;
    Recorder recorder;
    recorder.on_exit = [](const VProp& prop) { return prop.get_id() != vela_dt_int32; };
    EXPECT_FALSE(recorder.process(tree));
    EXPECT_EQ(recorder.get_cur_path(), "a.b");
    EXPECT_EQ(recorder.log.back(), "end at a.b");
}

TEST(VPropVisit, ThatAnswersSomethingElseFails)
{
    for (const int answer : {3, -1, 100})
    {
        Recorder recorder;
        recorder.on_value = [answer](const VProp&) { return answer; };
        EXPECT_VELA_ERROR(recorder.process(VProp(1)), -1, "Invalid return value from visit()!");
    }
}

TEST(VPropVisit, OfAStructOfAnArrayStopsAt0AndLeavesOutMembersAtAllBut1)
{
    VProp tree;
    tree["a(1).b"] = 1;
    for (const int answer : {2, 3, -5})
    {
        Recorder recorder;
        recorder.on_struct = [answer](const VPropstruct&) { return answer; };
        EXPECT_TRUE(recorder.process(tree));
        EXPECT_EQ(recorder.log, (Log{"struct at ", "struct at a", "struct of 0 at a(0)", "end of struct at a(0)",
                                     "struct of 1 at a(1)", "end of struct at a(1)", "end at a", "end at "}));
    }
    Recorder recorder;
    recorder.on_struct = [](const VPropstruct& members) { return members.empty() ? 1 : 0; };
    EXPECT_FALSE(recorder.process(tree));
    EXPECT_EQ(recorder.log.back(), "struct of 1 at a(1)");
    EXPECT_EQ(recorder.get_cur_path(), "a(1)");
}

TEST(VPropVisit, LetsExceptionsPassAndStaysWhereItIs)
{
    VProp tree;
    tree["a.b"] = 1;
    Recorder recorder;
    recorder.on_value = [](const VProp& prop)
    {
        if (prop.get_id() == vela_dt_int32)
            throw std::runtime_error("enough");
        return 1;
    };
    EXPECT_THROW(recorder.process(tree), std::runtime_error);
    EXPECT_EQ(recorder.get_cur_path(), "a.b");
}

TEST(VPropVisit, OfMembersAloneUsesTheLevelWhereItIs)
{
    VPropstruct members;
    members["x"] = 1;
    members["y"] = 2;
    Recorder recorder;
    recorder.decend(std::string("here"));
    EXPECT_TRUE(recorder.process(members));
    EXPECT_EQ(recorder.log, (Log{"int32 at x", "end at x", "int32 at y", "end at y"}));
    EXPECT_EQ(recorder.get_cur_key(), "y");
}

TEST(VPropVisitPath, EndsAtItsDepth)
{
    VProp tree;
    tree["m.x"] = 1;
    std::string whole;
    std::string first;
    Recorder recorder;
    recorder.on_value = [&](const VProp& prop)
    {
        if (prop.get_id() == vela_dt_int32)
        {
            whole = recorder.get_cur_path();
            first = recorder.get_cur_path(1);
        }
        return 1;
    };
    recorder.process(tree);
    EXPECT_EQ(whole, "m.x");
    EXPECT_EQ(first, "m");
}

TEST(VPropVisitPath, ShowsRowsByOneIndexAndOtherShapesByAll)
{
    const auto path_of_element_3 = [](const std::vector<std::size_t>& sizes)
    {
        VProp tree;
        tree["c"].ensure_array<VProp>(0).set_size(sizes, VProparrayBase::set_resize);
        std::string path;
        Recorder recorder;
        recorder.on_value = [&](const VProp&)
        {
            if (recorder.get_cur_idx() == 3)
                path = recorder.get_cur_path();
            return 1;
        };
        recorder.process(tree);
        return path;
    };
    EXPECT_EQ(path_of_element_3({1, 5}), "c{3}");
    EXPECT_EQ(path_of_element_3({2, 3}), "c{1,1}");
    EXPECT_EQ(path_of_element_3({5}), "c{3}");
    EXPECT_EQ(path_of_element_3({2, 1, 3}), "c{1,0,1}");
}

TEST(VPropVisitContainers, AreCellsStructsAndStrings)
{
    Recorder recorder;
    VProp cell;
    cell.ensure_array<VProp>(0);
    VProp strings;
    strings.ensure_array<VPropstring>(0);
    VProp structs;
    structs.ensure_array<VPropstruct>(0);
    for (const VProp& prop : {cell, strings, structs, VProp(VPropstruct())})
        EXPECT_TRUE(recorder.is_container(prop));
    VProp numbers;
    numbers.ensure_array<double>(2);
    for (const VProp& prop : {VProp(), VProp(1), VProp("text"), numbers, VProp(_s_vela_RGB())})
        EXPECT_FALSE(recorder.is_container(prop));
}

TEST(VPropVisit, OfAnyDepthDoesNotRecurse)
{
    constexpr std::size_t depth = 100000;
    VProp tree(1);
    for (std::size_t i = 0; i < depth; ++i)
    {
        VProp outer;
        if (i % 3 == 0)
            outer.ensure<VPropstruct>()["a"] = tree;
        else if (i % 3 == 1)
            outer(0) = tree;
        else
            outer.s(0)["a"] = tree;
        tree = outer;
    }
    class Counter : public VPropVisitor
    {
    public:
        using VPropVisitor::visit;
        int visit(const VProp&) override
        {
            ++visits;
            return 1;
        }
        std::size_t visits = 0;
    };
    Counter counter;
    EXPECT_TRUE(counter.process(tree));
    EXPECT_EQ(counter.visits, depth + 1);
}

TEST(VPropVisitor, IsCopiedWithItsPlace)
{
    VProp tree;
    tree["a"] = 1;
    Recorder recorder;
    recorder.on_value = [](const VProp& prop) { return prop.get_id() == vela_dt_int32 ? 0 : 1; };
    recorder.process(tree);
    const Recorder copy(recorder);
    recorder.reset();
    EXPECT_EQ(copy.get_cur_path(), "a");
    EXPECT_EQ(copy.open_containers(), 1u);
}

} // namespace
