#include "inflation.h"

#include <algorithm>
#include <new>

namespace {

constexpr std::uint64_t input_bytes = std::uint64_t{64} * 1024;
constexpr int raw_window_bits = -15;
constexpr int zlib_window_bits = 15;

} // namespace

Inflation::Inflation(VFile& in_file, std::uint64_t begin, std::uint64_t end, bool raw)
    : file(in_file), next_pos(begin), end_pos(end)
{
    if (inflateInit2(&stream, raw ? raw_window_bits : zlib_window_bits) != Z_OK)
        throw std::bad_alloc();
    input.resize(std::min(input_bytes, end - begin));
}

Inflation::~Inflation()
{
    inflateEnd(&stream);
}

void Inflation::refill()
{
    const std::uint64_t n = std::min<std::uint64_t>(input.size(), end_pos - next_pos);
    if (n == 0)
        return;
    file.seek(next_pos);
    file.read(input.data(), n);
    next_pos += n;
    stream.next_in = input.data();
    stream.avail_in = static_cast<uInt>(n);
}

std::size_t Inflation::read(unsigned char* target, std::size_t size_bytes)
{
    stream.next_out = target;
    stream.avail_out = static_cast<uInt>(size_bytes);
    while (stream.avail_out != 0 && end_reached == End::none)
    {
        if (stream.avail_in == 0)
            refill();
        const int code = inflate(&stream, Z_SYNC_FLUSH);
        if (code == Z_STREAM_END)
            end_reached = End::stream;
        else if (code == Z_BUF_ERROR && stream.avail_in == 0 && next_pos == end_pos)
            end_reached = End::stretch;
        else if (code != Z_OK && code != Z_BUF_ERROR)
        {
            end_reached = End::damage;
            message = stream.msg != nullptr ? stream.msg
                      : code == Z_NEED_DICT ? "the stream needs a dictionary"
                                            : "zlib error " + std::to_string(code);
        }
    }
    return size_bytes - stream.avail_out;
}
