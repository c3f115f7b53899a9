// Floats become small integers in blocks, and a block takes a slower way when one value needs it. So one stray value
// at every place of a block, among values that do not need it, for the loops of the baseline and those that the
// library chooses, each held against the conversion worked out bit by bit.

#include "sample_reference.h"

#include "sources/binary_io/types/convert_tables.h"

#include <VelaBase/vela_dt_convert.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

using vela_test::ScalarKind;

typedef std::vector<unsigned char> Bytes;
typedef std::tuple<ScalarKind, ScalarKind> Pair;

/// Three blocks of 1024 and a tail.
constexpr std::size_t count = 3 * 1024 + 21;

constexpr double fills[] = {0, 7, 200, -3, 300, 40000, 70000, 1e9};

const double strays[] = {-0.5,
                         -1,
                         255.9,
                         256,
                         32766,
                         32767,
                         32768,
                         -32767,
                         -32768,
                         -32769,
                         65535,
                         65536,
                         2147483520,
                         2147483648.0,
                         2147483904.0,
                         -2147483648.0,
                         -2147483904.0,
                         4294967808.0,
                         549755879424.0,
                         9.3e18,
                         std::numeric_limits<double>::infinity(),
                         -std::numeric_limits<double>::infinity(),
                         std::numeric_limits<double>::quiet_NaN()};

std::size_t table_index(const ScalarKind& kind)
{
    for (std::size_t i = 0; i < vela_test::scalar_kinds.size(); ++i)
        if (vela_test::scalar_kinds[i].id == kind.id)
            return i;
    return vela_test::scalar_kinds.size();
}

std::uint64_t bits_of(const ScalarKind& kind, double value)
{
    return kind.size_bytes == 4 ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                                : std::bit_cast<std::uint64_t>(value);
}

class OneStray : public testing::TestWithParam<Pair>
{
protected:
    const ScalarKind& source_kind() const { return std::get<0>(GetParam()); }
    const ScalarKind& target_kind() const { return std::get<1>(GetParam()); }

    void fill(double value)
    {
        source.assign(count * source_kind().size_bytes, 0);
        for (std::size_t i = 0; i < count; ++i)
            put(i, value);
        expected.assign(count * target_kind().size_bytes, 0);
        for (std::size_t i = 0; i < count; ++i)
            expect(i, value);
    }

    void put(std::size_t index, double value)
    {
        vela_test::store_bits(source_kind().size_bytes, source.data() + index * source_kind().size_bytes,
                              bits_of(source_kind(), value));
    }

    void expect(std::size_t index, double value)
    {
        vela_test::store_bits(target_kind().size_bytes, expected.data() + index * target_kind().size_bytes,
                              vela_test::converted_bits(source_kind(), target_kind(), bits_of(source_kind(), value)));
    }

    void check(const std::string& what)
    {
        Bytes target(expected.size(), 0xA5);
        ASSERT_EQ(
            vela_dt_convert(source_kind().id, target_kind().id, source.data(), target.data(), count, nullptr, nullptr),
            0);
        ASSERT_TRUE(target == expected) << "chosen, " << what;
        target.assign(expected.size(), 0xA5);
        Vela::detail::convert_tables_baseline.scalar[table_index(source_kind())][table_index(target_kind())](
            source.data(), target.data(), count);
        ASSERT_TRUE(target == expected) << "baseline, " << what;
    }

    Bytes source;
    Bytes expected;
};

TEST_P(OneStray, IsConvertedAsAnyValueIs)
{
    // All lanes of one step in the first block, and some of a later block and of the tail.
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < 33; ++i)
        places.push_back(i);
    for (const std::size_t place : {1023u, 1024u, 1024u + 517u, 2u * 1024u + 70u, 3u * 1024u + 1u})
        places.push_back(place);
    for (const double value : fills)
    {
        fill(value);
        for (const double stray : strays)
            for (const std::size_t place : places)
            {
                put(place, stray);
                expect(place, stray);
                check(std::to_string(stray) + " among " + std::to_string(value) + " at " + std::to_string(place));
                if (HasFatalFailure())
                    return;
                put(place, value);
                expect(place, value);
            }
    }
}

INSTANTIATE_TEST_SUITE_P(FloatsToSmallIntegers, OneStray,
                         testing::Combine(testing::Values(vela_test::single_kind, vela_test::double_kind),
                                          testing::Values(vela_test::uint8_kind, vela_test::int8_kind,
                                                          vela_test::uint16_kind, vela_test::int16_kind)),
                         [](const testing::TestParamInfo<Pair>& parameter) {
                             return std::string(std::get<0>(parameter.param).name) + "To" +
                                    std::get<1>(parameter.param).name;
                         });

} // namespace
