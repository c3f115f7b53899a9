// DBL files in every command.
#include "build_vbf.h"
#include "run_vbf.h"

#include <nlohmann/json.hpp>

using namespace vela_test;
using ParsedJson = nlohmann::json;

namespace {

const std::vector<float> values = {-1.5F, -0.25F, 1.0F, 2.25F, 3.5F, 4.75F};

Bytes samples()
{
    ByteWriter writer;
    for (const float value : values)
        writer.put(value);
    return writer.bytes;
}

/// 3 x 2 singles, the example of docs/format-dbl.md.
Bytes dbl()
{
    ByteWriter writer;
    writer.put_bytes({0, 1, 0, 2, 0, 3, 0, 1});
    for (const float length : {1.0F, 2.5F, 1.5F, 1.0F})
        writer.put(length);
    writer.put<std::uint8_t>(1);
    writer.put_bytes(Bytes(103));
    writer.put_bytes(samples());
    return writer.bytes;
}

class DblTest : public ProgramTest
{
protected:
    std::string put_dbl(const Bytes& bytes = dbl()) const { return put(bytes, "old.dbl"); }
};

} // namespace

TEST_F(DblTest, InfoListsIt)
{
    const std::string file = put_dbl();
    EXPECT_EQ(output_of({"info", file}), file + "\n"
                                                "  format       DBL\n"
                                                "  stacks       1\n"
                                                "\n"
                                                "stack 0\n"
                                                "  size         3 x 2\n"
                                                "  length       1.5 x 2.5\n"
                                                "  offset       0, 0\n"
                                                "  type         single\n"
                                                "  compression  none\n"
                                                "  on disk      24 bytes at 128\n");
    const ParsedJson listed = ParsedJson::parse(output_of({"info", file, "--json"}));
    EXPECT_EQ(listed["format"], "DBL");
    EXPECT_EQ(listed["format_version"], nullptr);
    EXPECT_EQ(listed.count("open"), 0u);
    EXPECT_EQ(listed["stacks"][0]["sizes"], ParsedJson({3, 2}));
    EXPECT_EQ(listed["stacks"][0]["type"], "single");
}

TEST_F(DblTest, SamplesAreRead)
{
    const std::string file = put_dbl();
    EXPECT_EQ(bytes_of({"read", file, "0"}), samples());
    const Bytes all = samples();
    const Bytes second(all.begin() + 4, all.begin() + 8);
    EXPECT_EQ(bytes_of({"read", file, "0", "--region", "1,0"}), second);
    EXPECT_EQ(bytes_of({"read", file, "0", "--type", "double"}).size(), 48u);
    output_of({"preview", file, "0", "--out", path("out.png")});
    EXPECT_TRUE(std::filesystem::exists(path("out.png")));
    expect_failure({"read", file, "1"}, 1, "Invalid stack index 1!");
}

TEST_F(DblTest, VerifyHoldsTheLengthAgainstTheSizes)
{
    const std::string file = put_dbl();
    EXPECT_EQ(output_of({"verify", file}), file + ": ok, 1 stack, 24 bytes of samples, 0 flush points\n");

    Bytes bytes = dbl();
    bytes.resize(148);
    const RunResult cut = run({"verify", put_dbl(bytes)});
    EXPECT_EQ(cut.status, 1);
    EXPECT_EQ(cut.out,
              "wrong  stack 0, byte 128: the file has 20 of 24 bytes of samples\n" + file + ": 1 thing is wrong\n");
    bytes = dbl();
    bytes.resize(160);
    EXPECT_THAT(output_of({"verify", put_dbl(bytes)}),
                testing::StartsWith("odd    byte 152: 8 bytes belong to nothing"));
}

TEST_F(DblTest, FileThatIsTooShortIsNone)
{
    for (const char* const command : {"info", "verify"})
        expect_failure({command, put_dbl(Bytes(127))}, 1, "Error reading .dbl file!");
}

TEST_F(DblTest, ItHasNoDocumentOfItsOwn)
{
    const std::string file = put_dbl();
    expect_failure({"ome", file}, 1, "The file has no OME document.");
    EXPECT_THAT(output_of({"ome", file, "0"}), testing::HasSubstr("<ome:Image"));
}

TEST_F(DblTest, ItIsNeitherMendedNorAppendedTo)
{
    const std::string file = put_dbl();
    expect_failure({"repair", file, "--in-place"}, 2, "A DBL file has nothing that could be mended.");
    expect_failure({"append", file, "--from", VELA_GOLGI_FILE}, 2, "Nothing can be appended to a DBL file.");
    EXPECT_EQ(get_bytes(file), dbl());
}

TEST_F(DblTest, GoodFilesAreInOrder)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(VELA_TEST_DATA) / "dbl"))
    {
        if (entry.path().extension() != ".dbl")
            continue;
        const std::string file = put_dbl(get_bytes(entry.path().string()));
        EXPECT_THAT(output_of({"verify", file}), testing::HasSubstr(": ok, 1 stack")) << entry.path();
        output_of({"info", file});
        ++count;
    }
    EXPECT_EQ(count, 7);
}
