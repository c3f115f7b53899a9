// Global locales with other digits, signs and characters change nothing.
#include "propsxml/xml_check.h"

#include <clocale>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

namespace {

using xml_test::array_of;
using xml_test::exported;
using xml_test::imported;

/// As in many countries: a comma before the fraction, a point between thousands; and other words for booleans.
class OtherNumbers : public std::numpunct<char>
{
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
    std::string do_truename() const override { return "wahr"; }
    std::string do_falsename() const override { return "falsch"; }
};

/// Digits and letters are no longer what they were.
class OtherCharacters : public std::ctype<char>
{
public:
    OtherCharacters() : std::ctype<char>(table()) {}

private:
    static const mask* table()
    {
        static mask rows[table_size];
        for (std::size_t i = 0; i < table_size; ++i)
            rows[i] = space;
        return rows;
    }
};

class WithOtherGlobalLocale : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        c_before = std::setlocale(LC_ALL, nullptr);
        for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) // where there is one
            if (std::setlocale(LC_ALL, name) != nullptr)
                break;
        std::locale other(std::locale::classic(), new OtherNumbers);
        if (GetParam())
            other = std::locale(other, new OtherCharacters);
        before = std::locale::global(other);
    }
    void TearDown() override
    {
        std::locale::global(before);
        std::setlocale(LC_ALL, c_before.c_str());
    }

private:
    std::locale before;
    std::string c_before;
};
INSTANTIATE_TEST_SUITE_P(All, WithOtherGlobalLocale, testing::Bool());

VProp sample_tree()
{
    VProp tree;
    tree["real"] = 1234567.125;
    tree["single"] = -0.1f;
    tree["whole"] = 1234567;
    tree["huge"] = 1e300;
    tree["flag"] = true;
    tree["flags"] = array_of<bool>({true, false});
    tree["bytes"] = array_of<unsigned char>({200, 0});
    tree["complex"] = array_of<std::complex<double>>({{1234.5, -0.25}, {0, 1e6}});
    tree["numbers"].ensure_array<int>(1200)[0] = 1000000;
    tree["numbers"].get_arr(true)->userbits = 1234567890;
    tree["text"] = L"1.5 \x00e4\x00a0 1,5";
    tree["cells{1100}"] = 1;
    return tree;
}

TEST_P(WithOtherGlobalLocale, TheFacetIsInPlace)
{
    std::ostringstream out;
    out << 1234.5;
    ASSERT_EQ(out.str(), "1.234,5");
}

TEST_P(WithOtherGlobalLocale, DocumentsAreTheSame)
{
    const std::locale other = std::locale::global(std::locale::classic());
    const std::string native = exported(sample_tree(), 2);
    const std::string wrapped = exported(sample_tree(), 1);
    std::locale::global(other);
    EXPECT_EQ(exported(sample_tree(), 2), native);
    EXPECT_EQ(exported(sample_tree(), 1), wrapped);
    EXPECT_NE(native.find(">1234567.125<"), std::string::npos) << native.substr(0, 300);
    EXPECT_NE(native.find("size=\"1 1200\""), std::string::npos);
}

TEST_P(WithOtherGlobalLocale, DocumentsAreReadTheSame)
{
    for (const int form : {1, 2})
        EXPECT_TRUE(imported(exported(sample_tree(), form)) == sample_tree());
    EXPECT_EQ(imported(xml_test::native("type=\"double\"", "1,5")), VProp(1.0));
    EXPECT_EQ(imported(xml_test::native("type=\"int32\" size=\"1 2\"", "1 2")), VProp(array_of<int>({1, 2})));
}

TEST_P(WithOtherGlobalLocale, TextsOfValuesAreTheSame)
{
    EXPECT_EQ(vela_val2string(VProp(1234567.5)), "1234567.5");
    EXPECT_EQ(vela_val2string(VProp(1234567)), "1234567");
    EXPECT_EQ(vela_val2string(VProp(true)), "1");
    EXPECT_EQ(vela_val2string(VProp(std::complex<float>(1.5f, 1000))), "(1.5,1000)");
    EXPECT_EQ(vela_string2val("1234567.5", vela_dt_double), VProp(1234567.5));
    EXPECT_EQ(vela_string2val("1.234,5", vela_dt_double), VProp(1.234));
    EXPECT_EQ(vela_string2val("1.234", vela_dt_int32), VProp(1));
    EXPECT_EQ(vela_string2val("1", vela_dt_logical), VProp(true));
    EXPECT_EQ(vela_string2val("wahr", vela_dt_logical), VProp(false));
    EXPECT_EQ(vela_string2val("(1,5)", vela_dt_double | vela_dt_complex), VProp(std::complex<double>(1, 5)));
    EXPECT_EQ(vela_string2val("-Inf", vela_dt_single), VProp(-std::numeric_limits<float>::infinity()));
}

TEST_P(WithOtherGlobalLocale, FailuresAreTheSame)
{
    VProp prop;
    xml_test::expect_failure_at(xml_test::native("type=\"?\"", ""), "sources/propsxml", "VPropXmlParser::import_xml",
                                "Unknown type '?' in xml string!", "root");
}

}
