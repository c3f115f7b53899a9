/// What can be seen of the lock of a description, and of how it holds axes against its rank.
#include "open_info.h"
#include "support/expect_vela_error.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using vela_test::Doubles;
using vela_test::OpenInfo;
using vela_test::Sizes;
using vela_test::Texts;

constexpr const char* folder = "sources/stacks";

struct Mutator
{
    const char* function;
    std::function<void(OpenInfo&, std::uint64_t axis)> call;
    bool takes_axis;
};

const OpenInfo& some_info()
{
    static const OpenInfo info(Sizes{4, 3});
    return info;
}

const Mutator mutators[] = {
    {"create", [](OpenInfo& i, std::uint64_t) { i.create(Sizes{1}, vela_dt_int8); }, false},
    {"create", [](OpenInfo& i, std::uint64_t) { i.create(&some_info(), vela_dt_int8); }, false},
    {"create",
     [](OpenInfo& i, std::uint64_t)
     {
         VStackRegion region;
         region.create(&some_info(), 0);
         i.create(&some_info(), region);
     },
     false},
    {"set_info", [](OpenInfo& i, std::uint64_t) { i.set_info(&some_info()); }, false},
    {"set_name", [](OpenInfo& i, std::uint64_t) { i.set_name("x"); }, false},
    {"set_acquisition_date", [](OpenInfo& i, std::uint64_t) { i.set_acquisition_date(); }, false},
    {"set_description", [](OpenInfo& i, std::uint64_t) { i.set_description("x"); }, false},
    {"set_len", [](OpenInfo& i, std::uint64_t axis) { i.set_len(axis, 9.0); }, true},
    {"set_len", [](OpenInfo& i, std::uint64_t) { i.set_len(Doubles{9.0}); }, false},
    {"set_off", [](OpenInfo& i, std::uint64_t axis) { i.set_off(axis, 9.0); }, true},
    {"set_off", [](OpenInfo& i, std::uint64_t) { i.set_off(Doubles{9.0}); }, false},
    {"set_labels", [](OpenInfo& i, std::uint64_t) { i.set_labels({"x"}); }, false},
    {"set_col_labels", [](OpenInfo& i, std::uint64_t axis) { i.set_col_labels(axis, {"x"}); }, true},
    {"set_col_positions", [](OpenInfo& i, std::uint64_t axis) { i.set_col_positions(axis, {1.0}); }, true},
    {"set_label", [](OpenInfo& i, std::uint64_t axis) { i.set_label(axis, "x"); }, true},
    {"set_units", [](OpenInfo& i, std::uint64_t axis) { i.set_units(axis, si::value("K")); }, true},
    {"set_data_units", [](OpenInfo& i, std::uint64_t) { i.set_data_units(si::value("K")); }, false},
};

TEST(LockBehaviour, LockedOneRefusesEveryGuardedMutatorBeforeAnythingElse)
{
    OpenInfo info(Sizes{4, 3});
    info.set_name("name");
    info.locked = true;
    for (const Mutator& mutator : mutators)
        for (const std::uint64_t axis : {0u, 2u})
            EXPECT_VELA_ERROR_IN(mutator.call(info, axis), (std::string("VStackInfoImp::") + mutator.function).c_str(),
                                 folder, -1, "Cannot set values. Object locked!");
    EXPECT_EQ(info.get_sizes(), (Sizes{4, 3}));
    EXPECT_EQ(info.get_dt(), vela_dt_uint8);
    EXPECT_EQ(info.get_name(), "name");
    EXPECT_EQ(info.get_lengths(), (Doubles{1.0, 1.0}));
    EXPECT_EQ(info.get_offsets(), (Doubles{0.0, 0.0}));
    EXPECT_EQ(info.get_labels(), Texts(2));
    EXPECT_EQ(info.get_data_units(), si::value());
    EXPECT_TRUE(info.meta_data().acquisition_date.is_null());
}

TEST(LockBehaviour, RegionIsResolvedBeforeTheFormOnSizesLooksAtTheLock)
{
    OpenInfo info(Sizes{4, 3});
    info.locked = true;
    VStackRegion region;
    region.create(&info, 0);
    region.permutation = {1, 1};
    EXPECT_VELA_ERROR(info.create(&some_info(), region), -15, "Invalid permutation!");
}

TEST(LockBehaviour, LockedOneLetsTheUnguardedPass)
{
    OpenInfo info(2);
    info.locked = true;
    info.set_variable_type(vela_dt_int8);
    info.set_type(vela_dt_int16);
    info.set_sizes({4, 0});
    info.set_variable_size(2);
    info.meta_data().name = "through the record";
    EXPECT_EQ(info.get_dt(), vela_dt_int16);
    EXPECT_EQ(info.get_sizes(), (Sizes{4, 2}));
    EXPECT_EQ(info.get_name(), "through the record");
}

TEST(LockBehaviour, AxisBeyondTheRankIsRefusedEverywhere)
{
    OpenInfo info(Sizes{4, 3});
    const OpenInfo& seen = info;
    std::vector<std::function<void(std::uint64_t)>> calls = {
        [&](std::uint64_t axis) { seen.get_col_labels(axis); },
        [&](std::uint64_t axis) { seen.get_col_positions(axis); },
        [&](std::uint64_t axis) { seen.get_col_position(axis, 99); },
        [&](std::uint64_t axis) { seen.is_equidistant(axis); },
        [&](std::uint64_t axis) { seen.get_dimension_size(axis); },
        [&](std::uint64_t axis) { seen.get_length(axis); },
        [&](std::uint64_t axis) { seen.get_offset(axis); },
        [&](std::uint64_t axis) { seen.get_label(axis); },
        [&](std::uint64_t axis) { seen.get_units(axis); },
    };
    for (const Mutator& mutator : mutators)
        if (mutator.takes_axis)
            calls.push_back([&](std::uint64_t axis) { mutator.call(info, axis); });
    EXPECT_EQ(calls.size(), 15u);
    for (const auto& call : calls)
        for (const std::uint64_t axis : {std::uint64_t{2}, std::uint64_t{3}, UINT64_MAX})
            EXPECT_VELA_ERROR_IN(call(axis), "VStackInfoImp::_chk_ax", folder, -15, "Invalid axis specified!");
    EXPECT_EQ(info.get_lengths(), (Doubles{1.0, 1.0}));
}

} // namespace
