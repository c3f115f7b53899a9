/// What can be seen of the OME record of a description: how sizes, lengths and offsets are mirrored, and when not.
#include "open_info.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace {

using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;

constexpr const char* micrometre = "\xc2\xb5m";
constexpr const char* no_dimension = "Unsupported physical dimension";

const char* const orders[] = {"XYZCT", "XYZTC", "XYCTZ", "XYCZT", "XYTCZ", "XYTZC"};

Ome::DimensionOrder order_of(std::size_t row)
{
    return static_cast<Ome::DimensionOrder>(row);
}

/// Numbers as they stand, without turning an integer into a decimal.
double number_in(const Json::Value& slot)
{
    if (const std::int64_t* integer = slot.if_integer())
        return static_cast<double>(*integer);
    return slot.if_decimal() == nullptr ? std::numeric_limits<double>::quiet_NaN() : *slot.if_decimal();
}

TEST(RecordBehaviour, SizesLandWhereTheOrderSays)
{
    for (std::size_t row = 0; row < 6; ++row)
    {
        SCOPED_TRACE(orders[row]);
        OpenInfo info(Sizes{4, 3, 2, 5, 6}, order_of(row));
        auto& record = info.meta_data();
        EXPECT_EQ(record.dimension_order.get(), order_of(row));
        EXPECT_EQ(record.size_x.get(), 4);
        EXPECT_EQ(record.size_y.get(), 3);
        const std::int64_t sizes[] = {2, 5, 6};
        for (std::size_t d = 2; d < 5; ++d)
        {
            const char letter = orders[row][d];
            const std::int64_t held = letter == 'Z'   ? record.size_z.get()
                                      : letter == 'T' ? record.size_t.get()
                                                      : record.size_c.get();
            EXPECT_EQ(held, sizes[d - 2]) << letter;
        }
        EXPECT_EQ(record.planes.size(), 60u);
        EXPECT_EQ(static_cast<std::int64_t>(record.channels.size()), record.size_c.get());
    }
}

TEST(RecordBehaviour, WithoutAnOrderIsLaidOutAsXYZTCAndTheSlotStays)
{
    for (const char* text : {"", "ZYX"})
    {
        OpenInfo info(Sizes{1}, Ome::DimensionOrder::XYCTZ);
        info.meta_data().dimension_order = Json::Value();
        if (*text != '\0')
            info.meta_data().dimension_order.slot() = text;
        const Json::Value before = info.meta_data().dimension_order.value();
        info.create(Sizes{4, 3, 2, 5, 6}, vela_dt_int8);
        EXPECT_EQ(info.meta_data().size_z.get(), 2);
        EXPECT_EQ(info.meta_data().size_t.get(), 5);
        EXPECT_EQ(info.meta_data().size_c.get(), 6);
        info.set_len(2, 8.0);
        EXPECT_EQ(info.meta_data().physical_size_z.get(), 4.0);
        EXPECT_EQ(info.meta_data().dimension_order.value(), before);
    }
}

TEST(RecordBehaviour, OneWithoutAxesHasSizesOfOneAndOneOfARankHasNone)
{
    OpenInfo flat;
    EXPECT_EQ(flat.meta_data().size_x.get(), 1);
    EXPECT_EQ(flat.meta_data().size_c.get(), 1);
    EXPECT_EQ(flat.meta_data().planes.size(), 1u);
    EXPECT_TRUE(flat.meta_data().type.is_null());
    EXPECT_EQ(flat.meta_data().dimension_order.get(), Ome::DimensionOrder::XYZTC);
    EXPECT_TRUE(flat.meta_data().id.is_null());
    OpenInfo ranked(3);
    EXPECT_TRUE(ranked.meta_data().size_x.is_null());
    EXPECT_TRUE(ranked.meta_data().planes.empty());
    EXPECT_TRUE(ranked.meta_data().type.is_null());
    EXPECT_EQ(ranked.meta_data().dimension_order.get(), Ome::DimensionOrder::XYZTC);
}

TEST(RecordBehaviour, SizesWithAZeroLeaveIt)
{
    OpenInfo info(Sizes{4, 3, 2});
    info.set_sizes({8, 8, 0});
    EXPECT_EQ(info.meta_data().size_x.get(), 4);
    EXPECT_EQ(info.meta_data().planes.size(), 2u);
    info.set_variable_size(7);
    EXPECT_EQ(info.meta_data().size_x.get(), 8);
    EXPECT_EQ(info.meta_data().planes.size(), 7u);
}

TEST(RecordBehaviour, NameAndDescriptionLiveThereAlone)
{
    OpenInfo info(Sizes{4});
    info.set_name("a");
    info.set_description("b");
    EXPECT_EQ(info.meta_data().name.get(), "a");
    EXPECT_EQ(info.meta_data().description.get(), "b");
    info.meta_data().name = "c";
    info.meta_data().description = "d";
    EXPECT_EQ(info.get_name(), "c");
    EXPECT_EQ(info.get_description(), "d");
    info.meta_data().name = Json::Value();
    EXPECT_EQ(info.get_name(), "");
}

/// Enters a length or an offset of one axis, by the form on one axis or by that on a vector.
void set_one(OpenInfo& info, bool as_vector, bool length, std::uint64_t axis, double number)
{
    Doubles numbers = length ? info.get_lengths() : info.get_offsets();
    numbers.resize(axis + 1);
    numbers[axis] = number;
    if (length && as_vector)
        info.set_len(numbers);
    else if (length)
        info.set_len(axis, number);
    else if (as_vector)
        info.set_off(numbers);
    else
        info.set_off(axis, number);
}

TEST(RecordBehaviour, LengthsAreMirroredOnXYZAndTAndRefusedOnC)
{
    for (std::size_t row = 0; row < 6; ++row)
        for (std::uint64_t d = 0; d < 5; ++d)
        {
            SCOPED_TRACE(std::string(orders[row]) + " " + std::to_string(d));
            OpenInfo info(Sizes{4, 3, 2, 5, 6}, order_of(row));
            auto& record = info.meta_data();
            const double size = static_cast<double>(info.get_dimension_size(d));
            const char letter = orders[row][d];
            if (letter == 'C')
            {
                EXPECT_THROW_TEXT(info.set_len(d, 30.0), std::invalid_argument, no_dimension);
                EXPECT_EQ(info.get_length(d), 30.0);
                EXPECT_THROW_TEXT(info.set_off(d, 30.0), std::invalid_argument, no_dimension);
                EXPECT_EQ(info.get_offset(d), 30.0);
                continue;
            }
            info.set_len(d, 30.0);
            EXPECT_EQ(info.get_length(d), 30.0);
            const Json::Value& held = letter == 'X'   ? record.physical_size_x.value()
                                      : letter == 'Y' ? record.physical_size_y.value()
                                      : letter == 'Z' ? record.physical_size_z.value()
                                                      : record.time_increment.value();
            EXPECT_EQ(number_in(held), 30.0 / size);
            info.set_off(d, 90.0);
            EXPECT_EQ(info.get_offset(d), 90.0);
            const auto& plane = *record.planes[0];
            const double at_first = 90.0 - 0.5 * (size - 1.0) * 30.0 / size;
            const Json::Value& position = letter == 'X'   ? plane.position_x.value()
                                          : letter == 'Y' ? plane.position_y.value()
                                          : letter == 'Z' ? plane.position_z.value()
                                                          : plane.delta_t.value();
            EXPECT_DOUBLE_EQ(number_in(position), d < 2 ? 90.0 : at_first);
        }
}

TEST(RecordBehaviour, UnitIsGuessedFromTheLength)
{
    OpenInfo info(Sizes{4, 3});
    info.set_len(0, 0.01);
    info.set_len(1, 0.02);
    EXPECT_EQ(info.meta_data().physical_size_x_unit.get(), "m");
    EXPECT_EQ(info.meta_data().physical_size_y_unit.get(), micrometre);
    info.set_len(0, 1.0);
    EXPECT_EQ(info.meta_data().physical_size_x_unit.get(), "pixel");
    EXPECT_EQ(info.meta_data().physical_size_x.value(), Json::Value(1));
}

TEST(RecordBehaviour, RefusedNumbersAreStoredAndLeaveTheRecord)
{
    for (const bool as_vector : {false, true})
        for (const double length : {-3.0, std::numeric_limits<double>::quiet_NaN()})
        {
            OpenInfo info(Sizes{4, 3});
            info.set_len(0, 8.0);
            EXPECT_BAD_CAST(set_one(info, as_vector, true, 0, length));
            EXPECT_EQ(std::isnan(info.get_length(0)), std::isnan(length));
            EXPECT_NE(info.get_length(0), 8.0);
            EXPECT_EQ(info.meta_data().physical_size_x.get(), 2.0);
        }
}

TEST(RecordBehaviour, TimesThatAreNotAboveZeroAreRefusedBehindTheOffset)
{
    for (const bool as_vector : {false, true})
    {
        OpenInfo info(Sizes{4, 3, 1, 5});
        info.set_len(3, 10.0);
        set_one(info, as_vector, false, 3, 8.0);
        EXPECT_EQ(info.meta_data().planes[0]->delta_t.get(), 4.0);
        EXPECT_BAD_CAST(set_one(info, as_vector, false, 3, 0.0));
        EXPECT_EQ(info.get_offset(3), 0.0);
        EXPECT_EQ(info.meta_data().planes[0]->delta_t.get(), 4.0);
        info.set_len(3, 0.0);
        EXPECT_TRUE(info.meta_data().time_increment.is_null());
        set_one(info, as_vector, false, 3, 0.0);
        EXPECT_TRUE(info.meta_data().planes[4]->delta_t.is_null());
    }
}

TEST(RecordBehaviour, VectorStopsInTheRecordAtTheAxisThatFails)
{
    OpenInfo info(Sizes{4, 3, 2, 5, 6}, Ome::DimensionOrder::XYCZT);
    EXPECT_THROW_TEXT(info.set_len({8.0, 6.0, 4.0, 10.0, 12.0}), std::invalid_argument, no_dimension);
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0, 4.0, 10.0, 12.0}));
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 2.0);
    EXPECT_EQ(info.meta_data().physical_size_y.get(), 2.0);
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 1.0);
    EXPECT_TRUE(info.meta_data().time_increment.is_null());
    EXPECT_THROW_TEXT(info.set_off({8.0, 6.0, 4.0, 10.0, 12.0}), std::invalid_argument, no_dimension);
    EXPECT_EQ(info.get_offsets(), (Doubles{8.0, 6.0, 4.0, 10.0, 12.0}));
    EXPECT_EQ(info.meta_data().planes[59]->position_y.get(), 6.0);
    EXPECT_TRUE(info.meta_data().planes[0]->position_z.is_null());
}

TEST(RecordBehaviour, VectorLongerThanTheRankGoesThereWhole)
{
    OpenInfo info(Sizes{4, 3});
    info.set_len({8.0, 6.0, 5.0, 7.0});
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0}));
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 5.0) << "its size is 1";
    EXPECT_TRUE(info.meta_data().time_increment.is_null());
    info.set_off({1.0, 2.0, 3.0, 4.0});
    EXPECT_EQ(info.meta_data().planes[0]->position_z.get(), 3.0);
    EXPECT_THROW_TEXT(info.set_len({4.0, 3.0, 2.0, 1.0, 1.0}), std::invalid_argument, no_dimension);
    EXPECT_EQ(info.get_lengths(), (Doubles{4.0, 3.0}));
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 2.0);
    OpenInfo channels(Sizes{4, 3}, Ome::DimensionOrder::XYCZT);
    EXPECT_THROW_TEXT(channels.set_off({4.0, 3.0, 2.0}), std::invalid_argument, no_dimension);
    EXPECT_EQ(channels.get_offsets(), (Doubles{4.0, 3.0}));
}

/// A volume that is still to come, X 8.0 long and at -1.0, Z 30.0 long and at 3.0.
OpenInfo make_waiting(bool as_vectors)
{
    OpenInfo info(3);
    set_one(info, as_vectors, true, 0, 8.0);
    set_one(info, as_vectors, true, 1, 6.0);
    set_one(info, as_vectors, true, 2, 30.0);
    set_one(info, as_vectors, false, 0, -1.0);
    set_one(info, as_vectors, false, 2, 3.0);
    info.set_sizes({4, 3, 0});
    return info;
}

TEST(RecordBehaviour, LengthsAndOffsetsWaitForElements)
{
    for (const bool as_vectors : {false, true})
    {
        OpenInfo info = make_waiting(as_vectors);
        EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0, 30.0}));
        EXPECT_EQ(info.get_offsets(), (Doubles{-1.0, 0.0, 3.0}));
        EXPECT_TRUE(info.meta_data().size_x.is_null());
        OpenInfo copy(info);
        for (OpenInfo* each : {&info, &copy})
        {
            each->set_variable_size(5);
            auto& record = each->meta_data();
            EXPECT_EQ(record.physical_size_x.get(), 2.0);
            EXPECT_EQ(record.physical_size_y.get(), 2.0);
            EXPECT_EQ(record.physical_size_z.get(), 6.0);
            EXPECT_EQ(record.physical_size_x_unit.get(), micrometre);
            EXPECT_EQ(record.planes[0]->position_x.get(), -1.0);
            EXPECT_EQ(record.planes[4]->position_x.get(), -1.0);
            EXPECT_EQ(record.planes[4]->position_z.get(), 3.0 + 2.0 * 6.0);
        }
    }
}

TEST(RecordBehaviour, ChannelAxisIsRefusedAlsoWithoutElements)
{
    for (std::size_t row = 0; row < 6; ++row)
        for (std::uint64_t d = 0; d < 5; ++d)
        {
            SCOPED_TRACE(std::string(orders[row]) + " " + std::to_string(d));
            OpenInfo info(Sizes{4, 3, 2, 5, 0}, order_of(row));
            if (orders[row][d] != 'C')
            {
                info.set_len(d, 5.0);
                info.set_off(d, 6.0);
                continue;
            }
            EXPECT_THROW_TEXT(info.set_len(d, 5.0), std::invalid_argument, no_dimension);
            EXPECT_EQ(info.get_length(d), 5.0);
            EXPECT_THROW_TEXT(info.set_off(d, 6.0), std::invalid_argument, no_dimension);
            EXPECT_EQ(info.get_offset(d), 6.0);
        }
}

TEST(RecordBehaviour, VectorWithTheChannelAxisIsTakenAndRefusedWithoutElements)
{
    OpenInfo info(Sizes{4, 3, 0}, Ome::DimensionOrder::XYCZT);
    EXPECT_THROW_TEXT(info.set_len(Doubles(6, 2.0)), std::invalid_argument, no_dimension);
    EXPECT_EQ(info.get_lengths(), (Doubles{2.0, 2.0, 2.0}));
    EXPECT_THROW_TEXT(info.set_off(Doubles(3, 7.0)), std::invalid_argument, no_dimension);
    EXPECT_EQ(info.get_offsets(), (Doubles{7.0, 7.0, 7.0}));
    info.set_len(Doubles(2, 8.0));
    OpenInfo line(Sizes{0});
    line.set_len(Doubles(4, 2.0));
    EXPECT_THROW_TEXT(line.set_len(Doubles(5, 3.0)), std::invalid_argument, no_dimension);
    EXPECT_EQ(line.get_lengths(), Doubles{3.0});
    info.set_variable_size(2);
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 2.0) << "what waited is entered all the same";
    EXPECT_EQ(info.meta_data().planes[1]->position_x.get(), 7.0);
}

TEST(RecordBehaviour, StoredLengthsAndOffsetsOfTheChannelAxisAreNoFailureWithoutElements)
{
    OpenInfo source(Sizes{4, 3, 0}, Ome::DimensionOrder::XYCZT);
    source.store_lengths(Doubles{8.0, 6.0, 5.0});
    source.store_offsets(Doubles{1.0, 2.0, 3.0});
    OpenInfo copy(Sizes{}, Ome::DimensionOrder::XYCZT);
    copy.create(&source, 0);
    OpenInfo cut(Sizes{}, Ome::DimensionOrder::XYCZT);
    VStackRegion region;
    region.create(&source, 0);
    cut.create(&source, region);
    EXPECT_EQ(copy.get_lengths(), (Doubles{8.0, 6.0, 5.0}));
    EXPECT_EQ(copy.get_offsets(), (Doubles{1.0, 2.0, 3.0}));
    EXPECT_EQ(cut.get_lengths(), (Doubles{8.0, 6.0, 1.0})) << "an axis of no pixels has the length 1";
}

TEST(RecordBehaviour, OffsetsThatWaitedReachOnlyThePlanesOfTheFirstGrowth)
{
    OpenInfo info(Sizes{4, 3, 0});
    info.set_len(2, 30.0);
    info.set_off({-1.0, 2.0, 3.0});
    info.set_variable_size(1);
    info.set_variable_size(5);
    auto& planes = info.meta_data().planes;
    ASSERT_EQ(planes.size(), 5u);
    EXPECT_EQ(planes[0]->position_x.get(), -1.0);
    EXPECT_EQ(planes[0]->position_y.get(), 2.0);
    EXPECT_EQ(planes[0]->position_z.get(), 3.0) << "the middle of one plane";
    for (std::size_t plane = 1; plane < 5; ++plane)
    {
        EXPECT_TRUE(planes[plane]->position_x.is_null()) << plane;
        EXPECT_TRUE(planes[plane]->position_y.is_null()) << plane;
        EXPECT_TRUE(planes[plane]->position_z.is_null()) << plane;
    }
}

TEST(RecordBehaviour, LengthsThatWaitedFollowAStackThatGrows)
{
    for (const bool as_vectors : {false, true})
    {
        OpenInfo info = make_waiting(as_vectors);
        for (const std::uint64_t size : {1u, 2u, 5u})
        {
            info.set_variable_size(size);
            EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0, 30.0}));
            EXPECT_EQ(info.meta_data().physical_size_x.get(), 2.0);
            EXPECT_EQ(info.meta_data().physical_size_z.get(), 30.0 / static_cast<double>(size));
        }
    }
}

TEST(RecordBehaviour, WhatItCannotExpressIsNoFailureWhenElementsCome)
{
    OpenInfo info(Sizes{4, 3, 2, 5, 0}, Ome::DimensionOrder::XYCZT);
    info.set_len(0, -3.0);
    info.set_len(4, 30.0);
    info.set_off(4, 0.0);
    info.set_len(3, 10.0);
    info.set_variable_size(6);
    EXPECT_EQ(info.get_length(0), -3.0);
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 1.0);
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 2.0);
    EXPECT_EQ(info.meta_data().time_increment.get(), 5.0);
    EXPECT_EQ(info.meta_data().planes.size(), 60u);
}

} // namespace
