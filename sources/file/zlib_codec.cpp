#include "sources/file/stream_codec.h"

#include <zlib.h>

namespace Vela {
VELA_ABI_NAMESPACE_BEGIN

static_assert(StreamCodec::ok == Z_OK && StreamCodec::stream_end == Z_STREAM_END &&
                  StreamCodec::no_progress == Z_BUF_ERROR,
              "the codes are zlib's");

namespace {

constexpr int zlib_window_bits = 15;
constexpr int raw_window_bits = -15;

/// Runs `call(stream)` over the given input and output.
template <class Call>
StreamCodec::Step step(z_stream& stream, const unsigned char* in, std::size_t in_size, unsigned char* out,
                       std::size_t out_size, Call call)
{
    stream.next_in = const_cast<unsigned char*>(in); // zlib does not write there
    stream.avail_in = static_cast<uInt>(in_size);
    stream.next_out = out;
    stream.avail_out = static_cast<uInt>(out_size);
    const int code = call(&stream);
    return {code, in_size - stream.avail_in, out_size - stream.avail_out};
}

class ZlibEncoder final : public StreamCodec
{
public:
    explicit ZlibEncoder(int level) { deflateInit(&stream, level); }
    ZlibEncoder(const ZlibEncoder&) = delete;
    ZlibEncoder& operator=(const ZlibEncoder&) = delete;
    ~ZlibEncoder() override { deflateEnd(&stream); }

    Step run(const unsigned char* in, std::size_t in_size, unsigned char* out, std::size_t out_size,
             StreamFlush flush) override
    {
        const int mode = flush == StreamFlush::none ? Z_NO_FLUSH : flush == StreamFlush::full ? Z_FULL_FLUSH : Z_FINISH;
        return step(stream, in, in_size, out, out_size, [mode](z_stream* s) { return deflate(s, mode); });
    }

    void restart(bool) override {}

private:
    z_stream stream = {};
};

class ZlibDecoder final : public StreamCodec
{
public:
    ZlibDecoder() { inflateInit(&stream); }
    ZlibDecoder(const ZlibDecoder&) = delete;
    ZlibDecoder& operator=(const ZlibDecoder&) = delete;
    ~ZlibDecoder() override { inflateEnd(&stream); }

    Step run(const unsigned char* in, std::size_t in_size, unsigned char* out, std::size_t out_size,
             StreamFlush) override
    {
        return step(stream, in, in_size, out, out_size, [](z_stream* s) { return inflate(s, Z_SYNC_FLUSH); });
    }

    void restart(bool raw) override { inflateReset2(&stream, raw ? raw_window_bits : zlib_window_bits); }

private:
    z_stream stream = {};
};

} // namespace

std::unique_ptr<StreamCodec> make_zlib_encoder(int level)
{
    return std::make_unique<ZlibEncoder>(level);
}

std::unique_ptr<StreamCodec> make_zlib_decoder()
{
    return std::make_unique<ZlibDecoder>();
}

VELA_ABI_NAMESPACE_END
} // namespace Vela
