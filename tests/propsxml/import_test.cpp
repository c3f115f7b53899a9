#include "propsxml/importing.h"

#include <limits>

namespace {

using Sizes = std::vector<std::size_t>;

/// One value of every kind.
VProp tree()
{
    VProp prop;
    prop["number"] = 0.1;
    prop["bytes"] = static_cast<unsigned char>(200);
    prop["character"] = 'A';
    prop["flag"] = true;
    prop["complex"] = std::complex<float>(1.5F, -2);
    prop["text"] = L"<\u00b5> & \"text\"";
    prop["nothing"] = "";
    prop["empty"];
    prop["axes"].ensure_array<VPropstring>(0).emplace_back(L"X");
    prop["axes"].ensure_array<VPropstring>(0).emplace_back(L"Y");
    prop["axes"].get_arr(true)->userbits = 1;
    auto& numbers = prop["numbers"].ensure_array<short>(6);
    numbers.set_size(3, 2, VProparrayBase::absent, VProparrayBase::absent, VProparrayBase::set_strict);
    numbers[5] = -7;
    numbers.userbits = 6;
    prop["one"].ensure_array<std::complex<double>>(1);
    prop["none"].ensure_array<bool>(0);
    prop["cells{1,1}"] = std::numeric_limits<std::uint64_t>::max();
    prop["cells{0,0}.deep"] = std::numeric_limits<double>::infinity();
    prop["structs(0).a"] = 1;
    prop["structs(0).b"] = "x";
    prop["structs(1).a"] = 2;
    prop["structs(1).b"] = "y";
    return prop;
}

}

TEST(PropertyXmlImport, ReadsWhatWasWritten)
{
    const VProp prop = tree();
    for (const int format : {1, 2})
    {
        std::string xml;
        vela_export_xml(xml, prop, format);
        EXPECT_EQ(imported(xml, 0), prop);
        EXPECT_EQ(imported(xml, format), prop);
        std::string again;
        vela_export_xml(again, imported(xml), format);
        EXPECT_EQ(again, xml); // sizes and flags too
    }
}

TEST(PropertyXmlImport, StructArrayOfOneBecomesAStruct)
{
    VProp prop;
    prop.s(0)["a"] = 1;
    std::string xml;
    vela_export_xml(xml, prop, 2);
    const VProp again = imported(xml);
    EXPECT_EQ(again.get_id(), vela_dt_struct);
    EXPECT_EQ(again.getp("a"), VProp(1));
}

TEST(PropertyXmlImport, IsArrAndSizeDecideAboutArrays)
{
    EXPECT_EQ(imported(root("type=\"double\" size=\"1 1\"", "5")).get_id(), vela_dt_double);
    EXPECT_EQ(imported(root("type=\"double\"", "5")).get_id(), vela_dt_double);
    EXPECT_EQ(imported(root("type=\"double\" size=\"\"", "5")).get_id(), vela_dt_double);
    EXPECT_EQ(imported(root("type=\"double\" isarr=\"0\" size=\"1 1\"", "5")).get_id(), vela_dt_double | vela_dt_array);
    const VProp row = imported(root("type=\"double\" size=\"1 3\"", "5 6 7"));
    EXPECT_EQ(row.get<VProparray<double>>(), (std::vector<double>{5, 6, 7}));
    EXPECT_EQ(row.get_arr(true)->get_size(false), (Sizes{1, 3}));
    EXPECT_EQ(imported(root("type=\"double\" size=\"1\"", "5")).get_arr(true)->get_size(false), (Sizes{1}));
}

TEST(PropertyXmlImport, WrongCountOfElementsFails)
{
    expect_failure_at(root("type=\"double\" size=\"2 3\"", "1 2 3 4 5"), "Invalid size set!", "root");
    expect_failure_at(root("type=\"double\" size=\"2 3\"", "1 2 3 4 5 6 7"), "Invalid size set!", "root");
    expect_failure_at(root("type=\"double\" size=\"1 3\"", "1 2,3"), "Invalid size set!", "root");
    expect_failure_at(root("type=\"double\" size=\"1 3\"", "1 2\n3"), "Invalid size set!", "root");
    expect_failure_at(root("type=\"double\" size=\"1 3\""), "Invalid size set!", "root");
}

TEST(PropertyXmlImport, WordsForNumbersThatAreNotFiniteAreRead)
{
    for (const char* type : {"single", "double"})
    {
        const std::string start = "<a vprop_version=\"1\" type=\"" + std::string(type) + "\" size=\"1 3\">";
        EXPECT_EQ(vela_val2string(imported(start + "Inf -Inf NaN</a>")), "Inf -Inf NaN");
    }
}

TEST(PropertyXmlImport, OtherWordsStayUnread)
{
    for (const char* word : {"inf", "-inf", "infinity", "nan", "INF", "+Inf"})
    {
        EXPECT_EQ(imported(root("type=\"double\"", word)), VProp(0.0));
        expect_failure_at(root("type=\"double\" size=\"1 2\"", "1 " + std::string(word)), "Invalid size set!", "root");
    }
}

TEST(PropertyXmlImport, NumberThatCannotBeReadStaysAsItWas)
{
    VProp prop(7);
    vela_import_xml(root("type=\"int32\"", "x"), prop, 0);
    EXPECT_EQ(prop, VProp(7));
}

TEST(PropertyXmlImport, NumberWithoutTextFails)
{
    VProp prop;
    EXPECT_VELA_ERROR_IN(vela_import_xml(root("type=\"struct\"", "<a type=\"int32\"/>"), prop, 0), "vela_import_xml",
                         "sources/propsxml", -1, "Text does not exists in the current element\nLocation:\nroot.a");
    EXPECT_EQ(prop.getp("a"), VProp(0)); // what was made before it
}

TEST(PropertyXmlImport, ShortStringsAreFilledUp)
{
    const VProp prop = imported(root("type=\"char\" size=\"1 5\"", "abc"));
    EXPECT_EQ(prop.get<VPropstring>(), std::wstring(L"abc\0\0", 5));
    EXPECT_EQ(imported(root("type=\"char\" size=\"1 2\"", "abc")), VProp("abc"));
    EXPECT_EQ(imported(root("type=\"char\" size=\"0 0\"")), VProp(""));
    EXPECT_EQ(imported(root("type=\"char\"")).get<VPropstring>(), std::wstring(1, L'\0'));
}

TEST(PropertyXmlImport, WhiteSpaceOfStringsIsKept)
{
    EXPECT_EQ(imported(root("type=\"char\"", " a \n  b ")), VProp(" a \n  b "));
}

TEST(PropertyXmlImport, NulsOfStringsAreKept)
{
    std::string xml;
    const VProp prop(std::wstring(L"a\0b\0", 4));
    vela_export_xml(xml, prop, 2);
    EXPECT_EQ(imported(xml), prop);
}

TEST(PropertyXmlImport, StringOfBlanksBecomesNuls)
{
    std::string xml;
    vela_export_xml(xml, VProp("  "), 2);
    EXPECT_EQ(imported(xml).get<VPropstring>(), std::wstring(2, L'\0'));
}

TEST(PropertyXmlImport, IsEmptyClears)
{
    VProp prop(7);
    vela_import_xml(root("type=\"cell\" isempty=\"1\" size=\"0 0\""), prop, 0);
    EXPECT_TRUE(prop.empty());
    EXPECT_EQ(imported(root("type=\"cell\" isempty=\"0\" size=\"0 0\"")).get_id(), vela_dt_cell | vela_dt_array);
}

TEST(PropertyXmlImport, OlderCellsOfStringsAreStringArrays)
{
    const std::string items = "<x type=\"char\" size=\"1 2\">ab</x><y>c</y>";
    const VProp prop = imported(root("type=\"cell\" ischar=\"1\" size=\"1 2\"", items));
    ASSERT_EQ(prop.get_id(), vela_dt_char | vela_dt_array);
    EXPECT_EQ(prop.get_arr(true)->userbits, 1u);
    EXPECT_EQ(vela_val2string(prop), "ab c");
    EXPECT_EQ(imported(root("type=\"cell\" userbits=\"3\" size=\"1 2\"", items)).get_arr(true)->userbits, 3u);
    EXPECT_EQ(imported(root("type=\"cell\" ischar=\"0\" userbits=\"2\" size=\"0 0\"")).get_id(),
              vela_dt_cell | vela_dt_array);
}

TEST(PropertyXmlImport, MembersAreMerged)
{
    VProp prop;
    prop["old"] = 1;
    prop["both"] = 2;
    vela_import_xml(
        "<root vprop_version=\"1\" type=\"struct\"><both type=\"int32\">3</both><new type=\"int32\">4</new></root>",
        prop, 0);
    VProp expected;
    expected["old"] = 1;
    expected["both"] = 3;
    expected["new"] = 4;
    EXPECT_EQ(prop, expected);
}

TEST(PropertyXmlImport, ValueOfAnotherTypeFails)
{
    VProp prop(1.5);
    EXPECT_THROW(vela_import_xml(root("type=\"int32\"", "1"), prop, 0), VelaError);
    try
    {
        vela_import_xml(root("type=\"int32\"", "1"), prop, 0);
    }
    catch (const VelaError& error)
    {
        EXPECT_NE(error.get_msg().find("Type mismatch: found double, expected int32"), std::string::npos);
    }
    EXPECT_EQ(prop, VProp(1.5));
}

TEST(PropertyXmlImport, ElementsAreAppendedAndThenDoNotFit)
{
    VProp prop = imported(root("type=\"double\" size=\"1 2\"", "1 2"));
    EXPECT_THROW(vela_import_xml(root("type=\"double\" size=\"1 2\"", "3 4"), prop, 0), VelaError);
    EXPECT_EQ(prop.get<VProparray<double>>(), (std::vector<double>{1, 2, 3, 4}));
}

TEST(PropertyXmlImport, UnknownTypesFail)
{
    expect_failure_at(root(""), "Unknown type '' in xml string!", "root");
    expect_failure_at(root("type=\"none\""), "Unknown type 'none' in xml string!", "root");
    expect_failure_at(root("type=\"Double\"", "1"), "Unknown type 'Double' in xml string!", "root");
    expect_failure_at(root("type=\"cplx_logical\"", "(1,0)"), "Unknown type 'cplx_logical' in xml string!", "root");
    expect_failure_at(root("type=\"struct\"", "<a type=\"struct\"><b type=\"x\"/></a>"),
                      "Unknown type 'x' in xml string!", "root.a.b");
}

TEST(PropertyXmlImport, NamesOfMembersArePaths)
{
    expect_failure_at(root("type=\"struct\"", "<a:b type=\"int32\">1</a:b>"),
                      "Error parsing prop path: 'a:b' is not a valid name!", "root");
    EXPECT_EQ(imported(root("type=\"struct\"", "<a.b type=\"int32\">1</a.b>")).getp("a.b"), VProp(1));
}

TEST(PropertyXmlImport, StructArraysMustBeWellFormed)
{
    const auto array = [](const std::string& size, const std::string& members)
    { return root("type=\"struct\" size=\"" + size + "\"", members); };
    const std::string a1 = "<a idx=\"1\" type=\"int32\">1</a>";
    const std::string a2 = "<a idx=\"2\" type=\"int32\">2</a>";
    const std::string b2 = "<b idx=\"2\" type=\"int32\">2</b>";
    EXPECT_EQ(imported(array("1 2", a1 + a2)).s(1).getp("a"), VProp(2));
    expect_failure_at(array("1 2", a1), "Invalid struct array!", "root");
    expect_failure_at(array("1 2", a1 + b2), "Invalid struct array!", "root.a");
    expect_failure_at(array("1 2", a1 + a1), "Invalid struct array!", "root.a");
    expect_failure_at(array("1 2", a2 + a2), "Invalid struct array!", "root");
    EXPECT_EQ(imported(array("2", "")).get<VProparray<VPropstruct>>().size(), 2u);
}

TEST(PropertyXmlImport, StructArrayOfSizeZeroHoldsNothing)
{
    EXPECT_EQ(imported(root("type=\"struct\" size=\"0 0\"")).get<VProparray<VPropstruct>>().size(), 0u);
    expect_failure_at(root("type=\"struct\" size=\"0 0\"", "<a type=\"int32\">1</a>"), "Invalid struct array!", "root");
}

TEST(PropertyXmlImport, OlderComplexNumbersHaveTwoChildren)
{
    const auto complex = [](const std::string& children) { return root("type=\"complex\"", children); };
    EXPECT_EQ(imported(complex("<re type=\"single\">1.5</re><im type=\"single\">2</im>")),
              VProp(std::complex<float>(1.5F, 2)));
    const VProp array =
        imported(complex("<re type=\"int16\" size=\"2 1\">1 2</re><im type=\"int16\" size=\"2 1\">3 4</im>"));
    EXPECT_EQ(vela_val2string(array), "(1,3) (2,4)");
    EXPECT_EQ(array.get_arr(true)->get_size(false), (Sizes{2, 1}));

    expect_failure_at(complex(""), "Malformed 'complex' element!", "root");
    expect_failure_at(complex("<re type=\"single\">1</re>"), "Malformed 'complex' element!", "root");
    expect_failure_at(complex("<re type=\"single\">1</re><im type=\"double\">1</im>"),
                      "Real and imaginary part have different types in 'complex' element!", "root.im");
    expect_failure_at(complex("<re type=\"logical\">1</re><im type=\"logical\">1</im>"),
                      "Invalid type in 'complex' element!", "root.im");
    expect_failure_at(complex("<re type=\"char\">1</re><im type=\"char\">1</im>"), "Invalid type in 'complex' element!",
                      "root.im");
    expect_failure_at(complex("<re type=\"int8\" size=\"1 2\">1 2</re><im type=\"int8\" size=\"1 3\">1 2 3</im>"),
                      "VPropXmlParser::convert_complex", "root.im");
}

TEST(PropertyXmlImport, OlderComplexNumbersReplaceWhatIsThere)
{
    VProp prop("text");
    vela_import_xml(root("type=\"complex\"", "<a type=\"int32\">1</a><b type=\"int32\">2</b>"), prop, 0);
    EXPECT_EQ(prop, VProp(std::complex<int>(1, 2)));
}

TEST(PropertyXmlImport, ReadsTheMetadataOfAFile)
{
    const char* const xml = "<root idx=\"1\" type=\"struct\" size=\"1 1\" vprop_version=\"1\">\n"
                            "    <global_pos idx=\"1\" type=\"struct\" size=\"1 1\">\n"
                            "        <axes idx=\"1\" userbits=\"1\" type=\"cell\" size=\"3\">\n"
                            "            <item idx=\"0\" type=\"char\" size=\"1 1\">X</item>\n"
                            "            <item idx=\"1\" type=\"char\" size=\"1 1\">Y</item>\n"
                            "            <item idx=\"2\" type=\"char\" size=\"1 1\">Z</item>\n"
                            "        </axes>\n"
                            "        <offset idx=\"1\" userbits=\"0\" type=\"double\" size=\"3\">0 0 0</offset>\n"
                            "        <projection idx=\"1\" userbits=\"0\" type=\"double\" size=\"3 3\">"
                            "1 0 0 0 1 0 0 0 1</projection>\n"
                            "    </global_pos>\n"
                            "</root>\n";
    const VProp prop = imported(xml);
    EXPECT_EQ(prop.getp("global_pos.projection").get_arr(true)->get_size(false), (Sizes{3, 3}));
    EXPECT_EQ(vela_val2string(prop.getp("global_pos.axes")), "X Y Z");
    std::string again;
    vela_export_xml(again, prop, 2);
    EXPECT_EQ(again, xml);
}

TEST(PropertyXmlImport, VersionsBeyondAllIntegersAreNewer)
{
    for (const std::string version : {"2147483647", "2147483648", "9223372036854775808", "99999999999999999999999"})
        for (const int format : {0, 2})
            EXPECT_VELA_ERROR(imported("<root vprop_version='" + version + "' type='int32'>1</root>", format), -1,
                              "Xml input of newer version than library!");
    EXPECT_EQ(imported("<root vprop_version='-99999999999999999999' type='int32'>1</root>", 2).get<int>(), 1);
}

TEST(PropertyXmlImport, SizesThatAreNoNumbersFail)
{
    for (const char* const type : {"double", "char", "struct", "cell"})
        expect_failure_at(root(std::string("type='") + type + "' size='x'", "1 2"), "Invalid size set!", "root");
}

TEST(PropertyXmlImport, IndexOfAStructThatIsNoNumberFails)
{
    expect_failure_at(root("type='struct' size='1 2'", "<a type='int32'>1</a><a idx='x' type='int32'>2</a>"),
                      "Invalid struct array!", "root.a");
}

TEST(PropertyXmlImport, OtherAttributesThatAreNoNumbersCountAsMissing)
{
    EXPECT_EQ(imported(root("type='int32' size='1 2' userbits='x'", "1 2")).get_arr(true)->userbits, 0U);
    EXPECT_EQ(imported(root("type='cell' size='1 1' ischar='x'", "<item type='int32'>1</item>")).get_id(),
              vela_dt_cell | vela_dt_array);
    EXPECT_EQ(imported(root("type='cell' size='0 0' isempty='x'")).get_id(), vela_dt_cell | vela_dt_array);
}

TEST(PropertyXmlImport, TextThatLooksLikeAReferenceComesBack)
{
    for (const char* const text : {"&#x<b>", "&#x41;", "&#65;", "&amp;#x41;", "&#x", "&", "&;"})
    {
        std::string xml;
        vela_export_xml(xml, VProp(text), 2);
        EXPECT_EQ(vela_val2string(imported(xml)), text) << xml;
    }
}
