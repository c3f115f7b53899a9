// Storage of values grows without copying them.
#include "props/attachment.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VProparray.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using prop_test::attachment;
using prop_test::number_of;
using Members = std::vector<std::pair<std::string, VProp>>;

const VProp& value_of(const VProp& element)
{
    return element;
}
const VProp& value_of(const std::pair<std::string, VProp>& element)
{
    return element.second;
}
VProp& value_of(VProp& element)
{
    return element;
}
VProp& value_of(std::pair<std::string, VProp>& element)
{
    return element.second;
}

template <class Vector>
class PropReserve : public testing::Test
{
protected:
    PropReserve() : v(3)
    {
        int number = 0;
        for (auto& element : v)
        {
            value_of(element) = number++;
            value_of(element).set_info(attachment(number));
        }
    }

    Vector v;
};
using Vectors = testing::Types<std::vector<VProp>, Members>;
TYPED_TEST_SUITE(PropReserve, Vectors);

TYPED_TEST(PropReserve, MakesExactlyTheCapacityThatIsAskedFor)
{
    for (const std::size_t n : {4u, 5u, 17u, 1000u})
    {
        vela_prop_reserve(this->v, n);
        EXPECT_EQ(this->v.capacity(), n);
        EXPECT_EQ(this->v.size(), 3u);
    }
}

TYPED_TEST(PropReserve, DoesNothingBelowTheCapacity)
{
    vela_prop_reserve(this->v, 4);
    const auto* const data = this->v.data();
    for (const std::size_t n : {3u, 2u, 0u})
    {
        vela_prop_reserve(this->v, n);
        EXPECT_EQ(this->v.data(), data);
        EXPECT_EQ(this->v.capacity(), 4u);
    }
}

TYPED_TEST(PropReserve, ReallocatesAtTheCapacity)
{
    vela_prop_reserve(this->v, 4);
    const auto* const data = this->v.data();
    vela_prop_reserve(this->v, 4);
    EXPECT_NE(this->v.data(), data);
    EXPECT_EQ(this->v.capacity(), 4u);
    EXPECT_EQ(number_of(value_of(this->v[2])), 3);
}

TYPED_TEST(PropReserve, KeepsAttachmentsContainersAndLocks)
{
    VProp outside(value_of(this->v[1]));
    EXPECT_TRUE(value_of(this->v[2]).lock());
    std::vector<const void*> addresses;
    for (const auto& element : this->v)
        addresses.push_back(value_of(element).value_ptr());
    vela_prop_reserve(this->v, 100);
    for (std::size_t i = 0; i < 3; ++i)
    {
        const VProp& value = value_of(static_cast<const TypeParam&>(this->v)[i]);
        EXPECT_EQ(value.value_ptr(), addresses[i]);
        EXPECT_EQ(number_of(value), static_cast<int>(i) + 1);
        EXPECT_EQ(value.template get<int>(), static_cast<int>(i));
    }
    EXPECT_FALSE(outside.lock()) << "still shared with the element";
    const VProp copy(value_of(this->v[2]));
    EXPECT_NE(copy.value_ptr(), addresses[2]) << "still locked";
}

TYPED_TEST(PropReserve, OfNoElements)
{
    TypeParam empty;
    vela_prop_reserve(empty, 0);
    EXPECT_EQ(empty.capacity(), 0u);
    vela_prop_reserve(empty, 7);
    EXPECT_EQ(empty.capacity(), 7u);
    EXPECT_TRUE(empty.empty());
}

TYPED_TEST(PropReserve, KeepsEmptyValuesWithTheirAttachment)
{
    value_of(this->v[0]).clear();
    vela_prop_reserve(this->v, 50);
    EXPECT_TRUE(value_of(this->v[0]).empty());
    EXPECT_EQ(number_of(value_of(this->v[0])), 1);
}

TEST(PropReserveOfMembers, KeepsTheKeys)
{
    Members members;
    members.emplace_back("a key that is too long for the string itself", VProp(1));
    members.emplace_back(std::string("b\0c", 3), VProp(2));
    vela_prop_reserve(members, 20);
    EXPECT_EQ(members[0].first, "a key that is too long for the string itself");
    EXPECT_EQ(members[1].first, std::string("b\0c", 3));
}

TEST(PropReserveOfAStruct, TakesTheStructAsItsVector)
{
    VPropstruct tree;
    tree["a"] = 1;
    tree["a"].set_info(attachment(4));
    vela_prop_reserve(tree, 30);
    EXPECT_EQ(tree.capacity(), 30u);
    EXPECT_EQ(number_of(tree["a"]), 4);
}

TEST(PropReserveInGrowth, OfACellArrayKeepsAttachmentsAndLocks)
{
    VProparray<VProp> cells;
    cells.at({0, 1}, true) = 5;
    VProp& element = cells[1];
    element.set_info(attachment(9));
    EXPECT_TRUE(element.lock());
    const void* const address = element.value_ptr();
    cells.at({0, 20}, true);
    EXPECT_EQ(cells[1].value_ptr(), address);
    EXPECT_EQ(number_of(cells[1]), 9);
    cells.resize(50, false);
    cells.set_size({1, 70}, VProparrayBase::set_resize);
    EXPECT_EQ(cells[1].value_ptr(), address);
    EXPECT_EQ(number_of(cells[1]), 9);
    EXPECT_EQ(cells.capacity(), 70u);
    cells.resize(2, false);
    EXPECT_EQ(cells[1].value_ptr(), address) << "also where it shrinks";
    EXPECT_EQ(number_of(cells[1]), 9);
    cells.resize(2, true);
    EXPECT_TRUE(cells[1].empty());
    EXPECT_EQ(number_of(cells[1]), 0);
}

TEST(PropReserveInGrowth, OfAStructKeepsLocksAndTakesExactlyOneMore)
{
    VPropstruct tree;
    tree["a"] = 1;
    EXPECT_TRUE(tree["a"].lock());
    const void* const address = tree["a"].value_ptr();
    for (int i = 0; i < 40; ++i)
    {
        tree["m" + std::to_string(i)] = i;
        EXPECT_EQ(tree.capacity(), tree.size());
    }
    EXPECT_EQ(tree["a"].value_ptr(), address);
    EXPECT_NE(VProp(tree["a"]).value_ptr(), address);
}

}
