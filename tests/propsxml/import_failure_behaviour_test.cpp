// What an import that fails inside the tree says, and where it says that it happened.
#include "propsxml/xml_check.h"

#include <string>

namespace {

using xml_test::expect_failure_at;
using xml_test::expect_invalid_size_at;
using xml_test::import_failure;
using xml_test::native;

constexpr const char* folder = "sources/propsxml";
constexpr const char* function = "VPropXmlParser::import_xml";

void expect_invalid_struct_array(const std::string& attributes, const std::string& content, const std::string& location)
{
    expect_failure_at(native("type=\"struct\" " + attributes, content), folder, function, "Invalid struct array!",
                      location);
}

TEST(ImportFailure, OfAnUnknownTypeNamesIt)
{
    for (const char* type : {"", "none", "Double", " double", "double ", "double[]", "int", "char[]", "cplx_", "float"})
        expect_failure_at(native("type=\"" + std::string(type) + "\"", "1"), folder, function,
                          "Unknown type '" + std::string(type) + "' in xml string!", "root");
    expect_failure_at(native("size=\"1 1\"", "1"), folder, function, "Unknown type '' in xml string!", "root");
}

TEST(ImportFailure, OfAnUnknownTypeShowsATypeWithDirectivesAsItIs)
{
    expect_failure_at(native("type=\"%s%n%d\"", "1"), folder, function, "Unknown type '%s%n%d' in xml string!", "root");
}

TEST(ImportFailure, OfATypeThatNoValueHolds)
{
    VProp prop;
    EXPECT_THROW(vela_import_xml(native("type=\"cplx_logical\"", "(1,1)"), prop, 0), VelaError);
    EXPECT_THROW(vela_import_xml(native("type=\"cplx_logical\" size=\"1 2\"", "(1,1) (1,1)"), prop, 0), VelaError);
}

TEST(ImportFailure, OfAStructArrayWhoseChildrenCannotBeSharedOut)
{
    const std::string one = "<x idx=\"1\" type=\"int8\">1</x>";
    const std::string two = "<x idx=\"2\" type=\"int8\">1</x>";
    expect_invalid_struct_array("size=\"1 2\"", one, "root");
    expect_invalid_struct_array("size=\"1 2\"", one + two + two, "root");
    expect_invalid_struct_array("size=\"3 1\"", one + two, "root");
}

TEST(ImportFailure, OfAStructArrayWhoseChildrenHaveAnotherIdx)
{
    const std::string one = "<x idx=\"1\" type=\"int8\">1</x>";
    expect_invalid_struct_array("size=\"1 2\"", one + "<x idx=\"1\" type=\"int8\">1</x>", "root.x");
    expect_invalid_struct_array("size=\"1 2\"", one + "<x type=\"int8\">1</x>", "root.x");
    expect_invalid_struct_array("size=\"1 2\"", one + "<x idx=\"3\" type=\"int8\">1</x>", "root.x");
    expect_invalid_struct_array("size=\"1 2\"", "<x idx=\"2\" type=\"int8\">1</x>" + one, "root");
    expect_invalid_struct_array("size=\"1 1\" isarr=\"1\"", "<x idx=\"0\" type=\"int8\">1</x>", "root");
}

TEST(ImportFailure, OfAStructArrayWhoseLaterStructsHaveOtherNames)
{
    const std::string one = "<x idx=\"1\" type=\"int8\">1</x>";
    expect_invalid_struct_array("size=\"1 2\"", one + "<y idx=\"2\" type=\"int8\">1</y>", "root.x");
    expect_invalid_struct_array("size=\"1 2\"", one + "<X idx=\"2\" type=\"int8\">1</X>", "root.x");
}

TEST(ImportFailure, OfAStructArrayOfSizeZeroWithChildren)
{
    for (const char* size : {"0 0", "0 3", "0"})
        expect_invalid_struct_array("size=\"" + std::string(size) + "\"", "<x idx=\"1\" type=\"int8\">1</x>", "root");
}

TEST(ImportFailure, OfASizeThatDoesNotFit)
{
    expect_invalid_size_at(native("type=\"double\" size=\"2 3\"", "1 2 3 4 5"), "root");
    expect_invalid_size_at(native("type=\"logical\" size=\"1 2\"", "1"), "root");
    expect_invalid_size_at(native("type=\"cplx_int8\" size=\"1 2\"", "(1,2)(1,2)"), "root");
    expect_invalid_size_at(native("type=\"cell\" userbits=\"1\" size=\"1 1\"", "<i size=\"1 1\">1</i><i/>"), "root");
}

TEST(ImportFailure, OfAScalarWithoutText)
{
    for (const char* type : {"uint8", "int8", "uint16", "int16", "uint32", "int32", "single", "double", "uint64",
                             "int64", "logical", "cplx_uint8", "cplx_single", "cplx_int64"})
    {
        VProp prop;
        EXPECT_EQ(import_failure(native("type=\"" + std::string(type) + "\"", ""), prop),
                  "Text does not exists in the current element\nLocation:\nroot")
            << type;
        VProp with_child;
        EXPECT_EQ(import_failure(native("type=\"" + std::string(type) + "\"", "<child/>"), with_child),
                  "Text does not exists in the current element\nLocation:\nroot")
            << type;
    }
}

TEST(ImportFailure, OfAMemberWithANameThatNoPathHas)
{
    VProp prop;
    const std::string report = import_failure(native("type=\"struct\"", "<a:b type=\"int8\">1</a:b>"), prop);
    EXPECT_NE(report.find("): ERROR\n    in function '_s_split':\n    Error parsing prop path: 'a:b' is not a valid "
                          "name!\nLocation:\nroot"),
              std::string::npos)
        << report;
}

TEST(ImportFailure, NamesTheElementsThatLeadToIt)
{
    expect_failure_at(native("type=\"struct\"", "<a type=\"struct\"><b type=\"cell\" size=\"1 2\">"
                                                "<item type=\"int8\">1</item><here type=\"?\"/></b></a>"),
                      folder, function, "Unknown type '?' in xml string!", "root.a.b.here");
}

TEST(ImportFailure, NamesElementsOfTheWrapperToo)
{
    expect_failure_at("<LVData><Version>8</Version><top type=\"struct\"><m type=\"?\"/></top></LVData>", folder,
                      function, "Unknown type '?' in xml string!", "LVData.top.m");
}

TEST(ImportFailure, NamesTheElementThatWasReadLast)
{
    // The place is the element that the parser came to last, also where the check is one of its parent.
    expect_invalid_size_at(native("type=\"cell\" size=\"1 3\"", "<a type=\"int8\">1</a><b type=\"int8\">2</b>"),
                           "root.b");
    // Strings of an array are no elements that the parser comes to.
    expect_invalid_size_at(native("type=\"cell\" userbits=\"1\" size=\"1 3\"", "<a size=\"1 1\">1</a>"), "root");
}

}
