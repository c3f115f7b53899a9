/// What can be seen of boxes in physical coordinates.
#include <VelaStacks/VStackRegion.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

TEST(PhysicalRegionBehaviour, HasBoundsOfZeroAndTheIdentity)
{
    for (const std::uint64_t rank : {0u, 1u, 3u})
    {
        const VStackPhysicalRegion region(rank);
        EXPECT_EQ(region.dt, 0);
        EXPECT_EQ(region.lower, std::vector<double>(rank, 0.0));
        EXPECT_EQ(region.upper, std::vector<double>(rank, 0.0));
        EXPECT_EQ(region.matrix.get_size(false), (std::vector<std::size_t>{rank, rank}));
        ASSERT_EQ(region.matrix.count(), rank * rank);
        for (std::size_t i = 0; i < rank * rank; ++i)
            EXPECT_EQ(region.matrix[i], i % (rank + 1) == 0 ? 1.0 : 0.0);
    }
    static_assert(!std::is_default_constructible_v<VStackPhysicalRegion>);
    static_assert(std::is_copy_assignable_v<VStackPhysicalRegion> && std::is_move_assignable_v<VStackPhysicalRegion>);
}

} // namespace
