#include <VelaStacks/VStackPosition.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/expect_vela_error.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vela_test::OpenInfo;
using vela_test::Sizes;

namespace {

using Shape = std::vector<std::size_t>;

TEST(StackPosition, FreshOneHasNoAxes)
{
    const VStackPosition position;
    EXPECT_THAT(position.labels.get_size(false), ElementsAre(0));
    EXPECT_THAT(position.origin.get_size(false), ElementsAre(0));
    EXPECT_THAT(position.matrix.get_size(false), ElementsAre(0, 0));
    const OpenInfo flat(Sizes{});
    EXPECT_TRUE(position.is_valid_for(&flat));
    const OpenInfo line(Sizes{4});
    EXPECT_FALSE(position.is_valid_for(&line));
}

TEST(StackPosition, IsCreatedWithTheIdentity)
{
    VStackPosition position;
    position.create({4, 3}, 3);
    EXPECT_THAT(position.labels.get_size(true), ElementsAre(3));
    EXPECT_THAT(position.origin, ElementsAre(0, 0, 0));
    EXPECT_THAT(position.matrix.get_size(true), ElementsAre(3, 2));
    EXPECT_THAT(position.matrix, ElementsAre(1, 0, 0, 0, 1, 0));
    EXPECT_EQ(position.labels[0], L"");
    position.origin[1] = 5;
    position.matrix[3] = 5;
    position.create({4, 3}, 0);
    EXPECT_THAT(position.origin, ElementsAre(0, 0));
    EXPECT_THAT(position.matrix, ElementsAre(1, 0, 0, 1));
}

TEST(StackPosition, NeedsAsManyGlobalAxesAsTheStackHas)
{
    VStackPosition position;
    position.create({4}, 2);
    EXPECT_VELA_ERROR_IN(position.create({4, 3, 2}, 2), "VStackPosition::create", "sources/stacks", -1,
                         "Rank cannot be larger than the number of global axes!");
    EXPECT_THAT(position.matrix.get_size(true), ElementsAre(2, 1)) << "unchanged";
    EXPECT_VELA_ERROR(position.create({4, 3}, ~std::uint64_t{0}), -1, "Invalid size set!");
    EXPECT_THAT(position.matrix.get_size(true), ElementsAre(2, 1));
}

TEST(StackPosition, TakesTheLabelsOfAStack)
{
    OpenInfo info({4, 3});
    info.set_labels({"X", "\xC3\xA9tage"});
    VStackPosition position;
    position.create(&info, 3);
    EXPECT_THAT(position.labels, ElementsAre(VPropstring(L"X"), VPropstring(L"\x00E9tage"), VPropstring()));
    EXPECT_TRUE(position.is_valid_for(&info));
    EXPECT_VELA_ERROR(position.create(&info, 1), -1, "Rank cannot be larger than the number of global axes!");
}

TEST(StackPosition, IsValidForStacksOfItsRank)
{
    VStackPosition position;
    position.create({4, 3}, 3);
    const OpenInfo two({9, 9});
    const OpenInfo three({9, 9, 9});
    EXPECT_TRUE(position.is_valid_for(&two));
    EXPECT_FALSE(position.is_valid_for(&three));
}

TEST(StackPosition, WhoseArraysDoNotFitIsInvalid)
{
    const OpenInfo info({9, 9});
    VStackPosition good;
    good.create({4, 3}, 3);
    const auto is_valid = [&](auto change)
    {
        VStackPosition position(good);
        change(position);
        return position.is_valid_for(&info);
    };
    using Position = VStackPosition;
    EXPECT_TRUE(is_valid([](Position&) {}));
    EXPECT_FALSE(is_valid([](Position& p) { p.origin.set_size({2}, VProparrayBase::set_resize); }));
    EXPECT_FALSE(is_valid([](Position& p) { p.labels.set_size({4}, VProparrayBase::set_resize); }));
    EXPECT_FALSE(is_valid([](Position& p) { p.origin.set_size({1, 3}, VProparrayBase::set_only); }));
    EXPECT_FALSE(is_valid([](Position& p) { p.labels.set_size({1, 3}, VProparrayBase::set_only); }));
    EXPECT_FALSE(is_valid([](Position& p) { p.matrix.set_size({3, 2, 1}, VProparrayBase::set_only); }));
    EXPECT_FALSE(is_valid([](Position& p) { p.matrix.set_size({2, 3}, VProparrayBase::set_only); }));
    EXPECT_FALSE(is_valid([](Position& p) { p.matrix.set_size({6}, VProparrayBase::set_only); }));
    EXPECT_FALSE(is_valid([](Position& p) { p.matrix.push_back(1.0); })) << "more elements than the sizes say";
    EXPECT_FALSE(is_valid([](Position& p) { p.matrix.clear(); }));
}

TEST(StackPosition, OfADescriptionIsMadeAnewWhereItDoesNotFit)
{
    OpenInfo info({4, 3});
    info.set_labels({"X", "Y"});
    EXPECT_THAT(info.get_stack_position().matrix, ElementsAre(1, 0, 0, 1));
    EXPECT_THAT(info.get_stack_position().labels, ElementsAre(VPropstring(L"X"), VPropstring(L"Y")));

    VStackPosition position;
    position.create({4, 3}, 3);
    position.origin[2] = 7.0;
    info.set_stack_position(position);
    EXPECT_THAT(info.get_stack_position().origin, ElementsAre(0, 0, 7));
    info.create(Sizes{5, 6}, vela_dt_uint8);
    EXPECT_THAT(info.get_stack_position().origin, ElementsAre(0, 0, 7)) << "the rank alone counts";
    info.create(Sizes{5, 6, 7}, vela_dt_uint8);
    EXPECT_THAT(info.get_stack_position().origin, ElementsAre(0, 0, 0));
    EXPECT_THAT(info.get_stack_position().matrix.get_size(true), ElementsAre(3, 3));
}

TEST(StackPosition, ThatDoesNotFitIsNotSet)
{
    OpenInfo info({4, 3});
    VStackPosition position;
    position.create({4, 3, 2}, 0);
    EXPECT_VELA_ERROR_IN(info.set_stack_position(position), "VStackInfoImp::set_stack_position", "sources/stacks", -1,
                         "Invalid global stack position!");
    EXPECT_EQ(info.get_stack_position().origin.size(), 2U);
}

TEST(StackPosition, CopiesAreIndependent)
{
    VStackPosition position;
    position.create({4, 3}, 0);
    VStackPosition copy(position);
    copy.origin[0] = 5.0;
    EXPECT_EQ(position.origin[0], 0.0);
    const VStackPosition moved(std::move(copy));
    EXPECT_EQ(moved.origin[0], 5.0);
    position = moved;
    EXPECT_EQ(position.origin[0], 5.0);
}

}
