// Copies from stacks whose block is smaller than their description.

#include "stacks/any_type_stack.h"
#include "support/expect_vela_error.h"

#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>
#include <VelaStacks/iterators.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

using namespace vela_test;
using testing::Each;

namespace {

VStackImp counting(const std::vector<std::uint64_t>& sizes)
{
    VStackImp stack;
    stack.create(sizes, vela_dt_uint8);
    count_up<std::uint8_t>(stack);
    return stack;
}

VStackRegion whole(const VStackInterface& stack)
{
    VStackRegion region;
    region.create(&stack, vela_dt_none);
    return region;
}

/// The description of 100 samples with the bytes of 10.
class ShortStack : public testing::Test
{
protected:
    ShortStack() : owner(counting({10, 10})), source(owner) { owner.create({10}, vela_dt_uint8); }

    VStackImp owner;
    const VStackImp source;
};

TEST_F(ShortStack, IsCopiedAsFarAsItGoes)
{
    VStackImp target;
    target.copy(&source, vela_dt_none);
    const std::vector<unsigned char> bytes = bytes_of(target);
    ASSERT_EQ(bytes.size(), 100u);
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(bytes[i], i < 10 ? i : 0);
    target.copy(&source, vela_dt_int16);
    EXPECT_EQ(samples_of<std::int16_t>(target)[9], 9);
}

TEST_F(ShortStack, IsTransposedAsFarAsItGoes)
{
    VStackRegion region = whole(source);
    region.permutation = {1, 0};
    VStackImp target;
    target.copy(&source, region);
    const std::vector<unsigned char> bytes = bytes_of(target);
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(bytes[i], i % 10 == 0 ? i / 10 : 0);
    region.begin = {0, 5};
    target.copy(&source, region);
    EXPECT_EQ(target.get_block_size(), 50u);
}

TEST_F(ShortStack, WithoutAnyBytesGivesZeros)
{
    owner.destroy();
    VStackImp target;
    target.copy(&source, vela_dt_none);
    EXPECT_THAT(bytes_of(target), Each(0));
    VStackRegion region = whole(source);
    region.permutation = {1, 0};
    VStackImp other;
    other.copy(&source, region);
    EXPECT_THAT(bytes_of(other), Each(0));
}

/// The description of 2^65 bytes with the bytes of ten, as a failed `create` leaves it.
TEST(OverlargeStack, IsCopiedAsFarAsItGoesWhateverWrapsAround)
{
    const std::uint64_t large = std::uint64_t{1} << 31;
    VStackImp source;
    source.create({10}, vela_dt_uint8);
    count_up<std::uint8_t>(source);
    EXPECT_VELA_ERROR(source.create({large, large}, vela_dt_double), -1, "The size increases the maximum size");
    const std::vector<unsigned char> block(source.get_data_ptr(), source.get_data_ptr() + 8);
    VStackRegion region;
    region.create(&source, vela_dt_none);
    region.end = {2, 2};
    VStackImp target;
    target.copy(&source, region);
    std::vector<unsigned char> expected = block;
    expected.resize(32, 0);
    EXPECT_EQ(bytes_of(target), expected);

    // The offset of this box is 2^64.
    region.begin = {0, std::int64_t{1} << 30};
    region.end = {2, region.begin[1] + 2};
    target.copy(&source, region);
    EXPECT_EQ(bytes_of(target), expected) << "as it was";
    VStackImp fresh;
    fresh.copy(&source, region);
    EXPECT_THAT(bytes_of(fresh), Each(0));
    EXPECT_VELA_ERROR(source.get_iterator(region), -15, "Cannot create iterator over region exceeding the stack!");

    // From its first sample to its last there are 2^64 bytes.
    region.begin = {0, 0};
    region.end = {1, (std::int64_t{1} << 30) + 1};
    EXPECT_VELA_ERROR(source.get_iterator(region), -15, "Cannot create iterator over region exceeding the stack!");
}

} // namespace
