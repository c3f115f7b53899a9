#include <VelaStacks/VStackInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stacks/open_info.h"
#include "support/expect_vela_error.h"

using testing::ElementsAre;
using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;

namespace {

TEST(DescriptionCopy, HasARecordOfItsOwn)
{
    OpenInfo info({4, 3});
    info.set_name("first");
    info.set_label(0, "X");
    info.locked = true;
    OpenInfo copy(info);
    EXPECT_TRUE(copy.locked);
    EXPECT_EQ(copy.get_label(0), "X");
    EXPECT_EQ(copy.get_name(), "first");
    EXPECT_EQ(copy.meta_data().size_y, 3);
    EXPECT_EQ(copy.meta_data().planes.size(), 1U);
    copy.locked = false;
    copy.set_name("second");
    EXPECT_EQ(info.get_name(), "first");
    EXPECT_EQ(copy.meta_data().name.get(), "second");
}

TEST(DescriptionCopy, HasAllThatIsKnown)
{
    OpenInfo info({2, 3}, vela_dt_int16);
    info.set_len(Doubles{8.0, 6.0});
    info.set_off(Doubles{1.0, 2.0});
    info.set_units(1, si::value("s"));
    info.set_data_units(si::value("V"));
    info.set_col_positions(0, {1.0, 4.0});
    info.set_col_labels(1, {"a", "b", "c"});
    info.meta_data_string = "raw";
    VStackPosition position;
    position.create(&info, 3);
    info.set_stack_position(position);

    OpenInfo copy(info);
    EXPECT_THAT(copy.get_sizes(), ElementsAre(2, 3));
    EXPECT_EQ(copy.get_number_of_elements(), 6U);
    EXPECT_EQ(copy.get_dt(), vela_dt_int16);
    EXPECT_THAT(copy.get_lengths(), ElementsAre(8.0, 6.0));
    EXPECT_THAT(copy.get_offsets(), ElementsAre(1.0, 2.0));
    EXPECT_EQ(copy.get_units(1), si::value("s"));
    EXPECT_EQ(copy.get_data_units(), si::value("V"));
    EXPECT_FALSE(copy.is_equidistant(0));
    EXPECT_EQ(copy.get_col_position(0, 1), 4.0);
    EXPECT_THAT(copy.get_col_labels(1), ElementsAre("a", "b", "c"));
    EXPECT_EQ(copy.get_meta_data_string(), "raw");
    EXPECT_EQ(copy.get_stack_position().origin.size(), 3U);
    EXPECT_EQ(copy.meta_data().physical_size_x.get(), 4.0);
    EXPECT_EQ(copy.meta_data().planes[0]->position_y.get(), 2.0);
    copy.set_len(0, 2.0);
    copy.meta_data().planes[0]->position_y = 7.0;
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 4.0);
    EXPECT_EQ(info.meta_data().planes[0]->position_y.get(), 2.0);
}

TEST(DescriptionCopy, OfOneWithoutElementsStillWaits)
{
    OpenInfo info({4, 0});
    info.set_len(0, 8.0);
    info.set_off(0, 3.0);
    OpenInfo copy(info);
    copy.set_variable_size(2);
    EXPECT_EQ(copy.meta_data().physical_size_x.get(), 2.0);
    EXPECT_EQ(copy.meta_data().planes[0]->position_x.get(), 3.0);
}

/// Reads all dates, units and enumerations, whether they are set or not, which leaves empty texts in the tree.
void read_texts(Ome::Image<Json::SignalingReference>& image)
{
    EXPECT_EQ(image.acquisition_date.get(), "");
    image.type.get();
    image.time_increment_unit.get();
    image.channels[0]->illumination_type.get();
    image.channels[0]->acquisition_mode.get();
    image.channels[0]->contrast_method.get();
    image.channels[0]->pinhole_size_unit.get();
    image.channels[0]->light_source_settings.add()->wavelength_unit.get();
    image.planes[1]->delta_t_unit.get();
}

TEST(DescriptionCopy, IsMadeAlsoWhereUnsetTextsWereRead)
{
    OpenInfo info({4, 3, 2, 2}, vela_dt_none);
    info.set_len(0, 8.0);
    info.get_name();
    read_texts(info.meta_data());
    OpenInfo copy(info);
    Ome::Image<Json::SignalingReference>& image = copy.meta_data();
    EXPECT_TRUE(image.acquisition_date.is_null());
    EXPECT_TRUE(image.planes[1]->delta_t_unit.is_null());
    EXPECT_TRUE(image.channels[0]->light_source_settings[0]->wavelength_unit.is_null());
    EXPECT_EQ(image.physical_size_x.get(), 2.0);
    EXPECT_EQ(image.planes[3]->the_t, 1);
    EXPECT_FALSE(image.name.is_null()) << "other texts may be empty";
    read_texts(image);
}

}
