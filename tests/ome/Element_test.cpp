#include "ome/record_fields.h"
#include "support/expect_bad_cast.h"

#include <Ome/Id.h>

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace {

using vela_test::Channel;
using vela_test::EagerRecord;
using vela_test::Image;
using vela_test::LightSourceSettings;
using vela_test::ManufacturerSpec;
using vela_test::Plane;
using vela_test::Value;

Value made(const vela_test::RecordTable& table, Value tree, const Value& default_value = Value(), std::size_t index = 0)
{
    const EagerRecord record(tree, table, default_value, index);
    return tree;
}

TEST(OmeId, IsTheNameAColonAndTheIndex)
{
    EXPECT_TREE(Value(Ome::Id("Channel", 1)), "Channel:1");
    EXPECT_TREE(Value(Ome::Id("Image", 10)), "Image:10");
    EXPECT_TREE(Value(Ome::Id("", 3)), ":3");
    EXPECT_TREE(Value(Ome::Id("Plane", std::numeric_limits<std::size_t>::max())), "Plane:18446744073709551615");
}

TEST(OmeId, IsNullForIndexZero)
{
    EXPECT_TREE(Value(Ome::Id("Channel", 0)), Value());
    EXPECT_TREE(Value(Ome::Id("", 0)), Value());
}

TEST(OmeId, HoldsNameAndIndex)
{
    const char* const name = "Pixels";
    const Ome::Id id(name, 7);
    EXPECT_EQ(id.name, name);
    EXPECT_EQ(id.index, 7u);
    static_assert(std::is_convertible_v<Ome::Id, Value>);
}

TEST(OmeElement, BindsItsOwnObject)
{
    Value tree;
    ManufacturerSpec record(tree);
    EXPECT_EQ(&record.structure.slot(), &tree);
    EXPECT_TRUE(tree.is_object());
}

TEST(OmeElement, IsRefusedOverAnythingButAnObject)
{
    for (const Value& wrong : {Value(0), Value(true), Value(1.0), Value(""), Value("{}"), Value(Value::List())})
    {
        Value tree = wrong;
        EXPECT_BAD_CAST(ManufacturerSpec{tree});
        EXPECT_TREE(tree, wrong);
    }
}

TEST(OmeElement, IsRefusedOverAWrongSlotEvenWithADefault)
{
    Value tree = "text";
    EXPECT_BAD_CAST(ManufacturerSpec(tree, Value::Object()));
    EXPECT_TREE(tree, "text");
}

TEST(OmeElement, AnEmptySlotIsGivenTheDefault)
{
    Value tree;
    const ManufacturerSpec record(tree, Value::Object{{"Model", "A"}, {"other", 1}});
    EXPECT_TREE(tree, (Value::Object{{"Manufacturer", Value()},
                                     {"Model", "A"},
                                     {"SerialNumber", Value()},
                                     {"LotNumber", Value()},
                                     {"other", 1}}));
}

TEST(OmeElement, TheDefaultIsAssignedOverWhatTheSlotHolds)
{
    Value tree = Value::Object{{"Model", "B"}, {"LotNumber", "7"}};
    const ManufacturerSpec record(tree, Value::Object{{"Model", "A"}});
    EXPECT_TREE(
        tree,
        (Value::Object{{"Manufacturer", Value()}, {"Model", "A"}, {"SerialNumber", Value()}, {"LotNumber", Value()}}));
}

TEST(OmeElement, ANullDefaultLeavesTheSlot)
{
    Value tree = Value::Object{{"Model", "B"}};
    const ManufacturerSpec record(tree, Value());
    EXPECT_TREE(tree.at("Model"), "B");
}

TEST(OmeElement, ADefaultThatIsNoObjectIsRefusedAndLeavesTheSlot)
{
    for (const Value& wrong : {Value(0), Value(""), Value(false), Value(Value::List())})
    {
        Value empty;
        EXPECT_BAD_CAST(ManufacturerSpec(empty, wrong));
        EXPECT_TREE(empty, Value());
        Value filled = Value::Object{{"Model", "B"}};
        EXPECT_BAD_CAST(ManufacturerSpec(filled, wrong));
        EXPECT_TREE(filled, (Value::Object{{"Model", "B"}}));
    }
}

TEST(OmeElement, ADefaultThatHoldsWhatAFieldMayNotHoldIsAssignedAndThenRefused)
{
    Value tree;
    EXPECT_BAD_CAST(ManufacturerSpec(tree, Value::Object{{"Model", 5}}));
    EXPECT_TREE(tree, (Value::Object{{"Manufacturer", Value()}, {"Model", 5}}));
}

TEST(OmeElement, TheIndexFeedsTheDefaultOfTheId)
{
    Value channel;
    const Channel third(channel, Value(), 3);
    EXPECT_TREE(channel.at("ID"), "Channel:3");
    EXPECT_TREE(channel, made(vela_test::channel_table(), Value(), Value(), 3));

    Value image;
    const Image second(image, Value(), 2);
    EXPECT_TREE(image.at("ID"), "Image:2");
    EXPECT_TREE(image.at("").at("ome:Pixels").at("ID"), "Pixels:2");
    EXPECT_TREE(image, made(vela_test::image_table(), Value(), Value(), 2));
}

TEST(OmeElement, IndexZeroLeavesTheIdNull)
{
    Value channel;
    const Channel record(channel);
    EXPECT_TREE(channel.at("ID"), Value());
}

TEST(OmeElement, AnIdThatIsThereStays)
{
    Value channel = Value::Object{{"ID", "mine"}};
    const Channel record(channel, Value(), 3);
    EXPECT_TREE(channel.at("ID"), "mine");

    Value from_default;
    const Channel other(from_default, Value::Object{{"ID", ""}}, 3);
    EXPECT_TREE(from_default.at("ID"), "");
}

TEST(OmeElement, RecordsWhoseIdHasNoDefaultTakeNoneFromTheIndex)
{
    Value settings;
    const LightSourceSettings first(settings, Value(), 1);
    EXPECT_TREE(settings.at("ID"), Value());
    Value instrument;
    const vela_test::Instrument second(instrument, Value(), 1);
    EXPECT_TREE(instrument.at("ID"), Value());
    Value source;
    const vela_test::LightSource third(source, Value(), 1);
    EXPECT_TREE(source.at("ID"), Value());
}

TEST(OmeElement, APlaneHasNoIdAndNoContent)
{
    Value tree;
    const Plane record(tree, Value(), 1);
    ASSERT_TRUE(tree.is_object());
    EXPECT_EQ(tree.if_object()->count("ID"), 0u);
    EXPECT_EQ(tree.if_object()->count(""), 0u);
    EXPECT_EQ(tree.if_object()->size(), 13u);
}

TEST(OmeElement, KeysThatNoFieldHasStay)
{
    Value tree = Value::Object{{"Vendor", 5}, {"", "text content"}};
    const Plane record(tree);
    EXPECT_TREE(tree.at("Vendor"), 5);
    EXPECT_TREE(tree.at(""), "text content");
}

TEST(OmeElement, RecordsAreNeitherCopiedNorMoved)
{
    static_assert(!std::is_copy_constructible_v<Plane> && !std::is_move_constructible_v<Plane>);
    static_assert(!std::is_copy_constructible_v<Image> && !std::is_move_constructible_v<Image>);
    static_assert(!std::is_copy_assignable_v<Plane> && !std::is_copy_assignable_v<Image>);
}

} // namespace
