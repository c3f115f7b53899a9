/// Where a file stands behind an operation that may have failed.
#pragma once

#include <VelaFile/VFile.h>

#include <cstdint>

namespace Vela::detail {

/// Moves a file where nobody can be told of a failure. Only one that is closed fails, and that has no position.
inline void move_back(VFile& file, std::uint64_t position) noexcept
{
    try
    {
        if (position != VFileAccess::all_ones)
            file.seek(position);
    }
    catch (...)
    {
        return;
    }
}

} // namespace Vela::detail
