/// A file of the operating system as a byte stream.
#pragma once

#include <VelaBase/export.h>
#include <VelaFile/VFileAccess.h>
#include <VelaProps/VPropstring.h>

#include <cstdint>

/// One file handle, owned when it came from `open` and borrowed when it came from `attach`.
///
/// A file is opened for exclusive use: while it is open, a second `open` of it fails, in this process
/// and in any other that opens it through this library. (On POSIX this is an advisory lock of the
/// kind `flock`; a file system that cannot lock opens the file unlocked.) Only regular files and
/// block devices open.
///
/// Copies share the handle and each believes to own it; do not copy an open file.
/// Used from one thread at a time.
class VELA_API VFile : public VFileAccess
{
public:
    /// How a file is opened. Any number may be passed; an unknown one is answered with a failure.
    /// -1 stands for a closed file.
    enum mode : std::int32_t
    {
        read_mode = 0,   ///< read; the file must exist
        write_mode = 1,  ///< read and write; created, or cut to nothing when it exists
        append_mode = 2, ///< read and write; the file must exist; starts at position 0
    };

    /// A closed file with a chunk size of 4 MiB.
    VFile();

    /// Constructs and opens.
    VFile(const VPropstring& path, mode open_mode);

    VFile(const VFile&) = default;
    VFile& operator=(const VFile&) = default;

    /// Opens the file at `path`, in UTF-8 on POSIX. A path that has no such form, or holds a NUL, names no file.
    ///
    /// @throws VelaError id -1 "File already open or attached!"
    /// @throws VelaError id -1 "Invalid file mode when opening file."
    /// @throws VelaError id -1 "Could not open file!", without a system text. A file that is in use elsewhere fails so
    ///         too, and is not cut.
    void open(const VPropstring& path, mode open_mode);

    /// Closes the file. Quiet when nothing is open. Afterwards `get_mode()` is -1.
    ///
    /// @throws VelaError id -1 "File not opened with open(), cannot close.": the handle was attached.
    void close();

    /// Takes over a handle without owning it, at whatever position it stands (see `VelaFile/handle.h`).
    ///
    /// @throws VelaError id -1 "File already open or attached!"
    void attach(void*& new_handle, mode attach_mode);

    /// Gives the handle back without closing it. Null when there is none.
    void* detach();

    /// @throws VelaError id -1 "File not open!"
    std::uint64_t tell() const override;

    /// Moves to `pos` from the start, or to the end of the file for `all_ones`, and returns the new position.
    /// A position behind the end is legal; a write there extends the file. A move that the system
    /// refuses, such as one to 2^63 or above, throws nothing and gives `all_ones`: the caller must test.
    ///
    /// @throws VelaError id -1 "File not open!"
    std::uint64_t seek(std::uint64_t pos) override;

    /// Reads in one transfer. The count of a transfer has 32 bits: more than that is cut to its low
    /// 32 bits and then fails, so split at `get_chunk_size()`.
    /// After a failure the position is wherever the system left it.
    ///
    /// @throws VelaError id -1 "File not open!"
    /// @throws VelaError id -3 "Failed reading %d bytes from file!" on the low 32 bits of the size: the file ended, or
    ///         the system failed, and then with its text.
    void read(void* buffer, std::uint64_t size_bytes) override;

    /// Writes in one transfer; what is said of `read` holds here too.
    ///
    /// @throws VelaError id -1 "File not open!"
    /// @throws VelaError id -3 "Failed writing %d bytes to file!" on the low 32 bits of the size, with the system's
    ///         text
    void write(const void* buffer, std::uint64_t size_bytes) override;

    /// Closes what `open` opened. Never throws.
    virtual ~VFile();

    /// Removes the file at `path`; no directory.
    ///
    /// @throws VelaError id -1 "Could not remove file.", with the system's text
    static void remove(const VPropstring& path);

    mode get_mode() const { return current_mode; }
    bool is_open() const { return current_mode != static_cast<mode>(-1); }

    /// The most bytes that the layers above move in one transfer. One reader ignores it: a compressed segment
    /// takes windows of 64 KiB, whatever the chunk size.
    void set_chunk_size(std::uint32_t size_bytes) { chunk_size = size_bytes; }
    std::uint32_t get_chunk_size() const { return chunk_size; }

private:
    void* handle = nullptr;
    bool opened = false;
    mode current_mode = static_cast<mode>(-1);
    std::uint32_t chunk_size = 0x400000;
};
