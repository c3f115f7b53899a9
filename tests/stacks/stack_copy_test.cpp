#include "stacks/any_type_stack.h"
#include "support/expect_source_line.h"
#include "support/expect_vela_error.h"

#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

using namespace vela_test;
using testing::Each;
using testing::ElementsAre;

namespace {

using Complex = std::complex<float>;

template <class T>
VStackImp counting(const std::vector<std::uint64_t>& sizes, vela_dt dt)
{
    VStackImp stack;
    stack.create(sizes, dt);
    count_up<T>(stack);
    return stack;
}

VStackRegion whole(const VStackInterface& stack)
{
    VStackRegion region;
    region.create(&stack, vela_dt_none);
    return region;
}

/// 0 1
/// 2 3
/// 4 5
class StackCopy : public testing::Test
{
protected:
    const VStackImp source = counting<std::uint16_t>({2, 3}, vela_dt_uint16);
    VStackImp target;
};

TEST_F(StackCopy, OfAllIsEqualByteForByte)
{
    target.copy(&source, vela_dt_none);
    EXPECT_EQ(target.get_dt(), vela_dt_uint16);
    EXPECT_EQ(target.get_sizes(), source.get_sizes());
    EXPECT_EQ(bytes_of(target), bytes_of(source));
    EXPECT_NE(target.get_data_ptr(), source.get_data_ptr());
}

TEST_F(StackCopy, OfAllConvertsToTheTypeThatIsAskedFor)
{
    target.copy(&source, vela_dt_double);
    EXPECT_EQ(target.get_dt(), vela_dt_double);
    EXPECT_THAT(samples_of<double>(target), ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST_F(StackCopy, TakesNameAndDescriptionAlong)
{
    VStackImp named(source);
    named.set_name("name");
    named.set_description("description");
    named.set_label(1, "Y");
    target.copy(&named, vela_dt_none);
    EXPECT_EQ(target.get_name(), "name");
    EXPECT_EQ(target.get_description(), "description");
    EXPECT_EQ(target.get_label(1), "Y");
}

TEST_F(StackCopy, BeginsBeforeTheSourceWithZeros)
{
    VStackRegion region = whole(source);
    region.begin[0] = -2;
    target.copy(&source, region);
    EXPECT_THAT(target.get_sizes(), ElementsAre(4, 3));
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(0, 0, 0, 1, 0, 0, 2, 3, 0, 0, 4, 5));
}

TEST_F(StackCopy, OverwritesWithZerosWhatLiesOutside)
{
    target.create({4, 3}, vela_dt_uint16);
    set_samples<std::uint16_t>(target, std::vector<std::uint16_t>(12, 99));
    VStackRegion region = whole(source);
    region.begin = {1, 1};
    region.end = {5, 4};
    target.copy(&source, region);
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(3, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(StackCopy, OfNothingInCommonIsZeroInAFreshStackAndOldBytesInAReusedOne)
{
    VStackRegion region = whole(source);
    region.begin = {7, 0};
    region.end = {9, 3};
    target.copy(&source, region);
    EXPECT_THAT(target.get_sizes(), ElementsAre(2, 3));
    EXPECT_THAT(samples_of<std::uint16_t>(target), Each(0));

    set_samples<std::uint16_t>(target, {9, 8, 7, 6, 5, 4});
    target.copy(&source, region);
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(9, 8, 7, 6, 5, 4));

    region.end = {10, 3};
    target.copy(&source, region);
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(9, 8, 7, 6, 5, 4, 0, 0, 0));
}

TEST_F(StackCopy, OfASliceOutsideLeavesOldBytes)
{
    VStackRegion region = whole(source);
    region.begin[1] = 3;
    region.end[1] = 4;
    region.permutation = {0};
    target.create({2}, vela_dt_uint16);
    set_samples<std::uint16_t>(target, {9, 8});
    target.copy(&source, region);
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(9, 8));
}

TEST_F(StackCopy, TransposesAPlane)
{
    VStackRegion region = whole(source);
    region.permutation = {1, 0};
    target.copy(&source, region);
    EXPECT_THAT(target.get_sizes(), ElementsAre(3, 2));
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(0, 2, 4, 1, 3, 5));
}

TEST_F(StackCopy, CutsAPlaneAtEveryAxis)
{
    const VStackImp cube = counting<std::uint8_t>({2, 2, 2}, vela_dt_uint8);
    VStackRegion region = whole(cube);
    region.begin = {0, 0, 1};
    region.permutation = {0, 1};
    target.copy(&cube, region);
    EXPECT_THAT(samples_of<std::uint8_t>(target), ElementsAre(4, 5, 6, 7)) << "XY";
    region.begin = {0, 1, 0};
    region.permutation = {0, 2};
    target.copy(&cube, region);
    EXPECT_THAT(samples_of<std::uint8_t>(target), ElementsAre(2, 3, 6, 7)) << "XZ";
    region.begin = {1, 0, 0};
    region.permutation = {1, 2};
    target.copy(&cube, region);
    EXPECT_THAT(samples_of<std::uint8_t>(target), ElementsAre(1, 3, 5, 7)) << "YZ";
}

TEST_F(StackCopy, OfOnePixelHasNoAxes)
{
    VStackRegion region = whole(source);
    region.begin = {1, 2};
    region.permutation.clear();
    target.copy(&source, region);
    EXPECT_EQ(target.get_rank(), 0u);
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(5));
}

TEST_F(StackCopy, OfAStackWithoutAxesIsItsOneSample)
{
    VStackImp point;
    point.create(std::vector<std::uint64_t>(), vela_dt_uint8);
    point.get_data_ptr()[0] = 42;
    target.copy(&point, vela_dt_single);
    EXPECT_EQ(target.get_rank(), 0u);
    EXPECT_THAT(samples_of<float>(target), ElementsAre(42));
}

TEST_F(StackCopy, GivesAStackAFurtherAxis)
{
    VStackRegion region = whole(source);
    region.begin.push_back(-1);
    region.end.push_back(1);
    region.permutation = {2, 0, 1};
    target.copy(&source, region);
    EXPECT_THAT(target.get_sizes(), ElementsAre(2, 2, 3));
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(0, 0, 0, 1, 0, 2, 0, 3, 0, 4, 0, 5));
}

TEST_F(StackCopy, OfAStackWithoutSamplesHasNone)
{
    const VStackImp empty(3);
    target.copy(&empty, vela_dt_none);
    EXPECT_THAT(target.get_sizes(), ElementsAre(0, 0, 0));
    EXPECT_EQ(target.get_block_size(), 0u);
}

TEST_F(StackCopy, ThatIsEmptyWhereItIsCutCopiesNothingInTheOrderOfTheSource)
{
    VStackRegion region = whole(source);
    region.begin[1] = 1;
    region.end[1] = 1;
    region.permutation = {0};
    target.create({2}, vela_dt_uint16);
    set_samples<std::uint16_t>(target, {9, 8});
    target.copy(&source, region);
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(9, 8));

    region = whole(source);
    region.begin[0] = 1;
    region.end[0] = 1;
    region.permutation = {1};
    target.copy(&source, region);
    EXPECT_THAT(samples_of<std::uint16_t>(target), ElementsAre(1, 3, 5)) << "in any other order the slice counts";
}

TEST_F(StackCopy, FromComplexToRealTakesTheRealPartButOfARegionThatIsAll)
{
    VStackImp complex;
    complex.create({2, 2}, vela_dt_single | vela_dt_complex);
    set_samples<Complex>(complex, {{1.5F, 9}, {2, 9}, {3, 9}, {300.7F, 9}});
    VStackRegion region = whole(complex);
    region.permutation = {1, 0};
    region.dt = vela_dt_uint8;
    target.copy(&complex, region);
    EXPECT_THAT(samples_of<std::uint8_t>(target), ElementsAre(1, 3, 2, 44));

    target.copy(&complex, vela_dt_uint8);
    EXPECT_THAT(samples_of<std::uint8_t>(target), ElementsAre(1, 3, 2, 44)) << "as it was";
    VStackImp fresh;
    fresh.copy(&complex, vela_dt_uint8);
    EXPECT_THAT(samples_of<std::uint8_t>(fresh), Each(0));
    VStackImp grown;
    grown.create({2}, vela_dt_uint8);
    set_samples<std::uint8_t>(grown, {7, 8});
    grown.copy(&complex, vela_dt_uint8);
    EXPECT_THAT(samples_of<std::uint8_t>(grown), ElementsAre(7, 8, 0, 0)) << "old bytes, and zeros behind them";
}

TEST_F(StackCopy, OfATypeThatIsNotNumericIsOneOfBlocksOnly)
{
    for (const vela_dt dt : {vela_dt_logical, vela_dt_rgb})
    {
        AnyTypeStack colours({2, 3}, dt);
        std::vector<unsigned char> bytes(colours.get_block_size());
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<unsigned char>(i + 1);
        set_samples(colours, bytes);
        AnyTypeStack copy;
        copy.copy(&colours, vela_dt_none);
        EXPECT_EQ(bytes_of(copy), bytes);

        VStackRegion region = whole(colours);
        region.permutation = {1, 0};
        const std::vector<unsigned char> before(bytes.size(), 9);
        set_samples(copy, before);
        copy.copy(&colours, region);
        EXPECT_EQ(bytes_of(copy), before) << "copied nothing";
        region.begin[0] = -1;
        copy.copy(&colours, region);
        EXPECT_THAT(bytes_of(copy), Each(0)) << "what lies outside makes all of it 0";
    }
}

TEST_F(StackCopy, IntoATypeThatIsNotNumericIsNoneButZeros)
{
    VStackRegion region = whole(source);
    region.dt = vela_dt_logical;
    region.permutation = {1, 0};
    AnyTypeStack logical;
    logical.copy(&source, region);
    EXPECT_EQ(logical.get_dt(), vela_dt_logical);
    EXPECT_THAT(bytes_of(logical), Each(0));

    const std::vector<unsigned char> before(6, 9);
    set_samples(logical, before);
    logical.copy(&source, region);
    EXPECT_EQ(bytes_of(logical), before) << "copied nothing";
    region.end[0] = 3;
    logical.copy(&source, region);
    EXPECT_THAT(bytes_of(logical), Each(0)) << "what lies outside makes all of it 0";
}

TEST_F(StackCopy, BetweenColoursConvertsTheRegionThatIsAll)
{
    AnyTypeStack colours({2}, vela_dt_rgb);
    set_samples<unsigned char>(colours, {1, 2, 3, 4, 5, 6});
    AnyTypeStack packed;
    packed.copy(&colours, vela_dt_packed_color);
    EXPECT_THAT(bytes_of(packed), ElementsAre(1, 2, 3, 0, 4, 5, 6, 0));
    AnyTypeStack back;
    back.copy(&packed, vela_dt_rgb);
    EXPECT_THAT(bytes_of(back), ElementsAre(3, 2, 1, 6, 5, 4));
}

TEST_F(StackCopy, FromATypeThatIsNotNumericFailsWithTheNewDescription)
{
    const AnyTypeStack logical({2, 3}, vela_dt_logical);
    VStackRegion region = whole(logical);
    region.permutation = {1, 0};
    region.dt = vela_dt_uint8;
    EXPECT_VELA_ERROR_IN(target.copy(&logical, region), "VStackInterface::get_iterator", "sources/stacks", -1,
                         "Invalid type!");
    EXPECT_THAT(target.get_sizes(), ElementsAre(3, 2));
    EXPECT_THAT(bytes_of(target), Each(0));
    expect_source_line([&] { target.copy(&logical, region); }, "sources/stacks/VStackImp_copy.cpp", "Invalid type!");
}

TEST_F(StackCopy, FromATypeThatIsNotNumericFailsAlsoWhereTheRegionIsEmptyAlongACut)
{
    const AnyTypeStack logical({2, 3}, vela_dt_logical);
    VStackRegion region = whole(logical);
    region.begin[1] = 1;
    region.end[1] = 1;
    region.permutation = {0};
    region.dt = vela_dt_uint8;
    EXPECT_VELA_ERROR(target.copy(&logical, region), -1, "Invalid type!");
    region.dt = vela_dt_logical;
    AnyTypeStack other;
    EXPECT_NO_THROW(other.copy(&logical, region)) << "no such iterator is asked for";
}

TEST_F(StackCopy, FromATypeThatIsNotNumericCopiesNothingOfWhatItDoesNotHave)
{
    const AnyTypeStack logical({2, 3}, vela_dt_logical);
    VStackRegion region = whole(logical);
    region.begin[1] = 3;
    region.end[1] = 4;
    region.dt = vela_dt_uint8;
    target.copy(&logical, region);
    EXPECT_THAT(samples_of<std::uint8_t>(target), ElementsAre(0, 0));
}

TEST_F(StackCopy, ToATypeThatTheRecordLacksFails)
{
    EXPECT_THROW_TEXT(target.copy(&source, vela_dt_uint64), std::invalid_argument, "Unsupported data type");
    EXPECT_EQ(target.get_dt(), vela_dt_uint64);
}

TEST_F(StackCopy, OfAnInvalidRegionFailsAndChangesNothing)
{
    target.copy(&source, vela_dt_none);
    VStackRegion region = whole(source);
    region.permutation = {0, 0};
    EXPECT_VELA_ERROR(target.copy(&source, region), -15, "Invalid permutation!");
    region.permutation = {0, 2};
    EXPECT_VELA_ERROR(target.copy(&source, region), -15, "Invalid permutation!");
    region = whole(source);
    region.begin[1] = 2;
    region.end[1] = 1;
    EXPECT_VELA_ERROR(target.copy(&source, region), -1, "Called on invalid region!");
    region = whole(source);
    region.end.pop_back();
    EXPECT_VELA_ERROR(target.copy(&source, region), -1, "Called on invalid region!");
    EXPECT_EQ(bytes_of(target), bytes_of(source));
}

TEST_F(StackCopy, OfTooLargeARegionFailsWithTheOldBlock)
{
    target.copy(&source, vela_dt_none);
    VStackRegion region = whole(source);
    region.end = {INT64_MAX - 1, 1};
    EXPECT_VELA_ERROR(target.copy(&source, region), -1, "Out of memory");
    EXPECT_THAT(target.get_sizes(), ElementsAre(std::uint64_t{INT64_MAX - 1}, 1));
    EXPECT_EQ(target.get_block_size(), 12u);
    EXPECT_EQ(std::memcmp(target.get_data_ptr(), source.get_data_ptr(), 12), 0);
    region.end = {INT64_MAX - 1, INT64_MAX - 1};
    EXPECT_VELA_ERROR(target.copy(&source, region), -1, "The product exceeds the maximum size.");
}

TEST_F(StackCopy, OntoItselfIsAsIfItHadBeenCopiedFirst)
{
    VStackImp stack = counting<std::uint16_t>({2, 3}, vela_dt_uint16);
    VStackRegion region = whole(stack);
    region.permutation = {1, 0};
    stack.copy(&stack, region);
    EXPECT_THAT(stack.get_sizes(), ElementsAre(3, 2));
    EXPECT_THAT(samples_of<std::uint16_t>(stack), ElementsAre(0, 2, 4, 1, 3, 5));
    stack.copy(&stack, vela_dt_double);
    EXPECT_THAT(samples_of<double>(stack), ElementsAre(0, 2, 4, 1, 3, 5));
    stack.copy(&stack, vela_dt_none);
    EXPECT_THAT(samples_of<double>(stack), ElementsAre(0, 2, 4, 1, 3, 5));
}

TEST_F(StackCopy, OntoOneThatSharesTheBlockIsAsIfItHadBeenCopiedFirst)
{
    VStackImp stack = counting<std::uint16_t>({2, 3}, vela_dt_uint16);
    VStackImp sharing(stack);
    VStackRegion region = whole(stack);
    region.begin = {-1, 0};
    region.permutation = {1, 0};
    region.dt = vela_dt_int32;
    sharing.copy(&stack, region);
    EXPECT_THAT(sharing.get_sizes(), ElementsAre(3, 3));
    EXPECT_THAT(samples_of<std::int32_t>(sharing), ElementsAre(0, 0, 0, 0, 2, 4, 1, 3, 5));
    EXPECT_THAT(stack.get_sizes(), ElementsAre(2, 3)) << "its description is its own";
    EXPECT_EQ(stack.get_block_size(), 36u);
}

/// Changes sizes behind the back of `copy`.
class OtherSizes : public VStackImp
{
public:
    using VStackImp::create;
    void create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) override
    {
        std::vector<std::uint64_t> other = new_sizes;
        other[0] += 1;
        VStackImp::create(other, new_dt);
    }
};

TEST_F(StackCopy, WithSizesThatAreNotThoseOfTheRegionIsAnInternalError)
{
    OtherSizes other;
    EXPECT_VELA_ERROR_IN(other.copy(&source, vela_dt_none), "VStackImp::copy", "sources/stacks", -1, "Internal error!");
    EXPECT_THAT(bytes_of(other), Each(0));
}

} // namespace
