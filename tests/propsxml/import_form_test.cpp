#include "propsxml/importing.h"

TEST(PropertyXmlImport, OtherFormThanDemandedFails)
{
    const std::string native = root("type=\"int32\"", "1");
    EXPECT_VELA_ERROR_IN(imported(native, 1), "vela_import_xml", "sources/propsxml", -1,
                         "Specified format does not match the xml string!");
    const std::string lv_data = "<LVData><Version>8</Version><a type=\"int32\">1</a></LVData>";
    EXPECT_VELA_ERROR(imported(lv_data, 2), -1, "Specified format does not match the xml string!");
    EXPECT_EQ(imported(lv_data, 1), VProp(1));
    EXPECT_EQ(imported(native, 0x10002), VProp(1)); // the high bits do not count
}

TEST(PropertyXmlImport, TextWithoutMarkerIsReadAsDemanded)
{
    const std::string xml = "<a type=\"int32\">7</a>";
    EXPECT_EQ(imported(xml, 2), VProp(7));
    EXPECT_EQ(imported(xml, 1), VProp(7));
    EXPECT_EQ(imported(xml, 9), VProp(7));
    EXPECT_VELA_ERROR_IN(imported(xml, 0), "vela_import_xml", "sources/propsxml", -1,
                         "Could not determine xml format!");
}

TEST(PropertyXmlImport, LvDataWithoutVersionIsNoMarker)
{
    const std::string xml = "<LVData><a type=\"int32\">7</a></LVData>";
    EXPECT_EQ(imported(xml, 2), VProp(7));
    EXPECT_VELA_ERROR(imported(xml, 0), -1, "Could not determine xml format!");
}

TEST(PropertyXmlImport, VersionsAboveOneAreNewer)
{
    EXPECT_VELA_ERROR_IN(imported("<a vprop_version=\"2\" type=\"int32\">1</a>"), "vela_import_xml", "sources/propsxml",
                         -1, "Xml input of newer version than library!");
}

TEST(PropertyXmlImport, VersionZeroIsNoMarker)
{
    for (const char* version : {"0", "-1", "x", ""})
    {
        const std::string xml = "<a vprop_version=\"" + std::string(version) + "\" type=\"int32\">1</a>";
        EXPECT_VELA_ERROR(imported(xml), -1, "Could not determine xml format!");
        EXPECT_EQ(imported(xml, 2), VProp(1));
    }
}

TEST(PropertyXmlImport, OlderMarkerIsKnown)
{
    EXPECT_EQ(imported("<a xml_tb_version=\"x\" type=\"int32\">1</a>"), VProp(1));
    EXPECT_VELA_ERROR(imported("<a xml_tb_version=\"\" type=\"int32\">1</a>"), -1, "Could not determine xml format!");
}

TEST(PropertyXmlImport, TextThatIsNoXmlFails)
{
    EXPECT_VELA_ERROR_IN(imported(""), "vela_import_xml", "sources/propsxml", -1,
                         "Error parsing XML properties:\nError document empty.");
    EXPECT_VELA_ERROR(imported("<!-- -->"), -1, "Error parsing XML properties:\nElement not found");
    EXPECT_VELA_ERROR(imported("<a>\n<b></c></a>"), -1,
                      "Error parsing XML properties:\nError reading end tag. Line 2, column 4");
}

TEST(PropertyXmlImport, LvDataThatEndsTooEarlyFails)
{
    EXPECT_VELA_ERROR(imported("<LVData/>"), -1, "Error parsing XML properties:\nElement not found");
    EXPECT_VELA_ERROR(imported("<LVData><Version/><a type=\"int32\">1</a></LVData>"), -1,
                      "Error parsing XML properties:\nText does not exists in the current element");
    EXPECT_VELA_ERROR(imported("<LVData><Version>8</Version></LVData>"), -1,
                      "Error parsing XML properties:\nElement not found");
}

TEST(PropertyXmlImport, ReportOfTheFailureStandsWhole)
{
    expect_failure_at(root("type=\"struct\"", "<a type=\"none\"/>"),
                      "): ERROR\n"
                      "    in function 'VPropXmlParser::import_xml':\n"
                      "    Unknown type 'none' in xml string!\nLocation:\n",
                      "root.a");
}

TEST(PropertyXmlImport, LocationOfLvDataBeginsWithTheWrapper)
{
    expect_failure_at("<LVData><Version>8</Version><a type=\"x\"/></LVData>", "Unknown type 'x'", "LVData.a");
}

TEST(PropertyXmlImport, DeepestLevelIsReadAndDeeperOnesAreNot)
{
    const auto nested = [](std::size_t levels)
    {
        std::string xml = "<a vprop_version=\"1\" type=\"struct\">";
        std::string end = "</a>";
        for (std::size_t i = 2; i < levels; ++i)
        {
            xml += "<a type=\"struct\">";
            end += "</a>";
        }
        return xml + "<a type=\"int32\">1</a>" + end;
    };
    EXPECT_NO_THROW(imported(nested(512)));
    const char* const text = "Error parsing XML properties:\nElements are nested deeper than 512 levels";
    EXPECT_VELA_ERROR(imported(nested(513)), -1, text);
    EXPECT_VELA_ERROR(imported(nested(1'000'000)), -1, text);
}

TEST(PropertyXmlImport, CharacterCutAtTheEndIsNotReadBeyond)
{
    for (const char* cut :
         {"<a>\xf0", "<a b=\"\xf0", "<a>\xe2\x82", "<\xf0", "<a \xf0", "<a b=\xf0", "</\xf0", "<!--\xf0", "\xf0"})
        EXPECT_THROW(imported(cut), VelaError) << cut;
}
