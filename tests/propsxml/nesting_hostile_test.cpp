// Nesting beyond any use, in text and in trees.
#include "props/deep_trees.h"
#include "propsxml/xml_check.h"

#include <string>

namespace {

using prop_test::deepen;
using prop_test::Levels;
using xml_test::exported;
using xml_test::import_failure;
using xml_test::imported;

/// `levels` elements, one in the other: structs with a number in them, or cells.
std::string nested(std::size_t levels, const std::string& element)
{
    std::string open;
    std::string close;
    for (std::size_t level = 0; level < levels; ++level)
    {
        open += "<k " + element + (level == 0 ? " vprop_version=\"1\">" : ">");
        close += "</k>";
    }
    return open + close;
}

std::string repeated(std::size_t count, const std::string& text)
{
    std::string all;
    all.reserve(count * text.size());
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

constexpr const char* structs = "type=\"struct\" size=\"1 1\"";
constexpr const char* cells = "type=\"cell\" size=\"1 1\"";

void expect_refused(const std::string& xml)
{
    for (const int format : {0, 2})
    {
        VProp prop(5);
        const std::string report = import_failure(xml, prop, format);
        EXPECT_EQ(report.rfind("Error parsing XML properties:\n", 0), 0u) << report.substr(0, 500);
        EXPECT_EQ(prop, VProp(5)); // nothing was read yet
    }
}

TEST(NestedText, IsReadTo512Levels)
{
    VProp tree;
    vela_import_xml(nested(512, structs), tree, 0);
    EXPECT_EQ(prop_test::depth_of(tree), 511u);
    // The innermost cell holds none, which is not what its size says.
    VProp innermost;
    xml_test::expect_invalid_size_at("<k type=\"cell\" vprop_version=\"1\"/>", "k");
    EXPECT_EQ(import_failure(nested(512, cells), innermost).rfind("Error parsing", 0), std::string::npos);
}

TEST(NestedText, IsRefusedFrom513LevelsOn)
{
    for (const std::size_t levels : {513u, 600u, 5000u, 100000u})
    {
        SCOPED_TRACE(levels);
        expect_refused(nested(levels, structs));
        expect_refused(nested(levels, cells));
        expect_refused(nested(levels, "type=\"complex\""));
    }
}

TEST(NestedText, IsRefusedWithWhateverStandsBetweenTheLevels)
{
    expect_refused(repeated(100000, "<a>"));
    expect_refused(repeated(100000, "<a> <!-- </a> --> "));
    expect_refused(repeated(100000, "<a b=\"/>\">"));
    expect_refused(repeated(100000, "<a b='>' >text"));
    expect_refused(repeated(100000, "<a>") + repeated(100000, "</a>"));
    expect_refused(repeated(100000, "<a><![CDATA[</a>]]>"));
}

TEST(NestedText, CountsLevelsNotElements)
{
    const std::string xml = "<root type=\"cell\" vprop_version=\"1\" size=\"1 100000\">" +
                            repeated(100000, "<item type=\"int8\">1</item>") + "</root>";
    EXPECT_EQ(imported(xml).get<VProparray<VProp>>().count(), 100000u);
    const std::string closed = "<root type=\"struct\" vprop_version=\"1\">" +
                               repeated(2000, "<a type=\"cell\" isempty=\"1\"/><!-- <b> --><![CDATA[<c>]]>") +
                               "</root>";
    EXPECT_NO_THROW(imported(closed));
}

TEST(NestedText, OfManyMarksOfTheParserEndsSoon)
{
    for (const char* text :
         {"<", "<!", "<!--", "<![CDATA[", "<?", "</", "<a/>", "&", "<a ", "<a b=", "\"", "<a><", ">"})
    {
        EXPECT_FALSE(xml_test::survives(repeated(30000, text), 2)) << text;
        EXPECT_FALSE(xml_test::survives("<root vprop_version=\"1\" type=\"char\">" + repeated(30000, text), 0)) << text;
    }
}

class NestedTree : public testing::TestWithParam<Levels>
{
protected:
    static VProp tree(std::size_t levels)
    {
        VProp made(1.5);
        deepen(made, levels, GetParam());
        return made;
    }
};
INSTANTIATE_TEST_SUITE_P(All, NestedTree, testing::Values(Levels::structs, Levels::cells, Levels::struct_arrays),
                         [](const auto& instance) { return std::string(prop_test::name_of(instance.param)); });

TEST_P(NestedTree, IsWrittenTo512Elements)
{
    // 511 levels around a number are 512 elements; the form 1 puts one more around them.
    const VProp native = tree(511);
    std::string xml = exported(native, 2);
    EXPECT_NO_THROW(imported(xml));
    const VProp wrapped = tree(510);
    EXPECT_NO_THROW(imported(exported(wrapped, 1)));
    if (GetParam() != Levels::struct_arrays) // those of one struct come back as plain structs
    {
        EXPECT_EQ(imported(xml), native);
        EXPECT_EQ(imported(exported(wrapped, 1)), wrapped);
    }
}

TEST_P(NestedTree, IsRefusedFrom513ElementsOn)
{
    std::string xml = "as it was";
    for (const std::size_t levels : {512u, 513u, 1000u, 100000u})
        for (const int format : {1, 2})
            EXPECT_VELA_ERROR(vela_export_xml(xml, tree(levels), format), -1,
                              "Property tree nested deeper than 512 levels!");
    EXPECT_VELA_ERROR(vela_export_xml(xml, tree(511), 1), -1, "Property tree nested deeper than 512 levels!");
    EXPECT_EQ(xml, "as it was");
}

TEST(NestedStringArray, CountsItsStringsAsALevel)
{
    VProp tree(xml_test::array_of<VPropstring>({L"a"}));
    deepen(tree, 510, Levels::structs);
    EXPECT_EQ(imported(exported(tree, 2)), tree);
    prop_test::wrap(tree, Levels::structs, false);
    std::string xml;
    EXPECT_VELA_ERROR(vela_export_xml(xml, tree, 2), -1, "Property tree nested deeper than 512 levels!");
}

TEST(NestedComplex, OfTheOlderFormIsReadAtAnyPlace)
{
    // Each part is an element of type "complex" again: no plain number, but no endless walk either.
    std::string xml = "<p type=\"double\">1</p>";
    for (int level = 0; level < 8; ++level)
        xml = "<p type=\"complex\">" + xml + xml + "</p>";
    xml.insert(2, " vprop_version=\"1\"");
    VProp prop;
    const std::string report = import_failure(xml, prop);
    EXPECT_NE(report.find("Invalid type in 'complex' element!"), std::string::npos) << report;
}

}
