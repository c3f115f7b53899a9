/// A fixture for tests on a disk that is full.
#pragma once

#include "binary_io/disk_writes.h"
#include "binary_io/written_vbf.h"

#include <cstdint>

namespace vela_test {

class FailingWrites : public WritingTest
{
protected:
    /// Stacks that the chain on disk reaches.
    std::uint64_t linked() const
    {
        const ByteMap map = on_disk();
        std::uint64_t count = 0;
        if (map.size() < first_record_pos)
            return 0;
        for (std::uint64_t at = map.u64(14); at != 0; at = map.u64(at + stack_next_at))
            ++count;
        return count;
    }
};

} // namespace vela_test
