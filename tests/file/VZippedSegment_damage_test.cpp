// Compressed stretches that were cut, changed or lengthened.
#include "file/segment_fixture.h"

#include "support/expect_vela_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vela_test;
using testing::HasSubstr;

namespace {

class DamagedSegment : public SegmentTest
{
protected:
    DamagedSegment() : data(sparse_bytes(600)), stream(deflate_in_blocks(data, 6, 150)) {}

    static void expect_stated(const Outcome& outcome)
    {
        EXPECT_TRUE(is_stated_failure(outcome)) << outcome.id << " " << outcome.text;
    }

    std::size_t end_of_data() const { return stream.bytes.size() - 4; }

    /// Reads `count` bytes of a damaged stream of the same length as a good one, and holds the answer
    /// against that of plain zlib: right data, one of the failures that are stated, or a warning.
    void expect_answer_of_zlib(const Bytes& damaged, std::size_t count)
    {
        const Inflated inflated = inflate_whole(damaged);
        CapturedWarnings warnings;
        const Outcome outcome = try_to_read(count);
        const std::string printed = warnings.text();
        if (outcome.failed)
            expect_stated(outcome);
        const bool too_short = inflated.bytes.size() < count;
        const bool too_long = inflated.bytes.size() > count;
        const bool input_ended = inflated.code == Z_BUF_ERROR;
        const bool good = inflated.code == Z_STREAM_END && inflated.used == damaged.size();
        if (too_short || (!too_long && !input_ended && !good))
        {
            EXPECT_TRUE(outcome.failed);
        }
        if (!outcome.failed && !too_short)
        {
            EXPECT_TRUE(outcome.bytes == slice(inflated.bytes, 0, count));
        }
        // A stream that ends nowhere has no check sum, so what it gives may be wrong: this is the warning.
        if (!too_short && !too_long)
        {
            EXPECT_EQ(!outcome.failed && input_ended, printed.find("Inconsistency in segment!") != std::string::npos);
        }
    }

    /// Byte by byte: right data as far as they come, then one of the failures that are stated.
    void expect_right_prefix_then_stated(const Bytes& expected)
    {
        for (std::size_t i = 0; i < expected.size(); ++i)
        {
            const Outcome outcome = try_to_read(1);
            if (outcome.failed)
            {
                expect_stated(outcome);
                return;
            }
            ASSERT_EQ(outcome.bytes[0], expected[i]) << "byte " << i;
        }
    }

    const Bytes data;
    const FlushedStream stream;
};

TEST_F(DamagedSegment, CutInTheMiddleEndsAtTheSegmentBoundary)
{
    Bytes destination(data.size());
    for (std::size_t length = 1; length < end_of_data(); ++length)
    {
        const Bytes cut = slice(stream.bytes, 0, length);
        if (inflate_whole(cut).bytes.size() == data.size())
            continue; // All data are there, though not the end of the stream.
        SCOPED_TRACE(length);
        read_stretch(cut, 6, data.size());
        EXPECT_VELA_ERROR_IN(segment.read(destination.data(), destination.size()), "VZippedSegment::read",
                             "sources/file", -1, "Trying to read beyond segment boundary!");
    }
}

TEST_F(DamagedSegment, CutAtEveryLengthGivesARightPrefixOrFails)
{
    CapturedWarnings warnings;
    for (std::size_t length = 0; length <= stream.bytes.size(); ++length)
        for (const bool poisoned : {true, false})
            for (const std::uint32_t chunk_size : {1u, 16u, 0x400000u})
                for (const std::uint64_t declared : {std::uint64_t{data.size()}, all_ones})
                {
                    SCOPED_TRACE(testing::Message() << "length " << length << " chunk " << chunk_size);
                    // Poisoned: what was cut off goes on right behind the stretch, where nobody may read it.
                    const Bytes behind = slice(stream.bytes, length, stream.bytes.size());
                    put_stretch(slice(stream.bytes, 0, length), poisoned ? behind : Bytes());
                    file.set_chunk_size(chunk_size);
                    start_reading(6, declared);
                    const Outcome whole = try_to_read(data.size());
                    const std::size_t there = inflate_whole(slice(stream.bytes, 0, length)).bytes.size();
                    EXPECT_EQ(whole.failed, there < data.size());
                    if (whole.failed)
                        expect_stated(whole);
                    else
                        EXPECT_EQ(whole.bytes, data);
                    start_reading(6, declared);
                    expect_right_prefix_then_stated(data);
                }
}

TEST_F(DamagedSegment, EverySeekIntoACutStreamGivesRightDataOrFails)
{
    CapturedWarnings warnings;
    for (std::size_t length = 0; length < stream.bytes.size(); length += 3)
    {
        put_stretch(slice(stream.bytes, 0, length), slice(stream.bytes, length, stream.bytes.size()));
        for (std::size_t target = 0; target < data.size(); target += 50)
        {
            SCOPED_TRACE(testing::Message() << "length " << length << " target " << target);
            start_reading(6, data.size());
            segment.set_flush_positions(stream.flush_positions, 150);
            try
            {
                segment.seek(target);
            }
            catch (const VelaError& error)
            {
                const bool table_is_cut =
                    error.get_id() == -4 && error.get_msg() == "Invalid flush positions in segment!";
                EXPECT_TRUE(table_is_cut || is_stated_failure({true, error.get_id(), error.get_msg(), {}}))
                    << error.get_id() << " " << error.get_msg();
                continue;
            }
            EXPECT_EQ(segment.tell(), target);
            expect_right_prefix_then_stated(slice(data, target, std::min(target + 60, data.size())));
        }
    }
}

TEST_F(DamagedSegment, FileThatEndsInsideTheStretchFailsAsTheFileDoes)
{
    for (std::size_t length = 0; length < end_of_data(); length += 7)
    {
        put_stretch(slice(stream.bytes, 0, length), {});
        segment.init_r(file, 6, lead, stream.bytes.size(), data.size());
        const Outcome outcome = try_to_read(data.size());
        EXPECT_TRUE(outcome.failed);
        EXPECT_EQ(outcome.id, -3);
        EXPECT_THAT(outcome.text, testing::MatchesRegex("Failed reading [0-9]+ bytes from file!"));
    }
}

TEST_F(DamagedSegment, WrongCheckSumIsAZipError)
{
    for (std::size_t i = end_of_data(); i < stream.bytes.size(); ++i)
        for (const std::uint32_t chunk_size : {1u, 16u, 0x400000u})
        {
            Bytes damaged = stream.bytes;
            damaged[i] ^= 0x10;
            put_stretch(damaged);
            file.set_chunk_size(chunk_size);
            start_reading(6, data.size());
            Bytes destination(data.size());
            EXPECT_VELA_ERROR_IN(segment.read(destination.data(), destination.size()), "VZippedSegment::read",
                                 "sources/file", -10, "Zip error (-3)!");
            start_reading(6, data.size());
            expect_bytes(slice(data, 0, data.size() - 1));
            EXPECT_VELA_ERROR(segment.read(destination.data(), 1), -10, "Zip error (-3)!");
        }
}

TEST_F(DamagedSegment, MissingCheckSumIsAWarningAndTheDataAreRight)
{
    for (std::size_t length = end_of_data(); length < stream.bytes.size(); ++length)
    {
        SCOPED_TRACE(length);
        read_stretch(slice(stream.bytes, 0, length), 6, data.size());
        CapturedWarnings warnings;
        expect_bytes(slice(data, 0, data.size() - 1));
        expect_bytes(slice(data, data.size() - 1, data.size()));
        const std::string text = warnings.text();
        EXPECT_THAT(text, HasSubstr("Inconsistency in segment!"));
        EXPECT_THAT(text, HasSubstr("WARNING"));
        EXPECT_THAT(text, HasSubstr("VZippedSegment::read"));
        EXPECT_EQ(vela_get_last_error(), -10);
        EXPECT_EQ(segment.tell(), data.size());
    }
}

TEST_F(DamagedSegment, StreamWithoutItsLastBlockIsAWarningWhenAllDataAreThere)
{
    // The last block of the stream is empty, since the data end at a flush point.
    ASSERT_EQ(stream.flush_positions.size(), 4u);
    ASSERT_EQ(data.size(), 4u * 150u);
    read_stretch(slice(stream.bytes, 0, static_cast<std::size_t>(stream.flush_positions[3])), 6, data.size());
    CapturedWarnings warnings;
    expect_bytes(data);
    EXPECT_THAT(warnings.text(), HasSubstr("Inconsistency in segment!"));
}

TEST_F(DamagedSegment, FourBytesBehindTheStreamAreFineAndAnyOtherNumberIsNot)
{
    for (const std::size_t extra : {0u, 4u})
        for (const std::uint32_t chunk_size : {1u, 16u, 0x400000u})
        {
            put_stretch(stream.bytes + noisy_bytes(extra, 6));
            file.set_chunk_size(chunk_size);
            start_reading(6, data.size());
            CapturedWarnings warnings;
            expect_bytes(data);
            EXPECT_EQ(warnings.text(), "");
        }
    for (const std::size_t extra : {1u, 2u, 3u, 5u, 6u, 7u, 8u, 100u, 10000u})
        for (const std::uint32_t chunk_size : {1u, 16u, 0x400000u})
        {
            SCOPED_TRACE(testing::Message() << "extra " << extra << " chunk " << chunk_size);
            put_stretch(stream.bytes + noisy_bytes(extra, 6));
            file.set_chunk_size(chunk_size);
            start_reading(6, data.size());
            Bytes destination(data.size());
            EXPECT_VELA_ERROR_IN(segment.read(destination.data(), destination.size()), "VZippedSegment::read",
                                 "sources/file", -10, "Inconsistency in segment!");
            start_reading(6, data.size());
            expect_bytes(slice(data, 0, data.size() - 1));
            EXPECT_VELA_ERROR(segment.read(destination.data(), 1), -10, "Inconsistency in segment!");
        }
}

TEST_F(DamagedSegment, EndOfTheStreamIsJudgedTheSameWhereverItFallsInATransfer)
{
    // Bytes that are only stored give streams of every length around that of a transfer.
    constexpr std::size_t transfer = 65536;
    const Bytes large = noisy_bytes(transfer + 40);
    for (std::size_t size = transfer - 40; size <= transfer + 10; ++size)
        for (const std::uint32_t chunk_size : {static_cast<std::uint32_t>(transfer), 0x400000u})
        {
            SCOPED_TRACE(testing::Message() << "size " << size << " chunk " << chunk_size);
            const Bytes expected = slice(large, 0, size);
            const Bytes good = deflate_whole(expected, Z_NO_COMPRESSION);
            Bytes wrong_sum = good;
            wrong_sum.back() ^= 1;
            const Bytes no_sum = slice(good, 0, good.size() - 4);
            const Bytes half_sum = slice(good, 0, good.size() - 2);
            const auto start = [&](const Bytes& stretch)
            {
                put_stretch(stretch);
                file.set_chunk_size(chunk_size);
                start_reading(6, size);
                expect_bytes(slice(expected, 0, 30000));
            };
            const auto read_rest = [&] { expect_bytes(slice(expected, 30000, size)); };
            Bytes destination(size - 30000);
            {
                CapturedWarnings warnings;
                for (const Bytes& stretch : {good, good + Bytes{1, 2, 3, 4}})
                {
                    start(stretch);
                    read_rest();
                }
                EXPECT_EQ(warnings.text(), "");
            }
            for (const Bytes& stretch : {no_sum, half_sum})
            {
                start(stretch);
                CapturedWarnings warnings;
                read_rest();
                EXPECT_THAT(warnings.text(), HasSubstr("Inconsistency in segment!"));
            }
            start(wrong_sum);
            EXPECT_VELA_ERROR(segment.read(destination.data(), destination.size()), -10, "Zip error (-3)!");
            for (const Bytes& stretch : {good + Bytes{1}, good + Bytes{1, 2, 3, 4, 5}, good + noisy_bytes(transfer)})
            {
                start(stretch);
                EXPECT_VELA_ERROR(segment.read(destination.data(), destination.size()), -10,
                                  "Inconsistency in segment!");
            }
        }
}

TEST_F(DamagedSegment, StreamThatEndsEarlyIsAnInconsistency)
{
    const Bytes shorter = deflate_whole(slice(data, 0, 100));
    for (const Bytes& behind : {Bytes(), Bytes{1, 2, 3, 4}, noisy_bytes(50)})
    {
        read_stretch(shorter + behind, 6, data.size());
        Bytes destination(data.size());
        EXPECT_VELA_ERROR(segment.read(destination.data(), 101), -10, "Inconsistency in segment!");
    }
}

TEST_F(DamagedSegment, EveryChangedByteIsFoundWhereZlibFindsIt)
{
    for (const int level : {1, 6})
        for (const Bytes& original : {deflate_whole(data, level), deflate_whole(noisy_bytes(300), level)})
        {
            const Bytes expected = inflate_whole(original).bytes;
            for (std::size_t i = 0; i < original.size(); ++i)
                for (const int change : {0x01, 0x04, 0x20, 0x80, 0xFF})
                {
                    SCOPED_TRACE(testing::Message() << "byte " << i << " change " << change);
                    Bytes damaged = original;
                    damaged[i] = static_cast<unsigned char>(damaged[i] ^ change);
                    read_stretch(damaged, 6, expected.size());
                    expect_answer_of_zlib(damaged, expected.size());
                }
        }
}

TEST_F(DamagedSegment, EveryChangedByteIsFoundInSmallChunksToo)
{
    for (std::size_t i = 0; i < stream.bytes.size(); ++i)
    {
        Bytes damaged = stream.bytes;
        damaged[i] ^= 0xFF;
        put_stretch(damaged);
        file.set_chunk_size(3);
        start_reading(6, data.size());
        expect_answer_of_zlib(damaged, data.size());
    }
}

TEST_F(DamagedSegment, ChangedByteBehindAFlushPointGivesAnAnswer)
{
    // No check sum covers what is read from a flush point, so the data may be wrong; but they end.
    CapturedWarnings warnings;
    for (std::size_t i = 0; i < stream.bytes.size(); ++i)
    {
        Bytes damaged = stream.bytes;
        damaged[i] ^= 0xFF;
        put_stretch(damaged);
        start_reading(6, data.size());
        segment.set_flush_positions(stream.flush_positions, 150);
        segment.seek(300);
        const Outcome outcome = try_to_read(300);
        if (outcome.failed)
            expect_stated(outcome);
        const bool needed = i >= stream.flush_positions[1] && i < end_of_data();
        if (!needed)
        {
            EXPECT_EQ(outcome.bytes, slice(data, 300, 600)) << "byte " << i;
        }
    }
}

TEST_F(DamagedSegment, FlushPositionBesideTheTruthGivesAnAnswer)
{
    CapturedWarnings warnings;
    for (std::uint64_t position = 1; position < stream.bytes.size(); ++position)
    {
        read_stretch(stream.bytes, 6, data.size());
        segment.set_flush_positions({position}, 150);
        EXPECT_EQ(segment.seek(150), 150u);
        const Outcome outcome = try_to_read(200);
        if (outcome.failed)
            expect_stated(outcome);
        if (position == stream.flush_positions[0])
        {
            EXPECT_EQ(outcome.bytes, slice(data, 150, 350));
        }
    }
}

TEST_F(DamagedSegment, SomethingElseThanAStreamIsAZipError)
{
    CapturedWarnings warnings;
    Bytes destination(100);
    for (const Bytes& stretch : {noisy_bytes(100, 8), Bytes(100, 0), Bytes(100, 0xFF), slice(stream.bytes, 1, 90)})
    {
        read_stretch(stretch, 6, 100);
        EXPECT_VELA_ERROR(segment.read(destination.data(), 100), -10, "Zip error (-3)!");
    }
}

TEST_F(DamagedSegment, StreamWithADictionaryIsAZipError)
{
    // FDICT, with a header check that holds (RFC 1950).
    const Bytes stretch = Bytes{0x78, 0xBB, 1, 2, 3, 4} + slice(stream.bytes, 2, stream.bytes.size());
    read_stretch(stretch, 6, data.size());
    Bytes destination(data.size());
    EXPECT_VELA_ERROR(segment.read(destination.data(), destination.size()), -10, "Zip error (2)!");
}

TEST_F(DamagedSegment, EmptyStretchHasNothingToGive)
{
    for (const std::uint64_t declared : {std::uint64_t{10}, all_ones})
    {
        put_stretch({}, stream.bytes);
        start_reading(6, declared);
        const Outcome outcome = try_to_read(5);
        expect_stated(outcome);
    }
}

TEST_F(DamagedSegment, StretchBehindTheEndOfTheFileFailsAsTheFileDoes)
{
    put_stretch(stream.bytes);
    for (const std::uint64_t start : {std::uint64_t{100000}, std::uint64_t{1} << 62})
    {
        segment.init_r(file, 6, start, stream.bytes.size(), data.size());
        const Outcome outcome = try_to_read(10);
        EXPECT_EQ(outcome.id, -3);
        EXPECT_THAT(outcome.text, testing::StartsWith("Failed reading "));
    }
}

TEST_F(DamagedSegment, OtherStretchIsReadAfterAFailure)
{
    read_stretch(slice(stream.bytes, 0, 50), 6, data.size());
    EXPECT_TRUE(try_to_read(data.size()).failed);
    segment.end();
    read_stretch(stream.bytes, 6, data.size());
    expect_bytes(data);
}

} // namespace
