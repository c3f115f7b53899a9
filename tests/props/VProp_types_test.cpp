// What holds for each of the 48 types that a value can have.
#include "props/held_types.h"
#include "support/expect_vela_error.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace {

using prop_test::Held;
using prop_test::NamedValue;
using prop_test::same;
using prop_test::Sample;

// What needs no type of its own is compiled once, not 48 times.

void expect_failure(const std::function<void()>& call, const char* function, const std::string& text)
{
    EXPECT_VELA_ERROR_IN(call(), function, "sources/props", -1, text);
}

void expect_base(const VProp& value, const VProparrayBase* base)
{
    EXPECT_EQ(value.get_arr(false), base);
    EXPECT_EQ(value.get_arr(true), base);
}

void expect_no_base(const VProp& value)
{
    EXPECT_EQ(value.get_arr(false), nullptr);
    expect_failure([&] { value.get_arr(true); }, "VProp::get_arr", "Type mismatch: expected 'array' type!");
}

/// Without its value.
void expect_container(VProp::placeholder& container, std::uint64_t refcount, bool locked, std::uint32_t id,
                      const std::type_info& type)
{
    EXPECT_EQ(container.refcount, refcount);
    EXPECT_EQ(container.locked, locked);
    EXPECT_EQ(static_cast<std::uint32_t>(container.get_id()), id);
    EXPECT_EQ(container.type(), type);
    EXPECT_EQ(static_cast<const VProp::placeholder&>(container).value_ptr(), container.value_ptr());
}

void expect_equal_to_own_type_only(const VProp& value, std::uint32_t id)
{
    for (const NamedValue& other : prop_test::one_of_each())
    {
        EXPECT_EQ(value == other.value, other.id == id) << other.name;
        EXPECT_EQ(other.value == value, other.id == id) << other.name;
    }
}

template <class T>
class VPropOf : public testing::Test
{
};
TYPED_TEST_SUITE(VPropOf, prop_test::HeldTypes);

TYPED_TEST(VPropOf, HasTheIdOfItsType)
{
    EXPECT_EQ(static_cast<std::uint32_t>(VProp(Sample<TypeParam>::one()).get_id()), Held<TypeParam>::id);
    EXPECT_EQ(static_cast<std::uint32_t>(VProp::type_id<TypeParam>), Held<TypeParam>::id);
}

TYPED_TEST(VPropOf, HasItsType)
{
    const VProp value(Sample<TypeParam>::one());
    EXPECT_FALSE(value.empty());
    EXPECT_EQ(value.type(), typeid(TypeParam));
}

TYPED_TEST(VPropOf, HoldsACopyOfTheArgument)
{
    TypeParam argument = Sample<TypeParam>::one();
    VProp value(argument);
    argument = Sample<TypeParam>::other();
    const VProp& constant = value;
    EXPECT_TRUE(same(constant.get<TypeParam>(), Sample<TypeParam>::one()));
    EXPECT_EQ(&constant.get<TypeParam>(), constant.value_ptr());
    EXPECT_EQ(&value.get<TypeParam>(), value.value_ptr());
}

TYPED_TEST(VPropOf, IsWrittenThroughGet)
{
    VProp value(Sample<TypeParam>::one());
    value.get<TypeParam>() = Sample<TypeParam>::other();
    EXPECT_TRUE(same(static_cast<const VProp&>(value).get<TypeParam>(), Sample<TypeParam>::other()));
}

TYPED_TEST(VPropOf, CopyDetachesWhenItIsWrittenTo)
{
    const VProp value(Sample<TypeParam>::one());
    VProp copy(value);
    EXPECT_EQ(static_cast<const VProp&>(copy).value_ptr(), value.value_ptr());
    copy.get<TypeParam>() = Sample<TypeParam>::other();
    EXPECT_NE(static_cast<const VProp&>(copy).value_ptr(), value.value_ptr());
    EXPECT_TRUE(same(value.get<TypeParam>(), Sample<TypeParam>::one()));
    EXPECT_TRUE(same(copy.get<TypeParam>(), Sample<TypeParam>::other()));
}

TYPED_TEST(VPropOf, EqualsWhatIsEqual)
{
    const VProp value(Sample<TypeParam>::one());
    EXPECT_TRUE(value == VProp(Sample<TypeParam>::one()));
    EXPECT_FALSE(value != VProp(Sample<TypeParam>::one()));
    EXPECT_TRUE(value == VProp(value));
    EXPECT_FALSE(value == VProp(Sample<TypeParam>::other()));
    EXPECT_TRUE(value != VProp(Sample<TypeParam>::other()));
}

TYPED_TEST(VPropOf, EqualsNoOtherType)
{
    expect_equal_to_own_type_only(VProp(Sample<TypeParam>::one()), Held<TypeParam>::id);
}

TYPED_TEST(VPropOf, IsNotGivenAsAnotherType)
{
    for (NamedValue& other : prop_test::one_of_each())
    {
        if (other.id == Held<TypeParam>::id)
            continue;
        const std::string text = "Type mismatch: found " + other.name + ", expected " + Held<TypeParam>::name();
        const VProp before(other.value);
        expect_failure([&] { other.value.template get<TypeParam>(); }, "VProp::get", text);
        expect_failure([&] { static_cast<const VProp&>(other.value).template get<TypeParam>(); }, "VProp::get", text);
        EXPECT_TRUE(other.value == before);
    }
}

TYPED_TEST(VPropOf, GivesItsBaseIfItIsAnArray)
{
    const VProp value(Sample<TypeParam>::one());
    if constexpr ((Held<TypeParam>::id & 0x80000000) != 0)
        expect_base(value, &value.get<TypeParam>());
    else
        expect_no_base(value);
}

TYPED_TEST(VPropOf, IsAssignedFromItsType)
{
    VProp value(L"before");
    VProp& result = (value = Sample<TypeParam>::one());
    EXPECT_EQ(&result, &value);
    EXPECT_TRUE(same(static_cast<const VProp&>(value).get<TypeParam>(), Sample<TypeParam>::one()));
}

TYPED_TEST(VPropOf, IsMadeByEnsureInAnEmptyValueOnly)
{
    VProp value;
    EXPECT_TRUE(same(value.ensure<TypeParam>(), TypeParam()));
    EXPECT_EQ(static_cast<std::uint32_t>(value.get_id()), Held<TypeParam>::id);
    value.get<TypeParam>() = Sample<TypeParam>::one();
    const void* const address = value.value_ptr();
    EXPECT_TRUE(same(value.ensure<TypeParam>(), Sample<TypeParam>::one()));
    EXPECT_EQ(value.value_ptr(), address);
}

TYPED_TEST(VPropOf, ContainerStartsWithOneOwnerAndUnlocked)
{
    VProp::holder<TypeParam> container(Sample<TypeParam>::one());
    expect_container(container, 1, false, Held<TypeParam>::id, typeid(TypeParam));
    EXPECT_EQ(static_cast<VProp::placeholder&>(container).value_ptr(), &container.value);
}

TYPED_TEST(VPropOf, CloneOfAContainerIsFreshWhateverTheOriginalIs)
{
    VProp::holder<TypeParam> container(Sample<TypeParam>::one());
    container.refcount = 7;
    container.locked = true;
    const std::unique_ptr<VProp::placeholder> clone(container.clone());
    expect_container(*clone, 1, false, Held<TypeParam>::id, typeid(TypeParam));
    expect_container(container, 7, true, Held<TypeParam>::id, typeid(TypeParam));
    EXPECT_NE(clone->value_ptr(), &container.value);
    EXPECT_TRUE(same(*static_cast<const TypeParam*>(clone->value_ptr()), Sample<TypeParam>::one()));
}

TEST(VPropTypes, HaveIdsThatDiffer)
{
    std::set<std::uint32_t> ids;
    for (const NamedValue& value : prop_test::one_of_each())
        EXPECT_TRUE(ids.insert(value.id).second) << value.name;
    EXPECT_EQ(ids.size(), 49u);
}

TEST(VPropTypes, AreNoOthers)
{
    static_assert(VProp::type_id<std::complex<bool>> == 0, "there are no complex booleans");
    static_assert(VProp::type_id<VProparray<_s_vela_RGB>> == 0, "there are no arrays of colours");
    static_assert(VProp::type_id<VProp> == 0, "there is no scalar cell");
    static_assert(!std::is_constructible_v<VProp, std::complex<bool>>);
    static_assert(!std::is_constructible_v<VProp, const void*>);
    static_assert(!std::is_constructible_v<VProp, long double>);
    EXPECT_EQ(VProp('a').get_id(), 0x2) << "one byte is a number, not a text";
}

}
