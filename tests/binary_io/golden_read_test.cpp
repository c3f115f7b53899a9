// The samples of the good files, through the stacks of an open file.
#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>
#include <VelaStacks/VStack.h>

#include "binary_io/manifest.h"
#include "binary_io/opened_file.h"
#include "support/sha256.h"

#include <algorithm>

using namespace vela_test;

namespace {

class GoldenReadTest : public testing::TestWithParam<DataFile>
{
protected:
    const nlohmann::json& stacks() const { return GetParam().entry.at("stacks"); }

    /// Calls `check(file, index, what the manifest says)` for each stack of a file that opens.
    template <class Check>
    void for_each_stack(Check check) const
    {
        if (GetParam().entry.at("open").at("result") != "ok")
            return;
        OpenedFile file(GetParam());
        for (std::size_t i = 0; i < stacks().size(); ++i)
        {
            SCOPED_TRACE(testing::Message() << "stack " << i);
            check(file, i, stacks()[i]);
        }
    }
};

std::string samples_of(const nlohmann::json& expected)
{
    return expected.at("samples_sha256").get<std::string>();
}

void expect_probe(VBFStackInterface& stack, const nlohmann::json& probe)
{
    SCOPED_TRACE(probe.dump());
    std::uint64_t pos = probe.at("first").get<std::uint64_t>();
    const Bytes samples = read_samples(stack, probe.at("count").get<std::uint64_t>(), pos);
    EXPECT_EQ(sha256(samples), probe.at("sha256").get<std::string>());
}

/// The zeros of an empty stack do not stand in the manifest.
bool has_data(const nlohmann::json& expected)
{
    return expected.at("data_length_on_disk") != 0;
}

} // namespace

TEST_P(GoldenReadTest, AllSamplesInOneRead)
{
    for_each_stack(
        [](OpenedFile& file, std::size_t i, const nlohmann::json& expected)
        {
            const auto stack = file->get_stack(i);
            Bytes samples(stack->get_size(vela_dt_none), 0xcd);
            stack->read(stack->get_dt(), samples.data(), nullptr);
            EXPECT_EQ(sha256(samples), has_data(expected) ? samples_of(expected) : sha256(Bytes(samples.size())));
        });
}

TEST_P(GoldenReadTest, AllSamplesInUnevenPieces)
{
    for_each_stack(
        [](OpenedFile& file, std::size_t i, const nlohmann::json& expected)
        {
            if (!has_data(expected))
                return;
            const auto stack = file->get_stack(i);
            Bytes samples;
            std::uint64_t left = stack->get_number_of_elements();
            std::uint64_t pos = 0;
            for (std::uint64_t piece = 1; left > 0; piece = piece * 2 + 1)
            {
                const std::uint64_t count = std::min(piece, left);
                const Bytes next = read_samples(*stack, count, pos);
                samples.insert(samples.end(), next.begin(), next.end());
                left -= count;
                EXPECT_EQ(pos, left == 0 ? VBFStackInterface::exhausted : stack->get_number_of_elements() - left);
                pos = VBFStackInterface::continued;
            }
            EXPECT_EQ(sha256(samples), samples_of(expected));
        });
}

TEST_P(GoldenReadTest, ProbesForthAndBack)
{
    for_each_stack(
        [](OpenedFile& file, std::size_t i, const nlohmann::json& expected)
        {
            const auto stack = file->get_stack(i);
            const nlohmann::json& probes = expected.at("probes");
            for (const nlohmann::json& probe : probes)
                expect_probe(*stack, probe);
            for (std::size_t k = probes.size(); k-- > 0;)
                expect_probe(*stack, probes[k]);
        });
}

TEST_P(GoldenReadTest, SmallChunksMakeNoDifference)
{
    for_each_stack(
        [](OpenedFile& file, std::size_t i, const nlohmann::json& expected)
        {
            if (!has_data(expected) || expected.at("uncompressed_size").get<std::uint64_t>() > 100000)
                return;
            for (const std::uint32_t chunk_size : {0U, 1U, 100U, 4097U})
            {
                file->set_chunk_size(chunk_size);
                const auto stack = file->get_stack(i);
                Bytes samples(stack->get_size(vela_dt_none), 0xcd);
                stack->read(stack->get_dt(), samples.data(), nullptr);
                EXPECT_EQ(sha256(samples), samples_of(expected)) << chunk_size;
            }
        });
}

TEST_P(GoldenReadTest, AnotherTypeIsConvertedChunkByChunk)
{
    for_each_stack(
        [](OpenedFile& file, std::size_t i, const nlohmann::json& expected)
        {
            const auto stack = file->get_stack(i);
            if (!has_data(expected) || stack->get_dt() == vela_dt_none)
                return;
            file->set_chunk_size(1000);
            const std::uint64_t count = stack->get_number_of_elements();
            const vela_dt type = (stack->get_dt() & vela_dt_complex) | vela_dt_double;
            Bytes stored(stack->get_size(vela_dt_none));
            Bytes converted(stack->get_size(type), 0xcd);
            Bytes wanted(stack->get_size(type));
            stack->read(stack->get_dt(), stored.data(), nullptr);
            ASSERT_EQ(vela_dt_convert(static_cast<std::uint32_t>(stack->get_dt()), static_cast<std::uint32_t>(type),
                                      stored.data(), wanted.data(), count, nullptr, nullptr),
                      0);

            stack->read(type, converted.data(), nullptr);

            EXPECT_TRUE(converted == wanted);
        });
}

TEST_P(GoldenReadTest, IntoAStackInMemory)
{
    for_each_stack(
        [](OpenedFile& file, std::size_t i, const nlohmann::json& expected)
        {
            const auto stack = file->read_stack(i, vela_dt_none);
            EXPECT_EQ(stack->get_name(), text_of(expected.at("name")));
            EXPECT_EQ(stack->get_sizes(), expected.at("sizes").get<std::vector<std::uint64_t>>());
            const std::uint64_t size = stack->get_size(vela_dt_none);
            const Bytes samples(stack->get_data_ptr(), stack->get_data_ptr() + size);
            EXPECT_EQ(sha256(samples), has_data(expected) ? samples_of(expected) : sha256(Bytes(size)));
        });
}

INSTANTIATE_TEST_SUITE_P(Good, GoldenReadTest, testing::ValuesIn(good_files()),
                         [](const auto& instance) { return test_name(instance.param); });
