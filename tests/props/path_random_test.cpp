// Random walks through trees that share containers, against a model of maps that shares nothing.
#include "props/path_model.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

using prop_test::PathModel;
using prop_test::Segment;
using prop_test::text_of;

std::string dump(const VProp& value);

std::string dump(const VPropstruct& members)
{
    std::string text;
    for (const auto& [name, value] : members)
        text.append(name).append("=").append(dump(value)).append(";");
    return "<" + text + ">";
}

template <class T>
std::string dump(const VProparray<T>& array)
{
    std::string text;
    if (array.count() > 0)
        for (const std::size_t size : array.get_size(false))
            text += std::to_string(size) + ",";
    for (const T& element : array)
        text += ":" + dump(element);
    return text;
}

/// The tree as a text; detaches nothing.
std::string dump(const VProp& value)
{
    switch (value.get_id())
    {
    case VProp::type_id<int>:
        return std::to_string(value.get<int>());
    case VProp::type_id<VPropstruct>:
        return dump(value.get<VPropstruct>());
    case VProp::type_id<VProparray<VProp>>:
        return "{" + dump(value.get<VProparray<VProp>>());
    case VProp::type_id<VProparray<VPropstruct>>:
        return "(" + dump(value.get<VProparray<VPropstruct>>());
    default:
        return "-";
    }
}

class PathRandom : public testing::TestWithParam<unsigned>
{
protected:
    std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random); }

    Segment some_segment(char kind)
    {
        Segment segment;
        segment.kind = kind;
        segment.name = std::string(1, static_cast<char>('a' + below(3)));
        if (kind != '.')
            for (std::size_t rank = below(8) == 0 ? 3 : 1 + below(2); rank > 0; --rank)
                segment.indices.push_back(below(3));
        return segment;
    }

    /// Mostly one that fits what the model has there.
    std::vector<Segment> some_path(PathModel model)
    {
        std::vector<Segment> path;
        for (std::size_t length = 1 + below(5); length > 0; --length)
        {
            char kind = '.';
            try
            {
                const bool in_struct = !path.empty() && path.back().kind == '(';
                kind = in_struct ? '.' : model.kind_at(model.walk(path, true));
            }
            catch (const prop_test::PathFailure&)
            {
            }
            if (kind == '-' || kind == 'n' || below(20) == 0)
                kind = ".{("[below(3)];
            path.push_back(some_segment(kind));
        }
        if (path.back().kind == '(' && below(4) != 0)
            path.push_back(some_segment('.'));
        return path;
    }

    /// The value at the end of the walk if both succeed; both fail with the same text.
    VProp* walk(std::size_t which, const std::vector<Segment>& path, bool create, std::string& key)
    {
        std::string expected;
        std::string found;
        VProp* result = nullptr;
        try
        {
            key = models[which].walk(path, create);
        }
        catch (const prop_test::PathFailure& failure)
        {
            expected = failure.what();
        }
        try
        {
            const VProp& constant = trees[which];
            result = create ? &trees[which][text_of(path)] : const_cast<VProp*>(&constant.getp(text_of(path)));
        }
        catch (const VelaError& error)
        {
            found = error.get_msg();
        }
        const bool is_open = expected.size() > 4 && expected.compare(expected.size() - 4, 4, " >= ") == 0;
        EXPECT_EQ(is_open ? found.substr(0, expected.size()) : found, expected) << text_of(path) << " " << create;
        return expected.empty() ? result : nullptr;
    }

    void step()
    {
        const std::size_t which = below(trees.size());
        const std::size_t other = (which + 1 + below(trees.size() - 1)) % trees.size();
        std::string key;
        switch (below(16))
        {
        case 0:
            trees[which] = trees[other];
            models[which] = models[other];
            return;
        case 1:
            trees[which].lock();
            return;
        case 2:
            trees[which].own();
            return;
        case 3:
            trees[which].clear();
            models[which] = PathModel();
            return;
        case 4:
            if (VProp* const found = walk(which, some_path(models[which]), false, key))
                found->lock();
            return;
        case 5:
            if (VProp* const found = walk(which, some_path(models[which]), true, key))
            {
                found->clear();
                models[which].clear(key);
            }
            return;
        case 6:
            if (models[other].dump().size() < 500)
                if (VProp* const found = walk(which, some_path(models[which]), true, key))
                {
                    *found = trees[other];
                    models[which].set_tree(key, models[other]);
                }
            return;
        case 7:
        case 8:
        case 9:
            if (const VProp* const found = walk(which, some_path(models[which]), false, key))
            {
                EXPECT_EQ(dump(*found), models[which].dump(key));
            }
            return;
        default:
            if (VProp* const found = walk(which, some_path(models[which]), true, key))
            {
                const int number = static_cast<int>(below(1000));
                *found = number;
                models[which].set_number(key, number);
            }
        }
    }

    std::mt19937 random{GetParam()};
    std::array<VProp, 4> trees;
    std::array<PathModel, 4> models;
};

INSTANTIATE_TEST_SUITE_P(Seeds, PathRandom, testing::Range(1u, 31u));

TEST_P(PathRandom, LeadsWhereTheModelLeads)
{
    for (int i = 0; i < 400 && !HasFailure(); ++i)
    {
        step();
        for (std::size_t which = 0; which < trees.size(); ++which)
            EXPECT_EQ(dump(trees[which]), models[which].dump()) << "step " << i << ", tree " << which;
    }
}

TEST_P(PathRandom, MakesEqualTreesFromEqualSteps)
{
    std::mt19937 start = random;
    for (int i = 0; i < 100; ++i)
        step();
    const std::array<VProp, 4> before = trees;
    random = start;
    for (VProp& tree : trees)
        tree = VProp();
    for (PathModel& model : models)
        model = PathModel();
    for (int i = 0; i < 100; ++i)
        step();
    for (std::size_t which = 0; which < trees.size(); ++which)
    {
        EXPECT_TRUE(trees[which] == before[which]);
        trees[which][""] = -5;
        EXPECT_FALSE(trees[which] == before[which]);
    }
}

}
