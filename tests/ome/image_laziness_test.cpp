// When planes and channels are made, and that nobody notices.

#include "ome/eager_model.h"
#include "ome/record_fields.h"
#include "support/allocation_watch.h"

#include <Json/write.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

namespace {

using vela_test::EagerImage;
using vela_test::Image;
using vela_test::Value;
using Object = Value::Object;

constexpr std::size_t small_memory = 64 * 1024;

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

template <class Described>
void describe(Described& image, std::size_t count_z, std::size_t count_t)
{
    image.set_sizes({4, 3, count_z, count_t, 1});
    image.set_len(0, 3);
    image.set_len(2, 7);
    image.set_len(3, 11);
    image.set_off(0, 1.5);
    image.set_off(1, -2);
    image.set_off(2, 0.25);
    image.set_off(3, 100);
}

TEST(OmeImageLaziness, MillionPlanesTakeNoMemoryBeforeSomebodyLooks)
{
    Value tree;
    Image image(tree);
    describe(image, 1, 1);
    const vela_test::AllocationWatch watch;
    for (int i = 0; i < 3; ++i)
        describe(image, 1000, 1000);
    EXPECT_LE(watch.peak_extra_bytes(), small_memory);
    EXPECT_EQ(image.planes.size(), 1000000u);
    EXPECT_EQ(planes_of(tree).count(), 1000000u);
    EXPECT_LE(planes_of(tree).filled_count(), 1u);
}

TEST(OmeImageLaziness, MillionChannelsTakeNoMemoryBeforeSomebodyLooks)
{
    Value tree;
    Image image(tree);
    const vela_test::AllocationWatch watch;
    image.set_sizes({4, 3, 1, 1, 1000000});
    EXPECT_LE(watch.peak_extra_bytes(), small_memory);
    EXPECT_EQ(image.channels.size(), 1000000u);
    EXPECT_EQ(channels_of(tree).count(), 1000000u);
    EXPECT_EQ(channels_of(tree).filled_count(), 0u);
    EXPECT_TREE(channels_of(tree).at(2).at("ID"), "Channel:3");
}

TEST(OmeImageLaziness, CopiesAndSecondRecordsTakeNoMemoryEither)
{
    Value tree;
    Image image(tree);
    describe(image, 1000, 1000);
    const vela_test::AllocationWatch watch;
    Value copy(tree);
    Image over_copy(copy);
    Image second(tree);
    describe(over_copy, 1000, 1000);
    describe(second, 1000, 1000);
    EXPECT_LE(watch.peak_extra_bytes(), 2 * small_memory);
    EXPECT_EQ(over_copy.planes.size(), 1000000u);
    EXPECT_EQ(second.planes.size(), 1000000u);
}

TEST(OmeImageLaziness, OffsetsThatAreSetAgainAndAgainTakeNoMemory)
{
    Value tree;
    Image image(tree);
    image.set_sizes({4, 3, 1000, 1000, 1});
    const vela_test::AllocationWatch watch;
    for (int i = 0; i < 10000; ++i)
        image.set_off(0, i);
    EXPECT_LE(watch.peak_extra_bytes(), small_memory);
}

TEST(OmeImageLaziness, FewPlanesAreMadeForALookAtOne)
{
    Value tree;
    Image image(tree);
    describe(image, 1000, 1000);
    EXPECT_EQ(image.planes[10]->the_z, 0);
    EXPECT_TREE(planes_of(tree).at(20).at("TheT"), 20);
    EXPECT_GT(planes_of(tree).filled_count(), 20u);
    EXPECT_LT(planes_of(tree).filled_count(), 40u);
}

TEST(OmeImageLaziness, ALookAtALateRecordMakesNoRecordsBeforeIt)
{
    Value tree;
    Image image(tree);
    image.set_sizes({4, 3, 1, 1000, 1});
    planes_of(tree).as_list();
    const vela_test::AllocationWatch watch;
    EXPECT_EQ(image.planes[999]->the_t, 999);
    EXPECT_LE(watch.peak_extra_bytes(), small_memory);
}

TEST(OmeImageLaziness, SizesThatShrinkAgainAndAgainStaySmall)
{
    Value tree;
    Image image(tree);
    Value model_tree;
    EagerImage model(model_tree);
    const vela_test::AllocationWatch watch;
    for (std::size_t i = 0; i < 250; ++i)
        image.set_sizes({4, 3, 1 + i % 2, 300 - i, 1});
    EXPECT_LE(watch.extra_bytes(), 300 * 2 * std::size_t{2253} + small_memory);
    for (std::size_t i = 0; i < 250; ++i)
        model.set_sizes({4, 3, 1 + i % 2, 300 - i, 1});
    EXPECT_TREE(tree, model_tree);
}

TEST(OmeImageLaziness, OffsetsOfSizesThatShrinkStaySmall)
{
    Value tree;
    Image image(tree);
    Value model_tree;
    EagerImage model(model_tree);
    const auto describe_all = [](auto& described)
    {
        for (std::size_t i = 0; i < 300; ++i)
        {
            described.set_sizes({4, 3, 500 - i, 1, 1});
            described.set_off(2, static_cast<double>(i));
        }
    };
    const vela_test::AllocationWatch watch;
    describe_all(image);
    EXPECT_LE(watch.peak_extra_bytes(), 500 * std::size_t{2253} + small_memory);
    describe_all(model);
    EXPECT_TREE(tree, model_tree);
}

TEST(OmeImageLaziness, UnfilledTreesAreWrittenWhole)
{
    Value tree;
    Image image(tree);
    describe(image, 2, 3);
    Value model_tree;
    EagerImage model(model_tree);
    describe(model, 2, 3);
    std::ostringstream json;
    std::ostringstream model_json;
    json << Value(tree);
    model_json << model_tree;
    EXPECT_EQ(json.str(), model_json.str());
    std::ostringstream xml;
    std::ostringstream model_xml;
    Json::write_xml(Object{{"ome:Image", tree}}, xml);
    Json::write_xml(Object{{"ome:Image", model_tree}}, model_xml);
    EXPECT_EQ(xml.str(), model_xml.str());
}

TEST(OmeImageLaziness, UnfilledTreesCompare)
{
    Value left;
    Value right;
    Image left_image(left);
    Image right_image(right);
    describe(left_image, 3, 4);
    describe(right_image, 3, 4);
    EXPECT_TRUE(Value(left) == Value(right));
    right_image.set_off(0, 2);
    EXPECT_FALSE(Value(left) == Value(right));
}

TEST(OmeImageLaziness, ImagesOfStaticObjectsLiveToTheEndOfTheProcess)
{
    struct Owner
    {
        ~Owner() { std::cerr << tree; }
        Value tree;
        std::unique_ptr<Image> image;
    };
    const auto end_process = []
    {
        static Owner owner;
        owner.image = std::make_unique<Image>(owner.tree);
        owner.image->set_sizes({4, 3, 1, 2, 1});
        std::exit(0);
    };
    EXPECT_EXIT(end_process(), testing::ExitedWithCode(0), "\"TheC\":0,\"TheT\":1,\"TheZ\":0");
}

} // namespace
