/// Every way in which a region cannot be resolved.
#include "open_info.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

namespace {

using vela_test::OpenInfo;
using vela_test::Sizes;
using Pixels = std::vector<std::int64_t>;

constexpr std::int64_t unspecified = 0x7fffffffffffffff;

VStackRegion make_region(const Pixels& begin, const Pixels& end, const Sizes& permutation)
{
    VStackRegion region;
    region.begin = begin;
    region.end = end;
    region.permutation = permutation;
    return region;
}

TEST(RegionBehaviour, BeginAndEndOfDifferentLengthsAreInvalid)
{
    const OpenInfo info(Sizes{4, 3});
    bool exact = false;
    for (const VStackRegion& region :
         {make_region({0, 0}, {4}, {0}), make_region({0}, {4, 3}, {0}), make_region({}, {4}, {9})})
        EXPECT_VELA_ERROR_IN(region.validate(&info, exact), "VStackRegion::validate", "sources/stacks", -1,
                             "Called on invalid region!");
}

TEST(RegionBehaviour, EndBeforeBeginIsInvalidOnEveryAxis)
{
    const OpenInfo info(Sizes{4, 3});
    bool exact = false;
    const VStackRegion regions[] = {
        make_region({2, 0}, {1, 3}, {0, 1}),           make_region({0, 2}, {4, 1}, {0}),
        make_region({7, 0}, {unspecified, 3}, {0, 1}), make_region({0, 0, 1}, {4, 3, 0}, {0, 1}),
        make_region({2, 0}, {1, 3}, {8, 8}),           make_region({unspecified, 0}, {unspecified, 3}, {0}),
    };
    for (const VStackRegion& region : regions)
        EXPECT_VELA_ERROR_IN(region.validate(&info, exact), "VStackRegion::validate", "sources/stacks", -1,
                             "Called on invalid region!");
}

TEST(RegionBehaviour, AxisNamedTwiceOrBeyondBeginIsAnInvalidPermutation)
{
    const OpenInfo info(Sizes{4, 3});
    bool exact = false;
    const VStackRegion regions[] = {
        make_region({0, 0}, {4, 3}, {0, 0}),          make_region({0, 0}, {4, 3}, {1, 0, 1}),
        make_region({0, 0}, {4, 3}, {0, 2}),          make_region({0}, {4}, {1}),
        make_region({0, 0, 0}, {4, 3, 1}, {2, 2}),    make_region({}, {}, {0}),
        make_region({0, 0}, {4, 3}, {0, UINT64_MAX}),
    };
    for (const VStackRegion& region : regions)
        EXPECT_VELA_ERROR_IN(region.validate(&info, exact), "VStackRegion::validate", "sources/stacks", -15,
                             "Invalid permutation!");
}

TEST(RegionBehaviour, FailureLeavesTheRegionItself)
{
    const OpenInfo info(Sizes{4, 3});
    const VStackRegion region = make_region({0, 1}, {4, 3}, {0, 0});
    VStackRegion source, target;
    bool exact = false;
    EXPECT_VELA_ERROR(region.validate(&info, exact, source, target), -15, "Invalid permutation!");
    EXPECT_EQ(region.begin, (Pixels{0, 1}));
    EXPECT_EQ(region.end, (Pixels{4, 3}));
    EXPECT_EQ(region.permutation, (Sizes{0, 0}));
}

} // namespace
