#include "stacks/any_type_stack.h"

#include <VelaBase/vela_dt_convert.h>
#include <VelaProps/VProp.h>
#include <VelaStacks/VStackRegion.h>
#include <VelaStacks/iterators.h>

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

using namespace vela_test;

namespace {

using Base = VStackInterface::iterator_base;
using Bytes = std::vector<unsigned char>;

template <class T>
Bytes bytes_of_value(const T& value)
{
    Bytes bytes(sizeof value);
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

/// One sample by the conversion of whole arrays; of a complex one that becomes real, the real part.
Bytes converted(const unsigned char* sample, vela_dt from, vela_dt to)
{
    if ((from & vela_dt_complex) != 0 && (to & vela_dt_complex) == 0)
        from &= ~vela_dt_complex; // the real part stands first
    Bytes bytes(size_of_sample(to), 0xEE);
    EXPECT_EQ(vela_dt_convert(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to), sample, bytes.data(), 1,
                              nullptr, nullptr),
              0);
    return bytes;
}

VStackRegion whole(const VStackInterface& stack)
{
    VStackRegion region;
    region.create(&stack, vela_dt_none);
    return region;
}

template <class... X>
struct TypeList
{
};
using AllTypes = TypeList<std::uint64_t, std::complex<std::uint64_t>, std::uint32_t, std::complex<std::uint32_t>,
                          std::uint16_t, std::complex<std::uint16_t>, std::uint8_t, std::complex<std::uint8_t>,
                          std::int64_t, std::complex<std::int64_t>, std::int32_t, std::complex<std::int32_t>,
                          std::int16_t, std::complex<std::int16_t>, char, std::complex<char>, double,
                          std::complex<double>, float, std::complex<float>>;

/// Every sample of `stack`, read as an X, is what the conversion of arrays gives.
template <class X>
void expect_reads_as(const AnyTypeStack& stack)
{
    const vela_dt to = VProp::type_id<X>;
    const Bytes samples = bytes_of(stack);
    std::uint64_t offset = 0;
    for (const boost::shared_ptr<Base> it = stack.get_iterator(whole(stack)); !it->at_end(); it->advance())
    {
        X value = X(77);
        it->get_value(value);
        EXPECT_EQ(bytes_of_value(value), converted(samples.data() + offset, stack.get_dt(), to))
            << stack.get_dt() << " to " << to << " at " << offset;
        offset += size_of_sample(stack.get_dt());
    }
    EXPECT_EQ(offset, samples.size());
}

/// Every sample of a stack of X, written to one of the type `to`, is what the conversion of arrays gives.
template <class X>
void expect_writes_to(const std::vector<X>& values, vela_dt to)
{
    const AnyTypeStack stack({values.size()}, to);
    const boost::shared_ptr<Base> it = stack.get_iterator(whole(stack));
    Bytes expected;
    for (const X& value : values)
    {
        it->set_value(value);
        it->advance();
        const Bytes sample = converted(bytes_of_value(value).data(), VProp::type_id<X>, to);
        expected.insert(expected.end(), sample.begin(), sample.end());
    }
    EXPECT_EQ(bytes_of(stack), expected) << VProp::type_id<X> << " to " << to;
}

template <class... X>
void expect_all_reads(const AnyTypeStack& stack, TypeList<X...>)
{
    (expect_reads_as<X>(stack), ...);
}

template <class X>
void expect_all_writes_of(std::mt19937& random)
{
    AnyTypeStack stack({50}, VProp::type_id<X>);
    fill_randomly(stack, random);
    for (const vela_dt to : iterator_types)
        expect_writes_to(samples_of<X>(stack), to);
}

template <class... X>
void expect_all_writes(std::mt19937& random, TypeList<X...>)
{
    (expect_all_writes_of<X>(random), ...);
}

TEST(IteratorConversion, ReadsEveryTypeAsEveryOther)
{
    std::mt19937 random(20);
    for (const vela_dt dt : iterator_types)
    {
        AnyTypeStack stack({50}, dt);
        fill_randomly(stack, random);
        expect_all_reads(stack, AllTypes());
    }
}

TEST(IteratorConversion, WritesEveryTypeToEveryOther)
{
    std::mt19937 random(21);
    expect_all_writes(random, AllTypes());
}

template <class X, class T>
X read_one(const T& sample)
{
    AnyTypeStack stack({1}, VProp::type_id<T>);
    set_samples<T>(stack, {sample});
    X value = X();
    stack.get_iterator(whole(stack))->get_value(value);
    return value;
}

TEST(IteratorConversion, KeepsTheLowBitsOfTheRealPart)
{
    EXPECT_EQ((read_one<std::uint8_t>(std::complex<float>(300.7F, 9))), 44);
}

TEST(IteratorConversion, MakesARealPartOfAScalar)
{
    EXPECT_EQ((read_one<std::complex<double>>(std::int16_t{-7})), std::complex<double>(-7, 0));
}

TEST(IteratorConversion, TakesEachPartOfAComplexSampleOnItsOwn)
{
    EXPECT_EQ((read_one<std::complex<std::uint8_t>>(std::complex<double>(257.9, -1.9))),
              std::complex<std::uint8_t>(1, 255));
}

TEST(IteratorConversion, RoundsLargeNumbersTwice)
{
    EXPECT_EQ((read_one<float>(std::uint64_t{0x8000000000000401})), 9223372036854775808.0F);
    EXPECT_EQ((read_one<double>(std::uint64_t{0x8000000000000401})), 9223372036854775808.0)
        << "once gives 9223372036854777856";
    EXPECT_EQ((read_one<std::uint64_t>(1e30)), std::uint64_t{1} << 63);
}

} // namespace
