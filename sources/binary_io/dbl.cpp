#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>
#include <VelaBinaryIO/vela_dbl.h>

#include "sources/binary_io/dbl_header.h"
#include "sources/platform/platform.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

namespace {

namespace platform = Vela::platform;
using Vela::detail::DblHeader;
using Vela::detail::DblHeaderBytes;

constexpr std::uint64_t single_size = sizeof(float);
constexpr std::uint64_t double_size = sizeof(double);

/// Samples are written in blocks of this size.
constexpr std::uint64_t block_bytes = 0x100000;

/// More than this no single transfer takes.
constexpr std::uint64_t longest_read_bytes = 0x40000000;

/// This many samples are converted at a time, in a buffer on the stack.
constexpr std::uint64_t converted_at_once = 1024;

/// Opens a file; a lack of memory is one more reason why it cannot be opened.
template <class Open>
void* opened(const char* path, Open open)
{
    try
    {
        return open(std::string(path));
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}

bool write_samples(void* handle, const unsigned char* samples, std::uint64_t size_bytes)
{
    for (std::uint64_t done = 0; done < size_bytes; done += block_bytes)
    {
        const auto step = static_cast<std::uint32_t>(std::min(block_bytes, size_bytes - done));
        if (platform::write(handle, samples + done, step) != step)
            return false;
    }
    return true;
}

bool write_file(void* handle, const DblHeader& header, const void* samples, std::uint64_t size_bytes)
{
    const DblHeaderBytes bytes = encode_dbl_header(header);
    return platform::write(handle, bytes.data(), bytes.size()) == bytes.size() &&
           write_samples(handle, static_cast<const unsigned char*>(samples), size_bytes);
}

/// What a mode word asks for.
struct Mode
{
    bool header_only = false;
    bool caller_buffer = false;
    bool force_single = false;
    bool keep_stored = false; ///< singles do not become doubles
};

Mode mode_of(const void* word)
{
    switch (reinterpret_cast<std::uintptr_t>(word))
    {
    case 0xA0:
    case 0xAD:
        return {.header_only = true};
    case 0xAA:
        return {.caller_buffer = true, .force_single = true, .keep_stored = true};
    case 0xAB:
        return {.caller_buffer = true, .keep_stored = true};
    case 0xAC:
        return {.caller_buffer = true};
    case 0xAE:
        return {.force_single = true, .keep_stored = true};
    case 0xAF:
        return {.keep_stored = true};
    default:
        return {};
    }
}

int result_of(bool is_single)
{
    return is_single ? 2 : 1;
}

/// Gives the bytes that the file has; a file that ends early is no failure.
std::uint64_t read_samples(void* handle, unsigned char* samples, std::uint64_t size_bytes)
{
    std::uint64_t done = 0;
    while (done < size_bytes)
    {
        const auto step = static_cast<std::uint32_t>(std::min(longest_read_bytes, size_bytes - done));
        const std::uint64_t moved = platform::read(handle, samples + done, step);
        done += moved;
        if (moved != step)
            break;
    }
    return done;
}

/// From the last sample to the first, so that no single is overwritten before it is converted.
void expand_in_place(unsigned char* samples, std::uint64_t count)
{
    double expanded[converted_at_once];
    while (count > 0)
    {
        const std::uint64_t step = std::min(converted_at_once, count);
        count -= step;
        vela_dt_convert(vela_dt_single, vela_dt_double, samples + count * single_size, expanded, step, nullptr,
                        nullptr);
        std::memcpy(samples + count * double_size, expanded, step * double_size);
    }
}

/// From the first sample to the last, for the same reason.
void narrow_in_place(unsigned char* samples, std::uint64_t count)
{
    float narrowed[converted_at_once];
    for (std::uint64_t done = 0; done < count; done += converted_at_once)
    {
        const std::uint64_t step = std::min(converted_at_once, count - done);
        vela_dt_convert(vela_dt_double, vela_dt_single, samples + done * double_size, narrowed, step, nullptr, nullptr);
        std::memcpy(samples + done * single_size, narrowed, step * single_size);
    }
}

/// The samples behind the header, into `*buffer`, or into memory that is put there where it is null.
int read_block(void* handle, const DblHeader& header, const Mode& mode, void** buffer)
{
    const std::int32_t signed_count = Vela::detail::count_dbl_samples(header.dims.data());
    if (signed_count < 0)
        return 0;
    const auto count = static_cast<std::uint64_t>(signed_count);
    const std::uint64_t sample_size = header.is_single ? single_size : double_size;
    const bool expands = header.is_single && !mode.keep_stored;
    const bool narrows = !header.is_single && mode.force_single;
    if (!mode.caller_buffer)
    {
        // Zeros that nobody looks at cost no memory, however many the header promises.
        *buffer = std::calloc(std::max<std::uint64_t>(count, 1), expands ? double_size : sample_size);
        if (*buffer == nullptr)
            return 0;
    }
    auto* const samples = static_cast<unsigned char*>(*buffer);
    const std::uint64_t moved = read_samples(handle, samples, count * sample_size);
    // Zeros need no conversion, but for those that overwrite what narrowing leaves behind the narrowed samples.
    const std::uint64_t brought = mode.caller_buffer ? count : (moved + sample_size - 1) / sample_size;
    if (expands)
        expand_in_place(samples, brought);
    if (narrows)
        narrow_in_place(samples, std::min(count, 2 * brought));
    return result_of(narrows || (header.is_single && !expands));
}

}

extern "C" int vela_dbl_write(const char* path, const int* dims, const float* lengths, const void* data, int single)
{
    const std::int32_t count = Vela::detail::count_dbl_samples(dims);
    if (count < 0)
        return 0;
    const std::uint64_t size_bytes = static_cast<std::uint64_t>(count) * (single != 0 ? single_size : double_size);
    void* const handle = opened(path,
                                [](const std::string& name) {
                                    return platform::open_exclusive(name, platform::Access::read_write,
                                                                    platform::Creation::create_or_truncate);
                                });
    if (handle == nullptr)
        return 0;

    void* singles = nullptr;
    if (single == 1)
    {
        singles = std::malloc(std::max<std::uint64_t>(size_bytes, 1));
        if (singles == nullptr)
            return 0; // with the file open: this is wanted
        vela_dt_convert(vela_dt_double, vela_dt_single, data, singles, static_cast<std::uint64_t>(count), nullptr,
                        nullptr);
    }
    DblHeader header;
    std::copy_n(dims, header.dims.size(), header.dims.begin());
    std::copy_n(lengths, header.lengths.size(), header.lengths.begin());
    header.is_single = single != 0;
    const bool written = write_file(handle, header, singles != nullptr ? singles : data, size_bytes);
    platform::close(handle);
    if (!written)
        return 0; // without a `free`: this is wanted
    std::free(singles);
    return 1;
}

extern "C" int vela_dbl_read(const char* path, void* dims_or_data, float* lengths, void** data_or_mode)
{
    const Mode mode = mode_of(*data_or_mode);
    void* const handle = opened(path, [](const std::string& name) { return platform::open_shared(name); });
    if (handle == nullptr)
        return 0;
    DblHeaderBytes bytes = {};
    if (platform::read(handle, bytes.data(), bytes.size()) != bytes.size())
        return 0; // with the file open: this is wanted

    const DblHeader header = Vela::detail::decode_dbl_header(bytes);
    if (!mode.caller_buffer)
        std::copy(header.dims.begin(), header.dims.end(), static_cast<int*>(dims_or_data));
    std::copy(header.lengths.begin(), header.lengths.end(), lengths);
    if (mode.header_only)
    {
        platform::close(handle);
        return result_of(header.is_single);
    }
    void* buffer = mode.caller_buffer ? dims_or_data : nullptr;
    const int result = read_block(handle, header, mode, &buffer);
    platform::close(handle);
    if (result != 0)
        *data_or_mode = buffer;
    return result;
}
