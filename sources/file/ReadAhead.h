/// Many small reads of a file through one buffer.
#pragma once

#include <VelaFile/VFile.h>
#include <VelaFile/VFileAccess.h>

#include "sources/file/bounded_stream.h"

#include <array>
#include <cstdint>

namespace Vela::detail {

/// A reading face over a `VFile` that fetches a few KiB at a time. A field that the file does not have
/// fails as a read of the file itself would: with the size of the field, not of the buffer.
///
/// The file must not be moved by others meanwhile; `sync()` moves it to where this stream stands.
/// Costs one system call for a `seek` out of the buffer, and one for each time that the buffer is filled.
class ReadAhead final : public VFileAccess, public BoundedStream
{
public:
    explicit ReadAhead(VFile& in_file);
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    ~ReadAhead() = default;

    std::uint64_t tell() const override { return position; }
    std::uint64_t seek(std::uint64_t pos) override;
    void read(void* buffer, std::uint64_t size_bytes) override;
    /// @throws VelaError always: this stream only reads
    void write(const void* buffer, std::uint64_t size_bytes) override;

    std::uint64_t bytes_left() const override;

    /// Size of the file, `all_ones` where it cannot be known.
    std::uint64_t file_size() const { return end; }

    void sync();

private:
    std::uint64_t buffered() const { return buffer_end - position; }
    /// Reads the next bytes of the file into the buffer; false when the file does not give them.
    bool fill();
    /// Reads where the file stands; false when it does not give the bytes.
    bool try_read(void* target, std::uint64_t size_bytes);
    void stand_at(std::uint64_t file_position);

    /// A stack header with its texts mostly fits, and it is one page of the system's cache.
    static constexpr std::uint64_t capacity = 4096;

    VFile& file;
    std::uint64_t position;
    /// Size of the file. Where it cannot be known, as on a pipe, nothing is read ahead.
    std::uint64_t end;
    /// File positions of what `bytes` holds. The file itself stands at `buffer_end`.
    std::uint64_t buffer_begin;
    std::uint64_t buffer_end;
    std::array<unsigned char, capacity> bytes;
};

} // namespace Vela::detail
