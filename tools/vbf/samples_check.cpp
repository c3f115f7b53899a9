#include "samples_check.h"

#include "findings.h"
#include "inflation.h"
#include "progress.h"
#include "sample_size.h"
#include "stack_shape.h"

#include <VelaBase/VelaError.h>

#include <algorithm>
#include <limits>
#include <optional>

namespace {

constexpr std::size_t piece_bytes = std::size_t{128} * 1024;

std::string of(std::uint64_t number, std::uint64_t whole)
{
    return std::to_string(number) + " of " + std::to_string(whole) + " bytes";
}

/// The blocks between flush points, each with a checksum.
class Blocks
{
public:
    /// `count` blocks are kept in mind, those behind are not.
    Blocks(std::uint64_t in_block_bytes, std::size_t count) : block_bytes(in_block_bytes), max_count(count) {}

    void add(const unsigned char* bytes, std::size_t size_bytes)
    {
        while (size_bytes != 0 && block_bytes != 0 && sums.size() <= max_count)
        {
            const std::uint64_t n = std::min<std::uint64_t>(size_bytes, block_bytes - filled_bytes);
            sum = crc32(sum, bytes, static_cast<uInt>(n));
            filled_bytes += n;
            bytes += n;
            size_bytes -= n;
            if (filled_bytes == block_bytes)
                close();
        }
    }

    /// The last block may be shorter than the others, and have no bytes.
    void close()
    {
        sums.push_back(static_cast<std::uint32_t>(sum));
        sum = 0;
        filled_bytes = 0;
    }

    const std::vector<std::uint32_t>& get_sums() const { return sums; }

private:
    std::uint64_t block_bytes;
    std::size_t max_count;
    std::vector<std::uint32_t> sums;
    uLong sum = 0;
    std::uint64_t filled_bytes = 0;
};

class SamplesInspection
{
public:
    SamplesInspection(VFile& in_file, const VBFChainEntry& in_stack, std::uint64_t in_size_bytes, Findings& in_findings,
                      Progress& in_progress)
        : file(in_file), begin(in_stack.data_pos), end(in_stack.data_pos + in_stack.header.data_length_on_disk),
          size_bytes(in_size_bytes), findings(in_findings), progress(in_progress)
    {
    }

    void plain()
    {
        const std::uint64_t length_bytes = end - begin;
        const std::string text = "the segment has " + of(length_bytes, size_bytes);
        if (length_bytes < size_bytes)
            findings.add_wrong(begin, text);
        else if (length_bytes > size_bytes)
            findings.add_odd(begin, text);
    }

    void compressed(const FlushPoints& table)
    {
        const bool usable = check_table(table);
        Blocks blocks(table.block_bytes, usable ? table.positions.size() : 0);
        if (!inflate_all(blocks) || !usable || table.positions.empty())
            return;
        blocks.close();
        for (std::size_t point = 0; point < table.positions.size(); ++point)
        {
            if (!check_block(table, point, blocks.get_sums()[point + 1]))
                return;
            progress.set(end + begin + table.positions[point]);
        }
    }

private:
    bool check_table(const FlushPoints& table)
    {
        if (table.positions.empty())
            return true;
        const auto refuse = [&](const std::string& text)
        {
            findings.add_wrong(table.position_in_file, text);
            return false;
        };
        if (table.block_bytes == 0)
            return refuse("there are flush points, and flush_block_size is 0");
        std::uint64_t before = 0;
        for (const std::uint64_t position : table.positions)
        {
            if (position <= before)
                return refuse("the flush positions do not ascend");
            if (position >= end - begin)
                return refuse("a flush position leaves the segment");
            before = position;
        }
        const std::uint64_t expected = size_bytes / table.block_bytes;
        if (table.positions.size() > expected)
            return refuse("there are more flush points than blocks");
        if (table.positions.size() < expected)
            findings.add_odd(table.position_in_file, "there are " + std::to_string(table.positions.size()) + " of " +
                                                         std::to_string(expected) + " flush points");
        return true;
    }

    /// The whole stream with its trailer.
    bool inflate_all(Blocks& blocks)
    {
        Inflation inflation(file, begin, end, false);
        std::vector<unsigned char> piece(piece_bytes);
        std::uint64_t done_bytes = 0;
        while (inflation.get_end() == Inflation::End::none && done_bytes <= size_bytes)
        {
            const std::size_t n = inflation.read(piece.data(), piece.size());
            done_bytes += n;
            blocks.add(piece.data(), n);
            progress.set(begin + inflation.get_position());
        }
        const auto refuse = [&](const std::string& text)
        {
            findings.add_wrong(inflation.get_position(), text);
            return false;
        };
        const std::string how_far = of(done_bytes, size_bytes);
        if (inflation.get_end() == Inflation::End::damage)
            return refuse("the compressed samples are damaged (" + inflation.get_message() + ") behind " + how_far);
        if (done_bytes > size_bytes)
            return refuse("there are more samples than the " + std::to_string(size_bytes) + " bytes of the stack");
        if (done_bytes < size_bytes)
            return refuse("the compressed samples end behind " + how_far);
        if (inflation.get_end() == Inflation::End::stretch)
            return refuse("the compressed samples lack their end");
        if (inflation.get_position() != end)
            return refuse(std::to_string(end - inflation.get_position()) +
                          " bytes of the segment lie behind the compressed samples");
        return true;
    }

    /// Whether the bytes from a flush point on are those that the stream has there.
    bool check_block(const FlushPoints& table, std::size_t point, std::uint32_t expected_sum)
    {
        const std::uint64_t block_begin = (point + 1) * table.block_bytes;
        const std::uint64_t expected_bytes = std::min(table.block_bytes, size_bytes - block_begin);
        const bool last = point + 1 == table.positions.size();
        const std::uint64_t block_end_pos = last ? end : begin + table.positions[point + 1];
        Inflation inflation(file, begin + table.positions[point], block_end_pos, true);
        std::vector<unsigned char> piece(piece_bytes);
        uLong sum = 0;
        std::uint64_t done_bytes = 0;
        while (done_bytes < expected_bytes && inflation.get_end() == Inflation::End::none)
        {
            const std::size_t n =
                inflation.read(piece.data(), std::min<std::uint64_t>(piece.size(), expected_bytes - done_bytes));
            sum = crc32(sum, piece.data(), static_cast<uInt>(n));
            done_bytes += n;
        }
        const bool ends = !last || block_begin + expected_bytes < size_bytes ||
                          (inflation.read(piece.data(), 1) == 0 && inflation.get_end() == Inflation::End::stream);
        if (done_bytes == expected_bytes && static_cast<std::uint32_t>(sum) == expected_sum && ends)
            return true;
        findings.add_wrong(table.position_in_file + point * sizeof(std::uint64_t),
                           "flush point " + std::to_string(point) + " does not lead to byte " +
                               std::to_string(block_begin) + " of the samples");
        return false;
    }

    VFile& file;
    const std::uint64_t begin;
    const std::uint64_t end;
    const std::uint64_t size_bytes;
    Findings& findings;
    Progress& progress;
};

/// The bytes of all samples; nothing where there is no such number.
std::optional<std::uint64_t> samples_bytes(const VBFChainEntry& stack, Findings& findings)
{
    const std::uint64_t sample_bytes = size_of(stack.header.data_type);
    if (sample_bytes == 0)
    {
        findings.add_wrong(stack.position + offsetof(VBFStackHeader, data_type),
                           "data_type " + std::to_string(stack.header.data_type) + " is no type of samples");
        return std::nullopt;
    }
    try
    {
        const std::uint64_t count = count_of(StackShape(stack.header).sizes);
        if (count <= std::numeric_limits<std::uint64_t>::max() / sample_bytes)
            return count * sample_bytes;
    }
    catch (const VelaError&)
    {
    }
    findings.add_wrong(stack.position + offsetof(VBFStackHeader, dimension_sizes),
                       "the stack has more samples than can be counted");
    return std::nullopt;
}

} // namespace

std::uint64_t inspect_samples(VFile& file, const VBFChainEntry& stack, const FlushPoints& table, Findings& findings,
                              Progress& progress)
{
    const std::optional<std::uint64_t> size_bytes = samples_bytes(stack, findings);
    if (!size_bytes || stack.header.data_length_on_disk == 0)
        return 0;
    SamplesInspection inspection(file, stack, *size_bytes, findings, progress);
    if (stack.header.compression_type == 1 && stack.header.compression_level > 0)
        inspection.compressed(table);
    else
        inspection.plain();
    return *size_bytes;
}
