// Elements of cell arrays and struct arrays, through the value.
#include "support/expect_vela_error.h"

#include <VelaProps/VProp.h>
#include <VelaProps/VPropstruct.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using Extents = std::vector<std::size_t>;

Extents sizes_of(const VProp& value)
{
    return value.get_arr(true)->get_size(false);
}

TEST(VPropCells, AreMadeInAnEmptyValue)
{
    VProp value;
    value(2) = 1.5;
    EXPECT_EQ(static_cast<std::uint32_t>(value.get_id()), 0x80004000u);
    EXPECT_EQ(sizes_of(value), (Extents{1, 3}));
    EXPECT_TRUE(value(0).empty());
    EXPECT_EQ(value(2).get<double>(), 1.5);
}

TEST(VPropCells, TakeUpToFourCoordinates)
{
    VProp value;
    value(1, 2) = 1;
    EXPECT_EQ(sizes_of(value), (Extents{2, 3}));
    value = VProp();
    value(1, 2, 3) = 2;
    EXPECT_EQ(sizes_of(value), (Extents{2, 3, 4}));
    value = VProp();
    value(1, 2, 3, 4) = 3;
    EXPECT_EQ(sizes_of(value), (Extents{2, 3, 4, 5}));
    EXPECT_EQ(static_cast<const VProp&>(value)(1, 2, 3, 4).get<int>(), 3);
}

TEST(VPropCells, GrowAlongTheLastDimension)
{
    VProp value;
    value(1, 1) = 7;
    value(0, 4) = 8;
    EXPECT_EQ(sizes_of(value), (Extents{2, 5}));
    EXPECT_EQ(value(1, 1).get<int>(), 7);
    EXPECT_VELA_ERROR_IN(value(2, 0), "VProparrayBase::get_idx", "sources/proparr", -1,
                         "Index 0 out of bounds! (2 >= 2)!");
}

TEST(VPropCells, OfAConstantValueAreNotMade)
{
    VProp value;
    const VProp& constant = value;
    EXPECT_VELA_ERROR_IN(constant(0), "VProp::get", "sources/props", -1, "Type mismatch: found none, expected cell[]");
    EXPECT_TRUE(value.empty());
    value(1) = 1;
    EXPECT_VELA_ERROR(constant(2), -1, "Index 1 out of bounds! (2 >= 2)!");
    EXPECT_EQ(constant(1).get<int>(), 1);
    EXPECT_EQ(sizes_of(value), (Extents{1, 2}));
}

TEST(VPropCells, OfSomethingElseFail)
{
    VProp value(1.5);
    EXPECT_VELA_ERROR(value(0), -1, "Type mismatch: found double, expected cell[]");
    VProp numbers{VProparray<double>()};
    EXPECT_VELA_ERROR(numbers(0), -1, "Type mismatch: found double[], expected cell[]");
    VProp structs;
    structs.s(0);
    EXPECT_VELA_ERROR(structs(0), -1, "Type mismatch: found struct[], expected cell[]");
    EXPECT_EQ(value.get<double>(), 1.5);
}

TEST(VPropCells, DetachFromACopyWhenTheyAreReached)
{
    VProp value;
    value(0) = 1;
    VProp copy(value);
    copy(3) = 2;
    copy(0) = 5;
    EXPECT_EQ(sizes_of(value), (Extents{1, 1}));
    EXPECT_EQ(value(0).get<int>(), 1);
}

TEST(VPropCells, OfAConstantValueStayShared)
{
    VProp value;
    value(0) = 1;
    const VProp copy(value);
    EXPECT_EQ(copy(0).get<int>(), 1);
    EXPECT_EQ(copy.value_ptr(), static_cast<const VProp&>(value).value_ptr());
}

TEST(VPropStructs, AreMadeInAnEmptyValue)
{
    VProp value;
    VPropstruct& element = value.s(1);
    element["a"] = 3;
    EXPECT_EQ(static_cast<std::uint32_t>(value.get_id()), 0x80008000u);
    EXPECT_EQ(sizes_of(value), (Extents{1, 2}));
    const VProp& constant = value;
    EXPECT_EQ(constant.s(1)["a"].get<int>(), 3);
    EXPECT_TRUE(constant.s(0).empty());
}

TEST(VPropStructs, TakeUpToFourCoordinatesAndGrow)
{
    VProp value;
    value.s(1, 1, 1, 1)["a"] = 3;
    EXPECT_EQ(sizes_of(value), (Extents{2, 2, 2, 2}));
    value.s(0, 0, 0, 3)["a"] = 4;
    EXPECT_EQ(sizes_of(value), (Extents{2, 2, 2, 4}));
    EXPECT_EQ(static_cast<const VProp&>(value).s(1, 1, 1, 1)["a"].get<int>(), 3);
    EXPECT_VELA_ERROR(value.s(0, 2, 0, 0), -1, "Index 1 out of bounds! (2 >= 2)!");
}

TEST(VPropStructs, OfAConstantValueAreNotMade)
{
    VProp value;
    const VProp& constant = value;
    EXPECT_VELA_ERROR_IN(constant.s(0), "VProp::get", "sources/props", -1,
                         "Type mismatch: found none, expected struct[]");
    value.s(0);
    EXPECT_VELA_ERROR(constant.s(1), -1, "Index 1 out of bounds! (1 >= 1)!");
}

TEST(VPropStructs, OfSomethingElseFail)
{
    VProp one{VPropstruct()};
    EXPECT_VELA_ERROR(one.s(0), -1, "Type mismatch: found struct, expected struct[]");
    VProp cells;
    cells(0) = 1;
    EXPECT_VELA_ERROR(cells.s(0), -1, "Type mismatch: found cell[], expected struct[]");
}

}
