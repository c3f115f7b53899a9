#include <VelaStacks/VStackInfo.h>
#include <VelaStacks/VStackRegion.h>

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
using vela_test::Texts;

namespace {

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

TEST(Description, FreshOneHasNoAxesAndOneElement)
{
    VStackInfoImp info;
    EXPECT_EQ(info.get_rank(), 0U);
    EXPECT_EQ(info.get_number_of_elements(), 1U);
    EXPECT_EQ(info.get_size(0), 0U);
    EXPECT_EQ(info.get_dt(), vela_dt_none);
    EXPECT_THAT(info.get_sizes(), IsEmpty());
    EXPECT_THAT(info.get_lengths(), IsEmpty());
    EXPECT_TRUE(info.meta_data().type.is_null());
    EXPECT_EQ(info.meta_data().dimension_order, Ome::DimensionOrder::XYZTC);
    EXPECT_EQ(info.meta_data().size_x, 1);
    EXPECT_EQ(info.meta_data().size_t, 1);
    EXPECT_EQ(info.meta_data().planes.size(), 1U);
    EXPECT_TRUE(info.meta_data().id.is_null());
}

TEST(Description, OfARankHasSizesOfZero)
{
    VStackInfoImp info(3);
    EXPECT_EQ(info.get_rank(), 3U);
    EXPECT_EQ(info.get_number_of_elements(), 0U);
    EXPECT_THAT(info.get_sizes(), ElementsAre(0, 0, 0));
    EXPECT_THAT(info.get_lengths(), ElementsAre(1, 1, 1));
    EXPECT_THAT(info.get_offsets(), ElementsAre(0, 0, 0));
    EXPECT_THAT(info.get_labels(), ElementsAre("", "", ""));
    EXPECT_TRUE(info.is_equidistant(2));
    EXPECT_THAT(info.get_col_labels(2), IsEmpty());
    EXPECT_EQ(info.get_data_units(), si::value());
    EXPECT_EQ(info.get_meta_data_string(), "");
    EXPECT_TRUE(info.meta_data().size_x.is_null());
    EXPECT_EQ(info.meta_data().planes.size(), 0U);
    EXPECT_EQ(VStackInfoImp(17).get_rank(), 17U);
}

TEST(Description, OfAnOmeTypeHasTheSampleType)
{
    VStackInfoImp info(Ome::Type::complex64, {4, 3, 2}, Ome::DimensionOrder::XYCZT);
    EXPECT_EQ(info.get_dt(), vela_dt_complex | vela_dt_single);
    EXPECT_THAT(info.get_sizes(), ElementsAre(4, 3, 2));
    EXPECT_EQ(info.get_number_of_elements(), 24U);
    EXPECT_EQ(info.get_size(0), 24U * 8);
    EXPECT_EQ(info.get_size(vela_dt_uint16), 24U * 2);
    EXPECT_EQ(info.get_size(vela_dt_char), 0U);
    EXPECT_EQ(info.meta_data().type, Ome::Type::complex64);
    EXPECT_EQ(info.meta_data().dimension_order, Ome::DimensionOrder::XYCZT);
    EXPECT_EQ(info.meta_data().size_c, 2);
    EXPECT_EQ(info.meta_data().channels.size(), 2U);
    EXPECT_TRUE(info.meta_data().physical_size_x.value().is_decimal());
}

TEST(Description, RefusesTypesAndOrdersThatAreNone)
{
    EXPECT_THROW_TEXT(VStackInfoImp(Ome::Type::bit, {1}, Ome::DimensionOrder::XYZTC), std::invalid_argument,
                      "Unsupported stack type");
    EXPECT_THROW_TEXT(VStackInfoImp(static_cast<Ome::Type>(-1), {1}, Ome::DimensionOrder::XYZTC), std::invalid_argument,
                      "Unsupported stack type");
    EXPECT_BAD_CAST(VStackInfoImp(Ome::Type::uint8, {1}, static_cast<Ome::DimensionOrder>(-1)));
}

TEST(Description, HandleSharesItsDescription)
{
    VStackInfo info;
    EXPECT_EQ(info->get_rank(), 0U);
    info->set_name("shared");
    VStackInfo copy(info);
    VStackInfo moved(std::move(info));
    EXPECT_EQ(copy->get_name(), "shared");
    EXPECT_EQ(static_cast<VStackInfoInterface*>(copy), static_cast<VStackInfoInterface*>(moved));
    EXPECT_EQ(static_cast<VStackInfoInterface*>(info), static_cast<VStackInfoInterface*>(moved))
        << "moving shares, too";

    const boost::shared_ptr<VStackInfoInterface> other(new VStackInfoImp(2));
    const VStackInfo of_other(other);
    EXPECT_EQ(static_cast<const VStackInfoInterface*>(of_other), other.get());
    EXPECT_EQ(of_other->get_rank(), 2U);
    copy = of_other;
    EXPECT_EQ(copy->get_rank(), 2U);
    EXPECT_EQ(moved->get_rank(), 0U);
}

TEST(Description, LockStopsWhatChangesIt)
{
    OpenInfo other({2, 2});
    VStackRegion region;
    region.create(&other, 0);
    OpenInfo info({2, 2});
    info.set_name("before");
    info.locked = true;
    const char* text = "Cannot set values. Object locked!";
    // Also on an axis that is none: the lock comes first.
    const auto fails = [&](const char* function, auto call)
    { EXPECT_VELA_ERROR_IN(call(), function, "sources/stacks", -1, text); };
    fails("VStackInfoImp::create", [&] { info.create(Sizes{1}, vela_dt_uint8); });
    fails("VStackInfoImp::create", [&] { info.create(&other, 0); });
    fails("VStackInfoImp::create", [&] { info.create(&other, region); });
    fails("VStackInfoImp::set_info", [&] { info.set_info(&other); });
    fails("VStackInfoImp::set_name", [&] { info.set_name("after"); });
    fails("VStackInfoImp::set_acquisition_date", [&] { info.set_acquisition_date(); });
    fails("VStackInfoImp::set_description", [&] { info.set_description("after"); });
    fails("VStackInfoImp::set_len", [&] { info.set_len(9, 2.0); });
    fails("VStackInfoImp::set_len", [&] { info.set_len(Doubles{2.0}); });
    fails("VStackInfoImp::set_off", [&] { info.set_off(9, 2.0); });
    fails("VStackInfoImp::set_off", [&] { info.set_off(Doubles{2.0}); });
    fails("VStackInfoImp::set_labels", [&] { info.set_labels({"after"}); });
    fails("VStackInfoImp::set_col_labels", [&] { info.set_col_labels(9, {"after"}); });
    fails("VStackInfoImp::set_col_positions", [&] { info.set_col_positions(9, {1.0}); });
    fails("VStackInfoImp::set_label", [&] { info.set_label(9, "after"); });
    fails("VStackInfoImp::set_units", [&] { info.set_units(9, si::value("m")); });
    fails("VStackInfoImp::set_data_units", [&] { info.set_data_units(si::value("V")); });
    EXPECT_EQ(info.get_name(), "before");
    EXPECT_EQ(info.get_length(0), 1.0);
    EXPECT_EQ(info.get_data_units(), si::value());
    EXPECT_TRUE(info.meta_data().acquisition_date.is_null());
}

TEST(Description, LockDoesNotStopPositionTypeAndSizes)
{
    OpenInfo info({2, 3}, vela_dt_none);
    info.locked = true;
    VStackPosition position;
    position.create(&info, 3);
    info.set_stack_position(position);
    EXPECT_EQ(info.get_stack_position().origin.size(), 3U);
    info.set_variable_type(vela_dt_int16);
    EXPECT_EQ(info.get_dt(), vela_dt_int16);
    info.set_variable_size(7);
    EXPECT_THAT(info.get_sizes(), ElementsAre(2, 7));
    info.meta_data().name = "through the record";
    EXPECT_EQ(info.get_name(), "through the record");
}

TEST(Description, OperationsOnAnAxisCheckIt)
{
    OpenInfo info({2, 2});
    for (const std::uint64_t axis : {std::uint64_t{2}, ~std::uint64_t{0}})
    {
        const auto fails = [&](auto call)
        { EXPECT_VELA_ERROR_IN(call(), "VStackInfoImp::_chk_ax", "sources/stacks", -15, "Invalid axis specified!"); };
        fails([&] { info.set_len(axis, 2.0); });
        fails([&] { info.set_off(axis, 2.0); });
        fails([&] { info.set_label(axis, ""); });
        fails([&] { info.set_units(axis, si::value()); });
        fails([&] { info.set_col_labels(axis, {}); });
        fails([&] { info.set_col_positions(axis, {}); });
        fails([&] { info.get_col_labels(axis); });
        fails([&] { info.get_col_positions(axis); });
        fails([&] { info.get_col_position(axis, 99); });
        fails([&] { info.is_equidistant(axis); });
        fails([&] { info.get_dimension_size(axis); });
        fails([&] { info.get_length(axis); });
        fails([&] { info.get_offset(axis); });
        fails([&] { info.get_label(axis); });
        fails([&] { info.get_units(axis); });
    }
}

TEST(Description, KeepsLabelsAndUnits)
{
    OpenInfo info({2, 2, 2});
    info.set_label(1, "depth");
    info.set_labels({"X"});
    EXPECT_THAT(info.get_labels(), ElementsAre("X", "depth", ""));
    info.set_labels({"a", "b", "c", "d"});
    EXPECT_THAT(info.get_labels(), ElementsAre("a", "b", "c"));
    EXPECT_EQ(info.get_label(2), "c");
    info.set_data_units(si::value("mV"));
    EXPECT_EQ(info.get_data_units(), si::value("mV"));
}

TEST(Description, NameAndDescriptionStandInTheRecord)
{
    OpenInfo info({2, 2});
    EXPECT_EQ(info.get_name(), "");
    EXPECT_EQ(info.get_description(), "");
    EXPECT_FALSE(info.meta_data().name.is_null()) << "reading a text that is not set makes it the empty one";
    info.set_name("embryo");
    info.set_description("two cells");
    EXPECT_EQ(info.meta_data().name.get(), "embryo");
    EXPECT_EQ(info.meta_data().description.get(), "two cells");
    info.meta_data().name = "larva";
    EXPECT_EQ(info.get_name(), "larva");
}

TEST(Description, GuessesTheUnitFromTheLabel)
{
    OpenInfo info({2, 2});
    const auto unit = [&](const char* label, double length, const si::value& units)
    {
        info.set_label(0, label);
        info.store_lengths({length});
        info.set_units(0, units);
        return info.get_units(0);
    };
    for (const char* label : {"X", "Stage Y", "pos_Z"})
    {
        EXPECT_EQ(unit(label, 80.0, si::value()), si::value("1e-6 m"));
        EXPECT_EQ(unit(label, 0.001, si::value()), si::value("1 m"));
        EXPECT_EQ(unit(label, 0.01, si::value()), si::value("1 m")) << "0.01 itself is not above";
        EXPECT_EQ(unit(label, nan_value, si::value()), si::value("1 m"));
        EXPECT_EQ(unit(label, 80.0, si::value("s")), si::value("s"));
        EXPECT_EQ(unit(label, 80.0, si::value(5.0)), si::value("1e-6 m"));
    }
    for (const char* label : {"T", "XW", "x", "Z ", "["})
    {
        EXPECT_EQ(unit(label, 80.0, si::value()), si::value());
        EXPECT_EQ(unit(label, 80.0, si::value(5.0)), si::value(5.0));
        EXPECT_EQ(unit(label, 80.0, si::value("no unit")), si::value()) << "cleared";
        EXPECT_EQ(unit(label, 80.0, si::value("s")), si::value("s"));
    }
    EXPECT_FALSE(unit("", 80.0, si::value("no unit")).is_valid()) << "as stored";
    EXPECT_EQ(unit("", 80.0, si::value(5.0)), si::value(5.0));
}

}
