// What holds for any data, level, block size, chunk size and order of calls, with fixed seeds.
#include "file/segment_fixture.h"

#include <gtest/gtest.h>

#include <random>

using namespace vela_test;

namespace {

/// The data and the conditions of one test.
struct Conditions
{
    explicit Conditions(unsigned seed) : random(seed)
    {
        const std::size_t sizes[] = {0, 1, 2, 100, 1000, 20000, 100000};
        const std::size_t least_size = one_of(sizes);
        const std::size_t size = least_size > 2 ? least_size + random() % least_size : least_size;
        data = bytes_of_each_kind(size, seed).at(random() % 3);
        level = static_cast<int>(random() % 10);
        const std::uint32_t chunk_sizes[] = {2, 10, 100, 4096, 65536, 0x400000};
        chunk_size = one_of(chunk_sizes);
        // Not more than 500 flush points.
        const std::size_t block_sizes[] = {0, size / 500 + 1, size / 100 + 1, 65536, size / 4 + 1, size};
        block_size = one_of(block_sizes);
    }

    template <class Value, std::size_t count>
    Value one_of(const Value (&values)[count])
    {
        return values[random() % count];
    }

    /// From 0 to `limit`, small ones more often.
    std::size_t up_to(std::size_t limit)
    {
        const std::size_t bound = random() % 2 == 0 ? std::min<std::size_t>(limit, 20) : limit;
        return random() % (bound + 1);
    }

    std::mt19937 random;
    Bytes data;
    int level = 0;
    std::uint32_t chunk_size = 0;
    std::size_t block_size = 0;
};

class AnySegment : public SegmentTest, public testing::WithParamInterface<unsigned>
{
protected:
    WrittenStretch write_in_random_pieces(Conditions& given)
    {
        start_file(given.chunk_size);
        segment.init_w(file, given.level, given.random() % 2 == 0 ? given.data.size() : all_ones);
        segment.set_flush_block_size(given.block_size);
        for (std::size_t begin = 0; begin < given.data.size();)
        {
            const std::size_t count = given.up_to(given.data.size() - begin);
            segment.write(given.data.data() + begin, count);
            begin += count;
            EXPECT_EQ(segment.tell(), begin);
            if (given.random() % 4 == 0)
                file.seek(given.random() % 1000);
        }
        return finish_stretch();
    }

    void read_at_random(Conditions& given)
    {
        for (int i = 0; i < 60; ++i)
        {
            if (given.random() % 4 != 0 && given.data.size() > 0)
            {
                const std::size_t target = given.random() % given.data.size();
                ASSERT_EQ(segment.seek(target), target);
            }
            const std::size_t pos = static_cast<std::size_t>(segment.tell());
            const std::size_t count = given.up_to(given.data.size() - pos);
            ASSERT_TRUE(read_bytes(count) == slice(given.data, pos, pos + count)) << pos << " " << count;
            ASSERT_EQ(segment.tell(), pos + count);
            if (given.random() % 4 == 0)
                file.seek(given.random() % 1000);
        }
    }
};

TEST_P(AnySegment, HoldsAndGivesWhatWasWritten)
{
    Conditions given(GetParam());
    SCOPED_TRACE(testing::Message() << "size " << given.data.size() << " level " << given.level << " chunk "
                                    << given.chunk_size << " block " << given.block_size);
    const WrittenStretch stretch = write_in_random_pieces(given);
    if (given.level == 0)
    {
        ASSERT_TRUE(stretch.bytes == given.data);
    }
    else
    {
        const Inflated inflated = inflate_whole(stretch.bytes);
        ASSERT_EQ(inflated.code, Z_STREAM_END);
        ASSERT_EQ(inflated.used, stretch.bytes.size());
        ASSERT_TRUE(inflated.bytes == given.data);
        ASSERT_EQ(stretch.flush_positions.size(), given.block_size == 0 ? 0 : given.data.size() / given.block_size);
    }

    CapturedWarnings warnings;
    put_stretch(stretch.bytes);
    file.set_chunk_size(given.chunk_size);
    start_reading(given.level, given.random() % 2 == 0 ? given.data.size() : all_ones);
    if (given.random() % 4 != 0)
        segment.set_flush_positions(stretch.flush_positions, given.block_size);
    read_at_random(given);
    if (given.data.size() > 0)
        segment.seek(0);
    expect_bytes(given.data);
    EXPECT_EQ(warnings.text(), "");
}

INSTANTIATE_TEST_SUITE_P(Seed, AnySegment, testing::Range(0u, 120u));

} // namespace
