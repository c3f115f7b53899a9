#include "binary_io/types/conversion_case.h"
#include "binary_io/types/sample_values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

// Evenly spread patterns over the whole range of a wide type; the strides are odd, so every low bit turns up.

namespace vela_test {
namespace {

constexpr std::size_t block_samples = 4096;

/// Converts every `stride`th pattern of a source of 32 bits.
void sweep_32_bits(const ScalarKind& source, const ScalarKind& target, std::uint64_t stride)
{
    std::vector<std::uint64_t> block;
    std::uint64_t converted_samples = 0;
    for (std::uint64_t next = 0; next <= source.mask();)
    {
        block.clear();
        for (; next <= source.mask() && block.size() < block_samples; next += stride)
            block.push_back(next);
        ASSERT_TRUE(converts_all(make_conversion({Shape::scalar_to_scalar, source, target}, block, {})))
            << "in the block from 0x" << std::hex << block.front();
        converted_samples += block.size();
    }
    EXPECT_EQ(converted_samples, source.mask() / stride + 1);
}

class SweepOverSinglePatterns : public testing::TestWithParam<ScalarKind>
{
};

TEST_P(SweepOverSinglePatterns, ConvertsEach1021st)
{
    sweep_32_bits(single_kind, GetParam(), 1021);
}

INSTANTIATE_TEST_SUITE_P(To, SweepOverSinglePatterns,
                         testing::Values(uint8_kind, uint16_kind, int16_kind, uint32_kind, int32_kind, uint64_kind),
                         [](const testing::TestParamInfo<ScalarKind>& tested)
                         { return std::string(tested.param.name); });

TEST(SweepOverSinglePatternsTo, Int8Int64AndDouble)
{
    for (const ScalarKind& target : {int8_kind, int64_kind, double_kind})
        sweep_32_bits(single_kind, target, 10007);
}

TEST(SweepOverUint32Patterns, ToFloats)
{
    for (const ScalarKind& target : {single_kind, double_kind})
        sweep_32_bits(uint32_kind, target, 4093);
}

TEST(SweepOverInt32Patterns, ToFloats)
{
    for (const ScalarKind& target : {single_kind, double_kind})
        sweep_32_bits(int32_kind, target, 4093);
}

/// Converts many random values of a wide type that the other tests do not have.
void convert_random(const ScalarKind& source, const ScalarKind& target, std::uint64_t seed)
{
    EXPECT_TRUE(converts_all(
        make_conversion({Shape::scalar_to_scalar, source, target}, mixed_values(source, 200000, seed), {})))
        << source.name << " to " << target.name;
}

TEST(ManyRandomSamples, ConvertFromDoubleToEveryScalar)
{
    for (const ScalarKind& target : scalar_kinds)
        convert_random(double_kind, target, 0xd0d0 + target.id);
}

TEST(ManyRandomSamples, ConvertFrom64BitIntegersToFloats)
{
    for (const ScalarKind& source : {uint64_kind, int64_kind})
        for (const ScalarKind& target : {single_kind, double_kind})
            convert_random(source, target, source.id * 31 + target.id);
}

} // namespace
} // namespace vela_test
