// The order of virtual operations, which other compiled code counts on.
#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackRegion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/slot_of.h"

#include <cstring>
#include <type_traits>

namespace {

#ifdef VELA_TEST_HAS_SLOTS

using Info = VStackInfoInterface;
using Axis = std::uint64_t;
using Sizes = std::vector<std::uint64_t>;
using Doubles = std::vector<double>;

template <class... Arguments>
using Setter = void (Info::*)(Arguments...);

TEST(DescriptionTable, BeginsWithWhatChangesTheDescription)
{
    EXPECT_EQ(slot_of(static_cast<Setter<const Sizes&, vela_dt>>(&Info::create)), 0);
    EXPECT_EQ(slot_of(static_cast<Setter<const Info*, vela_dt>>(&Info::create)), 1);
    EXPECT_EQ(slot_of(static_cast<Setter<const Info*, const VStackRegion&>>(&Info::create)), 2);
    EXPECT_EQ(slot_of(&Info::set_info), 3);
    EXPECT_EQ(slot_of(&Info::set_name), 4);
    EXPECT_EQ(slot_of(&Info::set_acquisition_date), 5);
    EXPECT_EQ(slot_of(&Info::set_description), 6);
    EXPECT_EQ(slot_of(static_cast<Setter<Axis, double>>(&Info::set_len)), 7);
    EXPECT_EQ(slot_of(static_cast<Setter<const Doubles&>>(&Info::set_len)), 8);
    EXPECT_EQ(slot_of(static_cast<Setter<Axis, double>>(&Info::set_off)), 9);
    EXPECT_EQ(slot_of(static_cast<Setter<const Doubles&>>(&Info::set_off)), 10);
    EXPECT_EQ(slot_of(&Info::set_labels), 11);
    EXPECT_EQ(slot_of(&Info::set_stack_position), 12);
    EXPECT_EQ(slot_of(&Info::set_col_labels), 13);
    EXPECT_EQ(slot_of(&Info::set_col_positions), 14);
    EXPECT_EQ(slot_of(&Info::set_label), 15);
    EXPECT_EQ(slot_of(&Info::set_units), 16);
    EXPECT_EQ(slot_of(&Info::set_data_units), 17);
}

TEST(DescriptionTable, GoesOnWithWhatReadsIt)
{
    EXPECT_EQ(slot_of(&Info::get_size), 18);
    EXPECT_EQ(slot_of(&Info::get_number_of_elements), 19);
    EXPECT_EQ(slot_of(&Info::get_rank), 20);
    EXPECT_EQ(slot_of(&Info::get_sizes), 21);
    EXPECT_EQ(slot_of(&Info::get_dt), 22);
    EXPECT_EQ(slot_of(&Info::get_description), 23);
    EXPECT_EQ(slot_of(&Info::get_name), 24);
    EXPECT_EQ(slot_of(&Info::get_lengths), 25);
    EXPECT_EQ(slot_of(&Info::get_offsets), 26);
    EXPECT_EQ(slot_of(&Info::get_labels), 27);
    EXPECT_EQ(slot_of(&Info::get_col_labels), 28);
    EXPECT_EQ(slot_of(&Info::get_col_positions), 29);
    EXPECT_EQ(slot_of(&Info::get_col_position), 30);
    EXPECT_EQ(slot_of(&Info::is_equidistant), 31);
    EXPECT_EQ(slot_of(&Info::get_stack_position), 32);
    EXPECT_EQ(slot_of(&Info::get_dimension_size), 33);
    EXPECT_EQ(slot_of(&Info::get_length), 34);
    EXPECT_EQ(slot_of(&Info::get_offset), 35);
    EXPECT_EQ(slot_of(&Info::get_label), 36);
    EXPECT_EQ(slot_of(&Info::get_units), 37);
    EXPECT_EQ(slot_of(&Info::get_data_units), 38);
    EXPECT_EQ(slot_of(&Info::get_meta_data_string), 39);
    EXPECT_EQ(slot_of(&Info::meta_data), 40);
}

/// Differs from another of its kind by the destructor alone.
template <int number>
class WithOwnDestructor : public VStackInfoImp
{
public:
    ~WithOwnDestructor() override { filler = number; }

private:
    volatile int filler = 0;
};

std::vector<const void*> table_of(const Info& info)
{
    const void* const* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&info), sizeof table);
    return std::vector<const void*>(table, table + 43);
}

TEST(DescriptionTable, EndsWithTheDestructor)
{
    const WithOwnDestructor<1> first;
    const WithOwnDestructor<2> second;
    const std::vector<const void*> first_table = table_of(first);
    const std::vector<const void*> second_table = table_of(second);
    std::vector<std::size_t> different;
    for (std::size_t i = 0; i < first_table.size(); ++i)
        if (first_table[i] != second_table[i])
            different.push_back(i);
    // One virtual destructor takes two slots: complete object, and deleting.
    EXPECT_THAT(different, testing::ElementsAre(41, 42));
}

TEST(DescriptionInterface, IsNotAssigned)
{
    EXPECT_FALSE((std::is_assignable_v<Info&, const Info&>));
}

template <class... Fields>
bool lie_in_this_order(const Fields&... fields)
{
    const std::vector<const void*> addresses{static_cast<const void*>(&fields)...};
    return std::ranges::is_sorted(addresses);
}

TEST(StackPosition, HasItsFieldsInTheirOrder)
{
    const VStackPosition position;
    EXPECT_TRUE(lie_in_this_order(position.labels, position.origin, position.matrix));
    EXPECT_EQ(static_cast<const void*>(&position), static_cast<const void*>(&position.labels));
}

TEST(StackRegion, HasItsFieldsInTheirOrder)
{
    const VStackRegion region;
    EXPECT_TRUE(lie_in_this_order(region.dt, region.begin, region.end, region.permutation));
    EXPECT_EQ(static_cast<const void*>(&region), static_cast<const void*>(&region.dt));
    const VStackPhysicalRegion physical(2);
    EXPECT_TRUE(lie_in_this_order(physical.dt, physical.lower, physical.upper, physical.matrix));
}

static_assert(std::is_abstract_v<VStackInfoInterface> && sizeof(VStackInfoInterface) == sizeof(void*),
              "an interface without data");

#endif

}
