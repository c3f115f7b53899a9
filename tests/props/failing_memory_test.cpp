// Memory that fails at the n-th request: nothing leaks, values stay whole, and destruction needs none.
#include "props/attachment.h"
#include "props/deep_trees.h"
#include "support/failing_memory.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <new>
#include <string>

namespace {

using prop_test::deepen;
using prop_test::Levels;
using vela_test::blocks_taken;
using vela_test::MemoryFailsAfter;

/// Does `work(subject)` on fresh ones of `make` with memory for 0, 1, 2, ... requests until it succeeds; `check` sees
/// each subject after a failure. Everything is given back each time. Returns how often it failed.
template <class Subject, class Work, class Check>
std::size_t fail_everywhere(void (*make)(Subject&), Work work, Check check)
{
    for (std::size_t requests = 0; requests < 10000; ++requests)
    {
        const std::size_t before = blocks_taken();
        bool failed = false;
        {
            Subject subject;
            make(subject);
            try
            {
                const MemoryFailsAfter limit(requests);
                work(subject);
            }
            catch (const std::bad_alloc&)
            {
                failed = true;
            }
            if (failed)
                check(subject);
        }
        EXPECT_EQ(blocks_taken(), before) << "leak after " << requests << " requests";
        if (!failed)
            return requests;
    }
    ADD_FAILURE() << "it never succeeds";
    return 0;
}

struct Shared
{
    VProp tree;
    VProp copy;
};

/// A tree that two handles share, with locked values and arrays in it.
void shared_tree(Shared& made)
{
    made.tree["a.b"] = 1;
    made.tree["locked.x.y"] = 2;
    made.tree["cells{2}"] = L"text that is too long for the string itself";
    made.tree["structs(1).c"] = 3.5;
    made.tree["locked.x"].lock();
    made.tree["locked"].lock();
    made.copy = made.tree;
}

void expect_whole(const Shared& shared)
{
    Shared fresh;
    shared_tree(fresh);
    EXPECT_TRUE(shared.tree == fresh.tree);
    EXPECT_TRUE(shared.copy == fresh.tree);
}

TEST(FailingMemory, LeavesWhatIsDetachedAsItWas)
{
    const std::size_t failures = fail_everywhere(
        shared_tree, [](Shared& shared) { shared.copy.own(); }, expect_whole);
    EXPECT_GT(failures, 3u);
    fail_everywhere(
        shared_tree, [](Shared& shared) { shared.copy.get<VPropstruct>(); }, expect_whole);
}

TEST(FailingMemory, LeavesWhatIsWalkedThroughAsItWas)
{
    fail_everywhere(
        shared_tree, [](Shared& shared) { shared.copy.getp("cells{2}", false); }, expect_whole);
    fail_everywhere(
        shared_tree, [](Shared& shared) { shared.copy["locked.x.y"].own(); }, expect_whole);
    fail_everywhere(
        shared_tree, [](Shared& shared) { shared.copy["structs(1).c"]; }, expect_whole);
}

TEST(FailingMemory, LeavesTheSharedOtherAsItWasWhenAWalkCreates)
{
    const auto expect_other_whole = [](const Shared& shared)
    {
        Shared fresh;
        shared_tree(fresh);
        EXPECT_TRUE(shared.tree == fresh.tree);
        EXPECT_EQ(static_cast<const VProp&>(shared.copy).getp("a.b").get<int>(), 1);
    };
    fail_everywhere(
        shared_tree, [](Shared& shared) { shared.copy["a.n.e{3}(1).w"] = 7; }, expect_other_whole);
    fail_everywhere(
        shared_tree, [](Shared& shared) { shared.copy["cells{20}"] = 7; }, expect_other_whole);
}

TEST(FailingMemory, LeavesTheTargetOfAnAssignmentAsItWas)
{
    const auto make = +[](Shared& made)
    {
        shared_tree(made);
        made.tree.own();
        made.tree.lock();
        made.copy = 5;
        made.copy.set_info(prop_test::attachment(6));
    };
    const auto expect_old = [](const Shared& shared)
    {
        EXPECT_EQ(static_cast<const VProp&>(shared.copy).get<int>(), 5);
        EXPECT_EQ(prop_test::number_of(shared.copy), 6);
        Shared fresh;
        shared_tree(fresh);
        EXPECT_TRUE(shared.tree == fresh.tree);
    };
    EXPECT_GT(fail_everywhere(
                  make, [](Shared& shared) { shared.copy = shared.tree; }, expect_old),
              1u);
    fail_everywhere(
        make, [](Shared& shared) { shared.copy = "text that is too long for the string itself"; }, expect_old);
    fail_everywhere(
        make, [](Shared& shared) { shared.copy = shared.tree.get<VPropstruct>(); }, expect_old);
}

TEST(FailingMemory, LeavesStorageThatGrowsAsItWas)
{
    const auto make = +[](VPropstruct& members)
    {
        for (int i = 0; i < 5; ++i)
        {
            VProp& value = members["key-that-is-too-long-for-the-string-itself" + std::to_string(i)];
            value = i;
            value.set_info(prop_test::attachment(i + 1));
            value.lock();
        }
    };
    const auto expect_old = [](const VPropstruct& members)
    {
        ASSERT_EQ(members.size(), 5u);
        for (int i = 0; i < 5; ++i)
        {
            const auto& [key, value] = members.at(static_cast<std::size_t>(i));
            EXPECT_EQ(key, "key-that-is-too-long-for-the-string-itself" + std::to_string(i));
            EXPECT_EQ(value.get<int>(), i);
            EXPECT_EQ(prop_test::number_of(value), i + 1);
        }
    };
    EXPECT_GT(fail_everywhere(
                  make, [](VPropstruct& members) { vela_prop_reserve(members, 50); }, expect_old),
              0u);
    fail_everywhere(
        make, [](VPropstruct& members) { members["new-key-that-is-too-long-for-the-string-itself"]; }, expect_old);
}

TEST(FailingMemory, LeavesAnArrayThatGrowsWithAShapeThatIsValid)
{
    const auto make = +[](VProparray<VProp>& cells)
    {
        cells.at({1, 1}, true) = 5;
        cells[3].set_info(prop_test::attachment(1));
    };
    const auto expect_old = [](const VProparray<VProp>& cells)
    {
        ASSERT_EQ(cells.count(), 4u);
        EXPECT_EQ(cells[3].get<int>(), 5);
    };
    EXPECT_GT(fail_everywhere(
                  make,
                  [](VProparray<VProp>& cells) {
                      cells.at({1, 9}, true);
                  },
                  expect_old),
              0u);
}

TEST(FailingMemory, GivesBackDeepClonesThatAreNotFinished)
{
    const auto make = +[](Shared& made)
    {
        made.tree = 1;
        deepen(made.tree, 60, Levels::mixed, true);
    };
    const auto expect_old = [](Shared& shared)
    {
        EXPECT_EQ(prop_test::depth_of(shared.tree), 60u);
        EXPECT_TRUE(shared.copy.empty());
    };
    const auto copy = [](Shared& shared) { shared.copy = shared.tree; };
    EXPECT_GT(fail_everywhere(make, copy, expect_old), 100u);
}

TEST(FailingMemory, IsNotNeededToDestroy)
{
    for (const Levels levels : {Levels::structs, Levels::cells, Levels::struct_arrays, Levels::mixed})
    {
        VProp tree(1);
        deepen(tree, 1000, levels);
        VProp kept(tree);
        VProp locked(2);
        deepen(locked, 1000, levels, true);
        const std::size_t before = blocks_taken();
        {
            const MemoryFailsAfter none(0);
            tree.clear();
            kept.clear();
            locked.clear();
        }
        EXPECT_LT(blocks_taken(), before - 4000);
    }
}

}
