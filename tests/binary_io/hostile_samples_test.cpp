// The samples of damaged files, as far as the stack header tells how to read them.
#include <VelaFile/VZippedSegment.h>

#include "binary_io/manifest.h"
#include "binary_io/outcome.h"
#include "binary_io/stack_reader.h"
#include "support/sha256.h"

#include <algorithm>

using namespace vela_test;

namespace {

/// A read that needs more than the stack header, and why.
struct LeftOut
{
    const char* file;
    std::uint64_t first;
    const char* reason;
};

const char* const table = "goes through the flush positions, which stand behind the footer";

const LeftOut left_out[] = {
    {"type_none.vbf", 0, "a sample has no size"},
    {"plane_count.vbf", 5, "an empty stack has no segment"},
    {"flush_data_block2.vbf", 49162, table},
    {"flush_data_block0.vbf", 16389, table},
    {"flush_data_block0.vbf", 49162, table},
    {"flush_adler.vbf", 16384, table},
    {"flush_outside.vbf", 49162, table},
    {"flush_far_outside.vbf", 49162, table},
    {"flush_negative.vbf", 49162, table},
    {"flush_zero.vbf", 49162, table},
    {"flush_descending.vbf", 49162, table},
    {"flush_off_by_one.vbf", 49162, table},
    {"flush_equal.vbf", 49162, table},
    {"flush_block_one.vbf", 49162, table},
    {"flush_block_huge.vbf", 49162, table},
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
