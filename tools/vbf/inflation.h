/// Inflates a stretch of a file that nobody has checked.
#pragma once

#include <VelaFile/VFile.h>

#include <cstdint>
#include <string>
#include <vector>
#include <zlib.h>

/// One stream of deflated bytes, inflated piece by piece.
class Inflation
{
public:
    enum class End
    {
        none,    ///< there is more
        stream,  ///< the stream ended, with its trailer where it has one
        stretch, ///< the stretch of the file ended, and the stream did not
        damage,  ///< see `get_message`
    };

    /// Inflates the bytes of `file` from `begin` to `end`. A `raw` stream has neither header nor trailer.
    Inflation(VFile& in_file, std::uint64_t begin, std::uint64_t end, bool raw);
    Inflation(const Inflation&) = delete;
    Inflation& operator=(const Inflation&) = delete;
    ~Inflation();

    /// Inflates at most `size_bytes` and gives how many came: fewer only at an end.
    std::size_t read(unsigned char* target, std::size_t size_bytes);

    End get_end() const { return end_reached; }
    const std::string& get_message() const { return message; }

    /// Of the next byte in the file that has not been inflated.
    std::uint64_t get_position() const { return next_pos - stream.avail_in; }

private:
    void refill();

    VFile& file;
    std::uint64_t next_pos;
    const std::uint64_t end_pos;
    z_stream stream = {};
    std::vector<unsigned char> input;
    End end_reached = End::none;
    std::string message;
};
