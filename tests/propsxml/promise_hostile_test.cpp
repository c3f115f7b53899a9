// Elements that promise more than they bring.
#include "propsxml/xml_check.h"
#include "support/allocation_watch.h"

#include <string>

namespace {

using xml_test::expect_failure_at;
using xml_test::import_failure;
using xml_test::imported;
using xml_test::native;

constexpr std::size_t believed = 65536;
constexpr std::size_t believed_together = 8388608;

const char* const huge_sizes[] = {"18446744073709551615 1",
                                  "18446744073709551615",
                                  "4294967296 4294967296",
                                  "9223372036854775808 2",
                                  "3 6148914691236517206",
                                  "1000000000 1",
                                  "1 70000000",
                                  "65536 65536 65536 65536",
                                  "-1 1",
                                  "1 18446744073709551615 1",
                                  "2 2 2 2 4611686018427387905",
                                  "1000000000000 1"};

/// `statement` takes no more than a few times the text.
template <class Statement>
void expect_little_memory(Statement statement)
{
    const vela_test::AllocationWatch watch;
    statement();
    EXPECT_LT(watch.peak_extra_bytes(), 1000000u);
}

TEST(PromisedSize, OfNumbersTakesNoMemory)
{
    for (const char* size : huge_sizes)
        for (const char* type : {"uint8", "int32", "double", "logical", "cplx_double", "cplx_int8"})
            for (const char* text : {"", "1", "1 1 1", "(1,2) (3,4)"})
                expect_little_memory(
                    [&]
                    {
                        xml_test::expect_invalid_size_at(
                            native("type=\"" + std::string(type) + "\" size=\"" + size + "\"", text), "root");
                    });
}

TEST(PromisedSize, OfCellsAndStringArraysTakesNoMemory)
{
    for (const char* size : huge_sizes)
    {
        const std::string attribute = " size=\"" + std::string(size) + "\"";
        expect_little_memory(
            [&]
            {
                xml_test::expect_invalid_size_at(native("type=\"cell\"" + attribute, ""), "root");
                xml_test::expect_invalid_size_at(native("type=\"cell\"" + attribute, "<i type=\"int8\">1</i>"),
                                                 "root.i");
                xml_test::expect_invalid_size_at(native("type=\"cell\" userbits=\"1\"" + attribute, ""), "root");
                xml_test::expect_invalid_size_at(
                    native("type=\"cell\" ischar=\"1\"" + attribute, "<i size=\"1 1\">1</i>"), "root");
            });
    }
}

void expect_too_much(const std::string& xml)
{
    SCOPED_TRACE(xml.substr(0, 500));
    VProp prop;
    const std::string report = import_failure(xml, prop);
    EXPECT_NE(report.find(":\n    Invalid size set!\nLocation:\n"), std::string::npos) << report;
}

TEST(PromisedSize, OfStringsTakesNoMemory)
{
    for (const char* size : huge_sizes)
        for (const char* text : {"", "some text"})
        {
            const std::string attribute = "size=\"" + std::string(size) + "\"";
            expect_little_memory([&] { expect_too_much(native("type=\"char\" " + attribute, text)); });
            expect_little_memory(
                [&]
                { expect_too_much(native("type=\"cell\" userbits=\"1\"", "<i " + attribute + ">" + text + "</i>")); });
        }
}

TEST(PromisedSize, OfStructArraysTakesNoMemory)
{
    for (const char* size : huge_sizes)
    {
        const std::string attributes = "type=\"struct\" size=\"" + std::string(size) + "\"";
        expect_little_memory([&] { expect_too_much(native(attributes, "")); });
        expect_little_memory(
            [&]
            {
                expect_failure_at(native(attributes, "<m idx=\"1\" type=\"int8\">1</m>"), "sources/propsxml",
                                  "VPropXmlParser::import_xml", "Invalid struct array!", "root");
            });
    }
}

/// A document with `size` in place, which does not change its length.
std::string with_size(const std::string& attributes, std::size_t size)
{
    std::string digits = std::to_string(size);
    digits.insert(0, 20 - digits.size(), '0');
    return native(attributes + " size=\"1 " + digits + "\"", "");
}

TEST(PromisedSize, OfAStringIsBelievedTo65536BeyondTheDocument)
{
    const std::size_t length = with_size("type=\"char\"", 0).size();
    const VProp prop = imported(with_size("type=\"char\"", length + believed));
    EXPECT_EQ(prop.get<VPropstring>().size(), length + believed);
    expect_too_much(with_size("type=\"char\"", length + believed + 1));
}

TEST(PromisedSize, OfStructsWithoutMembersIsBelievedTo65536BeyondTheDocument)
{
    const std::size_t length = with_size("type=\"struct\"", 0).size();
    const VProp prop = imported(with_size("type=\"struct\"", length + believed));
    EXPECT_EQ(prop.get<VProparray<VPropstruct>>().count(), length + believed);
    expect_too_much(with_size("type=\"struct\"", length + believed + 1));
}

/// So many strings of `believed` NULs, and nothing else.
std::string strings_of_nuls(std::size_t count)
{
    std::string content;
    for (std::size_t i = 0; i < count; ++i)
        content += "<i size=\"1 65536\"/>";
    return native("type=\"cell\" userbits=\"1\" size=\"1 " + std::to_string(count) + "\"", content);
}

TEST(PromisedSizes, AreBelievedTogetherTo8388608BeyondTheDocument)
{
    const std::size_t count = believed_together / believed;
    EXPECT_EQ(imported(strings_of_nuls(count)).get<VProparray<VPropstring>>().count(), count);
    expect_too_much(strings_of_nuls(count + 1));
    expect_too_much(strings_of_nuls(10 * count));
}

TEST(PromisedSizes, StartFromNothingInTheNextDocument)
{
    const std::string xml = strings_of_nuls(believed_together / believed);
    for (int i = 0; i < 3; ++i)
        EXPECT_NO_THROW(imported(xml));
}

TEST(PromisedSizes, OfManyElementsDoNotAddUpToMuchMemory)
{
    // 30000 elements of 20 bytes each that promise 65536 wide characters: 7.9 GB if all were believed.
    std::string content;
    for (int i = 0; i < 30000; ++i)
        content += "<i size=\"1 65536\"/>";
    const std::string xml = native("type=\"cell\" userbits=\"1\" size=\"1 30000\"", content);
    const vela_test::AllocationWatch watch;
    expect_too_much(xml);
    EXPECT_LT(watch.peak_extra_bytes(), 512u << 20);
}

TEST(PromisedSizes, OfMembersThatAreOverwrittenCountEachTime)
{
    std::string content;
    for (int i = 0; i < 5000; ++i)
        content += "<a type=\"char\" size=\"1 65536\"/>";
    expect_too_much(native("type=\"struct\"", content));
}

TEST(BroughtText, IsBelievedAtAnyLength)
{
    const std::string text(3000000, 'x');
    const VProp prop = imported(native("type=\"char\" size=\"1 3000000\"", text));
    EXPECT_EQ(prop.get<VPropstring>().size(), 3000000u);
    std::string numbers;
    for (int i = 0; i < 500000; ++i)
        numbers += "1 ";
    EXPECT_EQ(imported(native("type=\"uint8\" size=\"500 1000\"", numbers)).get_arr(true)->count(), 500000u);
}

TEST(UnknownNumbers, InAttributesDoNotHarm)
{
    for (const char* size : {"x", "-", "1 x", " ", "1,1", "0x10", "1e5", "99999999999999999999999999", "+", "(1,1)",
                             "NaN", "1 99999999999999999999999999 1", "1  1", "1\t1"})
        for (const char* type : {"char", "int32", "double", "cell", "struct", "complex", "logical"})
            for (const char* other : {"", "userbits=\"x\"", "userbits=\"-1\"", "idx=\"x\"", "isarr=\"x\"",
                                      "isempty=\"x\"", "ischar=\"x\"", "userbits=\"99999999999999999999999\""})
            {
                VProp prop;
                expect_little_memory(
                    [&]
                    {
                        try
                        {
                            vela_import_xml(
                                native("type=\"" + std::string(type) + "\" size=\"" + size + "\" " + other, "1"), prop,
                                0);
                        }
                        catch (const VelaError& error)
                        {
                            EXPECT_STREQ(error.get_func(), "vela_import_xml");
                        }
                    });
            }
}

}
