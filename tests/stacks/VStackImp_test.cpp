#include "stacks/any_type_stack.h"
#include "support/expect_vela_error.h"

#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>

#include <boost/interprocess/exceptions.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace vela_test;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::is_base_of_v<VStackInterface, VStackImp> && std::is_base_of_v<VStackInfoImp, VStackImp>);
static_assert(std::is_convertible_v<VStackImp*, VStackInfoInterface*>, "one description, whichever way leads to it");
static_assert(std::is_abstract_v<VStackInterface> && std::has_virtual_destructor_v<VStackInterface>);
static_assert(std::is_copy_constructible_v<VStackImp> && !std::is_copy_assignable_v<VStackImp>);

namespace {

const std::string locked_text = "Cannot set values. Object locked!";

VStackImp counting(const std::vector<std::uint64_t>& sizes)
{
    VStackImp stack;
    stack.create(sizes, vela_dt_uint8);
    count_up<std::uint8_t>(stack);
    return stack;
}

class LockedStack : public VStackImp
{
public:
    LockedStack(const VStackImp& stack) : VStackImp(stack) { locked = true; }
};

TEST(Stack, MadeOfTypeAndSizesHasZeros)
{
    const VStackImp stack(Ome::Type::uint16, {2, 3}, Ome::DimensionOrder::XYZTC);
    EXPECT_EQ(stack.get_dt(), vela_dt_uint16);
    EXPECT_EQ(stack.get_block_size(), 12u);
    EXPECT_THAT(samples_of<std::uint16_t>(stack), ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST(Stack, MadeOfARankHasNoSamples)
{
    VStackImp stack(3);
    EXPECT_EQ(stack.get_rank(), 3u);
    EXPECT_EQ(stack.get_number_of_elements(), 0u);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    EXPECT_EQ(std::as_const(stack).get_data_ptr(), nullptr);
    EXPECT_EQ(stack.get_block_size(), 0u);
}

TEST(Stack, WithoutAxesHasOneElementInItsDescriptionAndNoBlock)
{
    const VStackImp stack;
    EXPECT_EQ(stack.get_rank(), 0u);
    EXPECT_EQ(stack.get_number_of_elements(), 1u);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
}

TEST(Stack, IsAsLargeAsItsTypeSays)
{
    for (const vela_dt dt :
         {vela_dt_uint8, vela_dt_int16, vela_dt_single, vela_dt_double, vela_dt_double | vela_dt_complex})
    {
        VStackImp stack;
        stack.create({3, 5}, dt);
        EXPECT_EQ(stack.get_block_size(), 15 * size_of_sample(dt));
        EXPECT_THAT(bytes_of(stack), Each(0));
    }
}

TEST(Stack, MayHaveOneSampleAndNoAxes)
{
    VStackImp stack;
    stack.create(std::vector<std::uint64_t>(), vela_dt_single);
    EXPECT_EQ(stack.get_block_size(), 4u);
}

TEST(Stack, KeepsOldBytesAndHasZerosBehindThemWhenItGrows)
{
    VStackImp stack = counting({4});
    stack.create({7}, vela_dt_uint8);
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 1, 2, 3, 0, 0, 0));
    stack.create({2}, vela_dt_uint8);
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 1));
    stack.create({5}, vela_dt_uint8);
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 1, 0, 0, 0)) << "what was cut off is gone";
}

TEST(Stack, KeepsOldBytesWhenItGrowsALot)
{
    VStackImp stack = counting({200});
    stack.create({100, 100, 100}, vela_dt_uint16);
    const std::vector<unsigned char> bytes = bytes_of(stack);
    ASSERT_EQ(bytes.size(), 2000000u);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        ASSERT_EQ(bytes[i], i < 200 ? i : 0) << i;
}

TEST(Stack, CreatedLikeAnotherHasItsSize)
{
    const VStackImp source = counting({2, 3});
    VStackImp stack;
    stack.create(&source, vela_dt_none);
    EXPECT_EQ(stack.get_block_size(), 6u);
    stack.create(&source, vela_dt_double);
    EXPECT_EQ(stack.get_block_size(), 48u);
    EXPECT_THAT(bytes_of(stack), Each(0)) << "the description alone";
}

TEST(Stack, CreatedLikeARegionHasItsSize)
{
    const VStackImp source = counting({4, 3});
    VStackRegion region;
    region.create(&source, vela_dt_int32);
    region.begin = {-1, 1};
    region.permutation = {1, 0};
    VStackImp stack;
    stack.create(&source, region);
    EXPECT_THAT(stack.get_sizes(), ElementsAre(2, 5));
    EXPECT_EQ(stack.get_block_size(), 40u);
}

TEST(Stack, WithElementsOfNoTypeIsRefused)
{
    VStackImp stack;
    EXPECT_VELA_ERROR_IN(stack.create({2, 3}, vela_dt_none), "VStackImp::resize", "sources/stacks", -1,
                         "Unknown type of elements");
    EXPECT_THAT(stack.get_sizes(), ElementsAre(2, 3)) << "the description has changed";
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    EXPECT_VELA_ERROR(stack.create(std::vector<std::uint64_t>(), vela_dt_none), -1, "Unknown type of elements");
    EXPECT_NO_THROW(stack.create({2, 0}, vela_dt_none)) << "no elements";
}

TEST(Stack, OfMoreBytesThanCanBeCountedIsRefused)
{
    VStackImp stack = counting({3});
    const std::uint64_t half = std::uint64_t{1} << 31;
    EXPECT_VELA_ERROR_IN(stack.create({half, half}, vela_dt_double), "VStackImp::resize", "sources/stacks", -1,
                         "The size increases the maximum size");
    EXPECT_THAT(stack.get_sizes(), ElementsAre(half, half));
    EXPECT_EQ(stack.get_block_size(), 3u);
}

TEST(Stack, OfMoreBytesThanThereAreIsRefused)
{
    VStackImp stack = counting({3});
    const std::uint64_t half = std::uint64_t{1} << 31;
    for (const vela_dt dt : {vela_dt_uint8, vela_dt_uint16}) // 2^62 and 2^63 bytes
        EXPECT_VELA_ERROR_IN(stack.create({half, half}, dt), "VStackImp::resize", "sources/stacks", -1,
                             "Out of memory");
    EXPECT_EQ(stack.get_block_size(), 3u);
    EXPECT_EQ(stack.get_data_ptr()[2], 2) << "the old samples";
}

TEST(Stack, OfMoreElementsThanCanBeCountedIsRefused)
{
    VStackImp stack = counting({3});
    const std::uint64_t large = std::uint64_t{1} << 33;
    EXPECT_VELA_ERROR(stack.create({large, large}, vela_dt_uint8), -1, "The product exceeds the maximum size.");
    EXPECT_THAT(stack.get_sizes(), ElementsAre(3));
}

TEST(Stack, OfATypeThatTheRecordLacksKeepsItsBlock)
{
    VStackImp stack = counting({3});
    EXPECT_THROW_TEXT(stack.create({5}, vela_dt_uint64), std::invalid_argument, "Unsupported data type");
    EXPECT_EQ(stack.get_dt(), vela_dt_uint64);
    EXPECT_EQ(stack.get_block_size(), 3u);
}

TEST(Stack, DestroyedHasNothing)
{
    VStackImp stack = counting({2, 3});
    stack.destroy();
    EXPECT_EQ(stack.get_rank(), 0u);
    EXPECT_EQ(stack.get_dt(), vela_dt_none);
    EXPECT_EQ(stack.get_block_size(), 0u);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    stack.create({4}, vela_dt_uint8);
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 0, 0, 0));
    stack.destroy();
    stack.destroy();
    EXPECT_EQ(stack.get_block_size(), 0u);
}

TEST(Stack, IsNotDestroyedWhenItIsLocked)
{
    LockedStack stack(counting({2}));
    EXPECT_VELA_ERROR(stack.destroy(), -1, locked_text);
    EXPECT_VELA_ERROR(stack.create({1}, vela_dt_uint8), -1, locked_text);
    EXPECT_VELA_ERROR(stack.copy(&stack, vela_dt_none), -1, locked_text);
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 1));
}

TEST(StackCopies, ShareTheSamples)
{
    VStackImp stack = counting({3});
    VStackImp copy(stack);
    EXPECT_EQ(copy.get_data_ptr(), stack.get_data_ptr());
    copy.get_data_ptr()[1] = 77;
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 77, 2));
    stack.get_data_ptr()[0] = 78;
    EXPECT_THAT(samples_of<std::uint8_t>(copy), ElementsAre(78, 77, 2));
}

TEST(StackCopies, HaveTheirOwnDescriptions)
{
    VStackImp stack = counting({3});
    VStackImp copy(stack);
    copy.set_name("copy");
    EXPECT_EQ(stack.get_name(), "");
}

TEST(StackCopies, FollowTheSizeOfTheBlock)
{
    VStackImp stack = counting({3});
    const VStackImp copy(stack);
    stack.create({5}, vela_dt_uint8);
    EXPECT_EQ(copy.get_block_size(), 5u);
    EXPECT_EQ(copy.get_number_of_elements(), 3u);
    stack.destroy();
    EXPECT_EQ(copy.get_block_size(), 0u);
    EXPECT_EQ(copy.get_data_ptr(), nullptr);
}

TEST(StackCopies, LiveOnWithoutTheirSource)
{
    auto stack = std::make_unique<VStackImp>(counting({3}));
    const VStackImp copy(*stack);
    stack.reset();
    EXPECT_THAT(samples_of<std::uint8_t>(copy), ElementsAre(0, 1, 2));
}

TEST(SharedStack, KeepsItsSamplesAndHasAnId)
{
    const VStackImp stack = counting({2, 3});
    const unsigned char* const before = stack.get_data_ptr();
    const std::string id = stack.share();
    EXPECT_EQ(id.size(), 36u);
    EXPECT_NE(stack.get_data_ptr(), before);
    EXPECT_EQ(stack.get_block_size(), 6u);
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST(SharedStack, GivesTheSameTextEveryTime)
{
    const VStackImp stack = counting({2});
    const char* const id = stack.share();
    const unsigned char* const data = stack.get_data_ptr();
    EXPECT_EQ(stack.share(), id);
    EXPECT_EQ(stack.get_data_ptr(), data) << "nothing was copied";
}

TEST(SharedStack, RefusesEveryCreateEvenOfItsOwnSize)
{
    VStackImp stack = counting({2, 3});
    const VStackImp other = counting({2, 3});
    VStackRegion region;
    region.create(&other, vela_dt_none);
    stack.share();
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_THROW_TEXT(stack.create({2, 3}, vela_dt_uint8), std::runtime_error, "Cannot resize shared data");
        EXPECT_THROW_TEXT(stack.create({9}, vela_dt_uint8), std::runtime_error, "Cannot resize shared data");
        EXPECT_THAT(stack.get_sizes(), ElementsAre(9)) << "the description has changed";
        EXPECT_THROW_TEXT(stack.create(&other, vela_dt_none), std::runtime_error, "Cannot resize shared data");
        EXPECT_THROW_TEXT(stack.create(&other, region), std::runtime_error, "Cannot resize shared data");
        EXPECT_THROW_TEXT(stack.copy(&other, vela_dt_none), std::runtime_error, "Cannot resize shared data");
        EXPECT_THROW_TEXT(stack.copy(&other, region), std::runtime_error, "Cannot resize shared data");
        EXPECT_THROW_TEXT(stack.copy(&stack, vela_dt_none), std::runtime_error, "Cannot resize shared data");
        EXPECT_THROW_TEXT(stack.create({0, 1}, vela_dt_uint8), std::runtime_error, "Cannot resize shared data");
    }
    stack.get_data_ptr()[5] = 5;
    EXPECT_EQ(stack.get_block_size(), 6u);
}

TEST(SharedStack, IsPrivateAgainOnceItIsDestroyed)
{
    VStackImp stack = counting({2, 3});
    const std::string id = stack.share();
    stack.destroy();
    EXPECT_EQ(stack.get_block_size(), 0u);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    EXPECT_THROW(VStackData{id}, boost::interprocess::interprocess_exception) << "the segment is gone";
    stack.create({4}, vela_dt_uint8);
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 0, 0, 0));
    EXPECT_NE(stack.share(), id);
}

TEST(SharedStack, SharesItsSegmentWithLaterCopies)
{
    auto stack = std::make_unique<VStackImp>(counting({3}));
    const std::string id = stack->share();
    VStackImp copy(*stack);
    EXPECT_EQ(copy.get_data_ptr(), stack->get_data_ptr());
    EXPECT_EQ(copy.share(), id);
    stack.reset();
    EXPECT_EQ(VStackData(id).size(), 3u) << "the segment lives as long as the last of them";
    EXPECT_THAT(samples_of<std::uint8_t>(copy), ElementsAre(0, 1, 2));
}

TEST(SharedStack, LeavesEarlierCopiesTheirPrivateBlock)
{
    VStackImp stack = counting({3});
    VStackImp earlier(stack);
    stack.share();
    stack.get_data_ptr()[0] = 50;
    EXPECT_THAT(samples_of<std::uint8_t>(earlier), ElementsAre(0, 1, 2));
    EXPECT_NO_THROW(earlier.create({5}, vela_dt_uint8));
    EXPECT_STRNE(earlier.share(), stack.share());
}

TEST(SharedStack, LeavesTheSegmentToItsCopiesWhenItIsDestroyed)
{
    VStackImp stack = counting({3});
    const std::string id = stack.share();
    const VStackImp copy(stack);
    stack.destroy();
    EXPECT_EQ(copy.share(), id);
    EXPECT_THAT(samples_of<std::uint8_t>(copy), ElementsAre(0, 1, 2));
}

TEST(SharedStack, WithoutSamplesHasAnIdToo)
{
    const VStackImp stack(2);
    const std::string id = stack.share();
    EXPECT_EQ(id.size(), 36u);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    EXPECT_EQ(VStackData(id).size(), 0u);
}

TEST(SharedStack, IsASourceLikeAnyOther)
{
    const VStackImp stack = counting({2, 3});
    stack.share();
    VStackImp copy;
    copy.copy(&stack, vela_dt_int16);
    EXPECT_THAT(samples_of<std::int16_t>(copy), ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST(StackData, OfAnIdIsTheSegment)
{
    const VStackImp stack = counting({3});
    VStackData attached{std::string(stack.share())};
    EXPECT_EQ(attached.size(), 3u);
    EXPECT_EQ(attached.data()[2], 2);
    attached.data()[2] = 99;
    EXPECT_EQ(stack.get_data_ptr()[2], 99);
    EXPECT_STREQ(attached.share(), stack.share());
    EXPECT_THROW_TEXT(attached.resize(3), std::runtime_error, "Cannot resize shared data");
    attached.clear();
    EXPECT_EQ(attached.size(), 0u);
    attached.resize(2);
    EXPECT_EQ(attached.data()[1], 0);
    EXPECT_THAT(samples_of<std::uint8_t>(stack), ElementsAre(0, 1, 99));
}

TEST(StackData, OfAnUnknownIdFails)
{
    EXPECT_THROW(VStackData(std::string("unknown")), boost::interprocess::interprocess_exception);
}

TEST(StackData, IsEmptyAtFirst)
{
    const VStackData data;
    EXPECT_EQ(data.size(), 0u);
    EXPECT_EQ(data.data(), nullptr);
}

} // namespace
