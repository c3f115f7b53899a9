#include "binary_io/types/conversion_case.h"

#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace vela_test {
namespace {

constexpr std::uint32_t three_bytes = 0x400;
constexpr std::uint32_t packed_word = 0x800;

typedef std::vector<std::uint32_t> Words;

SampleBytes bytes_of_words(const Words& words)
{
    SampleBytes bytes(words.size() * 4);
    for (std::size_t i = 0; i < words.size(); ++i)
        store_bits(4, bytes.data() + 4 * i, words[i]);
    return bytes;
}

std::size_t size_of(std::uint32_t id)
{
    return id == three_bytes ? 3 : 4;
}

/// Converts `count` samples and looks at every byte.
testing::AssertionResult converts_colours(std::uint32_t source_id, std::uint32_t target_id, const SampleBytes& source,
                                          const SampleBytes& expected, std::size_t count, const Shifts& shifts)
{
    const SourceBlock input(source.data(), count * size_of(source_id), shifts.source);
    TargetBlock output(count * size_of(target_id), shifts.target);
    if (vela_dt_convert(source_id, target_id, input.data(), output.data(), count, nullptr, nullptr) != 0)
        return testing::AssertionFailure() << "refused";
    for (std::size_t i = 0; i < count * size_of(target_id); ++i)
        if (output.data()[i] != expected[i])
            return testing::AssertionFailure()
                   << "byte " << i << " is " << unsigned{output.data()[i]} << ", not " << unsigned{expected[i]};
    if (!output.guards_are_intact())
        return testing::AssertionFailure() << "wrote outside of the target";
    return testing::AssertionSuccess();
}

SampleBytes converted_colours(std::uint32_t source_id, std::uint32_t target_id, const SampleBytes& source)
{
    const std::size_t count = source.size() / size_of(source_id);
    SampleBytes target(count * size_of(target_id), 0xa5);
    EXPECT_EQ(vela_dt_convert(source_id, target_id, source.data(), target.data(), count, nullptr, nullptr), 0);
    return target;
}

TEST(ColourConversion, PackingPutsByteZeroIntoTheLowBitsAndClearsTheTop)
{
    EXPECT_EQ(converted_colours(three_bytes, packed_word, {1, 2, 3, 0xff, 0xfe, 0xfd}),
              bytes_of_words({0x00030201, 0x00fdfeff}));
}

TEST(ColourConversion, UnpackingPutsTheLowBitsIntoByteTwo)
{
    EXPECT_EQ(converted_colours(packed_word, three_bytes, bytes_of_words({0x00030201, 0xaabbccdd})),
              (SampleBytes{3, 2, 1, 0xbb, 0xcc, 0xdd}));
}

TEST(ColourConversion, RoundTripSwapsBytesZeroAndTwo)
{
    const SampleBytes source = {1, 2, 3, 0x10, 0x20, 0x30};
    EXPECT_EQ(converted_colours(packed_word, three_bytes, converted_colours(three_bytes, packed_word, source)),
              (SampleBytes{3, 2, 1, 0x30, 0x20, 0x10}));
}

TEST(ColourConversion, RoundTripOfTheWordSwapsBytesAndDropsTheTop)
{
    EXPECT_EQ(converted_colours(three_bytes, packed_word,
                                converted_colours(packed_word, three_bytes, bytes_of_words({0x44332211}))),
              bytes_of_words({0x00112233}));
}

TEST(ColourConversion, SameTypeCopiesInOrder)
{
    EXPECT_EQ(converted_colours(three_bytes, three_bytes, {1, 2, 3, 4, 5, 6}), (SampleBytes{1, 2, 3, 4, 5, 6}));
}

TEST(ColourConversion, WordToWordKeepsAll32Bits)
{
    EXPECT_EQ(converted_colours(packed_word, packed_word, bytes_of_words({0xaabbccdd, 0xff000000})),
              bytes_of_words({0xaabbccdd, 0xff000000}));
}

TEST(ColourConversion, HoldsForRandomColoursAtAnyCountAndAddress)
{
    constexpr std::size_t pool_size = 4110;
    std::mt19937_64 random(0xc01042);
    SampleBytes colours(pool_size * 3);
    for (unsigned char& byte : colours)
        byte = static_cast<unsigned char>(random());
    Words words(pool_size);
    for (std::uint32_t& word : words)
        word = static_cast<std::uint32_t>(random());

    Words packed(pool_size);
    SampleBytes unpacked(pool_size * 3);
    for (std::size_t i = 0; i < pool_size; ++i)
    {
        packed[i] = colours[3 * i] + 0x100u * colours[3 * i + 1] + 0x10000u * colours[3 * i + 2];
        unpacked[3 * i] = static_cast<unsigned char>(words[i] / 0x10000 % 0x100);
        unpacked[3 * i + 1] = static_cast<unsigned char>(words[i] / 0x100 % 0x100);
        unpacked[3 * i + 2] = static_cast<unsigned char>(words[i] % 0x100);
    }
    const SampleBytes word_bytes = bytes_of_words(words);
    const SampleBytes packed_bytes = bytes_of_words(packed);

    std::vector<std::size_t> counts;
    for (std::size_t count = 0; count <= 70; ++count)
        counts.push_back(count);
    for (std::size_t count = 4090; count <= pool_size; ++count)
        counts.push_back(count);
    for (const std::size_t count : counts)
    {
        const Shifts shifts = shifts_of_turn(count);
        ASSERT_TRUE(converts_colours(three_bytes, packed_word, colours, packed_bytes, count, shifts)) << count;
        ASSERT_TRUE(converts_colours(packed_word, three_bytes, word_bytes, unpacked, count, shifts)) << count;
        ASSERT_TRUE(converts_colours(three_bytes, three_bytes, colours, colours, count, shifts)) << count;
        ASSERT_TRUE(converts_colours(packed_word, packed_word, word_bytes, word_bytes, count, shifts)) << count;
    }
}

TEST(ColourConversion, TakesNullBuffersAtCountZero)
{
    for (const std::uint32_t source : {three_bytes, packed_word})
        for (const std::uint32_t target : {three_bytes, packed_word})
            EXPECT_EQ(vela_dt_convert(source, target, nullptr, nullptr, 0, nullptr, nullptr), 0);
}

} // namespace
} // namespace vela_test
