// Writing the samples of a stack. Header and footer are in VBFStackImp_footer.cpp.
#include "sources/binary_io/VBFStackImp.h"

#include <Ome/enums.h>
#include <VelaBase/VelaError.h>
#include <VelaBase/vela_dt_convert.h>

#include "sources/binary_io/VBFFileImp.h"
#include "sources/binary_io/file_format.h"
#include "sources/binary_io/flush_block.h"
#include "sources/binary_io/move_back.h"
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

[[noreturn]] void throw_write_closed(int line)
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
    else if (lacks_header && count == all_samples)
        count = samples_left;
    require_imaginary_place(type, imag);
    if (count == 0)
        require_complete();
    else
        require_room(count);
    // A variable stack has nothing left at any time, so only a commit finishes it.
    const bool finishing = count == 0 || count == samples_left;
    if (starting || lacks_header)
        start_record();
    if (count != 0)
        write_samples(type, data, imag, count);
    if (finishing)
        finish_record();
}

void VBFStackImp::require_writable() const
{
    if (file == nullptr)
        throw_write_closed(__LINE__);
    if (state == -1)
        throw_write(__LINE__, "Stack not ready to be commited. Meta-information missing!");
    if (state == 0)
        throw_write(__LINE__, "Stack is already complete. Invalid call to write()!");
}

/// What the first call does before anything of the stack is on disk. Gives the samples to write. What is wrong with
/// this call beyond that leaves a stack that cannot be completed: it is in state 2 and has no header.
std::uint64_t VBFStackImp::begin_writing(int type, const void* imag, std::uint64_t count)
{
    const bool takes_samples = variable || !empty;
    if (!takes_samples && count != 0)
        throw_write(__LINE__, "Trying to write to empty stack!");
    samples_written = 0;
    samples_left = takes_samples && !variable ? get_number_of_elements() : 0;
    if (count == all_samples)
        count = samples_left;
    if (get_dt() == vela_dt_none)
        take_type(imag != nullptr ? type | vela_dt_complex : type);
    require_countable_samples(type, count);
    if (variable && count != 0)
        require_steps(count);
    file->write_file_header();
    state = 2;
    return count;
}

/// The type of a stack that was left open.
void VBFStackImp::take_type(int type)
{
    // Refused before it is taken: no reader would open a file with such a stack, and it could have no other type.
    if (size_of(type) != 0)
        Ome::get_type(type);
    set_variable_type(type);
    if (get_dt() == vela_dt_none)
        throw_write(__LINE__, "Stack data type not set. Cannot commit stack to file!");
}

/// Samples without a size can be neither counted nor moved, nor can more bytes than 64 bits count.
void VBFStackImp::require_countable_samples(int type, std::uint64_t count) const
{
    const std::uint64_t sample_size = size_of(get_dt());
    if (sample_size == 0 || (count != 0 && size_of(type) == 0))
        throw_conversion(__LINE__, type, get_dt());
    if (get_number_of_elements() > std::numeric_limits<std::uint64_t>::max() / sample_size)
        throw_write(__LINE__, "The size increases the maximum size");
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

/// What has been written so far has to be a stack.
void VBFStackImp::require_complete() const
{
    if (variable)
    {
        if (samples_written != 0 && samples_written % samples_per_step != 0)
            throw_write(__LINE__, "Not on sample boundary!");
    }
    else if (!empty && samples_left != 0)
        throw_write(__LINE__, "Not enough samples written!");
}

/// Header and stream. Where the system refuses them, the next call begins with them.
void VBFStackImp::start_record()
{
    const VBFStackHeader header = make_header();
    header_pos = file->tell();
    lacks_header = true;
    try
    {
        write_header(header);
        segment.init_w(*file, compression_type == 1 ? compression_level : 0, VFileAccess::all_ones);
    }
    catch (...)
    {
        Vela::detail::move_back(*file, header_pos);
        locked = false;
        throw;
    }
    lacks_header = false;
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
        const unsigned char* const samples = in_stack_type(type, real_part, imaginary_part, n);
        with_stream([&] { segment.write(samples, n * sample_size); });
        if (!file->report_progress(n * sample_size))
            throw VelaError("VBFStackImp::write", __FILE__, __LINE__)("Cancelled by user!")(-11);
        require_still_open(n);
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

/// The callback may have closed the file, completed the stack or written to it.
void VBFStackImp::require_still_open(std::uint64_t count) const
{
    require_writable();
    if (!variable && count > samples_left)
        throw_write(__LINE__, "Trying to write more samples than the stack is long!");
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
    unsigned char* const converted = get_scratch(count);
    if (vela_dt_convert(static_cast<std::uint32_t>(type), static_cast<std::uint32_t>(get_dt()), data, converted, count,
                        imag, nullptr) != 0)
        throw_conversion(__LINE__, type, get_dt());
    return converted;
}

/// A compressed stream that has lost bytes cannot be continued: it is ended, and whatever else wants to write to it
/// fails.
template <class Operation>
void VBFStackImp::with_stream(Operation operation)
{
    try
    {
        operation();
    }
    catch (...)
    {
        if (compression_type == 1 && compression_level > 0)
            segment.end();
        throw;
    }
}

/// Gives the bytes on disk.
std::uint64_t VBFStackImp::end_stream()
{
    // Without samples there is no stream on disk. Where it never started, or has lost bytes, the segment says so.
    const bool nothing_to_end = samples_written == 0 && segment.is_initialized() == segment_writes;
    if (!nothing_to_end)
        with_stream([&] { segment.write_end(); });
    return nothing_to_end ? 0 : segment.get_cur_pos_file() - data_pos;
}

/// Each step can be repeated by another commit, should the system refuse it, until the stack is in the chain.
void VBFStackImp::finish_record()
{
    take_steps(); // those of a call that the caller cancelled
    data_length = end_stream();
    if (data_length != 0 && flush_block_size != 0)
        flush_positions = segment.get_flush_positions(flush_block_size);
    require_place_in_chain();
    write_footer();
    file->on_stack_finished(this);
    empty = data_length == 0; // as a reader will find it
    state = 0;
    segment.end();
    scratch.release();
}

/// A copy of a stack that is not the last one has no place in the chain, and must not write there again.
void VBFStackImp::require_place_in_chain()
{
    try
    {
        file->require_last(this);
    }
    catch (...)
    {
        segment.end();
        throw;
    }
}
