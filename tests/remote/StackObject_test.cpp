// Stacks of the library behind the face.
#include <Remote/StackObject.h>

#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>

#include "support/expect_vela_error.h"

#include <boost/weak_ptr.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <type_traits>

using Remote::StackObject;
using testing::Each;
using testing::ElementsAre;

namespace {

using Sizes = std::vector<std::uint64_t>;

static_assert(std::is_base_of_v<Remote::Stack, StackObject>);
static_assert(std::is_same_v<Remote::Type, vela_dt>);
static_assert(sizeof(StackObject) == sizeof(Remote::Stack) + sizeof(boost::shared_ptr<VStackInterface>));

/// Notes the operation that is called, with the axis, and gives answers of its own.
class RecordingStack : public VStackImp
{
public:
    RecordingStack() : VStackImp(Ome::Type::uint8, {2, 3}, Ome::DimensionOrder::XYZTC) {}

    void set_name(const std::string& value) override { note("set_name " + value); }
    void set_description(const std::string& value) override { note("set_description " + value); }
    void set_len(std::uint64_t axis, double value) override { note("set_len", axis, value); }
    void set_len(const std::vector<double>& values) override { note("set_len", values.size(), values.at(0)); }
    void set_off(std::uint64_t axis, double value) override { note("set_off", axis, value); }
    void set_off(const std::vector<double>& values) override { note("set_off", values.size(), values.at(0)); }
    void set_label(std::uint64_t axis, const std::string& value) override { note("set_label " + value, axis); }
    void set_labels(const std::vector<std::string>& values) override { note("set_labels " + values.at(0)); }
    const std::string& get_name() const override { return note("get_name"), a_text; }
    const std::string& get_description() const override { return note("get_description"), a_text; }
    std::uint64_t get_number_of_elements() const override { return note("get_number_of_elements"), ~std::uint64_t{0}; }
    vela_dt get_dt() const override { return note("get_dt"), vela_dt_array; }
    std::uint64_t get_rank() const override { return note("get_rank"), ~std::uint64_t{1}; }
    std::uint64_t get_dimension_size(std::uint64_t axis) const override
    {
        return note("get_dimension_size", axis), ~std::uint64_t{2};
    }
    const Sizes& get_sizes() const override { return note("get_sizes"), some_sizes; }
    const std::string& get_label(std::uint64_t axis) const override { return note("get_label", axis), a_text; }
    const std::vector<std::string>& get_labels() const override { return note("get_labels"), some_texts; }
    double get_length(std::uint64_t axis) const override { return note("get_length", axis), 0.25; }
    const std::vector<double>& get_lengths() const override { return note("get_lengths"), some_numbers; }
    double get_offset(std::uint64_t axis) const override { return note("get_offset", axis), -0.5; }
    const std::vector<double>& get_offsets() const override { return note("get_offsets"), some_numbers; }
    Ome::Image<Json::SignalingReference>& meta_data() override
    {
        note("meta_data");
        return VStackImp::meta_data();
    }
    const char* share() const override { return note("share"), "an id"; }

    /// What has been called since the last time.
    std::vector<std::string> take_calls() const { return std::exchange(calls, {}); }

    const std::string a_text = "a text";
    const std::vector<std::string> some_texts = {"a", "b", "c"};
    const std::vector<double> some_numbers = {1.5, 2.5};
    const Sizes some_sizes = {7, 8};

private:
    void note(const std::string& call) const { calls.push_back(call); }
    void note(const std::string& call, std::uint64_t axis) const { note(call + " " + std::to_string(axis)); }
    void note(const std::string& call, std::uint64_t axis, double value) const
    {
        note(call + " " + std::to_string(axis) + " " + std::to_string(static_cast<int>(value)));
    }

    mutable std::vector<std::string> calls;
};

class StackObjectForwards : public testing::Test
{
protected:
    StackObjectForwards() { recording->take_calls(); }

    void expect_call(const std::string& call) const { EXPECT_THAT(recording->take_calls(), ElementsAre(call)); }

    boost::shared_ptr<RecordingStack> recording{new RecordingStack};
    StackObject object{recording};
};

TEST_F(StackObjectForwards, WhatNamesTheStack)
{
    EXPECT_EQ(object.name(), "a text");
    expect_call("get_name");
    object.set_name("n");
    expect_call("set_name n");
    EXPECT_EQ(object.description(), "a text");
    expect_call("get_description");
    object.set_description("d");
    expect_call("set_description d");
}

TEST_F(StackObjectForwards, WhatItsSamplesAre)
{
    EXPECT_EQ(object.number_of_elements(), ~std::uint64_t{0});
    expect_call("get_number_of_elements");
    EXPECT_EQ(object.type(), vela_dt_array);
    expect_call("get_dt");
    EXPECT_EQ(object.number_of_dimensions(), ~std::uint64_t{1});
    expect_call("get_rank");
    EXPECT_EQ(object.size(1), ~std::uint64_t{2});
    expect_call("get_dimension_size 1");
    EXPECT_EQ(object.sizes(), recording->some_sizes);
    expect_call("get_sizes");
    EXPECT_EQ(object.share(), "an id");
    expect_call("share");
}

TEST_F(StackObjectForwards, Labels)
{
    EXPECT_EQ(object.label(1), "a text");
    expect_call("get_label 1");
    object.set_label(1, "l");
    expect_call("set_label l 1");
    EXPECT_EQ(object.labels(), recording->some_texts);
    expect_call("get_labels");
    object.set_labels({"l"});
    expect_call("set_labels l");
}

TEST_F(StackObjectForwards, LengthsAndOffsets)
{
    EXPECT_EQ(object.length(1), 0.25);
    expect_call("get_length 1");
    object.set_length(1, 5.0);
    expect_call("set_len 1 5");
    EXPECT_EQ(object.lengths(), recording->some_numbers);
    expect_call("get_lengths");
    object.set_lengths({6.0, 7.0, 8.0});
    expect_call("set_len 3 6");
    EXPECT_EQ(object.offset(1), -0.5);
    expect_call("get_offset 1");
    object.set_offset(1, 5.0);
    expect_call("set_off 1 5");
    EXPECT_EQ(object.offsets(), recording->some_numbers);
    expect_call("get_offsets");
    object.set_offsets({6.0, 7.0, 8.0});
    expect_call("set_off 3 6");
}

TEST_F(StackObjectForwards, Metadata)
{
    const Json::Map<std::string, Json::Value> record = object.meta_data();
    expect_call("meta_data");
    EXPECT_EQ(record, recording->VStackImp::meta_data().structure.get());
}

TEST_F(StackObjectForwards, NegativeAxesWithTheirSign)
{
    object.size(-1);
    expect_call("get_dimension_size 18446744073709551615");
    object.label(INT32_MIN);
    expect_call("get_label 18446744071562067968");
    object.set_label(-2, "l");
    expect_call("set_label l 18446744073709551614");
    object.length(-1);
    expect_call("get_length 18446744073709551615");
    object.set_length(-1, 0.0);
    expect_call("set_len 18446744073709551615 0");
    object.offset(-1);
    expect_call("get_offset 18446744073709551615");
    object.set_offset(-1, 0.0);
    expect_call("set_off 18446744073709551615 0");
}

std::unique_ptr<Remote::Stack> make(Remote::Type type, const Sizes& sizes)
{
    return std::unique_ptr<Remote::Stack>(Remote::get_stack(type, sizes));
}

TEST(RemoteStack, HasTypeElementsAndDimensions)
{
    const auto stack = make(0x40, {4, 3});
    EXPECT_EQ(stack->type(), 64);
    EXPECT_EQ(stack->number_of_elements(), 12U);
    EXPECT_EQ(stack->number_of_dimensions(), 2U);
    EXPECT_EQ(stack->size(0), 4U);
    EXPECT_EQ(stack->size(1), 3U);
    EXPECT_EQ(stack->sizes(), (Sizes{4, 3}));
}

TEST(RemoteStack, IsMadeOfTheTenTypesOfTheRecord)
{
    for (const int type : {1, 2, 4, 8, 0x10, 0x20, 0x40, 0x80, 0x40000040, 0x40000080})
        EXPECT_EQ(make(type, {2})->type(), type);
    for (const int type : {0, 0x400, 0x800, 0x1000, 0x2000, 0x10000, 0x40000001, -1})
        EXPECT_THROW_TEXT(make(type, {4}), std::invalid_argument, "Unsupported data type");
}

TEST(RemoteStack, SizesFailAsAnywhere)
{
    EXPECT_THROW_TEXT(make(1, Sizes(6, 1)), std::invalid_argument, "Unsupported number of sizes");
    EXPECT_VELA_ERROR(make(1, {~std::uint64_t{0}, 2}), -1, "The product exceeds the maximum size.");
}

TEST(RemoteStack, BeginsWithZerosAndDefaults)
{
    const auto stack = make(4, {4, 3});
    EXPECT_THAT(stack->lengths(), Each(1.0));
    EXPECT_THAT(stack->offsets(), Each(0.0));
    EXPECT_THAT(stack->labels(), ElementsAre("", ""));
    EXPECT_EQ(stack->name(), "");
    EXPECT_EQ(stack->description(), "");
    Vela::SharedMemory segment(stack->share());
    ASSERT_EQ(segment.size(), 24U);
    const auto* const bytes = static_cast<const unsigned char*>(segment.data());
    EXPECT_THAT(std::vector<unsigned char>(bytes, bytes + 24), Each(0));
}

TEST(RemoteStack, RecordHasTypeAndOrder)
{
    const auto record = make(0x40, {4, 3})->meta_data();
    const Json::Value& pixels = record.at("").if_object()->at("ome:Pixels");
    EXPECT_EQ(pixels.if_object()->at("Type"), Json::Value("float"));
    EXPECT_EQ(pixels.if_object()->at("DimensionOrder"), Json::Value("XYZTC"));
    EXPECT_EQ(pixels.if_object()->at("SizeX"), Json::Value(4));
}

TEST(RemoteStack, MetadataIsACopy)
{
    const auto stack = make(1, {2, 2});
    auto record = stack->meta_data();
    record["Name"] = Json::Value("mine");
    EXPECT_EQ(stack->name(), "");
    stack->set_name("its own");
    EXPECT_EQ(record["Name"], Json::Value("mine"));
    EXPECT_EQ(stack->meta_data()["Name"], Json::Value("its own"));
}

TEST(RemoteStack, MetadataOutlivesTheStack)
{
    Json::Map<std::string, Json::Value> record;
    {
        const auto stack = make(1, {2, 2, 100, 3});
        record = stack->meta_data();
    }
    const Json::Value& content = record.at("").if_object()->at("ome:Pixels").if_object()->at("");
    EXPECT_EQ(content.if_object()->at("ome:Plane").count(), 300U);
    Json::Value copy = content;
    EXPECT_EQ(copy.at("ome:Plane").at(299).at("TheT"), Json::Value(2));
}

TEST(RemoteStack, SettersWork)
{
    const auto stack = make(1, {2, 3});
    stack->set_name("a name");
    EXPECT_EQ(stack->name(), "a name");
    stack->set_description("what it is");
    EXPECT_EQ(stack->description(), "what it is");
    stack->set_label(1, "Y");
    stack->set_labels({"X"});
    EXPECT_EQ(stack->label(0), "X");
    EXPECT_THAT(stack->labels(), ElementsAre("X", "Y"));
    stack->set_length(0, 5.0);
    stack->set_lengths({6.0});
    stack->set_length(1, 7.0);
    EXPECT_EQ(stack->length(0), 6.0);
    EXPECT_THAT(stack->lengths(), ElementsAre(6.0, 7.0));
    stack->set_offsets({8.0, 9.0});
    stack->set_offset(0, -1.0);
    EXPECT_EQ(stack->offset(1), 9.0);
    EXPECT_THAT(stack->offsets(), ElementsAre(-1.0, 9.0));
}

TEST(RemoteStack, NoAxisThatItDoesNotHave)
{
    const auto stack = make(1, {2, 3});
    for (const int axis : {-1, 2, INT32_MIN, INT32_MAX})
    {
        SCOPED_TRACE(axis);
        const char* const text = "Invalid axis specified!";
        EXPECT_VELA_ERROR(stack->size(axis), -15, text);
        EXPECT_VELA_ERROR(stack->label(axis), -15, text);
        EXPECT_VELA_ERROR(stack->set_label(axis, "X"), -15, text);
        EXPECT_VELA_ERROR(stack->length(axis), -15, text);
        EXPECT_VELA_ERROR(stack->set_length(axis, 1.0), -15, text);
        EXPECT_VELA_ERROR(stack->offset(axis), -15, text);
        EXPECT_VELA_ERROR(stack->set_offset(axis, 1.0), -15, text);
    }
}

TEST(RemoteStack, LengthOfTheChannelsIsSetAndRefused)
{
    const auto stack = make(1, {2, 2, 2, 2, 2});
    EXPECT_THROW_TEXT(stack->set_length(4, 3.0), std::invalid_argument, "Unsupported physical dimension");
    EXPECT_EQ(stack->length(4), 3.0);
    EXPECT_THROW_TEXT(stack->set_offset(4, 3.0), std::invalid_argument, "Unsupported physical dimension");
    EXPECT_EQ(stack->offset(4), 3.0);
}

TEST(RemoteStack, WhatItGaveStaysWhenItChanges)
{
    const auto stack = make(1, {2, 3});
    const std::vector<double> lengths = stack->lengths();
    const std::string name = stack->name();
    stack->set_lengths({5.0, 6.0});
    stack->set_name("new");
    EXPECT_THAT(lengths, ElementsAre(1.0, 1.0));
    EXPECT_EQ(name, "");
}

TEST(RemoteStack, SharesOnce)
{
    const auto stack = make(1, {2, 3});
    const std::string id = stack->share();
    EXPECT_EQ(id.size(), 36U);
    EXPECT_EQ(stack->share(), id);
}

boost::shared_ptr<VStackInterface> plain_stack()
{
    return boost::shared_ptr<VStackInterface>(new VStackImp(Ome::Type::uint8, {2, 3}, Ome::DimensionOrder::XYZTC));
}

TEST(StackObjectCopies, SeeEachOther)
{
    StackObject first(plain_stack());
    StackObject second(first);
    StackObject third(plain_stack());
    third = second;
    first.set_label(0, "X");
    EXPECT_EQ(second.label(0), "X");
    third.set_label(1, "Y");
    EXPECT_THAT(first.labels(), ElementsAre("X", "Y"));
    EXPECT_EQ(first.share(), third.share());
}

TEST(StackObjectCopies, MovingSharesToo)
{
    StackObject first(plain_stack());
    StackObject second(std::move(first));
    StackObject third(plain_stack());
    third = std::move(second);
    third.set_name("all");
    EXPECT_EQ(first.name(), "all");  // NOLINT(bugprone-use-after-move): a move shares
    EXPECT_EQ(second.name(), "all"); // NOLINT(bugprone-use-after-move)
}

TEST(StackObjectCopies, KeepTheStack)
{
    boost::shared_ptr<VStackInterface> stack = plain_stack();
    const boost::weak_ptr<VStackInterface> watch(stack);
    auto first = std::make_unique<StackObject>(stack);
    stack.reset();
    auto second = std::make_unique<StackObject>(*first);
    first.reset();
    EXPECT_FALSE(watch.expired());
    second.reset();
    EXPECT_TRUE(watch.expired());
}

TEST(StackObject, ShowsTheStackItself)
{
    const boost::shared_ptr<VStackInterface> stack = plain_stack();
    StackObject object(stack);
    object.set_name("seen");
    EXPECT_EQ(stack->get_name(), "seen");
    stack->set_name("back");
    EXPECT_EQ(object.name(), "back");
    EXPECT_EQ(object.share(), stack->share());
}

TEST(StackObject, BecomesAStackOfTheSameSamples)
{
    const boost::shared_ptr<VStackInterface> stack = plain_stack();
    StackObject object(stack);
    object.set_labels({"X", "Y"});
    object.set_lengths({2.0, 3.0});
    stack->get_data_ptr()[5] = 'f';
    VStackImp attached(object);
    EXPECT_EQ(attached.get_data_ptr()[5], 'f');
    EXPECT_THAT(attached.get_labels(), ElementsAre("X", "Y"));
    EXPECT_THAT(attached.get_lengths(), ElementsAre(2.0, 3.0));
    attached.get_data_ptr()[0] = 'A';
    EXPECT_EQ(stack->get_data_ptr()[0], 'A');
    EXPECT_STREQ(attached.share(), stack->share());
}

}
