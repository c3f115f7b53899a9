#include "build_vbf.h"
#include "file_pairs.h"
#include "transfer_test.h"

using namespace vela_test;
using ParsedJson = nlohmann::json;

namespace {

class AppendTest : public TransferTest
{
};

} // namespace

TEST_F(AppendTest, ImagesBecomeFurtherStacks)
{
    const std::string file = vbf(ramp(2), "file.vbf", {"--creator", "somebody"});
    output_of({"append", file, tiff(ramp(1, 100), "more.tif"), tiff(ramp(3, 200), "last.tif"), "--tag", "a=b"});
    EXPECT_TRUE(in_order(file));
    const ParsedJson listed = info(file);
    EXPECT_EQ(listed.count("open"), 0u);
    EXPECT_EQ(listed["stacks"].size(), 3u);
    EXPECT_EQ(listed["stacks"][2]["name"], "last");
    EXPECT_EQ(listed["stacks"][2]["tags"], ParsedJson({{"a", "b"}}));
    EXPECT_EQ(samples(file, "0").size(), 32u);
    EXPECT_EQ(samples(file, "1"), ramp(1, 100).pages[0]);
    EXPECT_THAT(output_of({"ome", file}), testing::HasSubstr("Creator=\"somebody\""));
}

TEST_F(AppendTest, StacksOfAnotherFileAreAdded)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    const std::string other = vbf(ramp(2, 50), "other.vbf", {"--name", "other", "--tag", "k=v"});
    const Bytes before = get_bytes(other);
    output_of({"append", file, "--from", other});
    output_of({"append", file, "--from", other});
    EXPECT_TRUE(in_order(file));
    EXPECT_EQ(info(file)["stacks"].size(), 3u);
    EXPECT_EQ(info(file)["stacks"][2]["tags"], ParsedJson({{"k", "v"}}));
    EXPECT_EQ(samples(file, "2"), samples(other));
    EXPECT_EQ(get_bytes(other), before);
}

TEST_F(AppendTest, FileOfVersionOneStaysOne)
{
    FileRecipe old;
    old.format_version = 1;
    old.stacks = {plain_stack<std::uint8_t>({2}, 1, {1, 2})};
    const std::string file = put(build_vbf(old));
    output_of({"append", file, tiff(ramp(1))});
    EXPECT_TRUE(in_order(file));
    EXPECT_EQ(info(file)["format_version"], 1);
    EXPECT_EQ(info(file)["stacks"].size(), 2u);
}

TEST_F(AppendTest, FailureLeavesAFileThatOpens)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    const Bytes before = get_bytes(file);
    EXPECT_EQ(run({"append", file, path("missing.tif")}).status, 1);
    EXPECT_EQ(get_bytes(file), before);

    TiffRecipe recipe = ramp(2, 70);
    recipe.compression = COMPRESSION_ADOBE_DEFLATE;
    const std::string damaged = tiff(recipe, "damaged.tif");
    Bytes bytes = get_bytes(damaged);
    std::fill(bytes.begin() + 8, bytes.begin() + 24, std::uint8_t{0xff});
    put_bytes(damaged, bytes);
    EXPECT_EQ(run({"append", file, tiff(ramp(1, 9), "good.tif"), damaged}).status, 1);
    EXPECT_TRUE(in_order(file));
    EXPECT_EQ(info(file)["stacks"].size(), 2u);
    EXPECT_EQ(samples(file, "1"), ramp(1, 9).pages[0]);
}

TEST_F(AppendTest, FileThatDoesNotOpenIsLeftAlone)
{
    FileRecipe recipe;
    recipe.closed = false;
    recipe.stacks = {plain_stack<std::uint8_t>({2}, 1, {1, 2})};
    const Bytes bytes = build_vbf(recipe);
    const std::string file = put(bytes);
    EXPECT_EQ(run({"append", file, tiff(ramp(1))}).status, 1);
    EXPECT_EQ(get_bytes(file), bytes);
}

TEST_F(AppendTest, NothingIsWrittenIntoThePlaceOfWhatIsMissing)
{
    for (const std::string name : {"plain_cut.vbf", "version0_cut.vbf"}) // both open
    {
        const Bytes bytes = get_bytes(VELA_TEST_DATA "/hostile/" + name);
        const std::string file = put(bytes);
        EXPECT_EQ(run({"append", file, tiff(ramp(1))}).status, 1) << name;
        EXPECT_THAT(messages(),
                    testing::StartsWith("vbf: The file is cut off or damaged, stack 0 is not whole: byte 395, "));
        EXPECT_TRUE(get_bytes(file) == bytes) << name;
    }
}

TEST_F(AppendTest, PairsOfAnotherWriterAreKept)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    const VBFDictionary pairs = {
        {"ome_xml", "<!-- mine --><ome:OME xmlns:ome=\"x\" UUID=\"urn:uuid:1b2c3d4e-0000-1111-2222-333344445555\">"
                    "<ome:Instrument ID=\"Instrument:0\"/><ome:Image ID=\"Image:0\" Name=\"007\"/></ome:OME>"},
        {"z", "more"}};
    put_pairs(file, pairs);
    output_of({"append", file, tiff(ramp(2, 50))});
    output_of({"append", file, tiff(ramp(1, 90))});
    EXPECT_TRUE(in_order(file));
    EXPECT_EQ(pairs_of(file), pairs);
    EXPECT_EQ(info(file)["stacks"].size(), 3u);
    EXPECT_EQ(samples(file, "2"), ramp(1, 90).pages[0]);
}

TEST_F(AppendTest, OptionsOfImagesAreNotForCopies)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    const std::string other = vbf(ramp(2), "other.vbf");
    const Bytes before = get_bytes(file);
    for (const std::string option : {"--label", "--length", "--unit", "--tag", "--name"})
        expect_failure({"append", file, "--from", other, option, "1"}, 2,
                       "With --from, stacks keep their labels, lengths, tags and names.");
    expect_failure({"append", file, "--from", other, "--level", "10"}, 2,
                   "--level: 10 is none of zlib, they go from 0 to 9.");
    EXPECT_EQ(get_bytes(file), before);
    output_of({"append", file, "--from", other, "--level", "9"});
    EXPECT_EQ(info(file)["stacks"][0]["compression_level"], 1);
    EXPECT_EQ(info(file)["stacks"][1]["compression_level"], 9);
}

TEST_F(AppendTest, OneSourceIsNeeded)
{
    const std::string file = vbf(ramp(1), "file.vbf");
    expect_failure({"append", file}, 2, "Either TIFF files or --from is needed.");
    expect_failure({"append", file, tiff(ramp(1)), "--from", file}, 2, "Either TIFF files or --from is needed.");
    expect_failure({"append", file, "--from", file}, 2, "A file cannot be appended to itself.");
}
