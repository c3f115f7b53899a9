/// What can be seen of regions: the boxes and sizes that requests give, and every way in which they fail.
#include "open_info.h"
#include "support/expect_vela_error.h"

#include <VelaStacks/VStackRegion.h>

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <type_traits>

namespace {

using vela_test::OpenInfo;
using vela_test::Sizes;
using Pixels = std::vector<std::int64_t>;

constexpr std::int64_t unspecified = 0x7fffffffffffffff;
constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();

VStackRegion make_region(const Pixels& begin, const Pixels& end, const Sizes& permutation)
{
    VStackRegion region;
    region.begin = begin;
    region.end = end;
    region.permutation = permutation;
    return region;
}

struct Resolved
{
    Sizes sizes;
    bool exact = false;
    VStackRegion source;
    VStackRegion target;
};

Resolved resolve(const VStackRegion& region, const VStackInfoInterface& info)
{
    Resolved result;
    result.sizes = region.validate(&info, result.exact, result.source, result.target);
    bool exact_in_short = !result.exact;
    EXPECT_EQ(region.validate(&info, exact_in_short), result.sizes);
    EXPECT_EQ(exact_in_short, result.exact);
    return result;
}

TEST(RegionBehaviour, IsACopyableAndMovableValue)
{
    static_assert(std::is_copy_constructible_v<VStackRegion> && std::is_copy_assignable_v<VStackRegion>);
    static_assert(std::is_move_constructible_v<VStackRegion> && std::is_move_assignable_v<VStackRegion>);
    VStackRegion region = make_region({1}, {2}, {0});
    region.dt = vela_dt_double;
    VStackRegion copy = region;
    copy.begin[0] = 0;
    EXPECT_EQ(region.begin, Pixels{1});
    const VStackRegion moved = std::move(copy);
    EXPECT_EQ(moved.begin, Pixels{0});
    EXPECT_EQ(moved.end, Pixels{2});
    EXPECT_EQ(moved.permutation, Sizes{0});
    EXPECT_EQ(moved.dt, vela_dt_double);
}

TEST(RegionBehaviour, NewOneHasNoAxesAndNoType)
{
    const VStackRegion region;
    EXPECT_EQ(region.dt, 0);
    EXPECT_TRUE(region.begin.empty());
    EXPECT_TRUE(region.end.empty());
    EXPECT_TRUE(region.permutation.empty());
}

TEST(RegionBehaviour, WithoutAxesIsNotEmptyAndHasOnePixel)
{
    const VStackRegion region;
    EXPECT_FALSE(region.is_empty());
    EXPECT_EQ(region.get_num_pixels(), 1u);
}

TEST(RegionBehaviour, UnspecifiedEndIsTheLargestSignedNumber)
{
    EXPECT_EQ(VStackRegion::unspecified, unspecified);
}

TEST(RegionBehaviour, CreateOnSizesGivesTheWholeBoxInOrder)
{
    VStackRegion region = make_region({9, 9, 9, 9}, {1}, {7, 7});
    region.create(Sizes{4, 0, 6}, vela_dt_int16);
    EXPECT_EQ(region.begin, (Pixels{0, 0, 0}));
    EXPECT_EQ(region.end, (Pixels{4, 0, 6}));
    EXPECT_EQ(region.permutation, (Sizes{0, 1, 2}));
    EXPECT_EQ(region.dt, vela_dt_int16);
    region.create(Sizes{3}, 0);
    EXPECT_EQ(region.dt, 0);
    EXPECT_EQ(region.end, Pixels{3});
}

TEST(RegionBehaviour, CreateOnAStackTakesItsSizesAndItsTypeIfNoneIsNamed)
{
    const OpenInfo info(Sizes{4, 5});
    VStackRegion region;
    region.create(&info, 0);
    EXPECT_EQ(region.dt, vela_dt_uint8);
    EXPECT_EQ(region.begin, (Pixels{0, 0}));
    EXPECT_EQ(region.end, (Pixels{4, 5}));
    EXPECT_EQ(region.permutation, (Sizes{0, 1}));
    region.create(&info, vela_dt_double);
    EXPECT_EQ(region.dt, vela_dt_double);
}

TEST(RegionBehaviour, EmptinessAndPixelsOfBoxes)
{
    struct Case
    {
        Pixels begin;
        Pixels end;
        bool empty;
        std::uint64_t pixels;
    };
    const Case cases[] = {
        {{0}, {1}, false, 1},
        {{0, 0}, {4, 5}, false, 20},
        {{-2, 3}, {3, 5}, false, 10},
        {{0, 2}, {4, 2}, true, 0},
        {{2, 0}, {2, 4}, true, 0},
        {{-5}, {-2}, false, 3},
        {{0}, {unspecified}, false, 0x7fffffffffffffff},
        {{lowest}, {0}, false, 0x8000000000000000u},
        {{lowest}, {unspecified}, false, 0xffffffffffffffffu},
    };
    for (const Case& c : cases)
    {
        const VStackRegion region = make_region(c.begin, c.end, {});
        EXPECT_EQ(region.is_empty(), c.empty) << c.begin[0] << " to " << c.end[0];
        EXPECT_EQ(region.get_num_pixels(), c.pixels) << c.begin[0] << " to " << c.end[0];
    }
}

TEST(RegionBehaviour, BeginBehindEndIsEmptyAndHasNoNumberOfPixels)
{
    for (const VStackRegion& region :
         {make_region({3}, {2}, {}), make_region({0, 5}, {4, 4}, {}), make_region({2, 5}, {2, 4}, {})})
    {
        EXPECT_TRUE(region.is_empty());
        EXPECT_VELA_ERROR_IN(region.get_num_pixels(), "VStackRegion::get_num_pixels", "sources/stacks", -1,
                             "Invalid region!");
    }
}

TEST(RegionBehaviour, EmptinessComparesOnlyAxesThatBothVectorsHave)
{
    EXPECT_FALSE(make_region({0, 5}, {4}, {}).is_empty());
    EXPECT_FALSE(make_region({0}, {4, -5}, {}).is_empty());
    EXPECT_TRUE(make_region({4, 5}, {4}, {}).is_empty());
    EXPECT_FALSE(make_region({}, {0}, {}).is_empty());
}

TEST(RegionBehaviour, OfAWholeStackIsExactAndGivesItsSizes)
{
    const OpenInfo info(Sizes{4, 3, 2});
    VStackRegion region;
    region.create(&info, 0);
    const Resolved r = resolve(region, info);
    EXPECT_EQ(r.sizes, (Sizes{4, 3, 2}));
    EXPECT_TRUE(r.exact);
    for (const VStackRegion& box : {r.source, r.target})
    {
        EXPECT_EQ(box.begin, (Pixels{0, 0, 0}));
        EXPECT_EQ(box.end, (Pixels{4, 3, 2}));
        EXPECT_EQ(box.permutation, (Sizes{0, 1, 2}));
    }
    EXPECT_EQ(r.source.dt, vela_dt_uint8);
    EXPECT_EQ(r.target.dt, 0);
}

struct Request
{
    const char* what;
    Sizes stack;
    VStackRegion region;
    Sizes sizes;
    bool exact;
    Pixels source_begin, source_end;
    Pixels target_begin, target_end;
    Sizes source_permutation, target_permutation;
};

void PrintTo(const Request& request, std::ostream* out)
{
    *out << request.what;
}

class RegionRequest : public ::testing::TestWithParam<Request>
{
};

TEST_P(RegionRequest, ResolvesAsStated)
{
    const Request& q = GetParam();
    SCOPED_TRACE(q.what);
    const OpenInfo info(q.stack);
    const Resolved r = resolve(q.region, info);
    EXPECT_EQ(r.sizes, q.sizes);
    EXPECT_EQ(r.exact, q.exact);
    EXPECT_EQ(r.source.begin, q.source_begin);
    EXPECT_EQ(r.source.end, q.source_end);
    EXPECT_EQ(r.target.begin, q.target_begin);
    EXPECT_EQ(r.target.end, q.target_end);
    EXPECT_EQ(r.source.permutation, q.source_permutation);
    EXPECT_EQ(r.target.permutation, q.target_permutation);
}

const Request requests[] = {
    {"beyond both ends", {2}, make_region({-2}, {3}, {0}), {5}, false, {0}, {2}, {2}, {4}, {0}, {0}},
    {"wholly behind", {4}, make_region({7}, {9}, {0}), {2}, false, {7}, {4}, {0}, {-3}, {0}, {0}},
    {"wholly before", {4}, make_region({-5}, {-3}, {0}), {2}, false, {0}, {0}, {5}, {5}, {0}, {0}},
    {"part inside", {4}, make_region({1}, {3}, {0}), {2}, true, {1}, {3}, {0}, {2}, {0}, {0}},
    {"end at the size", {4}, make_region({4}, {4}, {0}), {0}, true, {4}, {4}, {0}, {0}, {0}, {0}},
    {"unspecified end", {4}, make_region({1}, {unspecified}, {0}), {3}, true, {1}, {4}, {0}, {3}, {0}, {0}},
    {"unspecified from before", {4}, make_region({-1}, {unspecified}, {0}), {5}, false, {0}, {4}, {1}, {5}, {0}, {0}},
    {"a slice", {4, 3}, make_region({0, 2}, {4, 3}, {0}), {4}, true, {0, 2}, {4, 3}, {0}, {4}, {0, 1}, {0}},
    {"a slice by its begin",
     {4, 3},
     make_region({0, 1}, {4, 9}, {0}),
     {4},
     true,
     {0, 1},
     {4, 2},
     {0},
     {4},
     {0, 1},
     {0}},
    {"a slice outside", {4, 3}, make_region({0, 3}, {4, 4}, {0}), {4}, true, {0, 0}, {4, 0}, {0}, {4}, {0, 1}, {0}},
    {"a slice before", {4, 3}, make_region({0, -1}, {4, 4}, {0}), {4}, true, {0, 0}, {4, 0}, {0}, {4}, {0, 1}, {0}},
    {"axes exchanged",
     {4, 3},
     make_region({0, 1}, {4, 3}, {1, 0}),
     {2, 4},
     true,
     {0, 1},
     {4, 3},
     {0, 0},
     {2, 4},
     {0, 1},
     {1, 0}},
    {"last axis alone",
     {4, 3, 2},
     make_region({1, 2, 0}, {4, 3, 2}, {2}),
     {2},
     true,
     {1, 2, 0},
     {2, 3, 2},
     {0},
     {2},
     {2, 0, 1},
     {0}},
    {"no axis at all", {4, 3}, make_region({1, 2}, {4, 3}, {}), {}, true, {1, 2}, {2, 3}, {}, {}, {0, 1}, {}},
    {"axes that begin does not reach",
     {4, 3, 2},
     make_region({1}, {3}, {0}),
     {2},
     true,
     {1, 0, 0},
     {3, 1, 1},
     {0},
     {2},
     {0, 1, 2},
     {0}},
    {"an axis beyond the rank, to the unspecified",
     {4},
     make_region({0, 0}, {4, unspecified}, {0, 1}),
     {4, 1},
     false,
     {0},
     {4},
     {0, 0},
     {4, 1},
     {0},
     {0, 1}},
    {"an axis beyond the rank that holds pixel 0",
     {4},
     make_region({0, -2}, {4, 3}, {1, 0}),
     {5, 4},
     false,
     {0},
     {4},
     {2, 0},
     {3, 4},
     {0},
     {1, 0}},
    {"an axis beyond the rank that is not asked for",
     {4},
     make_region({0, 5}, {4, 6}, {0}),
     {4},
     true,
     {0},
     {4},
     {0},
     {4},
     {0},
     {0}},
};
INSTANTIATE_TEST_SUITE_P(All, RegionRequest, ::testing::ValuesIn(requests));

TEST(RegionBehaviour, BehindTheStackBothBoxesAreEmpty)
{
    const OpenInfo info(Sizes{4});
    const Resolved r = resolve(make_region({7}, {9}, {0}), info);
    EXPECT_TRUE(r.source.is_empty());
    EXPECT_TRUE(r.target.is_empty());
}

TEST(RegionBehaviour, SliceOutsideIsAnEmptySourceThatStaysExact)
{
    const OpenInfo info(Sizes{4, 3});
    const Resolved r = resolve(make_region({0, 3}, {4, 4}, {0}), info);
    EXPECT_TRUE(r.exact);
    EXPECT_TRUE(r.source.is_empty());
}

TEST(RegionBehaviour, UnspecifiedEndBeyondTheRankIsOnePixelFromBegin)
{
    const OpenInfo info(Sizes{4});
    for (const std::int64_t begin : {-7, -1, 0, 1, 12})
    {
        const Resolved r = resolve(make_region({0, begin}, {4, unspecified}, {0, 1}), info);
        EXPECT_EQ(r.sizes, (Sizes{4, 1})) << begin;
        EXPECT_FALSE(r.exact) << begin;
        EXPECT_EQ(r.target.is_empty(), begin != 0) << begin;
    }
}

TEST(RegionBehaviour, BoxOnAMissingAxisIsEmptyUnlessItHoldsPixelZero)
{
    const OpenInfo info(Sizes{4});
    struct Case
    {
        std::int64_t begin, end;
        bool empty;
    };
    const Case cases[] = {{0, 1, false}, {-3, 1, false}, {0, 9, false}, {-1, 0, true}, {-3, -1, true},
                          {0, 0, true},  {1, 2, true},   {5, 9, true},  {-2, -2, true}};
    for (const Case& c : cases)
    {
        const Resolved r = resolve(make_region({0, c.begin}, {4, c.end}, {0, 1}), info);
        EXPECT_EQ(r.target.is_empty(), c.empty) << c.begin << " to " << c.end;
        EXPECT_EQ(r.sizes[1], static_cast<std::uint64_t>(c.end - c.begin));
        EXPECT_FALSE(r.exact);
        if (!c.empty)
        {
            EXPECT_EQ(r.target.begin[1], -c.begin);
            EXPECT_EQ(r.target.end[1], 1 - c.begin);
        }
    }
}

TEST(RegionBehaviour, FarthestPixelsAreResolvedWithoutOverflow)
{
    const OpenInfo info(Sizes{4});
    Resolved r = resolve(make_region({lowest}, {-5}, {0}), info);
    EXPECT_EQ(r.sizes, Sizes{0x8000000000000000u - 5});
    EXPECT_FALSE(r.exact);
    EXPECT_TRUE(r.source.is_empty());
    EXPECT_TRUE(r.target.is_empty());
    r = resolve(make_region({unspecified - 2}, {unspecified - 1}, {0}), info);
    EXPECT_EQ(r.sizes, Sizes{1});
    EXPECT_TRUE(r.source.is_empty());
    EXPECT_TRUE(r.target.is_empty());
    r = resolve(make_region({-9}, {unspecified - 10}, {0}), info);
    EXPECT_EQ(r.sizes, Sizes{0x7fffffffffffffff - 1});
    EXPECT_EQ(r.target.begin, Pixels{9});
    EXPECT_EQ(r.target.end, Pixels{13});
    EXPECT_EQ(r.source.end, Pixels{4});
}

TEST(RegionBehaviour, RegionOfAStackWithoutAxesIsExact)
{
    const OpenInfo info;
    const Resolved r = resolve(VStackRegion(), info);
    EXPECT_TRUE(r.sizes.empty());
    EXPECT_TRUE(r.exact);
    EXPECT_FALSE(r.source.is_empty());
    EXPECT_FALSE(r.target.is_empty());
}

} // namespace
