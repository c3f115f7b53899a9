#include <VelaStacks/VStackInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/expect_bad_cast.h"
#include "support/expect_vela_error.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;

namespace {

constexpr std::uint64_t largest = ~std::uint64_t{0};
const char* const product_function = "`anonymous-namespace'::get_product";
const char* const product_text = "The product exceeds the maximum size.";

TEST(DescriptionSizes, GiveTheNumberOfElements)
{
    OpenInfo info({4, 3});
    EXPECT_EQ(info.get_number_of_elements(), 12U);
    EXPECT_EQ(info.get_size(0), 12U);
    EXPECT_EQ(info.get_size(vela_dt_double), 96U);
    info.create(Sizes{}, vela_dt_uint8);
    EXPECT_EQ(info.get_number_of_elements(), 1U);
    EXPECT_EQ(info.get_rank(), 0U);
}

TEST(DescriptionSizes, WhoseProductCannotBeCountedChangeOnlyTheType)
{
    OpenInfo info({4, 3});
    EXPECT_VELA_ERROR_IN(info.create({largest, 2}, vela_dt_int8), product_function, "sources/stacks", -1, product_text);
    EXPECT_VELA_ERROR_IN(info.create({largest / 3, 2, 2}, vela_dt_int8), product_function, "sources/stacks", -1,
                         product_text);
    EXPECT_VELA_ERROR_IN(info.create({largest, largest, 0}, vela_dt_int8), product_function, "sources/stacks", -1,
                         product_text);
    EXPECT_THAT(info.get_sizes(), ElementsAre(4, 3));
    EXPECT_EQ(info.get_number_of_elements(), 12U);
    EXPECT_EQ(info.get_dt(), vela_dt_int8);
    EXPECT_EQ(info.meta_data().size_x, 4);
}

TEST(DescriptionSizes, BehindAZeroAreNotMultiplied)
{
    OpenInfo info({0, largest, largest});
    EXPECT_EQ(info.get_number_of_elements(), 0U);
    EXPECT_EQ(info.get_dimension_size(2), largest);
}

TEST(DescriptionSizes, SizeInBytesKeepsTheLowBits)
{
    OpenInfo info(Sizes{0});
    // The record cannot have such a size, but the description does.
    EXPECT_BAD_CAST(info.create(Sizes{1ULL << 63}, vela_dt_uint8));
    EXPECT_EQ(info.get_number_of_elements(), 1ULL << 63);
    EXPECT_EQ(info.get_size(0), 1ULL << 63);
    EXPECT_EQ(info.get_size(vela_dt_uint16), 0U);
}

TEST(DescriptionSizes, MoreThanFiveNeedAZero)
{
    OpenInfo info(Sizes{0});
    info.create(Sizes{2, 2, 2, 0, 2, 2}, vela_dt_uint8);
    EXPECT_EQ(info.get_rank(), 6U);
    EXPECT_EQ(info.get_number_of_elements(), 0U);
    EXPECT_THROW_TEXT(info.create(Sizes{2, 2, 2, 2, 2, 2}, vela_dt_uint8), std::invalid_argument,
                      "Unsupported number of sizes");
    EXPECT_THAT(info.get_sizes(), ElementsAre(2, 2, 2, 2, 2, 2)) << "they are set all the same";
    EXPECT_EQ(info.get_number_of_elements(), 64U);
    EXPECT_TRUE(info.meta_data().size_x.is_null());
    EXPECT_THROW_TEXT(OpenInfo(Sizes{2, 2, 2, 2, 2, 2}), std::invalid_argument, "Unsupported number of sizes");
}

TEST(DescriptionSizes, KeepWhatIsKnownOfTheAxes)
{
    OpenInfo info({4, 3});
    info.set_len(Doubles{8.0, 6.0});
    info.set_off(Doubles{0.5, 0.25});
    info.set_labels({"X", "Y"});
    info.set_units(1, si::value("s"));
    info.set_col_positions(0, {1, 2, 3, 4});
    info.create(Sizes{4, 3, 2}, vela_dt_uint8);
    EXPECT_THAT(info.get_lengths(), ElementsAre(8.0, 6.0, 1.0));
    EXPECT_THAT(info.get_offsets(), ElementsAre(0.5, 0.25, 0.0));
    EXPECT_THAT(info.get_labels(), ElementsAre("X", "Y", ""));
    EXPECT_EQ(info.get_units(1), si::value("s"));
    EXPECT_FALSE(info.is_equidistant(0));
    EXPECT_TRUE(info.is_equidistant(2));
    EXPECT_THAT(info.get_col_labels(2), IsEmpty());
    info.create(Sizes{4}, vela_dt_uint8);
    EXPECT_THAT(info.get_lengths(), ElementsAre(8.0));
    info.create(Sizes{4, 3}, vela_dt_uint8);
    EXPECT_THAT(info.get_lengths(), ElementsAre(8.0, 1.0)) << "an axis that went is forgotten";
}

TEST(DescriptionSizes, MayBeThoseOfTheDescriptionItself)
{
    OpenInfo info({4, 3});
    info.create(info.get_sizes(), vela_dt_int32);
    EXPECT_THAT(info.get_sizes(), ElementsAre(4, 3));
    info.set_sizes(info.get_sizes());
    EXPECT_THAT(info.get_sizes(), ElementsAre(4, 3));
    info.create(&info, vela_dt_none);
    EXPECT_THAT(info.get_sizes(), ElementsAre(4, 3));
    EXPECT_EQ(info.get_dt(), vela_dt_int32);
}

TEST(DescriptionSizes, LastOneGrows)
{
    OpenInfo info({4, 3, 0});
    EXPECT_TRUE(info.meta_data().size_z.is_null());
    info.set_variable_size(1);
    info.set_variable_size(5);
    EXPECT_THAT(info.get_sizes(), ElementsAre(4, 3, 5));
    EXPECT_EQ(info.meta_data().size_z, 5);
    EXPECT_EQ(info.meta_data().planes.size(), 5U);
    OpenInfo flat(Sizes{});
    EXPECT_VELA_ERROR_IN(flat.set_variable_size(1), "VStackInfoImp::_chk_ax", "sources/stacks", -15,
                         "Invalid axis specified!");
}

TEST(DescriptionType, GoesIntoTheRecord)
{
    OpenInfo info(Sizes{4});
    info.set_type(vela_dt_double);
    EXPECT_EQ(info.meta_data().type, Ome::Type::float64);
    info.set_type(vela_dt_none);
    EXPECT_EQ(info.get_dt(), vela_dt_none);
    EXPECT_EQ(info.meta_data().type, Ome::Type::float64) << "no type leaves the record as it is";
}

TEST(DescriptionType, ThatTheRecordDoesNotHaveIsKept)
{
    for (const vela_dt dt : {vela_dt_uint64, vela_dt_logical, vela_dt_rgb, vela_dt_complex | vela_dt_uint8,
                             vela_dt_array | vela_dt_uint8, vela_dt{-1}})
    {
        OpenInfo info(Sizes{4});
        EXPECT_THROW_TEXT(info.create(Sizes{9}, dt), std::invalid_argument, "Unsupported data type");
        EXPECT_EQ(info.get_dt(), dt);
        EXPECT_THAT(info.get_sizes(), ElementsAre(4));
        EXPECT_EQ(info.meta_data().type, Ome::Type::uint8);
    }
}

TEST(DescriptionType, IsSetOnce)
{
    OpenInfo info(Sizes{4}, vela_dt_none);
    info.set_variable_type(vela_dt_uint16);
    EXPECT_EQ(info.meta_data().type, Ome::Type::uint16);
    const char* function = "VStackInfoImp::set_variable_type";
    EXPECT_VELA_ERROR_IN(info.set_variable_type(vela_dt_uint16), function, "sources/stacks", -1,
                         "The type is already set to 4.");
    EXPECT_VELA_ERROR_IN(info.set_variable_type(vela_dt_none), function, "sources/stacks", -1,
                         "The type is already set to 4.");
    OpenInfo complex(Sizes{4}, vela_dt_complex | vela_dt_single);
    EXPECT_VELA_ERROR_IN(complex.set_variable_type(vela_dt_uint8), function, "sources/stacks", -1,
                         "The type is already set to 1073741888.");
    OpenInfo empty(Sizes{4}, vela_dt_none);
    EXPECT_THROW_TEXT(empty.set_variable_type(vela_dt_int64), std::invalid_argument, "Unsupported data type");
    EXPECT_EQ(empty.get_dt(), vela_dt_int64);
}

}
