// How the form of a document is told, and what the import says before it reads the tree.
#include "propsxml/xml_check.h"

#include <tinyxml.h>

#include <string>

namespace {

using xml_test::import_failure;
using xml_test::imported;

const std::string native_text = "<root type=\"int32\" size=\"1 1\" vprop_version=\"1\">7</root>";
const std::string older_text = "<root type=\"int32\" size=\"1 1\" xml_tb_version=\"1.0\">7</root>";
const std::string lvdata_text = "<LVData><Version>8.2.1</Version><any type=\"int32\" size=\"1 1\">7</any></LVData>";
const std::string unmarked_text = "<root type=\"int32\" size=\"1 1\">7</root>";

void expect_seven(const std::string& xml, int format)
{
    SCOPED_TRACE(xml);
    VProp prop;
    EXPECT_NO_THROW(vela_import_xml(xml, prop, format)) << format;
    EXPECT_EQ(prop, VProp(7)) << format;
}

void expect_mismatch(const std::string& xml, int format)
{
    VProp prop;
    SCOPED_TRACE(xml);
    EXPECT_VELA_ERROR_IN(vela_import_xml(xml, prop, format), "vela_import_xml", "sources/propsxml", -1,
                         "Specified format does not match the xml string!");
    EXPECT_TRUE(prop.empty());
}

void expect_undetermined(const std::string& xml)
{
    VProp prop;
    SCOPED_TRACE(xml);
    EXPECT_VELA_ERROR_IN(vela_import_xml(xml, prop, 0), "vela_import_xml", "sources/propsxml", -1,
                         "Could not determine xml format!");
    EXPECT_TRUE(prop.empty());
}

/// A failure before the tree is read: the whole message begins so.
void expect_no_parse(const std::string& xml, int format = 0)
{
    SCOPED_TRACE(xml);
    VProp prop;
    const std::string report = import_failure(xml, prop, format);
    EXPECT_EQ(report.rfind("Error parsing XML properties:\n", 0), 0u) << report;
    EXPECT_GT(report.size(), std::string("Error parsing XML properties:\n").size());
    EXPECT_TRUE(prop.empty());
}

TEST(ImportForm, NativeIsKnownByItsVersion)
{
    expect_seven(native_text, 0);
    expect_seven(native_text, 2);
    expect_mismatch(native_text, 1);
    expect_mismatch(native_text, 3);
}

TEST(ImportForm, OlderNativeIsKnownByAnyTextOfItsMarker)
{
    expect_seven(older_text, 0);
    expect_seven(older_text, 2);
    expect_mismatch(older_text, 1);
    expect_seven("<root type=\"int32\" xml_tb_version=\"whatever\">7</root>", 0);
    expect_undetermined("<root type=\"int32\" xml_tb_version=\"\">7</root>");
}

TEST(ImportForm, LvdataIsKnownByItsVersionElement)
{
    expect_seven(lvdata_text, 0);
    expect_seven(lvdata_text, 1);
    expect_mismatch(lvdata_text, 2);
    expect_mismatch(lvdata_text, 4);
}

TEST(ImportForm, LvdataTakesAnyTextOfTheVersion)
{
    expect_seven("<LVData><Version>none at all</Version><x type=\"int32\">7</x></LVData>", 0);
}

TEST(ImportForm, LvdataPassesOverWhatIsNoElement)
{
    expect_seven("<?xml version=\"1.0\"?><!-- a --><LVData> text <!-- b --><Version>1</Version> text <!-- c -->"
                 "<x type=\"int32\">7</x><y>never read</y></LVData>",
                 0);
}

TEST(ImportForm, UnmarkedIsReadAsWhatIsDemanded)
{
    expect_seven(unmarked_text, 1);
    expect_seven(unmarked_text, 2);
    expect_seven(unmarked_text, 3);
    expect_seven(unmarked_text, 0xffff);
    expect_undetermined(unmarked_text);
}

TEST(ImportForm, LvdataWithoutVersionIsReadFromItsFirstChild)
{
    const std::string xml = "<LVData><x type=\"int32\">7</x><y type=\"int32\">8</y></LVData>";
    expect_seven(xml, 1);
    expect_seven(xml, 2);
    expect_undetermined(xml);
}

TEST(ImportForm, LvdataIsSpelledSo)
{
    expect_undetermined("<lvdata><Version>1</Version><x type=\"int32\">7</x></lvdata>");
    expect_undetermined("<LVData><version>1</version><x type=\"int32\">7</x></LVData>");
}

TEST(ImportForm, VersionZeroAndBelowCountAsNoMarker)
{
    for (const char* version : {"0", "-1", "-5"})
    {
        const std::string xml = "<root type=\"int32\" vprop_version=\"" + std::string(version) + "\">7</root>";
        expect_undetermined(xml);
        expect_seven(xml, 2);
        expect_seven(xml, 1);
    }
    expect_seven("<root type=\"int32\" vprop_version=\"0\" xml_tb_version=\"1\">7</root>", 0);
    expect_seven("<LVData vprop_version=\"0\"><Version>1</Version><x type=\"int32\">7</x></LVData>", 1);
}

TEST(ImportForm, VersionAbove1Fails)
{
    for (const char* version : {"2", "3", "1000"})
        for (const int format : {0, 1, 2})
        {
            VProp prop;
            EXPECT_VELA_ERROR_IN(vela_import_xml("<root type=\"int32\" vprop_version=\"" + std::string(version) +
                                                     "\" xml_tb_version=\"1\">7</root>",
                                                 prop, format),
                                 "vela_import_xml", "sources/propsxml", -1, "Xml input of newer version than library!");
            EXPECT_TRUE(prop.empty());
        }
}

TEST(ImportForm, NativeMarkersComeBeforeTheNameLvdata)
{
    expect_seven("<LVData type=\"int32\" vprop_version=\"1\">7<Version>1</Version></LVData>", 2);
    expect_seven("<LVData type=\"int32\" xml_tb_version=\"1\">7<Version>1</Version></LVData>", 2);
}

TEST(ImportForm, MarkersBelowTheFirstElementDoNotCount)
{
    expect_undetermined("<outer><root type=\"int32\" vprop_version=\"1\">7</root></outer>");
    expect_undetermined("<outer><LVData><Version>1</Version><x type=\"int32\">7</x></LVData></outer>");
}

TEST(ImportForm, CountsTheLow16BitsOfTheFormatAlone)
{
    expect_seven(native_text, 0x10000);
    expect_seven(native_text, 0x7fff0002);
    expect_mismatch(native_text, 0x10001);
    expect_mismatch(native_text, 0x1002);
}

TEST(ImportForm, TheFirstElementIsTheTreeWhateverItsName)
{
    expect_seven("<?xml version=\"1.0\" encoding=\"UTF-8\"?><!-- c --><x-y type=\"int32\" vprop_version=\"1\">7</x-y>",
                 0);
    expect_seven(native_text + "<second type=\"int32\">8</second>", 0);
}

TEST(ImportFailure, OfTextThatIsNoXml)
{
    for (const char* xml : {"", " ", "<", "<root", "<root>", "<root></other>", "just text", "<root a=\"1></root>"})
        for (const int format : {0, 1, 2})
            expect_no_parse(xml, format);
}

TEST(ImportFailure, OfADocumentWithoutAnElement)
{
    expect_no_parse("<!-- only this -->");
    expect_no_parse("<?xml version=\"1.0\"?>", 2);
}

TEST(ImportFailure, OfLvdataWithoutItsParts)
{
    expect_no_parse("<LVData></LVData>");
    expect_no_parse("<LVData/>", 1);
    expect_no_parse("<LVData>text</LVData>", 2);
    expect_no_parse("<LVData><Version>8.2.1</Version></LVData>");
    expect_no_parse("<LVData><Version>8.2.1</Version>text</LVData>", 1);
}

TEST(ImportFailure, OfAVersionWithoutText)
{
    VProp prop;
    EXPECT_EQ(import_failure("<LVData><Version/><x type=\"int32\">7</x></LVData>", prop),
              "Error parsing XML properties:\nText does not exists in the current element");
    EXPECT_TRUE(prop.empty());
}

TEST(ImportFailure, BeforeTheTreeLeavesWhatWasThere)
{
    VProp prop(5);
    for (const char* xml :
         {"<root", "<root type=\"int32\">7</root>", "<LVData/>", "<root type=\"int32\" vprop_version=\"2\">7</root>"})
    {
        EXPECT_THROW(vela_import_xml(xml, prop, 0), VelaError) << xml;
        EXPECT_EQ(prop, VProp(5));
    }
}

TEST(Import, SwitchesCondensingOfWhiteSpaceOffForTheProcess)
{
    for (const char* xml : {native_text.c_str(), "<no xml"})
    {
        TiXmlBase::SetCondenseWhiteSpace(true);
        VProp prop;
        try
        {
            vela_import_xml(xml, prop, 0);
        }
        catch (const VelaError&)
        {
        }
        EXPECT_FALSE(TiXmlBase::IsWhiteSpaceCondensed()) << xml;
    }
}

TEST(Import, ReadsTheTextAsUtf8WhateverTheDeclarationSays)
{
    EXPECT_EQ(imported("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r type=\"char\" size=\"1 1\" "
                       "vprop_version=\"1\">\xC3\xA4</r>"),
              VProp(L"\x00e4"));
}

}
