// The description that `create` makes of a region.
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackRegion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/expect_vela_error.h"

#include <limits>

using testing::ElementsAre;
using testing::IsEmpty;
using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;
using vela_test::Texts;

namespace {

using Pixels = std::vector<std::int64_t>;

VStackRegion region_of(const Pixels& begin, const Pixels& end, const Sizes& permutation)
{
    VStackRegion region;
    region.begin = begin;
    region.end = end;
    region.permutation = permutation;
    return region;
}

/// 8 x 6 x 4 pixels with lengths, offsets and labels.
class DescriptionOfRegion : public testing::Test
{
protected:
    DescriptionOfRegion() : source({8, 6, 4}, vela_dt_uint16)
    {
        source.set_len(Doubles{16.0, 12.0, 8.0});
        source.set_off(Doubles{100.0, 50.0, 2.0});
        source.set_labels({"X", "Y", "Z"});
        source.set_name("name");
        source.set_description("description");
        source.set_units(0, si::value("s"));
    }

    /// Gives the source four global axes: origin 10, 20, 30, 40 and the matrix element 10 * row + column + 1.
    void place_source()
    {
        VStackPosition position;
        position.create(&source, 4);
        for (std::size_t row = 0; row < 4; ++row)
        {
            position.origin[row] = 10.0 * static_cast<double>(row + 1);
            position.labels[row] = std::string(1, static_cast<char>('a' + row));
            for (std::size_t column = 0; column < 3; ++column)
                position.matrix[row + 4 * column] = 10.0 * static_cast<double>(row) + static_cast<double>(column) + 1.0;
        }
        source.set_stack_position(position);
    }

    OpenInfo source;
    OpenInfo info;
};

TEST_F(DescriptionOfRegion, HasSizesAndTypeOfTheRegion)
{
    VStackRegion region = region_of({2, 1, 1}, {6, 4, 3}, {0, 1, 2});
    info.create(&source, region);
    EXPECT_THAT(info.get_sizes(), ElementsAre(4, 3, 2));
    EXPECT_EQ(info.get_dt(), vela_dt_uint16);
    EXPECT_EQ(info.get_name(), "name");
    EXPECT_EQ(info.get_description(), "description");
    EXPECT_THAT(info.get_labels(), ElementsAre("X", "Y", "Z"));
    EXPECT_EQ(info.get_units(0), si::value("1e-6 m")) << "units are not copied, so this is the guess";
    region.dt = vela_dt_double;
    info.create(&source, region);
    EXPECT_EQ(info.get_dt(), vela_dt_double);
}

TEST_F(DescriptionOfRegion, CountsTheBeginInPixelsInTheOffset)
{
    info.create(&source, region_of({2, 1, 1}, {6, 4, 3}, {0, 1, 2}));
    EXPECT_THAT(info.get_lengths(), ElementsAre(8.0, 6.0, 4.0));
    EXPECT_THAT(info.get_offsets(), ElementsAre(92.0 + 1 + 4, 44.0 + 0 + 3, -2.0 + 0 + 2)) << "whole pixels";
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 2.0);
    EXPECT_EQ(info.meta_data().planes[0]->position_x.get(), 97.0);
    info.create(&source, region_of({-2, 0, 0}, {6, 6, 4}, {0, 1, 2}));
    EXPECT_EQ(info.get_length(0), 16.0);
    EXPECT_EQ(info.get_offset(0), 92.0 + 2305843009213693950.0 + 8.0) << "modulo 2^64";
    EXPECT_EQ(info.get_offset(1), 50.0);
}

TEST_F(DescriptionOfRegion, OfNoPixelsHasALengthOfZero)
{
    info.create(&source, region_of({2, 0, 0}, {2, 6, 4}, {0, 1, 2}));
    EXPECT_EQ(info.get_length(0), 0.0);
    EXPECT_EQ(info.get_offset(0), 92.0);
    source.set_sizes({0, 6, 4});
    info.create(&source, region_of({-1, 0, 0}, {3, 6, 4}, {0, 1, 2}));
    EXPECT_EQ(info.get_length(0), 1.0) << "of an axis without pixels";
    EXPECT_EQ(info.get_offset(0), 0.0);
    EXPECT_EQ(info.get_length(1), 12.0);
}

TEST_F(DescriptionOfRegion, IsStoredWhateverTheRecordCanExpress)
{
    OpenInfo series({4, 4, 2, 5, 2});
    series.store_lengths({4.0, 4.0, 2.0, 5.0, 2.0});
    series.store_offsets({0.0, 0.0, 0.0, 0.0, 3.0});
    VStackRegion region;
    region.create(&series, 0);
    info.create(&series, region);
    EXPECT_EQ(info.get_lengths(), series.get_lengths());
    EXPECT_EQ(info.get_offsets(), series.get_offsets());
    EXPECT_EQ(info.meta_data().time_increment.get(), 1.0);
}

TEST_F(DescriptionOfRegion, CutsColumnPositionsAndPadsThem)
{
    source.set_col_positions(0, {1, 2, 3, 4, 5, 6, 7, 8});
    info.create(&source, region_of({2, 0, 0}, {5, 6, 4}, {0, 1, 2}));
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(3, 4, 5));
    EXPECT_FALSE(info.is_equidistant(0));
    EXPECT_EQ(info.get_length(0), 1.0);
    EXPECT_EQ(info.get_offset(0), 0.0);
    EXPECT_TRUE(info.is_equidistant(1));
    info.create(&source, region_of({-2, 0, 0}, {10, 6, 4}, {0, 1, 2}));
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 0, 0));
    info.create(&source, region_of({-3, 0, 0}, {-1, 6, 4}, {0, 1, 2}));
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(0, 0));
    info.create(&source, region_of({9, 0, 0}, {11, 6, 4}, {0, 1, 2}));
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(0, 0));
}

TEST_F(DescriptionOfRegion, CutsColumnLabelsAndPadsThem)
{
    source.set_col_labels(2, {"a", "b", "c", "d"});
    info.create(&source, region_of({0, 0, 2}, {8, 6, VStackRegion::unspecified}, {0, 1, 2}));
    EXPECT_THAT(info.get_col_labels(2), ElementsAre("c", "d"));
    EXPECT_THAT(info.get_col_labels(0), IsEmpty());
    info.create(&source, region_of({0, 0, -1}, {8, 6, 6}, {0, 1, 2}));
    EXPECT_THAT(info.get_col_labels(2), ElementsAre("", "a", "b", "c", "d", "", ""));
}

TEST_F(DescriptionOfRegion, KeepsItsOwnColumnsWhereTheStackHasNone)
{
    info.create(Sizes{8, 6}, vela_dt_uint8);
    info.set_col_positions(0, {1, 2, 3, 4, 5, 6, 7, 8});
    info.set_col_labels(1, {"a", "b", "c", "d", "e", "f"});
    info.create(&source, region_of({0, 0, 0}, {8, 6, 4}, {0, 1}));
    EXPECT_FALSE(info.is_equidistant(0));
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(info.get_col_labels(1), ElementsAre("a", "b", "c", "d", "e", "f"));
    EXPECT_EQ(info.get_length(0), source.get_length(0)) << "that of an equidistant axis";
}

TEST_F(DescriptionOfRegion, KeepsItsOwnColumnsAlsoWhereTheyDoNotFit)
{
    info.create(Sizes{8, 6}, vela_dt_uint8);
    info.set_col_positions(0, {1, 2, 3, 4, 5, 6, 7, 8});
    info.set_col_positions(1, {1, 2, 3, 4, 5, 6});
    info.set_col_labels(1, {"a", "b", "c", "d", "e", "f"});
    info.create(&source, region_of({0, 0, 0}, {2, 3, 4}, {0, 1, 2}));
    EXPECT_THAT(info.get_col_labels(1), ElementsAre("a", "b", "c", "d", "e", "f"));
    EXPECT_EQ(info.get_col_position(1, 2), 3.0);
    EXPECT_THAT(info.get_col_positions(0), IsEmpty());
    EXPECT_FALSE(info.is_equidistant(0));
    EXPECT_VELA_ERROR_IN(info.get_col_position(0, 0), "VStackInfoImp::get_col_position", "sources/stacks", -15,
                         "Invalid pixel position!");
    OpenInfo cut;
    cut.create(&info, region_of({0, 1, 1}, {2, 3, 2}, {0, 1}));
    EXPECT_THAT(cut.get_col_positions(0), ElementsAre(0, 0));
    EXPECT_THAT(cut.get_col_labels(1), ElementsAre("b", "c"));
    info.create(&source, region_of({0, 0, 0}, {1, 8, 4}, {0, 1, 2}));
    EXPECT_THAT(info.get_col_labels(1), testing::SizeIs(6));
    EXPECT_VELA_ERROR_IN(info.get_col_position(1, 7), "VStackInfoImp::get_col_position", "sources/stacks", -15,
                         "Invalid pixel position!");
}

TEST_F(DescriptionOfRegion, KeepsWhatAGetterFilledOfItsOwnColumns)
{
    info.create(Sizes{8}, vela_dt_uint8);
    info.get_col_positions(0)[0] = 77.0;
    info.create(&source, region_of({0}, {8}, {0}));
    EXPECT_TRUE(info.is_equidistant(0));
    EXPECT_EQ(info.get_col_positions(0).front(), 77.0);
    info.create(&source, region_of({0}, {5}, {0}));
    EXPECT_EQ(info.get_col_positions(0).size(), 5U);
    EXPECT_EQ(info.get_col_positions(0).front(), info.get_col_position(0, 0)) << "another size fills them anew";
}

TEST_F(DescriptionOfRegion, TakesAxesThatTheStackDoesNotHaveAsTheyAre)
{
    info.create(&source, region_of({0, 0, 0, 0}, {8, 6, 4, 3}, {3, 0}));
    EXPECT_THAT(info.get_sizes(), ElementsAre(3, 8));
    EXPECT_THAT(info.get_labels(), ElementsAre("", "X"));
    EXPECT_THAT(info.get_lengths(), ElementsAre(1.0, 16.0));
}

TEST_F(DescriptionOfRegion, PermutesTheColumnsOfTheMatrixInPlace)
{
    place_source();
    info.create(&source, region_of({0, 0, 0}, {8, 6, 4}, {1, 0, 2}));
    EXPECT_THAT(info.get_labels(), ElementsAre("Y", "X", "Z"));
    EXPECT_THAT(info.get_offsets(), ElementsAre(50.0, 100.0, 2.0));
    const VStackPosition& position = info.get_stack_position();
    EXPECT_THAT(position.matrix.get_size(true), ElementsAre(4, 3));
    // Column 0 becomes column 1 of the new identity, and then column 1 what column 0 is by now.
    EXPECT_THAT(position.matrix, ElementsAre(0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0));
    EXPECT_THAT(position.origin, ElementsAre(10, 20, 30, 40));
    EXPECT_THAT(position.labels,
                ElementsAre(VPropstring(L"a"), VPropstring(L"b"), VPropstring(L"c"), VPropstring(L"d")));
}

TEST_F(DescriptionOfRegion, AxesThatAreCutAwayMoveTheOrigin)
{
    place_source();
    source.set_col_positions(1, {0.5, 1.5, 2.5, 3.5, 4.5, 5.5});
    info.create(&source, region_of({0, 2, 3}, {8, 6, 4}, {0}));
    // Axis 1 by the position of its column 2, axis 2 by its offset, whatever the slice.
    const auto moved = [](double origin, double row) { return origin + (row + 2) * 2.5 + (row + 3) * 2.0; };
    EXPECT_THAT(info.get_stack_position().origin,
                ElementsAre(moved(10, 0), moved(20, 10), moved(30, 20), moved(40, 30)));
    EXPECT_THAT(info.get_stack_position().matrix, ElementsAre(1, 0, 0, 0));
}

TEST_F(DescriptionOfRegion, SlicesOutsideNonEquidistantAxesDoNotMoveTheOrigin)
{
    place_source();
    source.set_off(2, 0.0);
    source.set_col_positions(1, {0.5, 1.5, 2.5, 3.5, 4.5, 5.5});
    for (const std::int64_t slice : {std::int64_t{-1}, std::int64_t{6}, INT64_MAX - 1})
    {
        info.create(&source, region_of({0, slice, 0}, {8, INT64_MAX - 1, 4}, {0}));
        EXPECT_THAT(info.get_stack_position().origin, ElementsAre(10, 20, 30, 40));
    }
    info.create(&source, region_of({0}, {8}, {0}));
    EXPECT_THAT(info.get_stack_position().origin, ElementsAre(11, 26, 41, 56)) << "without a begin at pixel 0";
}

TEST_F(DescriptionOfRegion, SlicesOutsideLeaveTheOriginAloneWhateverTheMatrix)
{
    VStackPosition position;
    position.create(&source, 0);
    position.origin[0] = 10.0;
    position.matrix[3] = std::numeric_limits<double>::infinity(); // from axis 1
    source.set_stack_position(position);
    source.set_off(2, 0.0);
    source.set_col_positions(1, {0.5, 1.5, 2.5, 3.5, 4.5, 5.5});
    info.create(&source, region_of({0, 6, 0}, {8, 7, 4}, {0}));
    EXPECT_THAT(info.get_stack_position().origin, ElementsAre(10, 0, 0));
}

TEST_F(DescriptionOfRegion, CutsAlongAnyTwoAxesArePlanes)
{
    for (const Sizes& permutation : {Sizes{0, 1}, Sizes{0, 2}, Sizes{1, 2}, Sizes{2, 1}})
    {
        info.create(&source, region_of({1, 1, 1}, {8, 6, 4}, permutation));
        EXPECT_EQ(info.get_rank(), 2U);
        EXPECT_EQ(info.get_label(0), source.get_label(permutation[0]));
        EXPECT_EQ(info.get_label(1), source.get_label(permutation[1]));
        EXPECT_THAT(info.get_stack_position().matrix.get_size(true), ElementsAre(3, 2));
    }
}

TEST_F(DescriptionOfRegion, HasAGlobalAxisForEachOfItsOwn)
{
    OpenInfo line(Sizes{4});
    line.set_label(0, "X");
    line.set_off(0, 9.0);
    info.create(&line, region_of({0, 0, 0}, {4, 2, 2}, {2, 0, 1}));
    const VStackPosition& position = info.get_stack_position();
    EXPECT_THAT(position.matrix.get_size(true), ElementsAre(3, 3));
    EXPECT_THAT(position.origin, ElementsAre(0, 0, 0));
    EXPECT_EQ(position.labels[0], L"X") << "the label of the first global axis of the source";
    EXPECT_EQ(position.labels[1], L"");
}

TEST_F(DescriptionOfRegion, OfTheDescriptionItselfWorksOnACopy)
{
    place_source();
    OpenInfo expected;
    const VStackRegion region = region_of({2, 1, 1}, {6, 4, 3}, {2, 0});
    expected.create(&source, region);
    source.create(&source, region);
    EXPECT_EQ(source.get_sizes(), expected.get_sizes());
    EXPECT_EQ(source.get_lengths(), expected.get_lengths());
    EXPECT_EQ(source.get_offsets(), expected.get_offsets());
    EXPECT_EQ(source.get_labels(), expected.get_labels());
    EXPECT_EQ(source.get_stack_position().origin, expected.get_stack_position().origin);
    EXPECT_EQ(source.get_stack_position().matrix, expected.get_stack_position().matrix);
}

TEST_F(DescriptionOfRegion, FailsAsTheRegionDoes)
{
    EXPECT_VELA_ERROR_IN(info.create(&source, region_of({0}, {}, {0})), "VStackRegion::validate", "sources/stacks", -1,
                         "Called on invalid region!");
    EXPECT_VELA_ERROR_IN(info.create(&source, region_of({0}, {1}, {1})), "VStackRegion::validate", "sources/stacks",
                         -15, "Invalid permutation!");
    EXPECT_EQ(info.get_rank(), 0U);
    EXPECT_THROW_TEXT(info.create(&source, region_of({0, 0, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 1}, {0, 1, 2, 3, 4, 5})),
                      std::invalid_argument, "Unsupported number of sizes");
}

/// Remembers through which operations it was described.
class Watched : public OpenInfo
{
public:
    using VStackInfoImp::create;
    void create(const Sizes& new_sizes, vela_dt new_dt) override
    {
        calls.push_back("create");
        VStackInfoImp::create(new_sizes, new_dt);
    }
    void set_col_positions(std::uint64_t axis, const Doubles& positions) override
    {
        calls.push_back("set_col_positions");
        VStackInfoImp::set_col_positions(axis, positions);
    }
    void set_stack_position(const VStackPosition& new_position) override
    {
        calls.push_back("set_stack_position");
        VStackInfoImp::set_stack_position(new_position);
    }

    Texts calls;
};

/// Has no columns along its last axis when it is created.
class WithoutColumns : public OpenInfo
{
public:
    using VStackInfoImp::create;
    void create(const Sizes& new_sizes, vela_dt new_dt) override
    {
        Sizes empty = new_sizes;
        empty.back() = 0;
        VStackInfoImp::create(empty, new_dt);
    }
};

TEST_F(DescriptionOfRegion, HasLengthsOfTheRegionWhateverCreateMakesOfIt)
{
    WithoutColumns other;
    other.create(&source, region_of({0, 0, 0}, {8, 3, 4}, {0, 1}));
    EXPECT_THAT(other.get_sizes(), ElementsAre(8, 0));
    EXPECT_THAT(other.get_lengths(), ElementsAre(16.0, 6.0));
    EXPECT_THAT(other.get_offsets(), ElementsAre(100.0, 47.0));
}

TEST_F(DescriptionOfRegion, IsMadeThroughTheVirtualOperations)
{
    Watched watched;
    watched.create(&source, region_of({0, 0, 0}, {8, 6, 4}, {0}));
    EXPECT_THAT(watched.calls, ElementsAre("create", "set_stack_position")) << "equidistant axes bring no columns";
    watched.calls.clear();
    source.set_col_positions(0, {1, 2, 3, 4, 5, 6, 7, 8});
    watched.create(&source, region_of({0, 0, 0}, {8, 6, 4}, {0}));
    EXPECT_THAT(watched.calls, ElementsAre("create", "set_col_positions", "set_stack_position"));
    watched.calls.clear();
    watched.create(&source, vela_dt_none);
    EXPECT_THAT(watched.calls, ElementsAre("create", "set_col_positions", "set_col_positions", "set_col_positions",
                                           "set_stack_position"));
}

}
