// Reading and writing a stretch of a file as uncompressed bytes.
//
// A reader holds one window of compressed input. `held_begin` moves through it as inflate takes bytes, so
// nothing is shifted from call to call, and the next window is read when the last byte of this one is
// taken. A window is 64 KiB, not a chunk of 4 MiB, so that a jump to a flush point reads no more than that beyond
// what it needs; docs/performance.md has the figures of reading front to back.

#include <VelaFile/VZippedSegment.h>

#include <VelaBase/VelaError.h>
#include <VelaFile/VFile.h>

#include "sources/file/file_errors.h"
#include "sources/file/stream_codec.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>

using Vela::StreamCodec;
using Vela::StreamFlush;

namespace {

/// Bytes of compressed input that a reader takes from the file at once, and of output that it skips at once.
constexpr std::uint32_t window_size = 64 * 1024;

/// deflate repeats its flush marker for ever when the output has room for less than 7 bytes (zlib.h,
/// Z_FULL_FLUSH), and a chunk size may be as small as 0.
constexpr std::uint32_t smallest_output = 64;

/// A raw stream stops in front of the Adler-32 checksum.
constexpr std::uint64_t trailer_size = 4;

[[noreturn]] void throw_inconsistency(int line)
{
    throw VelaError("VZippedSegment::read", __FILE__, line)("Inconsistency in segment!")(-10);
}

[[noreturn]] void throw_beyond_boundary(int line)
{
    throw VelaError("VZippedSegment::read", __FILE__, line)("Trying to read beyond segment boundary!")(-1);
}

} // namespace

VZippedSegment::VZippedSegment() = default;

VZippedSegment::~VZippedSegment()
{
    end();
}

std::uint64_t VZippedSegment::init_w(VFile& in_file, int new_level, std::uint64_t new_size)
{
    if (in_file.get_mode() == VFile::read_mode)
        throw VelaError("VZippedSegment::init_w", __FILE__, __LINE__)("Trying to write in read mode!")(-1);
    const std::uint64_t start = in_file.is_open() ? in_file.tell() : 0; // `initialize` refuses a closed file
    initialize(in_file, new_level, start, all_ones, true, new_size);
    return cur_pos_file;
}

void VZippedSegment::init_r(VFile& in_file, int new_level, std::uint64_t start, std::uint64_t new_length_on_disk,
                            std::uint64_t new_size)
{
    initialize(in_file, new_level, start, new_length_on_disk, false, new_size);
}

void VZippedSegment::initialize(VFile& in_file, int new_level, std::uint64_t start, std::uint64_t new_length_on_disk,
                                bool is_writing, std::uint64_t new_size)
{
    end();
    if (!in_file.is_open())
        throw VelaError("VZippedSegment::initialize", __FILE__, __LINE__)("File not open!")(-1);
    if (new_level > 0)
    {
        buffer_size = is_writing ? std::max(in_file.get_chunk_size(), smallest_output) : window_size;
        buffer = std::make_unique_for_overwrite<unsigned char[]>(buffer_size);
        stream = is_writing ? Vela::make_zlib_encoder(new_level) : Vela::make_zlib_decoder();
    }
    file = &in_file;
    size = new_size;
    length_on_disk = new_length_on_disk;
    writing = is_writing;
    pos = 0;
    held = 0;
    beg_pos_file = start;
    cur_pos_file = start;
}

std::uint64_t VZippedSegment::write_end()
{
    VZippedSegment::write(nullptr, 0);
    return cur_pos_file - beg_pos_file;
}

void VZippedSegment::end()
{
    stream.reset();
    buffer.reset();
    buffer_size = 0;
    skip_buffer.reset();
    held = 0;
    flush_block_size = 0;
    std::vector<std::uint64_t>().swap(flush_positions);
    flush_positions_ascend = true;
    stream_lost = false;
    stream_is_raw = false;
    file = nullptr;
}

int VZippedSegment::is_initialized() const
{
    if (file == nullptr)
        return 0;
    return writing ? 2 : 1;
}

void VZippedSegment::set_flush_block_size(std::uint64_t new_block_size)
{
    if (is_initialized() != 2)
        throw VelaError("VZippedSegment::set_flush_block_size", __FILE__,
                        __LINE__)("Setting flush block size only possible in write mode!");
    if (pos != 0)
        throw VelaError("VZippedSegment::set_flush_block_size", __FILE__,
                        __LINE__)("Setting flush block size not possible after writing has started!");
    flush_block_size = new_block_size;
}

std::vector<std::uint64_t> VZippedSegment::get_flush_positions(std::uint64_t& block_size) const
{
    block_size = flush_block_size;
    return flush_positions;
}

void VZippedSegment::set_flush_positions(std::vector<std::uint64_t> new_positions, std::uint64_t block_size)
{
    if (is_initialized() != 1)
        throw VelaError("VZippedSegment::set_flush_positions", __FILE__,
                        __LINE__)("Setting flush positions when writing.");
    flush_positions = std::move(new_positions);
    flush_block_size = block_size;
    // Of a table that does not ascend no entry can be trusted: each could be that of another block.
    flush_positions_ascend =
        std::ranges::adjacent_find(flush_positions, std::greater_equal<>()) == flush_positions.end() &&
        (flush_positions.empty() || flush_positions.front() > 0);
}

void VZippedSegment::require_file(const char* function, int source_line) const
{
    if (file == nullptr)
        throw VelaError(function, __FILE__, source_line)("File not open!")(-1);
}

std::uint64_t VZippedSegment::left_on_disk() const
{
    return length_on_disk - (cur_pos_file - beg_pos_file);
}

void VZippedSegment::read(void* dest, std::uint64_t count)
{
    if (writing)
        throw VelaError("VZippedSegment::read", __FILE__, __LINE__)("Trying to read from file in write mode!")(-1);
    if (size != all_ones && (pos > size || count > size - pos))
        throw_beyond_boundary(__LINE__);
    require_file("VZippedSegment::read", __LINE__);
    if (count == 0 && stream != nullptr)
        return;
    if (stream_lost)
        recover();
    // Reading wherever the file happens to stand would give wrong samples.
    if (file->seek(cur_pos_file) == all_ones)
        throw VelaError("VZippedSegment::read", __FILE__, __LINE__)
            .do_oserr()("Failed reading %d bytes from file!", Vela::detail::low_bits(count))(-3);
    if (count == 0)
        return;
    if (stream != nullptr)
        return read_compressed(static_cast<unsigned char*>(dest), count);
    file->read(dest, count);
    cur_pos_file += count;
    pos += count;
}

void VZippedSegment::refill()
{
    const auto count = static_cast<std::uint32_t>(std::min<std::uint64_t>(buffer_size, left_on_disk()));
    file->read(buffer.get(), count);
    cur_pos_file += count;
    held = count;
    held_begin = 0;
}

void VZippedSegment::read_compressed(unsigned char* dest, std::uint64_t count)
{
    stream_lost = true; // unless this read comes to its end
    const bool ends_at_size = size != all_ones && count == size - pos;
    std::uint64_t out_left = count;
    bool done = false;
    while (!done)
    {
        // inflate answers no input with Z_BUF_ERROR, which must not stand for "there is more on disk".
        if (held == 0 && left_on_disk() > 0)
            refill();
        const auto step = stream->run(buffer.get() + held_begin, held, dest,
                                      std::min<std::uint64_t>(out_left, StreamCodec::max_step), StreamFlush::none);
        held_begin += static_cast<std::uint32_t>(step.consumed);
        held -= static_cast<std::uint32_t>(step.consumed);
        dest += step.produced;
        out_left -= step.produced;
        done = finish_read(out_left, ends_at_size, step.code);
    }
    stream_lost = false;
    pos += count;
}

/// Judges one step of inflate. True when the read is complete, false when it needs another step.
bool VZippedSegment::finish_read(std::uint64_t out_left, bool ends_at_size, int code)
{
    const std::uint64_t input_left = held + left_on_disk();
    if (code == StreamCodec::stream_end)
    {
        if (out_left != 0 || (input_left != 0 && input_left != trailer_size))
            throw_inconsistency(__LINE__);
        return true;
    }
    if (code == StreamCodec::no_progress && out_left == 0)
        return true; // the stream goes on behind the declared size
    if (code != StreamCodec::ok)
        throw VelaError("VZippedSegment::read", __FILE__, __LINE__)("Zip error (%d)!", code)(-10);
    if (input_left == 0)
    {
        if (out_left != 0)
            throw_beyond_boundary(__LINE__);
        VelaError("VZippedSegment::read", __FILE__, __LINE__)("Inconsistency in segment!")(-10).do_warn();
        return true;
    }
    // A read up to the declared size has to see how the stream ends, and the trailer may lie in the next window.
    return out_left == 0 && !(ends_at_size && held == 0);
}

void VZippedSegment::write(const void* data, std::uint64_t count)
{
    if (!writing)
        throw VelaError("VZippedSegment::write", __FILE__, __LINE__)("Trying to write to file in read mode!")(-1);
    if (size != all_ones && (pos > size || count > size - pos))
        throw VelaError("VZippedSegment::write", __FILE__, __LINE__)("Trying to write beyond segment boundary!")(-1);
    require_file("VZippedSegment::write", __LINE__);
    if (file->seek(cur_pos_file) == all_ones)
        throw VelaError("VZippedSegment::write", __FILE__, __LINE__)
            .do_oserr()("Failed writing %d bytes to file!", Vela::detail::low_bits(count))(-3);
    if (stream != nullptr)
        return write_compressed(static_cast<const unsigned char*>(data), count);
    if (count == 0)
        return;
    file->write(data, count);
    cur_pos_file += count;
    pos += count;
}

void VZippedSegment::write_compressed(const unsigned char* data, std::uint64_t count)
{
    if (count > StreamCodec::max_step)
        throw VelaError("VZippedSegment::write", __FILE__, __LINE__)("Zlib cannot handle chunks larger than 4GB");
    if (data == nullptr && count != 0)
        throw VelaError("VZippedSegment::write", __FILE__, __LINE__)("Failed writing %d bytes to file!",
                                                                     Vela::detail::low_bits(count))(-3);
    if (data == nullptr)
        return encode(nullptr, 0, StreamFlush::finish);
    while (count > 0)
    {
        std::uint64_t pass = count;
        auto flush = StreamFlush::none;
        if (flush_block_size != 0)
        {
            const std::uint64_t left_in_block = flush_block_size - pos % flush_block_size;
            if (count >= left_in_block)
            {
                pass = left_in_block;
                flush = StreamFlush::full;
            }
        }
        encode(data, pass, flush);
        if (flush == StreamFlush::full)
            flush_positions.push_back(cur_pos_file - beg_pos_file);
        pos += pass;
        data += pass;
        count -= pass;
    }
}

/// Compresses `count` bytes and writes whatever comes of them.
void VZippedSegment::encode(const unsigned char* data, std::uint64_t count, StreamFlush flush)
{
    for (;;)
    {
        const auto step = stream->run(data, count, buffer.get(), buffer_size, flush);
        data += step.consumed;
        count -= step.consumed;
        if (step.produced != 0)
            file->write(buffer.get(), step.produced);
        cur_pos_file += step.produced;
        if (flush == StreamFlush::finish)
        {
            if (step.code == StreamCodec::stream_end)
                return;
        }
        else if (count == 0 && (flush == StreamFlush::none || step.produced < buffer_size))
            return;
        if (step.code != StreamCodec::ok)
            throw VelaError("VZippedSegment::write", __FILE__, __LINE__)("Zip error (id: %d)!", step.code)(-10);
    }
}

std::uint64_t VZippedSegment::seek(std::uint64_t target)
{
    if (writing)
        throw VelaError("VZippedSegment::seek", __FILE__, __LINE__)("Trying to seek in write mode!")(-1);
    if (size != all_ones && target >= size)
        throw VelaError("VZippedSegment::seek", __FILE__, __LINE__)("Invalid position in segment!")(-1);
    if (target == pos && !stream_lost)
        return pos;
    require_file("VZippedSegment::seek", __LINE__);
    if (stream != nullptr)
    {
        jump_to(target);
        return pos;
    }
    if (target >= all_ones - beg_pos_file)
        throw VelaError("VZippedSegment::seek", __FILE__, __LINE__)("Invalid position in segment!")(-1);
    pos = target;
    cur_pos_file = beg_pos_file + target;
    return pos;
}

/// Restarts at the last flush point at or below `target`, or at the beginning where needed, and skips the rest.
void VZippedSegment::jump_to(std::uint64_t target)
{
    std::uint64_t restart_pos = pos;
    std::uint64_t restart_pos_file = cur_pos_file;
    const bool restart = target < pos || stream_lost;
    if (restart)
    {
        restart_pos = 0;
        restart_pos_file = beg_pos_file;
    }
    const std::uint64_t index =
        flush_block_size == 0 ? 0 : std::min<std::uint64_t>(target / flush_block_size, flush_positions.size());
    if (index > 0)
    {
        const std::uint64_t flush_position = flush_positions[static_cast<std::size_t>(index - 1)];
        if (!flush_positions_ascend || flush_position >= length_on_disk)
            throw VelaError("VZippedSegment::seek", __FILE__, __LINE__)("Invalid flush positions in segment!")(-4);
        // Taken even where reading on would be shorter.
        restart_pos = flush_block_size * index;
        restart_pos_file = beg_pos_file + flush_position;
    }
    if (restart || restart_pos != pos)
        restart_at(restart_pos, restart_pos_file);
    skip_to(target);
}

void VZippedSegment::restart_at(std::uint64_t restart_pos, std::uint64_t restart_pos_file)
{
    stream_is_raw = restart_pos != 0;
    stream->restart(stream_is_raw);
    pos = restart_pos;
    cur_pos_file = restart_pos_file;
    held = 0;
    stream_lost = false;
}

/// Brings the stream back to the position that the last failed read left, and keeps that position if it fails too.
void VZippedSegment::recover()
{
    const std::uint64_t target = pos;
    try
    {
        if (stream_is_raw)
            jump_to(target);
        else
        {
            // From the beginning, as it was: a raw stream would no longer check the trailer.
            restart_at(0, beg_pos_file);
            skip_to(target);
        }
    }
    catch (...)
    {
        pos = target;
        stream_lost = true;
        throw;
    }
}

void VZippedSegment::skip_to(std::uint64_t target)
{
    if (pos < target && skip_buffer == nullptr)
        skip_buffer = std::make_unique_for_overwrite<unsigned char[]>(window_size);
    while (pos < target)
        VZippedSegment::read(skip_buffer.get(), std::min<std::uint64_t>(target - pos, window_size));
}
