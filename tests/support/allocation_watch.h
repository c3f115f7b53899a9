/// Counts what `operator new` hands out. A program that uses it has allocation_watch.cpp among its sources.
#pragma once

#include <cstddef>

namespace vela_test {

/// What was asked for since its construction. One at a time, in a program of one thread.
class AllocationWatch
{
public:
    AllocationWatch();

    /// Bytes that are taken now beyond those at the start, 0 when there are fewer.
    std::size_t extra_bytes() const;

    /// The most that `extra_bytes` has been.
    std::size_t peak_extra_bytes() const;

    /// How many times memory was asked for since.
    std::size_t count_allocations() const;

private:
    std::size_t bytes_at_start;
    std::size_t allocations_at_start;
};

} // namespace vela_test
