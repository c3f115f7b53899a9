// The way of a walk through its box, and the boxes that are refused.
#include <VelaStacks/iterators.h>

#include "open_stack.h"

#include "support/expect_vela_error.h"

namespace {

constexpr const char* exceeding = "Cannot create iterator over region exceeding the stack!";

/// Sample i is i.
VStackImp numbered(const std::vector<std::uint64_t>& sizes)
{
    VStackImp stack(Ome::Type::uint16, sizes, Ome::DimensionOrder::XYZTC);
    for (std::uint64_t i = 0; i < stack.get_number_of_elements(); ++i)
        reinterpret_cast<std::uint16_t*>(stack.get_data_ptr())[i] = static_cast<std::uint16_t>(i);
    return stack;
}

std::vector<int> visited(const VStackImp& stack, const VStackRegion& region)
{
    std::vector<int> samples;
    const auto it = stack.get_iterator(region);
    for (; !it->at_end() && samples.size() < 1000; it->advance())
    {
        int sample = -1;
        it->get_value(sample);
        samples.push_back(sample);
    }
    return samples;
}

using List = std::vector<int>;

TEST(IteratorWalk, TheWholeRegionIsVisitedInMemoryOrder)
{
    const VStackImp stack = numbered({2, 3});
    EXPECT_EQ(visited(stack, naive::whole(stack)), (List{0, 1, 2, 3, 4, 5}));
}

TEST(IteratorWalk, TheFirstAxisOfThePermutationRunsFastest)
{
    EXPECT_EQ(visited(numbered({2, 3}), naive::box({0, 0}, {2, 3}, {1, 0})), (List{0, 2, 4, 1, 3, 5}));
    EXPECT_EQ(visited(numbered({2, 2, 2}), naive::box({0, 0, 0}, {2, 2, 2}, {2, 0, 1})),
              (List{0, 4, 1, 5, 2, 6, 3, 7}));
}

TEST(IteratorWalk, ABoxVisitsItsOwnSamples)
{
    EXPECT_EQ(visited(numbered({2, 3}), naive::box({1, 1}, {2, 3}, {0, 1})), (List{3, 5}));
    EXPECT_EQ(visited(numbered({2, 3}), naive::box({1, 1}, {2, 3}, {1, 0})), (List{3, 5}));
    EXPECT_EQ(visited(numbered({3, 3}), naive::box({1, 1}, {3, 3}, {1, 0})), (List{4, 7, 5, 8}));
}

TEST(IteratorWalk, AnUnspecifiedEndGoesToTheEndOfTheStack)
{
    EXPECT_EQ(visited(numbered({3, 2}), naive::box({1, 0}, {INT64_MAX, INT64_MAX}, {0, 1})), (List{1, 2, 4, 5}));
}

TEST(IteratorWalk, AnAxisThatIsNotWalkedStaysAtItsBegin)
{
    EXPECT_EQ(visited(numbered({2, 3}), naive::box({0, 2}, {2, 3}, {0})), (List{4, 5}));
    EXPECT_EQ(visited(numbered({2, 3}), naive::box({1, 0}, {2, 3}, {1})), (List{1, 3, 5}));
    EXPECT_EQ(visited(numbered({2, 2, 2}), naive::box({1, 0, 1}, {2, 2, 2}, {1})), (List{5, 7}));
}

TEST(IteratorWalk, AnAxisThatBeginDoesNotReachStaysAtPixel0)
{
    EXPECT_EQ(visited(numbered({2, 3}), naive::box({0}, {2}, {0})), (List{0, 1}));
}

TEST(IteratorWalk, AWalkOverNoAxesStandsOnItsSampleForEver)
{
    VStackImp scalar;
    scalar.create(std::vector<std::uint64_t>(), vela_dt_uint16);
    naive::set_samples<std::uint16_t>(scalar, {7});
    const auto it = scalar.get_iterator(naive::whole(scalar));
    for (int i = 0; i < 3; ++i, it->advance())
    {
        EXPECT_FALSE(it->at_end());
        int sample = 0;
        it->get_value(sample);
        EXPECT_EQ(sample, 7);
    }
    const VStackImp stack = numbered({2, 3});
    int cut = 0;
    stack.get_iterator(naive::box({1, 2}, {2, 3}, {}))->get_value(cut);
    EXPECT_EQ(cut, 5);
}

TEST(IteratorWalk, BehindTheEndTheLastSampleIsTouched)
{
    const VStackImp stack = numbered({2, 3});
    for (const std::vector<std::uint64_t>& permutation : {std::vector<std::uint64_t>{0, 1}, {1, 0}})
    {
        const auto it = stack.get_iterator(naive::box({0, 0}, {2, 3}, permutation));
        for (int i = 0; i < 9; ++i)
            it->advance();
        EXPECT_TRUE(it->at_end());
        int sample = 0;
        it->get_value(sample);
        EXPECT_EQ(sample, 5);
    }
}

TEST(IteratorWalk, AnIteratorOfAConstantStackWritesToo)
{
    const VStackImp stack = numbered({2});
    stack.get_iterator(naive::whole(stack))->set_value(9);
    VStackInterface::const_iterator<std::uint16_t> it(&stack, naive::whole(stack));
    it.advance();
    it.set_value(8.9);
    EXPECT_EQ(naive::samples_of<std::uint16_t>(stack), (std::vector<std::uint16_t>{9, 8}));
}

TEST(IteratorWalk, ReadingAndWritingDoNotMove)
{
    const VStackImp stack = numbered({3});
    const auto it = stack.get_iterator(naive::whole(stack));
    int sample = 0;
    it->set_value(5);
    it->get_value(sample);
    it->set_value(6);
    it->get_value(sample);
    EXPECT_EQ(naive::samples_of<std::uint16_t>(stack), (std::vector<std::uint16_t>{6, 1, 2}));
}

TEST(IteratorWalk, AnEmptyRegionIsAtItsEndAtOnceWhateverElseIsWrongWithIt)
{
    const VStackImp stack = numbered({2, 3});
    const VStackRegion regions[] = {
        naive::box({1, 1}, {1, 3}, {0, 1}),   naive::box({0, 2}, {2, 1}, {0, 1}), naive::box({50, 0}, {50, 3}, {0, 1}),
        naive::box({-9, 0}, {-9, 3}, {0, 1}), naive::box({1, 0}, {1, 3}, {7, 7}), naive::box({1, 0, 0}, {1}, {0}),
    };
    for (const VStackRegion& region : regions)
    {
        EXPECT_TRUE(stack.get_iterator(region)->at_end());
        EXPECT_TRUE(VStackInterface::const_iterator<std::uint16_t>(&stack, region).at_end());
        EXPECT_VELA_ERROR(VStackInterface::const_iterator<float>(&stack, region), -1, "Invalid iterator type!");
    }
}

TEST(IteratorWalk, AStackWithoutPixelsIsAtItsEndAtOnce)
{
    VStackImp stack;
    stack.create({2, 0}, vela_dt_uint16);
    EXPECT_TRUE(stack.get_iterator(naive::whole(stack))->at_end());
    EXPECT_TRUE(stack.get_iterator(naive::box({0, 0}, {INT64_MAX, INT64_MAX}, {0, 1}))->at_end());
}

TEST(IteratorWalk, ARegionThatExceedsTheStackIsRefused)
{
    VStackImp stack = numbered({2, 3});
    const VStackRegion regions[] = {
        naive::box({0, 0}, {3, 3}, {0, 1}),
        naive::box({-1, 0}, {2, 3}, {0, 1}),
        naive::box({0, 0}, {2, 4}, {1, 0}),
        naive::box({5, 0}, {6, 3}, {0, 1}),
        naive::box({0, 0, 0}, {2, 3, 1}, {0, 1, 2}),
        naive::box({-3, 0}, {-1, 3}, {0, 1}),
        naive::box({0, 0, 0}, {2, 3, INT64_MAX}, {2, 0, 1}),
    };
    for (const VStackRegion& region : regions)
    {
        EXPECT_VELA_ERROR(stack.get_iterator(region), -15, exceeding);
        EXPECT_VELA_ERROR(VStackInterface::iterator<std::uint16_t>(&stack, region), -15, exceeding);
        EXPECT_VELA_ERROR(VStackInterface::iterator<float>(&stack, region), -15, exceeding);
    }
    EXPECT_EQ(visited(stack, naive::whole(stack)), (List{0, 1, 2, 3, 4, 5}));
}

TEST(IteratorWalk, ASliceOutsideTheStackIsRefused)
{
    const VStackImp stack = numbered({2, 3});
    EXPECT_VELA_ERROR(stack.get_iterator(naive::box({0, 3}, {2, 4}, {0})), -15, exceeding);
    EXPECT_VELA_ERROR(stack.get_iterator(naive::box({0, -1}, {2, 0}, {0})), -15, exceeding);
    EXPECT_VELA_ERROR(stack.get_iterator(naive::box({0, INT64_MAX - 1}, {2, INT64_MAX}, {0})), -1,
                      "Called on invalid region!");
}

TEST(IteratorWalk, FailuresOfTheRegionComeThrough)
{
    const VStackImp stack = numbered({2, 3});
    EXPECT_VELA_ERROR(stack.get_iterator(naive::box({0, 0}, {2, 3}, {0, 0})), -15, "Invalid permutation!");
    EXPECT_VELA_ERROR(stack.get_iterator(naive::box({0, 0}, {2, 3}, {0, 2})), -15, "Invalid permutation!");
    EXPECT_VELA_ERROR(stack.get_iterator(naive::box({0, 0}, {2, 3, 4}, {0, 1})), -1, "Called on invalid region!");
}

TEST(IteratorWalk, ABlockSmallerThanItsDescriptionIsNotWalkedBeyondItsEnd)
{
    const VStackImp stack = numbered({4});
    VStackImp sharing(stack);
    sharing.create({2}, vela_dt_uint16);
    EXPECT_VELA_ERROR(stack.get_iterator(naive::whole(stack)), -15, exceeding);
    EXPECT_EQ(visited(stack, naive::box({0}, {2}, {0})), (List{0, 1}));
}

/// Shows the fields that are for derived classes.
class OpenWalk : public VStackInterface::const_iterator<std::uint16_t>
{
public:
    using VStackInterface::const_iterator<std::uint16_t>::const_iterator;
    using iterator_base::data;
    using iterator_base::position;
    using iterator_base::rank;
    using iterator_base::sizes;
    using iterator_base::strides;
};

TEST(IteratorWalk, CountersExtentsAndStridesLieInOneBlockInTheOrderOfTheWalk)
{
    const VStackImp stack = numbered({4, 3, 2});
    OpenWalk walk(&stack, naive::box({1, 1, 0}, {3, 3, 2}, {2, 0}));
    ASSERT_EQ(walk.rank, 2U);
    EXPECT_EQ(walk.position, walk.sizes + 2);
    EXPECT_EQ(walk.strides, walk.sizes + 4);
    EXPECT_EQ(std::vector<std::uint64_t>(walk.sizes, walk.sizes + 6), (std::vector<std::uint64_t>{2, 2, 0, 0, 24, 2}));
    EXPECT_EQ(walk.data, stack.get_data_ptr() + 2 * (1 + 4));
    walk.advance();
    walk.advance();
    EXPECT_EQ(std::vector<std::uint64_t>(walk.position, walk.position + 2), (std::vector<std::uint64_t>{0, 1}));
    EXPECT_EQ(walk.data, stack.get_data_ptr() + 2 * (2 + 4));
}

TEST(IteratorWalk, ANewIteratorOfAnEmptyRegionHasNoArrays)
{
    const VStackImp stack = numbered({4});
    const OpenWalk walk(&stack, naive::box({1}, {1}, {0}));
    EXPECT_TRUE(walk.at_end());
    EXPECT_EQ(walk.sizes, nullptr);
}

} // namespace
