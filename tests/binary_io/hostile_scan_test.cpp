// The damaged files of tests/data/hostile: each scan has one of the outcomes of its manifest.
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include "binary_io/manifest.h"
#include "binary_io/outcome.h"
#include "binary_io/plain_scan.h"
#include "support/address_sanitizer.h"
#include "support/expect_vela_error.h"
#include "support/sha256.h"
#include "support/temporary_folder.h"

#include <chrono>
#include <fstream>

using namespace vela_test;

namespace {

class HostileScanTest : public testing::TestWithParam<DataFile>
{
};

std::string hostile_path(const std::string& name)
{
    return std::string(VELA_TEST_DATA) + "/hostile/" + name;
}

/// The stacks of the file, or what the scan throws.
std::size_t count_stacks(const std::string& path, std::uint64_t start)
{
    VFile file(file_name(path), VFile::read_mode);
    file.seek(start);
    return scan_chain(file).stacks.size();
}

/// The most memory that this process has used so far.
std::uint64_t peak_memory_kib()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmHWM:", 0) == 0)
            return std::stoull(line.substr(6));
    throw std::runtime_error("the system does not tell the peak of memory");
}

} // namespace

TEST_P(HostileScanTest, HasAnOutcomeOfItsManifest)
{
    const DataFile& file = GetParam();
    ASSERT_EQ(sha256(get_bytes(file.path())), file.entry.at("sha256").get<std::string>());
    std::size_t stacks = 0;
    const auto begin = std::chrono::steady_clock::now();

    const Outcome outcome = outcome_of([&] { stacks = count_stacks(file.path(), file.start()); });

    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    const nlohmann::json& expected = file.entry.at("scan");
    EXPECT_TRUE(fits(outcome, expected));
    if (!outcome.failed && expected.contains("stacks"))
    {
        EXPECT_EQ(stacks, expected.at("stacks").get<std::size_t>());
    }
}

TEST_P(HostileScanTest, HasTheOutcomeOfThePlainReader)
{
    const DataFile& file = GetParam();

    EXPECT_TRUE(agree(library_scan(file.path(), file.start()), plain_scan(get_bytes(file.path()), file.start())));
}

INSTANTIATE_TEST_SUITE_P(Hostile, HostileScanTest, testing::ValuesIn(data_files("hostile")),
                         [](const auto& instance) { return test_name(instance.param); });

TEST(Outcome, FitsOnlyWhatTheManifestNames)
{
    const Outcome failure = {true, "VelaError", -3, "Failed reading -1 bytes from file!"};
    const auto one_of = [](const nlohmann::json& alternatives) {
        return nlohmann::json{{"result", "error"}, {"any_of", alternatives}};
    };

    EXPECT_TRUE(fits(failure, {{"result", "ok_or_error"}}));
    EXPECT_FALSE(fits(failure, {{"result", "ok"}}));
    EXPECT_TRUE(fits({}, {{"result", "ok"}}));
    EXPECT_TRUE(fits(failure, one_of({{{"type", "any"}}})));
    EXPECT_TRUE(fits(failure, one_of({{{"type", "VelaError"}, {"id", -4}}, {{"type", "VelaError"}, {"id", -3}}})));
    EXPECT_TRUE(
        fits(failure, one_of({{{"type", "any"}, {"message_regex", "Failed reading -?\\d+ bytes from file!"}}})));
    EXPECT_FALSE(fits({}, one_of({{{"type", "any"}}})));
    EXPECT_FALSE(fits({true, "std::exception", 0, ""}, one_of({{{"type", "VelaError"}}})));
    EXPECT_FALSE(fits(failure, one_of({{{"type", "VelaError"}, {"id", -4}}})));
    EXPECT_FALSE(fits(failure, one_of({{{"type", "VelaError"}, {"message", "Failed reading"}}})));
    EXPECT_FALSE(fits(failure, one_of({{{"type", "any"}, {"message_regex", "Failed reading -?\\d+ bytes"}}})));
}

TEST(HostileScan, AChainThatComesBackIsAnInvalidPosition)
{
    for (const char* name : {"loop_self.vbf", "loop_back.vbf", "loop_first.vbf", "loop_single.vbf"})
    {
        SCOPED_TRACE(name);
        EXPECT_VELA_ERROR_IN(count_stacks(hostile_path(name), 0), "VBFFileImp::attach_imp", "sources/binary_io", -4,
                             "Invalid stack position specified in header!");
    }
}

TEST(HostileScan, ARankAboveFifteenIsNoStackHeader)
{
    for (const char* name : {"rank_10.vbf", "rank_ffffffff.vbf", "rank_huge_no_magic.vbf"})
    {
        SCOPED_TRACE(name);
        EXPECT_VELA_ERROR_IN(count_stacks(hostile_path(name), 0), "VBFStackImp::read_info", "sources/binary_io", -4,
                             "Stack header not in vbf format!");
    }
}

TEST(HostileScan, ALengthOfAllOnesIsShownAsMinusOne)
{
    for (const char* name : {"description_ffffffff.vbf", "name_ffffffff.vbf", "stack_description_ffffffff.vbf"})
    {
        SCOPED_TRACE(name);
        EXPECT_VELA_ERROR(count_stacks(hostile_path(name), 0), -3, "Failed reading -1 bytes from file!");
    }
}

TEST(HostileScan, MemoryStaysBelow512MiB)
{
    if (has_address_sanitizer)
        GTEST_SKIP() << "a sanitizer has memory of its own";
    for (const DataFile& file : data_files("hostile"))
    {
        library_scan(file.path(), file.start());
        ASSERT_LT(peak_memory_kib(), 512u * 1024) << file;
    }
}
