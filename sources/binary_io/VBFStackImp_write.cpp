// Writing the samples of a stack. Header and footer are in VBFStackImp_footer.cpp.
#include "sources/binary_io/VBFStackImp.h"

#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt_convert.h>

#include "sources/binary_io/VBFFileImp.h"
#include "sources/binary_io/file_format.h"
#include "sources/binary_io/flush_block.h"
#include "sources/binary_io/size_of.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

using Vela::detail::size_of;

namespace {

[[noreturn]] void throw_write(int line, const char* text)
{
    throw VelaError("VBFStackImp::write", __FILE__, line)("%s", text)(-1);
}

[[noreturn]] void throw_file_closed(int line)
{
    throw_write(line, "Cannot access VBFStack, file has been closed!");
}

[[noreturn]] void throw_conversion(int line, int from, int to)
{
    throw VelaError("VBFStackImp::write", __FILE__, line)("Invalid on-the-fly conversion from '%s' to '%s'!",
                                                          vela_dt_get_name(from), vela_dt_get_name(to))(-1);
}

} // namespace

void VBFStackImp::commit(int type)
{
    write(type, nullptr, nullptr, 0);
}

void VBFStackImp::write(int type, const void* data, const void* imag, std::uint64_t count)
{
    require_writable();
    const bool starting = state == 1;
    if (starting)
        count = begin_writing(type, imag, count);
    require_imaginary_place(type, imag);
    if (count == 0)
        judge_commit(starting);
    else
        require_room(count);
    // A variable stack has nothing left at any time, so only a commit finishes it.
    const bool finishing = count == 0 || count == samples_left;
    if (starting)
        start_record();
    if (count != 0)
        write_samples(type, data, imag, count);
    if (finishing)
        finish_record();
}

void VBFStackImp::require_writable() const
{
    if (file == nullptr)
        throw_file_closed(__LINE__);
    if (state == -1)
        throw_write(__LINE__, "Stack not ready to be commited. Meta-information missing!");
    if (state == 0)
        throw_write(__LINE__, "Stack is already complete. Invalid call to write()!");
}

/// What the first call does before anything of the stack is on disk. Gives the samples to write. From here on the
/// stack has to be finished, whatever else is wrong with this call.
std::uint64_t VBFStackImp::begin_writing(int type, const void* imag, std::uint64_t count)
{
    samples_written = 0;
    if (variable)
        count = count == all_samples ? 0 : count;
    else if (empty)
    {
        if (count != 0)
            throw_write(__LINE__, "Trying to write to empty stack!");
    }
    else
    {
        samples_left = get_number_of_elements();
        count = count == all_samples ? samples_left : count;
    }
    if (get_dt() == vela_dt_none)
        set_variable_type(imag != nullptr ? type | vela_dt_complex : type);
    if (get_dt() == vela_dt_none)
        throw_write(__LINE__, "Stack data type not set. Cannot commit stack to file!");
    require_sample_sizes(type, count);
    if (variable && count != 0)
        require_steps(count);
    file->write_file_header();
    state = 2;
    return count;
}

/// Samples without a size can be neither counted nor moved.
void VBFStackImp::require_sample_sizes(int type, std::uint64_t count) const
{
    if (size_of(get_dt()) == 0 || (count != 0 && size_of(type) == 0))
        throw_conversion(__LINE__, type, get_dt());
}

/// A variable stack grows by whole steps, and by no more than its header can say.
void VBFStackImp::require_steps(std::uint64_t count) const
{
    if (samples_per_step == 0)
        throw_write(__LINE__, "Not on sample boundary!");
    // The record of such a stack refuses to grow, and no reader takes it.
    if (get_rank() > Vela::detail::max_record_rank)
        throw std::invalid_argument("Unsupported number of sizes");
    const std::uint64_t countable = std::numeric_limits<std::uint64_t>::max() - samples_written;
    if (count > countable || (samples_written + count) / samples_per_step > Vela::detail::most_columns)
        throw VelaError("VBFStackImp::write", __FILE__, __LINE__)("Size of axis %d does not fit the file format!",
                                                                  static_cast<int>(get_rank() - 1))(-1);
}

void VBFStackImp::require_imaginary_place(int type, const void* imag) const
{
    if (imag == nullptr)
        return;
    if ((type & vela_dt_complex) != 0)
        throw_write(__LINE__, "Imaginary block given but buffer is already complex!");
    if ((get_dt() & vela_dt_complex) == 0)
        throw_write(__LINE__, "Imaginary block given but stack is not complex!");
}

void VBFStackImp::require_room(std::uint64_t count) const
{
    if (variable ? count == all_samples : count > samples_left)
        throw_write(__LINE__, "Trying to write more samples than the stack is long!");
    if (variable)
        require_steps(count);
}

/// Whether what has been written so far is a stack.
void VBFStackImp::judge_commit(bool starting)
{
    if (variable)
    {
        if (samples_written != 0 && samples_written % samples_per_step != 0)
            throw_write(__LINE__, "Not on sample boundary!");
    }
    else if (!empty && samples_left != 0)
        throw_write(__LINE__, "Not enough samples written!");
    // A stack whose first call failed has no header, and one whose stream failed has lost samples. Neither may get a
    // footer, and the segment says so.
    if (!starting && segment.is_initialized() != 2)
        segment.write_end();
    state = 0;
}

void VBFStackImp::start_record()
{
    header_pos = file->tell();
    write_header();
    segment.init_w(*file, compression_type == 1 ? compression_level : 0, VFileAccess::all_ones);
    flush_block_size = Vela::detail::choose_flush_block(get_sizes(), size_of(get_dt()), flush_block_size);
    if (flush_block_size != 0)
        segment.set_flush_block_size(flush_block_size);
    data_pos = segment.get_beg_pos_file();
}

void VBFStackImp::write_samples(int type, const void* data, const void* imag, std::uint64_t count)
{
    const std::uint64_t sample_size = size_of(get_dt());
    const std::uint64_t buffer_sample_size = size_of(type);
    const std::uint64_t chunk = std::max<std::uint64_t>(file->get_chunk_size() / sample_size, 1);
    const auto* real_part = static_cast<const unsigned char*>(data);
    const auto* imaginary_part = static_cast<const unsigned char*>(imag);
    while (count != 0)
    {
        const std::uint64_t n = std::min(chunk, count);
        to_segment(in_stack_type(type, real_part, imaginary_part, n), n * sample_size);
        if (!file->report_progress(n * sample_size))
            throw VelaError("VBFStackImp::write", __FILE__, __LINE__)("Cancelled by user!")(-11);
        if (file == nullptr)
            throw_file_closed(__LINE__); // by the callback
        count -= n;
        samples_written += n;
        if (!variable)
            samples_left -= n;
        real_part += n * buffer_sample_size;
        if (imaginary_part != nullptr)
            imaginary_part += n * buffer_sample_size;
    }
    take_steps();
}

/// A variable stack has the size of the steps that were counted.
void VBFStackImp::take_steps()
{
    if (variable && samples_written != 0 && get_sizes().back() != samples_written / samples_per_step)
        set_variable_size(samples_written / samples_per_step);
}

/// The next samples as the stack has them: those of the caller themselves where that is possible.
const unsigned char* VBFStackImp::in_stack_type(int type, const unsigned char* data, const unsigned char* imag,
                                                std::uint64_t count)
{
    if (type == get_dt() && imag == nullptr)
        return data;
    const std::uint64_t size_bytes = count * size_of(get_dt());
    if (scratch.size() < size_bytes)
        scratch.resize(size_bytes);
    if (vela_dt_convert(static_cast<std::uint32_t>(type), static_cast<std::uint32_t>(get_dt()), data, scratch.data(),
                        count, imag, nullptr) != 0)
        throw_conversion(__LINE__, type, get_dt());
    return scratch.data();
}

/// A compressed stream that has lost bytes cannot be continued: it is ended, and whatever else wants to write to it
/// fails.
void VBFStackImp::to_segment(const void* data, std::uint64_t size_bytes)
{
    try
    {
        segment.write(data, size_bytes);
    }
    catch (...)
    {
        if (compression_type == 1 && compression_level > 0)
            segment.end();
        throw;
    }
}

void VBFStackImp::finish_record()
{
    state = 2; // until the stack is in the chain
    if (!footer_written)
    {
        take_steps(); // those of a call that the caller cancelled
        data_length = 0;
        if (samples_written > 0)
        {
            to_segment(nullptr, 0); // which ends it
            data_length = segment.get_cur_pos_file() - data_pos;
            if (flush_block_size != 0)
                flush_positions = segment.get_flush_positions(flush_block_size);
        }
        empty = data_length == 0; // as a reader will find it
        write_footer();
        link();
    }
    state = 0;
    segment.end();
    std::vector<unsigned char>().swap(scratch);
}

/// A copy of a stack that is not the last one has no place in the chain, and must not write there again.
void VBFStackImp::link()
{
    try
    {
        file->on_stack_finished(this);
    }
    catch (...)
    {
        segment.end();
        throw;
    }
    footer_written = true;
}
