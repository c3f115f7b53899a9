// The trees of some records written out by hand.
#include "ome/record_fields.h"
#include "support/expect_bad_cast.h"

#include <gtest/gtest.h>

namespace {

using vela_test::Channel;
using vela_test::Image;
using vela_test::LightSource;
using vela_test::Plane;
using vela_test::Value;
using Object = Value::Object;
using List = Value::List;

const Value null;

Object null_entries(std::initializer_list<const char*> keys)
{
    Object object;
    for (const char* const key : keys)
        object[key] = null;
    return object;
}

TEST(OmeImage, OverAnEmptyTreeHasSizesOfOnePixelAndMetadataOnly)
{
    Value tree;
    const Image image(tree);
    Object pixels = null_entries({"ID", "DimensionOrder", "Type", "SignificantBits", "Interleaved", "BigEndian",
                                  "SizeX", "SizeY", "SizeZ", "SizeC", "SizeT", "TimeIncrement", "TimeIncrementUnit"});
    for (const char* const axis : {"X", "Y", "Z"})
    {
        pixels[std::string("PhysicalSize") + axis] = 1.0;
        pixels[std::string("PhysicalSize") + axis + "Unit"] = "pixel";
    }
    pixels[""] = Object{{"ome:MetadataOnly", Object()}, {"ome:Channel", null}, {"ome:Plane", null}};
    EXPECT_TREE(
        tree, (Object{{"ID", null},
                      {"Name", null},
                      {"", Object{{"ome:AcquisitionDate", null}, {"ome:Description", null}, {"ome:Pixels", pixels}}}}));
    EXPECT_EQ(image.channels.size(), 0u);
    EXPECT_EQ(image.planes.size(), 0u);
    EXPECT_TRUE(image.planes.empty());
}

TEST(OmeImage, OverALoadedTreeKeepsItsSizesAndUnits)
{
    Value tree;
    Value& pixels = tree.at("").at("ome:Pixels");
    pixels.at("PhysicalSizeX") = 3;
    pixels.at("PhysicalSizeXUnit") = "mm";
    pixels.at("PhysicalSizeY") = 0.25;
    pixels.at("").at("ome:MetadataOnly") = Object{{"key", 1}};
    const Image image(tree);
    EXPECT_TREE(pixels.at("PhysicalSizeX"), 3);
    EXPECT_TREE(pixels.at("PhysicalSizeXUnit"), "mm");
    EXPECT_TREE(pixels.at("PhysicalSizeY"), 0.25);
    EXPECT_TREE(pixels.at("PhysicalSizeYUnit"), "pixel");
    EXPECT_TREE(pixels.at("PhysicalSizeZ"), 1.0);
    EXPECT_TREE(pixels.at("").at("ome:MetadataOnly"), (Object{{"key", 1}}));
}

TEST(OmeImage, AWrongSlotInThePixelsLeavesTheKeysBeforeIt)
{
    Value tree;
    tree.at("").at("ome:Pixels").at("Type") = "int9";
    EXPECT_BAD_CAST(Image(tree, Value(), 4));
    EXPECT_TREE(
        tree,
        (Object{{"ID", "Image:4"},
                {"Name", null},
                {"", Object{{"ome:AcquisitionDate", null},
                            {"ome:Description", null},
                            {"ome:Pixels", Object{{"ID", "Pixels:4"}, {"DimensionOrder", null}, {"Type", "int9"}}}}}}));
}

TEST(OmeImage, AContentThatIsTextIsRefusedBeforeItsChildren)
{
    Value tree = Object{{"", "text"}};
    EXPECT_BAD_CAST(Image{tree});
    EXPECT_TREE(tree, (Object{{"ID", null}, {"Name", null}, {"", "text"}}));
}

TEST(OmeImage, ADecimalSizeIsRefused)
{
    Value tree;
    tree.at("").at("ome:Pixels").at("SizeX") = 3.0;
    EXPECT_BAD_CAST(Image{tree});
    EXPECT_TREE(tree.at("").at("ome:Pixels").at("SizeX"), 3.0);
    EXPECT_EQ(tree.at("").at("ome:Pixels").if_object()->count("SizeY"), 0u);
}

TEST(OmeImage, ChannelsAreBoundBeforePlanes)
{
    Value tree;
    tree.at("").at("ome:Pixels").at("").at("ome:Channel") = List{Object{{"Name", 1}}};
    tree.at("").at("ome:Pixels").at("").at("ome:Plane") = List{Object{{"TheZ", -1}}};
    EXPECT_BAD_CAST(Image{tree});
    EXPECT_TREE(tree.at("").at("ome:Pixels").at(""), (Object{{"ome:MetadataOnly", Object()},
                                                             {"ome:Channel", List{Object{{"ID", null}, {"Name", 1}}}},
                                                             {"ome:Plane", List{Object{{"TheZ", -1}}}}}));
}

TEST(OmeImage, FieldsAreReadAndWrittenThroughThemselves)
{
    Value tree;
    Image image(tree);
    image.name = "cells";
    image.type = Ome::Type::uint16;
    image.dimension_order = Ome::DimensionOrder::XYTCZ;
    image.size_x = 512;
    image.big_endian = false;
    image.acquisition_date = vela_test::sample_timestamp;
    EXPECT_EQ(image.name.get(), "cells");
    EXPECT_EQ(image.type.get(), Ome::Type::uint16);
    EXPECT_EQ(image.dimension_order.get(), Ome::DimensionOrder::XYTCZ);
    EXPECT_EQ(image.size_x.get(), 512);
    EXPECT_FALSE(image.big_endian.get());
    EXPECT_TREE(tree.at("Name"), "cells");
    EXPECT_TREE(tree.at("").at("ome:AcquisitionDate"), vela_test::sample_timestamp);
    EXPECT_TREE(tree.at("").at("ome:Pixels").at("Type"), "uint16");
    EXPECT_TREE(tree.at("").at("ome:Pixels").at("DimensionOrder"), "XYTCZ");
    EXPECT_TREE(tree.at("").at("ome:Pixels").at("SizeX"), 512);
    EXPECT_TREE(tree.at("").at("ome:Pixels").at("BigEndian"), false);
}

TEST(OmeImage, TypeBitPassesThoughNoSampleTypeLeadsToIt)
{
    Value tree;
    Image image(tree);
    EXPECT_NO_THROW(image.type = "bit");
    EXPECT_EQ(image.type.get(), Ome::Type::bit);
}

TEST(OmeChannel, OverAnEmptyTreeHasItsKeysAndAnEmptyList)
{
    Value tree;
    const Channel channel(tree, Value(), 2);
    Object expected = null_entries({"Name", "SamplesPerPixel", "IlluminationType", "PinholeSize", "PinholeSizeUnit",
                                    "AcquisitionMode", "ContrastMethod", "ExcitationWavelength",
                                    "ExcitationWavelengthUnit", "EmissionWavelength", "EmissionWavelengthUnit", "Fluor",
                                    "NDFilter", "PockelCellSetting", "Color"});
    expected["ID"] = "Channel:2";
    expected[""] =
        null_entries({"ome:LightSourceSettings", "ome:DetectorSettings", "ome:FilterSetRef", "ome:LightPath"});
    EXPECT_TREE(tree, expected);
    EXPECT_EQ(channel.light_source_settings.size(), 0u);
}

TEST(OmeChannel, BindsItsLightSourceSettingsBeforeItsDetector)
{
    Value tree;
    tree.at("").at("ome:LightSourceSettings") = "text";
    EXPECT_BAD_CAST(Channel{tree});
    EXPECT_TREE(tree.at(""), (Object{{"ome:LightSourceSettings", List{"text"}}}));

    Value other;
    other.at("").at("ome:DetectorSettings") = "text";
    EXPECT_BAD_CAST(Channel{other});
    EXPECT_TREE(other.at(""), (Object{{"ome:LightSourceSettings", null}, {"ome:DetectorSettings", "text"}}));
}

TEST(OmePlane, OverAnEmptyTreeHasThirteenNullKeys)
{
    Value tree;
    const Plane plane(tree);
    EXPECT_TREE(
        tree, null_entries({"TheZ", "TheT", "TheC", "DeltaT", "DeltaTUnit", "ExposureTime", "ExposureTimeUnit",
                            "PositionX", "PositionXUnit", "PositionY", "PositionYUnit", "PositionZ", "PositionZUnit"}));
}

TEST(OmeLightSource, BindsTheManufacturerBeforeItsOwnFields)
{
    Value tree = Object{{"ID", 5}};
    EXPECT_BAD_CAST(LightSource{tree});
    Object expected = null_entries({"Manufacturer", "Model", "SerialNumber", "LotNumber"});
    expected["ID"] = 5;
    EXPECT_TREE(tree, expected);

    Value wrong_base = Object{{"Model", 5}};
    EXPECT_BAD_CAST(LightSource{wrong_base});
    EXPECT_TREE(wrong_base, (Object{{"Manufacturer", null}, {"Model", 5}}));
}

TEST(OmeLightSource, OverAnEmptyTreeHasItsKeys)
{
    Value tree;
    const LightSource source(tree, Value(), 1);
    Object expected = null_entries({"Manufacturer", "Model", "SerialNumber", "LotNumber", "ID", "Power", "PowerUnit"});
    expected[""] =
        null_entries({"ome:Laser", "ome:Filament", "ome:Arc", "ome:LightEmittingDiode", "ome:GenericExcitationSource"});
    EXPECT_TREE(tree, expected);
}

} // namespace
