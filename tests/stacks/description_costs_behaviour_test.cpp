/// Memory that descriptions take: none for planes at which nobody has looked.
#include "open_info.h"
#include "support/allocation_watch.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

using vela_test::AllocationWatch;
using vela_test::OpenInfo;
using vela_test::Sizes;

struct Cost
{
    std::size_t peak;
    std::size_t kept;
};

/// A block may come out a little larger than it was asked for, depending on what the heap has at hand.
constexpr std::size_t rounding = 256;

const Sizes few = {4, 4, 5, 2};
const Sizes million = {4, 4, 1000, 1000};

Cost cost_of(const std::function<std::unique_ptr<OpenInfo>(const Sizes&)>& make, const Sizes& sizes)
{
    const AllocationWatch watch;
    const auto info = make(sizes);
    return {watch.peak_extra_bytes(), watch.extra_bytes()};
}

void expect_equal_costs(const std::function<std::unique_ptr<OpenInfo>(const Sizes&)>& make)
{
    cost_of(make, few); // what is made once for all is not counted
    const Cost small = cost_of(make, few);
    const Cost large = cost_of(make, million);
    EXPECT_GT(small.kept, 0u);
    EXPECT_LE(large.peak, small.peak + rounding);
    EXPECT_LE(large.kept, small.kept + rounding);
}

std::unique_ptr<OpenInfo> make_plain(const Sizes& sizes)
{
    return std::make_unique<OpenInfo>(sizes);
}

std::unique_ptr<OpenInfo> make_full(const Sizes& sizes)
{
    auto info = make_plain(sizes);
    info->set_len({8.0, 8.0, 8.0, 8.0});
    info->set_off({8.0, 8.0, 8.0, 8.0});
    info->set_name("name");
    return info;
}

TEST(DescriptionCostsBehaviour, AMillionPlanesTakeAsMuchAsTen)
{
    expect_equal_costs(make_plain);
}

TEST(DescriptionCostsBehaviour, AMillionChannelsTakeAsMuchAsTen)
{
    const auto of_channels = [](const Sizes& sizes) {
        return std::make_unique<OpenInfo>(Sizes{4, 4, 1, 1, sizes[2] * sizes[3]});
    };
    expect_equal_costs(of_channels);
}

TEST(DescriptionCostsBehaviour, AsManyPlanesAsElementsCanBeCounted)
{
    const std::uint64_t edge = std::uint64_t{1} << 21;
    OpenInfo info(Sizes{1, 1, edge, edge, edge});
    info.set_len(2, 5.0);
    info.set_off(0, 5.0);
    EXPECT_EQ(info.meta_data().planes.size(), std::uint64_t{1} << 63);
    EXPECT_EQ(info.meta_data().planes[2]->the_c.get(), 2);
    EXPECT_EQ(info.meta_data().planes[2]->position_x.get(), 5.0);
}

TEST(DescriptionCostsBehaviour, LengthsAndOffsetsOfAMillionPlanesTakeAsMuchAsThoseOfTen)
{
    expect_equal_costs(make_full);
}

TEST(DescriptionCostsBehaviour, GrowingToAMillionPlanesTakesAsMuchAsToTen)
{
    expect_equal_costs(
        [](const Sizes& sizes)
        {
            auto info = std::make_unique<OpenInfo>(std::uint64_t{4});
            info->set_sizes({sizes[0], sizes[1], sizes[2], 0});
            info->set_variable_type(vela_dt_uint8);
            info->set_len({8.0, 8.0, 8.0, 8.0});
            for (const std::uint64_t part : {4u, 2u, 1u})
                info->set_variable_size((sizes[3] + part - 1) / part);
            return info;
        });
}

TEST(DescriptionCostsBehaviour, CopiesOfAMillionPlanesTakeAsMuchAsOfTen)
{
    expect_equal_costs([](const Sizes& sizes) { return std::make_unique<OpenInfo>(*make_full(sizes)); });
    expect_equal_costs(
        [](const Sizes& sizes)
        {
            auto info = std::make_unique<OpenInfo>();
            info->create(make_full(sizes).get(), 0);
            return info;
        });
    expect_equal_costs(
        [](const Sizes& sizes)
        {
            const auto full = make_full(sizes);
            VStackRegion region;
            region.create(full.get(), 0);
            auto info = std::make_unique<OpenInfo>();
            info->create(full.get(), region);
            return info;
        });
}

TEST(DescriptionCostsBehaviour, PlanesThatNobodyHasSeenAreThereWhenLookedAt)
{
    OpenInfo info(Sizes{4, 4, 30, 40});
    info.set_len({8.0, 8.0, 60.0, 120.0});
    info.set_off({5.0, 6.0, 7.0, 100.0});
    OpenInfo copy(info);
    for (OpenInfo* each : {&info, &copy})
    {
        ASSERT_EQ(each->meta_data().planes.size(), 1200u);
        const auto& plane = *each->meta_data().planes[1199];
        EXPECT_EQ(plane.the_z.get(), 29);
        EXPECT_EQ(plane.the_t.get(), 39);
        EXPECT_EQ(plane.position_x.get(), 5.0);
        EXPECT_EQ(plane.position_z.get(), 7.0 + 14.5 * 2.0);
        EXPECT_EQ(plane.delta_t.get(), 100.0 + 19.5 * 3.0);
    }
}

} // namespace
