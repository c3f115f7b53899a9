// Reading the samples of a stack.
#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>

#include "sources/binary_io/VBFFileImp.h"
#include "sources/binary_io/VBFStackImp.h"
#include "sources/binary_io/move_back.h"
#include "sources/binary_io/size_of.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

using Vela::detail::size_of;

namespace {

[[noreturn]] void throw_read_error(int line, const char* text)
{
    throw VelaError("VBFStackImp::read_imp", __FILE__, line)("%s", text)(-1);
}

[[noreturn]] void throw_read_closed(int line)
{
    throw_read_error(line, "Cannot access VBFStack, file has been closed!");
}

void require_countable(std::uint64_t count, std::uint64_t sample_size)
{
    if (sample_size != 0 && count > std::numeric_limits<std::uint64_t>::max() / sample_size)
        throw VelaError("VBFStackImp::read_imp", __FILE__, __LINE__)("Invalid dimension_sizes in stack header!")(-4);
}

[[noreturn]] void throw_invalid_conversion(int line, vela_dt from, vela_dt to)
{
    throw VelaError("VBFStackImp::read_imp", __FILE__, line)("Invalid on-the-fly conversion from '%s' to '%s'!",
                                                             vela_dt_get_name(from), vela_dt_get_name(to))(-1);
}

} // namespace

/// What is left of the buffers of a caller.
struct VBFStackImp::ReadTarget
{
    vela_dt type;
    unsigned char* data;
    unsigned char* imag; ///< null: `data` gets whole samples

    void fill(std::uint64_t count) const
    {
        require_countable(count, size_of(type));
        if (count == 0)
            return;
        std::memset(data, 0, count * size_of(type));
        if (imag != nullptr)
            std::memset(imag, 0, count * size_of(type));
    }

    void advance(std::uint64_t count)
    {
        data += count * size_of(type);
        if (imag != nullptr)
            imag += count * size_of(type);
    }
};

/// Puts the file back to where it was, unless it has let go of the stack meanwhile: a progress callback may have closed
/// or destroyed it.
class VBFStackImp::FilePosition
{
public:
    explicit FilePosition(const VBFStackImp& in_stack) : stack(in_stack), position(stack.file->tell()) {}
    FilePosition(const FilePosition&) = delete;
    FilePosition& operator=(const FilePosition&) = delete;

    ~FilePosition()
    {
        if (stack.file != nullptr)
            Vela::detail::move_back(*stack.file, position);
    }

    /// Asks the progress callback. Where that moves the file, since it completes a stack for instance, the new place
    /// counts: the file goes on there.
    bool report_progress(std::uint64_t size_bytes)
    {
        if (!stack.file->has_progress_callback())
            return true;
        const std::uint64_t before = stack.file->tell();
        const bool goes_on = stack.file->report_progress(size_bytes);
        const std::uint64_t behind = stack.file != nullptr ? stack.file->tell() : before;
        if (behind != before)
            position = behind;
        return goes_on;
    }

private:
    const VBFStackImp& stack;
    std::uint64_t position;
};

void VBFStackImp::read(int type, void* data, void* imag)
{
    std::uint64_t pos = 0;
    read(type, data, imag, all_samples, pos);
}

std::uint64_t VBFStackImp::read(int type, void* data, void* imag, std::uint64_t count, std::uint64_t& pos)
{
    return read_imp(type, data, imag, count, pos);
}

std::uint64_t VBFStackImp::read_imp(int type, void* data, void* imag, std::uint64_t count, std::uint64_t& pos)
{
    const std::uint64_t first = pos == continued ? read_pos : pos;
    require_readable(first);
    FilePosition file_position(*this);
    if (imag != nullptr)
        require_imaginary_parts(type);
    if (first > get_number_of_elements())
        throw_read_error(__LINE__, "Invalid position in segment!");
    require_countable_bytes(type);
    const std::uint64_t left = get_number_of_elements() - first;
    const bool to_end = count >= left;
    count = std::min(count, left);
    const ReadTarget target{type, static_cast<unsigned char*>(data), static_cast<unsigned char*>(imag)};
    if (empty)
    {
        target.fill(count);
        return count;
    }

    read_chunks(first, count, target, file_position);
    pos = to_end ? exhausted : first + count;
    if (to_end)
        segment.end();
    read_pos = pos;
    return count;
}

void VBFStackImp::require_readable(std::uint64_t first) const
{
    if (first == exhausted)
        throw_read_error(__LINE__, "Invalid position (-1) passed. Possible reason: Last read call exhausted data.");
    if (file == nullptr)
        throw_read_closed(__LINE__);
    if (state != 0)
        throw_read_error(__LINE__, "Stack not committed to disk. Cannot read!");
}

void VBFStackImp::require_imaginary_parts(vela_dt type) const
{
    if ((type & vela_dt_complex) != 0)
        throw_read_error(__LINE__, "Imaginary buffer passed but buffer type is already complex!");
    if ((get_dt() & vela_dt_complex) == 0)
        throw_read_error(__LINE__, "Imaginary buffer passed but stack is not complex!");
}

/// Those of the whole stack.
void VBFStackImp::require_countable_bytes(vela_dt type) const
{
    const std::uint64_t sample_size = size_of(get_dt());
    if (sample_size == 0)
        throw_invalid_conversion(__LINE__, get_dt(), type);
    require_countable(get_number_of_elements(), sample_size);
}

void VBFStackImp::read_chunks(std::uint64_t first, std::uint64_t count, ReadTarget target, FilePosition& file_position)
{
    const std::uint64_t sample_size = size_of(get_dt());
    const std::uint64_t chunk = std::max<std::uint64_t>(file->get_chunk_size() / sample_size, 1);
    move_to(first);
    while (count > 0)
    {
        const std::uint64_t n = std::min(chunk, count);
        if (!file_position.report_progress(n * sample_size))
            throw VelaError("VBFStackImp::read_imp", __FILE__, __LINE__)("Cancelled by user!")(-11);
        if (file == nullptr)
            throw_read_closed(__LINE__); // by the callback
        move_to(first);                  // the callback may have read too; where it has not, this does nothing
        read_chunk(n, target);
        target.advance(n);
        first += n;
        count -= n;
    }
}

/// Starts the segment, unless a read that stopped short of the end left it running.
void VBFStackImp::move_to(std::uint64_t sample)
{
    if (segment.is_initialized() != segment_reads)
    {
        const int level = compression_type == 1 ? compression_level : 0;
        segment.init_r(*file, level, data_pos, data_length, get_size(vela_dt_none));
        if (flush_block_size != 0)
            segment.set_flush_positions(flush_positions, flush_block_size);
    }
    segment.seek(sample * size_of(get_dt()));
}

void VBFStackImp::read_chunk(std::uint64_t count, const ReadTarget& target)
{
    const std::uint64_t size_bytes = count * size_of(get_dt());
    if (target.type == get_dt() && target.imag == nullptr)
        return segment.read(target.data, size_bytes);
    unsigned char* const stored = get_scratch(count);
    segment.read(stored, size_bytes);
    if (vela_dt_convert(static_cast<std::uint32_t>(get_dt()), static_cast<std::uint32_t>(target.type), stored,
                        target.data, count, nullptr, target.imag) != 0)
        throw_invalid_conversion(__LINE__, get_dt(), target.type);
}
