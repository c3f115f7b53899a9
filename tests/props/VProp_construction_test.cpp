// Empty values, texts, and what a value is made of.
#include "props/held_types.h"
#include "support/expect_vela_error.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace {

TEST(VPropEmpty, IsTheDefault)
{
    const VProp value;
    EXPECT_TRUE(value.empty());
    EXPECT_EQ(value.get_id(), 0);
    EXPECT_EQ(value.type(), typeid(void));
    EXPECT_FALSE(value.get_info());
}

TEST(VPropEmpty, EqualsAnotherEmptyOne)
{
    EXPECT_TRUE(VProp() == VProp());
    EXPECT_FALSE(VProp() != VProp());
    EXPECT_FALSE(VProp() == VProp(0));
    EXPECT_FALSE(VProp(0) == VProp());
}

TEST(VPropEmpty, StaysEmptyWhenItIsCopiedOwnedClearedOrAssigned)
{
    VProp value;
    value.own();
    EXPECT_TRUE(value.empty());
    value.clear();
    EXPECT_TRUE(value.empty());
    const VProp copy(value);
    EXPECT_TRUE(copy.empty());
    VProp assigned(1);
    assigned = value;
    EXPECT_TRUE(assigned.empty());
}

TEST(VPropEmpty, IsNoArrayAndHoldsNoType)
{
    VProp value;
    const VProp& constant = value;
    EXPECT_EQ(value.get_arr(false), nullptr);
    EXPECT_VELA_ERROR_IN(value.get_arr(true), "VProp::get_arr", "sources/props", -1,
                         "Type mismatch: expected 'array' type!");
    EXPECT_VELA_ERROR(value.get<double>(), -1, "Type mismatch: found none, expected double");
    EXPECT_VELA_ERROR(constant.get<VPropstruct>(), -1, "Type mismatch: found none, expected struct");
    EXPECT_TRUE(value.empty());
}

TEST(VPropText, IsMadeOfNarrowTextInTheEncodingOfTheSystem)
{
    std::string text = "\xc3\xa4 in UTF-8";
    const std::string constant_text = text;
    char* const pointer = text.data();
    const char* const constant_pointer = text.c_str();
    for (const VProp& value : {VProp(text), VProp(constant_text), VProp(pointer), VProp(constant_pointer)})
    {
        EXPECT_EQ(value.get_id(), 0x20000);
        EXPECT_EQ(value.type(), typeid(VPropstring));
        EXPECT_TRUE(value.get<VPropstring>() == std::wstring(L"\u00e4 in UTF-8"));
    }
}

TEST(VPropText, IsMadeOfWideTextAsItStands)
{
    std::wstring text = L"\u00e4\x01 wide";
    const std::wstring constant_text = text;
    wchar_t* const pointer = text.data();
    const wchar_t* const constant_pointer = text.c_str();
    for (const VProp& value : {VProp(text), VProp(constant_text), VProp(pointer), VProp(constant_pointer)})
    {
        EXPECT_EQ(value.type(), typeid(VPropstring));
        EXPECT_TRUE(value.get<VPropstring>() == constant_text);
    }
}

TEST(VPropText, MayHoldNul)
{
    const std::string narrow("a\0b", 3);
    EXPECT_EQ(VProp(narrow).get<VPropstring>().size(), 3u);
    const std::wstring wide(L"a\0b", 3);
    EXPECT_EQ(VProp(wide).get<VPropstring>().size(), 3u);
    EXPECT_TRUE(VProp(narrow) == VProp(wide));
}

TEST(VPropText, IsMadeOfAnArrayOfCharacters)
{
    EXPECT_TRUE(VProp("text") == VProp(L"text"));
    char buffer[] = "text";
    EXPECT_TRUE(VProp(buffer) == VProp(L"text"));
}

TEST(VPropText, IsAssigned)
{
    VProp value(1);
    value = "one";
    EXPECT_TRUE(value == VProp(L"one"));
    value = std::string("two");
    EXPECT_TRUE(value == VProp(L"two"));
    value = L"three";
    EXPECT_TRUE(value == VProp(L"three"));
    value = std::wstring(L"four");
    EXPECT_TRUE(value == VProp(L"four"));
    value = VPropstring(L"five");
    EXPECT_TRUE(value == VProp(L"five"));
}

enum Filter
{
    green = 3,
};
enum class Scoped
{
    value,
};
enum Large : std::uint64_t
{
    largest = 0xffffffffffffffff,
};

static_assert(!std::is_constructible_v<VProp, Scoped>);
static_assert(!std::is_constructible_v<VProp, long double>);

TEST(VPropNumber, IsMadeOfAnEnumerator)
{
    const Filter filter = green;
    EXPECT_EQ(VProp(filter), VProp(3));
    EXPECT_EQ(VProp(largest), VProp(std::uint64_t{0xffffffffffffffff}));
    VProp prop;
    prop["filter"] = green;
    EXPECT_EQ(prop["filter"].get<int>(), 3);
}

TEST(VPropNumber, IsMadeOfAnElementOfAnArrayOfBooleans)
{
    VProparray<bool> bits;
    bits.push_back(true);
    VProp prop(bits[0]);
    EXPECT_TRUE(prop.get<bool>());
    bits[0] = false;
    EXPECT_TRUE(prop.get<bool>());
    prop = bits[0];
    EXPECT_FALSE(prop.get<bool>());
}

TEST(VPropAssignment, ReplacesTheTypeByAnother)
{
    VProp value(1.5);
    value = 3;
    EXPECT_EQ(value.type(), typeid(int));
    value = true;
    EXPECT_EQ(value.type(), typeid(bool));
    value = VPropstruct();
    EXPECT_EQ(value.type(), typeid(VPropstruct));
    value = VProp(2.5f);
    EXPECT_EQ(value.type(), typeid(float));
}

TEST(VPropAssignment, TakesAPartOfItself)
{
    VProp value;
    value["a.b"] = 5;
    value = value["a"];
    EXPECT_EQ(value["b"].get<int>(), 5);
    value = static_cast<const VProp&>(value).get<VPropstruct>();
    EXPECT_EQ(value["b"].get<int>(), 5);
    value = value["b"].get<int>();
    EXPECT_EQ(value.get<int>(), 5);
}

TEST(VPropGet, NamesBothTypes)
{
    const VProp value(1.0);
    EXPECT_VELA_ERROR_IN(value.get<float>(), "VProp::get", "sources/props", -1,
                         "Type mismatch: found double, expected single");
    EXPECT_VELA_ERROR(value.get<VProparray<double>>(), -1, "Type mismatch: found double, expected double[]");
    EXPECT_VELA_ERROR(VProp(_s_vela_RGB()).get<VPropstring>(), -1, "Type mismatch: found none, expected char");
    EXPECT_VELA_ERROR(VProp(VProparray<VProp>()).get<std::complex<float>>(), -1,
                      "Type mismatch: found cell[], expected cplx_single");
    EXPECT_EQ(value.get<double>(), 1.0);
}

TEST(VPropEnsure, DemandsTheTypeOfAFilledValue)
{
    VProp value(1.0);
    EXPECT_VELA_ERROR_IN(value.ensure<int>(), "VProp::get", "sources/props", -1,
                         "Type mismatch: found double, expected int32");
    EXPECT_VELA_ERROR(value.ensure_array<double>(3), -1, "Type mismatch: found double, expected double[]");
    EXPECT_EQ(value.get<double>(), 1.0);
}

TEST(VPropEnsure, FillsANewArrayWithDefaults)
{
    VProp value;
    VProparray<int>& array = value.ensure_array<int>(3);
    ASSERT_EQ(array.count(), 3u);
    EXPECT_EQ(array[0], 0);
    EXPECT_EQ(array[2], 0);
    EXPECT_EQ(array.get_size(false), (std::vector<std::size_t>{1, 3}));
}

TEST(VPropEnsure, LeavesAFilledArrayAsItIs)
{
    VProp value;
    value.ensure_array<int>(2)[1] = 7;
    EXPECT_EQ(value.ensure_array<int>(5).count(), 2u);
    EXPECT_EQ(value.ensure_array<int>(0)[1], 7);
    value.get<VProparray<int>>().clear();
    EXPECT_EQ(value.ensure_array<int>(5).count(), 0u) << "an array without elements is no empty value";
}

TEST(VPropEnsure, DetachesFromACopy)
{
    VProp value(1);
    const VProp copy(value);
    value.ensure<int>() = 2;
    EXPECT_EQ(copy.get<int>(), 1);
}

TEST(VPropLaws, HoldForTheHandle)
{
    static_assert(std::is_copy_constructible_v<VProp> && std::is_copy_assignable_v<VProp>);
    static_assert(!std::has_virtual_destructor_v<VProp>);
    static_assert(std::has_virtual_destructor_v<VProp::placeholder>);
    static_assert(!std::is_copy_constructible_v<VProp::placeholder>);
    EXPECT_EQ(sizeof(VProp), 4 * sizeof(void*)) << "table, content, and the two pointers of the attachment";
}

}
