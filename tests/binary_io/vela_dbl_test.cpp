// DBL files there and back, and those of tests/data.
#include "binary_io/dbl_file_test.h"
#include "binary_io/manifest.h"
#include "support/sha256.h"

#include <gmock/gmock.h>

#include <random>

using namespace vela_test;

namespace {

class DblRoundTrip : public DblTest
{
};

TEST_F(DblRoundTrip, DoublesComeBackBitForBit)
{
    std::mt19937_64 random(1);
    for (int round = 0; round < 50; ++round)
    {
        const Dims dims = {static_cast<int>(random() % 9), static_cast<int>(random() % 9),
                           static_cast<int>(random() % 9), static_cast<int>(random() % 9)};
        const Lengths lengths = {static_cast<float>(random()), 0.1F, -1.0F, 0.0F};
        std::vector<std::uint64_t> bits(static_cast<std::size_t>(dims[0] * dims[1] * dims[2] * dims[3]));
        for (std::uint64_t& word : bits)
            word = random();
        const std::string file = path("a.dbl");
        ASSERT_EQ(vela_dbl_write(file.c_str(), dims.data(), lengths.data(), bits.data(), 0), 1);
        const DblContent content(file, 0xAF);
        ASSERT_EQ(content.result, 1);
        EXPECT_EQ(content.dims, dims);
        EXPECT_EQ(content.lengths, lengths);
        EXPECT_EQ(values_at<std::uint64_t>(content.buffer, bits.size()), bits);
    }
}

TEST_F(DblRoundTrip, DoublesWrittenAsSinglesComeBackRounded)
{
    const Doubles samples = {0.1, -1e-50, 1e300, 16777217.0};
    const Dims dims = {2, 2, 1, 1};
    const Lengths lengths = {1, 1, 1, 1};
    const std::string file = path("a.dbl");
    ASSERT_EQ(vela_dbl_write(file.c_str(), dims.data(), lengths.data(), samples.data(), 1), 1);
    EXPECT_EQ(DblContent(file, 0xA0).result, 2);
    const DblContent content(file, 0);
    EXPECT_EQ(content.result, 1);
    EXPECT_EQ(values_at<double>(content.buffer, 4),
              (Doubles{static_cast<double>(0.1F), -0.0, std::numeric_limits<double>::infinity(), 16777216.0}));
}

class GoldenDbl : public testing::TestWithParam<DataFile>
{
protected:
    const nlohmann::json& entry() const { return GetParam().entry; }
    template <class T>
    T field(const char* key) const
    {
        return entry().at(key).get<T>();
    }
};

TEST_P(GoldenDbl, HeaderIsWhatTheManifestSays)
{
    const DblContent content(GetParam().path(), 0xA0);
    EXPECT_EQ(content.result, field<bool>("single") ? 2 : 1);
    EXPECT_EQ(content.dims, field<Dims>("dims"));
    EXPECT_EQ(content.lengths, field<Lengths>("lengths"));
}

TEST_P(GoldenDbl, SamplesAreWhatTheManifestSays)
{
    const DblContent content(GetParam().path(), 0xAF);
    ASSERT_EQ(content.result, field<bool>("single") ? 2 : 1);
    const auto* const samples = static_cast<const unsigned char*>(content.buffer);
    EXPECT_EQ(sha256(samples, field<std::size_t>("data_length")), field<std::string>("samples_sha256"));
    const Bytes file = get_bytes(GetParam().path());
    EXPECT_EQ(Bytes(samples, samples + field<std::size_t>("samples_in_file")), Bytes(file.begin() + 128, file.end()));
}

/// All but the bytes that are not defined, and the mark of doubles, for which any number but 1 does.
TEST_P(GoldenDbl, WritingTheSameGivesTheSameBytes)
{
    const DblContent content(GetParam().path(), 0);
    ASSERT_EQ(content.result, 1);
    const TemporaryFolder folder;
    const std::string file = folder.path("a.dbl");
    ASSERT_EQ(vela_dbl_write(file.c_str(), content.dims.data(), content.lengths.data(), content.buffer,
                             field<bool>("single") ? 1 : 0),
              1);
    Bytes written = get_bytes(file);
    Bytes expected = get_bytes(GetParam().path());
    ASSERT_EQ(written.size(), expected.size());
    EXPECT_EQ(written[24], field<bool>("single") ? 1 : 0);
    expected[24] = written[24];
    std::fill(written.begin() + 25, written.begin() + 128, 0);
    std::fill(expected.begin() + 25, expected.begin() + 128, 0);
    EXPECT_EQ(written, expected);
}

/// The bytes of the block between "```hex" and "```", without positions and characters.
Bytes bytes_of_page(const std::string& path)
{
    std::ifstream page(path);
    std::string line;
    while (std::getline(page, line) && line != "```hex")
        ;
    Bytes bytes;
    while (std::getline(page, line) && line != "```")
        for (std::size_t at = 10; line.at(at) != ' ' && line.at(at) != '|'; at += 3)
            bytes.push_back(static_cast<unsigned char>(std::stoi(line.substr(at, 2), nullptr, 16)));
    return bytes;
}

TEST(DblPage, ShowsAFileThatIsThere)
{
    const std::string data = VELA_TEST_DATA;
    EXPECT_EQ(bytes_of_page(data + "/../../docs/format-dbl.md"), get_bytes(data + "/dbl/plain_single.dbl"));
}

INSTANTIATE_TEST_SUITE_P(Files, GoldenDbl, testing::ValuesIn(data_files("dbl")),
                         [](const auto& file) { return test_name(file.param); });

}
