/// The writes of this program to files as the system sees them; they can be made to fail. A program that uses it has
/// disk_writes.cpp among its sources, which defines `write` and `lseek` itself.
#pragma once

#include <cstdint>
#include <ostream>
#include <vector>

namespace vela_test {

struct DiskWrite
{
    std::uint64_t position;
    std::uint64_t size_bytes;

    bool operator==(const DiskWrite& other) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const DiskWrite& write)
{
    return out << write.size_bytes << " at " << write.position;
}

/// What has happened since the construction. One at a time, in a program of one thread.
class DiskWrites
{
public:
    DiskWrites();
    ~DiskWrites();
    DiskWrites(const DiskWrites&) = delete;
    DiskWrites& operator=(const DiskWrites&) = delete;

    const std::vector<DiskWrite>& log() const { return writes; }
    std::size_t count_calls() const { return calls; }
    std::uint64_t count_bytes() const;

    /// From now on `size_bytes` more bytes are written; then every write fails for want of space.
    void set_room(std::uint64_t size_bytes) { room = size_bytes; }

    /// From now on a file cannot be moved to `position`; all ones: it can be moved anywhere.
    void refuse_position(std::uint64_t position) { refused_position = position; }

    /// From now on `kept` gets the bytes of each write.
    void keep_bytes_in(std::vector<std::vector<unsigned char>>& kept) { kept_bytes = &kept; }

    static DiskWrites* current;

    /// For the definitions of the system calls.
    std::uint64_t take_room(std::uint64_t size_bytes);
    void note_write(std::uint64_t position, const unsigned char* bytes, std::uint64_t size_bytes);
    void note_call() { ++calls; }
    bool refuses(std::uint64_t position) const { return position == refused_position; }

private:
    std::vector<DiskWrite> writes;
    std::size_t calls = 0;
    std::uint64_t room = ~std::uint64_t{0};
    std::uint64_t refused_position = ~std::uint64_t{0};
    std::vector<std::vector<unsigned char>>* kept_bytes = nullptr;
};

} // namespace vela_test
