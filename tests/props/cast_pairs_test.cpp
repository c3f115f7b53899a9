// All conversions of a cast against a plain model: every pair of types, in all three shapes.
#include "props/cast_types.h"

#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>
#include <VelaProps/vela_prop_cast.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

using cast_test::accepted;
using cast_test::all_types;
using cast_test::bits_of;
using cast_test::is_complex;
using cast_test::is_source;
using cast_test::Number;
using cast_test::Parts;
using cast_test::real_types;
using cast_test::Type;

namespace {

using Sizes = std::vector<std::size_t>;
constexpr vela_dt array_flag = std::numeric_limits<vela_dt>::min();
constexpr std::uint64_t top_bit = 0x8000000000000000;

std::uint64_t low_bits(std::uint64_t number, std::size_t size_bytes)
{
    return size_bytes == 8 ? number : number & ((std::uint64_t(1) << (8 * size_bytes)) - 1);
}

/// Truncated, or the lowest where an integer of so many bits cannot hold it.
std::uint64_t truncated(double number, int bits)
{
    const double limit = std::ldexp(1.0, bits - 1);
    const double whole = std::trunc(number);
    if (!(whole >= -limit && whole < limit))
        return 0 - (std::uint64_t(1) << (bits - 1));
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(whole));
}

std::uint64_t floating_as_integer(double number, const Type& target)
{
    switch (target.id & 0x3fffffff)
    {
    case 0x2:
    case 0x8:
    case 0x20:
        return low_bits(truncated(number, 32), target.size_bytes);
    case 0x1000:
        return number < 0x1p63 ? truncated(number, 64) : truncated(number - 0x1p63, 64) | top_bit;
    default:
        return low_bits(truncated(number, 64), target.size_bytes);
    }
}

/// The bits of `number` as the real type `target`.
std::uint64_t as_real(const Number& number, const Type& target)
{
    const std::string name = target.name;
    if (name == "logical")
        return (number.floating ? number.decimal != 0 : number.integer != 0) ? 1 : 0;
    const auto signed_integer = static_cast<std::int64_t>(number.integer);
    if (name == "double")
        return bits_of(number.floating    ? number.decimal
                       : number.is_signed ? static_cast<double>(signed_integer)
                                          : static_cast<double>(number.integer));
    if (name == "single")
        return bits_of(number.floating    ? static_cast<float>(number.decimal)
                       : number.is_signed ? static_cast<float>(signed_integer)
                                          : static_cast<float>(number.integer));
    return number.floating ? floating_as_integer(number.decimal, target) : low_bits(number.integer, target.size_bytes);
}

const Type& part_type(const Type& type)
{
    for (const Type& real : real_types())
    {
        if (real.id == (type.id & 0x3fffffff))
            return real;
    }
    return type;
}

Parts expected(const Type& source, std::size_t place, const Type& target)
{
    const Type& part = part_type(target);
    const std::size_t number = place % source.reals.size();
    const bool both = is_complex(source);
    return {as_real(source.reals[number], part), both ? as_real(source.imaginaries[number], part) : 0};
}

std::string title(const Type& source, const Type& target)
{
    return std::string(source.name) + " to " + target.name;
}

/// All pairs that a value can be cast along.
template <class Check>
std::size_t for_each_pair(Check check)
{
    std::size_t count = 0;
    for (const Type* source : all_types())
    {
        for (const Type* target : all_types())
        {
            if (!is_source(*source) || !accepted(*source, *target))
                continue;
            SCOPED_TRACE(title(*source, *target));
            check(*source, *target);
            ++count;
        }
    }
    return count;
}

// Three shapes of 363 pairs, but for the eleven of "cplx_logical" as source: there is no such value.
constexpr std::size_t reachable_pairs = 363 - 11;

TEST(CastTypes, HaveTheIdsOfTheirNames)
{
    for (const Type* type : all_types())
    {
        EXPECT_STREQ(vela_dt_get_name(type->id), type->name);
        if (!is_source(*type))
            continue;
        EXPECT_EQ(type->scalar(0).get_id(), type->id);
        EXPECT_EQ(type->array({1, 1}, 1).get_id(), type->id | array_flag);
        EXPECT_EQ(type->reals.size(), is_complex(*type) ? type->imaginaries.size() : type->reals.size());
    }
}

TEST(CastPairs, OfScalarsFollowTheModelAndWriteNothingBehind)
{
    const std::size_t count = for_each_pair(
        [](const Type& source, const Type& target)
        {
            for (std::size_t i = 0; i < source.reals.size(); ++i)
            {
                alignas(16) std::array<unsigned char, 32> out;
                out.fill(0xab);
                const VProp property = source.scalar(i);
                vela_prop_cast(property, out.data(), target.id);
                EXPECT_EQ(target.read(out.data()), expected(source, i, target)) << "number " << i;
                for (std::size_t behind = target.size_bytes; behind < out.size(); ++behind)
                    ASSERT_EQ(out[behind], 0xab);
            }
        });
    EXPECT_EQ(count, reachable_pairs);
}

TEST(CastPairs, OfAScalarToAnArrayMakeASingleElement)
{
    const std::size_t count = for_each_pair(
        [](const Type& source, const Type& target)
        {
            const auto out = target.make_target(7);
            for (const std::size_t number : {std::size_t(1), source.reals.size() - 1})
            {
                vela_prop_cast(source.scalar(number), out.get(), target.id | array_flag);
                EXPECT_EQ(target.elements(out.get()), std::vector<Parts>{expected(source, number, target)});
                EXPECT_EQ(target.shape(out.get())->get_size(false), Sizes({1, 1}));
            }
        });
    EXPECT_EQ(count, reachable_pairs);
}

TEST(CastPairs, OfArraysTakeTheShapeAndConvertEachElement)
{
    const std::size_t count = for_each_pair(
        [](const Type& source, const Type& target)
        {
            for (const Sizes& sizes : {Sizes{2, 3}, Sizes{1, source.reals.size()}, Sizes{2, 1, 2}, Sizes{5}})
            {
                const std::size_t length = VProparrayBase::size(sizes);
                const auto out = target.make_target(2);
                const VProp property = source.array(sizes, length);
                vela_prop_cast(property, out.get(), target.id | array_flag);
                std::vector<Parts> model;
                for (std::size_t i = 0; i < length; ++i)
                    model.push_back(expected(source, i, target));
                EXPECT_EQ(target.elements(out.get()), model);
                EXPECT_EQ(target.shape(out.get())->get_size(false), sizes);
                EXPECT_EQ(target.shape(out.get())->userbits, 6u) << "the flags of the source do not come along";
            }
        });
    EXPECT_EQ(count, reachable_pairs);
}

TEST(CastPairs, FromFloatingPointAgreeWithTheBulkConversion)
{
    std::size_t count = 0;
    for (const Type& source : real_types())
    {
        for (const Type& target : real_types())
        {
            if (!source.reals[0].floating || target.id == 0x10000)
                continue;
            SCOPED_TRACE(title(source, target));
            for (std::size_t i = 0; i < source.reals.size(); ++i)
            {
                const VProp property = source.scalar(i);
                alignas(8) std::array<unsigned char, 8> cast{};
                alignas(8) std::array<unsigned char, 8> bulk{};
                vela_prop_cast(property, cast.data(), target.id);
                ASSERT_EQ(vela_dt_convert(static_cast<std::uint32_t>(source.id), static_cast<std::uint32_t>(target.id),
                                          property.value_ptr(), bulk.data(), 1, nullptr, nullptr),
                          0);
                EXPECT_EQ(target.read(cast.data()), target.read(bulk.data())) << "number " << i;
            }
            ++count;
        }
    }
    EXPECT_EQ(count, 20u);
}

TEST(CastPairs, NeverChangeOrDetachTheSource)
{
    for (const Type* type : all_types())
    {
        if (!is_source(*type))
            continue;
        const VProp original = type->array({1, 2}, 2);
        const VProp copy(original);
        const auto out = type->make_target(1);
        vela_prop_cast(copy, out.get(), type->id | array_flag);
        EXPECT_EQ(copy.value_ptr(), original.value_ptr());
    }
}

TEST(CastPairs, RoundALargeUnsignedNumberOnceOnTheWayToSingle)
{
    // By way of double, or of a signed number and 2^64, it would be rounded twice.
    float out = 0;
    vela_prop_cast(VProp(std::uint64_t(0x8000008000000001)), &out, 0x40);
    EXPECT_EQ(out, 0x1.000002p63F);
}

}
