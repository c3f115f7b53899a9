// The older form of complex values: an element of type "complex" with the two parts as its children.
#include "props/held_types.h"
#include "propsxml/xml_check.h"

#include <complex>
#include <cstdint>
#include <string>

namespace {

using prop_test::Held;
using xml_test::array_of;
using xml_test::expect_failure_at;
using xml_test::native;
using xml_test::read;
using xml_test::sizes_of;

using PartTypes = testing::Types<unsigned char, char, unsigned short, short, unsigned int, int, float, double,
                                 std::uint64_t, std::int64_t>;

template <class T>
class OlderComplex : public testing::Test
{
protected:
    static std::string part(const std::string& name, const std::string& attributes, const std::string& text)
    {
        return "<" + name + " type=\"" + Held<T>::name() + "\" " + attributes + ">" + text + "</" + name + ">";
    }
};
TYPED_TEST_SUITE(OlderComplex, PartTypes);

TYPED_TEST(OlderComplex, IsReadFromTwoScalars)
{
    const VProp prop = read("type=\"complex\"", this->part("re", "size=\"1 1\"", "3") + this->part("im", "", "4"));
    EXPECT_EQ(prop, VProp(std::complex<TypeParam>(TypeParam(3), TypeParam(4))));
}

TYPED_TEST(OlderComplex, IsReadFromTwoArraysWithTheShapeOfTheRealOne)
{
    const VProp prop = read("type=\"complex\" size=\"7 7\"",
                            this->part("re", "size=\"2 2\"", "1 2 3 4") + this->part("im", "size=\"1 4\"", "5 6 7 8"));
    using Complex = std::complex<TypeParam>;
    EXPECT_EQ(prop, VProp(array_of<Complex>({Complex(1, 5), Complex(2, 6), Complex(3, 7), Complex(4, 8)})));
    EXPECT_EQ(sizes_of(prop), (std::vector<std::size_t>{2, 2}));
}

TYPED_TEST(OlderComplex, IsReadFromTwoArraysOfOneOrNoElement)
{
    using Complex = std::complex<TypeParam>;
    EXPECT_EQ(read("type=\"complex\"", this->part("re", "isarr=\"1\"", "1") + this->part("im", "isarr=\"1\"", "2")),
              VProp(array_of<Complex>({Complex(1, 2)})));
    EXPECT_EQ(read("type=\"complex\"", this->part("re", "size=\"0 0\"", "") + this->part("im", "size=\"0 0\"", "")),
              VProp(VProparray<Complex>()));
}

TYPED_TEST(OlderComplex, TakesTheFirstTwoChildrenWhateverTheirNames)
{
    EXPECT_EQ(read("type=\"complex\"", "text" + this->part("im", "", "3") + "<!-- c -->" + this->part("re", "", "4") +
                                           "<never read=\"1\"/>"),
              VProp(std::complex<TypeParam>(TypeParam(3), TypeParam(4))));
}

constexpr const char* function = "VPropXmlParser::import_complex";
constexpr const char* folder = "sources/propsxml";

TEST(OlderComplexFailure, OfFewerThanTwoChildren)
{
    for (const char* content : {"", "text", "<re type=\"double\">1</re>"})
        expect_failure_at(native("type=\"complex\"", content), folder, function, "Malformed 'complex' element!",
                          "root");
}

TEST(OlderComplexFailure, OfPartsOfDifferentTypes)
{
    const char* const message = "Real and imaginary part have different types in 'complex' element!";
    expect_failure_at(native("type=\"complex\"", "<re type=\"double\">1</re><im type=\"single\">1</im>"), folder,
                      function, message, "root.im");
    expect_failure_at(native("type=\"complex\"", "<re type=\"double\">1</re><im type=\"double\" isarr=\"1\">1</im>"),
                      folder, function, message, "root.im");
    expect_failure_at(native("type=\"complex\"", "<re type=\"double\">1</re><im type=\"cell\" isempty=\"1\"></im>"),
                      folder, function, message, "root.im");
}

TEST(OlderComplexFailure, OfPartsThatAreNoPlainNumbers)
{
    const auto pair = [](const std::string& attributes, const std::string& content)
    {
        return native("type=\"complex\"",
                      "<re " + attributes + ">" + content + "</re><im " + attributes + ">" + content + "</im>");
    };
    for (const std::string& xml :
         {pair("type=\"logical\"", "1"), pair("type=\"logical\" size=\"1 2\"", "1 1"),
          pair("type=\"char\" size=\"1 1\"", "1"), pair("type=\"cell\" isempty=\"1\"", ""),
          pair("type=\"cell\" size=\"0 0\"", ""), pair("type=\"struct\"", ""), pair("type=\"cplx_double\"", "(1,2)"),
          pair("type=\"struct\" size=\"0 0\"", ""), pair("type=\"cplx_int8\" size=\"1 2\"", "(1,2) (1,2)"),
          pair("type=\"cell\" userbits=\"1\" size=\"0 0\"", "")})
        expect_failure_at(xml, folder, function, "Invalid type in 'complex' element!", "root.im");
}

TEST(OlderComplexFailure, OfPartsThatDifferInTheirCount)
{
    expect_failure_at(native("type=\"complex\"", "<re type=\"int8\" size=\"1 2\">1 2</re>"
                                                 "<im type=\"int8\" size=\"1 3\">1 2 3</im>"),
                      folder, "VPropXmlParser::convert_complex", "Malformed 'complex' element!", "root.im");
}

TEST(OlderComplexFailure, OfAPartNamesThatPart)
{
    xml_test::expect_invalid_size_at(native("type=\"struct\"", "<c type=\"complex\"><re type=\"int8\" size=\"1 2\">1"
                                                               "</re><im type=\"int8\" size=\"1 2\">1 2</im></c>"),
                                     "root.c.re");
}

TEST(OlderComplexElement, StandsAnywhereInATree)
{
    const std::string complex = " type=\"complex\"><a type=\"double\">1</a><b type=\"double\">2</b>";
    const VProp prop = read("type=\"struct\"", "<m" + complex + "</m><c type=\"cell\"><item" + complex +
                                                   "</item></c><n type=\"int8\">1</n>");
    VProp expected;
    expected["m"] = std::complex<double>(1, 2);
    expected["c{0}"] = std::complex<double>(1, 2);
    expected["n"] = char(1);
    EXPECT_EQ(prop, expected);
}

TEST(OlderComplexElement, ReplacesAScalarOfAnyTypeThatIsThere)
{
    VProp prop(L"text");
    vela_import_xml(native("type=\"complex\"", "<a type=\"double\">1</a><b type=\"double\">2</b>"), prop, 0);
    EXPECT_EQ(prop, VProp(std::complex<double>(1, 2)));
}

}
