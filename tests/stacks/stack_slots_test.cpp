// The order of virtual operations, on which other compiled code counts.

#include "support/slot_of.h"

#include <VelaStacks/VStack.h>
#include <VelaStacks/VStackRegion.h>
#include <VelaStacks/iterators.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <vector>

namespace {

#ifdef VELA_TEST_HAS_SLOTS

TEST(StackSlots, OwnOperationsStandInTheirOrderBehindThoseOfTheDescription)
{
    using Stack = VStackInterface;
    // 41 operations of the description, and its destructor, which takes two slots.
    constexpr std::ptrdiff_t first = 43;
    EXPECT_EQ(slot_of(static_cast<void (Stack::*)(const Stack*, const VStackRegion&)>(&Stack::copy)), first);
    EXPECT_EQ(slot_of(static_cast<void (Stack::*)(const Stack*, vela_dt)>(&Stack::copy)), first + 1);
    EXPECT_EQ(slot_of(&Stack::destroy), first + 2);
    EXPECT_EQ(slot_of(static_cast<const unsigned char* (Stack::*)() const>(&Stack::get_data_ptr)), first + 3);
    EXPECT_EQ(slot_of(static_cast<unsigned char* (Stack::*)()>(&Stack::get_data_ptr)), first + 4);
    EXPECT_EQ(slot_of(&Stack::share), first + 5);
}

using Base = VStackInterface::iterator_base;

template <class X>
std::ptrdiff_t write_slot()
{
    return slot_of(static_cast<void (Base::*)(const X&)>(&Base::set_value));
}

template <class X>
std::ptrdiff_t read_slot()
{
    return slot_of(static_cast<void (Base::*)(X&) const>(&Base::get_value));
}

/// A scalar and complex of it.
template <class X>
void expect_slots(std::ptrdiff_t write)
{
    EXPECT_EQ(write_slot<X>(), write);
    EXPECT_EQ(write_slot<std::complex<X>>(), write + 1);
    EXPECT_EQ(read_slot<X>(), write + 20);
    EXPECT_EQ(read_slot<std::complex<X>>(), write + 21);
}

TEST(IteratorSlots, WritesStandInTheirOrderAndReadsBehindThem)
{
    expect_slots<std::uint64_t>(0);
    expect_slots<std::uint32_t>(2);
    expect_slots<std::uint16_t>(4);
    expect_slots<std::uint8_t>(6);
    expect_slots<std::int64_t>(8);
    expect_slots<std::int32_t>(10);
    expect_slots<std::int16_t>(12);
    expect_slots<char>(14);
    expect_slots<double>(16);
    expect_slots<float>(18);
}

using Iterator = VStackInterface::iterator<float>;

/// Differs from another of its kind by the destructor alone.
template <int number>
class WithOwnDestructor : public Iterator
{
public:
    using Iterator::Iterator;
    ~WithOwnDestructor() override { std::fill(std::begin(filler), std::end(filler), number); }

private:
    volatile int filler[3] = {};
};

TEST(IteratorSlots, DestructorStandsLast)
{
    VStackImp stack;
    stack.create({1}, vela_dt_single);
    VStackRegion region;
    region.create(&stack, vela_dt_none);
    const WithOwnDestructor<1> first(&stack, region);
    const WithOwnDestructor<2> second(&stack, region);
    const void* const* first_table = nullptr;
    const void* const* second_table = nullptr;
    std::memcpy(&first_table, static_cast<const void*>(&first), sizeof first_table);
    std::memcpy(&second_table, static_cast<const void*>(&second), sizeof second_table);
    std::vector<std::size_t> different;
    for (std::size_t i = 0; i < 42; ++i)
        if (first_table[i] != second_table[i])
            different.push_back(i);
    EXPECT_EQ(different, (std::vector<std::size_t>{40, 41})); // complete object, and deleting
}

/// Looks at the fields, which other compiled code reads too.
class Fields : public Iterator
{
public:
    using Iterator::Iterator;
    std::uint64_t words(std::size_t index) const
    {
        std::uint64_t word = 0;
        std::memcpy(&word, reinterpret_cast<const unsigned char*>(this) + 8 * index, sizeof word);
        return word;
    }
    std::uint64_t address(const void* field) const { return reinterpret_cast<std::uintptr_t>(field); }
    void expect_order() const
    {
        EXPECT_EQ(words(1), rank);
        EXPECT_EQ(words(2), address(position));
        EXPECT_EQ(words(3), address(sizes));
        EXPECT_EQ(words(4), address(strides));
        EXPECT_EQ(words(5), address(data));
        EXPECT_EQ(words(6) & 0xFF, at_end() ? 1u : 0u);
    }
    void expect_one_allocation() const
    {
        EXPECT_EQ(position, sizes + rank);
        EXPECT_EQ(strides, position + rank);
    }
    void expect_walk(std::vector<std::uint64_t> extents, std::vector<std::uint64_t> steps) const
    {
        EXPECT_EQ(std::vector<std::uint64_t>(sizes, sizes + rank), extents);
        EXPECT_EQ(std::vector<std::uint64_t>(strides, strides + rank), steps);
    }
};

TEST(IteratorFields, StandInTheirOrder)
{
    VStackImp stack;
    stack.create({3, 2}, vela_dt_single);
    VStackRegion region;
    region.create(&stack, vela_dt_none);
    region.permutation = {1, 0};
    Fields walk(&stack, region);
    walk.expect_order();
    walk.expect_one_allocation();
    walk.expect_walk({2, 3}, {12, 4});
    while (!walk.at_end())
        walk.advance();
    walk.expect_order();
    region.end = {0, 2};
    const Fields empty(&stack, region);
    empty.expect_order();
    EXPECT_EQ(empty.words(3), 0u) << "nothing is allocated";
}

#endif

} // namespace
