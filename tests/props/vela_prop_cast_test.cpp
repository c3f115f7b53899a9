#include <VelaProps/VPropstruct.h>
#include <VelaProps/vela_prop_cast.h>

#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// The id of what a target points to; complex booleans have one though no property is such.
template <class T>
constexpr vela_dt target_id = VProp::type_id<T>;
template <>
inline constexpr vela_dt target_id<std::complex<bool>> = vela_dt_complex | vela_dt_logical;

template <class To>
To cast(const VProp& prop)
{
    To out{};
    vela_prop_cast(prop, &out, target_id<To>);
    return out;
}

template <class To>
VProparray<To> cast_array(const VProp& prop)
{
    VProparray<To> out;
    vela_prop_cast(prop, &out, target_id<To> | vela_dt_array);
    return out;
}

template <class To>
void expect_refused(const VProp& prop)
{
    To out = To(7);
    EXPECT_VELA_ERROR_IN(vela_prop_cast(prop, &out, target_id<To>), "vela_prop_cast", "sources/props", -1,
                         "Invalid cast!");
    EXPECT_EQ(out, To(7));
    VProparray<To> array;
    array.push_back(To(7));
    EXPECT_VELA_ERROR_IN(vela_prop_cast(prop, &array, target_id<To> | vela_dt_array), "vela_prop_cast", "sources/props",
                         -1, "Invalid cast!");
    EXPECT_EQ(array.size(), 1u);
}

template <class... Ts, class Function>
void for_types(Function function)
{
    (function(Ts()), ...);
}

template <class Function>
void for_real_types(Function function)
{
    for_types<unsigned char, char, unsigned short, short, unsigned int, int, std::uint64_t, std::int64_t, float, double,
              bool>(function);
}

TEST(PropCast, TruncatesTowardsZero)
{
    EXPECT_EQ(cast<int>(VProp(3.9)), 3);
    EXPECT_EQ(cast<int>(VProp(-3.9)), -3);
    EXPECT_EQ(cast<unsigned char>(VProp(200.7f)), 200);
}

TEST(PropCast, KeepsTheLowBitsOfIntegers)
{
    EXPECT_EQ(cast<unsigned char>(VProp(300)), 44);
    EXPECT_EQ(cast<unsigned short>(VProp(-1)), 65535);
    EXPECT_EQ(cast<char>(VProp(200)), -56);
    EXPECT_EQ(cast<std::int64_t>(VProp(std::numeric_limits<std::uint64_t>::max())), -1);
}

TEST(PropCast, ToLogicalIsTrueForAllButZero)
{
    EXPECT_TRUE(cast<bool>(VProp(0.5)));
    EXPECT_TRUE(cast<bool>(VProp(nan)));
    EXPECT_FALSE(cast<bool>(VProp(0.0)));
    EXPECT_FALSE(cast<bool>(VProp(-0.0)));
    EXPECT_TRUE(cast<bool>(VProp(256)));
}

TEST(PropCast, FromLogicalIs0Or1)
{
    for_real_types(
        [](auto value)
        {
            EXPECT_EQ(cast<decltype(value)>(VProp(true)), decltype(value)(1));
            EXPECT_EQ(cast<decltype(value)>(VProp(false)), decltype(value)(0));
        });
}

TEST(PropCast, OfSmallNumbersIsExactForEveryPairOfRealTypes)
{
    for_real_types(
        [](auto from)
        {
            for_real_types(
                [](auto to)
                {
                    using From = decltype(from);
                    using To = decltype(to);
                    for (const int number : {0, 1, 2, 100, 127})
                        EXPECT_EQ(cast<To>(VProp(static_cast<From>(number))),
                                  static_cast<To>(static_cast<From>(number)));
                });
        });
}

TEST(PropCast, OfRealToComplexHasNoImaginaryPart)
{
    EXPECT_EQ(cast<std::complex<float>>(VProp(2.0)), std::complex<float>(2, 0));
    for_real_types(
        [](auto from)
        {
            using From = decltype(from);
            for_real_types(
                [](auto to)
                {
                    using To = decltype(to);
                    const auto result = cast<std::complex<To>>(VProp(From(1)));
                    EXPECT_EQ(result.real(), To(1));
                    EXPECT_EQ(result.imag(), To(0));
                });
        });
}

TEST(PropCast, OfComplexToComplexGoesPartByPart)
{
    EXPECT_EQ(cast<std::complex<unsigned char>>(VProp(std::complex<double>(1, 2))), std::complex<unsigned char>(1, 2));
    EXPECT_EQ(cast<std::complex<int>>(VProp(std::complex<float>(-1.5f, 2.5f))), std::complex<int>(-1, 2));
    const auto logical = cast<std::complex<bool>>(VProp(std::complex<double>(0, nan)));
    EXPECT_FALSE(logical.real());
    EXPECT_TRUE(logical.imag());
}

TEST(PropCast, OfComplexToRealIsRefused)
{
    for_real_types([](auto to) { expect_refused<decltype(to)>(VProp(std::complex<double>(1, 2))); });
}

TEST(PropCast, OfAScalarToAnArrayGivesOneByOne)
{
    VProparray<double> array;
    array.set_size({2, 3}, VProparrayBase::set_resize);
    array.userbits = 5;
    vela_prop_cast(VProp(7), &array, vela_dt_double | vela_dt_array);
    EXPECT_EQ(array.get_size(false), (std::vector<std::size_t>{1, 1}));
    EXPECT_EQ(array[0], 7.0);
    EXPECT_EQ(array.userbits, 5u);
}

TEST(PropCast, OfAnArrayKeepsItsSize)
{
    VProp prop;
    auto& source = prop.ensure_array<int>(0);
    source.set_size({2, 3}, VProparrayBase::set_resize);
    source.userbits = 9;
    for (int i = 0; i < 6; ++i)
        source[static_cast<std::size_t>(i)] = i - 3;
    const auto doubles = cast_array<double>(prop);
    EXPECT_EQ(doubles.get_size(false), (std::vector<std::size_t>{2, 3}));
    EXPECT_EQ(doubles.userbits, 0u);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(doubles[i], static_cast<double>(i) - 3);
    const auto logicals = cast_array<bool>(prop);
    EXPECT_TRUE(logicals[0]);
    EXPECT_FALSE(logicals[3]);
    const auto complexes = cast_array<std::complex<bool>>(prop);
    EXPECT_EQ(complexes.size(), 6u);
}

TEST(PropCast, OfARowThatHasGrownTakesItsSizeAsItIsNow)
{
    VProp prop;
    auto& source = prop.ensure_array<bool>(0);
    source.set_size({1, 2}, VProparrayBase::set_resize);
    source.push_back(true);
    EXPECT_EQ(cast_array<unsigned char>(prop).get_size(false), (std::vector<std::size_t>{1, 3}));
}

TEST(PropCast, OfAnArrayToAScalarFailsWhateverItHolds)
{
    VProp one;
    one.ensure_array<int>(1);
    VProp text;
    text.ensure_array<VPropstring>(1);
    for (const VProp& prop : {one, text})
    {
        int out = 7;
        EXPECT_VELA_ERROR_IN(vela_prop_cast(prop, &out, vela_dt_int32), "vela_prop_cast", "sources/props", -1,
                             "Cannot cast from array to scalar!");
        EXPECT_VELA_ERROR(vela_prop_cast(prop, &out, vela_dt_char), -1, "Cannot cast from array to scalar!");
        EXPECT_EQ(out, 7);
    }
}

TEST(PropCast, OfWhatIsNoNumberIsRefused)
{
    expect_refused<int>(VProp("12"));
    expect_refused<int>(VProp());
    expect_refused<int>(VProp(VPropstruct()));
    expect_refused<double>(VProp(_s_vela_RGB()));
    VProp cells;
    cells.ensure_array<VProp>(1);
    VProparray<int> out;
    EXPECT_VELA_ERROR(vela_prop_cast(cells, &out, vela_dt_int32 | vela_dt_array), -1, "Invalid cast!");
}

TEST(PropCast, ToWhatIsNoNumberIsRefused)
{
    VPropstring text(L"x");
    for (const vela_dt target :
         {vela_dt_none, vela_dt_char, vela_dt_cell, vela_dt_struct, vela_dt_rgb, vela_dt_packed_color, vela_dt_complex,
          vela_dt_char | vela_dt_array, vela_dt_complex | vela_dt_rgb, 3, 0x100})
        EXPECT_VELA_ERROR(vela_prop_cast(VProp(1), &text, target), -1, "Invalid cast!");
    EXPECT_TRUE(text == L"x");
}

TEST(PropCast, OfFloatsThatTheIntegerCannotHoldIsThatOfTheBulkConversion)
{
    EXPECT_EQ(cast<int>(VProp(1e10)), std::numeric_limits<int>::min());
    EXPECT_EQ(cast<int>(VProp(nan)), std::numeric_limits<int>::min());
    EXPECT_EQ(cast<std::int64_t>(VProp(-1e30)), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(cast<std::uint64_t>(VProp(1e30)), std::uint64_t{1} << 63);
    EXPECT_EQ(cast<unsigned int>(VProp(-1.0)), 0xffffffffu);
    EXPECT_EQ(cast<unsigned char>(VProp(300.5)), 44);
}

TEST(PropCast, OfUint64ToFloatsRoundsOnce)
{
    const std::uint64_t number = 0x8000000000000401;
    EXPECT_EQ(cast<double>(VProp(number)), static_cast<double>(number));
    EXPECT_EQ(cast<float>(VProp(number)), static_cast<float>(number));
}

TEST(PropCast, ReadsASharedValueWithoutDetachingIt)
{
    const VProp prop(5);
    const VProp copy(prop);
    EXPECT_EQ(cast<double>(copy), 5.0);
    EXPECT_EQ(static_cast<const void*>(prop.value_ptr()), copy.value_ptr());
}

} // namespace
