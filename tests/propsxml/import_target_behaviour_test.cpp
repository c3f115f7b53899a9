// Import into a value that holds something already, and what is left after a failure.
#include "propsxml/xml_check.h"

#include <string>

namespace {

using xml_test::array_of;
using xml_test::expect_failure_at;
using xml_test::expect_invalid_size_at;
using xml_test::native;
using xml_test::sizes_of;

void read_into(VProp& prop, const std::string& attributes, const std::string& content)
{
    vela_import_xml(native(attributes, content), prop, 0);
}

TEST(ImportIntoAValue, OverwritesTheSameType)
{
    VProp number(5);
    read_into(number, "type=\"int32\"", "7");
    EXPECT_EQ(number, VProp(7));
    VProp text(L"a text that was there before");
    read_into(text, "type=\"char\" size=\"1 1\"", "b");
    EXPECT_EQ(text, VProp(L"b"));
    read_into(text, "type=\"char\" size=\"0 0\"", "");
    EXPECT_EQ(text, VProp(L""));
}

TEST(ImportIntoAValue, KeepsTheValueWhereTheTextDoesNotParse)
{
    VProp number(5);
    for (const char* text : {"garbage", "99999999999", "-"})
    {
        read_into(number, "type=\"int32\"", text);
        EXPECT_EQ(number, VProp(5)) << text;
    }
    VProp complex(std::complex<float>(1, 2));
    read_into(complex, "type=\"cplx_single\"", "(3,");
    EXPECT_EQ(complex, VProp(std::complex<float>(1, 2)));
    VProp real(2.5);
    read_into(real, "type=\"double\"", "infinity");
    EXPECT_EQ(real, VProp(2.5));
}

TEST(ImportIntoAValue, FailsForAnotherType)
{
    const auto expect_text =
        [](const VProp& before, const std::string& attributes, const std::string& content, const std::string& message)
    {
        VProp prop(before);
        const std::string report = xml_test::import_failure(native(attributes, content), prop);
        EXPECT_NE(report.find("): ERROR\n    in function 'VProp::get':\n    " + message + "\nLocation:\nroot"),
                  std::string::npos)
            << report;
        EXPECT_EQ(prop, before);
    };
    expect_text(VProp(1.5), "type=\"int32\"", "1", "Type mismatch: found double, expected int32");
    expect_text(VProp(1), "type=\"int32\" size=\"1 2\"", "1 2", "Type mismatch: found int32, expected int32[]");
    expect_text(VProp(array_of<int>({1})), "type=\"int32\"", "1", "Type mismatch: found int32[], expected int32");
    expect_text(VProp(L"a"), "type=\"struct\"", "", "Type mismatch: found char, expected struct");
    expect_text(VProp(1), "type=\"char\"", "a", "Type mismatch: found int32, expected char");
    expect_text(VProp(1), "type=\"cell\" size=\"0 0\"", "", "Type mismatch: found int32, expected cell[]");
    expect_text(VProp(1), "type=\"cell\" userbits=\"1\" size=\"0 0\"", "",
                "Type mismatch: found int32, expected char[]");
    expect_text(VProp(1), "type=\"struct\" size=\"1 2\"", "", "Type mismatch: found int32, expected struct[]");
    expect_text(VProp(1), "type=\"cplx_int32\"", "(1,2)", "Type mismatch: found int32, expected cplx_int32");
    expect_text(VProp(_s_vela_RGB(1, 2, 3)), "type=\"int32\"", "1", "Type mismatch: found none, expected int32");
}

TEST(ImportIntoAStruct, MergesTheMembers)
{
    VProp prop;
    prop["kept"] = 1;
    prop["changed"] = 2;
    prop["inner.kept"] = 3;
    read_into(prop, "type=\"struct\"",
              "<changed type=\"int32\">20</changed><added type=\"char\" size=\"1 1\">x</added>"
              "<inner type=\"struct\"><more type=\"int32\">4</more></inner>");
    VProp expected;
    expected["kept"] = 1;
    expected["changed"] = 20;
    expected["inner.kept"] = 3;
    expected["inner.more"] = 4;
    expected["added"] = L"x";
    EXPECT_EQ(prop, expected);
}

TEST(ImportIntoAStruct, LeavesACopyOfItAlone)
{
    VProp prop;
    prop["inner.a"] = 1;
    const VProp copy(prop);
    const VProp inner_copy(prop["inner"]);
    read_into(prop, "type=\"struct\"", "<inner type=\"struct\"><a type=\"int32\">2</a></inner>");
    EXPECT_EQ(copy.getp("inner.a"), VProp(1));
    EXPECT_EQ(inner_copy.getp("a"), VProp(1));
    EXPECT_EQ(prop["inner.a"], VProp(2));
}

TEST(ImportIntoAnArray, PutsNumbersBehindTheOldOnesAndThenFails)
{
    VProp prop(array_of<int>({1, 2}));
    prop.get_arr(true)->userbits = 8;
    expect_failure_at(native("type=\"int32\" size=\"1 2\" userbits=\"4\"", "3 4"), prop, "sources/proparr",
                      "VProparrayBase::set_size", "Invalid size set!", "root");
    EXPECT_EQ(prop, VProp(array_of<int>({1, 2, 3, 4})));
    EXPECT_EQ(prop.get_arr(true)->userbits, 8u);
}

TEST(ImportIntoAnArray, SucceedsWhereTheSizeCountsTheOldOnesToo)
{
    VProp prop(array_of<int>({1, 2}));
    read_into(prop, "type=\"int32\" size=\"2 2\"", "3 4");
    EXPECT_EQ(prop, VProp(array_of<int>({1, 2, 3, 4})));
    EXPECT_EQ(sizes_of(prop), (std::vector<std::size_t>{2, 2}));
    VProp empty{VProparray<int>()};
    read_into(empty, "type=\"int32\" size=\"1 2\"", "3 4");
    EXPECT_EQ(empty, VProp(array_of<int>({3, 4})));
}

TEST(ImportIntoAnArray, PutsStringsBehindTheOldOnesAndThenFails)
{
    VProp prop(array_of<VPropstring>({L"a"}));
    expect_failure_at(native("type=\"cell\" userbits=\"1\" size=\"1 1\"", "<item size=\"1 1\">b</item>"), prop,
                      "sources/proparr", "VProparrayBase::set_size", "Invalid size set!", "root");
    EXPECT_EQ(prop, VProp(array_of<VPropstring>({L"a", L"b"})));
}

TEST(ImportIntoAnArray, PutsCellsBehindTheOldOnesAndThenFails)
{
    VProp prop;
    prop(0) = 1;
    expect_failure_at(native("type=\"cell\" size=\"1 1\"", "<item type=\"int32\">2</item>"), prop, "sources/proparr",
                      "VProparrayBase::set_size", "Invalid size set!", "root.item");
    const auto& cells = static_cast<const VProp&>(prop).get<VProparray<VProp>>();
    ASSERT_EQ(cells.count(), 2u);
    EXPECT_EQ(cells[0], VProp(1));
    EXPECT_EQ(cells[1], VProp(2));
}

TEST(ImportIntoAnArray, PutsStructsBehindTheOldOnesAndThenFails)
{
    VProp prop;
    prop.s(0)["x"] = 1;
    expect_failure_at(native("type=\"struct\" isarr=\"1\"", "<x type=\"int32\">2</x>"), prop, "sources/proparr",
                      "VProparrayBase::set_size", "Invalid size set!", "root.x");
    const auto& structs = static_cast<const VProp&>(prop).get<VProparray<VPropstruct>>();
    ASSERT_EQ(structs.count(), 2u);
    EXPECT_EQ(structs[0]["x"], VProp(1));
    EXPECT_EQ(structs[1]["x"], VProp(2));
}

TEST(ImportOfIsempty, ClearsWhatWasThere)
{
    VProp tree;
    tree["a.b"] = 1;
    for (const VProp& before : {VProp(1), VProp(L"x"), tree, VProp(array_of<int>({1})), VProp()})
    {
        VProp prop(before);
        read_into(prop, "type=\"cell\" isempty=\"1\" size=\"0 0\"", "");
        EXPECT_TRUE(prop.empty());
    }
    read_into(tree, "type=\"struct\"", "<a type=\"cell\" isempty=\"1\"/>");
    EXPECT_TRUE(tree["a"].empty());
}

TEST(ImportThatFails, KeepsTheMembersBeforeTheFailure)
{
    VProp prop;
    prop["old"] = 1;
    expect_failure_at(native("type=\"struct\"", "<a type=\"int32\">2</a><b type=\"nonsense\">3</b>"
                                                "<c type=\"int32\">4</c>"),
                      prop, "sources/propsxml", "VPropXmlParser::import_xml", "Unknown type 'nonsense' in xml string!",
                      "root.b");
    VProp expected;
    expected["old"] = 1;
    expected["a"] = 2;
    expected["b"]; // the subscript makes the member before it is read
    EXPECT_EQ(prop, expected);
}

TEST(ImportThatFails, KeepsTheElementsBeforeTheFailure)
{
    VProp prop;
    expect_invalid_size_at(native("type=\"int32\" size=\"2 3\"", "1 2 3 4 5"), "root");
    EXPECT_THROW(vela_import_xml(native("type=\"int32\" size=\"2 3\" userbits=\"2\"", "1 2 3 4 5"), prop, 0),
                 VelaError);
    EXPECT_EQ(prop, VProp(array_of<int>({1, 2, 3, 4, 5})));
    EXPECT_EQ(prop.get_arr(true)->userbits, 0u);
    EXPECT_EQ(sizes_of(prop), (std::vector<std::size_t>{1, 5}));
}

TEST(ImportThatFails, KeepsTheCellsAndStructsBeforeTheFailure)
{
    VProp cells;
    EXPECT_THROW(
        vela_import_xml(native("type=\"cell\" size=\"1 2\"", "<i type=\"int32\">1</i><i type=\"?\"/>"), cells, 0),
        VelaError);
    EXPECT_EQ(static_cast<const VProp&>(cells)(0), VProp(1));
    VProp structs;
    EXPECT_THROW(vela_import_xml(native("type=\"struct\" size=\"1 2\"", "<x idx=\"1\" type=\"int32\">1</x>"
                                                                        "<x idx=\"3\" type=\"int32\">2</x>"),
                                 structs, 0),
                 VelaError);
    EXPECT_EQ(static_cast<const VProp&>(structs).get<VProparray<VPropstruct>>()[0]["x"], VProp(1));
}

}
