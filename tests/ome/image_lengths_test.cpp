#include "ome/record_fields.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>

namespace {

using vela_test::Image;
using vela_test::Value;

const Value null;
const char* const micrometre = "\xC2\xB5m";
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// An image of 4 x 8 x 16 (Z) x 5 (T) x 2 (C).
class OmeImageLengths : public testing::Test
{
protected:
    OmeImageLengths()
    {
        image.dimension_order = "XYZTC";
        image.set_sizes({4, 8, 16, 5, 2});
    }

    Value& pixel(const std::string& key) { return tree.at("").at("ome:Pixels").at(key); }

    void expect_size(const std::string& axis, const Value& size, const char* unit)
    {
        EXPECT_TREE(pixel("PhysicalSize" + axis), size);
        EXPECT_TREE(pixel("PhysicalSize" + axis + "Unit"), unit);
    }

    void expect_time(const Value& increment, const Value& unit)
    {
        EXPECT_TREE(pixel("TimeIncrement"), increment);
        EXPECT_TREE(pixel("TimeIncrementUnit"), unit);
    }

    void expect_refused(std::size_t d, double len)
    {
        const Value before = tree;
        EXPECT_BAD_CAST(image.set_len(d, len));
        EXPECT_TREE(tree, before);
    }

    void expect_unsupported(std::size_t d, double len)
    {
        const Value before = tree;
        EXPECT_THROW_TEXT(image.set_len(d, len), std::invalid_argument, "Unsupported physical dimension");
        EXPECT_TREE(tree, before);
    }

    Value tree;
    Image image{tree};
};

TEST_F(OmeImageLengths, AreDividedByTheSize)
{
    image.set_len(0, 10.0);
    image.set_len(1, 10.0);
    image.set_len(2, 10.0);
    expect_size("X", 2.5, micrometre);
    expect_size("Y", 1.25, micrometre);
    expect_size("Z", 0.625, micrometre);
    EXPECT_TREE(pixel("SizeX"), 4);
}

TEST_F(OmeImageLengths, OfXTouchNothingElse)
{
    Value expected = tree;
    expected.at("").at("ome:Pixels").at("PhysicalSizeX") = 2.5;
    expected.at("").at("ome:Pixels").at("PhysicalSizeXUnit") = micrometre;
    image.set_len(0, 10.0);
    EXPECT_TREE(tree, expected);
}

TEST_F(OmeImageLengths, OfOneHundredthIsInMetresAndOfTwoHundredthsInMicrometres)
{
    for (const std::size_t d : {std::size_t{0}, std::size_t{1}, std::size_t{2}})
    {
        const std::string axis(1, "XYZ"[d]);
        const double size = d == 0 ? 4 : d == 1 ? 8 : 16;
        image.set_len(d, 0.01);
        expect_size(axis, 0.01 / size, "m");
        image.set_len(d, 0.02);
        expect_size(axis, 0.02 / size, micrometre);
        image.set_len(d, 0.010000000000000002);
        expect_size(axis, 0.010000000000000002 / size, micrometre);
        image.set_len(d, 1e-7);
        expect_size(axis, 1e-7 / size, "m");
        image.set_len(d, 1.0000000000000002);
        expect_size(axis, 1.0000000000000002 / size, micrometre);
        image.set_len(d, infinity);
        expect_size(axis, infinity, micrometre);
    }
}

TEST_F(OmeImageLengths, OfOneGiveTheInteger1AndPixelWhateverTheSize)
{
    image.set_len(0, 10.0);
    image.set_len(0, 1.0);
    expect_size("X", 1, "pixel");
    image.set_len(1, 1.0);
    expect_size("Y", 1, "pixel");
    image.set_len(2, 1.0);
    expect_size("Z", 1, "pixel");
}

TEST_F(OmeImageLengths, OfZeroGiveTheInteger1AndPixelToo)
{
    image.set_len(0, 10.0);
    image.set_len(0, 0.0);
    expect_size("X", 1, "pixel");
    image.set_len(1, -0.0);
    expect_size("Y", 1, "pixel");
}

TEST_F(OmeImageLengths, OfZeroAndOneNeedNoSize)
{
    Value other_tree;
    Image other(other_tree);
    for (const std::size_t d : {std::size_t{0}, std::size_t{1}, std::size_t{2}})
    {
        other.set_len(d, 1.0);
        other.set_len(d, 0.0);
        EXPECT_BAD_CAST(other.set_len(d, 2.0));
    }
    EXPECT_TREE(other_tree.at("").at("ome:Pixels").at("PhysicalSizeZ"), 1);
    EXPECT_TREE(other_tree.at("").at("ome:Pixels").at("SizeZ"), null);
    other.set_len(3, 0.0);
    EXPECT_BAD_CAST(other.set_len(3, 2.0));
}

TEST_F(OmeImageLengths, BelowZeroOrNotANumberAreRefusedAndChangeNothing)
{
    image.set_len(0, 10.0);
    for (std::size_t d = 0; d < 4; ++d)
        for (const double len : {-1.0, -0.001, -infinity, nan})
            expect_refused(d, len);
    expect_refused(0, std::numeric_limits<double>::denorm_min());
}

TEST_F(OmeImageLengths, OfTimeAreInSeconds)
{
    image.set_len(3, 10.0);
    expect_time(2.0, "s");
    image.set_len(3, 1.0);
    expect_time(0.2, "s");
    image.set_len(3, 0.01);
    expect_time(0.01 / 5, "s");
    image.set_len(3, infinity);
    expect_time(infinity, "s");
}

TEST_F(OmeImageLengths, OfTimeThatAreZeroGiveNone)
{
    image.set_len(3, 10.0);
    image.set_len(3, 0.0);
    expect_time(null, null);
    image.set_len(3, 10.0);
    image.set_len(3, -0.0);
    expect_time(null, null);
}

TEST_F(OmeImageLengths, OfOnePointInTimeGiveNone)
{
    image.set_len(3, 10.0);
    image.set_sizes({4, 8, 16});
    expect_time(2.0, "s");
    image.set_len(3, 10.0);
    expect_time(null, null);
    image.set_len(3, -1.0);
    expect_time(null, null);
    image.set_len(3, nan);
    expect_time(null, null);
}

TEST_F(OmeImageLengths, OfTheChannelAxisRaise)
{
    for (const double len : {0.0, 1.0, 10.0, -1.0, nan})
        expect_unsupported(4, len);
}

TEST_F(OmeImageLengths, OfAnIndexAboveFourRaise)
{
    for (const std::size_t d : {std::size_t{5}, std::size_t{6}, std::size_t{255}, std::size_t{1} << 32,
                                (std::size_t{1} << 32) + 1, std::numeric_limits<std::size_t>::max()})
        for (const double len : {0.0, 1.0, 10.0})
            expect_unsupported(d, len);
}

TEST_F(OmeImageLengths, GoToTheAxisThatTheOrderNames)
{
    for (const std::string& order : vela_test::enumeration_texts(vela_test::Check::dimension_order))
    {
        SCOPED_TRACE(order);
        Value other_tree;
        Image other(other_tree);
        other.dimension_order = order;
        other.set_sizes({4, 8, 2, 5, 16});
        Value& pixels = other_tree.at("").at("ome:Pixels");
        for (std::size_t d = 2; d < 5; ++d)
        {
            const double size = d == 2 ? 2 : d == 3 ? 5 : 16;
            if (order[d] == 'C')
            {
                EXPECT_THROW_TEXT(other.set_len(d, 7.0), std::invalid_argument, "Unsupported physical dimension");
                continue;
            }
            other.set_len(d, 7.0);
            EXPECT_TREE(pixels.at(order[d] == 'Z' ? "PhysicalSizeZ" : "TimeIncrement"), 7.0 / size);
            EXPECT_TREE(pixels.at(order[d] == 'Z' ? "PhysicalSizeZUnit" : "TimeIncrementUnit"),
                        order[d] == 'Z' ? micrometre : "s");
        }
    }
}

TEST_F(OmeImageLengths, WithoutAnOrderGoByXYZTCAndTheSlotStays)
{
    for (const Value& order : {Value(), Value("ZYX"), Value("")})
    {
        pixel("DimensionOrder") = order;
        image.set_len(2, 8.0);
        expect_size("Z", 0.5, micrometre);
        image.set_len(3, 10.0);
        expect_time(2.0, "s");
        expect_unsupported(4, 10.0);
        image.set_len(2, 1.0);
        image.set_len(3, 0.0);
        EXPECT_TREE(pixel("DimensionOrder"), order);
    }
}

TEST_F(OmeImageLengths, OfAnOrderOfAnotherKindAreRefusedBeyondXAndY)
{
    pixel("DimensionOrder") = 3;
    image.set_len(0, 10.0);
    image.set_len(1, 10.0);
    expect_size("Y", 1.25, micrometre);
    for (const std::size_t d : {std::size_t{2}, std::size_t{3}, std::size_t{4}})
        expect_refused(d, 10.0);
}

TEST_F(OmeImageLengths, FollowTheSizeOfNow)
{
    image.size_x = 5;
    image.set_len(0, 10.0);
    expect_size("X", 2.0, micrometre);
    image.size_x = 8;
    expect_size("X", 2.0, micrometre);
}

TEST_F(OmeImageLengths, AnInteger1OverADecimal1CountsAsAChange)
{
    vela_test::ChangeLog log;
    const auto row = vela_test::image_table().row(vela_test::In::pixels, "PhysicalSizeX");
    vela_test::fields_of(image)[row].watch(log, "size");
    vela_test::fields_of(image)[row + 1].watch(log, "unit");
    image.set_len(0, 1.0);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].field, "size");
    EXPECT_TREE(log[0].value, 1.0);
    expect_size("X", 1, "pixel");
    image.set_len(0, 0.0);
    EXPECT_EQ(log.size(), 1u);
    image.set_len(0, 0.01);
    ASSERT_EQ(log.size(), 3u);
    EXPECT_TREE(log[1].value, 0.0025);
    EXPECT_TREE(log[2].value, "m");
}

} // namespace
