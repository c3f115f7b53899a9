/// Reads the records of a file that nobody has checked.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

class VFile;

/// A record that cannot be read further.
class Damage : public std::runtime_error
{
public:
    Damage(std::uint64_t in_position, const std::string& text) : std::runtime_error(text), position(in_position) {}

    std::uint64_t get_position() const { return position; }

private:
    std::uint64_t position;
};

/// A position in a file with bounds: whatever goes beyond the end of the file is a `Damage` that names the field,
/// and no memory is taken for it. Small fields come out of one buffer.
///
/// Records that overlap could be read again and again. So all reads together may be a few times as long as the file.
class RecordReader
{
public:
    /// `file` has to outlive the reader, which moves it.
    explicit RecordReader(VFile& in_file);
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;

    std::uint64_t get_file_size() const { return file_size; }
    std::uint64_t tell() const { return pos; }
    std::uint64_t left() const { return file_size - pos; }

    /// @throws Damage: `target` is behind the end of the file.
    void seek(std::uint64_t target, const std::string& what);

    void read(void* target, std::uint64_t size_bytes, const std::string& what);
    void skip(std::uint64_t size_bytes, const std::string& what);

    /// `count` entries of `entry_bytes` each.
    void skip_entries(std::uint64_t count, std::uint64_t entry_bytes, const std::string& what);

    template <class T>
    T number(const std::string& what)
    {
        static_assert(std::is_trivially_copyable<T>::value, "moved byte by byte");
        T result;
        read(&result, sizeof result, what);
        return result;
    }

    std::string text(std::uint64_t length_bytes, const std::string& what);

    /// A text behind its length in 4 bytes.
    std::string counted_text(const std::string& what);
    void skip_counted_text(const std::string& what);

private:
    void require(std::uint64_t size_bytes, const std::string& what) const;
    void refill();

    VFile& file;
    std::uint64_t file_size;
    std::uint64_t pos = 0;
    std::uint64_t budget_bytes;
    std::vector<unsigned char> buffer;
    std::uint64_t buffer_pos = 0; ///< in the file
};
