// The paths of a walk: how they read, and where they lead back to the value.
#include "propvisitor/recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using visitor_test::array_of;
using visitor_test::numbers;
using visitor_test::Recorder;
using visitor_test::structure;

namespace {

using Sizes = std::vector<std::size_t>;

/// The paths of all values, in the order of the walk.
std::vector<std::string> paths_of(const VProp& tree)
{
    std::vector<std::string> paths;
    Recorder visitor;
    visitor.on_value = [&paths](const std::string& path, const VProp&)
    {
        paths.push_back(path);
        return 1;
    };
    EXPECT_TRUE(visitor.process(tree));
    return paths;
}

/// The same for the elements of a cell array of these sizes under the name "c".
std::vector<std::string> cell_paths(const Sizes& sizes, std::size_t count)
{
    std::vector<std::string> paths = paths_of(VProp(structure({{"c", array_of<VProp>(sizes, numbers(count))}})));
    paths.erase(paths.begin(), paths.begin() + 2);
    return paths;
}

TEST(VisitorPaths, JoinMembersByPoints)
{
    const VProp inner(structure({{"x", VProp(1)}}));
    Recorder visitor;
    std::string cut;
    visitor.on_value = [&](const std::string& path, const VProp&)
    {
        if (path == "m.x")
            cut = visitor.get_cur_path(1) + "|" + visitor.get_cur_path(0) + "|" + visitor.get_cur_path(2) + "|" +
                  visitor.get_cur_path(3);
        return 1;
    };
    EXPECT_TRUE(visitor.process(VProp(structure({{"m", inner}}))));
    EXPECT_EQ(cut, "m||m.x|m.x");
}

TEST(VisitorPaths, OfARowShowOneIndex)
{
    EXPECT_THAT(cell_paths({1, 5}, 5), ElementsAre("c{0}", "c{1}", "c{2}", "c{3}", "c{4}"));
    EXPECT_THAT(cell_paths({}, 2), ElementsAre("c{0}", "c{1}"));
}

TEST(VisitorPaths, OfOtherShapesShowAllIndices)
{
    EXPECT_THAT(cell_paths({2, 3}, 6), ElementsAre("c{0,0}", "c{1,0}", "c{0,1}", "c{1,1}", "c{0,2}", "c{1,2}"));
    EXPECT_THAT(cell_paths({2, 1}, 2), ElementsAre("c{0,0}", "c{1,0}"));
    EXPECT_THAT(cell_paths({1, 1, 2}, 2), ElementsAre("c{0,0,0}", "c{0,0,1}"));
    EXPECT_THAT(cell_paths({2}, 2), ElementsAre("c{0}", "c{1}"));
    EXPECT_THAT(cell_paths({1, 2, 2}, 4), ElementsAre("c{0,0,0}", "c{0,1,0}", "c{0,0,1}", "c{0,1,1}"));
}

TEST(VisitorPaths, OfStructArraysHaveRoundBracketsAndNoMember)
{
    const VPropstruct element = structure({{"b", VProp(structure({{"c", VProp(1)}}))}});
    const VProp tree(structure({{"a", array_of<VPropstruct>({}, {VPropstruct(), VPropstruct(), element})},
                                {"d", array_of<VPropstruct>({2, 1}, {VPropstruct(), element})}}));
    EXPECT_THAT(paths_of(tree), ElementsAre("", "a", "a(2)", "a(2).c", "d", "d(1,0)", "d(1,0).c"));
}

TEST(VisitorPaths, OfCellsWithinCells)
{
    const VProp inner = array_of<VProp>({}, {VProp(1), VProp(structure({{"x", VProp(2)}}))});
    EXPECT_THAT(paths_of(array_of<VProp>({2, 1}, {VProp(0), inner})),
                ElementsAre("", "{0,0}", "{1,0}", "{1,0}{0}", "{1,0}{1}", "{1,0}{1}.x"));
}

TEST(VisitorPaths, ByCutOffShowTheOuterLevels)
{
    const VProp tree(structure({{"a", array_of<VProp>({}, {VProp(structure({{"b", VProp(1)}}))})}}));
    Recorder visitor;
    std::vector<std::string> cuts;
    visitor.on_value = [&](const std::string& path, const VProp&)
    {
        for (std::size_t depth = 0; path == "a{0}.b" && depth < 5; ++depth)
            cuts.push_back(visitor.get_cur_path(depth));
        return 1;
    };
    EXPECT_TRUE(visitor.process(tree));
    EXPECT_THAT(cuts, ElementsAre("", "a", "a{0}", "a{0}.b", "a{0}.b"));
}

TEST(VisitorPaths, OfRowsThatGrewBehindTheirSizesGoOnCounting)
{
    EXPECT_THAT(cell_paths({1, 2}, 4), ElementsAre("c{0}", "c{1}", "c{2}", "c{3}"));
    EXPECT_THAT(cell_paths({2}, 3), ElementsAre("c{0}", "c{1}", "c{2}"));
}

TEST(VisitorPaths, OfShapesThatNoLongerFitLetTheLastIndexRun)
{
    EXPECT_THAT(cell_paths({2, 1}, 5), ElementsAre("c{0,0}", "c{1,0}", "c{0,1}", "c{1,1}", "c{0,2}"));
    EXPECT_THAT(cell_paths({2, 0}, 3), ElementsAre("c{0,0}", "c{1,0}", "c{0,1}"));
    EXPECT_THAT(cell_paths({1, 0}, 3), ElementsAre("c{0}", "c{1}", "c{2}"));
    EXPECT_THAT(cell_paths({3, 3}, 2), ElementsAre("c{0,0}", "c{1,0}"));
}

TEST(VisitorPaths, OfShapesWithAZeroBeforeTheLastAreTextAndNoCrash)
{
    for (const Sizes& sizes : {Sizes{0, 0}, Sizes{0, 3}, Sizes{0, 2, 0}, Sizes{2, 0, 2}})
    {
        const std::vector<std::string> paths = cell_paths(sizes, 3);
        EXPECT_EQ(paths.size(), 3u);
        for (const std::string& path : paths)
        {
            EXPECT_EQ(path.substr(0, 2), "c{");
            EXPECT_EQ(path.back(), '}');
            EXPECT_EQ(std::count(path.begin(), path.end(), ','), static_cast<std::ptrdiff_t>(sizes.size() - 1));
        }
    }
}

/// Random trees of structures, cells, struct arrays and leaves, with names that can stand in a path.
class RandomTree
{
public:
    explicit RandomTree(unsigned seed) : random_(seed) {}

    VProp tree(int depth)
    {
        switch (pick(depth > 0 ? 8 : 3))
        {
        case 0:
            return VProp();
        case 1:
            return array_of<int>({}, {1, 2});
        case 2:
            return VProp("text");
        case 3:
            return array_of<VPropstring>({}, {VPropstring(L"a")});
        case 4:
            return array_of_random<VPropstruct>([this, depth] { return members(depth - 1); });
        case 5:
            return array_of_random<VProp>([this, depth] { return tree(depth - 1); });
        default:
            return VProp(members(depth - 1));
        }
    }

private:
    int pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    VPropstruct members(int depth)
    {
        std::vector<std::pair<std::string, VProp>> made;
        for (int i = pick(4); i > 0; --i)
            made.emplace_back(std::string(1, "aZ_"[pick(3)]) + "x-_9"[pick(4)] + std::to_string(i), tree(depth));
        return structure(made);
    }

    template <class T, class Make>
    VProp array_of_random(Make make)
    {
        Sizes sizes{1 + random_() % 3, 1 + random_() % 3};
        if (pick(3) == 0)
            sizes.push_back(1 + random_() % 2);
        std::vector<T> elements;
        const std::size_t count = VProparrayBase::size(sizes);
        const bool row = sizes.size() == 2 && sizes[0] == 1;
        elements.reserve(count + 2);
        for (std::size_t i = 0; i < count + (row ? random_() % 3 : 0); ++i) // a row may grow behind its sizes
            elements.push_back(make());
        return array_of<T>(pick(4) == 0 && row ? Sizes() : sizes, elements);
    }

    std::mt19937 random_;
};

TEST(VisitorPaths, LeadBackToTheValueUnlessAnElementOfAStructArrayHidesAMember)
{
    std::size_t led_back = 0;
    std::size_t hidden = 0;
    for (unsigned seed = 1; seed <= 400; ++seed)
    {
        VProp root = RandomTree(seed).tree(5);
        // Detaches whatever is shared, so that addresses stay.
        std::vector<std::pair<std::string, const VProp*>> found;
        for (int walk = 0; walk < 2; ++walk)
        {
            found.clear();
            Recorder visitor;
            visitor.on_value = [&](const std::string& path, const VProp& value)
            {
                if (path.find('(') == std::string::npos)
                    found.emplace_back(path, &value);
                else
                    ++hidden;
                return 1;
            };
            ASSERT_TRUE(visitor.process(std::as_const(root)));
            for (const auto& [path, value] : found)
                root.getp(path, false);
        }
        for (const auto& [path, value] : found)
        {
            ASSERT_EQ(&root.getp(path, false), value) << seed << ": " << path;
            ASSERT_EQ(&std::as_const(root).getp(path), value) << seed << ": " << path;
            ASSERT_EQ(&root[path], value) << seed << ": " << path;
            ++led_back;
        }
    }
    EXPECT_GT(led_back, 2000u);
    EXPECT_GT(hidden, 500u);
}

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Takes the path at the innermost of so many levels alone: taking it at each is quadratic.
class Deepest : public VPropVisitor
{
public:
    explicit Deepest(std::size_t levels) : levels_left_(levels) {}

    std::string path;

protected:
    using VPropVisitor::visit;
    int visit(const VProp& prop) override
    {
        if (levels_left_-- == 0)
            path = get_cur_path();
        return VPropVisitor::visit(prop);
    }

private:
    std::size_t levels_left_;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

TEST(VisitorPaths, InATreeOfManyLevelsAreWhole)
{
    constexpr int levels = 100000;
    VProp tree(5);
    for (int level = 0; level < levels; ++level)
        tree = level % 2 == 0 ? VProp(structure({{"a", tree}})) : array_of<VProp>({}, {tree});
    std::string expected;
    for (int level = levels - 1; level >= 0; --level)
        expected += level % 2 == 1 ? "{0}" : ".a";

    Deepest deepest(levels);
    EXPECT_TRUE(deepest.process(tree));
    EXPECT_TRUE(deepest.path == expected);
}

}
