// The order of virtual operations, which other compiled code counts on.
#include <VelaProps/VProp.h>
#include <VelaProps/VProparray.h>

#include <gtest/gtest.h>

#include "support/slot_of.h"

#include <cstddef>
#include <typeinfo>

namespace {

#ifdef VELA_TEST_HAS_SLOTS

template <class Class>
using Reading = const void* (Class::*)() const;
template <class Class>
using Writing = void* (Class::*)();

TEST(PropertyTables, OfAnArrayHasTwoOperations)
{
    EXPECT_EQ(slot_of(&VProparrayBase::count), 0);
    EXPECT_EQ(slot_of(static_cast<void (VProparrayBase::*)(std::size_t, bool)>(&VProparrayBase::resize)), 1);
}

TEST(PropertyTables, OfAValueHasTwoOperations)
{
    EXPECT_EQ(slot_of(static_cast<Reading<VProp>>(&VProp::value_ptr)), 0);
    EXPECT_EQ(slot_of(static_cast<Writing<VProp>>(&VProp::value_ptr)), 1);
}

TEST(PropertyTables, OfAContainerBeginsWithTheDestructor)
{
    using Placeholder = VProp::placeholder;
    // One virtual destructor takes two slots: complete object, and deleting.
    EXPECT_EQ(slot_of(static_cast<const std::type_info& (Placeholder::*)() const>(&Placeholder::type)), 2);
    EXPECT_EQ(slot_of(static_cast<Reading<Placeholder>>(&Placeholder::value_ptr)), 3);
    EXPECT_EQ(slot_of(static_cast<Writing<Placeholder>>(&Placeholder::value_ptr)), 4);
    EXPECT_EQ(slot_of(&Placeholder::clone), 5);
    EXPECT_EQ(slot_of(&Placeholder::get_id), 6);
}

TEST(PropertyTables, AreFollowedByTheFieldsInTheirOrder)
{
    const VProp::holder<double> container(1.5);
    const char* const start = static_cast<const char*>(static_cast<const void*>(&container));
    const auto offset_of = [start](const void* field) { return static_cast<const char*>(field) - start; };
    EXPECT_EQ(offset_of(&container.refcount), 8);
    EXPECT_EQ(offset_of(&container.locked), 16);
    EXPECT_EQ(offset_of(&container.value), 24);

    const VProparray<int> array;
    const char* const array_start = static_cast<const char*>(static_cast<const void*>(&array));
    EXPECT_EQ(static_cast<const char*>(static_cast<const void*>(&array.userbits)) - array_start, 8);
    EXPECT_EQ(sizeof(VProparrayBase), 16 + sizeof(std::vector<std::size_t>));
    EXPECT_EQ(static_cast<const char*>(static_cast<const void*>(static_cast<const std::vector<int>*>(&array))) -
                  array_start,
              40);
}

#endif

}
