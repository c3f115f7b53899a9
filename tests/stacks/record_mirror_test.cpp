// How the OME record follows lengths, offsets and the date of a description.
#include <VelaStacks/VStackInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

#include <ctime>
#include <string>

using testing::ElementsAre;
using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;

namespace {

using Image = Ome::Image<Json::SignalingReference>;
const char* const micrometre = "\xC2\xB5m";

TEST(RecordMirror, LengthsGoIntoTheRecord)
{
    OpenInfo info({4, 5, 2});
    info.set_len(0, 8.0);
    info.set_len(Doubles{8.0, 0.005, 3.0});
    Image& image = info.meta_data();
    EXPECT_EQ(image.physical_size_x.get(), 2.0);
    EXPECT_EQ(image.physical_size_x_unit.get(), micrometre);
    EXPECT_EQ(image.physical_size_y.get(), 0.001);
    EXPECT_EQ(image.physical_size_y_unit.get(), "m");
    EXPECT_EQ(image.physical_size_z.get(), 1.5);
    EXPECT_THAT(info.get_lengths(), ElementsAre(8.0, 0.005, 3.0));
    EXPECT_EQ(info.get_length(1), 0.005);
}

TEST(RecordMirror, OffsetsGoIntoTheRecord)
{
    OpenInfo info({4, 5, 2});
    info.set_len(Doubles{8.0, 10.0, 4.0});
    info.set_off(1, 3.0);
    info.set_off(Doubles{1.0, 2.0, 3.0});
    EXPECT_THAT(info.get_offsets(), ElementsAre(1.0, 2.0, 3.0));
    EXPECT_EQ(info.get_offset(2), 3.0);
    Image& image = info.meta_data();
    ASSERT_EQ(image.planes.size(), 2U);
    EXPECT_EQ(image.planes[0]->position_x.get(), 1.0);
    EXPECT_EQ(image.planes[1]->position_y.get(), 2.0);
    EXPECT_EQ(image.planes[0]->position_z.get(), 2.0);
    EXPECT_EQ(image.planes[1]->position_z.get(), 4.0);
}

TEST(RecordMirror, VectorsThatAreTooShortLeaveTheRest)
{
    OpenInfo info({4, 5});
    info.set_len(Doubles{8.0, 10.0});
    info.set_len(Doubles{4.0});
    info.set_off(Doubles{1.0, 2.0});
    info.set_off(Doubles{3.0});
    EXPECT_THAT(info.get_lengths(), ElementsAre(4.0, 10.0));
    EXPECT_THAT(info.get_offsets(), ElementsAre(3.0, 2.0));
    EXPECT_EQ(info.meta_data().physical_size_y.get(), 2.0);
}

TEST(RecordMirror, VectorsThatAreTooLongTouchFurtherAxesOfTheRecord)
{
    OpenInfo info({4, 5});
    info.set_len(Doubles{8.0, 10.0, 3.0});
    EXPECT_THAT(info.get_lengths(), ElementsAre(8.0, 10.0));
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 3.0);
    info.set_off(Doubles{0.0, 0.0, 7.0});
    EXPECT_EQ(info.meta_data().planes[0]->position_z.get(), 7.0);
    EXPECT_THROW_TEXT(info.set_len(Doubles{8.0, 20.0, 3.0, 1.0, 1.0}), std::invalid_argument,
                      "Unsupported physical dimension");
    EXPECT_EQ(info.meta_data().physical_size_y.get(), 4.0) << "axes before the one that fails are entered";
}

TEST(RecordMirror, UserHearsWhatTheRecordCannotExpress)
{
    OpenInfo info({4, 5, 2, 3, 2}); // the last axis is that of the channels
    EXPECT_THROW_TEXT(info.set_len(4, 2.0), std::invalid_argument, "Unsupported physical dimension");
    EXPECT_THROW_TEXT(info.set_off(4, 5.0), std::invalid_argument, "Unsupported physical dimension");
    EXPECT_EQ(info.get_length(4), 2.0);
    EXPECT_EQ(info.get_offset(4), 5.0);
    EXPECT_BAD_CAST(info.set_len(0, -2.0));
    EXPECT_EQ(info.get_length(0), -2.0);
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 1.0) << "stays as it was";
    info.set_len(3, 6.0);
    EXPECT_BAD_CAST(info.set_off(3, 0.0));
    EXPECT_EQ(info.get_offset(3), 0.0);
    EXPECT_BAD_CAST(info.set_off(Doubles{1.0, 1.0, 1.0, 0.0, 9.0}));
    EXPECT_THAT(info.get_offsets(), ElementsAre(1.0, 1.0, 1.0, 0.0, 9.0)) << "all are set before the record is";
}

TEST(RecordMirror, WithoutADimensionOrderItIsXyztc)
{
    OpenInfo info({4, 5, 2, 3});
    info.meta_data().dimension_order = Json::Value();
    info.set_len(3, 6.0);
    EXPECT_EQ(info.meta_data().time_increment.get(), 2.0);
    EXPECT_TRUE(info.meta_data().dimension_order.is_null());
}

TEST(RecordMirror, StoredOnesAreEnteredAxisByAxis)
{
    OpenInfo info({4, 5, 2, 2, 2});
    info.meta_data().dimension_order = Ome::DimensionOrder::XYCZT;
    info.set_sizes(info.get_sizes());
    info.store_lengths({-8.0, 10.0, 7.0, 6.0, 4.0});
    info.store_offsets({1.0, 2.0, 3.0, 4.0, 0.0});
    EXPECT_THAT(info.get_lengths(), ElementsAre(-8.0, 10.0, 7.0, 6.0, 4.0));
    EXPECT_THAT(info.get_offsets(), ElementsAre(1.0, 2.0, 3.0, 4.0, 0.0));
    Image& image = info.meta_data();
    EXPECT_EQ(image.physical_size_x.get(), 1.0) << "no negative size";
    EXPECT_EQ(image.physical_size_y.get(), 2.0);
    EXPECT_EQ(image.physical_size_z.get(), 3.0) << "behind the channels, which have no length";
    EXPECT_EQ(image.time_increment.get(), 2.0);
    EXPECT_EQ(image.planes[0]->position_x.get(), 1.0);
    EXPECT_EQ(image.planes[0]->position_z.get(), 2.5);
    EXPECT_TRUE(image.planes[0]->delta_t.is_null()) << "no time below 0";
}

TEST(RecordMirror, InfoOfAnotherStackIsStoredWhateverTheRecordCanExpress)
{
    OpenInfo source({4, 5, 2, 3, 2});
    source.store_lengths({8.0, 10.0, 4.0, 6.0, 7.0});
    source.store_offsets({1.0, 2.0, 3.0, 0.0, 5.0});
    OpenInfo info;
    info.create(&source, 0);
    EXPECT_EQ(info.get_lengths(), source.get_lengths());
    EXPECT_EQ(info.get_offsets(), source.get_offsets());
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 2.0);
    EXPECT_EQ(info.meta_data().time_increment.get(), 2.0);
    EXPECT_EQ(info.meta_data().planes[0]->position_y.get(), 2.0);
    EXPECT_TRUE(info.meta_data().planes[0]->delta_t.is_null());

    info.meta_data().dimension_order = Ome::DimensionOrder::XYCZT;
    info.create(&source, 0);
    EXPECT_EQ(info.meta_data().size_t, 2);
    EXPECT_EQ(info.meta_data().time_increment.get(), 3.5) << "the time behind the channels";
    EXPECT_EQ(info.meta_data().planes[0]->position_z.get(), -2.0) << "the planes of Z behind the channels";
}

TEST(RecordMirror, WithoutElementsLengthsAndOffsetsWaitForSizes)
{
    OpenInfo info({4, 5, 0});
    info.set_len(2, 6.0);
    info.set_len(Doubles{8.0});
    info.set_off(0, 0.0);
    info.set_off(Doubles{0.0, 2.0});
    info.set_len(1, -1.0);
    EXPECT_THAT(info.get_lengths(), ElementsAre(8.0, -1.0, 6.0));
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 1.0);
    info.set_variable_size(3);
    Image& image = info.meta_data();
    EXPECT_EQ(image.physical_size_x.get(), 2.0);
    EXPECT_EQ(image.physical_size_y.get(), 1.0) << "what the record refuses then is no failure";
    EXPECT_EQ(image.physical_size_z.get(), 2.0);
    EXPECT_EQ(image.planes[2]->position_x.get(), 0.0);
    EXPECT_EQ(image.planes[2]->position_y.get(), 2.0);
    EXPECT_TRUE(image.planes[2]->position_z.is_null()) << "nobody has set this offset";
}

TEST(RecordMirror, LengthsThatWaitedFollowAGrowingStack)
{
    OpenInfo info({4, 5, 0});
    info.set_len(Doubles{8.0, 10.0, 6.0});
    info.set_variable_size(1);
    info.meta_data().physical_size_x = 7.0;
    info.set_variable_size(2);
    info.set_variable_size(3);
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 2.0) << "the length is that of all planes";
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 7.0) << "no other axis is entered again";
    info.set_len(2, 12.0);
    info.set_variable_size(6);
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 4.0) << "one that is set with elements does not";
    info.set_variable_size(0);
    info.set_len(2, 12.0);
    info.set_variable_size(4);
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 3.0);
}

TEST(RecordMirror, LengthsWaitOnWhereTheRecordRefusesTheSizes)
{
    OpenInfo info(Sizes{0, 0});
    info.set_len(Doubles{8.0, 10.0});
    EXPECT_THROW_TEXT(info.create(Sizes{4, 5, 1, 1, 1, 1}, vela_dt_uint8), std::invalid_argument,
                      "Unsupported number of sizes");
    OpenInfo copy(info);
    for (OpenInfo* const mended : {&info, &copy})
    {
        mended->create(Sizes{4, 5}, vela_dt_uint8);
        EXPECT_EQ(mended->meta_data().physical_size_x.get(), 2.0);
        EXPECT_EQ(mended->meta_data().physical_size_y.get(), 2.0);
    }
}

TEST(RecordMirror, LengthsWaitOnWhereTheRecordRefusesOneOfTheSizes)
{
    OpenInfo info(Sizes{0, 0});
    info.set_len(Doubles{8.0, 10.0});
    EXPECT_BAD_CAST(info.create(Sizes{1, std::uint64_t{1} << 63}, vela_dt_uint8));
    EXPECT_EQ(info.meta_data().size_x, 1) << "what comes before is there";
    info.create(Sizes{1, 5}, vela_dt_uint8);
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 8.0);
    EXPECT_EQ(info.meta_data().physical_size_y.get(), 2.0);
}

TEST(RecordMirror, LengthsThatAreEnteredStayWhereTheRecordRefusesSizesInBetween)
{
    OpenInfo info(Sizes{0, 0});
    info.set_len(Doubles{8.0, 10.0});
    info.create(Sizes{4, 5}, vela_dt_uint8);
    info.meta_data().physical_size_x = 7.0;
    EXPECT_THROW_TEXT(info.create(Sizes{1, 5, 1, 1, 1, 1}, vela_dt_uint8), std::invalid_argument,
                      "Unsupported number of sizes");
    info.create(Sizes{4, 5}, vela_dt_uint8);
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 7.0) << "the record still has these sizes";
    info.create(Sizes{2, 5}, vela_dt_uint8);
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 4.0);
}

TEST(RecordMirror, FirstGrowthSaysWhichPlanesAnOffsetThatWaitedGets)
{
    OpenInfo one_by_one({4, 5, 0});
    OpenInfo at_once({4, 5, 0});
    for (OpenInfo* const info : {&one_by_one, &at_once})
        info->set_off(Doubles{1.0, 2.0, 3.0});
    for (std::uint64_t planes = 1; planes <= 3; ++planes)
        one_by_one.set_variable_size(planes);
    at_once.set_variable_size(3);
    EXPECT_EQ(one_by_one.meta_data().planes[0]->position_z.get(), 3.0);
    EXPECT_TRUE(one_by_one.meta_data().planes[1]->position_x.is_null());
    for (std::size_t plane = 0; plane < 3; ++plane)
    {
        EXPECT_EQ(at_once.meta_data().planes[plane]->position_x.get(), 1.0);
        EXPECT_EQ(at_once.meta_data().planes[plane]->position_z.get(), 2.0 + static_cast<double>(plane));
    }
    OpenInfo timed({4, 5, 1, 0});
    timed.set_len(3, 6.0);
    timed.set_off(3, 9.0);
    timed.set_variable_size(1);
    timed.set_variable_size(2);
    EXPECT_EQ(timed.meta_data().time_increment.get(), 3.0);
    EXPECT_TRUE(timed.meta_data().planes[0]->delta_t.is_null());
}

TEST(RecordMirror, EntriesBehindTheRankAreDroppedWithoutElements)
{
    OpenInfo info({4, 0});
    info.set_len(Doubles{8.0, 10.0, 3.0});
    info.set_variable_size(5);
    EXPECT_EQ(info.meta_data().physical_size_z.get(), 1.0);
}

TEST(RecordMirror, OffsetsThatWaitedLeaveLaterPlanesToTheCaller)
{
    OpenInfo info({4, 5, 0});
    info.set_off(Doubles{1.0, 2.0, 3.0});
    info.set_variable_size(1);
    Image& image = info.meta_data();
    EXPECT_EQ(image.planes[0]->position_x.get(), 1.0);
    EXPECT_EQ(image.planes[0]->position_z.get(), 3.0);
    image.planes[0]->position_x = 5.0;
    info.set_variable_size(2);
    EXPECT_EQ(image.planes[0]->position_x.get(), 5.0);
    EXPECT_TRUE(image.planes[1]->position_x.is_null());
}

TEST(RecordMirror, AxesThatNobodySetStayOutOfTheRecord)
{
    OpenInfo info({4, 0});
    info.set_variable_size(2);
    EXPECT_TRUE(info.meta_data().physical_size_x.value().is_decimal()) << "the integer 1 is what a length of 1 becomes";
    EXPECT_TRUE(info.meta_data().planes[0]->position_x.is_null());
}

TEST(RecordMirror, SixAxesWithoutElementsTakeLengths)
{
    OpenInfo info({4, 5, 2, 2, 2, 0});
    info.set_len(5, 3.0);
    info.set_off(5, 4.0);
    EXPECT_EQ(info.get_length(5), 3.0);
    EXPECT_EQ(info.get_offset(5), 4.0);
}

/// The seconds since 1970 of a date as `Qt::ISODate` writes it: "2026-11-21T20:24:29+01:00", or "Z" at its end.
std::time_t seconds_of(const std::string& date)
{
    const auto number = [&](std::size_t begin, std::size_t count) { return std::stoi(date.substr(begin, count)); };
    std::tm utc{};
    utc.tm_year = number(0, 4) - 1900;
    utc.tm_mon = number(5, 2) - 1;
    utc.tm_mday = number(8, 2);
    utc.tm_hour = number(11, 2);
    utc.tm_min = number(14, 2);
    utc.tm_sec = number(17, 2);
    const std::string zone = date.substr(19);
    if (zone == "Z")
        return timegm(&utc);
    EXPECT_EQ(zone.size(), 6U) << date;
    const int minutes = number(20, 2) * 60 + number(23, 2);
    return timegm(&utc) - 60 * (zone[0] == '-' ? -minutes : minutes);
}

TEST(RecordMirror, DateIsNowWithTheOffsetOfLocalTime)
{
    OpenInfo info(Sizes{4});
    const std::time_t before = std::time(nullptr);
    info.set_acquisition_date();
    const std::time_t after = std::time(nullptr);
    const std::string date = info.meta_data().acquisition_date.get();
    ASSERT_GE(date.size(), 20U) << date;
    EXPECT_EQ(date[10], 'T') << date;
    // One second less: the two clocks need not turn at the same moment.
    EXPECT_GE(seconds_of(date), before - 1);
    EXPECT_LE(seconds_of(date), after + 1);
}

}
