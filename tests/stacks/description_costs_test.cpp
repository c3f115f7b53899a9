// What descriptions of many planes cost.
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackRegion.h>

#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/allocation_watch.h"

using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;

namespace {

constexpr std::size_t small_memory = 128 * 1024;

void describe(VStackInfoInterface& info, std::uint64_t planes)
{
    info.create(Sizes{4, 3, planes, planes}, vela_dt_uint8);
    info.set_len(Doubles{4.0, 3.0, 2.0, 7.0});
    info.set_off(Doubles{1.0, 2.0, 3.0, 9.0});
}

/// What `make` takes at most beyond what is there.
template <class Make>
std::size_t peak_of(Make make)
{
    const vela_test::AllocationWatch watch;
    make();
    return watch.peak_extra_bytes();
}

TEST(CostOfADescription, DoesNotDependOnTheNumberOfPlanes)
{
    OpenInfo info;
    describe(info, 10); // whatever is made once for all
    EXPECT_LE(peak_of([&] { describe(info, 1000); }), small_memory);
    EXPECT_EQ(info.meta_data().planes.size(), 1000000U);
    EXPECT_LE(peak_of([&] { const OpenInfo copy(info); }), small_memory);
    EXPECT_LE(peak_of(
                  [&]
                  {
                      OpenInfo other;
                      other.create(&info, 0);
                      EXPECT_EQ(other.meta_data().planes.size(), 1000000U);
                  }),
              small_memory);
    VStackRegion region;
    region.create(&info, 0);
    EXPECT_LE(peak_of(
                  [&]
                  {
                      OpenInfo other;
                      other.create(&info, region);
                      EXPECT_EQ(other.meta_data().planes.size(), 1000000U);
                  }),
              small_memory);
}

TEST(CostOfADescription, StaysSmallWhileTheStackGrows)
{
    OpenInfo info({4, 3, 1, 0});
    info.set_len(Doubles{4.0, 3.0, 2.0, 7.0});
    info.set_off(Doubles{1.0, 2.0, 3.0, 9.0});
    EXPECT_LE(peak_of(
                  [&]
                  {
                      for (std::uint64_t planes = 1; planes <= 20000; ++planes)
                          info.set_variable_size(planes);
                  }),
              small_memory);
    EXPECT_EQ(info.meta_data().planes.size(), 20000U);
    EXPECT_EQ(info.meta_data().time_increment.get(), 7.0 / 20000);
}

}
