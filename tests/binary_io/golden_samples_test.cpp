// The samples of the good files: all, in pieces, and by seeking.
#include <VelaFile/VZippedSegment.h>

#include "binary_io/manifest.h"
#include "binary_io/stack_reader.h"
#include "support/sha256.h"

#include <algorithm>

using namespace vela_test;

namespace {

/// The bytes of a probe, after a seek.
Bytes read_probe(VZippedSegment& segment, std::uint64_t sample_size_bytes, const nlohmann::json& probe)
{
    segment.seek(probe.at("first").get<std::uint64_t>() * sample_size_bytes);
    return read_bytes(segment, probe.at("count").get<std::uint64_t>() * sample_size_bytes);
}

void expect_probe(VZippedSegment& segment, std::uint64_t sample_size_bytes, const nlohmann::json& probe)
{
    SCOPED_TRACE(probe.dump());
    const Bytes bytes = read_probe(segment, sample_size_bytes, probe);
    EXPECT_EQ(sha256(bytes), probe.at("sha256").get<std::string>());
    const std::string head = probe.at("head").get<std::string>();
    EXPECT_EQ(hexadecimal(bytes.data(), std::min(bytes.size(), head.size() / 2)), head);
}

class GoldenSamplesTest : public testing::TestWithParam<DataFile>
{
protected:
    const nlohmann::json& stacks() const { return GetParam().entry.at("stacks"); }

    /// Calls `check(reader, index, what the manifest says)` for each stack that has data.
    template <class Check>
    void for_each_stack_with_data(Check check) const
    {
        StackReader reader(GetParam());
        ASSERT_EQ(reader.stack_count(), stacks().size());
        for (std::size_t i = 0; i < reader.stack_count(); ++i)
        {
            SCOPED_TRACE(testing::Message() << "stack " << i);
            if (copied(reader.header(i).data_length_on_disk) != 0)
                check(reader, i, stacks()[i]);
        }
    }
};

} // namespace

TEST(Sha256, KnownAnswers)
{
    EXPECT_EQ(sha256(Bytes()), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256(Bytes{'a', 'b', 'c'}), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256(Bytes(1000000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    // The count of bits needs a block of its own from 56 bytes on.
    EXPECT_EQ(sha256(Bytes(55, 'a')), "9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318");
    EXPECT_EQ(sha256(Bytes(56, 'a')), "b35439a4ac6f0948b6d6f9e3c6af0f5f590ce20f1bde7090ef7970686ec6738a");
    EXPECT_EQ(sha256(Bytes(64, 'a')), "ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb");
}

TEST_P(GoldenSamplesTest, TheSizesAndTheTypeGiveTheSizeInBytes)
{
    const StackReader reader(GetParam());
    for (std::size_t i = 0; i < reader.stack_count(); ++i)
        EXPECT_EQ(reader.size_bytes(i), stacks().at(i).at("uncompressed_size").get<std::uint64_t>()) << i;
}

TEST_P(GoldenSamplesTest, AllSamplesInOneRead)
{
    for_each_stack_with_data(
        [](StackReader& reader, std::size_t i, const nlohmann::json& expected)
        {
            VZippedSegment segment;
            reader.start(segment, i);
            const Bytes samples = read_bytes(segment, reader.size_bytes(i));
            EXPECT_EQ(sha256(samples), expected.at("samples_sha256").get<std::string>());
        });
}

TEST_P(GoldenSamplesTest, AllSamplesInUnevenPieces)
{
    for_each_stack_with_data(
        [](StackReader& reader, std::size_t i, const nlohmann::json& expected)
        {
            VZippedSegment segment;
            reader.start(segment, i);
            Bytes samples;
            for (std::uint64_t piece = 1; samples.size() < reader.size_bytes(i); piece = piece * 2 + 1)
            {
                const Bytes next = read_bytes(segment, std::min(piece, reader.size_bytes(i) - samples.size()));
                samples.insert(samples.end(), next.begin(), next.end());
            }
            EXPECT_EQ(sha256(samples), expected.at("samples_sha256").get<std::string>());
        });
}

TEST_P(GoldenSamplesTest, ProbesWithoutFlushPoints)
{
    for_each_stack_with_data(
        [](StackReader& reader, std::size_t i, const nlohmann::json& expected)
        {
            VZippedSegment segment;
            reader.start(segment, i);
            for (const nlohmann::json& probe : expected.at("probes"))
                expect_probe(segment, reader.sample_size_bytes(i), probe);
        });
}

TEST_P(GoldenSamplesTest, ProbesWithFlushPoints)
{
    for_each_stack_with_data(
        [](StackReader& reader, std::size_t i, const nlohmann::json& expected)
        {
            VZippedSegment segment;
            reader.start(segment, i);
            segment.set_flush_positions(expected.at("flush_positions").get<std::vector<std::uint64_t>>(),
                                        expected.at("flush_block_size").get<std::uint64_t>());
            for (const nlohmann::json& probe : expected.at("probes"))
                expect_probe(segment, reader.sample_size_bytes(i), probe);
            // And back again, from the last to the first.
            const nlohmann::json& probes = expected.at("probes");
            for (std::size_t k = probes.size(); k-- > 0;)
                expect_probe(segment, reader.sample_size_bytes(i), probes[k]);
        });
}

TEST_P(GoldenSamplesTest, EachFlushPointContinuesTheSamples)
{
    for_each_stack_with_data(
        [](StackReader& reader, std::size_t i, const nlohmann::json& expected)
        {
            const std::uint64_t block_size = expected.at("flush_block_size").get<std::uint64_t>();
            if (block_size == 0 || !reader.is_compressed(i))
                return;
            VZippedSegment whole;
            reader.start(whole, i);
            const Bytes samples = read_bytes(whole, reader.size_bytes(i));

            VZippedSegment segment;
            reader.start(segment, i);
            segment.set_flush_positions(expected.at("flush_positions").get<std::vector<std::uint64_t>>(), block_size);
            for (std::uint64_t point = block_size; point < samples.size(); point += block_size)
            {
                const std::uint64_t size = std::min<std::uint64_t>(64, samples.size() - point);
                segment.seek(point);
                const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(point);
                ASSERT_EQ(read_bytes(segment, size), Bytes(begin, begin + static_cast<std::ptrdiff_t>(size))) << point;
            }
        });
}

INSTANTIATE_TEST_SUITE_P(Good, GoldenSamplesTest, testing::ValuesIn(good_files()),
                         [](const auto& instance) { return test_name(instance.param); });
