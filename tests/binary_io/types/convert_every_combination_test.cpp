#include "binary_io/types/conversion_case.h"
#include "binary_io/types/sample_values.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

// All 500 numeric combinations, each held against the bit by bit reference.

namespace vela_test {
namespace {

constexpr std::size_t pool_size = 8000;

/// Other seeds for real and imaginary parts, so that one taken for the other is seen.
struct Pools
{
    std::vector<std::uint64_t> real;
    std::vector<std::uint64_t> imag;

    explicit Pools(const ScalarKind& kind)
        : real(mixed_values(kind, pool_size, 0x1234567)), imag(mixed_values(kind, pool_size, 0x89abcdef))
    {
        real.resize(pool_size);
        imag.resize(pool_size);
    }
};

/// The values of a kind, made once: every combination draws on them.
const Pools& pools_of(const ScalarKind& kind)
{
    static std::map<std::uint32_t, Pools> pools;
    return pools.try_emplace(kind.id, kind).first->second;
}

std::vector<Combination> every_combination()
{
    std::vector<Combination> combinations;
    for (const Shape shape : all_shapes)
        for (const ScalarKind& source : scalar_kinds)
            for (const ScalarKind& target : scalar_kinds)
                combinations.push_back({shape, source, target});
    return combinations;
}

class EveryCombination : public testing::TestWithParam<Combination>
{
protected:
    static Conversion conversion()
    {
        const Pools& pools = pools_of(GetParam().source);
        return make_conversion(GetParam(), pools.real, pools.imag);
    }

    static void expect_counts(std::size_t least, std::size_t most)
    {
        const Conversion pool = conversion();
        for (std::size_t count = least; count <= most; ++count)
        {
            const std::size_t first = count * 131 % (pool_size - count); // not always the same samples at a place
            ASSERT_TRUE(converts(pool, first, count, shifts_of_turn(count))) << "count " << count;
        }
    }
};

TEST_P(EveryCombination, ConvertsEdgeAndRandomValues)
{
    EXPECT_TRUE(converts_all(conversion()));
}

TEST_P(EveryCombination, ConvertsAnyCountUpTo70AtAnyAddress)
{
    expect_counts(0, 70);
}

TEST_P(EveryCombination, ConvertsCountsAround4096AtAnyAddress)
{
    expect_counts(4090, 4102);
}

TEST_P(EveryCombination, ConvertsNothingWithoutBuffersAtCountZero)
{
    unsigned char present = 0xa5;
    const Combination& combination = GetParam();
    EXPECT_EQ(vela_dt_convert(combination.source_id(), combination.target_id(), nullptr, nullptr, 0,
                              combination.shape == Shape::join ? &present : nullptr,
                              combination.shape == Shape::split ? &present : nullptr),
              0);
    EXPECT_EQ(present, 0xa5);
}

INSTANTIATE_TEST_SUITE_P(Numeric, EveryCombination, testing::ValuesIn(every_combination()),
                         [](const testing::TestParamInfo<Combination>& tested) { return tested.param.name(); });

TEST(NumericCombinations, Are500)
{
    EXPECT_EQ(every_combination().size(), 500u);
}

TEST(NumericCombinations, AreFedWithAllEdgeValues)
{
    for (const ScalarKind& kind : scalar_kinds)
        EXPECT_LT(edge_values(kind).size(), pool_size) << kind.name;
}

// Every 8-bit and 16-bit pattern to every type, by every way that a scalar can go in.

class EveryPattern : public testing::TestWithParam<ScalarKind>
{
protected:
    void expect_all_convert(Shape shape)
    {
        const std::vector<std::uint64_t> upwards = all_values(GetParam());
        const std::vector<std::uint64_t> downwards(upwards.rbegin(), upwards.rend());
        for (const ScalarKind& target : scalar_kinds)
            EXPECT_TRUE(converts_all(make_conversion({shape, GetParam(), target}, upwards, downwards)))
                << "to " << target.name;
    }
};

TEST_P(EveryPattern, ConvertsToEveryScalar)
{
    expect_all_convert(Shape::scalar_to_scalar);
}

TEST_P(EveryPattern, ConvertsToEveryComplexType)
{
    expect_all_convert(Shape::scalar_to_complex);
}

TEST_P(EveryPattern, ConvertsAsAPartOfAComplexSample)
{
    expect_all_convert(Shape::complex_to_complex);
}

TEST_P(EveryPattern, IsSplitOffAComplexSample)
{
    expect_all_convert(Shape::split);
}

TEST_P(EveryPattern, JoinsToAComplexSample)
{
    expect_all_convert(Shape::join);
}

INSTANTIATE_TEST_SUITE_P(Of16BitsOrFewer, EveryPattern, testing::Values(uint8_kind, int8_kind, uint16_kind, int16_kind),
                         [](const testing::TestParamInfo<ScalarKind>& tested)
                         { return std::string(tested.param.name); });

} // namespace
} // namespace vela_test
