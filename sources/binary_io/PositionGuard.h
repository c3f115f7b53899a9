/// Where a file stands behind an operation.
#pragma once

#include <VelaFile/VFile.h>

#include <cstdint>

namespace Vela::detail {

/// Moves a file at the end of its scope, whatever happened in it.
class PositionGuard
{
public:
    /// Back to where the file is.
    explicit PositionGuard(VFile& in_file) : PositionGuard(in_file, in_file.tell()) {}
    PositionGuard(VFile& in_file, std::uint64_t in_position) : file(in_file), position(in_position) {}
    PositionGuard(const PositionGuard&) = delete;
    PositionGuard& operator=(const PositionGuard&) = delete;

    ~PositionGuard()
    {
        try
        {
            if (position != VFileAccess::all_ones)
                file.seek(position);
        }
        catch (...)
        {
            // Only a file that was closed meanwhile fails, and that has no position.
        }
    }

private:
    VFile& file;
    const std::uint64_t position;
};

} // namespace Vela::detail
