#include <VelaProps/VPropstruct.h>
#include <VelaProps/property_xml.h>

#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

std::string exported(const VProp& prop, int format = 2)
{
    std::string xml = "what was there before";
    vela_export_xml(xml, prop, format);
    return xml;
}

template <class T>
VProp array_of(std::initializer_list<T> elements, const std::vector<std::size_t>& sizes)
{
    VProp prop;
    auto& array = prop.ensure_array<T>(0);
    array.assign(elements);
    array.set_size(sizes, VProparrayBase::set_strict);
    return prop;
}

VProp two_strings()
{
    VProp prop;
    auto& strings = prop.ensure_array<VPropstring>(0);
    strings.emplace_back(L"ab");
    strings.emplace_back(L"");
    return prop;
}

/// As many levels as that: cell arrays around a number.
VProp nested(std::size_t levels)
{
    VProp prop(1.0);
    for (std::size_t i = 1; i < levels; ++i)
    {
        VProp outer;
        outer(0).swap(prop);
        outer.swap(prop);
    }
    return prop;
}

}

TEST(PropertyXmlExport, NumberIsTheRootWithItsText)
{
    EXPECT_EQ(exported(VProp(1.5)), "<root idx=\"1\" type=\"double\" size=\"1 1\" vprop_version=\"1\">1.5</root>\n");
}

TEST(PropertyXmlExport, MembersAreNamedByTheirKeys)
{
    VProp prop;
    prop["a"] = 3;
    prop["b.c"] = true;
    EXPECT_EQ(exported(prop), "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">\n"
                              "    <a idx=\"1\" type=\"int32\" size=\"1 1\">3</a>\n"
                              "    <b idx=\"1\" type=\"struct\" size=\"1 1\">\n"
                              "        <c idx=\"1\" type=\"logical\" size=\"1 1\">1</c>\n"
                              "    </b>\n"
                              "</root>\n");
}

TEST(PropertyXmlExport, ArrayOfOneNumberIsMarked)
{
    EXPECT_EQ(
        exported(array_of<double>({2.5}, {1, 1})),
        "<root idx=\"1\" isarr=\"1\" userbits=\"0\" type=\"double\" size=\"1 1\" vprop_version=\"1\">2.5</root>\n");
}

TEST(PropertyXmlExport, ElementsStandInColumnMajorOrder)
{
    EXPECT_EQ(exported(array_of<int>({1, 2, 3, 4, 5, 6}, {2, 3})),
              "<root idx=\"1\" userbits=\"0\" type=\"int32\" size=\"2 3\" vprop_version=\"1\">1 2 3 4 5 6</root>\n");
}

TEST(PropertyXmlExport, EmptyArrayHasAnEmptyTextAndSizeZero)
{
    EXPECT_EQ(exported(array_of<int>({}, {})),
              "<root idx=\"1\" userbits=\"0\" type=\"int32\" size=\"0 0\" vprop_version=\"1\"></root>\n");
}

TEST(PropertyXmlExport, EmptyValueIsMarked)
{
    VProp prop;
    prop["a"];
    EXPECT_EQ(exported(prop), "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">\n"
                              "    <a idx=\"1\" isempty=\"1\" type=\"cell\" size=\"0 0\" />\n"
                              "</root>\n");
}

TEST(PropertyXmlExport, StringsOfAnArrayCountFromZero)
{
    const VProp prop = two_strings();
    EXPECT_EQ(exported(prop), "<root idx=\"1\" userbits=\"1\" type=\"cell\" size=\"1 2\" vprop_version=\"1\">\n"
                              "    <item idx=\"0\" type=\"char\" size=\"1 2\">ab</item>\n"
                              "    <item idx=\"1\" type=\"char\" size=\"0 0\"></item>\n"
                              "</root>\n");
}

TEST(PropertyXmlExport, SetsTheBitOfStringArraysInTheSource)
{
    const VProp prop = two_strings();
    const VProp copy(prop);
    exported(prop, 99); // whatever the format
    EXPECT_EQ(prop.get_arr(true)->userbits, 1u);
    EXPECT_EQ(copy.get_arr(true)->userbits, 1u); // which shares the container
}

TEST(PropertyXmlExport, ElementsOfCellArraysAreItemsThatCountFromOne)
{
    VProp prop;
    prop(0) = 1;
    prop(1) = "x";
    prop(2)["a"] = 2;
    EXPECT_EQ(exported(prop), "<root idx=\"1\" userbits=\"0\" type=\"cell\" size=\"1 3\" vprop_version=\"1\">\n"
                              "    <item idx=\"1\" type=\"int32\" size=\"1 1\">1</item>\n"
                              "    <item idx=\"2\" type=\"char\" size=\"1 1\">x</item>\n"
                              "    <item idx=\"3\" type=\"struct\" size=\"1 1\">\n"
                              "        <a idx=\"1\" type=\"int32\" size=\"1 1\">2</a>\n"
                              "    </item>\n"
                              "</root>\n");
}

TEST(PropertyXmlExport, MembersOfStructArraysStandSideBySide)
{
    VProp prop;
    prop.s(0)["a"] = 1;
    prop.s(0)["b"] = 2;
    prop.s(1)["a"] = 3;
    prop.s(1)["b"] = 4;
    EXPECT_EQ(exported(prop), "<root idx=\"1\" userbits=\"0\" type=\"struct\" size=\"1 2\" vprop_version=\"1\">\n"
                              "    <a idx=\"1\" type=\"int32\" size=\"1 1\">1</a>\n"
                              "    <b idx=\"1\" type=\"int32\" size=\"1 1\">2</b>\n"
                              "    <a idx=\"2\" type=\"int32\" size=\"1 1\">3</a>\n"
                              "    <b idx=\"2\" type=\"int32\" size=\"1 1\">4</b>\n"
                              "</root>\n");
}

TEST(PropertyXmlExport, StructArrayOfOneIsNotMarked)
{
    VProp prop;
    prop.s(0)["a"] = 1;
    EXPECT_EQ(exported(prop), "<root idx=\"1\" userbits=\"0\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">\n"
                              "    <a idx=\"1\" type=\"int32\" size=\"1 1\">1</a>\n"
                              "</root>\n");
}

TEST(PropertyXmlExport, SizesOfRankOneStandAsTheyAre)
{
    EXPECT_EQ(exported(array_of<double>({0, 0, 0}, {3})),
              "<root idx=\"1\" userbits=\"0\" type=\"double\" size=\"3\" vprop_version=\"1\">0 0 0</root>\n");
}

TEST(PropertyXmlExport, TextIsEscapedAndInUtf8)
{
    EXPECT_EQ(exported(VProp(L"<a&\"b'>\u00b5\n")), "<root idx=\"1\" type=\"char\" size=\"1 9\" vprop_version=\"1\">"
                                                    "&lt;a&amp;&quot;b&apos;&gt;\xc2\xb5&#x0A;</root>\n");
}

TEST(PropertyXmlExport, NumbersThatAreNotFiniteAreWords)
{
    EXPECT_NE(exported(VProp(std::numeric_limits<float>::infinity())).find(">Inf<"), std::string::npos);
}

TEST(PropertyXmlExport, ComplexNumbersHaveTheirOwnTypes)
{
    EXPECT_EQ(exported(VProp(std::complex<float>(1, -2))),
              "<root idx=\"1\" type=\"cplx_single\" size=\"1 1\" vprop_version=\"1\">(1,-2)</root>\n");
}

TEST(PropertyXmlExport, WrapsIntoLvData)
{
    EXPECT_EQ(exported(VProp(1.5), 1), "<?xml version=\"1.0\" standalone=\"yes\" ?>\n"
                                       "<LVData>\n"
                                       "    <Version>8.2.1</Version>\n"
                                       "    <DefaultValueCausedByCreatingAnElementWithNoParameters idx=\"1\" "
                                       "type=\"double\" size=\"1 1\">1.5"
                                       "</DefaultValueCausedByCreatingAnElementWithNoParameters>\n"
                                       "</LVData>\n");
}

TEST(PropertyXmlExport, BareTextHasNoMarkup)
{
    EXPECT_EQ(exported(VProp(1.5), 3), "1.5");
    EXPECT_EQ(exported(array_of<int>({1, 2}, {1, 2}), 3), "1 2");
    EXPECT_EQ(exported(VProp("a<b"), 3), "a<b");
    EXPECT_EQ(exported(VProp(""), 3), "");
    EXPECT_EQ(exported(array_of<int>({}, {}), 3), "");
}

TEST(PropertyXmlExport, BareTextFailsWhereThereIsNone)
{
    VProp members;
    members["a"] = 1;
    for (const VProp& prop : {members, VProp(), two_strings()})
        EXPECT_VELA_ERROR_IN(exported(prop, 3), "vela_export_xml", "sources/propsxml", -1,
                             "Error writing XML properties to string:\nText does not exists in the current element");
}

TEST(PropertyXmlExport, UnknownFormatsGiveAnEmptyText)
{
    for (const int format : {0, 4, -1, 0x1001, 0x1002, 0x1003})
        EXPECT_EQ(exported(VProp(1.5), format), "") << format;
    EXPECT_EQ(exported(VProp(1.5), 0x10003), "1.5"); // the high bits do not count
}

TEST(PropertyXmlExport, RefusesColours)
{
    std::string xml = "before";
    EXPECT_VELA_ERROR_IN(vela_export_xml(xml, VProp(_s_vela_RGB(1, 2, 3)), 2), "VPropXmlExport::visit",
                         "sources/propsxml", -1, "Type unknown or incompatible with xml export!");
    EXPECT_EQ(xml, "before");
    EXPECT_VELA_ERROR(vela_export_xml(xml, VProp(_s_vela_RGB(1, 2, 3)), 99), -1,
                      "Type unknown or incompatible with xml export!");
}

TEST(PropertyXmlExport, SizesThatDoNotFitPassThrough)
{
    VProp prop = array_of<int>({1, 2, 3, 4, 5, 6}, {2, 3});
    prop.get<VProparray<int>>().push_back(7);
    EXPECT_VELA_ERROR_IN(exported(prop), "VProparrayBase::get_size", "sources/proparr", -1,
                         "Invalid size vector in property array!");
}

TEST(PropertyXmlExport, WritesTheDeepestTreeThatCanBeRead)
{
    const VProp prop = nested(512);
    VProp again;
    vela_import_xml(exported(prop), again, 0);
    EXPECT_EQ(again, prop);
}

TEST(PropertyXmlExport, RefusesDeeperTrees)
{
    const char* const text = "Property tree nested deeper than 512 levels!";
    EXPECT_VELA_ERROR_IN(exported(nested(513)), "VPropXmlExport::visit", "sources/propsxml", -1, text);
    EXPECT_VELA_ERROR(exported(nested(200'000)), -1, text);
    EXPECT_VELA_ERROR(exported(nested(512), 1), -1, text); // the wrapper is a level too
    EXPECT_NO_THROW(exported(nested(511), 1));
}

TEST(PropertyXmlExport, StringsInArraysAreALevelOfTheirOwn)
{
    VProp prop = two_strings();
    for (int i = 1; i < 511; ++i)
    {
        VProp outer;
        outer(0).swap(prop);
        outer.swap(prop);
    }
    EXPECT_NO_THROW(exported(prop));
    VProp outer;
    outer(0).swap(prop);
    EXPECT_VELA_ERROR(exported(outer), -1, "Property tree nested deeper than 512 levels!");
}

TEST(ValueText, IsThatOfNumbersAndStrings)
{
    EXPECT_EQ(vela_val2string(VProp(0.1)), "0.10000000000000000555");
    EXPECT_EQ(vela_val2string(VProp(true)), "1");
    EXPECT_EQ(vela_val2string(VProp('A')), "65");
    EXPECT_EQ(vela_val2string(VProp(std::complex<int>(1, 2))), "(1,2)");
    EXPECT_EQ(vela_val2string(VProp(L"\u00b5m")), "\xc2\xb5m");
    EXPECT_EQ(vela_val2string(array_of<std::complex<double>>({{1, 2}, {3, 4}}, {1, 2})), "(1,2) (3,4)");
    EXPECT_EQ(vela_val2string(array_of<bool>({true, false, true}, {3, 1})), "1 0 1");
    EXPECT_EQ(vela_val2string(two_strings()), "ab ");
    EXPECT_EQ(vela_val2string(array_of<int>({}, {})), "");
}

TEST(ValueText, ThereIsNoneOfOtherValues)
{
    VProp members;
    members["a"] = 1;
    VProp cells;
    cells(0) = 1;
    VProp structs;
    structs.s(0)["a"] = 1;
    for (const VProp& prop : {VProp(), members, cells, structs, VProp(_s_vela_RGB())})
        EXPECT_VELA_ERROR_IN(vela_val2string(prop), "vela_val2string", "sources/propsxml", -1,
                             "Conversion of unknown type to string!");
}
