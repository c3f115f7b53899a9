#include "ome/record_fields.h"
#include "support/expect_bad_cast.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using vela_test::Channel;
using vela_test::EagerRecord;
using vela_test::Image;
using vela_test::Instrument;
using vela_test::LightSource;
using vela_test::Plane;
using vela_test::RecordTable;
using vela_test::Value;
using Object = Value::Object;
using List = Value::List;

const Value null;

Value& content_of(Value& image)
{
    return image.at("").at("ome:Pixels").at("");
}

Value& channels_of(Value& image)
{
    return content_of(image).at("ome:Channel");
}

Value& planes_of(Value& image)
{
    return content_of(image).at("ome:Plane");
}

Value image_with_channels(const Value& channels)
{
    Value tree;
    channels_of(tree) = channels;
    return tree;
}

/// An element as a record leaves it that was laid over `tree`.
Value laid(const RecordTable& table, Value tree, std::size_t index = 0)
{
    const EagerRecord record(tree, table, Value(), index);
    return tree;
}

Value channel(Value tree, std::size_t index = 0)
{
    return laid(vela_test::channel_table(), std::move(tree), index);
}

Value named(const char* name)
{
    return Object{{"Name", name}};
}

TEST(OmeCollection, KeysComeFromTheRecords)
{
    EXPECT_STREQ(Channel::element_key(), "ome:Channel");
    EXPECT_STREQ(Image::element_key(), "ome:Image");
    EXPECT_STREQ(Instrument::element_key(), "ome:Instrument");
    EXPECT_STREQ(LightSource::element_key(), "ome:LightSource");
    EXPECT_STREQ(vela_test::LightSourceSettings::element_key(), "ome:LightSourceSettings");
    EXPECT_STREQ(Plane::element_key(), "ome:Plane");
}

TEST(OmeCollection, OverNothingIsEmptyAndMakesANullSlot)
{
    Value tree;
    const Image image(tree);
    EXPECT_EQ(image.channels.size(), 0u);
    EXPECT_TRUE(image.channels.empty());
    EXPECT_TRUE(image.channels.begin() == image.channels.end());
    EXPECT_TREE(channels_of(tree), null);
}

TEST(OmeCollection, OverAnEmptyListIsEmptyAndLeavesTheList)
{
    Value tree = image_with_channels(List());
    const Image image(tree);
    EXPECT_EQ(image.channels.size(), 0u);
    EXPECT_TREE(channels_of(tree), List());
}

TEST(OmeCollection, ASingleChildBecomesAListOfOne)
{
    Value tree = image_with_channels(named("DAPI"));
    const Image image(tree);
    ASSERT_EQ(image.channels.size(), 1u);
    EXPECT_EQ(image.channels[0]->name.get(), "DAPI");
    EXPECT_TREE(channels_of(tree), List{channel(named("DAPI"))});
}

TEST(OmeCollection, AListGivesARecordForEachElement)
{
    Value tree = image_with_channels(List{named("DAPI"), named("GFP"), Object()});
    const Image image(tree);
    ASSERT_EQ(image.channels.size(), 3u);
    EXPECT_EQ(image.channels[1]->name.get(), "GFP");
    EXPECT_EQ(&image.channels[2]->structure.slot(), &channels_of(tree).at(2));
    EXPECT_TREE(channels_of(tree), (List{channel(named("DAPI")), channel(named("GFP")), channel(Object())}));
}

TEST(OmeCollection, LoadingGivesNoIds)
{
    Value tree = image_with_channels(List{named("DAPI"), Object{{"ID", "c"}}});
    const Image image(tree);
    EXPECT_TREE(image.channels[0]->id.value(), null);
    EXPECT_TREE(image.channels[1]->id.value(), "c");
    EXPECT_TREE(channels_of(tree).at(0).at("ID"), null);
}

TEST(OmeCollection, LoadingALoadedTreeAgainAddsNothing)
{
    Value tree = image_with_channels(List{named("DAPI"), named("GFP")});
    {
        const Image image(tree);
        EXPECT_EQ(image.channels[1]->name.get(), "GFP");
    }
    const Value before = tree;
    const Image image(tree);
    EXPECT_EQ(image.channels[0]->name.get(), "DAPI");
    EXPECT_TREE(tree, before);
}

TEST(OmeCollection, ANullElementBecomesAnElementWithNullFields)
{
    Value tree = image_with_channels(List{null, null});
    const Image image(tree);
    EXPECT_EQ(image.channels.size(), 2u);
    EXPECT_TREE(channels_of(tree), (List{channel(null), channel(null)}));
}

TEST(OmeCollection, AnElementThatIsNoObjectIsRefusedAndTheListStays)
{
    for (const Value& wrong : {Value(0), Value(false), Value(1.5), Value("text")})
    {
        Value single = image_with_channels(wrong);
        EXPECT_BAD_CAST(Image{single});
        EXPECT_TREE(channels_of(single), List{wrong});
        Value second = image_with_channels(List{Object(), wrong, Object()});
        EXPECT_BAD_CAST(Image{second});
        EXPECT_TREE(channels_of(second), (List{channel(null), wrong, Object()}));
    }
}

TEST(OmeCollection, AWrongFieldOfAnElementIsRefusedAfterTheFieldsBeforeIt)
{
    Value tree = image_with_channels(List{Object(), Object{{"SamplesPerPixel", 0}}, Object()});
    EXPECT_BAD_CAST(Image{tree});
    EXPECT_TREE(channels_of(tree),
                (List{channel(null), Object{{"ID", null}, {"Name", null}, {"SamplesPerPixel", 0}}, Object()}));
    EXPECT_EQ(content_of(tree).if_object()->count("ome:Plane"), 0u);
}

TEST(OmeCollection, AddNumbersTheIdsFromOne)
{
    Value tree;
    Image image(tree);
    const auto first = image.channels.add();
    const auto second = image.channels.add(Value());
    EXPECT_EQ(image.channels.size(), 2u);
    EXPECT_EQ(first->id.get(), "Channel:1");
    EXPECT_EQ(second->id.get(), "Channel:2");
    EXPECT_EQ(image.channels[0], first);
    EXPECT_EQ(image.channels[1], second);
    EXPECT_TREE(channels_of(tree), (List{channel(null, 1), channel(null, 2)}));
}

TEST(OmeCollection, AddAssignsTheDefault)
{
    Value tree;
    Image image(tree);
    const auto added = image.channels.add(Object{{"Name", "DAPI"}, {"other", 1}});
    EXPECT_EQ(added->name.get(), "DAPI");
    EXPECT_TREE(channels_of(tree), List{channel(Object{{"Name", "DAPI"}, {"other", 1}}, 1)});
}

TEST(OmeCollection, AddGoesOnBehindALoadedList)
{
    Value tree = image_with_channels(List{named("DAPI"), named("GFP")});
    Image image(tree);
    EXPECT_EQ(image.channels.add()->id.get(), "Channel:3");
    EXPECT_TREE(channels_of(tree), (List{channel(named("DAPI")), channel(named("GFP")), channel(null, 3)}));
}

TEST(OmeCollection, ClearEmptiesTheRecordsAndLeavesTheElements)
{
    Value tree = image_with_channels(List{named("DAPI"), named("GFP")});
    Image image(tree);
    const Value before = tree;
    image.channels.clear();
    EXPECT_EQ(image.channels.size(), 0u);
    EXPECT_TRUE(image.channels.empty());
    EXPECT_TREE(tree, before);
}

TEST(OmeCollection, AddAfterClearLandsOnTheOldSlots)
{
    Value tree = image_with_channels(List{named("DAPI"), Object{{"ID", "mine"}, {"Name", "GFP"}}});
    Image image(tree);
    image.channels.clear();
    const auto first = image.channels.add();
    EXPECT_EQ(first->name.get(), "DAPI");
    EXPECT_EQ(first->id.get(), "Channel:1");
    const auto second = image.channels.add();
    EXPECT_EQ(second->name.get(), "GFP");
    EXPECT_EQ(second->id.get(), "mine");
    EXPECT_EQ(image.channels.add()->id.get(), "Channel:3");
    EXPECT_EQ(channels_of(tree).count(), 3u);
}

TEST(OmeCollection, AddAfterClearWithADefaultReplacesTheOldElement)
{
    Value tree = image_with_channels(List{Object{{"Name", "DAPI"}, {"Fluor", "dye"}}, named("GFP")});
    Image image(tree);
    image.channels.clear();
    image.channels.add(named("RFP"));
    EXPECT_TREE(channels_of(tree), (List{channel(named("RFP"), 1), channel(named("GFP"))}));
}

TEST(OmeCollection, AddOnASlotThatWasWrittenWronglyIsRefusedAndAddsNoRecord)
{
    Value tree;
    Image image(tree);
    channels_of(tree) = List{Object{{"Name", 5}}};
    EXPECT_BAD_CAST(image.channels.add());
    EXPECT_EQ(image.channels.size(), 0u);
    EXPECT_TREE(channels_of(tree), (List{Object{{"ID", "Channel:1"}, {"Name", 5}}}));
}

TEST(OmeCollection, AddOfADefaultThatIsNoObjectIsRefusedAndLeavesANullElement)
{
    Value tree;
    Image image(tree);
    image.channels.add();
    EXPECT_BAD_CAST(image.channels.add("text"));
    EXPECT_EQ(image.channels.size(), 1u);
    EXPECT_TREE(channels_of(tree), (List{channel(null, 1), null}));
    EXPECT_EQ(image.channels.add()->id.get(), "Channel:2");
    EXPECT_TREE(channels_of(tree), (List{channel(null, 1), channel(null, 2)}));
}

TEST(OmeCollection, AddTurnsWhatStandsUnderTheKeyIntoAList)
{
    Value tree;
    Image image(tree);
    channels_of(tree) = named("DAPI");
    EXPECT_EQ(image.channels.size(), 0u);
    EXPECT_EQ(image.channels.add()->name.get(), "DAPI");
    EXPECT_TREE(channels_of(tree), List{channel(named("DAPI"), 1)});
}

TEST(OmeCollection, RecordsOutliveTheClearing)
{
    Value tree;
    Image image(tree);
    const auto held = image.channels.add();
    image.channels.clear();
    held->name = "held";
    EXPECT_TREE(channels_of(tree).at(0).at("Name"), "held");
    const auto again = image.channels.add();
    EXPECT_NE(again, held);
    EXPECT_EQ(again->name.get(), "held");
    again->name = "again";
    EXPECT_EQ(held->name.get(), "again");
}

TEST(OmeCollection, LookingTwiceGivesTheSameRecord)
{
    Value tree = image_with_channels(List{named("DAPI"), named("GFP")});
    const Image image(tree);
    const auto first = image.channels[1];
    EXPECT_EQ(image.channels[1], first);
    std::vector<boost::shared_ptr<Channel>> walked;
    for (const auto& record : image.channels)
        walked.push_back(record);
    ASSERT_EQ(walked.size(), 2u);
    EXPECT_EQ(walked[1], first);
    EXPECT_EQ(walked[0], image.channels[0]);
}

TEST(OmeCollection, EveryRecordHasItsChildrenUnderTheirKey)
{
    Value tree;
    vela_test::Document document(tree);
    document.instruments.add()->light_sources.add()->power_unit = "mW";
    document.images.add()->channels.add()->light_source_settings.add()->attenuation = 0.5;
    document.images[0]->planes.add()->the_c = 0;
    Value& content = tree.at("ome:OME").at("");
    EXPECT_TREE(content.at("ome:Instrument").at(0).at("").at("ome:LightSource").at(0).at("PowerUnit"), "mW");
    Value& image = content.at("ome:Image").at(0);
    EXPECT_TREE(channels_of(image).at(0).at("").at("ome:LightSourceSettings").at(0).at("Attenuation"), 0.5);
    EXPECT_TREE(planes_of(image).at(0).at("TheC"), 0);
}

TEST(OmeCollection, ElementsWithoutDefaultOfTheIdGetNoneByAdding)
{
    Value tree;
    vela_test::Document document(tree);
    EXPECT_TREE(document.instruments.add()->id.value(), null);
    EXPECT_TREE(document.instruments[0]->light_sources.add()->id.value(), null);
    EXPECT_TREE(document.images.add()->channels.add()->light_source_settings.add()->id.value(), null);
}

TEST(OmeCollection, CollectionsInsideElementsAreLoadedToo)
{
    Value tree =
        image_with_channels(List{Object{{"", Object{{"ome:LightSourceSettings", Object{{"Attenuation", 1}}}}}}});
    const Image image(tree);
    EXPECT_TREE(channels_of(tree).at(0).at("").at("ome:LightSourceSettings"),
                (List{laid(vela_test::light_source_settings_table(), Object{{"Attenuation", 1}})}));
    EXPECT_EQ(image.channels[0]->light_source_settings.size(), 1u);

    Value wrong =
        image_with_channels(List{Object{{"", Object{{"ome:LightSourceSettings", Object{{"Attenuation", 2}}}}}}});
    EXPECT_BAD_CAST(Image{wrong});
    EXPECT_TREE(channels_of(wrong).at(0).at(""),
                (Object{{"ome:LightSourceSettings", List{Object{{"ID", null}, {"Attenuation", 2}}}}}));
}

} // namespace
