#include "ome/record_tables.h"

#include <Json/Value.h>
#include <Ome/enums.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace {

using vela_test::Check;
using vela_test::enumeration_texts;

template <class Enumeration>
std::int32_t number_of(const std::string& text)
{
    Enumeration result{};
    Ome::get_enumeration(text, result);
    return static_cast<std::int32_t>(result);
}

template <class Enumeration>
std::string text_of(std::int32_t number)
{
    return Ome::get_enumeration_text(static_cast<Enumeration>(number));
}

constexpr std::int32_t all_bits_set = -1;
constexpr std::int32_t outside[] = {
    -1, -2, 20, 255, 256, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};

template <class Enumeration>
void expect_rows(Check check, std::size_t count)
{
    static_assert(std::is_same_v<std::underlying_type_t<Enumeration>, std::int32_t>);
    const auto& texts = enumeration_texts(check);
    ASSERT_EQ(texts.size(), count);
    for (std::int32_t row = 0; row < static_cast<std::int32_t>(count); ++row)
    {
        const std::string& text = texts[static_cast<std::size_t>(row)];
        EXPECT_EQ(text_of<Enumeration>(row), text);
        EXPECT_EQ(number_of<Enumeration>(text), row) << text;
        const Json::Value value = static_cast<Enumeration>(row);
        EXPECT_TREE(value, text);
    }
}

template <class Enumeration>
void expect_unknown(Check check)
{
    const auto& texts = enumeration_texts(check);
    for (const std::string& text : texts)
        for (const std::string& near :
             {text + " ", " " + text, text + text, text + std::string(1, '\0'), text.substr(0, text.size() / 2)})
            EXPECT_EQ(number_of<Enumeration>(near), all_bits_set) << near;
    for (const char* const text : {"", "0", "-1", "other", "OTHER", "xyzct", "Uint8", "unknown"})
        EXPECT_EQ(number_of<Enumeration>(text), all_bits_set) << text;
    EXPECT_EQ(text_of<Enumeration>(static_cast<std::int32_t>(texts.size())), "");
    for (const std::int32_t number : outside)
        EXPECT_EQ(text_of<Enumeration>(number), "") << number;
}

TEST(OmeEnumerations, EveryTypeHasItsRow)
{
    expect_rows<Ome::Type>(Check::pixel_type, 11);
}

TEST(OmeEnumerations, EveryDimensionOrderHasItsRow)
{
    expect_rows<Ome::DimensionOrder>(Check::dimension_order, 6);
}

TEST(OmeEnumerations, EveryIlluminationTypeHasItsRow)
{
    expect_rows<Ome::IlluminationType>(Check::illumination_type, 5);
}

TEST(OmeEnumerations, EveryAcquisitionModeHasItsRow)
{
    expect_rows<Ome::AcquisitionMode>(Check::acquisition_mode, 20);
}

TEST(OmeEnumerations, EveryContrastMethodHasItsRow)
{
    expect_rows<Ome::ContrastMethod>(Check::contrast_method, 9);
}

TEST(OmeEnumerations, UnknownTextHasAllBitsSetAndUnknownNumbersHaveNoText)
{
    expect_unknown<Ome::Type>(Check::pixel_type);
    expect_unknown<Ome::DimensionOrder>(Check::dimension_order);
    expect_unknown<Ome::IlluminationType>(Check::illumination_type);
    expect_unknown<Ome::AcquisitionMode>(Check::acquisition_mode);
    expect_unknown<Ome::ContrastMethod>(Check::contrast_method);
}

TEST(OmeEnumerations, NamesStandForTheTextsOfTheirRows)
{
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::Type::bit), "bit");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::Type::uint16), "uint16");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::Type::float32), "float");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::Type::float64), "double");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::Type::complex64), "complex");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::Type::complex128), "double-complex");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::DimensionOrder::XYZCT), "XYZCT");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::DimensionOrder::XYZTC), "XYZTC");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::DimensionOrder::XYCTZ), "XYCTZ");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::DimensionOrder::XYCZT), "XYCZT");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::DimensionOrder::XYTCZ), "XYTCZ");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::DimensionOrder::XYTZC), "XYTZC");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::AcquisitionMode::STED), "STED");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::AcquisitionMode::Other), "Other");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::ContrastMethod::Fluorescence), "Fluorescence");
    EXPECT_STREQ(Ome::get_enumeration_text(Ome::IlluminationType::Oblique), "Oblique");
}

} // namespace
