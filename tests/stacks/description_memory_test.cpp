// Descriptions where memory fails, and how often they ask for it.
#include <VelaStacks/VStackInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/failing_memory.h"

#include <new>

using testing::ElementsAre;
using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;

namespace {

TEST(DescriptionWithoutMemory, KeepsItsColumns)
{
    OpenInfo info(Sizes{4});
    const Doubles positions{1.0, 2.0, 4.0, 8.0};
    const auto set_without_memory = [&]
    {
        const vela_test::MemoryFailsAfter no_memory(0);
        info.set_col_positions(0, positions);
    };
    EXPECT_THROW(set_without_memory(), std::bad_alloc);
    EXPECT_TRUE(info.is_equidistant(0));
    EXPECT_EQ(info.get_col_position(0, 1), -0.125);
    info.set_col_positions(0, positions);
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(1.0, 2.0, 4.0, 8.0));
}

/// How often a stack asks for memory that grows up to `count` frames, each of which is looked at and written.
std::size_t requests_of_growth(const Sizes& start, std::uint64_t count)
{
    OpenInfo info(start);
    const std::size_t before = vela_test::requests_made();
    for (std::uint64_t frame = 0; frame < count; ++frame)
    {
        info.set_variable_size(frame + 1);
        info.meta_data().planes[frame]->position_x = static_cast<double>(frame);
        EXPECT_EQ(info.meta_data().planes[0]->position_x.get(), 0.0);
    }
    return vela_test::requests_made() - before;
}

TEST(CostOfGrowth, DoesNotDependOnThePlanesThatAreThere)
{
    for (const Sizes& start : {Sizes{4, 5, 0}, Sizes{4, 5, 1, 0}})
    {
        const std::size_t few = requests_of_growth(start, 500);
        EXPECT_LE(requests_of_growth(start, 2000), few * 5) << "four times as many frames";
    }
}

}
