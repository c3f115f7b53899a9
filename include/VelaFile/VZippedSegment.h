/// A stretch of a file as a stream of uncompressed bytes.
#pragma once

#include <VelaBase/export.h>
#include <VelaFile/VFileAccess.h>

#include <cstdint>
#include <memory>
#include <vector>

class VFile;

namespace Vela {
VELA_ABI_NAMESPACE_BEGIN
class StreamCodec;
enum class StreamFlush : std::int32_t;
VELA_ABI_NAMESPACE_END
}

/// Reads or writes a stretch of a `VFile` that holds bytes as they are (level 0 or below) or one
/// zlib stream (level above 0).
///
/// Random access into compressed data: the writer breaks the stream by full flushes at fixed
/// intervals of uncompressed bytes and records where; the reader restarts a raw inflate at the
/// nearest such point (zlib manual, `Z_FULL_FLUSH` and `inflateInit2` with window bits -15).
/// Entry k of the table is the offset in the stretch at which a raw deflate stream starts that
/// yields the uncompressed position (k + 1) * block size.
///
/// The segment does not own the file, which has to outlive it. It keeps no private file position:
/// each `read` and `write` first moves the file to where the segment stands, so others may move it
/// in between. How far a compressed segment reads ahead of what it gives is its own affair.
///
/// Positions and sizes are in uncompressed bytes unless their name says file or disk.
/// Memory: at most the file's chunk size and 1 MiB, beside the flush table. After a failed `read` the
/// position is where it was, and a further `read` or `seek` starts the stream anew; after a failed
/// `write` only `end()` is of use.
class VELA_API VZippedSegment : public VFileAccess
{
public:
    VZippedSegment();
    VZippedSegment(const VZippedSegment&) = delete;
    VZippedSegment& operator=(const VZippedSegment&) = delete;

    /// Starts writing at the file's current position, which is returned. From any state; what was
    /// in progress is dropped by `end()`. `size` `all_ones` means not bounded.
    ///
    /// @throws VelaError id -1 "File not open!"
    /// @throws VelaError id -1 "Trying to write in read mode!": the file is open for reading only.
    std::uint64_t init_w(VFile& in_file, int new_level, std::uint64_t new_size);

    /// Starts reading the `new_length_on_disk` bytes at the file position `start`, which hold `new_size`
    /// uncompressed bytes (`all_ones`: not known). From any state.
    ///
    /// @throws VelaError id -1 "File not open!"
    void init_r(VFile& in_file, int new_level, std::uint64_t start, std::uint64_t new_length_on_disk,
                std::uint64_t new_size);

    /// Finishes the stream and returns the length on disk. The segment stays in the writing state, so
    /// that the flush positions can be fetched, until `end()`.
    ///
    /// @throws VelaError as `write` does
    std::uint64_t write_end();

    /// Releases everything, the flush positions and the memory included. From any state; never throws.
    void end();

    /// 0 not initialised, 1 reading, 2 writing.
    int is_initialized() const;

    /// File position of the start of the stretch.
    std::uint64_t get_beg_pos_file() const { return beg_pos_file; }

    /// File position of the next byte to read or write. While reading compressed data it runs ahead.
    std::uint64_t get_cur_pos_file() const { return cur_pos_file; }

    /// Sets the interval of flush points, 0 for none.
    ///
    /// @throws VelaError id -1 "Setting flush block size only possible in write mode!"
    /// @throws VelaError id -1 "Setting flush block size not possible after writing has started!"
    void set_flush_block_size(std::uint64_t new_block_size);

    /// The table of flush positions; `block_size` becomes the interval.
    std::vector<std::uint64_t> get_flush_positions(std::uint64_t& block_size) const;

    /// Gives the table to a reader; a block size of 0 means that it is not used.
    ///
    /// A bad table is not refused here: the first `seek` that would use it fails. Of a table that does not
    /// ascend no entry is used, of one that leaves the stretch those within. Reading from the start needs none.
    ///
    /// @throws VelaError id -1 "Setting flush positions when writing.": the segment is not reading.
    void set_flush_positions(std::vector<std::uint64_t> new_positions, std::uint64_t block_size);

    /// The current position.
    std::uint64_t tell() const override { return pos; }

    /// Moves to `target` and returns it. Restarts at the last flush point at or below `target`, then
    /// reads and drops the rest; without a flush point below `target` it starts from the beginning
    /// whenever it has to go back. The end is not a valid target.
    ///
    /// @throws VelaError id -1 "Trying to seek in write mode!"
    /// @throws VelaError id -1 "Invalid position in segment!": the size is known and `target` is not below it, or
    ///         no file position corresponds to it.
    /// @throws VelaError id -1 "File not open!": not initialised, unless the segment already stands at `target`.
    /// @throws VelaError id -4 "Invalid flush positions in segment!": see `set_flush_positions`.
    /// @throws VelaError as `read` does; the position is then wherever reading stopped.
    std::uint64_t seek(std::uint64_t target) override;

    /// Reads `count` bytes, none is fine.
    ///
    /// A read that ends at the declared size sees the end of the stream: a wrong Adler-32 trailer fails
    /// it, a missing one is a warning ("Inconsistency in segment!", id -10) on the warning sink.
    /// After a jump to a flush point the trailer is not checked.
    ///
    /// @throws VelaError id -1 "Trying to read from file in write mode!"
    /// @throws VelaError id -1 "File not open!": not initialised, or the file was closed.
    /// @throws VelaError id -1 "Trying to read beyond segment boundary!": by the declared size, or a compressed stretch
    ///         ends before `count` bytes came. A stored stretch is bounded by its declared size alone.
    /// @throws VelaError id -3 "Failed reading %d bytes from file!": the file ends inside the stretch, or the system
    ///         failed.
    /// @throws VelaError id -10 "Inconsistency in segment!": the stream ended early, or other than 0 or 4 bytes follow
    ///         it.
    /// @throws VelaError id -10 "Zip error (%d)!" on zlib's code.
    void read(void* dest, std::uint64_t count) override;

    /// Writes `count` bytes. With null `data` and `count` 0 it finishes the stream as `write_end` does; null `data`
    /// and a `count` above 0 are a failing write.
    ///
    /// @throws VelaError id -1 "Trying to write to file in read mode!", also when never initialised for writing
    /// @throws VelaError id -1 "File not open!": the file was closed, or `end()` was called.
    /// @throws VelaError id -1 "Trying to write beyond segment boundary!"
    /// @throws VelaError id -1 "Zlib cannot handle chunks larger than 4GB": `count` is above 0xFFFFFFFF, compressed
    ///         only.
    /// @throws VelaError id -3 "Failed writing %d bytes to file!"
    /// @throws VelaError id -10 "Zip error (id: %d)!" on zlib's code, as for a level above 9.
    void write(const void* data, std::uint64_t count) override;

    virtual ~VZippedSegment();

protected:
    /// Common part of `init_r` and `init_w`.
    void initialize(VFile& in_file, int new_level, std::uint64_t start, std::uint64_t new_length_on_disk,
                    bool is_writing, std::uint64_t new_size);

private:
    void require_file(const char* function, int source_line) const;
    std::uint64_t left_on_disk() const;
    void refill();
    void read_compressed(unsigned char* dest, std::uint64_t count);
    bool finish_read(std::uint64_t out_left, bool ends_at_size, int code);
    void write_compressed(const unsigned char* data, std::uint64_t count);
    void encode(const unsigned char* data, std::uint64_t count, Vela::StreamFlush flush);
    void jump_to(std::uint64_t target);
    void recover();
    void restart_at(std::uint64_t restart_pos, std::uint64_t restart_pos_file);
    void skip_to(std::uint64_t target);

    VFile* file = nullptr;
    std::uint64_t size = all_ones;
    std::uint64_t length_on_disk = 0;
    std::uint64_t pos = 0;
    std::unique_ptr<Vela::StreamCodec> stream;
    bool writing = false;
    std::uint64_t beg_pos_file = 0;
    std::uint64_t cur_pos_file = 0;
    /// Not filled when allocated, unlike a vector: a page that no byte needs is never touched.
    std::unique_ptr<unsigned char[]> buffer;
    std::uint32_t buffer_size = 0;
    std::unique_ptr<unsigned char[]> skip_buffer;
    /// Compressed input that waits in `buffer`, from `held_begin` on.
    std::uint32_t held = 0;
    std::uint32_t held_begin = 0;
    std::uint64_t flush_block_size = 0;
    std::vector<std::uint64_t> flush_positions;
    bool flush_positions_ascend = true;
    /// A read failed: the stream no longer stands at `pos`.
    bool stream_lost = false;
    /// The stream was entered at a flush point.
    bool stream_is_raw = false;
};
