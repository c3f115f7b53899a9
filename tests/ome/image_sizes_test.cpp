#include "ome/record_fields.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using vela_test::Image;
using vela_test::Value;
using Object = Value::Object;
using List = Value::List;

const Value null;
constexpr std::size_t above_integers = std::size_t{1} << 63;

Value& pixels_of(Value& tree)
{
    return tree.at("").at("ome:Pixels");
}

Value& planes_of(Value& tree)
{
    return pixels_of(tree).at("").at("ome:Plane");
}

Value& channels_of(Value& tree)
{
    return pixels_of(tree).at("").at("ome:Channel");
}

/// "X Y Z C T".
std::string sizes_of(Value& tree)
{
    std::string text;
    for (const char* const key : {"SizeX", "SizeY", "SizeZ", "SizeC", "SizeT"})
        text += (text.empty() ? "" : " ") + vela_test::show(pixels_of(tree).at(key));
    return text;
}

/// "Z T C".
std::string place_of(Value& plane)
{
    return vela_test::show(plane.at("TheZ")) + " " + vela_test::show(plane.at("TheT")) + " " +
           vela_test::show(plane.at("TheC"));
}

TEST(OmeImageSizes, FourThreeTwoFiveSixInXYTCZ)
{
    Value tree;
    Image image(tree);
    image.dimension_order = "XYTCZ";
    image.set_sizes({4, 3, 2, 5, 6});
    EXPECT_EQ(image.size_x.get(), 4);
    EXPECT_EQ(image.size_y.get(), 3);
    EXPECT_EQ(image.size_t.get(), 2);
    EXPECT_EQ(image.size_c.get(), 5);
    EXPECT_EQ(image.size_z.get(), 6);
    ASSERT_EQ(image.channels.size(), 5u);
    for (std::size_t c = 0; c < 5; ++c)
        EXPECT_EQ(image.channels[c]->id.get(), "Channel:" + std::to_string(c + 1));
    ASSERT_EQ(image.planes.size(), 60u);
    EXPECT_EQ(place_of(planes_of(tree).at(0)), "0 0 0");
    EXPECT_EQ(place_of(planes_of(tree).at(1)), "0 0 1");
    EXPECT_EQ(place_of(planes_of(tree).at(4)), "0 0 4");
    EXPECT_EQ(place_of(planes_of(tree).at(5)), "0 1 0");
    EXPECT_EQ(place_of(planes_of(tree).at(10)), "1 0 0");
    EXPECT_EQ(place_of(planes_of(tree).at(59)), "5 1 4");
}

TEST(OmeImageSizes, EveryOrderNamesTheLastThree)
{
    const std::vector<std::pair<const char*, const char*>> sizes_by_order = {
        {"XYZCT", "7 8 2 3 4"}, {"XYZTC", "7 8 2 4 3"}, {"XYCTZ", "7 8 4 2 3"},
        {"XYCZT", "7 8 3 2 4"}, {"XYTCZ", "7 8 4 3 2"}, {"XYTZC", "7 8 3 4 2"},
    };
    for (const auto& [order, sizes] : sizes_by_order)
    {
        SCOPED_TRACE(order);
        Value tree;
        Image image(tree);
        image.dimension_order = order;
        image.set_sizes({7, 8, 2, 3, 4});
        EXPECT_EQ(sizes_of(tree), sizes);
        EXPECT_TREE(pixels_of(tree).at("DimensionOrder"), order);
        EXPECT_EQ(image.planes.size(), 24u);
        EXPECT_EQ(image.channels.size(), static_cast<std::size_t>(image.size_c.get()));
    }
}

TEST(OmeImageSizes, PlanesRunOverZThenTThenCWhateverTheOrder)
{
    for (const std::string& order : vela_test::enumeration_texts(vela_test::Check::dimension_order))
    {
        SCOPED_TRACE(order);
        Value tree;
        Image image(tree);
        image.dimension_order = order;
        image.set_sizes({7, 8, 2, 3, 4});
        std::size_t index = 0;
        for (int z = 0; z < image.size_z.get(); ++z)
            for (int t = 0; t < image.size_t.get(); ++t)
                for (int c = 0; c < image.size_c.get(); ++c)
                    EXPECT_EQ(place_of(planes_of(tree).at(index++)),
                              std::to_string(z) + " " + std::to_string(t) + " " + std::to_string(c));
        EXPECT_EQ(index, 24u);
    }
}

TEST(OmeImageSizes, WithoutAnOrderAreLaidOutAsXYZTCAndTheSlotStays)
{
    for (const Value& order : {Value(), Value(""), Value("XYZZZ"), Value("XYZT"), Value("xyzct"), Value("ZCTXY")})
    {
        SCOPED_TRACE(vela_test::show(order));
        Value tree;
        Image image(tree);
        pixels_of(tree).at("DimensionOrder") = order;
        image.set_sizes({7, 8, 2, 3, 4});
        EXPECT_EQ(sizes_of(tree), "7 8 2 4 3");
        EXPECT_TREE(pixels_of(tree).at("DimensionOrder"), order);
    }
}

TEST(OmeImageSizes, AnOrderOfAnotherKindIsRefusedAfterXAndY)
{
    for (const Value& order : {Value(1), Value(true), Value(Object())})
    {
        Value tree;
        Image image(tree);
        image.set_sizes({1, 2, 3, 4, 5});
        pixels_of(tree).at("DimensionOrder") = order;
        EXPECT_BAD_CAST(image.set_sizes({7, 8, 2, 3, 4}));
        EXPECT_EQ(sizes_of(tree), "7 8 3 5 4");
        EXPECT_EQ(image.planes.size(), 60u);
    }
}

TEST(OmeImageSizes, FourEntriesGiveTheFifthDimensionSizeOneAndThePlanesFollow)
{
    Value tree;
    Image image(tree);
    image.dimension_order = "XYTCZ";
    image.set_sizes({4, 3, 2, 5});
    EXPECT_EQ(sizes_of(tree), "4 3 1 5 2");
    EXPECT_EQ(image.channels.size(), 5u);
    ASSERT_EQ(image.planes.size(), 10u);
    EXPECT_EQ(place_of(planes_of(tree).at(9)), "0 1 4");
}

TEST(OmeImageSizes, FewerEntriesAreFilledUpWithOnes)
{
    const std::vector<std::pair<std::vector<std::size_t>, const char*>> cases = {
        {{}, "1 1 1 1 1"},           {{9}, "9 1 1 1 1"},          {{9, 8}, "9 8 1 1 1"},
        {{9, 8, 7}, "9 8 7 1 1"},    {{9, 8, 7, 6}, "9 8 7 6 1"}, {{9, 8, 7, 6, 5}, "9 8 7 6 5"},
        {{1, 1, 1, 1}, "1 1 1 1 1"},
    };
    for (const auto& [sizes, expected] : cases)
    {
        SCOPED_TRACE(expected);
        Value tree;
        Image image(tree);
        image.dimension_order = "XYZCT";
        image.set_sizes(sizes);
        EXPECT_EQ(sizes_of(tree), expected);
        EXPECT_EQ(image.planes.size(),
                  static_cast<std::size_t>(image.size_z.get() * image.size_c.get() * image.size_t.get()));
    }
}

TEST(OmeImageSizes, ThePlanesOfASmallImageWholly)
{
    Value tree;
    Image image(tree);
    image.set_sizes({5});
    Value plane;
    const vela_test::EagerRecord record(plane, vela_test::plane_table());
    plane.at("TheZ") = 0;
    plane.at("TheT") = 0;
    plane.at("TheC") = 0;
    EXPECT_TREE(planes_of(tree), List{plane});
    Value channel;
    const vela_test::EagerRecord other(channel, vela_test::channel_table(), Value(), 1);
    EXPECT_TREE(channels_of(tree), List{channel});
}

/// The sizes are refused with this text and nothing changes.
void expect_refused(const std::vector<std::size_t>& sizes, const char* text)
{
    Value tree;
    Image image(tree);
    image.set_sizes({4, 3, 2, 1, 2});
    const Value before = tree;
    EXPECT_THROW_TEXT(image.set_sizes(sizes), std::invalid_argument, text);
    EXPECT_TREE(tree, before);
    EXPECT_EQ(image.planes.size(), 4u);
    EXPECT_EQ(image.channels.size(), 2u);
}

TEST(OmeImageSizes, AZeroEntryRaises)
{
    for (const std::vector<std::size_t>& sizes : {std::vector<std::size_t>{0},
                                                  {0, 3, 2, 5, 6},
                                                  {4, 0},
                                                  {4, 3, 0, 5, 6},
                                                  {4, 3, 2, 0, 6},
                                                  {4, 3, 2, 5, 0},
                                                  {0, 0, 0, 0, 0}})
        expect_refused(sizes, "Unsupported zero size");
}

TEST(OmeImageSizes, SixEntriesRaise)
{
    expect_refused({4, 3, 2, 5, 6, 7}, "Unsupported number of sizes");
    expect_refused({1, 1, 1, 1, 1, 1}, "Unsupported number of sizes");
    expect_refused({1, 1, 1, 1, 1, 1, 1}, "Unsupported number of sizes");
}

TEST(OmeImageSizes, AZeroIsFoundBeforeTheSixthEntry)
{
    expect_refused({4, 3, 2, 5, 6, 0}, "Unsupported zero size");
    expect_refused({0, 3, 2, 5, 6, 7}, "Unsupported zero size");
}

TEST(OmeImageSizes, AProductThatWrapsToZeroIsNoZeroSize)
{
    Value tree;
    Image image(tree);
    image.set_sizes({std::size_t{1} << 32, std::size_t{1} << 32});
    EXPECT_EQ(sizes_of(tree), "4294967296 4294967296 1 1 1");
}

TEST(OmeImageSizes, ASizeAboveTheIntegersIsRefusedAfterTheSizesBeforeIt)
{
    const std::vector<std::pair<std::vector<std::size_t>, const char*>> cases = {
        {{above_integers, 8, 7, 6, 5}, "1 1 1 1 1"},
        {{9, above_integers, 7, 6, 5}, "9 1 1 1 1"},
        {{9, 8, above_integers, 1, 1}, "9 8 1 1 1"},
        {{9, 8, 1, above_integers, 1}, "9 8 1 1 1"},
    };
    for (const auto& [sizes, expected] : cases)
    {
        SCOPED_TRACE(expected);
        Value tree;
        Image image(tree);
        image.set_sizes({1});
        EXPECT_BAD_CAST(image.set_sizes(sizes));
        EXPECT_EQ(sizes_of(tree), expected);
        EXPECT_EQ(image.planes.size(), 1u);
    }
}

TEST(OmeImageSizes, ASizeAboveTheIntegersLeavesThoseThatComeBeforeByOrder)
{
    Value tree;
    Image image(tree);
    image.set_sizes({1});
    image.dimension_order = "XYCTZ";
    EXPECT_BAD_CAST(image.set_sizes({9, 8, 1, above_integers, 1}));
    EXPECT_EQ(sizes_of(tree), "9 8 1 1 1");
    image.set_sizes({9, 8, 2, 2, 2});
    EXPECT_BAD_CAST(image.set_sizes({9, 8, 1, above_integers, 1}));
    EXPECT_EQ(sizes_of(tree), "9 8 2 1 2");
}

TEST(OmeImageSizes, MorePlanesThanCanBeCountedAreRefusedAndNothingChanges)
{
    const std::size_t half = std::size_t{1} << 32;
    expect_refused({4, 3, half, half, 1}, "Unsupported number of planes");
    expect_refused({4, 3, half, half, half}, "Unsupported number of planes");
}

TEST(OmeImageSizes, SmallerAfterBiggerLeavesTheSurplusElementsWithTheirValues)
{
    Value tree;
    Image image(tree);
    image.dimension_order = "XYZTC";
    image.set_sizes({4, 3, 2, 2, 2});
    image.set_off(0, 1.5);
    const Value planes = planes_of(tree);
    const Value channels = channels_of(tree);
    image.set_sizes({4, 3, 2});
    EXPECT_EQ(image.planes.size(), 2u);
    EXPECT_EQ(image.channels.size(), 1u);
    EXPECT_EQ(planes_of(tree).count(), 8u);
    EXPECT_TREE(channels_of(tree), channels);
    EXPECT_EQ(place_of(planes_of(tree).at(0)), "0 0 0");
    EXPECT_EQ(place_of(planes_of(tree).at(1)), "1 0 0");
    EXPECT_TREE(planes_of(tree).at(1).at("PositionX"), 1.5);
    Value expected = planes;
    for (std::size_t surplus = 2; surplus < 8; ++surplus)
        EXPECT_TREE(planes_of(tree).at(surplus), expected.at(surplus));
}

TEST(OmeImageSizes, ValuesOfTheElementsOutliveTheSizes)
{
    Value tree;
    Image image(tree);
    image.dimension_order = "XYZTC";
    image.set_sizes({4, 3, 2, 1, 2});
    image.channels[1]->name = "GFP";
    image.planes[3]->exposure_time = 0.5;
    image.set_sizes({4, 3});
    image.set_sizes({4, 3, 1, 1, 3});
    EXPECT_EQ(image.channels[1]->name.get(), "GFP");
    EXPECT_EQ(image.channels[1]->id.get(), "Channel:2");
    EXPECT_EQ(image.channels[2]->id.get(), "Channel:3");
    EXPECT_EQ(planes_of(tree).count(), 4u);
    EXPECT_TREE(planes_of(tree).at(3).at("ExposureTime"), 0.5);
    EXPECT_EQ(place_of(planes_of(tree).at(2)), "0 0 2");
    EXPECT_EQ(place_of(planes_of(tree).at(3)), "1 0 1");
}

TEST(OmeImageSizes, IdsThatAreThereStay)
{
    Value tree;
    channels_of(tree) = List{Object{{"ID", "mine"}}, Object()};
    Image image(tree);
    image.dimension_order = "XYZTC";
    image.set_sizes({4, 3, 1, 1, 3});
    EXPECT_TREE(channels_of(tree).at(0).at("ID"), "mine");
    EXPECT_TREE(channels_of(tree).at(1).at("ID"), "Channel:2");
    EXPECT_TREE(channels_of(tree).at(2).at("ID"), "Channel:3");
}

TEST(OmeImageSizes, ASingleChildBecomesTheFirstOfTheList)
{
    Value tree;
    Image image(tree);
    planes_of(tree) = Object{{"ExposureTime", 2}, {"TheC", 7}};
    image.set_sizes({4, 3, 2});
    EXPECT_EQ(planes_of(tree).count(), 2u);
    EXPECT_TREE(planes_of(tree).at(0).at("ExposureTime"), 2);
    EXPECT_TREE(planes_of(tree).at(0).at("TheC"), 0);
}

TEST(OmeImageSizes, AnElementThatAFieldMayNotHoldStopsTheLayingOutThere)
{
    Value tree;
    Image image(tree);
    image.dimension_order = "XYZTC";
    planes_of(tree) = List{Object{{"TheZ", 9}}, Object{{"TheC", "text"}}, Object{{"TheZ", 9}}};
    EXPECT_BAD_CAST(image.set_sizes({4, 3, 2, 1, 2}));
    EXPECT_EQ(sizes_of(tree), "4 3 2 2 1");
    EXPECT_EQ(image.channels.size(), 2u);
    EXPECT_EQ(image.planes.size(), 1u);
    EXPECT_EQ(place_of(planes_of(tree).at(0)), "0 0 0");
    EXPECT_TREE(planes_of(tree).at(1), (Object{{"TheZ", null}, {"TheT", null}, {"TheC", "text"}}));
    EXPECT_TREE(planes_of(tree).at(2), (Object{{"TheZ", 9}}));
    EXPECT_EQ(planes_of(tree).count(), 3u);
}

TEST(OmeImageSizes, AChannelThatIsRefusedLeavesThePlanesAsTheyWere)
{
    Value tree;
    Image image(tree);
    image.dimension_order = "XYZTC";
    image.set_sizes({4, 3, 2});
    channels_of(tree).at(1) = "text";
    EXPECT_BAD_CAST(image.set_sizes({5, 3, 1, 1, 3}));
    EXPECT_EQ(sizes_of(tree), "5 3 1 3 1");
    EXPECT_EQ(image.channels.size(), 1u);
    EXPECT_EQ(image.planes.size(), 2u);
    EXPECT_EQ(channels_of(tree).count(), 2u);
    EXPECT_EQ(planes_of(tree).count(), 2u);
}

TEST(OmeImageSizes, RecordsHeldFromBeforeSeeTheNewPlaces)
{
    Value tree;
    Image image(tree);
    image.dimension_order = "XYZTC";
    image.set_sizes({4, 3, 1, 1, 2});
    const auto second = image.planes[1];
    EXPECT_EQ(second->the_c.get(), 1);
    image.set_sizes({4, 3, 2});
    EXPECT_EQ(second->the_c.get(), 0);
    EXPECT_EQ(second->the_z.get(), 1);
    second->exposure_time = 2.0;
    EXPECT_EQ(image.planes[1]->exposure_time.get(), 2.0);
}

TEST(OmeImageSizes, OfAStackLeaveItsIdsNull)
{
    Value root;
    Image image(root, Value(), 0);
    image.type = Ome::Type::uint8;
    image.dimension_order = Ome::DimensionOrder::XYZTC;
    image.set_sizes({2, 2});
    EXPECT_TREE(root.at("ID"), null);
    EXPECT_TREE(pixels_of(root).at("ID"), null);
    EXPECT_TREE(channels_of(root).at(0).at("ID"), "Channel:1");
}

} // namespace
