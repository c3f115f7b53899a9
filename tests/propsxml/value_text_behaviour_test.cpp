// Single values as bare text, in both directions, without XML.
#include "props/held_types.h"
#include "propsxml/xml_check.h"

#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using prop_test::Held;
using prop_test::Sample;
using xml_test::array_of;

VProp value_of(std::string text, std::uint32_t type)
{
    const std::string before = text;
    VProp made = vela_string2val(text, static_cast<int>(type));
    EXPECT_EQ(text, before);
    return made;
}

template <class T>
T read_as(const std::string& text)
{
    const VProp made = value_of(text, Held<T>::id);
    EXPECT_EQ(static_cast<std::uint32_t>(made.get_id()), Held<T>::id);
    return made.get<T>();
}

TEST(ValueToString, JoinsElementsOfAnyShapeByOneBlank)
{
    VProp prop;
    auto& array = prop.ensure_array<int>(4);
    array.set_size({2, 2}, VProparrayBase::set_strict);
    array[1] = -5;
    EXPECT_EQ(vela_val2string(prop), "0 -5 0 0");
    EXPECT_EQ(vela_val2string(VProp(array_of<bool>({true, false, true}))), "1 0 1");
    EXPECT_EQ(vela_val2string(VProp(array_of<std::complex<float>>({{1.5f, -2}, {0, 1}}))), "(1.5,-2) (0,1)");
    EXPECT_EQ(vela_val2string(VProp(VProparray<double>())), "");
}

TEST(ValueToString, NeedsNoShapeThatFits)
{
    VProp prop;
    prop.ensure_array<int>(3).set_size({2, 2}, VProparrayBase::set_only);
    EXPECT_EQ(vela_val2string(prop), "0 0 0");
}

TEST(ValueToString, GivesStringsAsUtf8WithoutAnyEscape)
{
    EXPECT_EQ(vela_val2string(VProp(L"a<b> & \x20ac ")), "a<b> & \xE2\x82\xAC ");
    EXPECT_EQ(vela_val2string(VProp(L"")), "");
    EXPECT_EQ(vela_val2string(VProp(std::wstring(L"a\0b", 3))), std::string("a\0b", 3));
}

TEST(ValueToString, JoinsStringsOfAnArrayByABlank)
{
    EXPECT_EQ(vela_val2string(VProp(array_of<VPropstring>({L"a b", L"", L"\x00e4"}))), "a b  \xC3\xA4");
    EXPECT_EQ(vela_val2string(VProp(VProparray<VPropstring>())), "");
}

TEST(ValueToString, DoesNotMarkTheStringArray)
{
    const VProp prop(array_of<VPropstring>({L"x"}));
    vela_val2string(prop);
    EXPECT_EQ(prop.get_arr(true)->userbits, 0u);
}

TEST(ValueToString, RefusesAllElse)
{
    VProp cells;
    cells(0) = 1;
    VProp structs;
    structs.s(0)["a"] = 1;
    for (const VProp& prop : {VProp(), cells, structs, VProp(VPropstruct()), VProp(_s_vela_RGB(1, 2, 3))})
        EXPECT_VELA_ERROR_IN(vela_val2string(prop), "vela_val2string", "sources/propsxml", -1,
                             "Conversion of unknown type to string!");
}

TEST(StringToValue, TakesTheLimitsOfEachType)
{
    EXPECT_EQ(read_as<unsigned char>("255"), 255);
    EXPECT_EQ(read_as<char>("-128"), -128);
    EXPECT_EQ(read_as<unsigned short>("65535"), 65535);
    EXPECT_EQ(read_as<short>("-32768"), -32768);
    EXPECT_EQ(read_as<unsigned int>("4294967295"), 4294967295u);
    EXPECT_EQ(read_as<int>("-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(read_as<std::uint64_t>("18446744073709551615"), 18446744073709551615u);
    EXPECT_EQ(read_as<std::int64_t>("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(read_as<float>("3.4028234663852885981e+38"), std::numeric_limits<float>::max());
    EXPECT_EQ(read_as<double>("4.9406564584124654418e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_TRUE(read_as<bool>("1"));
    EXPECT_FALSE(read_as<bool>("0"));
}

TEST(StringToValue, ParsesOneByteIntegersAsIntAndNarrows)
{
    EXPECT_EQ(read_as<unsigned char>("300"), 44);
    EXPECT_EQ(read_as<unsigned char>("-1"), 255);
    EXPECT_EQ(read_as<char>("200"), -56);
    EXPECT_EQ(read_as<char>("7"), 7);
    EXPECT_EQ(read_as<std::complex<char>>("(200,-129)"), std::complex<char>(-56, 127));
    EXPECT_EQ(read_as<unsigned char>("2147483648"), 0); // not an int
}

TEST(StringToValue, IsZeroForWhatDoesNotParse)
{
    EXPECT_EQ(read_as<int>("garbage"), 0);
    EXPECT_EQ(read_as<int>(""), 0);
    EXPECT_EQ(read_as<int>("2147483648"), 0);
    EXPECT_EQ(read_as<unsigned short>("65536"), 0);
    EXPECT_EQ(read_as<short>("-32769"), 0);
    EXPECT_EQ(read_as<std::uint64_t>("18446744073709551616"), 0u);
    EXPECT_EQ(read_as<double>("1e400"), 0.0);
    EXPECT_EQ(read_as<double>("x"), 0.0);
    EXPECT_FALSE(read_as<bool>("2"));
    EXPECT_FALSE(read_as<bool>("true"));
}

TEST(StringToValue, IsZeroInBothPartsForAComplexNumberThatDoesNotParse)
{
    using Complex = std::complex<double>;
    for (const char* text : {"", "1", "(1,2", "(1", "(1;2)", "(1 2)", "1,2)", "(,2)", "(1,)", "(1,x)", "[1,2]", "()"})
        EXPECT_EQ(read_as<Complex>(text), Complex(0, 0)) << text;
    EXPECT_EQ(read_as<std::complex<int>>("(1,2.5)"), std::complex<int>(0, 0));
    EXPECT_EQ(read_as<std::complex<short>>("(1,70000)"), std::complex<short>(0, 0));
}

TEST(StringToValue, IgnoresWhatStandsBehindTheValue)
{
    EXPECT_EQ(read_as<int>("12abc"), 12);
    EXPECT_EQ(read_as<int>("1 2 3"), 1);
    EXPECT_EQ(read_as<int>("1.9"), 1);
    EXPECT_EQ(read_as<double>("1.5.2"), 1.5);
    EXPECT_EQ(read_as<double>("1,5"), 1.0);
    EXPECT_EQ(read_as<std::complex<int>>("(1,2)x"), std::complex<int>(1, 2));
}

TEST(StringToValue, KnowsThreeWordsForWhatIsNotFinite)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(read_as<double>("Inf"), infinity);
    EXPECT_EQ(read_as<double>("-Inf"), -infinity);
    EXPECT_TRUE(std::isnan(read_as<double>("NaN")));
    EXPECT_EQ(read_as<float>("Inf"), std::numeric_limits<float>::infinity());
    EXPECT_EQ(read_as<float>("-Inf"), -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(read_as<float>("NaN")));
    EXPECT_EQ(read_as<std::complex<double>>("(-Inf,Inf)"), std::complex<double>(-infinity, infinity));
    EXPECT_TRUE(std::isnan(read_as<std::complex<float>>("(NaN,1)").real()));
    EXPECT_EQ(read_as<double>("Infinity"), infinity); // the rest is not looked at
}

TEST(StringToValue, LeavesOtherWordsForWhatIsNotFiniteUnread)
{
    for (const char* text : {"inf", "INF", "nan", "NAN", "infinity", "+Inf", "-inf", "-NaN", "-In", "In", "I", "Na",
                             "1.#INF", "-1.#IND", "1e400", "-"})
    {
        const double read = read_as<double>(text);
        EXPECT_TRUE(read == 0.0 || std::abs(read) == 1.0) << text << " gave " << read;
        EXPECT_FALSE(std::isnan(read)) << text;
    }
    EXPECT_EQ(read_as<int>("Inf"), 0);
}

TEST(StringToValue, TakesAllOfTheTextAsAString)
{
    EXPECT_EQ(read_as<VPropstring>(" a  b "), L" a  b ");
    EXPECT_EQ(read_as<VPropstring>(""), L"");
    EXPECT_EQ(read_as<VPropstring>("\xE2\x82\xAC<&amp;>"), L"\x20ac<&amp;>");
    EXPECT_EQ(read_as<VPropstring>("\n\t"), L"\n\t");
    EXPECT_EQ(read_as<VPropstring>(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
}

TEST(StringToValue, RefusesEveryOtherType)
{
    std::vector<std::uint32_t> refused = {0,          0x200,      0x400, 0x800, 0x4000,     0x8000,    0x40010000,
                                          0x40004000, 0x40020000, 3,     0x21,  0xffffffff, 0x40000000};
    for (const prop_test::NamedValue& held : prop_test::one_of_each())
        refused.push_back(held.id | 0x80000000u);
    for (const std::uint32_t type : refused)
    {
        SCOPED_TRACE(type);
        EXPECT_VELA_ERROR_IN(vela_string2val("1", static_cast<int>(type)), "vela_string2val", "sources/propsxml", -1,
                             "Conversion of string to invalid type!");
    }
}

TEST(StringToValue, MakesTheTypeThatIsAskedFor)
{
    std::size_t count_readable = 0;
    for (const prop_test::NamedValue& held : prop_test::one_of_each())
    {
        const std::uint32_t kind = held.id & 0x3fffffffu;
        const bool is_scalar = (held.id & 0x80000000u) == 0;
        if (!is_scalar || kind == 0 || kind == 0x400 || kind == 0x8000)
            continue;
        EXPECT_EQ(static_cast<std::uint32_t>(value_of("garbage", held.id).get_id()), held.id) << held.name;
        ++count_readable;
    }
    EXPECT_EQ(count_readable, 22u); // 11 plain numbers, 10 complex ones, the string
}

}
