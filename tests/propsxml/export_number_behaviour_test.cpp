// How numbers are written: the text of every numeric type, alone and in arrays, and the attributes around it.
#include "props/held_types.h"
#include "propsxml/number_types.h"
#include "propsxml/xml_check.h"

#include <complex>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using prop_test::Held;
using prop_test::Sample;
using xml_test::array_of;
using xml_test::exported;
using xml_test::NumberTypes;

/// What Sample<T>::one() and other() look like, written out once more.
template <class T>
struct Text
{
    static std::string one() { return "65"; }
    static std::string other() { return "66"; }
};
template <>
struct Text<bool>
{
    static std::string one() { return "1"; }
    static std::string other() { return "0"; }
};
template <class T>
struct Text<std::complex<T>>
{
    static std::string one() { return "(65,1)"; }
    static std::string other() { return "(65,2)"; }
};

template <class T>
class ExportOfEachNumberType : public testing::Test
{
};
TYPED_TEST_SUITE(ExportOfEachNumberType, NumberTypes);

TYPED_TEST(ExportOfEachNumberType, WritesAScalarWithIdxTypeSizeAndVersionInThisOrder)
{
    EXPECT_EQ(exported(VProp(Sample<TypeParam>::one()), 2), "<root idx=\"1\" type=\"" + Held<TypeParam>::name() +
                                                                "\" size=\"1 1\" vprop_version=\"1\">" +
                                                                Text<TypeParam>::one() + "</root>\n");
}

TYPED_TEST(ExportOfEachNumberType, WritesAnArrayWithItsUserbitsBeforeTheType)
{
    VProparray<TypeParam> array;
    array.push_back(Sample<TypeParam>::one());
    array.push_back(Sample<TypeParam>::other());
    array.push_back(Sample<TypeParam>::one());
    EXPECT_EQ(exported(VProp(array), 2), "<root idx=\"1\" userbits=\"0\" type=\"" + Held<TypeParam>::name() +
                                             "\" size=\"1 3\" vprop_version=\"1\">" + Text<TypeParam>::one() + " " +
                                             Text<TypeParam>::other() + " " + Text<TypeParam>::one() + "</root>\n");
}

TYPED_TEST(ExportOfEachNumberType, MarksAnArrayOfOneElementWithIsarrBeforeUserbits)
{
    VProparray<TypeParam> array;
    array.push_back(Sample<TypeParam>::other());
    EXPECT_EQ(exported(VProp(array), 2), "<root idx=\"1\" isarr=\"1\" userbits=\"0\" type=\"" +
                                             Held<TypeParam>::name() + "\" size=\"1 1\" vprop_version=\"1\">" +
                                             Text<TypeParam>::other() + "</root>\n");
}

TYPED_TEST(ExportOfEachNumberType, WritesAnArrayWithoutElementsWithSizeZero)
{
    EXPECT_EQ(exported(VProp(VProparray<TypeParam>()), 2), "<root idx=\"1\" userbits=\"0\" type=\"" +
                                                               Held<TypeParam>::name() +
                                                               "\" size=\"0 0\" vprop_version=\"1\"></root>\n");
}

TYPED_TEST(ExportOfEachNumberType, GivesTheBareTextInFormat3)
{
    EXPECT_EQ(exported(VProp(Sample<TypeParam>::one()), 3), Text<TypeParam>::one());
    VProparray<TypeParam> array;
    array.push_back(Sample<TypeParam>::one());
    array.push_back(Sample<TypeParam>::other());
    EXPECT_EQ(exported(VProp(array), 3), Text<TypeParam>::one() + " " + Text<TypeParam>::other());
}

template <class T>
std::string text_of(T value)
{
    const std::string text = vela_val2string(VProp(value));
    EXPECT_EQ(exported(VProp(value), 3), text);
    return text;
}

template <class T>
void expect_limits(const std::string& least, const std::string& greatest)
{
    EXPECT_EQ(text_of(std::numeric_limits<T>::min()), least);
    EXPECT_EQ(text_of(std::numeric_limits<T>::max()), greatest);
    EXPECT_EQ(text_of(std::complex<T>(std::numeric_limits<T>::min(), std::numeric_limits<T>::max())),
              "(" + least + "," + greatest + ")");
    EXPECT_EQ(text_of(T(0)), "0");
}

TEST(ExportOfIntegers, ReachesTheLimitsOfEachType)
{
    expect_limits<unsigned char>("0", "255");
    expect_limits<char>("-128", "127");
    expect_limits<unsigned short>("0", "65535");
    expect_limits<short>("-32768", "32767");
    expect_limits<unsigned int>("0", "4294967295");
    expect_limits<int>("-2147483648", "2147483647");
    expect_limits<std::uint64_t>("0", "18446744073709551615");
    expect_limits<std::int64_t>("-9223372036854775808", "9223372036854775807");
}

TEST(ExportOfIntegers, WritesOneByteTypesAsNumbersNeverAsCharacters)
{
    for (int number = 0; number < 256; ++number)
        EXPECT_EQ(text_of(static_cast<unsigned char>(number)), std::to_string(number));
    for (int number = -128; number < 128; ++number)
    {
        EXPECT_EQ(text_of(static_cast<char>(number)), std::to_string(number));
        EXPECT_EQ(text_of(std::complex<char>(static_cast<char>(number), static_cast<char>(-1 - number))),
                  "(" + std::to_string(number) + "," + std::to_string(-1 - number) + ")");
    }
}

TEST(ExportOfFloats, UsesTwentySignificantDigits)
{
    EXPECT_EQ(text_of(1.5), "1.5");
    EXPECT_EQ(text_of(0.1), "0.10000000000000000555");
    EXPECT_EQ(text_of(0.1f), "0.10000000149011611938");
    EXPECT_EQ(text_of(1e20), "1e+20");
    EXPECT_EQ(text_of(1e19), "10000000000000000000");
    EXPECT_EQ(text_of(1e-5), "1.0000000000000000818e-05");
    EXPECT_EQ(text_of(0.0001), "0.00010000000000000000479");
    EXPECT_EQ(text_of(-0.0), "-0");
    EXPECT_EQ(text_of(-0.0f), "-0");
    EXPECT_EQ(text_of(std::numeric_limits<double>::max()), "1.7976931348623157081e+308");
    EXPECT_EQ(text_of(std::numeric_limits<double>::denorm_min()), "4.9406564584124654418e-324");
    EXPECT_EQ(text_of(std::numeric_limits<float>::max()), "3.4028234663852885981e+38");
    EXPECT_EQ(text_of(std::numeric_limits<float>::denorm_min()), "1.4012984643248170709e-45");
}

template <class T>
void expect_words_for_what_is_not_finite()
{
    const T infinity = std::numeric_limits<T>::infinity();
    const T nan = std::numeric_limits<T>::quiet_NaN();
    EXPECT_EQ(text_of(infinity), "Inf");
    EXPECT_EQ(text_of(-infinity), "-Inf");
    EXPECT_EQ(text_of(nan), "NaN");
    EXPECT_EQ(text_of(-nan), "NaN");
    EXPECT_EQ(text_of(std::complex<T>(-infinity, nan)), "(-Inf,NaN)");
    EXPECT_EQ(text_of(std::complex<T>(T(0.5), infinity)), "(0.5,Inf)");
    EXPECT_EQ(vela_val2string(VProp(array_of<T>({infinity, T(-1), nan, -infinity}))), "Inf -1 NaN -Inf");
}

TEST(ExportOfFloats, WritesWordsForWhatIsNotFinite)
{
    expect_words_for_what_is_not_finite<float>();
    expect_words_for_what_is_not_finite<double>();
    EXPECT_EQ(exported(VProp(std::numeric_limits<float>::infinity()), 2),
              "<root idx=\"1\" type=\"single\" size=\"1 1\" vprop_version=\"1\">Inf</root>\n");
}

TEST(ExportOfNumericArrays, WritesElementsInColumnMajorOrder)
{
    VProp matrix;
    auto& array = matrix.ensure_array<int>(0);
    for (std::size_t row = 0; row < 2; ++row)
        for (std::size_t column = 0; column < 3; ++column)
        {
            if (array.count() == 0)
                array.set_size(2, 3, VProparrayBase::absent, VProparrayBase::absent, VProparrayBase::set_reset);
            array.at({row, column}, false) = static_cast<int>(10 * row + column);
        }
    EXPECT_EQ(exported(matrix, 2), "<root idx=\"1\" userbits=\"0\" type=\"int32\" size=\"2 3\" vprop_version=\"1\">"
                                   "0 10 1 11 2 12</root>\n");
}

TEST(ExportOfNumericArrays, WritesSizesOfAnyRank)
{
    const auto attributes = [](const std::vector<std::size_t>& sizes, std::size_t count)
    {
        VProp prop;
        prop.ensure_array<short>(count).set_size(sizes, VProparrayBase::set_strict);
        const std::string xml = exported(prop, 2);
        const std::size_t begin = xml.find(" idx");
        return xml.substr(begin, xml.find(" vprop_version") - begin);
    };
    EXPECT_EQ(attributes({2}, 2), " idx=\"1\" userbits=\"0\" type=\"int16\" size=\"2\"");
    EXPECT_EQ(attributes({1}, 1), " idx=\"1\" isarr=\"1\" userbits=\"0\" type=\"int16\" size=\"1\"");
    EXPECT_EQ(attributes({3, 1}, 3), " idx=\"1\" userbits=\"0\" type=\"int16\" size=\"3 1\"");
    EXPECT_EQ(attributes({2, 1, 3}, 6), " idx=\"1\" userbits=\"0\" type=\"int16\" size=\"2 1 3\"");
    EXPECT_EQ(attributes({1, 1, 1}, 1), " idx=\"1\" isarr=\"1\" userbits=\"0\" type=\"int16\" size=\"1 1 1\"");
    EXPECT_EQ(attributes({2, 2, 1, 2}, 8), " idx=\"1\" userbits=\"0\" type=\"int16\" size=\"2 2 1 2\"");
    EXPECT_EQ(attributes({0, 3}, 0), " idx=\"1\" userbits=\"0\" type=\"int16\" size=\"0 3\"");
}

TEST(ExportOfNumericArrays, WritesTheSizeThatFitsTheElementsWhereTheStoredOneIsOutOfDate)
{
    VProp prop;
    auto& array = prop.ensure_array<int>(2);
    array.set_size({1, 2}, VProparrayBase::set_strict);
    array.push_back(7);
    EXPECT_EQ(exported(prop, 2), "<root idx=\"1\" userbits=\"0\" type=\"int32\" size=\"1 3\" vprop_version=\"1\">"
                                 "0 0 7</root>\n");
}

TEST(ExportOfNumericArrays, WritesUserbitsInDecimalWithAll64Bits)
{
    auto array = array_of<double>({1, 2});
    array.userbits = 18446744073709551615u;
    EXPECT_EQ(exported(VProp(array), 2), "<root idx=\"1\" userbits=\"18446744073709551615\" type=\"double\" "
                                         "size=\"1 2\" vprop_version=\"1\">1 2</root>\n");
    array.userbits = 6;
    EXPECT_EQ(exported(VProp(array), 2), "<root idx=\"1\" userbits=\"6\" type=\"double\" "
                                         "size=\"1 2\" vprop_version=\"1\">1 2</root>\n");
}

}
