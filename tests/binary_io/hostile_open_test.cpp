// The damaged files of tests/data: opening and reading each has one of the outcomes of its manifest.
#include "binary_io/manifest.h"
#include "binary_io/opened_file.h"
#include "binary_io/outcome.h"
#include "support/sha256.h"

#include <chrono>
#include <fstream>

using namespace vela_test;

namespace {

std::vector<DataFile> damaged_files()
{
    std::vector<DataFile> files = data_files("hostile");
    for (const DataFile& file : data_files("hostile_dbl"))
        files.push_back(file);
    return files;
}

class HostileOpenTest : public testing::TestWithParam<DataFile>
{
};

/// One read of a manifest; a count of -1 means all that follow.
Bytes samples_of(OpenedFile& file, const nlohmann::json& read)
{
    const auto stack = file->get_stack(read.at("stack").get<std::uint64_t>());
    std::uint64_t pos = read.at("first").get<std::uint64_t>();
    const std::int64_t count = read.at("count").get<std::int64_t>();
    return read_samples(*stack, count == -1 ? stack->get_number_of_elements() - pos : static_cast<std::uint64_t>(count),
                        pos);
}

} // namespace

TEST_P(HostileOpenTest, HasAnOutcomeOfItsManifest)
{
    const DataFile& file = GetParam();
    std::uint64_t stacks = 0;
    const auto begin = std::chrono::steady_clock::now();

    const Outcome outcome = outcome_of([&] { stacks = OpenedFile(file)->number_of_stacks(); });

    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    const nlohmann::json& expected = file.entry.at("open");
    EXPECT_TRUE(fits(outcome, expected));
    if (!outcome.failed && expected.contains("stacks"))
    {
        EXPECT_EQ(stacks, expected.at("stacks").get<std::uint64_t>());
    }
}

TEST_P(HostileOpenTest, WhatOpensGivesAllItsStacks)
{
    const Outcome opening = outcome_of([] { OpenedFile file(GetParam()); });
    if (opening.failed)
        return;
    OpenedFile file(GetParam());
    for (std::uint64_t i = 0; i < file->number_of_stacks(); ++i)
        EXPECT_EQ(file->get_stack(i)->get_state(), 0) << i;
}

TEST_P(HostileOpenTest, ReadsHaveTheOutcomesOfItsManifest)
{
    for (const nlohmann::json& read : GetParam().entry.at("reads"))
    {
        SCOPED_TRACE(read.dump());
        OpenedFile file(GetParam());
        Bytes samples;
        const Outcome outcome = outcome_of([&] { samples = samples_of(file, read); });

        const nlohmann::json& expected = read.at("expect");
        EXPECT_TRUE(fits(outcome, expected));
        if (!outcome.failed && expected.contains("sha256"))
        {
            EXPECT_EQ(sha256(samples), expected.at("sha256").get<std::string>());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Hostile, HostileOpenTest, testing::ValuesIn(damaged_files()),
                         [](const auto& instance) { return test_name(instance.param); });
