// The block of a stack: its size, who shares it, and what is left after failures.
#include "open_stack.h"

#include "support/expect_vela_error.h"
#include "support/slot_of.h"

namespace {

using Sizes = std::vector<std::uint64_t>;
using Bytes = std::vector<unsigned char>;

TEST(StackMemory, AStackOfARankHasNoSamples)
{
    for (const std::uint64_t rank : {0U, 1U, 3U, 5U, 9U})
    {
        VStackImp stack(rank);
        const VStackImp& constant = stack;
        EXPECT_EQ(stack.get_rank(), rank);
        EXPECT_EQ(stack.get_sizes(), Sizes(rank, 0));
        EXPECT_EQ(stack.get_dt(), vela_dt_none);
        EXPECT_EQ(stack.get_size(0), 0U);
        EXPECT_EQ(stack.get_block_size(), 0U);
        EXPECT_EQ(stack.get_data_ptr(), nullptr);
        EXPECT_EQ(constant.get_data_ptr(), nullptr);
    }
}

TEST(StackMemory, TheBlockIsAllocatedAtOnceAndHoldsZeros)
{
    VStackImp stack(Ome::Type::float64, {3, 2}, Ome::DimensionOrder::XYCZT);
    const VStackImp& constant = stack;
    EXPECT_EQ(naive::block_of(stack), Bytes(48, 0));
    EXPECT_EQ(stack.get_dt(), vela_dt_double);
    EXPECT_EQ(static_cast<const unsigned char*>(stack.get_data_ptr()), constant.get_data_ptr());
}

TEST(StackMemory, EachSampleHasTheSizeOfItsType)
{
    const std::pair<Ome::Type, std::uint64_t> types[] = {
        {Ome::Type::int8, 1},      {Ome::Type::int16, 2},      {Ome::Type::int32, 4},   {Ome::Type::uint8, 1},
        {Ome::Type::uint16, 2},    {Ome::Type::uint32, 4},     {Ome::Type::float32, 4}, {Ome::Type::float64, 8},
        {Ome::Type::complex64, 8}, {Ome::Type::complex128, 16}};
    for (const auto& [type, size] : types)
    {
        const VStackImp stack(type, {5, 1, 2}, Ome::DimensionOrder::XYZTC);
        EXPECT_EQ(stack.get_block_size(), 10 * size) << Ome::get_enumeration_text(type);
        EXPECT_EQ(stack.get_size(0), 10 * size);
    }
}

TEST(StackMemory, CreateKeepsOldBytesAndZerosNewOnes)
{
    VStackImp stack(Ome::Type::uint8, {4}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    stack.create({3, 2}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2, 3, 4, 0, 0}));
    stack.create({2}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2}));
    stack.create({2}, vela_dt_uint16);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2, 0, 0}));
    stack.create({0, 7}, vela_dt_uint16);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    stack.create({1}, vela_dt_uint32);
    EXPECT_EQ(naive::block_of(stack), Bytes(4, 0));
}

TEST(StackMemory, CreateFromADescriptionSizesTheBlock)
{
    VStackInfoImp info;
    info.create({2, 3}, vela_dt_int16);
    info.set_name("cells");
    VStackImp stack;
    stack.create(&info, 0);
    EXPECT_EQ(stack.get_block_size(), 12U);
    EXPECT_EQ(stack.get_name(), "cells");
    stack.create(&info, vela_dt_double);
    EXPECT_EQ(stack.get_block_size(), 48U);
    EXPECT_EQ(stack.get_dt(), vela_dt_double);
    stack.create(&info, naive::box({0, 1}, {5, 3}, {1, 0}, vela_dt_uint8));
    EXPECT_EQ(stack.get_sizes(), (Sizes{2, 5}));
    EXPECT_EQ(stack.get_block_size(), 10U);
    EXPECT_EQ(stack.get_dt(), vela_dt_uint8);
}

TEST(StackMemory, AScalarHasOneSample)
{
    VStackImp stack;
    stack.create(Sizes{}, vela_dt_uint16);
    EXPECT_EQ(naive::block_of(stack), Bytes(2, 0));
}

TEST(StackMemory, ElementsOfNoTypeAreRefused)
{
    VStackImp stack(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    EXPECT_VELA_ERROR(stack.create(Sizes{}, 0), -1, "Unknown type of elements");
    EXPECT_EQ(stack.get_rank(), 0U);
    EXPECT_EQ(stack.get_dt(), vela_dt_none);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2}));
    EXPECT_VELA_ERROR(stack.create({3, 4}, 0), -1, "Unknown type of elements");
    EXPECT_EQ(stack.get_sizes(), (Sizes{3, 4}));
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2}));
    EXPECT_VELA_ERROR(VStackImp().create(Sizes{}, 0), -1, "Unknown type of elements");
    const VStackInfoImp no_type;
    EXPECT_VELA_ERROR(stack.create(&no_type, 0), -1, "Unknown type of elements");
}

TEST(StackMemory, NoElementsNeedNoType)
{
    VStackImp stack(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
    stack.create({3, 0}, 0);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    EXPECT_EQ(stack.get_sizes(), (Sizes{3, 0}));
}

TEST(StackMemory, MoreBytesThanCanBeCountedAreRefused)
{
    const std::uint64_t large = std::uint64_t{1} << 61;
    VStackImp stack(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    EXPECT_VELA_ERROR(stack.create({large}, vela_dt_double), -1, "The size increases the maximum size");
    EXPECT_EQ(stack.get_sizes(), Sizes{large});
    EXPECT_EQ(stack.get_dt(), vela_dt_double);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2}));
    EXPECT_VELA_ERROR(VStackImp(Ome::Type::complex128, {large}, Ome::DimensionOrder::XYZTC), -1,
                      "The size increases the maximum size");
    stack.create({3}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2, 0}));
}

TEST(StackMemory, MemoryThatIsNotThereIsAVelaError)
{
    VStackImp stack(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    const std::uint64_t large = std::uint64_t{1} << 58;
    for (const Sizes& sizes : {Sizes{large}, Sizes{large, 16}, Sizes{large, 32}, Sizes{large, 63}})
    {
        EXPECT_VELA_ERROR(stack.create(sizes, vela_dt_uint8), -1, "Out of memory");
        EXPECT_EQ(stack.get_sizes(), sizes);
        EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2}));
    }
    VStackInfoImp info;
    info.create({large}, vela_dt_int8);
    EXPECT_VELA_ERROR(stack.create(&info, 0), -1, "Out of memory");
    EXPECT_VELA_ERROR(VStackImp(Ome::Type::uint16, {large}, Ome::DimensionOrder::XYZTC), -1, "Out of memory");
    stack.create({3}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2, 0}));
}

TEST(StackMemory, ATypeThatTheRecordLacksIsStoredAndThenRefused)
{
    VStackImp stack(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    for (const vela_dt dt : {vela_dt_uint64, vela_dt_logical, vela_dt_rgb, vela_dt_uint8 | vela_dt_complex})
    {
        EXPECT_THROW_TEXT(stack.create({9}, dt), std::invalid_argument, "Unsupported data type");
        EXPECT_EQ(stack.get_dt(), dt);
        EXPECT_EQ(stack.get_sizes(), Sizes{2});
        EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2}));
    }
}

TEST(StackMemory, SixAxesWithElementsAreRefusedBeforeTheBlockChanges)
{
    VStackImp stack(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    EXPECT_THROW_TEXT(stack.create({1, 1, 1, 1, 1, 5}, vela_dt_uint8), std::invalid_argument,
                      "Unsupported number of sizes");
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2}));
    stack.create({1, 1, 1, 1, 1, 0}, vela_dt_uint8);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
}

TEST(StackMemory, DestroyReleasesTheSamplesAndLeavesAStackWithoutAxes)
{
    VStackImp stack(Ome::Type::uint16, {2, 2}, Ome::DimensionOrder::XYZTC);
    stack.destroy();
    EXPECT_EQ(stack.get_rank(), 0U);
    EXPECT_EQ(stack.get_dt(), vela_dt_none);
    EXPECT_EQ(stack.get_number_of_elements(), 1U);
    EXPECT_EQ(stack.get_size(0), 0U);
    EXPECT_EQ(stack.get_block_size(), 0U);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    stack.destroy();
    stack.create({3}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(stack), Bytes(3, 0));
}

class LockedStack : public VStackImp
{
public:
    LockedStack() : VStackImp(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC) { naive::number_bytes(*this); }
    void lock() { locked = true; }
};

TEST(StackMemory, ALockedDescriptionRefusesDestroyCreateAndCopy)
{
    constexpr const char* text = "Cannot set values. Object locked!";
    const VStackImp source(Ome::Type::uint16, {5}, Ome::DimensionOrder::XYZTC);
    LockedStack stack;
    stack.lock();
    EXPECT_VELA_ERROR(stack.destroy(), -1, text);
    EXPECT_VELA_ERROR(stack.create({5}, vela_dt_uint8), -1, text);
    EXPECT_VELA_ERROR(stack.create(&source, 0), -1, text);
    EXPECT_VELA_ERROR(stack.copy(&source, 0), -1, text);
    EXPECT_VELA_ERROR(stack.copy(&source, naive::whole(source)), -1, text);
    EXPECT_EQ(stack.get_sizes(), Sizes{2});
    EXPECT_EQ(stack.get_dt(), vela_dt_uint8);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2}));
}

TEST(StackMemory, ALockedStackStillCanBeReadAndWritten)
{
    LockedStack stack;
    stack.lock();
    stack.get_data_ptr()[0] = 9;
    VStackImp target;
    target.copy(&stack, 0);
    EXPECT_EQ(naive::block_of(target), (Bytes{9, 2}));
}

TEST(StackMemory, CopiesShareTheBlockAndHaveDescriptionsOfTheirOwn)
{
    VStackImp stack(Ome::Type::uint8, {2}, Ome::DimensionOrder::XYZTC);
    stack.set_name("one");
    VStackImp other(stack);
    VStackImp third(other);
    EXPECT_EQ(other.get_data_ptr(), stack.get_data_ptr());
    EXPECT_EQ(other.get_sizes(), Sizes{2});
    EXPECT_EQ(other.get_name(), "one");
    third.get_data_ptr()[1] = 7;
    EXPECT_EQ(naive::block_of(stack), (Bytes{0, 7}));
    other.set_name("two");
    EXPECT_EQ(stack.get_name(), "one");
}

TEST(StackMemory, TheBlockOutlivesTheStackThatMadeIt)
{
    auto stack = std::make_unique<VStackImp>(Ome::Type::uint8, Sizes{2}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(*stack);
    const VStackImp other(*stack);
    stack.reset();
    EXPECT_EQ(naive::block_of(other), (Bytes{1, 2}));
}

TEST(StackMemory, WhatOneCopyDoesToTheSizeOfTheBlockTheOthersSee)
{
    VStackImp stack(Ome::Type::uint8, {4}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    VStackImp other(stack);
    other.create({6}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 2, 3, 4, 0, 0}));
    EXPECT_EQ(stack.get_sizes(), Sizes{4});
    other.destroy();
    EXPECT_EQ(stack.get_block_size(), 0U);
    EXPECT_EQ(stack.get_data_ptr(), nullptr);
    EXPECT_EQ(stack.get_sizes(), Sizes{4});
    EXPECT_EQ(stack.get_size(0), 4U);
    stack.create({4}, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(other), Bytes(4, 0));
}

TEST(StackMemory, ABlockSmallerThanItsDescriptionIsCopiedAsFarAsItGoes)
{
    VStackImp stack(Ome::Type::uint16, {2, 3}, Ome::DimensionOrder::XYZTC);
    naive::set_samples<std::uint16_t>(stack, {1, 2, 3, 4, 5, 6});
    VStackImp sharing(stack);
    sharing.create({3}, vela_dt_uint16);
    for (const vela_dt dt : {vela_dt_uint16, vela_dt_int32})
    {
        VStackImp target;
        target.copy(&stack, dt);
        EXPECT_EQ(target.get_sizes(), (Sizes{2, 3}));
        std::vector<int> samples;
        for (std::uint64_t i = 0; i < 6; ++i)
            samples.push_back(target.get_data_ptr()[i * vela_dt_get_size(static_cast<std::uint32_t>(dt))]);
        EXPECT_EQ(samples, (std::vector<int>{1, 2, 3, 0, 0, 0}));
    }
    for (const VStackRegion& region :
         {naive::box({0, 0}, {2, 3}, {1, 0}), naive::box({-1, -1}, {3, 4}, {0, 1}), naive::box({1, 1}, {2, 3}, {0, 1})})
    {
        VStackImp target;
        try
        {
            target.copy(&stack, region);
        }
        catch (const VelaError&)
        {
            // Also good: what must not happen is a read behind the block.
        }
        EXPECT_EQ(target.get_rank(), 2U);
    }
    EXPECT_EQ(stack.get_block_size(), 6U);
}

#ifdef VELA_TEST_HAS_SLOTS
TEST(StackMemory, OperationsOfAStackKeepTheirOrder)
{
    using S = VStackInterface;
    const std::ptrdiff_t first =
        slot_of(static_cast<void (S::*)(const VStackInterface*, const VStackRegion&)>(&S::copy));
    EXPECT_EQ(slot_of(static_cast<void (S::*)(const VStackInterface*, vela_dt)>(&S::copy)), first + 1);
    EXPECT_EQ(slot_of(&S::destroy), first + 2);
    EXPECT_EQ(slot_of(static_cast<const unsigned char* (S::*)() const>(&S::get_data_ptr)), first + 3);
    EXPECT_EQ(slot_of(static_cast<unsigned char* (S::*)()>(&S::get_data_ptr)), first + 4);
    EXPECT_EQ(slot_of(&S::share), first + 5);
}
#endif

} // namespace
