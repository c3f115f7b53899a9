#include "build_vbf.h"
#include "transfer_test.h"

using namespace vela_test;

namespace {

/// What one page of a TIFF file holds, read by libtiff alone.
struct Page
{
    std::string description;
    std::uint16_t compression = 0;
    Bytes samples;
};

std::vector<Page> read_pages(const std::string& path)
{
    std::vector<Page> pages;
    TIFF* const file = TIFFOpen(path.c_str(), "r");
    if (file == nullptr)
        throw std::runtime_error("no TIFF file");
    do
    {
        Page page;
        const char* description = nullptr;
        if (TIFFGetField(file, TIFFTAG_IMAGEDESCRIPTION, &description) == 1)
            page.description = description;
        TIFFGetField(file, TIFFTAG_COMPRESSION, &page.compression);
        for (std::uint32_t strip = 0; strip < TIFFNumberOfStrips(file); ++strip)
        {
            Bytes bytes(static_cast<std::size_t>(TIFFStripSize(file)));
            const tmsize_t n = TIFFReadEncodedStrip(file, strip, bytes.data(), -1);
            page.samples.insert(page.samples.end(), bytes.begin(), bytes.begin() + n);
        }
        pages.push_back(page);
    } while (TIFFReadDirectory(file) == 1);
    TIFFClose(file);
    return pages;
}

class ExportTest : public TransferTest
{
protected:
    std::string out() const { return path("out.ome.tif"); }
};

} // namespace

TEST_F(ExportTest, EachPlaneIsAPage)
{
    output_of({"export", VELA_GOLGI_FILE, "0", out()});
    const std::vector<Page> pages = read_pages(out());
    ASSERT_EQ(pages.size(), 25u);
    Bytes all;
    for (const Page& page : pages)
    {
        EXPECT_EQ(page.compression, COMPRESSION_ADOBE_DEFLATE);
        all.insert(all.end(), page.samples.begin(), page.samples.end());
    }
    EXPECT_EQ(all, golgi_samples());
    EXPECT_EQ(pages[1].description, "");
}

TEST_F(ExportTest, DocumentIsOfThisForm)
{
    output_of({"export", VELA_GOLGI_FILE, "0", out()});
    EXPECT_EQ(read_pages(out())[0].description,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<OME xmlns=\"http://www.openmicroscopy.org/Schemas/OME/2015-01\" "
              "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
              "xsi:schemaLocation=\"http://www.openmicroscopy.org/Schemas/OME/2015-01 "
              "http://www.openmicroscopy.org/Schemas/OME/2015-01/ome.xsd\">\n"
              "<Image ID=\"Image:0\" Name=\"Golgi\">\n"
              "<Pixels ID=\"Pixels:0\" DimensionOrder=\"XYZTC\" Type=\"uint16\" BigEndian=\"false\" SizeX=\"147\" "
              "PhysicalSizeX=\"0.3514352968960532\" SizeY=\"137\" PhysicalSizeY=\"0.3514352968960532\" SizeZ=\"25\" "
              "PhysicalSizeZ=\"0.3876\" SizeT=\"1\" SizeC=\"1\">\n"
              "<Channel ID=\"Channel:0:0\" SamplesPerPixel=\"1\"/>\n"
              "<TiffData IFD=\"0\" PlaneCount=\"25\"/>\n</Pixels>\n</Image>\n</OME>\n");
}

TEST_F(ExportTest, ImportGivesTheStackBack)
{
    TiffRecipe recipe = ramp(12);
    recipe.description = "ImageJ=1\nchannels=2\nslices=3\nframes=2\nunit=um\nspacing=2\nfinterval=3\n";
    const std::string file = vbf(recipe, "file.vbf", {"--name", "a <b> & \"c\" \xc3\xa9"});
    output_of({"export", file, "0", out()});
    output_of({"import", out(), path("again.vbf")});
    EXPECT_EQ(samples(path("again.vbf")), samples(file));
    const nlohmann::json before = info(file)["stacks"][0];
    const nlohmann::json after = info(path("again.vbf"))["stacks"][0];
    EXPECT_EQ(after["sizes"], before["sizes"]);
    EXPECT_EQ(after["name"], before["name"]);
    EXPECT_EQ(after["axes"], before["axes"]);
    EXPECT_DOUBLE_EQ(after["lengths"][2], before["lengths"][2]);
    EXPECT_DOUBLE_EQ(after["lengths"][3], before["lengths"][3]);
}

TEST_F(ExportTest, TextIsWhatXmlCanHold)
{
    const std::string name = "a\x01\xEF\xBF\xBE-\xEF\xBF\xBF\xEF\xBF\xBD<";
    output_of({"export", vbf(ramp(1), "file.vbf", {"--name", name}), "0", out()});
    const std::string sign = "\xEF\xBF\xBD";
    EXPECT_THAT(read_pages(out())[0].description,
                testing::HasSubstr("Name=\"a" + sign + sign + "-" + sign + sign + "&lt;\""));
}

TEST_F(ExportTest, DescriptionComesBack)
{
    TiffRecipe recipe = ramp(1);
    recipe.description = "two <words> & more";
    output_of({"export", vbf(recipe, "file.vbf"), "0", out()});
    output_of({"import", out(), path("again.vbf")});
    EXPECT_EQ(info(path("again.vbf"))["stacks"][0]["description"], recipe.description);
}

TEST_F(ExportTest, LabelsGiveTheOrderOfAxes)
{
    const std::string file = vbf(ramp(3), "file.vbf", {"--label", "X,Y,C"});
    output_of({"export", file, "0", out()});
    EXPECT_THAT(read_pages(out())[0].description, testing::HasSubstr("DimensionOrder=\"XYCZT\""));
    EXPECT_THAT(read_pages(out())[0].description, testing::HasSubstr("SizeC=\"3\" SizeZ=\"1\" SizeT=\"1\">"));
}

TEST_F(ExportTest, LengthsThatNobodyMeasuredAreLeftOut)
{
    output_of({"export", vbf(ramp(1), "file.vbf"), "0", out()});
    EXPECT_THAT(read_pages(out())[0].description, testing::Not(testing::HasSubstr("PhysicalSize")));
}

TEST_F(ExportTest, WhatCannotBeWrittenLeavesNoFile)
{
    expect_failure({"export", VELA_GOLGI_FILE, "1", out()}, 1, "Invalid stack index 1!");
    EXPECT_FALSE(std::filesystem::exists(out()));
    Bytes damaged = get_bytes(VELA_GOLGI_FILE);
    damaged[442 + 486477 - 1] ^= 1; // the checksum of the samples
    EXPECT_EQ(run({"export", put(damaged), "0", out()}).status, 1);
    EXPECT_FALSE(std::filesystem::exists(out()));
    expect_failure({"export", put(build_vbf(plain_stack<std::uint8_t>({0, 5}, 1, {}))), "0", out()}, 1,
                   "The stack has no samples.");
    StackRecipe many;
    many.sizes = {1, 1, 65536};
    expect_failure({"export", put(build_vbf(many)), "0", out()}, 1, "The stack has more than 65535 planes.");
    const std::string file = put(get_bytes(VELA_GOLGI_FILE));
    expect_failure({"export", file, "0", file}, 2, "The output would overwrite the input.");
    EXPECT_EQ(get_bytes(file), get_bytes(VELA_GOLGI_FILE));
}
