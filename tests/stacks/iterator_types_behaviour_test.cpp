// Every sample type as the type of a stack and as the type in which its samples are read and written.
#include <VelaStacks/iterators.h>

#include "naive_samples.h"
#include "open_stack.h"

#include "support/allocation_watch.h"
#include "support/expect_vela_error.h"
#include "support/slot_of.h"

namespace {

using std::complex;
using Walk = VStackInterface::iterator_base;

struct Offered
{
    vela_dt dt;
    void (*read_and_write)(const naive::SampleType& stack_type);
    void (*walk_typed)();
};

/// Samples of any type read as X, and an X written to them.
template <class X, vela_dt x_dt>
void read_and_write(const naive::SampleType& stack_type)
{
    SCOPED_TRACE(testing::Message() << std::hex << "stack of " << stack_type.dt << ", value of " << x_dt);
    std::mt19937_64 random(static_cast<std::uint64_t>(stack_type.dt) * 31 + static_cast<std::uint64_t>(x_dt));
    constexpr std::uint64_t count = 40;
    naive::OpenStack stack({count}, stack_type.dt);
    for (std::uint64_t i = 0; i < count; ++i)
        naive::store_random_sample(random, stack_type.dt, stack.get_data_ptr() + i * stack_type.size);

    const auto it = stack.get_iterator(naive::whole(stack));
    for (std::uint64_t i = 0; i < count; ++i, it->advance())
    {
        ASSERT_FALSE(it->at_end());
        unsigned char* const sample = stack.get_data_ptr() + i * stack_type.size;
        const std::string before = naive::digits(sample, stack_type.size);

        unsigned char expected[16];
        naive::convert(sample, stack_type.dt, expected, x_dt);
        X value;
        std::memset(static_cast<void*>(&value), 0x5A, sizeof value);
        it->get_value(value);
        unsigned char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        ASSERT_TRUE(naive::same_sample(bytes, expected, x_dt))
            << before << " read as " << naive::digits(bytes, sizeof bytes) << " for "
            << naive::digits(expected, sizeof bytes);
        ASSERT_EQ(naive::digits(sample, stack_type.size), before) << "reading has written";

        naive::store_random_sample(random, x_dt, bytes);
        std::memcpy(static_cast<void*>(&value), bytes, sizeof value);
        naive::convert(bytes, x_dt, expected, stack_type.dt);
        it->set_value(value);
        ASSERT_TRUE(naive::same_sample(sample, expected, stack_type.dt))
            << naive::digits(bytes, sizeof bytes) << " written as " << naive::digits(sample, stack_type.size) << " for "
            << naive::digits(expected, stack_type.size);
    }
    EXPECT_TRUE(it->at_end());
}

/// `iterator<T>` and `const_iterator<T>` take the stacks of T and no others.
template <class T, vela_dt t_dt>
void walk_typed()
{
    for (const naive::SampleType& stack_type : naive::sample_types)
    {
        SCOPED_TRACE(testing::Message() << std::hex << "stack of " << stack_type.dt << ", walk in " << t_dt);
        naive::OpenStack stack({3}, stack_type.dt);
        const VStackRegion region = naive::whole(stack);
        if (stack_type.dt != t_dt)
        {
            EXPECT_VELA_ERROR(VStackInterface::iterator<T>(&stack, region), -1, "Invalid iterator type!");
            EXPECT_VELA_ERROR(VStackInterface::const_iterator<T>(&stack, region), -1, "Invalid iterator type!");
            continue;
        }
        VStackInterface::iterator<T> it(&stack, region);
        VStackInterface::const_iterator<T> const_it(&stack, region);
        T* const first = reinterpret_cast<T*>(stack.get_data_ptr());
        for (int i = 0; i < 3; ++i)
        {
            EXPECT_FALSE(it.at_end());
            EXPECT_EQ(it++, first + i);
            EXPECT_EQ(const_it++, first + i);
        }
        EXPECT_TRUE(it.at_end());
        EXPECT_TRUE(const_it.at_end());
        EXPECT_EQ(it++, first + 2) << "behind the end is the last sample";
        EXPECT_NE(dynamic_cast<VStackInterface::const_iterator<T>*>(stack.get_iterator(region).get()), nullptr);
    }
}

template <class T, vela_dt dt>
constexpr Offered offered()
{
    return {dt, &read_and_write<T, dt>, &walk_typed<T, dt>};
}

/// In the order of the slots.
const Offered all_types[] = {
    offered<std::uint64_t, 0x1000>(),
    offered<complex<std::uint64_t>, 0x40001000>(),
    offered<std::uint32_t, 0x10>(),
    offered<complex<std::uint32_t>, 0x40000010>(),
    offered<std::uint16_t, 0x4>(),
    offered<complex<std::uint16_t>, 0x40000004>(),
    offered<std::uint8_t, 0x1>(),
    offered<complex<std::uint8_t>, 0x40000001>(),
    offered<std::int64_t, 0x2000>(),
    offered<complex<std::int64_t>, 0x40002000>(),
    offered<std::int32_t, 0x20>(),
    offered<complex<std::int32_t>, 0x40000020>(),
    offered<std::int16_t, 0x8>(),
    offered<complex<std::int16_t>, 0x40000008>(),
    offered<char, 0x2>(),
    offered<complex<char>, 0x40000002>(),
    offered<double, 0x80>(),
    offered<complex<double>, 0x40000080>(),
    offered<float, 0x40>(),
    offered<complex<float>, 0x40000040>(),
};

TEST(IteratorTypes, AStackOfAnyTypeIsReadAndWrittenInAnyType)
{
    for (const Offered& value_type : all_types)
    {
        for (const naive::SampleType& stack_type : naive::sample_types)
            value_type.read_and_write(stack_type);
        if (HasFatalFailure())
            return;
    }
}

TEST(IteratorTypes, ATypedIteratorWalksItsOwnTypeAndRefusesEveryOther)
{
    for (const Offered& type : all_types)
        type.walk_typed();
}

TEST(IteratorTypes, Uint8OfComplexSingle300Point7And9Is44)
{
    VStackImp stack(Ome::Type::complex64, {1}, Ome::DimensionOrder::XYZTC);
    naive::set_samples<float>(stack, {300.7F, 9.0F});
    std::uint8_t value = 0;
    stack.get_iterator(naive::whole(stack))->get_value(value);
    EXPECT_EQ(value, 44);
}

TEST(IteratorTypes, UnsignedSixtyFourBitsAreRoundedAsSignedOnesPlusTwoToTheSixtyFour)
{
    naive::OpenStack stack({1}, vela_dt_uint64);
    naive::set_samples<std::uint64_t>(stack, {0x8000000000000401U});
    const auto it = stack.get_iterator(naive::whole(stack));
    double wide = 0;
    it->get_value(wide);
    EXPECT_EQ(wide, 9223372036854775808.0);
    complex<float> narrow;
    it->get_value(narrow);
    EXPECT_EQ(narrow, complex<float>(9223372036854775808.0F, 0.0F));
}

TEST(IteratorTypes, WhatAnUnsignedSixtyFourBitsCannotHoldSetsTheTopBit)
{
    naive::OpenStack stack({1}, vela_dt_uint64);
    const auto it = stack.get_iterator(naive::whole(stack));
    for (const double value : {std::nan(""), 1e300, 9223372036854775808.0 * 4})
    {
        it->set_value(value);
        EXPECT_EQ(naive::samples_of<std::uint64_t>(stack)[0], 0x8000000000000000U) << value;
    }
}

TEST(IteratorTypes, ARealValueWrittenToAComplexSampleClearsTheImaginaryPart)
{
    VStackImp stack(Ome::Type::complex128, {1}, Ome::DimensionOrder::XYZTC);
    naive::set_samples<double>(stack, {1.0, 2.0});
    stack.get_iterator(naive::whole(stack))->set_value(std::int16_t{-3});
    EXPECT_EQ(naive::samples_of<double>(stack), (std::vector<double>{-3.0, 0.0}));
}

TEST(IteratorTypes, TypesThatAreNotNumericHaveNoIterator)
{
    for (const vela_dt dt : {vela_dt_rgb, vela_dt_packed_color, vela_dt_logical, vela_dt_cell, vela_dt_struct,
                             vela_dt_char, vela_dt_none, vela_dt_logical | vela_dt_complex})
    {
        SCOPED_TRACE(testing::Message() << std::hex << dt);
        const naive::OpenStack stack({2}, dt);
        ASSERT_EQ(stack.get_dt(), dt);
        EXPECT_VELA_ERROR(stack.get_iterator(naive::whole(stack)), -1, "Invalid type!");
        EXPECT_VELA_ERROR(VStackInterface::const_iterator<std::uint8_t>(&stack, naive::whole(stack)), -1,
                          "Invalid iterator type!");
    }
}

TEST(IteratorTypes, AStackWithoutATypeIsRefusedAlsoWhenThereIsNothingToWalk)
{
    const VStackImp stack(2);
    EXPECT_VELA_ERROR(stack.get_iterator(naive::whole(stack)), -1, "Invalid type!");
}

TEST(IteratorTypes, AWrongTypeIsNamedWithTheClassThatWasAskedFor)
{
    VStackImp stack(Ome::Type::int32, {2}, Ome::DimensionOrder::XYZTC);
    const VStackRegion region = naive::whole(stack);
    EXPECT_VELA_ERROR_IN(VStackInterface::iterator<complex<float>>(&stack, region),
                         "VStackInterface::iterator<class std::complex<float> >::iterator", "sources/stacks", -1,
                         "Invalid iterator type!");
    EXPECT_VELA_ERROR_IN(VStackInterface::const_iterator<complex<float>>(&stack, region),
                         "VStackInterface::const_iterator<class std::complex<float> >::const_iterator",
                         "sources/stacks", -1, "Invalid iterator type!");
    EXPECT_VELA_ERROR_IN(VStackInterface::iterator<float>(&stack, region), "VStackInterface::iterator<float>::iterator",
                         "sources/stacks", -1, "Invalid iterator type!");
    EXPECT_VELA_ERROR_IN(VStackInterface::const_iterator<double>(&stack, region),
                         "VStackInterface::const_iterator<double>::const_iterator", "sources/stacks", -1,
                         "Invalid iterator type!");
}

TEST(IteratorTypes, ReadingWritingAndMovingTakeNoMemory)
{
    VStackImp stack(Ome::Type::uint16, {4, 3}, Ome::DimensionOrder::XYZTC);
    const auto it = stack.get_iterator(naive::box({0, 0}, {4, 3}, {1, 0}));
    const vela_test::AllocationWatch watch;
    double value = 1;
    for (; !it->at_end(); it->advance())
    {
        it->set_value(value);
        it->get_value(value);
    }
    EXPECT_EQ(watch.count_allocations(), 0U);
}

#ifdef VELA_TEST_HAS_SLOTS
template <class X>
std::ptrdiff_t write_slot()
{
    return slot_of(static_cast<void (Walk::*)(const X&)>(&Walk::set_value));
}

template <class X>
std::ptrdiff_t read_slot()
{
    return slot_of(static_cast<void (Walk::*)(X&) const>(&Walk::get_value));
}

TEST(IteratorTypes, SlotsFollowTheTableWritesFirst)
{
    const std::vector<std::ptrdiff_t> writes = {write_slot<std::uint64_t>(), write_slot<complex<std::uint64_t>>(),
                                                write_slot<std::uint32_t>(), write_slot<std::uint16_t>(),
                                                write_slot<std::uint8_t>(),  write_slot<complex<std::uint8_t>>(),
                                                write_slot<std::int64_t>(),  write_slot<std::int32_t>(),
                                                write_slot<std::int16_t>(),  write_slot<char>(),
                                                write_slot<double>(),        write_slot<complex<float>>()};
    EXPECT_EQ(writes, (std::vector<std::ptrdiff_t>{0, 1, 2, 4, 6, 7, 8, 10, 12, 14, 16, 19}));
    const std::vector<std::ptrdiff_t> reads = {read_slot<std::uint64_t>(), read_slot<complex<std::uint64_t>>(),
                                               read_slot<std::uint32_t>(), read_slot<std::uint16_t>(),
                                               read_slot<std::uint8_t>(),  read_slot<complex<std::uint8_t>>(),
                                               read_slot<std::int64_t>(),  read_slot<std::int32_t>(),
                                               read_slot<std::int16_t>(),  read_slot<char>(),
                                               read_slot<double>(),        read_slot<complex<float>>()};
    EXPECT_EQ(reads, (std::vector<std::ptrdiff_t>{20, 21, 22, 24, 26, 27, 28, 30, 32, 34, 36, 39}));
}
#endif

} // namespace
