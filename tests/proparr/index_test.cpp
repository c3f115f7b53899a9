// From positions to linear indices and back, and how arrays grow on the way.
#include "proparr/shape_of.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using prop_test::absent;
using prop_test::counting;
using prop_test::Extents;
using Base = VProparrayBase;

#define EXPECT_INDEX_ERROR(statement, text)                                                                            \
    EXPECT_VELA_ERROR_IN(statement, "VProparrayBase::get_idx", "sources/proparr", -1, text)

TEST(ProparrayIndex, RunsFastestAlongTheFirstDimension)
{
    const VProparray<int> array = counting(6, {2, 3});
    EXPECT_EQ(array.get_idx(Base::val2pos(1, 2)), 5u);
    EXPECT_EQ(array.get_idx({0, 0}), 0u);
    EXPECT_EQ(array.get_idx({1, 0}), 1u);
    EXPECT_EQ(array.get_idx({0, 1}), 2u);
    EXPECT_EQ(array.at({1, 2}), 5);
}

TEST(ProparrayIndex, CountsEveryPositionOfABoxOnce)
{
    const VProparray<int> array = counting(24, {2, 3, 4});
    std::size_t expected = 0;
    for (std::size_t z = 0; z < 4; ++z)
        for (std::size_t y = 0; y < 3; ++y)
            for (std::size_t x = 0; x < 2; ++x, ++expected)
            {
                EXPECT_EQ(array.get_idx({x, y, z}), expected);
                EXPECT_EQ(array.get_idx(x, y, z), expected);
                EXPECT_EQ(array.get_pos(expected), (Extents{x, y, z}));
            }
}

TEST(ProparrayIndex, FromNumbersIsThatOfVal2pos)
{
    const VProparray<int> row = counting(4, {1, 4});
    EXPECT_EQ(row.get_idx(3), 3u);
    EXPECT_EQ(row.get_idx(absent), 0u);
    const VProparray<int> box = counting(24, {2, 3, 2, 2});
    EXPECT_EQ(box.get_idx(1, 2, 1, 1), 23u);
    VProparray<int> growing;
    EXPECT_EQ(growing.get_idx(3, absent, absent, absent, true), 3u);
    EXPECT_EQ(growing.get_size(false), (Extents{1, 4}));
    EXPECT_EQ(growing.get_idx(0, 6, absent, absent, true), 6u);
    EXPECT_EQ(growing.count(), 7u);
    EXPECT_INDEX_ERROR(growing.get_idx(0, 7, absent, absent, false), "Index 1 out of bounds! (7 >= 7)!");
}

TEST(ProparrayIndex, OfRankOneIsTheCoordinate)
{
    VProparray<int> array = counting(4, {4});
    EXPECT_EQ(array.get_idx(Extents{3}), 3u);
    EXPECT_EQ(array.get_idx(Extents{9}, true), 9u);
    EXPECT_EQ(array.get_size(false), (Extents{10}));
    EXPECT_INDEX_ERROR(array.get_idx({0, 3}), "Input rank '1' too high (> '2')!");
}

TEST(ProparrayIndex, FollowsARowThatWasLengthened)
{
    VProparray<int> array = counting(3, {1, 3});
    array.push_back(3);
    EXPECT_EQ(array.get_idx({0, 3}), 3u);
    EXPECT_INDEX_ERROR(array.get_idx({0, 4}), "Index 1 out of bounds! (4 >= 3)!"); // the stored size
}

TEST(ProparrayIndex, NeedsAValidShape)
{
    VProparray<int> array = counting(5, {2, 3});
    EXPECT_VELA_ERROR_IN(array.get_idx({0, 0}), "VProparrayBase::get_size", "sources/proparr", -1,
                         "Invalid size vector in property array!");
    EXPECT_VELA_ERROR_IN(array.get_idx({0, 0}, true), "VProparrayBase::get_size", "sources/proparr", -1,
                         "Invalid size vector in property array!");
}

TEST(ProparrayIndex, BehindTheEndFails)
{
    const VProparray<int> array = counting(6, {2, 3});
    EXPECT_INDEX_ERROR(array.get_idx({2, 0}), "Index 0 out of bounds! (2 >= 2)!");
    EXPECT_INDEX_ERROR(array.get_idx({0, 3}), "Index 1 out of bounds! (3 >= 3)!");
    EXPECT_INDEX_ERROR(array.get_idx({7, 9}), "Index 0 out of bounds! (7 >= 2)!");
    EXPECT_INDEX_ERROR(array.at({1, 5}), "Index 1 out of bounds! (5 >= 3)!");
    EXPECT_INDEX_ERROR(array.get_idx(1, 3), "Index 1 out of bounds! (3 >= 3)!");
}

TEST(ProparrayIndex, IsPrintedWithItsLow32BitsAsASignedNumber)
{
    const VProparray<int> array = counting(6, {2, 3});
    EXPECT_INDEX_ERROR(array.get_idx({0x100000005, 0}), "Index 0 out of bounds! (5 >= 2)!");
    EXPECT_INDEX_ERROR(array.get_idx({0, absent}), "Index 1 out of bounds! (-1 >= 3)!");
    EXPECT_INDEX_ERROR(array.get_idx({0, 0x80000000}), "Index 1 out of bounds! (-2147483648 >= 3)!");
}

TEST(ProparrayIndex, OfAnEmptyArrayFailsWithoutGrowing)
{
    VProparray<int> array = counting(0, {0, 0});
    EXPECT_INDEX_ERROR(array.get_idx({0, 0}), "Index 0 out of bounds! (0 >= 0)!");
    EXPECT_INDEX_ERROR(array.get_idx({0, 0}, false), "Index 0 out of bounds! (0 >= 0)!");
    EXPECT_EQ(array.count(), 0u);
    // What stands for the size of a shape that was never set is open; that it fails is not.
    const VProparray<int> fresh;
    EXPECT_THROW(fresh.get_idx({0, 0}), VelaError);
}

TEST(ProparrayIndex, OfTooHighARankFails)
{
    const VProparray<int> array = counting(6, {2, 3});
    EXPECT_INDEX_ERROR(array.get_idx({0, 0, 0}), "Input rank '2' too high (> '3')!");
    EXPECT_INDEX_ERROR(array.get_idx(0, 0, 0, 0), "Input rank '2' too high (> '4')!");
}

TEST(ProparrayIndex, OfTooLowARankFailsAlsoWhereItMayGrow)
{
    VProparray<int> array = counting(6, {2, 3});
    EXPECT_INDEX_ERROR(array.get_idx(Extents{0}), "Input rank '2' too low (< '1')!");
    EXPECT_INDEX_ERROR(array.get_idx(Extents{0}, true), "Input rank '2' too low (< '1')!");
    EXPECT_INDEX_ERROR(array.get_idx(Extents{}, true), "Input rank '2' too low (< '0')!");
    VProparray<int> empty;
    EXPECT_INDEX_ERROR(empty.get_idx(Extents{0}, true), "Input rank '2' too low (< '1')!");
    VProparray<int> box = counting(8, {2, 2, 2});
    EXPECT_INDEX_ERROR(box.get_idx(7, absent, absent, absent, true), "Input rank '3' too low (< '2')!");
    EXPECT_EQ(array.count(), 6u);
}

TEST(ProparrayGrowth, GoesAlongTheLastDimension)
{
    VProparray<int> array = counting(6, {2, 3});
    array.at({0, 5}, true) = 42;
    EXPECT_EQ(array.get_size(true), (Extents{2, 6}));
    EXPECT_EQ(static_cast<const std::vector<int>&>(array), (std::vector<int>{0, 1, 2, 3, 4, 5, 0, 0, 0, 0, 42, 0}));
}

TEST(ProparrayGrowth, AlongAnyOtherDimensionFails)
{
    VProparray<int> array = counting(6, {2, 3});
    EXPECT_INDEX_ERROR(array.at({2, 0}, true), "Index 0 out of bounds! (2 >= 2)!");
    EXPECT_INDEX_ERROR(array.at({2, 7}, true), "Index 0 out of bounds! (2 >= 2)!");
    EXPECT_EQ(array.get_size(true), (Extents{2, 3}));
    EXPECT_EQ(array.count(), 6u);
    VProparray<int> box = counting(8, {2, 2, 2});
    EXPECT_INDEX_ERROR(box.at({0, 2, 5}, true), "Index 1 out of bounds! (2 >= 2)!");
    EXPECT_EQ(box.get_idx({1, 1, 4}, true), 19u);
    EXPECT_EQ(box.get_size(true), (Extents{2, 2, 5}));
}

TEST(ProparrayGrowth, DoesNothingInside)
{
    VProparray<int> array = counting(6, {2, 3});
    EXPECT_EQ(array.at({1, 2}, true), 5);
    EXPECT_EQ(array.get_size(false), (Extents{2, 3}));
    VProparray<int> stale = counting(4, {1, 3});
    EXPECT_EQ(stale.at({0, 3}, true), 3);
    EXPECT_EQ(stale.get_size(false), (Extents{1, 3})) << "nothing was stored";
    stale.at({0, 4}, true) = 4;
    EXPECT_EQ(stale.get_size(false), (Extents{1, 5}));
}

TEST(ProparrayGrowth, OfAnEmptyArrayTakesAnyShape)
{
    VProparray<int> array;
    array.at({3, 4}, true) = 7;
    EXPECT_EQ(array.get_size(true), (Extents{4, 5}));
    EXPECT_EQ(array.count(), 20u);
    EXPECT_EQ(array[19], 7);
    EXPECT_EQ(array[18], 0);
}

TEST(ProparrayGrowth, OfAnEmptyArrayTakesAnyRank)
{
    VProparray<int> array;
    EXPECT_EQ(array.get_idx({1, 2, 3}, true), 23u);
    EXPECT_EQ(array.get_size(true), (Extents{2, 3, 4}));
    VProparray<int> flat;
    EXPECT_EQ(flat.get_idx({1, 2, 0}, true), 5u);
    EXPECT_EQ(flat.get_size(true), (Extents{2, 3, 1})) << "rank 3 also with a last coordinate of 0";
    VProparray<int> five;
    EXPECT_EQ(five.get_idx({0, 0, 0, 0, 1}, true), 1u);
    EXPECT_EQ(five.get_size(true), (Extents{1, 1, 1, 1, 2}));
}

TEST(ProparrayGrowth, OfAnEmptyArrayKeepsTheExtentsThatSuffice)
{
    VProparray<int> array = counting(0, {0, 5});
    EXPECT_EQ(array.get_idx({1, 2}, true), 5u);
    EXPECT_EQ(array.get_size(true), (Extents{2, 5}));
    VProparray<int> other = counting(0, {3, 0});
    EXPECT_EQ(other.get_idx({1, 0}, true), 1u);
    EXPECT_EQ(other.get_size(true), (Extents{3, 1}));
}

TEST(ProparrayGrowth, GoesByTheDeclaredElements)
{
    // Elements that were pushed back without a shape are not declared: any dimension grows, and they keep their
    // linear positions.
    VProparray<int> array = counting(5, {});
    EXPECT_EQ(array.get_idx({3, 7}, true), 31u);
    EXPECT_EQ(array.get_size(true), (Extents{4, 8}));
    EXPECT_EQ(array[4], 4);
    VProparray<int> zeros = counting(5, {0, 0});
    EXPECT_EQ(zeros.get_idx({1, 0}, true), 1u);
    EXPECT_EQ(zeros.get_size(true), (Extents{2, 5}));
}

TEST(ProparrayGrowth, TakesAHigherRankOnlyWithACoordinateOfZero)
{
    VProparray<int> array = counting(6, {2, 3});
    EXPECT_EQ(array.at({1, 2, 0}, true), 5);
    EXPECT_EQ(array.at({1, 2, 0, 0}, true), 5);
    EXPECT_EQ(array.get_size(true), (Extents{2, 3})) << "the array stays of rank 2";
    EXPECT_THROW(array.at({1, 2, 1}, true), VelaError); // the third number of the text is open
    EXPECT_THROW(array.at({0, 0, 0, 1}, true), VelaError);
    EXPECT_EQ(array.get_size(true), (Extents{2, 3}));
}

TEST(ProparrayGrowth, AlongTheLastDimensionOnEntryTakesTheHigherRankWithIt)
{
    VProparray<int> array = counting(6, {2, 3});
    EXPECT_EQ(array.get_idx({0, 5, 0}, true), 10u);
    EXPECT_EQ(array.get_size(true), (Extents{2, 6, 1}));
}

TEST(ProparrayGrowth, BeyondWhatCanBeCountedFails)
{
    VProparray<int> empty;
    const std::size_t root = std::size_t{1} << 32;
    EXPECT_VELA_ERROR(empty.get_idx({root, root}, true), -1, "Invalid size set!");
    EXPECT_EQ(empty.get_size(false), (Extents{0, 0}));
    EXPECT_EQ(empty.count(), 0u);
    VProparray<int> array = counting(6, {2, 3});
    EXPECT_VELA_ERROR(array.get_idx({0, absent / 2 + 1}, true), -1, "Invalid size set!");
    EXPECT_EQ(array.get_size(true), (Extents{2, 3}));
    EXPECT_EQ(array.count(), 6u);
}

TEST(ProparrayGrowth, ToTheLargestCoordinateFails)
{
    VProparray<int> empty;
    EXPECT_THROW(empty.get_idx({0, absent}, true), VelaError);
    EXPECT_THROW(empty.get_idx({absent, 0}, true), VelaError);
    EXPECT_EQ(empty.get_size(false), (Extents{0, 0}));
    VProparray<int> array = counting(6, {2, 3});
    EXPECT_THROW(array.get_idx({0, absent}, true), VelaError);
    EXPECT_EQ(array.get_size(true), (Extents{2, 3}));
    EXPECT_EQ(array.count(), 6u);
}

TEST(ProparrayPosition, IsTheInverseOfTheIndex)
{
    const VProparray<int> array = counting(6, {2, 3});
    EXPECT_EQ(array.get_pos(5), (Extents{1, 2}));
    EXPECT_EQ(array.get_pos(0), (Extents{0, 0}));
    EXPECT_EQ(array.get_pos(1), (Extents{1, 0}));
    EXPECT_EQ(counting(6, {6}).get_pos(4), (Extents{4}));
}

TEST(ProparrayPosition, HasNoBoundInTheLastDimension)
{
    EXPECT_EQ(counting(6, {2, 3}).get_pos(101), (Extents{1, 50}));
    EXPECT_EQ(counting(6, {6}).get_pos(100), (Extents{100}));
    EXPECT_EQ(counting(0, {2, 0}).get_pos(3), (Extents{1, 1}));
}

TEST(ProparrayPosition, GoesByTheStoredSizes)
{
    EXPECT_EQ(counting(5, {2, 3}).get_pos(5), (Extents{1, 2})) << "although the count does not fit";
}

TEST(ProparrayPosition, WithoutAShapeHasTheFormOfASize)
{
    const VProparray<int> array = counting(5, {});
    EXPECT_EQ(array.get_pos(3), (Extents{1, 3}));
    EXPECT_EQ(array.get_pos(0), (Extents{0, 0}));
    EXPECT_EQ(VProparray<int>().get_pos(7), (Extents{1, 7}));
}

}
