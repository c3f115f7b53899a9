// What holds for arrays of each type of element.
#include "proparr/shape_of.h"
#include "props/held_types.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using prop_test::Extents;
using prop_test::same;
using prop_test::Sample;
using Base = VProparrayBase;

/// Compiled once, not for each type.
void expect_failure(const std::function<void()>& call, const char* function, const std::string& text)
{
    EXPECT_VELA_ERROR_IN(call(), function, "sources/proparr", -1, text);
}

template <class T>
class ProparrayOf : public testing::Test
{
};
TYPED_TEST_SUITE(ProparrayOf, prop_test::ElementTypes);

template <class T>
bool is_default(const VProparray<T>& array, std::size_t index)
{
    return same(static_cast<T>(array[index]), T());
}

template <class T>
bool is_one(const VProparray<T>& array, std::size_t index)
{
    return same(static_cast<T>(array[index]), Sample<T>::one());
}

TYPED_TEST(ProparrayOf, IsAVectorWithAShape)
{
    static_assert(std::is_base_of_v<std::vector<TypeParam>, VProparray<TypeParam>>);
    static_assert(std::is_base_of_v<Base, VProparray<TypeParam>>);
    VProparray<TypeParam> array;
    array.push_back(Sample<TypeParam>::one());
    const Base& base = array;
    EXPECT_EQ(base.count(), 1u);
    EXPECT_EQ(base.get_size(true), (Extents{1, 1}));
    EXPECT_EQ(base.userbits, 0u);
}

TYPED_TEST(ProparrayOf, ResizesWithDefaults)
{
    VProparray<TypeParam> array;
    array.push_back(Sample<TypeParam>::one());
    Base& base = array;
    base.resize(3, false);
    ASSERT_EQ(array.count(), 3u);
    EXPECT_TRUE(is_one(array, 0));
    EXPECT_TRUE(is_default(array, 1));
    EXPECT_TRUE(is_default(array, 2));
    EXPECT_GE(array.capacity(), 3u);
    base.resize(1, false);
    ASSERT_EQ(array.count(), 1u);
    EXPECT_TRUE(is_one(array, 0));
    base.resize(0, false);
    EXPECT_EQ(array.count(), 0u);
}

TYPED_TEST(ProparrayOf, ResetsToDefaults)
{
    VProparray<TypeParam> array;
    array.push_back(Sample<TypeParam>::one());
    array.push_back(Sample<TypeParam>::one());
    Base& base = array;
    base.resize(2, true);
    ASSERT_EQ(array.count(), 2u);
    EXPECT_TRUE(is_default(array, 0));
    EXPECT_TRUE(is_default(array, 1));
    base.resize(5, true);
    ASSERT_EQ(array.count(), 5u);
    EXPECT_TRUE(is_default(array, 4));
    base.resize(1, true);
    EXPECT_EQ(array.count(), 1u);
}

TYPED_TEST(ProparrayOf, ResizingLeavesTheSizesAsTheyAre)
{
    VProparray<TypeParam> array;
    array.set_size({2, 2}, Base::set_resize);
    array.resize(6, false);
    EXPECT_EQ(array.get_size(false), (Extents{2, 2}));
    array.resize(3, true);
    EXPECT_EQ(array.get_size(false), (Extents{2, 2}));
}

TYPED_TEST(ProparrayOf, GrowsWhenAnElementIsReached)
{
    VProparray<TypeParam> array;
    array.at({0, 1}, true) = Sample<TypeParam>::one();
    array.at({0, 4}, true) = Sample<TypeParam>::one();
    EXPECT_EQ(array.get_size(true), (Extents{1, 5}));
    EXPECT_TRUE(is_default(array, 0));
    EXPECT_TRUE(is_one(array, 1));
    EXPECT_TRUE(is_default(array, 2));
    EXPECT_TRUE(is_one(array, 4));
    const VProparray<TypeParam>& constant = array;
    EXPECT_TRUE(same(static_cast<TypeParam>(constant.at({0, 1})), Sample<TypeParam>::one()));
    const char* const function = "VProparrayBase::get_idx";
    expect_failure([&] { constant.at({0, 5}); }, function, "Index 1 out of bounds! (5 >= 5)!");
    expect_failure([&] { array.at({0, 5}, false); }, function, "Index 1 out of bounds! (5 >= 5)!");
    expect_failure([&] { array.at({1, 0}, true); }, function, "Index 0 out of bounds! (1 >= 1)!");
}

TYPED_TEST(ProparrayOf, SetsItsSizeInEveryMode)
{
    VProparray<TypeParam> array;
    array.push_back(Sample<TypeParam>::one());
    Base& base = array;
    base.set_size({1, 1, 1}, Base::set_strict);
    expect_failure([&] { base.set_size({2}, Base::set_strict); }, "VProparrayBase::set_size", "Invalid size set!");
    base.set_size({2}, Base::set_only);
    EXPECT_EQ(array.count(), 1u);
    base.set_size({2, 2}, Base::set_resize);
    EXPECT_EQ(array.count(), 4u);
    EXPECT_TRUE(is_one(array, 0));
    base.set_size({2, 2}, Base::set_reset);
    EXPECT_EQ(array.count(), 4u);
    EXPECT_TRUE(is_default(array, 0));
}

TYPED_TEST(ProparrayOf, CopiesElementsShapeAndFlags)
{
    VProparray<TypeParam> array;
    array.set_size({2, 2}, Base::set_resize);
    array[3] = Sample<TypeParam>::one();
    array.userbits = 3;
    const VProparray<TypeParam> copy(array);
    EXPECT_TRUE(same(copy, array));
    EXPECT_EQ(copy.get_size(false), (Extents{2, 2}));
    EXPECT_EQ(copy.userbits, 3u);
    const VProparray<TypeParam> moved(std::move(array));
    EXPECT_TRUE(same(moved, copy));
    EXPECT_EQ(moved.get_size(false), (Extents{2, 2}));
    EXPECT_EQ(moved.userbits, 3u);
}

TEST(ProparrayOfBits, IsPacked)
{
    VProparray<bool> array;
    array.set_size({3, 3}, Base::set_reset);
    array.at({1, 2}, true) = true;
    EXPECT_TRUE(array[7]);
    EXPECT_FALSE(array[6]);
    static_assert(std::is_base_of_v<std::vector<bool>, VProparray<bool>>);
}

}
