/// A test of `VZippedSegment` on a stretch of a file with foreign bytes around it.
#pragma once

#include <VelaBase/VelaError.h>
#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include "support/temporary_folder.h"
#include "support/zlib_stream.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace vela_test {

constexpr std::uint64_t all_ones = VFileAccess::all_ones;

/// A file that notes what is moved where.
class WatchedFile : public VFile
{
public:
    struct Transfer
    {
        std::uint64_t pos_file;
        std::uint64_t size_bytes;
    };

    using VFile::VFile;

    void read(void* buffer, std::uint64_t size_bytes) override
    {
        reads.push_back({tell(), size_bytes});
        VFile::read(buffer, size_bytes);
    }

    void write(const void* buffer, std::uint64_t size_bytes) override
    {
        writes.push_back({tell(), size_bytes});
        VFile::write(buffer, size_bytes);
    }

    static std::uint64_t total_bytes(const std::vector<Transfer>& transfers)
    {
        std::uint64_t total = 0;
        for (const Transfer& transfer : transfers)
            total += transfer.size_bytes;
        return total;
    }

    static std::uint64_t largest(const std::vector<Transfer>& transfers)
    {
        std::uint64_t size_bytes = 0;
        for (const Transfer& transfer : transfers)
            size_bytes = std::max(size_bytes, transfer.size_bytes);
        return size_bytes;
    }

    std::vector<Transfer> reads;
    std::vector<Transfer> writes;
};

/// What a stretch holds beside its bytes when it was written by a segment.
struct WrittenStretch
{
    Bytes bytes;
    std::vector<std::uint64_t> flush_positions;
    std::uint64_t block_size = 0;
};

/// What came of a read that may fail.
struct Outcome
{
    bool failed = false;
    int id = 0;
    std::string text;
    Bytes bytes; ///< what the destination holds, right or wrong
};

class SegmentTest : public FolderTest
{
protected:
    static constexpr std::size_t lead = 37;
    static constexpr unsigned char untouched = 0xA5;

    /// Writes the file "stretch": foreign bytes, the stretch, and `behind`; and opens it for reading.
    void put_stretch(const Bytes& stretch, const Bytes& behind = noisy_bytes(100, 77))
    {
        segment.end();
        file.close();
        // A new file each time: some file systems wait for the disk when a file is cut and written anew.
        std::filesystem::remove(path("stretch"));
        put_bytes(path("stretch"), noisy_bytes(lead, 99) + stretch + behind);
        file.open(file_name(path("stretch")), VFile::read_mode);
        file.reads.clear();
        stretch_size = stretch.size();
    }

    /// Starts reading what `put_stretch` put.
    void start_reading(int level, std::uint64_t size) { segment.init_r(file, level, lead, stretch_size, size); }

    void read_stretch(const Bytes& stretch, int level, std::uint64_t size)
    {
        put_stretch(stretch);
        start_reading(level, size);
    }

    /// Opens a new file for writing, with foreign bytes before its position.
    void start_file(std::uint32_t chunk_size = 0x400000)
    {
        segment.end();
        file.close();
        std::filesystem::remove(path("written"));
        file.open(file_name(path("written")), VFile::write_mode);
        file.set_chunk_size(chunk_size);
        const Bytes foreign = noisy_bytes(lead, 98);
        file.write(foreign.data(), foreign.size());
        file.writes.clear();
    }

    /// Writes `data` in pieces into a new file, ends the stream and gives the stretch.
    WrittenStretch write_stretch(const Bytes& data, int level, std::uint64_t block_size = 0,
                                 std::size_t piece_size = static_cast<std::size_t>(-1),
                                 std::uint32_t chunk_size = 0x400000)
    {
        start_file(chunk_size);
        segment.init_w(file, level, data.size());
        segment.set_flush_block_size(block_size);
        write_pieces(data, piece_size);
        return finish_stretch();
    }

    void write_pieces(const Bytes& data, std::size_t piece_size)
    {
        for (std::size_t begin = 0; begin < data.size();)
        {
            const std::size_t count = std::min(piece_size, data.size() - begin);
            segment.write(data.data() + begin, count);
            begin += count;
        }
    }

    /// Ends the stream of `start_file` and gives the stretch.
    WrittenStretch finish_stretch()
    {
        WrittenStretch result;
        const std::uint64_t length = segment.write_end();
        result.flush_positions = segment.get_flush_positions(result.block_size);
        segment.end();
        file.close();
        const Bytes content = get_bytes(path("written"));
        EXPECT_EQ(content.size(), lead + length);
        EXPECT_EQ(slice(content, 0, lead), noisy_bytes(lead, 98));
        result.bytes = slice(content, lead, content.size());
        return result;
    }

    /// Reads into a destination that is filled with something wrong, and watches what lies behind it.
    static Bytes read_from(VFileAccess& stream, std::size_t count)
    {
        Bytes bytes(count + guard, untouched);
        stream.read(bytes.data(), count);
        EXPECT_EQ(slice(bytes, count, count + guard), Bytes(guard, untouched))
            << "bytes behind the destination changed";
        bytes.resize(count);
        return bytes;
    }
    Bytes read_bytes(std::size_t count) { return read_from(segment, count); }

    /// The same, where a `VelaError` is an answer too.
    Outcome try_to_read(std::size_t count)
    {
        Outcome outcome;
        outcome.bytes.assign(count + guard, untouched);
        try
        {
            segment.read(outcome.bytes.data(), count);
        }
        catch (const VelaError& error)
        {
            outcome.failed = true;
            outcome.id = error.get_id();
            outcome.text = error.get_msg();
        }
        EXPECT_EQ(slice(outcome.bytes, count, count + guard), Bytes(guard, untouched))
            << "bytes behind the destination changed";
        outcome.bytes.resize(count);
        return outcome;
    }

    /// The failure is one of those that a damaged stretch is answered with.
    static bool is_stated_failure(const Outcome& outcome)
    {
        const auto begins = [&](const char* start) { return outcome.text.rfind(start, 0) == 0; };
        return outcome.failed &&
               ((outcome.id == -1 && outcome.text == "Trying to read beyond segment boundary!") ||
                (outcome.id == -10 && outcome.text == "Inconsistency in segment!") ||
                (outcome.id == -10 && begins("Zip error (") && outcome.text.substr(outcome.text.size() - 2) == ")!") ||
                (outcome.id == -3 && begins("Failed reading ")));
    }

    /// `read` gives exactly `expected`, byte by byte of the whole.
    void expect_bytes(const Bytes& expected)
    {
        const Bytes bytes = read_bytes(expected.size());
        const auto difference = std::mismatch(bytes.begin(), bytes.end(), expected.begin());
        EXPECT_TRUE(bytes == expected) << "differs at byte " << difference.first - bytes.begin() << " of "
                                       << expected.size();
    }

    /// Moves to `target` and finds the `count` bytes of `data` there.
    void expect_bytes_at(const Bytes& data, std::size_t target, std::size_t count)
    {
        EXPECT_EQ(segment.seek(target), target);
        EXPECT_EQ(segment.tell(), target);
        expect_bytes(slice(data, target, target + count));
        EXPECT_EQ(segment.tell(), target + count);
    }

    WatchedFile file; // Before the segment, which is gone first.
    VZippedSegment segment;
    std::size_t stretch_size = 0;

private:
    static constexpr std::size_t guard = 16;
};

/// Takes what is printed to standard error while it lives.
class CapturedWarnings
{
public:
    CapturedWarnings() { testing::internal::CaptureStderr(); }
    CapturedWarnings(const CapturedWarnings&) = delete;
    CapturedWarnings& operator=(const CapturedWarnings&) = delete;
    ~CapturedWarnings()
    {
        if (!taken)
            testing::internal::GetCapturedStderr();
    }

    /// The text until now. Once only; what is printed later is not caught any more.
    std::string text()
    {
        taken = true;
        return testing::internal::GetCapturedStderr();
    }

private:
    bool taken = false;
};

} // namespace vela_test
