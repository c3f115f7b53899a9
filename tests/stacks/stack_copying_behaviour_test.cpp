// What a copy of a stack gives: one case each. Random ones are in copy_model_behaviour_test.cpp.
#include <VelaBase/vela_dt_convert.h>

#include "open_stack.h"

#include "support/expect_vela_error.h"

namespace {

using Sizes = std::vector<std::uint64_t>;
using Bytes = std::vector<unsigned char>;

VStackImp numbered(const Sizes& sizes)
{
    VStackImp stack(Ome::Type::uint8, sizes, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(stack);
    return stack;
}

/// A copy of `region` into a stack whose samples were all 0xEE and as many as `before` says.
Bytes copied(const VStackInterface& source, const VStackRegion& region, std::uint64_t before = 0)
{
    VStackImp target;
    target.create({before}, vela_dt_uint8);
    for (std::uint64_t i = 0; i < before; ++i)
        target.get_data_ptr()[i] = 0xEE;
    target.copy(&source, region);
    return naive::block_of(target);
}

TEST(StackCopying, TheWholeSourceInItsOwnTypeIsEqualByteForByte)
{
    VStackImp source(Ome::Type::float32, {3, 5, 2}, Ome::DimensionOrder::XYZTC);
    for (std::uint64_t i = 0; i < source.get_block_size(); ++i)
        source.get_data_ptr()[i] = static_cast<unsigned char>(255 - i);
    VStackImp target;
    target.copy(&source, 0);
    EXPECT_EQ(target.get_dt(), vela_dt_single);
    EXPECT_EQ(target.get_sizes(), source.get_sizes());
    EXPECT_EQ(naive::block_of(target), naive::block_of(source));
    EXPECT_NE(target.get_data_ptr(), source.get_data_ptr());
    VStackImp by_region;
    by_region.copy(&source, naive::whole(source));
    EXPECT_EQ(naive::block_of(by_region), naive::block_of(source));
}

TEST(StackCopying, AnotherTypeConvertsEverySample)
{
    VStackImp source(Ome::Type::float64, {2, 2}, Ome::DimensionOrder::XYZTC);
    naive::set_samples<double>(source, {1.9, -1.9, 300.7, 65535.0});
    VStackImp target;
    target.copy(&source, vela_dt_int16);
    EXPECT_EQ(naive::samples_of<std::int16_t>(target), (std::vector<std::int16_t>{1, -1, 300, -1}));
    EXPECT_EQ(target.get_dt(), vela_dt_int16);
    target.copy(&source, vela_dt_complex | vela_dt_double);
    EXPECT_EQ(naive::samples_of<double>(target), (std::vector<double>{1.9, 0, -1.9, 0, 300.7, 0, 65535, 0}));
}

TEST(StackCopying, TheDescriptionComesAlong)
{
    VStackImp source = numbered({4, 3});
    source.set_name("cells");
    source.set_description("of an onion");
    source.set_labels({"stage X", "stage Y"});
    source.set_len({8.0, 6.0});
    source.set_col_positions(1, {1.0, 2.0, 4.0});
    VStackImp target;
    target.copy(&source, 0);
    EXPECT_EQ(target.get_name(), "cells");
    EXPECT_EQ(target.get_description(), "of an onion");
    EXPECT_EQ(target.get_labels(), source.get_labels());
    EXPECT_EQ(target.get_length(0), 8.0);
    EXPECT_EQ(target.get_col_positions(1), (std::vector<double>{1.0, 2.0, 4.0}));
    target.copy(&source, naive::box({0, 1}, {2, 3}, {1, 0}));
    EXPECT_EQ(target.get_labels(), (std::vector<std::string>{"stage Y", "stage X"}));
    EXPECT_EQ(target.get_length(1), 4.0);
    EXPECT_EQ(target.get_col_positions(0), (std::vector<double>{2.0, 4.0}));
}

TEST(StackCopying, ARegionTwoPixelsBeforeTheSourceHasTwoColumnsOfZeros)
{
    EXPECT_EQ(copied(numbered({2, 2}), naive::box({-2, 0}, {2, 2}, {0, 1})), (Bytes{0, 0, 1, 2, 0, 0, 3, 4}));
    EXPECT_EQ(copied(numbered({2, 2}), naive::box({-2, 0}, {2, 2}, {0, 1}), 8), (Bytes{0, 0, 1, 2, 0, 0, 3, 4}));
}

TEST(StackCopying, WhatLiesOutsideOnAnySideIsZeroAlsoInAReusedBlock)
{
    EXPECT_EQ(copied(numbered({2, 2}), naive::box({-1, -1}, {3, 3}, {1, 0}), 40),
              (Bytes{0, 0, 0, 0, 0, 1, 3, 0, 0, 2, 4, 0, 0, 0, 0, 0}));
    EXPECT_EQ(copied(numbered({3}), naive::box({2}, {5}, {0}), 3), (Bytes{3, 0, 0}));
}

TEST(StackCopying, ARegionEntirelyOutsideGivesZerosOnAFreshStackAndOldBytesOnAReusedOne)
{
    for (const VStackRegion& region :
         {naive::box({7, 0}, {9, 2}, {0, 1}), naive::box({-5, 0}, {-3, 2}, {0, 1}), naive::box({0, 2}, {2, 4}, {1, 0})})
    {
        EXPECT_EQ(copied(numbered({2, 2}), region), Bytes(4, 0));
        EXPECT_EQ(copied(numbered({2, 2}), region, 4), Bytes(4, 0xEE));
        EXPECT_EQ(copied(numbered({2, 2}), region, 3), (Bytes{0xEE, 0xEE, 0xEE, 0}));
    }
}

TEST(StackCopying, ASliceOutsideTheSourceLeavesTheBlock)
{
    EXPECT_EQ(copied(numbered({2, 2}), naive::box({0, 2}, {2, 3}, {0}), 2), Bytes(2, 0xEE));
    EXPECT_EQ(copied(numbered({2, 2}), naive::box({-1, 0}, {0, 2}, {1}), 2), Bytes(2, 0xEE));
}

TEST(StackCopying, AnEmptyRegionGivesAnEmptyStack)
{
    VStackImp target;
    const VStackImp source = numbered({2, 2});
    target.copy(&source, naive::box({1, 0}, {1, 2}, {0, 1}));
    EXPECT_EQ(target.get_sizes(), (Sizes{0, 2}));
    EXPECT_EQ(target.get_data_ptr(), nullptr);
}

TEST(StackCopying, ATransposingPermutationExchangesTheAxes)
{
    const VStackImp source = numbered({2, 3});
    VStackImp target;
    target.copy(&source, naive::box({0, 0}, {2, 3}, {1, 0}));
    EXPECT_EQ(target.get_sizes(), (Sizes{3, 2}));
    EXPECT_EQ(naive::block_of(target), (Bytes{1, 3, 5, 2, 4, 6}));
}

TEST(StackCopying, PlanesAtAnyPlaceAreThosePlanes)
{
    const VStackImp source = numbered({2, 3, 2});
    EXPECT_EQ(copied(source, naive::box({0, 0, 1}, {2, 3, 2}, {0, 1})), (Bytes{7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(copied(source, naive::box({0, 2, 0}, {2, 3, 2}, {0, 2})), (Bytes{5, 6, 11, 12}));
    EXPECT_EQ(copied(source, naive::box({1, 0, 0}, {2, 3, 2}, {1, 2})), (Bytes{2, 4, 6, 8, 10, 12}));
    EXPECT_EQ(copied(source, naive::box({1, 0, 0}, {2, 3, 2}, {2, 1})), (Bytes{2, 8, 4, 10, 6, 12}));
    EXPECT_EQ(copied(source, naive::box({1, 1, 0}, {2, 2, 2}, {2})), (Bytes{4, 10}));
}

TEST(StackCopying, CuttingAllAxesGivesOneSample)
{
    VStackImp target;
    const VStackImp source = numbered({2, 3});
    target.copy(&source, naive::box({1, 2}, {2, 3}, {}));
    EXPECT_EQ(target.get_rank(), 0U);
    EXPECT_EQ(naive::block_of(target), Bytes{6});
}

TEST(StackCopying, AScalarIsCopiedAndConverted)
{
    VStackImp source;
    source.create(Sizes{}, vela_dt_uint8);
    source.get_data_ptr()[0] = 200;
    VStackImp target;
    target.copy(&source, 0);
    EXPECT_EQ(naive::block_of(target), Bytes{200});
    target.copy(&source, vela_dt_single);
    EXPECT_EQ(naive::samples_of<float>(target), std::vector<float>{200.0F});
}

TEST(StackCopying, AnAxisBeyondTheRankIsOnePixelOfTheSource)
{
    EXPECT_EQ(copied(numbered({2}), naive::box({0, 0}, {2, INT64_MAX}, {1, 0}), 2), (Bytes{1, 2}));
    EXPECT_EQ(copied(numbered({2}), naive::box({0, -1}, {2, 2}, {0, 1}), 6), (Bytes{0, 0, 1, 2, 0, 0}));
    EXPECT_EQ(copied(numbered({2}), naive::box({0, 1}, {2, 3}, {0, 1}), 4), Bytes(4, 0xEE));
    EXPECT_EQ(copied(numbered({2}), naive::box({0, -3}, {2, -1}, {0, 1}), 4), Bytes(4, 0xEE));
}

TEST(StackCopying, ComplexToRealLeavesTheBlockWhenWholeAndTakesTheRealPartOtherwise)
{
    VStackImp source(Ome::Type::complex64, {2}, Ome::DimensionOrder::XYZTC);
    naive::set_samples<float>(source, {300.7F, 9.0F, 5.0F, 1.0F});
    VStackRegion region = naive::whole(source);
    region.dt = vela_dt_uint8;
    EXPECT_EQ(copied(source, region), Bytes(2, 0));
    EXPECT_EQ(copied(source, region, 2), Bytes(2, 0xEE));
    VStackImp target;
    target.copy(&source, vela_dt_uint8);
    EXPECT_EQ(naive::block_of(target), Bytes(2, 0));
    EXPECT_EQ(copied(source, naive::box({0}, {3}, {0}, vela_dt_uint8), 3), (Bytes{44, 5, 0}));
    EXPECT_EQ(copied(source, naive::box({1}, {2}, {0}, vela_dt_uint8), 1), Bytes{5});
}

TEST(StackCopying, ASourceOfAnotherClassIsCopied)
{
    const naive::ForeignStack source({2, 2}, vela_dt_uint8, {1, 2, 3, 4});
    EXPECT_EQ(copied(source, naive::whole(source)), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(copied(source, naive::box({0, 0}, {2, 2}, {1, 0})), (Bytes{1, 3, 2, 4}));
    EXPECT_EQ(copied(source, naive::box({0, -1}, {2, 1}, {0, 1})), (Bytes{0, 0, 1, 2}));
}

TEST(StackCopying, ALogicalTargetCopiesNothingInTheGeneralPaths)
{
    const VStackImp source = numbered({2, 2});
    for (const VStackRegion& region :
         {naive::box({0, 0}, {2, 2}, {1, 0}, vela_dt_logical), naive::box({0, 0}, {2, 1}, {0, 1}, vela_dt_logical),
          naive::box({0, 1}, {2, 2}, {0}, vela_dt_logical)})
    {
        naive::OpenStack target({4}, vela_dt_uint8);
        naive::number_bytes(target);
        target.copy(&source, region);
        EXPECT_EQ(target.get_dt(), vela_dt_logical);
        const Bytes old_bytes = {1, 2, 3, 4};
        const Bytes block = naive::block_of(target);
        EXPECT_EQ(block, Bytes(old_bytes.begin(), old_bytes.begin() + static_cast<std::ptrdiff_t>(block.size())));
        EXPECT_GE(block.size(), 2U);
    }
}

TEST(StackCopying, ALogicalTargetIsAllZerosWhereTheRegionReachesOut)
{
    const VStackImp source = numbered({2, 2});
    naive::OpenStack target({6}, vela_dt_uint8);
    naive::number_bytes(target);
    target.copy(&source, naive::box({-1, 0}, {2, 2}, {0, 1}, vela_dt_logical));
    EXPECT_EQ(naive::block_of(target), Bytes(6, 0));
}

TEST(StackCopying, AWholeCopyIsTheBulkConversionWhateverTheTypes)
{
    const std::pair<vela_dt, vela_dt> pairs[] = {
        {vela_dt_uint8, vela_dt_logical},    {vela_dt_single, vela_dt_packed_color},
        {vela_dt_rgb, vela_dt_packed_color}, {vela_dt_packed_color, vela_dt_rgb},
        {vela_dt_logical, vela_dt_uint8},    {vela_dt_logical, vela_dt_logical},
        {vela_dt_rgb, vela_dt_rgb}};
    for (const auto& [from, to] : pairs)
    {
        SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to);
        naive::OpenStack source({3}, from);
        naive::number_bytes(source);
        naive::OpenStack target({3}, to);
        naive::number_bytes(target);
        Bytes expected = naive::block_of(target);
        const std::uint64_t size = vela_dt_get_size(static_cast<std::uint32_t>(to));
        expected.resize(3 * size);
        if (from == to)
            std::memcpy(expected.data(), source.get_data_ptr(), expected.size());
        else
            vela_dt_convert(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to), source.get_data_ptr(),
                            expected.data(), 3, nullptr, nullptr);
        VStackRegion region = naive::whole(source);
        region.dt = to;
        target.copy(&source, region);
        Bytes block = naive::block_of(target);
        block.resize(3 * size);
        EXPECT_EQ(block, expected);
    }
}

TEST(StackCopying, ASourceThatIsNotNumericIsRefusedUnlessWhole)
{
    const naive::OpenStack source({2, 2}, vela_dt_logical);
    for (const VStackRegion& region :
         {naive::box({0, 0}, {2, 2}, {1, 0}, vela_dt_uint8), naive::box({0, 0}, {2, 1}, {0, 1}, vela_dt_uint8),
          naive::box({-1, 0}, {2, 2}, {0, 1}, vela_dt_uint8)})
    {
        VStackImp target;
        EXPECT_VELA_ERROR(target.copy(&source, region), -1, "Invalid type!");
        EXPECT_EQ(target.get_dt(), vela_dt_uint8);
        EXPECT_EQ(target.get_rank(), 2U);
    }
}

TEST(StackCopying, FailuresOfTheRegionLeaveTheStackAsItWas)
{
    const VStackImp source = numbered({2, 2});
    VStackImp target(Ome::Type::uint8, {3}, Ome::DimensionOrder::XYZTC);
    naive::number_bytes(target);
    EXPECT_VELA_ERROR(target.copy(&source, naive::box({0, 0}, {2}, {0})), -1, "Called on invalid region!");
    EXPECT_VELA_ERROR(target.copy(&source, naive::box({0, 2}, {2, 1}, {0, 1})), -1, "Called on invalid region!");
    EXPECT_VELA_ERROR(target.copy(&source, naive::box({0, 0}, {2, 2}, {1, 1})), -15, "Invalid permutation!");
    EXPECT_VELA_ERROR(target.copy(&source, naive::box({0, 0}, {2, 2}, {0, 2})), -15, "Invalid permutation!");
    EXPECT_EQ(target.get_sizes(), Sizes{3});
    EXPECT_EQ(naive::block_of(target), (Bytes{1, 2, 3}));
}

TEST(StackCopying, ATypeThatTheRecordLacksIsRefused)
{
    const VStackImp source = numbered({2});
    VStackImp target;
    EXPECT_THROW_TEXT(target.copy(&source, vela_dt_int64), std::invalid_argument, "Unsupported data type");
    EXPECT_EQ(target.get_dt(), vela_dt_int64);
}

TEST(StackCopying, AStackWithoutElementsIsCopiedWithoutAType)
{
    const VStackImp source(3);
    VStackImp target(Ome::Type::uint8, {3}, Ome::DimensionOrder::XYZTC);
    target.copy(&source, 0);
    EXPECT_EQ(target.get_sizes(), (Sizes{0, 0, 0}));
    EXPECT_EQ(target.get_data_ptr(), nullptr);
    const VStackImp no_type;
    EXPECT_VELA_ERROR(target.copy(&no_type, 0), -1, "Unknown type of elements");
}

/// Gives itself other sizes than it is asked for.
class WilfulStack : public VStackImp
{
public:
    using VStackImp::create;
    void create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) override
    {
        Sizes larger = new_sizes;
        ++larger.back();
        VStackImp::create(larger, new_dt);
    }
};

TEST(StackCopying, SizesOtherThanThoseOfTheRegionAreAnInternalError)
{
    const VStackImp source = numbered({2, 2});
    WilfulStack target;
    EXPECT_VELA_ERROR(target.copy(&source, naive::box({0, 0}, {2, 2}, {1, 0})), -1, "Internal error!");
    EXPECT_VELA_ERROR(target.copy(&source, naive::box({0, 0}, {2, 2}, {0, 1})), -1, "Internal error!");
}

TEST(StackCopying, ACopyOfPartOfItselfIsAsIfItHadBeenCopiedFirst)
{
    VStackImp stack = numbered({2, 3});
    VStackImp sharing(stack);
    stack.copy(&stack, naive::box({0, 0}, {2, 3}, {1, 0}));
    EXPECT_EQ(naive::block_of(stack), (Bytes{1, 3, 5, 2, 4, 6}));
    EXPECT_EQ(naive::block_of(sharing), naive::block_of(stack)) << "still one block";
    stack.copy(&stack, vela_dt_uint16);
    EXPECT_EQ(naive::samples_of<std::uint16_t>(stack), (std::vector<std::uint16_t>{1, 3, 5, 2, 4, 6}));
    stack.copy(&stack, naive::box({-1, 0}, {2, 2}, {0, 1}, vela_dt_uint8));
    EXPECT_EQ(naive::block_of(stack), (Bytes{0, 1, 3, 0, 2, 4}));
    stack.copy(&stack, 0);
    EXPECT_EQ(naive::block_of(stack), (Bytes{0, 1, 3, 0, 2, 4}));
}

} // namespace
