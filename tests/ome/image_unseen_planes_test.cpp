// Planes that nobody has looked at while handlers look, lists are rearranged and offsets are set.

#include "ome/eager_model.h"
#include "ome/record_fields.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

#include <Json/write.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using vela_test::EagerImage;
using vela_test::Image;
using vela_test::Value;
using Object = Value::Object;

const Value null;

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

/// Calls a function, whatever the value.
class Calling final : public Json::ChangeHandler<double>
{
public:
    explicit Calling(std::function<void()> called) : call(std::move(called)) {}
    void changed(const double&) override { call(); }

private:
    std::function<void()> call;
};

/// Twenty planes, of which the record of the first calls when its position changes.
class OmeImageHandlers : public testing::Test
{
protected:
    void call(std::function<void()> function)
    {
        image.set_sizes({4, 3, 1, 20, 1});
        image.planes[0]->position_x.set_change_handler(boost::make_shared<Calling>(std::move(function)));
        image.set_off(0, 7.0);
    }

    void expect_all_changed()
    {
        EXPECT_EQ(planes_of(tree).count(), 20u);
        for (const Value& plane : planes_of(tree).as_list())
            EXPECT_TREE(Value(plane).at("PositionX"), 7.0);
    }

    Value tree;
    Image image{tree};
};

TEST_F(OmeImageHandlers, MayLookAtTheTreeWhileAnOffsetIsSet)
{
    call([this] { EXPECT_TREE(planes_of(tree).at(15).at("PositionX"), null); });
    expect_all_changed();
}

TEST_F(OmeImageHandlers, MayWriteTheTreeWhileAnOffsetIsSet)
{
    call([this] { std::ostringstream() << tree; });
    expect_all_changed();
}

TEST_F(OmeImageHandlers, MayLookAtRecordsWhileAnOffsetIsSet)
{
    call([this] { EXPECT_TREE(image.planes[19]->position_x.value(), null); });
    expect_all_changed();
}

TEST_F(OmeImageHandlers, MayMakeManyRecordsWhileAnOffsetIsSet)
{
    image.set_sizes({4, 3, 1, 20000, 1});
    image.planes[0]->position_x.set_change_handler(
        boost::make_shared<Calling>([this] { EXPECT_EQ(image.planes[19000]->the_t, 19000); }));
    image.planes[300];
    image.set_off(0, 7.0);
    for (const std::size_t index : {std::size_t{0}, std::size_t{301}, std::size_t{19000}, std::size_t{19999}})
        EXPECT_TREE(planes_of(tree).at(index).at("PositionX"), 7.0);
}

TEST_F(OmeImageHandlers, ThatAddAPlaneHaveItChangedToo)
{
    call([this] { image.planes.add(); });
    EXPECT_EQ(image.planes.size(), 21u);
    for (const Value& plane : planes_of(tree).as_list())
        EXPECT_TREE(Value(plane).at("PositionX"), 7.0);
}

/// Five planes, and a tree that is rearranged before anybody has looked through the record.
class OmeImageRearranged : public testing::Test
{
protected:
    OmeImageRearranged() { image.set_sizes({4, 3, 5, 1, 1}); }

    Value::List& list() { return planes_of(tree).as_list(); }

    Value tree;
    Image image{tree};
};

TEST_F(OmeImageRearranged, RecordsStayWithTheirElementsBehindANewFirstOne)
{
    list().emplace_front();
    image.set_off(0, 2.0);
    EXPECT_TREE(list().front(), null);
    EXPECT_EQ(image.planes[0]->the_z, 0);
    EXPECT_TREE(list().back().at("PositionX"), 2.0);
}

TEST_F(OmeImageRearranged, RecordsStayWithTheirElementsInReverse)
{
    list().reverse();
    EXPECT_EQ(image.planes[0]->the_z, 0);
    EXPECT_EQ(image.planes[4]->the_z, 4);
    image.planes[4]->position_x = 1;
    EXPECT_TREE(list().front().at("PositionX"), 1);
}

TEST_F(OmeImageRearranged, RecordsStayWithTheirElementsWhereOthersAreTakenOut)
{
    list().pop_front();
    EXPECT_EQ(image.planes.size(), 5u);
    EXPECT_EQ(image.planes[1]->the_z, 1);
    EXPECT_EQ(image.planes[4]->the_z, 4);
    EXPECT_EQ(list().size(), 4u);
}

TEST_F(OmeImageRearranged, AnElementThatIsReplacedLeavesTheOthersInReach)
{
    planes_of(tree).at(1) = "text";
    EXPECT_EQ(image.planes[4]->the_z, 4);
    EXPECT_BAD_CAST(image.planes[1]);
    EXPECT_EQ(image.planes.add()->structure.slot().if_object()->size(), 13u);
    EXPECT_EQ(list().size(), 6u);
    EXPECT_TREE(planes_of(tree).at(1), "text");
}

TEST_F(OmeImageRearranged, AListThatIsReplacedIsFilledUpToTheRecord)
{
    planes_of(tree) = Value();
    EXPECT_TRUE(image.planes[2]->the_z.is_null());
    EXPECT_EQ(list().size(), 3u);
    image.planes.clear();
    image.set_sizes({4, 3, 2, 1, 1});
    EXPECT_EQ(image.planes[1]->the_z, 1);
    EXPECT_EQ(list().size(), 3u);
}

TEST(OmeImageOffsetsOfNothing, LeaveTheTreeAlone)
{
    for (const Value& planes : {Value(), Value("text"), Value(Value::List{Value("x")})})
    {
        Value tree;
        Image image(tree);
        planes_of(tree) = planes;
        const Value before(tree);
        image.set_off(0, 2.5);
        image.set_off(1, 2.5);
        image.set_off(3, 2.5);
        EXPECT_TREE(tree, before);
    }
}

TEST(OmeImageOffsetsOfZero, KeepTheSignOfAZeroThatIsThere)
{
    Value tree;
    Image image(tree);
    image.set_sizes({4, 3, 1, 1, 4});
    image.set_off(1, -0.0);
    image.set_off(1, 0.0);
    image.set_off(0, 0.0);
    image.set_off(0, 1.0);
    image.set_off(0, -0.0);
    for (Value& plane : planes_of(tree).as_list())
    {
        EXPECT_TREE(plane.at("PositionY"), -0.0);
        EXPECT_TREE(plane.at("PositionX"), -0.0);
    }
}

TEST(OmeImageOffsetsInTime, ThatFallFailAtTheFirstPlaneThatIsNotAboveZero)
{
    for (const double off : {-2.0, 0.5, 1.5, 9.0})
    {
        SCOPED_TRACE(off);
        Value tree;
        Value model_tree;
        Image image(tree);
        EagerImage model(model_tree);
        image.set_sizes({4, 3, 2, 2, 3});
        model.set_sizes({4, 3, 2, 2, 3});
        pixels_of(tree).at("TimeIncrement") = -1.0;
        pixels_of(model_tree).at("TimeIncrement") = -1.0;
        if (off > 1)
        {
            image.set_off(3, off);
            model.set_off(3, off);
        }
        else
        {
            EXPECT_BAD_CAST(image.set_off(3, off));
            EXPECT_THROW(model.set_off(3, off), std::bad_cast);
        }
        EXPECT_TREE(tree, model_tree);
    }
}

/// The same on both, up to a failure that both or none have.
template <class Call>
void on_both(Image& image, EagerImage& model, Call call)
{
    const auto fails = [&call](auto& described)
    {
        try
        {
            call(described);
        }
        catch (const std::bad_cast&)
        {
            return true;
        }
        return false;
    };
    EXPECT_EQ(fails(image), fails(model));
}

/// A new record over a list with what an older and larger layout has left behind the newer one.
TEST(OmeImageOffsetsInTime, ReachThePlanesOfOlderLayouts)
{
    for (const double increment : {0.5, 1.0, -1.0})
    {
        for (int off = -6; off <= 6; ++off)
        {
            SCOPED_TRACE(std::to_string(increment) + " " + std::to_string(off));
            Value tree;
            Value model_tree;
            const auto lay_out = [](auto& image)
            {
                image.set_sizes({4, 3, 2, 5, 2});
                image.set_sizes({4, 3, 2, 3, 1});
                image.set_sizes({4, 3, 3, 1, 1});
            };
            Image first(tree);
            EagerImage first_model(model_tree);
            lay_out(first);
            lay_out(first_model);
            Image image(tree);
            EagerImage model(model_tree);
            EXPECT_EQ(image.planes.size(), 20u);
            for (Value* root : {&tree, &model_tree})
            {
                pixels_of(*root).at("TimeIncrement") = increment;
                pixels_of(*root).at("TimeIncrementUnit") = "s";
                pixels_of(*root).at("SizeT") = 3;
            }
            on_both(image, model, [off](auto& described) { described.set_off(3, off * 0.5); });
            on_both(image, model, [off](auto& described) { described.set_off(2, off); });
            EXPECT_TREE(Value(tree), model_tree);
            // An offset that is given anew follows the layout of then.
            on_both(first, first_model, [](auto& described) { described.set_sizes({4, 3, 1, 2, 2}); });
            on_both(image, model, [](auto& described) { described.set_off(2, 3); });
            EXPECT_TREE(tree, model_tree);
        }
    }
}

TEST(OmeImageOffsetsInTime, LeaveNothingWhereTheFirstTimeFailsAndTheUnitWouldToo)
{
    for (const double off : {-100.0, 100.0})
    {
        Value tree;
        Value model_tree;
        Image image(tree);
        EagerImage model(model_tree);
        on_both(image, model, [](auto& described) { described.set_sizes({4, 3, 2, 3, 2}); });
        for (Value* root : {&tree, &model_tree})
        {
            pixels_of(*root).at("TimeIncrement") = 1;
            pixels_of(*root).at("TimeIncrementUnit") = "m";
        }
        on_both(image, model, [off](auto& described) { described.set_off(3, off); });
        EXPECT_TREE(tree, model_tree);
        EXPECT_TREE(planes_of(tree).at(0).at("DeltaT"), off < 0 ? Value() : Value(99.0));
    }
}

TEST(OmeImageRearrangedLists, OfChannelsAreLaidOverAsPlanesAreWhole)
{
    Value tree;
    {
        Image image(tree);
        image.set_sizes({4, 3, 1, 2, 3});
    }
    std::swap(planes_of(tree), channels_of(tree));
    Value expected(tree);
    expected.at("").at("ome:Pixels").at("").at("ome:Plane").as_list();
    Image image(tree);
    EagerImage model(expected);
    image.set_off(0, 1);
    model.set_off(0, 1);
    image.set_sizes({4, 3, 1, 3, 2});
    model.set_sizes({4, 3, 1, 3, 2});
    EXPECT_TREE(tree, expected);
}

TEST(OmeImageFailures, ReadTheSizeBeforeThePhysicalSize)
{
    Value tree;
    Image image(tree);
    image.set_sizes({4, 3, 2, 1, 2});
    pixels_of(tree).at("PhysicalSizeZ") = 1;
    pixels_of(tree).at("SizeZ") = Value();
    EXPECT_BAD_CAST(image.set_off(2, 0));
    EXPECT_TREE(pixels_of(tree).at("PhysicalSizeZ"), 1);
    pixels_of(tree).at("TimeIncrement") = 2;
    pixels_of(tree).at("SizeT") = Value();
    EXPECT_BAD_CAST(image.set_off(3, 0));
    EXPECT_TREE(pixels_of(tree).at("TimeIncrement"), 2);
}

TEST(OmeImageFailures, KnowNoDimensionAboveFourWhateverTheOrderIs)
{
    Value tree;
    Image image(tree);
    pixels_of(tree).at("DimensionOrder") = 0;
    EXPECT_THROW_TEXT(image.set_len(5, 2), std::invalid_argument, "Unsupported physical dimension");
    EXPECT_THROW_TEXT(image.set_off(5, 2), std::invalid_argument, "Unsupported physical dimension");
}

TEST(OmeImageFailures, DivideByASizeOfZeroThatWasWrittenPastTheField)
{
    Value tree;
    Image image(tree);
    image.set_sizes({4, 3, 2, 1, 2});
    pixels_of(tree).at("SizeX") = 0;
    image.set_len(0, 2);
    EXPECT_TREE(pixels_of(tree).at("PhysicalSizeX"), std::numeric_limits<double>::infinity());
    EXPECT_BAD_CAST(image.set_len(0, -2));
}

} // namespace
