// The sizes of an array: how they are made, set, and mended.
#include "proparr/shape_of.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using prop_test::absent;
using prop_test::counting;
using prop_test::Extents;
using Base = VProparrayBase;

constexpr const char* invalid_vector = "Invalid size vector in property array!";
constexpr const char* invalid_size = "Invalid size set!";

TEST(ProparrayVal2size, MakesARowOfOneNumber)
{
    EXPECT_EQ(Base::val2size(5), (Extents{1, 5}));
    EXPECT_EQ(Base::val2size(1), (Extents{1, 1}));
    EXPECT_EQ(Base::val2size(0), (Extents{0, 0}));
    EXPECT_EQ(Base::val2size(), (Extents{0, 0}));
    EXPECT_EQ(Base::val2size(absent), (Extents{0, 0}));
}

TEST(ProparrayVal2size, TakesAsManyAsAreGiven)
{
    EXPECT_EQ(Base::val2size(2, 3), (Extents{2, 3}));
    EXPECT_EQ(Base::val2size(2, 3, 4), (Extents{2, 3, 4}));
    EXPECT_EQ(Base::val2size(2, 3, 4, 5), (Extents{2, 3, 4, 5}));
    EXPECT_EQ(Base::val2size(0, 3), (Extents{0, 3})) << "the 0 alone is special";
    EXPECT_EQ(Base::val2size(0, 0, 0, 0), (Extents{0, 0, 0, 0}));
    EXPECT_EQ(Base::val2size(absent, 3), (Extents{0, 0})) << "without the first there are none";
}

TEST(ProparrayVal2pos, PutsOneNumberIntoTheSecondPlace)
{
    EXPECT_EQ(Base::val2pos(5), (Extents{0, 5}));
    EXPECT_EQ(Base::val2pos(0), (Extents{0, 0}));
    EXPECT_EQ(Base::val2pos(), (Extents{0, 0}));
    EXPECT_EQ(Base::val2pos(absent, 3, 4, 5), (Extents{0, 0}));
}

TEST(ProparrayVal2pos, TakesAsManyAsAreGiven)
{
    EXPECT_EQ(Base::val2pos(2, 3), (Extents{2, 3}));
    EXPECT_EQ(Base::val2pos(2, 3, 4), (Extents{2, 3, 4}));
    EXPECT_EQ(Base::val2pos(2, 3, 4, 5), (Extents{2, 3, 4, 5}));
    EXPECT_EQ(Base::val2pos(0, 3), (Extents{0, 3}));
}

TEST(ProparrayPtr2size, TakesTheValuesAsTheyAre)
{
    const std::size_t values[] = {0, 7, absent, 9};
    EXPECT_EQ(Base::ptr2size(4, values), (Extents{0, 7, absent, 9}));
    EXPECT_EQ(Base::ptr2pos(4, values), (Extents{0, 7, absent, 9}));
    EXPECT_EQ(Base::ptr2size(1, values + 1), (Extents{7}));
    EXPECT_EQ(Base::ptr2pos(1, values + 1), (Extents{7}));
    EXPECT_EQ(Base::ptr2size(0, values), Extents());
    EXPECT_EQ(Base::ptr2pos(0, values), Extents());
}

TEST(ProparraySize, IsTheProduct)
{
    EXPECT_EQ(Base::size({}), 0u);
    EXPECT_EQ(Base::size({5}), 5u);
    EXPECT_EQ(Base::size({2, 3, 4}), 24u);
    EXPECT_EQ(Base::size({2, 0, 4}), 0u);
    EXPECT_EQ(Base::size({absent / 3, 3}), absent);
}

TEST(ProparraySize, IsZeroWithAZeroAmongHugeOnes)
{
    EXPECT_EQ(Base::size({absent, absent, 0}), 0u);
    EXPECT_EQ(Base::size({0, absent, absent}), 0u);
}

TEST(ProparrayShape, IsNotSetAtFirst)
{
    const VProparray<int> array;
    EXPECT_EQ(array.userbits, 0u);
    EXPECT_EQ(array.count(), 0u);
    EXPECT_EQ(array.get_size(false), (Extents{0, 0}));
    EXPECT_EQ(array.get_size(true), (Extents{0, 0}));
    EXPECT_EQ(array.get_rank(), 2u);
}

TEST(ProparrayShape, ThatWasNeverSetIsARow)
{
    VProparray<int> array;
    array.push_back(1);
    array.push_back(2);
    EXPECT_EQ(array.get_size(false), (Extents{1, 2}));
    EXPECT_EQ(array.get_size(true), (Extents{1, 2}));
}

TEST(ProparrayShape, ThatFitsIsGivenAsItIs)
{
    EXPECT_EQ(counting(6, {2, 3}).get_size(true), (Extents{2, 3}));
    EXPECT_EQ(counting(6, {2, 3}).get_size(false), (Extents{2, 3}));
    EXPECT_EQ(counting(6, {6}).get_size(true), (Extents{6}));
    EXPECT_EQ(counting(6, {6}).get_rank(), 1u);
    EXPECT_EQ(counting(6, {1, 1, 3, 2}).get_rank(), 4u);
    EXPECT_EQ(counting(0, {0, 5}).get_size(true), (Extents{0, 5}));
    EXPECT_EQ(counting(0, {3, 0, 2}).get_rank(), 3u);
}

TEST(ProparrayShape, OfARowFollowsPushBackInTheAnswerOnly)
{
    VProparray<int> array = counting(3, {1, 3});
    array.push_back(7);
    EXPECT_EQ(array.get_size(true), (Extents{1, 4}));
    EXPECT_EQ(array.get_size(false), (Extents{1, 3}));
    array.clear();
    EXPECT_EQ(array.get_size(true), (Extents{0, 0}));
    EXPECT_EQ(array.get_size(false), (Extents{1, 3}));
}

TEST(ProparrayShape, OfZerosBecomesARow)
{
    EXPECT_EQ(counting(4, {0, 0}).get_size(true), (Extents{1, 4}));
    EXPECT_EQ(counting(4, {0, 0}).get_size(false), (Extents{0, 0}));
}

TEST(ProparrayShape, OfRankOneFollowsTheCount)
{
    EXPECT_EQ(counting(4, {3}).get_size(true), (Extents{4}));
    EXPECT_EQ(counting(4, {3}).get_rank(), 1u);
    EXPECT_EQ(counting(0, {3}).get_size(true), (Extents{0}));
    EXPECT_EQ(counting(4, {3}).get_size(false), (Extents{3}));
}

TEST(ProparrayShape, ThatIsNoRowAndDoesNotFitFails)
{
    for (const Extents& sizes :
         {Extents{2, 3}, Extents{5, 1}, Extents{0, 3}, Extents{3, 0}, Extents{1, 1, 3}, Extents{0, 0, 0}})
    {
        const VProparray<int> array = counting(4, sizes);
        EXPECT_VELA_ERROR_IN(array.get_size(true), "VProparrayBase::get_size", "sources/proparr", -1, invalid_vector);
        EXPECT_VELA_ERROR_IN(array.get_rank(), "VProparrayBase::get_size", "sources/proparr", -1, invalid_vector);
        EXPECT_EQ(array.get_size(false), sizes);
    }
}

TEST(ProparrayShape, ThatFailsWasMadeByPushBackOrByPopBack)
{
    VProparray<int> array = counting(6, {2, 3});
    array.push_back(6);
    EXPECT_VELA_ERROR(array.get_size(true), -1, invalid_vector);
    array.pop_back();
    EXPECT_EQ(array.get_size(true), (Extents{2, 3}));
    array.pop_back();
    EXPECT_VELA_ERROR(array.get_size(true), -1, invalid_vector);
}

TEST(ProparraySetStrict, TakesWhatFits)
{
    VProparray<int> array = counting(6, {});
    array.set_size(2, 3, absent, absent, Base::set_strict);
    EXPECT_EQ(array.get_size(true), (Extents{2, 3}));
    array.set_size({3, 1, 2}, Base::set_strict);
    EXPECT_EQ(array.get_size(true), (Extents{3, 1, 2}));
    EXPECT_EQ(array[5], 5);
}

TEST(ProparraySetStrict, RefusesWhatDoesNotFitAndKeepsTheShape)
{
    VProparray<int> array = counting(5, {1, 5});
    EXPECT_VELA_ERROR_IN(array.set_size(2, 3, absent, absent, Base::set_strict), "VProparrayBase::set_size",
                         "sources/proparr", -1, invalid_size);
    EXPECT_VELA_ERROR_IN(array.set_size({2, 2}, Base::set_strict), "VProparrayBase::set_size", "sources/proparr", -1,
                         invalid_size);
    EXPECT_VELA_ERROR(array.set_size({0}, Base::set_strict), -1, invalid_size);
    EXPECT_EQ(array.get_size(false), (Extents{1, 5}));
    EXPECT_EQ(array.count(), 5u);
}

TEST(ProparraySetOnly, StoresWhatDoesNotFit)
{
    VProparray<int> array = counting(5, {});
    array.set_size(2, 3, absent, absent, Base::set_only);
    EXPECT_EQ(array.get_size(false), (Extents{2, 3}));
    EXPECT_EQ(array.count(), 5u);
    EXPECT_VELA_ERROR(array.get_size(true), -1, invalid_vector);
}

TEST(ProparraySetResize, KeepsTheElementsAtTheirLinearPositions)
{
    VProparray<int> array = counting(6, {2, 3});
    array.set_size({2, 4}, Base::set_resize);
    EXPECT_EQ(static_cast<const std::vector<int>&>(array), (std::vector<int>{0, 1, 2, 3, 4, 5, 0, 0}));
    array.set_size({4, 1}, Base::set_resize);
    EXPECT_EQ(static_cast<const std::vector<int>&>(array), (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(array.get_size(true), (Extents{4, 1}));
}

TEST(ProparraySetResize, LeavesTheElementsWhereTheProductIsTheirCount)
{
    VProparray<int> array = counting(6, {2, 3});
    array.set_size(3, 2, absent, absent, Base::set_resize);
    EXPECT_EQ(array.get_size(true), (Extents{3, 2}));
    EXPECT_EQ(array[array.get_idx({0, 1})], 3);
}

TEST(ProparraySetReset, GivesDefaultsAlsoWhereTheProductIsTheCount)
{
    VProparray<int> array = counting(6, {2, 3});
    array.set_size({2, 3}, Base::set_reset);
    EXPECT_EQ(static_cast<const std::vector<int>&>(array), std::vector<int>(6, 0));
    array[0] = 1;
    array.set_size({3}, Base::set_reset);
    EXPECT_EQ(static_cast<const std::vector<int>&>(array), std::vector<int>(3, 0));
    EXPECT_EQ(array.get_size(false), (Extents{3}));
}

TEST(ProparraySetSize, OfNoEntriesForgetsTheShapeAndKeepsTheElements)
{
    for (const Base::set_mode mode : {Base::set_only, Base::set_strict, Base::set_resize})
    {
        VProparray<int> array = counting(6, {2, 3});
        array.set_size({}, mode);
        EXPECT_EQ(array.get_size(false), (Extents{1, 6})) << mode;
        EXPECT_EQ(array.count(), 6u);
    }
    VProparray<int> array = counting(6, {2, 3});
    array.set_size({}, Base::set_reset);
    EXPECT_EQ(array.count(), 0u);
    EXPECT_EQ(array.get_size(false), (Extents{0, 0}));
}

TEST(ProparraySetSize, FromNumbersIsThatOfVal2size)
{
    VProparray<int> array;
    array.set_size(4, absent, absent, absent, Base::set_resize);
    EXPECT_EQ(array.get_size(false), (Extents{1, 4}));
    array.set_size(2, 3, 4, 1, Base::set_resize);
    EXPECT_EQ(array.get_size(false), (Extents{2, 3, 4, 1}));
    array.set_size(0, absent, absent, absent, Base::set_resize);
    EXPECT_EQ(array.get_size(false), (Extents{0, 0}));
    EXPECT_EQ(array.count(), 0u);
}

TEST(ProparraySetSize, WithAnUnknownModeResizes)
{
    for (const std::int32_t mode : {4, -1, 1000})
    {
        VProparray<int> array = counting(6, {2, 3});
        array.set_size({2, 4}, static_cast<Base::set_mode>(mode));
        EXPECT_EQ(array.count(), 8u);
        EXPECT_EQ(array[5], 5);
        EXPECT_EQ(array.get_size(true), (Extents{2, 4}));
    }
}

TEST(ProparraySetSize, RefusesAProductThatCannotBeCounted)
{
    const std::size_t half = std::size_t{1} << 63;
    const std::size_t root = std::size_t{1} << 32;
    for (const Base::set_mode mode : {Base::set_only, Base::set_strict, Base::set_resize, Base::set_reset})
        for (const Extents& sizes : {Extents{half, 2}, Extents{root, root}, Extents{3, absent}, Extents{1, root, root},
                                     Extents{absent, absent, absent}})
        {
            VProparray<int> array = counting(4, {2, 2});
            EXPECT_VELA_ERROR_IN(array.set_size(sizes, mode), "VProparrayBase::set_size", "sources/proparr", -1,
                                 invalid_size);
            EXPECT_EQ(array.get_size(true), (Extents{2, 2})) << mode;
            EXPECT_EQ(array[3], 3) << mode;
        }
}

TEST(ProparraySetMode, HasItsNumbers)
{
    static_assert(Base::set_only == 0 && Base::set_strict == 1 && Base::set_resize == 2 && Base::set_reset == 3);
    static_assert(Base::absent == absent);
    static_assert(!std::has_virtual_destructor_v<Base>);
    static_assert(std::is_abstract_v<Base>);
    EXPECT_EQ(sizeof(Base::set_mode), 4u);
}

TEST(ProparrayCopy, KeepsShapeFlagsAndElements)
{
    VProparray<int> array = counting(6, {2, 3});
    array.userbits = 0x8000000000000001;
    const VProparray<int> copy(array);
    EXPECT_EQ(copy.get_size(false), (Extents{2, 3}));
    EXPECT_EQ(copy.userbits, 0x8000000000000001);
    EXPECT_EQ(copy[5], 5);
    VProparray<int> assigned = counting(1, {1});
    assigned = array;
    EXPECT_EQ(assigned.get_size(false), (Extents{2, 3}));
    EXPECT_EQ(assigned.userbits, 0x8000000000000001);
    EXPECT_EQ(assigned.count(), 6u);
    array.clear();
    EXPECT_EQ(copy.count(), 6u);
}

}
