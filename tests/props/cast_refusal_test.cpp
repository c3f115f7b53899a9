// What cannot be cast, what is left then, and arrays whose sizes no longer fit.
#include "props/cast_types.h"
#include "support/expect_vela_error.h"

#include <VelaProps/VPropstruct.h>
#include <VelaProps/vela_prop_cast.h>

#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

using cast_test::accepted;
using cast_test::all_types;
using cast_test::complex_types;
using cast_test::is_source;
using cast_test::Parts;
using cast_test::real_types;
using cast_test::Type;

namespace {

using Sizes = std::vector<std::size_t>;
constexpr vela_dt array_flag = std::numeric_limits<vela_dt>::min();
const char* const invalid = "Invalid cast!";
const char* const array_to_scalar = "Cannot cast from array to scalar!";

/// The cast to a scalar fails, and not a byte of the target changes.
void expect_scalar_refused(const VProp& property, vela_dt target, const char* text)
{
    alignas(16) std::array<unsigned char, 32> out;
    out.fill(0xab);
    EXPECT_VELA_ERROR_IN(vela_prop_cast(property, out.data(), target), "vela_prop_cast", "sources/props", -1, text);
    for (const unsigned char byte : out)
        ASSERT_EQ(byte, 0xab);
}

/// The same for an array of two elements.
void expect_array_refused(const VProp& property, const Type& target, const char* text)
{
    const auto out = target.make_target(0);
    VProparrayBase* const shape = target.shape(out.get());
    vela_prop_cast(real_types()[0].array({2, 1}, 2), out.get(), target.id | array_flag);
    const std::vector<Parts> before = target.elements(out.get());
    EXPECT_VELA_ERROR_IN(vela_prop_cast(property, out.get(), target.id | array_flag), "vela_prop_cast", "sources/props",
                         -1, text);
    EXPECT_EQ(target.elements(out.get()), before);
    EXPECT_EQ(shape->get_size(false), Sizes({2, 1}));
    EXPECT_EQ(shape->userbits, 6u);
}

std::vector<VProp> scalars_without_numbers()
{
    std::vector<VProp> made;
    made.reserve(8);
    made.push_back(VProp());
    made.push_back(VProp("12"));
    made.push_back(VProp(VPropstruct()));
    made.push_back(VProp(_s_vela_RGB(1, 2, 3)));
    return made;
}

std::vector<VProp> arrays_without_numbers()
{
    std::vector<VProp> made;
    made.reserve(8);
    made.push_back(VProp(VProparray<VProp>()));
    made.push_back(VProp(VProparray<VPropstruct>()));
    made.push_back(VProp(VProparray<VPropstring>()));
    return made;
}

const vela_dt no_targets[] = {0,          0x4000,     0x8000,     0x20000,    0x400,      0x800,
                              0x3,        0x100,      0x200,      0x40000,    0x30,       0x40000000,
                              0x40004000, 0x40008000, 0x40020000, 0x40000400, 0x40000800, 0x40000003,
                              0x20000001, 0x10001,    0x3fffffff, 0x7fffffff};

TEST(RefusedCasts, OfComplexToRealInEveryShape)
{
    for (const Type& source : complex_types())
    {
        for (const Type& target : real_types())
        {
            if (!is_source(source))
                continue;
            ASSERT_FALSE(accepted(source, target));
            expect_scalar_refused(source.scalar(0), target.id, invalid);
            expect_array_refused(source.scalar(0), target, invalid);
            expect_array_refused(source.array({1, 2}, 2), target, invalid);
            expect_array_refused(source.array({0, 0}, 0), target, invalid);
        }
    }
}

TEST(RefusedCasts, OfWhatIsNoNumberToEveryTarget)
{
    for (const Type* target : all_types())
    {
        for (const VProp& property : scalars_without_numbers())
        {
            expect_scalar_refused(property, target->id, invalid);
            expect_array_refused(property, *target, invalid);
        }
        for (const VProp& property : arrays_without_numbers())
        {
            expect_scalar_refused(property, target->id, array_to_scalar);
            expect_array_refused(property, *target, invalid);
        }
    }
}

TEST(RefusedCasts, OfEveryNumberToWhatIsNoTarget)
{
    for (const Type* source : all_types())
    {
        if (!is_source(*source))
            continue;
        for (const vela_dt target : no_targets)
        {
            expect_scalar_refused(source->scalar(0), target, invalid);
            expect_scalar_refused(source->scalar(0), target | array_flag, invalid);
            expect_scalar_refused(source->array({1, 2}, 2), target | array_flag, invalid);
            expect_scalar_refused(source->array({1, 2}, 2), target, array_to_scalar);
        }
    }
}

TEST(RefusedCasts, OfWhatIsNoNumberToItsOwnType)
{
    for (const VProp& property : scalars_without_numbers())
    {
        expect_scalar_refused(property, property.get_id(), invalid);
        expect_scalar_refused(property, property.get_id() | array_flag, invalid);
    }
    for (const VProp& property : arrays_without_numbers())
    {
        expect_scalar_refused(property, property.get_id(), invalid);
        expect_scalar_refused(property, property.get_id() & ~array_flag, array_to_scalar);
    }
}

TEST(RefusedCasts, OfAnArrayToAScalarWhateverTheTypesAndTheLength)
{
    for (const Type* source : all_types())
    {
        for (const Type* target : all_types())
        {
            if (!is_source(*source))
                continue;
            expect_scalar_refused(source->array({1, 1}, 1), target->id, array_to_scalar);
            expect_scalar_refused(source->array({2, 2}, 4), target->id, array_to_scalar);
        }
        if (is_source(*source))
            expect_scalar_refused(source->array({0, 0}, 0), source->id, array_to_scalar);
    }
}

/// The shape and the count that a cast gives an "int32" array of `count` elements with these sizes.
Sizes size_after_cast(const Sizes& sizes, std::size_t count)
{
    VProparray<int> source;
    source.resize(count, true);
    source.set_size(sizes, VProparrayBase::set_only);
    VProparray<double> out;
    out.resize(9, true);
    vela_prop_cast(VProp(source), &out, 0x80 | array_flag);
    EXPECT_EQ(out.count(), count);
    return out.get_size(false);
}

TEST(CastShapes, AreKept)
{
    EXPECT_EQ(size_after_cast({2, 3}, 6), Sizes({2, 3}));
    EXPECT_EQ(size_after_cast({6}, 6), Sizes({6}));
    EXPECT_EQ(size_after_cast({1, 2, 3}, 6), Sizes({1, 2, 3}));
}

TEST(CastShapes, WithoutElementsAreKeptToo)
{
    EXPECT_EQ(size_after_cast({}, 0), Sizes({0, 0}));
    EXPECT_EQ(size_after_cast({0, 0}, 0), Sizes({0, 0}));
    EXPECT_EQ(size_after_cast({2, 0}, 0), Sizes({2, 0}));
    EXPECT_EQ(size_after_cast({0}, 0), Sizes({0}));
}

TEST(CastShapes, ThatWereNeverSetBecomeARow)
{
    EXPECT_EQ(size_after_cast({}, 5), Sizes({1, 5}));
}

TEST(CastShapes, ThatNoLongerFitAreRepairedWhereTheyAreARow)
{
    EXPECT_EQ(size_after_cast({1, 3}, 5), Sizes({1, 5}));
    EXPECT_EQ(size_after_cast({0, 0}, 5), Sizes({1, 5}));
    EXPECT_EQ(size_after_cast({3}, 5), Sizes({5}));
    EXPECT_EQ(size_after_cast({1, 3}, 0), Sizes({0, 0}));
    EXPECT_EQ(size_after_cast({3}, 0), Sizes({0}));
}

TEST(CastShapes, ThatCannotBeRepairedFailAndLeaveTheTarget)
{
    for (const Type* source : all_types())
    {
        for (const Type* target : all_types())
        {
            if (!is_source(*source) || !accepted(*source, *target))
                continue;
            for (const Sizes& sizes : {Sizes{2, 2}, Sizes{2, 0}, Sizes{1, 1, 2}})
            {
                const auto out = target->make_target(2);
                const std::vector<Parts> before = target->elements(out.get());
                const VProp stale = source->array(sizes, 3);
                EXPECT_VELA_ERROR(vela_prop_cast(stale, out.get(), target->id | array_flag), -1,
                                  "Invalid size vector in property array!");
                EXPECT_EQ(target->elements(out.get()), before);
                EXPECT_EQ(target->shape(out.get())->get_size(false), Sizes({1, 2}));
            }
        }
    }
}

}
