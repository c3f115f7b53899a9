// The samples of damaged files, read through segments with the flush points of their footers.
#include <VelaFile/VZippedSegment.h>

#include "binary_io/manifest.h"
#include "binary_io/outcome.h"
#include "binary_io/stack_reader.h"
#include "binary_io/written_vbf.h"
#include "support/sha256.h"

#include <algorithm>

using namespace vela_test;

namespace {

/// A read that a segment has no part in, and why. What the stack answers is held by hostile_open_test.
struct LeftOut
{
    const char* file;
    std::uint64_t first;
    const char* reason;
};

const LeftOut left_out[] = {
    {"type_none.vbf", 0, "a sample has no size"},
    {"plane_count.vbf", 5, "an empty stack has no segment"},
};

/// One read of a manifest.
struct HostileRead
{
    DataFile file;
    nlohmann::json read;

    std::uint64_t first() const { return read.at("first").get<std::uint64_t>(); }
};

bool concerns(const LeftOut& entry, const HostileRead& read)
{
    return read.file.name() == entry.file && read.first() == entry.first;
}

std::ostream& operator<<(std::ostream& out, const HostileRead& read)
{
    return out << read.file << " " << read.read.dump();
}

std::vector<HostileRead> all_reads()
{
    std::vector<HostileRead> reads;
    for (const DataFile& file : data_files("hostile"))
        for (const nlohmann::json& read : file.entry.at("reads"))
            reads.push_back({file, read});
    return reads;
}

std::vector<HostileRead> possible_reads()
{
    std::vector<HostileRead> reads = all_reads();
    const auto is_left_out = [](const HostileRead& read)
    {
        return std::any_of(std::begin(left_out), std::end(left_out),
                           [&read](const LeftOut& entry) { return concerns(entry, read); });
    };
    reads.erase(std::remove_if(reads.begin(), reads.end(), is_left_out), reads.end());
    return reads;
}

class HostileSamplesTest : public testing::TestWithParam<HostileRead>
{
};

/// What a footer says of flush points.
struct FlushTable
{
    std::vector<std::uint64_t> positions;
    std::uint64_t block_size = 0;
};

/// Moves `at` from behind a footer to its metadata.
void skip_labels_and_columns(const ByteMap& map, std::uint64_t footer, const VBFStackHeader& header, std::uint64_t& at)
{
    const std::uint64_t rank = copied(header.rank);
    for (std::uint64_t axis = 0; axis < rank; ++axis)
        map.string(at);
    for (std::uint64_t axis = 0; axis < rank; ++axis)
        if (map.u32(footer + footer_col_positions_at + 4 * axis) != 0)
            at += 8 * copied(header.dimension_sizes[axis]);
    for (std::uint64_t axis = 0; axis < rank; ++axis)
        if (map.u32(footer + footer_col_labels_at + 4 * axis) != 0)
            for (std::uint64_t column = 0; column < copied(header.dimension_sizes[axis]); ++column)
                map.string(at);
}

FlushTable flush_table(const ByteMap& map, const VBFChainEntry& stack)
{
    FlushTable table;
    const std::uint64_t footer = stack.data_pos + copied(stack.header.data_length_on_disk);
    if (copied(stack.header.format_version) == 0 || map.u32(footer) < stack_footer_size)
        return table;
    const std::uint64_t count = map.u64(footer + footer_flush_point_count_at);
    if (count == 0)
        return table;
    std::uint64_t at = footer + map.u32(footer);
    skip_labels_and_columns(map, footer, stack.header, at);
    at += map.u32(footer + footer_metadata_length_at);
    for (std::uint64_t i = 0; i < count; ++i)
        table.positions.push_back(map.u64(at + 8 * i));
    table.block_size = map.u64(footer + footer_flush_block_size_at);
    return table;
}

/// Seeks and reads as the manifest says; a count of -1 means all that follow.
Bytes samples_of(const HostileRead& read)
{
    StackReader reader(read.file);
    const std::size_t stack = read.read.at("stack").get<std::size_t>();
    const std::uint64_t sample_size = reader.sample_size_bytes(stack);
    const std::uint64_t begin = read.first() * sample_size;
    const std::int64_t count = read.read.at("count").get<std::int64_t>();
    const std::uint64_t size =
        count == -1 ? reader.size_bytes(stack) - begin : static_cast<std::uint64_t>(count) * sample_size;
    VZippedSegment segment;
    reader.start(segment, stack);
    const FlushTable table = flush_table(ByteMap(get_bytes(read.file.path())), reader.entry(stack));
    if (table.block_size != 0)
        segment.set_flush_positions(table.positions, table.block_size);
    segment.seek(begin);
    return read_bytes(segment, size);
}

} // namespace

TEST_P(HostileSamplesTest, HasAnOutcomeOfItsManifest)
{
    Bytes samples;
    const Outcome outcome = outcome_of([&] { samples = samples_of(GetParam()); });

    const nlohmann::json& expected = GetParam().read.at("expect");
    EXPECT_TRUE(fits(outcome, expected));
    if (!outcome.failed && expected.contains("sha256"))
    {
        EXPECT_EQ(sha256(samples), expected.at("sha256").get<std::string>());
    }
}

INSTANTIATE_TEST_SUITE_P(Hostile, HostileSamplesTest, testing::ValuesIn(possible_reads()),
                         [](const auto& instance)
                         {
                             return test_name(instance.param.file) + "_" + std::to_string(instance.param.first()) +
                                    "_" + std::to_string(instance.index);
                         });

TEST(HostileSamples, WhatIsLeftOutIsInTheManifest)
{
    const std::vector<HostileRead> reads = all_reads();
    for (const LeftOut& entry : left_out)
        EXPECT_TRUE(std::any_of(reads.begin(), reads.end(),
                                [&entry](const HostileRead& read) { return concerns(entry, read); }))
            << entry.file << ": " << entry.reason;
}

TEST(HostileSamples, TablesOfFlushPointsAreUsed)
{
    std::size_t with_table = 0;
    for (const HostileRead& read : possible_reads())
    {
        StackReader reader(read.file);
        const VBFChainEntry& stack = reader.entry(read.read.at("stack").get<std::size_t>());
        with_table += flush_table(ByteMap(get_bytes(read.file.path())), stack).positions.empty() ? 0u : 1u;
    }
    EXPECT_GE(with_table, 13u);
}
