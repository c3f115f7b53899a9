// What an OME document in a TIFF file says.
#include "transfer_test.h"

#include <map>

using namespace vela_test;

namespace {

class ImportOmeTest : public TransferTest
{
protected:
    /// `pixels` stands in the tag of the element, `content` in it.
    static std::string document(const std::string& pixels, const std::string& content = "<TiffData/>",
                                const std::string& image = " Name='cells'>")
    {
        return "<?xml version='1.0'?><!-- a remark --><OME xmlns='x' UUID='urn:uuid:1'><Image ID='Image:0'" + image +
               "<Pixels DimensionOrder='XYZTC' " + pixels + "><Channel/>" + content + "</Pixels></Image></OME>";
    }

    nlohmann::json import(TiffRecipe recipe, const std::string& description, const std::string& remark = "") const
    {
        recipe.description = description;
        const std::string file = tiff(recipe);
        const RunResult result = run({"import", file, out()});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, remark.empty() ? "" : "vbf: '" + file + "': " + remark + "\n");
        return info(out())["stacks"][0];
    }

    std::string out() const { return path("out.vbf"); }

    /// The pages in the order of the planes of the stack.
    std::vector<unsigned> pages() const
    {
        const Bytes all = samples(out());
        std::vector<unsigned> result;
        for (std::size_t i = 0; i < all.size(); i += 16)
            result.push_back(all[i] / 8u);
        return result;
    }

    typedef std::vector<unsigned> Pages;
    const std::string misfit = "the description is not in keeping with the 4 pages, which become the axis Z";
};

} // namespace

TEST_F(ImportOmeTest, TiffDataGivePlanesTheirPages)
{
    const std::string three = "SizeZ='3' SizeT='1' SizeC='1'";
    import(ramp(3), document(three, "<TiffData IFD='1'/><TiffData IFD='0' FirstZ='1' PlaneCount='1'/><TiffData "
                                    "FirstZ='2' IFD='2'><UUID FileName='a'>urn:uuid:1</UUID></TiffData>"));
    EXPECT_EQ(pages(), (Pages{1, 0, 2}));
    import(ramp(3), document(three, "<TiffData IFD='2'/><TiffData IFD='0' FirstZ='1' PlaneCount='2'/>"));
    EXPECT_EQ(pages(), (Pages{2, 0, 1}));
    import(ramp(3), document(three, ""));
    EXPECT_EQ(pages(), (Pages{0, 1, 2}));
}

TEST_F(ImportOmeTest, TiffDataRunInTheOrderOfTheDimensions)
{
    const auto expect_pages = [&](const std::string& order, const Pages& expected)
    {
        std::string text = document("SizeZ='2' SizeT='1' SizeC='2'",
                                    "<TiffData IFD='2' PlaneCount='2'/>"
                                    "<TiffData IFD='0' PlaneCount='2' " +
                                        std::string(order == "XYZTC" ? "FirstC" : "FirstZ") + "='1'/>");
        text.replace(text.find("XYZTC"), 5, order);
        import(ramp(4), text);
        EXPECT_EQ(pages(), expected) << order;
    };
    expect_pages("XYZTC", {2, 3, 0, 1}); // the stack runs through Z, T, C
    expect_pages("XYCTZ", {2, 0, 3, 1});
}

TEST_F(ImportOmeTest, TiffDataOfSamplesOfAPixelCountChannels)
{
    TiffRecipe recipe = ramp(2);
    recipe.bits = 8;
    recipe.width = 2;
    recipe.height = 2;
    recipe.samples_per_pixel = 3;
    recipe.pages = {Bytes(12, 1), Bytes(12, 2)};
    const std::string six = "SizeZ='1' SizeT='1' SizeC='6'";
    import(recipe, document(six, "<TiffData IFD='1'/><TiffData IFD='0' FirstC='3'/>"));
    Bytes expected(12, 2);
    expected.resize(24, 1);
    EXPECT_EQ(samples(out()), expected);
}

TEST_F(ImportOmeTest, TiffDataThatDoNotFitAreReported)
{
    for (const std::string content :
         {"<TiffData IFD='0'/>", "<TiffData/><TiffData IFD='0'/>", "<TiffData IFD='1' PlaneCount='4'/>",
          "<TiffData FirstZ='1'/>", "<TiffData FirstC='1'/>", "<TiffData IFD='x' PlaneCount='4'/>",
          "<TiffData FirstZ='18446744073709551615'/>", "<TiffData PlaneCount='18446744073709551615'/>",
          "<TiffData IFD='18446744073709551615' PlaneCount='4'/>",
          "<TiffData><UUID FileName='b.tif'>urn:uuid:2</UUID></TiffData>",
          "<TiffData IFD='0' PlaneCount='2'/><TiffData IFD='1' FirstZ='2' PlaneCount='2'/>"})
    {
        import(ramp(4), document("SizeZ='4' SizeT='1' SizeC='1'", content), misfit);
        EXPECT_EQ(pages(), (Pages{0, 1, 2, 3})) << content;
    }
}

TEST_F(ImportOmeTest, SeveralImagesAreReported)
{
    const std::string image =
        "<Image ID='Image:0'><Pixels DimensionOrder='XYZCT' SizeZ='2' SizeC='1' SizeT='1'/></Image>";
    EXPECT_EQ(import(ramp(4), "<OME>" + image + image + "</OME>", misfit)["sizes"], nlohmann::json({4, 2, 4}));
}

TEST_F(ImportOmeTest, NameIsTakenAsItStands)
{
    for (const std::string name : {"007", "1.10", "1e3", "12345678901234567890", "true", " a  b "})
        EXPECT_EQ(import(ramp(1), document("SizeZ='1' SizeT='1' SizeC='1'", "", " Name=\"" + name + "\">"))["name"],
                  name);
    const std::string escaped = " Name='&lt;&#228;&#xE4;&amp;amp;&quot;'>";
    EXPECT_EQ(import(ramp(1), document("SizeZ='1' SizeT='1' SizeC='1'", "", escaped))["name"],
              "<\xC3\xA4\xC3\xA4&amp;\"");
    EXPECT_EQ(import(ramp(1), document("SizeZ='1' SizeT='1' SizeC='1'", "", ">"))["name"], "image");
}

TEST_F(ImportOmeTest, DescriptionIsKept)
{
    const std::string image = "><Description>two &lt;words&gt; <![CDATA[& more]]></Description>";
    EXPECT_EQ(import(ramp(1), document("SizeZ='1' SizeT='1' SizeC='1'", "", image))["description"],
              "two <words> & more");
    EXPECT_EQ(import(ramp(1), "free text")["description"], "free text");
    EXPECT_EQ(import(ramp(1), "ImageJ=1.53\nunit=um\n")["description"], "");
}

TEST_F(ImportOmeTest, TextThatIsNoXmlIsReported)
{
    for (const std::string text : {"<OME", "<OME>", "<OME></OME2>", "<OME a=b/>", "<OME a='b/>", "<OME>&x;</OME>",
                                   "<OME>&#0;</OME>", "<OME>&#xD800;</OME>", "<OME>&</OME>", "<OME><!-- </OME>",
                                   "<OME></a></OME>", "<OME a/>", "<!DOCTYPE OME []><OME/>"})
        import(ramp(4), text, misfit);
    std::string nested = "<OME>";
    for (int i = 0; i < 5000; ++i)
        nested += "<a>";
    import(ramp(4), nested, misfit);
}

TEST_F(ImportOmeTest, EachUnitOfTheSchemaIsKnown)
{
    const std::map<std::string, double> lengths = {{"Ym", 1e24},
                                                   {"Zm", 1e21},
                                                   {"Em", 1e18},
                                                   {"Pm", 1e15},
                                                   {"Tm", 1e12},
                                                   {"Gm", 1e9},
                                                   {"Mm", 1e6},
                                                   {"km", 1e3},
                                                   {"hm", 1e2},
                                                   {"dam", 1e1},
                                                   {"m", 1},
                                                   {"dm", 1e-1},
                                                   {"cm", 1e-2},
                                                   {"mm", 1e-3},
                                                   {"nm", 1e-9},
                                                   {"pm", 1e-12},
                                                   {"\xC2\xB5m", 1e-6},
                                                   {"fm", 1e-15},
                                                   {"am", 1e-18},
                                                   {"zm", 1e-21},
                                                   {"ym", 1e-24},
                                                   {"in", 0.0254},
                                                   {"\xC3\x85", 1e-10},
                                                   {"ft", 0.3048},
                                                   {"thou", 2.54e-5},
                                                   {"li", 0.0254 / 12},
                                                   {"yd", 0.9144},
                                                   {"mi", 1609.344},
                                                   {"ua", 149597870700.0},
                                                   {"ly", 9460730472580800.0},
                                                   {"pc", 3.0856775814913673e16},
                                                   {"pt", 0.0254 / 72}};
    for (const auto& [unit, factor] : lengths)
    {
        const std::string size = "SizeZ='1' SizeT='1' SizeC='1' PhysicalSizeX='3' PhysicalSizeXUnit='" + unit + "'";
        const nlohmann::json stack = import(ramp(1), document(size));
        EXPECT_DOUBLE_EQ(stack["lengths"][0], 4 * 3 * factor) << unit;
        EXPECT_EQ(stack["axes"][0]["unit"], "m") << unit;
    }
    const std::map<std::string, double> times = {
        {"Ys", 1e24},  {"Zs", 1e21},        {"Es", 1e18},  {"Ps", 1e15},  {"Ts", 1e12},  {"Gs", 1e9},
        {"Ms", 1e6},   {"ks", 1e3},         {"hs", 1e2},   {"das", 1e1},  {"s", 1},      {"ds", 1e-1},
        {"cs", 1e-2},  {"ms", 1e-3},        {"ns", 1e-9},  {"ps", 1e-12}, {"fs", 1e-15}, {"as", 1e-18},
        {"zs", 1e-21}, {"\xC2\xB5s", 1e-6}, {"ys", 1e-24}, {"min", 60.0}, {"h", 3600.0}, {"d", 86400.0}};
    for (const auto& [unit, factor] : times)
    {
        const std::string size = "SizeZ='1' SizeT='2' SizeC='1' TimeIncrement='3' TimeIncrementUnit='" + unit + "'";
        EXPECT_DOUBLE_EQ(import(ramp(2), document(size))["lengths"][3], 2 * 3 * factor) << unit;
    }
}

TEST_F(ImportOmeTest, UnknownUnitsAreReported)
{
    const std::string size = "SizeZ='1' SizeT='1' SizeC='1' PhysicalSizeX='3' PhysicalSizeXUnit=";
    const nlohmann::json stack =
        import(ramp(1), document(size + "'parsnip'"), "the unit 'parsnip' is not known, lengths in it are left out");
    EXPECT_EQ(stack["axes"][0]["unit"], nullptr);
    import(ramp(1), document(size + "'kg'"), "the unit 'kg' is not known, lengths in it are left out");
    EXPECT_EQ(import(ramp(1), document(size + "'pixel'"))["axes"][0]["unit"], nullptr);
    EXPECT_EQ(import(ramp(1), document(size + "'reference frame'"))["axes"][0]["unit"], nullptr);
    import(ramp(1), "ImageJ=1\nunit=parsnip\n", "the unit 'parsnip' is not known, lengths in it are left out");
    EXPECT_EQ(import(ramp(1), "ImageJ=1\nunit=pixel\n")["axes"][0]["unit"], nullptr);
}
