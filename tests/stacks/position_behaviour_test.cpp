/// What can be seen of positions, and of how descriptions hold them.
#include "open_info.h"
#include "support/expect_vela_error.h"

#include <VelaStacks/VStackPosition.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using vela_test::OpenInfo;
using vela_test::Sizes;
using Extents = std::vector<std::size_t>;

void expect_identity(const VStackPosition& position, std::size_t global_axes, std::size_t stack_axes)
{
    EXPECT_EQ(position.labels.get_size(false), Extents{global_axes});
    EXPECT_EQ(position.origin.get_size(false), Extents{global_axes});
    EXPECT_EQ(position.matrix.get_size(false), (Extents{global_axes, stack_axes}));
    ASSERT_EQ(position.labels.count(), global_axes);
    ASSERT_EQ(position.origin.count(), global_axes);
    ASSERT_EQ(position.matrix.count(), global_axes * stack_axes);
    for (const double coordinate : position.origin)
        EXPECT_EQ(coordinate, 0.0);
    for (std::size_t j = 0; j < global_axes; ++j)
        for (std::size_t i = 0; i < stack_axes; ++i)
            EXPECT_EQ(position.matrix.at({j, i}), i == j ? 1.0 : 0.0) << j << ", " << i;
}

TEST(PositionBehaviour, IsACopyableAndMovableValue)
{
    static_assert(std::is_copy_constructible_v<VStackPosition> && std::is_copy_assignable_v<VStackPosition>);
    static_assert(std::is_move_constructible_v<VStackPosition> && std::is_move_assignable_v<VStackPosition>);
    VStackPosition position;
    position.create(Sizes{4, 4}, 0);
    VStackPosition copy = position;
    copy.origin[0] = 3.0;
    EXPECT_EQ(position.origin[0], 0.0);
    const VStackPosition moved = std::move(copy);
    EXPECT_EQ(moved.origin[0], 3.0);
    EXPECT_EQ(moved.matrix.get_size(false), (Extents{2, 2}));
}

TEST(PositionBehaviour, NewOneHasNoAxes)
{
    const VStackPosition position;
    EXPECT_EQ(position.labels.count(), 0u);
    EXPECT_EQ(position.origin.count(), 0u);
    EXPECT_EQ(position.matrix.count(), 0u);
    EXPECT_EQ(position.labels.get_rank(), 1u);
    EXPECT_EQ(position.origin.get_rank(), 1u);
    EXPECT_EQ(position.matrix.get_rank(), 2u);
}

TEST(PositionBehaviour, CreateGivesTheIdentityForAnyNumberOfAxes)
{
    for (std::size_t rank = 0; rank <= 4; ++rank)
    {
        VStackPosition position;
        position.create(Sizes(rank, 7), 0);
        expect_identity(position, rank, rank);
        for (std::size_t global_axes = std::max<std::size_t>(rank, 1); global_axes <= 6; ++global_axes)
        {
            position.create(Sizes(rank, 7), global_axes);
            expect_identity(position, global_axes, rank);
        }
    }
}

TEST(PositionBehaviour, CreateForgetsWhatWasThere)
{
    VStackPosition position;
    position.create(Sizes{1, 1}, 3);
    position.origin[1] = 5.0;
    position.matrix[3] = 7.0;
    position.labels[2] = "old";
    position.create(Sizes{1, 1}, 3);
    expect_identity(position, 3, 2);
    EXPECT_EQ(position.labels[2], "");
}

TEST(PositionBehaviour, MoreAxesThanGlobalOnesFailAndLeaveThePosition)
{
    VStackPosition position;
    position.create(Sizes{1, 1}, 4);
    position.origin[3] = 9.0;
    EXPECT_VELA_ERROR_IN(position.create(Sizes{1, 1, 1}, 2), "VStackPosition::create", "sources/stacks", -1,
                         "Rank cannot be larger than the number of global axes!");
    const OpenInfo info(Sizes{1, 1});
    EXPECT_VELA_ERROR_IN(position.create(&info, 1), "VStackPosition::create", "sources/stacks", -1,
                         "Rank cannot be larger than the number of global axes!");
    EXPECT_EQ(position.origin[3], 9.0);
    EXPECT_EQ(position.matrix.get_size(false), (Extents{4, 2}));
}

TEST(PositionBehaviour, CreateOnAStackTakesTheLabelsOfItsAxes)
{
    OpenInfo info(Sizes{4, 3});
    info.set_labels({"X", "H\xc3\xb6he"});
    VStackPosition position;
    position.create(&info, 0);
    expect_identity(position, 2, 2);
    EXPECT_EQ(position.labels[0], L"X");
    EXPECT_EQ(position.labels[1], L"H\u00f6he");
    position.create(&info, 3);
    expect_identity(position, 3, 2);
    EXPECT_EQ(position.labels[1], L"H\u00f6he");
    EXPECT_EQ(position.labels[2], L"");
}

TEST(PositionBehaviour, IsValidForTheRankItWasMadeFor)
{
    VStackPosition position;
    position.create(Sizes{1, 1}, 3);
    for (std::uint64_t rank = 0; rank < 5; ++rank)
    {
        const OpenInfo info(rank);
        EXPECT_EQ(position.is_valid_for(&info), rank == 2) << rank;
    }
    const OpenInfo flat(0);
    EXPECT_TRUE(VStackPosition().is_valid_for(&flat));
}

TEST(PositionBehaviour, IsNotValidWithArraysOfOtherShapes)
{
    const OpenInfo info(2);
    VStackPosition good;
    good.create(&info, 3);
    EXPECT_TRUE(good.is_valid_for(&info));
    const auto changed = [&](const auto& change)
    {
        VStackPosition position = good;
        change(position);
        return position.is_valid_for(&info);
    };
    const auto resize = VProparrayBase::set_resize;
    EXPECT_FALSE(changed([&](VStackPosition& p) { p.labels.set_size(Extents{1, 3}, resize); }));
    EXPECT_FALSE(changed([&](VStackPosition& p) { p.labels.set_size(Extents{2}, resize); }));
    EXPECT_FALSE(changed([&](VStackPosition& p) { p.origin.set_size(Extents{3, 1}, resize); }));
    EXPECT_FALSE(changed([&](VStackPosition& p) { p.origin.set_size(Extents{4}, resize); }));
    EXPECT_FALSE(changed([&](VStackPosition& p) { p.matrix.set_size(Extents{2, 3}, resize); }));
    EXPECT_FALSE(changed([&](VStackPosition& p) { p.matrix.set_size(Extents{3, 2, 1}, resize); }));
    EXPECT_FALSE(changed([&](VStackPosition& p) { p.matrix.set_size(Extents{6}, resize); }));
    EXPECT_FALSE(changed([&](VStackPosition& p) { p.matrix.set_size(Extents{4, 2}, resize); }));
    EXPECT_FALSE(changed([&](VStackPosition& p) { p.matrix.set_size(Extents{3, 3}, resize); }));
    EXPECT_FALSE(changed(
        [&](VStackPosition& p)
        {
            p.labels.set_size(Extents{2}, resize);
            p.origin.set_size(Extents{2}, resize);
        }));
    EXPECT_TRUE(changed(
        [&](VStackPosition& p)
        {
            p.labels.set_size(Extents{2}, resize);
            p.origin.set_size(Extents{2}, resize);
            p.matrix.set_size(Extents{2, 2}, resize);
        }));
}

TEST(PositionBehaviour, IsNotValidWhenElementsCameOrWent)
{
    const OpenInfo info(2);
    VStackPosition position;
    position.create(&info, 0);
    position.origin.push_back(1.0);
    EXPECT_FALSE(position.is_valid_for(&info));
    position.labels.push_back(VPropstring(L"Z"));
    EXPECT_FALSE(position.is_valid_for(&info)) << "the matrix has two global axes";
    position.create(&info, 0);
    position.origin.clear();
    EXPECT_FALSE(position.is_valid_for(&info));
    position.create(&info, 0);
    position.matrix.pop_back();
    EXPECT_FALSE(position.is_valid_for(&info));
}

TEST(PositionBehaviour, DescriptionMakesItsPositionWhenAskedAndKeepsIt)
{
    OpenInfo info(Sizes{4, 3});
    info.set_labels({"X", "Y"});
    expect_identity(info.get_stack_position(), 2, 2);
    EXPECT_EQ(info.get_stack_position().labels[0], L"X");
    info.set_label(0, "other");
    EXPECT_EQ(info.get_stack_position().labels[0], L"X");
    info.set_sizes({8, 8});
    EXPECT_EQ(info.get_stack_position().labels[0], L"X");
    info.set_sizes({8, 8, 8});
    expect_identity(info.get_stack_position(), 3, 3);
    EXPECT_EQ(info.get_stack_position().labels[0], L"other");
}

TEST(PositionBehaviour, DescriptionOfAnotherRankRebuildsAGivenPosition)
{
    OpenInfo info(Sizes{4, 3});
    VStackPosition position;
    position.create(&info, 3);
    position.origin[2] = 5.0;
    info.set_stack_position(position);
    EXPECT_EQ(info.get_stack_position().origin[2], 5.0);
    EXPECT_EQ(info.get_stack_position().matrix.get_size(false), (Extents{3, 2}));
    info.set_sizes({4, 3, 2});
    expect_identity(info.get_stack_position(), 3, 3);
}

TEST(PositionBehaviour, DescriptionRefusesAPositionOfAnotherRankAndKeepsItsOwn)
{
    OpenInfo info(Sizes{4, 3});
    VStackPosition position;
    position.create(&info, 3);
    position.origin[2] = 5.0;
    info.set_stack_position(position);
    VStackPosition wrong;
    wrong.create(Sizes{1, 1, 1}, 0);
    EXPECT_VELA_ERROR_IN(info.set_stack_position(wrong), "VStackInfoImp::set_stack_position", "sources/stacks", -1,
                         "Invalid global stack position!");
    EXPECT_EQ(info.get_stack_position().origin[2], 5.0);
}

TEST(PositionBehaviour, LockedDescriptionTakesAValidPositionAndRefusesAnother)
{
    OpenInfo info(Sizes{4, 3});
    info.locked = true;
    VStackPosition position;
    position.create(&info, 0);
    position.origin[1] = 2.5;
    info.set_stack_position(position);
    EXPECT_EQ(info.get_stack_position().origin[1], 2.5);
    EXPECT_VELA_ERROR(info.set_stack_position(VStackPosition()), -1, "Invalid global stack position!");
}

} // namespace
