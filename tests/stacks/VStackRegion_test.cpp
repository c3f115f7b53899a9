#include <VelaStacks/VStackRegion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/expect_vela_error.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vela_test::OpenInfo;
using vela_test::Sizes;

namespace {

using Pixels = std::vector<std::int64_t>;

const char* const folder = "sources/stacks";

VStackRegion region_of(const Pixels& begin, const Pixels& end, const Sizes& permutation)
{
    VStackRegion region;
    region.begin = begin;
    region.end = end;
    region.permutation = permutation;
    return region;
}

/// What `validate` gives.
struct Resolved
{
    Resolved(const VStackRegion& region, const Sizes& stack_sizes)
    {
        const OpenInfo info(stack_sizes, vela_dt_uint16);
        sizes = region.validate(&info, exact, source, target);
        bool exact_too = !exact;
        EXPECT_EQ(region.validate(&info, exact_too), sizes);
        EXPECT_EQ(exact_too, exact);
        EXPECT_EQ(source.dt, vela_dt_uint16);
        EXPECT_EQ(target.dt, vela_dt_none);
    }

    Sizes sizes;
    bool exact = false;
    VStackRegion source;
    VStackRegion target;
};

void expect_invalid(const VStackRegion& region, const Sizes& stack_sizes, int id, const char* text)
{
    const OpenInfo info(stack_sizes);
    bool exact = false;
    VStackRegion source;
    VStackRegion target;
    EXPECT_VELA_ERROR_IN(region.validate(&info, exact), "VStackRegion::validate", folder, id, text);
    EXPECT_VELA_ERROR_IN(region.validate(&info, exact, source, target), "VStackRegion::validate", folder, id, text);
}

TEST(StackRegion, FreshOneHasNoAxes)
{
    const VStackRegion region;
    EXPECT_EQ(region.dt, vela_dt_none);
    EXPECT_THAT(region.begin, IsEmpty());
    EXPECT_THAT(region.end, IsEmpty());
    EXPECT_THAT(region.permutation, IsEmpty());
    EXPECT_FALSE(region.is_empty());
    EXPECT_EQ(region.get_num_pixels(), 1U);
}

TEST(StackRegion, IsCreatedWithAllPixels)
{
    VStackRegion region;
    region.create(Sizes{4, 0, 3}, vela_dt_int8);
    EXPECT_EQ(region.dt, vela_dt_int8);
    EXPECT_THAT(region.begin, ElementsAre(0, 0, 0));
    EXPECT_THAT(region.end, ElementsAre(4, 0, 3));
    EXPECT_THAT(region.permutation, ElementsAre(0, 1, 2));
    region.create(Sizes{4}, vela_dt_none);
    EXPECT_EQ(region.dt, vela_dt_none);
    EXPECT_THAT(region.permutation, ElementsAre(0));

    const OpenInfo info({7, 8}, vela_dt_uint16);
    region.create(&info, vela_dt_none);
    EXPECT_EQ(region.dt, vela_dt_uint16);
    EXPECT_THAT(region.end, ElementsAre(7, 8));
    region.create(&info, vela_dt_double);
    EXPECT_EQ(region.dt, vela_dt_double);
}

TEST(StackRegion, SizesBeyondItsPixelsAreUnspecified)
{
    VStackRegion region;
    region.create(Sizes{~std::uint64_t{0}, 1ULL << 63}, vela_dt_none);
    EXPECT_THAT(region.end, ElementsAre(VStackRegion::unspecified, VStackRegion::unspecified));
}

TEST(StackRegion, IsEmptyWhereAnAxisIs)
{
    EXPECT_FALSE(region_of({0, -3}, {1, -2}, {}).is_empty());
    EXPECT_TRUE(region_of({0, 2}, {1, 2}, {}).is_empty());
    EXPECT_TRUE(region_of({5, 0}, {1, 2}, {}).is_empty());
    EXPECT_FALSE(region_of({0, 9}, {1}, {}).is_empty()) << "axes that both have";
    EXPECT_FALSE(region_of({0}, {1, -9}, {}).is_empty());
}

TEST(StackRegion, CountsItsPixels)
{
    EXPECT_EQ(region_of({0, -3}, {4, 2}, {}).get_num_pixels(), 20U);
    EXPECT_EQ(region_of({0, 2}, {4, 2}, {}).get_num_pixels(), 0U);
    EXPECT_EQ(region_of({INT64_MIN}, {INT64_MAX}, {}).get_num_pixels(), ~std::uint64_t{0});
    EXPECT_EQ(region_of({0, 9}, {4}, {}).get_num_pixels(), 4U);
    const char* function = "VStackRegion::get_num_pixels";
    EXPECT_VELA_ERROR_IN(region_of({5, 0}, {4, 1}, {}).get_num_pixels(), function, folder, -1, "Invalid region!");
    EXPECT_VELA_ERROR_IN(region_of({0, 5}, {0, 4}, {}).get_num_pixels(), function, folder, -1, "Invalid region!");
    EXPECT_VELA_ERROR(region_of({0, 0}, {INT64_MAX, 3}, {}).get_num_pixels(), -1,
                      "The product exceeds the maximum size.");
}

TEST(RegionOfAStack, AsCreatedIsTheWholeStack)
{
    const OpenInfo info({4, 3});
    VStackRegion region;
    region.create(&info, 0);
    const Resolved resolved(region, {4, 3});
    EXPECT_THAT(resolved.sizes, ElementsAre(4, 3));
    EXPECT_TRUE(resolved.exact);
    EXPECT_THAT(resolved.source.begin, ElementsAre(0, 0));
    EXPECT_THAT(resolved.source.end, ElementsAre(4, 3));
    EXPECT_THAT(resolved.target.end, ElementsAre(4, 3));
    EXPECT_THAT(resolved.source.permutation, ElementsAre(0, 1));
    EXPECT_THAT(resolved.target.permutation, ElementsAre(0, 1));
}

TEST(RegionOfAStack, ThatReachesBeyondBothEndsIsPadded)
{
    const Resolved resolved(region_of({-2}, {3}, {0}), {2});
    EXPECT_THAT(resolved.sizes, ElementsAre(5));
    EXPECT_FALSE(resolved.exact);
    EXPECT_THAT(resolved.target.begin, ElementsAre(2));
    EXPECT_THAT(resolved.target.end, ElementsAre(4));
    EXPECT_THAT(resolved.source.begin, ElementsAre(0));
    EXPECT_THAT(resolved.source.end, ElementsAre(2));
}

TEST(RegionOfAStack, BehindTheStackIsEmpty)
{
    const Resolved resolved(region_of({7}, {9}, {0}), {4});
    EXPECT_THAT(resolved.sizes, ElementsAre(2));
    EXPECT_FALSE(resolved.exact);
    EXPECT_TRUE(resolved.source.is_empty());
    EXPECT_TRUE(resolved.target.is_empty());
}

TEST(RegionOfAStack, BeforeTheStackIsEmpty)
{
    const Resolved resolved(region_of({-5}, {-3}, {0}), {4});
    EXPECT_THAT(resolved.sizes, ElementsAre(2));
    EXPECT_FALSE(resolved.exact);
    EXPECT_THAT(resolved.source.begin, ElementsAre(0));
    EXPECT_THAT(resolved.source.end, ElementsAre(0));
    EXPECT_THAT(resolved.target.begin, ElementsAre(5));
    EXPECT_THAT(resolved.target.end, ElementsAre(5));
}

TEST(RegionOfAStack, WithUnspecifiedEndGoesToTheEndOfTheStack)
{
    const Resolved resolved(region_of({1, 3}, {VStackRegion::unspecified, VStackRegion::unspecified}, {0, 1}), {4});
    EXPECT_THAT(resolved.sizes, ElementsAre(3, 1)) << "an axis beyond the rank has one pixel";
    EXPECT_FALSE(resolved.exact);
    EXPECT_THAT(resolved.target.begin, ElementsAre(0, 0));
    EXPECT_THAT(resolved.target.end, ElementsAre(3, 0)) << "pixel 3 is none of an axis that is not there";
}

TEST(RegionOfAStack, HasMissingAxesOfOnePixel)
{
    const Resolved resolved(region_of({0, -2}, {4, 3}, {1, 0}), {4});
    EXPECT_THAT(resolved.sizes, ElementsAre(5, 4));
    EXPECT_FALSE(resolved.exact);
    EXPECT_THAT(resolved.target.begin, ElementsAre(2, 0));
    EXPECT_THAT(resolved.target.end, ElementsAre(3, 4));
    EXPECT_THAT(resolved.target.permutation, ElementsAre(1, 0)) << "the axis of the stack first";
    EXPECT_THAT(resolved.source.permutation, ElementsAre(0));

    const Resolved at_zero(region_of({0, 0}, {4, 1}, {0, 1}), {4});
    EXPECT_FALSE(at_zero.exact) << "though it holds nothing else than the stack";
    EXPECT_THAT(at_zero.target.end, ElementsAre(4, 1));
    const Resolved before(region_of({0, -3}, {4, -1}, {0, 1}), {4});
    EXPECT_TRUE(before.target.is_empty());
    EXPECT_THAT(before.sizes, ElementsAre(4, 2));
    const Resolved nothing(region_of({0, 0}, {4, 0}, {0, 1}), {4});
    EXPECT_TRUE(nothing.target.is_empty());
}

TEST(RegionOfAStack, PermutesAxes)
{
    const Resolved resolved(region_of({1, 0, 2}, {3, 5, 6}, {2, 0}), {4, 5, 6});
    EXPECT_THAT(resolved.sizes, ElementsAre(4, 2));
    EXPECT_TRUE(resolved.exact);
    EXPECT_THAT(resolved.source.begin, ElementsAre(1, 0, 2));
    EXPECT_THAT(resolved.source.end, ElementsAre(3, 1, 6)) << "the axis that is not named is cut to a slice";
    EXPECT_THAT(resolved.source.permutation, ElementsAre(0, 2, 1));
    EXPECT_THAT(resolved.target.permutation, ElementsAre(1, 0));
    EXPECT_THAT(resolved.target.end, ElementsAre(4, 2));
}

TEST(RegionOfAStack, NamesTheRemainingAxesAscending)
{
    // Axis 0 and 2 are cut away, so the two permutations would otherwise name axis 1 twice.
    const Resolved resolved(region_of({1, 0, 0, 0, -1}, {2, 5, 1, 4, 1}, {3, 4, 1}), {4, 5, 6, 4});
    EXPECT_THAT(resolved.source.permutation, ElementsAre(1, 3, 0, 2));
    EXPECT_THAT(resolved.target.permutation, ElementsAre(2, 0, 1));
}

TEST(RegionOfAStack, SliceOutsideTheStackIsAnEmptySource)
{
    for (const std::int64_t slice : {std::int64_t{-1}, std::int64_t{6}, std::int64_t{INT64_MIN}, INT64_MAX - 1})
    {
        const Resolved resolved(region_of({0, slice}, {4, INT64_MAX - 1}, {0}), {4, 6});
        EXPECT_THAT(resolved.sizes, ElementsAre(4));
        EXPECT_TRUE(resolved.exact) << "this is wanted";
        EXPECT_TRUE(resolved.source.is_empty());
        EXPECT_THAT(resolved.source.end, ElementsAre(4, 0));
    }
}

TEST(RegionOfAStack, SliceAtTheLargestPositionIsOutside)
{
    const Resolved resolved(region_of({INT64_MAX, 0}, {VStackRegion::unspecified, 0}, {1}), {UINT64_MAX, 0});
    EXPECT_TRUE(resolved.source.is_empty());
    EXPECT_THAT(resolved.source.begin, ElementsAre(0, 0));
    EXPECT_THAT(resolved.source.end, ElementsAre(0, 0));
    const Resolved last(region_of({INT64_MAX - 1, 0}, {VStackRegion::unspecified, 0}, {1}), {UINT64_MAX, 0});
    EXPECT_THAT(last.source.begin, ElementsAre(INT64_MAX - 1, 0));
    EXPECT_THAT(last.source.end, ElementsAre(INT64_MAX, 0));
}

TEST(RegionOfAStack, ShorterThanTheStackCutsAtPixelZero)
{
    const Resolved resolved(region_of({1}, {3}, {0}), {4, 5});
    EXPECT_TRUE(resolved.exact);
    EXPECT_THAT(resolved.source.begin, ElementsAre(1, 0));
    EXPECT_THAT(resolved.source.end, ElementsAre(3, 1));
    const Resolved point(VStackRegion(), {4, 5});
    EXPECT_THAT(point.sizes, IsEmpty());
    EXPECT_TRUE(point.exact);
    EXPECT_THAT(point.source.end, ElementsAre(1, 1));
}

TEST(RegionOfAStack, NeedsEndsThatFit)
{
    const char* text = "Called on invalid region!";
    expect_invalid(region_of({0, 0}, {4}, {0}), {4, 4}, -1, text);
    expect_invalid(region_of({0}, {4, 4}, {0}), {4, 4}, -1, text);
    expect_invalid(region_of({3}, {2}, {0}), {4}, -1, text);
    expect_invalid(region_of({0, 3}, {4, 2}, {0}), {4, 4}, -1, text);
    expect_invalid(region_of({5}, {VStackRegion::unspecified}, {0}), {4}, -1, text);
    expect_invalid(region_of({0, INT64_MAX}, {4, VStackRegion::unspecified}, {0}), {4}, -1, text);
    expect_invalid(region_of({3, 0}, {2, 4}, {7}), {4, 4}, -1, text);
}

TEST(RegionOfAStack, NeedsAPermutationOfItsAxes)
{
    const char* text = "Invalid permutation!";
    expect_invalid(region_of({0, 0}, {4, 4}, {0, 0}), {4, 4}, -15, text);
    expect_invalid(region_of({0, 0}, {4, 4}, {1, 2}), {4, 4, 4}, -15, text);
    expect_invalid(region_of({0, 0, 0}, {4, 4, 4}, {2, 2}), {4, 4}, -15, text);
    expect_invalid(region_of({}, {}, {0}), {4, 4}, -15, text);
    expect_invalid(region_of({0}, {4}, {~std::uint64_t{0}}), {4}, -15, text);
}

TEST(RegionOfAStack, AtTheLimitsOfItsNumbersIsAnswered)
{
    const Resolved far_before(region_of({INT64_MIN}, {INT64_MIN + 5}, {0}), {4});
    EXPECT_THAT(far_before.sizes, ElementsAre(5));
    EXPECT_TRUE(far_before.source.is_empty());
    EXPECT_TRUE(far_before.target.is_empty());
    const Resolved far_behind(region_of({INT64_MAX - 5}, {INT64_MAX - 1}, {0}), {4});
    EXPECT_THAT(far_behind.sizes, ElementsAre(4));
    EXPECT_TRUE(far_behind.source.is_empty());
    EXPECT_TRUE(far_behind.target.is_empty());
    const Resolved wide(region_of({-5}, {INT64_MAX - 5}, {0}), {4});
    EXPECT_THAT(wide.sizes, ElementsAre(static_cast<std::uint64_t>(INT64_MAX)));
    EXPECT_THAT(wide.target.end, ElementsAre(9));
    const char* text = "Called on invalid region!";
    expect_invalid(region_of({-5}, {INT64_MAX - 4}, {0}), {4}, -1, text);
    expect_invalid(region_of({INT64_MIN}, {INT64_MAX - 1}, {0}), {4}, -1, text);
    expect_invalid(region_of({0, INT64_MIN}, {4, 0}, {0, 1}), {4}, -1, text);
    const Resolved missing(region_of({0, INT64_MIN + 1}, {4, 0}, {0, 1}), {4});
    EXPECT_TRUE(missing.target.is_empty());
}

TEST(RegionOfAStack, MayBeItsOwnSourceOrTarget)
{
    const OpenInfo info({2, 5});
    const VStackRegion region = region_of({-2, 1}, {3, 2}, {0});
    bool exact = false;
    VStackRegion other;
    VStackRegion source(region);
    EXPECT_THAT(source.validate(&info, exact, source, other), ElementsAre(5));
    EXPECT_THAT(source.begin, ElementsAre(0, 1));
    VStackRegion target(region);
    EXPECT_THAT(target.validate(&info, exact, other, target), ElementsAre(5));
    EXPECT_THAT(target.begin, ElementsAre(2));
}

TEST(StackPhysicalRegion, BeginsWithTheIdentity)
{
    VStackPhysicalRegion region(2);
    EXPECT_EQ(region.dt, vela_dt_none);
    EXPECT_THAT(region.lower, ElementsAre(0, 0));
    EXPECT_THAT(region.upper, ElementsAre(0, 0));
    EXPECT_THAT(region.matrix, ElementsAre(1, 0, 0, 1));
    EXPECT_THAT(region.matrix.get_size(true), ElementsAre(2, 2));
    VStackPhysicalRegion copy(region);
    copy.matrix[1] = 5;
    EXPECT_EQ(region.matrix[1], 0.0);
    EXPECT_THAT(VStackPhysicalRegion(0).matrix, IsEmpty());
    EXPECT_VELA_ERROR(VStackPhysicalRegion(~std::uint64_t{0}), -1, "Invalid size set!");
}

}
