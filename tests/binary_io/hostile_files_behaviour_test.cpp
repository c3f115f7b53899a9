// The damaged files of tests/data: what opening and reading them gives, and that everything else about them is harmless.
#include <VelaBinaryIO/VBFFile.h>
#include <VelaProps/VProp.h>
#include <VelaStacks/VStack.h>

#include "binary_io/manifest.h"
#include "binary_io/outcome.h"
#include "binary_io/vbf_reading_test.h"
#include "support/sha256.h"

#include <algorithm>

using namespace vela_test;

namespace {

using nlohmann::json;

std::vector<DataFile> damaged_files()
{
    std::vector<DataFile> files = data_files("hostile");
    for (const DataFile& file : data_files("hostile_dbl"))
        files.push_back(file);
    return files;
}

class HostileFiles : public testing::TestWithParam<DataFile>
{
protected:
    const json& entry() const { return GetParam().entry; }

    /// By its name, so that one of the other format is known; by a handle where it stands inside another stream.
    void open()
    {
        if (GetParam().start() == 0)
            file.open(file_name(GetParam().path()), VFile::read_mode);
        else
            inside().attach();
    }

    VBFFile& opened() { return GetParam().start() == 0 ? file : inside().file; }

    /// Whether the file opens; any failure is an exception.
    bool opens()
    {
        return !outcome_of([&] { open(); }).failed;
    }

private:
    AttachedFile& inside()
    {
        if (attached == nullptr)
            attached = std::make_unique<AttachedFile>(GetParam().path(), GetParam().start());
        return *attached;
    }

    VBFFile file;
    std::unique_ptr<AttachedFile> attached;
};

/// The samples that an entry of the manifest asks for.
Bytes samples_of(VBFStackInterface& stack, const json& read)
{
    std::uint64_t pos = read.at("first").get<std::uint64_t>();
    const std::int64_t wanted = read.at("count").get<std::int64_t>();
    const std::uint64_t count =
        wanted == -1 ? stack.get_number_of_elements() - pos : static_cast<std::uint64_t>(wanted);
    Bytes samples(count * vela_dt_get_size(static_cast<std::uint32_t>(stack.get_dt())) + 1, stale);
    stack.read(stack.get_dt(), samples.data(), nullptr, wanted == -1 ? VBFStackInterface::all_samples : count, pos);
    EXPECT_EQ(samples.back(), stale);
    samples.pop_back();
    return samples;
}

/// Whatever there is to see of a description.
void look_at(VBFStackInterface& stack)
{
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
    {
        stack.get_units(axis);
        stack.get_col_labels(axis);
        stack.is_equidistant(axis);
        if (stack.get_dimension_size(axis) < 1000000)
            stack.get_col_positions(axis);
    }
    stack.get_stack_position();
    for (const std::string& key : stack.get_tag_keys())
    {
        stack.get_tag(key);
        VProp prop;
        outcome_of([&] { stack.get_tag(key, vela_dt_cell, &prop); });
    }
}

/// A few samples from several places, as they are and converted.
void read_here_and_there(VBFStackInterface& stack)
{
    constexpr std::uint64_t run = 100;
    Bytes samples(run * 16);
    const std::uint64_t count = stack.get_number_of_elements();
    for (const std::uint64_t first : {std::uint64_t(0), count / 2, count - std::min(count, run)})
        for (const vela_dt type : {stack.get_dt(), vela_dt_double})
        {
            std::uint64_t pos = first;
            outcome_of([&] { stack.read(type, samples.data(), nullptr, run, pos); });
        }
}

} // namespace

TEST_P(HostileFiles, OpenAsTheirManifestSays)
{
    const Outcome outcome = outcome_of([&] { open(); });
    const json& expected = entry().at("open");
    EXPECT_TRUE(fits(outcome, expected));
    if (outcome.failed)
    {
        EXPECT_EQ(opened()->is_open(), GetParam().start() != 0);
    }
    else if (expected.contains("stacks"))
    {
        EXPECT_EQ(opened()->number_of_stacks(), expected.at("stacks").get<std::uint64_t>());
    }
}

TEST_P(HostileFiles, ReadAsTheirManifestSays)
{
    if (!opens())
        return;
    for (const json& read : entry().at("reads"))
    {
        SCOPED_TRACE(read.dump());
        const StackPointer stack = opened()->get_stack(read.at("stack").get<std::uint64_t>());
        Bytes samples;
        const Outcome outcome = outcome_of([&] { samples = samples_of(*stack, read); });
        EXPECT_TRUE(fits(outcome, read.at("expect")));
        if (!outcome.failed && read.at("expect").contains("sha256"))
        {
            EXPECT_EQ(sha256(samples), read.at("expect").at("sha256").get<std::string>());
        }
    }
}

TEST_P(HostileFiles, HarmNobodyWhoLooksAtAllOfThem)
{
    if (!opens())
        return;
    const std::uint64_t count = opened()->number_of_stacks();
    for (std::uint64_t i = 0; i < count; ++i)
    {
        const StackPointer stack = opened()->get_stack(i);
        outcome_of([&] { look_at(*stack); });
        read_here_and_there(*stack);
        EXPECT_EQ(stack->get_state(), 0);
        if (stack->get_number_of_elements() < 1000000)
            outcome_of([&] { opened()->read_stack(i, 0); });
        outcome_of([&] { opened()->seek_to_end_of_stack(i); });
    }
    EXPECT_EQ(opened()->number_of_stacks(), count);
}

INSTANTIATE_TEST_SUITE_P(Damaged, HostileFiles, testing::ValuesIn(damaged_files()),
                         [](const auto& instance) { return test_name(instance.param); });
