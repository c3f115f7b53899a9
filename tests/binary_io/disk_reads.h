/// The reads of this program from files as the system sees them. A program that uses it has disk_reads.cpp among its
/// sources, which defines `read` and `lseek` itself.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela_test {

/// What has happened since the construction. One at a time, in a program of one thread.
class DiskReads
{
public:
    DiskReads();
    ~DiskReads();
    DiskReads(const DiskReads&) = delete;
    DiskReads& operator=(const DiskReads&) = delete;

    std::size_t count_reads() const { return reads; }
    /// The moves of a position too.
    std::size_t count_calls() const { return reads + moves; }
    std::uint64_t count_bytes() const { return bytes; }

    static DiskReads* current;

    /// For the definitions of the system calls.
    void note_move() { ++moves; }
    void note_read(std::uint64_t size_bytes)
    {
        ++reads;
        bytes += size_bytes;
    }

private:
    std::size_t reads = 0;
    std::size_t moves = 0;
    std::uint64_t bytes = 0;
};

} // namespace vela_test
