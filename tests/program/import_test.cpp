#include "build_tiff.h"
#include "run_vbf.h"

#include <nlohmann/json.hpp>

using namespace vela_test;
using ParsedJson = nlohmann::json;

namespace {

/// 5 x 3 pixels of one byte on each page; page p begins with 20 p.
TiffRecipe small_tiff(std::size_t count_pages)
{
    TiffRecipe tiff;
    tiff.width = 5;
    tiff.height = 3;
    for (std::size_t p = 0; p < count_pages; ++p)
    {
        Bytes page(15);
        for (std::size_t i = 0; i < page.size(); ++i)
            page[i] = static_cast<unsigned char>(20 * p + i);
        tiff.pages.push_back(page);
    }
    return tiff;
}

Bytes joined(const std::vector<Bytes>& pages)
{
    Bytes result;
    for (const Bytes& page : pages)
        result.insert(result.end(), page.begin(), page.end());
    return result;
}

class ImportTest : public ProgramTest
{
protected:
    std::string out() const { return path("out.vbf"); }

    std::string tiff(const TiffRecipe& recipe, const std::string& name = "image.tif") const
    {
        put_tiff(path(name), recipe);
        return path(name);
    }

    /// Imports one image and gives what is listed of its stack.
    ParsedJson import(const TiffRecipe& recipe, std::vector<std::string> options = {}) const
    {
        std::vector<std::string> arguments = {"import", tiff(recipe), out()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(output_of(arguments), "");
        EXPECT_EQ(run({"verify", out()}).status, 0);
        return info()["stacks"].at(0);
    }

    ParsedJson info() const { return ParsedJson::parse(output_of({"info", out(), "--json"})); }
    Bytes samples(const std::string& index = "0") const { return bytes_of({"read", out(), index}); }

    void expect_refused(const TiffRecipe& recipe, const std::string& message) const
    {
        const std::string file = tiff(recipe);
        expect_failure({"import", file, out()}, 1, "'" + file + "': " + message);
        EXPECT_FALSE(std::filesystem::exists(out()));
    }
};

template <class T>
Bytes bytes_of_numbers(std::initializer_list<T> numbers)
{
    Bytes result;
    for (const T number : numbers)
    {
        const auto* const raw = reinterpret_cast<const unsigned char*>(&number);
        result.insert(result.end(), raw, raw + sizeof number);
    }
    return result;
}

} // namespace

TEST_F(ImportTest, PagesBecomeTheThirdAxis)
{
    const TiffRecipe recipe = small_tiff(4);
    const ParsedJson stack = import(recipe);
    EXPECT_EQ(stack["sizes"], ParsedJson({5, 3, 4}));
    EXPECT_EQ(stack["type"], "uint8");
    EXPECT_EQ(stack["name"], "image");
    EXPECT_EQ(stack["compression_type"], 1);
    EXPECT_EQ(stack["compression_level"], 1);
    EXPECT_EQ(stack["axes"][2]["label"], "Z");
    EXPECT_EQ(stack["axes"][0]["unit"], nullptr);
    EXPECT_EQ(samples(), joined(recipe.pages));
}

TEST_F(ImportTest, OnePageHasTwoAxes)
{
    EXPECT_EQ(import(small_tiff(1))["sizes"], ParsedJson({5, 3}));
}

TEST_F(ImportTest, EachTypeOfSamplesIsKept)
{
    const auto expect_type = [&](std::uint16_t bits, std::uint16_t format, const std::string& type, const Bytes& page)
    {
        TiffRecipe recipe;
        recipe.width = 2;
        recipe.height = 1;
        recipe.bits = bits;
        recipe.sample_format = format;
        recipe.pages = {page};
        for (const bool big_endian : {false, true})
        {
            recipe.big_endian = big_endian;
            EXPECT_EQ(import(recipe)["type"], type);
            EXPECT_EQ(samples(), page) << type;
        }
    };
    expect_type(8, SAMPLEFORMAT_UINT, "uint8", {1, 255});
    expect_type(8, SAMPLEFORMAT_INT, "int8", {1, 255});
    expect_type(16, SAMPLEFORMAT_UINT, "uint16", bytes_of_numbers<std::uint16_t>({1, 65534}));
    expect_type(16, SAMPLEFORMAT_INT, "int16", bytes_of_numbers<std::int16_t>({1, -2}));
    expect_type(32, SAMPLEFORMAT_UINT, "uint32", bytes_of_numbers<std::uint32_t>({1, 4294967290}));
    expect_type(32, SAMPLEFORMAT_INT, "int32", bytes_of_numbers<std::int32_t>({1, -2}));
    expect_type(32, SAMPLEFORMAT_IEEEFP, "single", bytes_of_numbers<float>({1.5f, -2e30f}));
    expect_type(64, SAMPLEFORMAT_IEEEFP, "double", bytes_of_numbers<double>({1.5, -2e300}));
    expect_type(64, SAMPLEFORMAT_COMPLEXIEEEFP, "cplx_single", bytes_of_numbers<float>({1, 2, 3, 4}));
}

TEST_F(ImportTest, OtherSamplesAreRefused)
{
    TiffRecipe recipe = small_tiff(1);
    recipe.bits = 4;
    expect_refused(recipe, "samples of 4 bits and format 1 are not supported");
    recipe = small_tiff(1);
    recipe.width = 1;
    recipe.height = 1;
    recipe.bits = 64;
    expect_refused(recipe, "samples of 64 bits and format 1 are not supported");
}

TEST_F(ImportTest, CompressedStripsAndTilesAreRead)
{
    TiffRecipe recipe;
    recipe.width = 50;
    recipe.height = 37;
    recipe.bits = 16;
    for (unsigned p = 0; p < 2; ++p)
    {
        Bytes page(50 * 37 * 2);
        for (std::size_t i = 0; i < page.size(); ++i)
            page[i] = static_cast<unsigned char>(i * i / 5 + p);
        recipe.pages.push_back(page);
    }
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE})
    {
        for (const std::uint32_t tile : {0u, 16u})
        {
            recipe.compression = static_cast<std::uint16_t>(compression);
            recipe.tile = tile;
            import(recipe);
            EXPECT_EQ(samples(), joined(recipe.pages)) << compression << " " << tile;
        }
    }
}

TEST_F(ImportTest, SamplesOfAPixelBecomeChannels)
{
    TiffRecipe recipe;
    recipe.width = 2;
    recipe.height = 1;
    recipe.samples_per_pixel = 3;
    recipe.pages = {{1, 2, 3, 4, 5, 6}, {11, 12, 13, 14, 15, 16}};
    EXPECT_EQ(import(recipe)["sizes"], ParsedJson({2, 1, 2, 1, 3}));
    EXPECT_EQ(samples(), (Bytes{1, 4, 11, 14, 2, 5, 12, 15, 3, 6, 13, 16}));
    recipe.planar = true;
    import(recipe);
    EXPECT_EQ(samples(), (Bytes{1, 2, 11, 12, 3, 4, 13, 14, 5, 6, 15, 16}));
}

TEST_F(ImportTest, LinesOfTheDescriptionGiveAxesAndLengths)
{
    TiffRecipe recipe = small_tiff(12);
    recipe.description = "ImageJ=1.53\nimages=12\nchannels=2\nslices=3\nframes=2\nunit=micron\nspacing=0.5\n"
                         "finterval=4\n";
    recipe.resolution = 2;
    const ParsedJson stack = import(recipe);
    EXPECT_EQ(stack["sizes"], ParsedJson({5, 3, 3, 2, 2}));
    EXPECT_EQ(stack["lengths"], ParsedJson({5 * 0.5 * 1e-6, 3 * 0.5 * 1e-6, 3 * 0.5 * 1e-6, 8.0, 1.0}));
    EXPECT_EQ(stack["offsets"], ParsedJson({5 * 0.25 * 1e-6, 3 * 0.25 * 1e-6, 3 * 0.25 * 1e-6, 4.0, 0.0}));
    std::vector<std::string> labels;
    std::vector<ParsedJson> units;
    for (const ParsedJson& axis : stack["axes"])
    {
        labels.push_back(axis["label"]);
        units.push_back(axis["unit"]);
    }
    EXPECT_EQ(labels, (std::vector<std::string>{"X", "Y", "Z", "T", "C"}));
    EXPECT_EQ(units, (std::vector<ParsedJson>{"m", "m", "m", "s", nullptr}));
    // The pages run through C, then Z, then T; the stack through Z, then T, then C.
    std::vector<Bytes> expected;
    for (const std::size_t page : {0u, 2u, 4u, 6u, 8u, 10u, 1u, 3u, 5u, 7u, 9u, 11u})
        expected.push_back(recipe.pages[page]);
    EXPECT_EQ(samples(), joined(expected));
}

TEST_F(ImportTest, OmeDocumentGivesAxesAndLengths)
{
    TiffRecipe recipe = small_tiff(6);
    recipe.description =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><!-- a remark --><OME "
        "xmlns=\"http://www.openmicroscopy.org/Schemas/OME/2015-01\"><Image ID=\"Image:0\" Name=\"cells\"><Pixels "
        "ID=\"Pixels:0\" DimensionOrder=\"XYTZC\" Type=\"uint8\" SizeX=\"5\" SizeY=\"3\" SizeZ=\"2\" SizeT=\"3\" "
        "SizeC=\"1\" PhysicalSizeX=\"0.25\" PhysicalSizeY=\"250\" PhysicalSizeYUnit=\"nm\" TimeIncrement=\"2\">"
        "<Channel ID=\"Channel:0:0\"/><TiffData/></Pixels></Image></OME>";
    const ParsedJson stack = import(recipe);
    EXPECT_EQ(stack["sizes"], ParsedJson({5, 3, 2, 3}));
    EXPECT_EQ(stack["name"], "cells");
    EXPECT_DOUBLE_EQ(stack["lengths"][0], 1.25e-6);
    EXPECT_DOUBLE_EQ(stack["lengths"][1], 0.75e-6);
    EXPECT_DOUBLE_EQ(stack["lengths"][3], 6.0);
    std::vector<Bytes> expected;
    for (const std::size_t page : {0u, 3u, 1u, 4u, 2u, 5u})
        expected.push_back(recipe.pages[page]);
    EXPECT_EQ(samples(), joined(expected));
}

TEST_F(ImportTest, DescriptionThatDoesNotFitIsReported)
{
    TiffRecipe recipe = small_tiff(4);
    recipe.description = "ImageJ=1.53\nslices=5\n";
    const std::string file = tiff(recipe);
    const RunResult result = run({"import", file, out()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err,
              "vbf: '" + file + "': the description is not in keeping with the 4 pages, which become the axis Z\n");
    EXPECT_EQ(info()["stacks"][0]["sizes"], ParsedJson({5, 3, 4}));
}

TEST_F(ImportTest, OptionsDescribeTheStack)
{
    const ParsedJson stack = import(small_tiff(2), {"--level", "0", "--label", "A,,B", "--length", "10,20,3", "--unit",
                                                    "um", "--tag", "dye=DAPI", "--tag", "a=b=c", "--name", "My cells"});
    EXPECT_EQ(stack["compression_type"], 0);
    EXPECT_EQ(stack["name"], "My cells");
    EXPECT_DOUBLE_EQ(stack["lengths"][0], 10e-6);
    EXPECT_DOUBLE_EQ(stack["lengths"][2], 3e-6);
    EXPECT_EQ(stack["axes"][0], ParsedJson({{"label", "A"}, {"unit", "m"}, {"equidistant", true}}));
    EXPECT_EQ(stack["axes"][1]["label"], "");
    EXPECT_EQ(stack["tags"], ParsedJson({{"a", "b=c"}, {"dye", "DAPI"}}));
    EXPECT_EQ(import(small_tiff(2), {"--length", "1,2,3", "--unit", "mm,mm,s"})["axes"][2]["unit"], "s");
}

TEST_F(ImportTest, CreatorStandsInTheDocument)
{
    import(small_tiff(1), {"--creator", "A & B"});
    EXPECT_THAT(output_of({"ome", out()}), testing::HasSubstr("<ome:OME Creator=\"A &amp; B\""));
}

TEST_F(ImportTest, SeveralImagesAreSeveralStacks)
{
    const std::string first = tiff(small_tiff(2), "first.tif");
    const std::string second = tiff(small_tiff(1), "second.tif");
    output_of({"import", first, second, out()});
    EXPECT_EQ(info()["stacks"][0]["name"], "first");
    EXPECT_EQ(info()["stacks"][1]["name"], "second");
    EXPECT_EQ(samples("1"), small_tiff(1).pages[0]);
}

TEST_F(ImportTest, LargeStackHasFlushPoints)
{
    TiffRecipe recipe;
    recipe.width = 300;
    recipe.height = 300;
    recipe.pages = {Bytes(90000, 1), Bytes(90000, 2), Bytes(90000, 3)};
    EXPECT_EQ(import(recipe)["flush_points"], 3);
}

TEST_F(ImportTest, OptionsThatDoNotFitAreWrongUsage)
{
    const std::string file = tiff(small_tiff(2));
    const auto expect_usage = [&](std::vector<std::string> options, const std::string& message)
    {
        options.insert(options.begin(), {"import", file, out()});
        expect_failure(options, 2, message);
        EXPECT_FALSE(std::filesystem::exists(out()));
    };
    expect_usage({"--level", "10"}, "--level: 10 is none of zlib, they go from 0 to 9.");
    expect_usage({"--label", "A,B,C,D"}, "--label: the stack has 3 axes.");
    expect_usage({"--length", "1,2,3,4"}, "--length: the stack has 3 axes.");
    expect_usage({"--length", "1,x"}, "--length: 'x' is no length.");
    expect_usage({"--length", "1e308", "--unit", "km"}, "--length: a length is too large.");
    expect_usage({"--length", "-1"}, "--length: '-1' is no length.");
    expect_usage({"--unit", "m"}, "--unit needs --length.");
    expect_usage({"--length", "1,2,3", "--unit", "m,m"}, "--unit: one for each length is needed, or one for all.");
    expect_usage({"--tag", "text"}, "--tag: 'text' is not of the form key=text.");
    expect_usage({"--tag", "=text"}, "--tag: '=text' is not of the form key=text.");
    expect_failure({"import", file, out(), "--length", "1", "--unit", "parsnip"}, 1, "'parsnip' is no quantity");
    expect_failure({"import", file, file}, 2, "The output would overwrite the input.");
    EXPECT_EQ(run({"import", file}).status, 2);
}

TEST_F(ImportTest, HalfAFileIsRemoved)
{
    const std::string file = tiff(small_tiff(9));
    TiffRecipe recipe = small_tiff(2);
    recipe.compression = COMPRESSION_ADOBE_DEFLATE;
    const std::string damaged = tiff(recipe, "damaged.tif");
    Bytes bytes = get_bytes(damaged);
    std::fill(bytes.begin() + 8, bytes.begin() + 24, std::uint8_t{0xff}); // the first strip
    put_bytes(damaged, bytes);
    EXPECT_EQ(run({"import", file, damaged, out()}).status, 1);
    EXPECT_THAT(messages(), testing::StartsWith("vbf: '" + damaged + "': page 0 cannot be read: "));
    EXPECT_FALSE(std::filesystem::exists(out()));
}

TEST_F(ImportTest, FilesThatAreNoTiffFilesAreRefused)
{
    put_bytes(path("text.tif"), Bytes(100, 'x'));
    EXPECT_EQ(run({"import", path("text.tif"), out()}).status, 1);
    EXPECT_THAT(messages(), testing::StartsWith("vbf: '" + path("text.tif") + "': Not a TIFF"));
    EXPECT_EQ(run({"import", path("missing.tif"), out()}).status, 1);
    EXPECT_FALSE(std::filesystem::exists(out()));
}

TEST_F(ImportTest, SizesWithoutBytesAreRefused)
{
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS})
    {
        const std::string file = path("large.tif");
        TIFF* const large = TIFFOpen(file.c_str(), "w");
        ASSERT_NE(large, nullptr);
        TIFFSetField(large, TIFFTAG_IMAGEWIDTH, 40000);
        TIFFSetField(large, TIFFTAG_IMAGELENGTH, 40000);
        TIFFSetField(large, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(large, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(large, TIFFTAG_ROWSPERSTRIP, 40000);
        TIFFSetField(large, TIFFTAG_COMPRESSION, compression);
        Bytes few(100);
        TIFFWriteRawStrip(large, 0, few.data(), 100);
        TIFFClose(large);
        expect_failure({"import", file, out()}, 1, "'" + file + "': page 0 has fewer bytes than its samples need");
    }
}

TEST_F(ImportTest, FilesThatBreakOffAreRefused)
{
    const std::string file = tiff(small_tiff(4));
    TiffRecipe big = small_tiff(2);
    big.big_tiff = true;
    big.big_endian = true;
    for (const Bytes& whole : {get_bytes(file), get_bytes(tiff(big, "big.tif"))})
        for (std::size_t size_bytes = whole.size() - 1; size_bytes < whole.size(); size_bytes -= 3)
        {
            put_bytes(file, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size_bytes)));
            EXPECT_EQ(run({"import", file, out()}).status, 1) << size_bytes;
            EXPECT_THAT(messages(), testing::StartsWith("vbf: '" + file + "': ")) << size_bytes;
            ASSERT_FALSE(std::filesystem::exists(out())) << size_bytes;
        }
}

TEST_F(ImportTest, BigTiffFilesAreRead)
{
    TiffRecipe recipe = small_tiff(3);
    recipe.big_tiff = true;
    for (const bool big_endian : {false, true})
    {
        recipe.big_endian = big_endian;
        EXPECT_EQ(import(recipe)["sizes"], ParsedJson({5, 3, 3}));
        EXPECT_EQ(samples(), joined(recipe.pages));
    }
}

TEST_F(ImportTest, PalettesAreLeftOut)
{
    const std::string file = path("palette.tif");
    TIFF* const palette = TIFFOpen(file.c_str(), "w");
    ASSERT_NE(palette, nullptr);
    TIFFSetField(palette, TIFFTAG_IMAGEWIDTH, 3);
    TIFFSetField(palette, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(palette, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(palette, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_PALETTE);
    std::vector<std::uint16_t> colours(256, 7);
    TIFFSetField(palette, TIFFTAG_COLORMAP, colours.data(), colours.data(), colours.data());
    Bytes row = {2, 1, 255};
    TIFFWriteScanline(palette, row.data(), 0, 0);
    TIFFClose(palette);
    const RunResult result = run({"import", file, out()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "vbf: '" + file + "': the palette is left out\n");
    EXPECT_EQ(info()["stacks"][0]["sizes"], ParsedJson({3, 1}));
    EXPECT_EQ(samples(), (Bytes{2, 1, 255}));
}

TEST_F(ImportTest, PagesThatLeadBackAreRefused)
{
    const std::string file = tiff(small_tiff(2));
    Bytes bytes = get_bytes(file);
    const std::size_t first = bytes[4] + 256u * bytes[5];
    const std::size_t next = first + 2 + 12u * bytes[first]; // where the position of the second page stands
    const std::size_t second = bytes[next] + 256u * bytes[next + 1];
    const std::size_t last = second + 2 + 12u * bytes[second];
    std::copy_n(bytes.begin() + 4, 4, bytes.begin() + static_cast<std::ptrdiff_t>(last));
    put_bytes(file, bytes);
    expect_failure({"import", file, out()}, 1, "'" + file + "': after 2 pages the next one cannot be read");
}

TEST_F(ImportTest, PagesOfOtherSizesAreRefused)
{
    const std::string file = path("two.tif");
    put_tiff(file, small_tiff(1));
    TIFF* const more = TIFFOpen(file.c_str(), "a");
    ASSERT_NE(more, nullptr);
    TIFFSetField(more, TIFFTAG_IMAGEWIDTH, 4);
    TIFFSetField(more, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(more, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(more, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    Bytes row(4);
    TIFFWriteScanline(more, row.data(), 0, 0);
    TIFFClose(more);
    expect_failure({"import", file, out()}, 1, "'" + file + "': page 1 is not like the first one");
}
