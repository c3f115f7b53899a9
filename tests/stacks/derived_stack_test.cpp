// Copies into classes that derive from the stack in memory and make more of `create` than it asks for.

#include "stacks/any_type_stack.h"

#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

using namespace vela_test;
using testing::Each;
using testing::ElementsAre;

namespace {

/// Old bytes that a block keeps behind its end, where they do not count, until it grows over them.
constexpr unsigned char stale = 99;

class DerivedStack : public VStackImp
{
public:
    bool shares = false;           ///< whether `create` moves the samples to shared memory
    std::uint64_t extra_bytes = 0; ///< what the block has beyond the description

    /// One sample, and a block that has had `count` bytes before.
    void shrink_from(std::uint64_t count)
    {
        create(std::vector<std::uint64_t>{count}, vela_dt_uint8);
        std::memset(get_data_ptr(), stale, get_block_size());
        create(std::vector<std::uint64_t>{1}, vela_dt_uint8);
    }

    using VStackImp::create;
    void create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) override
    {
        VStackImp::create({product_of(new_sizes) * size_of_sample(new_dt) + extra_bytes}, vela_dt_uint8);
        set_type(new_dt);
        set_sizes(new_sizes);
        if (shares)
            share();
    }
};

std::vector<unsigned char> block_of(const VStackImp& stack)
{
    return std::vector<unsigned char>(stack.get_data_ptr(), stack.get_data_ptr() + stack.get_block_size());
}

class DerivedStackCopy : public testing::Test
{
protected:
    DerivedStackCopy()
    {
        source.create({2, 3}, vela_dt_uint8);
        set_samples<std::uint8_t>(source, {1, 2, 3, 4, 5, 6});
        region.create(&source, vela_dt_none);
        target.shrink_from(100);
    }

    VStackImp source;
    VStackRegion region;
    DerivedStack target;
};

TEST_F(DerivedStackCopy, GoesToTheSegmentWhereCreateShares)
{
    const VStackImp earlier(target);
    target.shares = true;
    target.copy(&source, region);
    EXPECT_THAT(block_of(target), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_NE(earlier.get_data_ptr(), target.get_data_ptr());
    EXPECT_THAT(block_of(earlier), ElementsAre(stale, 0, 0, 0, 0, 0)) << "grown, and not copied to";

    DerivedStack permuted;
    permuted.shares = true;
    region.permutation = {1, 0};
    permuted.copy(&source, region);
    EXPECT_THAT(block_of(permuted), ElementsAre(1, 3, 5, 2, 4, 6));

    DerivedStack padded;
    padded.shares = true;
    region.end = {3, 3};
    padded.copy(&source, region);
    EXPECT_THAT(block_of(padded), ElementsAre(1, 3, 5, 2, 4, 6, 0, 0, 0));
}

TEST_F(DerivedStackCopy, OfNothingHasZerosInTheSegmentWhereCreateShares)
{
    target.shares = true;
    region.begin = {7, 0};
    region.end = {9, 3};
    target.copy(&source, region);
    EXPECT_THAT(block_of(target), ElementsAre(stale, 0, 0, 0, 0, 0));
}

TEST_F(DerivedStackCopy, LeavesABlockThatFillsUpWithZerosAgain)
{
    VStackImp earlier(target);
    target.shares = true;
    target.copy(&source, region);
    earlier.create(std::vector<std::uint64_t>{100}, vela_dt_uint8);
    const std::vector<unsigned char> bytes = block_of(earlier);
    EXPECT_THAT(std::vector<unsigned char>(bytes.begin() + 1, bytes.end()), Each(0));
}

TEST_F(DerivedStackCopy, OfAllHasZerosInALargerBlock)
{
    target.extra_bytes = 4;
    target.copy(&source, region);
    EXPECT_THAT(block_of(target), ElementsAre(1, 2, 3, 4, 5, 6, 0, 0, 0, 0));
    target.shrink_from(100);
    target.copy(&source, vela_dt_int16);
    EXPECT_THAT(samples_of<std::int16_t>(target), ElementsAre(1, 2, 3, 4, 5, 6));
    const std::vector<unsigned char> bytes = block_of(target);
    EXPECT_THAT(std::vector<unsigned char>(bytes.begin() + 12, bytes.end()), ElementsAre(0, 0, 0, 0));
}

TEST_F(DerivedStackCopy, OfABoxHasZerosInALargerBlock)
{
    target.extra_bytes = 4;
    region.permutation = {1, 0};
    target.copy(&source, region);
    EXPECT_THAT(block_of(target), ElementsAre(1, 3, 5, 2, 4, 6, 0, 0, 0, 0));
    target.shrink_from(100);
    region.end = {3, 3};
    target.copy(&source, region);
    EXPECT_THAT(block_of(target), ElementsAre(1, 3, 5, 2, 4, 6, 0, 0, 0, 0, 0, 0, 0));
}

/// Bytes of its own, not those of the block.
class OtherBytes : public VStackImp
{
public:
    const unsigned char* get_data_ptr() const override { return bytes.data(); }
    unsigned char* get_data_ptr() override { return bytes.data(); }

    std::vector<unsigned char> bytes;
};

TEST(DerivedStack, ThatGivesBytesOfItsOwnIsCopiedFromThem)
{
    OtherBytes derived;
    derived.create(std::vector<std::uint64_t>{3}, vela_dt_uint8);
    derived.bytes = {7, 8, 9};
    VStackImp sharing(derived);
    sharing.create(std::vector<std::uint64_t>{1}, vela_dt_uint8); // the block, not the bytes
    VStackImp target;
    target.copy(&derived, vela_dt_none);
    EXPECT_THAT(block_of(target), ElementsAre(7, 8, 9));
}

TEST(DerivedStack, ThatGivesBytesOfItsOwnCanBeCopiedIntoFromItsBlock)
{
    OtherBytes derived;
    derived.create({2, 2}, vela_dt_uint8);
    derived.bytes = {7, 7, 7, 7};
    VStackImp source(derived);
    set_samples<std::uint8_t>(source, {1, 2, 3, 4});
    VStackRegion region;
    region.create(&source, vela_dt_none);
    region.permutation = {1, 0};
    derived.copy(&source, region);
    EXPECT_THAT(block_of(source), ElementsAre(1, 3, 2, 4)) << "as if it had been copied first";
    EXPECT_THAT(derived.bytes, Each(7));
}

} // namespace
