#include "ome/record_fields.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using vela_test::Image;
using vela_test::Value;
using Object = Value::Object;

const Value null;
const char* const micrometre = "\xC2\xB5m";
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// An image of 4 x 8 x 4 (Z) x 3 (T) x 2 (C): 24 planes.
class OmeImageOffsets : public testing::Test
{
protected:
    OmeImageOffsets()
    {
        image.dimension_order = "XYZTC";
        image.set_sizes({4, 8, 4, 3, 2});
    }

    Value& pixel(const std::string& key) { return tree.at("").at("ome:Pixels").at(key); }
    Value& plane(std::size_t index) { return pixel("").at("ome:Plane").at(index); }

    /// Every plane holds the value that stands for its Z, or its T, and nothing else has changed since `before`.
    void expect_planes(Value before, const std::string& key, const std::string& by, const std::vector<Value>& values,
                       const Value& unit)
    {
        Value& planes = before.at("").at("ome:Pixels").at("").at("ome:Plane");
        for (std::size_t index = 0; index < planes.count(); ++index)
        {
            Value& expected = planes.at(index);
            expected.at(key) = values.at(static_cast<std::size_t>(by.empty() ? 0 : expected.at(by).as_integer()));
            expected.at(key + "Unit") = unit;
        }
        EXPECT_TREE(tree, before);
    }

    void expect_unsupported(std::size_t d)
    {
        const Value before = tree;
        for (const double off : {0.0, 1.0, nan})
            EXPECT_THROW_TEXT(image.set_off(d, off), std::invalid_argument, "Unsupported physical dimension");
        EXPECT_TREE(tree, before);
    }

    Value tree;
    Image image{tree};
};

TEST_F(OmeImageOffsets, OfXAndYAreThePositionOfEveryPlane)
{
    Value before = tree;
    image.set_off(0, 2.5);
    expect_planes(before, "PositionX", "", {2.5}, "pixel");
    before = tree;
    image.set_off(1, -7.25);
    expect_planes(before, "PositionY", "", {-7.25}, "pixel");
}

TEST_F(OmeImageOffsets, TakeTheUnitOfThePhysicalSize)
{
    image.physical_size_x_unit = "nm";
    image.physical_size_y_unit = "reference frame";
    Value before = tree;
    image.set_off(0, 2.5);
    expect_planes(before, "PositionX", "", {2.5}, "nm");
    before = tree;
    image.set_off(1, 3.0);
    expect_planes(before, "PositionY", "", {3.0}, "reference frame");
    image.physical_size_x_unit = "mm";
    EXPECT_TREE(plane(0).at("PositionXUnit"), "nm");
}

TEST_F(OmeImageOffsets, TakeANullUnitAsItStands)
{
    image.set_off(0, 1.0);
    image.physical_size_x_unit = Value();
    Value before = tree;
    image.set_off(0, 1.0);
    expect_planes(before, "PositionX", "", {1.0}, null);
    EXPECT_TREE(pixel("PhysicalSizeXUnit"), null);
}

TEST_F(OmeImageOffsets, OfXMayBeAnyNumber)
{
    for (const double off : {0.0, -0.0, infinity, -infinity, nan, 1e-300})
    {
        const Value before = tree;
        const bool is_same_zero = off == 0 && plane(0).at("PositionX") == Value(off);
        image.set_off(0, off);
        expect_planes(before, "PositionX", "", {is_same_zero ? 0.0 : off}, "pixel");
    }
}

TEST_F(OmeImageOffsets, OfZAreTheCentreOfTheStack)
{
    image.physical_size_z = 0.5;
    image.physical_size_z_unit = micrometre;
    const Value before = tree;
    image.set_off(2, 10.0);
    expect_planes(before, "PositionZ", "TheZ", {9.25, 9.75, 10.25, 10.75}, micrometre);
}

TEST_F(OmeImageOffsets, OfZInPixels)
{
    Value before = tree;
    image.set_off(2, 0.0);
    expect_planes(before, "PositionZ", "TheZ", {-1.5, -0.5, 0.5, 1.5}, "pixel");
    image.size_z = 3;
    before = tree;
    image.set_off(2, 0.0);
    expect_planes(before, "PositionZ", "TheZ", {-1.0, 0.0, 1.0, 2.0}, "pixel");
}

TEST_F(OmeImageOffsets, OfZReadThePhysicalSizeAsDecimalForGood)
{
    image.set_len(2, 1.0);
    EXPECT_TREE(pixel("PhysicalSizeZ"), 1);
    image.set_off(2, 0.0);
    EXPECT_TREE(pixel("PhysicalSizeZ"), 1.0);
    EXPECT_TREE(pixel("SizeZ"), 4);
    EXPECT_TREE(plane(0).at("TheZ"), 0);
}

TEST_F(OmeImageOffsets, OfXAndYLeaveThePhysicalSizeItsKind)
{
    image.set_len(0, 1.0);
    image.set_off(0, 0.0);
    EXPECT_TREE(pixel("PhysicalSizeX"), 1);
}

TEST_F(OmeImageOffsets, OfTimeAreTheMiddleOfTheSeries)
{
    image.set_len(3, 6.0);
    const Value before = tree;
    image.set_off(3, 2.5);
    expect_planes(before, "DeltaT", "TheT", {0.5, 2.5, 4.5}, "s");
}

TEST_F(OmeImageOffsets, OfTimeTakeTheUnitOfTheIncrement)
{
    image.time_increment = 0.25;
    image.time_increment_unit = "min";
    Value before = tree;
    image.set_off(3, 1.0);
    expect_planes(before, "DeltaT", "TheT", {0.75, 1.0, 1.25}, "min");
    image.time_increment_unit = Value();
    before = tree;
    image.set_off(3, 1.0);
    expect_planes(before, "DeltaT", "TheT", {0.75, 1.0, 1.25}, null);
}

TEST_F(OmeImageOffsets, OfTimeReadAnIntegerIncrementAsDecimalForGood)
{
    image.time_increment = 2;
    image.set_off(3, 2.5);
    EXPECT_TREE(pixel("TimeIncrement"), 2.0);
    EXPECT_TREE(plane(2).at("DeltaT"), 2.5);
}

TEST_F(OmeImageOffsets, OfTimeWithoutAnIncrementAreNone)
{
    image.set_len(3, 6.0);
    image.set_off(3, 2.5);
    image.set_len(3, 0.0);
    Value before = tree;
    image.set_off(3, 2.5);
    expect_planes(before, "DeltaT", "TheT", {null, null, null}, null);
    before = tree;
    image.set_off(3, -1.0);
    EXPECT_TREE(tree, before);
}

TEST_F(OmeImageOffsets, OfTimeThatMakeTheFirstTimeZeroOrLessAreRefusedAtTheFirstPlane)
{
    image.set_len(3, 6.0);
    image.set_off(3, 2.5);
    const Value before = tree;
    for (const double off : {2.0, 1.0, 0.0, -5.0, nan, -infinity})
    {
        EXPECT_BAD_CAST(image.set_off(3, off));
        EXPECT_TREE(tree, before);
    }
}

TEST_F(OmeImageOffsets, OfTimeThatAreRefusedAtAPlaneHaveChangedThePlanesBefore)
{
    image.set_len(3, 6.0);
    image.planes[0]->the_t = 2;
    image.planes[1]->the_t = 1;
    image.planes[2]->the_t = 2;
    Value expected = tree;
    Value& planes = expected.at("").at("ome:Pixels").at("").at("ome:Plane");
    // off + (t - 0.5 * 2) * 2: plane 3 has t 1, plane 6 the first t 0
    const double times[] = {2.5, 0.5, 2.5, 0.5, 2.5, 2.5};
    for (std::size_t index = 0; index < 6; ++index)
    {
        planes.at(index).at("DeltaT") = times[index];
        planes.at(index).at("DeltaTUnit") = "s";
    }
    EXPECT_TREE(planes.at(6).at("TheT"), 0);
    EXPECT_BAD_CAST(image.set_off(3, 0.5));
    EXPECT_TREE(tree, expected);
}

TEST_F(OmeImageOffsets, OfTimeExactlyZeroAreRefused)
{
    image.set_len(3, 6.0);
    image.planes[0]->the_t = 1;
    image.planes[1]->the_t = 1;
    EXPECT_BAD_CAST(image.set_off(3, 0.0));
    EXPECT_TREE(plane(0).at("DeltaT"), null);
    EXPECT_TREE(plane(0).at("DeltaTUnit"), null);
}

TEST_F(OmeImageOffsets, OfTheChannelAxisRaise)
{
    expect_unsupported(4);
}

TEST_F(OmeImageOffsets, OfAnIndexAboveFourRaise)
{
    for (const std::size_t d :
         {std::size_t{5}, std::size_t{100}, (std::size_t{1} << 32), std::numeric_limits<std::size_t>::max()})
        expect_unsupported(d);
}

TEST_F(OmeImageOffsets, GoToTheAxisThatTheOrderNames)
{
    for (const std::string& order : vela_test::enumeration_texts(vela_test::Check::dimension_order))
    {
        SCOPED_TRACE(order);
        image.dimension_order = order;
        image.set_sizes({4, 8, 2, 2, 2});
        const std::size_t z = order.find('Z');
        const std::size_t t = order.find('T');
        image.time_increment = 2.0;
        image.time_increment_unit = "h";
        image.physical_size_z = 4.0;
        image.set_off(z, 100.0);
        image.set_off(t, 50.0);
        for (std::size_t index = 0; index < 8; ++index)
        {
            EXPECT_TREE(plane(index).at("PositionZ"), index < 4 ? 98.0 : 102.0);
            EXPECT_TREE(plane(index).at("DeltaT"), index % 4 < 2 ? 49.0 : 51.0);
            EXPECT_TREE(plane(index).at("DeltaTUnit"), "h");
        }
        expect_unsupported(order.find('C'));
    }
}

TEST_F(OmeImageOffsets, WithoutAnOrderGoByXYZTCAndTheSlotStays)
{
    for (const Value& order : {Value(), Value("CTZ")})
    {
        pixel("DimensionOrder") = order;
        image.set_off(2, 100.0);
        EXPECT_TREE(plane(0).at("PositionZ"), 98.5);
        image.set_off(3, 1.0);
        EXPECT_TREE(plane(0).at("DeltaT"), null);
        expect_unsupported(4);
        EXPECT_TREE(pixel("DimensionOrder"), order);
        image.set_off(2, 0.0);
    }
}

TEST_F(OmeImageOffsets, FollowTheTimesAndDepthsThatPlanesWereGiven)
{
    image.planes[5]->the_z = 9;
    image.set_off(2, 0.0);
    EXPECT_TREE(plane(4).at("PositionZ"), -1.5);
    EXPECT_TREE(plane(5).at("PositionZ"), 7.5);
    EXPECT_TREE(plane(6).at("PositionZ"), -0.5);
}

TEST_F(OmeImageOffsets, ReachAddedPlanesAndNoSurplusElements)
{
    image.planes.add();
    image.set_off(0, 3.0);
    EXPECT_TREE(plane(24).at("PositionX"), 3.0);
    image.set_sizes({4, 8, 1, 1, 2});
    image.set_off(0, 4.0);
    EXPECT_TREE(plane(1).at("PositionX"), 4.0);
    EXPECT_TREE(plane(2).at("PositionX"), 3.0);
    image.planes.clear();
    image.set_off(0, 5.0);
    EXPECT_TREE(plane(0).at("PositionX"), 4.0);
}

TEST_F(OmeImageOffsets, OfZNeedTheDepthOfEveryPlane)
{
    image.planes.add();
    EXPECT_BAD_CAST(image.set_off(2, 1.0));
    EXPECT_TREE(plane(23).at("PositionZ"), 2.5);
    EXPECT_TREE(plane(24).at("PositionZ"), null);
    EXPECT_TREE(plane(24).at("TheZ"), null);
}

TEST_F(OmeImageOffsets, NeedTheSizeAndTheStep)
{
    image.size_z = Value();
    EXPECT_BAD_CAST(image.set_off(2, 1.0));
    image.size_z = 4;
    image.physical_size_z = Value();
    EXPECT_BAD_CAST(image.set_off(2, 1.0));
    EXPECT_TREE(plane(0).at("PositionZ"), null);
    image.time_increment = 1.0;
    image.size_t = Value();
    EXPECT_BAD_CAST(image.set_off(3, 10.0));
    EXPECT_TREE(plane(0).at("DeltaT"), null);
}

TEST_F(OmeImageOffsets, AUnitThatAPlaneMayNotHoldIsRefusedAfterTheFirstPosition)
{
    pixel("PhysicalSizeXUnit") = "furlong";
    EXPECT_BAD_CAST(image.set_off(0, 1.5));
    EXPECT_TREE(plane(0).at("PositionX"), 1.5);
    EXPECT_TREE(plane(0).at("PositionXUnit"), null);
    EXPECT_TREE(plane(1).at("PositionX"), null);
}

TEST_F(OmeImageOffsets, RecordsHeldFromBeforeSeeTheChange)
{
    const auto last = image.planes[23];
    const auto first = image.planes[0];
    image.set_off(0, 2.0);
    image.set_off(2, 10.0);
    EXPECT_EQ(first->position_x.get(), 2.0);
    EXPECT_EQ(last->position_z.get(), 11.5);
    EXPECT_EQ(last->position_z_unit.get(), "pixel");
}

TEST_F(OmeImageOffsets, HandlersOfPlanesAreCalledWithTheNewValueOnce)
{
    vela_test::ChangeLog log;
    const auto row = vela_test::plane_table().row(vela_test::In::own, "PositionX");
    for (const std::size_t index : {std::size_t{0}, std::size_t{7}})
    {
        auto fields = vela_test::fields_of(*image.planes[index]);
        fields[row].watch(log, "position " + std::to_string(index));
        fields[row + 1].watch(log, "unit " + std::to_string(index));
    }
    image.set_off(0, 2.0);
    ASSERT_EQ(log.size(), 4u);
    EXPECT_EQ(log[0].field, "position 0");
    EXPECT_TREE(log[0].value, 2.0);
    EXPECT_EQ(log[1].field, "unit 0");
    EXPECT_TREE(log[1].value, "pixel");
    EXPECT_EQ(log[2].field, "position 7");
    EXPECT_EQ(log[3].field, "unit 7");
    image.set_off(0, 2.0);
    EXPECT_EQ(log.size(), 4u);
    image.set_off(0, 3.0);
    ASSERT_EQ(log.size(), 6u);
    EXPECT_TREE(log[4].value, 3.0);
    EXPECT_EQ(log[5].field, "position 7");
}

TEST_F(OmeImageOffsets, HandlersOfPlanesAreCalledUpToTheOneThatIsRefused)
{
    image.set_len(3, 6.0);
    image.planes[0]->the_t = 2;
    image.planes[1]->the_t = 2;
    vela_test::ChangeLog log;
    const auto row = vela_test::plane_table().row(vela_test::In::own, "DeltaT");
    for (std::size_t index = 0; index < 24; ++index)
        vela_test::fields_of(*image.planes[index])[row].watch(log, std::to_string(index));
    image.planes[2]->the_t = 0;
    EXPECT_BAD_CAST(image.set_off(3, 1.0));
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[1].field, "1");
    EXPECT_TREE(log[1].value, 3.0);
}

TEST_F(OmeImageOffsets, HandlersGoWithTheirRecords)
{
    vela_test::ChangeLog log;
    const auto held = image.planes[0];
    const auto row = vela_test::plane_table().row(vela_test::In::own, "PositionX");
    vela_test::fields_of(*held)[row].watch(log, "held");
    image.set_sizes({4, 8, 4, 3, 2});
    image.set_off(0, 2.0);
    EXPECT_EQ(log.size(), 0u);
    held->position_x = 3.0;
    EXPECT_EQ(log.size(), 1u);
}

TEST_F(OmeImageOffsets, HandlersOfTheImageAreCalledBySetSizesInTheOrderOfTheWrites)
{
    vela_test::ChangeLog log;
    auto fields = vela_test::fields_of(image);
    for (const char* const key : {"SizeX", "SizeY", "SizeZ", "SizeC", "SizeT", "DimensionOrder"})
        fields[vela_test::image_table().row(vela_test::In::pixels, key)].watch(log, key);
    image.dimension_order = "XYTCZ";
    image.set_sizes({9, 8, 7, 6, 5});
    const std::vector<vela_test::Change> expected = {{"DimensionOrder", static_cast<int>(Ome::DimensionOrder::XYTCZ)},
                                                     {"SizeX", 9},
                                                     {"SizeT", 7},
                                                     {"SizeC", 6},
                                                     {"SizeZ", 5}};
    ASSERT_EQ(log.size(), expected.size());
    for (std::size_t change = 0; change < log.size(); ++change)
    {
        EXPECT_EQ(log[change].field, expected[change].field);
        EXPECT_TREE(log[change].value, expected[change].value);
    }
}

} // namespace
