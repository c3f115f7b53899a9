#include <VelaFile/VFile.h>
#include <VelaFile/VFileAccess.h>
#include <VelaFile/VZippedSegment.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/slot_of.h"

#include <algorithm>
#include <cstring>
#include <vector>

using testing::ElementsAre;

namespace {

#ifdef VELA_TEST_HAS_SLOTS

TEST(VirtualTable, OperationsStandInTheirFixedOrder)
{
    EXPECT_EQ(slot_of(&VFileAccess::tell), 0);
    EXPECT_EQ(slot_of(&VFileAccess::seek), 1);
    EXPECT_EQ(slot_of(&VFileAccess::read), 2);
    EXPECT_EQ(slot_of(&VFileAccess::write), 3);
}

/// Differs from another of its kind by the destructor alone.
template <class Base, int number>
class WithOwnDestructor : public Base
{
public:
    ~WithOwnDestructor() override { std::fill(std::begin(filler), std::end(filler), number); }

private:
    volatile int filler[3] = {};
};

template <class Base>
std::vector<std::size_t> slots_that_a_destructor_changes()
{
    const WithOwnDestructor<Base, 1> first;
    const WithOwnDestructor<Base, 2> second;
    const void* const* first_table = nullptr;
    const void* const* second_table = nullptr;
    std::memcpy(&first_table, static_cast<const void*>(&first), sizeof first_table);
    std::memcpy(&second_table, static_cast<const void*>(&second), sizeof second_table);
    std::vector<std::size_t> slots;
    for (std::size_t i = 0; i < 6; ++i)
        if (first_table[i] != second_table[i])
            slots.push_back(i);
    return slots;
}

TEST(VirtualTable, DestructorStandsBehindTheOperations)
{
    // One virtual destructor takes two slots: complete object, and deleting.
    EXPECT_THAT(slots_that_a_destructor_changes<VFile>(), ElementsAre(4, 5));
    EXPECT_THAT(slots_that_a_destructor_changes<VZippedSegment>(), ElementsAre(4, 5));
}

#endif

} // namespace
