// The forms in which a TIFF file can hold its samples.
#include "transfer_test.h"

using namespace vela_test;

namespace {

class ImportFormsTest : public TransferTest
{
protected:
    /// 50 x 37 pixels of three samples of 16 bits, which lie plane behind plane.
    static TiffRecipe planes()
    {
        TiffRecipe recipe;
        recipe.width = 50;
        recipe.height = 37;
        recipe.bits = 16;
        recipe.samples_per_pixel = 3;
        recipe.planar = true;
        Bytes page(std::size_t{50} * 37 * 2 * 3);
        for (std::size_t i = 0; i < page.size(); ++i)
            page[i] = static_cast<unsigned char>(i * i / 7 + i / 3);
        recipe.pages = {page};
        return recipe;
    }

    /// 64 x 64 pixels of noise in one strip.
    static TiffRecipe jpeg()
    {
        TiffRecipe recipe;
        recipe.width = 64;
        recipe.height = 64;
        recipe.rows_per_strip = 64;
        recipe.compression = COMPRESSION_JPEG;
        Bytes page(std::size_t{64} * 64);
        for (std::size_t i = 0; i < page.size(); ++i)
            page[i] = static_cast<unsigned char>(i * 7919 % 251);
        recipe.pages = {page};
        return recipe;
    }

    /// Where the bytes of the first strip begin, and how many they are.
    static std::pair<std::size_t, std::size_t> first_strip(const std::string& file)
    {
        TIFF* const image = TIFFOpen(file.c_str(), "r");
        if (image == nullptr)
            throw std::runtime_error("no TIFF file");
        const std::pair<std::size_t, std::size_t> strip(TIFFGetStrileOffset(image, 0),
                                                        TIFFGetStrileByteCount(image, 0));
        TIFFClose(image);
        return strip;
    }

    void expect_remark(const TiffRecipe& recipe, const std::string& remark) const
    {
        const std::string file = tiff(recipe);
        const RunResult result = run({"import", file, path("out.vbf")});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "vbf: '" + file + "': " + remark + "\n");
        EXPECT_EQ(samples(path("out.vbf")), recipe.pages[0]);
    }
};

} // namespace

TEST_F(ImportFormsTest, PlanesOfSamplesAreReadFromStripsAndTiles)
{
    TiffRecipe recipe = planes();
    for (const bool big_tiff : {false, true})
    {
        for (const bool big_endian : {false, true})
        {
            for (const std::uint32_t tile : {0u, 16u})
            {
                for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW})
                {
                    recipe.big_tiff = big_tiff;
                    recipe.big_endian = big_endian;
                    recipe.tile = tile;
                    recipe.compression = static_cast<std::uint16_t>(compression);
                    const std::string file = vbf(recipe, "out.vbf");
                    EXPECT_EQ(info(file)["stacks"][0]["sizes"], nlohmann::json({50, 37, 1, 1, 3}));
                    EXPECT_EQ(samples(file), recipe.pages[0]) << big_tiff << big_endian << tile << compression;
                }
            }
        }
    }
}

TEST_F(ImportFormsTest, DamagedStripsAreRefusedWhereTheirSamplesWouldBeMadeUp)
{
    const std::string file = tiff(jpeg());
    const std::string out = path("out.vbf");
    output_of({"import", file, out});
    EXPECT_EQ(samples(out).size(), std::size_t{64} * 64);
    const Bytes before = get_bytes(out);

    const auto [begin, size_bytes] = first_strip(file);
    Bytes bytes = get_bytes(file);
    bytes.at(begin + size_bytes / 2) = 0xff; // the end of the image
    bytes.at(begin + size_bytes / 2 + 1) = 0xd9;
    put_bytes(file, bytes);
    expect_failure({"import", file, out}, 1,
                   "'" + file + "': page 0 cannot be read: Corrupt JPEG data: premature end of data segment");
    EXPECT_EQ(get_bytes(out), before);
}

TEST_F(ImportFormsTest, PagesWithADepthAreRefused)
{
    TiffRecipe recipe = ramp(1);
    recipe.depth = 1;
    vbf(recipe, "out.vbf");
    recipe.depth = 2;
    const std::string file = tiff(recipe);
    expect_failure({"import", file, path("other.vbf")}, 1, "'" + file + "': pages with a depth are not supported");
    EXPECT_FALSE(std::filesystem::exists(path("other.vbf")));
}

TEST_F(ImportFormsTest, WhatSamplesMeanIsToldWhereItIsLeftOut)
{
    TiffRecipe recipe = ramp(1);
    recipe.orientation = ORIENTATION_TOPLEFT;
    vbf(recipe, "out.vbf");
    recipe.orientation = ORIENTATION_RIGHTTOP;
    expect_remark(recipe, "the pixels are not turned to orientation 6");
    recipe.photometric = PHOTOMETRIC_MINISWHITE;
    expect_remark(recipe, "0 stays 0, though it means white; the pixels are not turned to orientation 6");
    recipe.description = "ImageJ=1.53\nslices=5\n";
    expect_remark(recipe, "the description is not in keeping with the 1 pages, which become the axis Z; "
                          "0 stays 0, though it means white; the pixels are not turned to orientation 6");
}

TEST_F(ImportFormsTest, PathsInBracketsAreNoLists)
{
    const std::filesystem::path before = std::filesystem::current_path();
    tiff(ramp(1), "[a,b]");
    tiff(ramp(2), "[b,c].tif");
    std::filesystem::current_path(std::filesystem::path(path("out.vbf")).parent_path());
    output_of({"import", "[a,b]", "[b,c].tif", "[out,x]", "--name", "[n,m]", "--tag", "key=[1,2]", "--label", "[x,y]"});
    output_of({"append", "[out,x]", "[a,b]", "[b,c].tif"});
    output_of({"append", "[out,x]", "--level", "3", "--", "[a,b]"});
    const nlohmann::json listed = info("[out,x]")["stacks"];
    std::filesystem::current_path(before);
    ASSERT_EQ(listed.size(), 5u);
    EXPECT_EQ(listed[0]["name"], "[n,m]");
    EXPECT_EQ(listed[0]["tags"], nlohmann::json({{"key", "[1,2]"}}));
    EXPECT_EQ(listed[0]["axes"][0]["label"], "[x");
    EXPECT_EQ(listed[2]["name"], "[a,b]");
    EXPECT_EQ(listed[3]["sizes"], nlohmann::json({4, 2, 2}));
    EXPECT_EQ(listed[4]["compression_level"], 3);
}
