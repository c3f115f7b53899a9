// Whole documents of the three forms, how containers are written, and the failures of the export.
#include "props/attachment.h"
#include "propsxml/xml_check.h"

#include <string>

namespace {

using xml_test::array_of;
using xml_test::exported;

/// The element of the native form that begins and ends `content`.
std::string root(const std::string& attributes, const std::string& content)
{
    return "<root " + attributes + " vprop_version=\"1\">\n" + content + "</root>\n";
}

VProp sample_tree()
{
    VProp tree;
    tree["number"] = 3;
    tree["nothing"] = VProp();
    tree["text"] = L"a<b & \"c\"'";
    tree["cells"] = VProp();
    tree["cells{1,1}"] = 2.5;
    tree["cells{0,1}.inner"] = true;
    tree["names"] = array_of<VPropstring>({L"p", L""});
    tree["axes(0).x"] = 1;
    tree["axes(0).y"] = L"u";
    tree["axes(1).x"] = 2;
    tree["axes(1).y"] = L"v";
    return tree;
}

std::string sample_members(const std::string& indent)
{
    const std::string lines[] = {
        "<number idx=\"1\" type=\"int32\" size=\"1 1\">3</number>",
        "<nothing idx=\"1\" isempty=\"1\" type=\"cell\" size=\"0 0\" />",
        "<text idx=\"1\" type=\"char\" size=\"1 10\">a&lt;b &amp; &quot;c&quot;&apos;</text>",
        "<cells idx=\"1\" userbits=\"0\" type=\"cell\" size=\"2 2\">",
        "    <item idx=\"1\" isempty=\"1\" type=\"cell\" size=\"0 0\" />",
        "    <item idx=\"2\" isempty=\"1\" type=\"cell\" size=\"0 0\" />",
        "    <item idx=\"3\" type=\"struct\" size=\"1 1\">",
        "        <inner idx=\"1\" type=\"logical\" size=\"1 1\">1</inner>",
        "    </item>",
        "    <item idx=\"4\" type=\"double\" size=\"1 1\">2.5</item>",
        "</cells>",
        "<names idx=\"1\" userbits=\"1\" type=\"cell\" size=\"1 2\">",
        "    <item idx=\"0\" type=\"char\" size=\"1 1\">p</item>",
        "    <item idx=\"1\" type=\"char\" size=\"0 0\"></item>",
        "</names>",
        "<axes idx=\"1\" userbits=\"0\" type=\"struct\" size=\"1 2\">",
        "    <x idx=\"1\" type=\"int32\" size=\"1 1\">1</x>",
        "    <y idx=\"1\" type=\"char\" size=\"1 1\">u</y>",
        "    <x idx=\"2\" type=\"int32\" size=\"1 1\">2</x>",
        "    <y idx=\"2\" type=\"char\" size=\"1 1\">v</y>",
        "</axes>",
    };
    std::string text;
    for (const std::string& line : lines)
        text += indent + line + "\n";
    return text;
}

TEST(ExportedDocument, OfFormat2IsTheElementRootWithTheVersionLast)
{
    EXPECT_EQ(exported(sample_tree(), 2), "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">\n" +
                                              sample_members("    ") + "</root>\n");
    EXPECT_EQ(exported(VProp(1.5), 2), "<root idx=\"1\" type=\"double\" size=\"1 1\" vprop_version=\"1\">1.5</root>\n");
}

TEST(ExportedDocument, OfFormat1IsTheWrapperWithTheTreeUnderTheDefaultName)
{
    const std::string name = "DefaultValueCausedByCreatingAnElementWithNoParameters";
    EXPECT_EQ(exported(sample_tree(), 1), "<?xml version=\"1.0\" standalone=\"yes\" ?>\n"
                                          "<LVData>\n"
                                          "    <Version>8.2.1</Version>\n"
                                          "    <" +
                                              name + " idx=\"1\" type=\"struct\" size=\"1 1\">\n" +
                                              sample_members("        ") + "    </" + name + ">\n</LVData>\n");
    EXPECT_EQ(exported(VProp(7), 1), "<?xml version=\"1.0\" standalone=\"yes\" ?>\n"
                                     "<LVData>\n"
                                     "    <Version>8.2.1</Version>\n"
                                     "    <" +
                                         name + " idx=\"1\" type=\"int32\" size=\"1 1\">7</" + name + ">\n</LVData>\n");
}

TEST(ExportedDocument, OfFormat3IsTheTextOfTheTopElementAlone)
{
    EXPECT_EQ(exported(VProp(1.5), 3), "1.5");
    EXPECT_EQ(exported(VProp(L"a<b>&\x00e4"), 3), "a<b>&\xC3\xA4");
    EXPECT_EQ(exported(VProp(array_of<int>({1, -2})), 3), "1 -2");
}

TEST(ExportedDocument, OfAnyOtherFormatIsEmpty)
{
    for (const int format : {0, 4, 5, -1, 0x1000, 0x1001, 0x1002, 0x1003, 0x8002, 0xffff, 0x10000, 0x10004})
        EXPECT_EQ(exported(sample_tree(), format), "") << format;
}

TEST(ExportedDocument, CountsTheLow16BitsOfTheFormatAlone)
{
    for (const int format : {1, 2})
        EXPECT_EQ(exported(sample_tree(), 0x70000 + format), exported(sample_tree(), format));
    EXPECT_EQ(exported(VProp(4), 0x10003), "4");
}

TEST(ExportedDocument, OfAValueThatCannotBeWrittenFailsInEveryFormat)
{
    // The tree is walked before the format decides what becomes of it.
    std::string xml;
    for (const int format : {0, 1, 2, 3, 0x1002})
        EXPECT_VELA_ERROR_IN(vela_export_xml(xml, VProp(_s_vela_RGB(1, 2, 3)), format), "VPropXmlExport::visit",
                             "sources/propsxml", -1, "Type unknown or incompatible with xml export!");
}

TEST(ExportedElement, OfAnEmptyValueHasIsemptyAndNoText)
{
    EXPECT_EQ(exported(VProp(), 2),
              "<root idx=\"1\" isempty=\"1\" type=\"cell\" size=\"0 0\" vprop_version=\"1\" />\n");
}

TEST(ExportedElement, OfAStructMemberHasItsKeyAndIdx1)
{
    VProp tree;
    tree["a"] = 3;
    tree["b-c_d"] = 4;
    EXPECT_EQ(exported(tree, 2), root("idx=\"1\" type=\"struct\" size=\"1 1\"",
                                      "    <a idx=\"1\" type=\"int32\" size=\"1 1\">3</a>\n"
                                      "    <b-c_d idx=\"1\" type=\"int32\" size=\"1 1\">4</b-c_d>\n"));
}

TEST(ExportedElement, OfAMemberWithoutKeyIsItem)
{
    VPropstruct members;
    members.emplace_back("", VProp(1));
    EXPECT_EQ(exported(VProp(members), 2), root("idx=\"1\" type=\"struct\" size=\"1 1\"",
                                                "    <item idx=\"1\" type=\"int32\" size=\"1 1\">1</item>\n"));
}

TEST(ExportedElement, OfAStructWithoutMembersHasNoContent)
{
    EXPECT_EQ(exported(VProp(VPropstruct()), 2),
              "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\" />\n");
}

TEST(ExportedElement, OfAStringHasTheSizeOfARowOfItsWideLength)
{
    EXPECT_EQ(exported(VProp(L"abc"), 2),
              "<root idx=\"1\" type=\"char\" size=\"1 3\" vprop_version=\"1\">abc</root>\n");
    EXPECT_EQ(
        exported(VProp(L"\x00e4\x20ac\x4e2d"), 2),
        "<root idx=\"1\" type=\"char\" size=\"1 3\" vprop_version=\"1\">\xC3\xA4\xE2\x82\xAC\xE4\xB8\xAD</root>\n");
    EXPECT_EQ(exported(VProp(L""), 2), "<root idx=\"1\" type=\"char\" size=\"0 0\" vprop_version=\"1\"></root>\n");
}

TEST(ExportedElement, OfAStringArrayIsACellWithBit0OfUserbits)
{
    EXPECT_EQ(exported(VProp(array_of<VPropstring>({L"one", L"\x00e4"})), 2),
              root("idx=\"1\" userbits=\"1\" type=\"cell\" size=\"1 2\"",
                   "    <item idx=\"0\" type=\"char\" size=\"1 3\">one</item>\n"
                   "    <item idx=\"1\" type=\"char\" size=\"1 1\">\xC3\xA4</item>\n"));
    EXPECT_EQ(exported(VProp(VProparray<VPropstring>()), 2),
              "<root idx=\"1\" userbits=\"1\" type=\"cell\" size=\"0 0\" vprop_version=\"1\" />\n");
}

TEST(ExportedElement, OfACellArrayHasItemsCountedFrom1)
{
    VProp cells;
    cells(0, 0) = 1;
    cells(0, 1) = L"x";
    cells(0, 2);
    EXPECT_EQ(exported(cells, 2), root("idx=\"1\" userbits=\"0\" type=\"cell\" size=\"1 3\"",
                                       "    <item idx=\"1\" type=\"int32\" size=\"1 1\">1</item>\n"
                                       "    <item idx=\"2\" type=\"char\" size=\"1 1\">x</item>\n"
                                       "    <item idx=\"3\" isempty=\"1\" type=\"cell\" size=\"0 0\" />\n"));
    EXPECT_EQ(exported(VProp(VProparray<VProp>()), 2),
              "<root idx=\"1\" userbits=\"0\" type=\"cell\" size=\"0 0\" vprop_version=\"1\" />\n");
}

TEST(ExportedElement, OfACellArrayOfOneElementHasNoIsarr)
{
    VProp cells;
    cells(0) = 1;
    EXPECT_EQ(exported(cells, 2), root("idx=\"1\" userbits=\"0\" type=\"cell\" size=\"1 1\"",
                                       "    <item idx=\"1\" type=\"int32\" size=\"1 1\">1</item>\n"));
}

TEST(ExportedElement, OfAStructArrayOfOneElementHasNoIsarr)
{
    VProp structs;
    structs.s(0)["m"] = 1;
    EXPECT_EQ(exported(structs, 2), root("idx=\"1\" userbits=\"0\" type=\"struct\" size=\"1 1\"",
                                         "    <m idx=\"1\" type=\"int32\" size=\"1 1\">1</m>\n"));
}

TEST(ExportedElement, OfAStructArrayHasTheMembersOfAllStructsSideBySide)
{
    VProp structs;
    structs.s(1, 1)["m"] = 4;
    for (std::size_t i = 0; i < 3; ++i)
        structs.get<VProparray<VPropstruct>>()[i]["m"] = static_cast<int>(i);
    EXPECT_EQ(exported(structs, 2), root("idx=\"1\" userbits=\"0\" type=\"struct\" size=\"2 2\"",
                                         "    <m idx=\"1\" type=\"int32\" size=\"1 1\">0</m>\n"
                                         "    <m idx=\"2\" type=\"int32\" size=\"1 1\">1</m>\n"
                                         "    <m idx=\"3\" type=\"int32\" size=\"1 1\">2</m>\n"
                                         "    <m idx=\"4\" type=\"int32\" size=\"1 1\">4</m>\n"));
}

TEST(ExportedElement, InsideAStructInACellCountsFrom1Again)
{
    VProp tree;
    tree["c{2}.m"] = 1;
    tree["c{2}.d{1}"] = 2;
    const std::string xml = exported(tree, 2);
    EXPECT_NE(xml.find("<item idx=\"3\" type=\"struct\" size=\"1 1\">\n"
                       "            <m idx=\"1\" type=\"int32\" size=\"1 1\">1</m>\n"
                       "            <d idx=\"1\" userbits=\"0\" type=\"cell\" size=\"1 2\">\n"),
              std::string::npos)
        << xml;
}

TEST(ExportedElement, BelowAMemberOfAStructArrayCountsByItself)
{
    VProp tree;
    tree["s(1).m.deep"] = 1;
    tree["s(0).m.deep"] = 2;
    EXPECT_EQ(exported(tree, 2), root("idx=\"1\" type=\"struct\" size=\"1 1\"",
                                      "    <s idx=\"1\" userbits=\"0\" type=\"struct\" size=\"1 2\">\n"
                                      "        <m idx=\"1\" type=\"struct\" size=\"1 1\">\n"
                                      "            <deep idx=\"1\" type=\"int32\" size=\"1 1\">2</deep>\n"
                                      "        </m>\n"
                                      "        <m idx=\"2\" type=\"struct\" size=\"1 1\">\n"
                                      "            <deep idx=\"1\" type=\"int32\" size=\"1 1\">1</deep>\n"
                                      "        </m>\n"
                                      "    </s>\n"));
}

TEST(ExportOfAStringArray, SetsBit0OfUserbitsInTheConstantSource)
{
    auto array = array_of<VPropstring>({L"x"});
    array.userbits = 8;
    VProp tree;
    tree["deep.names"] = array;
    const VProp constant(tree);
    const std::string xml = exported(constant, 2);
    EXPECT_NE(xml.find("userbits=\"9\""), std::string::npos) << xml;
    EXPECT_EQ(constant.getp("deep.names").get<VProparray<VPropstring>>().userbits, 9u);
}

TEST(ExportOfAStringArray, LeavesUserbitsOfOtherArraysAlone)
{
    VProp tree;
    tree["numbers"] = array_of<int>({1});
    tree["cells{0}"] = 1;
    tree["structs(0).a"] = 1;
    exported(tree, 2);
    for (const char* path : {"numbers", "cells", "structs"})
        EXPECT_EQ(tree[path].get_arr(true)->userbits, 0u) << path;
}

TEST(ExportFailure, OfFormat3NamesWhatHasNoText)
{
    VProp cells;
    cells(0) = 1;
    VProp members;
    members["a"] = 1;
    std::string xml = "as it was";
    const VProp strings(array_of<VPropstring>({L"a"}));
    for (const VProp& prop : {VProp(), members, cells, strings})
        EXPECT_VELA_ERROR_IN(vela_export_xml(xml, prop, 3), "vela_export_xml", "sources/propsxml", -1,
                             "Error writing XML properties to string:\nText does not exists in the current element");
    EXPECT_EQ(xml, "as it was");
}

TEST(ExportFailure, OfFormat3IsNotThatATextIsEmpty)
{
    EXPECT_EQ(exported(VProp(L""), 3), "");
    EXPECT_EQ(exported(VProp(VProparray<double>()), 3), "");
}

TEST(ExportFailure, OfAColourAnywhereInTheTreePassesUnchanged)
{
    VProp tree;
    tree["a.b{2}"] = _s_vela_RGB(1, 2, 3);
    std::string xml = "as it was";
    EXPECT_VELA_ERROR_IN(vela_export_xml(xml, tree, 2), "VPropXmlExport::visit", "sources/propsxml", -1,
                         "Type unknown or incompatible with xml export!");
    EXPECT_EQ(xml, "as it was");
}

TEST(ExportFailure, OfAnArrayWhoseSizesDoNotFitPassesUnchanged)
{
    VProp tree;
    auto& array = tree["a"].ensure_array<int>(5);
    array.set_size({2, 3}, VProparrayBase::set_only);
    std::string xml = "as it was";
    EXPECT_VELA_ERROR_IN(vela_export_xml(xml, tree, 2), "VProparrayBase::get_size", "sources/proparr", -1,
                         "Invalid size vector in property array!");
    EXPECT_EQ(xml, "as it was");
}

TEST(Export, ReplacesWhatTheTextHeld)
{
    std::string xml(5000, 'x');
    vela_export_xml(xml, VProp(1), 3);
    EXPECT_EQ(xml, "1");
    vela_export_xml(xml, VProp(1), 9);
    EXPECT_EQ(xml, "");
}

TEST(Export, LeavesSharingAndAttachmentsOfTheTreeAlone)
{
    VProp tree = sample_tree();
    tree["number"].set_info(prop_test::attachment(4));
    const VProp copy(tree);
    exported(tree, 2);
    EXPECT_EQ(tree.value_ptr(), copy.value_ptr()); // still one container
    EXPECT_EQ(prop_test::number_of(copy.get<VPropstruct>().find("number")->second), 4);
}

TEST(Export, OfTheSameTreeTwiceGivesTheSameText)
{
    const VProp tree = sample_tree();
    EXPECT_EQ(exported(tree, 2), exported(tree, 2));
    EXPECT_EQ(exported(tree, 1), exported(VProp(tree), 1));
}

}
