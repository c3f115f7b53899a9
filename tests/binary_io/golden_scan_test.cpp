// The good files of tests/data: each field of their headers, and their dictionaries.
#include <VelaBase/vela_dt.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>

#include "binary_io/manifest.h"
#include "binary_io/plain_scan.h"
#include "binary_io/vbf_file_test.h"
#include "support/sha256.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace vela_test;

namespace {

class GoldenScanTest : public testing::TestWithParam<DataFile>
{
protected:
    void SetUp() override
    {
        file.open(file_name(GetParam().path()), VFile::read_mode);
        file.seek(GetParam().start());
    }

    const nlohmann::json& header() const { return GetParam().entry.at("header"); }
    const nlohmann::json& stacks() const { return GetParam().entry.at("stacks"); }

    VFile file;
};

/// A number of a manifest, or 0 for null: the file has no such field.
std::uint64_t unsigned_of(const nlohmann::json& value)
{
    return value.is_null() ? 0 : value.get<std::uint64_t>();
}

void expect_arrays(const VBFStackHeader& header, const nlohmann::json& expected)
{
    const std::size_t rank = expected.at("rank").get<std::size_t>();
    ASSERT_EQ(copied(header.rank), rank);
    ASSERT_EQ(expected.at("sizes").size(), rank);
    ASSERT_EQ(expected.at("lengths").size(), rank);
    ASSERT_EQ(expected.at("offsets").size(), rank);
    for (std::size_t i = 0; i < rank; ++i)
    {
        SCOPED_TRACE(i);
        EXPECT_EQ(copied(header.dimension_sizes[i]), expected["sizes"][i].get<std::uint32_t>());
        EXPECT_THAT(copied(header.lengths[i]), testing::NanSensitiveDoubleEq(number_of(expected["lengths"][i])));
        EXPECT_THAT(copied(header.offsets[i]), testing::NanSensitiveDoubleEq(number_of(expected["offsets"][i])));
    }
}

void expect_stack(const VBFChainEntry& stack, const nlohmann::json& expected)
{
    const VBFStackHeader& header = stack.header;
    EXPECT_EQ(std::string(header.magic, 16), "VELA_BF_STACK\n\xff\xff");
    EXPECT_EQ(stack.position, expected.at("header_pos").get<std::uint64_t>());
    EXPECT_EQ(copied(header.format_version), expected.at("format_version").get<std::uint32_t>());
    expect_arrays(header, expected);
    EXPECT_EQ(static_cast<std::uint32_t>(copied(header.data_type)), low_bits_of(expected.at("data_type")));
    EXPECT_EQ(vela_dt_get_name(header.data_type), expected.at("data_type_name").get<std::string>());
    EXPECT_EQ(static_cast<std::uint32_t>(copied(header.compression_type)),
              low_bits_of(expected.at("compression_type")));
    EXPECT_EQ(static_cast<std::uint32_t>(copied(header.compression_level)),
              low_bits_of(expected.at("compression_level")));
    EXPECT_EQ(copied(header.name_length), text_of(expected.at("name")).size());
    EXPECT_EQ(copied(header.description_length), text_of(expected.at("description")).size());
    EXPECT_EQ(stack.name, text_of(expected.at("name")));
    EXPECT_EQ(stack.description, text_of(expected.at("description")));
    EXPECT_EQ(copied(header.data_present), expected.at("data_present").get<std::uint64_t>());
    EXPECT_EQ(copied(header.data_length_on_disk), expected.at("data_length_on_disk").get<std::uint64_t>());
    EXPECT_EQ(copied(header.data_length_on_disk) == 0, expected.at("empty").get<bool>());
    EXPECT_EQ(copied(header.next_stack_pos), expected.at("next_stack_pos").get<std::uint64_t>());
    EXPECT_EQ(stack.data_pos, expected.at("data_pos").get<std::uint64_t>());
}

} // namespace

TEST_P(GoldenScanTest, TheFileIsTheOneOfTheManifest)
{
    const Bytes bytes = get_bytes(GetParam().path());

    EXPECT_EQ(bytes.size(), GetParam().entry.at("size").get<std::size_t>());
    EXPECT_EQ(sha256(bytes), GetParam().entry.at("sha256").get<std::string>());
    EXPECT_EQ(GetParam().entry.at("scan").at("result"), "ok");
}

TEST_P(GoldenScanTest, ListsTheFieldsOfTheFile)
{
    const VBFFileInfo info = scan_chain(file).file;

    EXPECT_EQ(std::string(info.header.magic, 10), "VELA_BF\n\xff\xff");
    EXPECT_EQ(copied(info.header.format_version), header().at("format_version").get<std::uint32_t>());
    EXPECT_EQ(copied(info.header.first_stack_pos), header().at("first_stack_pos").get<std::uint64_t>());
    EXPECT_EQ(copied(info.header.description_length), text_of(header().at("description")).size());
    EXPECT_EQ(info.description, text_of(header().at("description")));
    EXPECT_EQ(info.meta_data_pos, unsigned_of(header().at("meta_data_pos")));
}

TEST_P(GoldenScanTest, ListsTheFieldsOfEachStack)
{
    const VBFChain chain = scan_chain(file);

    ASSERT_EQ(chain.stacks.size(), stacks().size());
    for (std::size_t i = 0; i < chain.stacks.size(); ++i)
    {
        SCOPED_TRACE(testing::Message() << "stack " << i);
        expect_stack(chain.stacks[i], stacks()[i]);
    }
}

TEST_P(GoldenScanTest, HasTheOutcomeOfThePlainReader)
{
    EXPECT_TRUE(agree(library_scan(file), plain_scan(get_bytes(GetParam().path()), GetParam().start())));
}

TEST_P(GoldenScanTest, ReadsTheDictionary)
{
    const std::uint64_t meta_data_pos = unsigned_of(header().at("meta_data_pos"));
    VBFDictionary expected;
    for (const nlohmann::json& pair : header().at("dictionary"))
        expected[text_of(pair.at(0))] = text_of(pair.at(1));
    if (meta_data_pos == 0)
    {
        EXPECT_EQ(expected, VBFDictionary()) << "a file without a dictionary";
        return;
    }

    VBFDictionary dictionary;
    file.seek(meta_data_pos);
    read_dictionary(file, dictionary);

    EXPECT_EQ(dictionary, expected);
    EXPECT_EQ(file.tell(), header().at("meta_end_pos").get<std::uint64_t>());
}

INSTANTIATE_TEST_SUITE_P(Good, GoldenScanTest, testing::ValuesIn(good_files()),
                         [](const auto& instance) { return test_name(instance.param); });

TEST(GoldenFiles, TheChoiceHoldsEveryKind)
{
    const std::vector<DataFile> files = good_files();
    const auto has = [&files](const std::string& name)
    { return std::any_of(files.begin(), files.end(), [&name](const DataFile& file) { return file.name() == name; }); };

    EXPECT_EQ(files.size(), 50u);
    for (const char* name : {"attached.bin", "version0.vbf", "version1.vbf", "version3.vbf", "dictionary.vbf",
                             "reversed.vbf", "lengths.vbf", "rank15.vbf", "chain0.vbf", "golgi.vbf"})
        EXPECT_TRUE(has(name)) << name;
}
