#include "sources/file/ReadAhead.h"

#include <VelaBase/VelaError.h>

#include "sources/file/file_errors.h"

#include <algorithm>
#include <cstring>

namespace Vela::detail {

ReadAhead::ReadAhead(VFile& in_file) : file(in_file), position(in_file.tell()), end(in_file.seek(all_ones))
{
    if (position == all_ones)
        end = all_ones;
    if (end != all_ones)
        file.seek(position);
    buffer_begin = position;
    buffer_end = position;
}

std::uint64_t ReadAhead::seek(std::uint64_t pos)
{
    if (pos >= buffer_begin && pos <= buffer_end)
        return position = pos;
    const std::uint64_t reached = file.seek(pos);
    if (reached != all_ones)
        stand_at(reached);
    return reached;
}

std::uint64_t ReadAhead::bytes_left() const
{
    if (end == all_ones)
        return all_ones;
    return end > position ? end - position : 0;
}

void ReadAhead::read(void* buffer, std::uint64_t size_bytes)
{
    if (size_bytes > bytes_left())
        throw_file_too_short(size_bytes);
    auto* out = static_cast<unsigned char*>(buffer);
    const std::uint64_t field_end = position + size_bytes;
    while (size_bytes > 0)
    {
        if (buffered() == 0)
        {
            const bool direct = size_bytes >= capacity || end == all_ones;
            if (direct && try_read(out, size_bytes))
                return stand_at(field_end);
            if (direct || !fill())
            {
                // Something behind the field may be what cannot be read; else the failure has to name the whole field.
                auto* const field = static_cast<unsigned char*>(buffer);
                size_bytes += static_cast<std::uint64_t>(out - field);
                file.seek(field_end - size_bytes);
                file.read(field, size_bytes);
                return stand_at(field_end);
            }
        }
        const std::uint64_t step = std::min(size_bytes, buffered());
        std::memcpy(out, bytes.data() + (position - buffer_begin), step);
        position += step;
        out += step;
        size_bytes -= step;
    }
}

bool ReadAhead::try_read(void* target, std::uint64_t size_bytes)
{
    try
    {
        file.read(target, size_bytes);
        return true;
    }
    catch (const VelaError&)
    {
        return false;
    }
}

bool ReadAhead::fill()
{
    const std::uint64_t count = std::min(capacity, bytes_left());
    buffer_begin = buffer_end; // what the buffer holds is lost even if the read fails
    if (!try_read(bytes.data(), count))
        return false;
    buffer_begin = position;
    buffer_end = position + count;
    return true;
}

void ReadAhead::stand_at(std::uint64_t file_position)
{
    position = buffer_begin = buffer_end = file_position;
}

void ReadAhead::write(const void*, std::uint64_t)
{
    throw VelaError("ReadAhead::write", __FILE__, __LINE__)("Trying to write in read mode!")(-1);
}

void ReadAhead::sync()
{
    if (position != buffer_end)
        file.seek(position);
    buffer_begin = buffer_end = position;
}

} // namespace Vela::detail
