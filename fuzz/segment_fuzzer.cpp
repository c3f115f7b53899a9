// A segment of any bytes, with any declared lengths and any flush positions, gives data or a VelaError, and never
// more data than was asked for.
//
// Layout of the input: 1 byte of choices, 2 bytes declared size, 2 bytes block size, 1 byte count of flush
// positions with 2 bytes each, then the segment.

#include "fuzz/memory_file.h"

#include <VelaBase/VelaError.h>
#include <VelaFile/VZippedSegment.h>

#include <algorithm>
#include <vector>

namespace {

class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : next(data), left(size) {}

    std::uint64_t number(unsigned bytes)
    {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < bytes && left > 0; ++i, --left)
            value = value << 8 | *next++;
        return value;
    }
    const std::uint8_t* rest() const { return next; }
    std::size_t size() const { return left; }

private:
    const std::uint8_t* next;
    std::size_t left;
};

constexpr std::uint64_t largest_read = 1 << 16;

void read_all(VZippedSegment& segment, std::uint64_t piece)
{
    std::vector<unsigned char> room(piece + 1, 0xA5);
    for (std::uint64_t done = 0; done < largest_read; done += piece)
    {
        segment.read(room.data(), piece);
        if (room[piece] != 0xA5)
            __builtin_trap();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const std::uint64_t choices = input.number(1);
    const std::uint64_t declared = input.number(2);
    const std::uint64_t block = input.number(2);
    std::vector<std::uint64_t> positions(input.number(1));
    for (std::uint64_t& position : positions)
        position = input.number(2);
    vela_fuzz::MemoryFile memory(input.rest(), input.size(), VFile::read_mode);

    const int level = (choices & 1) != 0 ? 1 : 0;
    const std::uint64_t length = (choices & 2) != 0 ? input.size() : input.size() / 2 + declared;
    const std::uint64_t declared_size = (choices & 4) != 0 ? VFileAccess::all_ones : declared;
    const std::uint64_t piece = (choices >> 3) * 37 + 1;
    VZippedSegment segment;
    segment.init_r(memory.file, level, 0, length, declared_size);
    segment.set_flush_positions(positions, block);
    for (const std::uint64_t target : {std::uint64_t{0}, block, 3 * block + 1, declared / 2, declared})
        try
        {
            segment.seek(std::min(target, largest_read));
            read_all(segment, piece);
        }
        catch (const VelaError&)
        {
            segment.init_r(memory.file, level, 0, length, declared_size);
            segment.set_flush_positions(positions, block);
        }
    return 0;
}
