// Who shares a container, who gets a clone, and what `own` and `lock` do.
#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace {

const void* address_of(const VProp& value)
{
    return value.value_ptr();
}

bool share(const VProp& a, const VProp& b)
{
    return address_of(a) == address_of(b);
}

TEST(VPropSharing, CopiesShareOneContainer)
{
    const VProp a(1.0);
    const VProp b(a);
    VProp c(5);
    c = b;
    EXPECT_TRUE(share(a, b));
    EXPECT_TRUE(share(a, c));
}

TEST(VPropSharing, WritingGetSeparatesTheTwo)
{
    VProp a(1.0);
    VProp b(a);
    b.get<double>();
    EXPECT_FALSE(share(a, b));
    b.get<double>() = 2.0;
    EXPECT_EQ(static_cast<const VProp&>(a).get<double>(), 1.0);
}

TEST(VPropSharing, ReadingGetKeepsThemTogether)
{
    const VProp a(1.0);
    const VProp b(a);
    EXPECT_EQ(b.get<double>(), 1.0);
    EXPECT_TRUE(share(a, b));
}

TEST(VPropSharing, AddressAndArrayBaseAreGivenWithoutSeparating)
{
    VProp a{VProparray<int>()};
    VProp b(a);
    EXPECT_EQ(b.value_ptr(), a.value_ptr());
    EXPECT_EQ(b.get_arr(true), a.get_arr(true));
    EXPECT_TRUE(share(a, b));
}

TEST(VPropSharing, OwnKeepsTheContainerOfASingleOwner)
{
    VProp a(1.0);
    const void* const address = address_of(a);
    a.own();
    EXPECT_EQ(address_of(a), address);
    {
        const VProp copy(a);
    }
    a.own();
    EXPECT_EQ(address_of(a), address) << "the copy is gone";
}

TEST(VPropSharing, OwnLeavesTheOldContainerToTheOthers)
{
    VProp a(1.0);
    const VProp b(a);
    const VProp c(a);
    const void* const address = address_of(a);
    a.own();
    EXPECT_NE(address_of(a), address);
    EXPECT_EQ(address_of(b), address);
    EXPECT_TRUE(share(b, c));
    EXPECT_FALSE(b.lock()) << "still two of them";
    EXPECT_TRUE(a.lock());
}

TEST(VPropSharing, LastOwnerKeepsTheContainerWithoutAClone)
{
    VProp a(1.0);
    VProp b(a);
    const void* const address = address_of(a);
    a.clear();
    EXPECT_TRUE(a.empty());
    b.own();
    EXPECT_EQ(address_of(b), address);
}

TEST(VPropSharing, ClearLeavesTheOthersTheirValue)
{
    VProp a(1.0);
    const VProp b(a);
    a.clear();
    EXPECT_TRUE(a.empty());
    EXPECT_EQ(a.get_id(), 0);
    EXPECT_EQ(b.get<double>(), 1.0);
    EXPECT_TRUE(b.lock());
}

TEST(VPropSharing, AssigningReleasesTheOldContainer)
{
    VProp a(1.0);
    const VProp b(a);
    a = VProp(2.0);
    EXPECT_TRUE(b.lock());
    VProp c(b); // b is locked now: a clone
    const VProp d(c);
    c = 3;
    EXPECT_TRUE(d.lock());
}

TEST(VPropSharing, AssigningItselfKeepsTheContainer)
{
    VProp a(1.0);
    const void* const address = address_of(a);
    const VProp& alias = a;
    a = alias;
    EXPECT_EQ(address_of(a), address);
    EXPECT_TRUE(a.lock());
}

TEST(VPropSharing, SwapsExchangeContainersWithoutSharing)
{
    VProp a(1.0);
    VProp b(2);
    const void* const address_a = address_of(a);
    const void* const address_b = address_of(b);
    EXPECT_EQ(&a.swap(b), &a);
    EXPECT_EQ(address_of(a), address_b);
    EXPECT_EQ(address_of(b), address_a);
    EXPECT_EQ(&a.swap_value(b), &a);
    EXPECT_EQ(address_of(a), address_a);
    EXPECT_EQ(address_of(b), address_b);
    a.swap(a);
    a.swap_value(a);
    EXPECT_EQ(address_of(a), address_a);
}

TEST(VPropSharing, SwapWithAnEmptyOneEmpties)
{
    VProp a(1.0);
    VProp b;
    a.swap(b);
    EXPECT_TRUE(a.empty());
    EXPECT_EQ(b.get<double>(), 1.0);
    b.swap_value(a);
    EXPECT_TRUE(b.empty());
}

TEST(VPropLock, FailsWhileACopyIsThere)
{
    VProp a(1.0);
    {
        const VProp copy(a);
        EXPECT_FALSE(a.lock());
        EXPECT_FALSE(copy.lock());
        const VProp another(a);
        EXPECT_TRUE(share(a, another)) << "the failed lock changed nothing";
    }
    EXPECT_TRUE(a.lock());
}

TEST(VPropLock, MakesLaterCopiesPrivate)
{
    VProp a(1.0);
    EXPECT_TRUE(a.lock());
    VProp copy(a);
    EXPECT_FALSE(share(a, copy));
    copy.get<double>() = 2.0;
    EXPECT_EQ(static_cast<const VProp&>(a).get<double>(), 1.0);
    VProp assigned;
    assigned = a;
    EXPECT_FALSE(share(a, assigned));
    EXPECT_EQ(assigned.get<double>(), 1.0);
}

TEST(VPropLock, KeepsTheAddressThroughWritingAndOwning)
{
    VProp a(1.0);
    double* const address = &a.get<double>();
    EXPECT_TRUE(a.lock());
    const VProp copy(a);
    a.own();
    EXPECT_EQ(&a.get<double>(), address);
    *address = 3.0;
    EXPECT_EQ(static_cast<const VProp&>(a).get<double>(), 3.0);
    EXPECT_EQ(copy.get<double>(), 1.0);
}

TEST(VPropLock, MayBeRepeated)
{
    const VProp a(1.0);
    EXPECT_TRUE(a.lock());
    const VProp copy(a);
    EXPECT_TRUE(a.lock()) << "the copy has a container of its own";
}

TEST(VPropLock, IsNotPassedToTheClone)
{
    const VProp a = VProp(1.0);
    EXPECT_TRUE(a.lock());
    const VProp clone(a);
    const VProp copy_of_clone(clone);
    EXPECT_TRUE(share(clone, copy_of_clone));
}

TEST(VPropLock, OfAnEmptyValueIsTrueAndChangesNothing)
{
    VProp value;
    EXPECT_TRUE(value.lock());
    EXPECT_TRUE(value.empty());
    value = 1;
    const VProp copy(value);
    EXPECT_TRUE(share(value, copy));
}

TEST(VPropLock, TravelsWithTheContainerInSwaps)
{
    VProp locked(1.0);
    EXPECT_TRUE(locked.lock());
    VProp other(2);
    locked.swap_value(other);
    EXPECT_TRUE(share(locked, VProp(locked)));
    EXPECT_FALSE(share(other, VProp(other)));
    locked.swap(other);
    EXPECT_FALSE(share(locked, VProp(locked)));
}

TEST(VPropLock, EndsWithTheContainer)
{
    VProp value(1.0);
    EXPECT_TRUE(value.lock());
    value = 2.0;
    EXPECT_TRUE(share(value, VProp(value)));
    EXPECT_TRUE(value.lock());
    value.clear();
    value = 3;
    EXPECT_TRUE(share(value, VProp(value)));
}

TEST(VPropLock, IsLostInAssigningItself)
{
    // The temporary copy is a clone, and a clone is unlocked.
    VProp value(1.0);
    EXPECT_TRUE(value.lock());
    const VProp& alias = value;
    value = alias;
    EXPECT_EQ(static_cast<const VProp&>(value).get<double>(), 1.0);
    EXPECT_TRUE(share(value, VProp(value)));
}

TEST(VPropClone, SharesItsMembersUntilTheyAreReached)
{
    VProp a;
    a["x"] = 1;
    a["y"] = 2;
    VProp b(a);
    b.own();
    const VPropstruct& in_a = static_cast<const VProp&>(a).get<VPropstruct>();
    const VPropstruct& in_b = static_cast<const VProp&>(b).get<VPropstruct>();
    EXPECT_NE(&in_a, &in_b);
    EXPECT_TRUE(share(in_a.begin()->second, in_b.begin()->second));
    b["x"].get<int>() = 7;
    EXPECT_FALSE(share(in_a.find("x")->second, in_b.find("x")->second));
    EXPECT_TRUE(share(in_a.find("y")->second, in_b.find("y")->second));
    EXPECT_EQ(in_a.find("x")->second.get<int>(), 1);
}

TEST(VPropClone, OfACellArraySharesItsElements)
{
    VProp a;
    a(0) = 1.0;
    a(1) = 2.0;
    VProp b(a);
    b(0).get<double>() = 9.0;
    const VProp& in_a = a;
    const VProp& in_b = b;
    EXPECT_EQ(in_a(0).get<double>(), 1.0);
    EXPECT_FALSE(share(in_a(0), in_b(0)));
    EXPECT_TRUE(share(in_a(1), in_b(1)));
}

TEST(VPropClone, ClonesLockedMembers)
{
    VProp a;
    a["x"] = 1;
    a["y"] = 2;
    EXPECT_TRUE(a["x"].lock());
    VProp b(a);
    b.own();
    EXPECT_FALSE(share(a.getp("x", false), b.getp("x", false)));
    EXPECT_TRUE(share(a.getp("y", false), b.getp("y", false)));
    EXPECT_TRUE(a == b);
}

TEST(VPropClone, OfLockedMembersIsUnlocked)
{
    VProp a;
    a["x.y"] = 1;
    EXPECT_TRUE(a.getp("x", false).lock());
    EXPECT_TRUE(a.lock());
    VProp b(a);
    const VProp& clone = b.getp("x", false);
    EXPECT_NE(address_of(clone), address_of(a.getp("x", false)));
    EXPECT_TRUE(share(clone, VProp(clone)));
    const VProp root(b);
    EXPECT_TRUE(share(b, root));
}

TEST(VPropClone, OfALockedStructIsOneLevelDeep)
{
    VProp a;
    a["x.y"] = 1;
    EXPECT_TRUE(a.lock());
    const VProp b(a);
    const VPropstruct& in_a = static_cast<const VProp&>(a).get<VPropstruct>();
    const VPropstruct& in_b = b.get<VPropstruct>();
    EXPECT_NE(&in_a, &in_b);
    EXPECT_TRUE(share(in_a.begin()->second, in_b.begin()->second));
}

TEST(VPropClone, KeepsShapeAndFlagsOfAnArray)
{
    VProp a;
    VProparray<int>& array = a.ensure_array<int>(6);
    array.set_size(2, 3, VProparrayBase::absent, VProparrayBase::absent, VProparrayBase::set_strict);
    array.userbits = 5;
    VProp b(a);
    const VProparray<int>& clone = b.get<VProparray<int>>();
    EXPECT_NE(&clone, &array);
    EXPECT_EQ(clone.get_size(false), (std::vector<std::size_t>{2, 3}));
    EXPECT_EQ(clone.userbits, 5u);
}

TEST(VPropSharing, ContainerLivesAsLongAsItsLastOwner)
{
    auto first = std::make_unique<VProp>(VPropstring(L"long enough for the heap, whatever the string is"));
    const VProp second(*first);
    const void* const address = address_of(second);
    first.reset();
    EXPECT_EQ(address_of(second), address);
    EXPECT_TRUE(second.get<VPropstring>() == L"long enough for the heap, whatever the string is");
}

TEST(VPropLock, OfAValueThatWasMadePrivateSucceeds)
{
    const VProp original(1.0);
    VProp value(original);
    EXPECT_FALSE(value.lock());
    value.own();
    EXPECT_TRUE(value.lock());
    EXPECT_FALSE(share(value, VProp(value)));
    EXPECT_TRUE(original.lock());
}

}
