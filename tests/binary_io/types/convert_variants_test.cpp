// The loops of every instruction set give the same bits: those of the baseline, compiled into this program, are
// held against those that the library chooses on this processor.

#include "sources/binary_io/types/convert_tables.h"

#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using Vela::detail::convert_tables_baseline;
using Vela::detail::scalar_count;

typedef std::vector<unsigned char> Bytes;

constexpr std::array<std::uint32_t, scalar_count> ids = {0x1, 0x2, 0x4, 0x8, 0x10, 0x20, 0x40, 0x80, 0x1000, 0x2000};
constexpr std::uint32_t complex_flag = 0x40000000;
constexpr std::size_t largest_sample = 16;

/// Runs of values as they come in images, with some of every kind that an image does not have. Which kinds is
/// drawn for each stretch, so that blocks of one kind and blocks with a single stray value both occur.
template <class Float>
void put_floats(Bytes& bytes, std::mt19937_64& random)
{
    const double scales[] = {1, 200, 30000, 60000, 1e6, 3e9, 1e12, 1e18, 1e19, 1e30};
    double scale = 1;
    bool with_sign = false;
    for (std::size_t at = 0; at + sizeof(Float) <= bytes.size(); at += sizeof(Float))
    {
        if (at % (1500 * sizeof(Float)) == 0)
        {
            scale = scales[random() % std::size(scales)];
            with_sign = random() % 2 == 0;
        }
        double value = scale * static_cast<double>(random() >> 11) / 9007199254740992.0;
        if (with_sign && random() % 2 == 0)
            value = -value;
        if (random() % 997 == 0)
            value = std::array{32767.0,
                               -32768.0,
                               65535.0,
                               65536.0,
                               -1.0,
                               255.0,
                               256.0,
                               2147483648.0,
                               -2147483648.0,
                               4294967296.0,
                               9223372036854775808.0,
                               HUGE_VAL,
                               std::nan("")}[random() % 13];
        const Float number = static_cast<Float>(value);
        std::memcpy(bytes.data() + at, &number, sizeof number);
    }
}

Bytes values_for(std::size_t scalar, std::size_t count, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    Bytes bytes(count * largest_sample);
    if (ids[scalar] == 0x40)
        put_floats<float>(bytes, random);
    else if (ids[scalar] == 0x80)
        put_floats<double>(bytes, random);
    else
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(random());
    return bytes;
}

class EveryPair : public testing::TestWithParam<std::size_t>
{
protected:
    /// Runs `check(source scalar, target scalar, values, count)` over targets, counts and misalignments.
    template <class Check>
    void for_all(Check check)
    {
        const std::size_t from = GetParam();
        const Bytes values = values_for(from, 20001, 1000 + from);
        for (std::size_t to = 0; to < scalar_count; ++to)
            for (const std::size_t count : {0u, 1u, 31u, 1023u, 1024u, 1025u, 20000u})
                for (const std::size_t shift : {0u, 1u, 8u})
                {
                    SCOPED_TRACE(std::string(vela_dt_get_name(static_cast<vela_dt>(ids[from]))) + " to " +
                                 vela_dt_get_name(static_cast<vela_dt>(ids[to])) + ", " + std::to_string(count) +
                                 " samples, shifted by " + std::to_string(shift));
                    check(from, to, values.data() + shift % largest_sample, count, shift);
                }
    }

    static Bytes target(std::size_t count, std::size_t shift)
    {
        return Bytes(count * largest_sample + shift + 16, 0xA5);
    }
};

TEST_P(EveryPair, ScalarsConvertAlikeInEveryInstructionSet)
{
    for_all(
        [](std::size_t from, std::size_t to, const unsigned char* values, std::size_t count, std::size_t shift)
        {
            Bytes baseline = target(count, shift);
            Bytes chosen = baseline;
            convert_tables_baseline.scalar[from][to](values, baseline.data() + shift, count);
            ASSERT_EQ(vela_dt_convert(ids[from], ids[to], values, chosen.data() + shift, count, nullptr, nullptr), 0);
            EXPECT_TRUE(baseline == chosen);
        });
}

TEST_P(EveryPair, ScalarsBecomeComplexAlikeInEveryInstructionSet)
{
    for_all(
        [](std::size_t from, std::size_t to, const unsigned char* values, std::size_t count, std::size_t shift)
        {
            Bytes baseline = target(count, shift);
            Bytes chosen = baseline;
            convert_tables_baseline.to_complex[from][to](values, baseline.data() + shift, count);
            ASSERT_EQ(vela_dt_convert(ids[from], ids[to] | complex_flag, values, chosen.data() + shift, count, nullptr,
                                      nullptr),
                      0);
            EXPECT_TRUE(baseline == chosen);
        });
}

TEST_P(EveryPair, ComplexSamplesSplitAlikeInEveryInstructionSet)
{
    for_all(
        [](std::size_t from, std::size_t to, const unsigned char* values, std::size_t count, std::size_t shift)
        {
            count /= 2;
            Bytes baseline = target(count, shift);
            Bytes baseline_imag = target(count, shift);
            Bytes chosen = baseline;
            Bytes chosen_imag = baseline_imag;
            convert_tables_baseline.split[from][to](values, baseline.data() + shift, baseline_imag.data() + shift,
                                                    count);
            ASSERT_EQ(vela_dt_convert(ids[from] | complex_flag, ids[to], values, chosen.data() + shift, count, nullptr,
                                      chosen_imag.data() + shift),
                      0);
            EXPECT_TRUE(baseline == chosen);
            EXPECT_TRUE(baseline_imag == chosen_imag);
        });
}

TEST_P(EveryPair, ScalarsJoinAlikeInEveryInstructionSet)
{
    for_all(
        [](std::size_t from, std::size_t to, const unsigned char* values, std::size_t count, std::size_t shift)
        {
            count /= 2;
            const unsigned char* const imag = values + count * 8;
            Bytes baseline = target(count, shift);
            Bytes chosen = baseline;
            convert_tables_baseline.join[from][to](values, imag, baseline.data() + shift, count);
            ASSERT_EQ(
                vela_dt_convert(ids[from], ids[to] | complex_flag, values, chosen.data() + shift, count, imag, nullptr),
                0);
            EXPECT_TRUE(baseline == chosen);
        });
}

INSTANTIATE_TEST_SUITE_P(InstructionSets, EveryPair, testing::Range<std::size_t>(0, scalar_count),
                         [](const auto& parameter)
                         { return std::string(vela_dt_get_name(static_cast<vela_dt>(ids[parameter.param]))); });

} // namespace
