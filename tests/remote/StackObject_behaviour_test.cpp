// What the face of a stack does with the stack behind it.

#include "remote/segment_samples.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

#include <Json/Map.h>
#include <Json/Value.h>
#include <Remote/StackObject.h>
#include <VelaBase/vela_dt.h>
#include <VelaStacks/VStack.h>

#include <boost/interprocess/exceptions.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace vela_test;

namespace {

using Texts = std::vector<std::string>;
using Doubles = std::vector<double>;
using Sizes = std::vector<std::uint64_t>;
using Record = Json::Map<std::string, Json::Value>;
using Face = Remote::Stack;

static_assert(std::is_constructible_v<Remote::StackObject, boost::shared_ptr<VStackInterface>>);
static_assert(std::is_copy_constructible_v<Remote::StackObject> && std::is_copy_assignable_v<Remote::StackObject>);
static_assert(std::is_move_constructible_v<Remote::StackObject> && std::is_move_assignable_v<Remote::StackObject>);
static_assert(std::is_same_v<decltype(Remote::get_stack(0, {})), Remote::Stack*>);

// Nothing that is given refers to the stack.
template <class Function>
struct Gives;
template <class Result, class... Arguments>
struct Gives<Result (Face::*)(Arguments...) const>
{
    using Type = Result;
};
template <auto operation, class Expected>
constexpr bool gives = std::is_same_v<typename Gives<decltype(operation)>::Type, Expected>;
static_assert(gives<&Face::name, std::string> && gives<&Face::description, std::string>);
static_assert(gives<&Face::number_of_elements, std::uint64_t> && gives<&Face::type, int>);
static_assert(gives<&Face::number_of_dimensions, std::uint64_t> && gives<&Face::size, std::uint64_t>);
static_assert(gives<&Face::sizes, Sizes> && gives<&Face::label, std::string> && gives<&Face::labels, Texts>);
static_assert(gives<&Face::length, double> && gives<&Face::lengths, Doubles>);
static_assert(gives<&Face::offset, double> && gives<&Face::offsets, Doubles>);
static_assert(gives<&Face::meta_data, Record> && gives<&Face::share, std::string>);

class LockedStack : public VStackImp
{
public:
    LockedStack() : VStackImp(2) { locked = true; }
};

TEST(RemoteStackObject, PassesTheFailuresOfALockedStackOn)
{
    Remote::StackObject face(boost::make_shared<LockedStack>());
    const auto expect_locked = [](const std::string& function, const std::function<void()>& call)
    {
        EXPECT_VELA_ERROR_IN(call(), ("VStackInfoImp::" + function).c_str(), "sources/stacks", -1,
                             "Cannot set values. Object locked!");
    };
    expect_locked("set_name", [&] { face.set_name("a"); });
    expect_locked("set_description", [&] { face.set_description("a"); });
    expect_locked("set_label", [&] { face.set_label(-1, "a"); });
    expect_locked("set_labels", [&] { face.set_labels({}); });
    expect_locked("set_len", [&] { face.set_length(-1, 2.0); });
    expect_locked("set_len", [&] { face.set_lengths({}); });
    expect_locked("set_off", [&] { face.set_offset(-1, 2.0); });
    expect_locked("set_off", [&] { face.set_offsets({}); });
}

TEST(RemoteStackObject, RefusesAnAxisOutsideTheStackAndChangesNothing)
{
    const std::unique_ptr<Face> stack(Remote::get_stack(vela_dt_uint8, {2, 3}));
    const Record record = stack->meta_data();
    for (const int axis : {-1, 2, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    {
        const std::vector<std::function<void()>> calls = {
            [&] { stack->size(axis); },           [&] { stack->label(axis); },
            [&] { stack->length(axis); },         [&] { stack->offset(axis); },
            [&] { stack->set_label(axis, "a"); }, [&] { stack->set_length(axis, 2.0); },
            [&] { stack->set_offset(axis, 2.0); }};
        for (const auto& call : calls)
            EXPECT_VELA_ERROR_IN(call(), "VStackInfoImp::_chk_ax", "sources/stacks", -15, "Invalid axis specified!");
    }
    EXPECT_EQ(stack->labels(), (Texts{"", ""}));
    EXPECT_EQ(stack->lengths(), (Doubles{1.0, 1.0}));
    EXPECT_EQ(stack->offsets(), (Doubles{0.0, 0.0}));
    EXPECT_EQ(stack->meta_data(), record);
}

TEST(RemoteStackObject, SetsAsManyAxesAsItIsGivenAndLeavesTheOthers)
{
    const std::unique_ptr<Face> stack(Remote::get_stack(vela_dt_uint8, {2, 3}));
    stack->set_labels({"a", "b", "c"});
    stack->set_lengths({4.0, 6.0});
    stack->set_offsets({1.0, 2.0});
    stack->set_labels({"z"});
    stack->set_lengths({8.0});
    stack->set_offsets({});
    EXPECT_EQ(stack->labels(), (Texts{"z", "b"}));
    EXPECT_EQ(stack->lengths(), (Doubles{8.0, 6.0}));
    EXPECT_EQ(stack->offsets(), (Doubles{1.0, 2.0}));
    EXPECT_EQ(stack->length(1), 6.0);
    EXPECT_EQ(stack->offset(1), 2.0);
    EXPECT_EQ(stack->label(0), "z");
}

TEST(RemoteStackObject, KeepsLengthsAndOffsetsThatTheRecordRefuses)
{
    const std::unique_ptr<Face> stack(Remote::get_stack(vela_dt_uint8, {2, 2, 2, 2, 2}));
    EXPECT_THROW_TEXT(stack->set_lengths({1, 2, 3, 4, 5}), std::invalid_argument, "Unsupported physical dimension");
    EXPECT_EQ(stack->lengths(), (Doubles{1, 2, 3, 4, 5}));
    EXPECT_THROW_TEXT(stack->set_offsets({1, 2, 3, 4, 5}), std::invalid_argument, "Unsupported physical dimension");
    EXPECT_EQ(stack->offsets(), (Doubles{1, 2, 3, 4, 5}));
    stack->set_length(3, 4.0);
    EXPECT_BAD_CAST(stack->set_offset(3, 0.0)); // a time before 0
    EXPECT_EQ(stack->offset(3), 0.0);
}

TEST(RemoteStackObject, PassesNumbersAsTheyAre)
{
    const std::unique_ptr<Face> stack(Remote::get_stack(vela_dt_uint8, {4}));
    for (const double number : {-0.0, std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::max(),
                                -std::numeric_limits<double>::infinity()})
    {
        stack->set_offset(0, number);
        EXPECT_EQ(stack->offset(0), number);
        EXPECT_EQ(std::signbit(stack->offset(0)), std::signbit(number));
    }
    stack->set_offset(0, std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(std::isnan(stack->offset(0)));
}

TEST(RemoteStackObject, KeepsTextsByteForByte)
{
    const std::string bytes("\xff\0\xc3(\x80", 5);
    const std::unique_ptr<Face> stack(Remote::get_stack(vela_dt_uint8, {4}));
    stack->set_name(bytes);
    stack->set_description(bytes + "d");
    stack->set_label(0, bytes + "l");
    EXPECT_EQ(stack->name(), bytes);
    EXPECT_EQ(stack->description(), bytes + "d");
    EXPECT_EQ(stack->label(0), bytes + "l");
    EXPECT_EQ(stack->labels(), (Texts{bytes + "l"}));
    EXPECT_EQ(stack->meta_data().at("Name"), Json::Value(bytes));
}

TEST(RemoteStackObject, KeepsStackAndSamplesAsLongAsTheLastHolder)
{
    auto first = std::make_unique<Remote::StackObject>(
        boost::make_shared<VStackImp>(Ome::Type::uint8, Sizes{2}, Ome::DimensionOrder::XYZTC));
    const std::string id = first->share();
    auto second = std::make_unique<Remote::StackObject>(*first);
    first.reset();
    EXPECT_EQ(second->share(), id);
    EXPECT_EQ(samples_in<std::uint8_t>(id).size(), 2u);
    second.reset();
    EXPECT_THROW(samples_in<std::uint8_t>(id), boost::interprocess::interprocess_exception);
}

using Stack = std::unique_ptr<Remote::Stack>;

Json::Value pixels_of(const Remote::Stack& stack)
{
    Json::Map<std::string, Json::Value> record = stack.meta_data();
    return record.at("").at("ome:Pixels");
}

TEST(RemoteGetStack, TakesTheTenTypesOfTheRecordWithTheirBlockOfZeros)
{
    const std::vector<std::pair<vela_dt, std::string>> types = {{vela_dt_uint8, "uint8"},
                                                                {vela_dt_int8, "int8"},
                                                                {vela_dt_uint16, "uint16"},
                                                                {vela_dt_int16, "int16"},
                                                                {vela_dt_uint32, "uint32"},
                                                                {vela_dt_int32, "int32"},
                                                                {vela_dt_single, "float"},
                                                                {vela_dt_double, "double"},
                                                                {vela_dt_single | vela_dt_complex, "complex"},
                                                                {vela_dt_double | vela_dt_complex, "double-complex"}};
    for (const auto& [type, text] : types)
    {
        const Stack stack(Remote::get_stack(type, {5, 2}));
        EXPECT_EQ(stack->type(), type);
        EXPECT_EQ(pixels_of(*stack).at("Type"), Json::Value(text));
        const std::vector<std::uint8_t> block = samples_in<std::uint8_t>(stack->share());
        EXPECT_EQ(block.size(), 10 * vela_dt_get_size(static_cast<std::uint32_t>(type)));
        EXPECT_EQ(std::count(block.begin(), block.end(), 0), static_cast<std::ptrdiff_t>(block.size()));
    }
}

TEST(RemoteGetStack, RefusesEveryOtherTypeBeforeItLooksAtTheSizes)
{
    for (const vela_dt type :
         {vela_dt_uint64, vela_dt_int64, vela_dt_none, vela_dt_logical, vela_dt_rgb, vela_dt_packed_color, vela_dt_char,
          vela_dt_cell, vela_dt_struct, 3, -1, vela_dt_complex, vela_dt_uint8 | vela_dt_complex,
          vela_dt_int32 | vela_dt_complex, vela_dt_uint8 | vela_dt_array})
        for (const Sizes& sizes : {Sizes{4}, Sizes{}, Sizes{0}, Sizes{1, 1, 1, 1, 1, 1}})
            EXPECT_THROW_TEXT(Stack(Remote::get_stack(type, sizes)), std::invalid_argument, "Unsupported data type");
}

TEST(RemoteGetStack, OrdersTheDimensionsAsXYZTC)
{
    const Stack stack(Remote::get_stack(vela_dt_uint8, {2, 3, 4, 5, 6}));
    Json::Value pixels = pixels_of(*stack);
    EXPECT_EQ(pixels.at("DimensionOrder"), Json::Value("XYZTC"));
    EXPECT_EQ(pixels.at("SizeX"), Json::Value(2));
    EXPECT_EQ(pixels.at("SizeY"), Json::Value(3));
    EXPECT_EQ(pixels.at("SizeZ"), Json::Value(4));
    EXPECT_EQ(pixels.at("SizeT"), Json::Value(5));
    EXPECT_EQ(pixels.at("SizeC"), Json::Value(6));
    EXPECT_EQ(pixels.at("").at("ome:Channel").count(), 6u);
    EXPECT_EQ(pixels.at("").at("ome:Plane").count(), 120u);
}

TEST(RemoteGetStack, TakesNoAxesAndAxesWithoutColumns)
{
    const Stack point(Remote::get_stack(vela_dt_double, {}));
    EXPECT_EQ(point->number_of_dimensions(), 0u);
    EXPECT_EQ(point->number_of_elements(), 1u);
    EXPECT_EQ(samples_in<double>(point->share()), std::vector<double>{0.0});
    const Stack nothing(Remote::get_stack(vela_dt_double, {3, 0, 1, 1, 1, 1, 1ull << 40}));
    EXPECT_EQ(nothing->number_of_dimensions(), 7u);
    EXPECT_EQ(nothing->number_of_elements(), 0u);
    EXPECT_EQ(nothing->size(6), 1ull << 40);
    const std::string id = nothing->share();
    EXPECT_EQ(id.size(), 36u);
    EXPECT_EQ(nothing->share(), id);
    EXPECT_TRUE(samples_in<std::uint8_t>(id).empty());
}

TEST(RemoteGetStack, RefusesSizesAsTheStackDoes)
{
    EXPECT_THROW_TEXT(Stack(Remote::get_stack(vela_dt_uint8, {1, 1, 1, 1, 1, 1})), std::invalid_argument,
                      "Unsupported number of sizes");
    EXPECT_VELA_ERROR_IN(Stack(Remote::get_stack(vela_dt_uint8, {1ull << 63, 2})), "`anonymous-namespace'::get_product",
                         "sources/stacks", -1, "The product exceeds the maximum size.");
    EXPECT_VELA_ERROR(Stack(Remote::get_stack(vela_dt_double, {1ull << 62})), -1,
                      "The size increases the maximum size");
    EXPECT_BAD_CAST(Stack(Remote::get_stack(vela_dt_uint8, {1ull << 63})));
}

TEST(RemoteGetStack, BelongsToItsCallerWithItsSegment)
{
    const Remote::Stack* const stack = Remote::get_stack(vela_dt_uint8, {3});
    const std::string id = stack->share();
    EXPECT_EQ(id.size(), 36u);
    EXPECT_EQ(stack->share(), id);
    EXPECT_EQ(samples_in<std::uint8_t>(id).size(), 3u);
    delete stack;
    EXPECT_THROW(samples_in<std::uint8_t>(id), boost::interprocess::interprocess_exception);
}

} // namespace
