#include "stacks/any_type_stack.h"
#include "support/allocation_watch.h"
#include "support/expect_source_line.h"
#include "support/expect_vela_error.h"

#include <VelaStacks/VStackRegion.h>
#include <VelaStacks/iterators.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <stdexcept>
#include <type_traits>
#include <vector>

using namespace vela_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Base = VStackInterface::iterator_base;
template <class T>
using Iterator = VStackInterface::iterator<T>;
template <class T>
using ConstIterator = VStackInterface::const_iterator<T>;

static_assert(std::is_base_of_v<Base, Iterator<float>> && std::is_base_of_v<Base, ConstIterator<float>>);
static_assert(std::is_convertible_v<Iterator<float>*, Base*>, "a public base");
static_assert(std::is_abstract_v<Base> && std::has_virtual_destructor_v<Base>);
static_assert(!std::is_copy_constructible_v<Iterator<float>> && !std::is_copy_assignable_v<Iterator<float>>);
static_assert(sizeof(Iterator<double>) == sizeof(Base) && sizeof(ConstIterator<char>) == sizeof(Base));
static_assert(std::is_same_v<decltype(std::declval<Iterator<short>&>()++), short*>);
static_assert(std::is_same_v<decltype(std::declval<ConstIterator<short>&>()++), short*>, "not held to reading");

VStackRegion region_of(std::vector<std::int64_t> begin, std::vector<std::int64_t> end,
                       std::vector<std::uint64_t> permutation)
{
    VStackRegion region;
    region.begin = std::move(begin);
    region.end = std::move(end);
    region.permutation = std::move(permutation);
    return region;
}

VStackRegion whole(const VStackInterface& stack)
{
    VStackRegion region;
    region.create(&stack, vela_dt_none);
    return region;
}

/// The samples in the order of the walk.
std::vector<int> walk(const VStackInterface& stack, const VStackRegion& region)
{
    std::vector<int> samples;
    const boost::shared_ptr<Base> it = stack.get_iterator(region);
    for (; !it->at_end(); it->advance())
    {
        int sample = -1;
        it->get_value(sample);
        samples.push_back(sample);
    }
    return samples;
}

/// A stack of uint16 that counts from 0 on.
class Walk : public testing::Test
{
protected:
    static VStackImp counting(const std::vector<std::uint64_t>& sizes)
    {
        VStackImp stack;
        stack.create(sizes, vela_dt_uint16);
        count_up<std::uint16_t>(stack);
        return stack;
    }

    const VStackImp stack = counting({2, 3});
};

TEST_F(Walk, OfAWholeStackIsInTheOrderOfMemory)
{
    EXPECT_THAT(walk(stack, whole(stack)), ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST_F(Walk, GoesAlongTheFirstAxisOfThePermutationFastest)
{
    VStackRegion region = whole(stack);
    region.permutation = {1, 0};
    EXPECT_THAT(walk(stack, region), ElementsAre(0, 2, 4, 1, 3, 5));
}

TEST_F(Walk, OfABoxBeginsAtItsFirstSample)
{
    EXPECT_THAT(walk(stack, region_of({1, 1}, {2, 3}, {0, 1})), ElementsAre(3, 5));
    EXPECT_THAT(walk(stack, region_of({0, 2}, {2, 3}, {1, 0})), ElementsAre(4, 5));
}

TEST_F(Walk, StaysAtTheBeginOfAnAxisThatIsNotWalked)
{
    EXPECT_THAT(walk(stack, region_of({0, 1}, {2, 3}, {0})), ElementsAre(2, 3));
    EXPECT_THAT(walk(stack, region_of({1, 0}, {2, 3}, {1})), ElementsAre(1, 3, 5));
    EXPECT_THAT(walk(stack, region_of({0}, {2}, {0})), ElementsAre(0, 1)) << "the region does not reach axis 1";
}

TEST_F(Walk, GoesThroughThreeAxesInEveryOrder)
{
    const VStackImp cube = counting({2, 2, 2});
    const auto in_order = [&](std::vector<std::uint64_t> permutation) {
        return walk(cube, region_of({0, 0, 0}, {2, 2, 2}, std::move(permutation)));
    };
    EXPECT_THAT(in_order({0, 1, 2}), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
    EXPECT_THAT(in_order({0, 2, 1}), ElementsAre(0, 1, 4, 5, 2, 3, 6, 7));
    EXPECT_THAT(in_order({1, 0, 2}), ElementsAre(0, 2, 1, 3, 4, 6, 5, 7));
    EXPECT_THAT(in_order({1, 2, 0}), ElementsAre(0, 2, 4, 6, 1, 3, 5, 7));
    EXPECT_THAT(in_order({2, 0, 1}), ElementsAre(0, 4, 1, 5, 2, 6, 3, 7));
    EXPECT_THAT(in_order({2, 1, 0}), ElementsAre(0, 4, 2, 6, 1, 5, 3, 7));
}

TEST_F(Walk, OfAnEmptyRegionIsAtItsEndAtOnce)
{
    const boost::shared_ptr<Base> it = stack.get_iterator(region_of({1, 0}, {1, 3}, {0, 1}));
    EXPECT_TRUE(it->at_end());
    it->advance();
    EXPECT_TRUE(it->at_end());
    EXPECT_THAT(walk(stack, region_of({0, 2}, {2, 2}, {0})), IsEmpty()) << "empty along an axis that is not walked";
    EXPECT_THAT(walk(stack, region_of({5, 5}, {5, 5}, {9, 9, 9})), IsEmpty()) << "whatever else is wrong";
}

TEST_F(Walk, OfAnAxisWithoutPixelsIsAtItsEndAtOnce)
{
    const VStackImp empty = counting({2, 0, 3});
    EXPECT_THAT(walk(empty, whole(empty)), IsEmpty());
    VStackRegion region = whole(empty);
    region.end[1] = VStackRegion::unspecified; // not empty by itself
    EXPECT_THAT(walk(empty, region), IsEmpty());
}

TEST_F(Walk, OverNoAxesStaysOnItsSample)
{
    const boost::shared_ptr<Base> it = stack.get_iterator(region_of({1, 2}, {2, 3}, {}));
    for (int step = 0; step < 3; ++step, it->advance())
    {
        std::uint16_t sample = 0;
        it->get_value(sample);
        EXPECT_EQ(sample, 5);
        EXPECT_FALSE(it->at_end());
    }
}

TEST_F(Walk, StaysOnTheLastSampleAtItsEnd)
{
    const boost::shared_ptr<Base> it = stack.get_iterator(whole(stack));
    for (int step = 0; step < 20; ++step)
        it->advance();
    EXPECT_TRUE(it->at_end());
    int sample = -1;
    it->get_value(sample);
    EXPECT_EQ(sample, 5);
}

TEST_F(Walk, ReachesTheEndWithItsLastStepAndNotBefore)
{
    const boost::shared_ptr<Base> it = stack.get_iterator(whole(stack));
    for (int step = 0; step < 5; ++step)
    {
        it->advance();
        EXPECT_FALSE(it->at_end()) << step;
    }
    it->advance();
    EXPECT_TRUE(it->at_end());
}

TEST_F(Walk, DoesNotMoveWhenItReadsOrWrites)
{
    VStackImp written = counting({3});
    Iterator<std::uint16_t> it(&written, whole(written));
    it.advance();
    for (int i = 0; i < 3; ++i)
    {
        it.set_value(100.5);
        int sample = 0;
        it.get_value(sample);
        EXPECT_EQ(sample, 100);
    }
    EXPECT_THAT(samples_of<std::uint16_t>(written), ElementsAre(0, 100, 2));
}

TEST_F(Walk, GivesThePlaceOfASampleAndMovesOn)
{
    VStackImp written = counting({2, 2});
    VStackRegion region = whole(written);
    region.permutation = {1, 0};
    std::uint16_t next = 10;
    for (Iterator<std::uint16_t> it(&written, region); !it.at_end();)
        *it++ = next++;
    EXPECT_THAT(samples_of<std::uint16_t>(written), ElementsAre(10, 12, 11, 13));
    ConstIterator<std::uint16_t> read(&written, region);
    EXPECT_EQ(*read++, 10);
    EXPECT_EQ(*read++, 11);
}

TEST_F(Walk, OutsideTheStackIsRefused)
{
    const auto refused = [&](const VStackRegion& region)
    {
        EXPECT_VELA_ERROR_IN(stack.get_iterator(region), "VStackInterface::iterator_base::iterator_base",
                             "sources/stacks", -15, "Cannot create iterator over region exceeding the stack!");
    };
    refused(region_of({0, 0}, {3, 3}, {0, 1}));
    refused(region_of({-1, 0}, {2, 3}, {0, 1}));
    refused(region_of({0, 0, 0}, {2, 3, 1}, {0, 1, 2})); // an axis that the stack does not have
    refused(region_of({0, 3}, {2, 4}, {0}));             // a slice outside
    refused(region_of({0, -1}, {2, 1}, {0}));
    refused(region_of({-INT64_MAX, 0}, {0, 3}, {0, 1}));
    refused(region_of({0, 0}, {INT64_MAX - 1, 3}, {0, 1}));
}

TEST_F(Walk, OfAnInvalidRegionIsRefusedAsItIs)
{
    EXPECT_VELA_ERROR(stack.get_iterator(region_of({0, 0}, {2, 3}, {0, 0})), -15, "Invalid permutation!");
    EXPECT_VELA_ERROR(stack.get_iterator(region_of({0, 0}, {2, 3}, {2})), -15, "Invalid permutation!");
    EXPECT_VELA_ERROR(stack.get_iterator(region_of({0, 0}, {2}, {0})), -1, "Called on invalid region!");
}

TEST_F(Walk, DoesNotLeaveABlockThatSomebodyElseMadeSmaller)
{
    VStackImp owner = counting({100});
    const VStackImp copy(owner);
    owner.create({10}, vela_dt_uint16);
    ASSERT_EQ(copy.get_number_of_elements(), 100u);
    ASSERT_EQ(copy.get_block_size(), 20u);
    EXPECT_EQ(walk(copy, region_of({0}, {10}, {0})).size(), 10u);
    EXPECT_VELA_ERROR(walk(copy, region_of({0}, {11}, {0})), -15,
                      "Cannot create iterator over region exceeding the stack!");
    EXPECT_VELA_ERROR(walk(copy, region_of({50}, {51}, {})), -15,
                      "Cannot create iterator over region exceeding the stack!");
}

/// Bytes of its own, not those of the block.
class OtherBytes : public VStackImp
{
public:
    const unsigned char* get_data_ptr() const override { return bytes.data(); }
    unsigned char* get_data_ptr() override { return bytes.data(); }

    std::vector<unsigned char> bytes = {7, 8, 9};
};

TEST_F(Walk, BelievesADerivedClassThatGivesBytesOfItsOwn)
{
    OtherBytes derived;
    derived.create(std::vector<std::uint64_t>{3}, vela_dt_uint8);
    VStackImp sharing(derived);
    sharing.create(std::vector<std::uint64_t>{1}, vela_dt_uint8); // the block, not the bytes
    EXPECT_THAT(walk(derived, whole(derived)), ElementsAre(7, 8, 9));
}

TEST_F(Walk, TakesNoMemoryOnceItHasBegun)
{
    VStackImp cube = counting({3, 4, 5});
    VStackRegion region = whole(cube);
    region.permutation = {2, 0, 1};
    const boost::shared_ptr<Base> it = cube.get_iterator(region);
    Iterator<std::uint16_t> written(&cube, region);
    const AllocationWatch watch;
    double sum = 0;
    for (; !it->at_end(); it->advance())
    {
        double sample = 0;
        it->get_value(sample);
        sum += sample;
    }
    while (!written.at_end())
    {
        written.set_value(std::complex<double>(1.5, 2.5));
        ++*written++;
    }
    EXPECT_EQ(watch.count_allocations(), 0u);
    EXPECT_EQ(sum, 59 * 60 / 2);
    EXPECT_EQ(samples_of<std::uint16_t>(cube), std::vector<std::uint16_t>(60, 2));
}

TEST_F(Walk, ReadsSharedSamples)
{
    const char* const id = stack.share();
    EXPECT_NE(id, nullptr);
    EXPECT_THAT(walk(stack, whole(stack)), ElementsAre(0, 1, 2, 3, 4, 5));
}

template <class T>
void expect_refused(const char* function, const char* const_function)
{
    VStackImp stack;
    stack.create({2}, std::is_same_v<T, std::uint16_t> ? vela_dt_int8 : vela_dt_uint16);
    EXPECT_VELA_ERROR_IN(Iterator<T>(&stack, whole(stack)), function, "sources/stacks", -1, "Invalid iterator type!");
    EXPECT_VELA_ERROR_IN(ConstIterator<T>(&stack, whole(stack)), const_function, "sources/stacks", -1,
                         "Invalid iterator type!");
    EXPECT_VELA_ERROR(Iterator<T>(&stack, region_of({1}, {1}, {0})), -1, "Invalid iterator type!");
}

TEST(IteratorType, OfTheStackIsDemanded)
{
    expect_refused<std::complex<float>>("VStackInterface::iterator<class std::complex<float> >::iterator",
                                        "VStackInterface::const_iterator<class std::complex<float> >::const_iterator");
    expect_refused<float>("VStackInterface::iterator<float>::iterator",
                          "VStackInterface::const_iterator<float>::const_iterator");
    expect_refused<double>("VStackInterface::iterator<double>::iterator",
                           "VStackInterface::const_iterator<double>::const_iterator");
    expect_refused<char>("VStackInterface::iterator<char>::iterator",
                         "VStackInterface::const_iterator<char>::const_iterator");
    expect_refused<std::uint16_t>("VStackInterface::iterator<unsigned short>::iterator",
                                  "VStackInterface::const_iterator<unsigned short>::const_iterator");
    expect_refused<std::uint64_t>("VStackInterface::iterator<unsigned __int64>::iterator",
                                  "VStackInterface::const_iterator<unsigned __int64>::const_iterator");
}

TEST(IteratorType, IsComparedBehindTheRegion)
{
    VStackImp stack;
    stack.create({2}, vela_dt_uint16);
    EXPECT_VELA_ERROR(Iterator<float>(&stack, region_of({0}, {3}, {0})), -15,
                      "Cannot create iterator over region exceeding the stack!");
}

TEST(IteratorType, OutsideTheTableHasNoIterator)
{
    for (const vela_dt dt : {vela_dt_rgb, vela_dt_packed_color, vela_dt_logical})
    {
        const AnyTypeStack stack({2, 3}, dt);
        EXPECT_VELA_ERROR_IN(stack.get_iterator(whole(stack)), "VStackInterface::get_iterator", "sources/stacks", -1,
                             "Invalid type!");
        EXPECT_VELA_ERROR(stack.get_iterator(region_of({-5, 0}, {9, 9}, {0, 1})), -1, "Invalid type!");
        expect_source_line([&] { stack.get_iterator(whole(stack)); }, "sources/stacks/iterators.cpp", "Invalid type!");
    }
    EXPECT_VELA_ERROR(VStackImp(2).get_iterator(whole(VStackImp(2))), -1, "Invalid type!");
}

TEST(IteratorType, IsThatOfTheStackForAllTwenty)
{
    for (const vela_dt dt : iterator_types)
    {
        const AnyTypeStack stack({2, 3}, dt);
        std::uint64_t count = 0;
        for (const boost::shared_ptr<Base> it = stack.get_iterator(whole(stack)); !it->at_end(); it->advance())
            ++count;
        EXPECT_EQ(count, 6u) << dt;
    }
}

} // namespace
