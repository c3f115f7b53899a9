/// The chain of stacks in a file, as far as all who read it have to mistrust it.
#pragma once

#include "sources/file/ReadAhead.h"

#include <cstdint>
#include <unordered_set>

namespace Vela::detail {

/// @throws VelaError id -4 "Invalid stack position specified in header!"
[[noreturn]] void throw_invalid_position();

/// Calls `read` with the position of each stack from `first` on, where the stream is; it gives the position of the next
/// one, 0 behind the last.
/// @throws VelaError id -4 "Invalid stack position specified in header!": the system refuses a position, or the chain
///         comes back to one
template <class Read>
void walk_chain(ReadAhead& stream, std::uint64_t first, Read read)
{
    std::unordered_set<std::uint64_t> visited;
    for (std::uint64_t position = first; position > 0;)
    {
        if (!visited.insert(position).second || stream.seek(position) == VFileAccess::all_ones)
            throw_invalid_position();
        position = read(position);
    }
}

/// Stacks of a true chain do not share bytes. Headers may be laid so that each has all that follows as its text: memory
/// would grow with the square of the file.
class ByteBudget
{
public:
    explicit ByteBudget(const ReadAhead& stream) : bytes_left(stream.file_size()) {}

    /// @throws VelaError id -4 "Invalid stack position specified in header!": all stacks together have more bytes than
    ///         the file
    void spend(std::uint64_t size_bytes)
    {
        if (size_bytes > bytes_left)
            throw_invalid_position();
        bytes_left -= size_bytes;
    }

private:
    std::uint64_t bytes_left;
};

} // namespace Vela::detail
