// Labels and positions of columns.
#include <VelaStacks/VStackInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/expect_vela_error.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;
using vela_test::Texts;

namespace {

const char* const folder = "sources/stacks";

OpenInfo four_pixels()
{
    OpenInfo info(Sizes{4});
    info.set_len(0, 4.0);
    return info;
}

TEST(ColumnLabels, OfAnAxisThatHasGrownCannotBeTakenOver)
{
    OpenInfo info(Sizes{2});
    info.set_col_labels(0, {"a", "b"});
    info.set_sizes({3});
    EXPECT_THAT(info.get_col_labels(0), ElementsAre("a", "b"));
    OpenInfo other;
    EXPECT_VELA_ERROR_IN(other.create(&info, vela_dt_none), "VStackInfoImp::set_col_labels", folder, -15,
                         "Wrong number of labels!");
    EXPECT_THAT(other.get_sizes(), ElementsAre(3));
}

TEST(ColumnPositions, OfAnEquidistantAxisAreFilledByTheGetter)
{
    OpenInfo info = four_pixels();
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(-1.5, -0.5, 0.5, 1.5));
    EXPECT_TRUE(info.is_equidistant(0));
    EXPECT_EQ(info.get_col_position(0, 0), -1.5);
    EXPECT_EQ(info.get_col_position(0, 3), 1.5);
    OpenInfo shifted({4, 8});
    shifted.set_len(1, 2.0);
    shifted.set_off(1, 10.0);
    EXPECT_EQ(shifted.get_col_positions(1).front(), 9.125);
    EXPECT_EQ(shifted.get_col_positions(1).back(), 10.875);
    EXPECT_EQ(shifted.get_col_position(1, 7), 10.875);
}

TEST(ColumnPositions, ThatAreFilledStayWhenTheLengthChanges)
{
    OpenInfo info = four_pixels();
    info.get_col_positions(0);
    info.set_len(0, 8.0);
    info.set_off(0, 1.0);
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(-1.5, -0.5, 0.5, 1.5));
    EXPECT_EQ(info.get_col_position(0, 0), -2.0) << "a single position goes by length and offset";
    info.set_col_positions(0, {});
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(-2.0, 0.0, 2.0, 4.0));
    info.set_sizes({2});
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(-1.0, 3.0)) << "another size fills them anew";
}

TEST(ColumnPositions, ThatAreSetEndTheEquidistance)
{
    OpenInfo info = four_pixels();
    info.set_col_positions(0, {1, 2, 4, 8});
    EXPECT_FALSE(info.is_equidistant(0));
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(1, 2, 4, 8));
    EXPECT_EQ(info.get_col_position(0, 3), 8.0);
    info.get_col_positions(0)[3] = 9.0;
    EXPECT_EQ(info.get_col_position(0, 3), 9.0);
    info.set_col_positions(0, info.get_col_positions(0));
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(1, 2, 4, 9));
    info.set_col_positions(0, {});
    EXPECT_TRUE(info.is_equidistant(0));
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(-1.5, -0.5, 0.5, 1.5));
}

TEST(ColumnPositions, OfAnotherNumberAreRefused)
{
    OpenInfo info = four_pixels();
    info.set_col_positions(0, {1, 2, 4, 8});
    for (const Doubles& positions : {Doubles{1, 2, 3}, Doubles{1, 2, 3, 4, 5}})
        EXPECT_VELA_ERROR_IN(info.set_col_positions(0, positions), "VStackInfoImp::set_col_positions", folder, -15,
                             "Wrong number of positions!");
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(1, 2, 4, 8));
}

TEST(ColumnPositions, ThatNoLongerFitAreCleared)
{
    OpenInfo info = four_pixels();
    info.set_col_positions(0, {1, 2, 4, 8});
    info.set_sizes({5});
    const char* function = "VStackInfoImp::get_col_position";
    EXPECT_EQ(info.get_col_position(0, 3), 8.0);
    EXPECT_VELA_ERROR_IN(info.get_col_position(0, 4), function, folder, -15, "Invalid pixel position!");
    EXPECT_THAT(info.get_col_positions(0), IsEmpty());
    EXPECT_FALSE(info.is_equidistant(0));
    EXPECT_VELA_ERROR_IN(info.get_col_position(0, 0), function, folder, -15, "Invalid pixel position!");
}

TEST(ColumnPositions, BehindTheAxisAreNone)
{
    const OpenInfo info = four_pixels();
    for (const std::uint64_t pixel : {std::uint64_t{4}, ~std::uint64_t{0}})
        EXPECT_VELA_ERROR_IN(info.get_col_position(0, pixel), "VStackInfoImp::get_col_position", folder, -15,
                             "Invalid pixel position!");
    OpenInfo empty(Sizes{0});
    EXPECT_THAT(empty.get_col_positions(0), IsEmpty());
    EXPECT_VELA_ERROR_IN(empty.get_col_position(0, 0), "VStackInfoImp::get_col_position", folder, -15,
                         "Invalid pixel position!");
}

TEST(ColumnPositions, OfAnAxisThatBecameEmptyAreNone)
{
    OpenInfo info = four_pixels();
    info.get_col_positions(0);
    info.set_sizes({0});
    EXPECT_THAT(info.get_col_positions(0), IsEmpty());
    info.set_sizes({4});
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(-1.5, -0.5, 0.5, 1.5));
}

TEST(ColumnLabels, AreOneForEachColumnOrNone)
{
    OpenInfo info(Sizes{3});
    EXPECT_THAT(info.get_col_labels(0), IsEmpty());
    info.set_col_labels(0, {"red", "green", "blue"});
    EXPECT_THAT(info.get_col_labels(0), ElementsAre("red", "green", "blue"));
    for (const Texts& labels : {Texts{"red"}, Texts{"a", "b", "c", "d"}})
        EXPECT_VELA_ERROR_IN(info.set_col_labels(0, labels), "VStackInfoImp::set_col_labels", folder, -15,
                             "Wrong number of labels!");
    EXPECT_THAT(info.get_col_labels(0), ElementsAre("red", "green", "blue"));
    info.set_col_labels(0, {});
    EXPECT_THAT(info.get_col_labels(0), IsEmpty());
}

TEST(SetInfo, TakesAllButUnitsMetadataAndDate)
{
    OpenInfo source({3, 2});
    source.set_len(0, 6.0);
    source.set_off(1, 0.5);
    source.set_labels({"X", "colour"});
    source.set_name("name");
    source.set_description("description");
    source.set_col_labels(1, {"red", "green"});
    source.set_col_positions(0, {1, 2, 4});
    source.set_units(0, si::value("s"));
    source.set_data_units(si::value("V"));
    source.meta_data_string = "raw";
    source.set_acquisition_date();
    VStackPosition position;
    position.create(&source, 3);
    source.set_stack_position(position);

    OpenInfo info({3, 2});
    info.set_col_positions(1, {7, 8});
    info.set_col_labels(0, {"a", "b", "c"});
    info.set_info(&source);
    EXPECT_THAT(info.get_lengths(), ElementsAre(6.0, 1.0));
    EXPECT_THAT(info.get_offsets(), ElementsAre(0.0, 0.5));
    EXPECT_THAT(info.get_labels(), ElementsAre("X", "colour"));
    EXPECT_EQ(info.get_name(), "name");
    EXPECT_EQ(info.get_description(), "description");
    EXPECT_THAT(info.get_col_labels(0), IsEmpty());
    EXPECT_THAT(info.get_col_labels(1), ElementsAre("red", "green"));
    EXPECT_THAT(info.get_col_positions(0), ElementsAre(1, 2, 4));
    EXPECT_TRUE(info.is_equidistant(1));
    EXPECT_EQ(info.get_stack_position().origin.size(), 3U);
    EXPECT_EQ(info.get_units(1), si::value());
    EXPECT_EQ(info.get_data_units(), si::value());
    EXPECT_EQ(info.get_meta_data_string(), "");
    EXPECT_TRUE(info.meta_data().acquisition_date.is_null());
}

TEST(SetInfo, OfOtherShapesTakesWhatBothHave)
{
    OpenInfo source({3, 2, 2});
    source.set_len(Doubles{6.0, 4.0, 2.0});
    source.set_col_labels(1, {"red", "green"});
    OpenInfo info({3, 2});
    EXPECT_VELA_ERROR_IN(info.set_info(&source), "VStackInfoImp::set_stack_position", folder, -1,
                         "Invalid global stack position!");
    EXPECT_THAT(info.get_lengths(), ElementsAre(6.0, 4.0));
    EXPECT_THAT(info.get_col_labels(1), ElementsAre("red", "green"));
    OpenInfo other({3, 3});
    EXPECT_VELA_ERROR_IN(other.set_info(&source), "VStackInfoImp::set_col_labels", folder, -15,
                         "Wrong number of labels!");
}

TEST(StoredColumnPositions, AreThoseThatSomebodySetOrAskedFor)
{
    OpenInfo info({4, 2});
    info.set_len(0, 4.0);
    EXPECT_THAT(info.stored_col_positions(0), IsEmpty());
    info.get_col_positions(0);
    info.set_col_positions(1, {7.0, 9.0});
    EXPECT_THAT(info.stored_col_positions(0), ElementsAre(-1.5, -0.5, 0.5, 1.5));
    EXPECT_THAT(info.stored_col_positions(1), ElementsAre(7.0, 9.0));
    EXPECT_VELA_ERROR_IN(info.stored_col_positions(2), "VStackInfoImp::_chk_ax", folder, -15,
                         "Invalid axis specified!");
}

TEST(StoredColumnPositions, AreEquidistantWhereTheAxisHasGrown)
{
    OpenInfo info({2, 2});
    info.set_len(0, 4.0);
    info.get_col_positions(0);
    info.set_col_positions(1, {7.0, 9.0});
    info.set_sizes({4, 1});
    EXPECT_THAT(info.stored_col_positions(0), ElementsAre(-1.5, -0.5, 0.5, 1.5));
    EXPECT_THAT(info.stored_col_positions(1), ElementsAre(0.0));
}

TEST(StoredUnits, AreNotGuessed)
{
    OpenInfo info(Sizes{2});
    info.set_label(0, "X");
    EXPECT_TRUE(info.stored_units(0).is_dimensionless());
    EXPECT_FALSE(info.get_units(0).is_dimensionless());
    info.set_units(0, si::value("2 mm"));
    EXPECT_EQ(info.stored_units(0), si::value("2 mm"));
    EXPECT_VELA_ERROR_IN(info.stored_units(1), "VStackInfoImp::_chk_ax", folder, -15, "Invalid axis specified!");
}

TEST(CreateFromInfo, TakesSizesAndType)
{
    OpenInfo source({3, 2}, vela_dt_uint16);
    source.set_len(0, 6.0);
    source.set_name("name");
    OpenInfo info(Sizes{7});
    info.create(&source, 0);
    EXPECT_THAT(info.get_sizes(), ElementsAre(3, 2));
    EXPECT_EQ(info.get_dt(), vela_dt_uint16);
    EXPECT_EQ(info.get_name(), "name");
    EXPECT_EQ(info.get_length(0), 6.0);
    info.create(&source, vela_dt_double);
    EXPECT_EQ(info.get_dt(), vela_dt_double);
}

}
