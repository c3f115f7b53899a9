/// Plain zlib for tests: streams that are made and read without the library.
#pragma once

#include "support/sample_bytes.h"

#ifndef ZLIB_CONST
#define ZLIB_CONST
#endif
#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace vela_test {

/// A zlib stream and the offsets behind its full flushes.
struct FlushedStream
{
    Bytes bytes;
    std::vector<std::uint64_t> flush_positions;
};

/// Compresses `data` with a full flush behind each whole block of `block_size` bytes, 0 for none.
inline FlushedStream deflate_in_blocks(const Bytes& data, int level, std::size_t block_size)
{
    z_stream stream = {};
    if (deflateInit(&stream, level) != Z_OK)
        throw std::logic_error("deflateInit");
    FlushedStream result;
    const auto take = [&](std::size_t begin, std::size_t count, int flush)
    {
        stream.next_in = data.data() + begin;
        stream.avail_in = static_cast<uInt>(count);
        do
        {
            unsigned char piece[4096];
            stream.next_out = piece;
            stream.avail_out = sizeof piece;
            deflate(&stream, flush);
            result.bytes.insert(result.bytes.end(), piece, piece + (sizeof piece - stream.avail_out));
        } while (stream.avail_out == 0);
    };
    std::size_t begin = 0;
    for (; block_size != 0 && data.size() - begin >= block_size; begin += block_size)
    {
        take(begin, block_size, Z_FULL_FLUSH);
        result.flush_positions.push_back(result.bytes.size());
    }
    take(begin, data.size() - begin, Z_FINISH);
    deflateEnd(&stream);
    return result;
}

inline Bytes deflate_whole(const Bytes& data, int level = 6)
{
    return deflate_in_blocks(data, level, 0).bytes;
}

/// What zlib made of a stream.
struct Inflated
{
    int code;         ///< of the last call; `Z_STREAM_END` for a whole stream
    Bytes bytes;      ///< what came out
    std::size_t used; ///< bytes of the stream that were needed for it
};

constexpr int zlib_window = 15;
constexpr int raw_window = -15;

/// Inflates what stands in `stream` from `begin` on, and stops after `limit` bytes of output.
inline Inflated inflate_from(const Bytes& stream, std::size_t begin, int window_bits,
                             std::size_t limit = static_cast<std::size_t>(-1))
{
    z_stream state = {};
    if (inflateInit2(&state, window_bits) != Z_OK)
        throw std::logic_error("inflateInit2");
    Inflated result = {Z_OK, {}, 0};
    state.next_in = stream.data() + begin;
    state.avail_in = static_cast<uInt>(stream.size() - begin);
    while (result.code == Z_OK && result.bytes.size() < limit)
    {
        unsigned char piece[4096];
        const std::size_t room = std::min(sizeof piece, limit - result.bytes.size());
        state.next_out = piece;
        state.avail_out = static_cast<uInt>(room);
        result.code = inflate(&state, Z_SYNC_FLUSH);
        result.bytes.insert(result.bytes.end(), piece, piece + (room - state.avail_out));
    }
    result.used = stream.size() - begin - state.avail_in;
    inflateEnd(&state);
    return result;
}

inline Inflated inflate_whole(const Bytes& stream)
{
    return inflate_from(stream, 0, zlib_window);
}

} // namespace vela_test
