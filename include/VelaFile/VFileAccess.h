/// The abstract byte stream of the library.
#pragma once

#include <VelaBase/export.h>

#include <cstdint>
#include <string>
#include <type_traits>

/// A stream of bytes with a position. `VFile` and `VZippedSegment` implement it and say how each
/// operation fails.
class VELA_API VFileAccess
{
public:
    /// All bits set: the end for `VFile::seek`, "a length comes first" for `read_str`,
    /// "not known" or "not bounded" for the sizes of a segment.
    static constexpr std::uint64_t all_ones = ~static_cast<std::uint64_t>(0);

    /// The current position in bytes.
    virtual std::uint64_t tell() const = 0;

    /// Moves to `pos` and returns the new position.
    virtual std::uint64_t seek(std::uint64_t pos) = 0;

    /// Reads exactly `size_bytes` bytes, or throws.
    virtual void read(void* buffer, std::uint64_t size_bytes) = 0;

    /// Writes exactly `size_bytes` bytes, or throws.
    virtual void write(const void* buffer, std::uint64_t size_bytes) = 0;

    /// Writes the bytes of `text` without a terminator; with `prefix` its length goes first, as a
    /// 4-byte unsigned number.
    ///
    /// @throws VelaError id -1 "String too long for its 4-byte length!": with `prefix`, `text` has 2^32 bytes or more.
    /// @throws what `write` throws
    void write_str(const std::string& text, bool prefix);

    /// Reads `length_bytes` bytes into `text`, in one `read`. With `all_ones` a 4-byte unsigned length
    /// comes first in the stream. A length of 0 empties `text` and reads nothing.
    ///
    /// A length comes from a file and may lie. On a `VFile` one above 64 KiB is held against the bytes that
    /// are left before memory is taken, and the failure is that of the short read: "Failed reading %d bytes
    /// from file!" on the length. On any other stream, and on a file that cannot tell what is left, such as a
    /// pipe, a text of more than 1 MiB is read in pieces of 1 MiB: memory grows only with the bytes that come.
    ///
    /// @throws what `read` throws
    void read_str(std::string& text, std::uint64_t length_bytes);

    /// Reads a number or a packed record in one `read` of its exact size, little-endian.
    template <class T>
    void read_value(T& value)
    {
        static_assert(std::is_trivially_copyable<T>::value, "moved byte by byte");
        read(&value, sizeof value);
    }

    /// Writes a number or a packed record in one `write` of its exact size, little-endian.
    template <class T>
    void write_value(const T& value)
    {
        static_assert(std::is_trivially_copyable<T>::value, "moved byte by byte");
        write(&value, sizeof value);
    }

protected:
    VFileAccess() = default;
    VFileAccess(const VFileAccess&) = default;
    VFileAccess& operator=(const VFileAccess&) = default;
    /// Not virtual: nobody owns a stream through this class.
    ~VFileAccess() = default;
};
