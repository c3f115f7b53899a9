/// What can be seen of columns and units of a description, and of the handle that shares one.
#include "open_info.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;
using vela_test::Texts;

constexpr const char* folder = "sources/stacks";

OpenInfo four_pixels()
{
    OpenInfo info(Sizes{4, 3});
    info.set_len(0, 4.0);
    return info;
}

TEST(ColumnsBehaviour, EquidistantPositionsAreTheMiddlesOfThePixels)
{
    OpenInfo info = four_pixels();
    EXPECT_EQ(info.get_col_positions(0), (Doubles{-1.5, -0.5, 0.5, 1.5}));
    EXPECT_TRUE(info.is_equidistant(0));
    OpenInfo other = four_pixels();
    other.set_off(0, 10.0);
    other.set_len(0, 8.0);
    EXPECT_EQ(other.get_col_positions(0), (Doubles{7.0, 9.0, 11.0, 13.0}));
    EXPECT_EQ(other.get_col_position(0, 3), 13.0);
}

TEST(ColumnsBehaviour, OnePositionOfAnEquidistantAxisFollowsFromLengthAndOffset)
{
    OpenInfo info(Sizes{7});
    info.set_len(0, 0.3);
    info.set_off(0, -4.1);
    for (std::uint64_t pixel = 0; pixel < 7; ++pixel)
        EXPECT_DOUBLE_EQ(info.get_col_position(0, pixel),
                         -4.1 - 0.3 / 2 + (0.3 / 7) * (static_cast<double>(pixel) + 0.5));
    const Doubles& all = info.get_col_positions(0);
    ASSERT_EQ(all.size(), 7u);
    for (std::uint64_t pixel = 0; pixel < 7; ++pixel)
        EXPECT_NEAR(all[pixel], info.get_col_position(0, pixel), 1e-14);
}

TEST(ColumnsBehaviour, PixelBehindTheAxisIsRefused)
{
    OpenInfo info = four_pixels();
    for (int round = 0; round < 2; ++round)
    {
        for (const std::uint64_t pixel : {std::uint64_t{4}, UINT64_MAX})
            EXPECT_VELA_ERROR_IN(info.get_col_position(0, pixel), "VStackInfoImp::get_col_position", folder, -15,
                                 "Invalid pixel position!");
        info.set_col_positions(0, {1, 2, 3, 5});
    }
    EXPECT_EQ(info.get_col_position(0, 3), 5.0);
    EXPECT_VELA_ERROR(VStackInfoImp(1).get_col_position(0, 0), -15, "Invalid pixel position!");
}

TEST(ColumnsBehaviour, FilledVectorStaysWhenLengthOrOffsetChange)
{
    OpenInfo info = four_pixels();
    info.get_col_positions(0);
    info.set_len(0, 400.0);
    info.set_off(0, 7.0);
    EXPECT_EQ(info.get_col_positions(0), (Doubles{-1.5, -0.5, 0.5, 1.5}));
    EXPECT_EQ(info.get_col_position(0, 0), 7.0 - 200.0 + 50.0);
    EXPECT_TRUE(info.is_equidistant(0));
}

TEST(ColumnsBehaviour, FilledVectorIsTheCallersToChange)
{
    const OpenInfo info = four_pixels();
    info.get_col_positions(0)[2] = 77.0;
    EXPECT_EQ(info.get_col_positions(0), (Doubles{-1.5, -0.5, 77.0, 1.5}));
    info.get_col_positions(0).push_back(1.0);
    EXPECT_EQ(info.get_col_positions(0), (Doubles{-1.5, -0.5, 0.5, 1.5}));
}

TEST(ColumnsBehaviour, FilledVectorFollowsTheSizeOfTheAxis)
{
    OpenInfo info = four_pixels();
    info.get_col_positions(0);
    info.set_sizes({2, 3});
    EXPECT_EQ(info.get_col_positions(0), (Doubles{-1.0, 1.0}));
    info.set_sizes({3, 3});
    EXPECT_EQ(info.get_col_positions(0).size(), 3u);
    EXPECT_TRUE(info.is_equidistant(0));
}

TEST(ColumnsBehaviour, SetPositionsEndEquidistanceAndAnEmptyVectorBringsItBack)
{
    OpenInfo info = four_pixels();
    info.set_col_positions(0, {1, 2, 4, 8});
    EXPECT_FALSE(info.is_equidistant(0));
    EXPECT_TRUE(info.is_equidistant(1));
    EXPECT_EQ(info.get_col_positions(0), (Doubles{1, 2, 4, 8}));
    EXPECT_EQ(info.get_col_position(0, 2), 4.0);
    info.set_col_positions(0, {});
    EXPECT_TRUE(info.is_equidistant(0));
    EXPECT_EQ(info.get_col_position(0, 2), 0.5);
    EXPECT_EQ(info.get_col_positions(0), (Doubles{-1.5, -0.5, 0.5, 1.5}));
}

TEST(ColumnsBehaviour, EmptyVectorAlsoForgetsWhatAGetterFilled)
{
    OpenInfo info = four_pixels();
    info.get_col_positions(0);
    info.set_len(0, 8.0);
    info.set_col_positions(0, {});
    EXPECT_EQ(info.get_col_positions(0), (Doubles{-3.0, -1.0, 1.0, 3.0}));
}

TEST(ColumnsBehaviour, PositionsOfAnAxisThatChangedItsSizeAreCleared)
{
    OpenInfo info = four_pixels();
    info.set_col_positions(0, {1, 2, 4, 8});
    info.set_sizes({6, 3});
    EXPECT_FALSE(info.is_equidistant(0));
    EXPECT_EQ(info.get_col_position(0, 3), 8.0);
    EXPECT_VELA_ERROR(info.get_col_position(0, 5), -15, "Invalid pixel position!");
    EXPECT_TRUE(info.get_col_positions(0).empty());
    EXPECT_FALSE(info.is_equidistant(0));
    EXPECT_VELA_ERROR(info.get_col_position(0, 3), -15, "Invalid pixel position!");
}

TEST(ColumnsBehaviour, WrongNumberOfPositionsChangesNothing)
{
    OpenInfo info = four_pixels();
    for (const std::size_t count : {1u, 3u, 5u})
        EXPECT_VELA_ERROR_IN(info.set_col_positions(0, Doubles(count)), "VStackInfoImp::set_col_positions", folder, -15,
                             "Wrong number of positions!");
    EXPECT_TRUE(info.is_equidistant(0));
    EXPECT_EQ(info.get_col_positions(0), (Doubles{-1.5, -0.5, 0.5, 1.5}));
    info.set_col_positions(0, {1, 2, 4, 8});
    EXPECT_VELA_ERROR(info.set_col_positions(0, Doubles(3)), -15, "Wrong number of positions!");
    EXPECT_EQ(info.get_col_positions(0), (Doubles{1, 2, 4, 8}));
}

TEST(ColumnsBehaviour, LabelsHaveTheSizeOfTheAxisOrNone)
{
    OpenInfo info = four_pixels();
    info.set_col_labels(0, {"a", "", "c", "d"});
    EXPECT_EQ(info.get_col_labels(0), (Texts{"a", "", "c", "d"}));
    for (const std::size_t count : {1u, 3u, 5u})
        EXPECT_VELA_ERROR_IN(info.set_col_labels(0, Texts(count)), "VStackInfoImp::set_col_labels", folder, -15,
                             "Wrong number of labels!");
    EXPECT_EQ(info.get_col_labels(0), (Texts{"a", "", "c", "d"}));
    info.set_col_labels(0, {});
    EXPECT_TRUE(info.get_col_labels(0).empty());
}

TEST(ColumnsBehaviour, OperationsTakeWhatTheirOwnGettersGive)
{
    OpenInfo info = four_pixels();
    info.set_col_labels(0, {"a", "b", "c", "d"});
    info.set_col_labels(0, info.get_col_labels(0));
    EXPECT_EQ(info.get_col_labels(0), (Texts{"a", "b", "c", "d"}));
    info.set_col_positions(0, info.get_col_positions(0));
    EXPECT_FALSE(info.is_equidistant(0));
    info.set_col_positions(0, info.get_col_positions(0));
    EXPECT_EQ(info.get_col_positions(0), (Doubles{-1.5, -0.5, 0.5, 1.5}));
    info.set_label(1, "label");
    info.set_labels(info.get_labels());
    info.set_label(0, info.get_label(1));
    info.set_len(info.get_lengths());
    info.set_off(info.get_offsets());
    info.set_name("a name that is longer than a short text");
    info.set_name(info.get_name());
    info.set_description(info.get_name());
    info.create(info.get_sizes(), vela_dt_int8);
    info.set_stack_position(info.get_stack_position());
    EXPECT_EQ(info.get_sizes(), (Sizes{4, 3}));
    EXPECT_EQ(info.get_lengths(), (Doubles{4.0, 1.0}));
    EXPECT_EQ(info.get_labels(), (Texts{"label", "label"}));
    EXPECT_EQ(info.get_description(), "a name that is longer than a short text");
}

TEST(UnitsBehaviour, UnitOfAnAxisIsGuessedFromItsLabelAndLength)
{
    struct Case
    {
        const char* unit;
        const char* label;
        double length;
        double number;
        bool is_length;
    };
    const Case cases[] = {
        {"", "X", 80.0, 1e-6, true},  {"", "ExcX", 80.0, 1e-6, true},     {"", "Pos Y", 0.001, 1.0, true},
        {"", "Z", 0.01, 1.0, true},   {"", "Z", 0.010001, 1e-6, true},    {"", "Z", -80.0, 1.0, true},
        {"", "X ", 80.0, 1.0, false}, {"", "x", 80.0, 1.0, false},        {"", "Xy", 80.0, 1.0, false},
        {"", "", 80.0, 1.0, false},   {"3", "X", 80.0, 1e-6, true},       {"3", "T", 80.0, 3.0, false},
        {"3", "", 80.0, 3.0, false},  {"no unit", "X", 80.0, 1e-6, true}, {"no unit", "T", 80.0, 1.0, false},
    };
    for (const Case& c : cases)
    {
        SCOPED_TRACE(std::string(c.unit) + " '" + c.label + "' " + std::to_string(c.length));
        OpenInfo info(1); // without elements, so the record has nothing to say about a length
        if (*c.unit != '\0')
            info.set_units(0, si::value(c.unit));
        info.set_label(0, c.label);
        info.set_len(0, c.length);
        const si::value unit = info.get_units(0);
        EXPECT_TRUE(unit.is_valid());
        EXPECT_EQ(unit.exponent(0).numerator(), c.is_length ? 1 : 0);
        EXPECT_EQ(unit.is_dimensionless(), !c.is_length);
        EXPECT_DOUBLE_EQ(unit.value_in_baseunits(), c.number);
    }
}

TEST(UnitsBehaviour, UnitWithADimensionOrWithoutALabelComesAsItWasSet)
{
    OpenInfo info(Sizes{4, 3});
    info.set_units(0, si::value("2 K"));
    info.set_label(0, "X");
    info.set_len(0, 80.0);
    EXPECT_EQ(info.get_units(0), si::value("2 K"));
    info.set_units(1, si::value("no unit"));
    EXPECT_FALSE(info.get_units(1).is_valid());
    info.set_label(1, "T");
    EXPECT_TRUE(info.get_units(1).is_valid());
    info.set_label(1, "");
    EXPECT_FALSE(info.get_units(1).is_valid()) << "the guess is not stored";
}

TEST(UnitsBehaviour, UnitOfTheSamplesIsStored)
{
    OpenInfo info(Sizes{4, 3});
    info.set_data_units(si::value("3 V"));
    EXPECT_EQ(info.get_data_units(), si::value("3 V"));
}

TEST(HandleBehaviour, SharesOneDescription)
{
    VStackInfo fresh;
    EXPECT_EQ(fresh->get_rank(), 0u);
    EXPECT_EQ(fresh->get_number_of_elements(), 1u);

    const boost::shared_ptr<VStackInfoInterface> pointee(new VStackInfoImp(2));
    VStackInfo handle(pointee);
    VStackInfo copy(handle);
    VStackInfo assigned;
    assigned = handle;
    const VStackInfo moved(std::move(copy));
    VStackInfo move_assigned;
    move_assigned = VStackInfo(handle);
    const VStackInfo& seen = handle;
    EXPECT_EQ(static_cast<VStackInfoInterface*>(handle), pointee.get());
    EXPECT_EQ(static_cast<const VStackInfoInterface*>(seen), pointee.get());
    EXPECT_EQ(static_cast<VStackInfoInterface*>(assigned), pointee.get());
    EXPECT_EQ(static_cast<const VStackInfoInterface*>(moved), pointee.get());
    EXPECT_EQ(static_cast<VStackInfoInterface*>(move_assigned), pointee.get());
    handle->set_label(0, "shared");
    EXPECT_EQ(moved->get_label(0), "shared");
    EXPECT_EQ(VStackInfo(seen)->get_rank(), 2u);
    static_assert(std::is_same_v<decltype(seen.operator->()), const VStackInfoInterface*>);
}

TEST(HandleBehaviour, KeepsItsDescriptionAlive)
{
    VStackInfo handle;
    {
        const VStackInfo other(boost::shared_ptr<VStackInfoInterface>(new VStackInfoImp(3)));
        handle = other;
    }
    EXPECT_EQ(handle->get_rank(), 3u);
}

} // namespace
