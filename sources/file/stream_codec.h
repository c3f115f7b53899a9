/// What a compressed segment needs of a compressor or decompressor.
///
/// zlib defines every code and every byte (zlib.h); a faster one has to give the same of both.
#pragma once

#include <VelaBase/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Vela {
VELA_ABI_NAMESPACE_BEGIN

enum class StreamFlush : std::int32_t
{
    none,   ///< Z_NO_FLUSH when writing; a reader always passes this
    full,   ///< Z_FULL_FLUSH
    finish, ///< Z_FINISH
};

/// One stream in progress, in one direction.
class StreamCodec
{
public:
    /// Codes of zlib that the segment tells apart; any other is a failure.
    enum Code : int
    {
        ok = 0,           ///< Z_OK
        stream_end = 1,   ///< Z_STREAM_END
        no_progress = -5, ///< Z_BUF_ERROR
    };

    struct Step
    {
        int code;
        std::size_t consumed;
        std::size_t produced;
    };

    /// The most bytes that one step takes on either side.
    static constexpr std::size_t max_step = 0xffffffff;

    virtual ~StreamCodec() = default;

    virtual Step run(const unsigned char* in, std::size_t in_size, unsigned char* out, std::size_t out_size,
                     StreamFlush flush) = 0;

    /// Starts anew at the head of a zlib stream or, with `raw`, at a flush point inside of one. Readers only.
    virtual void restart(bool raw) = 0;
};

/// A level that zlib refuses shows in the code of the first step.
std::unique_ptr<StreamCodec> make_zlib_encoder(int level);
std::unique_ptr<StreamCodec> make_zlib_decoder();

VELA_ABI_NAMESPACE_END
}
