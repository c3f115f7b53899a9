#include <VelaFile/VFileAccess.h>

#include <VelaBase/VelaError.h>
#include <VelaFile/VFile.h>

#include "sources/file/bounded_stream.h"
#include "sources/file/file_errors.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

/// Up to here memory is taken before it is known whether the bytes are there: a test would cost more.
constexpr std::uint64_t trusted_length = std::uint64_t{64} * 1024;

/// How much is taken at once from a stream that cannot say what it has.
constexpr std::uint64_t piece_length = std::uint64_t{1024} * 1024;

/// Bytes behind the position of a file, `all_ones` where the system does not say.
std::uint64_t bytes_left(VFile& file)
{
    const std::uint64_t position = file.tell();
    const std::uint64_t end = file.seek(VFileAccess::all_ones);
    if (position == VFileAccess::all_ones || end == VFileAccess::all_ones)
        return VFileAccess::all_ones;
    file.seek(position);
    return end > position ? end - position : 0;
}

void read_in_pieces(VFileAccess& stream, std::string& text, std::uint64_t length_bytes)
{
    text.clear();
    while (text.size() < length_bytes)
    {
        const std::uint64_t done = text.size();
        const std::uint64_t piece = std::min(length_bytes - done, piece_length);
        text.resize(done + piece);
        stream.read(text.data() + done, piece);
    }
}

} // namespace

void VFileAccess::write_str(const std::string& text, bool prefix)
{
    if (prefix)
    {
        if (text.size() > std::numeric_limits<std::uint32_t>::max())
            throw VelaError("VFileAccess::write_str", __FILE__, __LINE__)("String too long for its 4-byte length!")(-1);
        write_value(static_cast<std::uint32_t>(text.size()));
    }
    write(text.data(), text.size());
}

void VFileAccess::read_str(std::string& text, std::uint64_t length_bytes)
{
    if (length_bytes == all_ones)
    {
        std::uint32_t prefix = 0;
        read_value(prefix);
        length_bytes = prefix;
    }
    if (length_bytes == 0)
    {
        text.clear();
        return;
    }
    if (length_bytes > trusted_length)
    {
        const auto* const bounded = dynamic_cast<Vela::detail::BoundedStream*>(this);
        auto* const file = dynamic_cast<VFile*>(this);
        const std::uint64_t left = bounded != nullptr ? bounded->bytes_left()
                                   : file != nullptr  ? bytes_left(*file)
                                                      : all_ones;
        if (left == all_ones)
            return read_in_pieces(*this, text, length_bytes);
        if (length_bytes > left)
            Vela::detail::throw_file_too_short(length_bytes);
    }
    text.resize(length_bytes);
    read(text.data(), length_bytes);
}
