/// What goes along when a description is copied or takes the information of another, and when it was acquired.
#include "open_info.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <stdexcept>

namespace {

using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;
using vela_test::Texts;

constexpr const char* no_dimension = "Unsupported physical dimension";

std::unique_ptr<OpenInfo> make_full()
{
    auto info = std::make_unique<OpenInfo>(Sizes{4, 3});
    info->set_len({8.0, 6.0});
    info->set_off({1.0, 2.0});
    info->set_labels({"X", "Y"});
    info->set_name("name");
    info->set_description("description");
    info->set_units(0, si::value("K"));
    info->set_data_units(si::value("V"));
    info->set_col_labels(0, {"a", "b", "c", "d"});
    info->set_col_positions(1, {1, 2, 4});
    info->meta_data().acquisition_date = "2026-11-20T09:30:00+01:00";
    info->meta_data_string = "raw";
    VStackPosition position;
    position.create(info.get(), 3);
    position.origin[2] = 5.0;
    info->set_stack_position(position);
    return info;
}

void expect_shared_part(const VStackInfoInterface& info)
{
    EXPECT_EQ(info.get_sizes(), (Sizes{4, 3}));
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0}));
    EXPECT_EQ(info.get_offsets(), (Doubles{1.0, 2.0}));
    EXPECT_EQ(info.get_labels(), (Texts{"X", "Y"}));
    EXPECT_EQ(info.get_name(), "name");
    EXPECT_EQ(info.get_description(), "description");
    EXPECT_EQ(info.get_col_labels(0), (Texts{"a", "b", "c", "d"}));
    EXPECT_TRUE(info.get_col_labels(1).empty());
    EXPECT_TRUE(info.is_equidistant(0));
    EXPECT_FALSE(info.is_equidistant(1));
    EXPECT_EQ(info.get_col_positions(1), (Doubles{1, 2, 4}));
    EXPECT_EQ(info.get_stack_position().origin.count(), 3u);
    EXPECT_EQ(info.get_stack_position().origin[2], 5.0);
}

TEST(DescriptionCopyBehaviour, HasEverythingAndLivesOnItsOwn)
{
    auto original = make_full();
    original->locked = true;
    OpenInfo copy(*original);
    EXPECT_NE(&copy.meta_data(), &original->meta_data());
    original->meta_data().name = "changed";
    original->meta_data().physical_size_x = 99.0;
    original->get_col_positions(1)[0] = 99.0;
    original.reset();
    expect_shared_part(copy);
    EXPECT_EQ(copy.get_units(0), si::value("K"));
    EXPECT_EQ(copy.get_data_units(), si::value("V"));
    EXPECT_EQ(copy.get_meta_data_string(), "raw");
    EXPECT_EQ(copy.get_dt(), vela_dt_uint8);
    EXPECT_EQ(copy.meta_data().acquisition_date.get(), "2026-11-20T09:30:00+01:00");
    EXPECT_EQ(copy.meta_data().physical_size_x.get(), 2.0);
    EXPECT_EQ(copy.meta_data().planes.size(), 1u);
    EXPECT_TRUE(copy.locked);
    copy.locked = false;
    copy.create(Sizes{2, 2, 7}, vela_dt_int8);
    copy.set_len(2, 14.0);
    EXPECT_EQ(copy.meta_data().planes.size(), 7u);
    EXPECT_EQ(copy.meta_data().physical_size_z.get(), 2.0);
}

TEST(DescriptionCopyBehaviour, ChangesOfTheCopyDoNotReachTheOriginal)
{
    const auto original = make_full();
    OpenInfo copy(*original);
    copy.set_name("other");
    copy.set_len(0, 80.0);
    copy.set_off(0, 7.0);
    copy.set_sizes({1});
    expect_shared_part(*original);
    EXPECT_EQ(original->meta_data().physical_size_x.get(), 2.0);
    EXPECT_EQ(original->meta_data().planes[0]->position_x.get(), 1.0);
}

TEST(DescriptionCopyBehaviour, SucceedsAfterUnsetFieldsWereRead)
{
    OpenInfo original(2);
    original.meta_data().acquisition_date.get();
    original.meta_data().type.get();
    original.meta_data().time_increment_unit.get();
    original.get_name();
    OpenInfo copy(original);
    copy.create(Sizes{3, 2}, vela_dt_int16);
    EXPECT_EQ(copy.meta_data().type.get(), Ome::Type::int16);
    EXPECT_EQ(original.get_number_of_elements(), 0u);
}

TEST(SetInfoBehaviour, TakesWhatIsListedAndNothingElse)
{
    const auto full = make_full();
    OpenInfo info;
    info.create(full.get(), 0);
    expect_shared_part(info);
    EXPECT_EQ(info.get_dt(), vela_dt_uint8);
    EXPECT_FALSE(info.get_units(0).is_compatible(si::value("K")));
    EXPECT_EQ(info.get_data_units(), si::value());
    EXPECT_EQ(info.get_meta_data_string(), "");
    EXPECT_TRUE(info.meta_data().acquisition_date.is_null());
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 2.0);
    EXPECT_EQ(info.meta_data().planes[0]->position_y.get(), 2.0);
    info.create(full.get(), vela_dt_double);
    EXPECT_EQ(info.get_dt(), vela_dt_double);
    expect_shared_part(info);
}

TEST(SetInfoBehaviour, MakesAnAxisEquidistantAndClearsItsLabelsAsTheSourceIs)
{
    const auto full = make_full();
    OpenInfo info(Sizes{4, 3});
    info.set_col_positions(0, {9, 9, 9, 9});
    info.set_col_labels(1, {"x", "y", "z"});
    info.set_info(full.get());
    expect_shared_part(info);
}

TEST(SetInfoBehaviour, OfItselfChangesNothing)
{
    const auto full = make_full();
    full->set_info(full.get());
    expect_shared_part(*full);
    full->create(full.get(), 0);
    expect_shared_part(*full);
    EXPECT_EQ(full->get_units(0), si::value("K"));
}

TEST(SetInfoBehaviour, ColumnsThatDoNotFitFailBehindWhatComesBeforeThem)
{
    const auto full = make_full();
    OpenInfo info(Sizes{5, 3});
    EXPECT_VELA_ERROR_IN(info.set_info(full.get()), "VStackInfoImp::set_col_labels", "sources/stacks", -15,
                         "Wrong number of labels!");
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0}));
    EXPECT_EQ(info.get_labels(), (Texts{"X", "Y"}));
    EXPECT_EQ(info.get_name(), "name");
    EXPECT_TRUE(info.is_equidistant(1));
    EXPECT_EQ(info.get_stack_position().origin.count(), 2u);
    full->set_col_labels(0, {});
    OpenInfo other(Sizes{4, 2});
    EXPECT_VELA_ERROR_IN(other.set_info(full.get()), "VStackInfoImp::set_col_positions", "sources/stacks", -15,
                         "Wrong number of positions!");
    EXPECT_EQ(other.get_description(), "description");
}

TEST(SetInfoBehaviour, PositionOfAnotherRankIsRefusedLast)
{
    const auto full = make_full();
    OpenInfo info(Sizes{4, 3, 2});
    EXPECT_VELA_ERROR(info.set_info(full.get()), -1, "Invalid global stack position!");
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0, 1.0}));
    EXPECT_EQ(info.get_col_labels(0), (Texts{"a", "b", "c", "d"}));
    EXPECT_FALSE(info.is_equidistant(1));
}

TEST(SetInfoBehaviour, LongerOneFillsTheAxesThatAreThere)
{
    OpenInfo source(Sizes{4, 3, 2});
    source.set_len({8.0, 6.0, 4.0});
    source.set_off({1.0, 2.0, 3.0});
    source.set_labels({"X", "Y", "Z"});
    source.set_col_positions(1, {1, 2, 4});
    OpenInfo info(Sizes{4, 3});
    EXPECT_VELA_ERROR(info.set_info(&source), -1, "Invalid global stack position!");
    EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0}));
    EXPECT_EQ(info.get_offsets(), (Doubles{1.0, 2.0}));
    EXPECT_EQ(info.get_labels(), (Texts{"X", "Y"}));
    EXPECT_FALSE(info.is_equidistant(1));
}

TEST(SetInfoBehaviour, ColumnsThatNoLongerFitTheSourceFailOrAreNone)
{
    OpenInfo source(Sizes{4});
    source.set_col_positions(0, {1, 2, 4, 8});
    source.set_sizes({6});
    OpenInfo info;
    info.create(&source, 0);
    EXPECT_FALSE(source.is_equidistant(0));
    EXPECT_TRUE(info.is_equidistant(0));
    source.set_sizes({4});
    source.set_col_labels(0, {"a", "b", "c", "d"});
    source.set_sizes({6});
    EXPECT_VELA_ERROR(info.create(&source, 0), -15, "Wrong number of labels!");
}

TEST(SetInfoBehaviour, LengthsAndOffsetsWaitForElements)
{
    OpenInfo source(Sizes{4, 3});
    source.set_len({8.0, 6.0});
    source.set_off({1.0, 2.0});
    OpenInfo info(2);
    info.set_info(&source);
    EXPECT_TRUE(info.meta_data().size_x.is_null());
    info.create(Sizes{2, 3}, vela_dt_int8);
    EXPECT_EQ(info.meta_data().physical_size_x.get(), 4.0);
    EXPECT_EQ(info.meta_data().planes[0]->position_y.get(), 2.0);
}

TEST(SetInfoBehaviour, StoresLengthsAndOffsetsThatTheRecordCannotExpress)
{
    for (const auto order : {Ome::DimensionOrder::XYCZT, Ome::DimensionOrder::XYZTC})
    {
        OpenInfo source(Sizes{4, 3, 2, 5, 6}, order);
        EXPECT_THROW_TEXT(source.set_len({8.0, 6.0, 4.0, 10.0, 12.0}), std::invalid_argument, no_dimension);
        EXPECT_THROW_TEXT(source.set_off({3.0, 0.0, 5.0, 7.0, 0.0}), std::invalid_argument, no_dimension);
        OpenInfo info(Sizes{}, order);
        info.create(&source, 0);
        EXPECT_EQ(info.get_lengths(), (Doubles{8.0, 6.0, 4.0, 10.0, 12.0}));
        EXPECT_EQ(info.get_offsets(), (Doubles{3.0, 0.0, 5.0, 7.0, 0.0}));
        EXPECT_EQ(info.meta_data().physical_size_x.get(), 2.0);
        EXPECT_EQ(info.meta_data().physical_size_z.get(), 2.0);
        EXPECT_EQ(info.meta_data().time_increment.get(), 2.0);
        EXPECT_EQ(info.meta_data().planes[0]->position_x.get(), 3.0);
        const bool channels_first = order == Ome::DimensionOrder::XYCZT;
        EXPECT_EQ(info.meta_data().planes[0]->position_z.get(), channels_first ? 7.0 - 2.0 * 2.0 : 5.0 - 0.5 * 2.0);
        VStackRegion region;
        region.create(&source, 0);
        OpenInfo cut(Sizes{}, order);
        cut.create(&source, region);
        EXPECT_EQ(cut.get_lengths(), source.get_lengths());
        EXPECT_EQ(cut.get_offsets(), source.get_offsets());
        EXPECT_EQ(cut.meta_data().time_increment.get(), 2.0);
        EXPECT_FALSE(cut.meta_data().planes[0]->position_z.is_null());
    }
}

/// Notes which operations come in through the table.
class Listener : public VStackInfoImp
{
public:
    Texts calls;

    using VStackInfoImp::create;

    void create(const Sizes& new_sizes, vela_dt new_dt) override
    {
        calls.push_back("create");
        VStackInfoImp::create(new_sizes, new_dt);
    }
    void set_info(const VStackInfoInterface* info) override
    {
        calls.push_back("set_info");
        VStackInfoImp::set_info(info);
    }
    using VStackInfoImp::set_len;
    void set_len(const Doubles& lens) override
    {
        calls.push_back("set_len");
        VStackInfoImp::set_len(lens);
    }
    using VStackInfoImp::set_off;
    void set_off(const Doubles& offs) override
    {
        calls.push_back("set_off");
        VStackInfoImp::set_off(offs);
    }
    void set_labels(const Texts& texts) override
    {
        calls.push_back("set_labels");
        VStackInfoImp::set_labels(texts);
    }
    void set_description(const std::string& text) override
    {
        calls.push_back("set_description");
        VStackInfoImp::set_description(text);
    }
    void set_name(const std::string& text) override
    {
        calls.push_back("set_name");
        VStackInfoImp::set_name(text);
    }
    void set_col_labels(std::uint64_t axis, const Texts& texts) override
    {
        calls.push_back("set_col_labels " + std::to_string(axis));
        VStackInfoImp::set_col_labels(axis, texts);
    }
    void set_col_positions(std::uint64_t axis, const Doubles& positions) override
    {
        calls.push_back("set_col_positions " + std::to_string(axis) + " " + std::to_string(positions.size()));
        VStackInfoImp::set_col_positions(axis, positions);
    }
    void set_stack_position(const VStackPosition& new_position) override
    {
        calls.push_back("set_stack_position");
        VStackInfoImp::set_stack_position(new_position);
    }
};

TEST(SetInfoBehaviour, OperationsAreReachedInTheirOrderThroughTheTable)
{
    const auto full = make_full();
    full->get_col_positions(0); // filled, but equidistant
    Listener listener;
    listener.create(full.get(), 0);
    EXPECT_EQ(listener.calls, (Texts{"create", "set_info", "set_len", "set_off", "set_labels", "set_description",
                                     "set_name", "set_col_labels 0", "set_col_positions 0 0", "set_col_labels 1",
                                     "set_col_positions 1 3", "set_stack_position"}));
    VStackRegion region;
    region.create(full.get(), 0);
    listener.calls.clear();
    listener.create(full.get(), region);
    ASSERT_FALSE(listener.calls.empty());
    EXPECT_EQ(listener.calls.front(), "create");
    EXPECT_EQ(listener.calls.back(), "set_stack_position");
}

/// A time zone for the rest of a scope, by its rule, so that no table of zones is needed.
class TimeZone
{
public:
    explicit TimeZone(const char* rule)
    {
        if (const char* before = std::getenv("TZ"))
            before_ = std::make_unique<std::string>(before);
        setenv("TZ", rule, 1);
        tzset();
    }
    ~TimeZone()
    {
        if (before_)
            setenv("TZ", before_->c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }

private:
    std::unique_ptr<std::string> before_;
};

void expect_date(const char* rule, const char* offset, long minutes)
{
    SCOPED_TRACE(rule);
    const TimeZone zone(rule);
    OpenInfo info(Sizes{4});
    const std::time_t before = std::time(nullptr);
    info.set_acquisition_date();
    const std::time_t after = std::time(nullptr);
    const std::string text = info.meta_data().acquisition_date.get();
    ASSERT_GE(text.size(), 20u) << text;
    EXPECT_EQ(text.substr(19), offset);
    std::tm local{};
    ASSERT_EQ(std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d", &local.tm_year, &local.tm_mon, &local.tm_mday,
                          &local.tm_hour, &local.tm_min, &local.tm_sec),
              6);
    local.tm_year -= 1900;
    local.tm_mon -= 1;
    const std::time_t at = timegm(&local) - minutes * 60;
    EXPECT_GE(at, before - 1) << "time() may lag behind the clock by a tick";
    EXPECT_LE(at, after + 1);
}

TEST(AcquisitionDateBehaviour, IsTheLocalTimeWithItsOffset)
{
    expect_date("VST-05:30", "+05:30", 5 * 60 + 30);
    expect_date("VWT+03:30", "-03:30", -(3 * 60 + 30));
    expect_date("UTC0", "Z", 0);
}

} // namespace
