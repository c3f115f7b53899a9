// What a copy takes besides the samples.

#include "stacks/any_type_stack.h"
#include "support/expect_vela_error.h"
#include "support/failing_memory.h"

#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <pthread.h>
#include <vector>

using namespace vela_test;
using testing::ElementsAre;

namespace {

std::size_t aligned_requests = 0;

} // namespace

// Of all memory only that of tiles is aligned to lines.
void* operator new[](std::size_t size_bytes, std::align_val_t alignment)
{
    ++aligned_requests;
    void* const memory = std::aligned_alloc(static_cast<std::size_t>(alignment), size_bytes);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void operator delete[](void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept
{
    std::free(memory);
}

namespace {

VStackRegion transposed(const VStackInterface& stack)
{
    VStackRegion region;
    region.create(&stack, vela_dt_none);
    region.permutation = {1, 0};
    return region;
}

TEST(StackMemory, ThatASourceOfTheSameBlockNeedsMayFailAndNothingChanges)
{
    VStackImp source;
    source.create({2, 3}, vela_dt_uint8);
    count_up<std::uint8_t>(source);
    VStackImp sharing(source);
    const VStackRegion region = transposed(source);
    {
        const OneRequestFailsAfter failure(0);
        EXPECT_VELA_ERROR_IN(sharing.copy(&source, region), "VStackImp::copy", "sources/stacks", -1, "Out of memory");
    }
    EXPECT_THAT(sharing.get_sizes(), ElementsAre(2, 3));
    EXPECT_THAT(samples_of<std::uint8_t>(sharing), ElementsAre(0, 1, 2, 3, 4, 5));
    sharing.copy(&source, region);
    EXPECT_THAT(samples_of<std::uint8_t>(sharing), ElementsAre(0, 2, 4, 1, 3, 5));
}

struct TransposedCopy
{
    VStackImp source;
    VStackImp target;

    static void* run(void* self)
    {
        auto* const copy = static_cast<TransposedCopy*>(self);
        VStackRegion region = transposed(copy->source);
        region.dt = vela_dt_single;
        copy->target.copy(&copy->source, region);
        return nullptr;
    }
};

TEST(StackMemory, OfAThreadWithASmallStackIsEnough)
{
    TransposedCopy copy;
    copy.source.create({300, 400}, vela_dt_uint16);
    count_up<std::uint16_t>(copy.source);
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 96 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, TransposedCopy::run, &copy), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_EQ(pthread_attr_destroy(&attributes), 0);
    const std::vector<float> samples = samples_of<float>(copy.target);
    ASSERT_EQ(samples.size(), 120000u);
    EXPECT_EQ(samples[1], 300);
    EXPECT_EQ(samples[400], 1);
    EXPECT_EQ(samples[119998], static_cast<float>(static_cast<std::uint16_t>(119999 - 300)));
}

/// How often a copy asks for memory for tiles.
std::size_t tile_requests(const VStackImp& source, const VStackRegion& region)
{
    VStackImp target;
    const std::size_t before = aligned_requests;
    target.copy(&source, region);
    return aligned_requests - before;
}

TEST(StackMemory, ForTilesIsAskedForOnceACopyAndOnlyWhereItIsLarge)
{
    VStackImp source;
    source.create({16, 16}, vela_dt_uint16);
    EXPECT_EQ(tile_requests(source, transposed(source)), 0u);
    source.create({200, 30, 20}, vela_dt_uint16);
    VStackRegion region;
    region.create(&source, vela_dt_none);
    region.permutation = {2, 1, 0};
    EXPECT_EQ(tile_requests(source, region), 1u);
    region.permutation = {0, 1, 2};
    region.begin = {1, 1, 1};
    EXPECT_EQ(tile_requests(source, region), 0u) << "rows that lie alongside";
    region.dt = vela_dt_double;
    EXPECT_EQ(tile_requests(source, region), 1u) << "short rows, converted several at a time";
}

} // namespace
